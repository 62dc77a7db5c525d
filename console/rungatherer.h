#pragma once
#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "archive/runrecord.h"
#include "console/situation.h"
#include "contract/arrivedreadings.h"
#include "contract/holering.h"

/// Makes the record of a run of what its panel shows and of the readings that arrive, whoever drives it.
class CRunGatherer {
public:
    /// rHead: what is known before anything is measured.
    void Begin(CRunRecord Head);
    /// A run is being gathered.
    bool IsGathering() const { return m_bGathering; }
    /// The present run, or the last one.
    const CRunRecord& Get() const { return m_Record; }

    /// To be called with each look at the panel of a run, and with the readings that came since the one
    /// before. Each must come before what it has seen is accepted.
    void Look(const CSituation& rSituation, const std::vector<CArrivedReadings::CReading>& rArrived);
    /// Something on the panel has changed: warnings may be gone by the next look.
    void See(const CSituation& rSituation);
    /// The measurement that was complete when last looked at, as long as nobody has accepted it.
    const std::optional<CRunMeasurement>& GetComplete() const { return m_Complete; }
    /// The measurement that was complete when last looked at stands.
    void Accept();
    /// The final measurement was accepted, and the procedure goes on: to a re-balancing, which is a run of
    /// its own.
    bool HasGoneOn(const CSituation& rSituation) const;

    void SetPrediction(const std::array<std::optional<CPlanePrediction>, 2>& rPrediction);
    /// What it has left in the store: nothing if that wasn't saved.
    void End(CRunRecord::State State, std::chrono::sys_seconds Ended, bool bSaved,
             std::optional<CRunCalibration> Calibration);

    /// Called when the record has changed in what outlasts a crash: begun, measured, warned, predicted,
    /// ended.
    std::function<void()> OnChanged;

private:
    void Keep(const std::vector<CArrivedReadings::CReading>& rArrived,
              const CPreBalProgress::CMeasuring& rMeasuring);
    CRunMeasurement MakeMeasurement(const CSituation& rSituation) const;
    CMeasuredPlane MakePlane(const CSituation& rSituation, std::size_t Plane) const;
    std::uint64_t GetTime() const;
    void Tell() const;

    CRunRecord m_Record;
    std::array<CHoleRing, 2> m_Rings;
    std::uint64_t m_Begin = 0;
    bool m_bGathering = false;
    /// Of the average under way, and of the last one that was complete until another begins.
    std::vector<CArrivedReadings::CReading> m_Readings;
    /// Complete at the last look.
    std::optional<CRunMeasurement> m_Complete;
    std::string m_State;               ///< of the sequence, as last seen
    std::set<std::uint32_t> m_Warned;  ///< in this state
};
