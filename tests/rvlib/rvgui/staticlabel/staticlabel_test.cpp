#include "rvlib/rvgui/staticlabel/staticlabel.h"

#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "rvlib/rvgui/gradient.h"
#include "tests/support/pixels.h"

namespace {

constexpr COLORREF ORANGE = RGB(255, 204, 133);
constexpr COLORREF GREY = RGB(192, 192, 192);

class StaticLabelTest : public testing::Test {
protected:
    StaticLabelTest() {
        m_Label.Create(nullptr, CRect(0, 0, 100, 30), 7);
        m_Label.SetBackground(ORANGE, GREY);
    }
    const CBitmap& Paint() {
        m_Loop.RunPosted();
        return m_Label.GetSurface();
    }

    CVirtualEventLoop m_Loop;
    CStaticLabel m_Label;
};

TEST_F(StaticLabelTest, TheBackgroundFollowsTheState) {
    EXPECT_EQ(CountPixels(Paint(), ORANGE), 100 * 30);
    m_Label.EnableWindow(false);
    EXPECT_FALSE(m_Label.IsWindowEnabled());
    EXPECT_EQ(CountPixels(Paint(), GREY), 100 * 30);
}

TEST_F(StaticLabelTest, EachStateHasItsOwnGradientFlag) {
    m_Label.SetGradient(false, true);
    EXPECT_EQ(CountPixels(Paint(), ORANGE), 100 * 30);
    m_Label.EnableWindow(false);
    EXPECT_EQ(Paint().GetPixel(50, 0), GREY);
    EXPECT_EQ(Paint().GetPixel(50, 29), RGB(138, 138, 138)) << "18 rows below t = 11, 3 each";
}

TEST_F(StaticLabelTest, WithoutAFontNoTextIsDrawn) {
    m_Label.SetText("Label");
    EXPECT_EQ(CountPixels(Paint(), ORANGE), 100 * 30);
    EXPECT_EQ(m_Label.GetText(), "Label");
}

TEST_F(StaticLabelTest, TheTextIsTheWindowsTextForScreenReaders) {
    m_Label.SetFont(CFont("Arial", 14));
    m_Label.SetText("Label");
    EXPECT_EQ(m_Label.GetWindowText(), "Label");
    Paint();
    m_Label.SetWindowText("");
    EXPECT_EQ(m_Label.GetText(), "");
    EXPECT_EQ(CountPixels(Paint(), ORANGE), 100 * 30) << "and is painted anew";
}

TEST_F(StaticLabelTest, TheGradientFillsTheWindowBehindTheText) {
    m_Label.SetGradient(true, false);
    CBitmap Expected;
    Expected.Create(CSize(100, 30));
    {
        CDC DC(Expected);
        Gui::FillGradient(DC, CRect(0, 0, 100, 30), ORANGE);
        DC.SelectFont(CFont("Arial", 14));
        DC.SetTextColor(RGB(0, 0, 128));
        CRect Rect(10, 0, 100, 30);
        DC.DrawText("Label", Rect, 36);
    }
    m_Label.SetText("Label");
    m_Label.SetTextColor(RGB(0, 0, 128));
    m_Label.SetFont(CFont("Arial", 14));
    EXPECT_FALSE(FindDifference(Paint(), Expected));
}

TEST_F(StaticLabelTest, TheTextStandsTenPixelsFromTheLeftInTheMiddleOfTheHeight) {
    m_Label.SetText("HHH");
    m_Label.SetFont(CFont("Arial", 14));
    const auto Ink = FindInk(Paint(), CRect(0, 0, 100, 30), ORANGE);
    ASSERT_TRUE(Ink);
    EXPECT_NEAR(Ink->left, 11, 1);
    EXPECT_NEAR(Ink->CenterPoint().y, 15, 1);
}

}  // namespace
