#pragma once
#include <array>

#include "contract/menus.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"

/// The tables of a single-plane run: states with their entry actions, and transitions.
namespace SinglePlane {

using Method = CPlaneBalancingMethod;
using Nc = CPreBalNotification;
using State = CSinglePlaneBalancing;
using Sequence::CheckWeightsMenu;
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

constexpr std::size_t eOnlyLeg = 0;

// clang-format off

/// State, name and role; then what is done on entry, in this order: step, instruction mode, display, menu,
/// notification. The idle state isn't entered.
inline constexpr std::array<Sequence::CState, 24> g_States = {{
    {State::eIdle, "eIdle", Sequence::eIdle, eOnlyLeg,
        Keep(), 0, {}, NoMenu(), NoNotification()},
    {State::eFailureWithNoReturn, "eFailureWithNoReturn", Sequence::eFailureWithNoReturn, eOnlyLeg,
        NoSteps(), 0, {Show(Method::eEmpty)}, Menu(Menus::eFailed), Notify(Nc::eFailure, Nc::eNone)},
    {State::eFailureWithReset, "eFailureWithReset", Sequence::eFailureWithReset, eOnlyLeg,
        NoSteps(), 0, {Show(Method::eEmpty)}, Menu(Menus::eWait), Notify(Nc::eFailure, Nc::eNone)},
    {State::eNeutralPosSpindleStop, "eNeutralPosSpindleStop", Sequence::eNeutralPosSpindleStop, eOnlyLeg,
        FirstOf(12), 1, {ShowThen(Method::eNeutralPosition, Method::eInactive)}, MenuByStore(Menus::eStopWithScrews, Menus::eStopWithStoredWeights, Menus::eStopWithWeights), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::eNeutralPosRemoveWeights, "eNeutralPosRemoveWeights", Sequence::eNeutralPosRemoveWeights, eOnlyLeg,
        SecondOrFirstOf(11), 3, {ShowPlainAfterStop(Method::eNeutralPosition)}, MenuByStore(Menus::eConfirm, Menus::eNeutralStoredWeights, Menus::eNeutralWeights), Notify(Nc::eSetup, Nc::eSetWeights)},
    // Menu and notification follow lock and speed: the handler shows them.
    {State::eNeutralPosRPMStart, "eNeutralPosRPMStart", Sequence::eNeutralPosRPMStart, eOnlyLeg,
        Next(), 5, {Show(Method::eInactive)}, NoMenu(), NoNotification()},
    {State::eNeutralPosMeasurement, "eNeutralPosMeasurement", Sequence::eNeutralPosMeasurement, eOnlyLeg,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::eTestUnbalanceSpindleStop, "eTestUnbalanceSpindleStop", Sequence::eTestUnbalanceSpindleStop, eOnlyLeg,
        Next(), 2, {ShowThen(Method::eTestUnbalance, Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::eTestUnbalanceSetWeights, "eTestUnbalanceSetWeights", Sequence::eTestUnbalanceSetWeights, eOnlyLeg,
        Next(), 7, {ShowPlain(Method::eTestUnbalance)}, TestUnbalanceMenu(), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::eTestUnbalanceRPMStart, "eTestUnbalanceRPMStart", Sequence::eTestUnbalanceRPMStart, eOnlyLeg,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::eTestUnbalanceMeasurement, "eTestUnbalanceMeasurement", Sequence::eTestUnbalanceMeasurement, eOnlyLeg,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eMeasure)},
    {State::ePreBalanceSpindleStop, "ePreBalanceSpindleStop", Sequence::ePreBalanceSpindleStop, eOnlyLeg,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStop)},
    {State::ePreBalanceSetWeights, "ePreBalanceSetWeights", Sequence::ePreBalanceSetWeights, eOnlyLeg,
        Next(), 8, {Show(Method::eUACompensation)}, Menu(Menus::eConfirm), Notify(Nc::eSetup, Nc::eSetWeights)},
    {State::ePreBalanceRPMStart, "ePreBalanceRPMStart", Sequence::ePreBalanceRPMStart, eOnlyLeg,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eSetup, Nc::eSpindleStart)},
    {State::ePreBalanceMeasurement, "ePreBalanceMeasurement", Sequence::ePreBalanceMeasurement, eOnlyLeg,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
    {State::eReBalanceCommitWeights, "eReBalanceCommitWeights", Sequence::eReBalanceCommitWeights, eOnlyLeg,
        FirstOfOrNext(7), 8, {Show(Method::eUACompensation)}, MenuByMeans(Menus::eSetScrews, Menus::eSetWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceRPMStart1, "eReBalanceRPMStart1", Sequence::eReBalanceRPMStart1, eOnlyLeg,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement1, "eReBalanceMeasurement1", Sequence::eReBalanceMeasurement1, eOnlyLeg,
        NextOf(5), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eMeasure)},
    {State::eReBalanceSpindleStop, "eReBalanceSpindleStop", Sequence::eReBalanceSpindleStop, eOnlyLeg,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSpindleStopCheckWeights, "eReBalanceSpindleStopCheckWeights", Sequence::eReBalanceSpindleStopCheckWeights, eOnlyLeg,
        Next(), 2, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStop)},
    {State::eReBalanceSetWeights, "eReBalanceSetWeights", Sequence::eReBalanceSetWeights, eOnlyLeg,
        Keep(), 8, {Show(Method::eUACompensation)}, Menu(Menus::eConfirmOrCheckWeights), Notify(Nc::eReBalActive, Nc::eSetWeights)},
    {State::eReBalanceCheckWeights, "eReBalanceCheckWeights", Sequence::eReBalanceCheckWeights, eOnlyLeg,
        Keep(), 9, {Show(Method::eUACompensation)}, CheckWeightsMenu(), NoNotification()},
    {State::eReBalanceRPMStart2, "eReBalanceRPMStart2", Sequence::eReBalanceRPMStart2, eOnlyLeg,
        Next(), 4, {Show(Method::eInactive)}, Menu(Menus::eWait), Notify(Nc::eReBalActive, Nc::eSpindleStart)},
    {State::eReBalanceMeasurement2, "eReBalanceMeasurement2", Sequence::eReBalanceMeasurement2, eOnlyLeg,
        Next(), 6, {Show(Method::eMeasurementValues)}, Menu(Menus::eFinal), StoreAction(Nc::eMeasure)},
}};

/// The failure states may follow every state, and nothing follows them.
inline constexpr std::array<Sequence::CTransition, 22> g_Transitions = {{
    {State::eIdle, {State::eNeutralPosSpindleStop, State::eNeutralPosRemoveWeights, State::eReBalanceCommitWeights, State::eReBalanceRPMStart1, State::eReBalanceMeasurement1}},
    {State::eNeutralPosSpindleStop, {State::eNeutralPosRemoveWeights, State::eNeutralPosRPMStart}},
    {State::eNeutralPosRemoveWeights, {State::eNeutralPosRPMStart}},
    {State::eNeutralPosRPMStart, {State::eNeutralPosMeasurement}},
    {State::eNeutralPosMeasurement, {State::eTestUnbalanceSpindleStop}},
    {State::eTestUnbalanceSpindleStop, {State::eTestUnbalanceSetWeights}},
    {State::eTestUnbalanceSetWeights, {State::eTestUnbalanceRPMStart, State::eTestUnbalanceMeasurement}},
    {State::eTestUnbalanceRPMStart, {State::eTestUnbalanceMeasurement}},
    {State::eTestUnbalanceMeasurement, {State::ePreBalanceSpindleStop}},
    {State::ePreBalanceSpindleStop, {State::ePreBalanceSetWeights}},
    {State::ePreBalanceSetWeights, {State::ePreBalanceRPMStart, State::ePreBalanceMeasurement}},
    {State::ePreBalanceRPMStart, {State::ePreBalanceMeasurement}},
    {State::ePreBalanceMeasurement, {State::eReBalanceMeasurement1}},
    {State::eReBalanceCommitWeights, {State::eReBalanceRPMStart1, State::eReBalanceMeasurement1}},
    {State::eReBalanceRPMStart1, {State::eReBalanceMeasurement1}},
    {State::eReBalanceMeasurement1, {State::eReBalanceSpindleStop, State::eReBalanceSpindleStopCheckWeights}},
    {State::eReBalanceSpindleStop, {State::eReBalanceSetWeights}},
    {State::eReBalanceSpindleStopCheckWeights, {State::eReBalanceCheckWeights}},
    {State::eReBalanceSetWeights, {State::eReBalanceCheckWeights, State::eReBalanceRPMStart2, State::eReBalanceMeasurement2}},
    // No handler leads from the check back to the commit; the transition is defined all the same.
    {State::eReBalanceCheckWeights, {State::eReBalanceCommitWeights, State::eReBalanceSetWeights}},
    {State::eReBalanceRPMStart2, {State::eReBalanceMeasurement2}},
    {State::eReBalanceMeasurement2, {State::eReBalanceMeasurement1}},
}};

// clang-format on

inline constexpr Sequence::CTables g_Tables = {
    g_States,
    g_Transitions,
    State::eReBalanceCommitWeights,
    "CSinglePlaneBalancing",
    "Invalid state",
    "this path is not present in two plane balancing! Is it really reachable?!"};

static_assert(Sequence::AreStatesInOrder(g_States), "a state is looked up by its number");

}  // namespace SinglePlane
