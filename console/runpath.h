#pragma once
#include <array>
#include <cstddef>
#include <optional>

#include "console/situation.h"

/// The complete measurements of a run, in the order in which it makes them: what was measured first, with the
/// test weights, and at the end. A re-balancing that goes on from the end begins anew.
class CRunPath {
public:
    /// As the page has smoothed it.
    struct CReading {
        double m_Amplitude;
        double m_AngleDeg;

        bool operator==(const CReading&) const = default;
    };
    /// Per plane of the machine; nothing for one that isn't balanced.
    using Readings = std::array<std::optional<CReading>, 2>;

    /// The smoothed readings on the page.
    static Readings GetReadings(const CSituation& rSituation);

    /// To be called with each situation of the run in which something may have changed. True if the path
    /// begins with it.
    bool Look(const CSituation& rSituation);
    /// Nothing for a measurement that isn't complete: the final one only while its verdict stands.
    const std::optional<Readings>& Get(Measurement Which) const {
        return m_Stations.at(static_cast<std::size_t>(Which));
    }
    /// The last complete one before the final one.
    const std::optional<Readings>& GetLatest() const { return Get(m_Latest); }

private:
    static constexpr std::size_t COUNT = static_cast<std::size_t>(Measurement::eFinal) + 1;

    std::array<std::optional<Readings>, COUNT> m_Stations;
    Measurement m_Latest = Measurement::eNone;
    Measurement m_LastSeen = Measurement::eNone;
};
