#include "rvlib/rvgui/angletext/angletext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tests/support/logcapture.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AngleTextTest : public testing::Test {
protected:
    AngleTextTest() {
        m_Text.SetFaceName("Arial");
        m_Text.SetMaxHeight(20);
        m_Text.SetPlacement(CAngleText::eReadable);
    }

    /// Where the text's ink lies, for a line from the middle (100, 100) outwards, Angle clockwise from the
    /// right.
    CRect Draw(int Angle, const std::string& rText = "HHH", int Length = 80) {
        m_Bitmap.Create({200, 200});
        CDC Dc(m_Bitmap);
        const double a = Angle * std::numbers::pi / 180.0;
        m_Text.Paint(&Dc, rText, 100, 100, 100 + static_cast<int>(std::lround(Length * std::cos(a))),
                     100 + static_cast<int>(std::lround(Length * std::sin(a))));
        return FindInk(m_Bitmap).value_or(CRect());
    }
    CBitmap m_Bitmap{CSize(200, 200)};
    CAngleText m_Text;
    CLogCapture m_Log;
};

TEST_F(AngleTextTest, TheTextsMiddleLiesOnTheLine) {
    EXPECT_NEAR(Draw(0).CenterPoint().y, 100, 1);
    EXPECT_NEAR(Draw(180).CenterPoint().y, 100, 1);
    EXPECT_NEAR(Draw(90).CenterPoint().x, 100, 1);
    EXPECT_NEAR(Draw(270).CenterPoint().x, 100, 1);
}

TEST_F(AngleTextTest, ATextShorterThanItsLineKeepsToTheSecondPoint) {
    for (const int nAngle : {0, 30, 60, 90, 91, 120, 150, 180, 210, 240, 269, 270, 300, 330}) {
        const CRect Ink = Draw(nAngle);
        double Most = 0.0;
        double Least = 200.0;
        for (int y = Ink.top; y < Ink.bottom; ++y) {
            for (int x = Ink.left; x < Ink.right; ++x) {
                if (GetRValue(m_Bitmap.GetPixel(x, y)) < 128) {
                    Most = std::max(Most, std::hypot(x - 100, y - 100));
                    Least = std::min(Least, std::hypot(x - 100, y - 100));
                }
            }
        }
        // Three letters of 13 pixels each, in a cell of 20.
        EXPECT_NEAR(Most, 80.0, 4.0) << nAngle;
        EXPECT_NEAR(Least, 80.0 - 3 * 13, 4.0) << nAngle;
    }
}

/// The direction in which "L" is read, from where its stem is: 0 to the right, 1 down, 2 to the left, 3 up.
/// The stem is at the beginning, the foot along the base line.
int GetReadingDirection(const CBitmap& rBitmap, const CRect& rInk) {
    const auto Dark = [&](const CRect& rPart) {
        int nCount = 0;
        for (int y = rPart.top; y < rPart.bottom; ++y) {
            for (int x = rPart.left; x < rPart.right; ++x) {
                nCount += GetRValue(rBitmap.GetPixel(x, y)) < 128 ? 1 : 0;
            }
        }
        return nCount;
    };
    const CPoint Middle = rInk.CenterPoint();
    // The quarter of the letter that is empty lies to the upper right of the reader.
    const int nUpperRight = Dark(CRect(Middle.x + 1, rInk.top, rInk.right, Middle.y));
    const int nLowerRight = Dark(CRect(Middle.x + 1, Middle.y + 1, rInk.right, rInk.bottom));
    const int nLowerLeft = Dark(CRect(rInk.left, Middle.y + 1, Middle.x, rInk.bottom));
    const int nUpperLeft = Dark(CRect(rInk.left, rInk.top, Middle.x, Middle.y));
    const int nLeast = std::min({nUpperRight, nLowerRight, nLowerLeft, nUpperLeft});
    return nLeast == nUpperRight ? 0 : nLeast == nLowerRight ? 1 : nLeast == nLowerLeft ? 2 : 3;
}

TEST_F(AngleTextTest, TextThatWouldStandUpsideDownIsTurnedRound) {
    m_Text.SetMaxHeight(60);
    const auto Read = [&](int Angle) {
        const CRect Ink = Draw(Angle, "L");
        return GetReadingDirection(m_Bitmap, Ink);
    };
    EXPECT_EQ(Read(0), 0);
    EXPECT_EQ(Read(180), 0) << "turned";
    EXPECT_EQ(Read(90), 1) << "straight down is left as it is";
    EXPECT_EQ(Read(270), 3) << "and straight up, too";
    m_Text.SetPlacement(CAngleText::eAlongLine);
    EXPECT_EQ(Read(180), 2);
    EXPECT_EQ(Read(0), 0);
}

// 91 to 269 degrees are turned: from just below 90 to 91 the text jumps to the other way of reading.
TEST_F(AngleTextTest, TheLimitsOfTurningAre91And269) {
    m_Text.SetMaxHeight(60);
    const auto Read = [&](int Angle) {
        const CRect Ink = Draw(Angle, "L", 90);
        return GetReadingDirection(m_Bitmap, Ink);
    };
    EXPECT_EQ(Read(90), 1);
    EXPECT_EQ(Read(91), 3);
    EXPECT_EQ(Read(269), 1);
    EXPECT_EQ(Read(270), 3);
}

TEST_F(AngleTextTest, ALongTextGetsASmallerFontAndStaysOnItsLine) {
    const CRect Ink = Draw(0, "HHHHHHHHHHHHHHHHH");
    EXPECT_GE(Ink.left, 98);
    EXPECT_LE(Ink.right, 182);
    EXPECT_LT(Ink.Height(), 14);
}

// A minimum of 12 pixels leaves room for some fifteen characters on a line of 80.
TEST_F(AngleTextTest, ATextThatWouldGetTooLowIsShortenedInItsMiddle) {
    const std::string Name = "ISO 4762 M6x12-12.9 zinc";
    const auto Expect = [&] {
        CDC Dc(m_Bitmap);
        Dc.SelectFont(CFont("Arial", 12, 700));
        // By hand: the longest of those with equal ends, or one character more at the beginning.
        for (std::size_t nKept = Name.size() - 1;; --nKept) {
            const std::string Short =
                Name.substr(0, (nKept + 1) / 2) + "…" + Name.substr(Name.size() - nKept / 2);
            if (Dc.GetTextExtent(Short).cx <= 80) {
                return Short;
            }
        }
    }();
    ASSERT_GT(Expect.size(), 10U);
    m_Text.SetMaxHeight(12);
    ASSERT_FALSE(Draw(0, Expect).IsRectEmpty());
    const CBitmap Short = m_Bitmap;
    m_Text.SetMaxHeight(20);
    m_Text.SetMinHeight(12);
    const CRect Ink = Draw(0, Name);
    EXPECT_TRUE(m_Bitmap == Short) << "as if " << Expect << " had been given";
    EXPECT_GE(Ink.left, 99);
    EXPECT_LE(Ink.right, 181);
    EXPECT_EQ(m_Text.GetText(), Name) << "the field's text stays whole";
}

TEST_F(AngleTextTest, ATextThatFitsAboveTheMinimumIsLeftAsItIs) {
    Draw(0, "M6x12");
    const CBitmap Before = m_Bitmap;
    m_Text.SetMinHeight(12);
    Draw(0, "M6x12");
    EXPECT_TRUE(m_Bitmap == Before);
}

TEST_F(AngleTextTest, CharactersOfSeveralBytesAreNotCutApart) {
    m_Text.SetMinHeight(12);
    Draw(0, "ÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄ");
    const CBitmap Long = m_Bitmap;
    Draw(0, "ÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄ");
    EXPECT_TRUE(m_Bitmap == Long) << "what fits is the same";
}

TEST_F(AngleTextTest, ALineTooShortForAnyRestOfTheTextIsLoggedAndNothingIsDrawn) {
    m_Text.SetMinHeight(12);
    EXPECT_EQ(Draw(0, "WWW", 3), CRect());
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("not enough space to draw text"));
}

TEST_F(AngleTextTest, WithoutAMaximumTheFontIsAsHighAsTheLineIsLong) {
    m_Text.SetMaxHeight(0);
    EXPECT_NEAR(Draw(0, "I", 40).Height(), 40 * 2 / 3, 4);
}

TEST_F(AngleTextTest, TheFontIsFittedLikeThatOfATextRect) {
    CDC Dc(m_Bitmap);
    CFont Font;
    CFont LogFont;
    m_Text.SetText("1");
    m_Text.CalculateFont(&Dc, CRect(0, 0, 200, 40), Font, LogFont);
    EXPECT_EQ(Font.m_Height, 40);
    EXPECT_EQ(LogFont.m_Height, 40);
    EXPECT_EQ(LogFont.m_Escapement, 0);
    m_Text.SetSizingText("123456789");
    m_Text.CalculateFont(&Dc, CRect(0, 0, 50, 40), Font, LogFont);
    EXPECT_LT(Font.m_Height, 20) << "the longer of the two counts";
}

TEST_F(AngleTextTest, ALineWithoutLengthIsLoggedAndNothingIsDrawn) {
    EXPECT_EQ(Draw(0, "12", 0), CRect());
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("not enough space to draw text"));
}

TEST_F(AngleTextTest, ThePaintedTextIsTheFieldsText) {
    Draw(0, "12");
    EXPECT_EQ(m_Text.GetText(), "12");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(AngleTextTest, TheDeviceContextIsLeftAsItWas) {
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 33));
    const int nBefore = Dc.GetFontHeight();
    m_Text.Paint(&Dc, "12", 100, 100, 180, 100);
    EXPECT_EQ(Dc.GetFontHeight(), nBefore);
}

}  // namespace
