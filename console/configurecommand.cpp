#include "console/configurecommand.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>

#include "console/archivetext.h"
#include "console/command.h"
#include "console/configurationcatalog.h"
#include "console/configurationchange.h"
#include "console/configurationjson.h"
#include "console/configuretarget.h"
#include "console/configuretext.h"
#include "console/optionchecks.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;
using PreBalDB::StoreTexts::Join;

namespace {

using Json = nlohmann::ordered_json;
using From = CConfigurationEdit::From;

constexpr int DONE = 0;
constexpr int NOTHING_FOUND = 1;
constexpr const char* STANDARD_STREAM = "-";

void Print(const std::string& rText) {
    std::fwrite(rText.data(), 1, rText.size(), stdout);
}

std::string ReadAll(const std::string& rFile) {
    std::ostringstream Text;
    if (rFile == STANDARD_STREAM) {
        Text << std::cin.rdbuf();
        return Text.str();
    }
    std::ifstream Stream(rFile, std::ios::binary);
    Text << Stream.rdbuf();
    if (!Stream) {
        throw CCommandError(Fill("CONFIGURE_FILE_NOT_READ", {rFile}));
    }
    return Text.str();
}

/// The command's options, and what it does with them.
class CConfigureCommand {
public:
    explicit CConfigureCommand(CCommandFrame& rFrame);
    int Run(const CConsoleInstallation& rInstallation);

private:
    CLI::App* Add(const char* pName, const char* pHelp, int (CConfigureCommand::*pDo)());
    void AddNames(CLI::App& rApp, const char* pHelp);
    int List();
    int Show();
    int Set();
    int Export();
    int Import();

    std::string FindMachine(const std::string& rUsual = {}) {
        return m_Target.Find(*m_pInstallation, rUsual);
    }
    /// Throws CCommandError if the machine has none of the name.
    static void RequireEntry(const std::vector<CConfigurationCatalog::CEntry>& rEntries,
                             const std::string& rName, const char* pTextKey);
    void RequireNamed(const std::string& rMachine) const;
    Json ReadNamed(const std::string& rMachine, bool bAll) const;
    void AddExported(const std::string& rMachine, Json& rObjects) const;
    int Carry(const std::vector<std::unique_ptr<CConfigurationChange>>& rChanges) const;

    CCommandFrame& m_rFrame;
    const CConsoleInstallation* m_pInstallation = nullptr;
    CConfigureTarget m_Target;
    std::vector<std::pair<CLI::App*, int (CConfigureCommand::*)()>> m_Deeds;
    std::string m_Name;
    std::string m_Table;
    std::string m_File = STANDARD_STREAM;
    std::vector<std::string> m_Values;
};

CConfigureCommand::CConfigureCommand(CCommandFrame& rFrame) : m_rFrame(rFrame) {
    rFrame.OfferJson();
    rFrame.GetApp().require_subcommand(1);
    m_Target.AddOptions(rFrame.GetApp());
    Add("list", "Lists machines, their configurations and screw tables", &CConfigureCommand::List);
    AddNames(*Add("show", "Shows a configuration, or a screw table", &CConfigureCommand::Show), "To show");
    CLI::App& rSet =
        *Add("set", "Sets values of a configuration, or screws of a table", &CConfigureCommand::Set);
    AddNames(rSet, "To set");
    rSet.add_option(
            "VALUES", m_Values,
            "NAME=VALUE, by the names that show gives: rpm_tolerance=10 rotation=ccw method=screws "
            "holes=12 iso.grade=2.5; of two planes plane1.method=screws. With --table a screw and its "
            "grams, 0 to take it out: M6x12=2.5")
        ->required()
        ->type_name("NAME=VALUE");
    CLI::App& rExport =
        *Add("export", "Writes configurations and their screw tables as JSON", &CConfigureCommand::Export);
    AddNames(rExport, "To export; default all");
    rExport.add_option("FILE", m_File, "To write; default standard output")->check(RefuseEmpty);
    Add("import", "Sets what a JSON file holds, as export writes it", &CConfigureCommand::Import)
        ->add_option("FILE", m_File, "To read; - for standard input")
        ->check(RefuseEmpty)
        ->required();
}

CLI::App* CConfigureCommand::Add(const char* pName, const char* pHelp, int (CConfigureCommand::*pDo)()) {
    CLI::App* const pApp = m_rFrame.GetApp().add_subcommand(pName, pHelp);
    pApp->fallthrough();  // the options that all have may stand behind it
    m_Deeds.emplace_back(pApp, pDo);
    return pApp;
}

void CConfigureCommand::AddNames(CLI::App& rApp, const char* pHelp) {
    CLI::Option* const pTable = rApp.add_option("--table", m_Table, std::string(pHelp) + ": that screw table")
                                    ->check(RefuseEmpty)
                                    ->type_name("NAME");
    rApp.add_option("--name", m_Name, std::string(pHelp) + ": that configuration")
        ->check(RefuseEmpty)
        ->excludes(pTable)
        ->type_name("NAME");
}

int CConfigureCommand::Run(const CConsoleInstallation& rInstallation) {
    m_pInstallation = &rInstallation;
    for (const auto& [pApp, pDo] : m_Deeds) {
        if (pApp->parsed()) {
            return (this->*pDo)();
        }
    }
    return NOTHING_FOUND;
}

int CConfigureCommand::List() {
    const std::vector<std::string> Machines =
        m_Target.IsNamed() ? std::vector<std::string>{FindMachine()} : CConfigureTarget::GetMachines();
    Json Objects = Json::array();
    for (const std::string& rMachine : Machines) {
        Objects.push_back(ConfigureText::MakeListEntry(rMachine));
    }
    if (m_rFrame.IsJson()) {
        Print(ToText(Objects, 2) + "\n");
    } else if (Machines.empty()) {
        Print(GetText("CONFIGURE_EMPTY") + "\n");
    } else {
        Print(ConfigureText::MakeList(Objects));
    }
    return Machines.empty() ? NOTHING_FOUND : DONE;
}

void CConfigureCommand::RequireEntry(const std::vector<CConfigurationCatalog::CEntry>& rEntries,
                                     const std::string& rName, const char* pTextKey) {
    std::vector<std::string> Names;
    Names.reserve(rEntries.size());
    for (const CConfigurationCatalog::CEntry& rEntry : rEntries) {
        Names.push_back(rEntry.m_Name);
    }
    if (std::ranges::find(Names, rName) == Names.end()) {
        throw CCommandError(Fill(pTextKey, {ArchiveText::Shown(rName), ArchiveText::Shown(Join(Names))}),
                            NOTHING_FOUND);
    }
}

void CConfigureCommand::RequireNamed(const std::string& rMachine) const {
    CConfigurationCatalog Catalog(PreBalDB::GetDatabaseConnection());
    if (m_Table.empty()) {
        RequireEntry(Catalog.GetConfigurations(rMachine), m_Name, "CONFIGURE_NO_CONFIGURATION");
    } else {
        RequireEntry(Catalog.GetScrewTables(rMachine), m_Table, "CONFIGURE_NO_SUCH_TABLE");
    }
}

Json CConfigureCommand::ReadNamed(const std::string& rMachine, bool bAll) const {
    RequireNamed(rMachine);
    CConfigurationChange Machine(rMachine, From::eFile);
    if (!m_Table.empty()) {
        return Machine.ReadScrewTable(m_Table);
    }
    Json Object = Machine.ReadConfiguration(m_Name, bAll);
    Object["revision"] = Machine.GetRevision(m_Name);
    return Object;
}

int CConfigureCommand::Show() {
    const std::string Machine = FindMachine();
    m_Name = m_Name.empty() ? PreBalDB::DEFAULT_CONFIGURATION : m_Name;
    const Json Object = ReadNamed(Machine, true);
    Print(m_rFrame.IsJson() ? ToText(Object, 2) + "\n" : ConfigureText::MakeSheet(Object));
    return DONE;
}

int CConfigureCommand::Set() {
    const std::string Machine = FindMachine();
    m_Name = m_Name.empty() ? PreBalDB::DEFAULT_CONFIGURATION : m_Name;
    const Json Now = ReadNamed(Machine, true);
    std::string Error;
    const nlohmann::json Wanted = m_Table.empty() ? ConfigureText::MakeSettings(Now, m_Values, Error)
                                                  : ConfigureText::MakeScrews(Now, m_Values, Error);
    std::vector<std::unique_ptr<CConfigurationChange>> Changes;
    Changes.push_back(std::make_unique<CConfigurationChange>(Machine, From::eCommand));
    Error = Error.empty() ? Changes.back()->Add(Wanted) : Error;
    if (!Error.empty()) {
        throw CCommandError(Error);
    }
    return Carry(Changes);
}

/// Configurations with the screw tables that they use, which go first.
void CConfigureCommand::AddExported(const std::string& rMachine, Json& rObjects) const {
    CConfigurationCatalog Catalog(PreBalDB::GetDatabaseConnection());
    CConfigurationChange Machine(rMachine, From::eFile);
    Json Configurations = Json::array();
    std::vector<std::string> Tables;
    for (const CConfigurationCatalog::CEntry& rEntry : Catalog.GetConfigurations(rMachine)) {
        if (!m_Name.empty() && rEntry.m_Name != m_Name) {
            continue;
        }
        Json Object = Machine.ReadConfiguration(rEntry.m_Name, false);
        Object["revision"] = rEntry.m_Revision;
        for (const Json& rPlane : Object["planes"]) {
            const std::string Table = rPlane.value("table", std::string());
            if (!Table.empty() && std::ranges::find(Tables, Table) == Tables.end()) {
                Tables.push_back(Table);
            }
        }
        Configurations.push_back(std::move(Object));
    }
    for (const std::string& rTable : Tables) {
        Json Object = Machine.ReadScrewTable(rTable);
        Object["machine"] = rMachine;
        rObjects.push_back(std::move(Object));
    }
    for (Json& rObject : Configurations) {
        rObjects.push_back(std::move(rObject));
    }
}

int CConfigureCommand::Export() {
    Json Objects = Json::array();
    if (!m_Table.empty() || !m_Name.empty()) {
        const std::string Machine = FindMachine();
        RequireNamed(Machine);
        if (m_Table.empty()) {
            AddExported(Machine, Objects);
        } else {
            Objects.push_back(ReadNamed(Machine, false));
        }
    } else {
        const std::vector<std::string> Machines =
            m_Target.IsNamed() ? std::vector<std::string>{FindMachine()} : CConfigureTarget::GetMachines();
        for (const std::string& rMachine : Machines) {
            AddExported(rMachine, Objects);
        }
    }
    if (Objects.empty()) {
        throw CCommandError(GetText("CONFIGURE_EMPTY"), NOTHING_FOUND);
    }
    const std::string Text = ToText(Objects.size() == 1 ? Objects[0] : Objects, 2) + "\n";
    if (m_File == STANDARD_STREAM) {
        Print(Text);
        return DONE;
    }
    std::ofstream Stream(m_File, std::ios::binary);
    Stream << Text << std::flush;
    if (!Stream) {
        throw CCommandError(
            Fill("COMMAND_FILE_NOT_WRITTEN", {m_File, GetText("ARCHIVE_COMMAND_LOOK_AT_DIRECTORY")}),
            NOTHING_FOUND);
    }
    return DONE;
}

int CConfigureCommand::Import() {
    const std::vector<nlohmann::json> Objects = CConfigurationChange::ReadObjects(ReadAll(m_File));
    if (Objects.empty()) {
        throw CCommandError(Fill("CONFIGURE_NO_OBJECTS", {m_File}));
    }
    std::vector<std::string> Order;
    std::map<std::string, std::unique_ptr<CConfigurationChange>> Changes;
    for (const bool bTables : {true, false}) {
        for (std::size_t i = 0; i < Objects.size(); ++i) {
            const nlohmann::json& rObject = Objects[i];
            if (CConfigurationChange::IsScrewTable(rObject) != bTables) {
                continue;
            }
            const nlohmann::json Named = rObject.value("machine", nlohmann::json());
            const std::string Machine = FindMachine(Named.is_string() ? Named.get<std::string>() : "");
            if (!Changes.contains(Machine)) {
                Order.push_back(Machine);
                Changes[Machine] = std::make_unique<CConfigurationChange>(Machine, From::eFile);
            }
            if (const std::string Error = Changes[Machine]->Add(rObject); !Error.empty()) {
                throw CCommandError(Fill("CONFIGURE_IN_FILE", {m_File, std::to_string(i + 1), Error}));
            }
        }
    }
    std::vector<std::unique_ptr<CConfigurationChange>> InOrder;
    InOrder.reserve(Order.size());
    for (const std::string& rMachine : Order) {
        InOrder.push_back(std::move(Changes[rMachine]));
    }
    return Carry(InOrder);
}

int CConfigureCommand::Carry(const std::vector<std::unique_ptr<CConfigurationChange>>& rChanges) const {
    bool bWhole = true;
    std::vector<std::string> Lines;
    for (const std::unique_ptr<CConfigurationChange>& rChange : rChanges) {
        const CConfigurationChange::CWritten Written = rChange->Write();
        bWhole = bWhole && Written.m_bWhole;
        Lines.insert(Lines.end(), Written.m_Lines.begin(), Written.m_Lines.end());
    }
    if (m_rFrame.IsJson()) {
        Print(ToText({{"whole", bWhole}, {"lines", Lines}}, 2) + "\n");
    } else if (Lines.empty()) {
        Print(GetText("CONFIGURE_NOTHING_TO_CHANGE") + "\n");
    }
    for (const std::string& rLine : m_rFrame.IsJson() ? std::vector<std::string>() : Lines) {
        Print(ArchiveText::Shown(rLine) + "\n");
    }
    return bWhole ? DONE : NOTHING_FOUND;
}

}  // namespace

int RunConfigure(int argc, const char* const* argv) {
    CCommandFrame Frame("configure");
    CConfigureCommand Command(Frame);
    return Frame.Run(argc, argv,
                     [&](const CConsoleInstallation& rInstallation) { return Command.Run(rInstallation); });
}
