#pragma once
#include <cstdint>
#include <span>

/// What the console makes of the menu numbers: the softkeys that it shows with each, and the action that each
/// key sends to the module. The module only passes numbers on; their look is the console's.
namespace Softkeys {

/// Actions of message 1058, as far as the console sends them.
enum Action : std::int32_t {
    eActionNextTab = 1,
    eActionStart = 102,
    eActionRebalance = 4499,
    eActionNext = 4500,
    eActionEnd = 4501,
    eActionExtras = 4502,
    eActionIncrement = 4507,
    eActionDecrement = 4508,
    eActionCheckWeights = 4509,
    eActionIncWeight1 = 4511,
    eActionDecWeight1 = 4512,
    eActionIncWeight2 = 4513,
    eActionDecWeight2 = 4514,
    eActionTogglePlane = 4515,
    eActionNeutralPosition = 4516,
    eActionNeutralAdjusted = 4518,
    eActionAdoptPosition = 4519,
    eActionIncActiveWeight = 4520,
    eActionDecActiveWeight = 4521,
    eActionSelectWeight = 4522,
    eActionSelectStep = 4523,
};

/// Flags of message 1058. A key that repeats while it is held sends its flag when pressed and 0 when let go.
constexpr std::int32_t eFlagNone = 0;
constexpr std::int32_t eFlagIncrement = 1;
constexpr std::int32_t eFlagDecrement = 2;
/// Keep the result of the run, if there is one, before the action.
constexpr std::int32_t eFlagCommit = 5;

struct CKey {
    Action m_Action;
    std::int32_t m_Flag;      ///< sent when the key is pressed
    const char* m_pTextKey;   ///< label
    bool m_bRepeats = false;  ///< sends flag 0 when let go
};

/// The keys of a menu, in the order of the softkey bar; -1 is the configuration. An unknown menu has the key
/// that ends the run, so that nobody is caught in it.
std::span<const CKey> GetKeys(std::int32_t Menu);
/// The key of an action in a menu, or null.
const CKey* FindKey(std::int32_t Menu, Action Wanted);

}  // namespace Softkeys
