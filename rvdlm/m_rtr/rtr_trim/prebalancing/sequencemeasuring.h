#pragma once
#include <cstddef>
#include <cstdint>

#include "contract/measurement.h"
#include "contract/prebalprogress.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"

namespace Sequence {

/// What a measuring state does with its samples: wait until the window is complete and show a menu then, or
/// judge every sample against the target.
struct CMeasuringRule {
    Role m_Role;
    bool m_bFinal;
    std::int32_t m_CompleteMenu;
    CPreBalNotification::Step m_Step;  ///< complete, or within the target
    CPreBalNotification::Step m_StepOver;
    Measurement m_Measurement;  ///< in the first leg
};

/// The rule of a measuring state; null for any other.
const CMeasuringRule* FindMeasuringRule(Role StateRole);
/// Which measurement a state makes.
Measurement GetMeasurement(const CState& rState);

}  // namespace Sequence

/// The readings of a run: which of them are samples of a measurement, what the planes show meanwhile, and
/// when the measurement is complete. Window thread only.
class CSequenceMeasuring {
public:
    /// rPlanes must outlive this. nSamples: so many make a measurement complete.
    CSequenceMeasuring(CSequencePlanes& rPlanes, std::uint32_t nSamples)
        : m_rPlanes(rPlanes), m_nSamples(nSamples) {}

    /// Display states and first sample of a measuring state.
    void Begin();
    /// No sample of before is part of the measurement.
    void Restart();
    /// Keeps a reading, in counts. bConditionMet: it came in lock and at speed.
    void Store(std::size_t Plane, std::int16_t x, std::int16_t y, bool bConditionMet);
    /// The plane's last reading becomes a sample. bCanMeasure: the measuring condition holds; only then is it
    /// part of the measurement, and true is returned. Otherwise it is only shown.
    bool TakeSample(std::size_t Plane, bool bCanMeasure);
    /// Whether all that a plane's average holds was sampled while the measuring condition held, from readings
    /// that came while it held: only then is the average a measurement.
    bool IsMeasured(std::size_t Plane, bool bCanMeasure) const;
    bool AreAllMeasured(bool bCanMeasure) const;
    /// How many samples the record of a measurement that is sampled has, and how many it needs.
    void Describe(CPreBalProgress::CMeasuring& rMeasuring) const;
    /// Holds the averages against the target, in counts. Each plane shows its own verdict: one inside the
    /// target stays so while the other is over it. True if all are within.
    bool Judge(double Target);

private:
    CSequencePlanes& m_rPlanes;
    std::uint32_t m_nSamples;
};
