// The states of a two-plane run: names, transitions, and what is done on entering each of them.
#include <map>
#include <set>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using S = CTwoPlaneBalancing;

TEST_F(TwoPlaneTest, StateNamesLackTheirEButForTwo) {
    const std::vector<const char*> Names = {"Idle",
                                            "FailureWithNoReturn",
                                            "FailureWithReset",
                                            "NeutralPosSpindleStop",
                                            "NeutralPosRemoveWeights",
                                            "NeutralPosRPMStart",
                                            "NeutralPosMeasurement",
                                            "Plane1TestUnbalanceSpindleStop",
                                            "Plane1TestUnbalanceSetWeights",
                                            "Plane1TestUnbalanceRPMStart",
                                            "Plane1TestUnbalanceMeasurement",
                                            "Plane2TestUnbalanceSpindleStop",
                                            "Plane2TestUnbalanceSetWeights",
                                            "Plane2TestUnbalanceRPMStart",
                                            "Plane2TestUnbalanceMeasurement",
                                            "PreBalanceSpindleStop",
                                            "PreBalanceSetWeights",
                                            "PreBalanceRPMStart",
                                            "PreBalanceMeasurement",
                                            "ReBalanceCommitWeights",
                                            "ReBalanceRPMStart1",
                                            "ReBalanceMeasurement1",
                                            "ReBalanceSpindleStop",
                                            "eReBalanceSpindleStopCheckWeights",
                                            "ReBalanceSetWeights",
                                            "eReBalanceCheckWeights",
                                            "ReBalanceRPMStart2",
                                            "ReBalanceMeasurement2"};
    for (std::size_t i = 0; i < Names.size(); ++i) {
        EXPECT_STREQ(S::STATESToString(static_cast<int>(i)), Names[i]);
    }
    EXPECT_STREQ(S::STATESToString(28), "invalid state");
    EXPECT_STREQ(S::STATESToString(-1), "invalid state");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTest, EventNames) {
    const std::vector<const char*> Names = {
        "eNewState",         "eStartPreBal",          "eStartReBal",           "eKeyPressed",
        "eRPMChanged",       "ePlane1XYValueChanged", "ePlane2XYValueChanged", "eInvalidRPMChanged",
        "eOutOfLockChanged", "eCommitChanges"};
    for (std::size_t i = 0; i < Names.size(); ++i) {
        EXPECT_STREQ(S::EVENTSToString(static_cast<int>(i)), Names[i]);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_STREQ(S::EVENTSToString(10), "invalid event");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

// Every pair of states, and a source and a target beyond them.
TEST_F(TwoPlaneTest, TransitionsAreCheckedYetAlwaysMade) {
    const std::map<int, std::set<int>> Allowed = {{0, {3, 4, 19, 20, 21}},
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
                                                  {14, {15}},
                                                  {15, {16}},
                                                  {16, {17, 18}},
                                                  {17, {18}},
                                                  {18, {21}},
                                                  {19, {20, 21}},
                                                  {20, {21}},
                                                  {21, {22, 23}},
                                                  {22, {24}},
                                                  {23, {25}},
                                                  {24, {25, 26, 27}},
                                                  {25, {19, 24}},
                                                  {26, {27}},
                                                  {27, {21}}};
    for (int From = 0; From <= 28; ++From) {
        for (int To = 0; To <= 28; ++To) {
            if (From == 28 && To == 28) {
                continue;
            }
            Make();
            m_pSequence->ChangeState(From);
            m_Log.Clear();
            const int Result = m_pSequence->ChangeState(To);
            const std::string Pair = std::to_string(From) + " to " + std::to_string(To);
            EXPECT_EQ(m_pSequence->GetState(), To) << Pair;
            const bool bToFailure = To == 1 || To == 2;
            if (bToFailure || From > 27 || (Allowed.contains(From) && Allowed.at(From).contains(To))) {
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

TEST_F(TwoPlaneTest, ActivityIsRebalancingFromState19On) {
    for (const int State : {3, 18, 19, 27, 21, 2, 1}) {
        m_pSequence->ChangeState(State);
    }
    EXPECT_THAT(m_Wnd.m_Activities, ElementsAre(1, 2, 0));
}

/// What entering a state does. Step and number of steps are those of the state's usual way (see the fixture).
struct CEntryRow {
    int m_State;
    unsigned m_Step;
    unsigned m_nSteps;
    unsigned m_Mode;
    std::vector<std::string> m_Calls;
};

// clang-format off
std::vector<CEntryRow> MakeEntryRows() {
    return {
        {1, 0, 0, 0, {"WarningModeChanged 0", "WarningModeChanged 11", "1:SetDisplayMode eEmpty", "2:SetDisplayMode eEmpty", "SetMenu 7", "PreBalNotification 5 0"}},
        {2, 0, 0, 0, {"Math.GetPrebalanceResult", "SetBalancingActivity 0", "WarningModeChanged 0", "1:SetDisplayMode eEmpty", "2:SetDisplayMode eEmpty", "SetMenu 4", "PreBalNotification 5 0", "WarningModeChanged 5"}},
        {3, 1, 16, 1, {"Math.SetRawUnbalanceVectors 1 0", "SetBalancingActivity 1", "WarningModeChanged 0", "1:SetDisplayMode eNeutralPosition", "1:SetDisplayMode eInactive", "2:SetDisplayMode eNeutralPosition", "2:SetDisplayMode eInactive", "SetMenu 28", "PreBalNotification 3 3"}},
        {4, 1, 15, 3, {"Math.SetRawUnbalanceVectors 1 0", "SetBalancingActivity 1", "WarningModeChanged 0", "1:SetDisplayMode eNeutralPosition", "2:SetDisplayMode eNeutralPosition", "SetMenu 30", "PreBalNotification 3 4"}},
        {5, 2, 15, 5, {"Math.SetRawUnbalanceVectorsAngles 10,190 30,200 1 0", "WarningModeChanged 0", "WarningModeChanged 3", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 0"}},
        {6, 3, 15, 6, {"WarningModeChanged 0", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 3 5"}},
        {7, 4, 15, 2, {"Math.ApplyNeutralPositionXYValues", "WarningModeChanged 0", "1:SetDisplayMode eTestUnbalance", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 3"}},
        {8, 5, 15, 7, {"WarningModeChanged 0", "1:SetPlainDisplayMode eTestUnbalance", "2:SetDisplayMode eInactive", "SetMenu 110", "PreBalNotification 3 4"}},
        {9, 6, 15, 4, {"Math.SetTestUnbalanceVectorCase1 11,22 1", "WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 2"}},
        {10, 7, 15, 6, {"WarningModeChanged 0", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 3 5"}},
        {11, 8, 15, 2, {"Math.ApplyTestPlusRawUnbalanceXYValuesCase1", "WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eTestUnbalance", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 3"}},
        {12, 9, 15, 7, {"WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetPlainDisplayMode eTestUnbalance", "SetMenu 210", "PreBalNotification 3 4"}},
        {13, 10, 15, 4, {"Math.SetTestUnbalanceVectorCase2 33,44 0", "WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 2"}},
        {14, 11, 15, 6, {"WarningModeChanged 0", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 3 5"}},
        {15, 12, 15, 2, {"Math.GetPrebalanceResult", "1:SetUA", "2:SetUA", "WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 3"}},
        {16, 13, 15, 8, {"WarningModeChanged 0", "1:SetDisplayMode eUACompensation", "2:SetDisplayMode eUACompensation", "SetMenu 0", "PreBalNotification 3 4"}},
        {17, 14, 15, 4, {"WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 3 2"}},
        {18, 15, 15, 6, {"WarningModeChanged 0", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 5"}},
        {19, 1, 7, 8, {"SetBalancingActivity 2", "WarningModeChanged 0", "1:SetUA", "2:SetUA", "1:SetDisplayMode eUACompensation", "2:SetDisplayMode eUACompensation", "SetMenu 32", "PreBalNotification 4 4"}},
        {20, 2, 7, 4, {"WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 2"}},
        {21, 3, 7, 6, {"WarningModeChanged 0", "1:SetUA", "2:SetUA", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 4", "PreBalNotification 4 5"}},
        {22, 4, 7, 2, {"WarningModeChanged 0", "Math.SetMathMatrices", "Math.GetRebalanceResult", "1:SetUA", "2:SetUA", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 3"}},
        {23, 4, 7, 2, {"WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 3"}},
        {24, 5, 7, 8, {"WarningModeChanged 0", "Math.SetMathMatrices", "Math.GetRebalanceResult", "1:SetUA", "2:SetUA", "1:SetDisplayMode eUACompensation", "2:SetDisplayMode eUACompensation", "SetMenu 8", "PreBalNotification 4 4"}},
        {25, 5, 7, 9, {"WarningModeChanged 0", "1:SetUA", "2:SetUA", "1:SetDisplayMode eUACompensation", "2:SetDisplayMode eInactive", "SetMenu 142"}},
        {26, 6, 7, 4, {"WarningModeChanged 0", "1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive", "SetMenu 4", "PreBalNotification 4 2"}},
        {27, 7, 7, 6, {"WarningModeChanged 0", "1:SetDisplayMode eMeasurementValues", "2:SetDisplayMode eMeasurementValues", "SetMenu 5"}},
    };
}
// clang-format on

class TwoPlaneEntryTest : public TwoPlaneTest, public testing::WithParamInterface<CEntryRow> {};

TEST_P(TwoPlaneEntryTest, DoesWhatTheTableSays) {
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
INSTANTIATE_TEST_SUITE_P(AllStates, TwoPlaneEntryTest, testing::ValuesIn(MakeEntryRows()),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param.m_State); });

TEST_F(TwoPlaneTest, NotificationsHoldThePositionsOfBothPlanes) {
    Reach(S::ePreBalanceSetWeights);
    EXPECT_THAT(m_Wnd.m_Notifications.back().m_AnglesPlane1, ElementsAre(11, 22, -1));
    EXPECT_THAT(m_Wnd.m_Notifications.back().m_AnglesPlane2, ElementsAre(33, 44, -1));
}

TEST_F(TwoPlaneTest, CommitEnteredAtStepOneAssertsAndCountsOn) {
    Reach(S::eReBalanceCommitWeights);
    m_Log.Clear();
    m_pSequence->Enter(S::eReBalanceCommitWeights);
    EXPECT_THAT(m_Log.GetAssertions(),
                testing::Contains("this path is new (added to two plane balancing since it was present in "
                                  "single plane balancing)"));
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 7U));
}

TEST_F(TwoPlaneTest, StartWithTheSpindleTurningCountsSixteenSteps) {
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 16U));
    TakeCalls();
    m_pSequence->CurrentRPM(0);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 16U));
    EXPECT_THAT(TakeCalls(), testing::IsSupersetOf({"1:SetPlainDisplayMode eNeutralPosition",
                                                    "2:SetPlainDisplayMode eNeutralPosition"}));
}

}  // namespace
