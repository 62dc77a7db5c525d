// The states of the test run and its verdict: what their events do.
#include <limits>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TestRunTest : public SequenceTest {};

// --- eTestUnbalanceSpindleStop, eTestUnbalanceSetWeights, eTestUnbalanceRPMStart ---

TEST_F(TestRunTest, SpindleStopStatesWaitForSpeedZero) {
    for (const int State : {S::eTestUnbalanceSpindleStop, S::ePreBalanceSpindleStop, S::eReBalanceSpindleStop,
                            S::eReBalanceSpindleStopCheckWeights}) {
        Reach(State);
        m_pSequence->CurrentRPM(1);
        m_pSequence->InvalidRPM(0);
        m_pSequence->OutOfLock(1);
        Next();
        EXPECT_EQ(GetState(), State);
        m_pSequence->CurrentRPM(0);
        EXPECT_NE(GetState(), State);
    }
}

TEST_F(TestRunTest, TestWeightsGoToTheMathematics) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pMethod->m_Positions = math::MakeVector(30, 180);
    TakeCalls();
    Next();
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector 30,180 1");
    EXPECT_EQ(GetState(), S::eTestUnbalanceRPMStart);
}

TEST_F(TestRunTest, ScrewsTestWithoutPositions) {
    m_bScrews = true;
    Reach(S::eTestUnbalanceSetWeights);
    TakeCalls();
    Next();
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector null 1");
}

TEST_F(TestRunTest, ValidSpeedInSetWeightsSkipsTheSpindleStart) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eTestUnbalanceSetWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eTestUnbalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(7U, 11U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector 11,22 1");
}

TEST_F(TestRunTest, ExtrasInSetWeightsShowsTheMenuToMoveTheTestWeights) {
    Reach(S::eTestUnbalanceSetWeights);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetMenu 120"));
}

TEST_F(TestRunTest, SpindleStartStatesWaitForTheWindowBothEndsIncluded) {
    for (const int State : {S::eTestUnbalanceRPMStart, S::ePreBalanceRPMStart, S::eReBalanceRPMStart1,
                            S::eReBalanceRPMStart2}) {
        for (const std::uint16_t Good : std::initializer_list<std::uint16_t>{2950, 3050, 3000}) {
            Reach(State);
            m_pSequence->CurrentRPM(2949);
            m_pSequence->CurrentRPM(3051);
            Next();
            m_pSequence->OutOfLock(0);
            EXPECT_EQ(GetState(), State);
            m_pSequence->CurrentRPM(Good);
            EXPECT_NE(GetState(), State);
            EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
        }
    }
}

TEST_F(TestRunTest, ValidSpeedLeadsOnFromSpindleStartButNotFromTheLastOne) {
    for (const int State : {S::eTestUnbalanceRPMStart, S::ePreBalanceRPMStart, S::eReBalanceRPMStart1}) {
        Reach(State);
        m_pSequence->InvalidRPM(1);
        EXPECT_EQ(GetState(), State);
        m_pSequence->InvalidRPM(0);
        EXPECT_NE(GetState(), State);
    }
    Reach(S::eReBalanceRPMStart2);
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eReBalanceRPMStart2);
}

TEST_F(TestRunTest, SpindleAlreadyAtSpeedPassesThroughItsStart) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pSequence->CurrentRPM(2990);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eTestUnbalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(7U, 11U));
    EXPECT_THAT(TakeCalls(), Contains("PreBalNotification 3 2")) << "the start was entered";
}

// --- eTestUnbalanceMeasurement and its verdict ---

TEST_F(TestRunTest, UsableTestRunIsStoredAsTheMeansCanProduceIt) {
    Reach(S::ePreBalanceSpindleStop);
    const auto& rEntry = *m_Entry.GetSinglePlane();
    EXPECT_TRUE(rEntry.GetInvA() == m_pMath->m_InvA);
    EXPECT_TRUE(rEntry.GetUA() == m_pMethod->m_UA);
    ASSERT_EQ(m_pMethod->m_SetUAs.size(), 1U);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_UA == m_pMath->m_UA);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bPercent);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bAllowEqualAngles);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0) << "only a commit calibrates";
}

TEST_F(TestRunTest, LackOfCapacityStoresTheComputedVectorAndWarns) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMethod->m_bReached = false;
    m_pMethod->m_Percent = 12.5;
    EnterIt();
    EXPECT_EQ(GetState(), S::ePreBalanceSpindleStop) << "the run goes on";
    EXPECT_TRUE(m_Entry.GetSinglePlane()->GetUA() == m_pMath->m_UA);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("Compensation SetUA failed 12.50% failure (not enough capacity)"));
    EXPECT_EQ(m_pSequence->GetWarningMode(), 0U);
    TakeWarnings();
    StopSpindle();
    EXPECT_EQ(GetState(), S::ePreBalanceSetWeights);
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U, 6U));
    EXPECT_EQ(m_pSequence->GetPercent(), 12.5);
}

TEST_F(TestRunTest, EnoughCapacityDoesntWarn) {
    Reach(S::ePreBalanceSetWeights);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 0U);
}

// --- ePreBalanceSetWeights ---

TEST_F(TestRunTest, KeysButNextAreIgnoredWhileTheCorrectionIsSet) {
    Reach(S::ePreBalanceSetWeights);
    TakeCalls();
    for (int i = K::eRebalance; i <= K::eIncPosActiveWeightUp; ++i) {
        EXPECT_EQ(Key(static_cast<K::KeyAction>(i)), 1);
        EXPECT_EQ(GetState(), S::ePreBalanceSetWeights) << i;
    }
    EXPECT_THAT(TakeCalls(), IsEmpty());
    Next();
    EXPECT_EQ(GetState(), S::ePreBalanceRPMStart);
}

TEST_F(TestRunTest, TestRunWithoutInfluenceFailsWithWarning5) {
    const auto EnterIt = Approach(S::eFailureWithReset);
    TakeWarnings();
    EnterIt();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U, 5U));
    EXPECT_FALSE(m_pSequence->IsFailureWithNoReturn());
    EXPECT_TRUE(m_Entry.GetSinglePlane()->GetInvA() == FakeStoredInvA()) << "nothing is stored";
}

TEST_F(TestRunTest, ImpossibleVerdictFailsForGoodWithWarning1) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMath->m_Status = 2;
    m_Log.Clear();
    EnterIt();
    EXPECT_EQ(GetState(), S::eFailureWithNoReturn);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 1U);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

// The mathematics let the exception out; the host must not feel it.
TEST_F(TestRunTest, InfluenceOfExactlyZeroIsATestRunWithoutInfluence) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMath->m_bThrow = true;
    EXPECT_NO_THROW(EnterIt());
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
    EXPECT_THAT(m_Log.GetTexts("Warning"), Contains(HasSubstr("can't be evaluated (singular)")));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TestRunTest, InfluenceThatIsNoNumberIsATestRunWithoutInfluence) {
    const double Nan = std::numeric_limits<double>::quiet_NaN();
    const double Infinite = std::numeric_limits<double>::infinity();
    for (const double Value : {Nan, Infinite, -Infinite}) {
        for (const bool bInInvA : {true, false}) {
            const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
            (bInInvA ? m_pMath->m_InvA : m_pMath->m_UA)(0, 0) = Value;
            EnterIt();
            EXPECT_EQ(GetState(), S::eFailureWithReset);
            EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
            EXPECT_THAT(m_pMethod->m_SetUAs, IsEmpty()) << "the means never see it";
        }
    }
}

}  // namespace
