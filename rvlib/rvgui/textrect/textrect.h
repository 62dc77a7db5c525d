#pragma once
#include "rvlib/rvgui/textrect/fittedtext.h"

/// Draws a text as large as it fits a rectangle, for screens that are read from a distance.
class CTextRect : public CFittedText {
public:
    /// How the text stands in its rectangle; always one line, vertically centred.
    enum Alignment : int { eLeft = 0, eCenter = 1, eRight = 2 };

    CTextRect() = default;

    void SetBackgroundColor(COLORREF Color) { m_BackgroundColor = Color; }
    /// Anything but 0, 1 and 2 is asserted, and the format stays.
    void SetAlignment(int Value);
    /// The DT_ flags that follow from the alignment.
    unsigned GetFormat() const { return m_Format; }
    /// A white shadow one pixel to the lower right.
    void SetShadow(bool bShadow) { m_bShadow = bShadow; }

    /// Fills rRect with the background and draws the text. The device context's state is left as it was.
    /// Where not even one pixel of height remains, this is logged and nothing is drawn.
    void Paint(CDC* pDC, const CRect& rRect) const;
    /// Finds the font: as high as rRect, or lower if the text would be wider than rRect. The height may come
    /// out below 1.
    void CalculateFont(CDC* pDC, const CRect& rRect, CFont& rFont) const;

private:
    COLORREF m_BackgroundColor = RGB(236, 233, 216);
    unsigned m_Format = DT_SINGLELINE | DT_VCENTER | DT_LEFT;
    bool m_bShadow = false;
};
