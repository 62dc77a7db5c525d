// "run check" as scripts call it.
#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "console/serialport.h"
#include "tests/system/commandsfixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class CheckCommandTest : public CCommandsTestBase {
protected:
    /// The simulator at a pseudo terminal, until the test ends.
    void StartSimulator(const QStringList& rOptions = {}) {
        m_Simulator.start(QString::fromStdString(TestProgram("simulator")),
                          QStringList{"--frames", "pty:" + At("module")} + rOptions);
        ASSERT_TRUE(m_Simulator.waitForReadyRead(TIMEOUT));
    }
    ~CheckCommandTest() override {
        for (QProcess* const pProcess : {&m_Holder, &m_Simulator}) {
            pProcess->terminate();
            pProcess->waitForFinished();
        }
    }

    QProcess m_Simulator;
    QProcess m_Holder;
};

std::string GetNames(const json& rCheck) {
    std::string Names;
    for (const json& rFinding : rCheck["findings"]) {
        Names += rFinding["name"].get<std::string>() + " ";
    }
    return Names;
}

}  // namespace

TEST_F(CheckCommandTest, WithoutASubjectItSaysWhatThereIsToCheck) {
    const CDone Check = Run({"check"});
    EXPECT_EQ(Check.m_Status, 3);
    EXPECT_THAT(Check.m_Errors, HasSubstr("--database"));
    EXPECT_EQ(Run({"check", "--link", "usb"}).m_Status, 3);
    EXPECT_EQ(Run({"check", "--link", "sim", "--addresses", "0"}).m_Status, 3);
    EXPECT_EQ(Run({"check", "--database", "--seconds", "5"}).m_Status, 3) << "only a line is watched";
}

TEST_F(CheckCommandTest, ASimulatedLineIsWell) {
    const CDone Check = Run({"check", "--link", "sim"});
    EXPECT_EQ(Check.m_Status, 0);
    EXPECT_THAT(Check.m_Output, HasSubstr("\n  ok: Module 5, plane 1 is in lock.\n"));
    EXPECT_THAT(Check.m_Output, testing::EndsWith("\nA run can begin.\n"));
    EXPECT_THAT(Check.m_Errors, IsEmpty());
}

TEST_F(CheckCommandTest, SeveralChecksMakeOneJsonText) {
    const CDone Check = Run({"check", "--link", "serial:" + At("none"), "--database", "--json"});
    EXPECT_EQ(Check.m_Status, 1);
    const json Data = json::parse(Check.m_Output);
    EXPECT_FALSE(Data["ready"]);
    ASSERT_EQ(Data["checks"].size(), 2U);
    EXPECT_EQ(Data["checks"][0]["subject"], "link");
    EXPECT_EQ(GetNames(Data["checks"][0]), "link-missing ");
    EXPECT_EQ(Data["checks"][1]["subject"], "database");
    EXPECT_TRUE(Data["checks"][1]["ready"]);
    EXPECT_THAT(GetNames(Data["checks"][1]), HasSubstr("database-missing"));
}

TEST_F(CheckCommandTest, TheStoreOfARunIsInOrder) {
    Balance("A");
    const CDone Check = Run({"check", "--database", "--json"});
    EXPECT_EQ(Check.m_Status, 0);
    const json Facts = json::parse(Check.m_Output)["checks"][0]["facts"];
    EXPECT_EQ(Facts["runs"], 1);
    EXPECT_EQ(Facts["configurations"], 1);
}

TEST_F(CheckCommandTest, APortThatAnotherProgramHasNamesIt) {
    StartSimulator();
    const QString Link = "serial:" + At("module");
    m_Holder.start(QString::fromStdString(TestProgram("console")),
                   {"check", "--link", Link, "--seconds", "600", "--config-dir", At("other")});
    const std::string Port = m_Directory.At("module");
    IFEventLoop& rLoop = IFEventLoop::Current();
    const std::uint32_t Ticks = rLoop.SetTimer(50, [](std::uint32_t) {});
    // The simulator itself has the terminal open, but by no custom.
    ASSERT_TRUE(rLoop.RunUntil([&Port] { return FindHolder(Port).starts_with("console"); }, 60000));
    rLoop.KillTimer(Ticks);
    const CDone Check = Run({"check", "--link", Link, "--json"});
    EXPECT_EQ(Check.m_Status, 1);
    const json Findings = json::parse(Check.m_Output)["checks"][0]["findings"];
    ASSERT_EQ(Findings.size(), 1U);
    EXPECT_EQ(Findings[0]["name"], "link-in-use");
    EXPECT_THAT(Findings[0]["text"],
                HasSubstr("console (process " + std::to_string(m_Holder.processId()) + ")"));
}
