// Stores that earlier programs have left, with their archive.
#include <gmock/gmock.h>

#include <filesystem>

#include "archive/isostore.h"
#include "archive/runstore.h"
#include "platform/rvmdb/schema.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/testpaths.h"

namespace {

class UpgradeTest : public CStoreFileTest {};

}  // namespace

// The first that had runs and data for ISO grades; these tables are in their first version still.
TEST_F(UpgradeTest, RunsAndIsoDataComeThroughWithTheirValues) {
    std::filesystem::copy_file(TestData("platform/rvmdb/version3.sqlite"), m_Path);
    CRunStore Store(m_Connection);
    const std::vector<CRunSummary> Runs = Store.List({});
    ASSERT_EQ(Runs.size(), 1U);
    EXPECT_EQ(Runs[0].m_Rotor, "Spindle 7");
    EXPECT_EQ(Runs[0].m_Result, "SetupSuccess");
    EXPECT_TRUE(Runs[0].m_bSaved);
    const std::optional<CRunRecord> Run = Store.Load(Runs[0].m_Id);
    ASSERT_TRUE(Run);
    ASSERT_EQ(Run->m_Measurements.size(), 3U);
    EXPECT_DOUBLE_EQ(Run->m_Measurements[0].m_Planes[0]->m_Smoothed.m_X, -102.575);
    EXPECT_DOUBLE_EQ(Run->m_Measurements[2].m_Planes[0]->m_Smoothed.m_Y, 3.425);
    EXPECT_FALSE(Run->m_Measurements[1].m_Planes[0]->m_Readings.empty());
    ASSERT_TRUE(Run->m_Calibration);
    EXPECT_EQ(Run->m_Calibration->m_InvA(0, 0), 0.007622840800712679);
    EXPECT_EQ(Run->m_Calibration->m_ReferenceWeight[0], 2.5);
    PreBalDB::CDirectSQL Sql(m_Connection);
    EXPECT_EQ(Sql.Query("SELECT version FROM schema_version")[0].GetInteger(0),
              PreBalDB::Schema::CURRENT_VERSION);
    const auto Iso = CIsoStore(Sql).Read("0#1#255-0-486107-930938880-1", "Default");
    ASSERT_TRUE(Iso);
    EXPECT_EQ(Iso->m_RotorMass, 12.5);
    EXPECT_EQ(Iso->m_Grade, 6.3);
    EXPECT_EQ(Iso->m_Unit[0], 45.5);
    EXPECT_EQ(Iso->m_Distance[0], 0.25);
}

TEST_F(UpgradeTest, AnArchiveOrIsoDataOfANewerVersionAreRefusedAndStay) {
    std::filesystem::copy_file(TestData("platform/rvmdb/version3.sqlite"), m_Path);
    PreBalDB::CDirectSQL Sql(m_Connection);
    Sql.Execute("UPDATE run_version SET version = 2");
    Sql.Execute("UPDATE iso_version SET version = 2");
    EXPECT_THROW(CRunStore{m_Connection}, PreBalDB::CDatabaseError);
    EXPECT_THROW(CIsoStore{Sql}, PreBalDB::CDatabaseError);
    EXPECT_EQ(Sql.Query("SELECT version FROM run_version")[0].GetInteger(0), 2);
    EXPECT_EQ(Sql.Query("SELECT version FROM iso_version")[0].GetInteger(0), 2);
}
