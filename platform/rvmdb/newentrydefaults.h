#pragma once
#include <array>
#include <cstdint>

#include "platform/rvmdb/typebase.h"

namespace PreBalDB {

/// The values of a new configuration, all in this one place.
struct CNewEntryDefaults {
    /// Half width of the speed window: wide enough for a drive's speed ripple, narrow enough that the
    /// influence coefficient doesn't change across it.
    static constexpr std::uint32_t eRPMTolerance = 50;
    /// Counts ("µm/s" at the panel).
    static constexpr std::uint32_t eTargetUnbalance = 5;
    /// 40 samples of 50 ms: two seconds of averaging.
    static constexpr std::uint32_t eNumberOfSamples = 40;
    static constexpr CTypeBase::Direction eRotationDirection = CTypeBase::eClockwise;
    static constexpr CTypeBase::Direction eScalingDirection = CTypeBase::eClockwise;
    static constexpr std::uint32_t eNumberOfHoles = 12;
    static constexpr std::uint8_t eNumberOfScrews = 2;
    /// Grams.
    static constexpr double eReferenceWeight = 1.0;
    /// Of the ring of holes, mm.
    static constexpr double eRadius = 100.0;
    /// The default screw table.
    static constexpr const char* eScrewTableName = "Default";
    /// Its screws, in grams, named by their weight. Rising, as the last one counts as the largest; fine steps
    /// where small corrections are made, and few enough that three of them in twelve holes are searched in no
    /// time.
    static constexpr std::array<double, 8> eScrewWeights = {0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0};
};

}  // namespace PreBalDB
