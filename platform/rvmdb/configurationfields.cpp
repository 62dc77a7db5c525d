#include "platform/rvmdb/configurationfields.h"

#include <cmath>
#include <functional>
#include <optional>

#include "platform/rvmdb/matrixtext.h"
#include "platform/rvmdb/prebalbasetableentry.h"

namespace PreBalDB {

namespace {

using CValue = CDirectSQL::CValue;
using ConfigurationFields::Role;

constexpr const char* pConfiguration = "configuration";
constexpr const char* pSinglePlane = "single_plane";
constexpr const char* pTwoPlane = "two_plane";
constexpr const char* pWeights = "weight_compensation";
constexpr const char* pScrews = "screw_compensation";

/// What a value can be at all; what makes sense on a machine is narrower, and the pages' business.
class CLimits {
public:
    static CLimits Whole(std::int64_t Min, std::int64_t Max) { return {eWhole, Min, Max, Max}; }
    /// 255 stands for "unknown".
    static CLimits WholeOrUnknown(std::int64_t Min, std::int64_t Max) { return {eWhole, Min, Max, 255}; }
    static CLimits Positive() { return {ePositive, 0, 0, 0}; }
    static CLimits Text() { return {eText, 0, 0, 0}; }
    static CLimits Matrix(std::int64_t nRows, std::int64_t nColumns) { return {eMatrix, nRows, nColumns, 0}; }

    /// What is wrong with the value, empty if nothing is.
    std::string Check(const CValue& rValue) const;

private:
    enum Kind { eWhole, ePositive, eText, eMatrix };
    CLimits(Kind Value, std::int64_t Min, std::int64_t Max, std::int64_t Also)
        : m_Kind(Value), m_Min(Min), m_Max(Max), m_Also(Also) {}
    std::string CheckMatrix(const std::string& rText) const;

    Kind m_Kind;
    std::int64_t m_Min;  ///< of a matrix its rows
    std::int64_t m_Max;  ///< of a matrix its columns
    std::int64_t m_Also;
};

std::string CLimits::Check(const CValue& rValue) const {
    const auto* const pWhole = std::get_if<std::int64_t>(&rValue);
    const auto* const pText = std::get_if<std::string>(&rValue);
    if (m_Kind == eMatrix) {
        return pText == nullptr ? "no matrix" : CheckMatrix(*pText);
    }
    if (m_Kind == eText) {
        return pText == nullptr ? "no text" : "";
    }
    if (pText != nullptr) {
        return "\"" + *pText + "\" is no number";
    }
    if (m_Kind == ePositive) {
        const double Number = pWhole != nullptr ? static_cast<double>(*pWhole) : std::get<double>(rValue);
        return std::isfinite(Number) && Number > 0.0 ? "" : std::to_string(Number) + " isn't above 0";
    }
    if (pWhole == nullptr) {
        return std::to_string(std::get<double>(rValue)) + " is no whole number";
    }
    if ((*pWhole >= m_Min && *pWhole <= m_Max) || *pWhole == m_Also) {
        return "";
    }
    return std::to_string(*pWhole) + " isn't within " + std::to_string(m_Min) + " to " +
           std::to_string(m_Max);
}

std::string CLimits::CheckMatrix(const std::string& rText) const {
    const auto Matrix = MatrixFromText(rText);
    if (!Matrix) {
        return "\"" + rText + "\" is no matrix";
    }
    if (Matrix->RowNo() != m_Min || Matrix->ColNo() != m_Max) {
        return "\"" + rText + "\" isn't " + std::to_string(m_Min) + " by " + std::to_string(m_Max);
    }
    for (std::uint32_t i = 0; i < Matrix->RowNo(); ++i) {
        for (std::uint32_t j = 0; j < Matrix->ColNo(); ++j) {
            if (!std::isfinite((*Matrix)(i, j))) {
                return "\"" + rText + "\" has an element that is no finite number";
            }
        }
    }
    return "";
}

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

/// A field of a record.
template <typename Record>
struct CField {
    const char* m_pColumn;
    Role m_Role;
    CLimits m_Limits;
    std::function<CValue(const Record&)> m_Get;
    std::function<void(Record&, const CValue&)> m_Set;
};

/// With the pair of accessors that most fields have. Setters take the value itself or a reference to it.
template <typename Record, typename Got, typename Given, typename Owner1, typename Owner2>
CField<Record> MakeField(const char* pColumn, Role FieldRole, CLimits Limits, Got (Owner1::*pGet)() const,
                         void (Owner2::*pSet)(Given)) {
    return {pColumn, FieldRole, Limits, [pGet](const Record& rRecord) { return ToValue((rRecord.*pGet)()); },
            [pSet](Record& rRecord, const CValue& rValue) {
                (rRecord.*pSet)(FromValue<std::remove_cvref_t<Given>>(rValue));
            }};
}

template <typename Record>
using CFields = std::vector<CField<Record>>;

}  // namespace

/// The tables of fields; a class, since some fields have no accessors for others.
class CConfigurationFields {
public:
    static const CFields<CPreBalBaseTableEntry>& GetBase();
    static const CFields<CSinglePlaneBalancingTableEntry>& GetSinglePlane();
    static const CFields<CTwoPlaneBalancingTableEntry>& GetTwoPlane();
    static const CFields<CWeightCompensationTableEntry>& GetWeights();
    static const CFields<CScrewCompensationTableEntry>& GetScrews();

    static CFieldValues Read(const CPreBalBaseTableEntry& rEntry);
    static std::vector<std::string> Write(const CFieldValues& rValues, CPreBalBaseTableEntry& rEntry);

private:
    template <typename Record>
    static CField<Record> MakePlane() {
        return {"plane", Role::eBasis, CLimits::WholeOrUnknown(0, 1),
                [](const Record& rRecord) { return ToValue(rRecord.m_Plane); },
                [](Record& rRecord, const CValue& rValue) {
                    rRecord.m_Plane = FromValue<CTypeBase::AffectedPlane>(rValue);
                }};
    }
    static CField<CScrewCompensationTableEntry> MakeRadius() {
        using R = CScrewCompensationTableEntry;
        return {"radius", Role::eSetting, CLimits::Positive(),
                [](const R& rRecord) { return ToValue(rRecord.m_Radius); },
                [](R& rRecord, const CValue& rValue) { rRecord.m_Radius = FromValue<double>(rValue); }};
    }
};

// Speeds and amplitudes come in 16 bits.
const CFields<CPreBalBaseTableEntry>& CConfigurationFields::GetBase() {
    using R = CPreBalBaseTableEntry;
    constexpr std::int64_t eMaxWord = 65535;
    /// Ten minutes of 50 ms.
    constexpr std::int64_t eMaxSamples = 12000;
    static const CFields<R> ms_Fields = {
        MakeField<R>("is_calibrated", Role::eCalibration, CLimits::Whole(0, 1), &R::IsCalibrated,
                     &R::SetIsCalibrated),
        MakeField<R>("calibrated_unix_time", Role::eCalibration, CLimits::Whole(0, 253402300799),
                     &R::GetCalibrationDateTime, &R::SetCalibrationDateTime),
        MakeField<R>("calibrated_rpm", Role::eCalibration, CLimits::Whole(0, eMaxWord), &R::GetCalibratedRPM,
                     &R::SetCalibratedRPM),
        MakeField<R>("rpm_tolerance", Role::eSetting, CLimits::Whole(0, eMaxWord), &R::GetRPMTolerance,
                     &R::SetRPMTolerance),
        MakeField<R>("target_unbalance", Role::eSetting, CLimits::Whole(0, eMaxWord), &R::GetTargetUnbalance,
                     &R::SetTargetUnbalance),
        MakeField<R>("number_of_samples", Role::eSetting, CLimits::Whole(1, eMaxSamples),
                     &R::GetNumberOfSamples, &R::SetNumberOfSamples),
    };
    return ms_Fields;
}

const CFields<CSinglePlaneBalancingTableEntry>& CConfigurationFields::GetSinglePlane() {
    using R = CSinglePlaneBalancingTableEntry;
    static const CFields<R> ms_Fields = {
        MakeField<R>("rotation_direction", Role::eBasis, CLimits::Whole(0, 1), &R::GetRotationDirection,
                     &R::SetRotationDirection),
        MakeField<R>("proximity_switch_input", Role::eBasis, CLimits::WholeOrUnknown(0, 1),
                     &R::GetProximitySwitchInput, &R::SetProximitySwitchInput),
        MakeField<R>("sensor_adaption", Role::eBasis, CLimits::Whole(0, 255), &R::GetSensorAdaption,
                     &R::SetSensorAdaption),
        MakeField<R>("inv_a", Role::eCalibration, CLimits::Matrix(2, 2), &R::GetInvA, &R::SetInvA),
        MakeField<R>("ua", Role::eCalibration, CLimits::Matrix(2, 1), &R::GetUA, &R::SetUA),
    };
    return ms_Fields;
}

const CFields<CTwoPlaneBalancingTableEntry>& CConfigurationFields::GetTwoPlane() {
    using R = CTwoPlaneBalancingTableEntry;
    static const CFields<R> ms_Fields = {
        MakeField<R>("rotation_direction", Role::eBasis, CLimits::Whole(0, 1), &R::GetRotationDirection,
                     &R::SetRotationDirection),
        MakeField<R>("proximity_switch_input", Role::eBasis, CLimits::WholeOrUnknown(0, 1),
                     &R::GetProximitySwitchInput, &R::SetProximitySwitchInput),
        MakeField<R>("plane1_sensor_adaption", Role::eBasis, CLimits::Whole(0, 255),
                     &R::GetPlane1SensorAdaption, &R::SetPlane1SensorAdaption),
        MakeField<R>("plane2_sensor_adaption", Role::eBasis, CLimits::Whole(0, 255),
                     &R::GetPlane2SensorAdaption, &R::SetPlane2SensorAdaption),
        MakeField<R>("inv_a", Role::eCalibration, CLimits::Matrix(4, 4), &R::GetInvA, &R::SetInvA),
        MakeField<R>("ua_plane1", Role::eCalibration, CLimits::Matrix(2, 1), &R::GetUAPlane1,
                     &R::SetUAPlane1),
        MakeField<R>("ua_plane2", Role::eCalibration, CLimits::Matrix(2, 1), &R::GetUAPlane2,
                     &R::SetUAPlane2),
    };
    return ms_Fields;
}

const CFields<CWeightCompensationTableEntry>& CConfigurationFields::GetWeights() {
    using R = CWeightCompensationTableEntry;
    static const CFields<R> ms_Fields = {
        MakePlane<R>(),
        MakeField<R>("scaling_direction", Role::eBasis, CLimits::Whole(0, 1), &R::GetScalingDirection,
                     &R::SetScalingDirection),
    };
    return ms_Fields;
}

const CFields<CScrewCompensationTableEntry>& CConfigurationFields::GetScrews() {
    using R = CScrewCompensationTableEntry;
    /// A hole a degree.
    constexpr std::int64_t eMaxHoles = 360;
    static const CFields<R> ms_Fields = {
        MakePlane<R>(),
        MakeField<R>("scaling_direction", Role::eBasis, CLimits::Whole(0, 1), &R::GetScalingDirection,
                     &R::SetScalingDirection),
        MakeField<R>("screw_table", Role::eSetting, CLimits::Text(), &R::GetScrewTableName,
                     &R::SetScrewTableName),
        MakeField<R>("number_of_holes", Role::eSetting, CLimits::Whole(0, eMaxHoles), &R::GetNumberOfHoles,
                     &R::SetNumberOfHoles),
        MakeField<R>("number_of_screws", Role::eSetting, CLimits::Whole(0, 255), &R::GetNumberOfScrews,
                     &R::SetNumberOfScrews),
        MakeField<R>("reference_weight", Role::eCalibration, CLimits::Positive(), &R::GetReferenceWeight,
                     &R::SetReferenceWeight),
        MakeRadius(),
    };
    return ms_Fields;
}

namespace {

constexpr const char* pSinglePart = "single";
constexpr const char* pPlane1Part = "plane1";
constexpr const char* pPlane2Part = "plane2";

struct CFieldInfo {
    Role m_Role;
    CLimits m_Limits;
};

/// All fields of all records, in the order of the store.
struct CRegistry {
    std::vector<CRecordLayout> m_Layouts;
    std::map<std::string, CFieldInfo> m_Fields;

    template <typename Record>
    void Add(const char* pTable, const char* pPart, const CFields<Record>& rFields) {
        CRecordLayout Layout{pTable, pTable == pConfiguration ? "name" : "configuration", pPart, {}};
        for (const CField<Record>& rField : rFields) {
            Layout.m_Columns.emplace_back(rField.m_pColumn);
            m_Fields.emplace(Layout.GetFieldName(rField.m_pColumn),
                             CFieldInfo{rField.m_Role, rField.m_Limits});
        }
        m_Layouts.push_back(std::move(Layout));
    }

    CRegistry() {
        Add(pConfiguration, "", CConfigurationFields::GetBase());
        Add(pSinglePlane, "", CConfigurationFields::GetSinglePlane());
        Add(pTwoPlane, "", CConfigurationFields::GetTwoPlane());
        for (const char* const pPart : {pSinglePart, pPlane1Part, pPlane2Part}) {
            Add(pWeights, pPart, CConfigurationFields::GetWeights());
            Add(pScrews, pPart, CConfigurationFields::GetScrews());
        }
    }
};

const CRegistry& GetRegistry() {
    static const CRegistry ms_Registry;
    return ms_Registry;
}

std::string GetPrefix(const char* pTable, const char* pPart = "") {
    return CRecordLayout{pTable, "", pPart, {}}.GetFieldName("");
}

template <typename Record>
void Put(const std::string& rPrefix, const CFields<Record>& rFields, const Record* pRecord,
         CFieldValues& rValues) {
    if (pRecord == nullptr) {
        return;
    }
    for (const CField<Record>& rField : rFields) {
        rValues[rPrefix + rField.m_pColumn] = rField.m_Get(*pRecord);
    }
}

bool Has(const CFieldValues& rValues, const std::string& rPrefix) {
    const auto Found = rValues.lower_bound(rPrefix);
    return Found != rValues.end() && Found->first.starts_with(rPrefix);
}

template <typename Record>
void Take(const CFieldValues& rValues, const std::string& rPrefix, const CFields<Record>& rFields,
          Record& rRecord, std::vector<std::string>& rProblems) {
    for (const CField<Record>& rField : rFields) {
        const auto Found = rValues.find(rPrefix + rField.m_pColumn);
        if (Found == rValues.end()) {
            continue;
        }
        const std::string Problem = ConfigurationFields::Check(Found->first, Found->second);
        if (Problem.empty()) {
            rField.m_Set(rRecord, Found->second);
        } else {
            rProblems.push_back(Problem);
        }
    }
}

void PutCompensation(const char* pPart, const CPlaneCompensation& rCompensation, CFieldValues& rValues) {
    Put(GetPrefix(pWeights, pPart), CConfigurationFields::GetWeights(), rCompensation.GetWeight(), rValues);
    Put(GetPrefix(pScrews, pPart), CConfigurationFields::GetScrews(), rCompensation.GetScrew(), rValues);
}

void TakeCompensation(const CFieldValues& rValues, const char* pPart, CPlaneCompensation& rCompensation,
                      std::vector<std::string>& rProblems) {
    const std::string Weights = GetPrefix(pWeights, pPart);
    const std::string Screws = GetPrefix(pScrews, pPart);
    if (Has(rValues, Weights)) {
        Take(rValues, Weights, CConfigurationFields::GetWeights(), rCompensation.CreateWeight(), rProblems);
    } else if (Has(rValues, Screws)) {
        Take(rValues, Screws, CConfigurationFields::GetScrews(), rCompensation.CreateScrew(), rProblems);
    }
}

}  // namespace

CFieldValues CConfigurationFields::Read(const CPreBalBaseTableEntry& rEntry) {
    CFieldValues Values;
    Put(GetPrefix(pConfiguration), GetBase(), &rEntry, Values);
    if (const CSinglePlaneBalancingTableEntry* const pSingle = rEntry.GetSinglePlane()) {
        Put(GetPrefix(pSinglePlane), GetSinglePlane(), pSingle, Values);
        PutCompensation(pSinglePart, pSingle->m_Compensation, Values);
    }
    if (const CTwoPlaneBalancingTableEntry* const pTwo = rEntry.GetTwoPlane()) {
        Put(GetPrefix(pTwoPlane), GetTwoPlane(), pTwo, Values);
        PutCompensation(pPlane1Part, pTwo->m_Plane1Compensation, Values);
        PutCompensation(pPlane2Part, pTwo->m_Plane2Compensation, Values);
    }
    return Values;
}

std::vector<std::string> CConfigurationFields::Write(const CFieldValues& rValues,
                                                     CPreBalBaseTableEntry& rEntry) {
    std::vector<std::string> Problems;
    Take(rValues, GetPrefix(pConfiguration), GetBase(), rEntry, Problems);
    if (Has(rValues, GetPrefix(pSinglePlane))) {
        CSinglePlaneBalancingTableEntry& rSingle = rEntry.CreateSinglePlane();
        Take(rValues, GetPrefix(pSinglePlane), GetSinglePlane(), rSingle, Problems);
        TakeCompensation(rValues, pSinglePart, rSingle.m_Compensation, Problems);
    }
    if (Has(rValues, GetPrefix(pTwoPlane))) {
        CTwoPlaneBalancingTableEntry& rTwo = rEntry.CreateTwoPlane();
        Take(rValues, GetPrefix(pTwoPlane), GetTwoPlane(), rTwo, Problems);
        TakeCompensation(rValues, pPlane1Part, rTwo.m_Plane1Compensation, Problems);
        TakeCompensation(rValues, pPlane2Part, rTwo.m_Plane2Compensation, Problems);
    }
    if (!Problems.empty()) {
        rEntry.SetIsCalibrated(0);
    }
    return Problems;
}

std::string CRecordLayout::GetFieldName(const std::string& rColumn) const {
    return m_Table + "." + (m_Part.empty() ? "" : m_Part + ".") + rColumn;
}

namespace ConfigurationFields {

const std::vector<CRecordLayout>& GetLayouts() {
    return GetRegistry().m_Layouts;
}

Role GetRole(const std::string& rField) {
    const auto Found = GetRegistry().m_Fields.find(rField);
    return Found == GetRegistry().m_Fields.end() ? Role::eSetting : Found->second.m_Role;
}

std::string Check(const std::string& rField, const CDirectSQL::CValue& rValue) {
    const auto Found = GetRegistry().m_Fields.find(rField);
    const std::string Problem =
        Found == GetRegistry().m_Fields.end() ? std::string() : Found->second.m_Limits.Check(rValue);
    return Problem.empty() ? Problem : rField + ": " + Problem;
}

const CFieldValues& GetDefaults() {
    static const CFieldValues ms_Defaults = [] {
        CPreBalBaseTableEntry Entry("", "");
        CSinglePlaneBalancingTableEntry& rSingle = Entry.CreateSinglePlane();
        CTwoPlaneBalancingTableEntry& rTwo = Entry.CreateTwoPlane();
        rSingle.CreateWeightCompensationTableEntry();
        rTwo.CreatePlane1WeightCompensationTableEntry();
        rTwo.CreatePlane2WeightCompensationTableEntry();
        CFieldValues Values = Read(Entry);
        rSingle.CreateScrewCompensationTableEntry();
        rTwo.CreatePlane1ScrewCompensationTableEntry();
        rTwo.CreatePlane2ScrewCompensationTableEntry();
        Values.merge(Read(Entry));
        return Values;
    }();
    return ms_Defaults;
}

CFieldValues Read(const CPreBalBaseTableEntry& rEntry) {
    return CConfigurationFields::Read(rEntry);
}

std::vector<std::string> Write(const CFieldValues& rValues, CPreBalBaseTableEntry& rEntry) {
    return CConfigurationFields::Write(rValues, rEntry);
}

}  // namespace ConfigurationFields
}  // namespace PreBalDB
