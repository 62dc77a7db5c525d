#include "tests/faults/faultseries.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "platform/rvldb/gettext.h"
#include "tests/faults/diskplan.h"
#include "tests/support/testpaths.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Two machines that lead to different calibrations and speeds.
constexpr const char* FIRST_ROTOR = R"({ "seed": 1 })";
constexpr const char* SECOND_ROTOR =
    R"({ "seed": 2, "speed_rpm": 2400, "influence": [ [ { "amplitude": 120.0, "phase_deg": 80.0 } ] ] })";

std::string ReadFile(const fs::path& rPath) {
    std::ifstream In(rPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
}

/// "pwrite prebal.db-journal" of "17 pwrite /path/prebal.db-journal"; names that are made by chance without
/// what chance made.
std::string GetCall(const std::string& rLine) {
    std::istringstream In(rLine);
    std::string Number;
    std::string Call;
    std::string Path;
    In >> Number >> Call >> Path;
    std::string Name = fs::path(Path).filename().string();
    if (const std::size_t Chance = Name.find(".writing-"); Chance != std::string::npos) {
        Name.erase(Chance + std::string(".writing").size());
    }
    return Call + " " + Name;
}

/// What a text says before its first place.
std::string GetBeginning(const char* pKey) {
    const std::string Text = GetText(pKey);
    return Text.substr(0, Text.find('%'));
}

bool Says(const CStartedProgram& rProgram, const char* pKey) {
    return rProgram.m_Output.find(GetBeginning(pKey)) != std::string::npos;
}

}  // namespace

CFaultSeries::CFaultSeries(bool bNew) : CFaultSeries(CServer(), bNew) {}

CFaultSeries::CFaultSeries(CServer Server, bool bNew) : m_bNew(bNew), m_Server(std::move(Server)) {
    SetLanguage("en");
    Prepare();
}

std::string CFaultSeries::GetConnection() const {
    return m_ServerConnection.empty() ? "sqlite:" + (GetRoot() / "cnf" / "prebal.db").string()
                                      : m_ServerConnection;
}

CInstallationState CFaultSeries::ReadState() const {
    if (m_Server.m_Settle) {
        m_Server.m_Settle();
    }
    return CInstallationState::Read(GetRoot(), GetConnection());
}

/// The installation as it was before.
void CFaultSeries::Renew() {
    fs::remove_all(GetRoot());
    fs::copy(m_Directory.GetPath() / "first", GetRoot(), fs::copy_options::recursive);
    if (m_Server.m_Renew) {
        m_ServerConnection = m_Server.m_Renew();
    }
}

void CFaultSeries::Prepare() {
    std::ofstream(m_Directory.At("first.json")) << FIRST_ROTOR;
    std::ofstream(m_Directory.At("second.json")) << SECOND_ROTOR;
    fs::create_directories(m_bNew ? GetRoot() : GetRoot() / "cnf");
    if (!m_bNew) {
        std::ofstream(GetRoot() / "cnf" / "speedctrl.ini") << "[Configuration]\nRPM=1200\n";
    }
    if (m_Server.m_Renew) {
        m_ServerConnection = m_Server.m_Renew();
    }
    if (!m_bNew) {
        const CStartedProgram First = Balance("first", {DiskPlan::COUNT}, {});
        if (First.m_Status != 0) {
            throw std::runtime_error("the first run fails:\n" + First.m_Output);
        }
        m_Before = ReadState();
    }
    fs::rename(GetRoot(), m_Directory.GetPath() / "first");
    if (m_Server.m_Keep) {
        m_Server.m_Keep();
    }
    Renew();
    const std::string Trace = m_Directory.At("trace");
    const auto Begin = Clock::now();
    const CStartedProgram Second = Balance("second", {DiskPlan::COUNT}, Trace);
    m_Duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - Begin);
    if (Second.m_Status != 0) {
        throw std::runtime_error("the undisturbed run fails:\n" + Second.m_Output);
    }
    m_Complete = ReadState();
    m_Report = ReadFile(m_Directory.At("report.json"));
    std::istringstream Lines(ReadFile(Trace));
    for (std::string Line; std::getline(Lines, Line);) {
        m_Calls.push_back(GetCall(Line));
    }
    if (m_Calls.empty() || m_Complete.m_Runs.size() != m_Before.m_Runs.size() + 1 ||
        m_Complete.m_Values == m_Before.m_Values || m_Complete.m_Positions == m_Before.m_Positions) {
        throw std::runtime_error("the undisturbed run leaves nothing new");
    }
}

CStartedProgram CFaultSeries::Balance(const char* pRotor, const CFault& rFault,
                                      const std::string& rTrace) const {
    std::map<std::string, std::string> Variables = {
        {"LD_PRELOAD", TestProgram("libdiskfaults.so")},
        // The library has to come first, and needs nothing of theirs.
        {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"},
        {"CORVANE_DATABASE", m_ServerConnection},
        {DiskPlan::FOLDER, m_Directory.GetPath().string()},
        {DiskPlan::KIND, rFault.m_Kind},
        {DiskPlan::AT, std::to_string(rFault.m_At)},
    };
    if (rFault.m_nFaults != 0) {
        Variables[DiskPlan::FAULTS] = std::to_string(rFault.m_nFaults);
    }
    if (!rTrace.empty()) {
        Variables[DiskPlan::TRACE] = rTrace;
    }
    if (!rFault.m_ClockShifts.empty()) {
        Variables[DiskPlan::CLOCK] = rFault.m_ClockShifts;
    }
    if (m_Server.m_Port != 0) {
        Variables[DiskPlan::PORT] = std::to_string(m_Server.m_Port);
        Variables[DiskPlan::VICTIM] = std::to_string(m_Server.m_GetProcess());
    }
    std::vector<std::string> Command = {TestProgram("console"),
                                        "--headless",
                                        "--language",
                                        "en",
                                        "--config-dir",
                                        GetRoot().string(),
                                        "--rotor",
                                        m_Directory.At(std::string(pRotor) + ".json"),
                                        "--rotor-name",
                                        pRotor,
                                        "--report",
                                        m_Directory.At("report.json")};
    if (rFault.m_bRealTime) {
        Command.emplace_back("--real-time");
    }
    return CStartedProgram::Run(Command, Variables, rFault.m_Kill);
}

CFaultSeries::COutcome CFaultSeries::Run(const CFault& rFault, bool bAgain) {
    Renew();
    const std::string Trace = m_Directory.At("trace");
    fs::remove(Trace);
    fs::remove(m_Directory.At("report.json"));
    COutcome Outcome;
    Outcome.m_Program = Balance("second", rFault, Trace);
    std::istringstream Lines(ReadFile(Trace));
    for (std::string Line; std::getline(Lines, Line) && Outcome.m_Call.empty();) {
        Outcome.m_Call = Line.ends_with(" !") ? GetCall(Line) : std::string();
    }
    Outcome.m_Report = ReadFile(m_Directory.At("report.json"));
    const CAftermath Left(m_Before, m_Complete, ReadState());
    Outcome.m_Faults = Left.GetFaults();
    Outcome.m_Left = Left.Describe();
    Outcome.m_bCalibrationNew = Left.IsCalibrationNew();
    Outcome.m_bRunComplete = Left.IsRunComplete();
    Judge(rFault, Outcome);
    if (bAgain) {
        RunAgain(rFault, Outcome);
    }
    return Outcome;
}

/// Whether the program has told what became of its result.
void CFaultSeries::Judge(const CFault& rFault, COutcome& rOutcome) const {
    const CStartedProgram& rProgram = rOutcome.m_Program;
    const nlohmann::json Report = nlohmann::json::parse(rOutcome.m_Report, nullptr, false);
    if (!rOutcome.m_Report.empty() && !Report.is_object()) {
        rOutcome.m_Faults.push_back("half a report");
    }
    const bool bToBeKilled =
        rFault.m_Kind == DiskPlan::KILL || rFault.m_Kind == DiskPlan::TORN || rFault.m_Kill;
    if (rProgram.m_Signal != 0) {
        if (!bToBeKilled) {
            rOutcome.m_Faults.push_back("the program has died of signal " +
                                        std::to_string(rProgram.m_Signal));
        }
        return;
    }
    // Without its server it keeps what it has on its own disk, and says so.
    const bool bWaits = Report.is_object() && !Report.value("delivered", true);
    if (rProgram.m_Status == 0 && !rOutcome.m_bCalibrationNew && !bWaits) {
        rOutcome.m_Faults.push_back("it says that it has saved, and hasn't");
    }
    if (rProgram.m_Status != 0 && rProgram.m_Status != 2 && rProgram.m_Status != 3) {
        rOutcome.m_Faults.push_back("its status is " + std::to_string(rProgram.m_Status));
    }
    if (rProgram.m_Output.empty()) {
        rOutcome.m_Faults.push_back("it says nothing");
    }
    if (Says(rProgram, "RUN_DID_NOT_START") ||
        (m_bNew && rProgram.m_Output.find("SetupSuccess") == std::string::npos)) {
        // What can't be read, or set up, isn't begun; then the store was the reason.
        const bool bTold = std::ranges::any_of(
            std::array{"can't be used: ", "can't be opened: ", "can't be set up for"},
            [&rProgram](const char* pWords) { return rProgram.m_Output.find(pWords) != std::string::npos; });
        if (rProgram.m_Status != 3 && !bTold) {
            rOutcome.m_Faults.push_back("nothing was begun, and nobody was told why");
        }
        return;
    }
    const bool bRan = Says(rProgram, "RUN_RESULT");
    if (rProgram.m_Status != 3 && rProgram.m_Output.find("SetupSuccess") == std::string::npos) {
        rOutcome.m_Faults.push_back("the run didn't go on to its verdict");
    }
    if (rProgram.m_Status != 3 && !rOutcome.m_bRunComplete && bRan && !bWaits &&
        !Says(rProgram, "ARCHIVE_NOT_KEPT")) {
        rOutcome.m_Faults.push_back("the archive lacks the run, and nobody was told");
    }
    if (rProgram.m_Status == 2 && bRan && !Says(rProgram, "RUN_NOT_SAVED")) {
        rOutcome.m_Faults.push_back("it failed, and doesn't say that nothing was saved");
    }
    const bool bReported = Report.is_object() && Report.contains("saved");
    if (bRan && !bReported && !Says(rProgram, "The report ")) {
        rOutcome.m_Faults.push_back("the report isn't there, and nobody was told");
    }
    if (bRan && bReported && !bWaits && !Says(rProgram, "The report ") &&
        Report["saved"].get<bool>() != rOutcome.m_bCalibrationNew) {
        rOutcome.m_Faults.push_back("the report doesn't say what is saved");
    }
}

/// Once more where the run was disturbed, without a fault.
void CFaultSeries::RunAgain(const CFault& rFault, COutcome& rOutcome) {
    // What had to wait for its server has come there, once.
    const std::size_t nRuns =
        rFault.m_Kind == DiskPlan::SERVER ? m_Before.m_Runs.size() + 1 : ReadState().m_Runs.size();
    const CStartedProgram Again = Balance("second", {DiskPlan::COUNT}, {});
    const CInstallationState Now = ReadState();
    if (Again.m_Status != 0) {
        rOutcome.m_Faults.push_back("the next run fails: " + Again.m_Output);
    }
    if (!Now.m_Trouble.empty() || Now.m_Values != m_Complete.m_Values || Now.m_Runs.size() != nRuns + 1 ||
        Now.m_Runs.back().m_State != CRunRecord::State::eFinished) {
        rOutcome.m_Faults.push_back("the next run leaves something else " + Now.m_Trouble);
    }
    for (const std::string& rFile : Now.m_Files) {
        const bool bLeft = std::ranges::any_of(
            std::array{"-journal", "-wal", "-shm", ".writing", ".damaged"},
            [&rFile](const char* pPart) { return rFile.find(pPart) != std::string::npos; });
        if (bLeft) {
            rOutcome.m_Faults.push_back("the next run leaves " + rFile);
        }
    }
}
