// Names of configurations and screw tables: what may be one, what is made under a new one, what is deleted.
#include "platform/rvmdb/names.h"

#include <gmock/gmock.h>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "tests/platform/rvmdb/calibrated.h"
#include "tests/platform/rvmdb/databasefixture.h"

using namespace PreBalDB;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class CNamesTest : public CStoreTest {
protected:
    ~CNamesTest() override { SetLanguage("en"); }
    static void MakeScrews(CPreBalDatabase& rDatabase, const std::string& rConfiguration,
                           const std::string& rTable) {
        rDatabase.ReadConfiguration(rConfiguration)
            .CreateSinglePlane()
            .CreateScrewCompensationTableEntry()
            .SetScrewTableName(rTable);
        ASSERT_NE(rDatabase.WriteConfiguration(), 0);
    }
    static void MakeTable(CPreBalDatabase& rDatabase, const std::string& rTable) {
        rDatabase.ReadScrewTable(rTable).SetScrewArray({CScrew("M6", 1.5)});
        ASSERT_NE(rDatabase.WriteScrewTable(), 0);
    }
    static bool HasTable(CPreBalDatabase& rDatabase, const std::string& rTable) {
        const Base::CStringArray Names = rDatabase.GetScrewTableNames();
        return std::find(Names.begin(), Names.end(), rTable) != Names.end();
    }
};

StoreFailure GetCause(const std::string& rName) {
    try {
        CheckNewName(rName, "something");
    } catch (const CSqlError& rError) {
        return rError.GetCause();
    }
    return StoreFailure::eOther;
}

}  // namespace

TEST(Utf8, IsToldFromWhatIsNot) {
    for (const char* const pText :
         {"", "Wheel", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x94\xA9", "\xEF\xBF\xBD"}) {
        EXPECT_TRUE(IsUtf8(pText)) << pText;
    }
    // A lone following byte, none that follows, too few, an overlong form, a surrogate, beyond the last one.
    for (const char* const pText :
         {"\x80", "\xC3", "\xE2\x82", "\xC3(", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"}) {
        EXPECT_FALSE(IsUtf8(pText)) << pText;
    }
}

TEST(NewNames, AreCheckedForLengthInCharacters) {
    std::string Longest;
    for (int i = 0; i < 60; ++i) {
        Longest += "\xC3\xA4";
    }
    EXPECT_EQ(GetCause(Longest), StoreFailure::eOther);
    EXPECT_EQ(GetCause(Longest + "a"), StoreFailure::eNameTooLong);
    EXPECT_EQ(GetCause(""), StoreFailure::eNoName);
    EXPECT_EQ(GetCause(" \t"), StoreFailure::eNoName);
    EXPECT_EQ(GetCause("W\xFF"), StoreFailure::eNameNotText);
    EXPECT_EQ(GetCause(std::string("W\0h", 3)), StoreFailure::eNameNotText);
}

TEST_P(CNamesTest, AFurtherConfigurationHasValuesAndCalibration) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel", 0.75);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_NE(pDatabase->NameConfiguration("Wheel 400"), 0);
    for (const char* const pName : {"Wheel", "Wheel 400"}) {
        const auto pReader = Open();
        const CPreBalBaseTableEntry& rEntry = pReader->ReadConfiguration(pName);
        EXPECT_NE(rEntry.IsCalibrated(), 0) << pName;
        EXPECT_EQ(rEntry.GetSinglePlane()->GetInvA()(0, 0), 0.75) << pName;
    }
}

TEST_P(CNamesTest, ARefusedNameLeavesEverythingAsItWas) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "A", 0.25);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    CPreBalBaseTableEntry& rEntry = MakeCalibrated(*pDatabase, "B", 0.75);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    for (const char* const pName : {"A", "", "W\xFF"}) {
        EXPECT_EQ(pDatabase->NameConfiguration(pName), 0);
        EXPECT_TRUE(IsRefusal(pDatabase->GetOutcome().m_Cause));
        EXPECT_EQ(rEntry.GetProcessName(), "B");
    }
    EXPECT_EQ(Open()->ReadConfiguration("A").GetSinglePlane()->GetInvA()(0, 0), 0.25);
    rEntry.SetTargetUnbalance(9);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(Open()->ReadConfiguration("B").GetTargetUnbalance(), 9U);
}

TEST_P(CNamesTest, AFurtherTableNeverTakesTheNameOfAnother) {
    const auto pDatabase = Open();
    MakeTable(*pDatabase, "Brass");
    CScrewTableEntry& rTable = pDatabase->ReadScrewTable("Default");
    rTable.SetScrewArray({CScrew("M8", 8.0)});
    EXPECT_EQ(pDatabase->NameScrewTable("Brass"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eNameTaken);
    EXPECT_EQ(Open()->ReadScrewTable("Brass").GetScrewArray()[0], CScrew("M6", 1.5));
    EXPECT_NE(pDatabase->NameScrewTable("Steel"), 0);
    EXPECT_EQ(Open()->ReadScrewTable("Steel").GetScrewArray()[0], CScrew("M8", 8.0));
    EXPECT_NE(Open()->ReadScrewTable("Default").GetScrewArray()[0], CScrew("M8", 8.0));
}

TEST_P(CNamesTest, AConfigurationIsDeletedButNeverTheDefault) {
    const auto pDatabase = Open();
    for (const char* const pName : {"Default", "Wheel"}) {
        MakeCalibrated(*pDatabase, pName);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    EXPECT_NE(pDatabase->DeleteConfiguration("Wheel"), 0);
    EXPECT_EQ(Open()->ReadConfiguration("Wheel").IsCalibrated(), 0);
    EXPECT_EQ(pDatabase->DeleteConfiguration("Wheel"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eMissing);
    EXPECT_EQ(pDatabase->DeleteConfiguration("Default"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eDefault);
    EXPECT_NE(Open()->ReadConfiguration("Default").IsCalibrated(), 0);
}

TEST_P(CNamesTest, AConfigurationOfAnotherMachineStays) {
    const auto pDatabase = Open();
    const auto pOther = Open("M-2");
    for (const auto& rDatabase : {pDatabase.get(), pOther.get()}) {
        MakeCalibrated(*rDatabase, "Wheel");
        ASSERT_NE(rDatabase->WriteConfiguration(), 0);
        MakeTable(*rDatabase, "Brass");
    }
    EXPECT_NE(pDatabase->DeleteConfiguration("Wheel"), 0);
    EXPECT_NE(pDatabase->DeleteScrewTable("Brass"), 0);
    EXPECT_NE(Open("M-2")->ReadConfiguration("Wheel").IsCalibrated(), 0);
    EXPECT_TRUE(HasTable(*Open("M-2"), "Brass"));
}

TEST_P(CNamesTest, ATableThatIsUsedStaysAndItsUsersAreTold) {
    const auto pDatabase = Open();
    MakeTable(*pDatabase, "Brass");
    MakeScrews(*pDatabase, "Wheel", "Brass");
    MakeScrews(*pDatabase, "Default", "Brass");
    EXPECT_EQ(pDatabase->DeleteScrewTable("Brass"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eInUse);
    EXPECT_THAT(pDatabase->GetOutcome().m_Users, ElementsAre("Default", "Wheel"));
    EXPECT_TRUE(HasTable(*Open(), "Brass"));
    MakeScrews(*pDatabase, "Wheel", "Default");
    MakeScrews(*pDatabase, "Default", "Default");
    EXPECT_NE(pDatabase->DeleteScrewTable("Brass"), 0);
    EXPECT_FALSE(HasTable(*Open(), "Brass"));
    EXPECT_EQ(pDatabase->DeleteScrewTable("Brass"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eMissing);
    EXPECT_EQ(pDatabase->DeleteScrewTable("Default"), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eDefault);
    EXPECT_TRUE(HasTable(*Open(), "Default"));
}

TEST_P(CNamesTest, WhyNothingWasDeletedIsToldInTheLanguageInUse) {
    const auto pDatabase = Open();
    MakeTable(*pDatabase, "Brass");
    MakeScrews(*pDatabase, "Wheel", "Brass");
    struct CCase {
        std::function<void()> m_Do;
        const char* m_pEnglish;
        const char* m_pGerman;
    };
    for (const CCase& rCase :
         {CCase{[&] { pDatabase->DeleteScrewTable("Brass"); }, "Wheel uses it", "wird benutzt von Wheel"},
          CCase{[&] { pDatabase->DeleteScrewTable("Default"); }, "always there", "immer da"},
          CCase{[&] { pDatabase->DeleteScrewTable("None"); }, "There is no", "gibt es nicht mehr"}}) {
        rCase.m_Do();
        SetLanguage("en");
        EXPECT_THAT(StoreTexts::GetDeletion("Brass", pDatabase->GetOutcome()),
                    AllOf(HasSubstr(rCase.m_pEnglish), HasSubstr("\"Brass\"")));
        SetLanguage("de");
        EXPECT_THAT(StoreTexts::GetDeletion("Brass", pDatabase->GetOutcome()), HasSubstr(rCase.m_pGerman));
    }
}

INSTANTIATE_TEST_SUITE_P(Stores, CNamesTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);
