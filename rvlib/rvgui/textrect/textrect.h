#pragma once
#include <string>

#include "platform/window/dc.h"

/// Draws a text as large as it fits a rectangle, for screens that are read from a distance.
class CTextRect {
public:
    /// How the text stands in its rectangle; always one line, vertically centred.
    enum Alignment : int { eLeft = 0, eCenter = 1, eRight = 2 };

    CTextRect() = default;

    void SetText(const std::string& rText) { m_Text = rText; }
    const std::string& GetText() const { return m_Text; }
    /// A further text: the longer of the two sets the size of the font, so that a value and the longest
    /// possible value get one size.
    void SetSizingText(const std::string& rText) { m_SizingText = rText; }
    void SetFaceName(const std::string& rFaceName) { m_FaceName = rFaceName; }
    /// 100 to 900.
    void SetWeight(int Weight) { m_Weight = Weight; }
    void SetTextColor(COLORREF Color) { m_TextColor = Color; }
    COLORREF GetTextColor() const { return m_TextColor; }
    void SetBackgroundColor(COLORREF Color) { m_BackgroundColor = Color; }
    /// Anything but 0, 1 and 2 is asserted, and the format stays.
    void SetAlignment(int Value);
    /// The DT_ flags that follow from the alignment.
    unsigned GetFormat() const { return m_Format; }
    /// A white shadow one pixel to the lower right.
    void SetShadow(bool bShadow) { m_bShadow = bShadow; }
    bool GetShadow() const { return m_bShadow; }

    /// Fills rRect with the background and draws the text. The device context's state is left as it was.
    /// Where not even one pixel of height remains, this is logged and nothing is drawn.
    void Paint(CDC* pDC, const CRect& rRect) const;
    /// Finds the font: as high as rRect, or lower if the text would be wider than rRect. The height as a
    /// linear function of the width is taken from two sizes that are measured. The height may come out
    /// below 1.
    void CalculateFont(CDC* pDC, const CRect& rRect, CFont& rFont) const;

private:
    std::string m_Text;
    std::string m_SizingText;
    std::string m_FaceName;
    int m_Weight = 700;
    COLORREF m_TextColor = RGB(0, 0, 0);
    COLORREF m_BackgroundColor = RGB(236, 233, 216);
    unsigned m_Format = DT_SINGLELINE | DT_VCENTER | DT_LEFT;
    bool m_bShadow = false;
};
