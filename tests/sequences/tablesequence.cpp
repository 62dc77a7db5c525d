#include "tests/sequences/tablesequence.h"

#include <QClipboard>
#include <algorithm>
#include <cmath>

CTableSequence::CTableSequence(IFChoices& rChoices) : CShownPage(m_Loop, m_Page), m_rChoices(rChoices) {
    m_Table.AddRow();
    StartGrowth();
    Expect(TryShow(), "the page comes to the screen");
    m_Page.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
        if (rNotification.m_Code == CFlexTable::CURSOR_MOVED) {
            Interfere();
        }
        return 0;
    };
}

CTableSequence::~CTableSequence() {
    m_Page.OnNotification = nullptr;
}

void CTableSequence::Step() {
    switch (Pick(20)) {
        case 0:
        case 1:
        case 2:
        case 3:
            PressSomeKey();
            break;
        case 4:
        case 5:
        case 6:
        case 7:
            WriteSomething();
            break;
        case 8:
        case 9:
        case 10: {
            const int nX = Pick(200);
            ClickAt(GetTableWidget(), QPoint(nX, Pick(std::max(m_Table.GetRect().Height(), 1))));
            break;
        }
        case 11: {
            const QPoint Place(Pick(200), 10);
            TurnWheel(GetTableWidget(), Place, (Pick(9) - 4) * WHEEL_DELTA / 2);
            break;
        }
        case 12:
            m_Loop.Advance(static_cast<std::uint32_t>(Pick(400)));
            break;
        case 13:
            Paste();
            break;
        case 14:
            if (Pick(3) == 0) {
                m_Table.MoveOff();
            } else {
                const unsigned Row = PickRow();
                m_Table.MoveTo(Row, static_cast<unsigned>(Pick(3)));
            }
            break;
        case 15:
            m_Table.SetFocus();
            break;
        case 16:
            m_Table.AddRow();
            break;
        case 17:
            Fill();
            break;
        case 18: {
            m_Table.MoveWindow(CRect(10, 20, 230, 40 + Pick(100)));
            const int nCode = Pick(8);
            Scroll(nCode, Pick(300));
            break;
        }
        default:
            Restart();
            break;
    }
    m_Loop.RunPosted();
}

void CTableSequence::PressSomeKey() {
    static constexpr Qt::Key KEYS[] = {Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Up,     Qt::Key_Down,
                                       Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home,   Qt::Key_End,
                                       Qt::Key_Tab,    Qt::Key_Return,   Qt::Key_Escape, Qt::Key_Backspace,
                                       Qt::Key_Delete, Qt::Key_Backtab,  Qt::Key_Down,   Qt::Key_Return};
    const Qt::Key Key = KEYS[Pick(std::size(KEYS))];
    PressKey(Key, Pick(6) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
}

void CTableSequence::WriteSomething() {
    static constexpr const char* TEXTS[] = {"1", "25", "0", ",5", ".", "-", "+", "x", "12,5", "-0", "e"};
    Write(TEXTS[Pick(std::size(TEXTS))]);
}

void CTableSequence::Paste() {
    static constexpr const char* TEXTS[] = {"3,75", "4 kg", "-1", "1.2.3", "", "1e9"};
    QApplication::clipboard()->setText(TEXTS[Pick(std::size(TEXTS))]);
    PressKey(Qt::Key_V, Qt::ControlModifier);
}

void CTableSequence::Fill() {
    const unsigned Row = PickRow();
    m_Table.SetItemData(Row, 1, Pick(5) - 2.0);
    m_Loop.Advance(CFlexTable::GROWTH_PERIOD);  // it may have been the last row
}

void CTableSequence::Restart() {
    if (Pick(5) == 0) {
        m_Table.RemoveAllRows();
        m_Table.AddRow();
    }
}

void CTableSequence::Interfere() {
    if (m_nDepth > 1) {
        return;
    }
    ++m_nDepth;
    switch (Pick(20)) {
        case 1:
            m_Table.MoveTo(PickRow(), 1);
            break;
        case 2:
            m_Table.MoveOff();
            break;
        case 3:
            m_Table.AddRow();
            break;
        case 4:
            Restart();
            break;
        case 5:
            m_Page.SetFocus();
            break;
        default:
            break;
    }
    --m_nDepth;
}

void CTableSequence::Expect(bool bHolds, const char* pRule) {
    if (!bHolds && m_Breach.empty()) {
        m_Breach = pRule;
    }
}

void CTableSequence::CheckFocus(bool bCursorOn) {
    const CWnd* const pFocus = CWnd::GetFocus();
    QWidget* const pNeighbour = m_pBefore->hasFocus() ? m_pBefore : m_pAfter->hasFocus() ? m_pAfter : nullptr;
    QWidget* const pShown = pFocus == nullptr ? pNeighbour : pFocus == &m_Page ? m_pView : Find(*pFocus);
    Expect(QApplication::focusWidget() == pShown, "the toolkit's focus is ours");
    const CWnd* const pOperated = bCursorOn ? static_cast<const CWnd*>(GetBox()) : &m_Table;
    Expect(pFocus == nullptr || pFocus == &m_Page || pFocus == pOperated,
           "the focus is in the box, and on the table only if there is none");
}

std::string CTableSequence::Check() {
    const auto [Row, Column] = GetCursor();
    const bool bOn = Row != NONE;
    Expect(bOn == (Column != NONE), "the cursor has a row and a column, or neither");
    Expect(bOn == (GetBox() != nullptr && GetBox()->IsWindowVisible()), "the box is where the cursor is on");
    if (bOn) {
        Expect(Row < m_Table.GetRowCount() && Column < m_Table.GetColumnCount(), "the cursor is on a cell");
        CRect Box = m_Table.GetCellRect(Row, Column);
        Box.DeflateRect(1, 1);
        Box.OffsetRect(-1, 1);
        Expect(GetBox()->GetRect() == Box, "the box lies over the cursor's cell");
        Expect(
            Column == 0 || GetBox()->GetWindowText().find_first_not_of("0123456789.+-") == std::string::npos,
            "a weight's box holds a number");
    }
    CheckFocus(bOn);
    const int nRange = static_cast<int>(m_Table.GetRowCount()) * m_Table.GetRowHeight();
    Expect(m_Table.GetScrollPos() >= 0 && m_Table.GetScrollPos() <= nRange,
           "the position is within the range");
    for (unsigned i = 0; i < m_Table.GetRowCount(); ++i) {
        double Number = std::nan("");
        Expect(m_Table.GetItemData(i, 1, Number) && std::isfinite(Number), "each row has a weight");
        Expect(i + 1 < m_Table.GetRowCount() || Number == 0.0, "the last row is untouched");
    }
    Expect(m_Table.GetRowCount() > 0, "there is a last row");
    return m_Breach;
}
