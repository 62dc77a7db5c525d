// The commands beside the console, as scripts call them.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/textfiles.h"
#include "tests/system/commandsfixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

using CommandsTest = CCommandsTestBase;

}  // namespace

TEST_F(CommandsTest, TheArchiveOfANewInstallationIsEmpty) {
    const CDone List = Run({"archive", "list"});
    EXPECT_EQ(List.m_Status, 1);
    EXPECT_THAT(List.m_Errors, IsEmpty());
    EXPECT_EQ(Run({"archive", "list", "--json"}).m_Output, "[]\n");
}

TEST_F(CommandsTest, RunsAreListedShownAndReported) {
    Balance("<b>=1+1</b>");
    Balance("Spindle 8");
    const json Runs = json::parse(Run({"archive", "list", "--json"}).m_Output);
    ASSERT_EQ(Runs.size(), 2U);
    EXPECT_EQ(Runs[0]["rotor"], "Spindle 8") << "the newest first";
    EXPECT_EQ(Runs[1]["id"], 1);
    const CDone OfOne = Run({"archive", "list", "--rotor", "Spindle 8"});
    EXPECT_EQ(OfOne.m_Status, 0);
    EXPECT_THAT(OfOne.m_Output, HasSubstr("Spindle 8"));
    EXPECT_THAT(OfOne.m_Output, testing::Not(HasSubstr("<b>")));
    EXPECT_EQ(Run({"archive", "list", "--result", "over-target"}).m_Status, 1);
    EXPECT_THAT(Run({"archive", "show", "1"}).m_Output, HasSubstr("final, plane 1"));
    for (const char* const pEnd : {".json", ".html", ".pdf"}) {
        const QString File = At("report") + pEnd;
        EXPECT_EQ(Run({"archive", "report", "1", "--report", File}).m_Status, 0) << pEnd;
        EXPECT_GT(fs::file_size(File.toStdString()), 1000U) << pEnd;
    }
    EXPECT_THAT(ReadTestFile(m_Directory.At("report.html")), testing::Not(HasSubstr("<b>=1+1")));
}

TEST_F(CommandsTest, ARunKnowsTheOneBeforeItButItsReportForProgramsDoesNot) {
    EXPECT_THAT(Run({"--headless"}).m_Output, testing::Not(HasSubstr("Suggested test")));
    // From here on the configuration is calibrated when a run begins, which its first menu shows.
    const CDone Second = Run({"--headless", "--report", At("second.json")});
    EXPECT_THAT(Second.m_Output, HasSubstr("Suggested test, by earlier runs: the first weight moved by"));
    ASSERT_EQ(Run({"--headless", "--report", At("third.json")}).m_Status, 0);
    EXPECT_EQ(ReadTestFile(m_Directory.At("second.json")), ReadTestFile(m_Directory.At("third.json")));
}

TEST_F(CommandsTest, AnExportForASpreadsheetHoldsNoFormula) {
    Balance("=cmd|' /C calc'!A0");
    const CDone Csv = Run({"archive", "list", "--csv"});
    EXPECT_EQ(Csv.m_Status, 0);
    EXPECT_THAT(Csv.m_Output, HasSubstr("'=cmd|"));
    EXPECT_THAT(Csv.m_Output, testing::Not(HasSubstr(",=cmd|")));
    const json Run1 = json::parse(Run({"archive", "export"}).m_Output);
    EXPECT_EQ(Run1["measurements"].size(), 3U);
}

TEST_F(CommandsTest, ACalibrationIsBroughtBackAndTheNextRunNeedsNoTest) {
    Balance("A");
    EXPECT_EQ(Run({"archive", "restore-calibration", "1"}).m_Status, 3) << "nobody is there to be asked";
    EXPECT_EQ(Run({"archive", "restore-calibration", "1", "--yes"}).m_Status, 0);
    EXPECT_EQ(Run({"--headless", "--procedure", "rebalance"}).m_Status, 0);
}

TEST_F(CommandsTest, RunsAreRemovedOnceSomebodyIsSure) {
    Balance("A");
    Balance("B");
    const CDone Unsure = Run({"archive", "prune", "--keep", "1"});
    EXPECT_EQ(Unsure.m_Status, 3);
    EXPECT_THAT(Unsure.m_Errors, HasSubstr("--yes"));
    EXPECT_EQ(Run({"archive", "prune", "--keep", "1", "--yes"}).m_Status, 0);
    const json Left = json::parse(Run({"archive", "list", "--json"}).m_Output);
    ASSERT_EQ(Left.size(), 1U);
    EXPECT_EQ(Left[0]["rotor"], "B");
}

TEST_F(CommandsTest, BadArgumentsAreOneLineThatSaysWhatWouldBeRight) {
    for (const QStringList& rArguments : {QStringList{"archive"},
                                          {"archive", "dance"},
                                          {"archive", "show"},
                                          {"archive", "show", "x"},
                                          {"archive", "list", "--since", "yesterday"},
                                          {"archive", "list", "--result", "good"},
                                          {"archive", "report", "1", "--report", "r.txt"},
                                          {"archive", "prune"},
                                          {"backup"},
                                          {"restore"},
                                          {"backup", "a", "b"}}) {
        const CDone Done = Run(rArguments);
        EXPECT_EQ(Done.m_Status, 3) << rArguments.join(" ").toStdString();
        EXPECT_THAT(Done.m_Errors, MatchesRegex("[^\n]+\n")) << rArguments.join(" ").toStdString();
        EXPECT_THAT(Done.m_Output, IsEmpty());
    }
    EXPECT_EQ(Run({"archive", "show", "7"}).m_Status, 1) << "there is no archive yet";
    Balance("A");
    const CDone Missing = Run({"archive", "show", "7"});
    EXPECT_EQ(Missing.m_Status, 1);
    EXPECT_THAT(Missing.m_Errors, HasSubstr("no run 7"));
}

TEST_F(CommandsTest, ABackupIsBroughtBack) {
    EXPECT_EQ(Run({"backup", At("b.tar.gz")}).m_Status, 3) << "there is nothing yet";
    Balance("A");
    const CDone Backup = Run({"backup", At("b.tar.gz")});
    EXPECT_EQ(Backup.m_Status, 0) << Backup.m_Errors;
    Balance("B");
    EXPECT_EQ(Run({"restore", At("b.tar.gz")}).m_Status, 3);
    const CDone Restore = Run({"restore", At("b.tar.gz"), "--yes"});
    EXPECT_EQ(Restore.m_Status, 0) << Restore.m_Errors;
    EXPECT_THAT(Restore.m_Output, StartsWith(m_Directory.At("b.tar.gz") + " is back"));
    EXPECT_EQ(json::parse(Run({"archive", "list", "--json"}).m_Output).size(), 1U)
        << "the runs come back with the store that they lie in";
}

TEST_F(CommandsTest, AServiceBundleIsWritten) {
    EXPECT_EQ(Run({"service-bundle", At("s.tar.gz")}).m_Status, 0);
    EXPECT_GT(fs::file_size(m_Directory.At("s.tar.gz")), 100U);
    EXPECT_EQ(Run({"service-bundle", "/proc/nowhere/s.tar.gz"}).m_Status, 1);
}
