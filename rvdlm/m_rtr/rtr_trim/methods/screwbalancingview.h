#pragma once
#include <string>

#include "rvdlm/m_rtr/rtr_trim/methods/balancingview.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screw.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/angletext/angletext.h"

/// A plane with a ring of equally spaced holes for screws.
class CScrewBalancingView : public CBalancingView {
public:
    CScrewBalancingView();

    /// Draws the plane into rRect. The three pointers are given together, then the measurement stands in the
    /// middle, or are all null. With bRedrawAll false only the middle is drawn anew.
    void Paint(CDC* pDC, const CRect& rRect, const double* pMagnitude, const double* pAngle,
               const double* pLastMagnitude, bool bRedrawAll, int State);
    /// What to call the screw in the hole at Angle, in radians clockwise from the top: its name, or its
    /// weight if it has none. Asserts that there is one with a weight.
    std::string GetWeightFromAngle(double Angle) const;

protected:
    ~CScrewBalancingView() = default;

    Base::CWDArray<CScrew> m_ShownScrews;  ///< written before each Paint
    double m_Radius = 0.0;                 ///< of the circle of holes; the drawing has its own
    int m_NumberOfHoles = 12;

private:
    /// A hole of the drawing.
    struct CHole {
        int m_Number;    ///< that the rotor carries, counted from 1 in the sense of its scale
        double m_Angle;  ///< radians clockwise from the top
        CPoint m_Center;
    };
    CHole GetHole(const CGeometry& rGeometry, int Index) const;
    /// The number that CScrew counts with: always clockwise.
    int GetHoleNumber(double Angle) const;
    bool HasScrew(double Angle) const;
    void DrawHole(CDC* pDC, const CGeometry& rGeometry, const CHole& rHole, bool bScrew) const;
    /// The screw's name or weight, along the radius and up to the hole.
    void DrawScrewText(CDC* pDC, const CGeometry& rGeometry, double Angle);

    CAngleText m_ScrewText;
};
