#include "rvlib/rvgui/textrect/textrect.h"

#include "rvlib/rvgui/log.h"

void CTextRect::SetAlignment(int Value) {
    switch (Value) {
        case eLeft:
            m_Format = DT_SINGLELINE | DT_VCENTER | DT_LEFT;
            break;
        case eCenter:
            m_Format = DT_SINGLELINE | DT_VCENTER | DT_CENTER;
            break;
        case eRight:
            m_Format = DT_SINGLELINE | DT_VCENTER | DT_RIGHT;
            break;
        default:
            RV_ASSERT_FAIL(Gui::g_pLog, "impossible");
            return;
    }
}

void CTextRect::CalculateFont(CDC* pDC, const CRect& rRect, CFont& rFont) const {
    rFont = FitFont(pDC, rRect, m_Format, "TempFont.CreateFontIndirect(&lf) != NULL");
}

void CTextRect::Paint(CDC* pDC, const CRect& rRect) const {
    const int Saved = pDC->SaveDC();
    CRect Rect = rRect;
    if (m_bShadow) {
        Rect.left += 1;
        Rect.top += 1;
        pDC->SetBkMode(CDC::eTransparent);
    }
    CFont Font;
    CalculateFont(pDC, Rect, Font);
    if (!IsHeightUsable(Font)) {
        pDC->RestoreDC(Saved);
        return;
    }
    pDC->FillSolidRect(Rect, m_BackgroundColor);
    pDC->SetBkColor(m_BackgroundColor);
    pDC->SelectFont(Font);

    const auto Draw = [&](COLORREF Color) {
        if (!IsFontUsable(*pDC)) {
            return;
        }
        pDC->SetTextColor(Color);
        CRect Target = Rect;
        pDC->DrawText(m_Text, Target, m_Format);
    };
    if (m_bShadow) {
        Draw(RGB(255, 255, 255));
        Rect.OffsetRect(-1, -1);
    }
    Draw(m_TextColor);
    pDC->RestoreDC(Saved);
}
