// What CBalancingSequence does by its tables on entering a state: step, display, menu, notification.
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

void CBalancingSequence::CountStep(const Sequence::CStepRule& rRule) {
    using Sequence::CStepRule;
    const std::uint32_t Step = GetCurrentStep();
    switch (rRule.m_Kind) {
        case CStepRule::eKeep:
            return;
        case CStepRule::eNext:
            SetCurrentStep(Step + 1);
            return;
        case CStepRule::eNone:
            SetNumberOfSteps(0);
            SetCurrentStep(0);
            return;
        case CStepRule::eFirst:
            break;
        case CStepRule::eFirstUnless:
            if (Step == 1) {
                SetCurrentStep(2);
                return;
            }
            break;
        case CStepRule::eFirstOrNext:
            if (Step == 1) {
                RV_ASSERT_FAIL(RtrTrim::g_pLog, m_rTables.m_pStepOneAlreadyAssertion);
                SetCurrentStep(2);
                return;
            }
            break;
        case CStepRule::eNextOfFew:
            if (Step == 0) {
                SetNumberOfSteps(rRule.m_nSteps);
            }
            SetCurrentStep(Step + 1);
            return;
    }
    SetNumberOfSteps(rRule.m_nSteps);
    SetCurrentStep(1);
}

void CBalancingSequence::ShowState() {
    ShowDisplay();
    ShowMenu();
    NotifyState();
}

void CBalancingSequence::ShowDisplay() {
    const Sequence::CState& rState = GetStateRow();
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        for (const Sequence::CShow& rShow : rState.m_Display.at(i)) {
            ShowOnPlane(*m_Planes[i].m_pMethod, rShow);
        }
    }
}

void CBalancingSequence::ShowOnPlane(CPlaneBalancingMethod& rMethod, const Sequence::CShow& rShow) {
    using Sequence::CShow;
    switch (rShow.m_Kind) {
        case CShow::eNothing:
            return;
        case CShow::eFull:
            break;
        case CShow::ePlain:
            rMethod.SetPlainDisplayMode(rShow.m_Mode);
            return;
        case CShow::ePlainAfterStop:
            // Step 2 only after the spindle was stopped; the weights may have been moved there already.
            if (HasWeightsOnly() && GetCurrentStep() == 2) {
                rMethod.SetPlainDisplayMode(rShow.m_Mode);
                return;
            }
            break;
    }
    rMethod.SetDisplayMode(rShow.m_Mode);
}

void CBalancingSequence::ShowForChange(Sequence::CShow Show) {
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        ShowOnPlane(
            *m_Planes[i].m_pMethod,
            i == 0 ? Show : Sequence::CShow{Sequence::CShow::eFull, CPlaneBalancingMethod::eInactive});
    }
}

void CBalancingSequence::SetDisplayModes(CPlaneBalancingMethod::DisplayMode Mode) {
    for (CPlane& rPlane : m_Planes) {
        rPlane.m_pMethod->SetDisplayMode(Mode);
    }
}

void CBalancingSequence::ShowMenu() {
    using Sequence::CMenuRule;
    const CMenuRule& rMenu = GetStateRow().m_Menu;
    switch (rMenu.m_Kind) {
        case CMenuRule::eNone:
            return;
        case CMenuRule::eFixed:
            m_pMainWnd->SetMenu(rMenu.m_Weights);
            return;
        case CMenuRule::eByMeans:
            m_pMainWnd->SetMenu(HasWeightsOnly() ? rMenu.m_Weights : rMenu.m_Screws);
            return;
        case CMenuRule::eByStore:
            m_pMainWnd->SetMenu(!HasWeightsOnly()              ? rMenu.m_Screws
                                : CheckStoredWeightPositions() ? rMenu.m_Stored
                                                               : rMenu.m_Weights);
            return;
        case CMenuRule::eTestUnbalance:
            m_pMainWnd->SetMenu(GetActiveMethod().GetTestUnbalanceMenu());
            return;
        case CMenuRule::eCheckWeights:
            m_pMainWnd->SetMenu(m_Planes.front().m_pMethod->GetCheckWeightsMenu(GetMenuPlanes()));
            return;
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
    FillNotification();
    m_Notification.m_Step = Step;
    m_Notification.m_Action = Action;
    m_pMainWnd->PreBalNotification(m_Notification);
}

void CBalancingSequence::FillNotification() {
    for (CPlane& rPlane : m_Planes) {
        rPlane.m_pMethod->FillNotification(m_Notification);
    }
}
