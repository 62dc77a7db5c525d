#include "console/configuretext.h"

#include <algorithm>

#include "console/archivetext.h"
#include "console/configurationcatalog.h"
#include "console/configurationchange.h"
#include "console/configurationjson.h"
#include "console/texttable.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::CProperty;
using PreBalDB::StoreTexts::Fill;
using PreBalDB::StoreTexts::Join;

namespace ConfigureText {

namespace {

using Json = nlohmann::ordered_json;

/// Properties of one name are the same in all records.
const CProperty* FindProperty(const std::string& rName) {
    for (const PreBalDB::CRecordLayout& rLayout : PreBalDB::ConfigurationFields::GetLayouts()) {
        for (const CProperty* const pProperty : rLayout.m_Properties) {
            if (rName == pProperty->m_pName) {
                return pProperty;
            }
        }
    }
    return nullptr;
}

/// A text without its quotes.
std::string ShowValue(const Json& rValue) {
    return rValue.is_string() ? ArchiveText::Shown(rValue.get<std::string>()) : ToText(rValue);
}

using CRows = std::vector<std::vector<std::string>>;

void AddRow(const std::string& rWhere, const std::string& rName, const Json& rValue, CRows& rRows) {
    const CProperty* const pProperty = FindProperty(rName);
    if (pProperty == nullptr) {
        rRows.push_back({rWhere + rName, ShowValue(rValue), "", ""});
        return;
    }
    const std::string Unit = *pProperty->m_pUnit == '\0' ? "" : " " + GetText(pProperty->m_pUnit);
    const char* const pLabel = pProperty->m_Item.m_pTextKey;
    rRows.push_back({rWhere + rName, ShowValue(rValue) + Unit,
                     pProperty->IsForPeople() ? DescribeValues(*pProperty) : GetText("CONFIGURE_FOUND_OUT"),
                     *pLabel == '\0' ? "" : GetText(pLabel)});
}

void AddRows(const std::string& rWhere, const Json& rObject, bool bCalibrated, CRows& rRows) {
    for (const auto& [rName, rValue] : rObject.items()) {
        const CProperty* const pProperty = FindProperty(rName);
        const bool bOfCalibration = pProperty != nullptr &&
                                    pProperty->m_Role == CProperty::Role::eCalibration &&
                                    pProperty->m_Type != PreBalDB::PropertyType::eFlag;
        if (rName != "planes" && rName != "iso" && (bCalibrated || !bOfCalibration)) {
            AddRow(rWhere, rName, rValue, rRows);
        }
    }
}

/// A value as people type it: what reads as JSON counts as such, else it is a text.
nlohmann::json ReadValue(const std::string& rName, const std::string& rText) {
    const CProperty* const pProperty = FindProperty(rName);
    const bool bText = pProperty != nullptr && pProperty->m_Type == PreBalDB::PropertyType::eText;
    const nlohmann::json Value = ParseShallow(rText);
    return bText || Value.is_discarded() ? nlohmann::json(rText) : Value;
}

struct CSetting {
    std::string m_Name;
    std::string m_Value;
};

/// False, with a line in rError, if the text isn't "NAME=VALUE".
bool Split(const std::string& rText, CSetting& rSetting, std::string& rError) {
    const std::size_t Equals = rText.rfind('=');
    if (Equals == std::string::npos || Equals == 0) {
        rError = Fill("CONFIGURE_NO_SETTING", {rText});
        return false;
    }
    rSetting = {rText.substr(0, Equals), rText.substr(Equals + 1)};
    return true;
}

bool IsOfPlanes(const Json& rNow, const std::string& rName) {
    const CProperty* const pProperty = FindProperty(rName);
    if (pProperty == nullptr) {
        return false;
    }
    // Also those of the other means, to which "method" may just be about to lead.
    return std::ranges::any_of(PreBalDB::ConfigurationFields::GetLayouts(),
                               [&](const auto& rLayout) {
                                   return !rLayout.m_Part.empty() &&
                                          std::ranges::find(rLayout.m_Properties, pProperty->m_pName,
                                                            &CProperty::m_pName) !=
                                              rLayout.m_Properties.end();
                               }) &&
           !rNow.contains(rName);
}

}  // namespace

nlohmann::ordered_json MakeListEntry(const std::string& rMachine) {
    Json Entry = {{"machine", rMachine}};
    CConfigurationCatalog Catalog(PreBalDB::GetDatabaseConnection());
    Json Configurations = Json::array();
    if (const auto Key = CMachineKey::Parse(rMachine)) {
        Entry["mode"] = Key->GetModeName();
        CConfigurationChange Machine(rMachine, CConfigurationEdit::From::eFile);
        for (const CConfigurationCatalog::CEntry& rEach : Catalog.GetConfigurations(rMachine)) {
            const Json Object = Machine.ReadConfiguration(rEach.m_Name, true);
            Json Methods = Json::array();
            for (const Json& rPlane : Object["planes"]) {
                Methods.push_back(rPlane["method"]);
            }
            Configurations.push_back({{"name", rEach.m_Name},
                                      {"calibrated", Object["calibrated"]},
                                      {"methods", std::move(Methods)},
                                      {"revision", rEach.m_Revision}});
        }
    }
    Entry["configurations"] = std::move(Configurations);
    Entry["tables"] = Json::array();
    for (const CConfigurationCatalog::CEntry& rEach : Catalog.GetScrewTables(rMachine)) {
        Entry["tables"].push_back(rEach.m_Name);
    }
    return Entry;
}

std::string MakeList(const nlohmann::ordered_json& rEntries) {
    std::string Text;
    for (const Json& rEntry : rEntries) {
        Text += ArchiveText::Shown(rEntry["machine"]) + "\n";
        CRows Rows;
        for (const Json& rEach : rEntry["configurations"]) {
            std::vector<std::string> Methods = rEach["methods"];
            Rows.push_back(
                {"  " + ArchiveText::Shown(rEach["name"]), rEntry.value("mode", ""), Join(Methods),
                 GetText(rEach["calibrated"] == true ? "CONFIGURE_CALIBRATED" : "CONFIGURE_NOT_CALIBRATED")});
        }
        std::vector<std::string> Tables = rEntry["tables"];
        Text += MakeTable(Rows) + "  " + Fill("CONFIGURE_TABLES", {ArchiveText::Shown(Join(Tables))}) + "\n";
    }
    return Text;
}

std::string MakeSheet(const nlohmann::ordered_json& rObject) {
    CRows Rows;
    if (CConfigurationChange::IsScrewTable(rObject)) {
        Rows.push_back({GetText("NAME"), "g"});
        for (const Json& rScrew : rObject["screws"]) {
            Rows.push_back({ShowValue(rScrew["name"]), ToText(rScrew["grams"])});
        }
        return MakeTable(Rows);
    }
    const bool bCalibrated = rObject["calibrated"] == true;
    AddRows("", rObject, bCalibrated, Rows);
    for (std::size_t i = 0; i < rObject["planes"].size(); ++i) {
        const std::string Where = rObject["planes"].size() == 2 ? "plane" + std::to_string(i + 1) + "." : "";
        AddRows(Where, rObject["planes"][i], bCalibrated, Rows);
    }
    if (rObject.contains("iso")) {
        for (const auto& [rName, rValue] : rObject["iso"].items()) {
            Rows.push_back({"iso." + rName, ToText(rValue), "", ""});
        }
    }
    return MakeTable(Rows);
}

nlohmann::json MakeSettings(const nlohmann::ordered_json& rNow, const std::vector<std::string>& rValues,
                            std::string& rError) {
    nlohmann::json Wanted = {{"name", rNow["name"]}};
    const std::size_t nPlanes = rNow["planes"].size();
    nlohmann::json Planes = nlohmann::json(std::vector<nlohmann::json>(nPlanes, nlohmann::json::object()));
    for (const std::string& rText : rValues) {
        CSetting Setting;
        if (!Split(rText, Setting, rError)) {
            return {};
        }
        const std::size_t Point = Setting.m_Name.find('.');
        const std::string Where = Point == std::string::npos ? "" : Setting.m_Name.substr(0, Point);
        const std::string Name = Setting.m_Name.substr(Where.empty() ? 0 : Point + 1);
        if (FindProperty(Name) == nullptr && Where.empty() && (rNow.contains(Name) || Name == "iso")) {
            rError = Fill("CONFIGURE_SET_NOT_HERE", {Name});
            return {};
        }
        const nlohmann::json Value = ReadValue(Name, Setting.m_Value);
        const std::size_t Plane = Where == "plane1" ? 0 : Where == "plane2" ? 1 : nPlanes;
        if (Where == "iso") {
            Wanted["iso"][Name] = Value;
        } else if (nPlanes == 2 && Plane < nPlanes) {
            Planes[Plane][Name] = Value;
        } else if (!Where.empty()) {
            rError =
                Fill("CONFIGURE_NO_PLACE", {Setting.m_Name, nPlanes == 2 ? "plane1, plane2, iso" : "iso"});
            return {};
        } else if (!IsOfPlanes(rNow, Name)) {
            Wanted[Name] = Value;
        } else if (nPlanes == 1) {
            Planes[0][Name] = Value;
        } else {
            rError = Fill("CONFIGURE_WHICH_PLANE", {Name, Name, Name});
            return {};
        }
    }
    Wanted["planes"] = std::move(Planes);
    return Wanted;
}

nlohmann::json MakeScrews(const nlohmann::ordered_json& rNow, const std::vector<std::string>& rValues,
                          std::string& rError) {
    nlohmann::json Screws = rNow["screws"];
    for (const std::string& rText : rValues) {
        CSetting Setting;
        if (!Split(rText, Setting, rError)) {
            return {};
        }
        const nlohmann::json Grams = ParseShallow(Setting.m_Value);
        if (!Grams.is_number()) {
            rError =
                Fill("CONFIGURE_WRONG_VALUE", {Setting.m_Name, Setting.m_Value, GetText("CONFIGURE_GRAMS")});
            return {};
        }
        const auto IsNamed = [&Setting](const nlohmann::json& rScrew) {
            return rScrew["name"] == Setting.m_Name;
        };
        const auto nNamed = std::ranges::count_if(Screws, IsNamed);
        if (Grams == 0.0) {
            if (nNamed == 0) {
                rError = Fill("CONFIGURE_NO_SCREW", {Setting.m_Name});
                return {};
            }
            Screws.erase(std::remove_if(Screws.begin(), Screws.end(), IsNamed), Screws.end());
        } else if (nNamed == 1) {
            (*std::ranges::find_if(Screws, IsNamed))["grams"] = Grams;
        } else if (nNamed == 0) {
            Screws.push_back({{"name", Setting.m_Name}, {"grams", Grams}});
        } else {
            rError = Fill("CONFIGURE_SEVERAL_SCREWS", {Setting.m_Name});
            return {};
        }
    }
    return {{"table", rNow["table"]}, {"screws", std::move(Screws)}};
}

}  // namespace ConfigureText
