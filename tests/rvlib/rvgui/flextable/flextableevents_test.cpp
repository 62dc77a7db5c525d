// What an operator does with the table, as real events of the toolkit.
#include <QClipboard>
#include <QScrollBar>

#include "platform/qt/bitmapimpl.h"
#include "tests/rvlib/rvgui/flextable/shownflextable.h"
#include "tests/support/pixels.h"

namespace {

using testing::Pair;

TEST_F(ShownFlexTableTest, ACellIsClickedTypedIntoAndLeftByEnter) {
    AddRows(3);
    Show();
    ClickAt(105, PITCH + 5);
    ASSERT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_TRUE(GetBoxWidget()->hasFocus());
    EXPECT_EQ(GetBoxWidget()->selectedText(), "2.00");
    Write("12,5");
    EXPECT_EQ(GetBoxWidget()->text(), "12.5");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(GetNumber(1), 12.5);
    EXPECT_THAT(GetCursor(), Pair(2, 0));
    EXPECT_TRUE(GetBoxWidget()->hasFocus());
    Write("m8 \xC3\xA4");
    PressKey(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(GetText(2).substr(0, 3), "m8 ");
    EXPECT_THAT(GetCursor(), Pair(2, 1));
}

TEST_F(ShownFlexTableTest, ACharacterThatIsRefusedNeverShows) {
    AddRows(1);
    Show();
    ClickAt(105, 5);
    Write("7");
    Write("x");
    EXPECT_EQ(GetBoxWidget()->text(), "7.00");
    EXPECT_EQ(GetBoxWidget()->selectedText(), "7.00");
    Write("-3");
    EXPECT_EQ(GetBoxWidget()->text(), "-3");
    Write("-");
    EXPECT_EQ(GetBoxWidget()->text(), "-3.00");
    QApplication::clipboard()->setText("4 kg");
    PressKey(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(GetBoxWidget()->text(), "-3.00");
    QApplication::clipboard()->setText("4,25");
    PressKey(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(GetBoxWidget()->text(), "4.25");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(GetNumber(0), 4.25);
}

TEST_F(ShownFlexTableTest, ArrowsInTheBoxMoveTheCursor) {
    AddRows(2);
    Show();
    ClickAt(5, 5);
    Write("abc");
    PressKey(Qt::Key_Left);
    EXPECT_THAT(GetCursor(), Pair(0, 0)) << "also where it stops, it isn't the caret that moves";
    EXPECT_EQ(GetBoxWidget()->selectedText(), "abc");
    PressKey(Qt::Key_Right);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    EXPECT_EQ(GetBoxWidget()->selectedText(), "1.00");
    PressKey(Qt::Key_Down);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    EXPECT_EQ(GetText(0), "abc");
    PressKey(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_THAT(GetCursor(), Pair(1, 1)) << "the box's";
    PressKey(Qt::Key_Home);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    PressKey(Qt::Key_PageDown);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
}

TEST_F(ShownFlexTableTest, AClickIntoTheBoxPlacesTheCaret) {
    AddRows(1);
    Show();
    ClickAt(5, 8);
    ClickAt(95, 10);
    EXPECT_THAT(GetCursor(), Pair(0, 0));
    EXPECT_FALSE(GetBoxWidget()->hasSelectedText());
    Write("s");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(GetText(0), "Screws");
}

TEST_F(ShownFlexTableTest, EscapeGivesTheOldValueBack) {
    AddRows(1);
    Show();
    ClickAt(105, 5);
    Write("99");
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(GetBoxWidget()->text(), "1.00");
    EXPECT_EQ(GetBoxWidget()->selectedText(), "1.00");
    EXPECT_TRUE(m_Page.Of(WM_KEYDOWN).empty()) << "used";
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(m_Page.Of(WM_KEYDOWN).size(), 1u) << "nothing to give back: the page's";
}

TEST_F(ShownFlexTableTest, TheWheelScrollsEverywhereAndChangesNoValue) {
    AddRows(30);
    Show();
    ClickAt(105, 2 * PITCH + 5);
    Write("8");
    TurnWheelAt(5, 90, -120);
    EXPECT_EQ(m_Table.GetScrollPos(), 20) << "over a cell";
    TurnWheelAt(150, PITCH + 10, -120);
    EXPECT_EQ(m_Table.GetScrollPos(), 40) << "over the box";
    TurnWheelAt(210, 50, -120);
    EXPECT_EQ(m_Table.GetScrollPos(), 60) << "over the scroll bar";
    EXPECT_EQ(GetBoxWidget()->text(), "8");
    EXPECT_TRUE(GetBoxWidget()->hasFocus());
    EXPECT_EQ(GetNumber(2), 3.0);
}

TEST_F(ShownFlexTableTest, TheBoxScrollsIsCutOffAndHidesWithItsCell) {
    AddRows(30);
    Show();
    ClickAt(105, 2 * PITCH + 5);
    EXPECT_EQ(GetBoxWidget()->geometry(), QRect(100, 40, 98, 17));
    TurnWheelAt(5, 90, -240);
    EXPECT_EQ(GetBoxWidget()->geometry().top(), 0);
    TurnWheelAt(5, 90, -120);
    EXPECT_TRUE(GetBoxWidget()->visibleRegion().isEmpty()) << "above the table's edge";
    EXPECT_TRUE(GetBoxWidget()->hasFocus());
    Write("5");
    EXPECT_EQ(GetBoxWidget()->geometry().top(), 2) << "typing brings it back";
    m_Table.MoveWindow(CRect(10, 40, 230, 140));
    EXPECT_EQ(GetBoxWidget()->mapTo(m_pView, QPoint(0, 0)).y(), 42);
    m_Table.ShowWindow(false);
    EXPECT_FALSE(GetBoxWidget()->isVisible());
    EXPECT_EQ(GetNumber(2), 5.0) << "the edit is finished";
    m_Table.ShowWindow(true);
    EXPECT_TRUE(GetBoxWidget()->isVisible());
}

TEST_F(ShownFlexTableTest, TheScrollBarIsPressedAndDragged) {
    AddRows(30);
    Show();
    auto* const pBar =
        dynamic_cast<QScrollBar*>(m_pView->FindWidget(*m_Table.GetDlgItem(CFlexTable::SCROLL_BAR_ID)));
    ASSERT_NE(pBar, nullptr);
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 98));
    EXPECT_EQ(m_Table.GetScrollPos(), 20) << "the arrow: one row height";
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 70));
    EXPECT_EQ(m_Table.GetScrollPos(), 120) << "beside the thumb: the client height";
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 2));
    EXPECT_EQ(m_Table.GetScrollPos(), 100);
    QTest::mousePress(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 35));
    QTest::mouseMove(pBar, QPoint(10, 300));
    EXPECT_EQ(m_Table.GetScrollPos(), 500) << "dragged to the end";
    QTest::mouseMove(pBar, QPoint(10, -300));
    QTest::mouseRelease(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, -300));
    EXPECT_EQ(m_Table.GetScrollPos(), 0);
}

TEST_F(ShownFlexTableTest, TheTabKeyEntersAndLeavesOnBothSides) {
    AddRows(2);
    Show();
    m_pBefore->setFocus();
    PressKey(Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), &m_Table) << "with the cursor off";
    PressKey(Qt::Key_Down);
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
    PressKey(Qt::Key_Tab);
    EXPECT_TRUE(m_pAfter->hasFocus());
    PressKey(Qt::Key_Backtab);
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
    Write("new");
    PressKey(Qt::Key_Backtab);
    EXPECT_TRUE(m_pBefore->hasFocus()) << "and not the table again";
    EXPECT_EQ(GetText(0), "new") << "the edit is finished";
    PressKey(Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), GetBox());
    EXPECT_EQ(GetBoxWidget()->selectedText(), "new");
    m_Table.MoveOff();
    EXPECT_TRUE(GetTableWidget()->hasFocus());
    PressKey(Qt::Key_Tab);
    EXPECT_TRUE(m_pAfter->hasFocus());
}

TEST_F(ShownFlexTableTest, TypingIntoTheLastRowAddsOne) {
    m_Table.AddRow();
    StartGrowth();
    Show();
    ClickAt(105, 5);
    Write("0.0");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(m_Table.GetRowCount(), 1u) << "the default value";
    Write("2.5");
    PressKey(Qt::Key_Down);
    EXPECT_EQ(m_Table.GetRowCount(), 2u);
    EXPECT_THAT(GetCursor(), Pair(1, 1));
    Write("3");
    m_Loop.Advance(250);
    EXPECT_EQ(m_Table.GetRowCount(), 3u) << "by the timer";
    Write("5");
    PressKey(Qt::Key_Up);
    EXPECT_EQ(GetNumber(1), 35.0) << "the edit went on";
    EXPECT_EQ(m_Table.GetRowCount(), 3u);
}

TEST_F(ShownFlexTableTest, LeavingTheProgramFinishesTheEditAndComingBackGoesOn) {
    AddRows(2);
    Show();
    ClickAt(105, 5);
    Write("4");
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_EQ(GetNumber(0), 4.0);
    m_Frame.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_Frame));
    EXPECT_TRUE(GetBoxWidget()->hasFocus());
    Write("6");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(GetNumber(0), 6.0);
}

TEST_F(ShownFlexTableTest, ADisabledTableTakesNoClickAndNoKey) {
    AddRows(2);
    Show();
    ClickAt(105, 5);
    m_Table.EnableWindow(false);
    EXPECT_NE(CWnd::GetFocus(), GetBox());
    ClickAt(5, PITCH + 5);
    EXPECT_THAT(GetCursor(), Pair(0, 1));
    m_Table.EnableWindow(true);
    ClickAt(5, PITCH + 5);
    EXPECT_THAT(GetCursor(), Pair(1, 0));
}

TEST_F(ShownFlexTableTest, TheComposedPictureIsTheOneOnTheScreen) {
    AddRows(30);
    Show();
    ClickAt(105, 2 * PITCH + 5);
    TurnWheelAt(5, 90, -240);
    m_Loop.RunPosted();
    CBitmap Screen;
    Screen.Create(CSize(300, 200));
    m_pView->render(&Screen.GetImpl().GetImage());
    EXPECT_FALSE(FindDifference(Screen, m_Page.Compose()));
}

}  // namespace
