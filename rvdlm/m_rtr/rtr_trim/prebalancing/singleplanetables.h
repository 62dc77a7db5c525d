#pragma once
#include <array>

#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"

/// The tables of a single-plane run: states with their entry actions, and transitions.
namespace SinglePlane {

using Method = CPlaneBalancingMethod;
using Nc = CPreBalNotification;
using State = CSinglePlaneBalancing;
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

constexpr std::size_t ONLY_LEG = 0;

// clang-format off

/// State, name and role; then what is done on entry, in this order: step, instruction mode, display, menu,
/// notification. The idle state isn't entered.
inline constexpr std::array<Sequence::CState, 24> STATES = {{
    {State::eIdle, "eIdle", Sequence::eIdle, ONLY_LEG,
        Keep(), 0, {}, NoMenu(), NoNotification()},
    {State::eFailureWithNoReturn, "eFailureWithNoReturn", Sequence::eFailureWithNoReturn, ONLY_LEG,
        NoSteps(), 0, {Show(Method::eEmpty)}, Menu(Menus::eFailed), Notify(Nc::eFailure, Nc::eNone)},
    {State::eFailureWithReset, "eFailureWithReset", Sequence::eFailureWithReset, ONLY_LEG,
        NoSteps(), 0, {Show(Method::eEmpty)}, Menu(Menus::eWait), Notify(Nc::eFailure, Nc::eNone)},
    {State::eNeutralPosSpindleStop, "eNeutralPosSpindleStop", Sequence::eNeutralPosSpindleStop, ONLY_LEG,
        FirstOf(12), 1, {ShowThen(Method::eNeutralPosition, Method::eInactive)}, MenuByStore(Menus::eStopWithScrews, Menus::eStopWithStoredWeights, Menus::eStopWithWeights), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::eNeutralPosRemoveWeights, "eNeutralPosRemoveWeights", Sequence::eNeutralPosRemoveWeights, ONLY_LEG,
        SecondOrFirstOf(11), 3, {ShowPlainAfterStop(Method::eNeutralPosition)}, MenuByStore(Menus::eConfirm, Menus::eNeutralStoredWeights, Menus::eNeutralWeights), Notify(Nc::eSetup, Nc::eSetWeights)},
    // Menu and notification follow lock and speed: the handler shows them.
    {State::eNeutralPosRPMStart, "eNeutralPosRPMStart", Sequence::eNeutralPosRPMStart, ONLY_LEG,
        Next(), 5, {Show(Method::eInactive)}, NoMenu(), NoNotification()},
    {State::eNeutralPosMeasurement, "eNeutralPosMeasurement", Sequence::eNeutralPosMeasurement, ONLY_LEG,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::eTestUnbalanceSpindleStop, "eTestUnbalanceSpindleStop", Sequence::eTestUnbalanceSpindleStop, ONLY_LEG,
        Next(), 2, {ShowThen(Method::eTestUnbalance, Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::eTestUnbalanceSetWeights, "eTestUnbalanceSetWeights", Sequence::eTestUnbalanceSetWeights, ONLY_LEG,
        Next(), 7, {ShowPlain(Method::eTestUnbalance)}, TestUnbalanceMenu(), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::eTestUnbalanceRPMStart, "eTestUnbalanceRPMStart", Sequence::eTestUnbalanceRPMStart, ONLY_LEG,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::eTestUnbalanceMeasurement, "eTestUnbalanceMeasurement", Sequence::eTestUnbalanceMeasurement, ONLY_LEG,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::ePreBalanceSpindleStop, "ePreBalanceSpindleStop", Sequence::ePreBalanceSpindleStop, ONLY_LEG,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::ePreBalanceSetWeights, "ePreBalanceSetWeights", Sequence::ePreBalanceSetWeights, ONLY_LEG,
        Next(), 8, {Show(Method::eUACompensation)}, Menu(Menus::eConfirm), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::ePreBalanceRPMStart, "ePreBalanceRPMStart", Sequence::ePreBalanceRPMStart, ONLY_LEG,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::ePreBalanceMeasurement, "ePreBalanceMeasurement", Sequence::ePreBalanceMeasurement, ONLY_LEG,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
    {State::eReBalanceCommitWeights, "eReBalanceCommitWeights", Sequence::eReBalanceCommitWeights, ONLY_LEG,
        FirstOfOrNext(7), 8, {Show(Method::eUACompensation)}, MenuByMeans(Menus::eSetScrews, Menus::eSetWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceRPMStart1, "eReBalanceRPMStart1", Sequence::eReBalanceRPMStart1, ONLY_LEG,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement1, "eReBalanceMeasurement1", Sequence::eReBalanceMeasurement1, ONLY_LEG,
        NextOf(5), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eMeasure)},
    {State::eReBalanceSpindleStop, "eReBalanceSpindleStop", Sequence::eReBalanceSpindleStop, ONLY_LEG,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSpindleStopCheckWeights, "eReBalanceSpindleStopCheckWeights", Sequence::eReBalanceSpindleStopCheckWeights, ONLY_LEG,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSetWeights, "eReBalanceSetWeights", Sequence::eReBalanceSetWeights, ONLY_LEG,
        Keep(), 8, {Show(Method::eUACompensation)}, Menu(Menus::eConfirmOrCheckWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceCheckWeights, "eReBalanceCheckWeights", Sequence::eReBalanceCheckWeights, ONLY_LEG,
        Keep(), 9, {Show(Method::eUACompensation)}, CheckWeightsMenu(), NoNotification()},
    {State::eReBalanceRPMStart2, "eReBalanceRPMStart2", Sequence::eReBalanceRPMStart2, ONLY_LEG,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement2, "eReBalanceMeasurement2", Sequence::eReBalanceMeasurement2, ONLY_LEG,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
}};

/// The ways from state to state. Besides, the host may end every state in eFailureWithNoReturn, and a calculation that
/// can't be made in eFailureWithReset; nothing follows those two.
inline constexpr std::array<Sequence::CTransition, 48> TRANSITIONS = {{
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
    {State::eNeutralPosMeasurement, Sequence::eKeyNext, Sequence::eMeasured, Do(Sequence::eTakeFirstReading, Sequence::eEndMeasurement), State::eTestUnbalanceSpindleStop},
    {State::eTestUnbalanceSpindleStop, Sequence::eSpeedReported, Sequence::eSpindleStands, Do(), State::eTestUnbalanceSetWeights},
    {State::eTestUnbalanceSetWeights, Sequence::eKeyNext, Sequence::eAlways, Do(Sequence::eTakeTestPositions), State::eTestUnbalanceRPMStart},
    {State::eTestUnbalanceSetWeights, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(Sequence::eCountStepLeftOut, Sequence::eTakeTestPositions), State::eTestUnbalanceMeasurement},
    {State::eTestUnbalanceRPMStart, Sequence::eEntered, Sequence::eAtCalibratedSpeed, Do(), State::eTestUnbalanceMeasurement},
    {State::eTestUnbalanceRPMStart, Sequence::eSpeedReported, Sequence::eAtCalibratedSpeed, Do(), State::eTestUnbalanceMeasurement},
    {State::eTestUnbalanceRPMStart, Sequence::eSpeedValidityReported, Sequence::eSpeedValid, Do(), State::eTestUnbalanceMeasurement},
    {State::eTestUnbalanceMeasurement, Sequence::eTestRunUsable, Sequence::eAlways, Do(), State::ePreBalanceSpindleStop},
    {State::eTestUnbalanceMeasurement, Sequence::eTestRunWithoutEffect, Sequence::eAlways, Do(), State::eFailureWithReset, Warnings::eNoInfluence},
    // Such a verdict has no warning of its own.
    {State::eTestUnbalanceMeasurement, Sequence::eTestRunImpossible, Sequence::eAlways, Do(), State::eFailureWithNoReturn, Warnings::eSetChanged},
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
    "CSinglePlaneBalancing",
    "Invalid state",
    "this path is not present in two plane balancing! Is it really reachable?!"};

static_assert(Sequence::AreStatesInOrder(STATES), "a state is looked up by its number");

}  // namespace SinglePlane
