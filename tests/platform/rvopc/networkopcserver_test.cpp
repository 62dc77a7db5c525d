// The module's side of the gateway: lines, what becomes of writes, and what is told after an outage.
#include "platform/rvopc/networkopcserver.h"
#include "contract/ncitems.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <deque>
#include <nlohmann/json.hpp>

#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"

using nlohmann::json;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A gateway by hand: the test says when there is one and what it sends.
class CFakeGateway : public IFOpcGateway {
public:
    void Start() override { ++m_nStarts; }
    bool SendLine(const std::string& rLine) override {
        if (m_bOpen) {
            m_Sent.push_back(json::parse(rLine));
        }
        return m_bOpen;
    }
    /// The next of what is to happen during a wait; when there is nothing more, time runs out.
    bool Wait(std::uint32_t Milliseconds) override {
        if (m_Coming.empty()) {
            IFEventLoop::Current().Sleep(Milliseconds);
            return false;
        }
        const auto Next = std::move(m_Coming.front());
        m_Coming.pop_front();
        Next();
        return true;
    }

    int m_nStarts = 0;
    bool m_bOpen = false;
    std::vector<json> m_Sent;
    std::deque<std::function<void()>> m_Coming;
};

class CNetworkOpcServerTest : public testing::Test {
protected:
    CNetworkOpcServerTest() {
        auto pGateway = std::make_unique<CFakeGateway>();
        m_pGateway = pGateway.get();
        COpcConfiguration Configuration;
        Configuration.m_Server = "opc.tcp://nc:4840";
        Configuration.m_User = "balancing";
        Configuration.m_Password = "secret";
        m_pServer = std::make_unique<CNetworkOpcServer>(std::move(pGateway), Configuration, "/cnf/opcua");
    }

    /// A new gateway is there; without connection to the NC so far.
    void OpenGateway() {
        m_pGateway->m_bOpen = true;
        m_pGateway->OnOpened();
    }
    void LoseGateway() {
        m_pGateway->m_bOpen = false;
        m_pGateway->OnLost("it was killed");
    }
    void Say(const json& rLine) { m_pGateway->OnLine(rLine.dump()); }
    void SayConnected() { Say({{"state", {{"connected", true}}}}); }
    void SayLost(const std::string& rReason = "timeout") {
        Say({{"state", {{"connected", false}, {"reason", rReason}}}});
    }
    void SayChanged(const std::string& rNode, std::int32_t Value) {
        Say({{"changed", {{"id", LastIdOf("subscribe", rNode)}, {"value", {{"int32", Value}}}}}});
    }
    void SayWritten(const std::string& rNode) { Say({{"written", {{"id", LastIdOf("write", rNode)}}}}); }
    void SayWriteFailed(unsigned Id) { Say({{"written", {{"id", Id}, {"error", "BadTypeMismatch"}}}}); }
    void SayRead(const json& rValue) {
        Say({{"value", {{"id", m_pGateway->m_Sent.back()["read"]["id"]}, {"value", rValue}}}});
    }

    /// Gateway there and connected, nothing remembered of it.
    void Connect() {
        OpenGateway();
        SayConnected();
        m_pGateway->m_Sent.clear();
    }
    /// Id of the last order of that kind for the node.
    unsigned LastIdOf(const std::string& rOrder, const std::string& rNode) const {
        for (auto Line = m_pGateway->m_Sent.rbegin(); Line != m_pGateway->m_Sent.rend(); ++Line) {
            if (Line->contains(rOrder) && (*Line)[rOrder]["node"] == rNode) {
                return (*Line)[rOrder]["id"];
            }
        }
        ADD_FAILURE() << "no " << rOrder << " of " << rNode;
        return 0;
    }
    /// Writes sent so far, "node=value".
    std::vector<std::string> GetWrites() const {
        std::vector<std::string> Writes;
        for (const json& rLine : m_pGateway->m_Sent) {
            if (rLine.contains("write")) {
                Writes.push_back(rLine["write"]["node"].get<std::string>() + "=" +
                                 rLine["write"]["value"].begin().value().dump());
            }
        }
        return Writes;
    }
    std::vector<std::string> GetOrders() const {
        std::vector<std::string> Orders;
        for (const json& rLine : m_pGateway->m_Sent) {
            Orders.push_back(rLine.begin().key());
        }
        return Orders;
    }
    std::shared_ptr<void> Listen(const std::string& rItem) {
        return m_pServer->Subscribe(rItem, 100, [this](const COpcValue* pValue) {
            m_Told.push_back(pValue != nullptr ? std::get<std::int32_t>(*pValue) : eUnreadable);
        });
    }
    IFOpcServer::FailureHandler Note(const std::string& rName) {
        return [this, rName] { m_Failed.push_back(rName); };
    }
    const std::vector<std::int32_t>& GetTold() {
        m_Loop.RunPosted();
        return m_Told;
    }
    const std::vector<std::string>& GetFailed() {
        m_Loop.RunPosted();
        return m_Failed;
    }

    static constexpr std::int32_t eUnreadable = -999;

    CVirtualEventLoop m_Loop;
    CLogCapture m_Log{true};
    CFakeGateway* m_pGateway = nullptr;
    std::unique_ptr<CNetworkOpcServer> m_pServer;
    std::vector<std::int32_t> m_Told;
    std::vector<std::string> m_Failed;
};

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

// Connecting

TEST_F(CNetworkOpcServerTest, TheConnectLineComesFirstAndHoldsTheConfiguration) {
    EXPECT_EQ(m_pGateway->m_nStarts, 1);
    const auto pSubscription = Listen("Request");
    OpenGateway();
    EXPECT_THAT(GetOrders(), ElementsAre("connect", "subscribe"));
    EXPECT_EQ(m_pGateway->m_Sent.front(), json::parse(R"({"connect": {"server": "opc.tcp://nc:4840",
        "security": "Basic256Sha256", "fingerprint": "", "pki": "/cnf/opcua", "user": "balancing",
        "password": "secret", "user_certificate": "", "user_key": ""}})"));
    EXPECT_EQ(m_pGateway->m_Sent.back(),
              json::parse(R"({"subscribe": {"id": 1, "node": "Request", "rate": 100}})"));
}

TEST_F(CNetworkOpcServerTest, ANewGatewayIsToldTheConnectionAndEachSubscriptionAgain) {
    Connect();
    const auto pFirst = Listen("Request");
    const auto pSecond = Listen("TestWeight");
    auto pEnded = Listen("Other");
    pEnded.reset();
    LoseGateway();
    m_pGateway->m_Sent.clear();
    OpenGateway();
    EXPECT_THAT(GetOrders(), ElementsAre("connect", "subscribe", "subscribe"));
    EXPECT_EQ(m_pGateway->m_Sent[1]["subscribe"]["node"], "Request");
    EXPECT_EQ(m_pGateway->m_Sent[2]["subscribe"]["node"], "TestWeight");
}

TEST_F(CNetworkOpcServerTest, ItIsConnectedWhileTheGatewaySaysSo) {
    OpenGateway();
    EXPECT_FALSE(m_pServer->IsConnected());
    SayConnected();
    EXPECT_TRUE(m_pServer->IsConnected());
    SayLost();
    EXPECT_FALSE(m_pServer->IsConnected());
    SayConnected();
    LoseGateway();
    EXPECT_FALSE(m_pServer->IsConnected());
}

TEST_F(CNetworkOpcServerTest, AnOutageIsLoggedOncePerReasonAndSoIsItsEnd) {
    Connect();
    SayLost("refused");
    SayLost("refused");
    SayLost("timeout");
    SayConnected();
    SayLost("timeout");
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("no connection to the NC: refused", "no connection to the NC: timeout",
                            "connected to the NC again", "no connection to the NC: timeout"));
}

/// In the run it would be too late to find out.
TEST_F(CNetworkOpcServerTest, AtEachConnectionItIsCheckedThatTheNodesCanTakeWhatWillBeWritten) {
    COpcConfiguration Configuration;
    Configuration.m_LinkItems = {{NcItems::REQUEST, "s=Request"},
                                 {NcItems::NOTIFICATION, "s=Notification"},
                                 {NcItems::WARNING, "s=Warning"}};
    Configuration.m_Exacting = {{NcItems::REQUEST, -1},
                                {NcItems::NOTIFICATION, std::vector<std::int32_t>(14, -1)},
                                {NcItems::TEST_WEIGHT, 2.5}};
    auto pGateway = std::make_unique<CFakeGateway>();
    m_pGateway = pGateway.get();
    m_pServer = std::make_unique<CNetworkOpcServer>(std::move(pGateway), Configuration, "");
    OpenGateway();
    EXPECT_THAT(GetOrders(), ElementsAre("connect"));
    for (int nConnections = 1; nConnections <= 2; ++nConnections) {
        m_pGateway->m_Sent.clear();
        SayConnected();
        ASSERT_THAT(GetOrders(), ElementsAre("check", "check"));
        EXPECT_EQ(m_pGateway->m_Sent[0]["check"]["value"]["int32s"], std::vector<int>(14, -1));
        EXPECT_EQ(m_pGateway->m_Sent[1]["check"]["value"], json({{"int32", -1}}));
        Say({{"checked", {{"id", LastIdOf("check", "s=Notification")}}}});
        Say({{"checked", {{"id", LastIdOf("check", "s=Request")}, {"error", "-1 does not fit UInt16"}}}});
        Say({{"checked", {{"id", LastIdOf("check", "s=Request")}, {"error", "told before"}}}});
        EXPECT_TRUE(m_pServer->IsConnected());
        SayLost();
    }
    const std::string Told =
        "s=Request can't take everything that has to be written to it: -1 does not fit UInt16";
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(Told, Told));
}

// Values on the wire

TEST_F(CNetworkOpcServerTest, ValuesAreWrittenWithTheirType) {
    Connect();
    m_pServer->Write("a", 5);
    m_pServer->Write("a", 2.5);
    m_pServer->Write("a", std::string("x"));
    m_pServer->Write("a", std::vector<std::int32_t>{1, 2});
    std::vector<json> Values;
    for (const json& rLine : m_pGateway->m_Sent) {
        Values.push_back(rLine["write"]["value"]);
    }
    EXPECT_THAT(Values, ElementsAre(json{{"int32", 5}}, json{{"double", 2.5}}, json{{"string", "x"}},
                                    json{{"int32s", {1, 2}}}));
}

// A whole double stays a double: the type goes by the name, not by the digits.
TEST_F(CNetworkOpcServerTest, ValuesAreReportedWithTheirType) {
    Connect();
    std::vector<COpcValue> Told;
    const auto pSubscription =
        m_pServer->Subscribe("a", 100, [&](const COpcValue* pValue) { Told.push_back(*pValue); });
    for (const char* pValue :
         {R"({"int32": -5})", R"({"double": 2})", R"({"string": "x"})", R"({"int32s": [1, 2]})"}) {
        Say({{"changed", {{"id", 1}, {"value", json::parse(pValue)}}}});
    }
    m_Loop.RunPosted();
    EXPECT_THAT(Told, ElementsAre(COpcValue(-5), COpcValue(2.0), COpcValue(std::string("x")),
                                  COpcValue(std::vector<std::int32_t>{1, 2})));
}

TEST_F(CNetworkOpcServerTest, TextThatIsNotUtf8DoesNotBreakTheLine) {
    Connect();
    EXPECT_TRUE(m_pServer->Write("a", std::string("\xFF!")));
    EXPECT_EQ(m_pGateway->m_Sent.back()["write"]["value"]["string"], "\xEF\xBF\xBD!");
}

// Writes

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
    EXPECT_THAT(GetTold(), ElementsAre(eUnreadable));
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

// Shared items

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
    EXPECT_THAT(GetTold(), ElementsAre(eUnreadable));
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

// Read

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

// Lines

TEST_F(CNetworkOpcServerTest, BrokenLinesAreLoggedAndSurvived) {
    Connect();
    const auto pSubscription = Listen("Request");
    const std::vector<std::string> Lines{
        "",
        "{",
        "5",
        "[1]",
        "\xFF",
        R"({"state": 1})",
        R"({"state": {"connected": "yes"}})",
        R"({"changed": {"id": "x"}})",
        R"({"changed": {"id": 1, "value": {"int32": "x"}}})",
        R"({"changed": {"id": 1, "value": {"int32s": [1, "x"]}}})",
        R"({"written": {}})",
        R"({"written": {"id": 1, "error": 5}})",
        R"({"log": {"level": 5}})",
    };
    for (const std::string& rLine : Lines) {
        m_pGateway->OnLine(rLine);
    }
    EXPECT_THAT(m_Log.GetTexts("Error"), SizeIs(Lines.size()));
    EXPECT_THAT(m_Log.GetTexts("Error"), Each(HasSubstr("can't be understood")));
    SayChanged("Request", 1);
    EXPECT_THAT(GetTold(), ElementsAre(1));
    EXPECT_TRUE(m_pServer->IsConnected());
}

TEST_F(CNetworkOpcServerTest, ValuesOfUnknownKindCannotBeRead) {
    Connect();
    const auto pSubscription = Listen("Request");
    for (const char* pValue : {R"({"bool": true})", R"({})", R"(5)", R"({"int32": 1, "double": 1})"}) {
        Say({{"changed", {{"id", 1}, {"value", json::parse(pValue)}}}});
    }
    EXPECT_THAT(GetTold(), ElementsAre(eUnreadable, eUnreadable, eUnreadable, eUnreadable));
}

TEST_F(CNetworkOpcServerTest, UnknownLinesAndAnswersNobodyAskedForArePassedOver) {
    Connect();
    m_pGateway->OnLine(R"({"news": {"id": 1}})");
    m_pGateway->OnLine(R"({"written": {"id": 77}})");
    m_pGateway->OnLine(R"({"value": {"id": 77, "value": {"int32": 1}}})");
    m_pGateway->OnLine(R"({"changed": {"id": 77, "value": {"int32": 1}}})");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetTexts("Error"), IsEmpty());
    EXPECT_TRUE(m_pServer->IsConnected());
}

TEST_F(CNetworkOpcServerTest, TheGatewaysLogGoesIntoOurs) {
    Connect();
    m_Log.Clear();
    for (const char* pLevel : {"information", "warning", "error"}) {
        Say({{"log", {{"level", pLevel}, {"text", std::string("100% ") + pLevel}}}});
    }
    EXPECT_THAT(m_Log.GetTexts("Information"), ElementsAre("gateway: 100% information"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("gateway: 100% warning"));
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("gateway: 100% error"));
}

}  // namespace
