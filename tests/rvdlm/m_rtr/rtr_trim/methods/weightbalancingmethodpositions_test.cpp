// Where the weight method puts its weights, by display mode and by vector.
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/methods/weightmethodfixture.h"

namespace {

using math::MakeVector;
using Matrix = math::matrix<double>;

constexpr const char* CONSISTENT_ORDER = "PreBalancingConsistentWeightOrder";

class WeightMethodPositions : public WeightMethodTest {
protected:
    /// 75 degrees to each side of 325: the raw positions 40 and 250, which on a counter-clockwise scale
    /// produce the mirrored vector; 320 and 110 produce it.
    static Matrix VectorOfTheRawRule() {
        const double a = 325.0 * std::numbers::pi / 180.0;
        const double l = 2.0 * std::cos(75.0 * std::numbers::pi / 180.0);
        return MakeVector(l * std::cos(a), l * std::sin(a));
    }
};

// Positions by mode

TEST_F(WeightMethodPositions, StartsAt0And90) {
    EXPECT_EQ(At(*Make()), Positions(0, 90));
}

TEST_F(WeightMethodPositions, NeutralThenTestPositionIs30And180) {
    const auto pMethod = Make();
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    EXPECT_EQ(At(*pMethod), Positions(0, 180));
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(30, 180));
}

TEST_F(WeightMethodPositions, TestPositionTakesTheSpeedIncrement) {
    const auto pMethod = Make();
    m_MainWnd.m_SpeedIncrement = 10;
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(10, 180));
}

TEST_F(WeightMethodPositions, TestPositionMovesTheLowWeightUpFromHalfATurnOnAndElseDown) {
    const auto pMethod = Make();
    Put(*pMethod, 10, 200);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(40, 200));
    Put(*pMethod, 10, 100);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(340, 100));
    Put(*pMethod, 200, 10);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(200, 40));
}

TEST_F(WeightMethodPositions, TestPositionOfEqualAnglesMovesWeight2) {
    const auto pMethod = Make();
    Put(*pMethod, 50, 50);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(50, 20));
}

TEST_F(WeightMethodPositions, OtherModesAndPlainModesMoveNothing) {
    const auto pMethod = Make();
    Put(*pMethod, 12, 250);
    for (const auto Mode :
         {Method::eEmpty, Method::eInactive, Method::eUACompensation, Method::eMeasurementValues}) {
        pMethod->SetDisplayMode(Mode);
        EXPECT_EQ(pMethod->m_DisplayMode, Mode);
        EXPECT_EQ(At(*pMethod), Positions(12, 250));
    }
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    pMethod->SetPlainDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(pMethod->m_DisplayMode, Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(12, 250));
}

TEST_F(WeightMethodPositions, EveryModeChangeStartsANewAverage) {
    const auto pMethod = Make();
    const auto Fill = [&] {
        for (int i = 0; i < 4; ++i) {
            pMethod->AddMeasurementValue(1, 1);
        }
        return pMethod->m_MovingAverage.GetValuesComplete();
    };
    ASSERT_EQ(Fill(), 1);
    pMethod->SetDisplayMode(Method::eMeasurementValues);
    EXPECT_EQ(pMethod->m_MovingAverage.GetValuesComplete(), 0);
    ASSERT_EQ(Fill(), 1);
    pMethod->SetPlainDisplayMode(Method::eMeasurementValues);
    EXPECT_EQ(pMethod->m_MovingAverage.GetValuesComplete(), 0);
}

TEST_F(WeightMethodPositions, ModeChangesAreLogged) {
    const auto pMethod = Make();
    const CLogCapture Capture(true);
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    pMethod->SetPlainDisplayMode(Method::eInactive);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::SetDisplayMode( Mode=eNeutralPosition) called",
                                     "CWeightBalancingMethod::SetPlainDisplayMode( Mode=eInactive) called"));
}

// Positions in and out

TEST_F(WeightMethodPositions, TestVectorGoesOutAndComesInInDegrees) {
    const auto pMethod = Make();
    pMethod->SetTestUnbalanceVectorInDeg(MakeVector(12.9, 345.2));
    EXPECT_EQ(At(*pMethod), Positions(12, 345));
    EXPECT_EQ(m_MainWnd.m_nRepaintAll, 1);
    const CLogCapture Capture(true);
    EXPECT_EQ(*pMethod->GetTestUnbalanceVectorInDeg(), MakeVector(12, 345));
    EXPECT_THAT(
        Capture.GetTexts("PbFlow"),
        testing::ElementsAre("CWeightBalancingMethod::GetTestUnbalanceVectorInDeg() returns (12, 345)"));
}

TEST_F(WeightMethodPositions, ScalingDirectionIsTheConfigured) {
    const CLogCapture Capture(true);
    EXPECT_EQ(Make(CW)->GetScalingDirection(), CW);
    EXPECT_EQ(Make(CCW)->GetScalingDirection(), CCW);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::GetScalingDirection() returns: CW",
                                     "CWeightBalancingMethod::GetScalingDirection() returns: CCW"));
}

TEST_F(WeightMethodPositions, NotificationGetsThePositionsOfItsOwnPlaneOnly) {
    const auto pMethod = Make(CW, 0);
    Put(*pMethod, 30, 180);
    CPreBalNotification First;
    pMethod->FillNotification(First);
    EXPECT_THAT(First.m_AnglesPlane1, testing::ElementsAre(30, 180, -1));
    EXPECT_THAT(First.m_WeightsPlane1, testing::ElementsAre(-1, -1, -1));
    EXPECT_THAT(First.m_AnglesPlane2, testing::ElementsAre(0, 0, 0));
    EXPECT_THAT(First.m_WeightsPlane2, testing::ElementsAre(0, 0, 0));

    for (const unsigned Plane : {1U, 2U}) {
        const auto pSecond = Make(CW, Plane);
        Put(*pSecond, 40, 200);
        CPreBalNotification Second;
        pSecond->FillNotification(Second);
        EXPECT_THAT(Second.m_AnglesPlane1, testing::ElementsAre(0, 0, 0));
        EXPECT_THAT(Second.m_AnglesPlane2, testing::ElementsAre(40, 200, -1));
        EXPECT_THAT(Second.m_WeightsPlane2, testing::ElementsAre(-1, -1, -1));
    }
}

// UA

TEST_F(WeightMethodPositions, SetUAMovesTheWeightsAndGetUAReadsThemBack) {
    const auto pMethod = Make();
    double Percent = -1.0;
    EXPECT_TRUE(
        pMethod->SetUA(MakeVector(0, std::sqrt(3.0)), &Percent, true));  // 30 degrees to each side of 90
    EXPECT_EQ(Percent, 0.0);
    EXPECT_EQ(At(*pMethod), Positions(60, 120));
    EXPECT_LT((pMethod->GetUA() - MakeVector(0, std::sqrt(3.0))).Norm(), 1e-12);
}

TEST_F(WeightMethodPositions, SetUABeyondTheCapacityLeavesTheNearestPosition) {
    const auto pMethod = Make();
    double Percent = -1.0;
    EXPECT_FALSE(pMethod->SetUA(MakeVector(0, 3.9), &Percent, true));
    EXPECT_DOUBLE_EQ(Percent, 100.0);
    EXPECT_EQ(At(*pMethod), Positions(90, 90));
    EXPECT_FALSE(pMethod->SetUA(MakeVector(3.9, 0), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(0, 0));
}

TEST_F(WeightMethodPositions, EqualAnglesAreSpreadWhenAskedForAndTheSettingIsOn) {
    const double a = 5.0 * std::numbers::pi / 180.0;
    const Matrix Beyond = MakeVector(3.0 * std::cos(a), 3.0 * std::sin(a));
    const auto pIgnoring = Make(CW, 0, 1);
    EXPECT_FALSE(pIgnoring->SetUA(Beyond, nullptr, false));
    EXPECT_EQ(At(*pIgnoring), Positions(15, 355));
    pIgnoring->SetUA(Beyond, nullptr, true);
    EXPECT_EQ(At(*pIgnoring), Positions(5, 5));

    const auto pStrict = Make(CW, 0, 0);
    pStrict->SetUA(Beyond, nullptr, false);
    EXPECT_EQ(At(*pStrict), Positions(5, 5));
}

TEST_F(WeightMethodPositions, SpreadWrapsAtTheTopToo) {
    const double a = 355.0 * std::numbers::pi / 180.0;
    const auto pMethod = Make(CW, 0, 1);
    pMethod->SetUA(MakeVector(3.0 * std::cos(a), 3.0 * std::sin(a)), nullptr, false);
    EXPECT_EQ(At(*pMethod), Positions(5, 345));
}

TEST_F(WeightMethodPositions, MirroredPositionsAreWarnedOfByDefault) {
    const auto pMethod = Make(CCW);
    const CLogCapture Capture;
    EXPECT_TRUE(pMethod->SetUA(VectorOfTheRawRule(), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(40, 250));
    EXPECT_EQ(Capture.GetTexts("Warning").size(), 1U);
}

TEST_F(WeightMethodPositions, FlagTakesThePositionsThatProduceTheVector) {
    m_Installation.EnableFeature(CONSISTENT_ORDER);
    const auto pMethod = Make(CCW);
    const CLogCapture Capture;
    EXPECT_TRUE(pMethod->SetUA(VectorOfTheRawRule(), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(320, 110));
    EXPECT_LT((pMethod->GetUA() - VectorOfTheRawRule()).Norm(), 1e-9);
    EXPECT_TRUE(Capture.GetTexts("Warning").empty());
}

TEST_F(WeightMethodPositions, FlagIsReadAtConstruction) {
    const auto pBefore = Make(CCW);
    m_Installation.EnableFeature(CONSISTENT_ORDER);
    pBefore->SetUA(VectorOfTheRawRule(), nullptr, true);
    EXPECT_EQ(At(*pBefore), Positions(40, 250));
}

TEST_F(WeightMethodPositions, LackOfCapacityIsNoWrongPosition) {
    const CLogCapture Capture;
    Make(CCW)->SetUA(MakeVector(3, 1), nullptr, true);
    m_Installation.EnableFeature(CONSISTENT_ORDER);
    Make(CCW)->SetUA(MakeVector(3, 1), nullptr, true);
    EXPECT_TRUE(Capture.GetTexts("Warning").empty());
}

TEST_F(WeightMethodPositions, ThreeHundredSixtyOfTheSecondPlaneStaysWithoutTheFlag) {
    // Raw positions 0 and 240 in the second plane of a counter-clockwise scale.
    const double a = 300.0 * std::numbers::pi / 180.0;
    const Matrix UA = MakeVector(std::cos(a), std::sin(a));
    const auto pMethod = Make(CCW, 1);
    const CLogCapture Capture;
    pMethod->SetUA(UA, nullptr, true);
    EXPECT_EQ(At(*pMethod), Positions(360, 120));
    EXPECT_TRUE(Capture.GetAssertions().empty());
    pMethod->GetUA();
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"invalid angles"});
}

TEST_F(WeightMethodPositions, ThreeHundredSixtyBecomesZeroWithTheFlag) {
    m_Installation.EnableFeature(CONSISTENT_ORDER);
    const double a = 300.0 * std::numbers::pi / 180.0;
    const Matrix UA = MakeVector(std::cos(a), std::sin(a));
    const auto pMethod = Make(CCW, 1);
    const CLogCapture Capture;
    pMethod->SetUA(UA, nullptr, true);
    EXPECT_EQ(At(*pMethod), Positions(0, 240));
    EXPECT_LT((pMethod->GetUA() - UA).Norm(), 1e-9);
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

}  // namespace
