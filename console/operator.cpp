#include "console/operator.h"

#include <utility>

#include "platform/system/eventloop.h"

namespace {

std::string DescribeAngles(const std::vector<int>& rAngles) {
    std::string Text;
    for (const int Angle : rAngles) {
        Text += (Text.empty() ? "" : ", ") + std::to_string(Angle) + "°";
    }
    return Text;
}

}  // namespace

COperator::COperator(IFOperatorPanel& rPanel, IFMachine* pMachine, std::uint32_t WorkingSpeed)
    : m_rPanel(rPanel), m_pMachine(pMachine), m_WorkingSpeed(WorkingSpeed) {}

COperator::~COperator() {
    *m_pAlive = false;
    Stop();
}

void COperator::Start() {
    m_Outcome = Outcome::eRunning;
    m_LastChange = IFEventLoop::Current().Now();
    m_TimerID = IFEventLoop::Current().SetTimer(eLookPeriod, [this](std::uint32_t) { OnLook(); });
}

void COperator::Stop() {
    if (m_TimerID != 0) {
        IFEventLoop::Current().KillTimer(std::exchange(m_TimerID, 0));
    }
}

bool COperator::HasPanelChanged(const CSituation& rSituation) {
    const bool bChanged = !m_LastSeen || m_LastSeen->m_Progress.m_State != rSituation.m_Progress.m_State ||
                          m_LastSeen->m_Menu != rSituation.m_Menu ||
                          !(m_LastSeen->m_Notification == rSituation.m_Notification);
    m_LastSeen = rSituation;
    return bChanged;
}

void COperator::OnLook() {
    const CSituation Situation = m_rPanel.Look();
    const std::uint64_t Now = IFEventLoop::Current().Now();
    if (HasPanelChanged(Situation)) {
        m_LastChange = Now;
    } else if (m_pMachine != nullptr && Now - m_LastChange > ePatience) {
        m_Reason = "nothing has changed for " + std::to_string(ePatience / 1000) + " s in state " +
                   Situation.m_Progress.m_State + ": \"" + Situation.m_Progress.m_Instruction +
                   "\"; is the module connected and the spindle free to turn?";
        m_Outcome = Outcome::eStuck;
        Stop();
        return;
    }
    if (!m_bBusy) {
        Act(Situation, ChooseDeed(Situation));
    }
}

void COperator::Act(const CSituation& rSituation, Deed ToDo) {
    switch (ToDo) {
        case Deed::eWait:
            break;
        case Deed::eStopSpindle:
            SetSpeed(0);
            break;
        case Deed::eStartSpindle: {
            const bool bFirst = rSituation.m_Notification.GetAction() == CPreBalCodes::eNone ||
                                rSituation.m_Progress.m_CalibratedRPM == 0;
            SetSpeed(bFirst ? m_WorkingSpeed : rSituation.m_Progress.m_CalibratedRPM);
            break;
        }
        case Deed::eFitAndConfirm:
            FitWeights(rSituation);
            break;
        case Deed::eConfirm:
            if (rSituation.m_Notification.GetAction() == CPreBalCodes::eMeasurementValuesOK &&
                OnMeasurementAccepted) {
                OnMeasurementAccepted(rSituation);
            }
            Confirm();
            break;
        case Deed::eJudge:
            if (OnVerdictAccepted) {
                OnVerdictAccepted(rSituation);
            }
            Stop();
            m_Outcome = Outcome::eFinished;
            break;
        case Deed::eGiveUp:
            m_Reason = rSituation.m_Progress.m_Warning;
            Stop();
            m_Outcome = Outcome::eFailed;
            break;
    }
}

void COperator::Command(const nlohmann::json& rRequest, std::function<void()> OnDone) {
    m_bBusy = true;
    m_pMachine->Request(rRequest,
                        [this, pAlive = m_pAlive, Done = std::move(OnDone)](const nlohmann::json& rAnswer) {
                            if (!*pAlive) {
                                return;
                            }
                            m_bBusy = false;
                            if (rAnswer.contains("error")) {
                                m_Reason = "the machine refuses: " + rAnswer["error"].get<std::string>();
                                m_Outcome = Outcome::eStuck;
                                Stop();
                                return;
                            }
                            Done();
                        });
}

void COperator::SetSpeed(std::uint32_t RPM) {
    if (m_pMachine == nullptr) {
        const std::string Text = RPM == 0 ? "Please stop the spindle."
                                          : "Please run the spindle at " + std::to_string(RPM) + " rpm.";
        if (std::exchange(m_LastSaid, Text) != Text) {
            m_rPanel.Say(Text);
        }
        return;
    }
    if (m_CommandedSpeed != RPM) {
        m_CommandedSpeed = RPM;
        Command({{"speed", RPM}}, [] {});
    }
}

void COperator::FitWeights(const CSituation& rSituation) {
    m_ToFit.clear();
    m_Columns.clear();
    for (std::size_t Plane = 0; Plane < rSituation.m_Progress.m_Readings.size(); ++Plane) {
        m_ToFit.push_back(rSituation.GetAngles(Plane));
        m_Columns.push_back(rSituation.GetColumn(Plane));
    }
    FitPlane(0);
}

void COperator::FitPlane(std::size_t Plane) {
    while (Plane < m_ToFit.size() && m_ToFit[Plane].empty()) {
        ++Plane;
    }
    if (Plane == m_ToFit.size()) {
        // Somebody else confirms by the softkey, or by starting the spindle, once the weights are where they
        // belong.
        if (m_pMachine != nullptr) {
            Confirm();
        }
        return;
    }
    const std::vector<int>& rAngles = m_ToFit[Plane];
    if (OnWeightsFitted) {
        OnWeightsFitted(Plane, m_Columns[Plane], rAngles);
    }
    if (m_pMachine == nullptr) {
        const std::string Text = "Please set the weights of plane " + std::to_string(Plane + 1) + " to " +
                                 DescribeAngles(rAngles) + ", then start the spindle.";
        if (std::exchange(m_LastSaid, Text) != Text) {
            m_rPanel.Say(Text);
        }
        FitPlane(Plane + 1);
        return;
    }
    Command({{"weights", {{"plane", Plane + 1}, {"angles", rAngles}}}},
            [this, Plane] { FitPlane(Plane + 1); });
}

void COperator::Confirm() {
    const CSituation Situation = m_rPanel.Look();
    if (const Softkeys::CKey* pKey = Softkeys::FindKey(Situation.m_Menu, Softkeys::eActionNext)) {
        m_rPanel.PressKey(*pKey);
    }
}
