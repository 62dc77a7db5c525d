// The two-plane procedure in its conduct: what it hands to methods and mathematics, and results of both
// planes.
#include "platform/window/bitmap.h"
#include "platform/window/dc.h"
#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using math::MakeVector;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using K = CKeyActions;
using PreBalDB::CTypeBase;

TEST_F(TwoPlaneTest, Plane2sMethodAndTheMathematicsKnowTheRotation) {
    m_Entry.CreateTwoPlane().SetRotationDirection(CTypeBase::eCounterClockwise);
    Make();
    EXPECT_EQ(m_pMethod1->m_Rotation, CTypeBase::eCounterClockwise);
    EXPECT_EQ(m_pMethod2->m_Rotation, CTypeBase::eClockwise) << "seen from the other end";
    EXPECT_EQ(m_pMath->m_Rotation, CTypeBase::eCounterClockwise);
    m_Entry.CreateTwoPlane().SetRotationDirection(CTypeBase::eClockwise);
    Make();
    EXPECT_EQ(m_pMethod1->m_Rotation, CTypeBase::eClockwise);
    EXPECT_EQ(m_pMethod2->m_Rotation, CTypeBase::eCounterClockwise);
}

TEST_F(TwoPlaneTest, ConfigurationWithoutTwoPlanesIsAsserted) {
    PreBalDB::CPreBalBaseTableEntry Entry{"0-0#1#255-4711-33-WHEEL1", "Default"};
    Entry.SetNumberOfSamples(4);
    const CTwoPlaneBalancing Sequence(&m_Wnd, Entry, "");
    EXPECT_THAT(m_Log.GetAssertions(), Contains("inconsistent database"));
    EXPECT_NE(Entry.GetTwoPlane(), nullptr) << "weights in both planes are made";
}

TEST_F(TwoPlaneTest, RefusedEventsAreLoggedWithThePlaneOfTheReading) {
    m_pSequence->ChangeState(28);
    m_Log.Clear();
    m_pSequence->CurrentXYValuePlane1(1, 2);
    m_pSequence->CurrentXYValuePlane2(1, 2);
    m_pSequence->OutOfLock(1);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("Invalid Event ePlane1XYValueChanged in state invalid state received",
                            "Invalid Event ePlane2XYValueChanged in state invalid state received",
                            "Invalid Event eOutOfLockChanged in state invalid state received"));
    EXPECT_THAT(m_Log.GetAssertions(), Contains("invalid state: 28"));
}

TEST_F(TwoPlaneTest, OperationsAreLoggedUnderTheProceduresName) {
    const CLogCapture Flow(true);
    Key(K::eTogglePlane);
    m_pSequence->AbortBalancing(11);
    EXPECT_THAT(Flow.GetTexts("PbFlow"),
                IsSupersetOf({"CTwoPlaneBalancing::KeyPressed(keyAction=eTogglePlane)",
                              "CTwoPlaneBalancing::AbortBalancing()"}));
}

// Results.

TEST_F(TwoPlaneTest, CalibrationGoesIntoTheTwoPlaneRecord) {
    Reach(S::ePreBalanceSpindleStop);
    const PreBalDB::CTwoPlaneBalancingTableEntry& rEntry = *m_Entry.GetTwoPlane();
    EXPECT_TRUE(rEntry.GetInvA() == m_pMath->m_InvA);
    EXPECT_TRUE(rEntry.GetUAPlane1() == m_pMethod1->m_UA) << "as the means produce it";
    EXPECT_TRUE(rEntry.GetUAPlane2() == m_pMethod2->m_UA);
    EXPECT_TRUE(m_pMethod1->m_SetUAs.back().m_UA == m_pMath->m_UA1);
    EXPECT_TRUE(m_pMethod2->m_SetUAs.back().m_UA == m_pMath->m_UA2);
    EXPECT_TRUE(m_pMethod2->m_SetUAs.back().m_bAllowEqualAngles);
}

TEST_F(TwoPlaneTest, CapacityShortInOnePlaneWarnsWithTheLargerPercentageAndTheRunGoesOn) {
    const auto EnterIt = Approach(S::ePreBalanceSpindleStop);
    m_pMethod1->m_Percent = 4.0;
    m_pMethod2->m_bReached = false;
    m_pMethod2->m_Percent = 12.5;
    EnterIt();
    ASSERT_EQ(GetState(), S::ePreBalanceSpindleStop);
    EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane1() == m_pMethod1->m_UA);
    EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane2() == m_pMath->m_UA2) << "as calculated";
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("Compensation SetUA failed 12.50% failure (not enough capacity)"));
    StopSpindle();
    EXPECT_EQ(GetState(), S::ePreBalanceSetWeights);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 6U);
    EXPECT_EQ(m_pSequence->GetPercent(), 12.5);
}

TEST_F(TwoPlaneTest, CapacityShortInASetCorrectionWarnsWithTheLargerPercentageAndTheRunGoesOn) {
    Reach(S::eReBalanceSpindleStop);
    m_pMethod1->m_bReached = false;
    m_pMethod1->m_Percent = 20.25;
    m_pMethod2->m_Percent = 4.0;
    StopSpindle();
    EXPECT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 6U);
    EXPECT_EQ(m_pSequence->GetPercent(), 20.25);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                Contains("Compensation SetUA failed 20.25% failure (not enough capacity)"));
    EXPECT_EQ(m_Wnd.GetMenu(), 8);
}

TEST_F(TwoPlaneTest, CapacityShortInTheFirstMeasurementRefusesARebalancing) {
    Calibrate();
    Make();
    m_pMethod1->m_bReached = false;
    m_pMethod1->m_Percent = 7.5;
    EXPECT_NE(m_pSequence->StartReBalancing(SPEED, 0, 0), 0);
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_THAT(m_Wnd.m_WarningModes, IsSupersetOf({6U, 7U}));
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                IsSupersetOf({"Compensation SetUA failed 7.50% failure (not enough capacity)",
                              "Compensation SetUA failed (not enough capacity)"}));
}

TEST_F(TwoPlaneTest, CapacityShortInOnePlaneRefusesARebalancing) {
    const auto EnterIt = Approach(S::eReBalanceCommitWeights);
    m_pMethod2->m_bReached = false;
    m_pMethod2->m_Percent = 12.5;
    EnterIt();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_THAT(m_Wnd.m_WarningModes, IsSupersetOf({6U, 7U}));
    EXPECT_THAT(
        m_Log.GetTexts("Warning"),
        IsSupersetOf({"Commit Weights: Compensation SetUA failed 12.50% failure (not enough capacity)",
                      "Compensation SetUA failed not enough capacity"}));
}

TEST_F(TwoPlaneTest, ImpossibleVerdictOfEitherLegEndsTheRun) {
    Reach(S::ePlane1TestUnbalanceMeasurement);
    m_pMath->m_Case1Status = 2;
    CompleteMeasurement();
    Next();
    EXPECT_EQ(GetState(), S::eFailureWithNoReturn);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 1U);
    EXPECT_TRUE(m_pSequence->IsFailureWithNoReturn());
    EXPECT_THAT(m_Log.GetAssertions(), Contains("impossible"));
}

TEST_F(TwoPlaneTest, Plane1WithoutInfluenceFailsWithWarningFive) {
    Reach(S::ePlane1TestUnbalanceMeasurement);
    m_pMath->m_Case1Status = 1;
    CompleteMeasurement();
    Next();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 5U);
}

// Weights that stand as in the first measurement can have no effect, also if they have changed places, or
// were opposed and are opposed again. The mathematics doesn't look; the operator is told behind the leg that
// it happened in.
TEST_F(TwoPlaneTest, TestWeightsOfPlane1ThatWereNotMovedFailBehindTheirLeg) {
    for (const auto& rPositions : {MakeVector(10, 190), MakeVector(190, 10), MakeVector(50, 230)}) {
        TestPlane1(rPositions);
        EXPECT_EQ(GetState(), S::eFailureWithReset);
        EXPECT_EQ(m_Wnd.m_WarningModes.back(), 5U);
    }
}

TEST_F(TwoPlaneTest, TestWeightsOfPlane2ThatWereNotMovedFailBehindTheirLeg) {
    for (const auto& rPositions : {MakeVector(30, 200), MakeVector(200, 30)}) {
        TestPlane2(rPositions);
        EXPECT_EQ(GetState(), S::eFailureWithReset);
        EXPECT_EQ(m_Wnd.m_WarningModes.back(), 5U);
    }
}

TEST_F(TwoPlaneTest, TestWeightMovedByADegreeCounts) {
    TestPlane1(MakeVector(10, 191));
    EXPECT_EQ(GetState(), S::ePlane2TestUnbalanceSpindleStop);
    TestPlane2(MakeVector(31, 200));
    EXPECT_EQ(GetState(), S::ePreBalanceSpindleStop);
}

TEST_F(TwoPlaneTest, ModuleStateMattersButWhereTheRunWaitsForTheSpindleToStop) {
    for (const auto State :
         {S::eNeutralPosRPMStart, S::eNeutralPosMeasurement, S::ePlane1TestUnbalanceSetWeights,
          S::ePlane2TestUnbalanceRPMStart, S::ePreBalanceMeasurement}) {
        Reach(State);
        EXPECT_TRUE(m_pSequence->DependsOnModuleState()) << State;
    }
    for (const auto State : {S::eNeutralPosSpindleStop, S::ePlane1TestUnbalanceSpindleStop,
                             S::ePlane2TestUnbalanceSpindleStop, S::ePreBalanceSpindleStop}) {
        Reach(State);
        EXPECT_FALSE(m_pSequence->DependsOnModuleState()) << State;
    }
    m_pSequence->AbortBalancing(1);
    EXPECT_FALSE(m_pSequence->DependsOnModuleState());
}

TEST_F(TwoPlaneTest, RebalancingCalculatesFromTheStoredCalibration) {
    // With the speed on from the start the stored corrections are not gone through before.
    Calibrate();
    Make();
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    ASSERT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 5U));
    CompleteMeasurement();
    Next();
    StopSpindle();
    ASSERT_EQ(GetState(), S::eReBalanceSetWeights);
    EXPECT_TRUE(m_pMath->m_GivenInvA == m_Entry.GetTwoPlane()->GetInvA());
    EXPECT_TRUE(m_pMath->m_GivenUA1 == MakeVector(1.5, -0.25));
    EXPECT_TRUE(m_pMath->m_GivenUA2 == MakeVector(-1.5, 0.5));
    EXPECT_TRUE(m_pMethod1->m_SetUAs.back().m_UA == m_pMath->m_RebalanceUA1);
    EXPECT_TRUE(m_pMethod2->m_SetUAs.back().m_UA == m_pMath->m_RebalanceUA2);
    Next();
    EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane1() == m_pMethod1->m_UA);
    EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane2() == m_pMethod2->m_UA);
}

// What the operator moved since the correction was shown counts, in either plane.
TEST_F(TwoPlaneTest, PositionsAsTheyStandBecomeTheStoredCorrection) {
    struct CWayOn {
        int m_State;
        bool m_bByKey;
        int m_Next;
    };
    for (const CWayOn& rWay : {CWayOn{S::eReBalanceCommitWeights, true, S::eReBalanceRPMStart1},
                               CWayOn{S::eReBalanceCommitWeights, false, S::eReBalanceMeasurement1},
                               CWayOn{S::eReBalanceSetWeights, true, S::eReBalanceRPMStart2},
                               CWayOn{S::eReBalanceSetWeights, false, S::eReBalanceMeasurement2},
                               CWayOn{S::eReBalanceCheckWeights, true, S::eReBalanceSetWeights}}) {
        Reach(rWay.m_State);
        m_pMethod1->m_UA = MakeVector(0.1, 0.2);
        m_pMethod2->m_UA = MakeVector(0.3, 0.4);
        if (rWay.m_bByKey) {
            Next();
        } else {
            m_pSequence->InvalidRPM(0);
        }
        EXPECT_EQ(GetState(), rWay.m_Next);
        EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane1() == MakeVector(0.1, 0.2)) << rWay.m_Next;
        EXPECT_TRUE(m_Entry.GetTwoPlane()->GetUAPlane2() == MakeVector(0.3, 0.4)) << rWay.m_Next;
        EXPECT_TRUE(m_Entry.GetTwoPlane()->GetInvA() == CFakeTwoPlaneMath::MakeDiagonal(7.0));
    }
}

// Weights may come to lie on one another when a correction is calculated, not when a stored one is shown.
TEST_F(TwoPlaneTest, EqualAnglesAreAllowedForACalculatedCorrectionOnly) {
    struct CCorrection {
        int m_State;
        bool m_bCalculated;
        bool m_bPercent;
    };
    for (const CCorrection& rCorrection : {CCorrection{S::ePreBalanceSpindleStop, true, true},
                                           CCorrection{S::eReBalanceCommitWeights, false, true},
                                           CCorrection{S::eReBalanceMeasurement1, false, true},
                                           CCorrection{S::eReBalanceSpindleStop, true, false},
                                           CCorrection{S::eReBalanceSetWeights, true, true},
                                           CCorrection{S::eReBalanceCheckWeights, false, false}}) {
        const auto EnterIt = Approach(rCorrection.m_State);
        m_pMethod1->m_SetUAs.clear();
        m_pMethod2->m_SetUAs.clear();
        EnterIt();
        for (const CFakeMethod* pMethod : {m_pMethod1, m_pMethod2}) {
            ASSERT_EQ(pMethod->m_SetUAs.size(), 1U) << S::STATESToString(rCorrection.m_State);
            EXPECT_EQ(pMethod->m_SetUAs[0].m_bAllowEqualAngles, rCorrection.m_bCalculated)
                << S::STATESToString(rCorrection.m_State);
            EXPECT_EQ(pMethod->m_SetUAs[0].m_bPercent, rCorrection.m_bPercent)
                << S::STATESToString(rCorrection.m_State);
        }
    }
}

TEST_F(TwoPlaneTest, StoredCorrectionsGoToTheirOwnPlane) {
    for (const int State :
         {S::eReBalanceCommitWeights, S::eReBalanceMeasurement1, S::eReBalanceCheckWeights}) {
        const auto EnterIt = Approach(State);
        m_Entry.CreateTwoPlane().SetUAPlane1(MakeVector(0.5, 0.6));
        m_Entry.CreateTwoPlane().SetUAPlane2(MakeVector(0.7, 0.8));
        EnterIt();
        ASSERT_EQ(GetState(), State);
        EXPECT_TRUE(m_pMethod1->m_SetUAs.back().m_UA == MakeVector(0.5, 0.6)) << S::STATESToString(State);
        EXPECT_TRUE(m_pMethod2->m_SetUAs.back().m_UA == MakeVector(0.7, 0.8)) << S::STATESToString(State);
    }
}

TEST_F(TwoPlaneTest, RebalancingWithoutACalibrationIsRefused) {
    EXPECT_EQ(m_pSequence->StartReBalancing(0, 0, 1), 0);
    EXPECT_EQ(GetState(), S::eIdle);
}

TEST_F(TwoPlaneTest, RebalancingMayFollowAtOnceAndBeRepeated) {
    Reach(S::ePreBalanceMeasurement);
    Key(K::eRebalance);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 5U));
    Reach(S::eReBalanceMeasurement2);
    Key(K::eRebalance);
    EXPECT_EQ(GetState(), S::eReBalanceMeasurement1);
}

TEST_F(TwoPlaneTest, CommitIsAcceptedInTheFinalMeasurementsOnly) {
    for (int State = S::eIdle; State <= S::eReBalanceMeasurement2; ++State) {
        Reach(State);
        m_Entry.SetIsCalibrated(0);
        const bool bFinal = State == S::ePreBalanceMeasurement || State == S::eReBalanceMeasurement2;
        EXPECT_EQ(m_pSequence->CommitChanges(), bFinal) << S::STATESToString(State);
        EXPECT_EQ(m_Entry.IsCalibrated() != 0, bFinal) << S::STATESToString(State);
    }
}

TEST_F(TwoPlaneTest, CommitStoresThePositionsOfBothPlanes) {
    Reach(S::ePreBalanceMeasurement);
    EXPECT_TRUE(m_pSequence->CommitChanges());
    m_Wnd.m_Store.Load();
    ASSERT_TRUE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    const WeightPos2Plane Record = m_Wnd.m_Store.Get("000005_WHEEL1");
    EXPECT_FALSE(Record.m_SinglePlane);
    EXPECT_TRUE(Record.m_PositionsValid);
    EXPECT_TRUE(Record.m_PositionsPlane1 == MakeVector(11, 22));
    EXPECT_TRUE(Record.m_PositionsPlane2 == MakeVector(33, 44));
}

TEST_F(TwoPlaneTest, StoredPositionsAreAdoptedInBothPlanes) {
    Reach(S::ePreBalanceMeasurement);
    m_pSequence->CommitChanges();
    Reach(S::eNeutralPosSpindleStop);
    EXPECT_EQ(m_Wnd.GetMenu(), 29);
    m_pMethod1->m_Positions = MakeVector(0, 180);
    m_pMethod2->m_Positions = MakeVector(0, 180);
    TakeCalls();
    Key(K::ePositionAdoption);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 16U));
    EXPECT_THAT(TakeCalls(), Contains("Math.SetRawUnbalanceVectorsAngles 11,22 33,44 1 0"));
    EXPECT_TRUE(m_pMethod1->m_Positions == MakeVector(11, 22));
    EXPECT_TRUE(m_pMethod2->m_Positions == MakeVector(33, 44));
}

// The first measurement is made at the adopted positions, so test weights there haven't been moved.
TEST_F(TwoPlaneTest, TestWeightsThatStandAsAdoptedFailTheirLeg) {
    Reach(S::ePreBalanceMeasurement);
    m_pSequence->CommitChanges();
    Reach(S::eNeutralPosSpindleStop);
    Key(K::ePositionAdoption);
    m_pSequence->CurrentRPM(SPEED);
    m_pSequence->OutOfLock(0);
    m_pSequence->InvalidRPM(0);
    Next();
    CompleteMeasurement();
    Next();
    StopSpindle();
    ASSERT_EQ(GetState(), S::ePlane1TestUnbalanceSetWeights);
    FinishTestLeg();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 5U);
}

TEST_F(TwoPlaneTest, StoredPositionsOfOnePlaneAreNotOffered) {
    WeightPos2Plane Record;
    Record.m_SinglePlane = true;
    Record.m_PositionsValid = true;
    CWeightPositionStore::Set("000005_WHEEL1", Record);
    Reach(S::eNeutralPosRemoveWeights);
    EXPECT_EQ(m_Wnd.GetMenu(), 30);
}

TEST_F(TwoPlaneTest, MethodsArePaintedSideBySide) {
    CBitmap Bitmap(CSize(700, 600));
    CDC Dc(Bitmap);
    m_pSequence->Paint(&Dc, CRect(10, 0, 651, 600), CPreBalancing::ePaintMethod);
    ASSERT_EQ(m_pMethod1->m_Paints.size(), 1U);
    ASSERT_EQ(m_pMethod2->m_Paints.size(), 1U);
    const CRect& rLeft = m_pMethod1->m_Paints[0].first;
    const CRect& rRight = m_pMethod2->m_Paints[0].first;
    EXPECT_EQ(rLeft.left, 10);
    EXPECT_EQ(rLeft.right, 330);  // half of 641, rounded down
    EXPECT_EQ(rRight.left, 330);
    EXPECT_EQ(rRight.right, 651);
    EXPECT_EQ(rLeft.top, rRight.top);
    EXPECT_EQ(rLeft.bottom, rRight.bottom);
}

}  // namespace
