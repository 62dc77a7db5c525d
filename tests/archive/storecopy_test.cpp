// A store copied into another, from a file to a server and back: all of it or nothing.
#include "archive/storecopy.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "archive/isostore.h"
#include "archive/runstore.h"
#include "platform/rvmdb/tablerows.h"
#include "tests/platform/rvmdb/calibrated.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/archivedrun.h"

using PreBalDB::CDatabaseError;
using PreBalDB::CDirectSQL;
using PreBalDB::CTableRows;
using testing::HasSubstr;

namespace {

/// A full store in a file of its own; the parameter is where it is copied to.
class StoreCopyTest : public CStoreTest {
protected:
    void SetUp() override {
        PreBalDB::SetDatabaseConnection(m_From);
        const auto pDatabase = Open("M-1");
        MakeCalibrated(*pDatabase, "Scheibe äöü", 0.1 + 0.2);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
        auto& rScrews = pDatabase->ReadConfiguration("Screws").CreateTwoPlane();
        rScrews.CreatePlane2ScrewCompensationTableEntry().SetNumberOfHoles(7);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
        Open("M-2");
        CDirectSQL Sql(m_From);
        CIsoData Data;
        Data.m_RotorMass = 12.5;
        ASSERT_TRUE(CIsoStore(Sql).Write("M-1", "Screws", Data));
        CRunStore Runs(m_From);
        for (int i = 0; i < 120; ++i) {
            Runs.Write(MakeArchivedRun(), std::to_string(i), {});
        }
        Runs.WritePicture(7, "final", std::vector<unsigned char>(30000, 0xA5));
        Runs.Remove(std::vector<std::int64_t>{3, 120});
    }
    static void ExpectSame(const std::string& rLeft, const std::string& rRight) {
        CDirectSQL Left(rLeft);
        CDirectSQL Right(rRight);
        for (const char* const pTable :
             {"machine", "configuration", "single_plane", "two_plane", "weight_compensation",
              "screw_compensation", "screw_table", "screw", "iso_data", "run", "run_setup", "run_measurement",
              "run_plane", "run_warning", "run_prediction", "run_calibration", "run_picture", "run_counter",
              "delivery"}) {
            const CTableRows Rows = CTableRows::Read(Left, pTable);
            EXPECT_TRUE(Rows == CTableRows::Read(Right, pTable)) << pTable;
            EXPECT_NE(Rows.m_Rows.empty(), std::string(pTable) != "delivery") << pTable;
        }
    }
    static std::size_t Find(const std::vector<CStoreCopy::CTable>& rTables, const std::string& rName) {
        for (const CStoreCopy::CTable& rTable : rTables) {
            if (rTable.m_Name == rName) {
                return rTable.m_nRows;
            }
        }
        return 0;
    }

    std::string m_From = "sqlite:" + m_Directory.filePath("from.sqlite").toStdString();
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, StoreCopyTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(StoreCopyTest, EverythingComesThereAndBack) {
    const std::vector<CStoreCopy::CTable> Copied = CStoreCopy(m_From, m_Connection).Copy();
    EXPECT_EQ(Find(Copied, "machine"), 2U);
    EXPECT_EQ(Find(Copied, "configuration"), 2U);
    EXPECT_EQ(Find(Copied, "run"), 118U);
    EXPECT_EQ(Find(Copied, "run_picture"), 1U);
    ExpectSame(m_From, m_Connection);
    const std::string Back = "sqlite:" + m_Directory.filePath("back.sqlite").toStdString();
    CStoreCopy(m_Connection, Back).Copy();
    ExpectSame(m_From, Back);
    // The next run has the next number.
    EXPECT_EQ(CRunStore(Back).Write(MakeArchivedRun(), "next", {}).m_Id, 121);
}

TEST_P(StoreCopyTest, WhatIsThereIsSeenAndReplacedAsAWhole) {
    PreBalDB::SetDatabaseConnection(m_Connection);
    {
        const auto pDatabase = Open("Other");
        MakeCalibrated(*pDatabase, "Wheel");
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    CRunStore(m_Connection).Write(MakeArchivedRun(), "other", {});
    CStoreCopy Copy(m_From, m_Connection);
    EXPECT_FALSE(Copy.IsTargetEmpty());
    Copy.Copy();
    ExpectSame(m_From, m_Connection);
}

TEST_P(StoreCopyTest, ANewStoreIsEmpty) {
    EXPECT_TRUE(CStoreCopy(m_From, m_Connection).IsTargetEmpty());
}

TEST_P(StoreCopyTest, ACopyThatFailsLeavesWhatWasThere) {
    CStoreCopy(m_From, m_Connection).Copy();
    CDirectSQL Sql(m_From);
    Sql.Execute("PRAGMA foreign_keys = OFF");
    // Of a run that isn't there.
    Sql.Execute("INSERT INTO run_setup (run, setup) VALUES (999, '')");
    EXPECT_THROW(CStoreCopy(m_From, m_Connection).Copy(), PreBalDB::CSqlError);
    Sql.Execute("DELETE FROM run_setup WHERE run = 999");
    ExpectSame(m_From, m_Connection);
}

TEST_P(StoreCopyTest, AnOlderOneIsNotChangedByBeingCopied) {
    {
        CDirectSQL Sql(m_From);
        Sql.Execute("UPDATE schema_version SET version = 3");
    }
    try {
        const CStoreCopy Copy(m_From, m_Connection);
        ADD_FAILURE();
    } catch (const CDatabaseError& rError) {
        EXPECT_THAT(rError.what(), HasSubstr("has version 3"));
        EXPECT_THAT(rError.what(), HasSubstr("by database prepare"));
    }
    EXPECT_FALSE(CDirectSQL(m_Connection).HasTables());
}

TEST_P(StoreCopyTest, WhatIsNoStoreIsToldAndNotMade) {
    const std::string None = m_Directory.filePath("none.sqlite").toStdString();
    EXPECT_THROW(CStoreCopy("sqlite:" + None, m_Connection), CDatabaseError);
    EXPECT_FALSE(std::filesystem::exists(None));
    EXPECT_THROW(CStoreCopy(m_From, m_From), CDatabaseError);
    EXPECT_EQ(CStoreCopy::MakeConnection("/a/b"), "sqlite:/a/b");
    EXPECT_EQ(CStoreCopy::MakeConnection("sqlite:/a/b"), "sqlite:/a/b");
    EXPECT_EQ(CStoreCopy::MakeConnection("postgresql://h/n"), "postgresql://h/n");
}
