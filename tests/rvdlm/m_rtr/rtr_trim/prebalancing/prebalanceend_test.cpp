// The final measurement of a pre-balancing, failures and commits.
#include <filesystem>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"
#include "tests/support/textfiles.h"

namespace {

using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::IsEmpty;

class PreBalanceEndTest : public SequenceTest {};

// --- ePreBalanceSetWeights, ePreBalanceMeasurement ---

TEST_F(PreBalanceEndTest, ValidSpeedInPreBalanceSetWeightsSkipsTheSpindleStart) {
    Reach(S::ePreBalanceSetWeights);
    Key(K::eIncPosWeight1Down);
    EXPECT_THAT(m_pMethod->m_Keys, IsEmpty()) << "the correction can't be changed here";
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::ePreBalanceSetWeights);
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::ePreBalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(11U, 11U));
}

TEST_F(PreBalanceEndTest, RebalanceFromTheFinalMeasurementIsTakenAtAnyTime) {
    Reach(S::ePreBalanceMeasurement);
    Next();
    EXPECT_EQ(GetState(), S::ePreBalanceMeasurement);
    EXPECT_EQ(Key(K::eRebalance), 1);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 5U));
    EXPECT_EQ(m_Wnd.m_Activities.back(), 2);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// --- failure states ---

TEST_F(PreBalanceEndTest, AbortIsPossibleInEveryStateAndStopsTheMeasurement) {
    for (int State = 0; State <= 23; ++State) {
        Reach(State);
        m_Log.Clear();
        m_pSequence->AbortBalancing(11);
        EXPECT_EQ(GetState(), S::eFailureWithNoReturn) << State;
        EXPECT_TRUE(m_pSequence->IsFailureWithNoReturn());
        EXPECT_EQ(m_pSequence->GetWarningMode(), 11U);
        EXPECT_EQ(GetSteps(), std::make_pair(0U, 0U));
        EXPECT_EQ(m_Wnd.GetMenu(), 7);
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << State;
        EXPECT_FALSE(m_pSequence->CommitChanges());
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty()) << State;
    }
}

TEST_F(PreBalanceEndTest, NothingLeadsOutOfAFailure) {
    for (const int State : {S::eFailureWithNoReturn, S::eFailureWithReset}) {
        Reach(State);
        TakeCalls();
        for (int i = K::eNext; i <= K::eIncPosActiveWeightUp; ++i) {
            EXPECT_EQ(Key(static_cast<K::KeyAction>(i)), 1);
        }
        m_pSequence->CurrentRPM(0);
        m_pSequence->CurrentRPM(SPEED);
        m_pSequence->InvalidRPM(0);
        m_pSequence->OutOfLock(0);
        m_pSequence->CurrentXYValuePlane1(1, 1);
        m_Loop.Advance(10000);
        EXPECT_EQ(GetState(), State);
        EXPECT_THAT(TakeCalls(), IsEmpty());
    }
}

TEST_F(PreBalanceEndTest, AbortOfAPreBalancingLeavesTheEntryUncalibrated) {
    m_Entry.SetIsCalibrated(1);
    m_pSequence->StartPreBalancing(0, 1, 1);
    m_pSequence->AbortBalancing(1);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
}

// --- commit ---

TEST_F(PreBalanceEndTest, CommitIsAcceptedInTheFinalMeasurementsOnly) {
    for (int State = 0; State <= 23; ++State) {
        const bool bFinal = State == S::ePreBalanceMeasurement || State == S::eReBalanceMeasurement2;
        Reach(State);
        m_Entry.SetIsCalibrated(0);
        m_Entry.SetCalibrationDateTime({});
        m_Log.Clear();
        EXPECT_EQ(m_pSequence->CommitChanges(), bFinal) << State;
        EXPECT_EQ(m_Entry.IsCalibrated(), bFinal ? 1 : 0) << State;
        EXPECT_EQ(m_Entry.GetCalibrationDateTime(), bFinal ? m_Loop.WallClock() : std::chrono::sys_seconds{});
        EXPECT_EQ(GetState(), State);
        EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty()) << "a refused commit isn't logged";
    }
}

TEST_F(PreBalanceEndTest, CommitStoresThePositionsInTheFile) {
    Reach(S::ePreBalanceMeasurement);
    m_pMethod->m_Positions = math::MakeVector(123, 321);
    ASSERT_TRUE(m_pSequence->CommitChanges());
    EXPECT_FALSE(m_Wnd.m_Store.IsPositionsValid("000005_WHEEL1")) << "the store in memory isn't reloaded";
    m_Wnd.m_Store.Load();
    EXPECT_TRUE(m_Wnd.m_Store.IsPositionsValid("000005_WHEEL1"));
    EXPECT_TRUE(m_Wnd.m_Store.IsSinglePlane("000005_WHEEL1"));
    const WeightPos2Plane& rRecord = m_Wnd.m_Store.Get("000005_WHEEL1");
    EXPECT_EQ(rRecord.m_PositionsPlane1(0, 0), 123.0);
    EXPECT_EQ(rRecord.m_PositionsPlane1(1, 0), 321.0);
    EXPECT_EQ(rRecord.m_RPM, 3000) << "noted by the neutral measurement";
}

// Damaged while the run went on: the positions of this run get lost neither with the old file nor for it.
TEST_F(PreBalanceEndTest, CommitIntoADamagedFileStoresThePositionsInANewOne) {
    Reach(S::ePreBalanceMeasurement);
    const std::string File = m_Installation.GetWeightPositions().string();
    WriteTestFile(File, "\x03");
    m_pMethod->m_Positions = math::MakeVector(123, 321);
    EXPECT_TRUE(m_pSequence->CommitChanges());
    m_Wnd.m_Store.Load();
    ASSERT_TRUE(m_Wnd.m_Store.IsPositionsValid("000005_WHEEL1"));
    EXPECT_TRUE(m_Wnd.m_Store.Get("000005_WHEEL1").m_PositionsPlane1 == math::MakeVector(123, 321));
    EXPECT_EQ(ReadTestFile(File + ".damaged"), "\x03");
}

TEST_F(PreBalanceEndTest, CommitWithScrewsStoresNoPositions) {
    m_bScrews = true;
    Reach(S::ePreBalanceMeasurement);
    EXPECT_TRUE(m_pSequence->CommitChanges());
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetWeightPositions()));
}

TEST_F(PreBalanceEndTest, RefusedCommitStoresNothing) {
    Reach(S::ePreBalanceSetWeights);
    std::filesystem::remove(m_Installation.GetWeightPositions());
    EXPECT_FALSE(m_pSequence->CommitChanges());
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetWeightPositions()));
}

}  // namespace
