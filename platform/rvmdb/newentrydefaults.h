#pragma once
#include <cstdint>

#include "platform/rvmdb/typebase.h"

namespace PreBalDB {

/// The values of a new configuration, all in this one place.
struct CNewEntryDefaults {
    /// Half width of the speed window: wide enough for a drive's speed ripple, narrow enough that the influence
    /// coefficient doesn't change across it.
    static constexpr std::uint32_t eRPMTolerance = 50;
    /// Counts ("µm/s" at the panel).
    static constexpr std::uint32_t eTargetUnbalance = 5;
    /// 40 samples of 50 ms: two seconds of averaging.
    static constexpr std::uint32_t eNumberOfSamples = 40;
    static constexpr CTypeBase::Direction eRotationDirection = CTypeBase::eClockwise;
    static constexpr CTypeBase::Direction eScalingDirection = CTypeBase::eClockwise;
    static constexpr std::uint32_t eNumberOfHoles = 12;
    static constexpr std::uint8_t eNumberOfScrews = 2;
    static constexpr double eReferenceWeight = 1.0;
    static constexpr double eRadius = 100.0;
};

}  // namespace PreBalDB
