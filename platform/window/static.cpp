#include "platform/window/static.h"

#include "platform/window/dc.h"
#include "platform/window/syscolor.h"

static_assert(DT_WORDBREAK == 0x0010, "the format that the header begins with");

void CStatic::SetFormat(unsigned Format) {
    m_Format = Format;
    Invalidate();
}

LRESULT CStatic::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_PAINT) {
        Paint();
        return 0;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

void CStatic::Paint() {
    {
        CDC DC(GetSurface());
        CRect Client = GetClientRect();
        DC.FillSolidRect(Client, GetSysColor(SysColor::eFace));
        DC.SelectFont(GetFont());
        DC.SetTextColor(GetSysColor(IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText));
        DC.DrawText(GetWindowText(), Client, m_Format);
    }
    SurfaceChanged();
}
