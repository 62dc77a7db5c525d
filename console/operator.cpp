#include "console/operator.h"

#include <utility>

#include "contract/actions.h"
#include "contract/warnings.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;

COperator::COperator(IFOperatorPanel& rPanel, IFMachine* pMachine, std::uint32_t WorkingSpeed)
    : CRunDriver([&rPanel] { return rPanel.Look(); }),
      m_rPanel(rPanel),
      m_pMachine(pMachine),
      m_WorkingSpeed(WorkingSpeed) {}

COperator::~COperator() {
    m_Lifetime.End();
    Stop();
}

void COperator::OnLook(const CSituation& rSituation) {
    const bool bSpeedAsked = rSituation.m_Notification.GetAction() == CPreBalCodes::eSetSpindleSpeed;
    if (!m_bBusy && IsSpindleMissed(rSituation)) {
        Act(rSituation, Deed::eStartSpindle);
    } else if (!m_bBusy && !(bSpeedAsked && m_pMachine != nullptr && !IsAtSpeed(rSituation))) {
        Act(rSituation, ChooseDeed(rSituation));
    }
}

bool COperator::IsSpindleMissed(const CSituation& rSituation) const {
    if (m_pMachine == nullptr || m_CommandedSpeed.value_or(0) != 0) {
        return false;
    }
    const std::int32_t Action = rSituation.m_Notification.GetAction();
    const bool bWrongSpeed = rSituation.m_Warning == Warnings::eWrongRPM ||
                             rSituation.m_Warning == Warnings::eWrongRPMAndOutOfLock;
    const bool bAsked = Action == CPreBalCodes::eSetSpindleSpeed;
    return Action == CPreBalCodes::eMeasure ? bWrongSpeed
                                            : bAsked && (m_CommandedSpeed || !IsAtSpeed(rSituation));
}

bool COperator::IsAtSpeed(const CSituation& rSituation) const {
    const std::uint32_t Wanted = m_CommandedSpeed.value_or(m_WorkingSpeed);
    const std::uint32_t Slip = Wanted / 20;
    const std::uint32_t Shown = rSituation.m_Progress.m_CurrentRPM;
    return Shown + Slip >= Wanted && Shown <= Wanted + Slip;
}

void COperator::Act(const CSituation& rSituation, Deed ToDo) {
    if (ToDo != Deed::eFitAndConfirm) {
        m_FittedFor.reset();
    }
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
            End(Outcome::eFinished);
            break;
        case Deed::eGiveUp:
            End(Outcome::eFailed, rSituation.m_Progress.m_Warning);
            break;
    }
}

void COperator::Command(const nlohmann::json& rRequest, std::function<void()> OnDone) {
    m_bBusy = true;
    m_pMachine->Request(
        rRequest, m_Lifetime.Guard([this, Done = std::move(OnDone)](const nlohmann::json& rAnswer) {
            m_bBusy = false;
            if (rAnswer.contains("error")) {
                End(Outcome::eStuck, Fill("RUN_MACHINE_REFUSES", {rAnswer["error"].get<std::string>()}));
                return;
            }
            Done();
        }));
}

void COperator::SetSpeed(std::uint32_t RPM) {
    if (m_pMachine == nullptr) {
        const std::string Text =
            RPM == 0 ? GetText("RUN_PLEASE_STOP") : Fill("RUN_PLEASE_RUN", {std::to_string(RPM)});
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
    if (m_FittedFor == rSituation.m_Notification) {
        FitFrom(m_ToFit.size());
        return;
    }
    m_FittedFor = rSituation.m_Notification;
    m_ToFit = FindFittings(rSituation, GetHoleRings());
    FitFrom(0);
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
        const std::string Text = Fill("RUN_PLEASE_SET", {Describe(rFitting)});
        if (std::exchange(m_LastSaid, Text) != Text) {
            m_rPanel.Say(Text);
        }
        FitFrom(Place + 1);
        return;
    }
    Command(MakeRequest(rFitting), [this, Place] { FitFrom(Place + 1); });
}

void COperator::Confirm() {
    const CSituation Situation = Look();
    if (const MenuKeys::CKey* pKey = MenuKeys::FindKey(Situation.m_Menu, Actions::eNext)) {
        m_rPanel.PressKey(*pKey);
    }
}
