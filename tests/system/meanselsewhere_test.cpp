// A run that moves weights and saves nothing leaves them where no configuration has them. A re-balancing
// counts from where the configuration has them: it begins with a look at them.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/system/mainwindowfixture.h"
#include "tests/system/whattheoryallows.h"

namespace {

constexpr const char* TOLD = "Weights or screws may not be where the configuration has them";

/// Runs one after the other in one session, driven without a window.
class MeansElsewhereTest : public testing::Test {
protected:
    MeansElsewhereTest()
        : m_Session(Prepare(), &m_Run.m_Rotor, m_Run.m_Installation.GetDatabaseFile().string()) {
        EXPECT_TRUE(m_Session.Initialise());
        m_Session.Commission();
    }

    /// rBreakAt: the state in which somebody ends the run.
    ExitCode Run(COptions::Procedure Procedure, const std::string& rBreakAt = "") {
        m_Run.m_Options.m_Procedure = Procedure;
        CHeadlessRun Headless(m_Session, m_Run.m_Options);
        m_Lines.clear();
        m_States.clear();
        Headless.OnProgress = [this](const std::string& rLine) { m_Lines += rLine + "\n"; };
        Headless.OnSituation = [&](const CSituation& rSituation) {
            const std::string& rState = rSituation.m_Progress.m_State;
            if (rSituation.m_bRunning && (m_States.empty() || m_States.back() != rState)) {
                m_States.push_back(rState);
            }
            if (!rBreakAt.empty() && rState == rBreakAt) {
                m_Session.SendAction(Actions::eTerminate, Actions::eNone);
            }
        };
        return Headless.Run();
    }
    double GetResidual() { return std::abs(m_Session.GetSimulator()->GetRotor().GetResidual(0)); }

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    CConsoleSession m_Session;
    std::string m_Lines;
    std::vector<std::string> m_States;

private:
    const COptions& Prepare() {
        m_Run.m_Options.m_bStartTurning = true;
        return m_Run.m_Options;
    }
};

/// What a re-balancing of the built-in rotor may leave, by a wide margin below one weight that is elsewhere.
constexpr double WELL_BALANCED = 0.1;

}  // namespace

TEST_F(MeansElsewhereTest, ARebalancingAfterARunThatMovedWeightsBeginsAtStandstillAndBalances) {
    ASSERT_EQ(Run(COptions::Procedure::ePrebalance), eExitWithinTarget) << m_Lines;
    EXPECT_FALSE(m_Session.AreMeansElsewhere());
    EXPECT_EQ(Run(COptions::Procedure::ePrebalance, "eTestUnbalanceMeasurement"), eExitFailed);
    EXPECT_TRUE(m_Session.AreMeansElsewhere());
    EXPECT_GT(GetResidual(), WELL_BALANCED);

    EXPECT_EQ(Run(COptions::Procedure::eRebalance), eExitWithinTarget) << m_Lines;
    EXPECT_EQ(m_States.front(), "eReBalanceCommitWeights");
    EXPECT_LE(GetResidual(), WELL_BALANCED);
    EXPECT_FALSE(m_Session.AreMeansElsewhere()) << "its result is saved";
    EXPECT_EQ(m_Lines.find(TOLD), std::string::npos) << "the page shows their places";
}

TEST_F(MeansElsewhereTest, ARebalancingAfterASavedRunBeginsAsTheOptionsSay) {
    ASSERT_EQ(Run(COptions::Procedure::ePrebalance), eExitWithinTarget) << m_Lines;
    EXPECT_EQ(Run(COptions::Procedure::eRebalance), eExitWithinTarget) << m_Lines;
    EXPECT_EQ(m_States.front(), "eReBalanceMeasurement1");
    EXPECT_LE(GetResidual(), WELL_BALANCED);
}

TEST_F(MeansElsewhereTest, ARunThatEndsBeforeAnythingWasMovedChangesNothing) {
    ASSERT_EQ(Run(COptions::Procedure::ePrebalance), eExitWithinTarget) << m_Lines;
    EXPECT_EQ(Run(COptions::Procedure::ePrebalance, "eNeutralPosSpindleStop"), eExitFailed);
    EXPECT_FALSE(m_Session.AreMeansElsewhere());
}

TEST_F(MeansElsewhereTest, ARunThatSavesNothingAndMovesNothingForgetsNothing) {
    EXPECT_EQ(Run(COptions::Procedure::ePrebalance, "eTestUnbalanceSetWeights"), eExitFailed);
    EXPECT_EQ(Run(COptions::Procedure::ePrebalance, "eNeutralPosSpindleStop"), eExitFailed);
    EXPECT_TRUE(m_Session.AreMeansElsewhere());
}

namespace {

using MeansElsewhereWindowTest = CMainWindowTestBase;

}  // namespace

TEST_F(MeansElsewhereWindowTest, TheOperatorWhoRebalancesATurningRotorIsTold) {
    Open();
    Press("Pre-balance");
    BalanceByButtons();
    Press("Finish");
    Press("Pre-balance");
    Press("Stop spindle");
    m_Loop.Advance(3000);
    ASSERT_EQ(GetState(), "eNeutralPosRemoveWeights");
    Press("End");
    Press("End the run");
    ASSERT_TRUE(m_pSession->AreMeansElsewhere());
    Press("Start spindle");
    m_Loop.Advance(9000);
    Press("Re-balance");
    m_Loop.Advance(500);
    EXPECT_EQ(GetState(), "eReBalanceMeasurement1");
    EXPECT_EQ(GetMessage().find(TOLD), 0U) << GetMessage();
}
