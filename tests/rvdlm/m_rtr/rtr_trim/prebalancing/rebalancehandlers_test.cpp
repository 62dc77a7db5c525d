// The states of a re-balancing: what their events do.
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
using testing::Not;

class ReBalanceTest : public SequenceTest {
protected:
    ReBalanceTest() {
        Calibrate();
        Make();
    }
    const PreBalDB::CSinglePlaneBalancingTableEntry& GetPlaneEntry() { return m_Entry.CreateSinglePlane(); }
    void IgnoreRebalWeights() {
        std::ofstream(m_Installation.GetRoot() / "cnf" / "mcon.xdb")
            << "<Corvane><system_falconet IgnoreRebalWeights=\"1\"></system_falconet></Corvane>";
        Make();
    }
    void LackCapacity(double Percent) {
        m_pMethod->m_bReached = false;
        m_pMethod->m_Percent = Percent;
    }
};

// --- start ---

TEST_F(ReBalanceTest, UncalibratedConfigurationIsRefused) {
    m_Entry.SetIsCalibrated(0);
    EXPECT_EQ(m_pSequence->StartReBalancing(SPEED, 0, 0), 0);
    EXPECT_EQ(GetState(), S::eIdle);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("Invalid Event eStartReBal in state eIdle received"));
}

TEST_F(ReBalanceTest, ValidSpeedStartsWithTheMeasurementIn5Steps) {
    EXPECT_EQ(m_pSequence->StartReBalancing(SPEED, 0, 0), 1);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 5U));
    EXPECT_EQ(m_Entry.IsCalibrated(), 1) << "unlike a pre-balancing";
}

TEST_F(ReBalanceTest, InvalidSpeedStartsWithTheWeightsIn7Steps) {
    EXPECT_EQ(m_pSequence->StartReBalancing(SPEED, 0, 1), 1);
    EXPECT_EQ(GetState(), S::eReBalanceCommitWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 7U));
}

TEST_F(ReBalanceTest, TheCalibratedSpeedIsNeitherChangedNorHidden) {
    m_Entry.SetCalibratedRPM(2000);
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    EXPECT_EQ(m_Entry.GetCalibratedRPM(), 2000U);
    EXPECT_THAT(m_pSequence->GetCalibratedText(), HasSubstr("2000"));
    Make();
    m_pSequence->StartReBalancing(0, 1, 1);
    EXPECT_THAT(m_pSequence->GetCalibratedText(), HasSubstr("2000"));
}

// --- eReBalanceCommitWeights ---

TEST_F(ReBalanceTest, CommitShowsTheStoredCorrection) {
    Reach(S::eReBalanceCommitWeights);
    ASSERT_EQ(m_pMethod->m_SetUAs.size(), 1U);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_UA == MakeVector(1.5, -0.25));
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bPercent);
    EXPECT_FALSE(m_pMethod->m_SetUAs[0].m_bAllowEqualAngles);
}

TEST_F(ReBalanceTest, NextInCommitStoresThePositionsAndLeadsOn) {
    Reach(S::eReBalanceCommitWeights);
    m_pMethod->m_UA = MakeVector(0.1, 0.2);
    Next();
    EXPECT_EQ(GetState(), S::eReBalanceRPMStart1);
    EXPECT_TRUE(GetPlaneEntry().GetUA() == MakeVector(0.1, 0.2));
}

TEST_F(ReBalanceTest, ExtrasInCommitShowsTheMenuToMoveTheWeights) {
    Reach(S::eReBalanceCommitWeights);
    TakeCalls();
    Key(K::eExtras);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("SetDisplayMode eUACompensation", "SetMenu 131", "WarningModeChanged 0"));
    EXPECT_EQ(m_pSequence->GetMode(), 9U);
    EXPECT_EQ(GetState(), S::eReBalanceCommitWeights);
}

TEST_F(ReBalanceTest, ValidSpeedInCommitSkipsTheSpindleStart) {
    Reach(S::eReBalanceCommitWeights);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eReBalanceCommitWeights);
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 7U));
    EXPECT_TRUE(m_pMethod->m_SetUAs.back().m_UA == m_pMethod->m_UA) << "stored before it was shown again";
}

TEST_F(ReBalanceTest, CorrectionBeyondTheCapacityRefusesTheRunInCommit) {
    LackCapacity(33.333);
    TakeWarnings();
    EXPECT_EQ(m_pSequence->StartReBalancing(0, 1, 1), 1) << "the failure stays on screen";
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 7U);
    EXPECT_EQ(m_Wnd.GetMenu(), 4);
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U, 6U, 0U, 7U));
    // Display, menu and notification of the state follow in all cases.
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::make_pair(4, 4), std::make_pair(5, 0)));
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                testing::IsSupersetOf(
                    {"Commit Weights: Compensation SetUA failed 33.33% failure (not enough capacity)",
                     "Compensation SetUA failed not enough capacity"}));
    EXPECT_EQ(m_Wnd.m_Activities.back(), 0);
}

TEST_F(ReBalanceTest, IgnoreRebalWeightsLetsTheRunGoOnInCommit) {
    IgnoreRebalWeights();
    LackCapacity(12.6);
    m_pSequence->StartReBalancing(0, 1, 1);
    EXPECT_EQ(GetState(), S::eReBalanceCommitWeights);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 6U);
    EXPECT_EQ(m_pSequence->GetPercent(), 12.6);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("IGNORING: Compensation SetUA failed not enough capacity !!!!!!!!"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), Not(Contains("Compensation SetUA failed not enough capacity")));
}

// --- eReBalanceMeasurement1 ---

TEST_F(ReBalanceTest, TheMeasurementTestsTheStoredCorrection) {
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    ASSERT_EQ(m_pMethod->m_SetUAs.size(), 1U);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_UA == MakeVector(1.5, -0.25));
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bPercent);
    EXPECT_FALSE(m_pMethod->m_SetUAs[0].m_bAllowEqualAngles);
}

TEST_F(ReBalanceTest, CorrectionBeyondTheCapacityRefusesTheRunInTheMeasurement) {
    LackCapacity(33.333);
    TakeWarnings();
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U, 6U, 0U, 7U));
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::make_pair(4, 5), std::make_pair(5, 0)));
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                testing::IsSupersetOf({"Compensation SetUA failed 33.33% failure (not enough capacity)",
                                       "Compensation SetUA failed (not enough capacity)"}));
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "nothing is measured";
}

TEST_F(ReBalanceTest, IgnoreRebalWeightsLetsTheRunGoOnInTheMeasurement) {
    IgnoreRebalWeights();
    LackCapacity(12.6);
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("IGNORING: Compensation SetUA failed not enough capacity !!!!!!!!"));
    m_Loop.Advance(3000);
    EXPECT_EQ(m_pSequence->CanMeasure(), 1);
}

TEST_F(ReBalanceTest, KeysInTheMeasurementWorkOnlyWithMenu8) {
    for (const auto& [Action, State] :
         {std::pair{K::eNext, S::eReBalanceSpindleStop},
          std::pair{K::eCheckWeightPositions, S::eReBalanceSpindleStopCheckWeights}}) {
        Reach(S::eReBalanceMeasurement1);
        m_Loop.Advance(3500);
        EXPECT_EQ(Key(Action), 1);
        EXPECT_EQ(GetState(), S::eReBalanceMeasurement1) << "the values aren't complete";
        CompleteMeasurement();
        EXPECT_EQ(m_Wnd.GetMenu(), 8);
        Key(K::eExtras);
        EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
        Key(Action);
        EXPECT_EQ(GetState(), State);
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    }
}

// Readings and locks come all the time; a state that has no use for them takes them without a word.
TEST_F(ReBalanceTest, WhatDoesNotConcernTheSettingOfWeightsIsTakenInSilence) {
    for (const auto State :
         {S::eReBalanceCommitWeights, S::eReBalanceSetWeights, S::eReBalanceCheckWeights}) {
        Reach(State);
        m_Log.Clear();
        m_pSequence->CurrentRPM(0);
        m_pSequence->OutOfLock(1);
        m_pSequence->CurrentXYValuePlane1(1, 2);
        EXPECT_EQ(GetState(), State);
        EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty()) << State;
    }
}

// --- eReBalanceSpindleStop, eReBalanceSetWeights ---

TEST_F(ReBalanceTest, SpindleStopComputesTheNewCorrection) {
    Reach(S::eReBalanceSpindleStop);
    EXPECT_TRUE(m_pMath->m_GivenInvA == FakeStoredInvA());
    EXPECT_TRUE(m_pMath->m_GivenUA == GetPlaneEntry().GetUA());
    const auto& rSet = m_pMethod->m_SetUAs.back();
    EXPECT_TRUE(rSet.m_UA == m_pMath->m_RebalanceUA);
    EXPECT_FALSE(rSet.m_bPercent);
    EXPECT_TRUE(rSet.m_bAllowEqualAngles);
}

TEST_F(ReBalanceTest, CheckingTheWeightsComputesNothing) {
    const auto EnterIt = Approach(S::eReBalanceSpindleStopCheckWeights);
    TakeCalls();
    EnterIt();
    EXPECT_THAT(TakeCalls(), Not(Contains(HasSubstr("Math"))));
}

TEST_F(ReBalanceTest, SetWeightsWarnsOfALackOfCapacityAndGoesOn) {
    const auto EnterIt = Approach(S::eReBalanceSetWeights);
    LackCapacity(7.25);
    EnterIt();
    EXPECT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 6U);
    EXPECT_EQ(m_pSequence->GetPercent(), 7.25);
    EXPECT_TRUE(m_pMethod->m_SetUAs.back().m_bPercent);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("Compensation SetUA failed 7.25% failure (not enough capacity)"));
    Next();
    EXPECT_EQ(GetState(), S::eReBalanceRPMStart2);
}

TEST_F(ReBalanceTest, SetWeightsShowsTheNewCorrection) {
    const auto EnterIt = Approach(S::eReBalanceSetWeights);
    m_pMethod->m_SetUAs.clear();
    EnterIt();
    ASSERT_EQ(m_pMethod->m_SetUAs.size(), 1U);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_UA == m_pMath->m_RebalanceUA);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bPercent);
    EXPECT_TRUE(m_pMethod->m_SetUAs[0].m_bAllowEqualAngles);
}

TEST_F(ReBalanceTest, NextInSetWeightsStoresTheNewCorrectionButNotTheInfluence) {
    Reach(S::eReBalanceSetWeights);
    m_pMethod->m_UA = MakeVector(0.1, 0.2);
    Next();
    EXPECT_TRUE(GetPlaneEntry().GetUA() == MakeVector(0.1, 0.2));
    EXPECT_TRUE(GetPlaneEntry().GetInvA() == FakeStoredInvA());
}

TEST_F(ReBalanceTest, CheckInSetWeightsLeadsToTheCheckWithoutAStep) {
    Reach(S::eReBalanceSetWeights);
    const auto Steps = GetSteps();
    Key(K::eCheckWeightPositions);
    EXPECT_EQ(GetState(), S::eReBalanceCheckWeights);
    EXPECT_EQ(GetSteps(), Steps);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ReBalanceTest, OtherKeysInSetWeightsAreIgnored) {
    Reach(S::eReBalanceSetWeights);
    TakeCalls();
    for (int i = K::eRebalance; i <= K::eIncPosActiveWeightUp; ++i) {
        if (i != K::eCheckWeightPositions) {
            EXPECT_EQ(Key(static_cast<K::KeyAction>(i)), 1);
        }
    }
    EXPECT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(ReBalanceTest, ValidSpeedInSetWeightsSkipsTheSpindleStart) {
    Reach(S::eReBalanceSetWeights);
    m_pMethod->m_UA = MakeVector(0.1, 0.2);
    m_pSequence->InvalidRPM(1);
    EXPECT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_FALSE(GetPlaneEntry().GetUA() == m_pMethod->m_UA);
    m_pSequence->InvalidRPM(0);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement2);
    EXPECT_EQ(GetSteps(), std::make_pair(7U, 7U));
    EXPECT_TRUE(GetPlaneEntry().GetUA() == MakeVector(0.1, 0.2));
}

// --- eReBalanceCheckWeights ---

TEST_F(ReBalanceTest, CheckShowsTheStoredCorrection) {
    Reach(S::eReBalanceCheckWeights);
    const auto& rSet = m_pMethod->m_SetUAs.back();
    EXPECT_TRUE(rSet.m_UA == GetPlaneEntry().GetUA());
    EXPECT_FALSE(rSet.m_bPercent);
    EXPECT_FALSE(rSet.m_bAllowEqualAngles);
}

TEST_F(ReBalanceTest, NextInCheckStoresThePositionsAndComputesAnew) {
    Reach(S::eReBalanceCheckWeights);
    const auto Steps = GetSteps();
    m_pMethod->m_UA = MakeVector(0.1, 0.2);
    Next();
    EXPECT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_TRUE(GetPlaneEntry().GetUA() == MakeVector(0.1, 0.2));
    EXPECT_TRUE(m_pMath->m_GivenUA == MakeVector(0.1, 0.2));
    EXPECT_EQ(GetSteps(), Steps);
}

TEST_F(ReBalanceTest, SpeedWhileWeightsAreToBeLookedAtIsWarnedOf) {
    Reach(S::eReBalanceCheckWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("SetDisplayMode eInactive", "WarningModeChanged 10", "SetMenu 4"));
    m_pSequence->InvalidRPM(1);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("SetDisplayMode eUACompensation", "WarningModeChanged 0", "SetMenu 141"));
    EXPECT_EQ(GetState(), S::eReBalanceCheckWeights);
}

// --- eReBalanceMeasurement2 ---

TEST_F(ReBalanceTest, MayBeRepeatedWithoutEnd) {
    Reach(S::eReBalanceMeasurement2);
    for (int i = 0; i < 3; ++i) {
        Key(K::eRebalance);
        EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
        EXPECT_EQ(GetSteps(), std::make_pair(1U, 5U));
        CompleteMeasurement();
        Next();
        StopSpindle();
        EXPECT_EQ(GetSteps(), std::make_pair(3U, 5U));
        Next();
        m_pSequence->CurrentRPM(SPEED);
        EXPECT_EQ(GetState(), S::eReBalanceMeasurement2);
        EXPECT_EQ(GetSteps(), std::make_pair(5U, 5U));
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// A stored calibration that can't be calculated with (a matrix of a wrong size, say) ends the run, not the
// host.
TEST_F(ReBalanceTest, CalculationThatThrowsFailsTheRunWithWarning7) {
    const auto EnterIt = Approach(S::eReBalanceSpindleStop);
    m_pMath->m_bThrow = true;
    EXPECT_NO_THROW(EnterIt());
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 7U);
    EXPECT_THAT(m_Log.GetTexts("Error"),
                Contains("Calculation failed in state eReBalanceSpindleStop: inconsistent"));
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

// --- keys that move the weights ---

/// States in which the default keys move the weights, with the degrees of a key press.
struct CKeyState {
    int m_State;
    int m_Degrees;
};
class ChangeWeightKeysTest : public ReBalanceTest, public testing::WithParamInterface<CKeyState> {};

TEST_P(ChangeWeightKeysTest, MoveTheWeightsAndTellTheNC) {
    Reach(GetParam().m_State);
    for (int i = K::eNext; i <= K::eIncPosActiveWeightUp; ++i) {
        const auto Action = static_cast<K::KeyAction>(i);
        const bool bPlain = Action == K::eIncrement || Action == K::eDecrement ||
                            Action == K::eNeutralPosition || Action == K::eWeightSelection ||
                            Action == K::eStepSelection;
        const bool bWeight = i >= K::eIncPosWeight1Down && i <= K::eDecPosWeight2Up;
        const bool bActive = i >= K::eDecPosActiveWeightDown && i <= K::eIncPosActiveWeightUp;
        const bool bOfTheState = Action == K::eNext || Action == K::eExtras ||
                                 Action == K::eNeutralPositionAdjusted || Action == K::ePositionAdoption;
        if (bOfTheState) {
            continue;
        }
        m_pMethod->m_Keys.clear();
        TakeCalls();
        m_pMethod->m_Positions = MakeVector(i, 200 + i);
        EXPECT_EQ(Key(Action), 1);
        EXPECT_EQ(GetState(), GetParam().m_State);
        if (!bPlain && !bWeight && !bActive) {
            EXPECT_THAT(TakeCalls(), IsEmpty()) << i;
            continue;
        }
        EXPECT_THAT(m_pMethod->m_Keys, ElementsAre(std::make_pair(i, bWeight ? GetParam().m_Degrees : 0)));
        if (bPlain) {
            EXPECT_THAT(TakeCalls(), ElementsAre("KeyPressed")) << i;
        } else {
            const std::string Step = GetParam().m_Degrees == 5 ? "3" : "4";
            EXPECT_THAT(TakeCalls(), ElementsAre("KeyPressed", "PreBalNotification " + Step + " 4")) << i;
            EXPECT_EQ(m_Wnd.m_Notifications.back().m_AnglesPlane1[0], i) << "filled anew";
        }
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}
INSTANTIATE_TEST_SUITE_P(States, ChangeWeightKeysTest,
                         testing::Values(CKeyState{S::eNeutralPosSpindleStop, 5},
                                         CKeyState{S::eNeutralPosRemoveWeights, 5},
                                         CKeyState{S::eTestUnbalanceSetWeights, 5},
                                         CKeyState{S::eReBalanceCommitWeights, 1},
                                         CKeyState{S::eReBalanceCheckWeights, 1}),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param.m_State); });

}  // namespace
