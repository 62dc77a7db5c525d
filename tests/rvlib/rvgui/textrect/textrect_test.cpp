#include "rvlib/rvgui/textrect/textrect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/logcapture.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr COLORREF WHITE = RGB(255, 255, 255);
constexpr COLORREF PANEL = RGB(236, 233, 216);
constexpr COLORREF RED = RGB(255, 0, 0);

class TextRectTest : public testing::Test {
protected:
    TextRectTest() { m_Text.SetFaceName("Arial"); }

    int GetFittedHeight(const std::string& rText, const std::string& rSizingText, CSize Size) {
        m_Text.SetText(rText);
        m_Text.SetSizingText(rSizingText);
        CFont Font;
        CDC Dc(m_Bitmap);
        m_Text.CalculateFont(&Dc, CRect(CPoint(7, 9), Size), Font);
        return Font.m_Height;
    }
    void Paint(const CRect& rRect) {
        CDC Dc(m_Bitmap);
        m_Text.Paint(&Dc, rRect);
    }

    CBitmap m_Bitmap{CSize(200, 100)};
    CTextRect m_Text;
    CLogCapture m_Log;
};

TEST_F(TextRectTest, AlignmentSetsTheFormat) {
    EXPECT_EQ(m_Text.GetFormat(), 36u) << "left from the start";
    m_Text.SetAlignment(1);
    EXPECT_EQ(m_Text.GetFormat(), 38u);
    m_Text.SetAlignment(2);
    EXPECT_EQ(m_Text.GetFormat(), 37u);
    m_Text.SetAlignment(0);
    EXPECT_EQ(m_Text.GetFormat(), 36u);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TextRectTest, AnUnknownAlignmentIsAssertedAndChangesNothing) {
    m_Text.SetAlignment(2);
    m_Text.SetAlignment(3);
    m_Text.SetAlignment(-1);
    EXPECT_EQ(m_Text.GetFormat(), 37u);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible", "impossible"));
}

TEST_F(TextRectTest, AShortTextGetsTheWholeHeight) {
    EXPECT_EQ(GetFittedHeight("1", "", {200, 40}), 40);
    EXPECT_EQ(GetFittedHeight("1", "", {200, 41}), 41);
}

TEST_F(TextRectTest, ATextTooWideForItsRectangleGetsALowerFont) {
    const int nHeight = GetFittedHeight("Unbalance 1234", "", {120, 60});
    EXPECT_LT(nHeight, 60);
    EXPECT_GE(nHeight, 8);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// The height comes from a straight line through two measured sizes, which may be a little too high or low.
TEST_F(TextRectTest, TheFittedTextFillsItsRectangleAndFits) {
    for (int nWidth = 40; nWidth <= 400; nWidth += 13) {
        const int nHeight = GetFittedHeight("123456789", "", {nWidth, 500});
        CDC Dc(m_Bitmap);
        Dc.SelectFont(CFont("Arial", nHeight, 700));
        const int nTextWidth = Dc.GetTextExtent("123456789").cx;
        EXPECT_LE(nTextWidth, nWidth);
        EXPECT_GE(nTextWidth, nWidth - nWidth / 8 - 12);
    }
}

TEST_F(TextRectTest, TheLongerOfTextAndSizingTextSetsTheSize) {
    const int nLong = GetFittedHeight("99999", "", {60, 60});
    EXPECT_LT(nLong, GetFittedHeight("1", "", {60, 60}));
    EXPECT_EQ(GetFittedHeight("1", "99999", {60, 60}), nLong);
    EXPECT_EQ(GetFittedHeight("99999", "1", {60, 60}), nLong);
}

TEST_F(TextRectTest, OfTextsOfEqualLengthTheFirstSetsTheSize) {
    const int nNarrow = GetFittedHeight("iiii", "", {60, 60});
    const int nWide = GetFittedHeight("WWWW", "", {60, 60});
    ASSERT_NE(nNarrow, nWide);
    EXPECT_EQ(GetFittedHeight("iiii", "WWWW", {60, 60}), nNarrow);
    EXPECT_EQ(GetFittedHeight("WWWW", "iiii", {60, 60}), nWide);
}

// "µ°" is two characters but four bytes.
TEST_F(TextRectTest, LengthCountsCharactersNotBytes) {
    EXPECT_EQ(GetFittedHeight("µ°", "WWW", {60, 60}), GetFittedHeight("WWW", "", {60, 60}));
}

TEST_F(TextRectTest, TheWeightIsThatOfTheField) {
    const int nBold = GetFittedHeight("Unbalance", "", {80, 60});
    m_Text.SetWeight(400);
    EXPECT_LT(nBold, GetFittedHeight("Unbalance", "", {80, 60})) << "bold from the start, which is wider";
}

TEST_F(TextRectTest, FittingLeavesTheSelectedFont) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 33));
    const int nBefore = Dc.GetFontHeight();
    m_Text.SetText("12");
    CFont Font;
    m_Text.CalculateFont(&Dc, CRect(0, 0, 50, 20), Font);
    m_Text.Paint(&Dc, CRect(0, 0, 50, 20));
    EXPECT_EQ(Dc.GetFontHeight(), nBefore);
    EXPECT_EQ(Font.m_Height, 20);
}

TEST_F(TextRectTest, WithoutHeightNothingIsDrawnAndTheLogSaysSo) {
    m_Text.SetText("12");
    Paint(CRect(10, 10, 60, 10));
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt);
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("not enough space to draw text"));
}

TEST_F(TextRectTest, WithoutWidthNothingIsDrawnEither) {
    m_Text.SetText("1234567890123456789012345678901234567890");
    Paint(CRect(10, 10, 11, 50));
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt);
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("not enough space to draw text"));
}

TEST_F(TextRectTest, PaintFillsTheBackgroundAndDrawsInTheTextColour) {
    m_Text.SetText("8");
    m_Text.SetTextColor(RED);
    const CRect Rect(10, 20, 110, 60);
    Paint(Rect);
    EXPECT_EQ(FindInk(m_Bitmap), Rect);
    EXPECT_EQ(m_Bitmap.GetPixel(109, 59), PANEL) << "the panel's colour from the start";
    EXPECT_GT(CountPixels(m_Bitmap, RED), 50);
    EXPECT_EQ(CountPixels(m_Bitmap, Rect, WHITE), 0);
}

TEST_F(TextRectTest, ATextThatIsEmptyLeavesTheBackground) {
    m_Text.SetBackgroundColor(RED);
    Paint(CRect(10, 20, 110, 60));
    EXPECT_EQ(CountPixels(m_Bitmap, RED), 100 * 40);
}

TEST_F(TextRectTest, TheTextStandsByItsAlignment) {
    const CRect Rect(10, 20, 110, 60);
    m_Text.SetText("88");
    const auto Ink = [&](int Alignment) {
        m_Text.SetAlignment(Alignment);
        Paint(Rect);
        return FindInk(m_Bitmap, Rect, PANEL).value_or(CRect());
    };
    EXPECT_NEAR(Ink(0).left, Rect.left, 4);
    EXPECT_NEAR(Ink(1).CenterPoint().x, Rect.CenterPoint().x, 2);
    EXPECT_NEAR(Ink(2).right, Rect.right, 4);
    EXPECT_NEAR(Ink(0).CenterPoint().y, Rect.CenterPoint().y, 3) << "always in the middle of its height";
}

// The shadow lies one pixel to the lower right of the text, in white.
TEST_F(TextRectTest, TheShadowIsWhiteAndLiesBelowTheText) {
    const CRect Rect(10, 20, 110, 60);
    m_Text.SetText("8");
    m_Text.SetTextColor(RED);
    // Brighter than the background, which the text itself never is.
    const auto FindShadow = [&] {
        return FindPixels(m_Bitmap, Rect, [](COLORREF Pixel) {
            return GetGValue(Pixel) > GetGValue(PANEL) + 3 && GetBValue(Pixel) > GetBValue(PANEL) + 6;
        });
    };
    Paint(Rect);
    EXPECT_EQ(FindShadow(), std::nullopt);
    CDC(m_Bitmap).FillSolidRect(Rect, PANEL);
    m_Text.SetShadow(true);
    Paint(Rect);
    const auto Shadow = FindShadow();
    const auto Text = FindColor(m_Bitmap, Rect, RED);
    ASSERT_TRUE(Shadow && Text);
    EXPECT_GE(Shadow->right, Text->right + 1);
    EXPECT_GE(Shadow->bottom, Text->bottom + 1);
    EXPECT_GT(Shadow->left, Text->left) << "none at the upper left";
}

TEST_F(TextRectTest, WithAShadowTheLeftAndTopEdgeMoveInwards) {
    m_Text.SetShadow(true);
    Paint(CRect(10, 20, 110, 60));
    EXPECT_EQ(FindInk(m_Bitmap), CRect(11, 21, 110, 60));
}

}  // namespace
