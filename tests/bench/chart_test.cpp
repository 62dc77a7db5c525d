#include "bench/accuracy/chart.h"

#include <gtest/gtest.h>

TEST(Chart, LogarithmicAxisGivesEveryRatioTheSameRoom) {
    const CChartAxis Axis{"x", 0.1, 100.0, {}};
    EXPECT_NEAR(Axis.GetPlace(1.0), 1.0 / 3.0, 1e-12);
    EXPECT_EQ(Axis.GetPlace(0.0), 0.0);
    EXPECT_EQ(Axis.GetPlace(1e9), 1.0);
}

TEST(Chart, NumbersHaveAsFewDigitsAsTellThem) {
    EXPECT_EQ(WriteShort(0.05), "0.05");
    EXPECT_EQ(WriteShort(3.44), "3.4");
    EXPECT_EQ(WriteShort(12.34), "12.3");
    EXPECT_EQ(WriteShort(120.4), "120");
}

TEST(Chart, LinesHaveAxesWithUnitsAndALegend) {
    CLineChart Chart;
    Chart.m_X = {"time, s", 1.0, 10.0, {1.0, 10.0}};
    Chart.m_Y = {"residual, %", 1.0, 10.0, {1.0, 10.0}};
    Chart.m_Curves = {{"weights", {{1.0, 2.0}, {10.0, 1.0}}, {}}};
    const std::string Svg = Chart.Draw();
    for (const char* const pText : {"time, s", "residual, %", "weights", "<polyline"}) {
        EXPECT_NE(Svg.find(pText), std::string::npos) << pText;
    }
    EXPECT_EQ(Svg, Chart.Draw());
}

TEST(Chart, AMapCrossesOutWhatHasNoValue) {
    CMapChart Map;
    Map.m_Columns = {"1"};
    Map.m_Rows = {"a"};
    Map.m_Cells = {{{4.2, "7 %"}}};
    const std::string Full = Map.Draw();
    EXPECT_NE(Full.find(">4.2<"), std::string::npos);
    EXPECT_NE(Full.find(">7 %<"), std::string::npos);
    EXPECT_EQ(Full.find("<line"), std::string::npos);
    Map.m_Cells[0][0].m_Value.reset();
    EXPECT_NE(Map.Draw().find("<line"), std::string::npos);
}
