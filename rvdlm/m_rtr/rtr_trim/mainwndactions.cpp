// What the host asks for: actions of its softkeys, and states.
#include <algorithm>
#include <array>

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/moduleactions.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

using RtrTrim::g_pLog;

namespace {

/// Flag of an action that ends the run and keeps its result.
constexpr int eFinishFlag = 5;
constexpr int eNoFlag = -1;

/// What an action means to a running procedure. With m_Flag in the message it is m_WithFlag, else
/// m_Otherwise.
struct CKeyEntry {
    int m_Action;
    int m_Flag;
    CKeyActions::KeyAction m_WithFlag;
    CKeyActions::KeyAction m_Otherwise;
};

constexpr CKeyEntry Plain(int Action, CKeyActions::KeyAction Key) {
    return {Action, eNoFlag, Key, Key};
}

/// 4503 to 4506 are softkeys that do nothing.
constexpr std::array keyActions{
    Plain(4500, CKeyActions::eNext),
    Plain(4502, CKeyActions::eExtras),
    Plain(4507, CKeyActions::eIncrement),
    Plain(4508, CKeyActions::eDecrement),
    Plain(4509, CKeyActions::eCheckWeightPositions),
    CKeyEntry{4511, 1, CKeyActions::eIncPosWeight1Down, CKeyActions::eIncPosWeight1Up},
    CKeyEntry{4512, 2, CKeyActions::eDecPosWeight1Down, CKeyActions::eDecPosWeight1Up},
    CKeyEntry{4513, 1, CKeyActions::eIncPosWeight2Down, CKeyActions::eIncPosWeight2Up},
    CKeyEntry{4514, 2, CKeyActions::eDecPosWeight2Down, CKeyActions::eDecPosWeight2Up},
    Plain(4515, CKeyActions::eTogglePlane),
    Plain(4516, CKeyActions::eNeutralPosition),
    Plain(4517, CKeyActions::eChangeWeightPositions),
    Plain(4518, CKeyActions::eNeutralPositionAdjusted),
    Plain(4519, CKeyActions::ePositionAdoption),
    CKeyEntry{4520, 1, CKeyActions::eIncPosActiveWeightDown, CKeyActions::eIncPosActiveWeightUp},
    CKeyEntry{4521, 2, CKeyActions::eDecPosActiveWeightDown, CKeyActions::eDecPosActiveWeightUp},
    Plain(4522, CKeyActions::eWeightSelection),
    Plain(4523, CKeyActions::eStepSelection),
    Plain(4524, CKeyActions::eTogglePlane),
};

}  // namespace

LRESULT CPreBalancingMainWnd::OnModuleAction(WPARAM wParam, LPARAM lParam) {
    const int Action = static_cast<int>(wParam);
    const int Flag = static_cast<int>(lParam);
    if (Flag == eFinishFlag && m_pPrebalancingSequence != nullptr && StaysForNextTry(CommitAndSave())) {
        RepaintAll();
        return 1;
    }
    m_tabCtrl.Navigate(Action, Flag);
    DoModuleAction(Action, Flag);
    RepaintAll();
    return 1;
}

void CPreBalancingMainWnd::DoModuleAction(int Action, int Flag) {
    switch (Action) {
        case eActionNextTab:
            // Changing tabs saves the entry: not while a procedure has it in its hands.
            if (m_pPrebalancingSequence == nullptr) {
                m_tabCtrl.NextTab();
            }
            break;
        case eActionStart:
            if (m_tabCtrl.HasDatabase()) {
                StartRun(&CPreBalancing::StartPreBalancing);
            }
            break;
        case eActionRebalance:
            OnRebalanceAction();
            break;
        case eActionTerminate:
        case eActionTerminateAlso:
            if (m_pPrebalancingSequence != nullptr) {
                TerminatePrebalancingSequence();
            }
            break;
        default:
            OnKeyAction(Action, Flag);
            break;
    }
}

void CPreBalancingMainWnd::OnRebalanceAction() {
    if (m_pPrebalancingSequence != nullptr) {
        m_pPrebalancingSequence->KeyPressed(CPreBalancing::eRebalance);
    } else if (StartRun(&CPreBalancing::StartReBalancing) == 0 && m_pPrebalancingSequence != nullptr) {
        TerminatePrebalancingSequence();
    }
}

void CPreBalancingMainWnd::OnKeyAction(int Action, int Flag) {
    const auto Entry = std::ranges::find(keyActions, Action, &CKeyEntry::m_Action);
    if (m_pPrebalancingSequence != nullptr && Entry != keyActions.end()) {
        m_pPrebalancingSequence->KeyPressed(Flag == Entry->m_Flag ? Entry->m_WithFlag : Entry->m_Otherwise);
    }
}

LRESULT CPreBalancingMainWnd::SetPrebalancingState(WPARAM wParam, LPARAM) {
    enum State : WPARAM { eConfiguration = 0, ePreBalancing = 1, eReBalancing = 2 };
    int Result = 0;
    if (m_pPrebalancingSequence != nullptr) {
        switch (wParam) {
            case eConfiguration:
                if (StaysForNextTry(CommitAndSave())) {
                    return 0;
                }
                TerminatePrebalancingSequence();
                return 1;
            case eReBalancing:
                if (CommitAndSave() != eSaved) {
                    return 0;
                }
                Result = m_pPrebalancingSequence->KeyPressed(CPreBalancing::eRebalance);
                RV_ASSERT(g_pLog, Result != 0, "Rebalancing failed!");
                return Result;
            default:
                return 0;
        }
    }
    switch (wParam) {
        case ePreBalancing:
            Result = StartRun(&CPreBalancing::StartPreBalancing);
            break;
        case eReBalancing:
            if (!m_tabCtrl.HasDatabase() || !IsCalibrated()) {
                return 0;
            }
            Result = StartRun(&CPreBalancing::StartReBalancing);
            break;
        default:
            return 0;
    }
    RV_ASSERT(g_pLog, Result != 0, "StartPrebalancingSequence failed!");
    return Result;
}
