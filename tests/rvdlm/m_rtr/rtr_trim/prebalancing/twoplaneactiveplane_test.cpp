// The active plane of a two-plane procedure: the one that keys move and whose means are shown.
#include <algorithm>

#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using math::MakeVector;
using testing::ElementsAre;
using testing::IsEmpty;
using K = CKeyActions;
using Method = CPlaneBalancingMethod;

TEST_F(TwoPlaneTest, ActivePlaneFollowsFromTheDisplayModes) {
    for (const auto Mode : {Method::eNeutralPosition, Method::eTestUnbalance, Method::eUACompensation}) {
        m_pMethod1->m_DisplayMode = Mode;
        m_pMethod2->m_DisplayMode = Method::eInactive;
        EXPECT_EQ(&m_pSequence->GetActivePlaneMethod(), m_pMethod1);
        std::swap(m_pMethod1->m_DisplayMode, m_pMethod2->m_DisplayMode);
        EXPECT_EQ(&m_pSequence->GetActivePlaneMethod(), m_pMethod2);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTest, WithoutAnActivePlaneItIsPlane1AfterAnAssertion) {
    const std::pair<Method::DisplayMode, Method::DisplayMode> Pairs[] = {
        {Method::eInactive, Method::eInactive},
        {Method::eUACompensation, Method::eUACompensation},
        {Method::eMeasurementValues, Method::eInactive},
        {Method::eInactive, Method::eEmpty}};
    for (const auto& [Mode1, Mode2] : Pairs) {
        m_Log.Clear();
        m_pMethod1->m_DisplayMode = Mode1;
        m_pMethod2->m_DisplayMode = Mode2;
        EXPECT_EQ(&m_pSequence->GetActivePlaneMethod(), m_pMethod1);
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("no plane for UA compensation is active"));
    }
}

TEST_F(TwoPlaneTest, ToggleMovesTheModeOverAndKeepsItPlain) {
    m_pMethod1->m_DisplayMode = Method::eUACompensation;
    m_pMethod2->m_DisplayMode = Method::eInactive;
    TakeCalls();
    EXPECT_EQ(m_pSequence->toggleActivePlane(), 1);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("1:SetDisplayMode eInactive", "2:SetPlainDisplayMode eUACompensation"));
    EXPECT_EQ(m_pSequence->toggleActivePlane(), 1);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("1:SetPlainDisplayMode eUACompensation", "2:SetDisplayMode eInactive"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTest, ExtrasPicksPlane1AndTheToggleKeyTheOther) {
    for (const int State : {S::eNeutralPosSpindleStop, S::eNeutralPosRemoveWeights}) {
        Reach(State);
        TakeCalls();
        Key(K::eExtras);
        EXPECT_THAT(TakeCalls(), ElementsAre("1:SetPlainDisplayMode eNeutralPosition",
                                             "2:SetDisplayMode eInactive", "SetMenu 102"));
        Key(K::eTogglePlane);
        EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eInactive",
                                             "2:SetPlainDisplayMode eNeutralPosition", "SetMenu 202"));
        Key(K::eIncPosWeight1Down);
        EXPECT_THAT(m_pMethod2->m_Keys, ElementsAre(std::pair<int, int>(K::eIncPosWeight1Down, 5)));
        EXPECT_THAT(m_pMethod1->m_Keys, IsEmpty());
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTest, CommitCanChangeEitherPlane) {
    Reach(S::eReBalanceCommitWeights);
    TakeCalls();
    Key(K::eExtras);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eUACompensation", "2:SetDisplayMode eInactive",
                                         "SetMenu 132", "WarningModeChanged 0"));
    EXPECT_EQ(m_pSequence->GetMode(), 9U);
    Key(K::eTogglePlane);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eInactive",
                                         "2:SetPlainDisplayMode eUACompensation", "SetMenu 232"));
    Key(K::eIncPosWeight1Down);
    EXPECT_THAT(m_pMethod2->m_Keys, ElementsAre(std::pair<int, int>(K::eIncPosWeight1Down, 1)));
}

TEST_F(TwoPlaneTest, ToggleBeforeExtrasInTheCommitAssertsTwiceAndShowsPlane1sMenu) {
    Reach(S::eReBalanceCommitWeights);
    m_Log.Clear();
    TakeCalls();
    Key(K::eTogglePlane);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("no plane for UA compensation is active",
                            "inconsistency when toggling planes - no or both planes are currently active",
                            "no plane for UA compensation is active"));
    EXPECT_THAT(TakeCalls(), ElementsAre("SetMenu 132"));
}

TEST_F(TwoPlaneTest, CheckOfTheWeightsCanToggle) {
    Reach(S::eReBalanceCheckWeights);
    TakeCalls();
    Key(K::eTogglePlane);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eInactive",
                                         "2:SetPlainDisplayMode eUACompensation", "SetMenu 242"));
}

TEST_F(TwoPlaneTest, SpeedInTheCheckHidesBothPlanesUntilItIsOff) {
    Reach(S::eReBalanceCheckWeights);
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eInactive", "2:SetDisplayMode eInactive",
                                         "WarningModeChanged 10", "SetMenu 4"));
    m_pSequence->InvalidRPM(1);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eUACompensation", "2:SetDisplayMode eInactive",
                                         "WarningModeChanged 0", "SetMenu 142"));
}

TEST_F(TwoPlaneTest, ToggleDoesNotLeaveThePlaneUnderTest) {
    for (const int State : {S::ePlane1TestUnbalanceSetWeights, S::ePlane2TestUnbalanceSetWeights}) {
        Reach(State);
        TakeCalls();
        Key(K::eTogglePlane);
        EXPECT_THAT(TakeCalls(), IsEmpty());
        EXPECT_EQ(GetState(), State);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty()) << "the plane under test is the active one";
}

TEST_F(TwoPlaneTest, KeysOfATestLegAssertThatItsPlaneIsActive) {
    Reach(S::ePlane1TestUnbalanceSetWeights);
    std::swap(m_pMethod1->m_DisplayMode, m_pMethod2->m_DisplayMode);
    m_Log.Clear();
    Key(K::eIncPosWeight1Down);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("active plane should be plane 1"));
    EXPECT_EQ(m_pMethod2->m_Keys.size(), 1U);
    Reach(S::ePlane2TestUnbalanceSetWeights);
    std::swap(m_pMethod1->m_DisplayMode, m_pMethod2->m_DisplayMode);
    m_Log.Clear();
    Key(K::eIncPosWeight1Down);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("active plane should be plane 2"));
}

TEST_F(TwoPlaneTest, ExtrasInATestLegShowsThatPlanesMenu) {
    for (const int State : {S::ePlane1TestUnbalanceSetWeights, S::ePlane2TestUnbalanceSetWeights}) {
        Reach(State);
        Key(K::eExtras);
        const bool bPlane2 = State == S::ePlane2TestUnbalanceSetWeights;
        EXPECT_EQ(m_Wnd.GetMenu(),
                  CFakeMethod::eTestChangeMenu + (bPlane2 ? CFakeMethod::eMenusOfPlane2 : 0));
    }
}

TEST_F(TwoPlaneTest, CorrectionsOfAPrebalancingCanNeitherBeToggledNorMoved) {
    Reach(S::ePreBalanceSetWeights);
    TakeCalls();
    for (int i = K::eRebalance; i <= K::eIncPosActiveWeightUp; ++i) {
        EXPECT_EQ(Key(static_cast<K::KeyAction>(i)), 1);
        EXPECT_EQ(GetState(), S::ePreBalanceSetWeights) << i;
    }
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(TwoPlaneTest, ValidSpeedInATestLegTakesItsPositionsAndSkipsTheSpindleStart) {
    struct CLeg {
        int m_SetWeights;
        int m_Measurement;
        unsigned m_Step;
        const char* m_pCall;
    };
    for (const CLeg& rLeg : {CLeg{S::ePlane1TestUnbalanceSetWeights, S::ePlane1TestUnbalanceMeasurement, 7,
                                  "Math.SetTestUnbalanceVectorCase1 15,25 1"},
                             CLeg{S::ePlane2TestUnbalanceSetWeights, S::ePlane2TestUnbalanceMeasurement, 11,
                                  "Math.SetTestUnbalanceVectorCase2 35,45 0"}}) {
        Reach(rLeg.m_SetWeights);
        m_pMethod1->m_Positions = MakeVector(15, 25);
        m_pMethod2->m_Positions = MakeVector(35, 45);
        m_pSequence->InvalidRPM(1);
        EXPECT_EQ(GetState(), rLeg.m_SetWeights);
        TakeCalls();
        m_pSequence->InvalidRPM(0);
        EXPECT_EQ(GetState(), rLeg.m_Measurement);
        EXPECT_EQ(GetSteps(), std::make_pair(rLeg.m_Step, 15U));
        const std::vector<std::string> Calls = TakeCalls();
        EXPECT_EQ(Calls.front(), rLeg.m_pCall);
        EXPECT_EQ(
            std::ranges::count_if(Calls, [](const std::string& rCall) { return rCall.starts_with("Math."); }),
            1);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTest, KeysOfATestLegMoveTheMeansOfItsPlane) {
    for (const int State : {S::ePlane1TestUnbalanceSetWeights, S::ePlane2TestUnbalanceSetWeights}) {
        Reach(State);
        const bool bPlane1 = State == S::ePlane1TestUnbalanceSetWeights;
        const std::string Pressed = bPlane1 ? "1:KeyPressed" : "2:KeyPressed";
        for (int i = K::eRebalance; i <= K::eIncPosActiveWeightUp; ++i) {
            if (i == K::eExtras) {
                continue;
            }
            const auto Action = static_cast<K::KeyAction>(i);
            const bool bPlain = Action == K::eIncrement || Action == K::eDecrement ||
                                Action == K::eNeutralPosition || Action == K::eWeightSelection ||
                                Action == K::eStepSelection;
            const bool bMove = (i >= K::eIncPosWeight1Down && i <= K::eDecPosWeight2Up) ||
                               (i >= K::eDecPosActiveWeightDown && i <= K::eIncPosActiveWeightUp);
            TakeCalls();
            EXPECT_EQ(Key(Action), 1);
            EXPECT_EQ(GetState(), State);
            if (bPlain) {
                EXPECT_THAT(TakeCalls(), ElementsAre(Pressed)) << i;
            } else if (bMove) {
                EXPECT_THAT(TakeCalls(), ElementsAre(Pressed, "PreBalNotification 3 4")) << i;
            } else {
                EXPECT_THAT(TakeCalls(), IsEmpty()) << i;
            }
        }
        EXPECT_THAT((bPlane1 ? m_pMethod2 : m_pMethod1)->m_Keys, IsEmpty());
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
