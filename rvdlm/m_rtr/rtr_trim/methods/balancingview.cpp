#include "rvdlm/m_rtr/rtr_trim/methods/balancingview.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "contract/units.h"
#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "rvlib/settings/featureflags.h"

namespace {

constexpr const char* FACE = "Arial";
constexpr COLORREF FINAL_GOOD = RGB(0x00, 0x68, 0x38);
constexpr COLORREF FINAL_BAD = RGB(0xCE, 0x00, 0x00);
constexpr COLORREF STALE = RGB(0xA0, 0xA0, 0xA0);
/// Pixels by which a number reaches beyond the end of the gauge's scale, at most.
constexpr int LABEL_REACH = 15;

int Round(double Value) {
    return static_cast<int>(std::trunc(Value + 0.5));
}

/// Decimal digits of a number; 0 has none.
int CountDigits(int Number) {
    int nDigits = 0;
    for (; Number != 0; Number /= 10) {
        ++nDigits;
    }
    return nDigits;
}

/// By how much the number grows to the left, at the cost of the unit, in a drawing of size D.
int GetValueShift(int nDigits, int D) {
    switch (nDigits) {
        case 0:
        case 1:
            return 0;
        case 2:
            return D / 40;
        case 3:
            return D / 30;
        case 4:
            return D / 10;
        default:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            return D / 10;
    }
}

void DrawLine(CDC& rDC, CPoint From, CPoint To) {
    rDC.MoveTo(From);
    rDC.LineTo(To);
}

}  // namespace

CPoint PolarPoint(CPoint Center, int Radius, int Degrees) {
    const double a = (Degrees + 90) * 2 * std::numbers::pi / 360;
    return {Center.x + static_cast<int>(std::sin(a) * Radius),
            Center.y + static_cast<int>(std::cos(a) * Radius)};
}

void PaintPlaneTitleText(CDC& rDC, const CRect& rRect, int Plane) {
    const int nSide = std::min(rRect.Width(), rRect.Height()) - 20;
    const int d = rRect.Height() - nSide;
    CRect Rect = rRect;
    Rect.OffsetRect((rRect.Width() - nSide) / 2, d > 10 ? 10 - d : d - 10);
    const std::string Title = GetText("PB_PLANE_TEXT") + " " + std::to_string(Plane);
    const int nHeight = nSide / 24;
    if (nHeight < 1) {
        return;
    }
    const int Saved = rDC.SaveDC();
    // The title is also painted with each live value: upon itself its smooth edges would get thicker and
    // thicker.
    rDC.SelectFont(CFont(FACE, nHeight));
    const CSize Extent = rDC.GetTextExtent(Title);
    rDC.FillSolidRect(CRect(CPoint(Rect.left, Rect.bottom - Extent.cy), Extent),
                      PageStyle::GetPanelColor(rDC));
    PageStyle::PaintLine(rDC, Rect, Title, nHeight, DT_LEFT | DT_BOTTOM);
    rDC.RestoreDC(Saved);
}

CBalancingView::CBalancingView()
    : m_ColorizeFinalUnbalance(IsFeatureEnabled("PreBalancingColorizeFinalUnbalance", false)) {
    for (CTextRect* pText : {&m_ValueText, &m_UnitText, &m_AngleText}) {
        pText->SetFaceName(FACE);
        pText->SetWeight(CFont::BOLD);
        pText->SetBackgroundColor(PageStyle::PANEL);
    }
    m_ValueText.SetTextColor(INK);
    m_ValueText.SetAlignment(CTextRect::eRight);
    m_UnitText.SetTextColor(INK);
    m_UnitText.SetAlignment(CTextRect::eLeft);
    m_UnitText.SetText(Units::UNBALANCE);
    m_AngleText.SetTextColor(STALE);
    m_AngleText.SetAlignment(CTextRect::eCenter);
}

CBalancingView::CGeometry CBalancingView::CGeometry::InRect(const CRect& rRect) {
    const int nSide = std::min(rRect.Width(), rRect.Height()) - 20;
    return OfSquare(
        CRect(CPoint(rRect.left + (rRect.Width() - nSide) / 2, rRect.top + 10), CSize(nSide, nSide)));
}

CBalancingView::CGeometry CBalancingView::CGeometry::OfSquare(const CRect& rSquare) {
    CGeometry Result;
    Result.m_Side = rSquare.Width();
    Result.m_Square = rSquare;
    Result.m_Center = {(rSquare.left + 1 + rSquare.right) / 2, (rSquare.top + rSquare.bottom) / 2};
    Result.m_Outer = Result.m_Side / 2;
    Result.m_Inner = Result.m_Side * 3 / 8;
    return Result;
}

void CBalancingView::DrawBase(CDC* pDC, const CGeometry& rGeometry) {
    const CPoint Center = rGeometry.m_Center;
    pDC->FillSolidRect(rGeometry.m_Square, PageStyle::GetPanelColor(*pDC));
    // The ring first, so that both circles keep their full line.
    pDC->FillRing(Center, rGeometry.m_Inner, rGeometry.m_Outer - 1, 0.0, 360.0, RING);
    pDC->SelectPen(CPen(CPen::eSolid, 2, OUTLINE));
    pDC->SelectBrush(CBrush());
    for (const int nRadius : {rGeometry.m_Inner, rGeometry.m_Outer - 1}) {
        pDC->Ellipse(
            CRect(Center.x - nRadius, Center.y - nRadius, Center.x + nRadius + 1, Center.y + nRadius + 1));
    }
}

void CBalancingView::DrawCentred(CDC* pDC, const CRect& rRect, const std::string& rText, int nHeight,
                                 int Weight, COLORREF Color) {
    pDC->SelectFont(CFont(FACE, nHeight, Weight));
    pDC->SetBkMode(CDC::eTransparent);
    pDC->SetTextColor(Color);
    CRect Rect = rRect;
    pDC->DrawText(rText, Rect, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
}

int CBalancingView::PointsToPixels(const CDC& rDC, int nPoints) {
    constexpr int POINTS_PER_INCH = 72;
    return (nPoints * rDC.GetDotsPerInch() + POINTS_PER_INCH / 2) / POINTS_PER_INCH;
}

void CBalancingView::DrawMeasurementValue(CDC* pDC, CPoint Center, int Size, int State, double Magnitude,
                                          double Angle, double LastMagnitude) {
    const int D = Size;
    const int H = D / 2;
    const int Q = D / 4;
    const int E = D / 8;
    const int T = D / 3;
    const int C = D / 50;
    const COLORREF Panel = PageStyle::GetPanelColor(*pDC);
    CRect Cleared(Center.x - H, Center.y - H, Center.x + H, Center.y + H);
    // In a small drawing the last number of the scale sticks out, and mustn't stay behind.
    Cleared.right = std::max(Cleared.right, Center.x - H + D - D / 6 + LABEL_REACH);
    pDC->FillSolidRect(Cleared, Panel);

    const bool bStale = State == CPlaneBalancingMethod::eNotValid;
    COLORREF Color = INK;
    if (bStale) {
        Color = STALE;
    } else if (m_ColorizeFinalUnbalance && State == CPlaneBalancingMethod::eOverTarget) {
        Color = FINAL_BAD;
    } else if (m_ColorizeFinalUnbalance && State == CPlaneBalancingMethod::eWithinTarget) {
        Color = FINAL_GOOD;
    }
    for (CTextRect* pText : {&m_ValueText, &m_UnitText}) {
        pText->SetTextColor(Color);
        pText->SetShadow(bStale);
    }
    for (CTextRect* pText : {&m_ValueText, &m_UnitText, &m_AngleText}) {
        pText->SetBackgroundColor(Panel);
    }

    const int S = GetValueShift(CountDigits(Round(Magnitude)), D);
    const int nLeft = Center.x - H;
    const int nTop = Center.y + D / 10 - (Q + 2 * T) / 2;
    m_ValueText.SetText(std::to_string(Round(bStale ? LastMagnitude : Magnitude)));
    m_ValueText.Paint(pDC, CRect(CPoint(nLeft, nTop), CSize(H + S, Q)));
    m_UnitText.Paint(pDC,
                     CRect(CPoint(nLeft + H + S + C, nTop + Q - Round(D / 36.0) - E), CSize(H - C - S, E)));
    // The angle before the gauge: in a small drawing its background would cut the numbers of the scale.
    m_AngleText.SetText(std::to_string(Round(Angle)) + "°");
    m_AngleText.Paint(pDC, CRect(CPoint(nLeft, nTop + Q + T), CSize(D, E)));
    DrawGauge(*pDC, CRect(CPoint(nLeft, nTop + Q), CSize(D, T)), LastMagnitude);
}

void CBalancingView::DrawGauge(CDC& rDC, const CRect& rRect, double Value) {
    const int nMargin = rRect.Width() / 6;
    const int X0 = rRect.left + nMargin;
    const int X1 = rRect.right - nMargin;
    const int nSpan = X1 - X0;
    const int h = rRect.Height();
    const int nAxis = rRect.top + h / 2;
    const int nTickEnd = rRect.top + (h / 3) * 2;

    const bool bCoarse = Value > 200.0;
    const double Full = bCoarse ? 1000.0 : 200.0;
    const int nLength = Round(std::min(nSpan / Full * Value, static_cast<double>(nSpan))) + 1;
    // The coarser scale also shows as a thicker bar.
    const int nBar = h / 4 + (bCoarse ? h / 8 : 0);
    rDC.FillSolidRect(CRect(X0, nAxis - nBar, X0 + nLength, nAxis), INK);

    rDC.SelectPen(CPen(CPen::eSolid, 1, INK));
    DrawLine(rDC, {X0, nAxis}, {X1, nAxis});
    for (const int x : {X0, X0 + nSpan / 2, X1}) {
        DrawLine(rDC, {x, nAxis}, {x, nTickEnd});
    }
    for (const int x : {X0 + nSpan / 4, X0 + 3 * (nSpan / 4)}) {
        DrawLine(rDC, {x, nAxis}, {x, nTickEnd - 3});
    }

    rDC.SelectFont(CFont(FACE, 12, CFont::NORMAL));
    rDC.SetBkMode(CDC::eTransparent);
    rDC.SetTextColor(INK);
    const auto Label = [&](int x, const char* pText) {
        CRect Place(CPoint(x, nTickEnd + 1), CSize());
        rDC.DrawText(pText, Place, DT_SINGLELINE | DT_LEFT | DT_TOP);
    };
    Label(X0 - 2, "0");
    if (bCoarse) {
        Label(X1 - 12, "1000");
    } else {
        Label(X1 - 8, "200");
    }
}

void CBalancingView::DrawRotationArrow(CDC* pDC, CPoint Center, Direction Sense) {
    constexpr int RADIUS = 24;
    constexpr int START = 310;
    constexpr int SWEEP = 280;  // the gap lies at the bottom right
    constexpr int HEAD = 23;    // degrees that the head reaches back
    constexpr int HALF_HEAD = 3;

    pDC->SelectPen(CPen(CPen::eSolid, 3, INK));
    pDC->Arc(Center, RADIUS, START, SWEEP);
    int nTip = 0;
    int nBack = 0;
    switch (Sense) {
        case PreBalDB::CTypeBase::eClockwise:
            nTip = START;
            nBack = nTip + HEAD;
            break;
        case PreBalDB::CTypeBase::eCounterClockwise:
            nTip = START + SWEEP;
            nBack = nTip - HEAD;
            break;
        default:
            return;
    }
    for (const int nOffset : {-HALF_HEAD, HALF_HEAD}) {
        DrawLine(*pDC, PolarPoint(Center, RADIUS, nTip), PolarPoint(Center, RADIUS + nOffset, nBack));
    }
}

void CBalancingView::DrawInactive(CDC* pDC, const CRect& rRect) {
    const int Saved = pDC->SaveDC();
    pDC->IntersectClipRect(rRect);
    pDC->SelectPen(CPen(CPen::eSolid, 1, PageStyle::GetPanelColor(*pDC)));
    // Diagonals through every second pixel of the top line make the mesh; those of the other direction would
    // meet the same pixels once more, since x - y and x + y are even together.
    const int nHeight = rRect.Height();
    for (int i = -nHeight; i < rRect.Width(); i += 2) {
        const CPoint Top(rRect.left + i, rRect.top);
        DrawLine(*pDC, Top, Top + CPoint(nHeight, nHeight));
    }
    pDC->RestoreDC(Saved);
}
