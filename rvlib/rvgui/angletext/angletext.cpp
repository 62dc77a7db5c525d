#include "rvlib/rvgui/angletext/angletext.h"

#include <cmath>
#include <numbers>

void CAngleText::CalculateFont(CDC* pDC, const CRect& rRect, CFont& rFont, CFont& rLogFont) const {
    rFont = FitFont(pDC, rRect, DT_SINGLELINE | DT_LEFT, "TempFont.CreateFontIndirect(&rLogFont) != NULL");
    rLogFont = rFont;
}

void CAngleText::Paint(CDC* pDC, const std::string& rText, int X1, int Y1, int X2, int Y2) {
    SetText(rText);
    const double d = std::hypot(X1 - X2, Y1 - Y2);
    const int nLength = static_cast<int>(d);
    const int Saved = pDC->SaveDC();
    CFont Font;
    CFont LogFont;
    CalculateFont(pDC, CRect(0, 0, nLength, m_MaxHeight > 0 ? m_MaxHeight : nLength), Font, LogFont);
    if (!IsHeightUsable(Font)) {
        pDC->RestoreDC(Saved);
        return;
    }

    // Clockwise from the right, since y grows downwards.
    const double Direction = std::atan2(Y2 - Y1, X2 - X1);
    int nAngle = (static_cast<int>(std::lround(Direction * 180.0 / std::numbers::pi)) + 360) % 360;
    const bool bTurned = m_Placement == eReadable && nAngle >= 91 && nAngle < 91 + 179;
    if (bTurned) {
        nAngle = (nAngle + 180) % 360;
    }
    LogFont.m_Escapement = (360 - nAngle) % 360 * 10;
    pDC->SelectFont(LogFont);
    if (IsFontUsable(*pDC)) {
        // Along the line as it is read.
        const double Sign = bTurned ? -1.0 : 1.0;
        const double x = Sign * std::cos(Direction);
        const double y = Sign * std::sin(Direction);
        // A turned text begins at the second point, others end there.
        const double Along = bTurned ? 0.0 : -pDC->GetTextExtent(rText).cx;
        // Capitals and digits are about two thirds of a cell high: so far their middle is above the base
        // line.
        const double Below = pDC->GetFontHeight() / 3.0;
        pDC->SetBkMode(CDC::eTransparent);
        pDC->SetTextColor(m_TextColor);
        pDC->TextOut({static_cast<int>(std::lround(X2 + Along * x - Below * y)),
                      static_cast<int>(std::lround(Y2 + Along * y + Below * x))},
                     rText);
    }
    pDC->RestoreDC(Saved);
}
