// Both ends of the control link: the client alone under virtual time against a scripted peer, and server and
// client together over loopback.
#include <gmock/gmock.h>

#include <QTcpSocket>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/qt/qteventloop.h"
#include "platform/rvcom/bytelink.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/machineclient.h"
#include "simulator/machineserver.h"
#include "simulator/simulator.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::uint8_t> ToBytes(const std::string& rText) {
    return {rText.begin(), rText.end()};
}

/// A link whose other end is the test.
class CScriptedLink : public IFByteLink {
public:
    struct CRecord {
        std::vector<std::uint64_t> m_OpenedAt;
        std::string m_Written;
        CScriptedLink* m_pLink = nullptr;
    };
    explicit CScriptedLink(CRecord& rRecord) : m_rRecord(rRecord) { m_rRecord.m_pLink = this; }
    void Open() override { m_rRecord.m_OpenedAt.push_back(IFEventLoop::Current().Now()); }
    void Close() override { m_bOpen = false; }
    bool IsOpen() const override { return m_bOpen; }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        m_rRecord.m_Written.append(Bytes.begin(), Bytes.end());
        return m_bOpen;
    }
    std::string GetName() const override { return "tcp:machine:1"; }

    void Accept() {
        m_bOpen = true;
        OnOpened();
    }
    void Fail(const std::string& rWhy) {
        m_bOpen = false;
        OnClosed(rWhy);
    }
    void Say(const std::string& rText) { OnBytes(ToBytes(rText)); }

private:
    CRecord& m_rRecord;
    bool m_bOpen = false;
};

class MachineClientTest : public testing::Test {
protected:
    void Ask(const json& rRequest) {
        m_Client.Request(rRequest, [this](const json& rAnswer) { m_Answers.push_back(rAnswer.dump()); });
    }
    CScriptedLink& GetLink() { return *m_Record.m_pLink; }

    CVirtualEventLoop m_Loop;
    CScriptedLink::CRecord m_Record;
    CMachineClient m_Client{std::make_unique<CScriptedLink>(m_Record)};
    std::vector<std::string> m_Answers;
};

TEST_F(MachineClientTest, SendsOneLineARequestAndGivesAnswersInOrder) {
    GetLink().Accept();
    EXPECT_TRUE(m_Client.IsConnected());
    Ask({{"speed", 100}});
    Ask({{"speed", 200}});
    EXPECT_EQ(m_Record.m_Written, "{\"speed\":100}\n{\"speed\":200}\n");
    GetLink().Say("{\"ok\":true,\"n\":1}\n{\"ok\":tr");
    EXPECT_THAT(m_Answers, IsEmpty());  // not from inside the link
    m_Loop.RunPosted();
    EXPECT_THAT(m_Answers, ElementsAre(R"({"n":1,"ok":true})"));
    GetLink().Say("ue,\"n\":2}\n");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Answers, ElementsAre(R"({"n":1,"ok":true})", R"({"n":2,"ok":true})"));
}

TEST_F(MachineClientTest, RequestsBeforeTheConnectionWaitForIt) {
    Ask({{"speed", 100}});
    EXPECT_EQ(m_Record.m_Written, "");
    GetLink().Accept();
    EXPECT_EQ(m_Record.m_Written, "{\"speed\":100}\n");
}

TEST_F(MachineClientTest, ARefusedConnectionIsAnErrorAndTriedAgain) {
    Ask({{"speed", 100}});
    GetLink().Fail("connection refused");
    m_Loop.RunPosted();
    EXPECT_THAT(
        m_Answers,
        ElementsAre(
            R"({"error":"the connection to the machine at tcp:machine:1 is lost: connection refused"})"));
    Ask({{"speed", 200}});
    m_Loop.RunPosted();
    EXPECT_EQ(m_Answers.back(),
              R"({"error":"no connection to the machine at tcp:machine:1: connection refused"})");
    m_Loop.Advance(500);
    GetLink().Accept();
    Ask({{"speed", 300}});
    EXPECT_EQ(m_Record.m_Written, "{\"speed\":300}\n");
}

TEST_F(MachineClientTest, PausesGrowUpToTenSecondsAndBeginAgainAfterSuccess) {
    std::vector<std::uint64_t> Pauses;
    for (int nTry = 0; nTry < 7; ++nTry) {
        const std::uint64_t FailedAt = m_Loop.Now();
        GetLink().Fail("away");
        m_Loop.Advance(20000);
        Pauses.push_back(m_Record.m_OpenedAt.back() - FailedAt);
    }
    EXPECT_THAT(Pauses, ElementsAre(500, 1000, 2000, 4000, 8000, 10000, 10000));
    GetLink().Accept();
    const std::uint64_t LostAt = m_Loop.Now();
    GetLink().Fail("away");
    m_Loop.Advance(20000);
    EXPECT_EQ(m_Record.m_OpenedAt.back() - LostAt, 500U);
}

TEST_F(MachineClientTest, ALossAnswersAllThatWasUnderWay) {
    GetLink().Accept();
    Ask({{"speed", 100}});
    Ask({{"speed", 200}});
    GetLink().Fail("cable");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Answers, testing::SizeIs(2));
    EXPECT_THAT(m_Answers, testing::Each(testing::HasSubstr("cable")));
}

// The rest of an answer that broke off must not spoil the first one of the new connection.
TEST_F(MachineClientTest, HalfAnAnswerDiesWithItsConnection) {
    GetLink().Accept();
    Ask({{"speed", 100}});
    GetLink().Say("{\"ok\":");
    GetLink().Fail("cable");
    m_Loop.Advance(500);
    GetLink().Accept();
    m_Answers.clear();
    Ask({{"speed", 200}});
    GetLink().Say("{\"ok\":true}\n");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Answers, ElementsAre(R"({"ok":true})"));
}

TEST_F(MachineClientTest, NoAnswerWithinFiveSecondsIsAnErrorAndANewConnection) {
    GetLink().Accept();
    Ask({{"speed", 100}});
    m_Loop.Advance(3000);
    Ask({{"speed", 200}});
    m_Loop.Advance(1999);
    EXPECT_THAT(m_Answers, IsEmpty());
    m_Loop.Advance(1);
    EXPECT_THAT(m_Answers, testing::SizeIs(2));
    EXPECT_THAT(m_Answers[0], testing::HasSubstr("it didn't answer within 5 s"));
    EXPECT_FALSE(m_Client.IsConnected());
    m_Loop.Advance(500);
    EXPECT_THAT(m_Record.m_OpenedAt, ElementsAre(0, 5500));
}

TEST_F(MachineClientTest, AnAnswerThatIsNoObjectEndsTheConnection) {
    for (const char* pAnswer : {"nonsense\n", "[1]\n"}) {
        m_Answers.clear();
        GetLink().Accept();
        Ask({{"speed", 100}});
        GetLink().Say(pAnswer);
        m_Loop.RunPosted();
        EXPECT_THAT(m_Answers, ElementsAre(testing::HasSubstr("no JSON object")));
        EXPECT_FALSE(m_Client.IsConnected());
        m_Loop.Advance(20000);
    }
}

TEST_F(MachineClientTest, AnAnswerThatNobodyAskedForIsPassedOver) {
    GetLink().Accept();
    GetLink().Say("{\"ok\":true}\n");
    EXPECT_TRUE(m_Client.IsConnected());
    Ask({{"speed", 100}});
    GetLink().Say("{\"ok\":true,\"n\":1}\n");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Answers, ElementsAre(R"({"n":1,"ok":true})"));
}

TEST_F(MachineClientTest, MayAskAgainFromWithinAnAnswer) {
    GetLink().Accept();
    m_Client.Request({{"speed", 1}}, [this](const json&) { Ask({{"speed", 2}}); });
    GetLink().Say("{\"ok\":true}\n");
    m_Loop.RunPosted();
    EXPECT_EQ(m_Record.m_Written, "{\"speed\":1}\n{\"speed\":2}\n");
}

TEST(MachineClientDescriptionTest, OnlyTcpIsALinkToAMachine) {
    CVirtualEventLoop Loop;
    std::string Error;
    EXPECT_EQ(CMachineClient::Create("serial:/dev/ttyS0", Error), nullptr);
    EXPECT_EQ(
        Error,
        "\"serial:/dev/ttyS0\" is no link to a machine; give tcp:HOST:PORT, for example tcp:127.0.0.1:4002");
    EXPECT_EQ(CMachineClient::Create("tcp:host", Error), nullptr);
    EXPECT_THAT(Error, StartsWith("\"tcp:host\" names no host and port"));
}

/// Server and client in one process, over loopback and under the real loop.
class MachineServerTest : public testing::Test {
protected:
    static constexpr std::uint32_t PATIENCE_MS = 10000;

    void SetUp() override {
        std::string Error;
        m_pSimulator = CSimulator::Create(CRotorFile{}, MakeLinkPair().m_pFirst, {}, Error);
        ASSERT_NE(m_pSimulator, nullptr) << Error;
        m_pServer = std::make_unique<CMachineServer>(*m_pSimulator);
        ASSERT_TRUE(m_pServer->Listen("tcp:127.0.0.1:0", Error)) << Error;
    }
    /// A client that sends bytes as they are.
    void Connect(QTcpSocket& rSocket) {
        const std::string Name = m_pServer->GetName();
        const std::size_t nClients = m_pServer->GetNumberOfClients();
        rSocket.connectToHost("127.0.0.1", static_cast<quint16>(std::stoi(Name.substr(Name.rfind(':') + 1))));
        ASSERT_TRUE(m_Loop.RunUntil([&] { return m_pServer->GetNumberOfClients() > nClients; }, PATIENCE_MS));
    }
    /// Sends text and waits for so many lines.
    std::vector<std::string> Exchange(QTcpSocket& rSocket, const std::string& rText, std::size_t nLines) {
        rSocket.write(rText.data(), static_cast<qint64>(rText.size()));
        std::vector<std::string> Lines;
        m_Loop.RunUntil(
            [&] {
                while (rSocket.canReadLine()) {
                    Lines.push_back(rSocket.readLine().trimmed().toStdString());
                }
                return Lines.size() >= nLines;
            },
            PATIENCE_MS);
        return Lines;
    }

    CQtEventLoop m_Loop;
    std::unique_ptr<CSimulator> m_pSimulator;
    std::unique_ptr<CMachineServer> m_pServer;
};

TEST_F(MachineServerTest, TakesAFreePortAndTellsIt) {
    EXPECT_THAT(m_pServer->GetName(), StartsWith("tcp:127.0.0.1:"));
    EXPECT_NE(m_pServer->GetName(), "tcp:127.0.0.1:0");
}

TEST_F(MachineServerTest, ServesAClient) {
    std::string Error;
    const auto pClient = CMachineClient::Create(m_pServer->GetName(), Error);
    ASSERT_NE(pClient, nullptr) << Error;
    std::vector<json> Answers;
    const auto Note = [&](const json& rAnswer) { Answers.push_back(rAnswer); };
    pClient->Request({{"speed", 1200}}, Note);
    pClient->Request({{"dance", 1}}, Note);
    pClient->Request({{"state", json::object()}}, Note);
    ASSERT_TRUE(m_Loop.RunUntil([&] { return Answers.size() == 3; }, PATIENCE_MS));
    EXPECT_EQ(Answers[0], json({{"ok", true}}));
    EXPECT_THAT(Answers[1].value("error", ""), StartsWith("unknown field \"dance\""));
    EXPECT_EQ(Answers[2]["commanded"], 1200.0);
    EXPECT_EQ(m_pSimulator->GetSpindle().GetCommanded(), 1200.0);
}

TEST_F(MachineServerTest, ABadLineIsAnsweredAndTheConnectionGoesOn) {
    QTcpSocket Socket;
    Connect(Socket);
    EXPECT_THAT(
        Exchange(Socket, "not json\n{\"speed\": \"x\"}\n\n   \n{\"speed\":600}\r\n", 3),
        ElementsAre(
            testing::AllOf(testing::StartsWith(R"({"error":"not valid JSON: parse error at line 1, )"),
                           testing::EndsWith(R"(; send for example {\"speed\": 3000}"})")),
            R"({"error":"speed must be a number from 0 to 65535, not \"x\""})", R"({"ok":true})"));
}

TEST_F(MachineServerTest, NumbersBeyondAllBoundsAndThoseThatAreNoneAreRefused) {
    QTcpSocket Socket;
    Connect(Socket);
    EXPECT_THAT(
        Exchange(Socket, "{\"speed\": 1e999}\n{\"speed\": NaN}\n{\"speed\": -Infinity}\n{\"speed\":600}\n",
                 4),
        ElementsAre(testing::HasSubstr("number overflow"), testing::HasSubstr("not valid JSON"),
                    testing::HasSubstr("not valid JSON"), R"({"ok":true})"));
}

TEST_F(MachineServerTest, AFieldThatStandsTwiceIsRefused) {
    QTcpSocket Socket;
    Connect(Socket);
    EXPECT_THAT(
        Exchange(Socket, "{\"speed\": 1000, \"speed\": 2000}\n{\"state\": {\"x\": 1}}\n", 2),
        ElementsAre(
            R"({"error":"field \"speed\" stands twice in one object; send for example {\"speed\": 3000}"})",
            R"({"error":"unknown field \"state.x\", known here: none"})"));
}

// What a message quotes of a line stays short, whatever the line.
TEST_F(MachineServerTest, TheAnswerToALongLineIsShort) {
    QTcpSocket Socket;
    Connect(Socket);
    const std::string Digits(60000, '9');
    const std::string Text(60000, 'x');
    for (const std::string& rAnswer : Exchange(
             Socket, "{\"speed\": " + Digits + "}\n{\"speed\": \"" + Text + "\n{\"" + Text + "\": 1}\n", 3)) {
        EXPECT_LT(rAnswer.size(), 400U);
        EXPECT_THAT(rAnswer, testing::StartsWith(R"({"error":)"));
    }
}

TEST_F(MachineServerTest, AnOverlongLineIsRefusedAndTheConnectionGoesOn) {
    QTcpSocket Socket;
    Connect(Socket);
    EXPECT_THAT(
        Exchange(Socket, "{\"speed\":1}\n{\"" + std::string(100000, 'x') + "\": 1}\n{\"speed\":600}\n", 3),
        ElementsAre(R"({"ok":true})",
                    R"({"error":"the line is longer than 65536 bytes; send one short request a line"})",
                    R"({"ok":true})"));
}

TEST_F(MachineServerTest, NestingWithoutEndDoesNoHarm) {
    QTcpSocket Socket;
    Connect(Socket);
    const std::string Deep = "{\"speed\":" + std::string(30000, '[') + std::string(30000, ']') + "}\n";
    EXPECT_THAT(Exchange(Socket, Deep, 1),
                ElementsAre(R"({"error":"speed must be a number from 0 to 65535, not an array of 1"})"));
}

TEST_F(MachineServerTest, ServesSeveralClientsAndForgetsThoseThatGo) {
    auto pFirst = std::make_unique<QTcpSocket>();
    QTcpSocket Second;
    Connect(*pFirst);
    Connect(Second);
    EXPECT_THAT(Exchange(*pFirst, "{\"speed\":600}\n", 1), ElementsAre(R"({"ok":true})"));
    EXPECT_THAT(Exchange(Second, "{\"speed\":700}\n", 1), ElementsAre(R"({"ok":true})"));
    pFirst->write("{\"speed\":800}\n");  // goes without waiting for the answer
    pFirst->disconnectFromHost();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return m_pServer->GetNumberOfClients() == 1; }, PATIENCE_MS));
    EXPECT_EQ(m_pSimulator->GetSpindle().GetCommanded(), 800.0);
    EXPECT_THAT(Exchange(Second, "{\"speed\":0}\n", 1), ElementsAre(R"({"ok":true})"));
}

TEST_F(MachineServerTest, AClientComesBackWhenTheServerDoes) {
    std::string Error;
    const std::string Name = m_pServer->GetName();
    const auto pClient = CMachineClient::Create(Name, Error);
    ASSERT_TRUE(m_Loop.RunUntil([&] { return pClient->IsConnected(); }, PATIENCE_MS));
    m_pServer.reset();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return !pClient->IsConnected(); }, PATIENCE_MS));
    m_pServer = std::make_unique<CMachineServer>(*m_pSimulator);
    ASSERT_TRUE(m_pServer->Listen(Name, Error)) << Error;
    ASSERT_TRUE(m_Loop.RunUntil([&] { return pClient->IsConnected(); }, PATIENCE_MS));
}

/// Answers its first request only when told to, the others at once.
class CSlowMachine : public IFMachine {
public:
    void Request(const json& rRequest, Done OnAnswer) override {
        if (!m_Held) {
            m_Held = std::move(OnAnswer);
            return;
        }
        IFEventLoop::Current().Post([OnAnswer = std::move(OnAnswer), rRequest] { OnAnswer(rRequest); });
        ++m_nAtOnce;
    }
    Done m_Held;
    int m_nAtOnce = 0;
};

TEST(MachineServerOrderTest, AnswersComeInTheOrderOfRequests) {
    CQtEventLoop Loop;
    CSlowMachine Machine;
    CMachineServer Server(Machine);
    std::string Error;
    ASSERT_TRUE(Server.Listen("tcp:127.0.0.1:0", Error)) << Error;
    const auto pClient = CMachineClient::Create(Server.GetName(), Error);
    std::vector<std::string> Answers;
    for (int nRequest = 1; nRequest <= 3; ++nRequest) {
        pClient->Request({{"n", nRequest}}, [&](const json& rAnswer) { Answers.push_back(rAnswer.dump()); });
    }
    ASSERT_TRUE(Loop.RunUntil([&] { return Machine.m_nAtOnce == 2; }, 10000));
    Loop.Post([&] { Machine.m_Held({{"n", 1}}); });
    ASSERT_TRUE(Loop.RunUntil([&] { return Answers.size() == 3; }, 10000));
    EXPECT_THAT(Answers, ElementsAre(R"({"n":1})", R"({"n":2})", R"({"n":3})"));
}

TEST(MachineServerOrderTest, AnAnswerMayComeAfterTheServerHasGone) {
    CQtEventLoop Loop;
    CSlowMachine Machine;
    auto pServer = std::make_unique<CMachineServer>(Machine);
    std::string Error;
    ASSERT_TRUE(pServer->Listen("tcp:127.0.0.1:0", Error)) << Error;
    const auto pClient = CMachineClient::Create(pServer->GetName(), Error);
    json Answer;
    pClient->Request({{"n", 1}}, [&](const json& rAnswer) { Answer = rAnswer; });
    ASSERT_TRUE(Loop.RunUntil([&] { return static_cast<bool>(Machine.m_Held); }, 10000));
    pServer.reset();
    Machine.m_Held({{"n", 1}});
    ASSERT_TRUE(Loop.RunUntil([&] { return !Answer.is_null(); }, 10000));
    EXPECT_TRUE(Answer.contains("error"));
}

TEST(MachineServerListenTest, ABadPlaceIsRefusedWithWhatWouldBeRight) {
    CQtEventLoop Loop;
    CSlowMachine Machine;
    CMachineServer First(Machine);
    CMachineServer Second(Machine);
    std::string Error;
    for (const char* pBad : {"pty:/tmp/x", "tcp:127.0.0.1", "tcp:127.0.0.1:70000", "tcp::1", "127.0.0.1:1"}) {
        EXPECT_FALSE(First.Listen(pBad, Error));
        EXPECT_EQ(Error,
                  "\"" + std::string(pBad) +
                      "\" is no link for a machine; give tcp:HOST:PORT, for example tcp:127.0.0.1:4002");
    }
    ASSERT_TRUE(First.Listen("tcp:127.0.0.1:0", Error));
    EXPECT_FALSE(Second.Listen(First.GetName(), Error));
    EXPECT_THAT(Error, testing::HasSubstr("give an address of this machine and a free port"));
}

}  // namespace
