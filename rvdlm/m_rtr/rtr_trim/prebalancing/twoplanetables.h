#pragma once
#include <array>

#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"

/// The tables of a two-plane run: states with their entry actions, and transitions. They differ from those of
/// a single plane in the numbers, in the second test leg and in what the two planes show.
namespace TwoPlane {

using Method = CPlaneBalancingMethod;
using Nc = CPreBalNotification;
using State = CTwoPlaneBalancing;
using Sequence::CheckWeightsMenu;
using Sequence::Do;
using Sequence::FirstOf;
using Sequence::FirstOfOrNext;
using Sequence::Keep;
using Sequence::Menu;
using Sequence::MenuByMeans;
using Sequence::MenuByStore;
using Sequence::Next;
using Sequence::NextOf;
using Sequence::NoMenu;
using Sequence::NoNotification;
using Sequence::NoSteps;
using Sequence::Notify;
using Sequence::SecondOrFirstOf;
using Sequence::Show;
using Sequence::ShowPlain;
using Sequence::ShowPlainAfterStop;
using Sequence::ShowThen;
using Sequence::StoreAction;
using Sequence::TestUnbalanceMenu;

/// The test legs; a state that belongs to none counts as of the first.
constexpr std::size_t PLANE1_LEG = 0;
constexpr std::size_t PLANE2_LEG = 1;
constexpr std::size_t NO_LEG = 0;

constexpr std::array<Sequence::CDisplay, 2> Both(Sequence::CDisplay Display) {
    return {Display, Display};
}

// clang-format off

/// State, name and role; then what is done on entry, in this order: step, instruction mode, display of plane 1
/// and of plane 2, menu, notification. The idle state isn't entered. The names of two states keep their e:
/// readers of the log know them so.
inline constexpr std::array<Sequence::CState, 28> STATES = {{
    {State::eIdle, "Idle", Sequence::eIdle, NO_LEG,
        Keep(), 0, {}, NoMenu(), NoNotification()},
    {State::eFailureWithNoReturn, "FailureWithNoReturn", Sequence::eFailureWithNoReturn, NO_LEG,
        NoSteps(), 0, Both(Show(Method::eEmpty)), Menu(Menus::eFailed), Notify(Nc::eFailure, Nc::eNone)},
    {State::eFailureWithReset, "FailureWithReset", Sequence::eFailureWithReset, NO_LEG,
        NoSteps(), 0, Both(Show(Method::eEmpty)), Menu(Menus::eWait), Notify(Nc::eFailure, Nc::eNone)},
    {State::eNeutralPosSpindleStop, "NeutralPosSpindleStop", Sequence::eNeutralPosSpindleStop, NO_LEG,
        FirstOf(16), 1, Both(ShowThen(Method::eNeutralPosition, Method::eInactive)), MenuByStore(Menus::eStopWithScrews, Menus::eStopWithStoredWeights, Menus::eStopWithWeights), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::eNeutralPosRemoveWeights, "NeutralPosRemoveWeights", Sequence::eNeutralPosRemoveWeights, NO_LEG,
        SecondOrFirstOf(15), 3, Both(ShowPlainAfterStop(Method::eNeutralPosition)), MenuByStore(Menus::eConfirm, Menus::eNeutralStoredWeights, Menus::eNeutralWeights), Notify(Nc::eSetup, Nc::eSetWeights)},
    // Menu and notification follow lock and speed: the handler shows them.
    {State::eNeutralPosRPMStart, "NeutralPosRPMStart", Sequence::eNeutralPosRPMStart, NO_LEG,
        Next(), 5, Both(Show(Method::eInactive)), NoMenu(), NoNotification()},
    {State::eNeutralPosMeasurement, "NeutralPosMeasurement", Sequence::eNeutralPosMeasurement, NO_LEG,
        Next(), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::ePlane1TestUnbalanceSpindleStop, "Plane1TestUnbalanceSpindleStop", Sequence::eTestUnbalanceSpindleStop, PLANE1_LEG,
        Next(), 2, {ShowThen(Method::eTestUnbalance, Method::eInactive), Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::ePlane1TestUnbalanceSetWeights, "Plane1TestUnbalanceSetWeights", Sequence::eTestUnbalanceSetWeights, PLANE1_LEG,
        Next(), 7, {ShowPlain(Method::eTestUnbalance), Show(Method::eInactive)}, TestUnbalanceMenu(), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::ePlane1TestUnbalanceRPMStart, "Plane1TestUnbalanceRPMStart", Sequence::eTestUnbalanceRPMStart, PLANE1_LEG,
        Next(), 4, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::ePlane1TestUnbalanceMeasurement, "Plane1TestUnbalanceMeasurement", Sequence::eTestUnbalanceMeasurement, PLANE1_LEG,
        Next(), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    // From here to the correction the test weights of plane 1 stay on.
    {State::ePlane2TestUnbalanceSpindleStop, "Plane2TestUnbalanceSpindleStop", Sequence::eTestUnbalanceSpindleStop, PLANE2_LEG,
        Next(), 2, {Show(Method::eInactive), ShowThen(Method::eTestUnbalance, Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::ePlane2TestUnbalanceSetWeights, "Plane2TestUnbalanceSetWeights", Sequence::eTestUnbalanceSetWeights, PLANE2_LEG,
        Next(), 7, {Show(Method::eInactive), ShowPlain(Method::eTestUnbalance)}, TestUnbalanceMenu(), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::ePlane2TestUnbalanceRPMStart, "Plane2TestUnbalanceRPMStart", Sequence::eTestUnbalanceRPMStart, PLANE2_LEG,
        Next(), 4, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::ePlane2TestUnbalanceMeasurement, "Plane2TestUnbalanceMeasurement", Sequence::eTestUnbalanceMeasurement, PLANE2_LEG,
        Next(), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::ePreBalanceSpindleStop, "PreBalanceSpindleStop", Sequence::ePreBalanceSpindleStop, NO_LEG,
        Next(), 2, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::ePreBalanceSetWeights, "PreBalanceSetWeights", Sequence::ePreBalanceSetWeights, NO_LEG,
        Next(), 8, Both(Show(Method::eUACompensation)), Menu(Menus::eConfirm), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::ePreBalanceRPMStart, "PreBalanceRPMStart", Sequence::ePreBalanceRPMStart, NO_LEG,
        Next(), 4, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::ePreBalanceMeasurement, "PreBalanceMeasurement", Sequence::ePreBalanceMeasurement, NO_LEG,
        Next(), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
    {State::eReBalanceCommitWeights, "ReBalanceCommitWeights", Sequence::eReBalanceCommitWeights, NO_LEG,
        FirstOfOrNext(7), 8, Both(Show(Method::eUACompensation)), MenuByMeans(Menus::eSetScrews, Menus::eSetWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceRPMStart1, "ReBalanceRPMStart1", Sequence::eReBalanceRPMStart1, NO_LEG,
        Next(), 4, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement1, "ReBalanceMeasurement1", Sequence::eReBalanceMeasurement1, NO_LEG,
        NextOf(5), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eMeasure)},
    {State::eReBalanceSpindleStop, "ReBalanceSpindleStop", Sequence::eReBalanceSpindleStop, NO_LEG,
        Next(), 2, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSpindleStopCheckWeights, "eReBalanceSpindleStopCheckWeights", Sequence::eReBalanceSpindleStopCheckWeights, NO_LEG,
        Next(), 2, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSetWeights, "ReBalanceSetWeights", Sequence::eReBalanceSetWeights, NO_LEG,
        Keep(), 8, Both(Show(Method::eUACompensation)), Menu(Menus::eConfirmOrCheckWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceCheckWeights, "eReBalanceCheckWeights", Sequence::eReBalanceCheckWeights, NO_LEG,
        Keep(), 9, {Show(Method::eUACompensation), Show(Method::eInactive)}, CheckWeightsMenu(), NoNotification()},
    {State::eReBalanceRPMStart2, "ReBalanceRPMStart2", Sequence::eReBalanceRPMStart2, NO_LEG,
        Next(), 4, Both(Show(Method::eInactive)), Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement2, "ReBalanceMeasurement2", Sequence::eReBalanceMeasurement2, NO_LEG,
        Next(), 6, Both(Show(Method::eMeasurementValues)), Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
}};

/// The ways from state to state. Besides, the host may end every state in eFailureWithNoReturn, and a calculation that
/// can't be made in eFailureWithReset; nothing follows those two.
inline constexpr std::array<Sequence::CTransition, 57> TRANSITIONS = {{
    {State::eIdle, Sequence::eStartOfPreBalancing, Sequence::eSpindleTurns, Do(Sequence::eReadPositionStore), State::eNeutralPosSpindleStop},
    {State::eIdle, Sequence::eStartOfPreBalancing, Sequence::eSpindleStands, Do(Sequence::eReadPositionStore), State::eNeutralPosRemoveWeights},
    {State::eIdle, Sequence::eStartOfReBalancing, Sequence::eCalibratedSpindleStops, Do(), State::eReBalanceCommitWeights},
    {State::eIdle, Sequence::eStartOfReBalancing, Sequence::eCalibratedSpindleRuns, Do(), State::eReBalanceMeasurement1},
    {State::eIdle, Sequence::eNever, Sequence::eAlways, Do(), State::eReBalanceRPMStart1},
    {State::eNeutralPosSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(), State::eNeutralPosRemoveWeights},
    // The spindle needn't stop if the weights are known to be where they should be. With either method.
    {State::eNeutralPosSpindleStop, Sequence::eKeyWeightsInPlace, Sequence::eAlways, Do(Sequence::eTakePositionsShown, Sequence::eCountStepLeftOut), State::eNeutralPosRPMStart},
    {State::eNeutralPosSpindleStop, Sequence::eKeyNext, Sequence::eWeightsOnly, Do(Sequence::eTakePositionsShown, Sequence::eCountStepLeftOut), State::eNeutralPosRPMStart},
    {State::eNeutralPosSpindleStop, Sequence::eKeyAdoptPositions, Sequence::eStoredWeights, Do(Sequence::eTakePositionsStored, Sequence::eCountStepLeftOut), State::eNeutralPosRPMStart},
    {State::eNeutralPosRemoveWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eTakePositionsShown), State::eNeutralPosRPMStart},
    {State::eNeutralPosRemoveWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eTakePositionsShown), State::eNeutralPosRPMStart},
    // The speed itself isn't tested: the measurement is made at the speed found here.
    {State::eNeutralPosRPMStart, Sequence::eKeyNext, Sequence::eLockedAtValidSpeed, Do(), State::eNeutralPosMeasurement},
    {State::eNeutralPosMeasurement, Sequence::eKeyNext, Sequence::eMeasured, Do(Sequence::eTakeFirstReading, Sequence::eEndMeasurement), State::ePlane1TestUnbalanceSpindleStop},
    {State::ePlane1TestUnbalanceSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(), State::ePlane1TestUnbalanceSetWeights},
    {State::ePlane1TestUnbalanceSetWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eTakeTestPositions), State::ePlane1TestUnbalanceRPMStart},
    {State::ePlane1TestUnbalanceSetWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut, Sequence::eTakeTestPositions), State::ePlane1TestUnbalanceMeasurement},
    {State::ePlane1TestUnbalanceRPMStart, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::ePlane1TestUnbalanceMeasurement},
    {State::ePlane1TestUnbalanceRPMStart, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::ePlane1TestUnbalanceMeasurement},
    {State::ePlane1TestUnbalanceRPMStart, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(), State::ePlane1TestUnbalanceMeasurement},
    {State::ePlane1TestUnbalanceMeasurement, Sequence::eTestRunUsable, Sequence::eAlways, Do(), State::ePlane2TestUnbalanceSpindleStop},
    {State::ePlane1TestUnbalanceMeasurement, Sequence::eTestRunWithoutEffect, Sequence::eAlways, Do(), State::eFailureWithReset, Warnings::eNoInfluence},
    // Such a verdict has no warning of its own.
    {State::ePlane1TestUnbalanceMeasurement, Sequence::eTestRunImpossible, Sequence::eAlways, Do(), State::eFailureWithNoReturn, Warnings::eSetChanged},
    {State::ePlane2TestUnbalanceSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(), State::ePlane2TestUnbalanceSetWeights},
    {State::ePlane2TestUnbalanceSetWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eTakeTestPositions), State::ePlane2TestUnbalanceRPMStart},
    {State::ePlane2TestUnbalanceSetWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut, Sequence::eTakeTestPositions), State::ePlane2TestUnbalanceMeasurement},
    {State::ePlane2TestUnbalanceRPMStart, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::ePlane2TestUnbalanceMeasurement},
    {State::ePlane2TestUnbalanceRPMStart, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::ePlane2TestUnbalanceMeasurement},
    {State::ePlane2TestUnbalanceRPMStart, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(), State::ePlane2TestUnbalanceMeasurement},
    {State::ePlane2TestUnbalanceMeasurement, Sequence::eTestRunUsable, Sequence::eAlways, Do(), State::ePreBalanceSpindleStop},
    {State::ePlane2TestUnbalanceMeasurement, Sequence::eTestRunWithoutEffect, Sequence::eAlways, Do(), State::eFailureWithReset, Warnings::eNoInfluence},
    {State::ePlane2TestUnbalanceMeasurement, Sequence::eTestRunImpossible, Sequence::eAlways, Do(), State::eFailureWithNoReturn, Warnings::eSetChanged},
    {State::ePreBalanceSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(), State::ePreBalanceSetWeights},
    {State::ePreBalanceSetWeights, Sequence::eKeyNext, Sequence::eAlways, Do(), State::ePreBalanceRPMStart},
    {State::ePreBalanceSetWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut), State::ePreBalanceMeasurement},
    {State::ePreBalanceRPMStart, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::ePreBalanceMeasurement},
    {State::ePreBalanceRPMStart, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::ePreBalanceMeasurement},
    {State::ePreBalanceRPMStart, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(), State::ePreBalanceMeasurement},
    {State::ePreBalanceMeasurement, Sequence::eKeyRebalance, Sequence::eAlways, Do(Sequence::eEndMeasurement, Sequence::eForgetSteps), State::eReBalanceMeasurement1},
    {State::eReBalanceCommitWeights, Sequence::eCapacityMissing, Sequence::eAlways, Do(), State::eFailureWithReset, Warnings::eRebalanceNotPossible},
    {State::eReBalanceCommitWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eStoreCompensation), State::eReBalanceRPMStart1},
    {State::eReBalanceCommitWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut, Sequence::eStoreCompensation), State::eReBalanceMeasurement1},
    {State::eReBalanceRPMStart1, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::eReBalanceMeasurement1},
    {State::eReBalanceRPMStart1, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::eReBalanceMeasurement1},
    {State::eReBalanceRPMStart1, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(), State::eReBalanceMeasurement1},
    {State::eReBalanceMeasurement1, Sequence::eCapacityMissing, Sequence::eAlways, Do(), State::eFailureWithReset, Warnings::eRebalanceNotPossible},
    {State::eReBalanceMeasurement1, Sequence::eKeyNext, Sequence::eMeasured, Do(Sequence::eEndMeasurement), State::eReBalanceSpindleStop},
    {State::eReBalanceMeasurement1, Sequence::eKeyCheckWeights, Sequence::eMeasured, Do(Sequence::eEndMeasurement), State::eReBalanceSpindleStopCheckWeights},
    // The states behind these two count no step by themselves.
    {State::eReBalanceSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(Sequence::eCountStepLeftOut), State::eReBalanceSetWeights},
    {State::eReBalanceSpindleStopCheckWeights, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(Sequence::eCountStepLeftOut), State::eReBalanceCheckWeights},
    {State::eReBalanceSetWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eStoreCompensation), State::eReBalanceRPMStart2},
    {State::eReBalanceSetWeights, Sequence::eKeyCheckWeights, Sequence::eAlways, Do(), State::eReBalanceCheckWeights},
    {State::eReBalanceSetWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut, Sequence::eStoreCompensation), State::eReBalanceMeasurement2},
    {State::eReBalanceCheckWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eStoreCompensation), State::eReBalanceSetWeights},
    {State::eReBalanceCheckWeights, Sequence::eNever, Sequence::eAlways, Do(), State::eReBalanceCommitWeights},
    // Here the module's word isn't enough.
    {State::eReBalanceRPMStart2, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::eReBalanceMeasurement2},
    {State::eReBalanceRPMStart2, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::eReBalanceMeasurement2},
    {State::eReBalanceMeasurement2, Sequence::eKeyRebalance, Sequence::eAlways, Do(Sequence::eEndMeasurement, Sequence::eForgetSteps), State::eReBalanceMeasurement1},
}};

// clang-format on

inline constexpr Sequence::CTables TABLES = {
    STATES,
    TRANSITIONS,
    State::eReBalanceCommitWeights,
    "CTwoPlaneBalancing",
    "invalid state",
    "this path is new (added to two plane balancing since it was present in single plane balancing)"};

static_assert(Sequence::AreStatesInOrder(STATES), "a state is looked up by its number");

}  // namespace TwoPlane
