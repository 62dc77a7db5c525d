// Rows, cursor, keys and scrolling.
#include "rvlib/rvgui/flextable/flextable.h"

#include <memory>
#include <utility>

#include "platform/window/syscolor.h"
#include "rvlib/rvgui/flextable/flextableheader.h"
#include "tests/rvlib/rvgui/flextable/flextablefixture.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(FlexTableTest, EachRowHasTheColumnsCellsWithTheDefaultValues) {
    m_Table.SetColumns({{CFlexTable::eString, "", ""},
                        {CFlexTable::eDouble, "", "g"},
                        {CFlexTable::eString, "", ""},
                        {CFlexTable::eDouble, "", ""}});
    m_Table.SetDefaultValues({"Screw", "2.500000"});
    EXPECT_EQ(m_Table.AddRow(), 0u);
    EXPECT_EQ(m_Table.AddRow(), 1u);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
    EXPECT_EQ(m_Table.GetColumnCount(), 4u);
    EXPECT_EQ(GetText(1), "Screw");
    EXPECT_EQ(GetNumber(1), 2.5);
    std::string Text = "none";
    EXPECT_TRUE(m_Table.GetItemData(1, 2, Text));
    EXPECT_EQ(Text, "") << "without a default value";
    double Number = -1.0;
    EXPECT_TRUE(m_Table.GetItemData(1, 3, Number));
    EXPECT_EQ(Number, 0.0);
}

TEST_F(FlexTableTest, WithoutColumnsThereAreNoRows) {
    m_Table.SetColumns({});
    EXPECT_EQ(m_Table.AddRow(), NONE);
    EXPECT_EQ(m_Table.GetRowCount(), 0u);
    Click(5, 5);
    EXPECT_FALSE(m_Table.MoveTo(0, 0));
}

TEST_F(FlexTableTest, ACellThatIsNotThereOrOfAnotherTypeHasNoValue) {
    AddRows(1);
    std::string Text = "unchanged";
    double Number = 7.0;
    EXPECT_FALSE(m_Table.GetItemData(1, 0, Text));
    EXPECT_FALSE(m_Table.GetItemData(0, 1, Text));
    EXPECT_FALSE(m_Table.GetItemData(0, 0, Number));
    EXPECT_FALSE(m_Table.GetItemData(0, 2, Number));
    EXPECT_FALSE(m_Table.SetItemData(0, 1, std::string("3")));
    EXPECT_FALSE(m_Table.SetItemData(0, 0, 3.0));
    EXPECT_FALSE(m_Table.SetItemData(NONE, NONE, 3.0));
    EXPECT_EQ(Text, "unchanged");
    EXPECT_EQ(Number, 7.0);
    EXPECT_EQ(GetNumber(0), 1.0);
}

TEST_F(FlexTableTest, TheScrollRangeIsRowCountTimesRowHeightAndAPageTheClientHeight) {
    AddRows(50);
    EXPECT_EQ(GetBar().GetMin(), 0);
    EXPECT_EQ(GetBar().GetMax(), 50 * 20);
    EXPECT_EQ(GetBar().GetPage(), 100);
    m_Table.SetRowHeight(30);
    EXPECT_EQ(GetBar().GetMax(), 50 * 30);
    m_Table.MoveWindow(CRect(0, 0, 220, 160));
    EXPECT_EQ(GetBar().GetPage(), 160);
    m_Table.RemoveAllRows();
    EXPECT_EQ(GetBar().GetMax(), 0);
}

TEST_F(FlexTableTest, TheScrollBarMovesByLinesPagesAndTheThumb) {
    AddRows(50);
    struct CStep {
        int m_Code;
        int m_nPosition;
        int m_nResult;
    };
    for (const CStep& rStep :
         {CStep{SB_LINEDOWN, 0, 20}, CStep{SB_PAGEDOWN, 0, 120}, CStep{SB_LINEUP, 0, 100},
          CStep{SB_PAGEUP, 0, 0}, CStep{SB_LINEUP, 0, 0}, CStep{SB_THUMBTRACK, 137, 137},
          CStep{SB_THUMBPOSITION, 138, 138}, CStep{SB_BOTTOM, 0, 900}, CStep{SB_LINEDOWN, 0, 900},
          CStep{SB_TOP, 0, 0}, CStep{SB_THUMBTRACK, -5, 0}, CStep{SB_THUMBTRACK, 5000, 900},
          CStep{99, 3, 900}}) {
        Scroll(rStep.m_Code, rStep.m_nPosition);
        EXPECT_EQ(m_Table.GetScrollPos(), rStep.m_nResult) << rStep.m_Code;
    }
}

TEST_F(FlexTableTest, ANotchOfTheWheelIsOneRowHeightAndChangesNoValue) {
    AddRows(50);
    m_Table.MoveTo(1, 1);
    EXPECT_TRUE(Turn(-WHEEL_DELTA));
    EXPECT_EQ(m_Table.GetScrollPos(), 20);
    Turn(-2 * WHEEL_DELTA);
    EXPECT_EQ(m_Table.GetScrollPos(), 60);
    Turn(WHEEL_DELTA);
    EXPECT_EQ(m_Table.GetScrollPos(), 40);
    Turn(10 * WHEEL_DELTA);
    EXPECT_EQ(m_Table.GetScrollPos(), 0);
    Turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(m_Table.GetScrollPos(), 0) << "fine wheels add up";
    Turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(m_Table.GetScrollPos(), 20);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_EQ(GetNumber(1), 2.0);
    EXPECT_EQ(GetBox()->GetWindowText(), "2.00");
}

TEST_F(FlexTableTest, ATableThatShowsEverythingLeavesTheWheelToThePage) {
    AddRows(5);
    EXPECT_FALSE(Turn(-WHEEL_DELTA));
    AddRows(1);
    EXPECT_TRUE(Turn(-WHEEL_DELTA));
}

TEST_F(FlexTableTest, AClicksRowIsFoundByRowHeightMinusOne) {
    AddRows(50);
    for (const auto& [nY, Row] : {std::pair(0, 0u), {18, 0u}, {19, 1u}, {37, 1u}, {38, 2u}, {99, 5u}}) {
        Click(5, nY);
        EXPECT_THAT(GetCursor(), Pair(Row, 0)) << nY;
        Scroll(SB_TOP);
    }
    Scroll(SB_THUMBPOSITION, 20);
    Click(5, 17);
    EXPECT_THAT(GetCursor(), Pair(1, 0)) << "37 / 19";
    Scroll(SB_THUMBPOSITION, 20);
    Click(5, 18);
    EXPECT_THAT(GetCursor(), Pair(2, 0)) << "38 / 19";
}

TEST_F(FlexTableTest, RowsArePaintedWhereAClickFindsThem) {
    AddRows(50);
    Scroll(SB_THUMBPOSITION, 7);
    m_Loop.RunPosted();
    const CBitmap& rSurface = m_Table.GetSurface();
    for (unsigned Row = 1; Row < 5; ++Row) {
        // The grid line is the first pixel at which a click finds the row.
        const int nTop = static_cast<int>(Row) * PITCH - 7;
        EXPECT_EQ(rSurface.GetPixel(1, nTop - 1), RGB(255, 255, 255)) << Row;
        EXPECT_EQ(rSurface.GetPixel(1, nTop), GetSysColor(SysColor::eShadow)) << Row;
        EXPECT_EQ(rSurface.GetPixel(1, nTop + 1), RGB(255, 255, 255)) << Row;
    }
}

TEST_F(FlexTableTest, AClicksColumnIsAnEqualShareOfTheWidth) {
    AddRows(3);
    Click(99, 25);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
    Click(100, 25);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    m_Table.MoveWindow(CRect(0, 0, 221, 100));
    Click(199, 45);
    EXPECT_THAT(GetCursor(), Pair(2, 1));
    Click(200, 5);
    EXPECT_THAT(GetCursor(), Pair(2, 1)) << "the pixel that the shares leave over is no column";
}

TEST_F(FlexTableTest, AClickThatFindsNoCellLeavesTheCursorWhereItStood) {
    AddRows(2);
    Click(5, 2 * PITCH);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    Click(105, 2 * PITCH - 1);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    Type("5");
    m_Page.m_Codes.clear();
    Click(5, 2 * PITCH);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_THAT(m_Page.m_Codes, IsEmpty());
    EXPECT_EQ(GetNumber(1), 5.0) << "the edit is finished";
    EXPECT_EQ(GetBox()->GetWindowText(), "5.00");
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
}

TEST_F(FlexTableTest, ATableTooNarrowForItsColumnsCanBeClicked) {
    AddRows(2);
    m_Table.MoveWindow(CRect(0, 0, 21, 100));
    Click(0, 5);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    m_Table.MoveWindow(CRect(0, 0, 5, 0));
    m_Loop.RunPosted();
}

TEST_F(FlexTableTest, TheArrowsMoveTheCursorAndStopAtTheEdges) {
    AddRows(3);
    m_Table.MoveTo(1, 0);
    struct CMove {
        UINT m_Key;
        unsigned m_Row;
        unsigned m_Column;
    };
    for (const CMove& rMove : {CMove{VK_LEFT, 1, 0}, CMove{VK_RIGHT, 1, 1}, CMove{VK_RIGHT, 1, 1},
                               CMove{VK_UP, 0, 1}, CMove{VK_UP, 0, 1}, CMove{VK_DOWN, 1, 1},
                               CMove{VK_DOWN, 2, 1}, CMove{VK_DOWN, 2, 1}, CMove{VK_LEFT, 2, 0}}) {
        EXPECT_TRUE(Press(rMove.m_Key)) << "taken in each case";
        EXPECT_THAT(GetCursor(), Pair(rMove.m_Row, rMove.m_Column)) << rMove.m_Key;
    }
}

TEST_F(FlexTableTest, UpInRowZeroKeepsTheCursorAndScrollsToTheTop) {
    AddRows(50);
    m_Table.MoveTo(0, 1);
    Scroll(SB_THUMBPOSITION, 333);
    EXPECT_TRUE(Press(VK_UP));
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    EXPECT_EQ(m_Table.GetScrollPos(), 0);
}

TEST_F(FlexTableTest, TheViewScrollsSoThatTheCursorStaysInSight) {
    AddRows(50);
    m_Table.MoveTo(0, 0);
    const auto IsInSight = [this] {
        const CRect Cell = m_Table.GetCellRect(m_Table.GetCursorRow(), 0);
        return Cell.top >= 0 && Cell.bottom <= 100;
    };
    for (unsigned Row = 1; Row < 50; ++Row) {
        Press(VK_DOWN);
        ASSERT_THAT(GetCursor(), Pair(Row, 0));
        ASSERT_TRUE(IsInSight()) << Row;
    }
    EXPECT_EQ(m_Table.GetScrollPos(), 50 * PITCH - 100) << "no further than needed";
    Scroll(SB_TOP);
    Press(VK_RIGHT);
    EXPECT_TRUE(IsInSight()) << "also from where the wheel has gone";
    for (unsigned Row = 49; Row > 0; --Row) {
        Press(VK_UP);
        ASSERT_TRUE(IsInSight()) << Row;
    }
    m_Table.MoveTo(30, 0);
    m_Table.MoveWindow(CRect(0, 0, 220, 40));
    EXPECT_GE(m_Table.GetCellRect(30, 0).top, 0);
    EXPECT_LE(m_Table.GetCellRect(30, 0).bottom, 40) << "in a smaller window";
    m_Table.MoveWindow(CRect(0, 0, 220, 10));
    EXPECT_EQ(m_Table.GetCellRect(30, 0).top, 0) << "its upper part, if there is no room for a row";
}

TEST_F(FlexTableTest, WithTheCursorOffAnArrowPutsItOnTheFirstCell) {
    EXPECT_TRUE(Press(VK_DOWN));
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE)) << "an empty table";
    AddRows(3);
    EXPECT_TRUE(Press(VK_DOWN));
    EXPECT_THAT(GetCursor(), Pair(0, 0));
}

TEST_F(FlexTableTest, PageKeysMoveByWhatIsInSight) {
    AddRows(12);
    m_Table.MoveTo(1, 1);
    EXPECT_TRUE(Press(VK_NEXT));
    EXPECT_THAT(GetCursor(), Pair(6, 1)) << "100 / 19 rows";
    Press(VK_NEXT);
    Press(VK_NEXT);
    EXPECT_THAT(GetCursor(), Pair(11, 1));
    Press(VK_PRIOR);
    EXPECT_THAT(GetCursor(), Pair(6, 1));
    Press(VK_PRIOR);
    EXPECT_TRUE(Press(VK_PRIOR));
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    m_Table.MoveWindow(CRect(0, 0, 220, 10));
    Press(VK_NEXT);
    EXPECT_THAT(GetCursor(), Pair(1, 1)) << "one row at least";
}

TEST_F(FlexTableTest, HomeAndEndGoToTheFirstAndLastRowButWithShiftOrControlTheyAreTheBoxs) {
    AddRows(12);
    m_Table.MoveTo(5, 1);
    EXPECT_TRUE(Press(VK_END));
    EXPECT_THAT(GetCursor(), Pair(11, 1));
    EXPECT_TRUE(Press(VK_HOME));
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    for (const auto& [bShift, bControl] : {std::pair(true, false), std::pair(false, true)}) {
        SetModifierKeys(bShift, bControl);
        EXPECT_FALSE(Press(VK_END));
        EXPECT_FALSE(Press(VK_HOME));
        EXPECT_THAT(GetCursor(), Pair(0, 1));
    }
}

TEST_F(FlexTableTest, EnterFinishesTheEditAndGoesOnToTheNextCell) {
    AddRows(2);
    m_Table.MoveTo(0, 0);
    Type("M6");
    EXPECT_TRUE(Press(VK_RETURN));
    EXPECT_EQ(GetText(0), "M6");
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    Press(VK_RETURN);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
    Press(VK_RETURN);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    Type("7");
    EXPECT_TRUE(Press(VK_RETURN));
    EXPECT_THAT(GetCursor(), Pair(1, 1)) << "the last cell";
    EXPECT_EQ(GetNumber(1), 7.0);
    EXPECT_EQ(GetBox()->GetWindowText(), "7.00");
    m_Table.MoveOff();
    EXPECT_FALSE(Press(VK_RETURN)) << "the page's";
}

TEST_F(FlexTableTest, EscapeGivesTheOldValueBack) {
    AddRows(2);
    m_Table.MoveTo(1, 1);
    EXPECT_FALSE(Press(VK_ESCAPE)) << "nothing to give back: the page's";
    Type("25");
    EXPECT_TRUE(Press(VK_ESCAPE));
    EXPECT_EQ(GetBox()->GetWindowText(), "2.00");
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_FALSE(Press(VK_ESCAPE));
    Press(VK_UP);
    EXPECT_EQ(GetNumber(1), 2.0);
    m_Table.MoveTo(0, 0);
    Type("Other");
    Press(VK_ESCAPE);
    m_Table.MoveOff();
    EXPECT_EQ(GetText(0), "Screw");
    EXPECT_FALSE(Press(VK_ESCAPE));
}

TEST_F(FlexTableTest, OtherKeysAreNotTheTables) {
    AddRows(1);
    m_Table.MoveTo(0, 0);
    for (const UINT Key : {VK_TAB, VK_SPACE, VK_DELETE, VK_BACK, VK_F1, UINT{'A'}}) {
        EXPECT_FALSE(Press(Key)) << Key;
    }
}

TEST_F(FlexTableTest, TheParentIsToldWhenTheCursorMoves) {
    AddRows(2);
    m_Page.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
        EXPECT_EQ(rNotification.m_pFrom, &m_Table);
        EXPECT_EQ(rNotification.m_Id, 101u);
        return 0;
    };
    const auto CountTold = [this] { return std::exchange(m_Page.m_Codes, {}); };
    m_Table.MoveTo(0, 0);
    EXPECT_THAT(CountTold(), ElementsAre(-1101)) << "put on a cell";
    Press(VK_RIGHT);
    EXPECT_THAT(CountTold(), ElementsAre(-1101));
    Press(VK_RIGHT);
    m_Table.MoveTo(0, 1);
    EXPECT_FALSE(m_Table.MoveTo(2, 0));
    EXPECT_FALSE(m_Table.MoveTo(0, 2));
    EXPECT_THAT(CountTold(), IsEmpty()) << "it hasn't moved";
    m_Table.MoveOff();
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    EXPECT_THAT(CountTold(), ElementsAre(-1101)) << "taken off";
    m_Table.MoveOff();
    EXPECT_THAT(CountTold(), IsEmpty());
}

TEST_F(FlexTableTest, TheParentFindsTheCursorInItsNewPlace) {
    AddRows(2);
    std::pair<unsigned, unsigned> Told;
    m_Page.OnNotification = [&](CWndNotification&) -> LRESULT {
        Told = GetCursor();
        return 0;
    };
    Click(105, 25);
    EXPECT_THAT(Told, Pair(1, 1));
    m_Table.MoveOff();
    EXPECT_THAT(Told, Pair(NONE, NONE));
}

TEST_F(FlexTableTest, TheParentMayMoveTheCursorOnOrEndTheTableWhenItIsTold) {
    AddRows(3);
    m_Page.OnNotification = [this](CWndNotification&) -> LRESULT {
        m_Table.MoveTo(2, 1);
        return 0;
    };
    Click(5, 5);
    EXPECT_THAT(GetCursor(), Pair(2, 1));
    m_Page.OnNotification = [this](CWndNotification&) -> LRESULT {
        m_Table.MoveOff();
        return 0;
    };
    Click(5, 5);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    for (const bool bByKey : {false, true}) {
        auto pTable = std::make_unique<CFlexTable>();
        pTable->SetColumns({{CFlexTable::eString, "", ""}});
        pTable->AddRow();
        pTable->Create(&m_Page, CRect(0, 0, 100, 50), 102);
        m_Page.OnNotification = [&pTable](CWndNotification&) -> LRESULT {
            pTable.reset();
            return 0;
        };
        if (bByKey) {
            pTable->SendMessage(WM_KEYDOWN, VK_DOWN, 1);
        } else {
            pTable->SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(CPoint(5, 5)));
        }
        EXPECT_EQ(pTable, nullptr);
    }
}

TEST_F(FlexTableTest, ACursorThatIsOnWaitsForARowWhenTheTableIsEmptied) {
    AddRows(5);
    m_Table.MoveTo(3, 1);
    m_Table.SetFocus();
    m_Page.m_Codes.clear();
    m_Table.RemoveAllRows();
    EXPECT_EQ(m_Table.GetRowCount(), 0u);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    EXPECT_FALSE(GetBox()->IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), &m_Table) << "one has it";
    AddRows(2);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    EXPECT_TRUE(GetBox()->IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
    EXPECT_THAT(m_Page.m_Codes, IsEmpty()) << "nobody has moved it";
    m_Table.MoveOff();
    m_Table.RemoveAllRows();
    AddRows(2);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE)) << "one that is off stays off";
}

TEST_F(FlexTableTest, TheCursorTakesTheFocusAlongButDoesNotTakeItAway) {
    AddRows(2);
    m_Table.MoveTo(0, 0);
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    m_Table.SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), GetBox()) << "typing begins at once";
    m_Table.MoveOff();
    EXPECT_EQ(CWnd::GetFocus(), &m_Table);
    m_Table.MoveTo(1, 0);
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
}

TEST_F(FlexTableTest, TheFocusIsAlwaysVisible) {
    AddRows(1);
    const auto Paint = [this] {
        m_Loop.RunPosted();
        return m_Table.GetSurface();
    };
    const CBitmap Off = Paint();
    m_Table.SetFocus();
    EXPECT_TRUE(FindDifference(Off, Paint())) << "with the cursor off";
    m_Table.MoveTo(0, 0);
    const CBitmap OnCell = Paint();
    EXPECT_TRUE(FindColor(OnCell, m_Table.GetCellRect(0, 0), GetSysColor(SysColor::eSelection)));
    m_Page.SetFocus();
    EXPECT_FALSE(FindColor(Paint(), m_Table.GetCellRect(0, 0), GetSysColor(SysColor::eSelection)));
    EXPECT_TRUE(FindDifference(Off, Paint())) << "the cursor still shows";
    m_Table.MoveOff();
    EXPECT_FALSE(FindDifference(Off, Paint()));
}

TEST_F(FlexTableTest, ATableThatEndsKeepsWhatWasTypedAndCanBeMadeAnew) {
    AddRows(2);
    m_Table.MoveTo(1, 1);
    Type("9");
    m_Table.DestroyWindow();
    EXPECT_EQ(GetNumber(1), 9.0);
    EXPECT_THAT(GetCursor(), Pair(NONE, NONE));
    EXPECT_FALSE(m_Table.MoveTo(0, 0)) << "no window";
    m_Table.Create(&m_Page, CRect(10, 20, 230, 120), 101);
    EXPECT_TRUE(m_Table.MoveTo(0, 1));
    EXPECT_EQ(GetBox()->GetWindowText(), "1.00");
    EXPECT_EQ(GetBar().GetMax(), 40);
}

TEST_F(FlexTableTest, TheHeaderShowsTheTitlesAboveTheColumnsAndIsNoPartOfTheTable) {
    AddRows(1);
    CFlexTableHeader Header(m_Table);
    Header.Create(&m_Page, CRect(10, 0, 230, CFlexTableHeader::GetPreferredHeight()), 102);
    m_Loop.RunPosted();
    const auto IsDark = [](COLORREF Color) { return GetRValue(Color) < 100; };
    for (const int nLeft : {0, 100}) {
        const auto Title = FindPixels(Header.GetSurface(), CRect(nLeft, 0, nLeft + 100, 20), IsDark);
        ASSERT_TRUE(Title);
        EXPECT_NEAR(Title->left, nLeft + 4, 2);
    }
    EXPECT_FALSE(FindPixels(Header.GetSurface(), CRect(200, 0, 220, 20), IsDark)) << "over the scroll bar";
    EXPECT_EQ(m_Table.GetCellRect(0, 0).top, 0);
}

}  // namespace
