#pragma once
#include <array>
#include <cstdint>
#include <span>

#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

/// What the tables of a guided procedure are made of. The procedures for one and for two planes are made of
/// the same kinds of states and differ in their numbers, texts and displays: those stand in tables, the
/// conduct in CBalancingSequence.
namespace Sequence {

/// What a state is for. The states of the test run are gone through once for each plane: a leg each.
enum Role : int {
    eIdle,
    eFailureWithNoReturn,
    eFailureWithReset,
    eNeutralPosSpindleStop,
    eNeutralPosRemoveWeights,
    eNeutralPosRPMStart,
    eNeutralPosMeasurement,
    eTestUnbalanceSpindleStop,
    eTestUnbalanceSetWeights,
    eTestUnbalanceRPMStart,
    eTestUnbalanceMeasurement,
    ePreBalanceSpindleStop,
    ePreBalanceSetWeights,
    ePreBalanceRPMStart,
    ePreBalanceMeasurement,
    eReBalanceCommitWeights,
    eReBalanceRPMStart1,
    eReBalanceMeasurement1,
    eReBalanceSpindleStop,
    eReBalanceSpindleStopCheckWeights,
    eReBalanceSetWeights,
    eReBalanceCheckWeights,
    eReBalanceRPMStart2,
    eReBalanceMeasurement2,
    eRoleCount
};

/// What happens to the step counter when a state is entered.
struct CStepRule {
    enum Kind : int {
        eKeep,         ///< unchanged; the caller counts
        eNext,         ///< one on
        eNone,         ///< no steps, step 0
        eFirst,        ///< m_nSteps steps, step 1
        eFirstUnless,  ///< step 2 if the step was 1, else as eFirst
        eFirstOrNext,  ///< one on if the step was 1 (which is odd, and asserted), else as eFirst
        eNextOfFew     ///< m_nSteps steps if the step was 0, then one on
    };
    Kind m_Kind = eKeep;
    std::uint32_t m_nSteps = 0;
};

/// A call of SetDisplayMode or SetPlainDisplayMode.
struct CShow {
    enum Kind : int {
        eNothing,
        eFull,
        ePlain,
        ePlainAfterStop  ///< plain with weights, after the state that stops the spindle; else full
    };
    Kind m_Kind = eNothing;
    CPlaneBalancingMethod::DisplayMode m_Mode = CPlaneBalancingMethod::eEmpty;
};

/// What one plane shows: up to two calls in this order.
using CDisplay = std::array<CShow, 2>;

/// Which menu comes up.
struct CMenuRule {
    enum Kind : int {
        eNone,
        eFixed,          ///< m_Weights, whatever the means
        eByMeans,        ///< m_Weights if all planes have weights, else m_Screws
        eByStore,        ///< as eByMeans, but m_Stored for weights whose positions are stored
        eTestUnbalance,  ///< the method's menu of that name
        eCheckWeights    ///< the method's menu of that name
    };
    Kind m_Kind = eNone;
    std::int32_t m_Weights = 0;
    std::int32_t m_Screws = 0;
    std::int32_t m_Stored = 0;
};

/// What the NC is told.
struct CNotifyRule {
    enum Kind : int {
        eNone,
        eSend,
        eStoreAction  ///< only kept, for the notifications that follow
    };
    Kind m_Kind = eNone;
    CPreBalNotification::Step m_Step = CPreBalNotification::eInactive;
    CPreBalNotification::Action m_Action = CPreBalNotification::eNone;
};

/// A state and what is done on entering it.
struct CState {
    int m_State;
    const char* m_pName;
    Role m_Role;
    std::size_t m_Leg;
    CStepRule m_Steps;
    std::uint32_t m_InstructionMode;
    std::array<CDisplay, 2> m_Display;  ///< per plane
    CMenuRule m_Menu;
    CNotifyRule m_Notify;
};

/// What may lead from one state to another: an event, a key that is pressed, or what became of something that
/// the state has tried.
enum Trigger : int {
    // Events.
    eEntered,
    eStartOfPreBalancing,
    eStartOfReBalancing,
    eSpeedReported,
    eSpeedValidityReported,
    // Keys.
    eKeyNext,
    eKeyRebalance,
    eKeyCheckWeights,
    eKeyWeightsInPlace,
    eKeyAdoptPositions,
    // Outcomes.
    eTestRunUsable,
    eTestRunWithoutEffect,
    eTestRunImpossible,
    eCapacityMissing,
    eNever,  ///< defined, and nothing leads there
    eTriggerCount
};

/// What must hold besides.
enum Guard : int {
    eAlways,
    eSpindleStands,
    eSpindleTurns,
    eSpeedValid,              ///< the commanded speed is reached, as the module tells
    eLockedAtValidSpeed,      ///< and the electronics is in lock, if that counts
    eAtCalibratedSpeed,       ///< the speed itself is that of the calibration
    eMeasured,                ///< the menu that comes with a complete measurement is on show
    eWeightsOnly,             ///< no plane has screws
    eStoredWeights,           ///< and the positions of all weights are stored
    eCalibratedSpindleStops,  ///< there is a calibration, and the commanded speed isn't reached
    eCalibratedSpindleRuns,   ///< there is one, and it is
    eGuardCount
};

/// What is done before the next state is entered.
enum Deed : int {
    eNoDeed,
    eCountStepLeftOut,
    eReadPositionStore,
    eTakePositionsShown,  ///< for those of the first measurement
    eTakePositionsStored,
    eTakeFirstReading,
    eEndMeasurement,
    eTakeTestPositions,
    eStoreCompensation,
    eForgetSteps,
    eDeedCount
};

/// A way out of a state: the first row of the present state holds whose trigger comes and whose guard is
/// true. A row with a warning leads to a failure, which shows it.
struct CTransition {
    int m_From;
    Trigger m_Trigger;
    Guard m_Guard;
    std::array<Deed, 2> m_Deeds;  ///< in this order
    int m_To;
    std::uint32_t m_Warning = 0;
};

/// Words of a trigger, a guard, a deed, for the diagram of the states.
const char* ToText(Trigger Value);
const char* ToText(Guard Value);
const char* ToText(Deed Value);

/// All tables of one procedure.
struct CTables {
    std::span<const CState> m_States;  ///< in the order of their numbers, from 0
    std::span<const CTransition> m_Transitions;
    int m_FirstReBalanceState;               ///< from here on the activity is re-balancing
    const char* m_pProcedureName;            ///< class of the procedure, for the log
    const char* m_pInvalidStateText;         ///< name of a number that is no state
    const char* m_pStepOneAlreadyAssertion;  ///< text for CStepRule::eFirstOrNext

    /// Null for a number that is no state.
    constexpr const CState* FindState(int State) const {
        return State >= 0 && static_cast<std::size_t>(State) < m_States.size()
                   ? &m_States[static_cast<std::size_t>(State)]
                   : nullptr;
    }
    /// The state of that role and leg; null if the procedure has none.
    constexpr const CState* FindState(Role StateRole, std::size_t Leg) const {
        for (const CState& rState : m_States) {
            if (rState.m_Role == StateRole && rState.m_Leg == Leg) {
                return &rState;
            }
        }
        return nullptr;
    }
    constexpr const char* GetStateText(int State) const {
        const CState* pState = FindState(State);
        return pState != nullptr ? pState->m_pName : m_pInvalidStateText;
    }
    constexpr bool IsTransitionAllowed(int From, int To) const {
        for (const CTransition& rTransition : m_Transitions) {
            if (rTransition.m_From == From && rTransition.m_To == To) {
                return true;
            }
        }
        return false;
    }
};

/// A state is looked up by its number.
constexpr bool AreStatesInOrder(std::span<const CState> States) {
    for (std::size_t i = 0; i < States.size(); ++i) {
        if (States[i].m_State != static_cast<int>(i)) {
            return false;
        }
    }
    return true;
}

// Words for the tables.
constexpr std::array<Deed, 2> Do(Deed First = eNoDeed, Deed Second = eNoDeed) {
    return {First, Second};
}
constexpr CStepRule Keep() {
    return {};
}
constexpr CStepRule Next() {
    return {CStepRule::eNext, 0};
}
constexpr CStepRule NoSteps() {
    return {CStepRule::eNone, 0};
}
constexpr CStepRule FirstOf(std::uint32_t nSteps) {
    return {CStepRule::eFirst, nSteps};
}
constexpr CStepRule SecondOrFirstOf(std::uint32_t nSteps) {
    return {CStepRule::eFirstUnless, nSteps};
}
constexpr CStepRule FirstOfOrNext(std::uint32_t nSteps) {
    return {CStepRule::eFirstOrNext, nSteps};
}
constexpr CStepRule NextOf(std::uint32_t nSteps) {
    return {CStepRule::eNextOfFew, nSteps};
}
constexpr CDisplay Show(CPlaneBalancingMethod::DisplayMode Mode) {
    return {CShow{CShow::eFull, Mode}, CShow{}};
}
constexpr CDisplay ShowPlain(CPlaneBalancingMethod::DisplayMode Mode) {
    return {CShow{CShow::ePlain, Mode}, CShow{}};
}
constexpr CDisplay ShowPlainAfterStop(CPlaneBalancingMethod::DisplayMode Mode) {
    return {CShow{CShow::ePlainAfterStop, Mode}, CShow{}};
}
constexpr CDisplay ShowThen(CPlaneBalancingMethod::DisplayMode First,
                            CPlaneBalancingMethod::DisplayMode Second) {
    return {CShow{CShow::eFull, First}, CShow{CShow::eFull, Second}};
}
constexpr CMenuRule Menu(std::int32_t Value) {
    return {CMenuRule::eFixed, Value, 0, 0};
}
constexpr CMenuRule MenuByMeans(std::int32_t Screws, std::int32_t Weights) {
    return {CMenuRule::eByMeans, Weights, Screws, 0};
}
constexpr CMenuRule MenuByStore(std::int32_t Screws, std::int32_t Stored, std::int32_t NotStored) {
    return {CMenuRule::eByStore, NotStored, Screws, Stored};
}
constexpr CMenuRule TestUnbalanceMenu() {
    return {CMenuRule::eTestUnbalance, 0, 0, 0};
}
constexpr CMenuRule CheckWeightsMenu() {
    return {CMenuRule::eCheckWeights, 0, 0, 0};
}
constexpr CMenuRule NoMenu() {
    return {};
}
constexpr CNotifyRule Notify(CPreBalNotification::Step Step, CPreBalNotification::Action Action) {
    return {CNotifyRule::eSend, Step, Action};
}
constexpr CNotifyRule StoreAction(CPreBalNotification::Action Action) {
    return {CNotifyRule::eStoreAction, CPreBalNotification::eInactive, Action};
}
constexpr CNotifyRule NoNotification() {
    return {};
}

}  // namespace Sequence
