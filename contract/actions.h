#pragma once
#include <cstdint>

/// Actions of message 1058 (WM_RV_MODULEACTION): what the host asks of the module. Which softkeys send them
/// is told in menukeys.h. Never renumber.
namespace Actions {

enum Action : std::int32_t {
    // Between runs; what they do on a page is the page's.
    eNextTab = 1,
    eValue = 2,   ///< flag 1 the previous value, flag 2 the next
    eAccept = 3,  ///< accept the value that is being edited
    eItem = 4,    ///< flag 1 the previous item, flag 2 the next
    eExpand = 81,
    eStart = 102,  ///< saves the configuration and starts a pre-balancing
    eSave = 103,

    eRebalance = 4499,  ///< starts a re-balancing, or goes on to it behind a pre-balancing

    // In a run. 4503 to 4506 are softkeys that do nothing.
    eNext = 4500,
    eTerminate = 4501,
    eExtras = 4502,
    eIncrement = 4507,
    eDecrement = 4508,
    eCheckWeights = 4509,
    eTerminateAlso = 4510,
    eIncWeight1 = 4511,
    eDecWeight1 = 4512,
    eIncWeight2 = 4513,
    eDecWeight2 = 4514,
    eTogglePlane = 4515,
    eNeutralPosition = 4516,
    eChangeWeights = 4517,
    eNeutralAdjusted = 4518,
    eAdoptPosition = 4519,
    eIncActiveWeight = 4520,
    eDecActiveWeight = 4521,
    eSelectWeight = 4522,
    eSelectStep = 4523,
    eTogglePlaneAlso = 4524,
};

/// Flags of message 1058. A key that repeats while it is held sends its flag when pressed and eNone when let
/// go.
enum Flag : std::int32_t {
    eNone = 0,
    eIncrementDown = 1,
    eDecrementDown = 2,
    ePrevious = 1,   ///< of eValue and eItem
    eFollowing = 2,  ///< the same
    eCommit = 5,     ///< keep the result of the run, if there is one, before the action
};

}  // namespace Actions
