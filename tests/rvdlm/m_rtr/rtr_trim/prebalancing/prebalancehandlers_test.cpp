// The states up to the end of a pre-balancing: what their events do.
#include <filesystem>
#include <fstream>
#include <limits>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Pair2 = std::pair<int, int>;

class PreBalanceTest : public SequenceTest {
protected:
    /// What a key does in a state: the calls, without leaving the state.
    std::vector<std::string> CallsOfKey(K::KeyAction Action) {
        TakeCalls();
        const int State = GetState();
        EXPECT_EQ(Key(Action), 1);
        EXPECT_EQ(GetState(), State);
        return TakeCalls();
    }
    void StorePositions(bool bValid, bool bSinglePlane) {
        WeightPos2Plane Record;
        Record.m_PositionsPlane1 = Vector(77, 266);
        Record.m_PositionsValid = bValid;
        Record.m_SinglePlane = bSinglePlane;
        CWeightPositionStore::Set("000005_WHEEL1", Record);
        m_Wnd.m_Store.Load();
    }
};

// --- start ---

TEST_F(PreBalanceTest, StandingSpindleGoesStraightToTheWeightsWith11Steps) {
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 11U));
}

TEST_F(PreBalanceTest, TurningSpindleIsToBeStoppedFirstWith12Steps) {
    EXPECT_EQ(m_pSequence->StartPreBalancing(1, 0, 0), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosSpindleStop);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 12U));
}

TEST_F(PreBalanceTest, StartMakesTheConfigurationUncalibrated) {
    m_Entry.SetIsCalibrated(1);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
}

TEST_F(PreBalanceTest, StartShowsTheSpeed) {
    m_pSequence->StartPreBalancing(1234, 0, 0);
    EXPECT_THAT(m_pSequence->GetCurrentText(), HasSubstr("1234"));
}

TEST_F(PreBalanceTest, IdleIgnoresAllElse) {
    m_pSequence->CurrentRPM(100);
    m_pSequence->InvalidRPM(0);
    m_pSequence->OutOfLock(0);
    m_pSequence->CurrentXYValuePlane1(1, 2);
    EXPECT_EQ(Next(), 1);
    EXPECT_EQ(GetState(), S::eIdle);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(PreBalanceTest, StartWhileRunningIsIgnored) {
    Reach(S::eTestUnbalanceSetWeights);
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eTestUnbalanceSetWeights);
}

TEST_F(PreBalanceTest, StartReloadsTheStoredPositionsWithWeightsOnly) {
    StorePositions(true, true);
    m_Wnd.m_Store = CWeightPositionStore();
    Make(true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    Make();
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_TRUE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    EXPECT_EQ(m_Wnd.GetMenu(), 19);
}

TEST_F(PreBalanceTest, DamagedPositionFileIsLoggedAndTheRunGoesOn) {
    std::ofstream(m_Installation.GetWeightPositions(), std::ios::binary) << "\x03"
                                                                         << "3.1cut";
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_THAT(m_Log.GetTexts("Error"), Contains(HasSubstr("weight positions is damaged")));
}

// --- menus by the stored positions ---

TEST_F(PreBalanceTest, StoredPositionsOfASinglePlaneRunAreOffered) {
    StorePositions(true, true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Wnd.GetMenu(), 19);
    Make();
    m_pSequence->StartPreBalancing(eSpeed, 0, 0);
    EXPECT_EQ(m_Wnd.GetMenu(), 29);
}

TEST_F(PreBalanceTest, InvalidPositionsAndThoseOfATwoPlaneRunAreNotOffered) {
    for (const auto& [bValid, bSinglePlane] : {Pair2{0, 1}, Pair2{1, 0}, Pair2{0, 0}}) {
        StorePositions(bValid != 0, bSinglePlane != 0);
        Make();
        m_pSequence->StartPreBalancing(0, 1, 1);
        EXPECT_EQ(m_Wnd.GetMenu(), 30);
        Make();
        m_pSequence->StartPreBalancing(eSpeed, 0, 0);
        EXPECT_EQ(m_Wnd.GetMenu(), 28);
    }
}

TEST_F(PreBalanceTest, ScrewsDontLookAtStoredPositions) {
    StorePositions(true, true);
    Make(true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Wnd.GetMenu(), 0);
}

// --- eNeutralPosSpindleStop ---

TEST_F(PreBalanceTest, StoppedSpindleLeadsToTheWeightsAtStep2Plain) {
    Reach(S::eNeutralPosSpindleStop);
    m_pSequence->CurrentRPM(1);
    EXPECT_EQ(GetState(), S::eNeutralPosSpindleStop);
    TakeCalls();
    m_pSequence->CurrentRPM(0);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 12U));
    EXPECT_THAT(TakeCalls(), Contains("SetPlainDisplayMode eNeutralPosition"));
}

TEST_F(PreBalanceTest, StoppedSpindleWithScrewsShowsTheNeutralPositionInFull) {
    m_bScrews = true;
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    m_pSequence->CurrentRPM(0);
    EXPECT_THAT(TakeCalls(), Contains("SetDisplayMode eNeutralPosition"));
}

TEST_F(PreBalanceTest, AdjustedPositionSkipsTheWeightsAndUsesUpTheirStep) {
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

TEST_F(PreBalanceTest, NextInSpindleStopActsAsAdjustedWithWeights) {
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 12U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
}

TEST_F(PreBalanceTest, ScrewsIgnoreAllOtherKeysInSpindleStop) {
    m_bScrews = true;
    Reach(S::eNeutralPosSpindleStop);
    for (int i = K::eNext; i <= K::eIncPosActiveWeightUp; ++i) {
        if (i != K::eNeutralPositionAdjusted) {
            EXPECT_THAT(CallsOfKey(static_cast<K::KeyAction>(i)), IsEmpty()) << i;
        }
    }
}

TEST_F(PreBalanceTest, ExtrasInSpindleStopShowsTheMenuToMoveTheWeights) {
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetPlainDisplayMode eNeutralPosition", "SetMenu 101"));
}

TEST_F(PreBalanceTest, AdoptionInSpindleStopLeadsOnWithTheStoredPositions) {
    StorePositions(true, true);
    Reach(S::eNeutralPosSpindleStop);
    TakeCalls();
    Key(K::ePositionAdoption);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 12U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 77,266 1");
    EXPECT_TRUE(m_pMethod->m_Positions == Vector(77, 266));
}

TEST_F(PreBalanceTest, AdoptionWithoutStoredPositionsStays) {
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), IsEmpty());
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 12U));
}

// --- eNeutralPosRemoveWeights ---

TEST_F(PreBalanceTest, NextInRemoveWeightsTakesThePositionsAndLeadsOn) {
    Reach(S::eNeutralPosRemoveWeights);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
}

TEST_F(PreBalanceTest, ValidSpeedInRemoveWeightsLeadsOn) {
    Reach(S::eNeutralPosRemoveWeights);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(TakeCalls().front(), "Math.SetRawUnbalanceVector 11,22 1");
    EXPECT_EQ(GetSteps(), std::make_pair(2U, 11U));
}

TEST_F(PreBalanceTest, ExtrasInRemoveWeightsShowsTheMenuToMoveTheWeights) {
    Reach(S::eNeutralPosRemoveWeights);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetPlainDisplayMode eNeutralPosition", "SetMenu 101"));
}

TEST_F(PreBalanceTest, AdoptionInRemoveWeightsStaysInEveryCase) {
    Reach(S::eNeutralPosRemoveWeights);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), IsEmpty());
    StorePositions(true, true);
    EXPECT_THAT(CallsOfKey(K::ePositionAdoption), ElementsAre("Math.SetRawUnbalanceVector 77,266 1"));
    EXPECT_TRUE(m_pMethod->m_Positions == Vector(77, 266));
}

TEST_F(PreBalanceTest, ScrewsInRemoveWeightsKnowOnlyNext) {
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

TEST_F(PreBalanceTest, RPMStartFollowsLockAndValidity) {
    Reach(S::eNeutralPosRPMStart);  // not locked, not valid
    TakeCalls();
    m_pSequence->OutOfLock(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("WarningModeChanged 0", "SetMenu 4", "PreBalNotification 3 0"));
    m_pSequence->InvalidRPM(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("SetMenu 0", "PreBalNotification 3 1"));
    m_pSequence->OutOfLock(1);
    EXPECT_THAT(TakeCalls(), ElementsAre("WarningModeChanged 3", "SetMenu 4", "PreBalNotification 3 0"));
}

TEST_F(PreBalanceTest, RPMStartIgnoresTheSpeedItself) {
    Reach(S::eNeutralPosRPMStart);
    TakeCalls();
    m_pSequence->CurrentRPM(eSpeed);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
}

TEST_F(PreBalanceTest, NextInRPMStartNeedsValidSpeedAndLock) {
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

TEST_F(PreBalanceTest, NextInRPMStartOutOfLockWorksWithIgnoreOutOfLock) {
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

TEST_F(PreBalanceTest, NeutralMeasurementMakesItsSpeedTheCalibratedOne) {
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

TEST_F(PreBalanceTest, NeutralMeasurementNotesItsSpeedInTheStore) {
    Reach(S::eNeutralPosMeasurement);
    ASSERT_TRUE(m_Wnd.m_Store.Contains("000005_WHEEL1")) << "reloaded at once";
    EXPECT_EQ(m_Wnd.m_Store.Get("000005_WHEEL1").m_RPM, 3000);
    EXPECT_TRUE(m_Wnd.m_Store.IsSinglePlane("000005_WHEEL1"));
    EXPECT_FALSE(m_Wnd.m_Store.IsPositionsValid("000005_WHEEL1"));
}

TEST_F(PreBalanceTest, NeutralMeasurementKeepsWhatElseIsStored) {
    StorePositions(true, false);
    Reach(S::eNeutralPosMeasurement);
    const WeightPos2Plane& rRecord = m_Wnd.m_Store.Get("000005_WHEEL1");
    EXPECT_EQ(rRecord.m_PositionsPlane1(0, 0), 77.0);
    EXPECT_TRUE(rRecord.m_PositionsValid);
    EXPECT_TRUE(rRecord.m_SinglePlane);
}

TEST_F(PreBalanceTest, NeutralMeasurementWithScrewsLeavesTheStoreAlone) {
    m_bScrews = true;
    Reach(S::eNeutralPosMeasurement);
    m_Wnd.m_Store.Load();
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
}

TEST_F(PreBalanceTest, NextBeforeTheValuesAreCompleteIsIgnored) {
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

// --- eTestUnbalanceSpindleStop, eTestUnbalanceSetWeights, eTestUnbalanceRPMStart ---

TEST_F(PreBalanceTest, SpindleStopStatesWaitForSpeedZero) {
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

TEST_F(PreBalanceTest, TestWeightsGoToTheMathematics) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pMethod->m_Positions = Vector(30, 180);
    TakeCalls();
    Next();
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector 30,180 1");
    EXPECT_EQ(GetState(), S::eTestUnbalanceRPMStart);
}

TEST_F(PreBalanceTest, ScrewsTestWithoutPositions) {
    m_bScrews = true;
    Reach(S::eTestUnbalanceSetWeights);
    TakeCalls();
    Next();
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector null 1");
}

TEST_F(PreBalanceTest, ValidSpeedInSetWeightsSkipsTheSpindleStart) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eTestUnbalanceSetWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eTestUnbalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(7U, 11U));
    EXPECT_EQ(TakeCalls().front(), "Math.SetTestUnbalanceVector 11,22 1");
}

TEST_F(PreBalanceTest, ExtrasInSetWeightsShowsTheMenuToMoveTheTestWeights) {
    Reach(S::eTestUnbalanceSetWeights);
    EXPECT_THAT(CallsOfKey(K::eExtras), ElementsAre("SetMenu 120"));
}

TEST_F(PreBalanceTest, SpindleStartStatesWaitForTheWindowBothEndsIncluded) {
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

TEST_F(PreBalanceTest, ValidSpeedLeadsOnFromSpindleStartButNotFromTheLastOne) {
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

TEST_F(PreBalanceTest, SpindleAlreadyAtSpeedPassesThroughItsStart) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pSequence->CurrentRPM(2990);
    TakeCalls();
    Next();
    EXPECT_EQ(GetState(), S::eTestUnbalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(7U, 11U));
    EXPECT_THAT(TakeCalls(), Contains("PreBalNotification 3 2")) << "the start was entered";
}

// --- eTestUnbalanceMeasurement and its verdict ---

TEST_F(PreBalanceTest, UsableTestRunIsStoredAsTheMeansCanProduceIt) {
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

TEST_F(PreBalanceTest, LackOfCapacityStoresTheComputedVectorAndWarns) {
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

TEST_F(PreBalanceTest, EnoughCapacityDoesntWarn) {
    Reach(S::ePreBalanceSetWeights);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 0U);
}

TEST_F(PreBalanceTest, TestRunWithoutInfluenceFailsWithWarning5) {
    const auto EnterIt = Approach(S::eFailureWithReset);
    TakeWarnings();
    EnterIt();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U, 5U));
    EXPECT_FALSE(m_pSequence->IsFailureWithNoReturn());
    EXPECT_TRUE(m_Entry.GetSinglePlane()->GetInvA() == FakeStoredInvA()) << "nothing is stored";
}

TEST_F(PreBalanceTest, ImpossibleVerdictFailsForGoodWithWarning1) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMath->m_Status = 2;
    m_Log.Clear();
    EnterIt();
    EXPECT_EQ(GetState(), S::eFailureWithNoReturn);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 1U);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

// The mathematics let the exception out; the host must not feel it.
TEST_F(PreBalanceTest, InfluenceOfExactlyZeroIsATestRunWithoutInfluence) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMath->m_bThrow = true;
    EXPECT_NO_THROW(EnterIt());
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
    EXPECT_THAT(m_Log.GetTexts("Warning"), Contains(HasSubstr("can't be evaluated (singular)")));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(PreBalanceTest, InfluenceThatIsNoNumberIsATestRunWithoutInfluence) {
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

// --- ePreBalanceSetWeights, ePreBalanceMeasurement ---

TEST_F(PreBalanceTest, ValidSpeedInPreBalanceSetWeightsSkipsTheSpindleStart) {
    Reach(S::ePreBalanceSetWeights);
    Key(K::eIncPosWeight1Down);
    EXPECT_THAT(m_pMethod->m_Keys, IsEmpty()) << "the correction can't be changed here";
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::ePreBalanceSetWeights);
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::ePreBalanceMeasurement);
    EXPECT_EQ(GetSteps(), std::make_pair(11U, 11U));
}

TEST_F(PreBalanceTest, RebalanceFromTheFinalMeasurementIsTakenAtAnyTime) {
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

TEST_F(PreBalanceTest, AbortIsPossibleInEveryStateAndStopsTheMeasurement) {
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

TEST_F(PreBalanceTest, NothingLeadsOutOfAFailure) {
    for (const int State : {S::eFailureWithNoReturn, S::eFailureWithReset}) {
        Reach(State);
        TakeCalls();
        for (int i = K::eNext; i <= K::eIncPosActiveWeightUp; ++i) {
            EXPECT_EQ(Key(static_cast<K::KeyAction>(i)), 1);
        }
        m_pSequence->CurrentRPM(0);
        m_pSequence->CurrentRPM(eSpeed);
        m_pSequence->InvalidRPM(0);
        m_pSequence->OutOfLock(0);
        m_pSequence->CurrentXYValuePlane1(1, 1);
        m_Loop.Advance(10000);
        EXPECT_EQ(GetState(), State);
        EXPECT_THAT(TakeCalls(), IsEmpty());
    }
}

TEST_F(PreBalanceTest, AbortOfAPreBalancingLeavesTheEntryUncalibrated) {
    m_Entry.SetIsCalibrated(1);
    m_pSequence->StartPreBalancing(0, 1, 1);
    m_pSequence->AbortBalancing(1);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
}

// --- commit ---

TEST_F(PreBalanceTest, CommitIsAcceptedInTheFinalMeasurementsOnly) {
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

TEST_F(PreBalanceTest, CommitStoresThePositionsInTheFile) {
    Reach(S::ePreBalanceMeasurement);
    m_pMethod->m_Positions = Vector(123, 321);
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

TEST_F(PreBalanceTest, CommitWithScrewsStoresNoPositions) {
    m_bScrews = true;
    Reach(S::ePreBalanceMeasurement);
    EXPECT_TRUE(m_pSequence->CommitChanges());
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetWeightPositions()));
}

TEST_F(PreBalanceTest, RefusedCommitStoresNothing) {
    Reach(S::ePreBalanceSetWeights);
    std::filesystem::remove(m_Installation.GetWeightPositions());
    EXPECT_FALSE(m_pSequence->CommitChanges());
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetWeightPositions()));
}

}  // namespace
