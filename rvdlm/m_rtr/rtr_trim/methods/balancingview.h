#pragma once
#include "platform/rvmdb/typebase.h"
#include "platform/window/dc.h"
#include "rvlib/rvgui/textrect/textrect.h"

/// The point at Radius from Center, for drawings of a rotor: 0 degrees to the right, 90 degrees upwards. Cut
/// to whole pixels towards the centre.
CPoint PolarPoint(CPoint Center, int Radius, int Degrees);

/// "Plane N" in black at the lower left of a drawing in rRect. Plane is 1 or 2.
void PaintPlaneTitleText(CDC& rDC, const CRect& rRect, int Plane);

/// What the drawings of a plane share, whatever its means of compensation: a polar scale as seen from the end
/// of the rotor, and in its middle the direction of rotation or the live measurement. A view has no logic of
/// its own: a method copies into it what is to be seen and paints it.
class CBalancingView {
public:
    using Direction = PreBalDB::CTypeBase::Direction;

    /// Reads the feature flag "PreBalancingColorizeFinalUnbalance".
    CBalancingView();
    CBalancingView(const CBalancingView&) = delete;
    CBalancingView& operator=(const CBalancingView&) = delete;

    /// Number and unit, gauge, and angle in the square of side Size around Center. State is
    /// CPlaneBalancingMethod::MeasurementDisplayState. Magnitudes in counts; Angle in degrees. The gauge
    /// shows the last magnitude, and so does the number while the values aren't valid.
    void DrawMeasurementValue(CDC* pDC, CPoint Center, int Size, int State, double Magnitude, double Angle,
                              double LastMagnitude);
    /// An arc with an arrow head; without a head for an unknown direction.
    static void DrawRotationArrow(CDC* pDC, CPoint Center, Direction Sense);
    /// Covers rRect with a fine mesh of diagonals, through which the drawing shows: nothing is to be done
    /// here now.
    static void DrawInactive(CDC* pDC, const CRect& rRect);

protected:
    ~CBalancingView() = default;

    static constexpr COLORREF RING = RGB(0xC0, 0xC0, 0xC0);
    static constexpr COLORREF INK = RGB(0x00, 0x38, 0x68);   ///< weights, screws, numbers, arrow, gauge
    static constexpr COLORREF MARK = RGB(0x80, 0x80, 0x80);  ///< angle lines, numbers of empty holes
    static constexpr COLORREF OUTLINE = RGB(0x00, 0x00, 0x00);
    static constexpr COLORREF ON_INK = RGB(0xFF, 0xFF, 0xFF);  ///< text on weights and screws

    /// The places of a drawing, in pixels.
    struct CGeometry {
        /// The drawing that fits rRect, with a margin of 10 at the top and at the narrower sides.
        static CGeometry InRect(const CRect& rRect);
        /// The drawing that fills a square.
        static CGeometry OfSquare(const CRect& rSquare);

        int m_Side = 0;  ///< of the square
        CRect m_Square;
        CPoint m_Center;
        int m_Outer = 0;  ///< radius of the outer circle
        int m_Inner = 0;  ///< radius of the inner circle
    };

    /// Background, the ring and its two circles.
    static void DrawBase(CDC* pDC, const CGeometry& rGeometry);
    /// One line of text in Arial around rRect's middle; it may stick out of rRect.
    static void DrawCentred(CDC* pDC, const CRect& rRect, const std::string& rText, int nHeight, int Weight,
                            COLORREF Color);
    /// Height in pixels of a font of so many points on this display.
    static int PointsToPixels(const CDC& rDC, int nPoints);

    /// Where the arrow in the middle ends; what points at the ring from within begins outside.
    static constexpr int MIDDLE = 33;

    Direction m_RotationDirection = PreBalDB::CTypeBase::eClockwise;
    /// The sense in which the rotor's scale counts, or its holes.
    Direction m_ScalingDirection = PreBalDB::CTypeBase::eClockwise;
    bool m_ShowRotationArrow = true;

private:
    static void DrawGauge(CDC& rDC, const CRect& rRect, double Value);

    CTextRect m_ValueText;
    CTextRect m_UnitText;
    CTextRect m_AngleText;
    bool m_ColorizeFinalUnbalance = false;
};
