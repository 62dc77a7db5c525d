// Runs are in the archive of their store as they went, whoever drove them.
#include <gmock/gmock.h>

#include "archive/runstore.h"
#include "archive/setuptext.h"
#include "console/calibrationrestore.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storefailure.h"
#include "tests/system/mainwindowfixture.h"
#include "tests/system/wholerun.h"

namespace {

using Procedure = COptions::Procedure;

std::string GetConnection(const CWholeRun& rRun) {
    return "sqlite:" + rRun.m_Installation.GetDatabaseFile().string();
}

class CArchivedRun : public CWholeRun {
public:
    CArchivedRun() : CWholeRun(CRotorFile::GetBuiltIn()) { m_Options.m_bArchive = true; }

    std::vector<CRunSummary> List() const { return CRunStore(GetConnection(*this)).List({}); }
    CRunRecord Load(std::int64_t Id) const { return CRunStore(GetConnection(*this)).Load(Id).value(); }
    void Execute(const std::string& rStatement) const {
        PreBalDB::CDirectSQL(GetConnection(*this)).Execute(rStatement);
    }
};

class ArchivedWindowRunTest : public CMainWindowTestBase {
protected:
    ArchivedWindowRunTest() { m_Run.m_Options.m_bArchive = true; }
    std::vector<CRunSummary> List() const { return CRunStore(GetConnection(m_Run)).List({}); }
};

}  // namespace

TEST(ArchivedRun, IsTheRecordThatWasGathered) {
    CArchivedRun Run;
    Run.m_Options.m_RotorName = "wheel 7";
    ASSERT_EQ(Run.Run(Procedure::ePrebalanceAndRebalance), eExitWithinTarget);
    ASSERT_EQ(Run.List().size(), 2U);
    for (std::int64_t Id : {1, 2}) {
        const CRunRecord Loaded = Run.Load(Id);
        const CRunRecord& rGathered = Run.m_Records.at(static_cast<std::size_t>(Id - 1));
        EXPECT_EQ(Loaded.m_Measurements, rGathered.m_Measurements);
        EXPECT_EQ(Loaded.m_Warnings, rGathered.m_Warnings);
        EXPECT_EQ(SetupToText(Loaded.m_Setup), SetupToText(rGathered.m_Setup));
        EXPECT_EQ(Loaded.m_Started, rGathered.m_Started);
        EXPECT_EQ(Loaded.m_Result, rGathered.m_Result);
        EXPECT_EQ(Loaded.m_State, CRunRecord::State::eFinished);
        EXPECT_TRUE(Loaded.m_bSaved);
        EXPECT_EQ(Loaded.m_Rotor, "wheel 7");
    }
    EXPECT_NE(PreBalDB::CPreBalDatabase(Run.m_MachineName).ReadConfiguration("Default").IsCalibrated(), 0);
}

TEST(ArchivedRun, OneThatIsBrokenOffIsThereWithWhatItHad) {
    CArchivedRun Run;
    std::string Request;
    Run.m_Options.m_GetEndRequest = [&Request] { return Request; };
    Run.OnSituation = [&Request](const CSituation& rSituation, CConsoleSession&) {
        Request = rSituation.m_Progress.m_State == "eTestUnbalanceSetWeights" ? "SIGTERM" : "";
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    ASSERT_EQ(Run.List().size(), 1U);
    EXPECT_EQ(Run.List()[0].m_State, CRunRecord::State::eBrokenOff);
    EXPECT_TRUE(Run.List()[0].m_Before[0].has_value());
    EXPECT_FALSE(Run.List()[0].m_After[0].has_value());
}

TEST(ArchivedRun, WhileItGoesOnItStandsThereWithItsMeasurements) {
    CArchivedRun Run;
    std::size_t nMeasured = 0;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession&) {
        if (rSituation.m_Progress.m_State == "ePreBalanceSetWeights" && nMeasured == 0) {
            // What a console that was killed here would leave.
            for (int nTries = 0; nTries < 1000 && nMeasured < 2; ++nTries) {
                const auto Lines = Run.List();
                ASSERT_LE(Lines.size(), 1U);
                nMeasured = Lines.empty() ? 0 : Run.Load(Lines[0].m_Id).m_Measurements.size();
                EXPECT_TRUE(Lines.empty() || Lines[0].m_State == CRunRecord::State::eRunning);
            }
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(nMeasured, 2U);
}

TEST(ArchivedRun, AnArchiveThatCannotBeWrittenDisturbsNoRunAndIsTold) {
    CArchivedRun Run;
    { const CRunStore Made(GetConnection(Run)); }
    Run.Execute("CREATE TRIGGER fault AFTER INSERT ON run BEGIN SELECT RAISE(ABORT, 'no room'); END");
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_TRUE(Run.m_Report["saved"].get<bool>());
    EXPECT_TRUE(Run.HasLine("can't be kept in the archive: no room"));
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(ArchivedRun, AnArchiveOfANewerVersionDisturbsNoRunAndIsTold) {
    CArchivedRun Run;
    { const CRunStore Made(GetConnection(Run)); }
    Run.Execute("UPDATE run_version SET version = 99");
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_TRUE(Run.HasLine("version 99 of the archive"));
}

TEST(ArchivedRun, TheReportIsTheSameBytesWithAndWithoutIt) {
    const auto Report = [](bool bArchive) {
        CArchivedRun Run;
        Run.m_Options.m_bArchive = bArchive;
        Run.Run(Procedure::ePrebalance);
        return Run.m_Report.dump();
    };
    EXPECT_EQ(Report(true), Report(false));
}

TEST(ArchivedRun, PicturesAreKeptWhenSomebodyAsked) {
    CArchivedRun Run;
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_TRUE(CRunStore(GetConnection(Run)).GetPictures(1).empty());
    const CTempDirectory Pictures;
    Run.m_Options.m_ScreenshotDirectory = Pictures.GetPath().string();
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    const auto Picture = CRunStore(GetConnection(Run)).LoadPicture(2, "final");
    ASSERT_TRUE(Picture.has_value());
    EXPECT_GT(Picture->size(), 1000U);
    EXPECT_EQ(Picture->at(1), 'P');
}

TEST(ArchivedRun, ItsCalibrationComesBackAfterAnotherOne) {
    CArchivedRun Run;
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    const CRunRecord First = Run.Load(1);
    Run.m_Rotor.m_Influence[0][0] = {300.0, 80.0};
    Run.Run(Procedure::ePrebalance);
    PreBalDB::SetDatabaseConnection(GetConnection(Run));
    const auto ReadInvA = [&Run] {
        return PreBalDB::CPreBalDatabase(Run.m_MachineName)
            .ReadConfiguration("Default")
            .GetSinglePlane()
            ->GetInvA();
    };
    ASSERT_FALSE(ReadInvA() == First.m_Calibration->m_InvA);
    const CCalibrationRestore Restore(First);
    EXPECT_EQ(Restore.FindObstacle(), "");
    EXPECT_EQ(Restore.Restore(), "");
    EXPECT_EQ(ReadInvA(), First.m_Calibration->m_InvA);
}

TEST(ArchivedRun, ItsCalibrationIsRefusedWhenItDoesNotFitAnyMore) {
    CArchivedRun Run;
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    CRunRecord First = Run.Load(1);
    PreBalDB::SetDatabaseConnection(GetConnection(Run));
    {
        PreBalDB::CPreBalDatabase Database(Run.m_MachineName);
        Database.ReadConfiguration("Default").GetSinglePlane()->SetRotationDirection(
            PreBalDB::CTypeBase::eCounterClockwise);
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }
    EXPECT_THAT(CCalibrationRestore(First).FindObstacle(),
                testing::HasSubstr("different since the run: rotation"));
    First.m_Setup.m_Configuration = "Gone";
    EXPECT_THAT(CCalibrationRestore(First).FindObstacle(), testing::HasSubstr("isn't there any more"));
    First.m_Calibration.reset();
    EXPECT_THAT(CCalibrationRestore(First).FindObstacle(), testing::HasSubstr("has left no calibration"));
}

TEST_F(ArchivedWindowRunTest, ARebalancingThatGoesOnBehindAPrebalancingIsARunOfItsOwn) {
    Open();
    Press("Pre-balance");
    BalanceByButtons();
    m_Loop.Advance(3000);
    Press("Re-balance");
    m_Loop.Advance(2000);
    Close();
    const std::vector<CRunSummary> Lines = List();
    ASSERT_EQ(Lines.size(), 2U);
    EXPECT_EQ(Lines[1].m_Result, "SetupSuccess");
    EXPECT_EQ(Lines[1].m_State, CRunRecord::State::eFinished);
    EXPECT_FALSE(Lines[1].m_bRebalance);
    EXPECT_EQ(Lines[1].m_Driver, CRunRecord::Driver::ePanel);
    EXPECT_TRUE(Lines[1].m_After[0].has_value());
    EXPECT_TRUE(Lines[0].m_bRebalance);
    EXPECT_NE(Lines[0].m_State, CRunRecord::State::eFinished);
    EXPECT_EQ(CRunStore(GetConnection(m_Run)).Load(1)->m_Measurements.size(), 3U);
}

TEST_F(ArchivedWindowRunTest, ItsPageAtTheVerdictIsKept) {
    Open();
    Press("Pre-balance");
    BalanceByButtons();
    m_Loop.Advance(3000);
    Press("Finish");
    Close();
    ASSERT_EQ(List().size(), 1U);
    EXPECT_TRUE(List()[0].m_bSaved);
    EXPECT_TRUE(CRunStore(GetConnection(m_Run)).LoadPicture(1, "final").has_value());
}
