#pragma once
#include <memory>
#include <span>
#include <string>

#include "platform/window/bitmap.h"
#include "platform/window/brush.h"
#include "platform/window/font.h"
#include "platform/window/pen.h"
#include "platform/window/rect.h"
#include "platform/window/types.h"

// Format flags of CDC::DrawText. The values are the ones that the module's texts carry.
constexpr unsigned DT_TOP = 0x0000;
constexpr unsigned DT_LEFT = 0x0000;
constexpr unsigned DT_CENTER = 0x0002;
constexpr unsigned DT_RIGHT = 0x0001;  ///< here 1 is right and 2 centred: 36 left, 38 centred, 37 right
constexpr unsigned DT_VCENTER = 0x0004;
constexpr unsigned DT_BOTTOM = 0x0008;
constexpr unsigned DT_WORDBREAK = 0x0010;  ///< lines end between words at the rectangle's right edge
constexpr unsigned DT_SINGLELINE = 0x0020;
constexpr unsigned DT_CALCRECT = 0x0400;
constexpr unsigned DT_END_ELLIPSIS = 0x8000;  ///< a line that is too wide is cut, and ends with three dots

/// Device context: draws into a bitmap. Coordinates are pixels with y growing downwards; angles are degrees,
/// 0 to the right, counter-clockwise positive. The bitmap must outlive the context.
class CDC {
public:
    enum BkMode { eTransparent, eOpaque };

    explicit CDC(CBitmap& rTarget);
    ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    /// Keeps pen, brush, font, colours and clipping; the result goes to RestoreDC.
    int SaveDC();
    /// Back to what SaveDC kept; false if Saved names no state.
    bool RestoreDC(int Saved);

    void SelectPen(const CPen& rPen);
    void SelectBrush(const CBrush& rBrush);
    void SelectFont(const CFont& rFont);
    void SetTextColor(COLORREF Color);
    void SetBkColor(COLORREF Color);
    /// Whether text fills its background with the background colour. Starts transparent.
    void SetBkMode(BkMode Mode);
    void IntersectClipRect(const CRect& rRect);

    void FillSolidRect(const CRect& rRect, COLORREF Color);
    /// Turns the colours of rRect into their opposites; twice brings them back. For the line that is dragged.
    void InvertRect(const CRect& rRect);
    /// One pixel wide, just inside rRect.
    void FrameRect(const CRect& rRect, COLORREF Color);
    /// The same with the colours of light from the upper left: left and top, right and bottom.
    void Draw3dRect(const CRect& rRect, COLORREF TopLeft, COLORREF BottomRight);
    /// An edge two pixels wide just inside rRect, in the system's colours.
    enum Edge { eRaised, eSunken, eEtched };
    void DrawEdge(const CRect& rRect, Edge Kind);
    /// The dotted frame of what has the focus, just inside rRect.
    void DrawFocusRect(const CRect& rRect);
    /// A piece of a control by the toolkit's style, filling rRect; nothing without a toolkit.
    enum Part { eSpinUp, eSpinDown, eCheckBox, eExpandBox };
    struct CPartState {
        bool m_bEnabled = true;
        bool m_bPressed = false;
        bool m_bOn = false;  ///< checked, expanded
    };
    void DrawPart(const CRect& rRect, Part Kind, CPartState State);
    void MoveTo(CPoint Point);
    /// Line from the present point to Point with the pen, both ends included.
    void LineTo(CPoint Point);
    void Polyline(std::span<const CPoint> Points);
    /// Ellipse inside rRect: filled with the brush, outlined with the pen.
    void Ellipse(const CRect& rRect);
    /// Open arc of a circle with the pen.
    void Arc(CPoint Center, int Radius, double StartDegrees, double SweepDegrees);
    /// The area between two circles around Center, from StartDegrees over SweepDegrees (360: the whole ring),
    /// filled with Color, without outline.
    void FillRing(CPoint Center, int InnerRadius, int OuterRadius, double StartDegrees, double SweepDegrees,
                  COLORREF Color);
    /// A straight edge across a ring, by where it meets the two circles: it needn't point at the centre.
    struct CRingEdge {
        double m_InnerDegrees = 0.0;
        double m_OuterDegrees = 0.0;
    };
    /// The same from edge to edge, counter-clockwise and less than the whole ring.
    void FillRing(CPoint Center, int InnerRadius, int OuterRadius, CRingEdge Start, CRingEdge End,
                  COLORREF Color);
    /// Copies a part of rSource to rDestination's top left; no scaling, but for bitmaps of different scales.
    void BitBlt(const CRect& rDestination, const CBitmap& rSource, CPoint SourceOrigin);
    /// The same but for pixels of the colour Mask.
    void TransparentBlt(const CRect& rDestination, const CBitmap& rSource, CPoint SourceOrigin,
                        COLORREF Mask);

    /// Draws rText in rRect by the flags; with DT_CALCRECT draws nothing and sets rRect to the text's extent,
    /// whose lines are no wider than rRect was if DT_WORDBREAK is set and no single word is. Text isn't
    /// clipped to rRect. Returns the height of the text in pixels.
    int DrawText(const std::string& rText, CRect& rRect, unsigned Format);
    /// Draws rText with the base line's left end at Point, turned by the font's escapement.
    void TextOut(CPoint Point, const std::string& rText);
    CSize GetTextExtent(const std::string& rText) const;
    /// Cell height of the selected font: ascent plus descent.
    int GetFontHeight() const;

    COLORREF GetPixel(CPoint Point) const;
    /// Bits a pixel of the display (display.h).
    int GetBitsPerPixel() const;
    /// Pixels an inch, for sizes given in points; 96 here.
    int GetDotsPerInch() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};
