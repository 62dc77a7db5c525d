// What becomes of writes to the NC's server, with and without a connection.
#include "tests/platform/rvopc/networkopcserverfixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST_F(CNetworkOpcServerTest, WritesBeforeTheFirstConnectionAreSentInTheOrderMade) {
    EXPECT_TRUE(m_pServer->Write("z", 1));
    OpenGateway();
    EXPECT_TRUE(m_pServer->Write("a", 2));
    EXPECT_TRUE(m_pServer->Write("m", 3));
    EXPECT_THAT(GetWrites(), IsEmpty());
    SayConnected();
    EXPECT_THAT(GetWrites(), ElementsAre("z=1", "a=2", "m=3"));
}

TEST_F(CNetworkOpcServerTest, OfWritesBeforeTheFirstConnectionTheLastOfAnItemCounts) {
    OpenGateway();
    m_pServer->Write("a", 1);
    m_pServer->Write("b", 2);
    m_pServer->Write("a", 3);
    SayConnected();
    EXPECT_THAT(GetWrites(), ElementsAre("b=2", "a=3"));
}

TEST_F(CNetworkOpcServerTest, AConnectedWriteIsSentAtOnce) {
    Connect();
    EXPECT_TRUE(m_pServer->Write("a", 1, Note("a")));
    EXPECT_THAT(GetWrites(), ElementsAre("a=1"));
    SayWritten("a");
    EXPECT_THAT(GetFailed(), IsEmpty());
}

TEST_F(CNetworkOpcServerTest, AWriteWithoutConnectionIsRefusedAtOnce) {
    Connect();
    SayLost();
    EXPECT_FALSE(m_pServer->Write("a", 1, Note("a")));
    // The refusal is the answer; it is not told twice.
    EXPECT_THAT(GetFailed(), IsEmpty());
}

TEST_F(CNetworkOpcServerTest, AWriteThatTheServerRefusesFailsThroughTheLoop) {
    Connect();
    m_pServer->Write("a", 1, Note("a"));
    m_pServer->Write("b", 2, Note("b"));
    SayWriteFailed(LastIdOf("write", "a"));
    EXPECT_THAT(m_Failed, IsEmpty());
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("a can't be written: BadTypeMismatch"));
}

TEST_F(CNetworkOpcServerTest, AWriteUnderWayFailsWithTheConnection) {
    Connect();
    m_pServer->Write("a", 1, Note("a"));
    SayLost();
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
}

TEST_F(CNetworkOpcServerTest, AWriteUnderWayFailsWithTheGateway) {
    Connect();
    m_pServer->Write("a", 1, Note("a"));
    LoseGateway();
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
}

TEST_F(CNetworkOpcServerTest, AFailureIsToldOnce) {
    Connect();
    m_pServer->Write("a", 1, Note("a"));
    const unsigned Id = LastIdOf("write", "a");
    SayLost();
    SayWriteFailed(Id);
    LoseGateway();
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
}

TEST_F(CNetworkOpcServerTest, WhatWaitsFailsWithAFirstAttemptThatFails) {
    OpenGateway();
    EXPECT_TRUE(m_pServer->Write("a", 1, Note("a")));
    SayLost();
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
    EXPECT_FALSE(m_pServer->Write("a", 2));
}

TEST_F(CNetworkOpcServerTest, WhatWaitsFailsWhenThereIsNoGateway) {
    EXPECT_TRUE(m_pServer->Write("a", 1, Note("a")));
    LoseGateway();
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
}

TEST_F(CNetworkOpcServerTest, WhatWaitedCanStillBeRefusedByTheServer) {
    OpenGateway();
    m_pServer->Write("a", 1, Note("a"));
    SayConnected();
    SayWriteFailed(LastIdOf("write", "a"));
    EXPECT_THAT(GetFailed(), ElementsAre("a"));
}

TEST_F(CNetworkOpcServerTest, AFailedWriteNeedsNoHandler) {
    Connect();
    m_pServer->Write("a", 1);
    SayWriteFailed(LastIdOf("write", "a"));
    m_pServer->Write("a", 2);
    SayLost();
    EXPECT_THAT(GetFailed(), IsEmpty());
}

// Outputs

TEST_F(CNetworkOpcServerTest, OutputsAreWrittenAgainAfterAReconnectionInTheirOrder) {
    Connect();
    m_pServer->Write("Warning", 1);
    m_pServer->Write("Notification", 2);
    m_pServer->Write("Warning", 3);
    SayLost();
    m_pGateway->m_Sent.clear();
    SayConnected();
    EXPECT_THAT(GetWrites(), ElementsAre("Notification=2", "Warning=3"));
}

TEST_F(CNetworkOpcServerTest, ANewGatewayGetsTheOutputsToo) {
    Connect();
    m_pServer->Write("Warning", 1);
    SayWritten("Warning");
    LoseGateway();
    m_pGateway->m_Sent.clear();
    OpenGateway();
    SayConnected();
    EXPECT_THAT(GetWrites(), ElementsAre("Warning=1"));
}

TEST_F(CNetworkOpcServerTest, AnOutputRefusedDuringTheOutageIsWrittenAfterIt) {
    Connect();
    m_pServer->Write("Warning", 1);
    SayLost();
    EXPECT_FALSE(m_pServer->Write("Warning", 2));
    m_pGateway->m_Sent.clear();
    SayConnected();
    EXPECT_THAT(GetWrites(), ElementsAre("Warning=2"));
}

}  // namespace
