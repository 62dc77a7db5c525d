#include "platform/rvmdb/recordfields.h"

#include <array>
#include <utility>

#include "contract/units.h"
#include "platform/rvmdb/defaultscrewtable.h"

namespace PreBalDB {

namespace {

using CValue = CDirectSQL::CValue;
using P = CProperty;
using L = CStoredLimits;
using Role = CProperty::Role;

CValue ToValue(const math::matrix<double>& rValue) {
    return MatrixToText(rValue);
}
CValue ToValue(const std::string& rValue) {
    return rValue;
}
CValue ToValue(double Value) {
    return Value;
}
CValue ToValue(std::chrono::sys_seconds Value) {
    return std::int64_t{Value.time_since_epoch().count()};
}
template <typename T>
requires std::is_integral_v<T> || std::is_enum_v<T> CValue ToValue(T Value) {
    return static_cast<std::int64_t>(Value);
}

/// Of a value that was checked.
template <typename T>
T FromValue(const CValue& rValue) {
    if constexpr (std::is_same_v<T, math::matrix<double>>) {
        return *MatrixFromText(std::get<std::string>(rValue));
    } else if constexpr (std::is_same_v<T, std::string>) {
        return std::get<std::string>(rValue);
    } else if constexpr (std::is_same_v<T, double>) {
        const auto* const pWhole = std::get_if<std::int64_t>(&rValue);
        return pWhole != nullptr ? static_cast<double>(*pWhole) : std::get<double>(rValue);
    } else if constexpr (std::is_same_v<T, std::chrono::sys_seconds>) {
        return T(std::chrono::seconds(std::get<std::int64_t>(rValue)));
    } else {
        return static_cast<T>(std::get<std::int64_t>(rValue));
    }
}

template <typename T>
constexpr PropertyType GetType() {
    if constexpr (std::is_same_v<T, math::matrix<double>>) {
        return PropertyType::eMatrix;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return PropertyType::eText;
    } else if constexpr (std::is_same_v<T, double>) {
        return PropertyType::eReal;
    } else if constexpr (std::is_same_v<T, std::chrono::sys_seconds>) {
        return PropertyType::eTime;
    } else if constexpr (std::is_enum_v<T>) {
        return PropertyType::eChoice;
    } else if constexpr (std::is_same_v<T, int>) {
        return PropertyType::eFlag;  // as the records have it
    } else if constexpr (std::is_same_v<T, std::uint8_t>) {
        return PropertyType::eByte;
    } else {
        static_assert(std::is_same_v<T, std::uint32_t>);
        return PropertyType::eWhole;
    }
}

/// With the pair of accessors that most fields have. Setters take the value itself or a reference to it.
template <typename Record, typename Got, typename Given, typename Owner1, typename Owner2>
CRecordField<Record> MakeField(CProperty Property, Got (Owner1::*pGet)() const, void (Owner2::*pSet)(Given)) {
    using T = std::remove_cvref_t<Given>;
    Property.m_Type = GetType<T>();
    return {std::move(Property), [pGet](const Record& rRecord) { return ToValue((rRecord.*pGet)()); },
            [pSet](Record& rRecord, const CValue& rValue) { (rRecord.*pSet)(FromValue<T>(rValue)); }};
}

CValue Zero(std::uint32_t nRows, std::uint32_t nColumns) {
    math::matrix<double> Matrix(nRows, nColumns);
    Matrix.Null();
    return ToValue(Matrix);
}

/// In the order of CTypeBase::Direction.
constexpr std::array DIRECTIONS = {P::CChoice{"cw", "CW_TEXT"}, P::CChoice{"ccw", "CCW_TEXT"}};
/// In the order of CCompensationTableEntry::CompensationMethod, as far as there is more than the number.
constexpr std::array METHODS = {P::CChoice{"weights", "ANGULAR_METHOD"},
                                P::CChoice{"screws", "FIXED_POSITION"}};

// Speeds and amplitudes come in 16 bits.
constexpr std::int64_t MAX_WORD = 65535;
constexpr std::int64_t MAX_BYTE = 255;
/// The moving averages are filled by one sample in 50 ms.
constexpr double SAMPLES_PER_SECOND = 20.0;
/// Ten minutes of them.
constexpr std::int64_t MAX_SAMPLES = 12000;
/// A hole a degree.
constexpr std::int64_t MAX_HOLES = 360;
/// The end of the year 9999.
constexpr std::int64_t MAX_TIME = 253402300799;

/// Which record a plane has tells its method; a new one counts as weights.
template <typename Record>
CRecordField<Record> MakeMethod() {
    return {{.m_pName = "method",
             .m_Type = PropertyType::eChoice,
             .m_Role = Role::eBasis,
             .m_Writers = P::eOperator,
             .m_Limits = L::Whole(0, 1),
             .m_Default = ToValue(CCompensationTableEntry::eWeights),
             .m_Choices = METHODS,
             .m_Item = {"BALANCING_METHOD", "PB_011"}},
            {},
            {}};
}

template <typename Record>
CRecordField<Record> MakeScale() {
    return MakeField<Record>({.m_pName = "scale",
                              .m_pColumn = "scaling_direction",
                              .m_Role = Role::eBasis,
                              .m_Writers = P::eOperator,
                              .m_Limits = L::Whole(0, 1),
                              .m_Default = ToValue(CTypeBase::eClockwise),
                              .m_Choices = DIRECTIONS,
                              .m_Item = {"PB_SCALINGDIRECTION_TEXT", "PB_007"}},
                             &Record::GetScalingDirection, &Record::SetScalingDirection);
}

/// nPlane: the plane that its label names.
template <typename Record>
CRecordField<Record> MakeRotation(int nPlane) {
    return MakeField<Record>({.m_pName = "rotation",
                              .m_pColumn = "rotation_direction",
                              .m_Role = Role::eBasis,
                              .m_Writers = P::eOperator | P::eNc,
                              .m_Limits = L::Whole(0, 1),
                              .m_Default = ToValue(CTypeBase::eClockwise),
                              .m_Choices = DIRECTIONS,
                              .m_Item = {"PB_ROTATION_DIRECTION_TEXT", "PB_006"},
                              .m_nPlane = nPlane},
                             &Record::GetRotationDirection, &Record::SetRotationDirection);
}

template <typename Record>
CRecordField<Record> MakeSpeedInput() {
    return MakeField<Record>({.m_pName = "proximity_switch_input",
                              .m_pColumn = "proximity_switch_input",
                              .m_Role = Role::eBasis,
                              .m_Writers = P::eModule,
                              .m_Limits = L::WholeOrUnknown(0, 1),
                              .m_Default = ToValue(CTypeBase::eUnknownPlane),
                              .m_Item = {"RPM_INPUT"}},
                             &Record::GetProximitySwitchInput, &Record::SetProximitySwitchInput);
}

CProperty MakeSensor(const char* pColumn, int nPlane) {
    return {.m_pName = pColumn,
            .m_pColumn = pColumn,
            .m_Role = Role::eBasis,
            .m_Writers = P::eModule,
            .m_Limits = L::Whole(0, MAX_BYTE),
            .m_Default = ToValue(MAX_BYTE),  // none
            .m_Item = {"PB_SENSOR_ADAPTATION_TEXT"},
            .m_nPlane = nPlane};
}

CProperty MakeMatrix(const char* pColumn, std::uint32_t nRows, std::uint32_t nColumns, const char* pLabel,
                     int nPlane = 0) {
    return {.m_pName = pColumn,
            .m_pColumn = pColumn,
            .m_Role = Role::eCalibration,
            .m_Writers = P::eRun,
            .m_Limits = L::Matrix(nRows, nColumns),
            .m_Default = Zero(nRows, nColumns),
            .m_Item = {pLabel},
            .m_nPlane = nPlane};
}

}  // namespace

const CRecordFields<CPreBalBaseTableEntry>& CConfigurationFields::Get(const CPreBalBaseTableEntry*) {
    using R = CPreBalBaseTableEntry;
    static const CRecordFields<R> ms_Fields = {
        MakeField<R>({.m_pName = "calibrated",
                      .m_pColumn = "is_calibrated",
                      .m_Role = Role::eCalibration,
                      .m_Writers = P::eRun,
                      .m_Limits = L::Whole(0, 1),
                      .m_Default = ToValue(0)},
                     &R::IsCalibrated, &R::SetIsCalibrated),
        MakeField<R>({.m_pName = "calibrated_unix_time",
                      .m_pColumn = "calibrated_unix_time",
                      .m_Role = Role::eCalibration,
                      .m_Writers = P::eRun,
                      .m_Limits = L::Whole(0, MAX_TIME),
                      .m_Default = ToValue(0),
                      .m_Item = {"PB_SET_CALIB_DATE", "PB_001"},
                      .m_TimeItem = {"PB_SET_CALIB_TIME", "PB_002"}},
                     &R::GetCalibrationDateTime, &R::SetCalibrationDateTime),
        MakeField<R>({.m_pName = "calibrated_rpm",
                      .m_pColumn = "calibrated_rpm",
                      .m_Role = Role::eCalibration,
                      .m_Writers = P::eRun,
                      .m_Limits = L::Whole(0, MAX_WORD),
                      .m_Default = ToValue(0),
                      .m_pUnit = "RPM",
                      .m_Item = {"PB_CALIBRATED_RPM_TEXT", "PB_003"}},
                     &R::GetCalibratedRPM, &R::SetCalibratedRPM),
        // Half width of the speed window: wide enough for a drive's speed ripple, narrow enough that the
        // influence coefficient doesn't change across it.
        MakeField<R>({.m_pName = "rpm_tolerance",
                      .m_pColumn = "rpm_tolerance",
                      .m_Writers = P::eOperator,
                      .m_Limits = L::Whole(0, MAX_WORD),
                      .m_Default = ToValue(50),
                      .m_Range = P::CRange{1, 100, 1},
                      .m_pUnit = "RPM",
                      .m_Item = {"PB_RPM_TOLERANCE_TEXT", "PB_004"}},
                     &R::GetRPMTolerance, &R::SetRPMTolerance),
        // The readings' counts, in the unit that the panel gives them.
        MakeField<R>({.m_pName = "target_unbalance",
                      .m_pColumn = "target_unbalance",
                      .m_Writers = P::eOperator | P::eNc,
                      .m_Limits = L::Whole(0, MAX_WORD),
                      .m_Default = ToValue(5),
                      .m_Range = P::CRange{1, 100, 1},
                      .m_pUnit = Units::UNBALANCE,
                      .m_Item = {"PB_UNBAL_TOLERANCE_TEXT", "PB_005"}},
                     &R::GetTargetUnbalance, &R::SetTargetUnbalance),
        MakeField<R>({.m_pName = "measurement_time_s",
                      .m_pColumn = "number_of_samples",
                      .m_Writers = P::eOperator,
                      .m_Limits = L::Whole(1, MAX_SAMPLES),
                      .m_Default = ToValue(40),
                      .m_Range = P::CRange{1.5, 15.0, 0.1},
                      .m_pUnit = "s",
                      .m_PerUnit = SAMPLES_PER_SECOND,
                      .m_Item = {"MEASUREMENT_TIME", "PB_012"}},
                     &R::GetNumberOfSamples, &R::SetNumberOfSamples),
    };
    return ms_Fields;
}

const CRecordFields<CSinglePlaneBalancingTableEntry>& CConfigurationFields::Get(
    const CSinglePlaneBalancingTableEntry*) {
    using R = CSinglePlaneBalancingTableEntry;
    static const CRecordFields<R> ms_Fields = {
        MakeRotation<R>(0),
        MakeSpeedInput<R>(),
        MakeField<R>(MakeSensor("sensor_adaption", 0), &R::GetSensorAdaption, &R::SetSensorAdaption),
        MakeField<R>(MakeMatrix("inv_a", 2, 2, "INV"), &R::GetInvA, &R::SetInvA),
        MakeField<R>(MakeMatrix("ua", 2, 1, "UA"), &R::GetUA, &R::SetUA),
    };
    return ms_Fields;
}

const CRecordFields<CTwoPlaneBalancingTableEntry>& CConfigurationFields::Get(
    const CTwoPlaneBalancingTableEntry*) {
    using R = CTwoPlaneBalancingTableEntry;
    static const CRecordFields<R> ms_Fields = {
        // Seen from the end of plane 1, for both planes.
        MakeRotation<R>(1),
        MakeSpeedInput<R>(),
        MakeField<R>(MakeSensor("plane1_sensor_adaption", 1), &R::GetPlane1SensorAdaption,
                     &R::SetPlane1SensorAdaption),
        MakeField<R>(MakeSensor("plane2_sensor_adaption", 2), &R::GetPlane2SensorAdaption,
                     &R::SetPlane2SensorAdaption),
        MakeField<R>(MakeMatrix("inv_a", 4, 4, "INV"), &R::GetInvA, &R::SetInvA),
        MakeField<R>(MakeMatrix("ua_plane1", 2, 1, "UA", 1), &R::GetUAPlane1, &R::SetUAPlane1),
        MakeField<R>(MakeMatrix("ua_plane2", 2, 1, "UA", 2), &R::GetUAPlane2, &R::SetUAPlane2),
    };
    return ms_Fields;
}

template <typename Record>
CRecordField<Record> CConfigurationFields::MakePlane() {
    return {{.m_pName = "plane",
             .m_pColumn = "plane",
             .m_Type = PropertyType::eChoice,
             .m_Role = Role::eBasis,
             .m_Writers = P::eModule,
             .m_Limits = L::WholeOrUnknown(0, 1),
             .m_Default = ToValue(CTypeBase::eUnknownPlane),
             .m_Item = {"PB_PLANE_TEXT"}},
            [](const Record& rRecord) { return ToValue(rRecord.m_Plane); },
            [](Record& rRecord, const CValue& rValue) {
                rRecord.m_Plane = FromValue<CTypeBase::AffectedPlane>(rValue);
            }};
}

// Of the ring of holes; nobody sets another one yet.
CRecordField<CScrewCompensationTableEntry> CConfigurationFields::MakeRadius() {
    using R = CScrewCompensationTableEntry;
    return {{.m_pName = "radius",
             .m_pColumn = "radius",
             .m_Type = PropertyType::eReal,
             .m_Limits = L::Positive(),
             .m_Default = ToValue(100.0),
             .m_pUnit = "mm"},
            [](const R& rRecord) { return ToValue(rRecord.m_Radius); },
            [](R& rRecord, const CValue& rValue) { rRecord.m_Radius = FromValue<double>(rValue); }};
}

const CRecordFields<CWeightCompensationTableEntry>& CConfigurationFields::Get(
    const CWeightCompensationTableEntry*) {
    using R = CWeightCompensationTableEntry;
    static const CRecordFields<R> ms_Fields = {MakeMethod<R>(), MakePlane<R>(), MakeScale<R>()};
    return ms_Fields;
}

const CRecordFields<CScrewCompensationTableEntry>& CConfigurationFields::Get(
    const CScrewCompensationTableEntry*) {
    using R = CScrewCompensationTableEntry;
    static const CRecordFields<R> ms_Fields = {
        MakeMethod<R>(),
        MakePlane<R>(),
        MakeScale<R>(),
        MakeField<R>({.m_pName = "table",
                      .m_pColumn = "screw_table",
                      .m_Writers = P::eOperator,
                      .m_Limits = L::Text(),
                      .m_Default = ToValue(std::string(CDefaultScrewTable::NAME)),
                      .m_Item = {"MASS_TABLE", "PB_008"}},
                     &R::GetScrewTableName, &R::SetScrewTableName),
        MakeField<R>({.m_pName = "holes",
                      .m_pColumn = "number_of_holes",
                      .m_Writers = P::eOperator,
                      .m_Limits = L::Whole(0, MAX_HOLES),
                      .m_Default = ToValue(12),
                      .m_Range = P::CRange{3, 24, 1},
                      .m_Item = {"NUMBER_OF_FIXED_POSITIONS", "PB_009"}},
                     &R::GetNumberOfHoles, &R::SetNumberOfHoles),
        MakeField<R>({.m_pName = "screws",
                      .m_pColumn = "number_of_screws",
                      .m_Writers = P::eOperator,
                      .m_Limits = L::Whole(0, MAX_BYTE),
                      .m_Default = ToValue(2),
                      .m_Range = P::CRange{2, 3, 1},
                      .m_Item = {"NUMBER_OF_CORRECTION_MASSES", "PB_010"}},
                     &R::GetNumberOfScrews, &R::SetNumberOfScrews),
        MakeField<R>({.m_pName = "reference_weight",
                      .m_pColumn = "reference_weight",
                      .m_Role = Role::eCalibration,
                      .m_Writers = P::eRun,
                      .m_Limits = L::Positive(),
                      .m_Default = ToValue(1.0),
                      .m_pUnit = "g",
                      .m_Item = {"REFERENCE_WEIGHT"}},
                     &R::GetReferenceWeight, &R::SetReferenceWeight),
        MakeRadius(),
    };
    return ms_Fields;
}

}  // namespace PreBalDB
