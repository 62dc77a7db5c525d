#pragma once
#include <algorithm>
#include <array>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/keyaction.h"

/// The keys that move weights, and by how much: for the procedure, which passes them on, and for the weights.
namespace WeightKeys {

enum Weight : int {
    eWeight1 = 1,
    eWeight2 = 2,
    eActiveWeight = 3,  ///< whichever the operator has chosen
};

struct CKey {
    CKeyActions::KeyAction m_Action;
    Weight m_Weight;
    int m_Sign;    ///< 1 forwards, -1 backwards
    bool m_bDown;  ///< begins the move; else the key went up, which ends it
};

inline constexpr std::array KEYS = {
    CKey{CKeyActions::eIncPosWeight1Down, eWeight1, 1, true},
    CKey{CKeyActions::eIncPosWeight1Up, eWeight1, 1, false},
    CKey{CKeyActions::eDecPosWeight1Down, eWeight1, -1, true},
    CKey{CKeyActions::eDecPosWeight1Up, eWeight1, -1, false},
    CKey{CKeyActions::eIncPosWeight2Down, eWeight2, 1, true},
    CKey{CKeyActions::eIncPosWeight2Up, eWeight2, 1, false},
    CKey{CKeyActions::eDecPosWeight2Down, eWeight2, -1, true},
    CKey{CKeyActions::eDecPosWeight2Up, eWeight2, -1, false},
    CKey{CKeyActions::eDecPosActiveWeightDown, eActiveWeight, -1, true},
    CKey{CKeyActions::eDecPosActiveWeightUp, eActiveWeight, -1, false},
    CKey{CKeyActions::eIncPosActiveWeightDown, eActiveWeight, 1, true},
    CKey{CKeyActions::eIncPosActiveWeightUp, eActiveWeight, 1, false},
};

/// Null for any other key.
constexpr const CKey* Find(CKeyActions::KeyAction Action) {
    const auto* const pFound = std::ranges::find(KEYS, Action, &CKey::m_Action);
    return pFound == KEYS.end() ? nullptr : pFound;
}

// Degrees of a key press. With keys of its own a weight goes in larger steps while the rotor is set up than
// for the correction of one that was balanced; for the active weight the operator chooses.
inline constexpr int SETUP_STEP = 5;
inline constexpr int REBALANCE_STEP = 1;
inline constexpr int FINE_STEP = 1;
inline constexpr int COARSE_STEP = 10;

}  // namespace WeightKeys
