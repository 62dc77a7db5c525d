// The sections of measurements, and the drawings.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "archive/advicethresholds.h"
#include "archive/report/polardrawing.h"
#include "archive/report/reportsections.h"
#include "archive/report/reporttext.h"
#include "archive/report/trenddrawing.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

using ReportText::Say;

namespace ReportSections {

namespace {

constexpr double CONFIDENCE = 0.95;

double GetAngleDeg(const CVectorReading& rVector) {
    return std::atan2(rVector.m_Y, rVector.m_X) * 180.0 / std::numbers::pi;
}

double GetLength(const CVectorReading& rVector) {
    return std::hypot(rVector.m_X, rVector.m_Y);
}

/// The region of a measurement's mean; nothing where its scatter isn't known.
std::optional<CEllipse> MakeEllipse(const CMeasuredPlane& rPlane) {
    if (rPlane.m_nReadings < AdviceThresholds::MIN_READINGS) {
        return std::nullopt;
    }
    math::matrix<double> Covariance(2, 2);
    Covariance(0, 0) = rPlane.m_VarianceX;
    Covariance(1, 1) = rPlane.m_VarianceY;
    Covariance(0, 1) = Covariance(1, 0) = rPlane.m_CovarianceXY;
    return CVectorStatistics(rPlane.m_nReadings, rPlane.m_Mean, Covariance).GetConfidenceEllipse(CONFIDENCE);
}

/// "120 µm/s @ 45°"
std::string WriteVector(const CVectorReading& rVector) {
    return ReportText::Reading(GetLength(rVector)) + " " + Units::UNBALANCE + " @ " +
           ReportText::Angle(GetAngleDeg(rVector));
}

CPolarDrawing MakeDrawing(const CRunRecord& rRecord, std::size_t Plane) {
    CPolarDrawing Drawing;
    Drawing.m_Title = NamePlane(Plane);
    Drawing.m_Target = rRecord.m_Setup.m_TargetUnbalance;
    Drawing.m_TargetLabel =
        Say("REPORT_TARGET_CIRCLE", {std::to_string(rRecord.m_Setup.m_TargetUnbalance), Units::UNBALANCE});
    for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
        const auto& rPlane = rMeasurement.m_Planes.at(Plane);
        if (!rPlane) {
            continue;
        }
        // One that was made again takes the place of the former.
        std::erase_if(Drawing.m_Stations, [&](const CPolarDrawing::CStation& rEach) {
            return rEach.m_Which == rMeasurement.m_Which;
        });
        Drawing.m_Stations.push_back(
            {rMeasurement.m_Which,
             NameMeasurement(rMeasurement.m_Which) + ": " + WriteVector(rPlane->m_Smoothed),
             rPlane->m_Smoothed, MakeEllipse(*rPlane)});
    }
    Drawing.m_Description = Drawing.m_Title;
    for (const CPolarDrawing::CStation& rStation : Drawing.m_Stations) {
        Drawing.m_Description += "; " + rStation.m_Label;
    }
    return Drawing;
}

}  // namespace

void AddPlots(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    bool bHeading = false;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        CPolarDrawing Drawing = MakeDrawing(rRecord, Plane);
        if (Drawing.m_Stations.empty()) {
            continue;
        }
        if (!bHeading) {
            rBlocks.emplace_back(CReportHeading{GetText("REPORT_PLOTS")});
            bHeading = true;
        }
        CReportDrawings Drawings;
        const double Reach = Drawing.GetReach();
        Drawings.m_Drawings.push_back(CPolarDrawing::Make(Drawing, Reach));
        // What is left beside what was there can't be seen: it is shown once more by itself.
        constexpr double TOO_SMALL = 0.3;
        if (Drawing.GetEndReach() < TOO_SMALL * Reach && Drawing.m_Stations.size() > 1) {
            CPolarDrawing End = Drawing;
            End.m_Title = Say("REPORT_ENLARGED", {Drawing.m_Title});
            End.m_Description = End.m_Title + "; " + End.m_Stations.back().m_Label;
            const auto& rLast = *rRecord.m_Measurements.back().m_Planes.at(Plane);
            for (const CArchivedReading& rReading : rLast.m_Readings) {
                End.m_Readings.push_back(
                    {static_cast<double>(rReading.m_X), static_cast<double>(rReading.m_Y)});
            }
            Drawings.m_Drawings.push_back(CPolarDrawing::Make(std::move(End), Drawing.GetEndReach() * 1.2));
        }
        rBlocks.emplace_back(std::move(Drawings));
    }
    if (bHeading) {
        rBlocks.emplace_back(CReportParagraph{GetText("REPORT_PLOTS_NOTE"), CReportParagraph::Kind::eNote});
    }
}

void AddMeasurements(CBlocks& rBlocks, const CReportedRun& rRun) {
    CReportTable Table;
    Table.m_Header = {GetText("REPORT_MEASUREMENT"),
                      GetText("REPORT_PLANE_HEAD"),
                      Say("REPORT_READING_IN", {Units::UNBALANCE}),
                      GetText("REPORT_ANGLE"),
                      GetText("REPORT_UNCERTAINTY"),
                      GetText("REPORT_READINGS"),
                      GetText("REPORT_RPM")};
    for (const CRunMeasurement& rMeasurement : rRun.m_Record.m_Measurements) {
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            if (const auto& rPlane = rMeasurement.m_Planes.at(Plane)) {
                const auto Ellipse = MakeEllipse(*rPlane);
                Table.m_Rows.push_back({NameMeasurement(rMeasurement.m_Which), std::to_string(Plane + 1),
                                        ReportText::Reading(GetLength(rPlane->m_Smoothed)),
                                        ReportText::Angle(GetAngleDeg(rPlane->m_Smoothed)),
                                        Ellipse ? "± " + ReportText::Digits(Ellipse->m_SemiMajor, 2)
                                                : GetText("REPORT_NOT_KNOWN"),
                                        std::to_string(rPlane->m_nReadings),
                                        ReportText::Fixed(rMeasurement.m_MeanRpm, 0)});
            }
        }
    }
    if (Table.m_Rows.empty()) {
        return;
    }
    Table.m_Caption = GetText("REPORT_UNCERTAINTY_NOTE");
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_MEASUREMENTS")});
    rBlocks.emplace_back(std::move(Table));
}

void AddTrend(CBlocks& rBlocks, const CReportInput& rInput) {
    constexpr std::size_t SHOWN = 20;
    if (rInput.m_Trend.size() < 2) {
        return;  // one run is no trend
    }
    CTrendDrawing Trend;
    Trend.m_Points = rInput.m_Trend;
    if (Trend.m_Points.size() > SHOWN) {
        Trend.m_Points.erase(Trend.m_Points.begin(), Trend.m_Points.end() - SHOWN);
    }
    Trend.m_Before = GetText("REPORT_TREND_BEFORE");
    Trend.m_Within = GetText("REPORT_TREND_WITHIN");
    Trend.m_Over = GetText("REPORT_TREND_OVER");
    Trend.m_FirstDate = ReportText::Date(Trend.m_Points.front().m_Date, rInput.m_bFixedDate);
    Trend.m_LastDate = ReportText::Date(Trend.m_Points.back().m_Date, rInput.m_bFixedDate);
    Trend.m_Unit = Units::UNBALANCE;
    const auto nWithin = std::ranges::count_if(
        Trend.m_Points, [](const CReportTrendPoint& rPoint) { return rPoint.m_bWithin; });
    Trend.m_Description =
        Say("REPORT_TREND_SAYS", {std::to_string(nWithin), std::to_string(Trend.m_Points.size())});
    const std::string Caption = Trend.m_Description;
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_TREND")});
    rBlocks.emplace_back(CReportDrawings{{CTrendDrawing::Make(std::move(Trend))}, Caption});
}

}  // namespace ReportSections
