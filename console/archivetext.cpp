#include "console/archivetext.h"

#include <QDateTime>
#include <QString>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "archive/measurementname.h"
#include "archive/setuptext.h"
#include "console/archivejson.h"
#include "console/csv.h"
#include "console/recordjson.h"
#include "console/rotorname.h"
#include "console/texttable.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;

namespace ArchiveText {

namespace {

constexpr std::array OUTCOMES = {
    COutcome{"within-target", "ARCHIVE_COMMAND_WITHIN", CRunFilter::Result::eWithin},
    COutcome{"over-target", "ARCHIVE_COMMAND_OVER", CRunFilter::Result::eOver},
    COutcome{"failed", "ARCHIVE_COMMAND_FAILED", CRunFilter::Result::eFailed},
    COutcome{"broken-off", "ARCHIVE_COMMAND_BROKEN_OFF", CRunFilter::Result::eBrokenOff},
    COutcome{"interrupted", "ARCHIVE_COMMAND_INTERRUPTED", CRunFilter::Result::eInterrupted},
};

std::string ShowNumber(double Value) {
    std::array<char, 64> Text{};
    std::snprintf(Text.data(), Text.size(), "%.1f", Value);
    return Text.data();
}

std::string ShowAmplitudes(const std::array<std::optional<double>, 2>& rPlanes) {
    std::string Text;
    for (const std::optional<double>& rPlane : rPlanes) {
        if (rPlane) {
            Text += (Text.empty() ? "" : " / ") + ShowNumber(*rPlane);
        }
    }
    return Text.empty() ? "-" : Text;
}

}  // namespace

std::span<const COutcome> GetOutcomes() {
    return OUTCOMES;
}

const COutcome* FindOutcome(std::string_view Name) {
    const auto* const pFound =
        std::ranges::find_if(OUTCOMES, [Name](const COutcome& rEach) { return Name == rEach.m_pName; });
    return pFound == OUTCOMES.end() ? nullptr : pFound;
}

std::optional<std::chrono::sys_seconds> ParseDate(const std::string& rText) {
    const QString Text = QString::fromStdString(rText);
    QDateTime Moment = QDateTime::fromString(Text, Qt::ISODate);
    if (!Moment.isValid()) {
        return std::nullopt;
    }
    return std::chrono::sys_seconds(std::chrono::seconds(Moment.toSecsSinceEpoch()));
}

std::string CheckDate(const std::string& rText) {
    return ParseDate(rText) ? "" : "\"" + rText + "\" is no date; give 2026-01-31 or 2026-01-31T12:00";
}

std::string ShowMoment(std::chrono::sys_seconds Moment) {
    return QDateTime::fromSecsSinceEpoch(Moment.time_since_epoch().count())
        .toString(QStringLiteral("yyyy-MM-dd HH:mm"))
        .toStdString();
}

std::string Shown(const std::string& rText) {
    return CleanName(rText);
}

std::string ShowOutcome(CRunRecord::State State, const std::string& rResult, bool bSaved) {
    const COutcome* const pText = FindOutcome(ArchiveJson::GetOutcome(State, rResult));
    return GetText(pText->m_pKey) + (State == CRunRecord::State::eFinished && !bSaved
                                         ? ", " + GetText("ARCHIVE_COMMAND_NOT_SAVED")
                                         : "");
}

std::string MakeCsv(const std::vector<CRunSummary>& rRuns) {
    std::string Text;
    Text += Csv::Line({"id", "started", "machine", "configuration", "mode", "rotor", "driver", "procedure",
                       "outcome", "saved", "before_1", "before_2", "after_1", "after_2"});
    const auto Cell = [](const std::optional<double>& rValue) {
        return rValue ? Csv::Cell(*rValue) : std::string();
    };
    for (const CRunSummary& rRun : rRuns) {
        Text += Csv::Line(
            {std::to_string(rRun.m_Id), RecordJson::WriteInstant(rRun.m_Started), Csv::Cell(rRun.m_Machine),
             Csv::Cell(rRun.m_Configuration), Csv::Cell(rRun.m_Mode), Csv::Cell(rRun.m_Rotor),
             ArchiveJson::GetDriver(rRun.m_Driver), rRun.m_bRebalance ? "rebalance" : "prebalance",
             ArchiveJson::GetOutcome(rRun.m_State, rRun.m_Result), rRun.m_bSaved ? "1" : "0",
             Cell(rRun.m_Before[0]), Cell(rRun.m_Before[1]), Cell(rRun.m_After[0]), Cell(rRun.m_After[1])});
    }
    return Text;
}

std::string MakeList(const std::vector<CRunSummary>& rRuns) {
    std::vector<std::vector<std::string>> Rows = {
        {GetText("ARCHIVE_COMMAND_NUMBER"), GetText("ARCHIVE_COMMAND_BEGUN"),
         GetText("ARCHIVE_COMMAND_MACHINE"), GetText("ARCHIVE_COMMAND_CONFIGURATION"),
         GetText("ARCHIVE_COMMAND_ROTOR"), GetText("ARCHIVE_COMMAND_BEFORE"),
         GetText("ARCHIVE_COMMAND_AFTER"), GetText("ARCHIVE_COMMAND_RESULT")}};
    constexpr qsizetype LONGEST = 30;
    for (const CRunSummary& rRun : rRuns) {
        const QString Rotor = QString::fromStdString(Shown(rRun.m_Rotor));
        Rows.push_back({std::to_string(rRun.m_Id), ShowMoment(rRun.m_Started), Shown(rRun.m_Machine),
                        Shown(rRun.m_Configuration),
                        (Rotor.size() > LONGEST ? Rotor.left(LONGEST - 1) + u'…' : Rotor).toStdString(),
                        ShowAmplitudes(rRun.m_Before), ShowAmplitudes(rRun.m_After),
                        ShowOutcome(rRun.m_State, rRun.m_Result, rRun.m_bSaved)});
    }
    return MakeTable(Rows);
}

std::string Describe(const CRunMeasurement& rMeasurement) {
    std::string Text;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        const auto& rPlane = rMeasurement.m_Planes.at(Plane);
        if (!rPlane) {
            continue;
        }
        constexpr double DEGREES = 57.29577951308232;
        const double Angle = std::atan2(rPlane->m_Smoothed.m_Y, rPlane->m_Smoothed.m_X) * DEGREES;
        std::string Fitted;
        for (const int Weight : rPlane->m_Fitted.m_Weights) {
            Fitted += (Fitted.empty() ? "" : ", ") + std::to_string(Weight) + "°";
        }
        for (const CFittedScrew& rScrew : rPlane->m_Fitted.m_Screws) {
            Fitted += (Fitted.empty() ? "" : ", ") +
                      Fill("RUN_SCREW", {ShowNumber(rScrew.m_Grams), std::to_string(rScrew.m_Hole)});
        }
        Text +=
            Fill("ARCHIVE_COMMAND_MEASUREMENT",
                 {MeasurementName::Get(rMeasurement.m_Which), std::to_string(Plane + 1),
                  ShowNumber(std::hypot(rPlane->m_Smoothed.m_X, rPlane->m_Smoothed.m_Y)), Units::UNBALANCE,
                  std::to_string(std::lround(Angle < 0.0 ? Angle + 360.0 : Angle) % 360),
                  std::to_string(std::lround(rMeasurement.m_MeanRpm)), std::to_string(rPlane->m_nReadings),
                  Fitted.empty() ? "-" : Fitted}) +
            "\n";
    }
    return Text;
}

std::string GetCsvNames() {
    return Csv::Line(
        {"id",          "started", "machine",    "configuration", "rotor",         "procedure",  "outcome",
         "measurement", "t_ms",    "rpm",        "plane",         "smoothed_x",    "smoothed_y", "n",
         "mean_x",      "mean_y",  "variance_x", "variance_y",    "covariance_xy", "fitted",     "readings"});
}

std::string MakeMeasurementsCsv(const CRunRecord& rRun) {
    std::string Text;
    for (const CRunMeasurement& rMeasurement : rRun.m_Measurements) {
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            const auto& rPlane = rMeasurement.m_Planes.at(Plane);
            if (!rPlane) {
                continue;
            }
            std::string Readings;
            for (const CArchivedReading& rReading : rPlane->m_Readings) {
                Readings += (Readings.empty() ? "" : " ") + std::to_string(rReading.m_Time) + ":" +
                            std::to_string(rReading.m_X) + ":" + std::to_string(rReading.m_Y);
            }
            Text += Csv::Line({std::to_string(rRun.m_Id),
                               RecordJson::WriteInstant(rRun.m_Started),
                               Csv::Cell(rRun.m_Machine),
                               Csv::Cell(rRun.m_Setup.m_Configuration),
                               Csv::Cell(rRun.m_Rotor),
                               rRun.m_bRebalance ? "rebalance" : "prebalance",
                               ArchiveJson::GetOutcome(rRun.m_State, rRun.m_Result),
                               MeasurementName::Get(rMeasurement.m_Which),
                               std::to_string(rMeasurement.m_Time),
                               Csv::Cell(rMeasurement.m_MeanRpm),
                               std::to_string(Plane + 1),
                               Csv::Cell(rPlane->m_Smoothed.m_X),
                               Csv::Cell(rPlane->m_Smoothed.m_Y),
                               std::to_string(rPlane->m_nReadings),
                               Csv::Cell(rPlane->m_Mean.m_X),
                               Csv::Cell(rPlane->m_Mean.m_Y),
                               Csv::Cell(rPlane->m_VarianceX),
                               Csv::Cell(rPlane->m_VarianceY),
                               Csv::Cell(rPlane->m_CovarianceXY),
                               Csv::Cell(FittingToText(rPlane->m_Fitted)),
                               Csv::Cell(Readings)});
        }
    }
    return Text;
}

}  // namespace ArchiveText
