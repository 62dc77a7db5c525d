#include "rvlib/rvgui/textrect/textrect.h"

#include <algorithm>

#include "rvlib/rvgui/log.h"

namespace {

/// Characters, not bytes.
std::ptrdiff_t GetLength(const std::string& rText) {
    return std::count_if(rText.begin(), rText.end(),
                         [](char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0U) != 0x80U; });
}

/// The platform answers with no height for a font that it can't make.
bool IsUsable(const CDC& rDC) {
    return rDC.GetFontHeight() > 0;
}

}  // namespace

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
    constexpr int c_nSmall = 8;
    constexpr int c_nLarge = c_nSmall + 20;
    const std::string& rSample = GetLength(m_SizingText) > GetLength(m_Text) ? m_SizingText : m_Text;

    const int Saved = pDC->SaveDC();
    const auto Measure = [&](int nHeight) {
        pDC->SelectFont(CFont(m_FaceName, nHeight, m_Weight));
        RV_ASSERT_AS(Gui::g_pLog, IsUsable(*pDC), "TempFont.CreateFontIndirect(&lf) != NULL", "invalid font",
                     false);
        CRect Extent = rRect;
        pDC->DrawText(rSample, Extent, m_Format | DT_CALCRECT);
        return CSize(Extent.Width(), pDC->GetFontHeight());
    };
    const CSize Small = Measure(c_nSmall);
    const CSize Large = Measure(c_nLarge);

    const double H = rRect.Height();
    const double W = rRect.Width();
    double y = H;
    // A text without width fits at any height.
    if (Large.cx > Small.cx) {
        const double a = static_cast<double>(Large.cy - Small.cy) / (Large.cx - Small.cx);
        const double b = Large.cy - Large.cx * a;
        if (W < (H - b) / a) {
            y = W * a + b;
            RV_ASSERT_AS(Gui::g_pLog, y <= H, "y <= Rect.Height()", "y <= Rect.Height()", false);
        }
    }
    rFont = CFont(m_FaceName, static_cast<int>(y), m_Weight);
    pDC->RestoreDC(Saved);
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
    if (Font.m_Height < 1) {
        RV_WARNING(Gui::g_pLog, "not enough space to draw text");
        pDC->RestoreDC(Saved);
        return;
    }
    pDC->FillSolidRect(Rect, m_BackgroundColor);
    pDC->SetBkColor(m_BackgroundColor);
    pDC->SelectFont(Font);

    const auto Draw = [&](COLORREF Color) {
        if (!IsUsable(*pDC)) {
            RV_WARNING(Gui::g_pLog, "invalid font");
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
