#pragma once
#include <array>
#include <cstddef>
#include <vector>

#include "console/polarplot.h"
#include "console/runpath.h"
#include "console/situation.h"
#include "console/targetbar.h"
#include "contract/arrivedreadings.h"

/// What the live view shows of a plane.
struct CLivePlane {
    CPolarPlotData m_Plot;
    CTargetBarData m_Bar;

    bool operator==(const CLivePlane&) const = default;
};

/// Makes of what a run shows, and of the readings that arrived, what the live view draws: the readings of the
/// present measurement that its average goes over, their statistics, and the path of the run. Keeps the
/// last run's until the next one begins.
class CLiveData {
public:
    /// The probability of the ellipses.
    static constexpr double CONFIDENCE = 0.95;

    /// rArrived: since the last look.
    void Look(const CSituation& rSituation, const std::vector<CArrivedReadings::CReading>& rArrived);
    /// The planes that are balanced, in their order; none before there was a run. In the language in use.
    std::vector<CLivePlane> GetPlanes() const;

private:
    static constexpr std::size_t PLANES = 2;

    void Take(const std::vector<CArrivedReadings::CReading>& rArrived);
    bool HasTwoPlanes() const;
    CLivePlane MakePlane(std::size_t Plane) const;
    std::vector<CPolarPlotData::CStation> MakeStations(std::size_t Plane) const;

    bool m_bRunning = false;
    CSituation m_Run;  ///< as last seen
    CRunPath m_Path;
    std::vector<CArrivedReadings::CReading> m_Readings;  ///< of the present measurement
    std::array<CPolarRange, PLANES> m_Ranges{};
};
