#include "rvlib/rvgui/proptree/proptreelist.h"

#include <algorithm>

#include "platform/window/dc.h"
#include "platform/window/display.h"
#include "platform/window/messageparams.h"
#include "platform/window/syscolor.h"
#include "rvlib/rvgui/log.h"
#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

namespace {

constexpr UINT SCROLL_BAR_ID = 1;
constexpr int GUTTER = 16;
constexpr int FRAME = 4;  // keyboard-only mode: two lines, and a gap behind each

}  // namespace

bool CPropTreeList::Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible) {
    const bool bCreated = CWnd::Create(pParent, rRect, Id, bVisible);
    if (!bCreated) {
        RV_ERROR(Gui::g_pLog, "List: AfxRegisterWndClass failed!");
    }
    return bCreated;
}

CRect CPropTreeList::GetContentRect() const {
    CRect Content = GetClientRect();
    if (m_rTree.IsKeyboardOnly()) {
        Content.DeflateRect(FRAME, FRAME);
    } else {
        Content.left += GUTTER;
    }
    if (m_rTree.GetContentHeight() > Content.Height()) {
        Content.right -= CScrollBar::GetPreferredWidth();
    }
    Content.right = std::max(Content.right, Content.left);
    Content.bottom = std::max(Content.bottom, Content.top);
    return Content;
}

void CPropTreeList::Redraw() {
    m_bDirty = true;
    Invalidate();
}

void CPropTreeList::FitScrollBar() {
    const CRect Content = GetContentRect();
    m_ScrollBar.ShowWindow(m_rTree.GetContentHeight() > Content.Height());
    m_ScrollBar.EnableWindow(!m_rTree.IsKeyboardOnly());
    m_ScrollBar.MoveWindow(
        CRect(Content.right, Content.top, Content.right + CScrollBar::GetPreferredWidth(), Content.bottom));
    m_ScrollBar.SetScrollRange(0, m_rTree.GetContentHeight(), Content.Height());
    m_ScrollBar.SetScrollPos(m_rTree.GetScrollPos());
}

void CPropTreeList::ForgetItem(const CPropTreeItem& rItem) {
    if (m_pPressed == &rItem) {
        m_pPressed = nullptr;
    }
}

LRESULT CPropTreeList::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            return m_ScrollBar.Create(this, CRect(), SCROLL_BAR_ID, false) ? 0 : -1;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_SETFOCUS:
            // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
            OnSetFocus(reinterpret_cast<const CWnd*>(wParam));
            return 0;
        case WM_KILLFOCUS:
            m_bEnterDown = false;
            Redraw();
            return 0;
        case WM_NOTIFY:
            return OnNotify(GetNotification(lParam));
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            OnButtonDown(GetPointParam(lParam), Message == WM_LBUTTONDBLCLK);
            return 0;
        case WM_LBUTTONUP:
            OnButtonUp(GetPointParam(lParam));
            return 0;
        case WM_MOUSEMOVE:
            OnMouseMove(GetPointParam(lParam));
            return 0;
        case WM_CAPTURECHANGED:
            StopDragging();
            return 0;
        case WM_MOUSEWHEEL:
            return OnWheel(GetWheelParam(wParam)) ? 1 : 0;
        case WM_VSCROLL:
            OnScroll(GetScrollCode(wParam), GetScrollPosition(wParam));
            return 0;
        case WM_KEYDOWN:
            return OnKeyDown(static_cast<UINT>(wParam)) ? 1 : 0;
        case WM_KEYUP:
            return OnKeyUp(static_cast<UINT>(wParam)) ? 1 : 0;
        case WM_CHAR: {
            CPropTreeItem* const pItem = m_rTree.GetFocusedItem();
            return m_rTree.HasListFocus() && pItem != nullptr && !pItem->IsActive() &&
                           m_rTree.IsWindowEnabled() && pItem->OnCharacter(static_cast<char32_t>(wParam))
                       ? 1
                       : 0;
        }
        default:
            return CWnd::WindowProc(Message, wParam, lParam);
    }
}

void CPropTreeList::OnSetFocus(const CWnd* pFormer) {
    // Who arrives by the Tab key has to see where he is. Not so when the box over a value hands it back.
    while (pFormer != nullptr && pFormer != this) {
        pFormer = pFormer->GetParent();
    }
    if (pFormer == nullptr && m_rTree.GetFocusedItem() == nullptr) {
        m_rTree.SetFocusedItem(m_rTree.GetFirstVisible());
    }
    Redraw();
}

LRESULT CPropTreeList::OnNotify(const CWndNotification& rNotification) const {
    // Of items that are controls themselves. They may be gone afterwards.
    auto* const pItem = dynamic_cast<CPropTreeItem*>(rNotification.m_pFrom);
    return pItem != nullptr ? pItem->OnControlNotification(rNotification) : 0;
}

void CPropTreeList::Paint() {
    const bool bFits = m_Memory.GetSize() == GetSurface().GetSize() && m_Memory.GetScale() == GetScale();
    if (m_bDirty || !m_bDragging || !bFits) {
        PaintRows();
    }
    const CRect Client = GetClientRect();
    {
        CDC DC(GetSurface());
        DC.BitBlt(Client, m_Memory, CPoint());
        if (m_bDragging) {
            DC.InvertRect(CRect(m_DragX - 1, 0, m_DragX + 1, Client.bottom));
        }
    }
    SurfaceChanged();
    const CPropTreeItem* const pFocus = m_rTree.GetFocusedItem();
    const std::string Name =
        pFocus == nullptr ? std::string() : pFocus->GetLabelText() + " " + pFocus->GetValueText();
    if (Name != GetAccessibleName()) {
        SetAccessibleName(Name);
    }
}

void CPropTreeList::PaintRows() {
    m_bDirty = false;
    const CRect Client = GetClientRect();
    if (m_Memory.GetSize() != Client.Size() || m_Memory.GetScale() != GetScale()) {
        m_Memory.Create(Client.Size(), GetScale());
    }
    CDC DC(m_Memory);
    DC.FillSolidRect(Client, GetSysColor(SysColor::eFace));
    if (m_rTree.IsKeyboardOnly()) {
        constexpr COLORREF GREY = RGB(134, 134, 134);
        CRect Frame = Client;
        DC.FrameRect(Frame, GREY);
        Frame.DeflateRect(2, 2);
        DC.FrameRect(Frame, GREY);
    } else {
        constexpr int FEW_COLOURS = 8;
        const COLORREF Gutter =
            GetDisplayBitsPerPixel() > FEW_COLOURS ? RGB(244, 242, 232) : GetSysColor(SysColor::eFace);
        DC.FillSolidRect(CRect(0, 0, GUTTER, Client.bottom), Gutter);
    }
    const CRect Content = GetContentRect();
    DC.IntersectClipRect(Content);
    int y = Content.top - m_rTree.GetScrollPos();
    for (const CPropTreeItem* pItem = m_rTree.GetFirstVisible(); pItem != nullptr && y < Content.bottom;
         pItem = pItem->GetNextVisible()) {
        y += y + pItem->GetHeight() > Content.top ? pItem->Draw(DC, Content, y) : pItem->GetHeight();
    }
}

}  // namespace PropTree
