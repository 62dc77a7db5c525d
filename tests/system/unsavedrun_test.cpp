// Whole runs whose result can't be saved, or that meet a damaged store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "tests/system/wholerun.h"

using PreBalDB::CDirectSQL;
using PreBalDB::CTransaction;

namespace {

class CUnsavedRunTest : public testing::Test {
protected:
    std::string GetConnection() const { return "sqlite:" + m_Run.m_Installation.GetDatabaseFile().string(); }
    /// From the final measurement on.
    void BreakStoreAtTheEnd(const std::function<void()>& rBreak) {
        m_Run.OnSituation = [rBreak, bDone = false](const CSituation& rSituation, CConsoleSession&) mutable {
            if (!bDone && rSituation.m_Progress.m_Step == rSituation.m_Progress.m_NumberOfSteps) {
                bDone = true;
                rBreak();
            }
        };
    }
    void Sabotage(const std::string& rWhen) {
        CDirectSQL(GetConnection())
            .Execute("CREATE TRIGGER sabotage BEFORE UPDATE ON configuration " + rWhen +
                     " BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
    }

    CWholeRun m_Run{CRotorFile::GetBuiltIn(CRotorFile::eKestrel)};
};

TEST_F(CUnsavedRunTest, ARunWhoseResultIsSavedSaysSo) {
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(m_Run.m_Report.at("saved"), true);
    EXPECT_EQ(m_Run.m_Report.at("exit"), 0);
}

TEST_F(CUnsavedRunTest, AResultThatCannotBeSavedIsNoSuccess) {
    BreakStoreAtTheEnd([this] { Sabotage(""); });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(m_Run.m_Report.at("saved"), false);
    EXPECT_EQ(m_Run.m_Report.at("exit"), 2);
    EXPECT_EQ(m_Run.GetResult(), "SetupSuccess") << "the rotor is balanced";
    EXPECT_TRUE(m_Run.HasLine("\"Default\" was not saved")) << "the operator is told what";
    EXPECT_TRUE(m_Run.HasLine("disk trouble")) << "and why";
    EXPECT_TRUE(m_Run.HasLine("The result was not saved."));
}

TEST_F(CUnsavedRunTest, TheVerdictIsReportedWithItsOwnTargetWhateverAnotherConsoleStores) {
    BreakStoreAtTheEnd([this] {
        CDirectSQL(GetConnection())
            .Execute("UPDATE configuration SET target_unbalance = 90, revision = revision + 1");
    });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(m_Run.m_Report.at("target"), 5);
    EXPECT_EQ(
        CDirectSQL(GetConnection()).Query("SELECT target_unbalance FROM configuration")[0].GetInteger(0), 90);
}

TEST_F(CUnsavedRunTest, AStoreThatIsLockedIsNoSuccess) {
    std::unique_ptr<CDirectSQL> pOther;
    std::unique_ptr<CTransaction> pHolder;
    BreakStoreAtTheEnd([&] {
        pOther = std::make_unique<CDirectSQL>(GetConnection());
        pHolder = std::make_unique<CTransaction>(*pOther, CTransaction::eWriting);
    });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(m_Run.m_Report.at("saved"), false);
    EXPECT_TRUE(m_Run.HasLine("another program holds the database locked"));
}

TEST_F(CUnsavedRunTest, ARunWithoutResultHasNothingSaved) {
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitFailed);
    EXPECT_EQ(m_Run.m_Report.at("saved"), false);
}

TEST_F(CUnsavedRunTest, AStoreThatIsGoneIsNoSuccessAndTheReportIsWhole) {
    BreakStoreAtTheEnd([this] {
        CDirectSQL(GetConnection()).Execute("ALTER TABLE schema_version RENAME TO gone");
        Sabotage("");
    });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(m_Run.m_Report.at("saved"), false);
    EXPECT_FALSE(m_Run.m_Report.at("steps").empty());
}

// The stored matrix can't be read: a new calibration takes its place, and nothing else does.
TEST_F(CUnsavedRunTest, ADamagedCalibrationIsReplacedByANewOne) {
    ASSERT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    const auto InvA = m_Run.m_Report.at("inv_a");
    CDirectSQL(GetConnection()).Execute("UPDATE single_plane SET inv_a = '2x2: nan 0; 0 nan'");
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitFailed) << "not calibrated";
    EXPECT_TRUE(m_Run.HasLine("INV: \"2x2: nan 0; 0 nan\""));
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(m_Run.m_Report.at("saved"), true);
    EXPECT_EQ(m_Run.m_Report.at("inv_a"), InvA);
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
}

}  // namespace
