#include "platform/rvmdb/configurationfields.h"

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/recordfields.h"

namespace PreBalDB {

namespace {

constexpr const char* CONFIGURATION = "configuration";
constexpr const char* SINGLE_PLANE = "single_plane";
constexpr const char* TWO_PLANE = "two_plane";
constexpr const char* WEIGHTS = "weight_compensation";
constexpr const char* SCREWS = "screw_compensation";

constexpr const char* SINGLE_PART = "single";
constexpr const char* PLANE1_PART = "plane1";
constexpr const char* PLANE2_PART = "plane2";

/// The number of the plane that a record belongs to, 0 if it is none of two.
int GetPlane(const CRecordLayout& rLayout) {
    return rLayout.m_Part == PLANE1_PART ? 1 : rLayout.m_Part == PLANE2_PART ? 2 : 0;
}

/// A property in its place.
struct CField {
    const CProperty* m_pProperty;
    int m_nPlane;  ///< that its label names
};

/// All fields of all records, in the order of the store.
struct CRegistry {
    std::vector<CRecordLayout> m_Layouts;
    std::map<std::string, CField> m_Fields;

    template <typename Record>
    void Add(const char* pTable, const char* pPart = "") {
        CRecordLayout Layout{pTable, pTable == CONFIGURATION ? "name" : "configuration", pPart};
        for (const CRecordField<Record>& rField : CConfigurationFields::Of<Record>()) {
            const CProperty& rProperty = rField.m_Property;
            Layout.m_Properties.push_back(&rProperty);
            if (rProperty.IsStored()) {
                Layout.m_Columns.emplace_back(rProperty.m_pColumn);
            }
            m_Fields.emplace(
                Layout.GetFieldName(rProperty.GetFieldName()),
                CField{&rProperty, rProperty.m_nPlane != 0 ? rProperty.m_nPlane : GetPlane(Layout)});
        }
        m_Layouts.push_back(std::move(Layout));
    }

    CRegistry() {
        Add<CPreBalBaseTableEntry>(CONFIGURATION);
        Add<CSinglePlaneBalancingTableEntry>(SINGLE_PLANE);
        Add<CTwoPlaneBalancingTableEntry>(TWO_PLANE);
        for (const char* const pPart : {SINGLE_PART, PLANE1_PART, PLANE2_PART}) {
            Add<CWeightCompensationTableEntry>(WEIGHTS, pPart);
            Add<CScrewCompensationTableEntry>(SCREWS, pPart);
        }
    }
};

const CRegistry& GetRegistry() {
    static const CRegistry ms_Registry;
    return ms_Registry;
}

const CField* FindField(const std::string& rField) {
    const auto Found = GetRegistry().m_Fields.find(rField);
    return Found == GetRegistry().m_Fields.end() ? nullptr : &Found->second;
}

std::string GetPrefix(const char* pTable, const char* pPart = "") {
    return CRecordLayout{pTable, "", pPart}.GetFieldName("");
}

template <typename Record>
void Put(const std::string& rPrefix, const Record* pRecord, CFieldValues& rValues) {
    if (pRecord == nullptr) {
        return;
    }
    for (const CRecordField<Record>& rField : CConfigurationFields::Of<Record>()) {
        if (rField.m_Property.IsStored()) {
            rValues[rPrefix + rField.m_Property.m_pColumn] = rField.m_Get(*pRecord);
        }
    }
}

bool Has(const CFieldValues& rValues, const std::string& rPrefix) {
    const auto Found = rValues.lower_bound(rPrefix);
    return Found != rValues.end() && Found->first.starts_with(rPrefix);
}

template <typename Record>
void Take(const CFieldValues& rValues, const std::string& rPrefix, Record& rRecord,
          std::vector<std::string>& rProblems) {
    for (const CRecordField<Record>& rField : CConfigurationFields::Of<Record>()) {
        const auto Found = rValues.find(rPrefix + rField.m_Property.GetFieldName());
        if (Found == rValues.end() || !rField.m_Property.IsStored()) {
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
    Put(GetPrefix(WEIGHTS, pPart), rCompensation.GetWeight(), rValues);
    Put(GetPrefix(SCREWS, pPart), rCompensation.GetScrew(), rValues);
}

void TakeCompensation(const CFieldValues& rValues, const char* pPart, CPlaneCompensation& rCompensation,
                      std::vector<std::string>& rProblems) {
    const std::string Weights = GetPrefix(WEIGHTS, pPart);
    const std::string Screws = GetPrefix(SCREWS, pPart);
    if (Has(rValues, Weights)) {
        Take(rValues, Weights, rCompensation.CreateWeight(), rProblems);
    } else if (Has(rValues, Screws)) {
        Take(rValues, Screws, rCompensation.CreateScrew(), rProblems);
    }
}

}  // namespace

CFieldValues CConfigurationFields::Read(const CPreBalBaseTableEntry& rEntry) {
    CFieldValues Values;
    Put(GetPrefix(CONFIGURATION), &rEntry, Values);
    if (const CSinglePlaneBalancingTableEntry* const pSingle = rEntry.GetSinglePlane()) {
        Put(GetPrefix(SINGLE_PLANE), pSingle, Values);
        PutCompensation(SINGLE_PART, pSingle->m_Compensation, Values);
    }
    if (const CTwoPlaneBalancingTableEntry* const pTwo = rEntry.GetTwoPlane()) {
        Put(GetPrefix(TWO_PLANE), pTwo, Values);
        PutCompensation(PLANE1_PART, pTwo->m_Plane1Compensation, Values);
        PutCompensation(PLANE2_PART, pTwo->m_Plane2Compensation, Values);
    }
    return Values;
}

std::vector<std::string> CConfigurationFields::Write(const CFieldValues& rValues,
                                                     CPreBalBaseTableEntry& rEntry) {
    std::vector<std::string> Problems;
    Take(rValues, GetPrefix(CONFIGURATION), rEntry, Problems);
    if (Has(rValues, GetPrefix(SINGLE_PLANE))) {
        CSinglePlaneBalancingTableEntry& rSingle = rEntry.CreateSinglePlane();
        Take(rValues, GetPrefix(SINGLE_PLANE), rSingle, Problems);
        TakeCompensation(rValues, SINGLE_PART, rSingle.m_Compensation, Problems);
    }
    if (Has(rValues, GetPrefix(TWO_PLANE))) {
        CTwoPlaneBalancingTableEntry& rTwo = rEntry.CreateTwoPlane();
        Take(rValues, GetPrefix(TWO_PLANE), rTwo, Problems);
        TakeCompensation(rValues, PLANE1_PART, rTwo.m_Plane1Compensation, Problems);
        TakeCompensation(rValues, PLANE2_PART, rTwo.m_Plane2Compensation, Problems);
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

const CProperty* FindProperty(const std::string& rField) {
    const CField* const pField = FindField(rField);
    return pField == nullptr ? nullptr : pField->m_pProperty;
}

CProperty::Role GetRole(const std::string& rField) {
    const CProperty* const pProperty = FindProperty(rField);
    return pProperty == nullptr ? CProperty::Role::eSetting : pProperty->m_Role;
}

std::string GetLabel(const std::string& rField) {
    if (rField == CALIBRATION) {
        return GetText("CALIBRATION");
    }
    const CField* const pField = FindField(rField);
    if (pField == nullptr || *pField->m_pProperty->m_Item.m_pTextKey == '\0') {
        return rField;
    }
    const std::string Text = GetText(pField->m_pProperty->m_Item.m_pTextKey);
    return pField->m_nPlane == 0
               ? Text
               : Text + " " + GetText("PB_PLANE_TEXT") + " " + std::to_string(pField->m_nPlane);
}

std::string Check(const std::string& rField, const CDirectSQL::CValue& rValue) {
    const CProperty* const pProperty = FindProperty(rField);
    const std::string Problem = pProperty == nullptr ? std::string() : pProperty->m_Limits.Check(rValue);
    return Problem.empty() ? Problem : rField + ": " + Problem;
}

const CFieldValues& GetDefaults() {
    static const CFieldValues ms_Defaults = [] {
        CFieldValues Values;
        for (const CRecordLayout& rLayout : GetLayouts()) {
            for (const CProperty* const pProperty : rLayout.m_Properties) {
                if (pProperty->IsStored()) {
                    Values.emplace(rLayout.GetFieldName(pProperty->m_pColumn), pProperty->m_Default);
                }
            }
        }
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
