// What is told of the items on the NC's server, and what after an outage.
#include <algorithm>

#include "tests/platform/rvopc/networkopcserverfixture.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A shared item "Request" with somebody who writes requests into it, as it stands after 3 was told.
class CSharedOpcItemTest : public CNetworkOpcServerTest {
protected:
    CSharedOpcItemTest() {
        OpenGateway();
        m_pSubscription = Listen("Request");
        SayChanged("Request", 3);
        SayConnected();
        EXPECT_THAT(GetTold(), ElementsAre(3));
        m_Told.clear();
    }
    /// The connection is lost, and comes back with the item at this value.
    void Reconnect(std::int32_t Value) {
        SayLost();
        m_Loop.RunPosted();
        m_pGateway->m_Sent.erase(std::remove_if(m_pGateway->m_Sent.begin(), m_pGateway->m_Sent.end(),
                                                [](const json& rLine) { return rLine.contains("write"); }),
                                 m_pGateway->m_Sent.end());
        SayChanged("Request", Value);
        SayConnected();
    }

    std::shared_ptr<void> m_pSubscription;
};

// Subscriptions

TEST_F(CNetworkOpcServerTest, ChangesAreToldThroughTheLoopInOrder) {
    Connect();
    const auto pSubscription = Listen("Request");
    SayChanged("Request", 1);
    SayChanged("Request", 2);
    SayChanged("Request", 2);
    EXPECT_THAT(m_Told, IsEmpty());
    EXPECT_THAT(GetTold(), ElementsAre(1, 2, 2));
}

TEST_F(CNetworkOpcServerTest, AnItemThatCannotBeReadIsToldAndLogged) {
    Connect();
    const auto pSubscription = Listen("Request");
    Say({{"changed", {{"id", 1}, {"error", "BadNodeIdUnknown"}}}});
    EXPECT_THAT(GetTold(), ElementsAre(UNREADABLE));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("Request can't be read: BadNodeIdUnknown"));
}

TEST_F(CNetworkOpcServerTest, AnEndedSubscriptionIsTakenBackAndNotToldAnyMore) {
    Connect();
    auto pSubscription = Listen("Request");
    SayChanged("Request", 1);
    pSubscription.reset();
    EXPECT_EQ(m_pGateway->m_Sent.back(), json::parse(R"({"unsubscribe": {"id": 1}})"));
    // What was on its way all the same.
    SayChanged("Request", 2);
    EXPECT_THAT(GetTold(), IsEmpty());
}

TEST_F(CNetworkOpcServerTest, AHandlerMayEndItsOwnSubscription) {
    Connect();
    int nCalls = 0;
    std::shared_ptr<void> pSubscription;
    pSubscription = m_pServer->Subscribe("Request", 100, [&](const COpcValue*) {
        ++nCalls;
        pSubscription.reset();
    });
    SayChanged("Request", 1);
    SayChanged("Request", 2);
    m_Loop.RunPosted();
    EXPECT_EQ(nCalls, 1);
    EXPECT_THAT(GetOrders(), ElementsAre("subscribe", "unsubscribe"));
}

TEST_F(CNetworkOpcServerTest, ASubscriptionMayOutliveTheServer) {
    Connect();
    auto pSubscription = Listen("Request");
    SayChanged("Request", 1);
    m_pServer.reset();
    EXPECT_THAT(GetTold(), ElementsAre(1));
    pSubscription.reset();
}

TEST_F(CNetworkOpcServerTest, EachSubscriptionOfAnItemIsToldItsFirstValue) {
    OpenGateway();
    const auto pFirst = Listen("TargetUnbalance");
    const auto pSecond = Listen("TargetUnbalance");
    for (const int Id : {1, 2}) {
        Say({{"changed", {{"id", Id}, {"value", {{"int32", 12}}}}}});
    }
    SayConnected();
    EXPECT_THAT(GetTold(), ElementsAre(12, 12));
    // And news after an outage.
    SayLost();
    for (const int Id : {1, 2}) {
        Say({{"changed", {{"id", Id}, {"value", {{"int32", 15}}}}}});
    }
    EXPECT_THAT(GetTold(), ElementsAre(12, 12, 15, 15));
}

TEST_F(CNetworkOpcServerTest, WhoBeginsToListenDuringAnOutageIsToldTheValueAfterIt) {
    Connect();
    auto pSubscription = Listen("TargetUnbalance");
    SayChanged("TargetUnbalance", 12);
    m_Loop.RunPosted();
    SayLost();
    pSubscription.reset();
    pSubscription = Listen("TargetUnbalance");
    SayChanged("TargetUnbalance", 12);
    EXPECT_THAT(GetTold(), ElementsAre(12, 12));
}

// Items that both sides write

TEST_F(CNetworkOpcServerTest, WhatIsWrittenBeforeTheFirstConnectionReplacesAnOldRequest) {
    OpenGateway();
    const auto pSubscription = Listen("Request");
    m_pServer->Write("Request", 0);
    SayChanged("Request", 1);
    SayConnected();
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), ElementsAre("Request=0"));
}

TEST_F(CNetworkOpcServerTest, WhatWaitsReplacesAnOldRequestAlsoAfterAFirstAttemptThatFailed) {
    OpenGateway();
    const auto pSubscription = Listen("Request");
    m_pServer->Write("Request", 0);
    SayLost();
    SayChanged("Request", 1);
    SayConnected();
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), ElementsAre("Request=0"));
}

TEST_F(CNetworkOpcServerTest, WithNothingWrittenTheFirstValueIsTold) {
    OpenGateway();
    const auto pSubscription = Listen("TargetUnbalance");
    SayChanged("TargetUnbalance", 7);
    SayConnected();
    EXPECT_THAT(GetTold(), ElementsAre(7));
}

TEST_F(CSharedOpcItemTest, TheSameValueAfterAReconnectionIsNoNews) {
    Reconnect(3);
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), IsEmpty());
}

TEST_F(CSharedOpcItemTest, AnotherValueAfterAReconnectionIsNews) {
    Reconnect(4);
    EXPECT_THAT(GetTold(), ElementsAre(4));
}

TEST_F(CSharedOpcItemTest, ChangesAfterTheFirstLookAreAllTold) {
    Reconnect(3);
    SayChanged("Request", 3);
    EXPECT_THAT(GetTold(), ElementsAre(3));
}

TEST_F(CSharedOpcItemTest, AnUnreadableItemIsLookedAtWhenItCanBeRead) {
    SayLost();
    Say({{"changed", {{"id", 1}, {"error", "BadNodeIdUnknown"}}}});
    SayConnected();
    SayChanged("Request", 3);
    EXPECT_THAT(GetTold(), ElementsAre(UNREADABLE));
}

TEST_F(CSharedOpcItemTest, AnAnswerThatTheServerTookIsNoNewsAfterAReconnection) {
    m_pServer->Write("Request", 0);
    SayWritten("Request");
    Reconnect(0);
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), IsEmpty());
}

// Its confirmation got lost with the connection, but not the answer itself.
TEST_F(CSharedOpcItemTest, AnUnconfirmedAnswerThatGotThroughIsNoNews) {
    m_pServer->Write("Request", 0, Note("answer"));
    Reconnect(0);
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), IsEmpty());
    EXPECT_THAT(GetFailed(), ElementsAre("answer"));
}

TEST_F(CSharedOpcItemTest, ALostAnswerIsWrittenAgainIfTheRequestStands) {
    m_pServer->Write("Request", 0);
    Reconnect(3);
    EXPECT_THAT(GetTold(), IsEmpty());
    EXPECT_THAT(GetWrites(), ElementsAre("Request=0"));
}

TEST_F(CSharedOpcItemTest, AnAnswerRefusedDuringTheOutageIsWrittenAfterItIfTheRequestStands) {
    SayLost();
    EXPECT_FALSE(m_pServer->Write("Request", 0));
    Reconnect(3);
    EXPECT_THAT(GetWrites(), ElementsAre("Request=0"));
}

TEST_F(CSharedOpcItemTest, ALostAnswerIsForgottenIfThereIsNews) {
    m_pServer->Write("Request", 0);
    Reconnect(4);
    EXPECT_THAT(GetTold(), ElementsAre(4));
    EXPECT_THAT(GetWrites(), IsEmpty());
    // Forgotten for good.
    Reconnect(4);
    EXPECT_THAT(GetTold(), ElementsAre(4));
    EXPECT_THAT(GetWrites(), IsEmpty());
}

TEST_F(CSharedOpcItemTest, ARequestThatArrivesBeforeTheAnswerIsConfirmedIsTold) {
    m_pServer->Write("Request", 0);
    SayChanged("Request", 4);
    SayWritten("Request");
    EXPECT_THAT(GetTold(), ElementsAre(4));
}

// Only the last answer counts: the failure of an earlier one must not have it written a second time.
TEST_F(CSharedOpcItemTest, AFailedAnswerThatALaterOneFollowedIsNotWrittenAgain) {
    m_pServer->Write("Request", -1, Note("first"));
    const unsigned First = LastIdOf("write", "Request");
    m_pServer->Write("Request", 0, Note("second"));
    SayWriteFailed(First);
    SayWritten("Request");
    Reconnect(0);
    EXPECT_THAT(GetWrites(), IsEmpty());
    EXPECT_THAT(GetFailed(), ElementsAre("first"));
}

// Nobody is left who could have answered the request that may stand there meanwhile.
TEST_F(CSharedOpcItemTest, AnAnswerIsNotWrittenAgainWhenNobodyListensAnyMore) {
    m_pServer->Write("Request", 0);
    SayWritten("Request");
    m_pSubscription.reset();
    SayLost();
    m_pGateway->m_Sent.clear();
    SayConnected();
    EXPECT_THAT(GetWrites(), IsEmpty());
}

TEST_F(CSharedOpcItemTest, AnAnswerUnderWayWhenTheSubscriptionEndsStillFailsWithTheConnection) {
    m_pServer->Write("Request", 0, Note("answer"));
    m_pSubscription.reset();
    SayLost();
    EXPECT_THAT(GetFailed(), ElementsAre("answer"));
    SayConnected();
    EXPECT_TRUE(m_pServer->IsConnected());
}

TEST_F(CNetworkOpcServerTest, WhatWaitsFailsWhenNobodyListensAnyMore) {
    auto pSubscription = Listen("Request");
    m_pServer->Write("Request", 0, Note("ready"));
    pSubscription.reset();
    EXPECT_THAT(GetFailed(), ElementsAre("ready"));
}

/// A server whose nodes are of floating point gives our own answer back as such.
TEST_F(CSharedOpcItemTest, AnAnswerThatComesBackAsAnotherTypeOfNumberIsNoNews) {
    m_pServer->Write("Request", -1);
    SayWritten("Request");
    SayLost();
    Say({{"changed", {{"id", LastIdOf("subscribe", "Request")}, {"value", {{"double", -1.0}}}}}});
    SayConnected();
    EXPECT_THAT(GetTold(), IsEmpty());
}

}  // namespace
