// What the host asks for: actions of its softkeys, and states.
#include <algorithm>
#include <array>

#include "contract/actions.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

using RtrTrim::g_pLog;

namespace {

constexpr int NO_FLAG = -1;

/// What an action means to a running procedure. With m_Flag in the message it is m_WithFlag, else
/// m_Otherwise.
struct CKeyEntry {
    int m_Action;
    int m_Flag;
    CKeyActions::KeyAction m_WithFlag;
    CKeyActions::KeyAction m_Otherwise;
};

constexpr CKeyEntry Plain(int Action, CKeyActions::KeyAction Key) {
    return {Action, NO_FLAG, Key, Key};
}

/// 4503 to 4506 are softkeys that do nothing.
constexpr std::array KEY_ACTIONS{
    Plain(Actions::eNext, CKeyActions::eNext),
    Plain(Actions::eExtras, CKeyActions::eExtras),
    Plain(Actions::eIncrement, CKeyActions::eIncrement),
    Plain(Actions::eDecrement, CKeyActions::eDecrement),
    Plain(Actions::eCheckWeights, CKeyActions::eCheckWeightPositions),
    CKeyEntry{Actions::eIncWeight1, Actions::eIncrementDown, CKeyActions::eIncPosWeight1Down,
              CKeyActions::eIncPosWeight1Up},
    CKeyEntry{Actions::eDecWeight1, Actions::eDecrementDown, CKeyActions::eDecPosWeight1Down,
              CKeyActions::eDecPosWeight1Up},
    CKeyEntry{Actions::eIncWeight2, Actions::eIncrementDown, CKeyActions::eIncPosWeight2Down,
              CKeyActions::eIncPosWeight2Up},
    CKeyEntry{Actions::eDecWeight2, Actions::eDecrementDown, CKeyActions::eDecPosWeight2Down,
              CKeyActions::eDecPosWeight2Up},
    Plain(Actions::eTogglePlane, CKeyActions::eTogglePlane),
    Plain(Actions::eNeutralPosition, CKeyActions::eNeutralPosition),
    Plain(Actions::eChangeWeights, CKeyActions::eChangeWeightPositions),
    Plain(Actions::eNeutralAdjusted, CKeyActions::eNeutralPositionAdjusted),
    Plain(Actions::eAdoptPosition, CKeyActions::ePositionAdoption),
    CKeyEntry{Actions::eIncActiveWeight, Actions::eIncrementDown, CKeyActions::eIncPosActiveWeightDown,
              CKeyActions::eIncPosActiveWeightUp},
    CKeyEntry{Actions::eDecActiveWeight, Actions::eDecrementDown, CKeyActions::eDecPosActiveWeightDown,
              CKeyActions::eDecPosActiveWeightUp},
    Plain(Actions::eSelectWeight, CKeyActions::eWeightSelection),
    Plain(Actions::eSelectStep, CKeyActions::eStepSelection),
    Plain(Actions::eTogglePlaneAlso, CKeyActions::eTogglePlane),
};

}  // namespace

LRESULT CPreBalancingMainWnd::OnModuleAction(WPARAM wParam, LPARAM lParam) {
    const int Action = static_cast<int>(wParam);
    const int Flag = static_cast<int>(lParam);
    if (Flag == Actions::eCommit && m_pPrebalancingSequence != nullptr && StaysForNextTry(CommitAndSave())) {
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
        case Actions::eNextTab:
            // Changing tabs saves the entry: not while a procedure has it in its hands.
            if (m_pPrebalancingSequence == nullptr) {
                m_tabCtrl.NextTab();
            }
            break;
        case Actions::eStart:
            if (m_tabCtrl.HasDatabase()) {
                StartRun(&CPreBalancing::StartPreBalancing);
            }
            break;
        case Actions::eRebalance:
            OnRebalanceAction();
            break;
        case Actions::eTerminate:
        case Actions::eTerminateAlso:
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
    const auto Entry = std::ranges::find(KEY_ACTIONS, Action, &CKeyEntry::m_Action);
    if (m_pPrebalancingSequence != nullptr && Entry != KEY_ACTIONS.end()) {
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
            m_tabCtrl.PrepareRun();
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
