// The states of a single-plane run: names, transitions, and what is done on entering each of them.
#include <map>
#include <set>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using S = CSinglePlaneBalancing;

TEST_F(SequenceTest, StateNamesAndNumbers) {
    const std::vector<const char*> Names = {"eIdle",
                                            "eFailureWithNoReturn",
                                            "eFailureWithReset",
                                            "eNeutralPosSpindleStop",
                                            "eNeutralPosRemoveWeights",
                                            "eNeutralPosRPMStart",
                                            "eNeutralPosMeasurement",
                                            "eTestUnbalanceSpindleStop",
                                            "eTestUnbalanceSetWeights",
                                            "eTestUnbalanceRPMStart",
                                            "eTestUnbalanceMeasurement",
                                            "ePreBalanceSpindleStop",
                                            "ePreBalanceSetWeights",
                                            "ePreBalanceRPMStart",
                                            "ePreBalanceMeasurement",
                                            "eReBalanceCommitWeights",
                                            "eReBalanceRPMStart1",
                                            "eReBalanceMeasurement1",
                                            "eReBalanceSpindleStop",
                                            "eReBalanceSpindleStopCheckWeights",
                                            "eReBalanceSetWeights",
                                            "eReBalanceCheckWeights",
                                            "eReBalanceRPMStart2",
                                            "eReBalanceMeasurement2"};
    for (std::size_t i = 0; i < Names.size(); ++i) {
        EXPECT_STREQ(S::STATESToString(static_cast<int>(i)), Names[i]);
    }
    EXPECT_STREQ(S::STATESToString(24), "Invalid state");
    EXPECT_STREQ(S::STATESToString(-1), "Invalid state");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(SequenceTest, EventNamesAndTheOneWithout) {
    const std::vector<const char*> Names = {"eNewState",          "eStartPreBal",     "eStartReBal",
                                            "eKeyPressed",        "eRPMChanged",      "eXYValueChanged",
                                            "eInvalidRPMChanged", "eOutOfLockChanged"};
    for (std::size_t i = 0; i < Names.size(); ++i) {
        EXPECT_STREQ(S::EVENTSToString(static_cast<int>(i)), Names[i]);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_STREQ(S::EVENTSToString(S::eCommitChanges), "Invalid event");
    EXPECT_STREQ(S::EVENTSToString(9), "Invalid event");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible", "impossible"));
}

// Every pair of states, and a source and a target beyond them.
TEST_F(SequenceTest, TransitionsAreCheckedYetAlwaysMade) {
    const std::map<int, std::set<int>> Allowed = {{0, {3, 4, 15, 16, 17}},
                                                  {3, {4, 5}},
                                                  {4, {5}},
                                                  {5, {6}},
                                                  {6, {7}},
                                                  {7, {8}},
                                                  {8, {9, 10}},
                                                  {9, {10}},
                                                  {10, {11}},
                                                  {11, {12}},
                                                  {12, {13, 14}},
                                                  {13, {14}},
                                                  {14, {17}},
                                                  {15, {16, 17}},
                                                  {16, {17}},
                                                  {17, {18, 19}},
                                                  {18, {20}},
                                                  {19, {21}},
                                                  {20, {21, 22, 23}},
                                                  {21, {15, 20}},
                                                  {22, {23}},
                                                  {23, {17}}};
    for (int From = 0; From <= 24; ++From) {
        for (int To = 0; To <= 24; ++To) {
            if (From == 24 && To == 24) {
                continue;
            }
            Make();
            m_pSequence->ChangeState(From);
            ASSERT_EQ(m_pSequence->GetState(), From);
            m_Log.Clear();
            const int Result = m_pSequence->ChangeState(To);
            const std::string Pair = std::to_string(From) + " to " + std::to_string(To);
            EXPECT_EQ(m_pSequence->GetState(), To) << Pair;
            const bool bToFailure = To == 1 || To == 2;
            if (bToFailure || From > 23 || (Allowed.contains(From) && Allowed.at(From).contains(To))) {
                EXPECT_EQ(Result, 1) << Pair;
                EXPECT_THAT(m_Log.GetAssertions(), IsEmpty()) << Pair;
            } else if (From == 1 || From == 2) {
                EXPECT_EQ(Result, 0) << Pair;
                EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible")) << Pair;
            } else {
                EXPECT_EQ(Result, 0) << Pair;
                EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("State transition not defined")) << Pair;
            }
        }
    }
}

TEST_F(SequenceTest, ActivityIsToldOnlyWhenItChanges) {
    for (const int State : {3, 4, 14, 15, 23, 17, 2, 1}) {
        m_pSequence->ChangeState(State);
    }
    EXPECT_THAT(m_Wnd.m_Activities, ElementsAre(1, 2, 0));
    Make();
    m_pSequence->AbortBalancing(1);
    EXPECT_THAT(m_Wnd.m_Activities, IsEmpty()) << "nothing ran";
}

TEST_F(SequenceTest, EventInAStateThatIsNoneIsRefusedAfterAnAssertion) {
    m_pSequence->ChangeState(24);
    m_Log.Clear();
    EXPECT_EQ(m_pSequence->SetEvent(S::eRPMChanged), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("invalid state: 24"));
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("Invalid Event eRPMChanged in state Invalid state received"));
}

TEST_F(SequenceTest, EnteringIdleIsImpossible) {
    EXPECT_EQ(m_pSequence->SetEvent(S::eNewState), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(SequenceTest, EnteringAStateLogsItsNameAndStep) {
    const CLogCapture Flow(true);
    m_pSequence->StartPreBalancing(SPEED, 0, 0);
    EXPECT_THAT(Flow.GetTexts("PbFlow"), testing::Contains("eNeutralPosSpindleStop Step(1/12)"));
}

TEST_F(SequenceTest, HistorySaysWhenWhereAndWhy) {
    m_Loop.Advance(1234);
    m_pSequence->StartPreBalancing(SPEED, 0, 0);
    m_pSequence->CurrentRPM(0);
    Next();
    m_pSequence->AbortBalancing(11);
    EXPECT_EQ(m_pSequence->GetHistory().ToString(),
              "1234 ms  eIdle -> eNeutralPosSpindleStop  step 1/12  by eStartPreBal 3000 rpm\n"
              "1234 ms  eNeutralPosSpindleStop -> eNeutralPosRemoveWeights  step 2/12  by eRPMChanged 0 rpm\n"
              "1234 ms  eNeutralPosRemoveWeights -> eNeutralPosRPMStart  step 3/12  by eKeyPressed eNext\n"
              "1234 ms  eNeutralPosRPMStart -> eFailureWithNoReturn  step 0/0  by AbortBalancing(11)\n");
    EXPECT_THAT(m_Log.GetTexts("Warning"), testing::Contains(testing::HasSubstr("by AbortBalancing(11)")));
}

/// What entering a state does. Step and number of steps are those of the state's usual way (see the fixture).
struct CEntryRow {
    int m_State;
    unsigned m_Step;
    unsigned m_nSteps;
    unsigned m_Mode;
    /// What the window and the method are told, in order.
    std::vector<std::string> m_Calls;
};

// clang-format off
std::vector<CEntryRow> MakeEntryRows() {
    return {
        {1, 0, 0, 0, {"WarningModeChanged 0", "WarningModeChanged 11", "SetDisplayMode eEmpty", "SetMenu 7", "PreBalNotification 5 0"}},
        {2, 0, 0, 0, {"Math.GetPrebalanceResult", "SetBalancingActivity 0", "WarningModeChanged 0", "SetDisplayMode eEmpty", "SetMenu 4", "PreBalNotification 5 0", "WarningModeChanged 5"}},
        {3, 1, 12, 1, {"SetBalancingActivity 1", "WarningModeChanged 0", "SetDisplayMode eNeutralPosition", "SetDisplayMode eInactive", "SetMenu 28", "PreBalNotification 3 3"}},
        {4, 1, 11, 3, {"SetBalancingActivity 1", "WarningModeChanged 0", "SetDisplayMode eNeutralPosition", "SetMenu 30", "PreBalNotification 3 4"}},
        {5, 2, 11, 5, {"Math.SetRawUnbalanceVector 11,22 1", "WarningModeChanged 0", "WarningModeChanged 3", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 0"}},
        {6, 3, 11, 6, {"WarningModeChanged 0", "SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 3 5"}},
        {7, 4, 11, 2, {"Math.ApplyNeutralPositionXYValues", "WarningModeChanged 0", "SetDisplayMode eTestUnbalance", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 3"}},
        {8, 5, 11, 7, {"WarningModeChanged 0", "SetPlainDisplayMode eTestUnbalance", "SetMenu 110", "PreBalNotification 3 4"}},
        {9, 6, 11, 4, {"Math.SetTestUnbalanceVector 11,22 1", "WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 2"}},
        {10, 7, 11, 6, {"WarningModeChanged 0", "SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 3 5"}},
        {11, 8, 11, 2, {"Math.GetPrebalanceResult", "SetUA", "WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 3"}},
        {12, 9, 11, 8, {"WarningModeChanged 0", "SetDisplayMode eUACompensation", "SetMenu 0", "PreBalNotification 3 4"}},
        {13, 10, 11, 4, {"WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 2"}},
        {14, 11, 11, 6, {"WarningModeChanged 0", "SetDisplayMode eMeasurementValues", "SetMenu 5"}},
        {15, 1, 7, 8, {"SetBalancingActivity 2", "WarningModeChanged 0", "SetUA", "SetDisplayMode eUACompensation", "SetMenu 32", "PreBalNotification 4 4"}},
        {16, 2, 7, 4, {"WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 2"}},
        {17, 3, 7, 6, {"WarningModeChanged 0", "SetUA", "SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 4 5"}},
        {18, 4, 7, 2, {"WarningModeChanged 0", "Math.SetMathMatrices", "Math.GetRebalanceResult", "SetUA", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 3"}},
        {19, 4, 7, 2, {"WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 3"}},
        {20, 5, 7, 8, {"WarningModeChanged 0", "Math.SetMathMatrices", "Math.GetRebalanceResult", "SetUA", "SetDisplayMode eUACompensation", "SetMenu 8", "PreBalNotification 4 4"}},
        {21, 5, 7, 9, {"WarningModeChanged 0", "SetUA", "SetDisplayMode eUACompensation", "SetMenu 141"}},
        {22, 6, 7, 4, {"WarningModeChanged 0", "SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 2"}},
        {23, 7, 7, 6, {"WarningModeChanged 0", "SetDisplayMode eMeasurementValues", "SetMenu 5"}},
    };
}

// clang-format on

class EntryTest : public SequenceTest, public testing::WithParamInterface<CEntryRow> {};

TEST_P(EntryTest, DoesWhatTheTableSays) {
    const CEntryRow& rRow = GetParam();
    const auto EnterIt = Approach(rRow.m_State);
    m_Wnd.m_Calls.clear();
    EnterIt();
    ASSERT_EQ(GetState(), rRow.m_State);
    EXPECT_THAT(TakeCalls(), ElementsAreArray(rRow.m_Calls));
    EXPECT_EQ(GetSteps(), std::make_pair(rRow.m_Step, rRow.m_nSteps));
    EXPECT_EQ(m_pSequence->GetMode(), rRow.m_Mode);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}
INSTANTIATE_TEST_SUITE_P(AllStates, EntryTest, testing::ValuesIn(MakeEntryRows()),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param.m_State); });

/// The menus that depend on the means.
struct CMenuRow {
    int m_State;
    int m_Screws;
    int m_Weights;
};
class MenuByMeansTest : public SequenceTest, public testing::WithParamInterface<CMenuRow> {};

TEST_P(MenuByMeansTest, FollowsTheMeans) {
    Reach(GetParam().m_State);
    EXPECT_EQ(m_Wnd.GetMenu(), GetParam().m_Weights);
    m_bScrews = true;
    Reach(GetParam().m_State);
    EXPECT_EQ(m_Wnd.GetMenu(), GetParam().m_Screws);
}
INSTANTIATE_TEST_SUITE_P(States, MenuByMeansTest,
                         testing::Values(CMenuRow{3, 14, 28}, CMenuRow{4, 0, 30}, CMenuRow{15, 33, 32}),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param.m_State); });

TEST_F(SequenceTest, FinalMeasurementsStoreTheirActionWithoutSendingIt) {
    for (const int State : {S::ePreBalanceMeasurement, S::eReBalanceMeasurement2}) {
        const auto EnterIt = Approach(State);
        TakeNotifications();
        EnterIt();
        EXPECT_THAT(TakeNotifications(), IsEmpty());
        EXPECT_EQ(m_pSequence->GetNotification().m_Action, Nc::eMeasure);
    }
}

// The commit can't be entered twice on the usual ways; the branch is there all the same.
TEST_F(SequenceTest, CommitEnteredAtStepOneAssertsAndCountsOn) {
    Reach(S::eReBalanceCommitWeights);
    m_Log.Clear();
    m_pSequence->Enter(S::eReBalanceCommitWeights);
    EXPECT_THAT(
        m_Log.GetAssertions(),
        testing::Contains("this path is not present in two plane balancing! Is it really reachable?!"));
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 7U));
}

}  // namespace
