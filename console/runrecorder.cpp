#include "console/runrecorder.h"

#include <QString>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "platform/rvldb/gettext.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/window/messages.h"

namespace {

std::string Format(const char* pFormat, auto... Values) {
    char Buffer[512];
    std::snprintf(Buffer, sizeof Buffer, pFormat, Values...);
    return Buffer;
}

}  // namespace

CRunRecorder::CRunRecorder(CConsoleSession& rSession) : m_rSession(rSession) {
    m_pLogGuard = CLogComponent::AddListener([this](const CLogRecord& rRecord) {
        if (rRecord.m_bAssertion) {
            m_Report.AddAssertion(rRecord.m_Text);
        }
    });
}

void CRunRecorder::Tell(const std::string& rText) const {
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

bool CRunRecorder::WriteReport() {
    const std::string& rFile = m_rSession.GetOptions().m_ReportFile;
    if (rFile.empty() || m_Report.Write(rFile)) {
        return true;
    }
    TellNotWritten(rFile);
    return false;
}

std::string CRunRecorder::DescribeReadings(const CSituation& rSituation) {
    std::string Text;
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Text += Format("  %.1f @ %.0f°%s", rReading.m_Amplitude, rReading.m_AngleDeg,
                           rReading.m_bComplete ? "" : " (averaging)");
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
    if (!m_Report.AddSituation(IFEventLoop::Current().Now(), Situation)) {
        return;
    }
    const CPreBalProgress& rProgress = Situation.m_Progress;
    Tell(Format("step %u/%u  %s%s%s", rProgress.m_Step, rProgress.m_NumberOfSteps,
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
    rDriver.OnMeasurementAccepted = [this](const CSituation& rSituation) {
        m_Report.SetInitial(rSituation);
        Tell("measured" + DescribeReadings(rSituation));
    };
    rDriver.OnVerdictAccepted = [this](const CSituation& rSituation) {
        m_Report.SetFinal(rSituation);
        Tell("final" + DescribeReadings(rSituation) +
             Format(", target %u", rSituation.m_Progress.m_TargetUnbalance));
    };
    // The picture of the verdict's first notification shows an average that has just begun.
    rDriver.OnVerdictMeasured = [this] { TakeScreenshot(); };
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
        m_Report.SetCalibration(Shown->m_Name, rEntry.GetCalibratedRPM(), rEntry.GetTargetUnbalance(), rInvA,
                                rUA);
    };
    // A machine has records of one kind: its key tells the mode.
    if (const PreBalDB::CTwoPlaneBalancingTableEntry* pPlanes = rEntry.GetTwoPlane()) {
        SetCalibration(pPlanes->GetInvA(), {pPlanes->GetUAPlane1(), pPlanes->GetUAPlane2()});
    } else if (const PreBalDB::CSinglePlaneBalancingTableEntry* pPlane = rEntry.GetSinglePlane()) {
        SetCalibration(pPlane->GetInvA(), {pPlane->GetUA()});
    }
}
