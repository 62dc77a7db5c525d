#include "console/operator.h"

#include <cstdio>
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

std::string DescribeScrews(const std::vector<CRotorScrew>& rScrews) {
    std::string Text;
    for (const CRotorScrew& rScrew : rScrews) {
        char Grams[64];
        std::snprintf(Grams, sizeof Grams, "%g", rScrew.m_Grams);
        Text +=
            (Text.empty() ? "" : ", ") + std::string(Grams) + " g in hole " + std::to_string(rScrew.m_Hole);
    }
    return Text.empty() ? "none" : Text;
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
    for (std::size_t Plane = 0; Plane < rSituation.m_Progress.m_Readings.size(); ++Plane) {
        CFitting Fitting{Plane, rSituation.GetColumn(Plane), {}, rSituation.HasScrews(Plane), {}};
        if (Fitting.m_bScrews) {
            // No screw at all is a fitting too: those of the last run come out.
            Fitting.m_Screws = rSituation.GetScrews(Plane, m_Rings.at(Plane));
        } else {
            Fitting.m_Angles = rSituation.GetAngles(Plane);
        }
        if (Fitting.m_bScrews || !Fitting.m_Angles.empty()) {
            m_ToFit.push_back(std::move(Fitting));
        }
    }
    FitFrom(0);
}

std::string COperator::Describe(const CFitting& rFitting) {
    const std::string Plane = std::to_string(rFitting.m_Plane + 1);
    return rFitting.m_bScrews ? "screws of plane " + Plane + ": " + DescribeScrews(rFitting.m_Screws)
                              : "weights of plane " + Plane + " to " + DescribeAngles(rFitting.m_Angles);
}

void COperator::FitFrom(std::size_t Place) {
    if (Place == m_ToFit.size()) {
        // Somebody else confirms by the softkey, or by starting the spindle, once everything is where it
        // belongs.
        if (m_pMachine != nullptr) {
            Confirm();
        }
        return;
    }
    const CFitting& rFitting = m_ToFit[Place];
    if (OnFitted) {
        OnFitted(rFitting);
    }
    if (m_pMachine == nullptr) {
        const std::string Text = "Please set the " + Describe(rFitting) + ", then start the spindle.";
        if (std::exchange(m_LastSaid, Text) != Text) {
            m_rPanel.Say(Text);
        }
        FitFrom(Place + 1);
        return;
    }
    const std::size_t Plane = rFitting.m_Plane + 1;
    nlohmann::json Request;
    if (rFitting.m_bScrews) {
        Request["screws"] = {{"plane", Plane}, {"fitted", nlohmann::json::array()}};
        for (const CRotorScrew& rScrew : rFitting.m_Screws) {
            Request["screws"]["fitted"].push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
        }
    } else {
        Request["weights"] = {{"plane", Plane}, {"angles", rFitting.m_Angles}};
    }
    Command(Request, [this, Place] { FitFrom(Place + 1); });
}

void COperator::Confirm() {
    const CSituation Situation = m_rPanel.Look();
    if (const Softkeys::CKey* pKey = Softkeys::FindKey(Situation.m_Menu, Softkeys::eActionNext)) {
        m_rPanel.PressKey(*pKey);
    }
}
