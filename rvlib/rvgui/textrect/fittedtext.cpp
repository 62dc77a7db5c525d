#include "rvlib/rvgui/textrect/fittedtext.h"

#include <algorithm>

#include "rvlib/rvgui/log.h"

namespace {

/// Characters, not bytes.
std::ptrdiff_t GetLength(const std::string& rText) {
    return std::count_if(rText.begin(), rText.end(),
                         [](char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0U) != 0x80U; });
}

/// The platform answers with no height for a font that it can't make.
bool WasMade(const CDC& rDC) {
    return rDC.GetFontHeight() > 0;
}

}  // namespace

CFont CFittedText::FitFont(CDC* pDC, const CRect& rRect, unsigned Format, const char* pProbe) const {
    constexpr int SMALL = 8;
    constexpr int LARGE = SMALL + 20;
    const std::string& rSample = GetLength(m_SizingText) > GetLength(m_Text) ? m_SizingText : m_Text;

    const int Saved = pDC->SaveDC();
    const auto Measure = [&](int nHeight) {
        pDC->SelectFont(CFont(m_FaceName, nHeight, m_Weight));
        RV_ASSERT_AS(Gui::g_pLog, WasMade(*pDC), pProbe, "invalid font", false);
        CRect Extent = rRect;
        pDC->DrawText(rSample, Extent, Format | DT_CALCRECT);
        return CSize(Extent.Width(), pDC->GetFontHeight());
    };
    const CSize Small = Measure(SMALL);
    const CSize Large = Measure(LARGE);

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
    CFont Font(m_FaceName, static_cast<int>(y), m_Weight);
    pDC->SelectFont(Font);
    // Widths grow in steps, and so the linear function may give a pixel or two too much.
    while (Font.m_Height > 1 && pDC->GetTextExtent(rSample).cx > rRect.Width()) {
        --Font.m_Height;
        pDC->SelectFont(Font);
    }
    RV_ASSERT_AS(Gui::g_pLog, Font.m_Height < 1 || WasMade(*pDC), "rFont.CreateFontIndirect(&lf) != NULL",
                 "invalid font", false);
    pDC->RestoreDC(Saved);
    return Font;
}

bool CFittedText::IsFontUsable(const CDC& rDC) {
    if (!WasMade(rDC)) {
        RV_WARNING(Gui::g_pLog, "invalid font");
        return false;
    }
    return true;
}

bool CFittedText::IsHeightUsable(const CFont& rFont) {
    if (rFont.m_Height < 1) {
        RV_WARNING(Gui::g_pLog, "not enough space to draw text");
        return false;
    }
    return true;
}
