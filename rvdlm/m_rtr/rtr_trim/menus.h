#pragma once
#include <cstdint>

/// Softkey menus of the host that the code names; the rest stand in the tables of the procedures and of the
/// weight method. The module only passes the numbers on: which keys a menu has is the host's.
namespace Menus {

enum Number : std::int32_t {
    eNone = -1,    ///< no procedure
    eConfirm = 0,  ///< next
    eChangeTestScrew = 3,
    eWait = 4,                   ///< nothing to confirm
    eConfirmOrCheckWeights = 8,  ///< next, or look at the weights first
    eScrewsPlane1 = 12,
    eScrewsPlane2 = 13,
    eTestWeights = 32,
    eTestScrew = 33
};

}  // namespace Menus
