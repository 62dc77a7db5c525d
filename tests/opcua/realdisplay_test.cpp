// The program with its window on a real display: an NC plays a whole run on it, as it does without one.
#include <gmock/gmock.h>
#include <signal.h>

#include <QProcess>
#include <QTemporaryDir>
#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/qt/qteventloop.h"
#include "tests/opcua/children.h"
#include "tests/opcua/ncserver.h"
#include "tests/support/testpaths.h"

using nlohmann::json;

namespace {

/// Ten times what the run takes on a quiet machine.
constexpr std::uint32_t RUN_TIMEOUT = 400000;

/// A display of its own, so that none has to be there and nobody's is used.
class CDisplay {
public:
    CDisplay() {
        EndWithUs(m_Server);
        // It chooses a number that is free, and tells it.
        m_Server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"});
        while (!m_Server.canReadLine() && m_Server.waitForReadyRead(CNcServer::PATIENCE)) {
        }
        m_Name = ":" + QString::fromUtf8(m_Server.readLine()).trimmed();
    }
    ~CDisplay() {
        m_Server.terminate();
        if (!m_Server.waitForFinished(CNcServer::PATIENCE)) {
            m_Server.kill();
            m_Server.waitForFinished(CNcServer::PATIENCE);
        }
    }
    const QString& GetName() const { return m_Name; }

private:
    QProcess m_Server;
    QString m_Name;
};

class RealDisplayTest : public testing::Test {
protected:
    // Files are looked at now and then: the loop would wait for an event.
    RealDisplayTest() {
        constexpr std::uint32_t LOOK_PERIOD = 50;
        m_Loop.SetTimer(LOOK_PERIOD, [](std::uint32_t) {});
    }
    ~RealDisplayTest() override {
        m_Console.kill();
        m_Console.waitForFinished(CNcServer::PATIENCE);
    }

    void Start(const QStringList& rArguments) {
        QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
        Environment.insert("DISPLAY", m_Display.GetName());
        Environment.insert("QT_QPA_PLATFORM", "xcb");
        Environment.remove("WAYLAND_DISPLAY");
        m_Console.setProcessEnvironment(Environment);
        m_Console.setProcessChannelMode(QProcess::MergedChannels);
        EndWithUs(m_Console);
        std::ofstream(GetFile("rotor.json")) << R"({"ramp_rpm_per_s": 100000})";
        m_Console.start(
            QString::fromStdString(TestProgram("console")),
            QStringList{"--full-screen", "--rotor", m_Directory.filePath("rotor.json"), "--config-dir",
                        m_Directory.filePath("root"), "--report", m_Directory.filePath("report.json")} +
                rArguments);
    }
    std::string GetFile(const char* pName) const { return m_Directory.filePath(pName).toStdString(); }
    json ReadReport() const {
        std::ifstream In(GetFile("report.json"));
        return json::parse(In, nullptr, false);
    }
    bool HasEnded() const { return m_Console.state() == QProcess::NotRunning; }

    CQtEventLoop m_Loop;
    QTemporaryDir m_Directory;
    CDisplay m_Display;
    QProcess m_Console;
};

}  // namespace

TEST_F(RealDisplayTest, AWholeRunIsPlayedInTheWindowWhichEndsWhenItIsTold) {
    ASSERT_NE(m_Display.GetName(), ":") << "no Xvfb";
    Start({"--nc", "opcua", "--language", "de"});
    const auto IsFinished = [this] {
        const json Report = ReadReport();  // written in one go at the end, but read at any moment
        return Report.is_object() && Report["result"] == "SetupSuccess";
    };
    m_Loop.RunUntil([&] { return IsFinished() || HasEnded(); }, RUN_TIMEOUT);
    ASSERT_FALSE(HasEnded()) << m_Console.readAll().toStdString();
    ASSERT_TRUE(IsFinished()) << m_Console.readAll().toStdString();
    EXPECT_EQ(ReadReport()["exit"], 0);
    EXPECT_TRUE(ReadReport()["assertions"].empty()) << ReadReport()["assertions"];
    const std::set<int> Children = FindChildren(static_cast<int>(m_Console.processId()));
    ::kill(static_cast<pid_t>(m_Console.processId()), SIGTERM);
    EXPECT_TRUE(m_Loop.RunUntil([this] { return HasEnded(); }, CNcServer::PATIENCE));
    EXPECT_EQ(m_Console.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(m_Console.exitCode(), 2)
        << "told to end from outside, and said: " << m_Console.readAll().toStdString();
    for (const int Child : Children) {
        EXPECT_FALSE(IsAlive(Child)) << ReadCommandLine(Child);
    }
}
