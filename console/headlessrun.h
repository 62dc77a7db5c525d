#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "console/operator.h"
#include "console/options.h"
#include "console/runreport.h"
#include "console/session.h"

/// A run without a display: the procedures that the options ask for, operated by COperator, with progress
/// lines, report and pictures.
class CHeadlessRun {
public:
    CHeadlessRun(CConsoleSession& rSession, const COptions& rOptions);
    ~CHeadlessRun();
    CHeadlessRun(const CHeadlessRun&) = delete;
    CHeadlessRun& operator=(const CHeadlessRun&) = delete;

    /// Runs the loop until the procedures have ended. The result is also the report's.
    ExitCode Run();
    const CRunReport& GetReport() const { return m_Report; }
    CRunReport& GetReport() { return m_Report; }

    /// Takes the progress lines; stdout unless set.
    std::function<void(const std::string&)> OnProgress;
    /// Called when the situation has changed, after it was recorded: for tests that interfere with a run.
    std::function<void(const CSituation&)> OnSituation;
    /// Why no NC drives any more, with --nc opcua; empty while one does.
    std::function<std::string()> GetNcLoss;

private:
    /// Longest that a procedure may take with a machine that answers, ms.
    static constexpr std::uint32_t eRunTimeout = 3600000;
    /// A spindle that is to turn at the start gets so long to reach its speed, ms.
    static constexpr std::uint32_t eSpinUpTimeout = 120000;

    bool RunProcedure(Softkeys::Action Start);
    /// A procedure that the NC starts and ends.
    bool RunNcProcedure();
    /// Runs the loop until the driver has come to an outcome.
    bool Drive(CRunDriver& rDriver);
    void BringSpindleToStart();
    /// The machine's unbalance changes a little, as a wheel's does by wear.
    void DisturbRotor();
    nlohmann::json RequestAndWait(const nlohmann::json& rRequest);
    void RecordLater();
    void Record();
    void RecordCalibration();
    void TakeScreenshot();
    void Print(const std::string& rText);

    CConsoleSession& m_rSession;
    const COptions& m_rOptions;
    CRunReport m_Report;
    std::shared_ptr<void> m_pLogGuard;
    std::uint32_t m_ProgressTimerID = 0;
    bool m_bRecordPending = false;
    CRunDriver* m_pWatch = nullptr;  ///< while the NC drives
    std::uint32_t m_nPictures = 0;
    std::shared_ptr<bool> m_pAlive = std::make_shared<bool>(true);
};
