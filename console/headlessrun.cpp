#include "console/headlessrun.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "console/ncwatch.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/window/messagebox.h"
#include "platform/window/messages.h"

namespace {

/// Between two progress lines while nothing else happens, ms.
constexpr std::uint32_t PROGRESS_PERIOD = 1000;

std::string Format(const char* pFormat, auto... Values) {
    char Buffer[512];
    std::snprintf(Buffer, sizeof Buffer, pFormat, Values...);
    return Buffer;
}

std::string DescribeReadings(const CSituation& rSituation) {
    std::string Text;
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Text += Format("  %.1f @ %.0f°%s", rReading.m_Amplitude, rReading.m_AngleDeg,
                           rReading.m_bComplete ? "" : " (averaging)");
        }
    }
    return Text;
}

const char* ProcedureToString(COptions::Procedure Procedure) {
    switch (Procedure) {
        case COptions::Procedure::ePrebalance:
            return "prebalance";
        case COptions::Procedure::eRebalance:
            return "rebalance";
        case COptions::Procedure::ePrebalanceAndRebalance:
            break;
    }
    return "prebalance+rebalance";
}

}  // namespace

CHeadlessRun::CHeadlessRun(CConsoleSession& rSession, const COptions& rOptions)
    : m_rSession(rSession), m_rOptions(rOptions) {
    m_Report.SetProcedure(ProcedureToString(rOptions.m_Procedure));
    m_pLogGuard = CLogComponent::AddListener([this](const CLogRecord& rRecord) {
        if (rRecord.m_bAssertion) {
            m_Report.AddAssertion(rRecord.m_Text);
        }
    });
    SetMessageBoxPresenter(
        [this](const CShownMessage& rMessage) { Print(rMessage.m_Title + ": " + rMessage.m_Text); });
    m_rSession.OnChanged = [this] { RecordLater(); };
    m_rSession.OnSay = [this](const std::string& rText) { Print(rText); };
}

CHeadlessRun::~CHeadlessRun() {
    *m_pAlive = false;
    SetMessageBoxPresenter(nullptr);
    m_rSession.OnChanged = nullptr;
    m_rSession.OnSay = nullptr;
    if (m_ProgressTimerID != 0) {
        IFEventLoop::Current().KillTimer(m_ProgressTimerID);
    }
}

void CHeadlessRun::Print(const std::string& rText) {
    const std::string Line =
        Format("%8.1f s  ", static_cast<double>(IFEventLoop::Current().Now()) / 1000.0) + rText;
    if (OnProgress) {
        OnProgress(Line);
        return;
    }
    std::printf("%s\n", Line.c_str());
    std::fflush(stdout);
}

void CHeadlessRun::RecordLater() {
    // Menu, notification and warning of one transition come one after the other; look when all have come.
    if (m_bRecordPending) {
        return;
    }
    m_bRecordPending = true;
    IFEventLoop::Current().Post([this, pAlive = m_pAlive] {
        if (*pAlive) {
            m_bRecordPending = false;
            Record();
            if (m_pWatch != nullptr) {
                m_pWatch->LookNow();  // the NC may start its next procedure before the next regular look
            }
        }
    });
}

void CHeadlessRun::Record() {
    const CSituation Situation = m_rSession.Look();
    if (!m_Report.AddSituation(IFEventLoop::Current().Now(), Situation)) {
        return;
    }
    const CPreBalProgress& rProgress = Situation.m_Progress;
    Print(Format("step %u/%u  %s%s%s", rProgress.m_Step, rProgress.m_NumberOfSteps,
                 rProgress.m_Instruction.c_str(), rProgress.m_Warning.empty() ? "" : "  ! ",
                 rProgress.m_Warning.c_str()));
    TakeScreenshot();
    if (OnSituation) {
        OnSituation(Situation);
    }
}

void CHeadlessRun::TakeScreenshot() {
    if (m_rOptions.m_ScreenshotDirectory.empty()) {
        return;
    }
    // The page repaints a new warning with the next live value only; the picture is to show it now.
    m_rSession.GetModule().SendMessage(WM_PAINT);
    const CSituation Situation = m_rSession.Look();
    const std::filesystem::path File =
        std::filesystem::path(m_rOptions.m_ScreenshotDirectory) /
        Format("%02u-step-%u-of-%u.png", ++m_nPictures, Situation.m_Progress.m_Step,
               Situation.m_Progress.m_NumberOfSteps);
    if (!m_rSession.GetHost().Compose().SavePng(File.string())) {
        Print("The picture " + File.string() + " can't be written.");
    }
}

nlohmann::json CHeadlessRun::RequestAndWait(const nlohmann::json& rRequest) {
    std::optional<nlohmann::json> Answer;
    m_rSession.GetMachine()->Request(rRequest,
                                     [&Answer](const nlohmann::json& rAnswer) { Answer = rAnswer; });
    constexpr std::uint32_t eAnswerTimeout = 10000;
    IFEventLoop::Current().RunUntil([&Answer] { return Answer.has_value(); }, eAnswerTimeout);
    return Answer.value_or(nlohmann::json{{"error", "no answer"}});
}

void CHeadlessRun::BringSpindleToStart() {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    const std::uint32_t Speed = m_rOptions.m_bStartTurning ? m_rSession.GetWorkingSpeed() : 0;
    RequestAndWait({{"speed", Speed}});
    std::uint64_t Deadline = IFEventLoop::Current().Now() + eSpinUpTimeout;
    while (IFEventLoop::Current().Now() < Deadline) {
        const nlohmann::json State = RequestAndWait({{"state", nlohmann::json::object()}});
        const bool bAtSpeed = std::abs(State.value("speed", -1.0) - Speed) < 0.5;
        if (bAtSpeed && (Speed == 0 || State.value("lock", false))) {
            break;
        }
        IFEventLoop::Current().RunUntil([] { return false; }, 100);
    }
    // The module has to hear of it.
    IFEventLoop::Current().RunUntil([] { return false; }, 1500);
}

void CHeadlessRun::DisturbRotor() {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    // A tenth of a weight to the side of where the unbalance was: enough to be measured, well within
    // capacity.
    constexpr double eFraction = 0.1;
    const nlohmann::json State = RequestAndWait({{"state", nlohmann::json::object()}});
    if (!State.contains("unbalance")) {
        Print("The machine doesn't tell its rotor's unbalance, so it stays as it is.");
        return;
    }
    std::size_t Plane = 0;
    for (const nlohmann::json& rUnbalance : State["unbalance"]) {
        const double Angle = rUnbalance["angle_deg"].get<double>();
        const double Amount = rUnbalance["amount"].get<double>();
        RequestAndWait(
            {{"unbalance",
              {{"plane", ++Plane},
               {"amount", std::hypot(Amount, eFraction)},
               {"angle_deg",
                std::fmod(Angle + std::atan2(eFraction, Amount) * 180.0 / 3.141592653589793, 360.0)}}}});
    }
}

bool CHeadlessRun::RunProcedure(Softkeys::Action Start) {
    BringSpindleToStart();
    m_rSession.SendAction(Start, Softkeys::eFlagNone);
    if (!m_rSession.Look().m_bRunning) {
        // A message box that says why comes through the loop.
        IFEventLoop::Current().RunUntil([] { return false; }, 1);
        Print(Start == Softkeys::eActionRebalance ? "The re-balancing was refused: the configuration isn't "
                                                    "calibrated. Run --procedure prebalance with the "
                                                    "same --config-dir first."
                                                  : "The procedure did not start; the log says why.");
        return false;
    }
    COperator Operator(m_rSession, m_rSession.GetMachine(), m_rSession.GetWorkingSpeed());
    const bool bFinished = Drive(Operator);
    // Ends the procedure; a result that may be kept is kept.
    m_rSession.SendAction(Softkeys::eActionEnd, Softkeys::eFlagCommit);
    IFEventLoop::Current().RunUntil([this] { return m_rSession.GetHost().GetActivity() == 0; }, 1000);
    return bFinished;
}

bool CHeadlessRun::RunNcProcedure() {
    CNcWatch Watch([this] { return m_rSession.Look(); });
    Watch.GetDriverLoss = GetNcLoss;
    m_pWatch = &Watch;
    const bool bFinished = Drive(Watch);
    m_pWatch = nullptr;
    return bFinished;
}

bool CHeadlessRun::Drive(CRunDriver& rDriver) {
    rDriver.OnMeasurementAccepted = [this](const CSituation& rSituation) {
        m_Report.SetInitial(rSituation);
        Print("measured" + DescribeReadings(rSituation));
    };
    rDriver.OnVerdictAccepted = [this](const CSituation& rSituation) {
        m_Report.SetFinal(rSituation);
        Print("final" + DescribeReadings(rSituation) +
              Format(", target %u", rSituation.m_Progress.m_TargetUnbalance));
    };
    // The picture of the verdict's first notification shows an average that has just begun.
    rDriver.OnVerdictMeasured = [this] { TakeScreenshot(); };
    rDriver.SetHoleRings(m_rSession.GetHoleRings());
    rDriver.OnFitted = [this](const CFitting& rFitting) {
        if (rFitting.m_bScrews) {
            m_Report.SetScrews(rFitting.m_Column, rFitting.m_Screws);
        } else {
            m_Report.SetWeights(rFitting.m_Column, rFitting.m_Angles);
        }
        Print(Describe(rFitting));
    };
    m_ProgressTimerID = IFEventLoop::Current().SetTimer(PROGRESS_PERIOD, [this](std::uint32_t) {
        const CSituation Situation = m_rSession.Look();
        if (Situation.m_bRunning && Situation.m_Notification.GetAction() == CPreBalCodes::eMeasure) {
            Print("reading" + DescribeReadings(Situation));
        }
    });
    rDriver.Start();
    IFEventLoop::Current().RunUntil(
        [&rDriver] { return rDriver.GetOutcome() != CRunDriver::Outcome::eRunning; }, eRunTimeout);
    IFEventLoop::Current().KillTimer(std::exchange(m_ProgressTimerID, 0));
    Record();
    const bool bFinished = rDriver.GetOutcome() == CRunDriver::Outcome::eFinished;
    if (!bFinished) {
        Print("The run has ended: " + rDriver.GetReason());
    }
    return bFinished;
}

void CHeadlessRun::RecordCalibration() {
    PreBalDB::CPreBalDatabase Database(m_rSession.GetMachineName());
    constexpr const char* CONFIGURATION = "Default";
    PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(CONFIGURATION);
    const auto SetCalibration = [&](const math::matrix<double>& rInvA,
                                    const std::vector<math::matrix<double>>& rUA) {
        m_Report.SetCalibration(CONFIGURATION, rEntry.GetCalibratedRPM(), rEntry.GetTargetUnbalance(), rInvA,
                                rUA);
    };
    // A machine has records of one kind: its key tells the mode.
    if (const PreBalDB::CTwoPlaneBalancingTableEntry* pPlanes = rEntry.GetTwoPlane()) {
        SetCalibration(pPlanes->GetInvA(), {pPlanes->GetUAPlane1(), pPlanes->GetUAPlane2()});
    } else if (const PreBalDB::CSinglePlaneBalancingTableEntry* pPlane = rEntry.GetSinglePlane()) {
        SetCalibration(pPlane->GetInvA(), {pPlane->GetUA()});
    }
}

ExitCode CHeadlessRun::Run() {
    const bool bPrebalance = m_rOptions.m_Procedure != COptions::Procedure::eRebalance;
    const bool bRebalance = m_rOptions.m_Procedure != COptions::Procedure::ePrebalance;
    bool bFinished = true;
    if (m_rOptions.IsDrivenByNc()) {
        // The NC knows which procedures it wants, and in what order; here only their number counts.
        for (int nToGo = (bPrebalance ? 1 : 0) + (bRebalance ? 1 : 0); nToGo > 0 && bFinished; --nToGo) {
            bFinished = RunNcProcedure();
        }
    } else {
        if (bPrebalance) {
            bFinished = RunProcedure(Softkeys::eActionStart);
        }
        if (bFinished && bPrebalance && bRebalance) {
            DisturbRotor();
        }
        if (bFinished && bRebalance) {
            bFinished = RunProcedure(Softkeys::eActionRebalance);
        }
    }
    if (bFinished) {
        RecordCalibration();
    }
    m_Report.SetFinished(bFinished);
    Print("result: " + m_Report.GetResult());
    return m_Report.GetExitCode();
}
