// The module's side of the gateway: its connection to the NC, and the lines that they speak in.
#include "platform/rvopc/networkopcserver.h"

#include "contract/ncitems.h"
#include "tests/platform/rvopc/networkopcserverfixture.h"

using nlohmann::json;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

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
    EXPECT_THAT(GetTold(), ElementsAre(UNREADABLE, UNREADABLE, UNREADABLE, UNREADABLE));
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
