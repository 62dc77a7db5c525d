// What is said of a run in the end: the last line without a display, the band in the window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/liveview.h"
#include "console/verdictband.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "tests/system/mainwindowfixture.h"

namespace {

using Procedure = COptions::Procedure;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// Its database lies in a directory that stays, as far as the program knows.
class VerdictLineTest : public testing::Test {
protected:
    VerdictLineTest() {
        SetLanguage("en");
        m_Run.m_Options.m_ConfigDirectory = "stays";
    }
    std::string GetLastLine() const { return m_Run.m_Lines.empty() ? "" : m_Run.m_Lines.back(); }

    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
};

}  // namespace

TEST_F(VerdictLineTest, TheLastLineIsTheVerdictInOneSentence) {
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_THAT(GetLastLine(),
                MatchesRegex("Within target: [0-4][.][0-9] of 5 µm/s [(]was 1[12][0-9][)]; saved "
                             ".*, configuration \"Default\" in .*prebal.db"));
    // The same figures as the report's.
    char Figure[16];
    std::snprintf(Figure, sizeof Figure, "%.1f", m_Run.m_Report["final"][0]["amplitude"].get<double>());
    EXPECT_THAT(GetLastLine(), StartsWith("Within target: " + std::string(Figure)));
    std::snprintf(Figure, sizeof Figure, "%.0f", m_Run.m_Report["initial"][0]["amplitude"].get<double>());
    EXPECT_THAT(GetLastLine(), HasSubstr("was " + std::string(Figure)));
}

TEST_F(VerdictLineTest, OverTheTargetIsSaidAndSavedAllTheSame) {
    m_Run.m_Rotor.m_NoiseCounts = 45.0;  // with more of it the test run would have no effect
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_THAT(GetLastLine(), MatchesRegex("Over target: [0-9.]+ of 5 µm/s .*; saved .*"));
}

TEST_F(VerdictLineTest, BothPlanesAreNamed) {
    m_Run.m_Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_THAT(GetLastLine(),
                MatchesRegex("Within target: plane 1: [0-9.]+ of 5 µm/s [(]was [0-9.]+[)]; plane 2: "
                             "[0-9.]+ of 5 µm/s [(]was [0-9.]+[)]; saved .*"));
}

TEST_F(VerdictLineTest, WithoutADirectoryThatStaysNothingIsSaidToStay) {
    m_Run.m_Options.m_ConfigDirectory.clear();
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_THAT(GetLastLine(),
                HasSubstr("; saved for this program only: without --config-dir nothing stays"));
}

TEST_F(VerdictLineTest, AResultThatIsNotSavedIsSaidNotToBe) {
    m_Run.OnSituation = [this, bDone = false](const CSituation& rSituation, CConsoleSession&) mutable {
        if (!bDone && rSituation.m_Progress.m_Step == rSituation.m_Progress.m_NumberOfSteps) {
            bDone = true;
            PreBalDB::CDirectSQL("sqlite:" + m_Run.m_Installation.GetDatabaseFile().string())
                .Execute(
                    "CREATE TRIGGER sabotage BEFORE UPDATE ON configuration "
                    "BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
        }
    };
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_THAT(GetLastLine(), MatchesRegex("Not saved. Within target: .*; the message says why.*"));
}

TEST_F(VerdictLineTest, ATestRunWithoutEffectIsSaidToHaveFailed) {
    m_Run.m_Rotor.m_NoiseCounts = 0.0;
    m_Run.m_Rotor.m_Influence[0][0].m_Amplitude = 0.0;
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_THAT(GetLastLine(), MatchesRegex("Failed: .+; nothing is saved"));
}

TEST_F(VerdictLineTest, ARunThatIsBrokenOffSaysBySomething) {
    bool bBreak = false;
    m_Run.m_Options.m_GetEndRequest = [&bBreak] { return bBreak ? std::string("SIGTERM") : std::string(); };
    m_Run.OnSituation = [&bBreak](const CSituation& rSituation, CConsoleSession&) {
        bBreak = bBreak || rSituation.m_Progress.m_State == "eTestUnbalanceMeasurement";
    };
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(GetLastLine(), "Broken off by SIGTERM; nothing is saved");
}

TEST_F(VerdictLineTest, ARebalancingThatIsRefusedSaysWhy) {
    ASSERT_EQ(m_Run.Run(Procedure::eRebalance), eExitFailed);
    EXPECT_THAT(GetLastLine(),
                StartsWith("Failed: The re-balancing was refused: the configuration isn't calibrated"));
}

TEST_F(VerdictLineTest, ReadingsAreToldWithUnitAndProgress) {
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_TRUE(m_Run.HasLine("µm/s @"));
    EXPECT_TRUE(m_Run.HasLine("Averaging, "));
    EXPECT_TRUE(m_Run.HasLine("target 5 µm/s"));
}

TEST_F(VerdictLineTest, InGermanTheSentenceIsGerman) {
    ASSERT_TRUE(SetLanguage("de"));
    const ExitCode Exit = m_Run.Run(Procedure::ePrebalance);
    SetLanguage("en");
    ASSERT_EQ(Exit, eExitWithinTarget);
    EXPECT_THAT(GetLastLine(),
                MatchesRegex("Im Ziel: [0-9.]+ von 5 µm/s [(]vorher [0-9]+[)]; gespeichert .*"));
}

TEST_F(MainWindowOptionsTest, TheBandFollowsARunToItsSavedResult) {
    AskFor(Procedure::ePrebalance);
    Open();
    const auto* const pBand = dynamic_cast<CVerdictBand*>(m_pWindow->findChild<QWidget*>("VerdictBand"));
    ASSERT_NE(pBand, nullptr);
    EXPECT_THAT(pBand->GetText().toStdString(), StartsWith("Step 2 of "));
    BalanceByButtons();
    const std::string Verdict = pBand->GetText().toStdString();
    EXPECT_THAT(Verdict, MatchesRegex("Within target: [0-9.]+ of 5 µm/s [(]was 1[12][0-9][)]"));
    Press("Finish");
    EXPECT_THAT(pBand->GetText().toStdString(), StartsWith("Saved. Within target: "));
    EXPECT_THAT(pBand->GetDetail().toStdString(), HasSubstr("configuration \"Default\""));
    const auto* const pLive = m_pWindow->findChild<QWidget*>("LiveView");
    ASSERT_NE(pLive, nullptr);
    EXPECT_THAT(pLive->accessibleDescription().toStdString(),
                MatchesRegex("first: 1[12][0-9] µm/s at .*; test: .*; final: .*; target 5 µm/s"));
}
