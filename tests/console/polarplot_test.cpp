#include "console/polarplot.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <cmath>

#include "console/plotcolors.h"
#include "console/targetbar.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int SIDE = 400;

CPolarPlotData MakeData(double Target, double Present) {
    CPolarPlotData Data;
    Data.m_Target = Target;
    Data.m_Readings = {{Present, 0.0}};
    Data.m_Mean = CVectorReading{Present, 0.0};
    return Data;
}

QImage Paint(const CPolarPlotData& rData) {
    QImage Picture(SIDE, SIDE, QImage::Format_RGB32);
    Picture.fill(Qt::white);
    QPainter Painter(&Picture);
    PaintPolarPlot(Painter, QRectF(0, 0, SIDE, SIDE), rData, QPalette(Qt::white));
    return Picture;
}

/// Middle of all pixels of that colour.
QPointF FindMiddle(const QImage& rPicture, const QColor& rColor, int& rnFound) {
    QPointF Sum;
    rnFound = 0;
    for (int y = 0; y < rPicture.height(); ++y) {
        for (int x = 0; x < rPicture.width(); ++x) {
            if (rPicture.pixelColor(x, y) == rColor) {
                Sum += QPointF(x + 0.5, y + 0.5);
                ++rnFound;
            }
        }
    }
    return rnFound == 0 ? Sum : Sum / rnFound;
}

}  // namespace

TEST(PolarPlot, RingsStandAtOneTwoOrFiveTimesAPowerOfTen) {
    for (const double Reach : {0.03, 1.0, 4.9, 7.0, 12.0, 33.0, 120.0, 999.0, 32767.0}) {
        const CPolarRange Range = ChooseRange(MakeData(0.01, Reach));
        EXPECT_GE(Range.m_Full, Reach);
        EXPECT_LE(Range.m_Full, Reach * 2.5) << "the place is used";
        const double Leading = Range.m_Step / std::pow(10.0, std::floor(std::log10(Range.m_Step) + 1e-9));
        EXPECT_TRUE(std::abs(Leading - 1.0) < 1e-9 || std::abs(Leading - 2.0) < 1e-9 ||
                    std::abs(Leading - 5.0) < 1e-9)
            << Range.m_Step;
        const double nRings = Range.m_Full / Range.m_Step;
        EXPECT_NEAR(nRings, std::round(nRings), 1e-9);
        EXPECT_GE(nRings, 2.0);
        EXPECT_LE(nRings, 5.0);
    }
}

TEST(PolarPlot, TheTargetIsAlwaysInSight) {
    EXPECT_GE(ChooseRange(MakeData(5.0, 0.1)).m_Full, 5.0);
    EXPECT_GE(ChooseRange(MakeData(100.0, 0.1)).m_Full, 100.0);
}

TEST(PolarPlot, ASmallResidualIsLookedAtCloselyAlthoughTheFirstReadingWasLarge) {
    CPolarPlotData Data = MakeData(5.0, 1.2);
    Data.m_Stations = {{"first", {120.0, 0.0}}, {"final", {1.2, 0.0}}};
    const CPolarRange Range = ChooseRange(Data);
    EXPECT_TRUE(Range.m_bZoomed);
    EXPECT_LT(Range.m_Full, 10.0);
    Data.m_Readings.clear();
    EXPECT_FALSE(ChooseRange(Data).m_bZoomed) << "between measurements the whole path is shown";
    EXPECT_GE(ChooseRange(Data).m_Full, 120.0);
    Data = MakeData(5.0, 90.0);
    Data.m_Stations = {{"first", {120.0, 0.0}}};
    EXPECT_FALSE(ChooseRange(Data).m_bZoomed) << "both can be seen";
    EXPECT_GE(ChooseRange(Data).m_Full, 120.0);
}

TEST(PolarPlot, TheRangeStaysWhileItWillDo) {
    const CPolarRange Former = ChooseRange(MakeData(5.0, 80.0));
    EXPECT_EQ(ChooseRange(MakeData(5.0, 40.0), Former), Former);
    EXPECT_EQ(ChooseRange(MakeData(5.0, Former.m_Full), Former), Former);
    EXPECT_GT(ChooseRange(MakeData(5.0, Former.m_Full * 1.01), Former).m_Full, Former.m_Full);
    EXPECT_LT(ChooseRange(MakeData(5.0, 10.0), Former).m_Full, Former.m_Full);
}

TEST(PolarPlot, NothingButATargetCanBeDrawn) {
    CPolarPlotData Empty;
    EXPECT_GT(ChooseRange(Empty).m_Full, 0.0);
    Paint(Empty);
    Empty.m_Target = 5.0;
    Paint(Empty);
}

// 0 degrees to the right and 90 upwards, as on the page.
TEST(PolarPlot, AReadingStandsWhereItsAngleSays) {
    const CPlotColors Colors{QPalette(Qt::white)};
    for (const auto& [Vector, Way] : {std::pair{CVectorReading{80.0, 0.0}, QPointF(1, 0)},
                                      std::pair{CVectorReading{0.0, 80.0}, QPointF(0, -1)},
                                      std::pair{CVectorReading{-80.0, 0.0}, QPointF(-1, 0)},
                                      std::pair{CVectorReading{0.0, -80.0}, QPointF(0, 1)}}) {
        CPolarPlotData Data = MakeData(5.0, 80.0);
        Data.m_Readings = {Vector};
        Data.m_Mean = Vector;
        int nFound = 0;
        const QPointF Middle = FindMiddle(Paint(Data), Colors.m_Mean, nFound) - QPointF(SIDE, SIDE) / 2.0;
        ASSERT_GT(nFound, 20);
        // Line and point of the mean lie all to that side.
        EXPECT_GT(QPointF::dotProduct(Middle, Way), 30.0) << Middle.x() << ", " << Middle.y();
        EXPECT_LT(std::abs(Middle.x() * Way.y() - Middle.y() * Way.x()), 2.0);
    }
}

TEST(PolarPlot, ReadingsThatDoNotCountHaveNoMean) {
    const CPlotColors Colors{QPalette(Qt::white)};
    CPolarPlotData Data = MakeData(5.0, 80.0);
    Data.m_bCounts = false;
    int nFound = 0;
    FindMiddle(Paint(Data), Colors.m_Mean, nFound);
    EXPECT_EQ(nFound, 0);
}

TEST(PolarPlot, InWords) {
    SetLanguage("en");
    CPolarPlotData Data = MakeData(5.0, 1.2);
    Data.m_Title = "Plane 2";
    Data.m_Stations = {{"first", {0.0, 120.0}}, {"test", {0.0, -60.0}}};
    EXPECT_EQ(DescribePolarPlot(Data).toStdString(),
              "Plane 2; first: 120 µm/s at 90°; test: 60.0 µm/s at 270°; now 1.2 µm/s at 0°, mean of 1 "
              "readings; target 5 µm/s");
}

TEST(TargetBar, ValuesStandByDecadesAndTheTargetInItsPlace) {
    EXPECT_NEAR(GetPlaceOnBar(5.0, 5.0), GetPlaceOnBar(80.0, 80.0), 1e-12);
    EXPECT_NEAR(GetPlaceOnBar(50.0, 5.0) - GetPlaceOnBar(5.0, 5.0),
                GetPlaceOnBar(500.0, 5.0) - GetPlaceOnBar(50.0, 5.0), 1e-12);
    EXPECT_EQ(GetPlaceOnBar(0.5, 5.0), 0.0);
    EXPECT_EQ(GetPlaceOnBar(0.0, 5.0), 0.0);
    EXPECT_EQ(GetPlaceOnBar(1e9, 5.0), 1.0);
    EXPECT_EQ(GetPlaceOnBar(3.0, 0.0), 0.0);
}

TEST(TargetBar, ABarWithinTheTargetIsGreenAndOneOverItRed) {
    const CPlotColors Colors{QPalette(Qt::white)};
    for (const auto& [Reading, Color] : {std::pair{5.0, Colors.m_Within}, std::pair{5.1, Colors.m_Over}}) {
        QImage Picture(300, 80, QImage::Format_RGB32);
        Picture.fill(Qt::white);
        QPainter Painter(&Picture);
        PaintTargetBar(Painter, QRectF(0, 0, 300, 80), {5.0, Reading, std::nullopt, true},
                       QPalette(Qt::white));
        Painter.end();
        int nFound = 0;
        FindMiddle(Picture, Color, nFound);
        EXPECT_GT(nFound, 500) << Reading;
    }
}
