// Cells: what they show, what may be typed, and automatic growth.
#include "rvlib/rvgui/flextable/flextableitem.h"

#include "platform/window/syscolor.h"
#include "tests/rvlib/rvgui/flextable/flextablefixture.h"
#include "tests/support/pixels.h"

namespace {

class FlexTableItemTest : public FlexTableTest {
protected:
    FlexTableItemTest() { AddRows(2); }

    /// The cell's text on white, as a plain drawing of it looks.
    CBitmap DrawExpected(const std::string& rText, COLORREF Color) {
        CBitmap Result;
        Result.Create(CSize(99, PITCH - 1));
        CDC DC(Result);
        DC.SelectFont(m_Table.GetFont());
        DC.SetTextColor(Color);
        CRect Rect(3, 0, 99, PITCH - 1);
        DC.DrawText(rText, Rect, DT_SINGLELINE | DT_VCENTER | DT_LEFT);
        return Result;
    }
    CBitmap GetPainted(unsigned Row, unsigned Column) {
        m_Loop.RunPosted();
        CBitmap Result;
        Result.Create(CSize(99, PITCH - 1));
        CDC(Result).BitBlt(CRect(0, 0, 99, PITCH - 1), m_Table.GetSurface(),
                           m_Table.GetCellRect(Row, Column).TopLeft() + CPoint(0, 1));
        return Result;
    }
};

TEST_F(FlexTableItemTest, ANumberIsDrawnWithTwoDecimalsAndItsUnit) {
    m_Table.SetItemData(0, 1, 12.345);
    EXPECT_FALSE(FindDifference(GetPainted(0, 1), DrawExpected("12.35 g", RGB(0, 0, 0))));
    m_Table.SetItemData(0, 1, -0.5);
    EXPECT_FALSE(FindDifference(GetPainted(0, 1), DrawExpected("-0.50 g", RGB(0, 0, 0))));
    m_Table.EnableWindow(false);
    EXPECT_FALSE(FindDifference(GetPainted(0, 1), DrawExpected("-0.50 g", GetSysColor(SysColor::eGrayText))));
}

TEST_F(FlexTableItemTest, ATextIsDrawnAsItIsAndNeverBeyondItsCell) {
    m_Table.SetItemData(0, 0, std::string("M6 lang"));
    EXPECT_FALSE(FindDifference(GetPainted(0, 0), DrawExpected("M6 lang", RGB(0, 0, 0))));
    const CBitmap Beside = GetPainted(0, 1);
    m_Table.SetItemData(0, 0, std::string(60, 'W'));
    EXPECT_FALSE(FindDifference(GetPainted(0, 1), Beside));
    const CRect Cell = m_Table.GetCellRect(0, 0);
    EXPECT_EQ(m_Table.GetSurface().GetPixel(Cell.right - 1, 9), GetSysColor(SysColor::eShadow))
        << "the grid line";
}

TEST_F(FlexTableItemTest, TheBoxIsMadeOnFirstUseAndLiesInTheCell) {
    EXPECT_EQ(GetBox(), nullptr);
    m_Table.SetFont(CFont("Arial", 16));
    m_Table.MoveTo(1, 1);
    ASSERT_NE(GetBox(), nullptr);
    EXPECT_TRUE(GetBox()->IsWindowVisible());
    // The cell is 100, 19 to 200, 38: inset by 1, then 1 to the left and 1 down.
    EXPECT_EQ(GetBox()->GetRect(), CRect(100, 21, 198, 38));
    EXPECT_EQ(GetBox()->GetFont(), CFont("Arial", 16));
    m_Table.SetFont(CFont("Arial", 12));
    EXPECT_EQ(GetBox()->GetFont(), CFont("Arial", 12));
    EXPECT_EQ(GetBox()->GetAccessibleName(), "Weight 2");
    m_Table.MoveOff();
    EXPECT_FALSE(GetBox()->IsWindowVisible());
}

TEST_F(FlexTableItemTest, TheBoxBeginsWithTheValueAllOfItSelected) {
    m_Table.SetItemData(1, 1, 12.345);
    m_Table.SetFocus();
    m_Table.MoveTo(1, 1);
    EXPECT_EQ(GetBox()->GetWindowText(), "12.35") << "without the unit";
    int nStart = -1;
    int nEnd = -1;
    GetBox()->GetSel(nStart, nEnd);
    EXPECT_EQ(nStart, 0);
    EXPECT_EQ(nEnd, 5);
    Press(VK_LEFT);
    EXPECT_EQ(GetBox()->GetWindowText(), "Screw");
    GetBox()->GetSel(nStart, nEnd);
    EXPECT_EQ(nEnd - nStart, 5);
    m_Page.SetFocus();
    m_Table.MoveTo(1, 1);
    GetBox()->GetSel(nStart, nEnd);
    EXPECT_EQ(nEnd, nStart) << "without the focus it would look as if that were here";
}

TEST_F(FlexTableItemTest, TheBoxMovesAndScrollsWithItsCell) {
    AddRows(20);
    m_Table.MoveTo(3, 0);
    Scroll(SB_THUMBPOSITION, 65);
    EXPECT_EQ(GetBox()->GetRect().top, 3 * PITCH + 2 - 65) << "partly above the edge";
    Scroll(SB_THUMBPOSITION, 300);
    EXPECT_EQ(GetBox()->GetRect().top, 3 * PITCH + 2 - 300);
    EXPECT_TRUE(GetBox()->IsWindowVisible());
    Type("back");
    EXPECT_EQ(GetBox()->GetRect().top, 2) << "typing brings it into sight";
    m_Table.MoveWindow(CRect(10, 20, 130, 120));
    EXPECT_EQ(GetBox()->GetRect().Width(), 48) << "with its column";
    m_Table.SetRowHeight(30);
    EXPECT_EQ(GetBox()->GetRect().Height(), 27) << "with its row";
}

TEST_F(FlexTableItemTest, ATypedCommaIsAPoint) {
    m_Table.MoveTo(0, 1);
    GetBox()->ChangeByOperator("1,", 2, 2);
    EXPECT_EQ(GetBox()->GetWindowText(), "1.");
    EXPECT_EQ(GetBox()->GetCaret(), 2);
    GetBox()->ChangeByOperator("1.5", 3, 3);
    Press(VK_RETURN);
    EXPECT_EQ(GetNumber(0), 1.5);
    m_Table.MoveTo(0, 1);
    GetBox()->ChangeByOperator(",50", 1, 1);
    EXPECT_EQ(GetBox()->GetWindowText(), ".50");
    EXPECT_EQ(GetBox()->GetCaret(), 1) << "the caret stays where it was";
    m_Table.MoveOff();
    EXPECT_EQ(GetNumber(0), 0.5);
}

TEST_F(FlexTableItemTest, NumbersAreReadInAllTheFormsThatCanBeTyped) {
    for (const auto& [Typed, Number] : {std::pair("7", 7.0),
                                        {"+7.25", 7.25},
                                        {"-3", -3.0},
                                        {"-.5", -0.5},
                                        {"5.", 5.0},
                                        {"007", 7.0},
                                        {"", 0.0},
                                        {"-", 0.0},
                                        {"+", 0.0},
                                        {".", 0.0},
                                        {"-.", 0.0},
                                        {"1234567.891", 1234567.891}}) {
        m_Table.MoveTo(0, 1);
        Type(Typed);
        EXPECT_EQ(GetBox()->GetWindowText(), Typed) << "stands as it was typed";
        m_Table.MoveTo(0, 0);
        EXPECT_EQ(GetNumber(0), Number) << Typed;
    }
    m_Table.MoveTo(0, 1);
    Type("-0");
    m_Table.MoveTo(0, 0);
    m_Table.MoveTo(0, 1);
    EXPECT_EQ(GetBox()->GetWindowText(), "0.00") << "no negative zero";
}

TEST_F(FlexTableItemTest, OtherCharactersAreRefusedAndTheLastGoodValueComesBack) {
    for (const std::string Bad : {"12x", "1e5", "1.2.3", "1,2,3", "1-", "1+", "--1", "+-1", " 1", "1 ", "0x1",
                                  "12 g", "\xC2\xB2", "inf", "NAN"}) {
        m_Table.MoveTo(0, 1);
        Type("12.5");
        Type(Bad);
        EXPECT_EQ(GetBox()->GetWindowText(), "12.50") << Bad;
        int nStart = -1;
        int nEnd = -1;
        GetBox()->GetSel(nStart, nEnd);
        EXPECT_EQ(nStart, 0) << Bad;
        EXPECT_EQ(nEnd, 5) << "all selected, as in a property tree";
        m_Table.MoveTo(1, 1);
        EXPECT_EQ(GetNumber(0), 12.5) << Bad;
        m_Table.SetItemData(0, 1, 1.0);
    }
    m_Table.MoveTo(0, 1);
    Type("x");
    EXPECT_EQ(GetBox()->GetWindowText(), "1.00") << "without an edit before it";
}

TEST_F(FlexTableItemTest, ANumberBeyondWhatCanBeStoredIsRefused) {
    m_Table.MoveTo(0, 1);
    Type(std::string(400, '9'));
    EXPECT_EQ(GetBox()->GetWindowText(), "1.00");
    Type(std::string(300, '9'));
    m_Table.MoveOff();
    EXPECT_EQ(GetNumber(0), 1e300);
    m_Table.MoveTo(0, 1);
    EXPECT_EQ(GetBox()->GetWindowText().size(), 304u);
}

TEST_F(FlexTableItemTest, ANumberCellMakesUpperCaseAndATextCellDoesNot) {
    m_Table.MoveTo(0, 1);
    EXPECT_TRUE(GetBox()->IsUpperCase());
    m_Table.MoveTo(0, 0);
    EXPECT_FALSE(GetBox()->IsUpperCase());
    Type("m6, x-1.2.3 \xC3\xA4");
    EXPECT_EQ(GetBox()->GetWindowText(), "m6, x-1.2.3 \xC3\xA4") << "any character";
    m_Table.MoveOff();
    EXPECT_EQ(GetText(0), "m6, x-1.2.3 \xC3\xA4");
}

TEST_F(FlexTableItemTest, ACellThatIsOnlyPassedKeepsItsExactValue) {
    m_Table.SetItemData(0, 1, 1.23456);
    m_Table.MoveTo(0, 1);
    Type("x");
    Press(VK_DOWN);
    EXPECT_EQ(GetNumber(0), 1.23456) << "and not the 1.23 that it shows";
}

TEST_F(FlexTableItemTest, NothingIsStoredBeforeTheEditIsFinished) {
    m_Table.MoveTo(0, 1);
    Type("25");
    EXPECT_EQ(GetNumber(0), 1.0);
    m_Table.SetItemData(0, 1, 3.0);
    EXPECT_EQ(GetBox()->GetWindowText(), "3.00") << "the program's value begins the edit anew";
    Press(VK_DOWN);
    EXPECT_EQ(GetNumber(0), 3.0);
}

TEST_F(FlexTableItemTest, LosingTheFocusFinishesTheEdit) {
    m_Table.MoveTo(0, 1);
    m_Table.SetFocus();
    Type("25");
    m_Page.SetFocus();
    EXPECT_EQ(GetNumber(0), 25.0);
    EXPECT_EQ(GetBox()->GetWindowText(), "25.00");
    EXPECT_EQ(GetBox()->GetAnchor(), GetBox()->GetCaret()) << "no selection without the focus";
    m_Table.SetFocus();
    EXPECT_NE(GetBox()->GetAnchor(), GetBox()->GetCaret());
    EXPECT_FALSE(Press(VK_ESCAPE)) << "finished";
}

/// Automatic growth: a table of one untouched row.
class FlexTableGrowthTest : public FlexTableTest {
protected:
    FlexTableGrowthTest() {
        m_Table.AddRow();
        m_Table.SetAutoGrowth(true);
    }
    /// A finished edit of the last row's value.
    void Enter(const std::string& rText) {
        m_Table.MoveTo(m_Table.GetRowCount() - 1, 1);
        Type(rText);
        Press(VK_RETURN);
    }
};

TEST_F(FlexTableGrowthTest, AValueInTheLastRowAddsOneUntouchedRow) {
    Enter("5");
    ASSERT_EQ(m_Table.GetRowCount(), 2u);
    EXPECT_EQ(GetNumber(0), 5.0);
    EXPECT_EQ(GetText(1), "Screw");
    EXPECT_EQ(GetNumber(1), 0.0);
    EXPECT_EQ(GetCursor(), std::pair(1u, 0u)) << "Enter goes on to it";
    Enter("6");
    EXPECT_EQ(m_Table.GetRowCount(), 3u);
}

TEST_F(FlexTableGrowthTest, TheDefaultValueAddsNone) {
    Enter("0");
    Enter("-0.00");
    Enter("");
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Table.SetDefaultValues({"Screw", "2.500000"});
    m_Table.RemoveAllRows();
    m_Table.AddRow();
    Enter("2,5");
    EXPECT_EQ(m_Table.GetRowCount(), 1u) << "compared as a number";
    Enter("0");
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
}

TEST_F(FlexTableGrowthTest, ANameAloneAddsNone) {
    m_Table.MoveTo(0, 0);
    Type("M6");
    Press(VK_RETURN);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
}

TEST_F(FlexTableGrowthTest, AValueInAnotherRowAddsNone) {
    Enter("5");
    m_Table.MoveTo(0, 1);
    Type("7");
    Press(VK_UP);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
}

TEST_F(FlexTableGrowthTest, ItTakesTheFlagTwoDefaultValuesAndANumberInTheSecondColumn) {
    m_Table.SetAutoGrowth(false);
    Enter("5");
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Table.SetAutoGrowth(true);
    m_Table.SetDefaultValues({"Screw"});
    Enter("6");
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Table.SetColumns({{CFlexTable::eDouble, "", "g"}, {CFlexTable::eString, "", ""}});
    m_Table.SetDefaultValues({"0", "0"});
    m_Table.AddRow();
    m_Table.MoveTo(0, 1);
    Type("7");
    Press(VK_RETURN);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Table.SetColumns({{CFlexTable::eDouble, "", "g"}});
    m_Table.AddRow();
    m_Table.MoveTo(0, 0);
    Type("7");
    Press(VK_RETURN);
    EXPECT_EQ(m_Table.GetRowCount(), 1u) << "no second cell";
}

TEST_F(FlexTableGrowthTest, DownReachesTheRowThatTheValueAdds) {
    m_Table.MoveTo(0, 1);
    Type("5");
    Press(VK_DOWN);
    EXPECT_EQ(GetCursor(), std::pair(1u, 1u));
}

TEST_F(FlexTableGrowthTest, EveryWayToFinishAnEditGrows) {
    const auto Check = [this](auto Finish) {
        const unsigned nRows = m_Table.GetRowCount();
        m_Table.MoveTo(nRows - 1, 1);
        m_Table.SetFocus();
        Type("5");
        Finish();
        return m_Table.GetRowCount() == nRows + 1;
    };
    EXPECT_TRUE(Check([this] { Press(VK_LEFT); }));
    EXPECT_TRUE(Check([this] { Click(5, 5); }));
    EXPECT_TRUE(Check([this] { m_Table.MoveOff(); }));
    EXPECT_TRUE(Check([this] { m_Page.SetFocus(); }));
    EXPECT_TRUE(Check([this] { m_Table.DestroyWindow(); }));
}

TEST_F(FlexTableGrowthTest, AnAbandonedEditAddsNone) {
    m_Table.MoveTo(0, 1);
    Type("5");
    Press(VK_ESCAPE);
    Press(VK_LEFT);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
}

TEST_F(FlexTableGrowthTest, TheTimerCountsWhatIsTypedWithoutAnEndToTheEdit) {
    StartGrowth();
    m_Table.MoveTo(0, 1);
    Type("-");
    m_Loop.Advance(250);
    EXPECT_EQ(m_Table.GetRowCount(), 1u) << "not a value yet";
    Type("1.");
    m_Loop.Advance(249);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Loop.Advance(1);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
    EXPECT_EQ(GetNumber(0), 1.0);
    EXPECT_EQ(GetBox()->GetWindowText(), "1.") << "the edit goes on";
    EXPECT_EQ(GetBox()->GetCaret(), 2);
    EXPECT_EQ(GetCursor(), std::pair(0u, 1u));
    Type("1.5");
    m_Loop.Advance(1000);
    EXPECT_EQ(GetNumber(0), 1.5);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
    EXPECT_TRUE(Press(VK_ESCAPE));
    EXPECT_EQ(GetNumber(0), 0.0) << "the value from before the edit";
}

TEST_F(FlexTableGrowthTest, TheTimerFindsWhatTheProgramWroteIntoTheLastRow) {
    StartGrowth();
    m_Table.SetItemData(0, 1, 3.0);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
    m_Loop.Advance(250);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
}

TEST_F(FlexTableGrowthTest, TheTimerDoesNothingWithoutGrowthAndOtherTimersNothingAtAll) {
    m_Table.SetTimer(2, 100);
    m_Table.MoveTo(0, 1);
    Type("5");
    m_Loop.Advance(1000);
    EXPECT_EQ(GetNumber(0), 0.0);
    m_Table.KillTimer(2);
    StartGrowth();
    m_Table.SetAutoGrowth(false);
    m_Loop.Advance(1000);
    EXPECT_EQ(GetNumber(0), 0.0);
    EXPECT_EQ(m_Table.GetRowCount(), 1u);
}

TEST_F(FlexTableGrowthTest, AnEmptyTableDoesNotGrow) {
    m_Table.RemoveAllRows();
    StartGrowth();
    m_Loop.Advance(1000);
    EXPECT_EQ(m_Table.GetRowCount(), 0u);
}

}  // namespace
