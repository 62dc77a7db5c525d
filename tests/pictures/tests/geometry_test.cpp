// Pixels at places that are computed here, from the page's dimensions alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"
#include "tests/support/logcapture.h"
#include "tests/support/pagecolors.h"
#include "tests/support/pixels.h"

namespace {

using PageColors::INK;
using PageColors::PANEL;
using PageColors::RING;
using testing::IsEmpty;

/// The places of one plane's drawing.
struct CDrawing {
    explicit CDrawing(const CRect& rRect)
        : m_Side(std::min(rRect.Width(), rRect.Height()) - 20),
          m_Left(rRect.left + (rRect.Width() - m_Side) / 2),
          m_Top(rRect.top + 10),
          m_Center((m_Left + 1 + m_Left + m_Side) / 2, (m_Top + m_Top + m_Side) / 2),
          m_Outer(m_Side / 2),
          m_Inner(m_Side * 3 / 8) {}

    CRect GetSquare() const { return {m_Left, m_Top, m_Left + m_Side, m_Top + m_Side}; }
    /// At Radius in a direction of degrees clockwise from the top.
    CPoint At(double Radius, double Clockwise) const {
        const double a = Clockwise * std::numbers::pi / 180.0;
        return {m_Center.x + static_cast<int>(std::lround(Radius * std::sin(a))),
                m_Center.y - static_cast<int>(std::lround(Radius * std::cos(a)))};
    }
    double GetRadius(CPoint Point) const { return std::hypot(Point.x - m_Center.x, Point.y - m_Center.y); }

    int m_Side;
    int m_Left;
    int m_Top;
    CPoint m_Center;
    int m_Outer;
    int m_Inner;
};

COLORREF Get(const CBitmap& rPicture, CPoint Point) {
    return rPicture.GetPixel(Point.x, Point.y);
}

/// Calls Check(scene, picture, plane, drawing) for each plane in the given means that isn't hatched or empty.
template <typename Function>
void ForEachPlane(CPlaneScene::Means Means, Function Check) {
    int nPlanes = 0;
    for (const CScene& rScene : GetScenes()) {
        const CBitmap Picture = RenderScene(rScene);
        const CScenePage Page(rScene);
        for (std::size_t i = 0; i < rScene.m_Planes.size(); ++i) {
            const CPlaneScene& rPlane = rScene.m_Planes[i];
            if (rPlane.m_Means != Means || rPlane.m_Mode == CPlaneBalancingMethod::eEmpty ||
                rPlane.m_Mode == CPlaneBalancingMethod::eInactive) {
                continue;
            }
            SCOPED_TRACE(rScene.m_Name + ", plane " + std::to_string(i + 1));
            Check(Picture, rPlane, CDrawing(Page.GetPlaneRect(i)));
            ++nPlanes;
        }
    }
    EXPECT_GT(nPlanes, 10);
}

double ToClockwise(const CPlaneScene& rPlane, double Angle) {
    return rPlane.m_Scaling == PreBalDB::CTypeBase::eClockwise ? Angle : 360.0 - Angle;
}

TEST(PageGeometryTest, WeightsLieAtTheirAnglesAndNowhereElse) {
    ForEachPlane(CPlaneScene::eWeights,
                 [](const CBitmap& rPicture, const CPlaneScene& rPlane, const CDrawing& rDrawing) {
                     const bool bEqual = rPlane.m_Angle1 == rPlane.m_Angle2;
                     const int nApart = bEqual ? 10 : 0;
                     const double First = ToClockwise(rPlane, rPlane.m_Angle1 + nApart);
                     const double Second = ToClockwise(rPlane, rPlane.m_Angle2 - nApart);
                     const int nThick = rDrawing.m_Outer - rDrawing.m_Inner;
                     // Beside the number, which stands in the middle.
                     const double Near = rDrawing.m_Inner + nThick * 0.2;
                     const double Far = rDrawing.m_Inner + nThick * 0.8;
                     for (const double Angle : {First, Second}) {
                         for (const double Offset : {-7.0, 7.0}) {  // beside the number
                             EXPECT_TRUE(IsAlmost(Get(rPicture, rDrawing.At(Near, Angle + Offset)), INK));
                             EXPECT_TRUE(IsAlmost(Get(rPicture, rDrawing.At(Far, Angle + Offset)), INK));
                         }
                     }
                     for (int nAngle = 0; nAngle < 360; ++nAngle) {
                         const auto IsClear = [nAngle](double Weight) {
                             return std::abs(std::remainder(nAngle - Weight, 360.0)) > 12.5;
                         };
                         if (IsClear(First) && IsClear(Second)) {
                             EXPECT_EQ(Get(rPicture, rDrawing.At((Near + Far) / 2, nAngle)), RING) << nAngle;
                         }
                     }
                 });
}

TEST(PageGeometryTest, HolesLieOnTheirCircleFilledIfTheyHoldAScrew) {
    ForEachPlane(CPlaneScene::eScrews, [](const CBitmap& rPicture, const CPlaneScene& rPlane,
                                          const CDrawing& rDrawing) {
        const int n = rPlane.m_NumberOfHoles;
        const int nRing = (rDrawing.m_Outer - 1 + rDrawing.m_Inner) / 2;
        const int nDiameter = (rDrawing.m_Outer - 1 - rDrawing.m_Inner) / 3 * 2;
        for (int k = 0; k < n; ++k) {
            const CPoint Center = rDrawing.At(nRing, ToClockwise(rPlane, 360.0 * k / n));
            // Screws count clockwise, whatever the scale of the rotor does.
            const int nScrew =
                rPlane.m_Scaling == PreBalDB::CTypeBase::eClockwise || k == 0 ? k + 1 : n - k + 1;
            const bool bScrew =
                std::any_of(rPlane.m_Screws.begin(), rPlane.m_Screws.end(),
                            [nScrew](const CScrew& rScrew) { return rScrew.m_Hole == nScrew; });
            const COLORREF Empty = n <= 24 ? PANEL : RING;
            // A good part of the circle; the number and its smooth edges take the rest.
            const double r = nDiameter / 2.0 - 2;
            int nFilled = 0;
            for (int y = -nDiameter; y <= nDiameter; ++y) {
                for (int x = -nDiameter; x <= nDiameter; ++x) {
                    if (x * x + y * y <= r * r) {
                        const COLORREF Color = rPicture.GetPixel(Center.x + x, Center.y + y);
                        nFilled += Color == (bScrew ? INK : Empty) ? 1 : 0;
                    }
                }
            }
            EXPECT_GT(nFilled, std::numbers::pi * r * r / 3) << "hole " << k + 1;
        }
        // The ring between the first two.
        EXPECT_EQ(Get(rPicture, rDrawing.At(nRing, ToClockwise(rPlane, 180.0 / n))), RING);
    });
}

void CheckGauge(const CBitmap& rPicture, const CPlaneScene& rPlane, const CDrawing& rDrawing) {
    if (rPlane.m_Mode != CPlaneBalancingMethod::eMeasurementValues) {
        return;
    }
    const int D = rDrawing.m_Inner;
    const int nTop = rDrawing.m_Center.y + D / 10 - (D / 4 + 2 * (D / 3)) / 2 + D / 4;
    const int h = D / 3;
    const int X0 = rDrawing.m_Center.x - D / 2 + D / 6;
    const int nSpan = D - 2 * (D / 6);
    const bool bCoarse = rPlane.m_LastMagnitude > 200.0;
    const double Full = bCoarse ? 1000.0 : 200.0;
    const int nLength =
        std::min(static_cast<int>(std::floor(nSpan / Full * rPlane.m_LastMagnitude + 0.5)), nSpan) + 1;
    const int nAxis = nTop + h / 2;
    const int nHeight = h / 4 + (bCoarse ? h / 8 : 0);
    for (const int y : {nAxis - 1, nAxis - nHeight}) {
        EXPECT_EQ(rPicture.GetPixel(X0, y), INK);
        EXPECT_EQ(rPicture.GetPixel(X0 + nLength - 1, y), INK);
        EXPECT_EQ(rPicture.GetPixel(X0 - 1, y), PANEL);
        EXPECT_EQ(rPicture.GetPixel(X0 + nLength, y), PANEL);
    }
    EXPECT_EQ(rPicture.GetPixel(X0, nAxis - nHeight - 1), PANEL);
    EXPECT_EQ(rPicture.GetPixel(X0 + nSpan, nAxis), INK) << "the axis";
    EXPECT_EQ(rPicture.GetPixel(X0 + nSpan + 1, nAxis), PANEL);
}

TEST(PageGeometryTest, TheGaugesBarEndsWhereItsValueIs) {
    ForEachPlane(CPlaneScene::eWeights, CheckGauge);
    ForEachPlane(CPlaneScene::eScrews, CheckGauge);
}

TEST(PageGeometryTest, TheStatusLineGrowsFromAHeightOf504) {
    // The area of the plane ends at the status line, which is white.
    EXPECT_EQ(CScenePage(GetScene("size-503")).GetPlaneRect(0), CRect(0, 83, 600, 503 - 17));
    EXPECT_EQ(CScenePage(GetScene("size-504")).GetPlaneRect(0), CRect(0, 84, 600, 504 - 18));
    for (const char* pName : {"size-503", "size-504"}) {
        const CBitmap Picture = RenderScene(GetScene(pName));
        const int nTop = CScenePage(GetScene(pName)).GetPlaneRect(0).bottom;
        EXPECT_EQ(Picture.GetPixel(2, nTop), RGB(255, 255, 255));
        EXPECT_EQ(Picture.GetPixel(2, nTop - 1), PANEL);
    }
}

TEST(PageGeometryTest, TwoPlanesDivideTheWidth) {
    CScene Scene = GetScene("two-planes");
    Scene.m_Size = {601, 440};
    const CScenePage Page(Scene);
    EXPECT_EQ(Page.GetPlaneRect(0), CRect(0, 73, 300, 423));
    EXPECT_EQ(Page.GetPlaneRect(1), CRect(300, 73, 601, 423));
}

/// Panels as they are sold, and odd ones.
const std::vector<CSize>& GetSizes() {
    static const std::vector<CSize> s_Sizes{{240, 180},  {320, 240},  {481, 272},  {600, 440},
                                            {640, 480},  {300, 700},  {1000, 300}, {800, 600},
                                            {1024, 768}, {1280, 800}, {1366, 768}, {1920, 1080}};
    return s_Sizes;
}

template <typename Function>
void ForEachSize(const char* pName, Function Check) {
    for (const CSize Size : GetSizes()) {
        CScene Scene = GetScene(pName);
        Scene.m_Size = Size;
        SCOPED_TRACE(std::string(pName) + " " + std::to_string(Size.cx) + " by " + std::to_string(Size.cy));
        Check(Scene);
    }
}

// Beside the squares of its planes the page's middle is empty: nothing sticks out into the next area. Titles
// stand in the squares' corners.
TEST(PageSweepTest, DrawingsStayInTheirSquares) {
    const CLogCapture Log;
    for (const char* pName : {"weights-correction", "screws-correction", "holes-all", "two-planes",
                              "german-two-planes", "two-planes-small", "weights-measuring"}) {
        ForEachSize(pName, [](const CScene& rScene) {
            const CBitmap Picture = RenderScene(rScene);
            const CScenePage Page(rScene);
            for (std::size_t i = 0; i < rScene.m_Planes.size(); ++i) {
                const CRect Area = Page.GetPlaneRect(i);
                const CRect Square = CDrawing(Area).GetSquare();
                const CRect Drawn = FindInk(Picture, Area, PANEL).value_or(CRect());
                EXPECT_GE(Drawn.left, Square.left);
                EXPECT_GE(Drawn.top, Square.top);
                EXPECT_LE(Drawn.right, Square.right);
                EXPECT_LE(Drawn.bottom, Square.bottom);
                EXPECT_GT(Drawn.Width(), Square.Width() - 6);
            }
        });
    }
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    EXPECT_THAT(Log.GetTexts("Warning"), IsEmpty()) << "no text without room";
}

// The texts at the screws are what differs from a picture in which they are blank.
TEST(PageSweepTest, ScrewTextsStayBetweenArrowAndRing) {
    for (const char* pName : {"screws-correction", "holes-all", "two-planes"}) {
        ForEachSize(pName, [](const CScene& rScene) {
            const CBitmap Picture = RenderScene(rScene);
            CScene Blank = rScene;
            for (CPlaneScene& rPlane : Blank.m_Planes) {
                for (CScrew& rScrew : rPlane.m_Screws) {
                    rScrew.m_Weight = 0.0;
                }
            }
            const CBitmap Without = RenderScene(Blank);
            const CScenePage Page(rScene);
            for (std::size_t i = 0; i < rScene.m_Planes.size(); ++i) {
                const CRect Area = Page.GetPlaneRect(i);
                const CDrawing Drawing(Area);
                int nText = 0;
                double Least = Drawing.m_Outer;
                double Most = 0.0;
                for (int y = Area.top; y < Area.bottom; ++y) {
                    for (int x = Area.left; x < Area.right; ++x) {
                        if (Picture.GetPixel(x, y) != Without.GetPixel(x, y)) {
                            const double Radius = Drawing.GetRadius({x, y});
                            Least = std::min(Least, Radius);
                            Most = std::max(Most, Radius);
                            ++nText;
                        }
                    }
                }
                if (rScene.m_Planes[i].m_Screws.empty()) {
                    EXPECT_EQ(nText, 0);
                    continue;
                }
                EXPECT_GT(nText, 0);
                EXPECT_LE(Most, Drawing.m_Inner - 5);
                // The arrow needs 28 pixels, which the smallest drawings don't have to spare.
                EXPECT_GE(Least, std::min(30, (Drawing.m_Inner - 10) / 2 - 3));
            }
        });
    }
}

/// Where a plane's live values stand.
CRect GetMiddle(const CDrawing& rDrawing) {
    const int D = rDrawing.m_Inner;
    const CPoint Center = rDrawing.m_Center;
    // The last number of the gauge reaches beyond the square of small drawings.
    const int nRight = std::max(D / 2, D - D / 2 - D / 6 + 15);
    return {Center.x - D / 2, Center.y - D / 2, Center.x + nRight, Center.y + D / 2};
}

/// The picture with the middle of its planes painted over.
CBitmap WithoutMiddles(const CBitmap& rPicture, const CScenePage& rPage, std::size_t nPlanes) {
    CBitmap Result = rPicture;
    CDC DC(Result);
    for (std::size_t i = 0; i < nPlanes; ++i) {
        DC.FillSolidRect(GetMiddle(CDrawing(rPage.GetPlaneRect(i))), PANEL);
    }
    return Result;
}

// From each value to the next by repaints of the middle only; each picture equals one painted afresh.
TEST(PageSweepTest, ALiveRepaintTouchesTheMiddleOnlyAndLeavesNothingBehind) {
    for (const char* pName : {"weights-measuring", "screws-measuring", "values-final-coloured"}) {
        ForEachSize(pName, [](const CScene& rScene) {
            CScene Scene = rScene;
            CScenePage Page(Scene);
            CBitmap Live(Scene.m_Size);
            CDC DC(Live);
            Page.Paint(DC, CPreBalancing::ePaintAll);
            for (const double Value : {8888.0, 46340.0, 3.0, 10'000.0, 200.01, 200.0, 999.0, 0.0}) {
                const CBitmap Before = Live;
                for (std::size_t i = 0; i < Scene.m_Planes.size(); ++i) {
                    Page.SetMeasurement(i, Value, Value / 30, Value);
                    Scene.m_Planes[i].m_Magnitude = Value;
                    Scene.m_Planes[i].m_Angle = Value / 30;
                    Scene.m_Planes[i].m_LastMagnitude = Value;
                }
                Page.Paint(DC, CPreBalancing::ePaintMeasurement);
                EXPECT_FALSE(Live == Before) << Value;
                EXPECT_TRUE(WithoutMiddles(Live, Page, Scene.m_Planes.size()) ==
                            WithoutMiddles(Before, Page, Scene.m_Planes.size()))
                    << Value;
                const CBitmap Afresh = RenderScene(Scene);
                // The toolkit may shade large letters a little differently the first time.
                EXPECT_TRUE(Live == Afresh || CPictureDifference(Live, Afresh).m_nPixels == 0) << Value;
            }
        });
    }
}

}  // namespace
