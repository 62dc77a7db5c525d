#include "rvlib/rvgui/staticlabel/staticlabel.h"

#include "rvlib/rvgui/gradient.h"

void CStaticLabel::SetBackground(COLORREF Enabled, COLORREF Disabled) {
    m_Enabled.m_Background = Enabled;
    m_Disabled.m_Background = Disabled;
    Invalidate();
}

void CStaticLabel::SetGradient(bool bEnabled, bool bDisabled) {
    m_Enabled.m_bGradient = bEnabled;
    m_Disabled.m_bGradient = bDisabled;
    Invalidate();
}

void CStaticLabel::SetFont(const CFont& rFont) {
    m_bHasFont = true;
    CWnd::SetFont(rFont);
}

void CStaticLabel::SetTextColor(COLORREF Color) {
    m_TextColor = Color;
    Invalidate();
}

void CStaticLabel::SetTextEnd(int X) {
    m_TextEnd = X;
    Invalidate();
}

void CStaticLabel::Paint(CDC& rDC, const CRect& rRect) const {
    constexpr int INSET = 10;
    const CLook& rLook = IsWindowEnabled() ? m_Enabled : m_Disabled;
    if (rLook.m_bGradient) {
        Gui::FillGradient(rDC, rRect, rLook.m_Background);
    } else {
        rDC.FillSolidRect(rRect, rLook.m_Background);
    }
    if (!m_bHasFont) {
        return;
    }
    const int Saved = rDC.SaveDC();
    rDC.SelectFont(GetFont());
    rDC.SetBkMode(CDC::eTransparent);
    rDC.SetTextColor(m_TextColor);
    CRect Rect = rRect;
    Rect.left += INSET;
    unsigned Format = DT_SINGLELINE | DT_VCENTER | DT_LEFT;
    if (m_TextEnd) {
        Rect.right = rRect.left + *m_TextEnd;
        Format |= DT_END_ELLIPSIS;
    }
    rDC.DrawText(GetText(), Rect, Format);
    rDC.RestoreDC(Saved);
}

LRESULT CStaticLabel::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message != WM_PAINT) {
        return CWnd::WindowProc(Message, wParam, lParam);
    }
    CDC DC(GetSurface());
    Paint(DC, GetClientRect());
    SurfaceChanged();
    return 0;
}
