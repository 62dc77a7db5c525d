// Writing of configurations.
#include "platform/rvmdb/databaseimpl.h"
#include "platform/rvmdb/matrixtext.h"

namespace PreBalDB {

namespace {

template <typename T>
CDirectSQL::CValue From(T Value) {
    return static_cast<std::int64_t>(Value);
}

}  // namespace

bool CPreBalDatabase::Impl::Exists(const std::string& rConfiguration) {
    return !m_Connection
                .Query("SELECT 1 FROM configuration WHERE machine = ? AND name = ?",
                       {m_MachineName, rConfiguration})
                .empty();
}

void CPreBalDatabase::Impl::StoreConfiguration(const CPreBalBaseTableEntry& rEntry,
                                               const std::string& rStoredName) {
    const std::string& rName = rEntry.m_ProcessName;
    if (rName.empty()) {
        throw CSqlError("a configuration needs a name");
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (rName != rStoredName && Exists(rName)) {
        throw CSqlError("\"" + rStoredName + "\" can't be renamed: \"" + rName + "\" exists already");
    }
    // The children go and come anew with the parent; a rename needs nothing further.
    m_Connection.Execute("DELETE FROM configuration WHERE machine = ? AND name = ?",
                         {m_MachineName, rStoredName});
    m_Connection.Execute(
        "INSERT INTO configuration (machine, name, is_calibrated, calibrated_unix_time, calibrated_rpm, "
        "rpm_tolerance, target_unbalance, number_of_samples) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
        {m_MachineName, rName, From(rEntry.m_IsCalibrated),
         From(rEntry.m_CalibrationDateTime.time_since_epoch().count()), From(rEntry.m_CalibratedRPM),
         From(rEntry.m_RPMTolerance), From(rEntry.m_TargetUnbalance), From(rEntry.m_NumberOfSamples)});
    if (rEntry.m_pSinglePlane != nullptr) {
        StoreSinglePlane(rName, *rEntry.m_pSinglePlane);
    }
    if (rEntry.m_pTwoPlane != nullptr) {
        StoreTwoPlane(rName, *rEntry.m_pTwoPlane);
    }
    Transaction.Commit();
}

void CPreBalDatabase::Impl::StoreSinglePlane(const std::string& rConfiguration,
                                             const CSinglePlaneBalancingTableEntry& rRecord) {
    m_Connection.Execute(
        "INSERT INTO single_plane (machine, configuration, rotation_direction, proximity_switch_input, "
        "sensor_adaption, inv_a, ua) VALUES (?, ?, ?, ?, ?, ?, ?)",
        {m_MachineName, rConfiguration, From(rRecord.GetRotationDirection()),
         From(rRecord.GetProximitySwitchInput()), From(rRecord.GetSensorAdaption()),
         MatrixToText(rRecord.GetInvA()), MatrixToText(rRecord.GetUA())});
    StoreCompensation(rConfiguration, ePartSingle, rRecord.m_Compensation);
}

void CPreBalDatabase::Impl::StoreTwoPlane(const std::string& rConfiguration,
                                          const CTwoPlaneBalancingTableEntry& rRecord) {
    m_Connection.Execute(
        "INSERT INTO two_plane (machine, configuration, rotation_direction, proximity_switch_input, "
        "plane1_sensor_adaption, plane2_sensor_adaption, inv_a, ua_plane1, ua_plane2) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {m_MachineName, rConfiguration, From(rRecord.GetRotationDirection()),
         From(rRecord.GetProximitySwitchInput()), From(rRecord.GetPlane1SensorAdaption()),
         From(rRecord.GetPlane2SensorAdaption()), MatrixToText(rRecord.GetInvA()),
         MatrixToText(rRecord.GetUAPlane1()), MatrixToText(rRecord.GetUAPlane2())});
    StoreCompensation(rConfiguration, ePartPlane1, rRecord.m_Plane1Compensation);
    StoreCompensation(rConfiguration, ePartPlane2, rRecord.m_Plane2Compensation);
}

void CPreBalDatabase::Impl::StoreCompensation(const std::string& rConfiguration, const char* pPart,
                                              const CPlaneCompensation& rCompensation) {
    if (const CWeightCompensationTableEntry* pWeight = rCompensation.GetWeight()) {
        m_Connection.Execute(
            "INSERT INTO weight_compensation (machine, configuration, part, plane, scaling_direction) "
            "VALUES (?, ?, ?, ?, ?)",
            {m_MachineName, rConfiguration, std::string(pPart), From(pWeight->m_Plane),
             From(pWeight->GetScalingDirection())});
    }
    if (const CScrewCompensationTableEntry* pScrew = rCompensation.GetScrew()) {
        m_Connection.Execute(
            "INSERT INTO screw_compensation (machine, configuration, part, plane, scaling_direction, "
            "screw_table, "
            "number_of_holes, number_of_screws, reference_weight, radius) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "?)",
            {m_MachineName, rConfiguration, std::string(pPart), From(pScrew->m_Plane),
             From(pScrew->GetScalingDirection()), pScrew->GetScrewTableName(),
             From(pScrew->GetNumberOfHoles()), From(pScrew->GetNumberOfScrews()),
             pScrew->GetReferenceWeight(), pScrew->GetRadius()});
    }
}

}  // namespace PreBalDB
