// Commands that other programs carry out: the console finds these beside itself, and they take its place.
#include <gtest/gtest.h>

#include <QProcess>
#include <string>

#include "platform/system/version.h"
#include "tests/support/testpaths.h"

namespace {

constexpr int TIMEOUT = 60000;

/// What the console prints, run under that name; with status 0, or else nothing.
std::string RunAs(const QString& rName, const QStringList& rArguments) {
    QProcess Process;
    Process.start("bash", QStringList{"-c", R"(name=$1; shift; exec -a "$name" "$0" "$@")",
                                      QString::fromStdString(TestProgram("console")), rName} +
                              rArguments);
    const bool bDone = Process.waitForFinished(TIMEOUT) && Process.exitStatus() == QProcess::NormalExit &&
                       Process.exitCode() == 0;
    return bDone ? Process.readAllStandardOutput().toStdString() : "";
}

}  // namespace

TEST(ProgramCommandsTest, TheSimulatorIsStarted) {
    EXPECT_EQ(RunAs("run", {"simulator", "--version"}),
              std::string("simulator ") + GetProjectVersion() + "\n");
}

TEST(ProgramCommandsTest, TheNcSimulatorIsStarted) {
    EXPECT_EQ(RunAs("run", {"nc", "--version"}), std::string("nc-simulator ") + GetProjectVersion() + "\n");
}

TEST(ProgramCommandsTest, TheExitStatusIsTheirs) {
    QProcess Process;
    Process.start(QString::fromStdString(TestProgram("console")), {"simulator", "--frames", "nonsense"});
    ASSERT_TRUE(Process.waitForFinished(TIMEOUT));
    EXPECT_EQ(Process.exitCode(), 3);
}

TEST(ProgramCommandsTest, HelpCallsTheProgramWhatItWasCalledAs) {
    EXPECT_NE(RunAs("/usr/bin/rotor-trim", {"--help"}).find("\n  rotor-trim archive  "), std::string::npos);
    EXPECT_NE(RunAs("./run", {"--help"}).find("\nUsage: run [OPTIONS]\n"), std::string::npos);
    EXPECT_NE(RunAs("/usr/bin/rotor-trim", {"backup", "--help"}).find("\nUsage: rotor-trim backup "),
              std::string::npos);
    EXPECT_NE(RunAs("rotor-trim", {"simulator", "--help"}).find("\nUsage: rotor-trim simulator "),
              std::string::npos);
}

TEST(ProgramCommandsTest, HelpListsEveryCommand) {
    const std::string Help = RunAs("run", {"--help"});
    for (const char* const pCommand : {"archive", "backup", "restore", "service-bundle", "simulator", "nc"}) {
        EXPECT_NE(Help.find(std::string("\n  run ") + pCommand + " "), std::string::npos) << pCommand;
    }
}
