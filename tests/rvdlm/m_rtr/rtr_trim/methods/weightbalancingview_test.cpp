#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/logcapture.h"
#include "tests/support/pagecolors.h"
#include "tests/support/pixels.h"
#include "tests/support/testinstallation.h"

namespace {

using PageColors::INK;
using PageColors::PANEL;
using PageColors::RING;
using testing::ElementsAre;
using testing::IsEmpty;

class CTestView : public CWeightBalancingView {
public:
    using CWeightBalancingView::DrawWeight;

    void Set(int Angle1, int Angle2, Direction Scaling = PreBalDB::CTypeBase::eClockwise) {
        m_Angle1 = Angle1;
        m_Angle2 = Angle2;
        m_ScalingDirection = Scaling;
    }
    void SetRotation(Direction Sense) { m_RotationDirection = Sense; }
};

/// A pane of 500 by 600: Side 480, so the circles around (250, 250) have the radii 239 and 180, the middle of
/// the ring lies at 180 + 29.
class WeightBalancingViewTest : public testing::Test {
protected:
    static constexpr CRect PANE{0, 0, 500, 600};
    static constexpr CPoint CENTER{250, 250};
    static constexpr int RADIUS = 209;

    void Paint(bool bRedrawAll = true) {
        CDC Dc(m_Bitmap);
        m_View.Paint(&Dc, PANE, nullptr, nullptr, nullptr, bRedrawAll, 0);
    }
    void PaintMeasurement(double Magnitude, bool bRedrawAll) {
        const double Angle = 45.0;
        CDC Dc(m_Bitmap);
        m_View.Paint(&Dc, PANE, &Magnitude, &Angle, &Magnitude, bRedrawAll, 0);
    }
    COLORREF At(int Radius, int Degrees) const {
        const CPoint Point = PolarPoint(CENTER, Radius, Degrees);
        return m_Bitmap.GetPixel(Point.x, Point.y);
    }
    /// Whether a weight's sector lies around that direction (0 to the right, counter-clockwise): its ink
    /// close to both edges of the sector and of the ring, where no number stands, and none beyond.
    bool HasWeightAt(int Degrees) const {
        return At(186, Degrees) == INK && At(232, Degrees - 8) == INK && At(232, Degrees + 8) == INK;
    }
    /// How many degrees of the ring's outer part are inked.
    int CountInkedDegrees() const {
        int nCount = 0;
        for (int nDegrees = 0; nDegrees < 360; ++nDegrees) {
            nCount += At(232, nDegrees) != RING ? 1 : 0;
        }
        return nCount;
    }

    CTestInstallation m_Installation;
    CBitmap m_Bitmap{CSize(500, 600)};
    CTestView m_View;
    CLogCapture m_Log;
};

TEST_F(WeightBalancingViewTest, AngleZeroIsAtTheTopWhateverTheScale) {
    for (const auto Scaling : {PreBalDB::CTypeBase::eClockwise, PreBalDB::CTypeBase::eCounterClockwise}) {
        m_View.Set(0, 180, Scaling);
        Paint();
        EXPECT_TRUE(HasWeightAt(90));
        EXPECT_TRUE(HasWeightAt(270));
    }
}

TEST_F(WeightBalancingViewTest, WithDirectionZeroTheScaleCountsClockwise) {
    m_View.Set(90, 210);
    Paint();
    EXPECT_TRUE(HasWeightAt(0)) << "90 is at the right";
    EXPECT_TRUE(HasWeightAt(240)) << "210 at the lower left";
    EXPECT_FALSE(HasWeightAt(180));
}

TEST_F(WeightBalancingViewTest, WithDirectionOneTheScaleCountsCounterClockwise) {
    m_View.Set(90, 210, PreBalDB::CTypeBase::eCounterClockwise);
    Paint();
    EXPECT_TRUE(HasWeightAt(180)) << "90 is at the left";
    EXPECT_TRUE(HasWeightAt(300)) << "210 at the lower right";
    EXPECT_FALSE(HasWeightAt(0));
}

TEST_F(WeightBalancingViewTest, AWeightIsTwentyDegreesWide) {
    m_View.Set(0, 180);
    Paint();
    EXPECT_NEAR(CountInkedDegrees(), 2 * 20, 3);
    EXPECT_EQ(At(RADIUS, 90 + 12), RING);
    EXPECT_EQ(At(RADIUS, 90 - 12), RING);
}

// The edges' lines end at whole pixels, so that they lie up to a pixel beside the radius; the ink keeps to
// them, whichever way they lie. A smooth line of one pixel reaches 1.25 pixels from its middle at most.
TEST_F(WeightBalancingViewTest, TheInkEndsAtTheEdgesLinesAndLeavesNoGap) {
    constexpr double REACH = 1.25;
    for (int nAngle = 0; nAngle < 180; ++nAngle) {
        m_View.Set(nAngle, nAngle + 180, PreBalDB::CTypeBase::eCounterClockwise);
        Paint();
        int nOutside = 0;
        int nGaps = 0;
        for (const int nSide : {-1, 1}) {
            const int nEdge = nAngle + 90 + nSide * 10;
            const CPoint Near = PolarPoint(CENTER, 180, nEdge);
            const CPoint Along = PolarPoint(CENTER, 239, nEdge) - Near;
            const double Length = std::hypot(Along.x, Along.y);
            for (int y = Near.y - 70; y <= Near.y + 70; ++y) {
                for (int x = Near.x - 70; x <= Near.x + 70; ++x) {
                    const CPoint Point = CPoint(x, y) - Near;
                    const double Radius = std::hypot(x - CENTER.x, y - CENTER.y);
                    // Beyond the line, seen from the weight's middle; y grows downwards.
                    const double Beyond = -nSide * (Along.x * Point.y - Along.y * Point.x) / Length;
                    if (Radius < 184 || Radius > 234 || std::abs(Beyond) < REACH || std::abs(Beyond) > 5) {
                        continue;
                    }
                    const COLORREF Color = m_Bitmap.GetPixel(x, y);
                    nOutside += Beyond > 0 && Color != RING ? 1 : 0;
                    nGaps += Beyond < 0 && Color != INK ? 1 : 0;
                }
            }
        }
        EXPECT_EQ(nOutside, 0) << nAngle;
        EXPECT_EQ(nGaps, 0) << nAngle;
    }
}

TEST_F(WeightBalancingViewTest, EachWeightCarriesItsNumberInWhite) {
    m_View.Set(0, 180);
    Paint();
    for (const int nDegrees : {90, 270}) {
        const CPoint Middle = PolarPoint(CENTER, RADIUS, nDegrees);
        // Thick is 60, so Q is 14 and the number 19 pixels high.
        const CRect Place(Middle.x - 28, Middle.y - 10, Middle.x + 28, Middle.y + 10);
        const auto Number =
            FindPixels(m_Bitmap, Place, [](COLORREF Pixel) { return GetRValue(Pixel) > 200; });
        ASSERT_TRUE(Number) << nDegrees;
        EXPECT_NEAR(Number->CenterPoint().x, Middle.x, 2);
        EXPECT_LE(Number->Height(), 19);
    }
}

// 50 and 50 on the clockwise scale: sectors around 60 and 40, which is 30 and 50 degrees on the picture.
TEST_F(WeightBalancingViewTest, EqualAnglesShowTwoSectorsTwentyDegreesApart) {
    m_View.Set(50, 50);
    Paint();
    EXPECT_TRUE(HasWeightAt(30));
    EXPECT_TRUE(HasWeightAt(50));
    EXPECT_NEAR(CountInkedDegrees(), 40, 3);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Both carry the common angle: the numbers are those of a weight at 50 alone, moved to the sectors' middles.
TEST_F(WeightBalancingViewTest, EqualAnglesAreBothLabelledWithTheCommonAngle) {
    m_View.Set(50, 50);
    Paint();
    const auto CutNumber = [](const CBitmap& rSource, int Degrees) {
        const CPoint Middle = PolarPoint(CENTER, RADIUS, Degrees);
        CBitmap Number({36, 20});
        CDC(Number).BitBlt(CRect(0, 0, 36, 20), rSource, {Middle.x - 18, Middle.y - 10});
        return Number;
    };
    CBitmap Single({500, 600});
    CDC Dc(Single);
    CTestView Reference;
    Reference.Set(0, 0);
    const int nShown = 50;
    Reference.DrawWeight(&Dc, CRect(10, 10, 490, 490), 50, true, false, &nShown);
    const CBitmap Expected = CutNumber(Single, 40);
    EXPECT_TRUE(CutNumber(m_Bitmap, 30) == Expected);
    EXPECT_TRUE(CutNumber(m_Bitmap, 50) == Expected);

    // And not with their own places' angles.
    CBitmap Other({500, 600});
    CDC OtherDc(Other);
    Reference.DrawWeight(&OtherDc, CRect(10, 10, 490, 490), 60, true, false, nullptr);
    EXPECT_FALSE(CutNumber(Other, 30) == Expected);
}

/// Marks of the dotted line between the arrow and the scale.
int CountMarks(const CBitmap& rBitmap, int Degrees) {
    int nCount = 0;
    for (int nRadius = 36; nRadius < 148; ++nRadius) {
        const CPoint Point = PolarPoint({250, 250}, nRadius, Degrees);
        nCount += rBitmap.GetPixel(Point.x, Point.y) != PANEL ? 1 : 0;
    }
    return nCount;
}

TEST_F(WeightBalancingViewTest, ADottedLinePointsAtEachWeight) {
    m_View.Set(0, 90);
    Paint();
    for (const int nDegrees : {90, 0}) {
        EXPECT_GT(CountMarks(m_Bitmap, nDegrees), 30) << nDegrees;
        EXPECT_LT(CountMarks(m_Bitmap, nDegrees), 90) << "dotted " << nDegrees;
    }
    EXPECT_EQ(CountMarks(m_Bitmap, 180), 0);
    EXPECT_EQ(At(152, 0), PANEL) << "it ends at the inner radius less 30";
}

TEST_F(WeightBalancingViewTest, OneDottedLinePointsAtTheCommonAngle) {
    m_View.Set(50, 50);
    Paint();
    EXPECT_GT(CountMarks(m_Bitmap, 40), 30);
    EXPECT_EQ(CountMarks(m_Bitmap, 30), 0);
    EXPECT_EQ(CountMarks(m_Bitmap, 50), 0);
}

TEST_F(WeightBalancingViewTest, TheScaleIsLabelledInsideTheCircleAndLabelsTouchNothing) {
    m_View.Set(30, 210);
    Paint();
    // Between the circle's line, which is 2 wide, and 14 rows further in.
    const CRect Top(238, 73, 267, 88);
    const CRect Bottom(238, 414, 267, 428);
    const CRect Left(73, 240, 100, 260);
    const CRect Right(400, 240, 427, 260);
    for (const CRect& rPlace : {Top, Bottom, Left, Right}) {
        const auto Label = FindInk(m_Bitmap, rPlace, PANEL);
        ASSERT_TRUE(Label) << rPlace.left << " " << rPlace.top;
    }
    // "0°" and "180°" stand around Cx + 2 and clear of the circle's line.
    const CRect Zero = *FindInk(m_Bitmap, Top, PANEL);
    EXPECT_NEAR(Zero.CenterPoint().x, 252, 2);
    EXPECT_GT(Zero.top, Top.top);
    const CRect Opposite = *FindInk(m_Bitmap, Bottom, PANEL);
    EXPECT_NEAR(Opposite.CenterPoint().x, 252, 2);
    EXPECT_LT(Opposite.bottom, Bottom.bottom);
}

TEST_F(WeightBalancingViewTest, TheLabelsChangeSidesWithTheScale) {
    m_View.Set(0, 180);
    Paint();
    const CBitmap Clockwise = m_Bitmap;
    m_View.Set(0, 180, PreBalDB::CTypeBase::eCounterClockwise);
    Paint();
    const CRect Left(72, 244, 105, 258);
    const CRect Right(395, 244, 428, 258);
    // "270°" is wider than "90°".
    EXPECT_GT(FindInk(Clockwise, Left, PANEL)->Width(), FindInk(m_Bitmap, Left, PANEL)->Width());
    EXPECT_LT(FindInk(Clockwise, Right, PANEL)->Width(), FindInk(m_Bitmap, Right, PANEL)->Width());
}

TEST_F(WeightBalancingViewTest, TheArrowShowsTheRotation) {
    m_View.Set(0, 180);
    Paint();
    const CBitmap Clockwise = m_Bitmap;
    EXPECT_EQ(At(24, 180), INK);
    m_View.SetRotation(PreBalDB::CTypeBase::eCounterClockwise);
    Paint();
    const auto Changed = FindDifference(Clockwise, m_Bitmap);
    ASSERT_TRUE(Changed);
    EXPECT_GE(Changed->left, 250 - 30);
    EXPECT_LE(Changed->right, 250 + 30);
}

TEST_F(WeightBalancingViewTest, AMeasurementTakesThePlaceOfLabelsLinesAndArrow) {
    m_View.Set(0, 90);
    PaintMeasurement(123.0, true);
    EXPECT_TRUE(HasWeightAt(90)) << "the weights stay";
    EXPECT_TRUE(HasWeightAt(0));
    EXPECT_EQ(FindInk(m_Bitmap, CRect(238, 73, 267, 90), PANEL), std::nullopt) << "no label";
    EXPECT_EQ(FindInk(m_Bitmap, CRect(342, 240, 427, 260), PANEL), std::nullopt) << "no line, no label";
    // The measurement's square has the side Inner = 180.
    EXPECT_TRUE(FindColor(m_Bitmap, CRect(160, 160, 340, 340), INK));
}

TEST_F(WeightBalancingViewTest, WithoutRedrawAllOnlyTheMiddleIsDrawn) {
    m_View.Set(30, 180);
    PaintMeasurement(123.0, true);
    const CBitmap Before = m_Bitmap;
    m_View.Set(90, 270);  // would show if the weights were drawn
    PaintMeasurement(187.0, false);
    const auto Changed = FindDifference(Before, m_Bitmap);
    ASSERT_TRUE(Changed);
    EXPECT_GE(Changed->left, 250 - 90);
    EXPECT_GE(Changed->top, 250 - 90);
    EXPECT_LE(Changed->right, 250 + 90);
    EXPECT_LE(Changed->bottom, 250 + 90);
}

// What the live values draw over must leave nothing behind: it equals a full redraw.
TEST_F(WeightBalancingViewTest, LiveValuesLeaveNothingOfTheFormerOnes) {
    m_View.Set(30, 180);
    PaintMeasurement(8888.0, true);
    PaintMeasurement(1.0, false);
    const CBitmap Live = m_Bitmap;
    m_Bitmap.Create({500, 600});
    PaintMeasurement(1.0, true);
    EXPECT_TRUE(m_Bitmap == Live);
}

TEST_F(WeightBalancingViewTest, WithoutRedrawAllAndWithoutMeasurementNothingIsDrawn) {
    Paint(false);
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt);
}

TEST_F(WeightBalancingViewTest, OnlyTheSquareIsDrawn) {
    m_View.Set(30, 180);
    Paint();
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 490, 490));
}

TEST_F(WeightBalancingViewTest, AnAngleLineForAShownAngleIsAssertedAndDrawnAllTheSame) {
    const int nShown = 50;
    CDC Dc(m_Bitmap);
    m_View.DrawWeight(&Dc, CRect(10, 10, 490, 490), 60, false, true, &nShown);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_EQ(m_Log.GetRecords().back().m_Expression, "!DrawAngleLine");
    EXPECT_EQ(At(186, 30), INK);
    EXPECT_GT(CountMarks(m_Bitmap, 30), 0);
}

// 355 and 5: sectors at both sides of the top; one of the shown sectors of 5 and 5 lies at -5.
TEST_F(WeightBalancingViewTest, SectorsMayCrossTheTop) {
    m_View.Set(5, 5);
    Paint();
    EXPECT_TRUE(HasWeightAt(75));
    EXPECT_TRUE(HasWeightAt(95));
    EXPECT_NEAR(CountInkedDegrees(), 40, 3);
}

TEST_F(WeightBalancingViewTest, APaneWithoutRoomIsNoTrouble) {
    m_View.Set(30, 180);
    CDC Dc(m_Bitmap);
    const double Value = 12.0;
    for (const CSize Size : {CSize(0, 0), CSize(15, 400), CSize(20, 20), CSize(23, 23), CSize(60, 60)}) {
        for (const double* pValue : {static_cast<const double*>(nullptr), &Value}) {
            m_View.Paint(&Dc, CRect(CPoint(5, 5), Size), pValue, pValue, pValue, true, 0);
        }
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
