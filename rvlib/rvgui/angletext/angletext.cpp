#include "rvlib/rvgui/angletext/angletext.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace {

/// The text as far as it fits with the selected font: characters are left out of its middle, where an
/// ellipsis stands for them. Begin and end tell most names apart. Empty if not even the first one fits.
std::string ShortenToWidth(const CDC& rDC, const std::string& rText, int nWidth) {
    std::vector<std::string> Characters;
    for (const char Byte : rText) {
        if (Characters.empty() || (static_cast<unsigned char>(Byte) & 0xC0U) != 0x80U) {
            Characters.emplace_back();
        }
        Characters.back() += Byte;
    }
    const auto Join = [&Characters](std::size_t nKept) {
        const std::size_t nHead = (nKept + 1) / 2;
        std::string Joined;
        for (std::size_t i = 0; i < Characters.size(); ++i) {
            if (i < nHead || i >= Characters.size() - (nKept - nHead)) {
                Joined += Characters[i];
            } else if (i == nHead) {
                Joined += "\u2026";
            }
        }
        return Joined;
    };
    for (std::size_t nKept = Characters.size(); nKept > 0; --nKept) {
        if (std::string Joined = Join(nKept); rDC.GetTextExtent(Joined).cx <= nWidth) {
            return Joined;
        }
    }
    return {};
}

}  // namespace

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
    std::string Shown = rText;
    if (LogFont.m_Height < m_MinHeight) {
        pDC->SelectFont(CFont(LogFont.m_FaceName, m_MinHeight, LogFont.m_Weight));
        Shown = ShortenToWidth(*pDC, rText, nLength);
        LogFont.m_Height = Shown.empty() ? 0 : m_MinHeight;
    }
    if (!IsHeightUsable(LogFont)) {
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
        const double Along = bTurned ? 0.0 : -pDC->GetTextExtent(Shown).cx;
        // Capitals and digits are about two thirds of a cell high: so far their middle is above the base
        // line.
        const double Below = pDC->GetFontHeight() / 3.0;
        pDC->SetBkMode(CDC::eTransparent);
        pDC->SetTextColor(m_TextColor);
        pDC->TextOut({static_cast<int>(std::lround(X2 + Along * x - Below * y)),
                      static_cast<int>(std::lround(Y2 + Along * y + Below * x))},
                     Shown);
    }
    pDC->RestoreDC(Saved);
}
