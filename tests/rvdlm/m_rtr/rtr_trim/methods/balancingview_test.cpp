#include "rvdlm/m_rtr/rtr_trim/methods/balancingview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "tests/support/logcapture.h"
#include "tests/support/pagecolors.h"
#include "tests/support/pixels.h"
#include "tests/support/testinstallation.h"

namespace {

using PageColors::BLACK;
using PageColors::FINAL_BAD;
using PageColors::FINAL_GOOD;
using PageColors::INK;
using PageColors::PANEL;
using PageColors::RING;
using PageColors::STALE;
using PageColors::WHITE;
using testing::ElementsAre;
using testing::IsEmpty;

class CTestView : public CBalancingView {
public:
    using CBalancingView::CGeometry;
    using CBalancingView::DrawBase;
    using CBalancingView::PointsToPixels;
};

TEST(PolarPointTest, ZeroIsToTheRightAndNinetyUpwards) {
    const CPoint Center(100, 200);
    EXPECT_EQ(PolarPoint(Center, 50, 0), CPoint(150, 200));
    EXPECT_EQ(PolarPoint(Center, 50, 90), CPoint(100, 150));
    EXPECT_EQ(PolarPoint(Center, 50, 180), CPoint(50, 200));
    EXPECT_EQ(PolarPoint(Center, 50, 270), CPoint(100, 250));
}

// sin and cos of 45 degrees times 50 are 35.36: cut towards the centre on both sides.
TEST(PolarPointTest, CoordinatesAreCutTowardsTheCentre) {
    EXPECT_EQ(PolarPoint({0, 0}, 50, 45), CPoint(35, -35));
    EXPECT_EQ(PolarPoint({0, 0}, 50, 225), CPoint(-35, 35));
    EXPECT_EQ(PolarPoint({0, 0}, 50, 45 + 360), CPoint(35, -35));
}

TEST(BalancingViewGeometryTest, APaneOf300By500HasASquareOf280AtItsTop) {
    const auto Geometry = CTestView::CGeometry::InRect(CRect(0, 0, 300, 500));
    EXPECT_EQ(Geometry.m_Side, 280);
    EXPECT_EQ(Geometry.m_Square, CRect(10, 10, 290, 290));
    EXPECT_EQ(Geometry.m_Center, CPoint(150, 150));
    EXPECT_EQ(Geometry.m_Outer, 140);
    EXPECT_EQ(Geometry.m_Inner, 105);
}

TEST(BalancingViewGeometryTest, AWidePaneHasItsSquareInTheMiddle) {
    const auto Geometry = CTestView::CGeometry::InRect(CRect(100, 40, 801, 341));
    EXPECT_EQ(Geometry.m_Side, 281);
    EXPECT_EQ(Geometry.m_Square, CRect(310, 50, 591, 331));
    EXPECT_EQ(Geometry.m_Center, CPoint(451, 190)) << "across one more than down, by the added 1";
    EXPECT_EQ(Geometry.m_Outer, 140);
    EXPECT_EQ(Geometry.m_Inner, 105);
}

/// Drawings around (150, 150) in a bitmap of 300 by 500.
class BalancingViewTest : public testing::Test {
protected:
    BalancingViewTest() { Renew(); }

    /// Makes the view anew, as it reads the feature flag once.
    void Renew() { m_pView = std::make_unique<CTestView>(); }
    void Measure(int State, double Magnitude, double Angle, double LastMagnitude, int Size = SIZE) {
        m_Bitmap.Create({300, 500});
        CDC Dc(m_Bitmap);
        m_pView->DrawMeasurementValue(&Dc, {150, 150}, Size, State, Magnitude, Angle, LastMagnitude);
    }
    /// Colour of number and unit: the one of the palette that is seen most above the gauge.
    COLORREF GetValueColor() const {
        COLORREF Best = PANEL;
        int nBest = 0;
        for (const COLORREF Color : {INK, FINAL_GOOD, FINAL_BAD, STALE}) {
            const int nCount = CountPixels(m_Bitmap, VALUE_AREA, Color);
            if (nCount > nBest) {
                nBest = nCount;
                Best = Color;
            }
        }
        return Best;
    }

    // With D = 120: H 60, Q 30, E 15, T 40, C 2; Left 90, Top 150 + 12 - 55 = 107; so the number stands in
    // rows 107 to 137, the gauge from 137 to 177 and from 90 to 210, the angle from 177 to 192.
    static constexpr int SIZE = 120;
    static constexpr CRect VALUE_AREA{90, 107, 210, 137};
    static constexpr CRect GAUGE_AREA{90, 137, 210, 177};
    static constexpr CRect ANGLE_AREA{90, 177, 210, 192};

    CTestInstallation m_Installation;
    CBitmap m_Bitmap{CSize(300, 500)};
    std::unique_ptr<CTestView> m_pView;
    CLogCapture m_Log;
};

TEST_F(BalancingViewTest, TheBaseIsARingBetweenTwoBlackCirclesOnThePanel) {
    CDC Dc(m_Bitmap);
    CTestView::DrawBase(&Dc, CTestView::CGeometry::InRect(CRect(0, 0, 300, 500)));
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 290, 290)) << "the square and nothing else";
    EXPECT_EQ(Dc.GetPixel({12, 12}), PANEL);
    EXPECT_EQ(Dc.GetPixel({150, 150}), PANEL);
    for (const int nDegrees : {0, 90, 180, 270}) {
        EXPECT_EQ(Dc.GetPixel(PolarPoint({150, 150}, 122, nDegrees)), RING) << nDegrees;
        EXPECT_TRUE(IsAlmost(Dc.GetPixel(PolarPoint({150, 150}, 105, nDegrees)), BLACK)) << nDegrees;
        EXPECT_TRUE(IsAlmost(Dc.GetPixel(PolarPoint({150, 150}, 139, nDegrees)), BLACK)) << nDegrees;
        EXPECT_TRUE(IsAlmost(Dc.GetPixel(PolarPoint({150, 150}, 103, nDegrees)), PANEL))
            << "two pixels wide " << nDegrees;
    }
}

TEST_F(BalancingViewTest, TheMeasurementKeepsToItsSquare) {
    Measure(CPlaneBalancingMethod::eNormal, 123.0, 45.0, 123.0);
    EXPECT_EQ(FindInk(m_Bitmap), CRect(90, 90, 210, 210));
    EXPECT_EQ(m_Bitmap.GetPixel(91, 91), PANEL);
}

TEST_F(BalancingViewTest, WithoutTheFlagAllValidStatesAreInk) {
    for (const int nState : {0, 2, 3}) {
        Measure(nState, 123.0, 45.0, 123.0);
        EXPECT_EQ(GetValueColor(), INK) << nState;
    }
}

TEST_F(BalancingViewTest, WithTheFlagAFinalValueIsGreenWithinAndRedOverTheTarget) {
    m_Installation.EnableFeature("PreBalancingColorizeFinalUnbalance");
    Renew();
    Measure(CPlaneBalancingMethod::eNormal, 123.0, 45.0, 123.0);
    EXPECT_EQ(GetValueColor(), INK);
    Measure(CPlaneBalancingMethod::eWithinTarget, 123.0, 45.0, 123.0);
    EXPECT_EQ(GetValueColor(), FINAL_GOOD);
    Measure(CPlaneBalancingMethod::eOverTarget, 123.0, 45.0, 123.0);
    EXPECT_EQ(GetValueColor(), FINAL_BAD);
}

TEST_F(BalancingViewTest, TheFlagIsReadWhenTheViewIsMade) {
    m_Installation.EnableFeature("PreBalancingColorizeFinalUnbalance");
    Measure(CPlaneBalancingMethod::eOverTarget, 123.0, 45.0, 123.0);
    EXPECT_EQ(GetValueColor(), INK);
}

TEST_F(BalancingViewTest, ValuesThatAreNotValidShowTheLastSampleInGreyWithAShadow) {
    for (const bool bFlag : {false, true}) {
        if (bFlag) {
            m_Installation.EnableFeature("PreBalancingColorizeFinalUnbalance");
            Renew();
        }
        Measure(CPlaneBalancingMethod::eNotValid, 123.0, 45.0, 88.0);
        const CBitmap Stale = m_Bitmap;
        EXPECT_EQ(GetValueColor(), STALE);
        Measure(CPlaneBalancingMethod::eNotValid, 145.0, 45.0, 88.0);
        EXPECT_TRUE(m_Bitmap == Stale) << "the average plays no part";
        Measure(CPlaneBalancingMethod::eNotValid, 123.0, 45.0, 89.0);
        EXPECT_FALSE(m_Bitmap == Stale);
        // The shadow ends with the state.
        Measure(CPlaneBalancingMethod::eNormal, 123.0, 45.0, 88.0);
        const CBitmap Valid = m_Bitmap;
        Renew();
        Measure(CPlaneBalancingMethod::eNormal, 123.0, 45.0, 88.0);
        EXPECT_TRUE(m_Bitmap == Valid);
    }
}

TEST_F(BalancingViewTest, NumbersAreRounded) {
    Measure(0, 9.4, 45.0, 0.0);
    const CBitmap Nine = m_Bitmap;
    Measure(0, 9.0, 45.0, 0.0);
    EXPECT_TRUE(m_Bitmap == Nine);
    Measure(0, 9.5, 45.0, 0.0);
    EXPECT_FALSE(m_Bitmap == Nine) << "10";
    Measure(0, 9.4, 44.5, 0.0);
    EXPECT_TRUE(m_Bitmap == Nine) << "the angle, too";
}

// The unit begins at Left + 60 + S + 2, where S is 0, 0, 120 / 40, 120 / 30 and 120 / 10 for 0 to 4 digits.
TEST_F(BalancingViewTest, TheUnitGivesWayToTheDigitsOfTheNumber) {
    const auto GetUnitLeft = [&](double Magnitude) {
        Measure(0, Magnitude, 45.0, 0.0);
        for (int x = 209; x > 90; --x) {
            // From the right: the unit, then at least two free columns before the number.
            if (!FindInk(m_Bitmap, CRect(x - 2, 107, x, 137), PANEL) &&
                FindInk(m_Bitmap, CRect(x, 107, 210, 137), PANEL)) {
                return x;
            }
        }
        return 0;
    };
    const int nOne = GetUnitLeft(9.4);
    EXPECT_EQ(GetUnitLeft(0.2), nOne);
    EXPECT_EQ(GetUnitLeft(99.0) - nOne, 3);
    EXPECT_EQ(GetUnitLeft(999.0) - nOne, 4);
    EXPECT_EQ(GetUnitLeft(9999.0) - nOne, 12);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(BalancingViewTest, FiveDigitsAreAssertedAndDrawnAllTheSame) {
    Measure(0, 10'000.0, 45.0, 0.0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_EQ(m_Log.GetRecords().back().m_Expression, "FALSE");
    EXPECT_EQ(GetValueColor(), INK);
    EXPECT_TRUE(FindColor(m_Bitmap, ANGLE_AREA, STALE)) << "the drawing goes on to its end";
}

TEST_F(BalancingViewTest, TheAngleIsGreyAndCentredUnderTheGauge) {
    Measure(0, 9.0, 123.0, 9.0);
    const auto Angle = FindInk(m_Bitmap, ANGLE_AREA, PANEL);
    ASSERT_TRUE(Angle);
    EXPECT_NEAR(Angle->CenterPoint().x, 150, 3);
    EXPECT_TRUE(FindColor(m_Bitmap, ANGLE_AREA, STALE));
    EXPECT_FALSE(FindColor(m_Bitmap, ANGLE_AREA, INK));
}

/// The gauge's bar: margin 20, so it runs from 110 to 190, Span 80; axis at 137 + 20 = 157, ticks to 137 + 26
/// = 163.
class GaugeTest : public BalancingViewTest {
protected:
    CRect GetBar(double Value) {
        Measure(0, 0.0, 0.0, Value);
        return FindColor(m_Bitmap, CRect(90, 137, 210, 157), INK).value_or(CRect());
    }
    static constexpr CRect LABEL_AREA{90, 164, 210, 177};
};

TEST_F(GaugeTest, TheBarStandsOnTheAxisAndIsAsLongAsItsValue) {
    EXPECT_EQ(GetBar(100.0), CRect(110, 147, 110 + 41, 157)) << "half of 80, and one";
    EXPECT_EQ(GetBar(50.0).Width(), 21);
    EXPECT_EQ(GetBar(0.0).Width(), 1);
    EXPECT_EQ(GetBar(1.24).Width(), 1) << "0.496 pixels";
    EXPECT_EQ(GetBar(1.26).Width(), 2) << "0.504 pixels";
}

TEST_F(GaugeTest, TwoHundredIsTheEndOfTheFineScale) {
    EXPECT_EQ(GetBar(200.0), CRect(110, 147, 191, 157));
    const CBitmap Fine = m_Bitmap;
    EXPECT_EQ(GetBar(199.0).Height(), 10);
    const auto Changed = FindDifference(Fine, m_Bitmap);
    EXPECT_TRUE(!Changed || Changed->bottom <= 157) << "the same labels";
}

// 200.01 of 1000 are 16 of 80 pixels; the bar is thicker by h / 8 = 5.
TEST_F(GaugeTest, AboveTwoHundredTheScaleGoesToAThousandAndTheBarIsThicker) {
    EXPECT_EQ(GetBar(200.01), CRect(110, 142, 127, 157));
    const CBitmap Coarse = m_Bitmap;
    GetBar(200.0);
    const auto Changed = FindDifference(Coarse, m_Bitmap);
    ASSERT_TRUE(Changed);
    EXPECT_GE(Changed->bottom, 165) << "the label, too";
}

TEST_F(GaugeTest, AValueAboveTheFullScaleEndsAtTheEndOfTheAxis) {
    EXPECT_EQ(GetBar(1000.0).Width(), 81);
    EXPECT_EQ(GetBar(1001.0).Width(), 81);
    EXPECT_EQ(GetBar(46341.0).Width(), 81);
    EXPECT_EQ(GetBar(1e300).Width(), 81);
}

TEST_F(GaugeTest, TheAxisHasThreeLongAndTwoShortTicks) {
    Measure(0, 0.0, 0.0, 0.0);
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(90, 157, 210, 158), INK), 81);
    for (const int x : {110, 150, 190}) {
        EXPECT_EQ(CountPixels(m_Bitmap, CRect(x, 157, x + 1, 164), INK), 7) << x;
    }
    for (const int x : {130, 170}) {
        EXPECT_EQ(CountPixels(m_Bitmap, CRect(x, 157, x + 1, 164), INK), 4) << x;
    }
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(90, 158, 210, 164), INK), 3 * 6 + 2 * 3);
}

TEST_F(GaugeTest, TheLabelsStandUnderTheEndsOfTheScale) {
    Measure(0, 0.0, 0.0, 0.0);
    const CRect Fine = FindInk(m_Bitmap, LABEL_AREA, PANEL).value_or(CRect());
    EXPECT_NEAR(Fine.left, 108, 2);
    EXPECT_NEAR(Fine.right, 190 - 8 + 19, 3);
    Measure(0, 0.0, 0.0, 500.0);
    const CRect Coarse = FindInk(m_Bitmap, LABEL_AREA, PANEL).value_or(CRect());
    EXPECT_NEAR(Coarse.right, 190 - 12 + 26, 3);
    EXPECT_LE(Coarse.right, 210) << "inside the square";
}

class ArrowTest : public BalancingViewTest {
protected:
    CBitmap DrawArrow(int Sense) {
        m_Bitmap.Create({300, 300});
        CDC Dc(m_Bitmap);
        CBalancingView::DrawRotationArrow(&Dc, {150, 150}, static_cast<CBalancingView::Direction>(Sense));
        return m_Bitmap;
    }
};

TEST_F(ArrowTest, TheArcHasItsGapAtTheBottom) {
    DrawArrow(7);
    const auto HasInkAt = [this](int Degrees) {
        const CPoint Point = PolarPoint({150, 150}, 24, Degrees);
        return FindColor(m_Bitmap, CRect(Point.x - 1, Point.y - 1, Point.x + 2, Point.y + 2), INK)
            .has_value();
    };
    for (const int nDegrees : {0, 45, 90, 135, 180, 225, 315}) {
        EXPECT_TRUE(HasInkAt(nDegrees)) << nDegrees;
    }
    for (const int nDegrees : {245, 270, 295}) {
        EXPECT_FALSE(HasInkAt(nDegrees)) << nDegrees;
    }
    EXPECT_EQ(m_Bitmap.GetPixel(150, 150 - 21), WHITE) << "three pixels wide";
    EXPECT_EQ(m_Bitmap.GetPixel(150, 150 - 27), WHITE);
}

TEST_F(ArrowTest, TheHeadLiesWhereTheRotationGoes) {
    const CBitmap Plain = DrawArrow(7);
    const auto Clockwise = FindDifference(Plain, DrawArrow(0));
    const auto CounterClockwise = FindDifference(Plain, DrawArrow(1));
    ASSERT_TRUE(Clockwise && CounterClockwise);
    EXPECT_GT(Clockwise->left, 155) << "at the lower right";
    EXPECT_GT(Clockwise->top, 150);
    EXPECT_LT(CounterClockwise->right, 145) << "at the lower left";
    EXPECT_GT(CounterClockwise->top, 150);
}

TEST_F(ArrowTest, UnknownDirectionsHaveNoHead) {
    const CBitmap Plain = DrawArrow(7);
    EXPECT_EQ(DrawArrow(2), Plain);
    EXPECT_FALSE(DrawArrow(0) == Plain);
    EXPECT_FALSE(DrawArrow(1) == Plain);
}

// As by diagonals in both directions, which meet the same pixels.
TEST_F(BalancingViewTest, TheHatchCoversEverySecondPixelOfItsRectangleOnly) {
    for (const CRect& rRect : {CRect(20, 30, 81, 121), CRect(20, 30, 120, 62), CRect(0, 0, 300, 500)}) {
        m_Bitmap.Create({300, 500});
        CDC Dc(m_Bitmap);
        Dc.FillSolidRect(GetWhole(m_Bitmap), BLACK);
        CBalancingView::DrawInactive(&Dc, rRect);
        EXPECT_EQ(FindColor(m_Bitmap, GetWhole(m_Bitmap), PANEL), rRect);
        int nWrong = 0;
        const bool bFirst = Dc.GetPixel({rRect.left, rRect.top}) == PANEL;
        for (int y = rRect.top; y < rRect.bottom; ++y) {
            for (int x = rRect.left; x < rRect.right; ++x) {
                const bool bEven = (x - rRect.left + y - rRect.top) % 2 == 0;
                nWrong += Dc.GetPixel({x, y}) == (bEven == bFirst ? PANEL : BLACK) ? 0 : 1;
            }
        }
        EXPECT_EQ(nWrong, 0);
        Dc.FillSolidRect(GetWhole(m_Bitmap), BLACK);
        EXPECT_EQ(CountPixels(m_Bitmap, BLACK), 300 * 500) << "the clipping has ended";
    }
}

// In a pane of 300 by 500: Side 280, d = 220, so the copy is moved by 10 to the right and by 210 up: the
// line's bottom is at 290. Its height is 280 / 24 = 11.
TEST_F(BalancingViewTest, ThePlanesTitleStandsAtTheLowerLeftOfTheDrawing) {
    CDC Dc(m_Bitmap);
    PaintPlaneTitleText(Dc, CRect(0, 0, 300, 500), 2);
    const CRect Title = FindInk(m_Bitmap).value_or(CRect());
    EXPECT_NEAR(Title.left, 10, 2);
    EXPECT_LE(Title.bottom, 290);
    EXPECT_GE(Title.bottom, 290 - 4);
    EXPECT_LE(Title.Height(), 11);
    EXPECT_TRUE(FindPixels(m_Bitmap, Title, [](COLORREF Pixel) { return IsAlmost(Pixel, BLACK, 100); }));
    CBitmap Other({300, 500});
    CDC OtherDc(Other);
    PaintPlaneTitleText(OtherDc, CRect(0, 0, 300, 500), 1);
    EXPECT_FALSE(Other == m_Bitmap) << "the number is the plane's";
}

TEST_F(BalancingViewTest, PointsBecomePixelsByTheDisplaysResolution) {
    const CDC Dc(m_Bitmap);
    EXPECT_EQ(CTestView::PointsToPixels(Dc, 72), 96);
    EXPECT_EQ(CTestView::PointsToPixels(Dc, 10), 13);
    EXPECT_EQ(CTestView::PointsToPixels(Dc, 0), 0);
}

}  // namespace
