#include "console/archivecommand.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "archive/archivedrun.h"
#include "archive/runstore.h"
#include "console/archivejson.h"
#include "console/archivetext.h"
#include "console/calibrationrestore.h"
#include "console/command.h"
#include "console/configurationjson.h"
#include "console/optionchecks.h"
#include "console/reportfile.h"
#include "console/rotorname.h"
#include "console/texttable.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;
using namespace ArchiveText;

namespace {

constexpr int DONE = 0;
constexpr int NOTHING_FOUND = 1;
/// Of a list for people unless told otherwise; programs get all.
constexpr std::size_t USUAL_LIMIT = 50;

void Print(const std::string& rText) {
    std::fwrite(rText.data(), 1, rText.size(), stdout);
}

/// The command's options, and what it does with them.
class CArchiveCommand {
public:
    explicit CArchiveCommand(CCommandFrame& rFrame);
    int Run();

private:
    CLI::App* Add(const char* pName, const char* pHelp, int (CArchiveCommand::*pDo)());
    void AddFilter(CLI::App& rApp);
    void AddId(CLI::App& rApp);
    int List();
    int Show();
    int Report();
    int Export();
    int Prune();
    int RestoreCalibration();

    CRunFilter GetFilter() const;
    CRunStore& GetStore();
    CRunRecord LoadRun();

    CCommandFrame& m_rFrame;
    std::vector<std::pair<CLI::App*, int (CArchiveCommand::*)()>> m_Deeds;
    std::unique_ptr<CRunStore> m_pStore;
    std::string m_Machine;
    std::string m_Rotor;
    std::string m_Since;
    std::string m_Until;
    std::string m_Result;
    std::string m_Before;
    std::string m_ReportFile;
    std::size_t m_nLimit = 0;
    std::size_t m_nKeep = 0;
    std::int64_t m_Id = 0;
    bool m_bCsv = false;
    bool m_bReadingsOnly = false;
    CLI::Option* m_pKeep = nullptr;
    std::vector<CLI::Option*> m_Limits;
};

CArchiveCommand::CArchiveCommand(CCommandFrame& rFrame) : m_rFrame(rFrame) {
    rFrame.OfferJson();
    rFrame.OfferYes();
    rFrame.GetApp().require_subcommand(1);
    CLI::App& rList = *Add("list", "Lists runs, the newest first", &CArchiveCommand::List);
    AddFilter(rList);
    rList.add_flag("--csv", m_bCsv, "Print a table for spreadsheets");
    AddId(*Add("show", "Shows a run", &CArchiveCommand::Show));
    CLI::App& rReport = *Add("report", "Writes the report of a run", &CArchiveCommand::Report);
    AddId(rReport);
    rReport.add_option("--report", m_ReportFile, std::string("File to write, ") + ReportFile::ENDS)
        ->required()
        ->check(CheckReportName)
        ->type_name("FILE");
    CLI::App& rExport =
        *Add("export", "Prints all that is kept of runs, a JSON text a line", &CArchiveCommand::Export);
    AddFilter(rExport);
    rExport.add_flag("--csv", m_bCsv, "Print a line a measurement and plane, for spreadsheets");
    CLI::App& rPrune = *Add("prune", "Removes old runs", &CArchiveCommand::Prune);
    AddFilter(rPrune);
    auto* const pBefore = rPrune.add_option("--before", m_Before, "Those that began before that date")
                              ->check(CheckDate)
                              ->type_name("DATE");
    m_pKeep = rPrune.add_option("--keep", m_nKeep, "All but the newest N")->type_name("N")->excludes(pBefore);
    rPrune.add_flag("--readings-only", m_bReadingsOnly,
                    "Remove their readings and pictures; what was computed of them stays");
    AddId(*Add("restore-calibration", "Puts the calibration of a run back into its configuration",
               &CArchiveCommand::RestoreCalibration));
}

CLI::App* CArchiveCommand::Add(const char* pName, const char* pHelp, int (CArchiveCommand::*pDo)()) {
    CLI::App* const pApp = m_rFrame.GetApp().add_subcommand(pName, pHelp);
    pApp->fallthrough();  // the options that all have may stand behind it
    m_Deeds.emplace_back(pApp, pDo);
    return pApp;
}

void CArchiveCommand::AddFilter(CLI::App& rApp) {
    std::string Outcomes;
    for (const COutcome& rOutcome : GetOutcomes()) {
        Outcomes += (Outcomes.empty() ? "" : " | ") + std::string(rOutcome.m_pName);
    }
    rApp.add_option("--machine", m_Machine, "Runs of that machine, by its key")
        ->check(RefuseEmpty)
        ->type_name("KEY");
    rApp.add_option("--rotor", m_Rotor, "Runs of that rotor, by its name")
        ->check(RefuseEmpty)
        ->type_name("TEXT");
    rApp.add_option("--since", m_Since, "Begun then or later")->check(CheckDate)->type_name("DATE");
    rApp.add_option("--until", m_Until, "Begun before")->check(CheckDate)->type_name("DATE");
    rApp.add_option("--result", m_Result, Outcomes)
        ->check([Outcomes](const std::string& rText) {
            return FindOutcome(rText) != nullptr ? std::string()
                                                 : "\"" + rText + "\" is no result; give " + Outcomes;
        })
        ->type_name("NAME");
    m_Limits.push_back(rApp.add_option("--limit", m_nLimit, "The newest N; 0: all")->type_name("N"));
}

void CArchiveCommand::AddId(CLI::App& rApp) {
    rApp.add_option("ID", m_Id, "The run's number, as list shows it")->required()->check(CLI::PositiveNumber);
}

int CArchiveCommand::Run() {
    for (const auto& [pApp, pDo] : m_Deeds) {
        if (pApp->parsed()) {
            return (this->*pDo)();
        }
    }
    return NOTHING_FOUND;
}

CRunStore& CArchiveCommand::GetStore() {
    if (!IsStoreThere()) {
        throw CCommandError(GetText("ARCHIVE_COMMAND_EMPTY"), NOTHING_FOUND);
    }
    if (m_pStore == nullptr) {
        m_pStore = std::make_unique<CRunStore>(PreBalDB::GetDatabaseConnection());
    }
    return *m_pStore;
}

CRunFilter CArchiveCommand::GetFilter() const {
    CRunFilter Filter;
    Filter.m_Machine = m_Machine;
    Filter.m_Rotor = m_Rotor.empty() ? "" : CleanName(m_Rotor);  // as it was kept
    Filter.m_Since = m_Since.empty() ? std::nullopt : ParseDate(m_Since);
    Filter.m_Until = m_Until.empty() ? std::nullopt : ParseDate(m_Until);
    const COutcome* const pOutcome = FindOutcome(m_Result);
    Filter.m_Result = pOutcome == nullptr ? CRunFilter::Result::eAny : pOutcome->m_Result;
    const bool bLimited = std::ranges::any_of(m_Limits, [](const CLI::Option* p) { return p->count() > 0; });
    Filter.m_nLimit = bLimited ? m_nLimit : 0;
    return Filter;
}

CRunRecord CArchiveCommand::LoadRun() {
    std::optional<CRunRecord> Run = GetStore().Load(m_Id);
    if (!Run) {
        throw CCommandError(Fill("ARCHIVE_COMMAND_NO_SUCH_RUN", {std::to_string(m_Id)}), NOTHING_FOUND);
    }
    return *Run;
}

int CArchiveCommand::List() {
    CRunFilter Filter = GetFilter();
    const bool bForPeople = !m_rFrame.IsJson() && !m_bCsv;
    const bool bLimited = std::ranges::any_of(m_Limits, [](const CLI::Option* p) { return p->count() > 0; });
    if (bForPeople && !bLimited) {
        Filter.m_nLimit = USUAL_LIMIT;
    }
    const std::vector<CRunSummary> Runs =
        IsStoreThere() ? GetStore().List(Filter) : std::vector<CRunSummary>();
    if (m_rFrame.IsJson()) {
        nlohmann::ordered_json Lines = nlohmann::ordered_json::array();
        for (const CRunSummary& rRun : Runs) {
            Lines.push_back(ArchiveJson::FromSummary(rRun));
        }
        Print(ToText(Lines, 2) + "\n");
    } else if (m_bCsv) {
        Print(MakeCsv(Runs));
    } else if (Runs.empty()) {
        Print(GetText("ARCHIVE_COMMAND_NONE_FOUND") + "\n");
    } else {
        Print(MakeList(Runs));
    }
    return Runs.empty() ? NOTHING_FOUND : DONE;
}

int CArchiveCommand::Show() {
    const CRunRecord Run = LoadRun();
    if (m_rFrame.IsJson()) {
        Print(ToText(ArchiveJson::FromRecord(Run), 2) + "\n");
        return DONE;
    }
    Print(MakeTable(
        {{GetText("ARCHIVE_COMMAND_NUMBER"), std::to_string(Run.m_Id)},
         {GetText("ARCHIVE_COMMAND_BEGUN"), ShowMoment(Run.m_Started)},
         {GetText("ARCHIVE_COMMAND_MACHINE"), Shown(Run.m_Machine)},
         {GetText("ARCHIVE_COMMAND_CONFIGURATION"), Shown(Run.m_Setup.m_Configuration)},
         {GetText("ARCHIVE_COMMAND_ROTOR"), Shown(Run.m_Rotor)},
         {GetText("ARCHIVE_COMMAND_RESULT"), ShowOutcome(Run.m_State, Run.m_Result, Run.m_bSaved)}}));
    for (const CRunMeasurement& rMeasurement : Run.m_Measurements) {
        Print(Describe(rMeasurement));
    }
    for (const CRunWarning& rWarning : Run.m_Warnings) {
        Print("! " + Shown(rWarning.m_Text) + "\n");
    }
    return DONE;
}

int CArchiveCommand::Report() {
    CArchivedRun Run;
    Run.m_Record = LoadRun();
    // What programs get rests on the run alone.
    if (ReportFile::GetKind(m_ReportFile) != ReportFile::Kind::eJson) {
        Run = CArchivedRun::Load(GetStore(), m_Id).value_or(Run);
    }
    if (!ReportFile::Write(m_ReportFile, Run.MakeReportInput())) {
        throw CCommandError(
            Fill("COMMAND_FILE_NOT_WRITTEN", {m_ReportFile, GetText("ARCHIVE_COMMAND_LOOK_AT_DIRECTORY")}),
            NOTHING_FOUND);
    }
    return DONE;
}

int CArchiveCommand::Export() {
    const std::vector<CRunSummary> Runs =
        IsStoreThere() ? GetStore().List(GetFilter()) : std::vector<CRunSummary>();
    if (m_bCsv) {
        Print(GetCsvNames());
    }
    for (const CRunSummary& rLine : Runs) {
        const std::optional<CRunRecord> Run = GetStore().Load(rLine.m_Id);
        if (!Run) {
            continue;  // removed meanwhile
        }
        Print(m_bCsv ? MakeMeasurementsCsv(*Run) : ToText(ArchiveJson::FromRecord(*Run)) + "\n");
    }
    return Runs.empty() ? NOTHING_FOUND : DONE;
}

int CArchiveCommand::Prune() {
    if (m_Before.empty() && m_pKeep->count() == 0) {
        throw CCommandError(GetText("ARCHIVE_COMMAND_PRUNE_WHAT"));
    }
    CRunFilter Filter = GetFilter();
    if (const auto Before = ParseDate(m_Before)) {
        Filter.m_Until = Filter.m_Until ? std::min(*Filter.m_Until, *Before) : *Before;
    }
    std::vector<std::int64_t> Ids;
    for (const CRunSummary& rLine : IsStoreThere() ? GetStore().List(Filter) : std::vector<CRunSummary>()) {
        Ids.push_back(rLine.m_Id);
    }
    // By their numbers: a clock that was wrong must not make the run that was just made the oldest one.
    std::ranges::sort(Ids, std::greater());
    Ids.erase(Ids.begin(), Ids.begin() + static_cast<std::ptrdiff_t>(std::min(m_nKeep, Ids.size())));
    if (Ids.empty()) {
        Print(GetText("ARCHIVE_COMMAND_NONE_FOUND") + "\n");
        return NOTHING_FOUND;
    }
    const std::string Count = std::to_string(Ids.size());
    if (!m_rFrame.IsSure(
            Fill(m_bReadingsOnly ? "ARCHIVE_COMMAND_PRUNE_READINGS_ASKS" : "ARCHIVE_COMMAND_PRUNE_ASKS",
                 {Count}))) {
        Print(GetText("COMMAND_NOTHING_DONE") + "\n");
        return NOTHING_FOUND;
    }
    if (m_bReadingsOnly) {
        GetStore().RemoveReadings(Ids);
    } else {
        GetStore().Remove(Ids);
    }
    Print(Fill("ARCHIVE_COMMAND_PRUNED", {Count}) + "\n");
    return DONE;
}

int CArchiveCommand::RestoreCalibration() {
    const CRunRecord Run = LoadRun();
    const CCalibrationRestore Restore(Run);
    if (const std::string Obstacle = Restore.FindObstacle(); !Obstacle.empty()) {
        throw CCommandError(Obstacle, NOTHING_FOUND);
    }
    const std::string& rName = Run.m_Setup.m_Configuration;
    if (!m_rFrame.IsSure(Fill("ARCHIVE_COMMAND_RESTORE_ASKS", {Shown(rName), ShowMoment(Run.m_Started)}))) {
        Print(GetText("COMMAND_NOTHING_DONE") + "\n");
        return NOTHING_FOUND;
    }
    if (const std::string Failure = Restore.Restore(); !Failure.empty()) {
        throw CCommandError(Fill("ARCHIVE_COMMAND_NOT_RESTORED", {Shown(rName), Failure}), NOTHING_FOUND);
    }
    Print(Fill("ARCHIVE_COMMAND_RESTORED", {Shown(rName), ShowMoment(Run.m_Started)}) + "\n");
    return DONE;
}

}  // namespace

int RunArchiveCommand(int argc, const char* const* argv) {
    CCommandFrame Frame("archive");
    CArchiveCommand Command(Frame);
    return Frame.Run(argc, argv, [&Command](const CConsoleInstallation&) { return Command.Run(); });
}
