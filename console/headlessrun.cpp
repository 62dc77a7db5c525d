#include "console/headlessrun.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "console/ncwatch.h"
#include "console/offlinenotes.h"
#include "console/savedresult.h"
#include "contract/actions.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/eventloop.h"
#include "platform/window/messagebox.h"

using PreBalDB::StoreTexts::Fill;

namespace {

/// Between two progress lines while nothing else happens, ms.
constexpr std::uint32_t PROGRESS_PERIOD = 1000;

std::string Format(const char* pFormat, auto... Values) {
    char Buffer[512];
    std::snprintf(Buffer, sizeof Buffer, pFormat, Values...);
    return Buffer;
}

}  // namespace

CHeadlessRun::CHeadlessRun(CConsoleSession& rSession, const COptions& rOptions)
    : m_rSession(rSession), m_rOptions(rOptions), m_Recorder(rSession) {
    GetReport().SetProcedure(ToString(rOptions.m_Procedure));
    SetMessageBoxPresenter(
        [this](const CShownMessage& rMessage) { Print(rMessage.m_Title + ": " + rMessage.m_Text); });
    m_rSession.OnChanged = [this] { m_Recorder.RecordLater(); };
    m_rSession.OnSay = [this](const std::string& rText) { Print(rText); };
    m_Recorder.OnProgress = m_rSession.OnSay;
    m_Recorder.OnTrouble = m_rSession.OnSay;
    m_Recorder.OnSituation = [this](const CSituation& rSituation) {
        if (OnSituation) {
            OnSituation(rSituation);
        }
    };
    m_Recorder.OnSeen = [this](const CSituation& rSituation) {
        m_Verdict.Look(rSituation);
        Doubt(rSituation);
    };
    m_Recorder.OnRecorded = [this] {
        if (m_pWatch != nullptr) {
            m_pWatch->LookNow();  // the NC may start its next procedure before the next regular look
        }
    };
}

CHeadlessRun::~CHeadlessRun() {
    SetMessageBoxPresenter(nullptr);
    m_rSession.OnChanged = nullptr;
    m_rSession.OnSay = nullptr;
}

void CHeadlessRun::Print(const std::string& rText) {
    const std::string Line =
        Format("%8.1f s  ", static_cast<double>(IFEventLoop::Current().Now()) / 1000.0) + rText;
    PrintLine(Line);
}

void CHeadlessRun::PrintLine(const std::string& rLine) const {
    if (OnProgress) {
        OnProgress(rLine);
        return;
    }
    std::printf("%s\n", rLine.c_str());
    std::fflush(stdout);
}

void CHeadlessRun::Fail(const std::string& rReason) {
    m_Verdict.SetReason(rReason);
    Print(rReason);
}

bool CHeadlessRun::RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) const {
    return IFEventLoop::Current().RunUntil([&] { return IsBrokenOff() || rDone(); }, Timeout) && rDone();
}

void CHeadlessRun::Pause(std::uint32_t Milliseconds) const {
    RunUntil([] { return false; }, Milliseconds);
}

nlohmann::json CHeadlessRun::RequestAndWait(const nlohmann::json& rRequest) {
    std::optional<nlohmann::json> Answer;
    m_rSession.GetMachine()->Request(rRequest,
                                     [&Answer](const nlohmann::json& rAnswer) { Answer = rAnswer; });
    constexpr std::uint32_t ANSWER_TIMEOUT = 10000;
    // Broken off or not: an answer that comes later would find nobody.
    IFEventLoop::Current().RunUntil([&Answer] { return Answer.has_value(); }, ANSWER_TIMEOUT);
    return Answer.value_or(nlohmann::json{{"error", "no answer"}});
}

void CHeadlessRun::BringSpindleToStart(bool bTurning) {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    const std::uint32_t Speed = bTurning ? m_rSession.GetWorkingSpeed() : 0;
    RequestAndWait({{"speed", Speed}});
    std::uint64_t Deadline = IFEventLoop::Current().Now() + SPIN_UP_TIMEOUT;
    while (IFEventLoop::Current().Now() < Deadline && !IsBrokenOff()) {
        const nlohmann::json State = RequestAndWait({{"state", nlohmann::json::object()}});
        const bool bAtSpeed = std::abs(State.value("speed", -1.0) - Speed) < 0.5;
        if (bAtSpeed && (Speed == 0 || State.value("lock", false))) {
            break;
        }
        Pause(100);
    }
    // The module has to hear of it.
    Pause(1500);
}

void CHeadlessRun::DisturbRotor() {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    // A tenth of a weight to the side of where the unbalance was: enough to be measured, well within
    // capacity.
    constexpr double FRACTION = 0.1;
    const nlohmann::json State = RequestAndWait({{"state", nlohmann::json::object()}});
    if (!State.contains("unbalance")) {
        Print(GetText("RUN_UNBALANCE_STAYS"));
        return;
    }
    std::size_t Plane = 0;
    for (const nlohmann::json& rUnbalance : State["unbalance"]) {
        const double Angle = rUnbalance["angle_deg"].get<double>();
        const double Amount = rUnbalance["amount"].get<double>();
        RequestAndWait(
            {{"unbalance",
              {{"plane", ++Plane},
               {"amount", std::hypot(Amount, FRACTION)},
               {"angle_deg",
                std::fmod(Angle + std::atan2(FRACTION, Amount) * 180.0 / 3.141592653589793, 360.0)}}}});
    }
}

bool CHeadlessRun::StartFromWhereItShould(Actions::Action Start) {
    constexpr int TRIES = 3;
    const bool bLookAtMeans = Start == Actions::eRebalance && m_rSession.AreMeansElsewhere();
    for (int nTries = 0; nTries < TRIES; ++nTries) {
        BringSpindleToStart(m_rOptions.m_bStartTurning && !bLookAtMeans);
        if (IsBrokenOff()) {
            return false;
        }
        ForgetResult();
        // A module that has changed its set just now shows so: there is nothing to start, and it is the
        // operator's turn to end that.
        if (m_rSession.Look().m_bRunning) {
            return true;
        }
        if (!m_rSession.StartProcedure(Start)) {
            // A message box that says why comes through the loop.
            Pause(1);
            Fail(GetText(Start == Actions::eRebalance ? "RUN_REBALANCE_REFUSED" : "RUN_DID_NOT_START"));
            return false;
        }
        if (!bLookAtMeans || m_rSession.GetMachine() == nullptr) {
            return true;
        }
        Pause(1);  // what it asks for comes through the loop
        if (m_rSession.Look().m_Notification.GetAction() == CPreBalCodes::eSetWeights) {
            return true;
        }
        // The module has missed that the spindle stands, and measures at once: it is told when it turns
        // again.
        if (nTries + 1 < TRIES) {
            m_rSession.SendAction(Actions::eTerminate, Actions::eNone);
            BringSpindleToStart(true);
        }
    }
    return true;
}

bool CHeadlessRun::RunProcedure(Actions::Action Start) {
    if (!StartFromWhereItShould(Start)) {
        return false;
    }
    COperator Operator(m_rSession, m_rSession.GetMachine(), m_rSession.GetWorkingSpeed());
    m_pOperator = &Operator;
    const bool bFinished = Drive(Operator);
    m_pOperator = nullptr;
    // Ends the procedure; a result that may be kept is kept, but not one that was broken off. One that can't
    // be saved stays for a second try.
    for (int nTries = 0; nTries < 2 && m_rSession.Look().m_bRunning; ++nTries) {
        m_rSession.SendAction(Actions::eTerminate, IsBrokenOff() ? Actions::eNone : Actions::eCommit);
        IFEventLoop::Current().RunUntil([this] { return m_rSession.GetHost().GetActivity() == 0; }, 1000);
    }
    m_Recorder.EndRun(bFinished);
    return bFinished && IsResultSaved();
}

void CHeadlessRun::Doubt(const CSituation& rSituation) {
    // The module has its say first: it may refuse the test run for reasons of its own.
    if (m_pOperator == nullptr || rSituation.m_Progress.m_Measuring.m_Which != Measurement::eNone ||
        rSituation.m_Notification.GetStep() == CNcNotification::eFailure) {
        return;
    }
    if (const std::string Why = m_Recorder.GetAdviser().GetDoubt(); !Why.empty()) {
        m_pOperator->GiveUp(Fill("ADVICE_NOT_KEPT", {Why}));
    }
}

void CHeadlessRun::ForgetResult() {
    m_rSession.GetHost().ForgetResult();
    m_Verdict.Forget();
    GetReport().SetSaved(false);
}

bool CHeadlessRun::IsResultSaved() {
    const bool bSaved = m_rSession.GetHost().IsResultSaved();
    m_Verdict.SetSaved(DescribeSavedResult(m_rSession, bSaved));
    GetReport().SetSaved(bSaved);
    if (!bSaved) {
        Print(GetText("RUN_NOT_SAVED"));
    }
    return bSaved;
}

bool CHeadlessRun::RunNcProcedure() {
    ForgetResult();
    CNcWatch Watch([this] { return m_rSession.Look(); });
    Watch.GetDriverLoss = GetNcLoss;
    m_pWatch = &Watch;
    const bool bFinished = Drive(Watch);
    m_pWatch = nullptr;
    m_Recorder.EndRun(bFinished);
    return bFinished && IsResultSaved();
}

bool CHeadlessRun::Drive(CRunDriver& rDriver) {
    m_Recorder.Attach(rDriver);
    rDriver.SetHoleRings(m_rSession.GetHoleRings());
    m_ProgressTimer.StartPeriodic(PROGRESS_PERIOD, [this] {
        const CSituation Situation = m_rSession.Look();
        if (Situation.m_bRunning && Situation.m_Notification.GetAction() == CPreBalCodes::eMeasure) {
            Print(GetText("RUN_READING") + CRunRecorder::DescribeReadings(Situation) + "  " +
                  m_Verdict.GetSentence().m_Text);
        }
    });
    rDriver.Start();
    RunUntil([&rDriver] { return rDriver.GetOutcome() != CRunDriver::Outcome::eRunning; }, RUN_TIMEOUT);
    rDriver.Stop();
    m_ProgressTimer.Stop();
    m_Recorder.Record();
    const bool bFinished = rDriver.GetOutcome() == CRunDriver::Outcome::eFinished && !IsBrokenOff();
    if (!bFinished && !IsBrokenOff()) {
        m_Verdict.SetReason(rDriver.GetReason());
        Print(Fill("RUN_ENDED", {rDriver.GetReason()}));
    }
    return bFinished;
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
            bFinished = RunProcedure(Actions::eStart);
        }
        if (bFinished && bPrebalance && bRebalance) {
            DisturbRotor();
        }
        if (bFinished && bRebalance) {
            bFinished = RunProcedure(Actions::eRebalance);
        }
    }
    if (IsBrokenOff()) {
        Print(Fill("RUN_BROKEN_OFF", {m_rOptions.GetEndRequest()}));
        m_Verdict.SetBrokenOff(m_rOptions.GetEndRequest());
        bFinished = false;
    }
    if (bFinished) {
        m_Recorder.RecordCalibration();
    }
    GetReport().SetFinished(bFinished);
    m_Recorder.GetArchivist().FinishArchive();
    GetReport().SetDelivered(OfflineNotes::IsAllDelivered());
    Print(GetText("RUN_RESULT") + ": " + GetReport().GetResult());
    m_Verdict.Look(m_rSession.Look());
    PrintLine(m_Verdict.GetConclusion());
    return GetReport().GetExitCode();
}
