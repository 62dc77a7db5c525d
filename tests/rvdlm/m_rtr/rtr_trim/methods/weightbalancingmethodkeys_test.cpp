// Menus and keys of the weight method, and the repeat while a key is held.
#include <string>
#include <tuple>
#include <vector>

#include "tests/rvdlm/m_rtr/rtr_trim/methods/weightmethodfixture.h"

namespace {

class WeightMethodKeys : public WeightMethodTest {};

// Menus

TEST_F(WeightMethodKeys, ChangeMenusFollowTheSelection) {
    const auto pMethod = Make();
    constexpr int MENUS[2][4] = {{24, 25, 26, 27}, {20, 21, 22, 23}};
    for (m_Selection = 0; m_Selection < 4; ++m_Selection) {
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(0), MENUS[0][m_Selection]);
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(1), MENUS[1][m_Selection]);
        EXPECT_EQ(pMethod->GetNeutralPositionMenu(1), MENUS[0][m_Selection]);
        EXPECT_EQ(pMethod->GetNeutralPositionMenu(2), MENUS[1][m_Selection]);
        EXPECT_EQ(pMethod->GetCommitChangeMenu(1), MENUS[0][m_Selection]);
        EXPECT_EQ(pMethod->GetCommitChangeMenu(2), MENUS[1][m_Selection]);
        EXPECT_EQ(pMethod->GetCheckWeightsMenu(1), MENUS[0][m_Selection]);
        EXPECT_EQ(pMethod->GetCheckWeightsMenu(2), MENUS[1][m_Selection]);
        EXPECT_EQ(pMethod->GetTestUnbalanceChangeMenu(), MENUS[0][m_Selection]);
        EXPECT_EQ(pMethod->GetTestUnbalanceMenu(), 32);
    }
}

TEST_F(WeightMethodKeys, OldMenusDoNotFollowTheSelection) {
    const auto pMethod = Make(CW, 0, 0, true);
    for (m_Selection = 0; m_Selection < 4; ++m_Selection) {
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(0), 6);
        EXPECT_EQ(pMethod->GetChangeWeightsMenu(1), 9);
    }
}

TEST_F(WeightMethodKeys, MenuOfUnknownKindOrSelectionIsAsserted) {
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

TEST_F(WeightMethodKeys, StepSelectionTogglesTheStepAndReplacesTheMenu) {
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

TEST_F(WeightMethodKeys, WeightSelectionTogglesTheWeightAndReplacesTheMenu) {
    const auto pMethod = Make();
    m_Selection = 2;
    m_MainWnd.SetMenu(26);
    pMethod->KeyPressed(Key::eWeightSelection, 1);
    EXPECT_EQ(m_Selection, 3);
    EXPECT_EQ(m_MainWnd.GetMenu(), 27);
}

TEST_F(WeightMethodKeys, AnyOtherMenuIsReplacedByOneOfTheFirstPlane) {
    const auto pMethod = Make();
    for (const int Menu : {0, 6, 9, 19, 24, 27, 32}) {
        m_Selection = 0;
        m_MainWnd.SetMenu(Menu);
        pMethod->KeyPressed(Key::eWeightSelection, 1);
        EXPECT_EQ(m_MainWnd.GetMenu(), 25);
    }
}

TEST_F(WeightMethodKeys, SelectionKeysLeaveWeightsThatAreTooCloseAlone) {
    const auto pMethod = Make();
    Put(*pMethod, 50, 55);
    pMethod->KeyPressed(Key::eWeightSelection, 1);
    EXPECT_EQ(At(*pMethod), Positions(50, 55));
}

// Keys

TEST_F(WeightMethodKeys, KeysMoveTheirWeight) {
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

TEST_F(WeightMethodKeys, AnglesWrapBothWays) {
    const auto pMethod = Make();
    Put(*pMethod, 359, 180);
    Tap(*pMethod, Key::eIncPosWeight1Down, 5);
    EXPECT_EQ(At(*pMethod), Positions(4, 180));
    Put(*pMethod, 180, 2);
    Tap(*pMethod, Key::eDecPosWeight2Down, 5);
    EXPECT_EQ(At(*pMethod), Positions(180, 357));
}

TEST_F(WeightMethodKeys, DownKeysOfTheActiveWeightTakeTheChosenStep) {
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

TEST_F(WeightMethodKeys, PushedIntoTheOtherTheWeightsExchangeTheirPositions) {
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

TEST_F(WeightMethodKeys, ExchangeWorksAcrossZero) {
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

TEST_F(WeightMethodKeys, CloserThanTheStepExplainsIsAssertedAndExchanged) {
    const auto pMethod = Make();
    Put(*pMethod, 100, 110);
    const CLogCapture Capture;
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 5);
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"impossible"});
    EXPECT_EQ(Capture.GetRecords().back().m_Expression, "FALSE");
    EXPECT_EQ(At(*pMethod), Positions(110, 100));
}

TEST_F(WeightMethodKeys, KeysThatMoveNothingStillExchangeWeightsThatAreTooClose) {
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

TEST_F(WeightMethodKeys, KeysAreLogged) {
    const auto pMethod = Make();
    const CLogCapture Capture(true);
    pMethod->KeyPressed(Key::eIncrement, 1);
    EXPECT_THAT(Capture.GetTexts("PbFlow"),
                testing::ElementsAre("CWeightBalancingMethod::KeyPressed(keyAction=eIncrement) called"));
}

// Repeat while a key is held. With 450 ms at the start the intervals are 450, 400, 350, 300, 250, 200, 150,
// 150, ...

TEST_F(WeightMethodKeys, HeldKeyRepeatsFasterAndFasterUntilItGoesUp) {
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

TEST_F(WeightMethodKeys, EveryHeldKeyRepeatsItsOwnMove) {
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

TEST_F(WeightMethodKeys, HeldKeyOfTheActiveWeightRepeatsTheChosenStep) {
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

TEST_F(WeightMethodKeys, AnotherKeyTakesTheRepeatOver) {
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

TEST_F(WeightMethodKeys, HeldKeyExchangesAndGoesOnWithTheSameWeight) {
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

TEST_F(WeightMethodKeys, ModeChangeEndsTheRepeat) {
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

TEST_F(WeightMethodKeys, DestructionEndsTheRepeat) {
    const CLogCapture Capture;
    auto pMethod = Make();
    pMethod->KeyPressed(Key::eIncPosWeight1Down, 1);
    EXPECT_EQ(m_Loop.GetTimerCount(), 1U);
    pMethod.reset();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

}  // namespace
