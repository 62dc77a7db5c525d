#include "rvlib/rvgui/gradient.h"

#include <gtest/gtest.h>

#include "tests/support/pixels.h"

namespace {

// 30 rows: t is 11, so rows 0 to 11 have the colour, and row 12 is the first that is 3 darker.
TEST(GradientTest, TheUpperThirdHasTheColourAndEachRowBelowIsDarkerByThree) {
    CBitmap Bitmap(CSize(20, 50));
    CDC Dc(Bitmap);
    Gui::FillGradient(Dc, CRect(5, 10, 15, 40), RGB(200, 100, 20));
    EXPECT_EQ(FindInk(Bitmap), CRect(5, 10, 15, 40));
    EXPECT_EQ(Bitmap.GetPixel(5, 10), RGB(200, 100, 20));
    EXPECT_EQ(Bitmap.GetPixel(14, 21), RGB(200, 100, 20));
    EXPECT_EQ(Bitmap.GetPixel(5, 22), RGB(197, 97, 17));
    EXPECT_EQ(Bitmap.GetPixel(5, 23), RGB(194, 94, 14));
    EXPECT_EQ(Bitmap.GetPixel(5, 28), RGB(179, 79, 0)) << "no component below 0";
    EXPECT_EQ(Bitmap.GetPixel(5, 39), RGB(146, 46, 0));
}

}  // namespace
