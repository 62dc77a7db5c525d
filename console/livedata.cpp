#include "console/livedata.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/rvldb/gettext.h"

namespace {

/// Readings that don't count are shown for so long, ms: to see whether they come at all.
constexpr std::uint64_t PALE_TIME = 2000;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

CVectorReading ToVector(const CRunPath::CReading& rReading) {
    const double a = rReading.m_AngleDeg * std::numbers::pi / 180.0;
    return {rReading.m_Amplitude * std::cos(a), rReading.m_Amplitude * std::sin(a)};
}

}  // namespace

void CLiveData::Look(const CSituation& rSituation, const std::vector<CArrivedReadings::CReading>& rArrived) {
    if (!rSituation.m_bRunning) {
        m_bRunning = false;
        return;
    }
    if (!m_bRunning) {
        *this = CLiveData();
        m_bRunning = true;
    }
    m_Run = rSituation;
    m_Path.Look(rSituation);
    Take(rArrived);
    for (std::size_t Plane = 0; Plane < PLANES; ++Plane) {
        if (rSituation.m_Progress.m_Readings.at(Plane).m_bShown) {
            m_Ranges.at(Plane) = ChooseRange(MakePlane(Plane).m_Plot, m_Ranges.at(Plane));
        }
    }
}

void CLiveData::Take(const std::vector<CArrivedReadings::CReading>& rArrived) {
    m_Readings.insert(m_Readings.end(), rArrived.begin(), rArrived.end());
    const CPreBalProgress::CMeasuring& rMeasuring = m_Run.m_Progress.m_Measuring;
    const std::uint64_t Length =
        rMeasuring.m_bSampling ? std::uint64_t{rMeasuring.m_nNeeded} * rMeasuring.m_SamplePeriod : PALE_TIME;
    const std::uint64_t Latest = m_Readings.empty() ? 0 : m_Readings.back().m_Time;
    // One that was there when sampling began is no reading of the measurement, as lock and speed weren't
    // watched for long enough then.
    std::erase_if(m_Readings, [&](const CArrivedReadings::CReading& rReading) {
        return rReading.m_Measurement != rMeasuring.m_Which || rMeasuring.m_Which == Measurement::eNone ||
               rReading.m_bCounts != rMeasuring.m_bSampling || rReading.m_Time + Length <= Latest;
    });
}

bool CLiveData::HasTwoPlanes() const {
    return std::ranges::all_of(m_Run.m_Progress.m_Readings, &CPreBalProgress::CReading::m_bShown);
}

std::vector<CPolarPlotData::CStation> CLiveData::MakeStations(std::size_t Plane) const {
    struct CName {
        Measurement m_Which;
        const char* m_pKey;
    };
    static constexpr std::array NAMES = {CName{Measurement::eFirst, "CONSOLE_STATION_FIRST"},
                                         CName{Measurement::eTest1, "CONSOLE_STATION_TEST"},
                                         CName{Measurement::eTest2, "CONSOLE_STATION_TEST"},
                                         CName{Measurement::eFinal, "CONSOLE_STATION_FINAL"}};
    std::vector<CPolarPlotData::CStation> Stations;
    for (const CName& rName : NAMES) {
        const auto& rStation = m_Path.Get(rName.m_Which);
        if (!rStation || !rStation->at(Plane)) {
            continue;
        }
        QString Label = Text(rName.m_pKey);
        if (HasTwoPlanes() &&
            (rName.m_Which == Measurement::eTest1 || rName.m_Which == Measurement::eTest2)) {
            Label += rName.m_Which == Measurement::eTest1 ? " 1" : " 2";
        }
        Stations.push_back({Label, ToVector(*rStation->at(Plane))});
    }
    return Stations;
}

CLivePlane CLiveData::MakePlane(std::size_t Plane) const {
    const CPreBalProgress& rProgress = m_Run.m_Progress;
    CLivePlane Result;
    CPolarPlotData& rPlot = Result.m_Plot;
    if (HasTwoPlanes()) {
        rPlot.m_Title = Text("CONSOLE_PLANE_TITLE").arg(Plane + 1);
    }
    rPlot.m_Target = rProgress.m_TargetUnbalance;
    rPlot.m_bCounts = rProgress.m_Measuring.m_bSampling;
    for (const CArrivedReadings::CReading& rReading : m_Readings) {
        if (rReading.m_Plane == Plane) {
            rPlot.m_Readings.push_back(
                {static_cast<double>(rReading.m_X), static_cast<double>(rReading.m_Y)});
        }
    }
    if (!rPlot.m_Readings.empty()) {
        const CVectorStatistics Statistics(rPlot.m_Readings);
        rPlot.m_Mean = Statistics.GetMean();
        rPlot.m_Ellipse = rPlot.m_bCounts ? Statistics.GetConfidenceEllipse(CONFIDENCE) : std::nullopt;
    }
    rPlot.m_Stations = MakeStations(Plane);
    rPlot.m_Range = m_Ranges.at(Plane);
    Result.m_Bar.m_Target = rPlot.m_Target;
    Result.m_Bar.m_bCounts = rPlot.m_bCounts;
    if (rProgress.m_Measuring.m_Which != Measurement::eNone) {
        Result.m_Bar.m_Reading = rProgress.m_Readings.at(Plane).m_Amplitude;
    }
    if (const auto& rFirst = m_Path.Get(Measurement::eFirst); rFirst && rFirst->at(Plane)) {
        Result.m_Bar.m_First = rFirst->at(Plane)->m_Amplitude;
    }
    return Result;
}

std::vector<CLivePlane> CLiveData::GetPlanes() const {
    std::vector<CLivePlane> Planes;
    for (std::size_t Plane = 0; Plane < PLANES; ++Plane) {
        if (m_Run.m_Progress.m_Readings.at(Plane).m_bShown) {
            Planes.push_back(MakePlane(Plane));
        }
    }
    return Planes;
}
