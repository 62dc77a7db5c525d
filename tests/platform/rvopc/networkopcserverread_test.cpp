// Reads from the NC's server: the one operation that waits.
#include "tests/platform/rvopc/networkopcserverfixture.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

TEST_F(CNetworkOpcServerTest, AReadIsAnswered) {
    Connect();
    m_pGateway->m_Coming.push_back([this] { SayRead({{"double", 2.75}}); });
    EXPECT_EQ(m_pServer->Read("TestWeight"), COpcValue(2.75));
    EXPECT_EQ(m_pGateway->m_Sent.back(), json::parse(R"({"read": {"id": 1, "node": "TestWeight"}})"));
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, AReadThatTheServerRefusesHasNoValue) {
    Connect();
    m_pGateway->m_Coming.push_back([this] { Say({{"value", {{"id", 1}, {"error", "BadNodeIdUnknown"}}}}); });
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, TheAnswerToAnEarlierReadIsPassedOver) {
    Connect();
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    m_pGateway->m_Coming.push_back([this] { Say({{"value", {{"id", 1}, {"value", {{"double", 1.0}}}}}}); });
    m_pGateway->m_Coming.push_back([this] { SayRead({{"double", 2.0}}); });
    EXPECT_EQ(m_pServer->Read("TestWeight"), COpcValue(2.0));
}

TEST_F(CNetworkOpcServerTest, AReadWithoutConnectionFailsAtOnce) {
    Connect();
    SayLost();
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_THAT(m_pGateway->m_Sent, IsEmpty());
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, AReadWaitsForTheFirstConnection) {
    m_pGateway->m_Coming = {[this] { OpenGateway(); }, [this] { SayConnected(); },
                            [this] {
                                SayRead({{"double", 2.75}});
                            }};
    EXPECT_EQ(m_pServer->Read("TestWeight"), COpcValue(2.75));
}

TEST_F(CNetworkOpcServerTest, AReadEndsWithAFirstAttemptThatFails) {
    m_pGateway->m_Coming = {[this] { OpenGateway(); }, [this] { SayLost(); }};
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, AReadEndsWithTheConnection) {
    Connect();
    m_pGateway->m_Coming.push_back([this] { SayLost(); });
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, AReadEndsWithTheGateway) {
    Connect();
    m_pGateway->m_Coming.push_back([this] { LoseGateway(); });
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 0U);
}

TEST_F(CNetworkOpcServerTest, AReadGivesUpWhenNothingComes) {
    Connect();
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 2000U);
}

// Other lines don't prolong the wait.
TEST_F(CNetworkOpcServerTest, AReadGivesUpInAllAfterTheSameTime) {
    Connect();
    for (int i = 0; i < 10; ++i) {
        m_pGateway->m_Coming.push_back([this] {
            m_Loop.Sleep(700);
            Say({{"pong", {{"id", 0}}}});
        });
    }
    EXPECT_EQ(m_pServer->Read("TestWeight"), std::nullopt);
    EXPECT_EQ(m_Loop.Now(), 2100U);
    EXPECT_THAT(m_pGateway->m_Coming, SizeIs(7));
}

TEST_F(CNetworkOpcServerTest, ChangesDuringAReadAreToldAfterItInOrder) {
    Connect();
    const auto pSubscription = Listen("Request");
    m_pGateway->m_Coming = {[this] { SayChanged("Request", 1); }, [this] { SayChanged("Request", 2); },
                            [this] {
                                SayRead({{"double", 2.75}});
                            }};
    EXPECT_EQ(m_pServer->Read("TestWeight"), COpcValue(2.75));
    EXPECT_THAT(m_Told, IsEmpty());
    EXPECT_THAT(GetTold(), ElementsAre(1, 2));
}

}  // namespace
