#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "archive/report/reportinput.h"
#include "console/runadviser.h"
#include "console/runarchivist.h"
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
    /// Begins a report for the next run, which gets a file of its own.
    void BeginReport();

    /// Something on the panel has changed: records it when all that belongs to the change has come.
    void RecordLater();
    void Record();
    /// The records of the runs of the report, which have ended.
    const std::vector<CRunRecord>& GetRecords() const { return m_Archivist.GetRecords(); }
    CRunArchivist& GetArchivist() { return m_Archivist; }
    /// What there is to say of the present run, or of the last one.
    CRunAdviser& GetAdviser() { return m_Adviser; }
    /// The procedure of a driver is over: to be called when it is known whether its result was saved.
    void EndRun(bool bFinished);
    /// Takes from the driver of a run what it sees, measures and fits.
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
    /// What a look of the driver has seen, before anything is done about it.
    std::function<void(const CSituation&)> OnSeen;
    /// Called after a recording that was asked for by RecordLater.
    std::function<void()> OnRecorded;

    /// Writes the report where the options want it: "run.json", and those of further runs of the program as
    /// "run-2.json" and so on. False if it can't be written, which is told.
    bool WriteReport();
    /// Writes it there and tells nothing. False if it can't be written.
    bool WriteReport(const std::string& rFile);
    /// Where the present report goes; empty if nobody wants one.
    std::string GetReportFile() const;

    /// "  120.3 µm/s @ 45°" for each plane on the page.
    static std::string DescribeReadings(const CSituation& rSituation);

private:
    void TakeScreenshot();
    /// The page as it is, as PNG, for a report that shows it, and for the archive if somebody looks at it or
    /// has asked for pictures; empty if nobody wants it.
    std::vector<std::uint8_t> TakePagePicture();
    CReportInput MakeReportInput();
    void Tell(const std::string& rText) const;
    /// An NC keeps a calibration, as it can't be asked.
    void TellOfDoubt();
    void TellNotWritten(const std::string& rFile) const;

    CConsoleSession& m_rSession;
    CRunReport m_Report;
    CRunArchivist m_Archivist;
    CRunAdviser m_Adviser;
    std::vector<std::uint8_t> m_PagePicture;  ///< of the last verdict; empty if nobody wants one
    std::uint32_t m_nReports = 1;             ///< with the present one
    std::shared_ptr<void> m_pLogGuard;
    bool m_bRecordPending = false;
    bool m_bTelling = false;  ///< OnSituation is under way
    std::uint32_t m_nPictures = 0;
    CLifetime m_Lifetime;
};
