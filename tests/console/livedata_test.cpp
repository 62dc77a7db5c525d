#include "console/livedata.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "console/liveview.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"

namespace {

using Arrived = std::vector<CArrivedReadings::CReading>;

class LiveDataTest : public testing::Test {
protected:
    LiveDataTest() {
        SetLanguage("en");
        m_Now.m_bRunning = true;
        m_Now.m_Progress.m_TargetUnbalance = 5;
        m_Now.m_Progress.m_Measuring = {Measurement::eFirst, 3000, 50, true, true, true, 0, 40, 50};
        m_Now.m_Progress.m_Readings[0] = {true, false, 100.0, 0.0};
        SetAction(CPreBalCodes::eMeasure);
    }
    void SetAction(std::int32_t Action, std::int32_t Step = CPreBalCodes::eSetup) {
        m_Now.m_Notification.m_Values[0] = Step;
        m_Now.m_Notification.m_Values[1] = Action;
    }
    void Be(Measurement Which) { m_Now.m_Progress.m_Measuring.m_Which = Which; }
    CArrivedReadings::CReading Make(std::uint64_t Time, std::int16_t X, std::int16_t Y,
                                    std::uint8_t Plane = 0) {
        const CPreBalProgress::CMeasuring& rMeasuring = m_Now.m_Progress.m_Measuring;
        return {Time, Plane, X, Y, rMeasuring.m_Which, rMeasuring.m_bSampling};
    }
    CPolarPlotData Look(const Arrived& rArrived = {}, std::size_t Place = 0) {
        m_Data.Look(m_Now, rArrived);
        return m_Data.GetPlanes().at(Place).m_Plot;
    }

    CSituation m_Now;
    CLiveData m_Data;
};

}  // namespace

TEST_F(LiveDataTest, BeforeARunThereIsNothing) {
    EXPECT_TRUE(m_Data.GetPlanes().empty());
}

TEST_F(LiveDataTest, EachReadingThatArrivedIsAPointOnce) {
    Look({Make(1000, 100, 2), Make(1050, 102, -2)});
    const CPolarPlotData Plot = Look({Make(1100, 98, 0)});
    EXPECT_EQ(Plot.m_Readings, (std::vector<CVectorReading>{{100, 2}, {102, -2}, {98, 0}}));
    EXPECT_NEAR(Plot.m_Mean->m_X, 100.0, 1e-12);
    EXPECT_NEAR(Plot.m_Mean->m_Y, 0.0, 1e-12);
    EXPECT_TRUE(Plot.m_bCounts);
    ASSERT_TRUE(Plot.m_Ellipse);
    EXPECT_NEAR(Plot.m_Ellipse->m_X, 100.0, 1e-12);
    EXPECT_EQ(Look().m_Readings.size(), 3U) << "no reading came";
}

TEST_F(LiveDataTest, OnlyAsMuchIsShownAsTheAverageGoesOver) {
    Look({Make(1000, 1, 0), Make(2000, 2, 0)});
    EXPECT_EQ(Look({Make(2999, 3, 0)}).m_Readings.size(), 3U);
    EXPECT_EQ(Look({Make(3000, 4, 0)}).m_Readings, (std::vector<CVectorReading>{{2, 0}, {3, 0}, {4, 0}}));
}

TEST_F(LiveDataTest, ReadingsBeforeSamplingArePaleAndGoWhenItBegins) {
    m_Now.m_Progress.m_Measuring.m_bSampling = false;
    const CPolarPlotData Pale = Look({Make(1000, 7, 0), Make(1001, 7, 0), Make(1002, 8, 0)});
    EXPECT_FALSE(Pale.m_bCounts);
    EXPECT_EQ(Pale.m_Readings.size(), 3U);
    EXPECT_FALSE(Pale.m_Ellipse);
    m_Now.m_Progress.m_Measuring.m_bSampling = true;
    EXPECT_EQ(Look({Make(1050, 9, 0)}).m_Readings, (std::vector<CVectorReading>{{9, 0}}));
}

TEST_F(LiveDataTest, ThePathGoesFromTheFirstMeasurementOverTheTestToTheLast) {
    SetAction(CPreBalCodes::eMeasurementValuesOK);
    Look({Make(1000, 100, 0)});
    Be(Measurement::eNone);
    SetAction(CPreBalCodes::eSpindleStop);
    EXPECT_TRUE(Look().m_Readings.empty()) << "they belong to the measurement";
    Be(Measurement::eTest1);
    SetAction(CPreBalCodes::eMeasurementValuesOK);
    m_Now.m_Progress.m_Readings[0] = {true, false, 60.0, 90.0};
    EXPECT_EQ(Look().m_Stations.size(), 2U);
    Be(Measurement::eFinal);
    SetAction(CPreBalCodes::eMeasure, CPreBalCodes::eSetupSuccess);
    m_Now.m_Progress.m_Readings[0] = {true, true, 2.0, 180.0};
    const CPolarPlotData Plot = Look();
    ASSERT_EQ(Plot.m_Stations.size(), 3U);
    EXPECT_EQ(Plot.m_Stations[0].m_Label, "first");
    EXPECT_NEAR(Plot.m_Stations[0].m_Mean.m_X, 100.0, 1e-9);
    EXPECT_EQ(Plot.m_Stations[1].m_Label, "test");
    EXPECT_NEAR(Plot.m_Stations[1].m_Mean.m_Y, 60.0, 1e-9);
    EXPECT_EQ(Plot.m_Stations[2].m_Label, "final");
    EXPECT_NEAR(Plot.m_Stations[2].m_Mean.m_X, -2.0, 1e-9);
    EXPECT_EQ(m_Data.GetPlanes()[0].m_Bar.m_First, 100.0);
    EXPECT_EQ(m_Data.GetPlanes()[0].m_Bar.m_Reading, 2.0);
}

TEST_F(LiveDataTest, TwoPlanesHaveTheirOwnReadingsAndTitles) {
    m_Now.m_Progress.m_Readings[1] = {true, false, 40.0, 270.0};
    Look({Make(1000, 100, 0), Make(1000, 0, -40, 1)});
    ASSERT_EQ(m_Data.GetPlanes().size(), 2U);
    EXPECT_EQ(m_Data.GetPlanes()[0].m_Plot.m_Title, "Plane 1");
    EXPECT_EQ(m_Data.GetPlanes()[1].m_Plot.m_Title, "Plane 2");
    EXPECT_EQ(m_Data.GetPlanes()[0].m_Plot.m_Readings, (std::vector<CVectorReading>{{100, 0}}));
    EXPECT_EQ(m_Data.GetPlanes()[1].m_Plot.m_Readings, (std::vector<CVectorReading>{{0, -40}}));
}

TEST_F(LiveDataTest, TheSecondPlaneAloneNeedsNoTitle) {
    m_Now.m_Progress.m_Readings[0] = {};
    m_Now.m_Progress.m_Readings[1] = {true, false, 40.0, 270.0};
    const CPolarPlotData Plot = Look({Make(1000, 0, -40, 1)});
    EXPECT_TRUE(Plot.m_Title.isEmpty());
    EXPECT_EQ(Plot.m_Readings.size(), 1U);
}

TEST_F(LiveDataTest, TheLastRunStaysUntilTheNextBegins) {
    SetAction(CPreBalCodes::eMeasurementValuesOK);
    Look({Make(1000, 100, 0)});
    m_Now.m_bRunning = false;
    EXPECT_EQ(Look().m_Stations.size(), 1U);
    m_Now.m_bRunning = true;
    Be(Measurement::eNone);
    SetAction(CPreBalCodes::eSpindleStop);
    EXPECT_TRUE(Look().m_Stations.empty());
}

namespace {

class LiveViewTest : public testing::Test {
protected:
    LiveViewTest() {
        m_View.resize(300, 400);
        m_View.show();
        Settle();
    }
    void Settle() { QCoreApplication::processEvents(); }
    void Show(double Reading) {
        CLivePlane Plane;
        Plane.m_Plot.m_Target = Plane.m_Bar.m_Target = 5.0;
        Plane.m_Bar.m_Reading = Reading;
        m_View.Show({Plane});
    }

    CVirtualEventLoop m_Loop;
    CLiveView m_View;
};

}  // namespace

TEST_F(LiveViewTest, WhatHasNotChangedIsNotDrawnAgain) {
    Show(3.0);
    Settle();
    const std::uint64_t nDrawn = m_View.GetPictures();
    for (int i = 0; i < 10; ++i) {
        m_Loop.Advance(100);
        Show(3.0);
        Settle();
    }
    EXPECT_EQ(m_View.GetPictures(), nDrawn);
}

TEST_F(LiveViewTest, HoweverFastReadingsComeSixtyPicturesASecondAreDrawnAtMost) {
    const std::uint64_t nBefore = m_View.GetPictures();
    for (int i = 0; i < 1000; ++i) {
        Show(i);
        Settle();
        m_Loop.Advance(1);
        Settle();
    }
    const std::uint64_t nDrawn = m_View.GetPictures() - nBefore;
    EXPECT_LE(nDrawn, 60U);
    EXPECT_GE(nDrawn, 50U) << "and not fewer than needed";
}

TEST_F(LiveViewTest, TheLastStateIsAlwaysDrawn) {
    Show(1.0);
    Settle();
    Show(2.0);
    m_Loop.Advance(100);
    Settle();
    const QImage Before = m_View.grab().toImage();
    Show(2.0);
    EXPECT_EQ(m_View.grab().toImage(), Before);
    Show(400.0);
    m_Loop.Advance(100);
    Settle();
    EXPECT_NE(m_View.grab().toImage(), Before);
}

TEST_F(LiveViewTest, ScreenReadersGetThePlotInWords) {
    EXPECT_NE(m_View.accessibleDescription(), "");
    Show(3.0);
    EXPECT_TRUE(m_View.accessibleDescription().contains("target 5"))
        << m_View.accessibleDescription().toStdString();
}
