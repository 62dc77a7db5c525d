#include "tests/faults/installationstate.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "archive/runstore.h"
#include "archive/setuptext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/store.h"

namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& rPath) {
    std::ifstream In(rPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
}

/// Dates are the real ones, also under virtual time: of two runs they differ.
CRunRecord WithoutDates(CRunRecord Record) {
    Record.m_Started = {};
    Record.m_Ended = {};
    return Record;
}

std::string CheckIntegrity(PreBalDB::CDirectSQL& rStore) {
    if (!rStore.IsSqlite()) {
        return {};
    }
    const auto Rows = rStore.Query("PRAGMA integrity_check");
    const std::string Answer = Rows.empty() ? "no answer" : Rows[0].GetText(0);
    if (Answer != "ok") {
        return "integrity: " + Answer;
    }
    return rStore.Query("PRAGMA foreign_key_check").empty() ? std::string() : "a row without its owner";
}

bool IsCalibrated(const PreBalDB::CFieldValues& rValues) {
    const auto Found = rValues.find("configuration.is_calibrated");
    return Found != rValues.end() && Found->second != PreBalDB::CDirectSQL::CValue(std::int64_t{0});
}

/// The same values, and no fewer changes behind them. A result that was saved by a second try is of a later
/// moment, and the first one may have counted.
bool IsAsNewAs(const CInstallationState& rNow, const CInstallationState& rComplete) {
    PreBalDB::CFieldValues Values = rNow.m_Values;
    const char* const pMoment = "configuration.calibrated_unix_time";
    const auto Moment = rComplete.m_Values.find(pMoment);
    if (Moment != rComplete.m_Values.end() && IsCalibrated(Values)) {
        Values[pMoment] = Moment->second;
    }
    return Values == rComplete.m_Values && rNow.m_Revision >= rComplete.m_Revision;
}

bool AreSame(const CRunCalibration& rOne, const CRunCalibration& rOther) {
    return rOne.m_Rpm == rOther.m_Rpm && rOne.m_InvA == rOther.m_InvA && rOne.m_UA == rOther.m_UA &&
           rOne.m_ReferenceWeight == rOther.m_ReferenceWeight;
}

bool AreSame(const CRunRecord& rOne, const CRunRecord& rOther) {
    return rOne.m_Rotor == rOther.m_Rotor && rOne.m_Machine == rOther.m_Machine &&
           SetupToText(rOne.m_Setup) == SetupToText(rOther.m_Setup) &&
           rOne.m_Measurements == rOther.m_Measurements && rOne.m_Prediction == rOther.m_Prediction &&
           rOne.m_Warnings == rOther.m_Warnings && rOne.m_State == rOther.m_State &&
           rOne.m_Result == rOther.m_Result && rOne.m_bSaved == rOther.m_bSaved &&
           rOne.m_Calibration.has_value() == rOther.m_Calibration.has_value() &&
           (!rOne.m_Calibration || AreSame(*rOne.m_Calibration, *rOther.m_Calibration));
}

template <typename T>
bool IsBeginning(const std::vector<T>& rPart, const std::vector<T>& rWhole,
                 bool (*AreEqual)(const T&, const T&)) {
    return rPart.size() <= rWhole.size() && std::equal(rPart.begin(), rPart.end(), rWhole.begin(), AreEqual);
}

constexpr std::size_t POSITIONS_HEAD = 20;    ///< of a file without entries
constexpr std::size_t POSITIONS_RECORD = 46;  ///< ends a file with one entry

/// What the file holds between the two writings of a run.
bool ArePositionsOnTheWay(const std::string& rBefore, const std::string& rComplete, const std::string& rNow) {
    if (rBefore.empty() && rNow.size() == POSITIONS_HEAD) {
        return true;
    }
    std::string Mixed = rComplete;
    const std::size_t Record = Mixed.size() - POSITIONS_RECORD;
    if (rBefore.empty()) {
        // The speed of the run (bytes 1 to 4), and nothing else yet but that it is one of a single plane.
        Mixed.replace(Record, 1, 1, '\0').replace(Record + 5, 40, 40, '\0');
    } else {
        Mixed = rBefore;
        Mixed.replace(Record + 1, 4, rComplete, Record + 1, 4);
    }
    if (rNow == Mixed) {
        return true;
    }
    // The speed couldn't be noted when it was measured; the positions could at the end.
    Mixed = rComplete;
    if (!rBefore.empty()) {
        Mixed.replace(Record + 1, 4, rBefore, Record + 1, 4);
    } else {
        Mixed.replace(Record + 1, 4, 4, '\0');
    }
    return rNow == Mixed;
}

}  // namespace

CInstallationState CInstallationState::Read(const fs::path& rRoot, const std::string& rConnection) {
    CInstallationState State;
    State.m_Positions = ReadFile(rRoot / "cnf" / "vorwuchttemp.txt");
    State.m_Settings = ReadFile(rRoot / "cnf" / "speedctrl.ini");
    State.m_Log = ReadFile(rRoot / "log" / "rotor_trim.log");
    if (!fs::exists(rRoot / "cnf")) {
        return State;  // not made yet
    }
    try {
        {
            CRunStore Archive(rConnection);
            CRunFilter All;
            All.m_nLimit = 0;
            for (const CRunSummary& rRun : Archive.List(All)) {
                State.m_Runs.push_back(WithoutDates(Archive.Load(rRun.m_Id).value()));
            }
            // Not by their dates, which a clock may have told wrong.
            std::ranges::sort(State.m_Runs, {}, &CRunRecord::m_Id);
        }
        if (!State.m_Runs.empty()) {
            PreBalDB::CStore Store(State.m_Runs.front().m_Machine, rConnection);
            if (const auto Stored = Store.LoadConfiguration("Default")) {
                State.m_Values = Stored->m_Values;
                State.m_Revision = Stored->m_Revision;
            }
        }
        PreBalDB::CDirectSQL Store(rConnection);
        State.m_Trouble = CheckIntegrity(Store);
    } catch (const std::exception& rError) {
        State.m_Trouble = rError.what();
    }
    std::error_code Error;
    for (const auto& rEntry : fs::directory_iterator(rRoot / "cnf", Error)) {
        State.m_Files.push_back(rEntry.path().filename().string());
    }
    std::ranges::sort(State.m_Files);
    return State;
}

CAftermath::CAftermath(const CInstallationState& rBefore, const CInstallationState& rComplete,
                       const CInstallationState& rNow) {
    LookAtStore(rBefore, rComplete, rNow);
    LookAtFiles(rBefore, rComplete, rNow);
}

void CAftermath::LookAtStore(const CInstallationState& rBefore, const CInstallationState& rComplete,
                             const CInstallationState& rNow) {
    if (!rNow.m_Trouble.empty()) {
        m_Faults.push_back("store: " + rNow.m_Trouble);
        return;
    }
    m_bCalibrationNew = IsAsNewAs(rNow, rComplete);
    // A new store comes into being in several steps; there is no calibration before the last one.
    const bool bOld = rBefore.m_Runs.empty()
                          ? !IsCalibrated(rNow.m_Values)
                          : rNow.m_Values == rBefore.m_Values && rNow.m_Revision == rBefore.m_Revision;
    if (!m_bCalibrationNew && !bOld) {
        m_Faults.push_back("the calibration is neither the old nor the new one");
    }
    const std::size_t nBefore = rBefore.m_Runs.size();
    if (!IsBeginning(rBefore.m_Runs, rNow.m_Runs, AreSame)) {
        m_Faults.push_back("a run that was in the archive is lost or changed");
    } else if (rNow.m_Runs.size() > rComplete.m_Runs.size()) {
        m_Faults.push_back("there are more runs than were made");
    } else if (rNow.m_Runs.size() > nBefore) {
        LookAtRun(rComplete.m_Runs.back(), rNow.m_Runs.back());
    }
}

void CAftermath::LookAtRun(const CRunRecord& rComplete, const CRunRecord& rNow) {
    if (AreSame(rNow, rComplete)) {
        m_bRunComplete = true;
        m_Run = "run complete";
        return;
    }
    m_Run = (rNow.m_State == CRunRecord::State::eRunning ? "run interrupted with " : "run ended with ") +
            std::to_string(rNow.m_Measurements.size()) + " measurements";
    const auto AreEqual = [](const auto& rOne, const auto& rOther) { return rOne == rOther; };
    if (!IsBeginning<CRunMeasurement>(rNow.m_Measurements, rComplete.m_Measurements, AreEqual)) {
        m_Faults.push_back("the measurements of the run aren't those that were made");
    }
    if (rNow.m_Rotor != rComplete.m_Rotor || SetupToText(rNow.m_Setup) != SetupToText(rComplete.m_Setup)) {
        m_Faults.push_back("the run isn't told as what it was");
    }
    if (rNow.m_State == CRunRecord::State::eRunning && (rNow.m_bSaved || rNow.m_Calibration)) {
        m_Faults.push_back("an interrupted run has a result");
    }
    if (rNow.m_State != CRunRecord::State::eRunning && rNow.m_bSaved &&
        rNow.m_Measurements.size() < rComplete.m_Measurements.size()) {
        m_Faults.push_back("a run with a result lacks measurements");
    }
}

void CAftermath::LookAtFiles(const CInstallationState& rBefore, const CInstallationState& rComplete,
                             const CInstallationState& rNow) {
    if (rNow.m_Positions == rComplete.m_Positions) {
        m_Positions = "new";
    } else if (rNow.m_Positions != rBefore.m_Positions &&
               !ArePositionsOnTheWay(rBefore.m_Positions, rComplete.m_Positions, rNow.m_Positions)) {
        m_Faults.push_back("the weight positions are neither the old nor the new ones");
    }
    if (rNow.m_Settings != rBefore.m_Settings && !rBefore.m_Runs.empty()) {
        m_Faults.push_back("settings have changed");
    }
    if (!rNow.m_Log.starts_with(rBefore.m_Log)) {
        m_Faults.push_back("what the log said is lost");
    }
    for (const std::string& rFile : rNow.m_Files) {
        if (rFile.find(".damaged") != std::string::npos) {
            m_Faults.push_back("something was found damaged: " + rFile);
        }
    }
}

std::string CAftermath::Describe() const {
    return std::string("calibration ") + (m_bCalibrationNew ? "new" : "old") + ", " + m_Run + ", positions " +
           m_Positions;
}
