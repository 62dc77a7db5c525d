#pragma once
#include "rvlib/rvgui/textrect/fittedtext.h"

/// Draws a text along a line between two points, for the scales of the balancing graphics.
class CAngleText : public CFittedText {
public:
    enum Placement : int {
        eAlongLine = 0,  ///< from the first point to the second, wherever that leads
        eReadable = 3    ///< text that would stand upside down is turned round
    };

    CAngleText() = default;

    /// Other values than the two are like eAlongLine.
    void SetPlacement(int Value) { m_Placement = Value; }
    /// Pixels that a character cell may be high, however long the line is; 0, as at the start: as high as the
    /// line is long.
    void SetMaxHeight(int nHeight) { m_MaxHeight = nHeight; }

    /// Pixels that a character cell has at least: a text that would get lower is shortened in its middle
    /// instead. 0, as at the start: any text is drawn as a whole.
    void SetMinHeight(int nHeight) { m_MinHeight = nHeight; }

    /// Draws rText, which becomes the field's text, along the line from (X1, Y1) to (X2, Y2): as large as it
    /// fits, its middle on the line. A text shorter than the line keeps to the second point, where the line
    /// points, also if it is turned round. The device context's state is left as it was. Where not even one
    /// pixel of height remains, or the line is too short for any rest of the text, this is logged and nothing
    /// is drawn.
    void Paint(CDC* pDC, const std::string& rText, int X1, int Y1, int X2, int Y2);
    /// Finds the font: as high as rRect, or lower if the text would be wider than rRect. rLogFont is its
    /// description, for a caller who wants it turned.
    void CalculateFont(CDC* pDC, const CRect& rRect, CFont& rFont, CFont& rLogFont) const;

private:
    int m_Placement = eAlongLine;
    int m_MaxHeight = 0;
    int m_MinHeight = 0;
};
