// The console against the simulator in a process of its own, in real time: once over TCP, once over a pseudo
// terminal that serves as the serial port. Both run side by side, since each takes its twenty seconds.
#include <gtest/gtest.h>

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "tests/support/jsonschema.h"
#include "tests/support/testpaths.h"

namespace {

constexpr int READY_TIMEOUT = 30000;
constexpr int RUN_TIMEOUT = 240000;

QString GetProgram(const char* pName) {
    return QString::fromStdString(TestProgram(pName));
}

/// A simulator and a console that balances its rotor.
class CPair {
public:
    CPair(const QString& rFrames, QString (*pMakeLink)(const QString& rReadyLine)) {
        const QString Rotor = m_Directory.filePath("rotor.json");
        // A spindle that is quick to turn; everything else as built in.
        std::ofstream(Rotor.toStdString()) << R"({"ramp_rpm_per_s": 6000})";
        QString Frames = rFrames;
        Frames.replace("DIR", m_Directory.path());
        m_Simulator.start(GetProgram("simulator"),
                          {"--frames", Frames, "--machine", "tcp:127.0.0.1:0", "--rotor", Rotor});
        QString FramesLine;
        QString MachineLine;
        while (FramesLine.isEmpty() || MachineLine.isEmpty()) {
            if (!m_Simulator.canReadLine() && !m_Simulator.waitForReadyRead(READY_TIMEOUT)) {
                ADD_FAILURE() << "the simulator isn't ready: "
                              << m_Simulator.readAllStandardError().toStdString();
                return;
            }
            const QString Line = QString::fromUtf8(m_Simulator.readLine()).trimmed();
            if (Line.startsWith("frames on ")) {
                FramesLine = Line.mid(10);
            } else if (Line.startsWith("machine on ")) {
                MachineLine = Line.mid(11);
            }
        }
        m_Console.start(GetProgram("console"), {"--headless", "--link", pMakeLink(FramesLine), "--machine",
                                                MachineLine, "--config-dir", m_Directory.filePath("root"),
                                                "--report", m_Directory.filePath("report.json")});
    }
    ~CPair() {
        m_Console.kill();
        m_Console.waitForFinished();
        m_Simulator.terminate();
        m_Simulator.waitForFinished();
    }

    void ExpectBalanced() {
        ASSERT_TRUE(m_Console.waitForFinished(RUN_TIMEOUT)) << m_Console.readAll().toStdString();
        EXPECT_EQ(m_Console.exitCode(), 0)
            << m_Console.readAll().toStdString() << m_Console.readAllStandardError().toStdString();
        std::ifstream In(m_Directory.filePath("report.json").toStdString());
        const auto Report = nlohmann::json::parse(In, nullptr, false);
        ASSERT_TRUE(Report.is_object());
        EXPECT_EQ(CheckReport(Report), "");
        EXPECT_EQ(Report["result"], "SetupSuccess");
        EXPECT_TRUE(Report["assertions"].empty()) << Report["assertions"];
    }

private:
    QTemporaryDir m_Directory;
    QProcess m_Simulator;
    QProcess m_Console;
};

}  // namespace

TEST(RealTime, BalancesOverTcpAndOverAPseudoTerminal) {
    CPair Tcp("tcp:127.0.0.1:0", [](const QString& rReady) { return rReady; });
    CPair Serial("pty:DIR/module",
                 [](const QString& rReady) { return QString(rReady).replace("pty:", "serial:"); });
    Tcp.ExpectBalanced();
    Serial.ExpectBalanced();
}

namespace {

/// Exit status and the lines on stderr of a console that is not to begin.
void ExpectRefused(const QStringList& rArguments, const char* pPart) {
    QProcess Console;
    Console.start(GetProgram("console"), rArguments);
    ASSERT_TRUE(Console.waitForFinished(READY_TIMEOUT));
    EXPECT_EQ(Console.exitCode(), 3) << rArguments.join(' ').toStdString();
    const QString Error = QString::fromUtf8(Console.readAllStandardError());
    EXPECT_EQ(Error.count('\n'), 1) << "one line: " << Error.toStdString();
    EXPECT_TRUE(Error.contains(pPart)) << Error.toStdString();
}

}  // namespace

TEST(CommandLine, BadInputGivesOneLineAndStatusThree) {
    QTemporaryDir Directory;
    const auto MakeRotor = [&Directory](const char* pText) {
        const QString File = Directory.filePath("rotor.json");
        std::ofstream(File.toStdString()) << pText;
        return File;
    };
    ExpectRefused({"--headless", "--speed", "3000"}, "--speed");
    ExpectRefused({"--headless", "--rotor", "/nonexistent/rotor.json"}, "/nonexistent/rotor.json");
    ExpectRefused({"--headless", "--rotor", MakeRotor(R"({"colour": "red"})")}, "colour");
    ExpectRefused({"--headless", "--rotor", MakeRotor(R"({"speed_rpm": "fast"})")}, "speed_rpm");
    ExpectRefused({"--headless", "--rotor", MakeRotor("{")}, "rotor.json");
    ExpectRefused({"--headless", "--link", "serial:/dev/no-such-port"}, "/dev/no-such-port");
    ExpectRefused({"--headless", "--link", "tcp:127.0.0.1:1"}, "127.0.0.1:1");
    ExpectRefused({"--headless", "--link", "tcp:127.0.0.1"}, "names no host and port");
    ExpectRefused({"--headless", "--report", "/nonexistent/report.json"}, "/nonexistent/report.json");
    ExpectRefused({"--headless", "--config-dir", "/proc/here"}, "/proc/here");
}
