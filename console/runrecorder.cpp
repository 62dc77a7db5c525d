#include "console/runrecorder.h"

#include <QString>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "console/reportfile.h"
#include "console/runlog.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/eventloop.h"
#include "platform/window/messages.h"

namespace {

std::string Format(const char* pFormat, auto... Values) {
    char Buffer[512];
    std::snprintf(Buffer, sizeof Buffer, pFormat, Values...);
    return Buffer;
}

}  // namespace

CRunRecorder::CRunRecorder(CConsoleSession& rSession)
    : m_rSession(rSession), m_Archivist(rSession), m_Adviser(m_Archivist) {
    m_Adviser.OnAdvice = [this](const std::string& rText) { Tell(rText); };
    m_Archivist.OnTrouble = [this](const std::string& rText) {
        if (OnTrouble) {
            OnTrouble(rText);
        }
    };
    m_pLogGuard = CLogComponent::AddListener([this](const CLogRecord& rRecord) {
        if (rRecord.m_bAssertion) {
            m_Report.AddAssertion(rRecord.m_Text);
        }
    });
}

void CRunRecorder::Tell(const std::string& rText) const {
    CRunLog::Tell(rText);
    if (OnProgress) {
        OnProgress(rText);
    }
}

void CRunRecorder::TellNotWritten(const std::string& rFile) const {
    if (OnTrouble) {
        OnTrouble(QString::fromStdString(GetText("CONSOLE_NOT_WRITTEN"))
                      .arg(QString::fromStdString(rFile))
                      .toStdString());
    }
}

void CRunRecorder::TellOfDoubt() {
    const std::string Doubt = m_Adviser.GetDoubt();
    if (!Doubt.empty() && OnTrouble) {
        OnTrouble(PreBalDB::StoreTexts::Fill("ADVICE_NC_KEEPS", {Doubt}));
    }
}

void CRunRecorder::EndRun(bool bFinished) {
    m_Archivist.End(bFinished);
    // Programs get figures that don't depend on former runs: the same run is the same bytes each time.
    std::vector<CRunRecord> Records = m_Archivist.GetRecords();
    CRunAdvice Advice;
    if (!Records.empty()) {
        Records.back().m_Prediction = {};
        Advice = Advise(Records.back());
    }
    m_Report.SetRecords(std::move(Records), Advice);
    m_Report.SetFixedDate(m_rSession.GetOptions().IsVirtualTime());
}

void CRunRecorder::BeginReport() {
    m_Report = CRunReport();
    m_Archivist.Forget();
    ++m_nReports;
}

std::string CRunRecorder::GetReportFile() const {
    const std::filesystem::path Wanted(m_rSession.GetOptions().m_ReportFile);
    if (Wanted.empty() || m_nReports == 1) {
        return Wanted.string();
    }
    const std::string Name =
        Wanted.stem().string() + "-" + std::to_string(m_nReports) + Wanted.extension().string();
    return (Wanted.parent_path() / Name).string();
}

bool CRunRecorder::WriteReport() {
    const std::string File = GetReportFile();
    if (File.empty()) {
        return true;
    }
    if (!WriteReport(File)) {
        TellNotWritten(File);
        return false;
    }
    if (OnTrouble) {
        OnTrouble(QString::fromStdString(GetText("CONSOLE_REPORT_WRITTEN"))
                      .arg(QString::fromStdString(File))
                      .toStdString());
    }
    return true;
}

bool CRunRecorder::WriteReport(const std::string& rFile) {
    // Programs get nothing of what a report for people is made of.
    const bool bForPeople = ReportFile::GetKind(rFile) != ReportFile::Kind::eJson;
    return ReportFile::Write(rFile, m_Report, bForPeople ? MakeReportInput() : CReportInput());
}

CReportInput CRunRecorder::MakeReportInput() {
    CReportInput Input;
    Input.m_bFixedDate = m_rSession.GetOptions().IsVirtualTime();
    for (const CRunRecord& rRecord : GetRecords()) {
        Input.m_Runs.push_back({rRecord, Advise(rRecord), {}});
    }
    if (!Input.m_Runs.empty()) {
        CReportedRun& rLast = Input.m_Runs.back();
        rLast.m_Advice = m_Adviser.Get();  // which knows more: what was said before anything was moved
        if (rLast.m_Record.Find(Measurement::eFinal) != nullptr) {
            rLast.m_PagePicture = m_PagePicture;
        }
        Input.m_Trend = m_Archivist.LoadTrend(rLast.m_Record);
    }
    return Input;
}

std::vector<std::uint8_t> CRunRecorder::TakePagePicture() {
    const COptions& rOptions = m_rSession.GetOptions();
    const auto Kind = ReportFile::GetKind(rOptions.m_ReportFile);
    const bool bForReport = Kind && *Kind != ReportFile::Kind::eJson;
    const bool bLookedAt = !rOptions.m_bHeadless && rOptions.m_bShowPage;
    const bool bForArchive = m_Archivist.GetArchive() != nullptr &&
                             (bLookedAt || bForReport || !rOptions.m_ScreenshotDirectory.empty());
    if (!bForReport && !bForArchive) {
        return {};
    }
    m_rSession.GetModule().SendMessage(WM_PAINT);
    return m_rSession.GetHost().Compose().ToPng();
}

std::string CRunRecorder::DescribeReadings(const CSituation& rSituation) {
    std::string Text;
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Text += Format("  %.1f %s @ %.0f°", rReading.m_Amplitude, Units::UNBALANCE, rReading.m_AngleDeg);
        }
    }
    return Text;
}

void CRunRecorder::RecordLater() {
    // Menu, notification and warning of one transition come one after the other; look when all have come.
    if (m_bRecordPending) {
        return;
    }
    m_bRecordPending = true;
    IFEventLoop::Current().Post(m_Lifetime.Guard([this] {
        m_bRecordPending = false;
        Record();
        if (OnRecorded) {
            OnRecorded();
        }
    }));
}

void CRunRecorder::Record() {
    const CSituation Situation = m_rSession.Look();
    m_Archivist.See(Situation);
    if (!m_Report.AddSituation(IFEventLoop::Current().Now(), Situation)) {
        return;
    }
    const CPreBalProgress& rProgress = Situation.m_Progress;
    Tell(Format("%s %u/%u  %s%s%s", GetText("RUN_STEP").c_str(), rProgress.m_Step, rProgress.m_NumberOfSteps,
                rProgress.m_Instruction.c_str(), rProgress.m_Warning.empty() ? "" : "  ! ",
                rProgress.m_Warning.c_str()));
    TakeScreenshot();
    if (OnSituation && !m_bTelling) {
        m_bTelling = true;
        OnSituation(Situation);
        m_bTelling = false;
    }
}

void CRunRecorder::TakeScreenshot() {
    const std::string& rDirectory = m_rSession.GetOptions().m_ScreenshotDirectory;
    if (rDirectory.empty()) {
        return;
    }
    // The page repaints a new warning with the next live value only; the picture is to show it now.
    m_rSession.GetModule().SendMessage(WM_PAINT);
    const CSituation Situation = m_rSession.Look();
    const std::filesystem::path File =
        std::filesystem::path(rDirectory) / Format("%02u-step-%u-of-%u.png", ++m_nPictures,
                                                   Situation.m_Progress.m_Step,
                                                   Situation.m_Progress.m_NumberOfSteps);
    if (!m_rSession.GetHost().Compose().SavePng(File.string())) {
        TellNotWritten(File.string());
    }
}

void CRunRecorder::Attach(CRunDriver& rDriver) {
    rDriver.IsHeld = [this] { return m_bTelling; };
    rDriver.OnSeen = [this](const CSituation& rSituation) {
        m_Archivist.Look(rSituation);
        m_Adviser.Look(rSituation);
        if (OnSeen) {
            OnSeen(rSituation);
        }
    };
    rDriver.OnMeasurementAccepted = [this](const CSituation& rSituation) {
        m_Archivist.Accept();
        m_Report.SetInitial(rSituation);
        Tell(GetText("RUN_MEASURED") + DescribeReadings(rSituation));
        const bool bDoubted = !m_Adviser.GetDoubt().empty();
        m_Adviser.Accept();
        if (!bDoubted && m_rSession.GetOptions().IsDrivenByNc()) {
            TellOfDoubt();
        }
    };
    rDriver.OnVerdictAccepted = [this](const CSituation& rSituation) {
        m_Archivist.Accept();
        m_Report.SetFinal(rSituation);
        Tell(GetText("RUN_FINAL") + DescribeReadings(rSituation) + ", " +
             Format("%s %u %s", GetText("RUN_TARGET").c_str(), rSituation.m_Progress.m_TargetUnbalance,
                    Units::UNBALANCE));
        m_Adviser.Accept();
    };
    // The picture of the verdict's first notification shows an average that has just begun.
    rDriver.OnVerdictMeasured = [this] {
        TakeScreenshot();
        m_PagePicture = TakePagePicture();
        m_Archivist.KeepPicture(m_PagePicture);
    };
    rDriver.OnFitted = [this](const CFitting& rFitting) {
        if (rFitting.m_bScrews) {
            m_Report.SetScrews(rFitting.m_Column, rFitting.m_Screws);
        } else {
            m_Report.SetWeights(rFitting.m_Column, rFitting.m_Angles);
        }
        Tell(Describe(rFitting));
    };
}

void CRunRecorder::RecordCalibration() {
    const std::optional<CShownConfiguration> Shown = m_rSession.GetShownConfiguration();
    if (!Shown) {
        return;
    }
    std::optional<PreBalDB::CPreBalDatabase> Database;
    try {
        Database.emplace(Shown->m_Machine);
    } catch (const PreBalDB::CDatabaseError& rError) {
        Tell(rError.what());
        return;
    }
    PreBalDB::CPreBalBaseTableEntry& rEntry = Database->ReadConfiguration(Shown->m_Name);
    const auto SetCalibration = [&](const math::matrix<double>& rInvA,
                                    const std::vector<math::matrix<double>>& rUA) {
        m_Report.SetCalibration(Shown->m_Name, rEntry.GetCalibratedRPM(), rInvA, rUA);
    };
    // A machine has records of one kind: its key tells the mode.
    if (const PreBalDB::CTwoPlaneBalancingTableEntry* pPlanes = rEntry.GetTwoPlane()) {
        SetCalibration(pPlanes->GetInvA(), {pPlanes->GetUAPlane1(), pPlanes->GetUAPlane2()});
    } else if (const PreBalDB::CSinglePlaneBalancingTableEntry* pPlane = rEntry.GetSinglePlane()) {
        SetCalibration(pPlane->GetInvA(), {pPlane->GetUA()});
    }
}
