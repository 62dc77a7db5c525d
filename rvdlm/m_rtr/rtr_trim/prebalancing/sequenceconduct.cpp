// What entering a state and measuring do to page, host and NC in CBalancingSequence, and the keys that move
// weights.
#include "contract/warnings.h"
#include "platform/system/eventloop.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightkeys.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

void CBalancingSequence::CountStep(const Sequence::CStepRule& rRule) {
    const Sequence::CStepCount Now{GetCurrentStep(), GetNumberOfSteps()};
    const Sequence::CStepCount Next = Sequence::CountStep(rRule, Now);
    if (Next == Now) {
        return;
    }
    if (Next.m_bStepOneAlready) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, m_rTables.m_pStepOneAlreadyAssertion);
    }
    SetNumberOfSteps(Next.m_nSteps);
    SetCurrentStep(Next.m_Step);
}

void CBalancingSequence::ShowState() {
    ShowDisplay();
    ShowMenu();
    NotifyState();
}

void CBalancingSequence::ShowMenu() {
    if (const std::optional<std::int32_t> Menu = m_Entry.ChooseMenu(GetStateRow())) {
        m_pMainWnd->SetMenu(*Menu);
    }
}

void CBalancingSequence::NotifyState() {
    using Sequence::CNotifyRule;
    const CNotifyRule& rNotify = GetStateRow().m_Notify;
    if (rNotify.m_Kind == CNotifyRule::eSend) {
        Notify(rNotify.m_Step, rNotify.m_Action);
    } else if (rNotify.m_Kind == CNotifyRule::eStoreAction) {
        m_Notification.m_Action = rNotify.m_Action;
    }
}

void CBalancingSequence::Notify(CPreBalNotification::Step Step, CPreBalNotification::Action Action) {
    m_Planes.FillNotification(m_Notification);
    m_Notification.m_Step = Step;
    m_Notification.m_Action = Action;
    m_pMainWnd->PreBalNotification(m_Notification);
}

void CBalancingSequence::CurrentXYValuePlane1(std::int16_t x, std::int16_t y) {
    StoreReading(0, x, y);
}

void CBalancingSequence::CurrentXYValuePlane2(std::int16_t x, std::int16_t y) {
    StoreReading(1, x, y);
}

void CBalancingSequence::StoreReading(std::size_t Sensor, std::int16_t x, std::int16_t y) {
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        if (m_Planes.Get(i).m_Sensor != Sensor) {
            continue;
        }
        m_Measuring.Store(i, x, y, IsConditionMet());
        m_Arrived.Add({IFEventLoop::Current().Now(), static_cast<std::uint8_t>(Sensor), x, y,
                       GetMeasurement(), CanMeasure() != 0 && IsConditionMet(), m_RPM});
        // While measuring, samples are taken by the tick: the number of samples is a time.
        if (CanMeasure() == 0) {
            SetEvent(CEvent(eXYValueChanged, i));
        }
    }
}

void CBalancingSequence::OnMeasurementTick() {
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        SetEvent(CEvent(eXYValueChanged, i));
    }
}

void CBalancingSequence::RestartMeasurement() {
    m_Measuring.Restart();
}

int CBalancingSequence::HandleMeasuringEvent(const CEvent& rEvent) {
    switch (rEvent.m_Kind) {
        case eRPMChanged:
            UpdateRPM(m_RPM);
            return 1;
        case eOutOfLockChanged:
            UpdateOutOfLock(m_NotLocked);
            return 1;
        case eXYValueChanged:
            TakeSample(rEvent.m_Plane);
            return 1;
        default:
            return Ignore(rEvent);
    }
}

void CBalancingSequence::TakeSample(std::size_t Plane) {
    if (!m_Measuring.TakeSample(Plane, CanMeasure() != 0)) {
        return;
    }
    const Sequence::CMeasuringRule* pRule = Sequence::FindMeasuringRule(GetStateRow().m_Role);
    if (pRule == nullptr) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return;
    }
    if (pRule->m_bFinal) {
        TestTargetUnbalanceAndDisplayWarning(pRule->m_Step, pRule->m_StepOver);
    } else if (AddSample(Plane) != 0 && m_pMainWnd->GetMenu() != pRule->m_CompleteMenu) {
        m_pMainWnd->SetMenu(pRule->m_CompleteMenu);
        Notify(pRule->m_Step, CPreBalNotification::eMeasurementValuesOK);
    }
}

void CBalancingSequence::TestTargetUnbalanceAndDisplayWarning(CPreBalNotification::Step Within,
                                                              CPreBalNotification::Step Over) {
    RV_ASSERT_AS(RtrTrim::g_pLog, CanMeasure() != 0, "CMeasurementSubState::CanMeasure()", "invalid state",
                 false);
    const bool bWithin = m_Measuring.Judge(static_cast<double>(m_pEntry->GetTargetUnbalance()));
    SetWarningMode(bWithin ? Warnings::eNone : Warnings::eOverTarget);
    const CPreBalNotification::Step Verdict = bWithin ? Within : Over;
    // Without the flag the NC is told from the first sample on, which judges an average just emptied.
    const bool bTell = !m_bVerdictOnFullWindow || m_Measuring.AreAllMeasured(CanMeasure() != 0);
    if (bTell && m_Notification.m_Step != Verdict) {
        // With the action that the state left: the NC sees one message a change of the verdict.
        m_Notification.m_Step = Verdict;
        m_pMainWnd->PreBalNotification(m_Notification);
    }
}

bool CBalancingSequence::IsAtCalibratedSpeed() const {
    return IsSpeedInWindow(m_RPM, m_pEntry->GetCalibratedRPM(), m_pEntry->GetRPMTolerance());
}

bool CBalancingSequence::AdoptStoredWeightPositions() {
    const std::optional<std::vector<Matrix>> Positions = m_Positions.Find();
    if (!Positions) {
        return false;
    }
    SetFirstPositions(*Positions);
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        m_Planes.Get(i).m_pMethod->SetTestUnbalanceVectorInDeg(Positions->at(i));
    }
    return true;
}

void CBalancingSequence::ShowActiveMenu(MenuQuery Query) {
    m_pMainWnd->SetMenu((GetActiveMethod().*Query)(m_Entry.GetMenuPlanes()));
}

bool CBalancingSequence::HandleTogglePlaneKey(MenuQuery Query) {
    if (m_KeyAction != eTogglePlane || m_Planes.GetCount() < 2) {
        return false;
    }
    ToggleActivePlane();
    ShowActiveMenu(Query);
    return true;
}

void CBalancingSequence::HandleChangeWeightKeys() {
    switch (m_KeyAction) {
        case eIncrement:
        case eDecrement:
        case eNeutralPosition:
        case eWeightSelection:
        case eStepSelection:
            GetActiveMethod().KeyPressed(m_KeyAction, 0);
            return;
        default:
            break;
    }
    const WeightKeys::CKey* const pKey = WeightKeys::Find(m_KeyAction);
    if (pKey == nullptr) {
        return;
    }
    int Step = 0;  // of the active weight: chosen by the operator, as the means know
    if (pKey->m_Weight != WeightKeys::eActiveWeight) {
        const bool bSetup = m_Notification.m_Step == CPreBalNotification::eSetup;
        RV_ASSERT_AS(RtrTrim::g_pLog, bSetup || m_Notification.m_Step == CPreBalNotification::eReBalActive,
                     "FALSE", "impossible", false);
        Step = bSetup ? WeightKeys::SETUP_STEP : WeightKeys::REBALANCE_STEP;
    }
    GetActiveMethod().KeyPressed(m_KeyAction, Step);
    m_Planes.FillNotification(m_Notification);
    m_Notification.m_Action = CPreBalNotification::eSetWeights;
    m_pMainWnd->PreBalNotification(m_Notification);
}
