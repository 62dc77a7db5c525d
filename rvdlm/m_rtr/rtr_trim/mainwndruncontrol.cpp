// Start and end of procedures.
#include <utility>

#include "contract/hostmessages.h"
#include "contract/menus.h"
#include "contract/warnings.h"
#include "platform/window/messages.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "rvdlm/m_rtr/rtr_trim/savemessages.h"

using RtrTrim::g_pLog;

bool CPreBalancingMainWnd::IsCalibrated() const {
    return m_tabCtrl.IsCalibrated();
}

void CPreBalancingMainWnd::HideConfiguration() {
    BeginWatch();
    m_tabCtrl.ShowWindow(false);
    KillTimer(eHelpTimer);
    m_Browser.ShowWindow(false);
    m_Browser.DestroyWindow();
}

void CPreBalancingMainWnd::ShowConfiguration() {
    KillTimer(eWatchTimer);
    m_tabCtrl.ShowWindow(true);
    m_Browser.Create(this, GetBrowserRect(), eBrowserId);
}

CPreBalancing* CPreBalancingMainWnd::StartPrebalancingSequence() {
    RV_ASSERT(g_pLog, m_tabCtrl.IsWindowVisible() && m_Browser.IsWindowVisible(), "wrong menu state!");
    HideConfiguration();
    RV_ASSERT(g_pLog, m_pPrebalancingSequence == nullptr, "still running");
    m_bSaveFailed = false;
    if (m_pPrebalancingSequence == nullptr) {
        PreBalDB::CPreBalBaseTableEntry* const pEntry = m_tabCtrl.GetCurrentBaseEntry();
        RV_ASSERT(g_pLog, pEntry != nullptr, "Called to early! No base table Entry!");
        if (pEntry != nullptr) {
            m_pPrebalancingSequence =
                m_Makers.m_MakeProcedure(m_tabCtrl.GetBalancingMode(), this, *pEntry, m_Set.Name);
        }
        if (m_pPrebalancingSequence == nullptr) {
            ShowConfiguration();
            return nullptr;
        }
    }
    if (!IsSetUsable()) {
        m_pPrebalancingSequence->AbortBalancing(Warnings::eSetNotUsable);
    }
    return m_pPrebalancingSequence.get();
}

bool CPreBalancingMainWnd::IsSetUsable() const {
    return m_Set.RPMFactorPlane1 == 1 && m_Set.RPMFactorPlane2 == 1;
}

int CPreBalancingMainWnd::StartRun(StartOperation pStart) {
    // A set that can't be used is to be shown, whatever the means: its run is aborted at once.
    const PreBalDB::CPreBalBaseTableEntry* const pEntry = m_tabCtrl.GetCurrentBaseEntry();
    if (m_pPrebalancingSequence == nullptr && pEntry != nullptr && IsSetUsable() &&
        !CanBalance(m_tabCtrl.GetBalancingMode(), *pEntry)) {
        return 0;
    }
    CPreBalancing* const pSequence = StartPrebalancingSequence();
    return pSequence == nullptr ? 0 : (pSequence->*pStart)(m_CurrentRPM, m_OutOfLock, m_InvalidRPM);
}

void CPreBalancingMainWnd::TerminatePrebalancingSequence() {
    if (m_pPrebalancingSequence == nullptr) {
        SendStep(CPreBalNotification::eInactive);
        return;
    }
    m_pPrebalancingSequence.reset();
    m_Menu = Menus::eNone;
    PostToParent(WM_RV_SETMENU, static_cast<WPARAM>(m_Menu));
    // Read anew: the run changed the entry in memory, and only what was saved counts.
    m_tabCtrl.SendMessage(WM_RV_UPDATECONFIGURATION);
    RV_ASSERT(g_pLog, !m_tabCtrl.IsWindowVisible(), "wrong menu state!");
    ShowConfiguration();
    PostToParent(WM_RV_BALANCINGACTIVITY, 0, IsCalibrated() ? 1 : 0);
    NotifyConfigurationShown(IsCalibrated());
    Invalidate();
}

CPreBalancingMainWnd::Commitment CPreBalancingMainWnd::CommitAndSave() {
    if (!m_pPrebalancingSequence->CommitChanges()) {
        return eNoResult;
    }
    const int Saved = m_tabCtrl.SaveDatabase();
    RV_ASSERT_AS(g_pLog, Saved, "m_tabCtrl.SaveDatabase()", "SaveDatabase failed!", false);
    Commitment Result = eNotSaved;
    if (m_tabCtrl.HasDatabase()) {
        const PreBalDB::CStoreOutcome& rOutcome = m_tabCtrl.GetOutcome();
        SaveMessages::TellResult(m_tabCtrl.GetCurrentBaseEntry()->GetProcessName(), rOutcome, m_bSaveFailed);
        if (Saved != 0) {
            Result = rOutcome.m_bCalibrationLost ? eSuperseded : eSaved;
        }
    }
    if (CWnd* const pParent = GetParent()) {
        pParent->SendMessage(WM_RV_RESULTSAVED, Result == eSaved ? 1 : 0);
    }
    return Result;
}

bool CPreBalancingMainWnd::StaysForNextTry(Commitment Result) {
    // Once only: nobody is to be caught in a run whose result can't be saved.
    return Result == eNotSaved && !std::exchange(m_bSaveFailed, true);
}

LRESULT CPreBalancingMainWnd::OnDestroy(WPARAM wParam, LPARAM lParam) {
    m_pPrebalancingSequence.reset();
    LeaveNC();
    return CWnd::WindowProc(WM_DESTROY, wParam, lParam);
}

LRESULT CPreBalancingMainWnd::OnDestroyPending(WPARAM, LPARAM) {
    bool bSaved = false;
    if (m_pPrebalancingSequence != nullptr) {
        bSaved = CommitAndSave() == eSaved;
        m_pPrebalancingSequence.reset();
        KillTimer(eWatchTimer);  // the configuration isn't shown again, which would do it
        m_Menu = Menus::eNone;
        if (CWnd* const pParent = GetParent()) {
            pParent->SendMessage(WM_RV_SETMENU, static_cast<WPARAM>(m_Menu));
        }
        m_tabCtrl.SendMessage(WM_RV_UPDATECONFIGURATION);
    }
    SendStep(CPreBalNotification::eInactive);
    if (m_tabCtrl.HasDatabase()) {
        m_tabCtrl.ShowWindow(false);
        if (!bSaved) {
            m_tabCtrl.NextTab();  // saves the pages
        }
        m_tabCtrl.CloseDatabase();
    }
    m_MachineName.clear();
    m_Set = CSet();
    if (CWnd* const pForeground = GetForegroundWindow()) {
        pForeground->SetFocus();
    } else {
        RV_WARNING(g_pLog, "CPreBalancingMainWnd::OnDestroyPending: cannot set focus!");
    }
    return 1;
}
