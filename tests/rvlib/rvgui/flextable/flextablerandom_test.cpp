// Whatever comes, in whatever order: some things always hold.
#include <QClipboard>
#include <algorithm>
#include <cmath>
#include <random>

#include "tests/rvlib/rvgui/flextable/shownflextable.h"

namespace {

class RandomFlexTableTest : public ShownFlexTableTest, public testing::WithParamInterface<unsigned> {
protected:
    int Draw(int nBelow) { return static_cast<int>(m_Random() % static_cast<unsigned>(nBelow)); }
    unsigned DrawRow() { return static_cast<unsigned>(Draw(static_cast<int>(m_Table.GetRowCount()) + 2)); }

    void PressRandomKey() {
        static constexpr Qt::Key c_Keys[] = {
            Qt::Key_Left,   Qt::Key_Right,   Qt::Key_Up,   Qt::Key_Down,   Qt::Key_PageUp, Qt::Key_PageDown,
            Qt::Key_Home,   Qt::Key_End,     Qt::Key_Tab,  Qt::Key_Return, Qt::Key_Escape, Qt::Key_Backspace,
            Qt::Key_Delete, Qt::Key_Backtab, Qt::Key_Down, Qt::Key_Return};
        PressKey(c_Keys[Draw(std::size(c_Keys))], Draw(6) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
    }
    void WriteRandom() {
        static constexpr const char* c_Texts[] = {"1", "25", "0",    ",5", ".", "-",
                                                  "+", "x",  "12,5", "-0", "e"};
        Write(c_Texts[Draw(std::size(c_Texts))]);
    }
    void Paste() {
        static constexpr const char* c_Texts[] = {"3,75", "4 kg", "-1", "1.2.3", "", "1e9"};
        QApplication::clipboard()->setText(c_Texts[Draw(std::size(c_Texts))]);
        PressKey(Qt::Key_V, Qt::ControlModifier);
    }
    void Act() {
        switch (Draw(20)) {
            case 0:
            case 1:
            case 2:
            case 3:
                return PressRandomKey();
            case 4:
            case 5:
            case 6:
            case 7:
                return WriteRandom();
            case 8:
            case 9:
            case 10:
                return ClickAt(Draw(200), Draw(std::max(m_Table.GetRect().Height(), 1)));
            case 11:
                return TurnWheelAt(Draw(200), Draw(20), (Draw(9) - 4) * 60);
            case 12:
                return m_Loop.Advance(static_cast<unsigned>(Draw(400)));
            case 13:
                return Paste();
            case 14:
                return Draw(3) == 0 ? m_Table.MoveOff() : void(m_Table.MoveTo(DrawRow(), DrawRow() % 3));
            case 15:
                return void(m_Table.SetFocus());
            case 16:
                m_Table.AddRow();
                return;
            case 17:
                m_Table.SetItemData(DrawRow(), 1, Draw(5) - 2.0);
                return m_Loop.Advance(CFlexTable::eGrowthPeriod);  // it may have been the last row
            case 18:
                m_Table.MoveWindow(CRect(10, 20, 230, 40 + Draw(100)));
                return Scroll(Draw(8), Draw(300));
            default:
                if (Draw(5) == 0) {
                    m_Table.RemoveAllRows();
                    m_Table.AddRow();
                }
        }
    }

    void ExpectInOrder() {
        const auto [Row, Column] = GetCursor();
        const bool bOn = Row != eNone;
        EXPECT_EQ(bOn, Column != eNone);
        if (bOn) {
            EXPECT_LT(Row, m_Table.GetRowCount());
            EXPECT_LT(Column, 2u);
            CRect Box = m_Table.GetCellRect(Row, Column);
            Box.DeflateRect(1, 1);
            Box.OffsetRect(-1, 1);
            EXPECT_EQ(GetBox()->GetRect(), Box);
            if (Column == 1) {
                EXPECT_EQ(GetBox()->GetWindowText().find_first_not_of("0123456789.+-"), std::string::npos);
            }
        }
        EXPECT_EQ(bOn, GetBox() != nullptr && GetBox()->IsWindowVisible());
        // One focus, the same here and in the toolkit, and on the table's only if there is no box.
        const CWnd* const pFocus = CWnd::GetFocus();
        QWidget* const pShown = QApplication::focusWidget();
        EXPECT_EQ(pShown, pFocus != nullptr       ? m_pView->FindWidget(*pFocus)
                          : m_pBefore->hasFocus() ? m_pBefore
                          : m_pAfter->hasFocus()  ? m_pAfter
                                                  : nullptr);
        EXPECT_TRUE(pFocus == nullptr || pFocus == &m_Page ||
                    pFocus == (bOn ? static_cast<CWnd*>(GetBox()) : &m_Table));
        EXPECT_GE(m_Table.GetScrollPos(), 0);
        EXPECT_LE(m_Table.GetScrollPos(), static_cast<int>(m_Table.GetRowCount()) * 20);
        EXPECT_EQ(GetNumber(m_Table.GetRowCount() - 1), 0.0) << "the last row is untouched";
        for (unsigned i = 0; i < m_Table.GetRowCount(); ++i) {
            EXPECT_TRUE(std::isfinite(GetNumber(i)));
        }
    }

    std::mt19937 m_Random{GetParam()};
};

TEST_P(RandomFlexTableTest, FocusCursorAndTheLastRowAreInOrderWhateverHappens) {
    m_Table.AddRow();
    StartGrowth();
    Show();
    for (int i = 0; i < 600 && !HasFailure(); ++i) {
        Act();
        m_Loop.RunPosted();
        SCOPED_TRACE("step " + std::to_string(i));
        ExpectInOrder();
    }
    EXPECT_GT(m_Table.GetRowCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomFlexTableTest, testing::Range(1u, 9u));

}  // namespace
