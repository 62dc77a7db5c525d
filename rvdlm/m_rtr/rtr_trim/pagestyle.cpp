#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"

#include <algorithm>
#include <array>

COLORREF PageStyle::GetPanelColor(const CDC& rDC) {
    return rDC.GetBitsPerPixel() <= 8 ? BUTTON_FACE : PANEL;
}

void PageStyle::PaintArea(CDC& rDC, const CRect& rRect, COLORREF Color) {
    if (rRect.IsRectEmpty()) {
        return;
    }
    rDC.FillSolidRect(rRect, Color);
    rDC.SelectPen(CPen(CPen::eSolid, 1, FRAME_LINE));
    const int nRight = rRect.right - 1;
    const int nBottom = rRect.bottom - 1;
    rDC.Polyline(std::array{CPoint(rRect.left, nBottom), CPoint(nRight, nBottom), CPoint(nRight, rRect.top)});
}

void PageStyle::PaintLine(CDC& rDC, const CRect& rRect, const std::string& rText, int nFontHeight,
                          unsigned Format, COLORREF Color) {
    const int nHeight = std::min(nFontHeight, rRect.Height());
    if (nHeight < 1) {
        return;
    }
    rDC.SelectFont(CFont("Arial", nHeight));
    rDC.SetBkMode(CDC::eTransparent);
    rDC.SetTextColor(Color);
    CRect Rect = rRect;
    rDC.DrawText(rText, Rect, Format | DT_SINGLELINE);
}
