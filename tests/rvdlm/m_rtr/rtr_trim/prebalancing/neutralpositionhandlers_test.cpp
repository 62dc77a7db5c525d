// The states of the neutral position: what their events do.
#include <fstream>

#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using math::MakeVector;
using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Pair2 = std::pair<int, int>;

class NeutralPositionTest : public SequenceTest {};

// --- eNeutralPosSpindleStop ---

TEST_F(NeutralPositionTest, StoppedSpindleLeadsToTheWeightsAtStep2Plain) {
    Reach(S::eNeutralPosSpindleStop);
    m_pSequence->CurrentRPM(1);
    EXPECT_EQ(GetState(), S::eNeutralPosSpindleStop);
    TakeCalls();
    m_pSequence->CurrentRPM(0);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 12U));
    EXPECT_THAT(TakeCalls(), Contains("SetPlainDisplayMode eNeutralPosition"));
}

TEST_F(NeutralPositionTest, StoppedSpindleWithScrewsShowsTheNeutralPositionInFull) {
    m_bScrews = true;
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    m_pSequence->CurrentRPM(0);
    EXPECT_THAT(TakeCalls(), Contains("SetDisplayMode eNeutralPosition"));
}

TEST_F(NeutralPositionTest, AdjustedPositionSkipsTheWeightsAndUsesUpTheirStep) {
    for (const bool bScrews : {false, true}) {
        m_bScrews = bScrews;
        Reach(S::eNeutralPosSpindleStop);
        TakeCalls();
        Key(K::eNeutralPositionAdjusted);
        EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
        EXPECT_EQ(GetSteps(), std::make_pair(3U, 12U));
        EXPECT_EQ(TakeCalls().front().starts_with("Math.SetRawUnbalanceVector 11,22"), !bScrews);
    }
}

TEST_F(NeutralPositionTest, NextInSpindleStopActsAsAdjustedWithWeights) {
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 12U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
}

TEST_F(NeutralPositionTest, ScrewsIgnoreAllOtherKeysInSpindleStop) {
    m_bScrews = true;
    Reach(S::eNeutralPosSpindleStop);
    for (int i = K::eNext; i <= K::eIncPosActiveWeightUp; ++i) {
        if (i != K::eNeutralPositionAdjusted) {
            EXPECT_THAT(CallsOfKey(static_cast<K::KeyAction>(i)), IsEmpty()) << i;
        }
    }
}

TEST_F(NeutralPositionTest, ExtrasInSpindleStopShowsTheMenuToMoveTheWeights) {
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetPlainDisplayMode eNeutralPosition", "SetMenu 101"));
}

TEST_F(NeutralPositionTest, AdoptionInSpindleStopLeadsOnWithTheStoredPositions) {
    StorePositions(true, true);
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    Key(K::ePositionAdoption);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 12U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 77,266 1");
    EXPECT_TRUE(m_pMethod->m_Positions == MakeVector(77, 266));
}

TEST_F(NeutralPositionTest, AdoptionWithoutStoredPositionsStays) {
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), IsEmpty());
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 12U));
}

// --- eNeutralPosRemoveWeights ---

TEST_F(NeutralPositionTest, NextInRemoveWeightsTakesThePositionsAndLeadsOn) {
    Reach(S::eNeutralPosRemoveWeights);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
}

TEST_F(NeutralPositionTest, ValidSpeedInRemoveWeightsLeadsOn) {
    Reach(S::eNeutralPosRemoveWeights);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 11U));
}

TEST_F(NeutralPositionTest, ExtrasInRemoveWeightsShowsTheMenuToMoveTheWeights) {
    Reach(S::eNeutralPosRemoveWeights);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetPlainDisplayMode eNeutralPosition", "SetMenu 101"));
}

TEST_F(NeutralPositionTest, AdoptionInRemoveWeightsStaysInEveryCase) {
    Reach(S::eNeutralPosRemoveWeights);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), IsEmpty());
    StorePositions(true, true);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), ElementsAre("Math.SetRawUnbalanceVector 77,266 1"));
    EXPECT_TRUE(m_pMethod->m_Positions == MakeVector(77, 266));
}

TEST_F(NeutralPositionTest, ScrewsInRemoveWeightsKnowOnlyNext) {
    m_bScrews = true;
    Reach(S::eNeutralPosRemoveWeights);
    for (int i = K::eRebalance; i <= K::eIncPosActiveWeightUp; ++i) {
        EXPECT_THAT(CallsOfKey(static_cast<K::KeyAction>(i)), IsEmpty()) << i;
    }
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_THAT(TakeCalls(), testing::Not(Contains(HasSubstr("SetRawUnbalanceVector"))));
}

// --- eNeutralPosRPMStart ---

TEST_F(NeutralPositionTest, RPMStartFollowsLockAndValidity) {
    Reach(S::eNeutralPosRPMStart);  // not locked, not valid
    TakeCalls();
    m_pSequence->OutOfLock(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("WarningModeChanged 0", "SetMenu 4", "PreBalNotification 3 0"));
    m_pSequence->InvalidRPM(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("SetMenu 0", "PreBalNotification 3 1"));
    m_pSequence->OutOfLock(1);
    EXPECT_THAT(TakeCalls(), ElementsAre("WarningModeChanged 3", "SetMenu 4", "PreBalNotification 3 0"));
}

TEST_F(NeutralPositionTest, RPMStartIgnoresTheSpeedItself) {
    Reach(S::eNeutralPosRPMStart);
    TakeCalls();
    m_pSequence->CurrentRPM(SPEED);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
}

TEST_F(NeutralPositionTest, NextInRPMStartNeedsValidSpeedAndLock) {
    for (const auto& [NotLocked, Invalid] : {Pair2{1, 1}, Pair2{0, 1}, Pair2{1, 0}}) {
        Reach(S::eNeutralPosRPMStart);
        m_pSequence->OutOfLock(NotLocked);
        m_pSequence->InvalidRPM(Invalid);
        EXPECT_EQ(Next(), 1);
        EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    }
    m_pSequence->OutOfLock(0);
    m_pSequence->InvalidRPM(0);
    Key(K::eExtras);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosMeasurement);
}

TEST_F(NeutralPositionTest, NextInRPMStartOutOfLockWorksWithIgnoreOutOfLock) {
    std::ofstream(m_Installation.GetRoot() / "cnf" / "mcon.xdb")
        << "<Corvane><system_falconet IgnoreOutOfLock=\"1\"></system_falconet></Corvane>";
    Reach(S::eNeutralPosRPMStart);
    m_pSequence->OutOfLock(1);
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart) << "the speed isn't valid";
    m_pSequence->InvalidRPM(0);
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosMeasurement);
}

// --- eNeutralPosMeasurement ---

TEST_F(NeutralPositionTest, NeutralMeasurementMakesItsSpeedTheCalibratedOne) {
    Reach(S::eNeutralPosRPMStart);
    m_pSequence->OutOfLock(0);
    m_pSequence->InvalidRPM(0);
    m_pSequence->CurrentRPM(1777);
    Next();
    EXPECT_EQ(m_Entry.GetCalibratedRPM(), 1777U);
    EXPECT_THAT(m_pSequence->GetCalibratedText(), HasSubstr("1777"));
    // The window is centred on it.
    m_pSequence->CurrentRPM(1727);
    m_Loop.Advance(3000);
    EXPECT_EQ(m_pSequence->CanMeasure(), 1);
    m_pSequence->CurrentRPM(1726);
    EXPECT_EQ(m_pSequence->CanMeasure(), 0);
}

TEST_F(NeutralPositionTest, NeutralMeasurementNotesItsSpeedInTheStore) {
    Reach(S::eNeutralPosMeasurement);
    ASSERT_TRUE(m_Wnd.m_Store.Contains("000005_WHEEL1")) << "reloaded at once";
    EXPECT_EQ(m_Wnd.m_Store.Get("000005_WHEEL1").m_RPM, 3000);
    EXPECT_TRUE(m_Wnd.m_Store.IsSinglePlane("000005_WHEEL1"));
    EXPECT_FALSE(m_Wnd.m_Store.IsPositionsValid("000005_WHEEL1"));
}

TEST_F(NeutralPositionTest, NeutralMeasurementKeepsWhatElseIsStored) {
    StorePositions(true, false);
    Reach(S::eNeutralPosMeasurement);
    const WeightPos2Plane& rRecord = m_Wnd.m_Store.Get("000005_WHEEL1");
    EXPECT_EQ(rRecord.m_PositionsPlane1(0, 0), 77.0);
    EXPECT_TRUE(rRecord.m_PositionsValid);
    EXPECT_TRUE(rRecord.m_SinglePlane);
}

TEST_F(NeutralPositionTest, NeutralMeasurementWithScrewsLeavesTheStoreAlone) {
    m_bScrews = true;
    Reach(S::eNeutralPosMeasurement);
    m_Wnd.m_Store.Load();
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
}

TEST_F(NeutralPositionTest, NextBeforeTheValuesAreCompleteIsIgnored) {
    for (const int State : {S::eNeutralPosMeasurement, S::eTestUnbalanceMeasurement}) {
        Reach(State);
        m_Loop.Advance(3500);
        EXPECT_EQ(Next(), 1);
        EXPECT_EQ(GetState(), State);
        CompleteMeasurement();
        Key(K::eRebalance);
        EXPECT_EQ(GetState(), State);
        Next();
        EXPECT_NE(GetState(), State);
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "the measurement is stopped";
    }
}

}  // namespace
