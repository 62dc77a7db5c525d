#include "rvlib/rvbas/xymovingaverage.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/logcapture.h"

namespace {

struct CValues {
    explicit CValues(const CXYMovingAverage& rAverage) {
        rAverage.GetValues(&m_Magnitude, &m_Angle, &m_LastMagnitude, &m_X, &m_Y);
    }
    double m_Magnitude = -1.0;
    double m_Angle = -1.0;
    double m_LastMagnitude = -1.0;
    double m_X = -1.0;
    double m_Y = -1.0;
};

void ExpectEmpty(const CXYMovingAverage& rAverage) {
    const CValues Values(rAverage);
    EXPECT_EQ(Values.m_Magnitude, 0.0);
    EXPECT_EQ(Values.m_Angle, 0.0);
    EXPECT_EQ(Values.m_LastMagnitude, 0.0);
    EXPECT_EQ(Values.m_X, 0.0);
    EXPECT_EQ(Values.m_Y, 0.0);
    EXPECT_EQ(rAverage.GetValuesComplete(), 0);
}

TEST(XYMovingAverage, IsAllZeroWithoutASample) {
    ExpectEmpty(CXYMovingAverage(3));
}

TEST(XYMovingAverage, CompletesWithTheSampleAfterTheFullWindowAndWithoutTheFirst) {
    CXYMovingAverage Average(3);
    EXPECT_EQ(Average.AddValue(1000, -1000), 0);
    EXPECT_EQ(Average.AddValue(10, 1), 0);
    EXPECT_EQ(Average.AddValue(20, 2), 0);
    EXPECT_EQ(Average.GetValuesComplete(), 0);
    EXPECT_DOUBLE_EQ(CValues(Average).m_X, 1030.0 / 3.0);
    EXPECT_DOUBLE_EQ(CValues(Average).m_Y, -997.0 / 3.0);

    EXPECT_EQ(Average.AddValue(30, 3), 1);
    EXPECT_EQ(Average.GetValuesComplete(), 1);
    EXPECT_DOUBLE_EQ(CValues(Average).m_X, 20.0);
    EXPECT_DOUBLE_EQ(CValues(Average).m_Y, 2.0);
}

TEST(XYMovingAverage, StaysCompleteAndForgetsTheOldestSample) {
    CXYMovingAverage Average(2);
    for (std::int16_t x = 1; x <= 5; ++x) {
        Average.AddValue(x, 0);
    }
    EXPECT_EQ(Average.GetValuesComplete(), 1);
    EXPECT_DOUBLE_EQ(CValues(Average).m_X, 4.5);
    EXPECT_DOUBLE_EQ(CValues(Average).m_LastMagnitude, 5.0);
}

TEST(XYMovingAverage, AverageOfAPartlyFilledWindowRunsOverWhatIsThere) {
    CXYMovingAverage Average(40);
    Average.AddValue(3, 4);
    EXPECT_DOUBLE_EQ(CValues(Average).m_Magnitude, 5.0);
    Average.AddValue(5, 4);
    EXPECT_DOUBLE_EQ(CValues(Average).m_X, 4.0);
    EXPECT_DOUBLE_EQ(CValues(Average).m_Y, 4.0);
    EXPECT_DOUBLE_EQ(CValues(Average).m_Angle, 45.0);
}

TEST(XYMovingAverage, AngleBelowIs270Degrees) {
    CXYMovingAverage Average(3);
    Average.AddValue(7, -5);
    Average.AddValue(-7, -5);
    EXPECT_EQ(CValues(Average).m_Angle, 270.0);
}

TEST(XYMovingAverage, AnglesRunCounterClockwiseFrom0To360) {
    constexpr struct {
        std::int16_t x;
        std::int16_t y;
        double Angle;
    } eCases[] = {{5, 0, 0.0}, {5, 5, 45.0}, {0, 5, 90.0}, {-5, 0, 180.0}, {-5, -5, 225.0}, {5, -5, 315.0}};
    for (const auto& rCase : eCases) {
        CXYMovingAverage Average(1);
        Average.AddValue(rCase.x, rCase.y);
        EXPECT_DOUBLE_EQ(CValues(Average).m_Angle, rCase.Angle);
    }
}

TEST(XYMovingAverage, XAndYAreAveragedApart) {
    CXYMovingAverage Average(3);
    Average.AddValue(100, 0);
    Average.AddValue(-100, 0);
    const CValues Values(Average);
    EXPECT_EQ(Values.m_Magnitude, 0.0);
    EXPECT_EQ(Values.m_Angle, 0.0);
    EXPECT_EQ(Values.m_LastMagnitude, 100.0);
}

TEST(XYMovingAverage, PhasesOnBothSidesOfZeroAverageToZero) {
    CXYMovingAverage Average(3);
    Average.AddValue(1000, 100);
    Average.AddValue(1000, -100);
    EXPECT_EQ(CValues(Average).m_Angle, 0.0);
    EXPECT_EQ(CValues(Average).m_Magnitude, 1000.0);
}

TEST(XYMovingAverage, TakesTheWholeRangeOfASample) {
    CXYMovingAverage Average(2);
    for (int i = 0; i < 3; ++i) {
        Average.AddValue(-32768, -32768);
    }
    EXPECT_DOUBLE_EQ(CValues(Average).m_Magnitude, 32768.0 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(CValues(Average).m_LastMagnitude, 32768.0 * std::sqrt(2.0));
}

TEST(XYMovingAverage, ResetReturnsToEmpty) {
    CXYMovingAverage Average(1);
    Average.AddValue(1, 1);
    Average.AddValue(2, 2);
    ASSERT_EQ(Average.GetValuesComplete(), 1);
    Average.Reset();
    ExpectEmpty(Average);
    EXPECT_EQ(Average.AddValue(3, 0), 0);
    EXPECT_EQ(CValues(Average).m_X, 3.0);
}

TEST(XYMovingAverage, NullLeavesAnOutputOut) {
    CXYMovingAverage Average(1);
    Average.AddValue(3, 4);
    Average.GetValues(nullptr, nullptr, nullptr, nullptr, nullptr);
    double Y = 0.0;
    Average.GetValues(nullptr, nullptr, nullptr, nullptr, &Y);
    EXPECT_EQ(Y, 4.0);
}

TEST(XYMovingAverage, EndsWithoutAnAssertion) {
    const CLogCapture Capture;
    { const CXYMovingAverage Average(5); }
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

}  // namespace
