#pragma once
#include <string>

#include "platform/window/dc.h"

/// What texts that are drawn as large as they fit have in common: the text, its font, and the search for the
/// font's height.
class CFittedText {
public:
    void SetText(const std::string& rText) { m_Text = rText; }
    const std::string& GetText() const { return m_Text; }
    /// A further text: the longer of the two sets the size of the font, so that a value and the longest
    /// possible value get one size.
    void SetSizingText(const std::string& rText) { m_SizingText = rText; }
    void SetFaceName(const std::string& rFaceName) { m_FaceName = rFaceName; }
    /// 100 to 900; bold (700) from the start.
    void SetWeight(int Weight) { m_Weight = Weight; }
    void SetTextColor(COLORREF Color) { m_TextColor = Color; }
    COLORREF GetTextColor() const { return m_TextColor; }

protected:
    CFittedText() = default;
    ~CFittedText() = default;

    /// The font: as high as rRect, or lower if the longer text would be wider than rRect. The height as a
    /// linear function of the width is taken from two sizes that are measured with the DT_ flags of Format,
    /// and lowered until the text really fits. The height may come out below 1. pProbe names the probing font
    /// in the assertion that it can't be made.
    CFont FitFont(CDC* pDC, const CRect& rRect, unsigned Format, const char* pProbe) const;
    /// Whether the font selected in rDC could be made; "invalid font" is logged if not.
    static bool IsFontUsable(const CDC& rDC);
    /// Whether a fitted height can be drawn at all; "not enough space to draw text" is logged if not.
    static bool IsHeightUsable(const CFont& rFont);

    std::string m_Text;
    COLORREF m_TextColor = RGB(0, 0, 0);

private:
    std::string m_SizingText;
    std::string m_FaceName;
    int m_Weight = CFont::BOLD;
};
