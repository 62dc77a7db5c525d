#include "console/rungatherer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "archive/vectorstatistics.h"
#include "console/operatorrules.h"
#include "console/rundriver.h"
#include "console/runreport.h"
#include "console/runsetup.h"
#include "platform/system/eventloop.h"

namespace {

using Arrived = CArrivedReadings::CReading;

/// What the page shows is a whole measurement, which only has to be accepted.
bool IsComplete(const CSituation& rSituation) {
    const CNcNotification& rNotification = rSituation.m_Notification;
    return rSituation.m_Progress.m_Measuring.m_Which != Measurement::eNone &&
           (IsVerdict(rNotification.GetStep())
                ? IsMeasuredVerdict(rSituation)
                : rNotification.GetAction() == CNcNotification::eMeasurementValuesOK);
}

CVectorReading ToVector(const CPreBalProgress::CReading& rReading) {
    const double a = rReading.m_AngleDeg * std::numbers::pi / 180.0;
    return {rReading.m_Amplitude * std::cos(a), rReading.m_Amplitude * std::sin(a)};
}

}  // namespace

void CRunGatherer::Begin(CRunRecord Head) {
    m_Record = std::move(Head);
    m_Rings = GetRecordRings(m_Record.m_Setup);
    m_Begin = IFEventLoop::Current().Now();
    m_bGathering = true;
    m_Readings.clear();
    m_Complete.reset();
    m_State.clear();
    m_Warned.clear();
    Tell();
}

std::uint64_t CRunGatherer::GetTime() const {
    return IFEventLoop::Current().Now() - m_Begin;
}

void CRunGatherer::Tell() const {
    if (OnChanged) {
        OnChanged();
    }
}

void CRunGatherer::Look(const CSituation& rSituation, const std::vector<Arrived>& rArrived) {
    if (!m_bGathering || !rSituation.m_bRunning) {
        return;
    }
    Keep(rArrived, rSituation.m_Progress.m_Measuring);
    if (IsComplete(rSituation)) {
        m_Complete = MakeMeasurement(rSituation);
    } else if (m_Complete && m_Complete->m_Which == rSituation.m_Progress.m_Measuring.m_Which) {
        m_Complete.reset();  // it was complete, but speed or lock got lost before anybody accepted it
    }
}

void CRunGatherer::Keep(const std::vector<Arrived>& rArrived, const CPreBalProgress::CMeasuring& rMeasuring) {
    m_Readings.insert(m_Readings.end(), rArrived.begin(), rArrived.end());
    const std::uint64_t Length = std::uint64_t{rMeasuring.m_nNeeded} * rMeasuring.m_SamplePeriod;
    const std::uint64_t Now = IFEventLoop::Current().Now();
    std::erase_if(m_Readings, [&](const Arrived& rReading) {
        return rReading.m_Measurement != rMeasuring.m_Which || !rReading.m_bCounts ||
               rReading.m_Time + Length <= Now;
    });
}

CRunMeasurement CRunGatherer::MakeMeasurement(const CSituation& rSituation) const {
    CRunMeasurement Result;
    Result.m_Which = rSituation.m_Progress.m_Measuring.m_Which;
    for (std::size_t Plane = 0; Plane < Result.m_Planes.size(); ++Plane) {
        if (rSituation.m_Progress.m_Readings.at(Plane).m_bShown) {
            Result.m_Planes.at(Plane) = MakePlane(rSituation, Plane);
        }
    }
    for (const CFitting& rFitting : FindFittings(rSituation, m_Rings)) {
        std::optional<CMeasuredPlane>& rPlane = Result.m_Planes.at(rFitting.m_Plane);
        if (!rPlane) {
            continue;
        }
        rPlane->m_Fitted.m_Weights = rFitting.m_Angles;
        for (const CRotorScrew& rScrew : rFitting.m_Screws) {
            rPlane->m_Fitted.m_Screws.push_back({rScrew.m_Hole, rScrew.m_Grams});
        }
    }
    // A module that tells its speed once is read as well as one that tells it with each reading.
    Result.m_MeanRpm = Result.m_MinRpm = Result.m_MaxRpm = rSituation.m_Progress.m_CurrentRPM;
    if (!m_Readings.empty()) {
        const auto [Min, Max] = std::ranges::minmax(m_Readings, {}, &Arrived::m_RPM);
        double Sum = 0.0;
        for (const Arrived& rReading : m_Readings) {
            Sum += rReading.m_RPM;
        }
        Result.m_MeanRpm = Sum / static_cast<double>(m_Readings.size());
        Result.m_MinRpm = Min.m_RPM;
        Result.m_MaxRpm = Max.m_RPM;
    }
    return Result;
}

CMeasuredPlane CRunGatherer::MakePlane(const CSituation& rSituation, std::size_t Plane) const {
    CMeasuredPlane Result;
    Result.m_Smoothed = ToVector(rSituation.m_Progress.m_Readings.at(Plane));
    std::vector<CVectorReading> Vectors;
    for (const Arrived& rReading : m_Readings) {
        if (rReading.m_Plane == Plane) {
            Result.m_Readings.push_back(
                {static_cast<std::uint32_t>(rReading.m_Time - std::min(rReading.m_Time, m_Begin)),
                 rReading.m_X, rReading.m_Y});
            Vectors.push_back({static_cast<double>(rReading.m_X), static_cast<double>(rReading.m_Y)});
        }
    }
    const CVectorStatistics Statistics(Vectors);
    Result.m_nReadings = Vectors.size();
    Result.m_Mean = Statistics.GetMean();
    Result.m_VarianceX = Statistics.GetCovariance()(0, 0);
    Result.m_VarianceY = Statistics.GetCovariance()(1, 1);
    Result.m_CovarianceXY = Statistics.GetCovariance()(0, 1);
    return Result;
}

void CRunGatherer::See(const CSituation& rSituation) {
    if (!m_bGathering || !rSituation.m_bRunning || HasGoneOn(rSituation)) {
        return;
    }
    m_Record.m_Result = CRunReport::StepToString(rSituation.m_Notification.GetStep());
    if (std::exchange(m_State, rSituation.m_Progress.m_State) != rSituation.m_Progress.m_State) {
        m_Warned.clear();
    }
    // A verdict at the border of the target comes and goes; once in a state says it.
    const std::uint32_t Number = rSituation.m_Warning;
    if (Number != 0 && m_Warned.insert(Number).second) {
        m_Record.m_Warnings.push_back({GetTime(), Number, rSituation.m_Progress.m_Warning});
        Tell();
    }
}

void CRunGatherer::Accept() {
    if (!m_bGathering || !m_Complete) {
        return;
    }
    m_Complete->m_Time = GetTime();
    m_Record.m_Measurements.push_back(*std::exchange(m_Complete, std::nullopt));
    Tell();
}

bool CRunGatherer::HasGoneOn(const CSituation& rSituation) const {
    return m_bGathering && m_Record.Find(Measurement::eFinal) != nullptr && rSituation.m_bRunning &&
           !IsVerdict(rSituation.m_Notification.GetStep()) &&
           rSituation.m_Notification.GetStep() != CNcNotification::eFailure;
}

void CRunGatherer::SetPrediction(const std::array<std::optional<CPlanePrediction>, 2>& rPrediction) {
    m_Record.m_Prediction = rPrediction;
    Tell();
}

void CRunGatherer::End(CRunRecord::State State, std::chrono::sys_seconds Ended, bool bSaved,
                       std::optional<CRunCalibration> Calibration) {
    if (!m_bGathering) {
        return;
    }
    m_bGathering = false;
    m_Record.m_State = State;
    m_Record.m_Ended = Ended;
    m_Record.m_bSaved = bSaved;
    m_Record.m_Calibration = std::move(Calibration);
    Tell();
}
