#pragma once
#include <cstdint>

/// Warnings of the instruction view. The NC receives the same numbers: never renumber.
namespace Warnings {

enum Mode : std::uint32_t {
    eNone = 0,
    eSetChanged = 1,
    eWrongRPM = 2,
    eOutOfLock = 3,
    eWrongRPMAndOutOfLock = 4,  ///< shown as eWrongRPM: the lock follows the speed
    eNoInfluence = 5,           ///< the test run shows none that could be worked with
    eCapacity = 6,              ///< the means don't reach the compensation; with the percentage
    eRebalanceNotPossible = 7,  ///< nor did they reach the stored one
    eOverTarget = 8,
    eSetNotUsable = 9,
    eStopSpindle = 10,
    eModuleStateChanged = 11,
    eCount = 12
};

}  // namespace Warnings
