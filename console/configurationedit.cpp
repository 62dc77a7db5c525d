#include "console/configurationedit.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "console/configurationjson.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::CFieldValues;
using PreBalDB::CProperty;
using PreBalDB::CRecordLayout;
using PreBalDB::StoreTexts::Fill;
using PreBalDB::StoreTexts::Join;
namespace ConfigurationFields = PreBalDB::ConfigurationFields;

namespace {

constexpr const char* METHOD = "method";
constexpr const char* PLANES = "planes";
/// What else an object has: what it is called, and what stands beside the configuration.
constexpr std::array OTHERS = {"machine", "mode", "name", "revision", "iso"};

const CRecordLayout& GetLayout(std::string_view Table, const std::string& rPart) {
    return *std::ranges::find_if(ConfigurationFields::GetLayouts(), [&](const CRecordLayout& rLayout) {
        return rLayout.m_Table == Table && rLayout.m_Part == rPart;
    });
}

const CRecordLayout& GetMeans(const std::string& rPart, bool bScrews) {
    return GetLayout(bScrews ? "screw_compensation" : "weight_compensation", rPart);
}

const CProperty& GetMethod(const CRecordLayout& rMeans) {
    return **std::ranges::find_if(rMeans.m_Properties, [](const CProperty* pProperty) {
        return std::string_view(pProperty->m_pName) == METHOD;
    });
}

bool HasRecord(const CFieldValues& rValues, const CRecordLayout& rLayout) {
    return rValues.contains(rLayout.GetFieldName(rLayout.m_Columns.front()));
}

/// Why people don't set it.
std::string TellWriter(const CProperty& rProperty) {
    const char* const pKey = (rProperty.m_Writers & CProperty::eRun) != 0      ? "CONFIGURE_SET_BY_RUN"
                             : (rProperty.m_Writers & CProperty::eModule) != 0 ? "CONFIGURE_SET_BY_MODULE"
                                                                               : "CONFIGURE_SET_BY_NOBODY";
    return Fill(pKey, {rProperty.m_pName});
}

/// A property and its field among some records.
struct CPlace {
    const CProperty* m_pProperty = nullptr;
    std::string m_Field;
};

CPlace FindPlace(const std::vector<const CRecordLayout*>& rLayouts, const std::string& rName) {
    for (const CRecordLayout* const pLayout : rLayouts) {
        for (const CProperty* const pProperty : pLayout->m_Properties) {
            if (rName == pProperty->m_pName) {
                return {pProperty, pLayout->GetFieldName(pProperty->GetFieldName())};
            }
        }
    }
    return {};
}

std::string JoinNames(const std::vector<const CRecordLayout*>& rLayouts) {
    std::vector<std::string> Names;
    for (const CRecordLayout* const pLayout : rLayouts) {
        for (const CProperty* const pProperty : pLayout->m_Properties) {
            if (pProperty->IsForPeople()) {
                Names.emplace_back(pProperty->m_pName);
            }
        }
    }
    return Join(Names);
}

}  // namespace

CConfigurationEdit::CConfigurationEdit(CFieldValues Values, const CMachineKey& rKey,
                                       std::vector<std::string> Tables)
    : m_Values(std::move(Values)),
      m_Parts(rKey.IsTwoPlane() ? std::vector<std::string>{"plane1", "plane2"}
                                : std::vector<std::string>{"single"}),
      m_Tables(std::move(Tables)) {
    SetModule(rKey);
}

/// Gives the configuration what its module's set asks for.
void CConfigurationEdit::SetModule(const CMachineKey& rKey) {
    const auto Add = [this](const CRecordLayout& rLayout) {
        for (const std::string& rColumn : rLayout.m_Columns) {
            const std::string Field = rLayout.GetFieldName(rColumn);
            m_Values.emplace(Field, ConfigurationFields::GetDefaults().at(Field));
        }
    };
    const auto Set = [this](const CRecordLayout& rLayout, const char* pColumn, std::uint8_t Value) {
        m_Values[rLayout.GetFieldName(pColumn)] = std::int64_t{Value};
    };
    const CRecordLayout& rPlanes = GetLayout(rKey.IsTwoPlane() ? "two_plane" : "single_plane", "");
    Add(rPlanes);
    Set(rPlanes, "proximity_switch_input", rKey.m_SpeedInput);
    if (rKey.IsTwoPlane()) {
        Set(rPlanes, "plane1_sensor_adaption", rKey.m_Sensor1);
        Set(rPlanes, "plane2_sensor_adaption", rKey.m_Sensor2);
    } else {
        Set(rPlanes, "sensor_adaption", rKey.m_Sensor1);
    }
    for (std::size_t i = 0; i < m_Parts.size(); ++i) {
        const bool bScrews = HasRecord(m_Values, GetMeans(m_Parts[i], true));
        const CRecordLayout& rMeans = GetMeans(m_Parts[i], bScrews);
        Add(rMeans);
        const std::size_t Plane = rKey.IsTwoPlane() ? i : rKey.IsBalanced(1) ? 1 : 0;
        Set(rMeans, "plane", static_cast<std::uint8_t>(Plane));
    }
}

CConfigurationEdit::Layouts CConfigurationEdit::GetCommonLayouts() const {
    return {&GetLayout("configuration", ""),
            &GetLayout(m_Parts.size() == 2 ? "two_plane" : "single_plane", "")};
}

CConfigurationEdit::Layouts CConfigurationEdit::GetPlaneLayouts(const std::string& rPart) const {
    return {&GetMeans(rPart, HasRecord(m_Values, GetMeans(rPart, true)))};
}

std::string CConfigurationEdit::Apply(const nlohmann::json& rObject, From Source) {
    const CFieldValues Before = m_Values;
    nlohmann::json Common = rObject;
    for (const char* const pOther : OTHERS) {
        Common.erase(pOther);
    }
    Common.erase(PLANES);
    std::string Error = ApplyValues(GetCommonLayouts(), "", Common, Source);
    if (Error.empty() && rObject.contains(PLANES)) {
        Error = ApplyPlanes(rObject[PLANES], Source);
    }
    if (!Error.empty()) {
        m_Values = Before;
    }
    return Error;
}

std::string CConfigurationEdit::ApplyPlanes(const nlohmann::json& rPlanes, From Source) {
    const bool bObjects = rPlanes.is_array() && rPlanes.size() == m_Parts.size() &&
                          std::ranges::all_of(rPlanes, [](const auto& rPlane) { return rPlane.is_object(); });
    if (!bObjects) {
        return Fill("CONFIGURE_PLANES", {std::to_string(m_Parts.size())});
    }
    for (std::size_t i = 0; i < rPlanes.size(); ++i) {
        if (std::string Error = ApplyPlane(i, rPlanes[i], Source); !Error.empty()) {
            return Error;
        }
    }
    return {};
}

std::string CConfigurationEdit::ApplyPlane(std::size_t Place, const nlohmann::json& rPlane, From Source) {
    const std::string& rPart = m_Parts[Place];
    const std::string Where = m_Parts.size() == 2 ? "planes[" + std::to_string(Place) + "]." : "";
    nlohmann::json Values = rPlane;
    if (rPlane.contains(METHOD)) {
        // First: it tells which other properties there are.
        const CProperty& rMethod = GetMethod(*GetPlaneLayouts(rPart).front());
        const auto Method = ValueFromJson(rMethod, rPlane[METHOD]);
        if (!Method) {
            return Fill("CONFIGURE_WRONG_VALUE",
                        {Where + METHOD, ToText(rPlane[METHOD]), DescribeValues(rMethod)});
        }
        SetMethod(rPart, *Method == PreBalDB::CDirectSQL::CValue(std::int64_t{1}));
        Values.erase(METHOD);
    }
    return ApplyValues(GetPlaneLayouts(rPart), Where, Values, Source);
}

std::string CConfigurationEdit::ApplyValues(const Layouts& rLayouts, const std::string& rWhere,
                                            const nlohmann::json& rObject, From Source) {
    for (const auto& [rName, rValue] : rObject.items()) {
        const CPlace Place = FindPlace(rLayouts, rName);
        if (Place.m_pProperty == nullptr) {
            return Fill("CONFIGURE_NO_PROPERTY", {rWhere + rName, JoinNames(rLayouts)});
        }
        if (!Place.m_pProperty->IsForPeople()) {
            if (Source == From::eCommand) {
                return TellWriter(*Place.m_pProperty);
            }
            continue;
        }
        const auto Value = ValueFromJson(*Place.m_pProperty, rValue);
        if (!Value) {
            return Fill("CONFIGURE_WRONG_VALUE",
                        {rWhere + rName, ToText(rValue), DescribeValues(*Place.m_pProperty)});
        }
        if (Place.m_pProperty->m_Type == PreBalDB::PropertyType::eText &&
            std::ranges::find(m_Tables, std::get<std::string>(*Value)) == m_Tables.end()) {
            return Fill("CONFIGURE_NO_TABLE", {rWhere + rName, ToText(rValue), Join(m_Tables)});
        }
        m_Values[Place.m_Field] = *Value;
    }
    return {};
}

/// Exchanges the record of the plane's means. What both kinds have is kept.
void CConfigurationEdit::SetMethod(const std::string& rPart, bool bScrews) {
    const CRecordLayout& rOld = GetMeans(rPart, !bScrews);
    const CRecordLayout& rNew = GetMeans(rPart, bScrews);
    if (HasRecord(m_Values, rNew)) {
        return;
    }
    for (const std::string& rColumn : rNew.m_Columns) {
        const std::string Field = rNew.GetFieldName(rColumn);
        const auto Kept = m_Values.find(rOld.GetFieldName(rColumn));
        m_Values[Field] =
            Kept != m_Values.end() ? Kept->second : ConfigurationFields::GetDefaults().at(Field);
    }
    for (const std::string& rColumn : rOld.m_Columns) {
        m_Values.erase(rOld.GetFieldName(rColumn));
    }
}

bool CConfigurationEdit::HasOtherBasis(const CFieldValues& rBefore) const {
    const auto Differs = [](const CFieldValues& rLeft, const CFieldValues& rRight) {
        return std::ranges::any_of(rLeft, [&rRight](const auto& rField) {
            const auto Other = rRight.find(rField.first);
            return ConfigurationFields::GetRole(rField.first) == CProperty::Role::eBasis &&
                   (Other == rRight.end() || Other->second != rField.second);
        });
    };
    return Differs(m_Values, rBefore) || Differs(rBefore, m_Values);
}
