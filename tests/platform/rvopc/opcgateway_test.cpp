// The gateway's process and its socket, with a real program that does as it is told.
#include "platform/rvopc/opcgateway.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QLocalSocket>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/qt/qteventloop.h"
#include "tests/support/logcapture.h"
#include "tests/support/scopedenvironment.h"
#include "tests/support/tempdirectory.h"

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint32_t LONG = 240000;  ///< ms; a test that waits so long has failed, on a busy machine too
constexpr COpcGatewayTimes IMPATIENT{.m_Ping = 50, .m_Silence = 2000, .m_Sound = 10000};

class COpcGatewayTest : public testing::Test {
protected:
    COpcGatewayTest() : m_RuntimeDirectory("XDG_RUNTIME_DIR", m_Directory.GetPath().string()) {}

    void Make(const std::string& rProgram, const COpcGatewayTimes& rTimes = {}) {
        m_pGateway = MakeOpcGateway(rProgram, rTimes);
        m_pGateway->OnOpened = [this] {
            ++m_nOpened;
            m_OpenedAt.push_back(m_Loop.Now());
            if (!m_AtFirst.empty()) {
                m_pGateway->SendLine(m_AtFirst);
            }
        };
        m_pGateway->OnLine = [this](const std::string& rLine) {
            if (rLine.starts_with("hello ")) {
                m_Pids.push_back(std::stoi(rLine.substr(6)));
            } else {
                m_Lines.push_back(rLine);
            }
        };
        m_pGateway->OnLost = [this](const std::string& rWhy) { m_Lost.push_back(rWhy); };
        m_pGateway->Start();
    }
    static std::string GetObedient() {
        return QCoreApplication::applicationDirPath().toStdString() + "/obedientgateway";
    }
    void MakeObedient(const COpcGatewayTimes& rTimes = {}) { Make(GetObedient(), rTimes); }
    /// Until so many gateways have said hello.
    bool RunUntilGateways(std::size_t nCount) {
        return m_Loop.RunUntil([&] { return m_Pids.size() >= nCount; }, LONG);
    }
    bool RunUntilLost(std::size_t nCount) {
        return m_Loop.RunUntil([&] { return m_Lost.size() >= nCount; }, LONG);
    }
    static bool IsAlive(int Pid) { return kill(Pid, 0) == 0; }
    static unsigned GetMode(const std::filesystem::path& rPath) {
        struct stat Status {};
        EXPECT_EQ(stat(rPath.c_str(), &Status), 0) << rPath;
        return Status.st_mode & 07777U;
    }
    /// The directory of the socket: the only thing in the runtime directory.
    std::filesystem::path GetSocketDirectory() const {
        std::vector<std::filesystem::path> Paths;
        for (const auto& rEntry : std::filesystem::directory_iterator(m_Directory.GetPath())) {
            Paths.push_back(rEntry.path());
        }
        EXPECT_THAT(Paths, SizeIs(1));
        return Paths.empty() ? std::filesystem::path() : Paths.front();
    }

    CTempDirectory m_Directory;
    CScopedEnvironment m_RuntimeDirectory;
    CQtEventLoop m_Loop;
    CLogCapture m_Log{true};
    std::string m_AtFirst;  ///< sent to each new gateway
    int m_nOpened = 0;
    std::vector<std::uint64_t> m_OpenedAt;
    std::vector<int> m_Pids;
    std::vector<std::string> m_Lines;
    std::vector<std::string> m_Lost;
    std::unique_ptr<IFOpcGateway> m_pGateway;
};

TEST_F(COpcGatewayTest, TheProgramIsStartedWithTheSocketAndLinesGoBothWays) {
    MakeObedient();
    EXPECT_FALSE(m_pGateway->SendLine("say too early"));
    ASSERT_TRUE(RunUntilGateways(1));
    EXPECT_EQ(m_nOpened, 1);
    EXPECT_TRUE(m_pGateway->SendLine("say one"));
    EXPECT_TRUE(m_pGateway->SendLine("say two"));
    EXPECT_TRUE(m_Loop.RunUntil([&] { return m_Lines.size() == 2; }, LONG));
    EXPECT_THAT(m_Lines, ElementsAre("one", "two"));
    EXPECT_THAT(m_Lost, IsEmpty());
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(COpcGatewayTest, OnlyThisUserCanReachTheSocket) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    const std::filesystem::path Directory = GetSocketDirectory();
    EXPECT_EQ(GetMode(Directory), 0700U);
    EXPECT_EQ(GetMode(Directory / "gateway") & 077U, 0U);
}

TEST_F(COpcGatewayTest, TheSocketGoesWithTheObject) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway.reset();
    EXPECT_TRUE(std::filesystem::is_empty(m_Directory.GetPath()));
}

TEST_F(COpcGatewayTest, ASecondConnectionIsRefusedAndTheFirstGoesOn) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    QLocalSocket Intruder;
    bool bThrownOut = false;
    QObject::connect(&Intruder, &QLocalSocket::disconnected, [&] { bThrownOut = true; });
    Intruder.connectToServer(QString::fromStdString((GetSocketDirectory() / "gateway").string()));
    ASSERT_TRUE(Intruder.waitForConnected());
    EXPECT_TRUE(m_Loop.RunUntil([&] { return bThrownOut; }, LONG));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre(HasSubstr("refused")));
    m_pGateway->SendLine("say still here");
    EXPECT_TRUE(m_Loop.RunUntil([&] { return !m_Lines.empty(); }, LONG));
    EXPECT_EQ(m_nOpened, 1);
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, AKilledOneIsToldAndReplaced) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    kill(m_Pids.front(), SIGKILL);
    ASSERT_TRUE(RunUntilGateways(2));
    EXPECT_THAT(m_Lost, SizeIs(1));
    EXPECT_EQ(m_nOpened, 2);
    EXPECT_NE(m_Pids[0], m_Pids[1]);
    EXPECT_FALSE(IsAlive(m_Pids[0]));
    m_pGateway->SendLine("say new");
    EXPECT_TRUE(m_Loop.RunUntil([&] { return !m_Lines.empty(); }, LONG));
}

TEST_F(COpcGatewayTest, TheLastWordsOfOneThatEndsAreTaken) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway->SendLine("say why");
    m_pGateway->SendLine("exit 3");
    ASSERT_TRUE(RunUntilLost(1));
    EXPECT_THAT(m_Lines, ElementsAre("why"));
}

TEST_F(COpcGatewayTest, OneThatEndsAfterAnOverlongLineIsLostOnce) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway->SendLine("say " + std::string(70000, 'x'));
    m_pGateway->SendLine("exit 3");
    ASSERT_TRUE(RunUntilGateways(2));
    EXPECT_THAT(m_Lost, SizeIs(1));
}

// Not before 0.5 s and 1 s: a gateway that can't do its work must not keep the machine busy.
TEST_F(COpcGatewayTest, OneThatEndsByItselfIsReplacedAfterGrowingPauses) {
    m_AtFirst = "exit 3";
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(3));
    EXPECT_GE(m_OpenedAt[1] - m_OpenedAt[0], 500U);
    EXPECT_GE(m_OpenedAt[2] - m_OpenedAt[1], 1000U);
}

// Each counts as sound before it ends. Otherwise the last pause would be 8 s.
TEST_F(COpcGatewayTest, AfterOneThatServedWellThePauseIsTheShortest) {
    MakeObedient({.m_Sound = 0});
    std::uint64_t LostAt = 0;
    for (std::size_t n = 1; n <= 5; ++n) {
        ASSERT_TRUE(RunUntilGateways(n));
        m_pGateway->SendLine("exit 0");
        ASSERT_TRUE(RunUntilLost(n));
        LostAt = m_Loop.Now();
    }
    ASSERT_TRUE(RunUntilGateways(6));
    EXPECT_LT(m_OpenedAt.back() - LostAt, 8000U);
}

TEST_F(COpcGatewayTest, ASilentOneIsReplaced) {
    m_AtFirst = "hush";
    MakeObedient(IMPATIENT);
    ASSERT_TRUE(RunUntilGateways(2));
    EXPECT_THAT(m_Lost, Contains("it doesn't answer"));
    EXPECT_FALSE(IsAlive(m_Pids[0]));
}

/// A program that loads for longer than a running one may be silent is on its way, not dead.
TEST_F(COpcGatewayTest, OneThatTakesLongToStartIsWaitedFor) {
    const CTempDirectory Programs;
    const std::string Slow = (Programs.GetPath() / "slow").string();
    std::ofstream(Slow) << "#!/bin/sh\nsleep 1\nexec '" << GetObedient() << "' \"$1\"\n";
    std::filesystem::permissions(Slow, std::filesystem::perms::owner_all);
    Make(Slow, {.m_Ping = 50, .m_Silence = 200, .m_Start = LONG});
    ASSERT_TRUE(RunUntilGateways(1));
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, OneThatNeverStartsIsReplaced) {
    const CTempDirectory Programs;
    const std::string Stuck = (Programs.GetPath() / "stuck").string();
    std::ofstream(Stuck) << "#!/bin/sh\nexec sleep 1000\n";
    std::filesystem::permissions(Stuck, std::filesystem::perms::owner_all);
    Make(Stuck, {.m_Ping = 50, .m_Silence = LONG, .m_Start = 200});
    ASSERT_TRUE(RunUntilLost(2));
    EXPECT_THAT(m_Lost, Each("it doesn't answer"));
}

/// What it answered while this process stood still counts, however late it is read.
TEST_F(COpcGatewayTest, AStandstillOfOursIsNotItsSilence) {
    MakeObedient({.m_Ping = 50, .m_Silence = 400});
    ASSERT_TRUE(RunUntilGateways(1));
    for (int i = 0; i < 3; ++i) {
        m_Loop.Sleep(600);
        const std::size_t nLines = m_Lines.size();
        ASSERT_TRUE(m_Loop.RunUntil([&] { return m_Lines.size() > nLines; }, LONG));
    }
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, OneThatAnswersPingsIsKept) {
    MakeObedient(IMPATIENT);
    ASSERT_TRUE(RunUntilGateways(1));
    const auto IsPong = [](const std::string& rLine) { return rLine == "pong"; };
    // So many pings take longer than silence would be borne.
    EXPECT_TRUE(m_Loop.RunUntil([&] { return std::ranges::count_if(m_Lines, IsPong) >= 50; }, LONG));
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, OneThatSendsAnOverlongLineIsReplacedAndNothingMoreOfItIsTaken) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway->SendLine("say " + std::string(70000, 'x'));
    m_pGateway->SendLine("say after it");
    ASSERT_TRUE(RunUntilGateways(2));
    EXPECT_THAT(m_Lost, ElementsAre("it sent an overlong line"));
    EXPECT_THAT(m_Lines, IsEmpty());
}

TEST_F(COpcGatewayTest, AMissingProgramIsOneWarningAndToldAtEachAttempt) {
    Make("/nonexistent/gateway");
    ASSERT_TRUE(RunUntilLost(2));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre(HasSubstr("/nonexistent/gateway can't be started")));
    EXPECT_EQ(m_nOpened, 0);
    EXPECT_FALSE(m_pGateway->SendLine("say anything"));
}

TEST_F(COpcGatewayTest, AProgramThatEndsWithoutConnectingIsOneWarning) {
    Make("/bin/false");
    ASSERT_TRUE(RunUntilLost(2));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre(HasSubstr("it ended with status 1")));
}

TEST_F(COpcGatewayTest, WaitReturnsWhenALineCame) {
    MakeObedient();
    // The first one while the program is still starting; nothing but Wait runs.
    EXPECT_TRUE(m_pGateway->Wait(LONG));
    EXPECT_THAT(m_Pids, SizeIs(1));
    m_pGateway->SendLine("say one");
    EXPECT_TRUE(m_pGateway->Wait(LONG));
    EXPECT_THAT(m_Lines, ElementsAre("one"));
    EXPECT_LT(m_Loop.Now(), LONG);
}

TEST_F(COpcGatewayTest, WaitGivesUpWhenNothingComes) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    const std::uint64_t Begin = m_Loop.Now();
    EXPECT_FALSE(m_pGateway->Wait(60));
    EXPECT_GE(m_Loop.Now() - Begin, 55U);
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, WaitEndsWithTheGateway) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway->SendLine("exit 0");
    EXPECT_FALSE(m_pGateway->Wait(LONG));
    EXPECT_LT(m_Loop.Now(), LONG);
    EXPECT_THAT(m_Lost, SizeIs(1));
    // Until another one is started nothing can come.
    EXPECT_FALSE(m_pGateway->Wait(LONG));
    EXPECT_LT(m_Loop.Now(), LONG);
    EXPECT_TRUE(RunUntilGateways(2));
}

TEST_F(COpcGatewayTest, TheProcessEndsWithTheObject) {
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway.reset();
    EXPECT_FALSE(IsAlive(m_Pids.front()));
    EXPECT_THAT(m_Lost, IsEmpty());
}

TEST_F(COpcGatewayTest, AHangingProcessEndsWithTheObjectToo) {
    m_AtFirst = "hush";
    MakeObedient();
    ASSERT_TRUE(RunUntilGateways(1));
    m_pGateway.reset();
    EXPECT_FALSE(IsAlive(m_Pids.front()));
}

TEST_F(COpcGatewayTest, TheObjectMayGoDuringAPause) {
    Make("/nonexistent/gateway");
    ASSERT_TRUE(RunUntilLost(1));
    m_pGateway.reset();
    EXPECT_FALSE(m_Loop.RunUntil([&] { return m_Lost.size() > 1; }, 0));
}

}  // namespace
