#include "rvlib/rvgui/proptree/proptreeinfo.h"

#include "platform/window/dc.h"
#include "platform/window/syscolor.h"
#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

LRESULT CPropTreeInfo::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message != WM_PAINT) {
        return CStatic::WindowProc(Message, wParam, lParam);
    }
    Paint();
    SurfaceChanged();
    return 0;
}

void CPropTreeInfo::Paint() {
    constexpr int EDGE = 2;
    constexpr int MARGIN = 4;
    CDC DC(GetSurface());
    CRect Rect = GetClientRect();
    DC.FillSolidRect(Rect, GetSysColor(SysColor::eFace));
    DC.DrawEdge(Rect, CDC::eSunken);
    const CPropTreeItem* const pItem = m_rTree.GetFocusedItem();
    Rect.DeflateRect(EDGE + MARGIN, EDGE + MARGIN);
    if (pItem == nullptr || Rect.IsRectEmpty()) {
        return;
    }
    DC.IntersectClipRect(Rect);
    DC.SetTextColor(GetSysColor(m_rTree.IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText));
    DC.SelectFont(CPropTree::GetBoldFont());
    CRect Line = Rect;
    Rect.top += DC.DrawText(pItem->GetLabelText(), Line, DT_SINGLELINE | DT_LEFT | DT_TOP | DT_END_ELLIPSIS);
    std::string Text = pItem->GetInfoText();
    if (!pItem->GetRangeText().empty()) {
        Text += (Text.empty() ? "" : " ") + pItem->GetRangeText();
    }
    DC.SelectFont(CPropTree::GetNormalFont());
    DC.DrawText(Text, Rect, DT_WORDBREAK | DT_LEFT | DT_TOP);
}

}  // namespace PropTree
