#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>

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

class CTestView : public CScrewBalancingView {
public:
    void Set(int nHoles, std::initializer_list<CScrew> Screws,
             Direction Scaling = PreBalDB::CTypeBase::eClockwise) {
        m_NumberOfHoles = nHoles;
        m_ShownScrews = Base::CWDArray<CScrew>(Screws);
        m_ScalingDirection = Scaling;
    }
};

/// A pane of 300 by 500: Side 280, left and top edge 10, so the middle is (150, 150), the circles have the
/// radii 139 and 105, the holes' circle (139 + 105) / 2 = 122, a hole the diameter 34 / 3 * 2 = 22.
class ScrewBalancingViewTest : public testing::Test {
protected:
    static constexpr CRect PANE{0, 0, 300, 500};
    static constexpr CPoint CENTER{150, 150};
    static constexpr int RADIUS = 122;
    static constexpr int HOLE = 22;

    void Paint(bool bRedrawAll = true) {
        CDC Dc(m_Bitmap);
        m_View.Paint(&Dc, PANE, nullptr, nullptr, nullptr, bRedrawAll, 0);
    }
    void PaintMeasurement(double Magnitude, bool bRedrawAll) {
        const double Angle = 45.0;
        CDC Dc(m_Bitmap);
        m_View.Paint(&Dc, PANE, &Magnitude, &Angle, &Magnitude, bRedrawAll, 0);
    }
    /// Colour inside the hole in that direction (clockwise from the top, degrees), at its upper edge.
    COLORREF AtHole(int Clockwise) const {
        const CPoint Point = PolarPoint(CENTER, RADIUS, 90 - Clockwise);
        return m_Bitmap.GetPixel(Point.x, Point.y - HOLE * 4 / 11);
    }
    /// Ink of a text inside the inner circle, in a sector of 20 degrees.
    bool HasTextAt(int Clockwise) const {
        for (int nRadius = 60; nRadius < 95; ++nRadius) {
            for (int nOffset = -5; nOffset <= 5; ++nOffset) {
                const CPoint Point = PolarPoint(CENTER, nRadius, 90 - Clockwise + nOffset);
                if (m_Bitmap.GetPixel(Point.x, Point.y) != PANEL) {
                    return true;
                }
            }
        }
        return false;
    }
    /// Of hole number Hole of 12, in the sense of CScrew.
    std::string GetText(int Hole) const {
        return m_View.GetWeightFromAngle((Hole - 1) * std::numbers::pi / 6);
    }

    CTestInstallation m_Installation;
    CBitmap m_Bitmap{CSize(300, 500)};
    CTestView m_View;
    CLogCapture m_Log;
};

TEST_F(ScrewBalancingViewTest, ThereAreTwelveHolesFromTheStart) {
    Paint();
    for (int nAngle = 0; nAngle < 360; nAngle += 30) {
        EXPECT_EQ(AtHole(nAngle), PANEL) << nAngle;
        const CPoint Between = PolarPoint(CENTER, RADIUS, nAngle + 15);
        EXPECT_EQ(m_Bitmap.GetPixel(Between.x, Between.y), RING) << nAngle;
    }
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 290, 290)) << "only the square is drawn";
}

TEST_F(ScrewBalancingViewTest, HolesAreFilledWhereTheScrewsAre) {
    m_View.Set(12, {{1, 2.5, ""}, {4, 2.5, ""}});
    Paint();
    EXPECT_EQ(AtHole(0), INK) << "hole 1 is at the top";
    EXPECT_EQ(AtHole(90), INK) << "hole 4 at the right";
    EXPECT_EQ(AtHole(30), PANEL);
    EXPECT_EQ(AtHole(270), PANEL);
}

// Screws always count clockwise, the numbers in the circles in the sense of the rotor.
TEST_F(ScrewBalancingViewTest, WithDirectionOneTheScrewOfHoleTwoCarriesTheNumberTwelve) {
    m_View.Set(12, {{2, 2.5, ""}}, PreBalDB::CTypeBase::eCounterClockwise);
    Paint();
    EXPECT_EQ(AtHole(30), INK) << "at the same place";
    EXPECT_EQ(AtHole(330), PANEL);
    EXPECT_TRUE(HasTextAt(30));
    EXPECT_FALSE(HasTextAt(330));

    // The circle is that of the last hole of a clockwise ring that has its twelfth hole there.
    const auto CutHole = [](const CBitmap& rSource, int Clockwise) {
        const CPoint Middle = PolarPoint(CENTER, RADIUS, 90 - Clockwise);
        CBitmap Hole({16, 16});
        CDC(Hole).BitBlt(CRect(0, 0, 16, 16), rSource, {Middle.x - 8, Middle.y - 8});
        return Hole;
    };
    const CBitmap Shown = CutHole(m_Bitmap, 30);
    m_View.Set(12, {{2, 2.5, ""}});
    Paint();
    EXPECT_FALSE(CutHole(m_Bitmap, 30) == Shown) << "2";
    const auto CountWhite = [](const CBitmap& rHole) {
        int nCount = 0;
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x) {
                nCount += GetRValue(rHole.GetPixel(x, y)) > 128 ? 1 : 0;
            }
        }
        return nCount;
    };
    EXPECT_GT(CountWhite(Shown), CountWhite(CutHole(m_Bitmap, 30))) << "two digits have more white than one";
}

TEST_F(ScrewBalancingViewTest, HoleOneIsAtTheTopInBothSenses) {
    for (const auto Scaling : {PreBalDB::CTypeBase::eClockwise, PreBalDB::CTypeBase::eCounterClockwise}) {
        m_View.Set(7, {{1, 2.5, ""}}, Scaling);
        Paint();
        EXPECT_EQ(AtHole(0), INK);
    }
}

TEST_F(ScrewBalancingViewTest, TwentyFourHolesAreAllDrawn) {
    m_View.Set(24, {{3, 2.5, ""}});
    Paint();
    EXPECT_EQ(AtHole(30), INK);
    EXPECT_EQ(AtHole(0), PANEL);
    EXPECT_EQ(AtHole(345), PANEL);
}

TEST_F(ScrewBalancingViewTest, OfTwentyFiveHolesOnlyThoseWithScrewsAreDrawn) {
    m_View.Set(25, {{1, 2.5, ""}});
    Paint();
    EXPECT_EQ(AtHole(0), INK);
    for (int k = 1; k < 25; ++k) {
        EXPECT_EQ(AtHole(k * 360 / 25), RING) << k;
    }
}

TEST_F(ScrewBalancingViewTest, AScrewWithoutANameShowsItsWeight) {
    m_View.Set(12, {{2, 250.0, ""}, {3, 2.5, "  "}, {4, 99.99, ""}, {5, 100.0, ""}, {6, 99.999, ""}});
    EXPECT_EQ(GetText(2), "250g");
    EXPECT_EQ(GetText(3), "2.50g") << "white space is no name";
    EXPECT_EQ(GetText(4), "99.99g");
    EXPECT_EQ(GetText(5), "100g");
    EXPECT_EQ(GetText(6), "100.00g") << "it is below 100 all the same";
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ScrewBalancingViewTest, AScrewWithANameShowsThat) {
    m_View.Set(12, {{2, 2.5, "M6"}});
    EXPECT_EQ(GetText(2), "M6");
}

TEST_F(ScrewBalancingViewTest, OfTwoScrewsInAHoleTheLastOneWithAWeightCounts) {
    m_View.Set(12, {{2, 2.5, "M6"}, {2, 3.5, "M8"}, {2, 0.0, "M10"}});
    EXPECT_EQ(GetText(2), "M8");
}

TEST_F(ScrewBalancingViewTest, AScrewOfNoWeightHasACircleButNoText) {
    m_View.Set(12, {{2, 0.0, "M6"}});
    Paint();
    EXPECT_EQ(AtHole(30), INK);
    EXPECT_FALSE(HasTextAt(30));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Empty string"));
    EXPECT_EQ(m_Log.GetRecords().back().m_Expression, "!WeightString.IsEmpty()");
}

TEST_F(ScrewBalancingViewTest, AScrewThatIsNotPlacedIsNotDrawn) {
    m_View.Set(12, {{0, 2.5, "M6"}});
    Paint();
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(10, 10, 290, 45), INK), 0);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ScrewBalancingViewTest, TheTextPointsAtItsHole) {
    for (int nHole = 1; nHole <= 12; ++nHole) {
        m_View.Set(12, {{static_cast<std::uint16_t>(nHole), 2.5, "M6x12"}});
        Paint();
        for (int nOther = 1; nOther <= 12; ++nOther) {
            EXPECT_EQ(HasTextAt((nOther - 1) * 30), nOther == nHole) << nHole << " " << nOther;
        }
    }
}

// Capitals and digits are about two thirds of a cell of 12 high. Hole 4 is at the right, so its text is
// level.
TEST_F(ScrewBalancingViewTest, LongNamesAreShortenedAndStayLegible) {
    for (const char* pName :
         {"M6x12-A2-70", "ISO 4762 M6x12-12.9 zinc", "Schraube für die Außenseite hinten"}) {
        m_View.Set(12, {{4, 2.5, pName}});
        Paint();
        const auto Text = FindInk(m_Bitmap, CRect(150 + 30, 150 - 12, 150 + 100, 150 + 13), PANEL);
        ASSERT_TRUE(Text) << pName;
        EXPECT_GE(Text->Height(), 7) << pName;
        EXPECT_GE(Text->left, 150 + 31) << pName << " keeps clear of the arrow";
        EXPECT_LE(Text->right, 150 + 97) << pName;
    }
}

TEST_F(ScrewBalancingViewTest, ThereAreNoScaleLabels) {
    Paint();
    EXPECT_EQ(FindInk(m_Bitmap, CRect(140, 50, 170, 70), PANEL), std::nullopt);
}

TEST_F(ScrewBalancingViewTest, AMeasurementTakesThePlaceOfArrowAndTexts) {
    m_View.Set(12, {{2, 2.5, ""}, {6, 2.5, ""}});
    PaintMeasurement(123.0, true);
    EXPECT_EQ(AtHole(30), INK) << "the screws stay";
    EXPECT_FALSE(HasTextAt(30) || HasTextAt(150));
    EXPECT_TRUE(FindColor(m_Bitmap, CRect(98, 98, 202, 202), INK));
}

TEST_F(ScrewBalancingViewTest, WithoutRedrawAllOnlyTheMiddleIsDrawn) {
    m_View.Set(12, {{2, 2.5, ""}});
    PaintMeasurement(123.0, true);
    const CBitmap Before = m_Bitmap;
    m_View.Set(24, {{5, 2.5, ""}});  // would show if the holes were drawn
    PaintMeasurement(187.0, false);
    const auto Changed = FindDifference(Before, m_Bitmap);
    ASSERT_TRUE(Changed);
    EXPECT_GE(Changed->left, 150 - 52);
    EXPECT_GE(Changed->top, 150 - 52);
    EXPECT_LE(Changed->right, 150 + 52);
    EXPECT_LE(Changed->bottom, 150 + 52);
}

TEST_F(ScrewBalancingViewTest, WithoutRedrawAllTheTextsAreDrawnAllTheSame) {
    m_View.Set(12, {{2, 2.5, ""}});
    CDC(m_Bitmap).FillSolidRect(GetWhole(m_Bitmap), PANEL);
    Paint(false);
    EXPECT_TRUE(HasTextAt(30));
    EXPECT_EQ(AtHole(30), PANEL) << "but no hole";
}

TEST_F(ScrewBalancingViewTest, ARingWithoutHolesIsJustARing) {
    for (const int nHoles : {0, -1}) {
        m_View.Set(nHoles, {{1, 2.5, ""}});
        Paint();
        EXPECT_EQ(AtHole(0), RING);
    }
}

TEST_F(ScrewBalancingViewTest, APaneWithoutRoomIsNoTrouble) {
    m_View.Set(12, {{2, 2.5, ""}});
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
