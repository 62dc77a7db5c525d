#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingmethod.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

namespace {

using PreBalDB::CTypeBase;
using Matrix = math::matrix<double>;
using Key = CKeyActions;
using Method = CWeightBalancingMethod;
using Positions = std::pair<int, int>;

constexpr auto CW = CTypeBase::eClockwise;
constexpr auto CCW = CTypeBase::eCounterClockwise;
constexpr const char* eConsistentOrder = "PreBalancingConsistentWeightOrder";

Matrix Vector(double x, double y) {
    Matrix Result(2, 1);
    Result(0, 0) = x;
    Result(1, 0) = y;
    return Result;
}

class WeightBalancingMethod : public testing::Test {
protected:
    std::unique_ptr<Method> Make(CTypeBase::Direction Scaling = CW, unsigned Plane = 0,
                                 int IgnoreRebalWeights = 0, bool bUseOldMenu = false) {
        PreBalDB::CWeightCompensationTableEntry Entry;
        Entry.SetScalingDirection(Scaling);
        return std::make_unique<Method>(Entry, &m_MainWnd, Plane, 3, IgnoreRebalWeights, &m_Selection,
                                        bUseOldMenu);
    }
    static Positions At(Method& rMethod) {
        Positions Result(-1, -1);
        rMethod.GetWeightPositions(Result.first, Result.second);
        return Result;
    }
    static void Put(Method& rMethod, int Angle1, int Angle2) {
        rMethod.SetTestUnbalanceVectorInDeg(Vector(Angle1, Angle2));
    }
    /// Presses and releases a key of weight 1 or 2 for its single step.
    static void Tap(Method& rMethod, Key::KeyAction Down, int Step) {
        EXPECT_TRUE(rMethod.KeyPressed(Down, Step));
        EXPECT_TRUE(rMethod.KeyPressed(static_cast<Key::KeyAction>(Down + 1), Step));
    }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CFakeMainWnd m_MainWnd;
    int m_Selection = 0;
};

// Positions by mode

TEST_F(WeightBalancingMethod, StartsAt0And90) {
    EXPECT_EQ(At(*Make()), Positions(0, 90));
}

TEST_F(WeightBalancingMethod, NeutralThenTestPositionIs30And180) {
    const auto pMethod = Make();
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    EXPECT_EQ(At(*pMethod), Positions(0, 180));
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(30, 180));
}

TEST_F(WeightBalancingMethod, TestPositionTakesTheSpeedIncrement) {
    const auto pMethod = Make();
    m_MainWnd.m_SpeedIncrement = 10;
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(10, 180));
}

TEST_F(WeightBalancingMethod, TestPositionMovesTheLowWeightTowardsTheOther) {
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

TEST_F(WeightBalancingMethod, TestPositionOfEqualAnglesMovesWeight2) {
    const auto pMethod = Make();
    Put(*pMethod, 50, 50);
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(At(*pMethod), Positions(50, 20));
}

TEST_F(WeightBalancingMethod, OtherModesAndPlainModesMoveNothing) {
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

TEST_F(WeightBalancingMethod, EveryModeChangeStartsANewAverage) {
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

TEST_F(WeightBalancingMethod, ModeChangesAreLogged) {
    const auto pMethod = Make();
    const CLogCapture Capture(true);
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    pMethod->SetPlainDisplayMode(Method::eInactive);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::SetDisplayMode( Mode=eNeutralPosition) called",
                                     "CWeightBalancingMethod::SetPlainDisplayMode( Mode=eInactive) called"));
}

// Positions in and out

TEST_F(WeightBalancingMethod, TestVectorGoesOutAndComesInInDegrees) {
    const auto pMethod = Make();
    pMethod->SetTestUnbalanceVectorInDeg(Vector(12.9, 345.2));
    EXPECT_EQ(At(*pMethod), Positions(12, 345));
    EXPECT_EQ(m_MainWnd.m_nRepaintAll, 1);
    const CLogCapture Capture(true);
    EXPECT_EQ(*pMethod->GetTestUnbalanceVectorInDeg(), Vector(12, 345));
    EXPECT_THAT(
        Capture.GetTexts("PbFlow"),
        testing::ElementsAre("CWeightBalancingMethod::GetTestUnbalanceVectorInDeg() returns (12, 345)"));
}

TEST_F(WeightBalancingMethod, ScalingDirectionIsTheConfigured) {
    const CLogCapture Capture(true);
    EXPECT_EQ(Make(CW)->GetScalingDirection(), CW);
    EXPECT_EQ(Make(CCW)->GetScalingDirection(), CCW);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::GetScalingDirection() returns: CW",
                                     "CWeightBalancingMethod::GetScalingDirection() returns: CCW"));
}

TEST_F(WeightBalancingMethod, NotificationGetsThePositionsOfItsOwnPlaneOnly) {
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

TEST_F(WeightBalancingMethod, SetUAMovesTheWeightsAndGetUAReadsThemBack) {
    const auto pMethod = Make();
    double Percent = -1.0;
    EXPECT_TRUE(pMethod->SetUA(Vector(0, std::sqrt(3.0)), &Percent, true));  // 30 degrees to each side of 90
    EXPECT_EQ(Percent, 0.0);
    EXPECT_EQ(At(*pMethod), Positions(60, 120));
    EXPECT_LT((pMethod->GetUA() - Vector(0, std::sqrt(3.0))).Norm(), 1e-12);
}

TEST_F(WeightBalancingMethod, SetUABeyondTheCapacityLeavesTheNearestPosition) {
    const auto pMethod = Make();
    double Percent = -1.0;
    EXPECT_FALSE(pMethod->SetUA(Vector(0, 3.9), &Percent, true));
    EXPECT_DOUBLE_EQ(Percent, 100.0);
    EXPECT_EQ(At(*pMethod), Positions(90, 90));
    EXPECT_FALSE(pMethod->SetUA(Vector(3.9, 0), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(0, 0));
}

TEST_F(WeightBalancingMethod, EqualAnglesAreSpreadWhenAskedForAndTheSettingIsOn) {
    const double a = 5.0 * std::numbers::pi / 180.0;
    const Matrix Beyond = Vector(3.0 * std::cos(a), 3.0 * std::sin(a));
    const auto pIgnoring = Make(CW, 0, 1);
    EXPECT_FALSE(pIgnoring->SetUA(Beyond, nullptr, false));
    EXPECT_EQ(At(*pIgnoring), Positions(15, 355));
    pIgnoring->SetUA(Beyond, nullptr, true);
    EXPECT_EQ(At(*pIgnoring), Positions(5, 5));

    const auto pStrict = Make(CW, 0, 0);
    pStrict->SetUA(Beyond, nullptr, false);
    EXPECT_EQ(At(*pStrict), Positions(5, 5));
}

TEST_F(WeightBalancingMethod, SpreadWrapsAtTheTopToo) {
    const double a = 355.0 * std::numbers::pi / 180.0;
    const auto pMethod = Make(CW, 0, 1);
    pMethod->SetUA(Vector(3.0 * std::cos(a), 3.0 * std::sin(a)), nullptr, false);
    EXPECT_EQ(At(*pMethod), Positions(5, 345));
}

/// 75 degrees to each side of 325: the raw positions 40 and 250, which on a counter-clockwise scale produce
/// the mirrored vector; 320 and 110 produce it.
Matrix VectorOfTheRawRule() {
    const double a = 325.0 * std::numbers::pi / 180.0;
    const double l = 2.0 * std::cos(75.0 * std::numbers::pi / 180.0);
    return Vector(l * std::cos(a), l * std::sin(a));
}

TEST_F(WeightBalancingMethod, MirroredPositionsAreWarnedOfByDefault) {
    const auto pMethod = Make(CCW);
    const CLogCapture Capture;
    EXPECT_TRUE(pMethod->SetUA(VectorOfTheRawRule(), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(40, 250));
    EXPECT_EQ(Capture.GetTexts("Warning").size(), 1U);
}

TEST_F(WeightBalancingMethod, FlagTakesThePositionsThatProduceTheVector) {
    m_Installation.EnableFeature(eConsistentOrder);
    const auto pMethod = Make(CCW);
    const CLogCapture Capture;
    EXPECT_TRUE(pMethod->SetUA(VectorOfTheRawRule(), nullptr, true));
    EXPECT_EQ(At(*pMethod), Positions(320, 110));
    EXPECT_LT((pMethod->GetUA() - VectorOfTheRawRule()).Norm(), 1e-9);
    EXPECT_TRUE(Capture.GetTexts("Warning").empty());
}

TEST_F(WeightBalancingMethod, FlagIsReadAtConstruction) {
    const auto pBefore = Make(CCW);
    m_Installation.EnableFeature(eConsistentOrder);
    pBefore->SetUA(VectorOfTheRawRule(), nullptr, true);
    EXPECT_EQ(At(*pBefore), Positions(40, 250));
}

TEST_F(WeightBalancingMethod, LackOfCapacityIsNoWrongPosition) {
    const CLogCapture Capture;
    Make(CCW)->SetUA(Vector(3, 1), nullptr, true);
    m_Installation.EnableFeature(eConsistentOrder);
    Make(CCW)->SetUA(Vector(3, 1), nullptr, true);
    EXPECT_TRUE(Capture.GetTexts("Warning").empty());
}

TEST_F(WeightBalancingMethod, ThreeHundredSixtyOfTheSecondPlaneStaysWithoutTheFlag) {
    // Raw positions 0 and 240 in the second plane of a counter-clockwise scale.
    const double a = 300.0 * std::numbers::pi / 180.0;
    const Matrix UA = Vector(std::cos(a), std::sin(a));
    const auto pMethod = Make(CCW, 1);
    const CLogCapture Capture;
    pMethod->SetUA(UA, nullptr, true);
    EXPECT_EQ(At(*pMethod), Positions(360, 120));
    EXPECT_TRUE(Capture.GetAssertions().empty());
    pMethod->GetUA();
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"invalid angles"});
}

TEST_F(WeightBalancingMethod, ThreeHundredSixtyBecomesZeroWithTheFlag) {
    m_Installation.EnableFeature(eConsistentOrder);
    const double a = 300.0 * std::numbers::pi / 180.0;
    const Matrix UA = Vector(std::cos(a), std::sin(a));
    const auto pMethod = Make(CCW, 1);
    const CLogCapture Capture;
    pMethod->SetUA(UA, nullptr, true);
    EXPECT_EQ(At(*pMethod), Positions(0, 240));
    EXPECT_LT((pMethod->GetUA() - UA).Norm(), 1e-9);
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

// Menus

TEST_F(WeightBalancingMethod, ChangeMenusFollowTheSelection) {
    const auto pMethod = Make();
    constexpr int eMenus[2][4] = {{24, 25, 26, 27}, {20, 21, 22, 23}};
    for (m_Selection = 0; m_Selection < 4; ++m_Selection) {
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(0), eMenus[0][m_Selection]);
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(1), eMenus[1][m_Selection]);
        EXPECT_EQ(pMethod->GetNeutralPositionMenu(1), eMenus[0][m_Selection]);
        EXPECT_EQ(pMethod->GetNeutralPositionMenu(2), eMenus[1][m_Selection]);
        EXPECT_EQ(pMethod->GetCommitChangeMenu(1), eMenus[0][m_Selection]);
        EXPECT_EQ(pMethod->GetCommitChangeMenu(2), eMenus[1][m_Selection]);
        EXPECT_EQ(pMethod->GetCheckWeightsMenu(1), eMenus[0][m_Selection]);
        EXPECT_EQ(pMethod->GetCheckWeightsMenu(2), eMenus[1][m_Selection]);
        EXPECT_EQ(pMethod->GetTestUnbalanceChangeMenu(), eMenus[0][m_Selection]);
        EXPECT_EQ(pMethod->GetTestUnbalanceMenu(), 32);
    }
}

TEST_F(WeightBalancingMethod, OldMenusDoNotFollowTheSelection) {
    const auto pMethod = Make(CW, 0, 0, true);
    for (m_Selection = 0; m_Selection < 4; ++m_Selection) {
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(0), 6);
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(1), 9);
    }
}

TEST_F(WeightBalancingMethod, MenuOfUnknownKindOrSelectionIsAsserted) {
    const auto pMethod = Make();
    const auto pOld = Make(CW, 0, 0, true);
    const CLogCapture Capture;
    EXPECT_EQ(pMethod->GetChangeWeightsMenu(2), 0);
    EXPECT_EQ(pOld->GetChangeWeightsMenu(-1), 0);
    m_Selection = 4;
    EXPECT_EQ(pMethod->GetChangeWeightsMenu(0), 0);
    EXPECT_EQ(Capture.GetAssertions(), (std::vector<std::string>{"impossible", "impossible", "impossible"}));
    EXPECT_EQ(Capture.GetRecords().front().m_Expression, "FALSE");
    EXPECT_EQ(pOld->GetChangeWeightsMenu(0), 6);
}

TEST_F(WeightBalancingMethod, StepSelectionTogglesTheStepAndReplacesTheMenu) {
    const auto pMethod = Make();
    m_Selection = 1;
    m_MainWnd.SetMenu(21);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eStepSelection, 1));
    EXPECT_EQ(m_Selection, 3);
    EXPECT_EQ(m_MainWnd.GetMenu(), 23);
    pMethod->KeyPressed(Key::eStepSelection, 1);
    EXPECT_EQ(m_Selection, 1);
    EXPECT_EQ(m_MainWnd.GetMenu(), 21);
}

TEST_F(WeightBalancingMethod, WeightSelectionTogglesTheWeightAndReplacesTheMenu) {
    const auto pMethod = Make();
    m_Selection = 2;
    m_MainWnd.SetMenu(26);
    pMethod->KeyPressed(Key::eWeightSelection, 1);
    EXPECT_EQ(m_Selection, 3);
    EXPECT_EQ(m_MainWnd.GetMenu(), 27);
}

TEST_F(WeightBalancingMethod, AnyOtherMenuIsReplacedByOneOfTheFirstPlane) {
    const auto pMethod = Make();
    for (const int Menu : {0, 6, 9, 19, 24, 27, 32}) {
        m_Selection = 0;
        m_MainWnd.SetMenu(Menu);
        pMethod->KeyPressed(Key::eWeightSelection, 1);
        EXPECT_EQ(m_MainWnd.GetMenu(), 25);
    }
}

TEST_F(WeightBalancingMethod, SelectionKeysLeaveWeightsThatAreTooCloseAlone) {
    const auto pMethod = Make();
    Put(*pMethod, 50, 55);
    pMethod->KeyPressed(Key::eWeightSelection, 1);
    EXPECT_EQ(At(*pMethod), Positions(50, 55));
}

// Keys

TEST_F(WeightBalancingMethod, KeysMoveTheirWeight) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 200);
    Tap(*pMethod, Key::eIncPosWeight1Down, 3);
    EXPECT_EQ(At(*pMethod), Positions(103, 200));
    Tap(*pMethod, Key::eDecPosWeight1Down, 5);
    EXPECT_EQ(At(*pMethod), Positions(98, 200));
    Tap(*pMethod, Key::eIncPosWeight2Down, 7);
    EXPECT_EQ(At(*pMethod), Positions(98, 207));
    Tap(*pMethod, Key::eDecPosWeight2Down, 9);
    EXPECT_EQ(At(*pMethod), Positions(98, 198));
}

TEST_F(WeightBalancingMethod, AnglesWrapBothWays) {
    const auto pMethod = Make();
    Put(*pMethod, 359, 180);
    Tap(*pMethod, Key::eIncPosWeight1Down, 5);
    EXPECT_EQ(At(*pMethod), Positions(4, 180));
    Put(*pMethod, 180, 2);
    Tap(*pMethod, Key::eDecPosWeight2Down, 5);
    EXPECT_EQ(At(*pMethod), Positions(180, 357));
}

TEST_F(WeightBalancingMethod, DownKeysOfTheActiveWeightTakeTheChosenStep) {
    const auto pMethod = Make();
    // Selection, key, positions after it from 100 and 200.
    const std::vector<std::tuple<int, Key::KeyAction, Positions>> Cases = {
        {0, Key::eIncPosActiveWeightDown, {101, 200}}, {1, Key::eIncPosActiveWeightDown, {100, 201}},
        {2, Key::eIncPosActiveWeightDown, {110, 200}}, {3, Key::eIncPosActiveWeightDown, {100, 210}},
        {0, Key::eDecPosActiveWeightDown, {99, 200}},  {1, Key::eDecPosActiveWeightDown, {100, 199}},
        {2, Key::eDecPosActiveWeightDown, {90, 200}},  {3, Key::eDecPosActiveWeightDown, {100, 190}}};
    for (const auto& [Selection, Action, Expected] : Cases) {
        m_Selection = Selection;
        Put(*pMethod, 100, 200);
        EXPECT_TRUE(pMethod->KeyPressed(Action, 77));  // the step of the call doesn't count
        EXPECT_EQ(At(*pMethod), Expected) << Selection << " " << Action;
        pMethod->KeyPressed(static_cast<Key::KeyAction>(Action + 1), 77);
    }
}

TEST_F(WeightBalancingMethod, PushedIntoTheOtherTheWeightsExchangeTheirPositions) {
    const auto pMethod = Make();
    const CLogCapture Capture;
    Put(*pMethod, 100, 120);
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    EXPECT_EQ(At(*pMethod), Positions(120, 100));
    Put(*pMethod, 100, 120);
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 10);
    EXPECT_EQ(At(*pMethod), Positions(120, 100));
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

TEST_F(WeightBalancingMethod, ExchangeWorksAcrossZero) {
    const auto pMethod = Make();
    const CLogCapture Capture;
    Put(*pMethod, 350, 10);
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    EXPECT_EQ(At(*pMethod), Positions(10, 350));
    Put(*pMethod, 10, 350);
    pMethod->KeyPressed(Key::eIncPosWeight2Down, 1);
    EXPECT_EQ(At(*pMethod), Positions(350, 10));
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

TEST_F(WeightBalancingMethod, CloserThanTheStepExplainsIsAssertedAndExchanged) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 110);
    const CLogCapture Capture;
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 5);
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"impossible"});
    EXPECT_EQ(Capture.GetRecords().back().m_Expression, "FALSE");
    EXPECT_EQ(At(*pMethod), Positions(110, 100));
}

TEST_F(WeightBalancingMethod, KeysThatMoveNothingStillExchangeWeightsThatAreTooClose) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 119);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eIncrement, 1));
    EXPECT_EQ(At(*pMethod), Positions(119, 100));
    EXPECT_TRUE(pMethod->KeyPressed(Key::eIncPosWeight1Up, 1));
    EXPECT_EQ(At(*pMethod), Positions(100, 119));
    Put(*pMethod, 100, 200);
    pMethod->KeyPressed(Key::eNeutralPosition, 1);
    EXPECT_EQ(At(*pMethod), Positions(100, 200));
}

TEST_F(WeightBalancingMethod, KeysAreLogged) {
    const auto pMethod = Make();
    const CLogCapture Capture(true);
    pMethod->KeyPressed(Key::eIncrement, 1);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::KeyPressed(keyAction=eIncrement) called"));
}

// Repeat while a key is held. With 450 ms at the start the intervals are 450, 400, 350, 300, 250, 200, 150,
// 150, ...

TEST_F(WeightBalancingMethod, HeldKeyRepeatsFasterAndFasterUntilItGoesUp) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 300);
    m_MainWnd.m_nRepaintAll = 0;
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 2);
    EXPECT_EQ(At(*pMethod), Positions(102, 300));
    int Angle = 102;
    int nRepaint = 0;
    for (const std::uint32_t Interval : {450U, 400U, 350U, 300U, 250U, 200U, 150U, 150U, 150U}) {
        m_Loop.Advance(Interval - 1);
        EXPECT_EQ(At(*pMethod), Positions(Angle, 300)) << m_Loop.Now();
        m_Loop.Advance(1);
        Angle += 2;
        EXPECT_EQ(At(*pMethod), Positions(Angle, 300)) << m_Loop.Now();
        EXPECT_EQ(m_MainWnd.m_nRepaintAll, ++nRepaint);
    }
    pMethod->KeyPressed(Key::eIncPosWeight1Up, 2);
    m_Loop.Advance(10000);
    EXPECT_EQ(At(*pMethod), Positions(Angle, 300));
}

TEST_F(WeightBalancingMethod, EveryHeldKeyRepeatsItsOwnMove) {
    const auto pMethod = Make();
    const std::vector<std::pair<Key::KeyAction, Positions>> Cases = {{Key::eIncPosWeight1Down, {103, 200}},
                                                                     {Key::eDecPosWeight1Down, {97, 200}},
                                                                     {Key::eIncPosWeight2Down, {100, 203}},
                                                                     {Key::eDecPosWeight2Down, {100, 197}}};
    for (const auto& [Action, Expected] : Cases) {
        Put(*pMethod, 100, 200);
        pMethod->KeyPressed(Action, 1);
        m_Loop.Advance(450 + 400);
        EXPECT_EQ(At(*pMethod), Expected) << Action;
        pMethod->KeyPressed(static_cast<Key::KeyAction>(Action + 1), 1);
    }
}

TEST_F(WeightBalancingMethod, HeldKeyOfTheActiveWeightRepeatsTheChosenStep) {
    const auto pMethod = Make();
    m_Selection = 3;
    Put(*pMethod, 100, 200);
    pMethod->KeyPressed(Key::eIncPosActiveWeightDown, 1);
    m_Loop.Advance(450);
    EXPECT_EQ(At(*pMethod), Positions(100, 220));
    pMethod->KeyPressed(Key::eIncPosActiveWeightUp, 1);
    m_Loop.Advance(10000);
    EXPECT_EQ(At(*pMethod), Positions(100, 220));
}

TEST_F(WeightBalancingMethod, AnotherKeyTakesTheRepeatOver) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 200);
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    m_Loop.Advance(449);
    pMethod->KeyPressed(Key::eDecPosWeight2Down, 1);
    m_Loop.Advance(449);
    EXPECT_EQ(At(*pMethod), Positions(101, 199));
    m_Loop.Advance(1);
    EXPECT_EQ(At(*pMethod), Positions(101, 198));
}

TEST_F(WeightBalancingMethod, HeldKeyExchangesAndGoesOnWithTheSameWeight) {
    const auto pMethod = Make();
    const CLogCapture Capture;
    Put(*pMethod, 100, 121);
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    EXPECT_EQ(At(*pMethod), Positions(101, 121));
    m_Loop.Advance(450);
    EXPECT_EQ(At(*pMethod), Positions(121, 101));
    m_Loop.Advance(400);
    EXPECT_EQ(At(*pMethod), Positions(122, 101));
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

TEST_F(WeightBalancingMethod, ModeChangeEndsTheRepeat) {
    const auto pMethod = Make();
    for (const bool bPlain : {false, true}) {
        Put(*pMethod, 100, 200);
        pMethod->KeyPressed(Key::eDecPosWeight1Down, 1);
        if (bPlain) {
            pMethod->SetPlainDisplayMode(Method::eUACompensation);
        } else {
            pMethod->SetDisplayMode(Method::eUACompensation);
        }
        m_Loop.Advance(10000);
        EXPECT_EQ(At(*pMethod), Positions(99, 200));
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    }
}

TEST_F(WeightBalancingMethod, DestructionEndsTheRepeat) {
    const CLogCapture Capture;
    auto pMethod = Make();
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    EXPECT_EQ(m_Loop.GetTimerCount(), 1U);
    pMethod.reset();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

// Drawing

class WeightBalancingMethodPaint : public WeightBalancingMethod {
protected:
    static CBitmap Paint(Method& rMethod, bool bRedrawAll) {
        CBitmap Bitmap(CSize(300, 300));
        CDC DC(Bitmap);
        rMethod.Paint(&DC, CRect(0, 0, 300, 300), bRedrawAll);
        return Bitmap;
    }
    static bool IsBlank(const CBitmap& rBitmap) { return rBitmap == CBitmap(CSize(300, 300)); }
};

TEST_F(WeightBalancingMethodPaint, EmptyModeDrawsNothing) {
    const auto pMethod = Make();
    EXPECT_TRUE(IsBlank(Paint(*pMethod, true)));
}

TEST_F(WeightBalancingMethodPaint, PartOfAStillPictureIsAssertedAndDrawnWhole) {
    const auto pMethod = Make();
    for (const auto Mode : {Method::eNeutralPosition, Method::eTestUnbalance, Method::eUACompensation,
                            Method::eInactive, Method::eEmpty}) {
        pMethod->SetPlainDisplayMode(Mode);
        const CBitmap Whole = Paint(*pMethod, true);
        const CLogCapture Capture;
        EXPECT_TRUE(Paint(*pMethod, false) == Whole);
        EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"must be TRUE!"});
        EXPECT_EQ(Capture.GetRecords().back().m_Expression, "bRedrawAll");
    }
}

TEST_F(WeightBalancingMethodPaint, InactiveModeIsTheDrawingHatched) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    const CBitmap Active = Paint(*pMethod, true);
    pMethod->SetPlainDisplayMode(Method::eInactive);
    const CBitmap Inactive = Paint(*pMethod, true);
    EXPECT_FALSE(IsBlank(Active));
    int nSame = 0;
    int nCovered = 0;
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 300; ++y) {
            if (Inactive.GetPixel(x, y) == Active.GetPixel(x, y)) {
                ++nSame;
            } else {
                EXPECT_EQ(Inactive.GetPixel(x, y), RGB(0xEC, 0xE9, 0xD8));
                ++nCovered;
            }
        }
    }
    EXPECT_GT(nSame, 0);
    EXPECT_GT(nCovered, 0);
}

TEST_F(WeightBalancingMethodPaint, WeightsAreDrawnWhereTheyStand) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eUACompensation);
    Put(*pMethod, 0, 90);
    const CBitmap Picture = Paint(*pMethod, true);
    // Square of 280 at (10, 10), ring from 105 to 140: on a clockwise scale 0 is at the top, 90 to the right.
    // Off the middle, where the white number stands.
    constexpr COLORREF eInk = RGB(0x00, 0x38, 0x68);
    constexpr COLORREF eRing = RGB(0xC0, 0xC0, 0xC0);
    EXPECT_EQ(Picture.GetPixel(150, 150 - 136), eInk);
    EXPECT_EQ(Picture.GetPixel(150 + 136, 150), eInk);
    EXPECT_EQ(Picture.GetPixel(150, 150 + 136), eRing);
    EXPECT_EQ(Picture.GetPixel(150 - 136, 150), eRing);
}

TEST_F(WeightBalancingMethodPaint, MeasurementIsRedrawnInTheMiddleOnly) {
    const auto pMethod = Make();
    pMethod->SetDisplayMode(Method::eMeasurementValues);
    pMethod->AddMeasurementValue(300, 400);
    const CLogCapture Capture;
    const CBitmap Middle = Paint(*pMethod, false);
    EXPECT_TRUE(Capture.GetAssertions().empty());
    EXPECT_FALSE(IsBlank(Middle));
    EXPECT_EQ(Middle.GetPixel(150, 14), RGB(255, 255, 255));  // no ring
    EXPECT_NE(Paint(*pMethod, true).GetPixel(150, 14), RGB(255, 255, 255));
    // Another value, another picture.
    pMethod->AddMeasurementValue(-100, 90);
    EXPECT_FALSE(Paint(*pMethod, false) == Middle);
}

TEST_F(WeightBalancingMethodPaint, RotationDirectionTurnsTheArrow) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    pMethod->SetRotationDirection(CW);
    const CBitmap Clockwise = Paint(*pMethod, true);
    pMethod->SetRotationDirection(CCW);
    EXPECT_FALSE(Paint(*pMethod, true) == Clockwise);
}

TEST_F(WeightBalancingMethodPaint, LeavesTheDeviceStateAsItWas) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eInactive);
    CBitmap Bitmap(CSize(300, 300));
    CDC DC(Bitmap);
    DC.SelectFont(CFont("Arial", 33));
    const int Height = DC.GetFontHeight();
    pMethod->Paint(&DC, CRect(0, 0, 100, 100), true);
    EXPECT_EQ(DC.GetFontHeight(), Height);
    DC.FillSolidRect(CRect(200, 200, 210, 210), RGB(1, 2, 3));  // outside what the hatch was clipped to
    EXPECT_EQ(Bitmap.GetPixel(205, 205), RGB(1, 2, 3));
}

}  // namespace
