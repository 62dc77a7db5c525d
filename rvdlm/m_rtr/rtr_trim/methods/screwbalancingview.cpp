#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingview.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "platform/system/text.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"

namespace {

constexpr double FULL_TURN = 2 * std::numbers::pi;
/// With more holes the empty ones would touch each other.
constexpr int MAX_EMPTY_HOLES = 24;
/// No screw's name gets lower than the numbers at the gauge for being long.
constexpr int LEGIBLE = 12;

std::string WeightToText(double Weight) {
    std::array<char, 512> Text{};
    std::snprintf(Text.data(), Text.size(), Weight < 100.0 ? "%.2lfg" : "%.0lfg", Weight);
    return Text.data();
}

}  // namespace

CScrewBalancingView::CScrewBalancingView() {
    m_ScrewText.SetText("NULL");
    m_ScrewText.SetFaceName("Arial");
    m_ScrewText.SetWeight(CFont::NORMAL);
    m_ScrewText.SetTextColor(PageStyle::PANEL);
    m_ScrewText.SetPlacement(CAngleText::eReadable);
}

void CScrewBalancingView::Paint(CDC* pDC, const CRect& rRect, const double* pMagnitude, const double* pAngle,
                                const double* pLastMagnitude, bool bRedrawAll, int State) {
    const CGeometry Geometry = CGeometry::InRect(rRect);
    const bool bMeasurement = pMagnitude != nullptr && pAngle != nullptr && pLastMagnitude != nullptr;
    if (bRedrawAll) {
        DrawBase(pDC, Geometry);
        if (!bMeasurement && m_ShowRotationArrow) {
            DrawRotationArrow(pDC, Geometry.m_Center, m_RotationDirection);
        }
    }
    if (bMeasurement) {
        DrawMeasurementValue(pDC, Geometry.m_Center, Geometry.m_Inner, State, *pMagnitude, *pAngle,
                             *pLastMagnitude);
    }
    for (int k = 0; k < m_NumberOfHoles; ++k) {
        const CHole Hole = GetHole(Geometry, k);
        const bool bScrew = HasScrew(Hole.m_Angle);
        if (bRedrawAll && (bScrew || m_NumberOfHoles <= MAX_EMPTY_HOLES)) {
            DrawHole(pDC, Geometry, Hole, bScrew);
        }
        if (bScrew && !bMeasurement) {
            DrawScrewText(pDC, Geometry, Hole.m_Angle);
        }
    }
}

CScrewBalancingView::CHole CScrewBalancingView::GetHole(const CGeometry& rGeometry, int Index) const {
    const int nRing = ((rGeometry.m_Outer - 1) + rGeometry.m_Inner) / 2;
    CHole Hole{Index + 1, 2 * Index * std::numbers::pi / m_NumberOfHoles, CPoint()};
    if (m_ScalingDirection == PreBalDB::CTypeBase::eCounterClockwise && Index != 0) {
        Hole.m_Angle = FULL_TURN - Hole.m_Angle;
    }
    Hole.m_Center = {static_cast<int>(std::sin(Hole.m_Angle) * nRing + rGeometry.m_Center.x),
                     static_cast<int>(rGeometry.m_Center.y - std::cos(Hole.m_Angle) * nRing)};
    return Hole;
}

int CScrewBalancingView::GetHoleNumber(double Angle) const {
    return static_cast<int>(Angle / (FULL_TURN / m_NumberOfHoles) + 0.5) + 1;
}

bool CScrewBalancingView::HasScrew(double Angle) const {
    return std::any_of(
        m_ShownScrews.begin(), m_ShownScrews.end(),
        [nHole = GetHoleNumber(Angle)](const CScrew& rScrew) { return rScrew.m_Hole == nHole; });
}

std::string CScrewBalancingView::GetWeightFromAngle(double Angle) const {
    const int nHole = GetHoleNumber(Angle);
    std::string WeightString;
    for (const CScrew& rScrew : m_ShownScrews) {
        if (rScrew.m_Hole == nHole && rScrew.m_Weight != 0.0) {
            WeightString = Text::Trim(rScrew.m_Name).empty() ? WeightToText(rScrew.m_Weight) : rScrew.m_Name;
        }
    }
    RV_ASSERT_AS(RtrTrim::g_pLog, !WeightString.empty(), "!WeightString.IsEmpty()", "Empty string", false);
    return WeightString;
}

void CScrewBalancingView::DrawHole(CDC* pDC, const CGeometry& rGeometry, const CHole& rHole,
                                   bool bScrew) const {
    const int nDiameter = ((rGeometry.m_Outer - 1 - rGeometry.m_Inner) / 3) * 2;
    const CRect Circle(rHole.m_Center - CPoint(nDiameter / 2, nDiameter / 2), CSize(nDiameter, nDiameter));
    pDC->SelectPen(CPen(CPen::eSolid, 1, OUTLINE));
    pDC->SelectBrush(CBrush(bScrew ? INK : PageStyle::GetPanelColor(*pDC)));
    pDC->Ellipse(Circle);
    DrawCentred(pDC, Circle, std::to_string(rHole.m_Number), PointsToPixels(*pDC, nDiameter / 2), CFont::BOLD,
                bScrew ? ON_INK : MARK);
}

void CScrewBalancingView::DrawScrewText(CDC* pDC, const CGeometry& rGeometry, double Angle) {
    const int nOuterEnd = rGeometry.m_Side * 3 / 8 - 10;
    const int nInnerEnd = std::min(MIDDLE, nOuterEnd / 2);
    // Clockwise from the right, while PolarPoint counts the other way round.
    const int nAngle = (static_cast<int>(Angle * 360 / FULL_TURN) + 270) % 360;
    const CPoint From = PolarPoint(rGeometry.m_Center, nInnerEnd, 360 - nAngle);
    const CPoint To = PolarPoint(rGeometry.m_Center, nOuterEnd, 360 - nAngle);
    const int nHeight = (rGeometry.m_Side * 3) / 64;
    m_ScrewText.SetMaxHeight(nHeight);
    m_ScrewText.SetMinHeight(std::min(nHeight, LEGIBLE));
    // It lies on the panel, whose colour it has at the beginning: nobody could read it in that.
    m_ScrewText.SetTextColor(INK);
    m_ScrewText.Paint(pDC, GetWeightFromAngle(Angle), From.x, From.y, To.x, To.y);
}
