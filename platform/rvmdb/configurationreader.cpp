// Reading of configurations.
#include "platform/rvmdb/databaseimpl.h"
#include "platform/rvmdb/matrixtext.h"
#include "platform/rvmdb/names.h"

namespace PreBalDB {

namespace {

math::matrix<double> ToMatrix(const std::string& rText) {
    const auto Matrix = MatrixFromText(rText);
    if (!Matrix) {
        throw CSqlError("\"" + rText + "\" is no matrix");
    }
    return *Matrix;
}

/// The values of enumerations and bytes are stored as they are, odd ones included.
template <typename T>
T To(std::int64_t Value) {
    return static_cast<T>(Value);
}

}  // namespace

std::unique_ptr<CPreBalBaseTableEntry> CPreBalDatabase::Impl::NewConfiguration(const std::string& rName) {
    auto pEntry = std::make_unique<CPreBalBaseTableEntry>(m_MachineName, rName);
    pEntry->m_pDatabase = &m_rOwner;
    return pEntry;
}

std::unique_ptr<CPreBalBaseTableEntry> CPreBalDatabase::Impl::LoadConfiguration(const std::string& rName) {
    // One moment for all tables: another console may be writing.
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    const auto Rows = m_Connection.Query(
        "SELECT is_calibrated, calibrated_unix_time, calibrated_rpm, rpm_tolerance, target_unbalance, "
        "number_of_samples FROM configuration WHERE machine = ? AND name = ?",
        {m_MachineName, rName});
    if (Rows.empty()) {
        return nullptr;
    }
    const CDirectSQL::CRow& rRow = Rows[0];
    auto pEntry = NewConfiguration(rName);
    pEntry->m_IsCalibrated = To<int>(rRow.GetInteger(0));
    pEntry->m_CalibrationDateTime = std::chrono::sys_seconds(std::chrono::seconds(rRow.GetInteger(1)));
    pEntry->m_CalibratedRPM = To<std::uint32_t>(rRow.GetInteger(2));
    pEntry->m_RPMTolerance = To<std::uint32_t>(rRow.GetInteger(3));
    pEntry->m_TargetUnbalance = To<std::uint32_t>(rRow.GetInteger(4));
    pEntry->m_NumberOfSamples = To<std::uint32_t>(rRow.GetInteger(5));
    LoadSinglePlane(*pEntry);
    LoadTwoPlane(*pEntry);
    return pEntry;
}

void CPreBalDatabase::Impl::LoadSinglePlane(CPreBalBaseTableEntry& rEntry) {
    const auto Rows = m_Connection.Query(
        "SELECT rotation_direction, proximity_switch_input, sensor_adaption, inv_a, ua FROM single_plane "
        "WHERE machine = ? AND configuration = ?",
        {m_MachineName, rEntry.m_ProcessName});
    if (Rows.empty()) {
        return;
    }
    const CDirectSQL::CRow& rRow = Rows[0];
    CSinglePlaneBalancingTableEntry& rRecord = rEntry.CreateSinglePlane();
    rRecord.SetRotationDirection(To<CTypeBase::Direction>(rRow.GetInteger(0)));
    rRecord.SetProximitySwitchInput(To<CTypeBase::AffectedPlane>(rRow.GetInteger(1)));
    rRecord.SetSensorAdaption(To<std::uint8_t>(rRow.GetInteger(2)));
    rRecord.SetInvA(ToMatrix(rRow.GetText(3)));
    rRecord.SetUA(ToMatrix(rRow.GetText(4)));
    LoadCompensation(rEntry.m_ProcessName, ePartSingle, rRecord.m_Compensation);
}

void CPreBalDatabase::Impl::LoadTwoPlane(CPreBalBaseTableEntry& rEntry) {
    const auto Rows = m_Connection.Query(
        "SELECT rotation_direction, proximity_switch_input, plane1_sensor_adaption, plane2_sensor_adaption, "
        "inv_a, "
        "ua_plane1, ua_plane2 FROM two_plane WHERE machine = ? AND configuration = ?",
        {m_MachineName, rEntry.m_ProcessName});
    if (Rows.empty()) {
        return;
    }
    const CDirectSQL::CRow& rRow = Rows[0];
    CTwoPlaneBalancingTableEntry& rRecord = rEntry.CreateTwoPlane();
    rRecord.SetRotationDirection(To<CTypeBase::Direction>(rRow.GetInteger(0)));
    rRecord.SetProximitySwitchInput(To<CTypeBase::AffectedPlane>(rRow.GetInteger(1)));
    rRecord.SetPlane1SensorAdaption(To<std::uint8_t>(rRow.GetInteger(2)));
    rRecord.SetPlane2SensorAdaption(To<std::uint8_t>(rRow.GetInteger(3)));
    rRecord.SetInvA(ToMatrix(rRow.GetText(4)));
    rRecord.SetUAPlane1(ToMatrix(rRow.GetText(5)));
    rRecord.SetUAPlane2(ToMatrix(rRow.GetText(6)));
    LoadCompensation(rEntry.m_ProcessName, ePartPlane1, rRecord.m_Plane1Compensation);
    LoadCompensation(rEntry.m_ProcessName, ePartPlane2, rRecord.m_Plane2Compensation);
}

void CPreBalDatabase::Impl::LoadCompensation(const std::string& rConfiguration, const char* pPart,
                                             CPlaneCompensation& rCompensation) {
    const std::vector<CDirectSQL::CValue> Key = {m_MachineName, rConfiguration, std::string(pPart)};
    const auto Weights = m_Connection.Query(
        "SELECT plane, scaling_direction FROM weight_compensation "
        "WHERE machine = ? AND configuration = ? AND part = ?",
        Key);
    if (!Weights.empty()) {
        CWeightCompensationTableEntry& rWeight = rCompensation.CreateWeight();
        rWeight.SetPlane(To<CTypeBase::AffectedPlane>(Weights[0].GetInteger(0)));
        rWeight.SetScalingDirection(To<CTypeBase::Direction>(Weights[0].GetInteger(1)));
        return;
    }
    const auto Screws = m_Connection.Query(
        "SELECT plane, scaling_direction, screw_table, number_of_holes, number_of_screws, reference_weight, "
        "radius "
        "FROM screw_compensation WHERE machine = ? AND configuration = ? AND part = ?",
        Key);
    if (!Screws.empty()) {
        const CDirectSQL::CRow& rRow = Screws[0];
        CScrewCompensationTableEntry& rScrew = rCompensation.CreateScrew();
        rScrew.SetPlane(To<CTypeBase::AffectedPlane>(rRow.GetInteger(0)));
        rScrew.SetScalingDirection(To<CTypeBase::Direction>(rRow.GetInteger(1)));
        rScrew.SetScrewTableName(rRow.GetText(2));
        rScrew.SetNumberOfHoles(To<std::uint32_t>(rRow.GetInteger(3)));
        rScrew.SetNumberOfScrews(To<std::uint8_t>(rRow.GetInteger(4)));
        rScrew.SetReferenceWeight(rRow.GetDouble(5));
        rScrew.m_Radius = rRow.GetDouble(6);
    }
}

std::vector<std::string> CPreBalDatabase::Impl::LoadProcessNames(BalancingMode Mode,
                                                                 CTypeBase::AffectedPlane Plane,
                                                                 std::uint8_t Sensor1, std::uint8_t Sensor2) {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    const std::int64_t Input = Plane;
    std::vector<CDirectSQL::CRow> Rows;
    if (Mode == eModeTwoPlane) {
        Rows = m_Connection.Query(
            "SELECT configuration FROM two_plane WHERE machine = ? AND proximity_switch_input = ? "
            "AND plane1_sensor_adaption = ? AND plane2_sensor_adaption = ?",
            {m_MachineName, Input, std::int64_t{Sensor1}, std::int64_t{Sensor2}});
    } else {
        Rows = m_Connection.Query(
            "SELECT configuration FROM single_plane WHERE machine = ? AND proximity_switch_input = ? "
            "AND sensor_adaption = ?",
            {m_MachineName, Input, std::int64_t{Sensor1}});
    }
    std::vector<std::string> Names;
    for (const CDirectSQL::CRow& rRow : Rows) {
        std::string Name = rRow.GetText(0);
        if (Mode == eModeTwoPlane || IsPlane(Name, Mode)) {
            Names.push_back(std::move(Name));
        }
    }
    SortNames(Names);
    return Names;
}

/// Whether a single-plane configuration is one of the mode's plane, which its compensation tells. One without
/// compensation, or whose plane isn't known, fits both.
bool CPreBalDatabase::Impl::IsPlane(const std::string& rConfiguration, BalancingMode Mode) {
    CPlaneCompensation Compensation;
    LoadCompensation(rConfiguration, ePartSingle, Compensation);
    CTypeBase::AffectedPlane Plane = CTypeBase::eUnknownPlane;
    if (Compensation.GetWeight() != nullptr) {
        Plane = Compensation.GetWeight()->m_Plane;
    } else if (Compensation.GetScrew() != nullptr) {
        Plane = Compensation.GetScrew()->m_Plane;
    }
    return Plane == CTypeBase::eUnknownPlane ||
           Plane == (Mode == eModePlane1 ? CTypeBase::ePlane1 : CTypeBase::ePlane2);
}

}  // namespace PreBalDB
