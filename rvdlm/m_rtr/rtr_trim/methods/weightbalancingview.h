#pragma once
#include "rvdlm/m_rtr/rtr_trim/methods/balancingview.h"

/// A plane with two movable weights.
class CWeightBalancingView : public CBalancingView {
public:
    CWeightBalancingView() = default;

    /// Draws the plane into rRect. The three pointers are given together, then the measurement stands in the
    /// middle, or are all null. With bRedrawAll false only the middle is drawn anew.
    void Paint(CDC* pDC, const CRect& rRect, const double* pMagnitude, const double* pAngle,
               const double* pLastMagnitude, bool bRedrawAll, int State);

protected:
    ~CWeightBalancingView() = default;

    /// A weight on the ring of the drawing in Square (the square of the geometry), at Angle on the rotor's
    /// scale in degrees. pShownAngle: the number to show in place of Angle, for a weight that is drawn beside
    /// its place; an angle line then makes no sense.
    void DrawWeight(CDC* pDC, const CRect& rSquare, int Angle, bool bMeasurement, bool DrawAngleLine,
                    const int* pShownAngle) const;

    /// The angles to draw, in degrees on the rotor's scale; written before each Paint.
    int m_Angle1 = 0;
    int m_Angle2 = 0;

private:
    /// From an angle on the rotor's scale to one of PolarPoint.
    int ToDisplay(int Angle) const;
    void DrawScaleLabels(CDC* pDC, const CGeometry& rGeometry) const;
    void DrawWeights(CDC* pDC, const CGeometry& rGeometry, bool bMeasurement) const;
    /// The dotted line that points at a weight.
    static void DrawAngleMark(CDC* pDC, const CGeometry& rGeometry, int nDisplay);
};
