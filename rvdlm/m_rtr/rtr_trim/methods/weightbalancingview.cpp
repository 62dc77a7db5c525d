#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingview.h"

#include <cmath>
#include <numbers>

#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace {

/// A weight covers this many degrees to each side of its angle.
constexpr int HALF_WEIGHT = 10;

/// The line from PolarPoint to PolarPoint across the ring, as the edge of an area: lines end at whole pixels,
/// so it lies up to a pixel beside the radius.
CDC::CRingEdge GetEdge(CPoint Center, int nInner, int nOuter, int nDegrees) {
    const auto GetAngle = [Center, nDegrees](int nRadius) {
        const CPoint Point = PolarPoint(Center, nRadius, nDegrees) - Center;
        const double Angle = std::atan2(-Point.y, Point.x) * 180.0 / std::numbers::pi;
        return nDegrees + std::remainder(Angle - nDegrees, 360.0);
    };
    return {GetAngle(nInner), GetAngle(nOuter)};
}

}  // namespace

int CWeightBalancingView::ToDisplay(int Angle) const {
    const int nAngle = m_ScalingDirection != PreBalDB::CTypeBase::eClockwise ? Angle : 360 - Angle;
    return nAngle + 90;  // the scale begins at the top
}

void CWeightBalancingView::Paint(CDC* pDC, const CRect& rRect, const double* pMagnitude, const double* pAngle,
                                 const double* pLastMagnitude, bool bRedrawAll, int State) {
    const CGeometry Geometry = CGeometry::InRect(rRect);
    const bool bMeasurement = pMagnitude != nullptr && pAngle != nullptr && pLastMagnitude != nullptr;
    if (bRedrawAll) {
        DrawBase(pDC, Geometry);
        if (!bMeasurement) {
            DrawScaleLabels(pDC, Geometry);
        }
        DrawWeights(pDC, Geometry, bMeasurement);
        if (!bMeasurement && m_ShowRotationArrow) {
            DrawRotationArrow(pDC, Geometry.m_Center, m_RotationDirection);
        }
    }
    if (bMeasurement) {
        DrawMeasurementValue(pDC, Geometry.m_Center, Geometry.m_Inner, State, *pMagnitude, *pAngle,
                             *pLastMagnitude);
    }
}

void CWeightBalancingView::DrawScaleLabels(CDC* pDC, const CGeometry& rGeometry) const {
    constexpr int HEIGHT = 14;
    const bool bClockwise = m_ScalingDirection == PreBalDB::CTypeBase::eClockwise;
    const int Cx = rGeometry.m_Center.x;
    const int Cy = rGeometry.m_Center.y;
    const int nInner = rGeometry.m_Inner;
    // Centred from left to right, with its top at the point: so every label stands clear of the circle.
    const auto Label = [&](int x, int y, const char* pText) {
        DrawCentred(pDC, CRect(CPoint(x, y), CSize(0, HEIGHT)), pText, HEIGHT, CFont::SEMI_BOLD, OUTLINE);
    };
    Label(Cx + 2, Cy + 3 - nInner, "0°");
    Label(Cx + 2, Cy - 15 + nInner, "180°");
    Label(Cx + 15 - nInner, Cy - 6, bClockwise ? "270°" : "90°");
    Label(Cx - 15 + nInner, Cy - 6, bClockwise ? "90°" : "270°");
}

void CWeightBalancingView::DrawWeights(CDC* pDC, const CGeometry& rGeometry, bool bMeasurement) const {
    if (m_Angle1 != m_Angle2) {
        for (const int nAngle : {m_Angle1, m_Angle2}) {
            DrawWeight(pDC, rGeometry.m_Square, nAngle, bMeasurement, true, nullptr);
        }
        return;
    }
    // One would cover the other: side by side instead, with the line where both really are.
    for (const int nAngle : {m_Angle1 + HALF_WEIGHT, m_Angle1 - HALF_WEIGHT}) {
        DrawWeight(pDC, rGeometry.m_Square, nAngle, bMeasurement, false, &m_Angle1);
    }
    if (!bMeasurement) {
        DrawAngleMark(pDC, rGeometry, ToDisplay(m_Angle1));
    }
}

void CWeightBalancingView::DrawWeight(CDC* pDC, const CRect& rSquare, int Angle, bool bMeasurement,
                                      bool DrawAngleLine, const int* pShownAngle) const {
    if (pShownAngle != nullptr) {
        RV_ASSERT(RtrTrim::g_pLog, !DrawAngleLine, "impossible");
    }
    const CGeometry Geometry = CGeometry::OfSquare(rSquare);
    const CPoint Center = Geometry.m_Center;
    const int nOuter = Geometry.m_Outer;
    const int nInner = Geometry.m_Inner;
    const int nMiddle = ToDisplay(Angle);

    // Up to the lines of circles and edges, but not over them.
    pDC->FillRing(Center, nInner, nOuter - 2, GetEdge(Center, nInner, nOuter - 1, nMiddle - HALF_WEIGHT),
                  GetEdge(Center, nInner, nOuter - 1, nMiddle + HALF_WEIGHT), INK);
    pDC->SelectPen(CPen(CPen::eSolid, 1, OUTLINE));
    for (const int nEdge : {nMiddle - HALF_WEIGHT, nMiddle + HALF_WEIGHT}) {
        pDC->MoveTo(PolarPoint(Center, nInner, nEdge));
        pDC->LineTo(PolarPoint(Center, nOuter - 1, nEdge));
    }
    if (!bMeasurement && DrawAngleLine) {
        DrawAngleMark(pDC, Geometry, nMiddle);
    }

    const int nThick = nOuter - nInner;
    const int Q = (nThick - 1) / 4;
    const CPoint Number = PolarPoint(Center, nInner + (nThick - 1) / 2, nMiddle);
    DrawCentred(pDC, CRect(CPoint(Number.x - 2 * Q, Number.y - Q / 2), CSize(4 * Q, Q)),
                std::to_string(pShownAngle != nullptr ? *pShownAngle : Angle) + "°", PointsToPixels(*pDC, Q),
                CFont::BOLD, ON_INK);
}

void CWeightBalancingView::DrawAngleMark(CDC* pDC, const CGeometry& rGeometry, int nDisplay) {
    const int nEnd = rGeometry.m_Inner - 30;
    if (nEnd <= MIDDLE) {
        return;  // no room beside the arrow
    }
    pDC->SelectPen(CPen(CPen::eDot, 1, MARK));
    pDC->MoveTo(PolarPoint(rGeometry.m_Center, MIDDLE, nDisplay));
    pDC->LineTo(PolarPoint(rGeometry.m_Center, nEnd, nDisplay));
}
