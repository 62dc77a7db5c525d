#include "rvlib/rvgui/flextable/flextableheader.h"

#include "platform/window/syscolor.h"

LRESULT CFlexTableHeader::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_PAINT) {
        Paint();
        return 0;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

void CFlexTableHeader::Paint() {
    {
        CDC DC(GetSurface());
        const CRect Client = GetClientRect();
        DC.FillSolidRect(Client, GetSysColor(SysColor::eFace));
        DC.SelectFont(GetFont());
        DC.SetTextColor(
            GetSysColor(m_rTable.IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText));
        CRect Column(0, 0, m_rTable.GetColumnWidth(), Client.bottom);
        for (const CFlexTable::CColumn& rColumn : m_rTable.GetColumns()) {
            DC.Draw3dRect(Column, GetSysColor(SysColor::eHighlight), GetSysColor(SysColor::eShadow));
            CRect Text = Column;
            Text.DeflateRect(3, 0);  // above the texts of the cells
            DC.DrawText(rColumn.m_Title, Text, DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
            Column.OffsetRect(Column.Width(), 0);
        }
    }
    SurfaceChanged();
}
