#include "rvdlm/m_rtr/rtr_trim/prebalancing/keyaction.h"

#include <array>

#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace {

constexpr std::array<const char*, 27> KEY_ACTION_NAMES = {
    "eNext",                     // 0
    "eRebalance",                // 1
    "eIncrement",                // 2
    "eDecrement",                // 3
    "eUp",                       // 4
    "eDown",                     // 5
    "eExtras",                   // 6
    "eIncPosWeight1Down",        // 7
    "eIncPosWeight1Up",          // 8
    "eDecPosWeight1Down",        // 9
    "eDecPosWeight1Up",          // 10
    "eIncPosWeight2Down",        // 11
    "eIncPosWeight2Up",          // 12
    "eDecPosWeight2Down",        // 13
    "eDecPosWeight2Up",          // 14
    "eCheckWeightPositions",     // 15
    "eTogglePlane",              // 16
    "eNeutralPosition",          // 17
    "eChangeWeightPositions",    // 18
    "eNeutralPositionAdjusted",  // 19
    "ePositionAdoption",         // 20
    "eWeightSelection",          // 21
    "eStepSelection",            // 22
    "eDecPosActiveWeightDown",   // 23
    "eDecPosActiveWeightUp",     // 24
    "eIncPosActiveWeightDown",   // 25
    "eIncPosActiveWeightUp",     // 26
};

}  // namespace

const char* CKeyActions::KeyActionToString(KeyAction Action) {
    const auto Index = static_cast<std::size_t>(Action);
    if (Index < KEY_ACTION_NAMES.size()) {
        return KEY_ACTION_NAMES[Index];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "unknown action";
}
