#include "console/configurationchange.h"

#include <algorithm>

#include "console/archivetext.h"
#include "console/command.h"
#include "console/configurationcatalog.h"
#include "console/configurationjson.h"
#include "console/isoaccess.h"
#include "console/isojson.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::CFieldValues;
using PreBalDB::StoreTexts::Fill;
using PreBalDB::StoreTexts::Join;
namespace ConfigurationFields = PreBalDB::ConfigurationFields;

namespace {

using Json = nlohmann::ordered_json;

CMachineKey ParseKey(const std::string& rMachine) {
    const auto Key = CMachineKey::Parse(rMachine);
    if (!Key) {
        throw CCommandError(Fill("CONFIGURE_BAD_KEY", {ArchiveText::Shown(rMachine)}));
    }
    return *Key;
}

std::array<bool, 2> GetBalanced(const CMachineKey& rKey) {
    return {rKey.IsBalanced(0), rKey.IsBalanced(1)};
}

/// What is wrong with the name of something new; empty if nothing is.
std::string CheckName(const std::string& rName, const std::string& rWhat) {
    try {
        PreBalDB::CheckNewName(rName, rWhat);
        return {};
    } catch (const PreBalDB::CSqlError& rError) {
        return rError.what();
    }
}

/// "planes[0].holes" of "/planes/0/holes".
std::string ShowPlace(const std::string& rPointer) {
    std::string Name;
    for (std::size_t i = 1; i < rPointer.size(); ++i) {
        const std::size_t End = std::min(rPointer.find('/', i), rPointer.size());
        const std::string Part = rPointer.substr(i, End - i);
        const bool bIndex = Part.find_first_not_of("0123456789") == std::string::npos;
        Name += bIndex ? "[" + Part + "]" : (Name.empty() ? "" : ".") + Part;
        i = End;
    }
    return Name;
}

/// What is another value than before, a line each.
void AddDifferences(const std::string& rWhat, const Json& rBefore, const Json& rNow,
                    std::vector<std::string>& rLines) {
    const Json Before = rBefore.flatten();
    const Json Now = rNow.flatten();
    for (const auto& [rPointer, rValue] : Now.items()) {
        const Json Was = Before.value(rPointer, Json());
        if (rValue != Was) {
            rLines.push_back(Was.is_null()
                                 ? Fill("CONFIGURE_IS_NEW", {rWhat, ShowPlace(rPointer), ToText(rValue)})
                                 : Fill("CONFIGURE_IS_CHANGED",
                                        {rWhat, ShowPlace(rPointer), ToText(rValue), ToText(Was)}));
        }
    }
}

/// The properties that people set, and whether there is a calibration.
Json KeepForPeople(const Json& rObject) {
    Json Kept = rObject;
    const auto Clean = [](Json& rPart) {
        for (const PreBalDB::CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
            for (const PreBalDB::CProperty* const pProperty : rLayout.m_Properties) {
                if (!pProperty->IsForPeople() && pProperty->m_Type != PreBalDB::PropertyType::eFlag) {
                    rPart.erase(pProperty->m_pName);
                }
            }
        }
    };
    Clean(Kept);
    for (Json& rPlane : Kept["planes"]) {
        Clean(rPlane);
    }
    return Kept;
}

}  // namespace

std::vector<nlohmann::json> CConfigurationChange::ReadObjects(const std::string& rText) {
    nlohmann::json File = ParseShallow(rText);
    std::vector<nlohmann::json> Objects;
    if (File.is_object()) {
        Objects.push_back(std::move(File));
    } else if (File.is_array() &&
               std::ranges::all_of(File, [](const auto& rEach) { return rEach.is_object(); })) {
        Objects.assign(File.begin(), File.end());
    }
    return Objects;
}

CConfigurationChange::CConfigurationChange(const std::string& rMachine, CConfigurationEdit::From Source)
    : m_Machine(rMachine), m_Key(ParseKey(rMachine)), m_Source(Source), m_Database(rMachine) {}

std::vector<std::string> CConfigurationChange::GetTables() const {
    std::vector<std::string> Names;
    for (const std::string& rName : m_Database.GetScrewTableNames()) {
        Names.push_back(rName);
    }
    for (const auto& [rName, rScrews] : m_NewTables) {
        if (std::ranges::find(Names, rName) == Names.end()) {
            Names.push_back(rName);
        }
    }
    return Names;
}

std::int64_t CConfigurationChange::GetRevision(const std::string& rName) const {
    for (const CConfigurationCatalog::CEntry& rEntry :
         CConfigurationCatalog(PreBalDB::GetDatabaseConnection()).GetConfigurations(m_Machine)) {
        if (rEntry.m_Name == rName) {
            return rEntry.m_Revision;
        }
    }
    return 0;
}

std::string CConfigurationChange::Add(const nlohmann::json& rObject) {
    return IsScrewTable(rObject) ? AddScrewTable(rObject) : AddConfiguration(rObject);
}

std::string CConfigurationChange::AddScrewTable(const nlohmann::json& rObject) {
    for (const auto& [rName, rValue] : rObject.items()) {
        if (rName != "table" && rName != "screws" && rName != "machine") {
            return Fill("CONFIGURE_NO_PROPERTY", {rName, "table, screws, machine"});
        }
    }
    if (!rObject["table"].is_string()) {
        return Fill("CONFIGURE_WRONG_VALUE",
                    {"table", ToText(rObject["table"]), GetText("CONFIGURE_A_TEXT")});
    }
    const std::string Name = rObject["table"];
    std::string Error = CheckName(Name, "a screw table");
    if (const auto Screws = Error.empty() ? ScrewTableJson::Read(rObject, Error) : std::nullopt) {
        m_NewTables.emplace_back(Name, *Screws);
    }
    return Error;
}

/// Whether what the object says of itself fits the machine.
std::string CConfigurationChange::CheckKind(const nlohmann::json& rObject) const {
    const nlohmann::json Name = rObject.value("name", nlohmann::json());
    if (!Name.is_string()) {
        return Fill("CONFIGURE_WRONG_VALUE", {"name", ToText(Name), GetText("CONFIGURE_A_TEXT")});
    }
    const nlohmann::json Mode = rObject.value("mode", nlohmann::json(m_Key.GetModeName()));
    if (Mode != m_Key.GetModeName()) {
        return Fill("CONFIGURE_WRONG_MODE", {ToText(Mode), m_Machine, m_Key.GetModeName()});
    }
    const std::int64_t Revision = GetRevision(Name);
    if (Revision == 0) {
        return CheckName(Name, "a configuration");
    }
    // Of another machine it tells nothing.
    const bool bOfThis = rObject.value("machine", nlohmann::json(m_Machine)) == m_Machine;
    const nlohmann::json Exported = rObject.value("revision", nlohmann::json(Revision));
    return bOfThis && Exported != Revision
               ? Fill("CONFIGURE_OTHER_REVISION", {Name, ToText(Exported), std::to_string(Revision)})
               : std::string();
}

std::string CConfigurationChange::AddConfiguration(const nlohmann::json& rObject) {
    if (std::string Error = CheckKind(rObject); !Error.empty()) {
        return Error;
    }
    const std::string Name = rObject["name"];
    CConfigurationEdit Edit(ConfigurationFields::Read(m_Database.ReadConfiguration(Name)), m_Key,
                            GetTables());
    if (const std::string& rFailure = m_Database.GetOutcome().m_Failure; !rFailure.empty()) {
        return rFailure;
    }
    std::string Error = Edit.Apply(rObject, m_Source);
    if (Error.empty() && rObject.contains("iso")) {
        MergeIso(Name, rObject["iso"], Error);
    }
    if (Error.empty()) {
        m_Configurations.push_back(rObject);
    }
    return Error;
}

std::optional<CIsoData> CConfigurationChange::MergeIso(const std::string& rName, const nlohmann::json& rIso,
                                                       std::string& rError) const {
    if (!rIso.is_object()) {
        return IsoJson::Read(rIso, GetBalanced(m_Key), rError);
    }
    nlohmann::json Merged = IsoJson::Write(IsoAccess::Read(m_Machine, rName), GetBalanced(m_Key));
    Merged.update(rIso);
    return IsoJson::Read(Merged, GetBalanced(m_Key), rError);
}

CConfigurationChange::CWritten CConfigurationChange::Write() {
    CWritten Written;
    for (const auto& [rName, rScrews] : m_NewTables) {
        WriteScrewTable(rName, rScrews, Written);
    }
    for (const nlohmann::json& rObject : m_Configurations) {
        WriteConfiguration(rObject, Written);
    }
    return Written;
}

void CConfigurationChange::WriteScrewTable(const std::string& rName, const ScrewTableJson::CScrews& rScrews,
                                           CWritten& rWritten) {
    const std::string What = Fill("CONFIGURE_TABLE", {rName});
    PreBalDB::CScrewTableEntry& rTable = m_Database.ReadScrewTable(rName);
    const Json Before = ScrewTableJson::Write(rName, rTable.GetScrewArray());
    rTable.SetScrewArray(rScrews);
    const bool bWritten = m_Database.WriteScrewTable() != 0;
    const PreBalDB::CStoreOutcome& rOutcome = m_Database.GetOutcome();
    if (!bWritten || !rOutcome.m_Conflicts.empty()) {
        rWritten.m_bWhole = false;
        rWritten.m_Lines.push_back(bWritten ? Fill("CONFIGURE_CONFLICT", {What, rName})
                                            : Fill("CONFIGURE_NOT_WRITTEN", {What, rOutcome.m_Failure}));
        return;
    }
    AddDifferences(What, Before, ScrewTableJson::Write(rName, rScrews), rWritten.m_Lines);
}

void CConfigurationChange::WriteConfiguration(const nlohmann::json& rObject, CWritten& rWritten) {
    const std::string Name = rObject["name"];
    const std::string What = Fill("CONFIGURE_CONFIGURATION", {Name});
    const Json Before = GetRevision(Name) == 0 ? Json::object() : ReadConfiguration(Name, false);
    // Read once more: somebody may have changed it meanwhile, and what isn't named here stays as they left
    // it.
    PreBalDB::CPreBalBaseTableEntry& rEntry = m_Database.ReadConfiguration(Name);
    const CFieldValues Stored = ConfigurationFields::Read(rEntry);
    CConfigurationEdit Edit(Stored, m_Key, GetTables());
    std::string Error = Edit.Apply(rObject, m_Source);
    const bool bCleared = rEntry.IsCalibrated() != 0 && Edit.HasOtherBasis(Stored);
    if (Error.empty()) {
        ConfigurationFields::Write(Edit.GetValues(), rEntry);
        if (bCleared) {
            rEntry.SetIsCalibrated(0);
        }
        Error = m_Database.WriteConfiguration() != 0 ? "" : m_Database.GetOutcome().m_Failure;
    }
    if (!Error.empty()) {
        rWritten.m_bWhole = false;
        rWritten.m_Lines.push_back(Fill("CONFIGURE_NOT_WRITTEN", {What, Error}));
        return;
    }
    std::vector<std::string> Conflicts;
    for (const std::string& rField : m_Database.GetOutcome().m_Conflicts) {
        Conflicts.push_back(ConfigurationFields::GetLabel(rField));
    }
    if (rObject.contains("iso")) {
        WriteIso(Name, rObject["iso"], rWritten);
    }
    AddDifferences(What, Before, ReadConfiguration(Name, false), rWritten.m_Lines);
    if (bCleared) {
        rWritten.m_Lines.push_back(Fill("CONFIGURE_CALIBRATION_CLEARED", {What}));
    }
    if (!Conflicts.empty()) {
        rWritten.m_bWhole = false;
        rWritten.m_Lines.push_back(Fill("CONFIGURE_CONFLICT", {What, Join(Conflicts)}));
    }
}

void CConfigurationChange::WriteIso(const std::string& rName, const nlohmann::json& rIso,
                                    CWritten& rWritten) const {
    std::string Error;
    const auto Data = MergeIso(rName, rIso, Error);
    Error = Data ? IsoAccess::Write(m_Machine, rName, *Data) : Error;
    if (!Error.empty()) {
        rWritten.m_bWhole = false;
        rWritten.m_Lines.push_back(Fill("CONFIGURE_NOT_WRITTEN", {"iso", Error}));
    }
}

nlohmann::ordered_json CConfigurationChange::ReadConfiguration(const std::string& rName, bool bAll) {
    Json Object = ConfigurationToJson(m_Machine, m_Key.GetModeName(), rName,
                                      ConfigurationFields::Read(m_Database.ReadConfiguration(rName)));
    if (const std::string& rFailure = m_Database.GetOutcome().m_Failure; !rFailure.empty()) {
        throw CCommandError(rFailure, 1);
    }
    Object = bAll ? Object : KeepForPeople(Object);
    if (Json Iso = IsoJson::Write(IsoAccess::Read(m_Machine, rName), GetBalanced(m_Key)); !Iso.empty()) {
        Object["iso"] = std::move(Iso);
    }
    return Object;
}

nlohmann::ordered_json CConfigurationChange::ReadScrewTable(const std::string& rName) {
    return ScrewTableJson::Write(rName, m_Database.ReadScrewTable(rName).GetScrewArray());
}
