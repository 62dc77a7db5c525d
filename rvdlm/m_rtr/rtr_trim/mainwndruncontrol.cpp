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

void CPreBalancingMainWnd::HideConfiguration() {
    m_Conversation.BeginWatch();
    m_tabCtrl.EndEditing();
    m_tabCtrl.ShowWindow(false);
    KillTimer(HELP_TIMER);
    m_Browser.ShowWindow(false);
    m_Browser.DestroyWindow();
}

void CPreBalancingMainWnd::ShowConfiguration() {
    m_Conversation.EndWatch();
    m_tabCtrl.ShowWindow(true);
    m_Browser.Create(this, GetBrowserRect(), BROWSER_ID);
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
                m_Makers.m_MakeProcedure(m_tabCtrl.GetBalancingMode(), this, *pEntry, GetSet().Name);
        }
        if (m_pPrebalancingSequence == nullptr) {
            ShowConfiguration();
            return nullptr;
        }
    }
    if (!m_Conversation.IsSetUsable()) {
        m_pPrebalancingSequence->AbortBalancing(Warnings::eSetNotUsable);
    }
    return m_pPrebalancingSequence.get();
}

CPreBalancing* CPreBalancingMainWnd::GetProcedureToAbort() {
    if (m_pPrebalancingSequence == nullptr && m_tabCtrl.GetCurrentBaseEntry() != nullptr &&
        m_tabCtrl.GetCurrentScrewEntry() != nullptr) {
        StartPrebalancingSequence();
    }
    return m_pPrebalancingSequence.get();
}

int CPreBalancingMainWnd::StartRun(StartOperation pStart) {
    m_tabCtrl.PrepareRun();
    // A set that can't be used is to be shown, whatever the means: its run is aborted at once.
    const PreBalDB::CPreBalBaseTableEntry* const pEntry = m_tabCtrl.GetCurrentBaseEntry();
    if (m_pPrebalancingSequence == nullptr && pEntry != nullptr && m_Conversation.IsSetUsable() &&
        !CanBalance(m_tabCtrl.GetBalancingMode(), *pEntry)) {
        return 0;
    }
    CPreBalancing* const pSequence = StartPrebalancingSequence();
    return pSequence == nullptr ? 0 : (pSequence->*pStart)(GetCurrentRPM(), GetOutOfLock(), GetInvalidRPM());
}

void CPreBalancingMainWnd::TerminatePrebalancingSequence() {
    if (m_pPrebalancingSequence == nullptr) {
        m_NCDesk.SendStep(CPreBalNotification::eInactive);
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

bool CPreBalancingMainWnd::EndForNC() {
    const Commitment Result = CommitAndSave();
    if (!StaysForNextTry(Result)) {
        TerminatePrebalancingSequence();
    }
    return Result != eNotSaved && Result != eSuperseded;
}

LRESULT CPreBalancingMainWnd::OnDestroy(WPARAM wParam, LPARAM lParam) {
    m_pPrebalancingSequence.reset();
    m_Conversation.EndWatch();
    LeaveNC();
    return CWnd::WindowProc(WM_DESTROY, wParam, lParam);
}

LRESULT CPreBalancingMainWnd::OnDestroyPending(WPARAM, LPARAM) {
    bool bSaved = false;
    if (m_pPrebalancingSequence != nullptr) {
        bSaved = CommitAndSave() == eSaved;
        m_pPrebalancingSequence.reset();
        m_Conversation.EndWatch();  // the configuration isn't shown again, which would do it
        m_Menu = Menus::eNone;
        if (CWnd* const pParent = GetParent()) {
            pParent->SendMessage(WM_RV_SETMENU, static_cast<WPARAM>(m_Menu));
        }
        m_tabCtrl.SendMessage(WM_RV_UPDATECONFIGURATION);
    }
    m_NCDesk.SendStep(CPreBalNotification::eInactive);
    if (m_tabCtrl.HasDatabase()) {
        m_tabCtrl.ShowWindow(false);
        if (!bSaved) {
            m_tabCtrl.NextTab();  // saves the pages
        }
        m_tabCtrl.CloseDatabase();
    }
    m_Conversation.End();
    if (CWnd* const pForeground = GetForegroundWindow()) {
        pForeground->SetFocus();
    } else {
        RV_WARNING(g_pLog, "CPreBalancingMainWnd::OnDestroyPending: cannot set focus!");
    }
    return 1;
}
