#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "contract/actions.h"
#include "contract/menus.h"
#include "contract/pages.h"

/// The softkeys that belong to each menu, and what each sends. The module passes menu numbers on and takes
/// actions; how a key looks is the host's.
namespace MenuKeys {

struct CKey {
    Actions::Action m_Action;
    Actions::Flag m_Flag;     ///< sent when the key is pressed
    const char* m_pTextKey;   ///< label
    bool m_bRepeats = false;  ///< sends flag eNone when let go
};

/// The keys of a menu, in the order of the softkey bar.
struct CMenu {
    Menus::Number m_Menu;
    std::span<const CKey> m_Keys;
};

namespace Tables {

inline constexpr CKey NEXT{Actions::eNext, Actions::eNone, "SK_NEXT"};
inline constexpr CKey END{Actions::eTerminate, Actions::eCommit, "SK_END"};
inline constexpr CKey FINISH{Actions::eTerminate, Actions::eCommit, "SK_FINISH"};
inline constexpr CKey EXTRAS{Actions::eExtras, Actions::eNone, "SK_CHANGE_POSITIONS"};
inline constexpr CKey ADJUSTED{Actions::eNeutralAdjusted, Actions::eNone, "SK_WEIGHTS_IN_PLACE"};
inline constexpr CKey ADOPT{Actions::eAdoptPosition, Actions::eNone, "SK_ADOPT_POSITIONS"};
inline constexpr CKey CHECK{Actions::eCheckWeights, Actions::eNone, "SK_CHECK_WEIGHTS"};
inline constexpr CKey REBALANCE{Actions::eRebalance, Actions::eCommit, "SK_REBALANCE"};
inline constexpr CKey INC_ACTIVE{Actions::eIncActiveWeight, Actions::eIncrementDown, "SK_PLUS", true};
inline constexpr CKey DEC_ACTIVE{Actions::eDecActiveWeight, Actions::eDecrementDown, "SK_MINUS", true};
inline constexpr CKey TOGGLE_PLANE{Actions::eTogglePlane, Actions::eNone, "SK_TOGGLE_PLANE"};
inline constexpr CKey DEC_WEIGHT1{Actions::eDecWeight1, Actions::eDecrementDown, "SK_WEIGHT1_MINUS", true};
inline constexpr CKey INC_WEIGHT1{Actions::eIncWeight1, Actions::eIncrementDown, "SK_WEIGHT1_PLUS", true};
inline constexpr CKey DEC_WEIGHT2{Actions::eDecWeight2, Actions::eDecrementDown, "SK_WEIGHT2_MINUS", true};
inline constexpr CKey INC_WEIGHT2{Actions::eIncWeight2, Actions::eIncrementDown, "SK_WEIGHT2_PLUS", true};
inline constexpr CKey SELECT_WEIGHT{Actions::eSelectWeight, Actions::eNone, "SK_SELECT_WEIGHT"};
inline constexpr CKey SELECT_STEP{Actions::eSelectStep, Actions::eNone, "SK_SELECT_STEP"};

inline constexpr CKey CHANGE_SCREWS{Actions::eExtras, Actions::eNone, "SK_CHANGE_SCREWS"};
inline constexpr CKey NEXT_SCREW{Actions::eIncrement, Actions::eNone, "SK_NEXT_SCREW"};
inline constexpr CKey PREVIOUS_SCREW{Actions::eDecrement, Actions::eNone, "SK_PREVIOUS_SCREW"};
inline constexpr CKey NO_SCREWS{Actions::eNeutralPosition, Actions::eNone, "SK_NO_SCREWS"};

inline constexpr CKey PREBALANCE{Actions::eStart, Actions::eNone, "SK_PREBALANCE"};
inline constexpr CKey REBALANCE_CALIBRATED{Actions::eRebalance, Actions::eNone, "SK_REBALANCE"};
inline constexpr CKey NEXT_TAB{Actions::eNextTab, Actions::eNone, "SK_NEXT_TAB"};
inline constexpr CKey PREVIOUS_ITEM{Actions::eItem, Actions::ePrevious, "SK_PREVIOUS_ITEM"};
inline constexpr CKey NEXT_ITEM{Actions::eItem, Actions::eFollowing, "SK_NEXT_ITEM"};
inline constexpr CKey PREVIOUS_VALUE{Actions::eValue, Actions::ePrevious, "SK_PREVIOUS_VALUE", true};
inline constexpr CKey NEXT_VALUE{Actions::eValue, Actions::eFollowing, "SK_NEXT_VALUE", true};
inline constexpr CKey ACCEPT{Actions::eAccept, Actions::eNone, "SK_ACCEPT"};
inline constexpr CKey EXPAND{Actions::eExpand, Actions::eNone, "SK_EXPAND"};
// The page of screw tables takes the flags the other way round: its cells and names go on with the first.
inline constexpr CKey PREVIOUS_CELL{Actions::eItem, Actions::eFollowing, "SK_PREVIOUS_CELL"};
inline constexpr CKey NEXT_CELL{Actions::eItem, Actions::ePrevious, "SK_NEXT_CELL"};
inline constexpr CKey PREVIOUS_TABLE{Actions::eValue, Actions::eFollowing, "SK_PREVIOUS_TABLE"};
inline constexpr CKey NEXT_TABLE{Actions::eValue, Actions::ePrevious, "SK_NEXT_TABLE"};

inline constexpr std::array SETTINGS = {PREBALANCE,     REBALANCE_CALIBRATED, PREVIOUS_ITEM, NEXT_ITEM,
                                        PREVIOUS_VALUE, NEXT_VALUE,           ACCEPT,        NEXT_TAB,
                                        EXPAND};
inline constexpr std::array SCREW_TABLE = {PREVIOUS_CELL, NEXT_CELL, PREVIOUS_TABLE, NEXT_TABLE, NEXT_TAB};
inline constexpr std::array WAITING = {END};
inline constexpr std::array CONFIRM = {NEXT, END};
inline constexpr std::array FINAL = {REBALANCE, FINISH};
inline constexpr std::array MEASURED_OR_SET = {NEXT, CHECK, END};
inline constexpr std::array STOP_SCREWS = {ADJUSTED, END};
inline constexpr std::array STOP_WEIGHTS = {ADJUSTED, EXTRAS, END};
inline constexpr std::array STOP_WEIGHTS_STORED = {ADJUSTED, EXTRAS, ADOPT, END};
inline constexpr std::array NEUTRAL_WEIGHTS = {NEXT, EXTRAS, END};
inline constexpr std::array NEUTRAL_WEIGHTS_STORED = {NEXT, EXTRAS, ADOPT, END};
inline constexpr std::array CHANGE_BOTH = {NEXT, DEC_WEIGHT1, INC_WEIGHT1, DEC_WEIGHT2, INC_WEIGHT2, END};
inline constexpr std::array CHANGE_BOTH_OF_TWO_PLANES = {NEXT,        TOGGLE_PLANE, DEC_WEIGHT1, INC_WEIGHT1,
                                                         DEC_WEIGHT2, INC_WEIGHT2,  END};
inline constexpr std::array CHANGE_ACTIVE = {NEXT, SELECT_WEIGHT, SELECT_STEP, DEC_ACTIVE, INC_ACTIVE, END};
inline constexpr std::array CHANGE_ACTIVE_OF_TWO_PLANES = {
    NEXT, TOGGLE_PLANE, SELECT_WEIGHT, SELECT_STEP, DEC_ACTIVE, INC_ACTIVE, END};

inline constexpr std::array SET_SCREWS = {NEXT, CHANGE_SCREWS, END};
inline constexpr std::array CHANGE_TEST_SCREW = {NEXT, PREVIOUS_SCREW, NEXT_SCREW, END};
inline constexpr std::array CHANGE_SCREWS_OF_ONE_PLANE = {NEXT, NO_SCREWS, END};
inline constexpr std::array CHANGE_SCREWS_OF_TWO_PLANES = {NEXT, TOGGLE_PLANE, NO_SCREWS, END};

inline constexpr std::array MENUS = {
    CMenu{Menus::eNone, SETTINGS},
    CMenu{Menus::eConfirm, CONFIRM},
    CMenu{Menus::eChangeTestScrew, CHANGE_TEST_SCREW},
    CMenu{Menus::eWait, WAITING},
    CMenu{Menus::eFinal, FINAL},
    CMenu{Menus::eChangeBothWeights, CHANGE_BOTH},
    CMenu{Menus::eFailed, WAITING},
    CMenu{Menus::eConfirmOrCheckWeights, MEASURED_OR_SET},
    CMenu{Menus::eChangeBothWeightsOfTwoPlanes, CHANGE_BOTH_OF_TWO_PLANES},
    CMenu{Menus::eScrewsOfOnePlane, CHANGE_SCREWS_OF_ONE_PLANE},
    CMenu{Menus::eScrewsOfTwoPlanes, CHANGE_SCREWS_OF_TWO_PLANES},
    CMenu{Menus::eStopWithScrews, STOP_SCREWS},
    CMenu{Menus::eNeutralStoredWeights, NEUTRAL_WEIGHTS_STORED},
    CMenu{Menus::eChangeOfTwoPlanesWeight1By1, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{Menus::eChangeOfTwoPlanesWeight2By1, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{Menus::eChangeOfTwoPlanesWeight1By10, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{Menus::eChangeOfTwoPlanesWeight2By10, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{Menus::eChangeWeight1By1, CHANGE_ACTIVE},
    CMenu{Menus::eChangeWeight2By1, CHANGE_ACTIVE},
    CMenu{Menus::eChangeWeight1By10, CHANGE_ACTIVE},
    CMenu{Menus::eChangeWeight2By10, CHANGE_ACTIVE},
    CMenu{Menus::eStopWithWeights, STOP_WEIGHTS},
    CMenu{Menus::eStopWithStoredWeights, STOP_WEIGHTS_STORED},
    CMenu{Menus::eNeutralWeights, NEUTRAL_WEIGHTS},
    CMenu{Menus::eSetWeights, NEUTRAL_WEIGHTS},
    CMenu{Menus::eSetScrews, SET_SCREWS},
};

}  // namespace Tables

/// The keys of a menu. An unknown menu has the key that ends the run, so that nobody is caught in it.
constexpr std::span<const CKey> GetKeys(std::int32_t Menu) {
    const auto* pFound = std::ranges::find(Tables::MENUS, Menu, &CMenu::m_Menu);
    return pFound == Tables::MENUS.end() ? std::span<const CKey>(Tables::WAITING) : pFound->m_Keys;
}

/// The keys of a page of the configuration, which is what Menus::eNone stands for.
constexpr std::span<const CKey> GetPageKeys(std::uint32_t Page) {
    return Page == Pages::eScrewTable ? std::span<const CKey>(Tables::SCREW_TABLE)
                                      : std::span<const CKey>(Tables::SETTINGS);
}

/// The key of an action in a menu, or null.
constexpr const CKey* FindKey(std::int32_t Menu, Actions::Action Wanted) {
    const std::span<const CKey> Keys = GetKeys(Menu);
    const auto pFound = std::ranges::find(Keys, Wanted, &CKey::m_Action);
    return pFound == Keys.end() ? nullptr : &*pFound;
}

}  // namespace MenuKeys
