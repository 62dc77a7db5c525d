#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "console/rundriver.h"
#include "console/runreport.h"
#include "console/session.h"
#include "platform/system/lifetime.h"

/// Keeps what a session's runs show, whoever operates them: the report, and pictures of the page.
class CRunRecorder {
public:
    explicit CRunRecorder(CConsoleSession& rSession);
    CRunRecorder(const CRunRecorder&) = delete;
    CRunRecorder& operator=(const CRunRecorder&) = delete;

    CRunReport& GetReport() { return m_Report; }
    /// Begins a report for the next run.
    void BeginReport() { m_Report = CRunReport(); }

    /// Something on the panel has changed: records it when all that belongs to the change has come.
    void RecordLater();
    void Record();
    /// Takes from the driver of a run what it measures and fits.
    void Attach(CRunDriver& rDriver);
    /// What the run has left in the machine database.
    void RecordCalibration();

    /// Takes what there is to say of the run, for people who follow it.
    std::function<void(const std::string&)> OnProgress;
    /// Takes what people have to know even if they don't follow it.
    std::function<void(const std::string&)> OnTrouble;
    /// Called when the situation has changed, after it was recorded. If it runs the loop, whoever drives the
    /// run waits until it has returned.
    std::function<void(const CSituation&)> OnSituation;
    /// Called after a recording that was asked for by RecordLater.
    std::function<void()> OnRecorded;

    /// Writes the report where the options want it. False if it can't be written, which is told.
    bool WriteReport();

    /// "  120.3 @ 45° (averaging)" for each plane on the page.
    static std::string DescribeReadings(const CSituation& rSituation);

private:
    void TakeScreenshot();
    void Tell(const std::string& rText) const;
    void TellNotWritten(const std::string& rFile) const;

    CConsoleSession& m_rSession;
    CRunReport m_Report;
    std::shared_ptr<void> m_pLogGuard;
    bool m_bRecordPending = false;
    bool m_bTelling = false;  ///< OnSituation is under way
    std::uint32_t m_nPictures = 0;
    CLifetime m_Lifetime;
};
