// What comes to a flex table: keys, mouse, scroll bar, focus, and its edit box.
#include <algorithm>

#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/flextable/flextable.h"
#include "rvlib/rvgui/listkeys.h"

LRESULT CFlexTable::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            m_ScrollBar.Create(this, CRect(), SCROLL_BAR_ID);
            return 0;
        case WM_SIZE:
            OnSize();
            return 0;
        case WM_DESTROY:
            OnDestroy();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            OnFocus();
            return 0;
        case WM_KEYDOWN:
            return OnKeyDown(static_cast<UINT>(wParam)) ? 1 : 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            OnClick(GetPointParam(lParam));
            return 0;
        case WM_MOUSEWHEEL:
            return OnWheel(GetWheelParam(wParam)) ? 1 : 0;
        case WM_VSCROLL:
            OnScroll(GetScrollCode(wParam), GetScrollPosition(wParam));
            return 0;
        case WM_TIMER:
            if (wParam == GROWTH_TIMER && m_bAutoGrowth) {
                Commit(CFlexTableItem::eFinished);
            }
            return 0;
        case WM_NOTIFY:
            if (GetNotification(lParam).m_pFrom == &m_Box) {
                OnBox(GetNotification(lParam).m_Code);
                return 0;
            }
            break;
        default:
            break;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

LRESULT CFlexTable::CBox::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    // A handler of the table's may end both windows.
    if (Message == WM_KEYDOWN) {
        return m_rTable.OnKeyDown(static_cast<UINT>(wParam)) ? 1 : 0;
    }
    return CEdit::WindowProc(Message, wParam, lParam);
}

void CFlexTable::OnSize() {
    const CRect Client = GetClientRect();
    m_ScrollBar.MoveWindow(CRect(GetRowsRect().right, 0, Client.right, Client.bottom));
    UpdateScrollRange();
    if (m_pActive != nullptr) {
        EnsureVisible(m_Row);
    }
}

void CFlexTable::OnDestroy() {
    Commit(CFlexTableItem::eFinished);  // what was typed isn't lost
    if (m_pActive != nullptr) {
        m_pActive->Deactivate();
        m_pActive = nullptr;
    }
    m_Row = NONE;
    m_Column = NONE;
    ModifyStyle(0, WS_TABSTOP);
}

void CFlexTable::OnFocus() {
    if (GetFocus() == this && m_pActive != nullptr) {
        m_Box.SetFocus();
    }
    Invalidate();
}

void CFlexTable::OnBox(int Code) {
    if (m_pActive == nullptr) {
        return;
    }
    switch (Code) {
        case EN_CHANGE:
            m_pActive->OnEditChange();
            EnsureVisible(m_Row);
            break;
        case EN_SETFOCUS:
            m_Box.SelectAll();
            Invalidate();
            break;
        case EN_KILLFOCUS:
            Commit(CFlexTableItem::eFinished);
            Activate();
            break;
        default:
            break;
    }
}

void CFlexTable::OnClick(CPoint Point) {
    const CGuard Guard(*this);
    const int nWidth = GetColumnWidth();
    if (nWidth > 0 && GetRowsRect().PtInRect(Point)) {
        MoveTo(static_cast<unsigned>((GetScrollPos() + Point.y) / GetPitch()),
               static_cast<unsigned>(Point.x / nWidth));
    }
    if (Guard.IsAlive()) {
        SetFocus();
    }
}

void CFlexTable::OnScroll(int Code, int nPosition) {
    ScrollTo(m_ScrollBar.GetTarget(Code, nPosition, m_nRowHeight));
}

bool CFlexTable::OnWheel(int nDelta) {
    m_nWheelRest += nDelta;
    const int nNotches = m_nWheelRest / WHEEL_DELTA;
    m_nWheelRest -= nNotches * WHEEL_DELTA;
    ScrollTo(GetScrollPos() - nNotches * m_nRowHeight);
    return m_ScrollBar.GetLimit() > 0;  // a table that shows everything leaves the wheel to the page
}

bool CFlexTable::OnKeyDown(UINT Key) {
    if ((Key == VK_HOME || Key == VK_END) && (IsShiftDown() || IsControlDown())) {
        return false;  // the box's
    }
    const int nPage = std::max(GetClientRect().Height() / GetPitch(), 1);
    if (const std::optional<int> nRows = Gui::GetRowsToMove(Key, nPage)) {
        Step(*nRows, 0);
        return true;
    }
    switch (Key) {
        case VK_LEFT:
            Step(0, -1);
            return true;
        case VK_RIGHT:
            Step(0, 1);
            return true;
        case VK_RETURN:
            return GoOn();
        case VK_ESCAPE:
            return Abandon();
        default:
            return false;
    }
}

void CFlexTable::Step(int nRows, int nColumns) {
    if (m_pActive == nullptr) {
        MoveTo(0, 0);
        return;
    }
    Commit(CFlexTableItem::eFinished);  // first: it may add the row to go to
    const auto Move = [](unsigned From, int nStep, unsigned nCount) {
        return static_cast<unsigned>(
            std::clamp(static_cast<int>(From) + nStep, 0, static_cast<int>(nCount) - 1));
    };
    MoveTo(Move(m_Row, nRows, GetRowCount()), Move(m_Column, nColumns, GetColumnCount()));
}

bool CFlexTable::GoOn() {
    if (m_pActive == nullptr) {
        return false;
    }
    if (!MoveTo(m_Row, m_Column + 1)) {
        MoveTo(m_Row + 1, 0);
    }
    return true;
}

bool CFlexTable::Abandon() {
    if (m_pActive == nullptr || !m_pActive->IsEdited()) {
        return false;  // nothing to give back: the key is the page's
    }
    Commit(CFlexTableItem::eAbandoned);
    return true;
}
