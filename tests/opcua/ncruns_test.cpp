// Runs in which nobody presses a key: console, rotor simulator, gateway and NC simulator as processes of
// their own. They run side by side, since each takes its time.
#include <gmock/gmock.h>
#include <signal.h>

#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

#include "platform/qt/qteventloop.h"
#include "simulator/machineclient.h"
#include "tests/opcua/children.h"
#include "tests/opcua/ncserver.h"
#include "tests/support/jsonschema.h"
#include "tests/support/testpaths.h"

using nlohmann::json;
using testing::IsEmpty;

namespace {

constexpr int RUN_TIMEOUT = 1200000;  ///< ten times what a run takes on a quiet machine
/// A spindle that is quick to turn.
constexpr const char* QUICK = R"("ramp_rpm_per_s": 100000)";

class CNcRun {
public:
    /// rOpc: what the installation's opc.json says; without it the console starts an NC itself.
    CNcRun(const std::string& rRotor, const QStringList& rArguments, const json& rOpc = json()) {
        if (!rOpc.is_null()) {
            std::filesystem::create_directories(m_Directory.filePath("root/cnf").toStdString());
            std::ofstream(m_Directory.filePath("root/cnf/opc.json").toStdString()) << rOpc;
        }
        const QString Rotor = m_Directory.filePath("rotor.json");
        std::ofstream(Rotor.toStdString()) << "{" << QUICK << rRotor << "}";
        m_Console.setProcessChannelMode(QProcess::MergedChannels);
        EndWithUs(m_Console);
        m_Console.start(
            QString::fromStdString(TestProgram("console")),
            QStringList{"--headless", "--nc", "opcua", "--rotor", Rotor, "--config-dir",
                        m_Directory.filePath("root"), "--report", m_Directory.filePath("report.json")} +
                rArguments);
    }
    ~CNcRun() {
        m_Console.kill();
        m_Console.waitForFinished(CNcServer::PATIENCE);
    }

    /// The report, when the run has ended.
    json Finish() {
        EXPECT_TRUE(m_Console.waitForFinished(RUN_TIMEOUT));
        m_Output = m_Console.readAll().toStdString();
        std::ifstream In(m_Directory.filePath("report.json").toStdString());
        auto Report = json::parse(In, nullptr, false);
        EXPECT_EQ(CheckReport(Report), "");
        return Report;
    }
    int GetExitCode() const { return m_Console.exitCode(); }
    const std::string& GetOutput() const { return m_Output; }
    QProcess& GetConsole() { return m_Console; }
    QString GetFile(const char* pName) const { return m_Directory.filePath(pName); }

private:
    QTemporaryDir m_Directory;
    QProcess m_Console;
    std::string m_Output;
};

/// A machine of its own: the rotor simulator with both links.
class CMachineProcess {
public:
    explicit CMachineProcess(const std::string& rRotor) {
        EndWithUs(m_Process);
        const QString Rotor = m_Directory.filePath("machine.json");
        std::ofstream(Rotor.toStdString()) << "{" << QUICK << rRotor << "}";
        m_Process.start(QString::fromStdString(TestProgram("simulator")),
                        {"--frames", "tcp:127.0.0.1:0", "--machine", "tcp:127.0.0.1:0", "--rotor", Rotor});
        while (m_Links.size() < 2 &&
               (m_Process.canReadLine() || m_Process.waitForReadyRead(CNcServer::PATIENCE))) {
            const QStringList Words = QString::fromUtf8(m_Process.readLine()).trimmed().split(" on ");
            m_Links[Words.front()] = Words.back();
        }
    }
    ~CMachineProcess() {
        m_Process.kill();
        m_Process.waitForFinished(CNcServer::PATIENCE);
    }
    /// "frames" or "machine".
    QString GetLink(const char* pName) const { return m_Links.at(pName); }

private:
    QTemporaryDir m_Directory;
    QProcess m_Process;
    std::map<QString, QString> m_Links;
};

/// An NC with a part program, beside the console.
class CNcProcess {
public:
    explicit CNcProcess(const CMachineProcess& rMachine, const QStringList& rArguments) {
        EndWithUs(m_Process);
        m_Process.start(QString::fromStdString(TestProgram("nc-simulator")),
                        QStringList{"--json", "--port", "0", "--pki", m_Directory.filePath("nc"), "--machine",
                                    rMachine.GetLink("machine")} +
                            rArguments);
        while (m_Listening.is_null() &&
               (m_Process.canReadLine() || m_Process.waitForReadyRead(CNcServer::PATIENCE))) {
            const json Line = json::parse(m_Process.readLine().toStdString(), nullptr, false);
            m_Listening = Line.is_object() && Line.contains("listening") ? Line["listening"] : json();
        }
    }
    ~CNcProcess() {
        m_Process.kill();
        m_Process.waitForFinished(CNcServer::PATIENCE);
    }
    /// An installation's opc.json that names it, with one item besides those of every run.
    json GetOpc(const char* pKey, const char* pItem) const {
        const json& rItems = m_Listening.at("items");
        return {{"server", m_Listening.at("url")},
                {"items",
                 {{NcItems::REQUEST, rItems.at("Request")},
                  {NcItems::NOTIFICATION, rItems.at("Notification")},
                  {NcItems::WARNING, rItems.at("Warning")},
                  {pKey, rItems.at(pItem)}}}};
    }

private:
    QTemporaryDir m_Directory;
    QProcess m_Process;
    json m_Listening;
};

/// Whether a test of the present suite will run here and now.
bool IsChosen(const std::string& rTest) {
    const testing::TestSuite& rSuite = *testing::UnitTest::GetInstance()->current_test_suite();
    for (int i = 0; i < rSuite.total_test_count(); ++i) {
        if (rSuite.GetTestInfo(i)->name() == rTest) {
            return rSuite.GetTestInfo(i)->should_run();
        }
    }
    return false;
}

constexpr const char* WEIGHTS = "WeightsArePrebalancedAndRebalanced";
constexpr const char* SCREWS = "ScrewsBeginWithTheTestWeightThatTheNcAsksFor";

/// All runs, by the test that looks at them, begun together.
class CNcRunsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (IsChosen(WEIGHTS)) {
            ms_Runs[WEIGHTS] =
                std::make_unique<CNcRun>("", QStringList{"--procedure", "prebalance+rebalance"});
        }
        if (IsChosen(SCREWS)) {
            ms_Runs[SCREWS] = std::make_unique<CNcRun>(
                R"(, "planes": [{"unbalance": {"amount": 2.4, "angle_deg": 77}}], "scale": ["ccw"])",
                QStringList{"--method", "screws", "--test-weight", "3.2"});
        }
    }
    static void TearDownTestSuite() { ms_Runs.clear(); }
    static inline std::map<std::string, std::unique_ptr<CNcRun>> ms_Runs;
};

}  // namespace

TEST_F(CNcRunsTest, WeightsArePrebalancedAndRebalanced) {
    CNcRun& rRun = *ms_Runs.at(WEIGHTS);
    const json Report = rRun.Finish();
    ASSERT_TRUE(Report.is_object()) << rRun.GetOutput();
    EXPECT_EQ(rRun.GetExitCode(), 0) << rRun.GetOutput();
    EXPECT_EQ(Report["result"], "RebalSuccess");
    EXPECT_THAT(Report["assertions"], IsEmpty());
    EXPECT_EQ(Report["calibrated_rpm"], 3000);
    // 0.8 of a weight at 150 counts a weight: what was there, and what is left, by the sensor.
    EXPECT_NEAR(Report["initial"][0]["amplitude"].get<double>(), 120.0, 3.0);
    EXPECT_LT(Report["final"][0]["amplitude"].get<double>(), 5.0);
    EXPECT_NE(rRun.GetOutput().find("NC: "), std::string::npos);
}

/// The first screw of the table that is at least as heavy as the NC asks for.
TEST_F(CNcRunsTest, ScrewsBeginWithTheTestWeightThatTheNcAsksFor) {
    CNcRun& rRun = *ms_Runs.at(SCREWS);
    const json Report = rRun.Finish();
    ASSERT_TRUE(Report.is_object()) << rRun.GetOutput();
    EXPECT_LE(rRun.GetExitCode(), 1) << rRun.GetOutput();
    EXPECT_THAT(Report["assertions"], IsEmpty());
    EXPECT_NE(rRun.GetOutput().find("screws of plane 1: 4 g in hole 1"), std::string::npos)
        << rRun.GetOutput();
    // 150 counts a gram: what the screws of the table leave of 360 counts is a fraction.
    EXPECT_NEAR(Report["initial"][0]["amplitude"].get<double>(), 360.0, 5.0);
    EXPECT_LT(Report["final"][0]["amplitude"].get<double>(), 60.0);
}

/// However the console ends, its companions do too.
TEST(NcCompanions, NothingIsLeftRunningWhenTheConsoleIsKilled) {
    CQtEventLoop Loop;
    CNcRun Run("", {});
    std::string Output;
    ASSERT_TRUE(CNcServer::RunUntil(
        [&] {
            Output += Run.GetConsole().readAll().toStdString();
            return Output.find("step 1/11") != std::string::npos;
        },
        CNcServer::PATIENCE))
        << Output;
    const std::set<int> Children = FindChildren(static_cast<int>(Run.GetConsole().processId()));
    EXPECT_GE(Children.size(), 3U);  // rotor simulator, NC simulator, gateway
    Run.GetConsole().kill();
    EXPECT_TRUE(CNcServer::RunUntil([&] { return std::none_of(Children.begin(), Children.end(), IsAlive); },
                                    CNcServer::PATIENCE));
}

/// The verdict is judged by the target that the NC has set: the configuration's own would be missed by far.
TEST(NcRun, TheTargetThatTheNcSetsDecidesTheVerdict) {
    CQtEventLoop Loop;
    const CMachineProcess Machine(R"(, "planes": [{"unbalance": {"amount": 2.4, "angle_deg": 77}}])");
    const CNcProcess Nc(Machine, {"--target", "90"});
    CNcRun Run(
        "",
        {"--link", Machine.GetLink("frames"), "--machine", Machine.GetLink("machine"), "--method", "screws"},
        Nc.GetOpc(NcItems::TARGET_UNBALANCE, "TargetUnbalance"));
    const json Report = Run.Finish();
    ASSERT_TRUE(Report.is_object()) << Run.GetOutput();
    EXPECT_EQ(Run.GetExitCode(), 0) << Run.GetOutput();
    EXPECT_EQ(Report["target"], 90);
    EXPECT_EQ(Report["result"], "SetupSuccess");
    EXPECT_GT(Report["final"][0]["amplitude"].get<double>(), 5.0);
    EXPECT_THAT(Report["assertions"], IsEmpty());
}

/// The archive finds the run by the name that the NC has given, not by the one of the command line.
TEST(NcRun, TheRunIsKeptUnderTheNameThatTheNcGives) {
    CQtEventLoop Loop;
    const CMachineProcess Machine("");
    const CNcProcess Nc(Machine, {"--rotor-name", "Spindel \"Ä 7\""});
    CNcRun Run("",
               {"--link", Machine.GetLink("frames"), "--machine", Machine.GetLink("machine"), "--rotor-name",
                "given here"},
               Nc.GetOpc(NcItems::ROTOR_NAME, "RotorName"));
    const json Report = Run.Finish();
    ASSERT_TRUE(Report.is_object()) << Run.GetOutput();
    EXPECT_EQ(Run.GetExitCode(), 0) << Run.GetOutput();
    EXPECT_EQ(Report["rotor"], "Spindel \"Ä 7\"");
    EXPECT_THAT(Report["assertions"], IsEmpty());
    QProcess Archive;
    Archive.start(
        QString::fromStdString(TestProgram("console")),
        {"archive", "list", "--json", "--rotor", "Spindel \"Ä 7\"", "--config-dir", Run.GetFile("root")});
    ASSERT_TRUE(Archive.waitForFinished(CNcServer::PATIENCE));
    const json Runs = json::parse(Archive.readAllStandardOutput().toStdString(), nullptr, false);
    ASSERT_TRUE(Runs.is_array()) << Archive.readAllStandardError().toStdString();
    ASSERT_EQ(Runs.size(), 1U);
    EXPECT_EQ(Runs[0]["rotor"], "Spindel \"Ä 7\"");
}

/// All that is within the rules at once: names, numbers, types, times, and sessions that end in the middle;
/// long enough for a busy machine to connect and go a step on.
TEST(NcRun, AnNcOfAnotherMakeDrivesARunToItsEnd) {
    CQtEventLoop Loop;
    const CMachineProcess Machine("");
    const CNcProcess Nc(
        Machine, {"--advertise", "name-of-the-nc.invalid", "--namespace-index", "7", "--certificate",
                  "no-host", "--one-operation", "--integers", "Double", "--publishing", "200", "--session",
                  "15000", "--end-sessions", "20", "--clock=-86400"});
    CNcRun Run("", {"--link", Machine.GetLink("frames"), "--machine", Machine.GetLink("machine")},
               Nc.GetOpc(NcItems::ROTOR_NAME, "RotorName"));
    const json Report = Run.Finish();
    ASSERT_TRUE(Report.is_object()) << Run.GetOutput();
    ASSERT_EQ(Run.GetExitCode(), 0) << Run.GetOutput();
    EXPECT_EQ(Report["result"], "SetupSuccess");
    EXPECT_LT(Report["final"][0]["amplitude"].get<double>(), 5.0);
}

/// What is on the rotor is asked of the machine itself, not of the module.
TEST(NcRun, TheMachineIsLeftBalanced) {
    CQtEventLoop Loop;
    const CMachineProcess Machine("");
    {
        CNcRun Run("", {"--link", Machine.GetLink("frames"), "--machine", Machine.GetLink("machine")});
        ASSERT_TRUE(Run.Finish().is_object()) << Run.GetOutput();
        EXPECT_EQ(Run.GetExitCode(), 0) << Run.GetOutput();
    }
    std::string Error;
    const auto pMachine = CMachineClient::Create(Machine.GetLink("machine").toStdString(), Error);
    std::optional<json> State;
    pMachine->Request({{"state", json::object()}}, [&](const json& rAnswer) { State = rAnswer; });
    ASSERT_TRUE(CNcServer::RunUntil([&] { return State.has_value(); }, CNcServer::PATIENCE));
    EXPECT_LT(State->at("residual").at(0).at("amount").get<double>(), 0.04) << *State;
}
