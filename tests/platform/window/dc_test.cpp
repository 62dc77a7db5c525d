#include "platform/window/dc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <numbers>
#include <optional>

#include "platform/window/display.h"
#include "platform/window/syscolor.h"
#include "tests/support/pixels.h"
#include "tests/support/tempdirectory.h"

namespace {

constexpr COLORREF WHITE = RGB(255, 255, 255);
constexpr COLORREF BLACK = RGB(0, 0, 0);
constexpr COLORREF RED = RGB(255, 0, 0);
constexpr COLORREF GREEN = RGB(0, 255, 0);

TEST(BitmapTest, StartsEmptyAndIsWhiteWhenMade) {
    CBitmap Bitmap;
    EXPECT_EQ(Bitmap.GetSize(), CSize());
    EXPECT_EQ(Bitmap.GetPixel(0, 0), BLACK) << "black outside";
    Bitmap.Create({4, 3});
    EXPECT_EQ(Bitmap.GetSize(), CSize(4, 3));
    EXPECT_EQ(CountPixels(Bitmap, WHITE), 12);
    EXPECT_EQ(Bitmap.GetPixel(4, 0), BLACK);
    EXPECT_EQ(Bitmap.GetPixel(-1, 0), BLACK);
    Bitmap.Create({-4, 3});
    EXPECT_EQ(Bitmap.GetSize(), CSize());
}

TEST(BitmapTest, CopiesAreIndependent) {
    CBitmap First({4, 4});
    CBitmap Second = First;
    CDC(Second).FillSolidRect({0, 0, 1, 1}, RED);
    EXPECT_EQ(First.GetPixel(0, 0), WHITE);
    EXPECT_EQ(Second.GetPixel(0, 0), RED);
    EXPECT_FALSE(First == Second);
    First = Second;
    EXPECT_TRUE(First == Second);
}

TEST(BitmapTest, WhatWasMovedFromIsEmptyAndUsable) {
    CBitmap First({4, 4});
    CBitmap Second = std::move(First);
    EXPECT_EQ(Second.GetSize(), CSize(4, 4));
    EXPECT_EQ(First.GetSize(), CSize());  // NOLINT(bugprone-use-after-move): that is the point
    First.Create({2, 2});
    EXPECT_EQ(First.GetSize(), CSize(2, 2));
}

class PngTest : public testing::Test {
protected:
    CTempDirectory m_Directory;
};

TEST_F(PngTest, APictureComesBackFromItsFileAsItWas) {
    CBitmap Bitmap({20, 10});
    {
        CDC Dc(Bitmap);
        Dc.FillSolidRect({3, 2, 7, 9}, RGB(1, 2, 3));
        Dc.SelectBrush(CBrush(RGB(200, 100, 50)));
        Dc.Ellipse({8, 0, 20, 10});
    }
    ASSERT_TRUE(Bitmap.SavePng(m_Directory.At("a.png")));
    CBitmap Loaded;
    ASSERT_TRUE(Loaded.LoadPng(m_Directory.At("a.png")));
    EXPECT_TRUE(Loaded == Bitmap);
}

TEST_F(PngTest, FailuresAreReportedAndLeaveTheBitmap) {
    CBitmap Bitmap({2, 2});
    EXPECT_FALSE(Bitmap.SavePng(m_Directory.At("no/such/directory.png")));
    EXPECT_FALSE(Bitmap.LoadPng(m_Directory.At("missing.png")));
    std::ofstream(m_Directory.At("bad.png")) << "no picture";
    EXPECT_FALSE(Bitmap.LoadPng(m_Directory.At("bad.png")));
    EXPECT_EQ(Bitmap.GetSize(), CSize(2, 2));
    EXPECT_FALSE(CBitmap().SavePng(m_Directory.At("empty.png")));
}

class DcTest : public testing::Test {
protected:
    CBitmap m_Bitmap{CSize(100, 60)};
};

TEST_F(DcTest, AFilledRectangleEndsJustBeforeItsRightAndBottom) {
    CDC(m_Bitmap).FillSolidRect({10, 20, 13, 22}, RED);
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 20, 13, 22));
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 6);
    CDC(m_Bitmap).FillSolidRect({50, 50, 40, 55}, GREEN);
    EXPECT_EQ(CountPixels(m_Bitmap, GREEN), 0) << "an inverted rectangle is empty";
}

TEST_F(DcTest, LinesIncludeBothEnds) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 1, RED));
    Dc.MoveTo({10, 10});
    Dc.LineTo({20, 10});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 21, 11));
    Dc.LineTo({20, 30});  // goes on from there
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 21, 31));
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 11 + 20) << "sharp, and one pixel wide";
}

TEST_F(DcTest, DiagonalLinesAreSharp) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 1, RED));
    Dc.MoveTo({5, 5});
    Dc.LineTo({25, 25});
    for (int i = 5; i <= 25; ++i) {
        EXPECT_EQ(Dc.GetPixel({i, i}), RED);
    }
    EXPECT_EQ(CountPixels(m_Bitmap, WHITE), 100 * 60 - 21);
}

TEST_F(DcTest, DottedLinesHaveGapsAndNullPensDrawNothing) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eNull, 1, RED));
    Dc.MoveTo({0, 5});
    Dc.LineTo({90, 5});
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt);
    Dc.SelectPen(CPen(CPen::eDot, 1, RED));
    Dc.MoveTo({0, 5});
    Dc.LineTo({90, 5});
    const int nDots = CountPixels(m_Bitmap, RED);
    EXPECT_GT(nDots, 30);
    EXPECT_LT(nDots, 60);
}

TEST_F(DcTest, APolylineConnectsItsPoints) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 1, RED));
    Dc.Polyline(std::array{CPoint(1, 1), CPoint(1, 9), CPoint(9, 9)});
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 17);
    Dc.Polyline({});
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 17);
}

TEST_F(DcTest, AnEllipseLiesInsideItsRectangleOutlineIncluded) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 2, BLACK));
    Dc.SelectBrush(CBrush(GREEN));
    Dc.Ellipse({10, 10, 51, 51});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 51, 51));
    EXPECT_EQ(Dc.GetPixel({30, 30}), GREEN);
    EXPECT_TRUE(IsAlmost(Dc.GetPixel({30, 10}), BLACK));
    EXPECT_TRUE(IsAlmost(Dc.GetPixel({30, 11}), BLACK));
    EXPECT_TRUE(IsAlmost(Dc.GetPixel({30, 12}), GREEN)) << "two pixels of outline, not three";
    EXPECT_TRUE(IsAlmost(Dc.GetPixel({50, 30}), BLACK));
    EXPECT_EQ(Dc.GetPixel({11, 11}), WHITE) << "the corner stays free";
}

TEST_F(DcTest, AnEmptyBrushLeavesTheInsideOfAnEllipse) {
    CDC Dc(m_Bitmap);
    Dc.Ellipse({10, 10, 51, 51});
    EXPECT_EQ(Dc.GetPixel({30, 30}), WHITE);
}

/// The pixel at Degrees (0 right, counter-clockwise) and Radius from the middle of the bitmap below.
CPoint At(double Degrees, double Radius) {
    const double a = Degrees * std::numbers::pi / 180.0;
    return {50 + static_cast<int>(std::lround(std::cos(a) * Radius)),
            50 - static_cast<int>(std::lround(std::sin(a) * Radius))};
}

TEST(DcCircleTest, AnArcRunsCounterClockwiseFromItsStart) {
    CBitmap Bitmap({101, 101});
    CDC Dc(Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 3, RED));
    Dc.Arc({50, 50}, 40, 310.0, 280.0);
    for (const int nOn : {315, 0, 90, 180, 225}) {
        EXPECT_EQ(Dc.GetPixel(At(nOn, 40)), RED) << nOn;
    }
    for (const int nOff : {235, 270, 303}) {
        EXPECT_EQ(Dc.GetPixel(At(nOff, 40)), WHITE) << nOff;
    }
    EXPECT_EQ(Dc.GetPixel(At(0, 36)), WHITE);
    EXPECT_EQ(Dc.GetPixel(At(0, 44)), WHITE);
}

TEST(DcCircleTest, ASectorOfARingKeepsToItsAnglesAndRadii) {
    CBitmap Bitmap({101, 101});
    CDC Dc(Bitmap);
    Dc.FillRing({50, 50}, 20, 40, 80.0, 20.0, RED);
    EXPECT_EQ(Dc.GetPixel(At(90, 30)), RED);
    EXPECT_EQ(Dc.GetPixel(At(83, 30)), RED);
    EXPECT_EQ(Dc.GetPixel(At(97, 30)), RED);
    EXPECT_EQ(Dc.GetPixel(At(75, 30)), WHITE);
    EXPECT_EQ(Dc.GetPixel(At(105, 30)), WHITE);
    EXPECT_EQ(Dc.GetPixel(At(90, 18)), WHITE);
    EXPECT_EQ(Dc.GetPixel(At(90, 42)), WHITE);
    EXPECT_EQ(Dc.GetPixel(At(270, 30)), WHITE);
}

// From 80 to 100 degrees at the inner circle, but from 60 to 120 at the outer one.
TEST(DcCircleTest, ARingsEdgesNeedNotPointAtTheCentre) {
    CBitmap Bitmap({101, 101});
    CDC Dc(Bitmap);
    Dc.FillRing({50, 50}, 20, 40, {80.0, 60.0}, {100.0, 120.0}, RED);
    for (const int nDegrees : {83, 90, 97}) {
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 22)), RED);
    }
    for (const int nDegrees : {65, 90, 115}) {
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 38)), RED);
    }
    for (const int nDegrees : {65, 115}) {
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 22)), WHITE);
    }
    for (const int nDegrees : {50, 130, 270}) {
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 38)), WHITE);
    }
}

TEST(DcCircleTest, AWholeRingLeavesItsHole) {
    CBitmap Bitmap({101, 101});
    CDC Dc(Bitmap);
    Dc.FillRing({50, 50}, 20, 40, 0.0, 360.0, RED);
    for (int nDegrees = 0; nDegrees < 360; nDegrees += 30) {
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 30)), RED);
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 17)), WHITE);
        EXPECT_EQ(Dc.GetPixel(At(nDegrees, 43)), WHITE);
    }
}

TEST(DcCircleTest, RingsWithoutAnAreaDrawNothing) {
    CBitmap Bitmap({101, 101});
    CDC Dc(Bitmap);
    Dc.FillRing({50, 50}, 40, 40, 0.0, 360.0, RED);
    Dc.FillRing({50, 50}, 40, 20, 0.0, 90.0, RED);
    Dc.FillRing({50, 50}, -9, -3, 0.0, 360.0, RED);
    EXPECT_EQ(FindInk(Bitmap), std::nullopt);
    Dc.FillRing({50, 50}, 0, 40, 0.0, 90.0, RED);  // a slice of cake
    EXPECT_EQ(Dc.GetPixel(At(45, 3)), RED);
}

TEST_F(DcTest, ClippingOnlyEverNarrowsAndIsRestored) {
    CDC Dc(m_Bitmap);
    const int Saved = Dc.SaveDC();
    Dc.IntersectClipRect({10, 10, 40, 40});
    Dc.IntersectClipRect({30, 0, 60, 60});
    Dc.FillSolidRect({0, 0, 100, 60}, RED);
    EXPECT_EQ(FindInk(m_Bitmap), CRect(30, 10, 40, 40));
    EXPECT_TRUE(Dc.RestoreDC(Saved));
    Dc.FillSolidRect({0, 0, 100, 60}, GREEN);
    EXPECT_EQ(CountPixels(m_Bitmap, GREEN), 100 * 60);
}

TEST_F(DcTest, RestoreBringsBackPenBrushFontAndColours) {
    CDC Dc(m_Bitmap);
    Dc.SelectPen(CPen(CPen::eSolid, 1, RED));
    Dc.SelectBrush(CBrush(RED));
    Dc.SelectFont(CFont("Arial", 20));
    const int nHeight = Dc.GetFontHeight();
    const int Saved = Dc.SaveDC();
    Dc.SelectPen(CPen(CPen::eSolid, 5, GREEN));
    Dc.SelectBrush(CBrush(GREEN));
    Dc.SelectFont(CFont("Arial", 40));
    EXPECT_NE(Dc.GetFontHeight(), nHeight);
    EXPECT_TRUE(Dc.RestoreDC(Saved));
    EXPECT_EQ(Dc.GetFontHeight(), nHeight);
    Dc.Ellipse({10, 10, 50, 50});
    EXPECT_EQ(CountPixels(m_Bitmap, GREEN), 0);
    EXPECT_EQ(Dc.GetPixel({30, 30}), RED);
}

TEST_F(DcTest, RestoringAnOuterStateDropsTheInnerOnes) {
    CDC Dc(m_Bitmap);
    const int Outer = Dc.SaveDC();
    Dc.IntersectClipRect({0, 0, 10, 10});
    const int Inner = Dc.SaveDC();
    Dc.IntersectClipRect({0, 0, 5, 5});
    EXPECT_TRUE(Dc.RestoreDC(Outer));
    EXPECT_FALSE(Dc.RestoreDC(Inner));
    EXPECT_FALSE(Dc.RestoreDC(Outer)) << "each state serves once";
    EXPECT_FALSE(Dc.RestoreDC(0));
    EXPECT_FALSE(Dc.RestoreDC(-1));
    Dc.FillSolidRect({0, 0, 100, 60}, RED);
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 100 * 60);
}

TEST_F(DcTest, BitBltCopiesAPartWithoutScaling) {
    CBitmap Source({20, 20});
    CDC(Source).FillSolidRect({5, 5, 10, 10}, RED);
    CDC(m_Bitmap).BitBlt({30, 30, 40, 40}, Source, {5, 5});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(30, 30, 35, 35));
}

TEST_F(DcTest, BitBltOfWhatTheSourceDoesNotHaveLeavesTheTarget) {
    CBitmap Source({20, 20});
    CDC(Source).FillSolidRect({0, 0, 20, 20}, RED);
    CDC Dc(m_Bitmap);
    Dc.BitBlt({30, 30, 50, 50}, Source, {-5, -5});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(35, 35, 50, 50));
    Dc.BitBlt({0, 0, 10, 10}, Source, {100, 100});
    Dc.BitBlt({0, 0, 10, 10}, CBitmap(), {0, 0});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(35, 35, 50, 50));
}

TEST_F(DcTest, BitBltWithinOneBitmapMayOverlap) {
    CDC Dc(m_Bitmap);
    Dc.FillSolidRect({10, 10, 20, 20}, RED);
    Dc.BitBlt({15, 10, 25, 20}, m_Bitmap, {10, 10});
    EXPECT_EQ(FindInk(m_Bitmap), CRect(10, 10, 25, 20));
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 150);
}

TEST_F(DcTest, AnEmptyBitmapTakesAnyDrawing) {
    CBitmap Empty;
    CDC Dc(Empty);
    const int Saved = Dc.SaveDC();
    Dc.FillSolidRect({0, 0, 5, 5}, RED);
    Dc.LineTo({9, 9});
    Dc.Ellipse({0, 0, 9, 9});
    Dc.Arc({5, 5}, 3, 0, 90);
    Dc.FillRing({5, 5}, 1, 3, 0, 90, RED);
    Dc.BitBlt({0, 0, 5, 5}, m_Bitmap, {});
    Dc.IntersectClipRect({0, 0, 2, 2});
    CRect Rect(0, 0, 5, 5);
    EXPECT_GT(Dc.DrawText("x", Rect, DT_SINGLELINE), 0);
    Dc.TextOut({1, 1}, "x");
    EXPECT_TRUE(Dc.RestoreDC(Saved));
    EXPECT_EQ(Empty.GetSize(), CSize());
}

// A font's height is its cell; the face has no whole size for every height, so a pixel or two may be missing.
TEST_F(DcTest, FontsFitTheirCellHeight) {
    CDC Dc(m_Bitmap);
    for (int nHeight = 4; nHeight < 200; ++nHeight) {
        Dc.SelectFont(CFont("Arial", nHeight));
        EXPECT_LE(Dc.GetFontHeight(), nHeight);
        EXPECT_GE(Dc.GetFontHeight(), nHeight - 2) << nHeight;
    }
}

TEST_F(DcTest, AFontIsNeverSmallerThanItsSmallestSize) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 0));
    EXPECT_GE(Dc.GetFontHeight(), 1);
    Dc.SelectFont(CFont("Arial", -5));
    EXPECT_GE(Dc.GetFontHeight(), 1);
}

TEST_F(DcTest, BoldTextIsWider) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 20));
    const int nNormal = Dc.GetTextExtent("Unbalance").cx;
    Dc.SelectFont(CFont("Arial", 20, CFont::BOLD));
    EXPECT_GT(Dc.GetTextExtent("Unbalance").cx, nNormal);
}

TEST_F(DcTest, CalcRectMeasuresAndDrawsNothing) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    CRect Rect(10, 20, 11, 21);
    const int nHeight = Dc.DrawText("Plane 1", Rect, DT_SINGLELINE | DT_CALCRECT | DT_RIGHT | DT_BOTTOM);
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt);
    EXPECT_EQ(Rect.TopLeft(), CPoint(10, 20));
    EXPECT_EQ(Rect.Size(), Dc.GetTextExtent("Plane 1"));
    EXPECT_EQ(nHeight, Dc.GetFontHeight());
}

TEST_F(DcTest, LinesOfTextStackUnlessASingleLineIsWanted) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    CRect Rect(0, 0, 100, 60);
    EXPECT_EQ(Dc.DrawText("a\nb", Rect, DT_CALCRECT), 2 * Dc.GetFontHeight());
    EXPECT_EQ(Dc.DrawText("a\nb", Rect, DT_CALCRECT | DT_SINGLELINE), Dc.GetFontHeight());
}

/// Where the ink of a text lies in a rectangle of 80 by 40 at (10, 10).
CRect DrawIn(CBitmap& rBitmap, unsigned Format) {
    CDC Dc(rBitmap);
    Dc.SelectFont(CFont("Arial", 16));
    CRect Rect(10, 10, 90, 50);
    Dc.DrawText("HH", Rect, Format);
    return FindInk(rBitmap).value_or(CRect());
}

TEST_F(DcTest, Flag1IsRightAndFlag2IsCentred) {
    CBitmap Right({100, 60});
    CBitmap Centred({100, 60});
    const CRect AtLeft = DrawIn(m_Bitmap, 36);
    const CRect AtRight = DrawIn(Right, 37);
    const CRect AtCentre = DrawIn(Centred, 38);
    EXPECT_NEAR(AtLeft.left, 10, 2);
    EXPECT_NEAR(AtRight.right, 90, 2);
    EXPECT_NEAR(AtCentre.CenterPoint().x, 50, 1);
    EXPECT_EQ(AtLeft.top, AtRight.top);
}

TEST_F(DcTest, SingleLinesStandAtTopMiddleOrBottom) {
    CBitmap Middle({100, 60});
    CBitmap Bottom({100, 60});
    const CRect AtTop = DrawIn(m_Bitmap, DT_SINGLELINE | DT_TOP);
    const CRect AtMiddle = DrawIn(Middle, DT_SINGLELINE | DT_VCENTER);
    const CRect AtBottom = DrawIn(Bottom, DT_SINGLELINE | DT_BOTTOM);
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    const int nFree = 40 - Dc.GetFontHeight();
    EXPECT_EQ(AtMiddle.top - AtTop.top, nFree / 2);
    EXPECT_EQ(AtBottom.top - AtTop.top, nFree);
    EXPECT_LE(AtBottom.bottom, 50);
}

TEST_F(DcTest, TextIsNotCutAtItsRectangle) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    CRect Rect(40, 20, 45, 25);
    Dc.DrawText("HHHH", Rect, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
    const CRect Ink = FindInk(m_Bitmap).value_or(CRect());
    EXPECT_LT(Ink.left, 40);
    EXPECT_GT(Ink.right, 45);
}

TEST_F(DcTest, OpaqueTextFillsItsBackground) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    Dc.SetTextColor(WHITE);
    Dc.SetBkColor(GREEN);
    CRect Rect(10, 10, 90, 50);
    Dc.DrawText("HH", Rect, DT_SINGLELINE);
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt) << "transparent from the start";
    Dc.SetBkMode(CDC::eOpaque);
    Dc.DrawText("HH", Rect, DT_SINGLELINE);
    EXPECT_EQ(FindInk(m_Bitmap), CRect(CPoint(10, 10), Dc.GetTextExtent("HH")));
}

TEST_F(DcTest, TextOutStandsOnItsBaseLineAndTurnsWithTheEscapement) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 16));
    Dc.TextOut({20, 40}, "HH");
    const CRect Level = FindInk(m_Bitmap).value_or(CRect());
    EXPECT_EQ(Level.bottom, 40);
    EXPECT_NEAR(Level.left, 20, 2);

    CBitmap Turned({100, 60});
    CDC TurnedDc(Turned);
    TurnedDc.SelectFont(CFont("Arial", 16, CFont::NORMAL, 900));
    TurnedDc.TextOut({50, 50}, "HH");
    const CRect Upright = FindInk(Turned).value_or(CRect());
    EXPECT_GT(Upright.Height(), Upright.Width()) << "a quarter turn counter-clockwise";
    EXPECT_NEAR(Upright.bottom, 50, 2);
    EXPECT_NEAR(Upright.right, 50, 1);
}

TEST_F(DcTest, TheSameDrawingIsTheSamePicture) {
    CBitmap Second({100, 60});
    for (CBitmap* pBitmap : {&m_Bitmap, &Second}) {
        CDC Dc(*pBitmap);
        CRect Rect(0, 0, 100, 60);
        Dc.SelectFont(CFont("Arial", 24, CFont::BOLD));
        Dc.DrawText("123°", Rect, 38);
        Dc.Arc({50, 30}, 24, 310, 280);
    }
    EXPECT_TRUE(m_Bitmap == Second);
}

TEST(DcControlsTest, WordsWrapAtTheRectanglesEdgeAndTheHeightIsMeasured) {
    CBitmap Picture(CSize(200, 100));
    CDC DC(Picture);
    DC.SelectFont(CFont("Arial", 14));
    const int nLine = DC.GetFontHeight();
    const int nWidth = DC.GetTextExtent("one two").cx;
    CRect Rect(0, 0, nWidth, 0);
    EXPECT_EQ(DC.DrawText("one two three", Rect, DT_WORDBREAK | DT_CALCRECT), 2 * nLine);
    EXPECT_EQ(Rect, CRect(0, 0, nWidth, 2 * nLine));
    Rect = CRect(0, 0, nWidth - 1, 0);
    EXPECT_EQ(DC.DrawText("one two three", Rect, DT_WORDBREAK | DT_CALCRECT), 3 * nLine);
    Rect = CRect(0, 0, 1, 0);
    EXPECT_EQ(DC.DrawText("one\n\ntwo", Rect, DT_WORDBREAK | DT_CALCRECT), 3 * nLine)
        << "an empty line stays";
    EXPECT_EQ(Rect.right, std::max(DC.GetTextExtent("one").cx, DC.GetTextExtent("two").cx))
        << "a word is never broken";
    Rect = CRect(0, 0, 1, 0);
    EXPECT_EQ(DC.DrawText("one two", Rect, DT_WORDBREAK | DT_SINGLELINE | DT_CALCRECT), nLine);
}

TEST(DcControlsTest, ALineThatIsTooLongEndsWithDots) {
    CBitmap Picture(CSize(200, 30));
    CDC DC(Picture);
    DC.SelectFont(CFont("Arial", 14));
    CRect Rect(0, 0, 60, 20);
    DC.DrawText("a label much too long", Rect, DT_SINGLELINE | DT_END_ELLIPSIS);
    const auto Ink = FindInk(Picture);
    ASSERT_TRUE(Ink);
    EXPECT_LE(Ink->right, 60);
    EXPECT_GT(Ink->right, 45);
}

TEST(DcControlsTest, InvertingTwiceBringsTheColoursBack) {
    CBitmap Picture(CSize(20, 20));
    CDC DC(Picture);
    DC.FillSolidRect(CRect(0, 0, 20, 20), RGB(10, 200, 255));
    DC.InvertRect(CRect(5, 0, 7, 20));
    EXPECT_EQ(Picture.GetPixel(4, 3), RGB(10, 200, 255));
    EXPECT_EQ(Picture.GetPixel(5, 3), RGB(245, 55, 0));
    EXPECT_EQ(Picture.GetPixel(6, 3), RGB(245, 55, 0));
    EXPECT_EQ(Picture.GetPixel(7, 3), RGB(10, 200, 255));
    DC.InvertRect(CRect(5, 0, 7, 20));
    EXPECT_EQ(CountPixels(Picture, RGB(10, 200, 255)), 400);
}

TEST(DcControlsTest, EdgesAndFramesLieInside) {
    CBitmap Picture(CSize(20, 20));
    CDC DC(Picture);
    DC.FrameRect(CRect(2, 2, 18, 18), RGB(255, 0, 0));
    EXPECT_EQ(CountPixels(Picture, RGB(255, 0, 0)), 4 * 15);
    EXPECT_EQ(FindColor(Picture, GetWhole(Picture), RGB(255, 0, 0)), CRect(2, 2, 18, 18));
    DC.FillSolidRect(GetWhole(Picture), RGB(1, 1, 1));
    DC.DrawEdge(CRect(2, 2, 18, 18), CDC::eSunken);
    EXPECT_EQ(Picture.GetPixel(2, 10), GetSysColor(SysColor::eShadow));
    EXPECT_EQ(Picture.GetPixel(3, 10), GetSysColor(SysColor::eDarkShadow));
    EXPECT_EQ(Picture.GetPixel(17, 10), GetSysColor(SysColor::eHighlight));
    EXPECT_EQ(Picture.GetPixel(4, 10), RGB(1, 1, 1));
    DC.FillSolidRect(GetWhole(Picture), RGB(255, 255, 255));
    DC.DrawFocusRect(CRect(2, 2, 18, 18));
    EXPECT_EQ(FindInk(Picture), CRect(2, 2, 18, 18));
    EXPECT_NEAR(CountPixels(Picture, RGB(0, 0, 0)), 30, 4) << "every other pixel";
}

TEST(DcControlsTest, APictureOfAnotherScaleKeepsItsSize) {
    CBitmap Fine;
    Fine.Create(CSize(10, 10), 2.0);
    EXPECT_EQ(Fine.GetSize(), CSize(10, 10));
    {
        CDC DC(Fine);
        DC.FillSolidRect(CRect(0, 0, 5, 10), RGB(255, 0, 0));
    }
    EXPECT_EQ(Fine.GetPixel(4, 9), RGB(255, 0, 0));
    EXPECT_EQ(Fine.GetPixel(5, 9), RGB(255, 255, 255));
    EXPECT_EQ(Fine.GetPixel(10, 9), RGB(0, 0, 0)) << "outside";
    CBitmap Coarse(CSize(20, 20));
    CDC(Coarse).BitBlt(CRect(3, 3, 13, 13), Fine, CPoint());
    EXPECT_EQ(FindColor(Coarse, GetWhole(Coarse), RGB(255, 0, 0)), CRect(3, 3, 8, 13));
}

TEST(DcControlsTest, ADisplayOfFewColoursHasTheGreyFace) {
    CBitmap Picture(CSize(1, 1));
    EXPECT_EQ(CDC(Picture).GetBitsPerPixel(), 24);
    const COLORREF Face = GetSysColor(SysColor::eFace);
    SetDisplayBitsPerPixel(8);
    EXPECT_EQ(CDC(Picture).GetBitsPerPixel(), 8);
    EXPECT_EQ(GetSysColor(SysColor::eFace), RGB(0xC0, 0xC0, 0xC0));
    SetDisplayBitsPerPixel(24);
    EXPECT_EQ(GetSysColor(SysColor::eFace), Face);
}

}  // namespace
