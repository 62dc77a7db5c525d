// The program as scripts see it: what it prints, how it ends, what it leaves behind.
#include <gmock/gmock.h>

#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/qt/qteventloop.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/system/version.h"
#include "simulator/machineclient.h"
#include "tests/support/casenames.h"
#include "tests/support/testpaths.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class SimulatorProgramTest : public testing::Test {
protected:
    static constexpr std::uint32_t PATIENCE_MS = 20000;

    ~SimulatorProgramTest() override {
        if (m_Process.state() != QProcess::NotRunning) {
            m_Process.kill();
            m_Process.waitForFinished();
        }
    }
    void Start(const std::vector<std::string>& rArguments) {
        QStringList Arguments;
        for (const std::string& rArgument : rArguments) {
            Arguments.append(QString::fromStdString(rArgument));
        }
        m_Process.start(QString::fromStdString(TestProgram("simulator")), Arguments);
    }
    /// The next line that it prints.
    std::string ReadLine() {
        m_Loop.RunUntil([this] { return m_Process.canReadLine() || HasEnded(); }, PATIENCE_MS);
        return m_Process.readLine().trimmed().toStdString();
    }
    bool HasEnded() const { return m_Process.state() == QProcess::NotRunning; }
    int End(int nSignal) {
        ::kill(static_cast<pid_t>(m_Process.processId()), nSignal);
        return GetExit();
    }
    int GetExit() {
        EXPECT_TRUE(m_Loop.RunUntil([this] { return HasEnded(); }, PATIENCE_MS));
        EXPECT_EQ(m_Process.exitStatus(), QProcess::NormalExit);
        return m_Process.exitCode();
    }
    /// What stands behind a word at the beginning of a line: "frames on ".
    static std::string After(const std::string& rLine, const std::string& rBeginning) {
        EXPECT_THAT(rLine, StartsWith(rBeginning));
        return rLine.substr(std::min(rBeginning.size(), rLine.size()));
    }

    CQtEventLoop m_Loop;
    QProcess m_Process;
};

TEST_F(SimulatorProgramTest, TellsItsPortsAndServesBothLinks) {
    Start({"--frames", "tcp:127.0.0.1:0", "--machine", "tcp:127.0.0.1:0"});
    const std::string Frames = After(ReadLine(), "frames on ");
    const std::string Machine = After(ReadLine(), "machine on ");

    std::string Error;
    const auto pClient = CMachineClient::Create(Machine, Error);
    ASSERT_NE(pClient, nullptr) << Error;
    json Answer;
    pClient->Request({{"set", {{"number", 9}}}}, [&](const json& rAnswer) { Answer = rAnswer; });
    ASSERT_TRUE(m_Loop.RunUntil([&] { return !Answer.is_null(); }, PATIENCE_MS));
    EXPECT_EQ(Answer, json({{"ok", true}}));

    const auto pLink = MakeByteLink(Frames, Error);
    ASSERT_NE(pLink, nullptr) << Error;
    std::vector<std::uint8_t> Set;
    LineDiscipline::CDecoder Decoder([&](std::span<const std::uint8_t> Frame) {
        if (Frame[0] == 0x10) {
            Set.assign(Frame.begin(), Frame.end());
        }
    });
    pLink->OnBytes = [&](std::span<const std::uint8_t> Bytes) { Decoder.Put(Bytes); };
    pLink->OnOpened = [&] {
        pLink->Write(LineDiscipline::Encode(std::vector<std::uint8_t>{0x10, 0x01, 0x05, 0x00}));
    };
    pLink->Open();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return !Set.empty(); }, PATIENCE_MS));
    EXPECT_EQ(Set, (std::vector<std::uint8_t>{0x10, 0x05, 0x01, 0x00, 0x09, 0x01, 0x00, 0x00, 0x01}));

    EXPECT_EQ(End(SIGTERM), 0);
    EXPECT_EQ(m_Process.readAllStandardError().toStdString(), "");
}

// The connection closes and none is taken; afterwards the same port takes one again.
TEST_F(SimulatorProgramTest, ACutTcpLineIsRefusedUntilItIsMended) {
    Start({"--frames", "tcp:127.0.0.1:0", "--machine", "tcp:127.0.0.1:0"});
    const std::string Frames = After(ReadLine(), "frames on ");
    std::string Error;
    const auto pClient = CMachineClient::Create(After(ReadLine(), "machine on "), Error);
    ASSERT_NE(pClient, nullptr) << Error;
    const auto pLink = MakeByteLink(Frames, Error);
    ASSERT_NE(pLink, nullptr) << Error;
    int nClosed = 0;
    pLink->OnClosed = [&nClosed](const std::string&) { ++nClosed; };
    pLink->Open();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return pLink->IsOpen(); }, PATIENCE_MS));
    const auto Cut = [&](int nMilliseconds) {
        bool bAnswered = false;
        pClient->Request({{"fault", {{"kind", "cut_ms"}, {"value", nMilliseconds}}}},
                         [&](const json& rAnswer) {
                             bAnswered = rAnswer == json({{"ok", true}});
                         });
        EXPECT_TRUE(m_Loop.RunUntil([&] { return bAnswered; }, PATIENCE_MS));
    };
    Cut(3600000);
    EXPECT_TRUE(m_Loop.RunUntil([&] { return nClosed == 1; }, PATIENCE_MS));
    pLink->Open();
    EXPECT_TRUE(m_Loop.RunUntil([&] { return nClosed == 2; }, PATIENCE_MS)) << "refused";
    Cut(0);
    pLink->Open();
    EXPECT_TRUE(m_Loop.RunUntil([&] { return pLink->IsOpen(); }, PATIENCE_MS));
}

TEST_F(SimulatorProgramTest, ACutPseudoTerminalHangsUpAndComesBackAtItsPath) {
    const QTemporaryDir Folder;
    const std::string Path = Folder.path().toStdString() + "/spindle";
    Start({"--frames", "pty:" + Path, "--machine", "tcp:127.0.0.1:0"});
    EXPECT_EQ(ReadLine(), "frames on pty:" + Path);
    std::string Error;
    const auto pClient = CMachineClient::Create(After(ReadLine(), "machine on "), Error);
    ASSERT_NE(pClient, nullptr) << Error;
    const auto pLink = MakeByteLink("serial:" + Path, Error);
    ASSERT_NE(pLink, nullptr) << Error;
    bool bClosed = false;
    pLink->OnClosed = [&bClosed](const std::string&) { bClosed = true; };
    pLink->Open();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return pLink->IsOpen(); }, PATIENCE_MS));
    pClient->Request({{"fault", {{"kind", "cut_ms"}, {"value", 300}}}}, [](const json&) {});
    EXPECT_TRUE(m_Loop.RunUntil([&] { return bClosed; }, PATIENCE_MS));
    EXPECT_TRUE(m_Loop.RunUntil([&] { return std::filesystem::is_symlink(Path); }, PATIENCE_MS));
    pLink->Open();
    EXPECT_TRUE(m_Loop.RunUntil([&] { return pLink->IsOpen(); }, PATIENCE_MS));
}

// Without a control link nobody could command a speed, so the first state that is reported is that of a ramp.
TEST_F(SimulatorProgramTest, TurnsByItselfWithoutAMachineLink) {
    Start({"--frames", "tcp:127.0.0.1:0"});
    std::string Error;
    const auto pLink = MakeByteLink(After(ReadLine(), "frames on "), Error);
    ASSERT_NE(pLink, nullptr) << Error;
    bool bTurns = false;
    LineDiscipline::CDecoder Decoder([&](std::span<const std::uint8_t> Frame) {
        bTurns = bTurns || (Frame[0] == 0x1C && Frame[3] + 256 * Frame[4] > 0);
    });
    pLink->OnBytes = [&](std::span<const std::uint8_t> Bytes) { Decoder.Put(Bytes); };
    pLink->Open();
    EXPECT_TRUE(m_Loop.RunUntil([&] { return bTurns; }, PATIENCE_MS));
}

TEST_F(SimulatorProgramTest, RemovesItsPseudoTerminalWhenInterrupted) {
    const QTemporaryDir Folder;
    for (const int nSignal : {SIGINT, SIGTERM}) {
        const std::string Path = Folder.path().toStdString() + "/spindle";
        Start({"--frames", "pty:" + Path});
        EXPECT_EQ(ReadLine(), "frames on pty:" + Path);
        EXPECT_TRUE(std::filesystem::is_symlink(Path));
        EXPECT_EQ(End(nSignal), 0);
        EXPECT_FALSE(std::filesystem::is_symlink(Path));
    }
}

TEST_F(SimulatorProgramTest, HelpIsNoError) {
    Start({"--help"});
    EXPECT_EQ(GetExit(), 0);
    EXPECT_THAT(m_Process.readAllStandardOutput().toStdString(), HasSubstr("--frames"));
}

// No link is needed for it.
TEST_F(SimulatorProgramTest, TellsItsVersion) {
    Start({"--version"});
    EXPECT_EQ(GetExit(), 0);
    EXPECT_EQ(m_Process.readAllStandardOutput().toStdString(),
              std::string("simulator ") + GetProjectVersion() + "\n");
}

struct CArgumentCase {
    std::vector<std::string> m_Arguments;
    const char* m_pError;
};
void PrintTo(const CArgumentCase& rCase, std::ostream* pStream) {
    *pStream << rCase.m_pError;
}

class SimulatorArgumentTest : public SimulatorProgramTest,
                              public testing::WithParamInterface<CArgumentCase> {};

TEST_P(SimulatorArgumentTest, EndsWithThreeAndOneLineThatTellsWhatIsWrong) {
    Start(GetParam().m_Arguments);
    EXPECT_EQ(GetExit(), 3);
    EXPECT_EQ(m_Process.readAllStandardOutput().toStdString(), "");
    const std::string Error = m_Process.readAllStandardError().toStdString();
    EXPECT_THAT(Error, StartsWith(std::string("simulator: ") + GetParam().m_pError));
    EXPECT_EQ(Error.find('\n'), Error.size() - 1) << Error;
}

INSTANTIATE_TEST_SUITE_P(
    Bad, SimulatorArgumentTest,
    testing::Values(
        CArgumentCase{{}, "--frames is required"},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--colour"}, "The following argument was not expected"},
        CArgumentCase{{"--frames", "udp:1"}, "--frames \"udp:1\" is no link to listen on"},
        CArgumentCase{{"--frames", "tcp:192.0.2.1:1"}, "--frames tcp:192.0.2.1:1 can't be opened: "},
        CArgumentCase{{"--frames", "pty:/nowhere/x"}, "--frames pty:/nowhere/x can't be opened: "},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--machine", "pty:/x"},
                      "--machine pty:/x can't be opened: "},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--rotor", "/nowhere.json"},
                      "--rotor /nowhere.json: can't be read"},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--modules", "falcon"},
                      "--modules must be one of kestrel, kestrel-pair, lanner"},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--addresses", "5,5"},
                      "addresses: give one module address"},
        CArgumentCase{{"--frames", "tcp:127.0.0.1:0", "--addresses", "x"}, "Could not convert"}),
    CaseNames::BY_TEXT);

}  // namespace
