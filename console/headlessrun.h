#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "console/operator.h"
#include "console/options.h"
#include "console/runrecorder.h"
#include "console/runreport.h"
#include "console/runverdict.h"
#include "console/session.h"
#include "contract/actions.h"
#include "platform/system/timer.h"

/// A run without a display: the procedures that the options ask for, operated by COperator, with progress
/// lines, report and pictures. A request to end the program breaks it off.
class CHeadlessRun {
public:
    CHeadlessRun(CConsoleSession& rSession, const COptions& rOptions);
    ~CHeadlessRun();
    CHeadlessRun(const CHeadlessRun&) = delete;
    CHeadlessRun& operator=(const CHeadlessRun&) = delete;

    /// Runs the loop until the procedures have ended. The result is also the report's.
    ExitCode Run();
    CRunReport& GetReport() { return m_Recorder.GetReport(); }
    CRunRecorder& GetRecorder() { return m_Recorder; }

    /// Takes the progress lines; stdout unless set.
    std::function<void(const std::string&)> OnProgress;
    /// Called when the situation has changed, after it was recorded: for tests that interfere with a run.
    std::function<void(const CSituation&)> OnSituation;
    /// Why no NC drives any more, with --nc opcua; empty while one does.
    std::function<std::string()> GetNcLoss;

private:
    /// Longest that a procedure may take with a machine that answers, ms.
    static constexpr std::uint32_t RUN_TIMEOUT = 3600000;
    /// A spindle that is to turn at the start gets so long to reach its speed, ms.
    static constexpr std::uint32_t SPIN_UP_TIMEOUT = 120000;

    bool RunProcedure(Actions::Action Start);
    /// Has a run given up whose test run had no effect: only its end would keep a calibration.
    void Doubt(const CSituation& rSituation);
    /// Before each procedure.
    void ForgetResult();
    /// Whether the procedure's result stands in the database; enters it in the report.
    bool IsResultSaved();
    /// A procedure that the NC starts and ends.
    bool RunNcProcedure();
    /// Runs the loop until the driver has come to an outcome.
    bool Drive(CRunDriver& rDriver);
    void BringSpindleToStart(bool bTurning);
    /// A re-balancing after a run that moved weights or screws and saved nothing begins at standstill, where
    /// the page shows where they belong, whatever the options say. False if there is nothing to go on with.
    bool StartFromWhereItShould(Actions::Action Start);
    /// The machine's unbalance changes a little, as a wheel's does by wear.
    void DisturbRotor();
    nlohmann::json RequestAndWait(const nlohmann::json& rRequest);
    bool IsBrokenOff() const { return !m_rOptions.GetEndRequest().empty(); }
    /// As the loop's, and ends at once when the run is broken off.
    bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) const;
    void Pause(std::uint32_t Milliseconds) const;
    void Print(const std::string& rText);
    void PrintLine(const std::string& rLine) const;
    /// The run hasn't come to its end, for this reason.
    void Fail(const std::string& rReason);

    CConsoleSession& m_rSession;
    const COptions& m_rOptions;
    CRunRecorder m_Recorder;
    CRunVerdict m_Verdict;
    CTimer m_ProgressTimer;
    CRunDriver* m_pWatch = nullptr;     ///< while the NC drives
    CRunDriver* m_pOperator = nullptr;  ///< while nobody else does
};
