#include "rvdlm/m_rtr/rtr_trim/prebalancing/statusview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "tests/support/logcapture.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;

constexpr COLORREF WHITE = RGB(255, 255, 255);
constexpr COLORREF LINE = RGB(0x71, 0x6F, 0x64);

class CTestView : public CStatusView {};

class StatusViewTest : public testing::Test {
protected:
    CTestView m_View;
};

TEST_F(StatusViewTest, ACalibratedSpeedOfZeroShowsNoValue) {
    EXPECT_EQ(m_View.GetCalibratedText(), "Calibrated speed: ---");
    m_View.SetCalibratedRPM(3000);
    EXPECT_EQ(m_View.GetCalibratedText(), "Calibrated speed: 3000 rpm");
    m_View.SetCalibratedRPM(0);
    EXPECT_EQ(m_View.GetCalibratedText(), "Calibrated speed: ---");
}

TEST_F(StatusViewTest, TheCurrentSpeedTakesFivePlaces) {
    EXPECT_EQ(m_View.GetCurrentText(), "Current speed:     0 rpm");
    m_View.SetCurrentRPM(998);
    EXPECT_EQ(m_View.GetCurrentText(), "Current speed:   998 rpm");
    m_View.SetCurrentRPM(65535);
    EXPECT_EQ(m_View.GetCurrentText(), "Current speed: 65535 rpm");
}

TEST_F(StatusViewTest, ANewCalibratedSpeedIsLogged) {
    CLogCapture Log(true);
    m_View.SetCalibratedRPM(3000);
    EXPECT_THAT(Log.GetTexts("PbFlow"), ElementsAre("Calibrated RPM: 3000"));
}

/// A line of 801 by 28 at (10, 5): the halves meet at x = 410.
class StatusViewPaintTest : public StatusViewTest {
protected:
    StatusViewPaintTest() {
        m_View.SetCalibratedRPM(3000);
        m_View.SetCurrentRPM(2998);
    }
    void Paint(const CRect& rRect) {
        m_Bitmap.Create({830, 60});
        CDC Dc(m_Bitmap);
        Dc.FillSolidRect(GetWhole(m_Bitmap), BACKGROUND);
        m_View.Paint(&Dc, rRect);
    }

    static constexpr COLORREF BACKGROUND = RGB(1, 2, 3);
    static constexpr CRect PANE{10, 5, 811, 33};
    CBitmap m_Bitmap;
};

TEST_F(StatusViewPaintTest, TwoWhiteHalvesAreDividedByTheFrameLine) {
    Paint(PANE);
    EXPECT_EQ(FindInk(m_Bitmap, GetWhole(m_Bitmap), BACKGROUND), PANE);
    EXPECT_EQ(m_Bitmap.GetPixel(11, 6), WHITE);
    EXPECT_EQ(m_Bitmap.GetPixel(412, 6), WHITE);
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(10, 32, 811, 33), LINE), 801);
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(410, 5, 411, 33), LINE), 28) << "the divider";
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(810, 5, 811, 33), LINE), 28);
}

TEST_F(StatusViewPaintTest, TheSpeedsStandAtTheOuterEnds) {
    Paint(PANE);
    const CRect Left = FindInk(m_Bitmap, CRect(10, 5, 410, 32), WHITE).value_or(CRect());
    const CRect Right = FindInk(m_Bitmap, CRect(411, 5, 810, 32), WHITE).value_or(CRect());
    EXPECT_NEAR(Left.left, 20, 3);
    EXPECT_NEAR(Right.right, 801, 3);
    EXPECT_GE(Left.top, 5 + 2) << "a tenth of the height";
    // 401 / 18 = 22 pixels of cell height, which fit the 28 rows.
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 22));
    EXPECT_NEAR(Left.Width(), Dc.GetTextExtent(m_View.GetCalibratedText()).cx, 4);
}

TEST_F(StatusViewPaintTest, ALowLineGetsASmallerFontAndNothingIsCutOff) {
    const CRect Low(10, 5, 811, 22);  // 17 rows
    Paint(Low);
    const CRect Text = FindInk(m_Bitmap, CRect(10, 5, 410, 21), WHITE).value_or(CRect());
    EXPECT_GE(Text.top, 6);
    EXPECT_LE(Text.bottom, 21) << "above the frame line";
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(10, 21, 811, 22), LINE), 801) << "which stays whole";
}

TEST_F(StatusViewPaintTest, APaneWithoutRoomIsNoTrouble) {
    for (const CRect& rRect : {CRect(), CRect(10, 5, 12, 6), CRect(10, 5, 811, 7), CRect(9, 9, 5, 5)}) {
        Paint(rRect);
    }
    EXPECT_EQ(CountPixels(m_Bitmap, BACKGROUND), 830 * 60);
}

}  // namespace
