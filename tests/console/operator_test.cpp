#include "console/operator.h"

#include <gmock/gmock.h>

#include "contract/actions.h"
#include "contract/warnings.h"
#include "platform/system/virtualeventloop.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int32_t MENU_CONFIRM = 0;
constexpr std::int32_t MENU_WAIT = 4;

/// A panel that shows what a test puts there.
class CFakePanel : public IFOperatorPanel {
public:
    CSituation Look() override { return m_Situation; }
    void PressKey(const MenuKeys::CKey& rKey) override { m_Keys.push_back(rKey.m_Action); }
    void Say(const std::string& rText) override { m_Said.push_back(rText); }
    void Ask(std::int32_t Action, std::int32_t Menu) {
        m_Situation.m_bRunning = true;
        m_Situation.m_Menu = Menu;
        m_Situation.m_Progress.m_Readings.at(0).m_bShown = true;
        m_Situation.m_Notification.m_Values.fill(-1);
        m_Situation.m_Notification.m_Values[0] = CNcNotification::eSetup;
        m_Situation.m_Notification.m_Values[1] = Action;
        m_Situation.m_Notification.m_Values[2] = 30;
        m_Situation.m_Notification.m_Values[4] = 180;
    }

    CSituation m_Situation;
    std::vector<int> m_Keys;
    std::vector<std::string> m_Said;
};

/// A machine that remembers what it was commanded.
class CFakeMachine : public IFMachine {
public:
    void Request(const json& rRequest, Done OnAnswer) override {
        m_Requests.push_back(rRequest.dump());
        IFEventLoop::Current().Post([this, OnAnswer = std::move(OnAnswer)] { OnAnswer(m_Answer); });
    }
    std::vector<std::string> m_Requests;
    json m_Answer = {{"ok", true}};
};

class OperatorTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CFakePanel m_Panel;
    CFakeMachine m_Machine;
};

constexpr const char* WEIGHTS = R"({"weights":{"angles":[30,180],"plane":1}})";

}  // namespace

// The page may ask for weights for a while without the key to confirm them.
TEST_F(OperatorTest, WeightsAreFittedOnceHoweverLongTheKeyIsMissing) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSetWeights, MENU_WAIT);
    m_Loop.Advance(10000);
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(WEIGHTS));
    EXPECT_THAT(m_Panel.m_Keys, IsEmpty());
    m_Panel.Ask(CNcNotification::eSetWeights, MENU_CONFIRM);
    m_Loop.Advance(250);
    EXPECT_THAT(m_Panel.m_Keys, ElementsAre(Actions::eNext));
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(WEIGHTS));
}

TEST_F(OperatorTest, WeightsAreFittedAnewWhenAskedForAgainLater) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    for (int i = 0; i < 2; ++i) {
        m_Panel.Ask(CNcNotification::eSetWeights, MENU_CONFIRM);
        m_Loop.Advance(500);
        m_Panel.Ask(CNcNotification::eMeasure, MENU_WAIT);
        m_Loop.Advance(500);
    }
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(WEIGHTS, WEIGHTS));
}

TEST_F(OperatorTest, SpeedIsCommandedOnce) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSpindleStop, MENU_WAIT);
    m_Loop.Advance(5000);
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(R"({"speed":0})"));
}

// The measurement is made at the speed on show: one that reports come late of isn't confirmed before.
TEST_F(OperatorTest, SpeedIsConfirmedOnceThePageShowsIt) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.Ask(CNcNotification::eNone, MENU_WAIT);
    m_Loop.Advance(500);
    for (const std::uint32_t RPM : {0U, 1500U, 2800U}) {
        m_Panel.m_Situation.m_Progress.m_CurrentRPM = RPM;
        m_Panel.Ask(CNcNotification::eSetSpindleSpeed, MENU_CONFIRM);
        m_Loop.Advance(2000);
        EXPECT_THAT(m_Panel.m_Keys, IsEmpty()) << RPM;
    }
    m_Panel.m_Situation.m_Progress.m_CurrentRPM = 2990;
    m_Loop.Advance(250);
    EXPECT_THAT(m_Panel.m_Keys, ElementsAre(Actions::eNext));
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(R"({"speed":3000})"));
}

// The module heard of the stop when it had gone on already.
TEST_F(OperatorTest, ASpindleThatStandsIsNotConfirmedAsTheWorkingSpeed) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSpindleStop, MENU_WAIT);
    m_Loop.Advance(500);
    m_Panel.m_Situation.m_Progress.m_CurrentRPM = 0;
    m_Panel.Ask(CNcNotification::eSetSpindleSpeed, MENU_CONFIRM);
    m_Loop.Advance(500);
    EXPECT_THAT(m_Panel.m_Keys, IsEmpty());
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(R"({"speed":0})", R"({"speed":3000})"));
}

TEST_F(OperatorTest, AWorkingSpeedThatIsAskedForAtOnceIsCommanded) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSetSpindleSpeed, MENU_CONFIRM);
    m_Loop.Advance(500);
    EXPECT_THAT(m_Panel.m_Keys, IsEmpty());
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(R"({"speed":3000})"));
}

TEST_F(OperatorTest, AMeasurementThatMissesTheSpeedGetsIt) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    Operator.Start();
    m_Panel.m_Situation.m_Progress.m_CalibratedRPM = 2500;
    m_Panel.Ask(CNcNotification::eMeasure, MENU_WAIT);
    m_Loop.Advance(500);
    EXPECT_THAT(m_Machine.m_Requests, IsEmpty());
    m_Panel.m_Situation.m_Warning = Warnings::eWrongRPM;
    m_Loop.Advance(5000);
    EXPECT_THAT(m_Machine.m_Requests, ElementsAre(R"({"speed":2500})"));
}

TEST_F(OperatorTest, RefusalOfTheMachineEndsTheRunWithItsReason) {
    COperator Operator(m_Panel, &m_Machine, 3000);
    m_Machine.m_Answer = {{"error", "the door is open"}};
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSetWeights, MENU_CONFIRM);
    m_Loop.Advance(1000);
    EXPECT_EQ(Operator.GetOutcome(), CRunDriver::Outcome::eStuck);
    EXPECT_EQ(Operator.GetReason(), "the machine refuses: the door is open");
    EXPECT_EQ(m_Machine.m_Requests.size(), 1U);
}

TEST_F(OperatorTest, WithoutAMachineSomebodyIsToldOnce) {
    COperator Operator(m_Panel, nullptr, 3000);
    int nFitted = 0;
    Operator.OnFitted = [&nFitted](const CFitting&) { ++nFitted; };
    Operator.Start();
    m_Panel.Ask(CNcNotification::eSetWeights, MENU_CONFIRM);
    m_Loop.Advance(5000);
    EXPECT_EQ(m_Panel.m_Said.size(), 1U);
    EXPECT_EQ(nFitted, 1);
    EXPECT_THAT(m_Panel.m_Keys, IsEmpty());
}
