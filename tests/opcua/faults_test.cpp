// Everything that can happen to the NC in the middle of a run, while an operator goes on at the panel.
#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <deque>
#include <functional>

#include "console/headlessrun.h"
#include "console/installation.h"
#include "console/session.h"
#include "contract/actions.h"
#include "platform/qt/qteventloop.h"
#include "simulator/simulator.h"
#include "tests/opcua/children.h"
#include "tests/opcua/ncserver.h"
#include "tests/opcua/usableclock.h"
#include "tests/support/testpaths.h"

using nlohmann::json;
using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;

namespace {

/// The longest time between two ticks of a timer of the window thread: how long the operator's panel has not
/// answered.
class CStallMeter {
public:
    CStallMeter() {
        constexpr std::uint32_t PERIOD = 20;
        m_Id = IFEventLoop::Current().SetTimer(PERIOD, [this](std::uint32_t) {
            const std::uint64_t Now = m_Clock.Now();
            m_Longest = std::max(m_Longest, Now - m_Last);
            m_Last = Now;
        });
    }
    ~CStallMeter() { IFEventLoop::Current().KillTimer(m_Id); }
    CStallMeter(const CStallMeter&) = delete;
    CStallMeter& operator=(const CStallMeter&) = delete;
    std::uint64_t GetLongest() const { return m_Longest; }

private:
    CUsableClock m_Clock;
    std::uint32_t m_Id = 0;
    std::uint64_t m_Last = 0;
    std::uint64_t m_Longest = 0;
};

int FindGateway() {
    for (const int Child : FindChildren(getpid())) {
        if (ReadCommandLine(Child).find("gateway/main.js") != std::string::npos) {
            return Child;
        }
    }
    return 0;
}

}  // namespace

TEST(OpcFaults, TheRunGoesOnFromThePanelWhateverBecomesOfTheNc) {
    CQtEventLoop Loop;
    CNcServer Nc;
    ASSERT_NO_FATAL_FAILURE(Nc.Start());
    COptions Options;
    Options.m_bHeadless = true;
    Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
    Options.m_Opc = Nc.GetSetup();
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrel);
    Rotor.m_RampRpmPerS = 100000.0;
    const CConsoleInstallation Installation("", true);
    CConsoleSession Session(Options, &Rotor, Installation.GetDatabaseFile().string());
    CHeadlessRun Run(Session, Options);
    Run.OnProgress = [](const std::string&) {};
    ASSERT_TRUE(Session.Initialise());
    Session.Commission();
    ASSERT_TRUE(Nc.NextValue("Notification"));

    int nKilledGateway = 0;
    bool bStepSeenAfterRestart = false;
    bool bStepSeenFromNewGateway = false;
    // Each at its step, or later if the run has gone on by itself while the one before was waiting.
    std::deque<std::pair<std::uint32_t, std::function<void()>>> Faults{
        {2, [&] { Nc.Kill(); }},
        {4,
         [&] {
             Nc.Start();
             bStepSeenAfterRestart = Nc.NextValue("Notification").has_value();
         }},
        {5,
         [&] {
             nKilledGateway = FindGateway();
             kill(nKilledGateway, SIGKILL);
         }},
        // The new gateway has to be told everything again, and tells the NC where the run stands.
        {7,
         [&] {
             bStepSeenFromNewGateway = Nc.NextValue("Notification", [&](const json& r) {
                                             return r[1] == Session.Look().m_Notification.GetAction();
                                         }).has_value();
         }},
        {8,
         [&] {
             Nc.Send({{"remove", {{"item", "Warning"}}}});
             Nc.Send({{"retype", {{"item", "Notification"}, {"type", "String"}}}});
         }},
        {9,
         [&] {
             Nc.Send({{"retype", {{"item", "Request"}, {"type", "String"}}}});
             Nc.Write("Request", "please go on");
         }},
        {10,
         [&] {
             Nc.Send({{"restore", {{"item", "Request"}}}});
             Nc.Send({{"restore", {{"item", "Warning"}}}});
             Nc.Send({{"restore", {{"item", "Notification"}}}});
         }},
    };
    std::uint32_t LastStep = 0;
    Run.OnSituation = [&](const CSituation&) {
        LastStep = Session.Look().m_Progress.m_Step;
        while (!Faults.empty() && LastStep >= Faults.front().first) {
            const std::function<void()> Happen = std::move(Faults.front().second);
            Faults.pop_front();
            Happen();
            LastStep = Session.Look().m_Progress.m_Step;
        }
    };
    const CStallMeter Meter;
    EXPECT_EQ(Run.Run(), eExitWithinTarget);
    EXPECT_EQ(LastStep, 11U);
    EXPECT_TRUE(Faults.empty());
    EXPECT_NE(nKilledGateway, 0);
    EXPECT_TRUE(bStepSeenAfterRestart);
    EXPECT_TRUE(bStepSeenFromNewGateway);
    EXPECT_NE(FindGateway(), nKilledGateway);
    EXPECT_LT(Meter.GetLongest(), 1000U) << "ms in which the panel did not answer";
    EXPECT_LT(std::abs(Session.GetSimulator()->GetRotor().GetResidual(0)), 0.04);
    // Writes that failed are told, and nothing else is.
    const auto Assertions = Run.GetReport().ToJson().at("assertions").get<std::vector<std::string>>();
    EXPECT_THAT(Assertions, testing::Not(testing::IsEmpty()));
    EXPECT_THAT(Assertions, Each(AnyOf(HasSubstr("SetNCData failed!"), HasSubstr("SetWarningMode failed!"),
                                       HasSubstr("SetValueFromNC failed!"))));
    // The NC is heard again afterwards.
    EXPECT_EQ(Nc.Ask(2), 0);
    EXPECT_TRUE(Session.Look().m_bRunning);
}

/// The one read that may wait: without an NC it gives up, and the middle of the table stays.
TEST(OpcFaults, ReadingTheTestWeightEndsWithoutAnNc) {
    CQtEventLoop Loop;
    CNcServer Nc;
    ASSERT_NO_FATAL_FAILURE(Nc.Start());
    COptions Options;
    Options.m_bHeadless = true;
    Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
    Options.m_Opc = Nc.GetSetup();
    Options.m_Methods = {"screws"};
    Options.m_ScrewTable = {1.0, 2.0, 3.0};
    Nc.Kill();
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrel);
    const CConsoleInstallation Installation("", true);
    CConsoleSession Session(Options, &Rotor, Installation.GetDatabaseFile().string());
    ASSERT_TRUE(Session.Initialise());
    Session.Commission();
    CUsableClock Clock;
    Session.SendAction(Actions::eStart, Actions::eNone);
    EXPECT_LT(Clock.Now(), 4000U);
    EXPECT_TRUE(Session.Look().m_bRunning);
    Session.SendAction(Actions::eTerminate, Actions::eNone);
}
