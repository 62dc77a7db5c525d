// What the weight method draws.
#include <string>
#include <vector>

#include "platform/window/dc.h"
#include "tests/rvdlm/m_rtr/rtr_trim/methods/weightmethodfixture.h"

namespace {

class WeightMethodPaint : public WeightMethodTest {
protected:
    static CBitmap Paint(Method& rMethod, bool bRedrawAll) {
        CBitmap Bitmap(CSize(300, 300));
        CDC DC(Bitmap);
        rMethod.Paint(&DC, CRect(0, 0, 300, 300), bRedrawAll);
        return Bitmap;
    }
    static bool IsBlank(const CBitmap& rBitmap) { return rBitmap == CBitmap(CSize(300, 300)); }
};

TEST_F(WeightMethodPaint, EmptyModeDrawsNothing) {
    const auto pMethod = Make();
    EXPECT_TRUE(IsBlank(Paint(*pMethod, true)));
}

TEST_F(WeightMethodPaint, PartOfAStillPictureIsAssertedAndDrawnWhole) {
    const auto pMethod = Make();
    for (const auto Mode : {Method::eNeutralPosition, Method::eTestUnbalance, Method::eUACompensation,
                            Method::eInactive, Method::eEmpty}) {
        pMethod->SetPlainDisplayMode(Mode);
        const CBitmap Whole = Paint(*pMethod, true);
        const CLogCapture Capture;
        EXPECT_TRUE(Paint(*pMethod, false) == Whole);
        EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"must be TRUE!"});
        EXPECT_EQ(Capture.GetRecords().back().m_Expression, "bRedrawAll");
    }
}

TEST_F(WeightMethodPaint, InactiveModeIsTheDrawingHatched) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    const CBitmap Active = Paint(*pMethod, true);
    pMethod->SetPlainDisplayMode(Method::eInactive);
    const CBitmap Inactive = Paint(*pMethod, true);
    EXPECT_FALSE(IsBlank(Active));
    int nSame = 0;
    int nCovered = 0;
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 300; ++y) {
            if (Inactive.GetPixel(x, y) == Active.GetPixel(x, y)) {
                ++nSame;
            } else {
                EXPECT_EQ(Inactive.GetPixel(x, y), RGB(0xEC, 0xE9, 0xD8));
                ++nCovered;
            }
        }
    }
    EXPECT_GT(nSame, 0);
    EXPECT_GT(nCovered, 0);
}

TEST_F(WeightMethodPaint, WeightsAreDrawnWhereTheyStand) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eUACompensation);
    Put(*pMethod, 90, 180);
    const CBitmap Picture = Paint(*pMethod, true);
    // Square of 280 at (10, 10), ring from 105 to 140: on a clockwise scale 0 is at the top, 90 to the right.
    // Off the middle, where the white number stands.
    constexpr COLORREF INK = RGB(0x00, 0x38, 0x68);
    constexpr COLORREF RING = RGB(0xC0, 0xC0, 0xC0);
    EXPECT_EQ(Picture.GetPixel(150, 150 - 136), RING);
    EXPECT_EQ(Picture.GetPixel(150 + 136, 150), INK);
    EXPECT_EQ(Picture.GetPixel(150, 150 + 136), INK);
    EXPECT_EQ(Picture.GetPixel(150 - 136, 150), RING);
}

TEST_F(WeightMethodPaint, MeasurementIsRedrawnInTheMiddleOnly) {
    const auto pMethod = Make();
    pMethod->SetDisplayMode(Method::eMeasurementValues);
    pMethod->AddMeasurementValue(300, 400);
    const CLogCapture Capture;
    const CBitmap Middle = Paint(*pMethod, false);
    EXPECT_TRUE(Capture.GetAssertions().empty());
    EXPECT_FALSE(IsBlank(Middle));
    EXPECT_EQ(Middle.GetPixel(150, 14), RGB(255, 255, 255));  // no ring
    EXPECT_NE(Paint(*pMethod, true).GetPixel(150, 14), RGB(255, 255, 255));
    // Another value, another picture.
    pMethod->AddMeasurementValue(-100, 90);
    EXPECT_FALSE(Paint(*pMethod, false) == Middle);
}

TEST_F(WeightMethodPaint, RotationDirectionTurnsTheArrow) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    pMethod->SetRotationDirection(CW);
    const CBitmap Clockwise = Paint(*pMethod, true);
    pMethod->SetRotationDirection(CCW);
    EXPECT_FALSE(Paint(*pMethod, true) == Clockwise);
}

TEST_F(WeightMethodPaint, LeavesTheDeviceStateAsItWas) {
    const auto pMethod = Make();
    pMethod->SetPlainDisplayMode(Method::eInactive);
    CBitmap Bitmap(CSize(300, 300));
    CDC DC(Bitmap);
    DC.SelectFont(CFont("Arial", 33));
    const int Height = DC.GetFontHeight();
    pMethod->Paint(&DC, CRect(0, 0, 100, 100), true);
    EXPECT_EQ(DC.GetFontHeight(), Height);
    DC.FillSolidRect(CRect(200, 200, 210, 210), RGB(1, 2, 3));  // outside what the hatch was clipped to
    EXPECT_EQ(Bitmap.GetPixel(205, 205), RGB(1, 2, 3));
}

}  // namespace
