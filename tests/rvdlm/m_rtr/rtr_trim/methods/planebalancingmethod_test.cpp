#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "tests/support/logcapture.h"

namespace {

/// The least that a method can be: only what the base implements is of interest.
class CBareMethod : public CPlaneBalancingMethod {
public:
    CBareMethod() : CPlaneBalancingMethod(2) {}
    void SetPlainDisplayMode(DisplayMode) override {}
    int GetNeutralPositionMenu(std::uint8_t) override { return 0; }
    int GetTestUnbalanceMenu() override { return 0; }
    int GetTestUnbalanceChangeMenu() override { return 0; }
    int GetCommitChangeMenu(std::uint8_t) override { return 0; }
    int GetCheckWeightsMenu(std::uint8_t) override { return 0; }
    const math::matrix<double>* GetTestUnbalanceVectorInDeg() override { return nullptr; }
    void SetTestUnbalanceVectorInDeg(const math::matrix<double>&) override {}
    bool SetUA(const math::matrix<double>&, double*, bool) override { return false; }
    math::matrix<double> GetUA() override { return math::matrix<double>(2, 1); }
    void SetRotationDirection(PreBalDB::CTypeBase::Direction) override {}
    PreBalDB::CTypeBase::Direction GetScalingDirection() override { return PreBalDB::CTypeBase::eClockwise; }
    bool KeyPressed(CKeyActions::KeyAction, int) override { return true; }
    void Paint(CDC*, const CRect&, bool) override {}
    void FillNotification(CPreBalNotification&) override {}
    void GetWeightPositions(int&, int&) override {}
};

using Method = CPlaneBalancingMethod;

TEST(PlaneBalancingMethod, StartsEmptyAndNormal) {
    const CBareMethod Bare;
    EXPECT_EQ(Bare.m_DisplayMode, Method::eEmpty);
    EXPECT_EQ(Bare.m_MeasurementDisplayState, 0);
}

TEST(PlaneBalancingMethod, ModeChangeStartsANewAverage) {
    CBareMethod Bare;
    for (int i = 0; i < 3; ++i) {
        Bare.AddMeasurementValue(3, 4);
    }
    ASSERT_EQ(Bare.m_MovingAverage.GetValuesComplete(), 1);
    Bare.SetDisplayMode(Method::eTestUnbalance);
    EXPECT_EQ(Bare.m_DisplayMode, Method::eTestUnbalance);
    double Magnitude = -1.0;
    Bare.m_MovingAverage.GetValues(&Magnitude, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Bare.m_MovingAverage.GetValuesComplete(), 0);
    EXPECT_EQ(Magnitude, 0.0);
}

TEST(PlaneBalancingMethod, ModesHaveTheirNames) {
    const CLogCapture Capture;
    EXPECT_STREQ(Method::DisplayModeToString(Method::eEmpty), "eEmpty");
    EXPECT_STREQ(Method::DisplayModeToString(Method::eNeutralPosition), "eNeutralPosition");
    EXPECT_STREQ(Method::DisplayModeToString(Method::eInactive), "eInactive");
    EXPECT_STREQ(Method::DisplayModeToString(Method::eTestUnbalance), "eTestUnbalance");
    EXPECT_STREQ(Method::DisplayModeToString(Method::eUACompensation), "eUACompensation");
    EXPECT_STREQ(Method::DisplayModeToString(Method::eMeasurementValues), "eMeasurementValues");
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

TEST(PlaneBalancingMethod, UnknownModeIsAsserted) {
    const CLogCapture Capture;
    EXPECT_STREQ(Method::DisplayModeToString(static_cast<Method::DisplayMode>(6)), "Unknown mode");
    EXPECT_STREQ(Method::DisplayModeToString(static_cast<Method::DisplayMode>(-1)), "Unknown mode");
    EXPECT_EQ(Capture.GetAssertions(), (std::vector<std::string>{"impossible", "impossible"}));
    EXPECT_EQ(Capture.GetRecords().front().m_Expression, "FALSE");
}

/// The pixels that a title blackens, as the rectangle around them; empty if there are none.
CRect TitleExtent(Method::DisplayMode Mode, const CRect& rRect, int Plane) {
    CBitmap Bitmap(CSize(400, 600));
    CBareMethod Bare;
    Bare.SetDisplayMode(Mode);
    {
        CDC DC(Bitmap);
        Bare.PaintPlaneTitle(&DC, rRect, Plane);
    }
    CRect Extent(10000, 10000, -1, -1);
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 400; ++x) {
            if (Bitmap.GetPixel(x, y) != RGB(255, 255, 255)) {
                Extent = CRect(std::min(Extent.left, x), std::min(Extent.top, y),
                               std::max(Extent.right, x + 1), std::max(Extent.bottom, y + 1));
            }
        }
    }
    return Extent.right < 0 ? CRect() : Extent;
}

TEST(PlaneBalancingMethod, EmptyModeHasNoTitle) {
    EXPECT_TRUE(TitleExtent(Method::eEmpty, CRect(20, 30, 320, 530), 1).IsRectEmpty());
}

TEST(PlaneBalancingMethod, TitleStandsAtTheFootOfTheDrawing) {
    // 300 by 500: side 280, free height 220, so 10 to the right and 210 up; the text is 280 / 24 = 11 high.
    const CRect Extent = TitleExtent(Method::eTestUnbalance, CRect(20, 30, 320, 530), 1);
    ASSERT_FALSE(Extent.IsRectEmpty());
    EXPECT_GE(Extent.left, 30);
    EXPECT_LE(Extent.left, 33);
    EXPECT_LE(Extent.bottom, 530 - 210);
    EXPECT_GE(Extent.top, 530 - 210 - 11);
}

TEST(PlaneBalancingMethod, TitleOfTheSecondPlaneDiffers) {
    EXPECT_FALSE(TitleExtent(Method::eNeutralPosition, CRect(0, 0, 400, 600), 2).IsRectEmpty());
    EXPECT_NE(GetText("PB_PLANE_TEXT"), "PB_PLANE_TEXT");
}

}  // namespace
