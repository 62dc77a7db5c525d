// The console as scripts and the system see it: how it ends when it is told to, what it leaves behind, who
// else may work beside it.
#include <gmock/gmock.h>
#include <signal.h>

#include <QProcess>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/qt/qteventloop.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Far more than anything here needs, also on a machine with much else to do.
constexpr std::uint32_t TIMEOUT = 120000;

/// A console with a place for temporary files of its own, ended with the test.
class CConsoleProgram {
public:
    explicit CConsoleProgram(const QStringList& rArguments, const fs::path& rPlace = {}) {
        m_Place = rPlace.empty() ? m_Directory.GetPath() / "tmp" : rPlace;
        fs::create_directories(m_Place);
        QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
        Environment.insert("TMPDIR", QString::fromStdString(m_Place.string()));
        Environment.insert("XDG_DATA_HOME", QString::fromStdString(m_Directory.At("data")));
        Environment.insert("QT_QPA_PLATFORM", "offscreen");
        Environment.remove("XDG_RUNTIME_DIR");
        m_Process.setProcessEnvironment(Environment);
        m_Process.start(QString::fromStdString(TestProgram("console")),
                        rArguments + QStringList{"--report", QString::fromStdString(GetReportFile())});
    }
    ~CConsoleProgram() {
        m_Process.kill();
        m_Process.waitForFinished();
    }

    bool WaitForOutput(const std::string& rText) {
        return IFEventLoop::Current().RunUntil(
                   [&] {
                       m_Output += m_Process.readAllStandardOutput().toStdString();
                       return m_Output.find(rText) != std::string::npos || HasEnded();
                   },
                   TIMEOUT) &&
               m_Output.find(rText) != std::string::npos;
    }
    bool HasEnded() const { return m_Process.state() == QProcess::NotRunning; }
    void Signal(int nSignal) { ::kill(static_cast<pid_t>(m_Process.processId()), nSignal); }
    /// -1 if it was killed, or doesn't end.
    int WaitForExit() {
        EXPECT_TRUE(IFEventLoop::Current().RunUntil([this] { return HasEnded(); }, TIMEOUT));
        m_Output += m_Process.readAllStandardOutput().toStdString();
        return m_Process.exitStatus() == QProcess::NormalExit ? m_Process.exitCode() : -1;
    }
    std::string ReadErrors() { return m_Process.readAllStandardError().toStdString(); }
    const std::string& GetOutput() const { return m_Output; }
    qint64 GetPid() const { return m_Process.processId(); }
    json ReadReport() const {
        std::ifstream In(GetReportFile());
        return json::parse(In, nullptr, false);
    }
    std::vector<std::string> ListPlace() const {
        std::vector<std::string> Names;
        for (const auto& rEntry : fs::directory_iterator(m_Place)) {
            Names.push_back(rEntry.path().filename().string());
        }
        return Names;
    }

private:
    std::string GetReportFile() const { return m_Directory.At("report.json"); }

    CTempDirectory m_Directory;
    fs::path m_Place;
    QProcess m_Process;
    std::string m_Output;
};

class ConsoleProgramTest : public testing::Test {
protected:
    // Files are looked at now and then: the loop would wait for an event.
    ConsoleProgramTest() {
        constexpr std::uint32_t LOOK_PERIOD = 20;
        m_Loop.SetTimer(LOOK_PERIOD, [](std::uint32_t) {});
    }

    CQtEventLoop m_Loop;
};

class ConsoleSignalTest : public ConsoleProgramTest,
                          public testing::WithParamInterface<std::pair<int, const char*>> {};

/// Real time, so that there is something to break off.
const QStringList SLOW_RUN = {"--headless", "--real-time"};

}  // namespace

TEST_P(ConsoleSignalTest, ARunIsBrokenOffInOrder) {
    CConsoleProgram Console(SLOW_RUN);
    ASSERT_TRUE(Console.WaitForOutput("step 1/11")) << Console.GetOutput() << Console.ReadErrors();
    EXPECT_FALSE(Console.ListPlace().empty()) << "the installation of the run";
    Console.Signal(GetParam().first);
    EXPECT_EQ(Console.WaitForExit(), 2);
    EXPECT_THAT(Console.GetOutput(), HasSubstr(std::string("broken off by ") + GetParam().second));
    EXPECT_THAT(Console.ListPlace(), IsEmpty());
    const json Report = Console.ReadReport();
    ASSERT_TRUE(Report.is_object());
    EXPECT_EQ(Report["exit"], 2);
    EXPECT_EQ(Report["result"], "Setup");
    EXPECT_THAT(Report["steps"], testing::Not(IsEmpty()));
    EXPECT_THAT(Report["final"], IsEmpty());
    EXPECT_THAT(Report["inv_a"], IsEmpty());
    EXPECT_THAT(Report["assertions"], IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, ConsoleSignalTest,
                         testing::Values(std::pair{SIGINT, "SIGINT"}, std::pair{SIGTERM, "SIGTERM"},
                                         std::pair{SIGHUP, "SIGHUP"}),
                         [](const auto& rInfo) { return rInfo.param.second; });

/// The module on the line has another address than the one asked.
TEST_F(ConsoleProgramTest, BrokenOffWhileTheModuleIsAwaitedItEndsTheSameWay) {
    CTempDirectory Directory;
    QProcess Simulator;
    const QString Rotor = QString::fromStdString(Directory.At("rotor.json"));
    std::ofstream(Rotor.toStdString()) << "{}";
    Simulator.start(QString::fromStdString(TestProgram("simulator")),
                    {"--frames", "tcp:127.0.0.1:0", "--rotor", Rotor, "--addresses", "77"});
    ASSERT_TRUE(m_Loop.RunUntil([&] { return Simulator.canReadLine(); }, TIMEOUT));
    const QString Link = QString::fromUtf8(Simulator.readLine()).trimmed().remove("frames on ");
    CConsoleProgram Console({"--headless", "--link", Link});
    // Asks address 5 by now, or will in a moment: broken off either way.
    ASSERT_TRUE(m_Loop.RunUntil([&] { return Console.ReadReport().is_object(); }, TIMEOUT));
    Console.Signal(SIGTERM);
    EXPECT_EQ(Console.WaitForExit(), 2);
    EXPECT_THAT(Console.ReadErrors(), HasSubstr("Broken off by SIGTERM"));
    EXPECT_THAT(Console.ListPlace(), IsEmpty());
    EXPECT_EQ(Console.ReadReport()["result"], "Inactive");
    EXPECT_EQ(Console.ReadReport()["exit"], 2);
    Simulator.terminate();
    Simulator.waitForFinished();
}

TEST_F(ConsoleProgramTest, WhatAKilledConsoleLeavesIsRemovedAtTheNextStart) {
    const CTempDirectory Place;
    const auto CountEntries = [&Place] {
        return std::distance(fs::directory_iterator(Place.GetPath()), fs::directory_iterator());
    };
    CConsoleProgram Working(SLOW_RUN, Place.GetPath());
    ASSERT_TRUE(Working.WaitForOutput("step 1/11")) << Working.ReadErrors();
    const auto nOfOne = CountEntries();
    CConsoleProgram Killed(SLOW_RUN, Place.GetPath());
    ASSERT_TRUE(Killed.WaitForOutput("step 1/11")) << Killed.ReadErrors();
    Killed.Signal(SIGKILL);
    Killed.WaitForExit();
    EXPECT_EQ(CountEntries(), 2 * nOfOne);
    CConsoleProgram Next({"--headless"}, Place.GetPath());
    EXPECT_EQ(Next.WaitForExit(), 0) << Next.ReadErrors();
    EXPECT_EQ(CountEntries(), nOfOne) << "and nothing of the one that still works";
    Working.Signal(SIGTERM);
    EXPECT_EQ(Working.WaitForExit(), 2);
    EXPECT_EQ(CountEntries(), 0);
}

TEST_F(ConsoleProgramTest, ASecondConsoleInTheSameInstallationIsRefused) {
    const CTempDirectory Directory;
    const QStringList Root{"--config-dir", QString::fromStdString(Directory.At("root"))};
    CConsoleProgram First(SLOW_RUN + Root);
    ASSERT_TRUE(First.WaitForOutput("step 1/11")) << First.ReadErrors();
    CConsoleProgram Second(QStringList{"--headless"} + Root);
    EXPECT_EQ(Second.WaitForExit(), 3);
    EXPECT_THAT(Second.ReadErrors(),
                HasSubstr("another console (process " + std::to_string(First.GetPid()) + ") works in"));
    // The lock ends with the process, however that ends.
    First.Signal(SIGKILL);
    First.WaitForExit();
    CConsoleProgram Third(QStringList{"--headless"} + Root);
    EXPECT_EQ(Third.WaitForExit(), 0) << Third.ReadErrors();
}

TEST_F(ConsoleProgramTest, TheWindowWithItsRunIsBrokenOffInOrder) {
    const CTempDirectory Pictures;
    CConsoleProgram Console(
        {"--procedure", "prebalance", "--screenshots", QString::fromStdString(Pictures.GetPath().string())});
    // The first picture tells that the run has begun.
    ASSERT_TRUE(
        m_Loop.RunUntil([&] { return !fs::is_empty(Pictures.GetPath()) || Console.HasEnded(); }, TIMEOUT));
    ASSERT_FALSE(Console.HasEnded()) << Console.ReadErrors();
    Console.Signal(SIGTERM);
    EXPECT_EQ(Console.WaitForExit(), 2);
    EXPECT_THAT(Console.ListPlace(), IsEmpty());
    const json Report = Console.ReadReport();
    ASSERT_TRUE(Report.is_object());
    EXPECT_EQ(Report["exit"], 2);
    EXPECT_EQ(Report["result"], "Setup");
}
