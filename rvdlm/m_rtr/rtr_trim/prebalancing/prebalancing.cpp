#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

#include "contract/menus.h"
#include "contract/prebalprogress.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/settings/installation.h"
#include "rvlib/settings/xmlconfig.h"

CPreBalancing::CPreBalancing(CPreBalMainWndInterface* pMainWnd, PreBalDB::CPreBalBaseTableEntry& rEntry,
                             const std::string& rSecondTitle)
    : CMeasurementSubState(rEntry.GetCalibratedRPM(), rEntry.GetRPMTolerance()),
      m_pMainWnd(pMainWnd),
      m_pEntry(&rEntry) {
    SetSetName(rSecondTitle);
    CRVXMLConfig Config;
    if (!Config.Open()) {
        RV_ERROR(RtrTrim::g_pLog, "can't open settings file (%s)", GetConfigFile().GetText().c_str());
        return;
    }
    m_IgnoreRebalWeights = Config.GetInt("system_falconet", "IgnoreRebalWeights", 0);
    if (m_IgnoreRebalWeights != 0) {
        RV_WARNING(RtrTrim::g_pLog, "Ignoring RebalWeights (UA-Compensation not possible) REGISTRY!!!!");
    }
    m_UseOldWeightChangeMenu =
        Config.GetInt("system_falconet", "UseOldPrebalancingWeightChangeMenu", 0) != 0 ? 1 : 0;
    if (m_UseOldWeightChangeMenu != 0) {
        RV_WARNING(RtrTrim::g_pLog, "old menu to change weight positions is used");
    }
}

void CPreBalancing::PleaseQueryXYValuesNOW() {
    m_pMainWnd->PleaseQueryXYValuesNOW();
}

void CPreBalancing::RepaintMeasurement() {
    m_pMainWnd->RepaintMeasurement();
}

void CPreBalancing::OnMeasurementLost() {
    m_pMainWnd->SetMenu(Menus::eWait);
    m_Notification.m_Action = CPreBalNotification::eMeasure;
    m_pMainWnd->PreBalNotification(m_Notification);
}

void CPreBalancing::ShowMeasurementOK() {
    SetWarningMode(Warnings::eNone);
}

void CPreBalancing::ShowOutOfLockWarning() {
    SetWarningMode(Warnings::eOutOfLock);
}

void CPreBalancing::ShowWrongRPMWarning() {
    SetWarningMode(Warnings::eWrongRPM);
}

void CPreBalancing::ShowWrongRPMAndOutOfLockWarning() {
    SetWarningMode(Warnings::eWrongRPMAndOutOfLock);
}

void CPreBalancing::CurrentRPM(std::uint16_t wRPM) {
    CStatusView::SetCurrentRPM(wRPM);
}

void CPreBalancing::WarningModeChanged(std::uint32_t Mode) {
    m_pMainWnd->WarningModeChanged(Mode);
}

CPreBalancing::CPaneLayout CPreBalancing::CutPane(const CRect& rRect) {
    constexpr int LOW_PANE = 504;
    constexpr int LOW_STATUS_HEIGHT = 17;
    const int Height = rRect.Height();
    const int InstructionBottom = rRect.top + Height / 6;
    const int StatusTop = rRect.bottom - (Height >= LOW_PANE ? Height / 28 : LOW_STATUS_HEIGHT);
    return {CRect(rRect.left, rRect.top, rRect.right, InstructionBottom),
            CRect(rRect.left, InstructionBottom, rRect.right, StatusTop),
            CRect(rRect.left, StatusTop, rRect.right, rRect.bottom)};
}

void CPreBalancing::PaintViews(CDC* pDC, const CPaneLayout& rLayout, unsigned Mask) {
    CInstructionView::Paint(pDC, rLayout.m_Instruction);
    if ((Mask & ePaintStatus) != 0) {
        CStatusView::Paint(pDC, rLayout.m_Status);
    }
}

void CPreBalancing::GetProgress(CPreBalProgress& rProgress) const {
    rProgress.m_Step = GetCurrentStep();
    rProgress.m_NumberOfSteps = GetNumberOfSteps();
    rProgress.m_InstructionMode = GetMode();
    rProgress.m_Instruction = GetInstructionText();
    rProgress.m_WarningMode = GetWarningMode();
    rProgress.m_Warning = GetWarningText();
    rProgress.m_Menu = m_pMainWnd->GetMenu();
    rProgress.m_CurrentRPM = GetCurrentRPM();
    rProgress.m_CalibratedRPM = m_pEntry->GetCalibratedRPM();
    rProgress.m_TargetUnbalance = m_pEntry->GetTargetUnbalance();
    Describe(rProgress.m_Measuring);
}
