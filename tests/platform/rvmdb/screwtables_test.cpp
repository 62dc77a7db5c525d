// Screw tables in a store, and the defaults.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/logcapture.h"

using namespace PreBalDB;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Screws = Base::CWDArray<CScrew>;

std::vector<std::string> GetNames(const CPreBalDatabase& rDatabase) {
    const Base::CStringArray Names = rDatabase.GetScrewTableNames();
    return {Names.begin(), Names.end()};
}

void Write(CPreBalDatabase& rDatabase, const std::string& rName, const Screws& rScrews) {
    rDatabase.ReadScrewTable(rName).SetScrewArray(rScrews);
    ASSERT_NE(rDatabase.WriteScrewTable(), 0);
}

void WriteScrewConfiguration(CPreBalDatabase& rDatabase, const std::string& rName,
                             const std::string& rTable) {
    CPreBalBaseTableEntry& rEntry = rDatabase.ReadConfiguration(rName);
    rEntry.CreateSinglePlane().CreateScrewCompensationTableEntry().SetScrewTableName(rTable);
    ASSERT_NE(rDatabase.WriteConfiguration(), 0);
}

std::string GetTableOf(CPreBalDatabase& rDatabase, const std::string& rConfiguration) {
    return rDatabase.ReadConfiguration(rConfiguration)
        .GetSinglePlane()
        ->GetScrewCompensationTableEntry()
        ->GetScrewTableName();
}

}  // namespace

using CScrewTableTest = CStoreTest;
INSTANTIATE_TEST_SUITE_P(Stores, CScrewTableTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(CScrewTableTest, ANewStoreHasTheDefaultTable) {
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->GetDefaultScrewTableName(), "Default");
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default"));
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0) << "nothing to do";
}

// The search takes the last screw for the largest, and the panel keeps a weight at most twice and drops 0 g.
TEST_P(CScrewTableTest, TheDefaultTableHoldsRisingWeightsWithNames) {
    const auto pDatabase = Open();
    const Screws& rScrews = pDatabase->ReadScrewTable("Default").GetScrewArray();
    ASSERT_GE(rScrews.GetSize(), 3U);
    double Before = 0.0;
    for (const CScrew& rScrew : rScrews) {
        EXPECT_GT(rScrew.GetWeight(), Before);
        EXPECT_EQ(rScrew.GetScrewName(), rScrew.GetWeightAsString() + " g");
        Before = rScrew.GetWeight();
    }
}

TEST_P(CScrewTableTest, AMissingTableIsMadeEmptyAndInMemoryOnly) {
    const auto pDatabase = Open();
    EXPECT_TRUE(pDatabase->ReadScrewTable("M6").GetScrewArray().IsEmpty());
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default"));
}

TEST_P(CScrewTableTest, ScrewsComeBackInTheirOrderWithNamesAndWeights) {
    const Screws Table = {CScrew("long", 3.0), CScrew("", 0.1 + 0.2), CScrew("short", 1.0),
                          CScrew("short", 1.0),
                          CScrew("M5\xC3\x97"
                                 "12 'x'",
                                 1e-9)};
    {
        const auto pDatabase = Open();
        Write(*pDatabase, "M6", Table);
    }
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->ReadScrewTable("M6").GetScrewArray(), Table);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default", "M6"));
}

TEST_P(CScrewTableTest, AShorterTableReplacesALongerOne) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1), CScrew("b", 2), CScrew("c", 3)});
    Write(*pDatabase, "M6", {CScrew("d", 4)});
    EXPECT_EQ(pDatabase->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("d", 4)}));
}

TEST_P(CScrewTableTest, ATableBeingEditedMayBeWrittenEmpty) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {});
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default", "M6"));
}

TEST_P(CScrewTableTest, AChangedNameMakesAFurtherTable) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1)});
    CScrewTableEntry& rTable = pDatabase->ReadScrewTable("M6");
    rTable.SetName("M8");
    rTable.SetScrewArray({CScrew("b", 2)});
    EXPECT_NE(pDatabase->WriteScrewTable(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default", "M6", "M8"));
    EXPECT_EQ(pDatabase->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("a", 1)}));
}

TEST_P(CScrewTableTest, FromAChangedNameOnTheFurtherTableIsTheOneThatIsWritten) {
    const auto pDatabase = Open();
    CScrewTableEntry& rTable = pDatabase->ReadScrewTable("M6");
    rTable.SetName("M8");
    rTable.SetScrewArray({CScrew("b", 2)});
    ASSERT_NE(pDatabase->WriteScrewTable(), 0);
    Write(*Open(), "M8", {CScrew("c", 3)});
    rTable.SetScrewArray({CScrew("d", 4)});
    EXPECT_NE(pDatabase->WriteScrewTable(), 0);
    EXPECT_THAT(pDatabase->GetOutcome().m_Conflicts, ElementsAre("screw_table.M8"));
    EXPECT_EQ(Open()->ReadScrewTable("M8").GetScrewArray(), (Screws{CScrew("c", 3)}));
}

TEST_P(CScrewTableTest, TablesBelongToTheirMachine) {
    const auto pFirst = Open("M-1");
    const auto pSecond = Open("M-2");
    Write(*pFirst, "M6", {CScrew("a", 1)});
    EXPECT_THAT(GetNames(*pSecond), ElementsAre("Default"));
    EXPECT_TRUE(pSecond->ReadScrewTable("M6").GetScrewArray().IsEmpty());
}

TEST_P(CScrewTableTest, WritingWithoutReadingOrWithoutANameIsRefused) {
    CLogCapture Log;
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->WriteScrewTable(), 0);
    pDatabase->ReadScrewTable("M6").SetName("");
    EXPECT_EQ(pDatabase->WriteScrewTable(), 0);
    EXPECT_THAT(Log.GetTexts("Error"),
                ElementsAre(HasSubstr("no screw table written"), HasSubstr("needs a name")));
}

TEST_P(CScrewTableTest, AConfigurationSeesItsTableAsItIsNow) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1)});
    CScrewCompensationTableEntry& rScrew =
        pDatabase->ReadConfiguration("Wheel").CreateSinglePlane().CreateScrewCompensationTableEntry();
    EXPECT_EQ(rScrew.GetScrewTable().GetSize(), 8U);
    rScrew.SetScrewTableName("M6");
    EXPECT_EQ(rScrew.GetScrewTable(), (Screws{CScrew("a", 1)}));
    Write(*pDatabase, "M6", {CScrew("b", 2), CScrew("c", 3)});
    EXPECT_EQ(rScrew.GetScrewTable(), (Screws{CScrew("b", 2), CScrew("c", 3)}));
    rScrew.SetScrewTableName("no such table");
    EXPECT_TRUE(rScrew.GetScrewTable().IsEmpty());
}

TEST_P(CScrewTableTest, BothPlanesOfAStoredConfigurationSeeTheirTables) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1)});
    CTwoPlaneBalancingTableEntry& rTwo = pDatabase->ReadConfiguration("Wheel").CreateTwoPlane();
    rTwo.CreatePlane1ScrewCompensationTableEntry();
    rTwo.CreatePlane2ScrewCompensationTableEntry().SetScrewTableName("M6");
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    const CTwoPlaneBalancingTableEntry& rStored = *pDatabase->ReadConfiguration("Wheel").GetTwoPlane();
    EXPECT_EQ(rStored.GetPlane1ScrewCompensationTableEntry()->GetScrewTable().GetSize(), 8U);
    EXPECT_EQ(rStored.GetPlane2ScrewCompensationTableEntry()->GetScrewTable(), (Screws{CScrew("a", 1)}));
}

TEST_P(CScrewTableTest, DefaultsFillAnEmptyDefaultTable) {
    const auto pDatabase = Open();
    Write(*pDatabase, "Default", {});
    EXPECT_NE(pDatabase->TestAndSetDefaults(), 0);
    EXPECT_FALSE(pDatabase->ReadScrewTable("Default").GetScrewArray().IsEmpty());
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0);
}

TEST_P(CScrewTableTest, DefaultsLeaveAnEditedDefaultTableAlone) {
    const auto pDatabase = Open();
    Write(*pDatabase, "Default", {CScrew("own", 7)});
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0);
    EXPECT_EQ(pDatabase->ReadScrewTable("Default").GetScrewArray(), (Screws{CScrew("own", 7)}));
}

TEST_P(CScrewTableTest, DefaultsDropTablesWithoutScrews) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {});
    Write(*pDatabase, "M8", {CScrew("a", 1)});
    EXPECT_NE(pDatabase->TestAndSetDefaults(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Default", "M8"));
}

TEST_P(CScrewTableTest, DefaultsGiveConfigurationsOfAMissingTableTheDefaultOne) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1)});
    WriteScrewConfiguration(*pDatabase, "Missing", "M10");
    WriteScrewConfiguration(*pDatabase, "Kept", "M6");
    EXPECT_NE(pDatabase->TestAndSetDefaults(), 0);
    EXPECT_EQ(GetTableOf(*pDatabase, "Missing"), "Default");
    EXPECT_EQ(GetTableOf(*pDatabase, "Kept"), "M6");
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0);
}

// Else the next write of the entry would bring the missing name back.
TEST_P(CScrewTableTest, DefaultsCorrectTheConfigurationInMemoryToo) {
    const auto pDatabase = Open();
    CTwoPlaneBalancingTableEntry& rTwo = pDatabase->ReadConfiguration("Wheel").CreateTwoPlane();
    rTwo.CreatePlane1ScrewCompensationTableEntry().SetScrewTableName("M10");
    rTwo.CreatePlane2ScrewCompensationTableEntry().SetScrewTableName("M12");
    EXPECT_NE(pDatabase->TestAndSetDefaults(), 0);
    EXPECT_EQ(rTwo.GetPlane1ScrewCompensationTableEntry()->GetScrewTableName(), "Default");
    EXPECT_EQ(rTwo.GetPlane2ScrewCompensationTableEntry()->GetScrewTableName(), "Default");
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0);
}

TEST_P(CScrewTableTest, DefaultsDoNotTouchOtherMachines) {
    const auto pFirst = Open("M-1");
    const auto pSecond = Open("M-2");
    Write(*pSecond, "M6", {});
    EXPECT_EQ(pFirst->TestAndSetDefaults(), 0);
    EXPECT_THAT(GetNames(*pSecond), ElementsAre("Default", "M6"));
}

using CScrewTableFailureTest = CStoreFileTest;

TEST_F(CScrewTableFailureTest, AFailureInTheMiddleLeavesTheOldTableIntact) {
    const auto pDatabase = Open();
    Write(*pDatabase, "M6", {CScrew("a", 1), CScrew("b", 2)});
    CLogCapture Log;
    CDirectSQL Sql(m_Connection);
    Sql.Execute(
        "CREATE TRIGGER sabotage BEFORE INSERT ON screw WHEN NEW.position = 1 "
        "BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
    pDatabase->ReadScrewTable("M6").SetScrewArray({CScrew("c", 3), CScrew("d", 4)});
    EXPECT_EQ(pDatabase->WriteScrewTable(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("disk trouble")));
    EXPECT_EQ(pDatabase->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("a", 1), CScrew("b", 2)}));
}
