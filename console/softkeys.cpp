#include "console/softkeys.h"

#include <algorithm>
#include <array>

namespace Softkeys {

namespace {

constexpr CKey NEXT{eActionNext, eFlagNone, "SK_NEXT"};
constexpr CKey END{eActionEnd, eFlagCommit, "SK_END"};
constexpr CKey FINISH{eActionEnd, eFlagCommit, "SK_FINISH"};
constexpr CKey EXTRAS{eActionExtras, eFlagNone, "SK_CHANGE_POSITIONS"};
constexpr CKey ADJUSTED{eActionNeutralAdjusted, eFlagNone, "SK_WEIGHTS_IN_PLACE"};
constexpr CKey ADOPT{eActionAdoptPosition, eFlagNone, "SK_ADOPT_POSITIONS"};
constexpr CKey CHECK{eActionCheckWeights, eFlagNone, "SK_CHECK_WEIGHTS"};
constexpr CKey REBALANCE{eActionRebalance, eFlagCommit, "SK_REBALANCE"};
constexpr CKey INC_ACTIVE{eActionIncActiveWeight, eFlagIncrement, "SK_PLUS", true};
constexpr CKey DEC_ACTIVE{eActionDecActiveWeight, eFlagDecrement, "SK_MINUS", true};
constexpr CKey TOGGLE_PLANE{eActionTogglePlane, eFlagNone, "SK_TOGGLE_PLANE"};
constexpr CKey DEC_WEIGHT1{eActionDecWeight1, eFlagDecrement, "SK_WEIGHT1_MINUS", true};
constexpr CKey INC_WEIGHT1{eActionIncWeight1, eFlagIncrement, "SK_WEIGHT1_PLUS", true};
constexpr CKey DEC_WEIGHT2{eActionDecWeight2, eFlagDecrement, "SK_WEIGHT2_MINUS", true};
constexpr CKey INC_WEIGHT2{eActionIncWeight2, eFlagIncrement, "SK_WEIGHT2_PLUS", true};
constexpr CKey SELECT_WEIGHT{eActionSelectWeight, eFlagNone, "SK_SELECT_WEIGHT"};
constexpr CKey SELECT_STEP{eActionSelectStep, eFlagNone, "SK_SELECT_STEP"};

constexpr CKey CHANGE_SCREWS{eActionExtras, eFlagNone, "SK_CHANGE_SCREWS"};
constexpr CKey NEXT_SCREW{eActionIncrement, eFlagNone, "SK_NEXT_SCREW"};
constexpr CKey PREVIOUS_SCREW{eActionDecrement, eFlagNone, "SK_PREVIOUS_SCREW"};
constexpr CKey NO_SCREWS{eActionNeutralPosition, eFlagNone, "SK_NO_SCREWS"};

constexpr std::array CONFIGURATION = {CKey{eActionStart, eFlagNone, "SK_PREBALANCE"},
                                      CKey{eActionRebalance, eFlagNone, "SK_REBALANCE"},
                                      CKey{eActionNextTab, eFlagNone, "SK_NEXT_TAB"}};
constexpr std::array WAITING = {END};
constexpr std::array CONFIRM = {NEXT, END};
constexpr std::array FINAL = {REBALANCE, FINISH};
constexpr std::array MEASURED_OR_SET = {NEXT, CHECK, END};
constexpr std::array STOP_SCREWS = {ADJUSTED, END};
constexpr std::array STOP_WEIGHTS = {ADJUSTED, EXTRAS, END};
constexpr std::array STOP_WEIGHTS_STORED = {ADJUSTED, EXTRAS, ADOPT, END};
constexpr std::array NEUTRAL_WEIGHTS = {NEXT, EXTRAS, END};
constexpr std::array NEUTRAL_WEIGHTS_STORED = {NEXT, EXTRAS, ADOPT, END};
constexpr std::array CHANGE_BOTH = {NEXT, DEC_WEIGHT1, INC_WEIGHT1, DEC_WEIGHT2, INC_WEIGHT2, END};
constexpr std::array CHANGE_BOTH_OF_TWO_PLANES = {NEXT,        TOGGLE_PLANE, DEC_WEIGHT1, INC_WEIGHT1,
                                                  DEC_WEIGHT2, INC_WEIGHT2,  END};
constexpr std::array CHANGE_ACTIVE = {NEXT, SELECT_WEIGHT, SELECT_STEP, DEC_ACTIVE, INC_ACTIVE, END};
constexpr std::array CHANGE_ACTIVE_OF_TWO_PLANES = {
    NEXT, TOGGLE_PLANE, SELECT_WEIGHT, SELECT_STEP, DEC_ACTIVE, INC_ACTIVE, END};

constexpr std::array SET_SCREWS = {NEXT, CHANGE_SCREWS, END};
constexpr std::array CHANGE_TEST_SCREW = {NEXT, PREVIOUS_SCREW, NEXT_SCREW, END};
constexpr std::array CHANGE_SCREWS_OF_ONE_PLANE = {NEXT, NO_SCREWS, END};
constexpr std::array CHANGE_SCREWS_OF_TWO_PLANES = {NEXT, TOGGLE_PLANE, NO_SCREWS, END};

struct CMenu {
    std::int32_t m_Menu;
    std::span<const CKey> m_Keys;
};

constexpr std::array MENUS = {
    CMenu{-1, CONFIGURATION},
    CMenu{0, CONFIRM},
    CMenu{3, CHANGE_TEST_SCREW},
    CMenu{4, WAITING},
    CMenu{5, FINAL},
    CMenu{6, CHANGE_BOTH},
    CMenu{7, WAITING},
    CMenu{8, MEASURED_OR_SET},
    CMenu{9, CHANGE_BOTH_OF_TWO_PLANES},
    CMenu{12, CHANGE_SCREWS_OF_ONE_PLANE},
    CMenu{13, CHANGE_SCREWS_OF_TWO_PLANES},
    CMenu{14, STOP_SCREWS},
    CMenu{19, NEUTRAL_WEIGHTS_STORED},
    // 20 to 23 (two planes) and 24 to 27 (one): which weight is active and how far it moves; the page says
    // so, the keys are the same.
    CMenu{20, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{21, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{22, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{23, CHANGE_ACTIVE_OF_TWO_PLANES},
    CMenu{24, CHANGE_ACTIVE},
    CMenu{25, CHANGE_ACTIVE},
    CMenu{26, CHANGE_ACTIVE},
    CMenu{27, CHANGE_ACTIVE},
    CMenu{28, STOP_WEIGHTS},
    CMenu{29, STOP_WEIGHTS_STORED},
    CMenu{30, NEUTRAL_WEIGHTS},
    CMenu{32, NEUTRAL_WEIGHTS},
    CMenu{33, SET_SCREWS},
};

}  // namespace

std::span<const CKey> GetKeys(std::int32_t Menu) {
    const auto* pFound = std::ranges::find(MENUS, Menu, &CMenu::m_Menu);
    return pFound == MENUS.end() ? std::span<const CKey>(WAITING) : pFound->m_Keys;
}

const CKey* FindKey(std::int32_t Menu, Action Wanted) {
    const std::span<const CKey> Keys = GetKeys(Menu);
    const auto pFound = std::ranges::find(Keys, Wanted, &CKey::m_Action);
    return pFound == Keys.end() ? nullptr : &*pFound;
}

}  // namespace Softkeys
