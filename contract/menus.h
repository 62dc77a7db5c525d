#pragma once
#include <cstdint>

/// Softkey menus of the host, as message 1075 (WM_RV_SETMENU) names them. Which keys a menu has stands in
/// menukeys.h. Never renumber.
namespace Menus {

enum Number : std::int32_t {
    eNone = -1,    ///< no procedure: the configuration
    eConfirm = 0,  ///< next
    eChangeTestScrew = 3,
    eWait = 4,   ///< nothing to confirm
    eFinal = 5,  ///< the verdict stands: finish, or re-balance
    eFailed = 7,
    eConfirmOrCheckWeights = 8,  ///< next, or look at the weights first

    // Changing the positions of weights where each weight has keys of its own.
    eChangeBothWeights = 6,
    eChangeBothWeightsOfTwoPlanes = 9,
    // The same with keys for the active weight: which weight is active, and by how many degrees it moves.
    eChangeOfTwoPlanesWeight1By1 = 20,
    eChangeOfTwoPlanesWeight2By1 = 21,
    eChangeOfTwoPlanesWeight1By10 = 22,
    eChangeOfTwoPlanesWeight2By10 = 23,
    eChangeWeight1By1 = 24,
    eChangeWeight2By1 = 25,
    eChangeWeight1By10 = 26,
    eChangeWeight2By10 = 27,

    eScrewsOfOnePlane = 12,
    eScrewsOfTwoPlanes = 13,

    // Stopping the spindle before the first measurement.
    eStopWithScrews = 14,
    eStopWithWeights = 28,
    eStopWithStoredWeights = 29,
    // Setting the neutral position.
    eNeutralStoredWeights = 19,
    eNeutralWeights = 30,

    eSetWeights = 32,
    eSetScrews = 33,
};

}  // namespace Menus
