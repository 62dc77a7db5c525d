// The page of the screw tables, in the pane that it belongs to: list and edit mode, rows, keys, mouse.
#include "rvdlm/m_rtr/rtr_trim/screwtabledlg.h"

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "tests/rvdlm/m_rtr/rtr_trim/configtabsfixture.h"

using namespace PreBalDB;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

namespace {

class CScrewTableDlgTest : public CConfigTabsFixture {
protected:
    static constexpr unsigned NONE = CFlexTable::NONE;

    CFlexTable& Table() { return ScrewDlg().GetTable(); }
    CPageName& Name() { return ScrewDlg().GetPageName(); }
    /// A second table beside "Default", in the store from the start.
    void OpenWithTables(const std::vector<std::string>& rTables) {
        Open();
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        for (const std::string& rTable : rTables) {
            Database.ReadScrewTable(rTable).SetScrewArray({CScrew("M6", 1.5)});
            ASSERT_NE(Database.WriteScrewTable(), 0);
        }
        m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
        OpenScrewPageAgain();
    }
    void OpenScrewPageAgain() {
        { m_pWnd.reset(); }
        OpenScrewPage();
    }
    void Show(const Base::CWDArray<CScrew>& rScrews) { ScrewDlg().SetScrewTable(rScrews); }
};

TEST_F(CScrewTableDlgTest, ThePageHasItsControlsByTheirIds) {
    OpenScrewPage();
    EXPECT_EQ(ScrewDlg().GetDlgItem(8001), &Name());
    EXPECT_EQ(ScrewDlg().GetDlgItem(101), &Table());
    EXPECT_EQ(Name().GetText(), GetText("MASS_TABLE"));
    EXPECT_EQ(Table().GetRowHeight(), 20);
    ASSERT_EQ(Table().GetColumns().size(), 2U);
    EXPECT_EQ(Table().GetColumns()[0].m_Type, CFlexTable::eString);
    EXPECT_EQ(Table().GetColumns()[1].m_Type, CFlexTable::eDouble);
    EXPECT_EQ(Table().GetColumns()[1].m_Unit, "g");
}

TEST_F(CScrewTableDlgTest, TheUpDownControlBeginsWithOnePositionAndStepsByOne) {
    Create();
    EXPECT_EQ(Name().GetSpin().GetLower(), 1);
    EXPECT_EQ(Name().GetSpin().GetUpper(), 1);
    EXPECT_EQ(Name().GetSpin().GetPos(), 1);
    ASSERT_EQ(Name().GetSpin().GetAccel().size(), 1U);
    EXPECT_EQ(Name().GetSpin().GetAccel()[0].m_nStep, 1);
}

TEST_F(CScrewTableDlgTest, TheTableFillsThePageBelowTheHeadAtAnySize) {
    OpenScrewPage();
    for (const CSize Size : {CSize(300, 416), CSize(960, 1000), CSize(300, 30), CSize(0, 0)}) {
        ScrewDlg().MoveWindow(CRect(CPoint(0, 24), Size));
        EXPECT_EQ(Table().GetRect().left, 0);
        EXPECT_EQ(Table().GetRect().top, 40);
        EXPECT_EQ(Table().GetRect().right, Size.cx);
        EXPECT_EQ(Table().GetRect().bottom, std::max(Size.cy, 40));
    }
}

TEST_F(CScrewTableDlgTest, TheFirstTableIsShownWithAnUntouchedRowBehindIt) {
    OpenScrewPage();
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    EXPECT_EQ(GetShownScrews(), GetStoredScrews("Default"));
    EXPECT_EQ(Table().GetRowCount(), GetShownScrews().size() + 1);
    EXPECT_TRUE(Table().IsAutoGrowth());
}

TEST_F(CScrewTableDlgTest, AWeightIsKeptTwiceAndTheOrderIsTheOperators) {
    OpenScrewPage();
    Show({CScrew("a", 1.0), CScrew("b", 1.0), CScrew("c", 1.0), CScrew("d", 2.0)});
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("a", 1.0), CScrew("b", 1.0), CScrew("d", 2.0)));
    Show({CScrew("x", 3.0), CScrew("y", 1.0), CScrew("z", 2.0)});
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("x", 3.0), CScrew("y", 1.0), CScrew("z", 2.0)));
}

TEST_F(CScrewTableDlgTest, ARowWithoutWeightGoesOnSave) {
    OpenScrewPage();
    Show({CScrew("a", 0.0), CScrew("b", 2.0)});
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("b", 2.0)));
    Act(1);
    EXPECT_THAT(GetStoredScrews("Default"), ElementsAre(CScrew("b", 2.0)));
}

TEST_F(CScrewTableDlgTest, ANameThatWasLeftAsItIsIsStoredEmptyAndComesBack) {
    OpenScrewPage();
    Show({CScrew(GetText("NAME"), 2.0)});
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("", 2.0)));
    Act(1);
    Act(1);
    EXPECT_THAT(GetStoredScrews("Default"), ElementsAre(CScrew("", 2.0)));
    std::string Text;
    ASSERT_TRUE(Table().GetItemData(0, 0, Text));
    EXPECT_EQ(Text, GetText("NAME"));
}

TEST_F(CScrewTableDlgTest, TheLastRowIsNeverReturnedAndAWeightInItMakesAnother) {
    OpenScrewPage();
    Show({CScrew("a", 1.0)});
    ASSERT_TRUE(Table().SetItemData(1, 1, 5.0));
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("a", 1.0)));
    m_Loop.Advance(250);
    EXPECT_EQ(Table().GetRowCount(), 3U);
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("a", 1.0), CScrew("", 5.0)));
}

TEST_F(CScrewTableDlgTest, AnEmptyTableHasTheUntouchedRowAlone) {
    OpenScrewPage();
    Show({});
    EXPECT_EQ(Table().GetRowCount(), 1U);
    EXPECT_THAT(GetShownScrews(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, ATableShownAfterAnotherHasItsOwnRowsAlone) {
    OpenScrewPage();
    Show({CScrew("a", 1.0), CScrew("b", 2.0), CScrew("c", 3.0)});
    Show({CScrew("d", 4.0), CScrew("e", 5.0)});
    EXPECT_EQ(Table().GetRowCount(), 3U);
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("d", 4.0), CScrew("e", 5.0)));
}

TEST_F(CScrewTableDlgTest, ATablePageWithoutNamesIsAsserted) {
    OpenScrewPage();
    ScrewDlg().SetScrewTables({}, true);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CScrewTableDlgTest, AStepWithoutNamesIsAsserted) {
    Create();
    Name().GetSpin().Click(CSpinButtonCtrl::eUp);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CScrewTableDlgTest, ThePageOpensInItsListModeWithTheNameSelected) {
    OpenScrewPage();
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_TRUE(Name().HasFocus());
    int nStart = -1;
    int nEnd = -1;
    Name().GetField().GetSel(nStart, nEnd);
    EXPECT_EQ(nStart, 0);
    EXPECT_EQ(nEnd, 7);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
}

TEST_F(CScrewTableDlgTest, AClickIntoTheTableIsTheEditMode) {
    OpenScrewPage();
    ClickCell(1, 1);
    EXPECT_FALSE(ScrewDlg().IsListMode());
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
    EXPECT_THAT(m_Host.Get(1122), ElementsAre(Message{1122, 12, 0}));
    Forget();
    Name().FocusField();
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    EXPECT_THAT(m_Host.Get(1122), ElementsAre(Message{1122, 12, 12}));
}

TEST_F(CScrewTableDlgTest, TheTitleHasItsColourInTheListMode) {
    OpenScrewPage();
    const auto GetColor = [this] {
        Name().SendMessage(WM_PAINT);
        return Name().GetSurface().GetPixel(1, 1);
    };
    EXPECT_EQ(GetColor(), RGB(0xFF, 0xCD, 0x85));
    ClickCell(0, 0);
    EXPECT_NE(GetColor(), RGB(0xFF, 0xCD, 0x85));
}

TEST_F(CScrewTableDlgTest, WhatIsTypedIntoACellIsSavedWhenTheFocusGoesToTheName) {
    OpenScrewPage();
    ClickCell(0, 1);
    TypeCell("7,25");
    Name().FocusField();
    m_Loop.RunPosted();
    EXPECT_EQ(GetStoredScrews("Default")[0].GetWeight(), 7.25);
}

TEST_F(CScrewTableDlgTest, WhatIsTypedIntoTheLastRowAddsARowAndIsSaved) {
    OpenScrewPage();
    const unsigned Last = Table().GetRowCount() - 1;
    ClickCell(Last, 0);
    TypeCell("M12");
    Press(VK_RETURN);
    TypeCell("9.5");
    Press(VK_RETURN);
    EXPECT_THAT(GetCursor(), Pair(Last + 1, 0));
    EXPECT_EQ(Table().GetRowCount(), Last + 2);
    EXPECT_EQ(GetStoredScrews("Default").back(), CScrew("M12", 9.5));
}

TEST_F(CScrewTableDlgTest, ItemsGoOnThroughTheCellsAndLeaveTheTableAtItsEnd) {
    OpenScrewPage();
    Show({CScrew("a", 1.0)});
    Act(4, 1);
    EXPECT_FALSE(ScrewDlg().IsListMode());
    EXPECT_THAT(GetCursor(), Pair(0, 0));
    Act(4, 1);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    Act(4, 1);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
    Act(4, 1);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    Forget();
    Act(4, 1);
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    EXPECT_TRUE(Name().HasFocus());
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 12, 12}));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, ItemsGoBackThroughTheCellsAndLeaveTheTableAtItsTop) {
    OpenScrewPage();
    Show({CScrew("a", 1.0)});
    Act(4, 2);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    Act(4, 2);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
    Act(4, 2);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    Act(4, 2);
    EXPECT_THAT(GetCursor(), Pair(0, 0));
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 12, 0}));
    Act(4, 2);
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, GoingOnFromAWeightInTheLastRowComesToTheRowItMakes) {
    OpenScrewPage();
    Show({});
    Act(4, 2);
    TypeCell("3");
    Act(4, 1);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
    EXPECT_FALSE(ScrewDlg().IsListMode());
}

TEST_F(CScrewTableDlgTest, AnItemInNoDirectionIsAsserted) {
    OpenScrewPage();
    for (const int Flag : {0, 3}) {
        m_Log.Clear();
        Act(4, Flag);
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    }
    EXPECT_TRUE(ScrewDlg().IsListMode());
}

TEST_F(CScrewTableDlgTest, ValuesStepThroughTheNamesAndWrap) {
    OpenWithTables({"Brass", "Steel"});
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), ElementsAre("Default", "Brass", "Steel"));
    Act(2, 2);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Steel");
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("M6", 1.5)));
    Act(2, 1);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    Act(2, 1);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Brass");
    Act(2, 0);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Brass");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, ValuesDoNothingInTheEditMode) {
    OpenWithTables({"Brass"});
    ClickCell(0, 0);
    Act(2, 1);
    Act(2, 2);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    EXPECT_THAT(GetCursor(), Pair(0, 0));
    EXPECT_FALSE(ScrewDlg().IsListMode());
}

TEST_F(CScrewTableDlgTest, TheUpDownControlSavesWhatIsLeftAndComesToTheListMode) {
    OpenWithTables({"Brass"});
    ClickCell(0, 1);
    TypeCell("8");
    Name().GetSpin().Click(CSpinButtonCtrl::eUp);
    m_Loop.RunPosted();
    EXPECT_EQ(GetStoredScrews("Default")[0].GetWeight(), 8.0);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Brass");
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("M6", 1.5)));
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_TRUE(Name().HasFocus());
    // What is edited next is the table that was stepped to.
    Act(4, 1);
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("M6", 1.5)));
}

TEST_F(CScrewTableDlgTest, ATypedNameWithEnterMakesAFurtherTableWithTheRowsShown) {
    OpenScrewPage();
    const auto Rows = GetShownScrews();
    TypeName(Name(), "Brass");
    Press(VK_RETURN);
    EXPECT_EQ(GetStoredScrews("Brass"), Rows);
    EXPECT_EQ(GetStoredScrews("Default"), Rows);
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), ElementsAre("Default", "Brass"));
    EXPECT_EQ(Name().GetSpin().GetPos(), 1);
    EXPECT_TRUE(ScrewDlg().IsListMode());
    Act(4, 1);
    EXPECT_EQ(GetShownScrews(), Rows) << "it is no new table";
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, ATypedNameThatIsLeftForTheTableBeginsANewOne) {
    OpenScrewPage();
    const auto Rows = GetShownScrews();
    TypeName(Name(), "Brass");
    ClickCell(3, 1);
    EXPECT_FALSE(ScrewDlg().IsListMode());
    EXPECT_EQ(Table().GetRowCount(), 1U);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    TypeCell("2.5");
    Press(VK_RETURN);
    EXPECT_THAT(GetStoredScrews("Brass"), ElementsAre(CScrew("", 2.5)));
    EXPECT_EQ(GetStoredScrews("Default"), Rows);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, TheSoftkeyIntoTheTableBeginsANewOneToo) {
    OpenScrewPage();
    TypeName(Name(), "Brass");
    Act(4, 1);
    EXPECT_EQ(Table().GetRowCount(), 1U);
    EXPECT_THAT(GetCursor(), Pair(0, 0));
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), Contains("Brass"));
}

// Whoever opens the store drops tables without screws.
TEST_F(CScrewTableDlgTest, ANewTableIsKeptWhateverOthersDoWhileItIsStillEmpty) {
    OpenScrewPage();
    TypeName(Name(), "Brass");
    Act(4, 1);
    EXPECT_THAT(GetStoredTables(), ElementsAre("Default")) << "this has just dropped it";
    Act(4, 1);
    TypeCell("2");
    Act(4, 1);
    EXPECT_THAT(GetStoredScrews("Brass"), ElementsAre(CScrew("", 2.0)));
    EXPECT_THAT(GetShown(), IsEmpty());
}

TEST_F(CScrewTableDlgTest, ANewTableWithoutRowsIsNotKept) {
    OpenScrewPage();
    TypeName(Name(), "Brass");
    Act(4, 1);
    Act(1);
    EXPECT_THAT(GetStoredTables(), ElementsAre("Default"));
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    Act(1);
    Act(4, 1);
    EXPECT_THAT(GetShownScrews(), Not(IsEmpty())) << "the default table isn't a new one";
}

TEST_F(CScrewTableDlgTest, ALetterMakesNoTable) {
    OpenScrewPage();
    TypeName(Name(), "B");
    TypeName(Name(), "Br");
    m_Loop.Advance(1000);
    EXPECT_THAT(GetStoredTables(), ElementsAre("Default"));
    Press(VK_ESCAPE);
    Act(1);
    EXPECT_THAT(GetStoredTables(), ElementsAre("Default"));
}

TEST_F(CScrewTableDlgTest, ARefusedNameLeavesRowsAndTableAsTheyAre) {
    OpenWithTables({"Brass"});
    const auto Rows = GetShownScrews();
    for (const bool bIntoTable : {false, true}) {
        TypeName(Name(), "Brass");
        if (bIntoTable) {
            ClickCell(0, 0);
        } else {
            Press(VK_RETURN);
        }
        EXPECT_THAT(GetShown(), ElementsAre(testing::HasSubstr("There is a \"Brass\" already")));
        EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
        EXPECT_EQ(Name().GetField().GetWindowText(), "Default");
        EXPECT_EQ(GetShownScrews(), Rows);
        EXPECT_EQ(GetStoredScrews("Default"), Rows);
        EXPECT_THAT(GetStoredScrews("Brass"), ElementsAre(CScrew("M6", 1.5)));
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    }
}

TEST_F(CScrewTableDlgTest, RowsThatCannotBeSavedStayOnThePageForTheNextTime) {
    OpenWithTables({"Brass"});
    CDirectSQL(GetDatabaseConnection())
        .Execute(
            "CREATE TRIGGER sabotage BEFORE INSERT ON screw BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
    ClickCell(0, 1);
    TypeCell("8");
    const auto Rows = [this] {
        ScrewDlg().EndEditing();
        return GetShownScrews();
    }();
    Name().GetSpin().Click(CSpinButtonCtrl::eUp);
    m_Loop.RunPosted();
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), "Default");
    EXPECT_EQ(GetShownScrews(), Rows);
    Act(1);
    EXPECT_EQ(GetShownScrews(), Rows);
    EXPECT_NE(GetStoredScrews("Default"), Rows);
    EXPECT_THAT(GetShown(), Contains(testing::HasSubstr("disk trouble")));
    EXPECT_THAT(m_Log.GetAssertions(), Contains("WriteScrewTable failed!"));
    CDirectSQL(GetDatabaseConnection()).Execute("DROP TRIGGER sabotage");
    Act(1);
    EXPECT_EQ(GetStoredScrews("Default"), Rows);
}

TEST_F(CScrewTableDlgTest, ATableThatOthersChangedTooIsShownAsItIsStored) {
    OpenScrewPage();
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        Database.ReadScrewTable("Default").SetScrewArray({CScrew("Other", 1.5)});
        ASSERT_NE(Database.WriteScrewTable(), 0);
    }
    ClickCell(0, 1);
    TypeCell("8");
    Press(VK_DOWN);
    EXPECT_THAT(GetShown(), testing::SizeIs(1));
    EXPECT_THAT(GetShownScrews(), ElementsAre(CScrew("Other", 1.5)));
    Press(VK_UP);
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(GetStoredScrews("Default"), ElementsAre(CScrew("Other", 1.5)));
}

TEST_F(CScrewTableDlgTest, AHiddenPageMovesNoFocusAndSavesNothing) {
    OpenScrewPage();
    Act(1);
    Forget();
    CWnd* const pFocus = CWnd::GetFocus();
    ScrewDlg().SetListMode(false);
    EXPECT_FALSE(ScrewDlg().IsListMode());
    EXPECT_EQ(CWnd::GetFocus(), pFocus);
    EXPECT_THAT(m_Host.Get(1122), IsEmpty());
}

TEST_F(CScrewTableDlgTest, TenThousandRowsAreShownScrolledAndSaved) {
    OpenScrewPage();
    Base::CWDArray<CScrew> Screws;
    for (int i = 1; i <= 10000; ++i) {
        Screws.Add(CScrew("S" + std::to_string(i), 0.01 * i));
    }
    Show(Screws);
    EXPECT_EQ(Table().GetRowCount(), 10001U);
    Table().SendMessage(WM_VSCROLL, MakeScrollParam(SB_BOTTOM, 0));
    EXPECT_GT(Table().GetScrollPos(), 180000);
    Act(4, 2);
    EXPECT_THAT(GetCursor(), Pair(10000, 1));
    TypeCell("500");
    Act(1);
    EXPECT_EQ(GetStoredScrews("Default").size(), 10001U);
    EXPECT_EQ(GetStoredScrews("Default")[9999], CScrew("S10000", 0.01 * 10000));
    Act(1);
    EXPECT_EQ(GetShownScrews().size(), 10001U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
