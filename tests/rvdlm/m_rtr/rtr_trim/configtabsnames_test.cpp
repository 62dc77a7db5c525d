// Names of configurations: when one that is typed counts, what the store refuses, and what is deleted.
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "tests/rvdlm/m_rtr/rtr_trim/configtabsfixture.h"

using namespace PreBalDB;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class CConfigTabsNamesTest : public CConfigTabsFixture {
protected:
    ~CConfigTabsNamesTest() override { SetLanguage("en"); }

    CPageName& Name() { return Dlg().GetPageName(); }
    /// A stored, calibrated configuration "Default" on the page.
    void OpenStoredCalibrated() {
        Open();
        {
            CPreBalDatabase Database(m_pWnd->GetMachineName());
            CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
            rEntry.SetIsCalibrated(1);
            rEntry.SetCalibratedRPM(1234);
            rEntry.SetTargetUnbalance(17);
            ASSERT_NE(Database.WriteConfiguration(), 0);
        }
        m_pWnd->SendMessage(WM_RV_STORECHANGED);
        ASSERT_TRUE(Tabs().IsCalibrated());
        Forget();
        TakeShownMessages();
    }
    /// A value of the page that isn't saved yet.
    void SetOnPage(std::uint32_t Target) {
        ChangeOnPage([Target](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(Target); });
    }
    std::uint32_t GetStoredTarget(const std::string& rName) {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        return Database.ReadConfiguration(rName).GetTargetUnbalance();
    }
};

TEST_F(CConfigTabsNamesTest, ATypedNameMakesAFurtherConfigurationWithValuesAndCalibration) {
    OpenStoredCalibrated();
    TypeName(Name(), "Wheel 400");
    EXPECT_THAT(GetStoredNames(), ElementsAre("Default")) << "not with a letter";
    Press(VK_RETURN);
    EXPECT_THAT(GetStoredNames(), ElementsAre("Default", "Wheel 400"));
    EXPECT_EQ(Entry().GetProcessName(), "Wheel 400");
    EXPECT_EQ(Dlg().GetSpinPos(), 1);
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName(), "Wheel 400"));
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName(), "Default"));
    EXPECT_EQ(GetStoredTarget("Wheel 400"), 17U);
    EXPECT_EQ(GetStoredTarget("Default"), 17U);
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, WhatWasNotSavedYetGoesWithTheNewName) {
    OpenStoredCalibrated();
    SetOnPage(55);
    TypeName(Name(), "Wheel 400");
    Press(VK_RETURN);
    EXPECT_EQ(GetStoredTarget("Wheel 400"), 55U);
    EXPECT_EQ(GetStoredTarget("Default"), 17U) << "the former one stays as it is stored";
}

TEST_F(CConfigTabsNamesTest, ALostFocusTakesTheName) {
    OpenStoredCalibrated();
    TypeName(Name(), "Wheel 400");
    Dlg().GetTree().SetFocus();
    m_Loop.RunPosted();
    EXPECT_THAT(GetStoredNames(), Contains("Wheel 400"));
}

TEST_F(CConfigTabsNamesTest, AChangeOfTheTabTakesTheName) {
    OpenWith({"Default"}, true);
    TypeName(Name(), "Wheel 400");
    Act(1);
    EXPECT_EQ(Tabs().GetCurSel(), 1);
    EXPECT_THAT(GetStoredNames(), Contains("Wheel 400"));
    TypeName(ScrewDlg().GetPageName(), "Brass");
    EXPECT_TRUE(Tabs().SelectByOperator(0));
    EXPECT_THAT(GetStoredTables(), Contains("Brass"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, EveryStartOfARunTakesTheNameAndSaves) {
    LinkOpc();
    OpenStoredCalibrated();
    const std::vector<std::function<void()>> Starts{[this] { Act(102); },    [this] { Act(4499); },
                                                    [this] { SetState(1); }, [this] { SetState(2); },
                                                    [this] { Request(1); },  [this] { Request(2); }};
    std::uint32_t n = 20;
    for (const auto& rStart : Starts) {
        ++n;
        const std::string New = "Wheel " + std::to_string(n);
        SetOnPage(n);
        TypeName(Name(), New);
        rStart();
        ASSERT_NE(m_pWnd->GetSequence(), nullptr) << New;
        EXPECT_THAT(GetStoredNames(), Contains(New));
        EXPECT_EQ(GetStoredTarget(New), n);
        EXPECT_EQ(Entry().GetProcessName(), New);
        Act(4501);
        EXPECT_EQ(Dlg().GetConfigurationName(), New);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, EveryStartOfARunSavesWhatThePageShows) {
    LinkOpc();
    OpenStoredCalibrated();
    const std::vector<std::function<void()>> Starts{[this] { Act(102); },    [this] { Act(4499); },
                                                    [this] { SetState(1); }, [this] { SetState(2); },
                                                    [this] { Request(1); },  [this] { Request(2); }};
    std::uint32_t n = 20;
    for (const auto& rStart : Starts) {
        SetOnPage(++n);
        rStart();
        ASSERT_NE(m_pWnd->GetSequence(), nullptr) << n;
        EXPECT_EQ(GetStoredTarget("Default"), n);
        Act(4501);
        EXPECT_EQ(Entry().GetTargetUnbalance(), n);
    }
}

// By the softkeys alone.
TEST_F(CConfigTabsNamesTest, AChangeInTheTreeReachesTheEntryBySavingOnly) {
    Open();
    const std::uint32_t nFormer = Entry().GetRPMTolerance();
    for (int nTry = 0; nTry < 10; ++nTry) {
        const PropTree::CPropTreeItem* const pItem = Dlg().GetTree().GetFocusedItem();
        if (pItem != nullptr && pItem->GetLabelText() == GetText("PB_RPM_TOLERANCE_TEXT")) {
            break;
        }
        Act(4, 2);
    }
    Act(2, 2);
    Act(2, 0);
    EXPECT_EQ(Entry().GetRPMTolerance(), nFormer);
    Act(103);
    EXPECT_NE(Entry().GetRPMTolerance(), nFormer);
}

TEST_F(CConfigTabsNamesTest, AnAbortTakesTheNameToo) {
    OpenStoredCalibrated();
    TypeName(Name(), "Wheel 400");
    ReportSet(MakeSet(9));
    ASSERT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetStoredNames(), Contains("Wheel 400"));
}

TEST_F(CConfigTabsNamesTest, TheEndOfTheWindowTakesTheName) {
    OpenStoredCalibrated();
    const std::string Key = m_pWnd->GetMachineName();
    TypeName(Name(), "Wheel 400");
    m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
    EXPECT_TRUE(IsStoredCalibrated(Key, "Wheel 400"));
}

TEST_F(CConfigTabsNamesTest, WhatTheStoreRefusesIsToldAndTheTrueNameComesBack) {
    OpenStoredCalibrated();
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        CSinglePlaneBalancingTableEntry& rPlane = Database.ReadConfiguration("Wheel").CreateSinglePlane();
        rPlane.SetProximitySwitchInput(CTypeBase::ePlane1);
        rPlane.SetSensorAdaption(3);
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }
    struct CCase {
        std::string m_Name;
        const char* m_pEnglish;
        const char* m_pGerman;
    };
    std::string TooLong;
    for (int i = 0; i < 61; ++i) {
        TooLong += "\xC3\xA4";
    }
    for (const CCase& rCase : {CCase{"", "without a name", "Ohne Namen"},
                               CCase{"  ", "type 1 to 60 characters", "1 bis 60 Zeichen"},
                               CCase{TooLong, "too long: it may have 60", "zu lang: Er darf 60"},
                               CCase{"Wheel", "There is a \"Wheel\" already", "\"Wheel\" gibt es schon"},
                               CCase{"W\xFFheel", "no valid UTF-8", "kein gültiges UTF-8"}}) {
        for (const char* const pLanguage : {"en", "de"}) {
            SetLanguage(pLanguage);
            SetOnPage(55);
            TypeName(Name(), rCase.m_Name);
            Press(VK_RETURN);
            EXPECT_THAT(GetShown(),
                        ElementsAre(AllOf(HasSubstr(*pLanguage == 'e' ? rCase.m_pEnglish : rCase.m_pGerman),
                                          HasSubstr("\"Default\""))));
            EXPECT_EQ(Name().GetField().GetWindowText(), "Default");
            EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
            EXPECT_EQ(Entry().GetProcessName(), "Default");
            EXPECT_EQ(Entry().GetTargetUnbalance(), 55U) << "nothing is lost";
            EXPECT_TRUE(Tabs().IsCalibrated());
            EXPECT_THAT(GetStoredNames(), ElementsAre("Default", "Wheel"));
        }
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, SixtyCharactersAreNotTooLong) {
    OpenStoredCalibrated();
    std::string Longest;
    for (int i = 0; i < 60; ++i) {
        Longest += "\xC3\xA4";
    }
    TypeName(Name(), Longest);
    Press(VK_RETURN);
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(GetStoredNames(), Contains(Longest));
}

TEST_F(CConfigTabsNamesTest, AStoreThatFailsLeavesTheFormerNameAndTellsWhy) {
    OpenStoredCalibrated();
    CDirectSQL(GetDatabaseConnection())
        .Execute(
            "CREATE TRIGGER sabotage BEFORE INSERT ON configuration BEGIN SELECT RAISE(ABORT, "
            "'disk trouble'); END");
    TypeName(Name(), "Wheel");
    Press(VK_RETURN);
    EXPECT_THAT(GetShown(), ElementsAre(AllOf(HasSubstr("\"Wheel\" was not made"), HasSubstr("disk trouble"),
                                              HasSubstr("\"Default\" stays"))));
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, AConfigurationThatIsDeletedGivesWayToTheDefault) {
    OpenStoredCalibrated();
    TypeName(Name(), "Wheel");
    Press(VK_RETURN);
    ASSERT_EQ(Entry().GetProcessName(), "Wheel");
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        EXPECT_NE(Database.DeleteConfiguration("Wheel"), 0);
    }
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 1);
    m_Loop.RunPosted();
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
    EXPECT_EQ(Entry().GetProcessName(), "Default");
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), ElementsAre("Default"));
    Act(103);
    EXPECT_THAT(GetStoredNames(), ElementsAre("Default")) << "it doesn't come back";
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, AScrewTableThatIsDeletedGivesWayToTheDefault) {
    OpenScrewPage();
    TypeName(ScrewDlg().GetPageName(), "Brass");
    Press(VK_RETURN);
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        EXPECT_NE(Database.DeleteScrewTable("Brass"), 0);
    }
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 1);
    m_Loop.RunPosted();
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), ElementsAre("Default"));
    EXPECT_EQ(GetShownScrews(), GetStoredScrews("Default"));
    Act(1);
    EXPECT_THAT(GetStoredTables(), ElementsAre("Default"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsNamesTest, AStoreThatOthersChangedShowsWhatIsNewAndKeepsWhatWasChangedHere) {
    OpenStoredCalibrated();
    SetOnPage(55);
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        Database.ReadConfiguration("Default").SetRPMTolerance(33);
        ASSERT_NE(Database.WriteConfiguration(), 0);
        ASSERT_NE(Database.NameConfiguration("Imported"), 0);
    }
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 1);
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), ElementsAre("Default", "Imported"));
    EXPECT_EQ(Entry().GetTargetUnbalance(), 55U);
    EXPECT_EQ(Entry().GetRPMTolerance(), 33U);
    EXPECT_EQ(GetStoredTarget("Default"), 55U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
