#include "console/softkeys.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "contract/pages.h"
#include "contract/softkeymask.h"
#include "platform/rvldb/gettext.h"

namespace {

using Row = std::vector<CSoftkey>;

constexpr std::size_t IN_ROW = CSoftkeys::HELP_PLACE;  ///< places of a row before Help

bool IsBetweenRuns(const CSoftkeys::CState& rState) {
    return rState.m_Menu == Menus::eNone;
}

/// What changes neither a configuration nor a table, and begins no run.
bool IsHarmless(const MenuKeys::CKey& rKey) {
    return rKey.m_Action == Actions::eItem || rKey.m_Action == Actions::eNextTab ||
           rKey.m_Action == Actions::eExpand || rKey.m_Action == Actions::eStart ||
           rKey.m_Action == Actions::eRebalance;
}

bool IsEnabled(const MenuKeys::CKey& rKey, const CSoftkeys::CState& rState) {
    if (!IsBetweenRuns(rState)) {
        return true;
    }
    if (rState.m_bLocked && !IsHarmless(rKey)) {
        return false;
    }
    switch (rKey.m_Action) {
        case Actions::eRebalance:
            return (rState.m_Bits & SoftkeyMask::eReBalancing) != 0;
        case Actions::eNextTab:
            return (rState.m_Bits & SoftkeyMask::eScrewPage) != 0;
        case Actions::eValue:
            // While rows of the table are edited these would step to another table.
            return rState.m_Page != Pages::eScrewTable || (rState.m_Bits & SoftkeyMask::ePages) != 0;
        default:
            return true;
    }
}

/// Which weight the keys of the active weight move, and by how many degrees, in the menus that have them.
struct CActiveWeight {
    std::int32_t m_Menu;
    const char* m_pWeight;
    const char* m_pStep;
};
constexpr std::array ACTIVE_WEIGHTS = {
    CActiveWeight{Menus::eChangeOfTwoPlanesWeight1By1, "1", "1"},
    CActiveWeight{Menus::eChangeOfTwoPlanesWeight2By1, "2", "1"},
    CActiveWeight{Menus::eChangeOfTwoPlanesWeight1By10, "1", "10"},
    CActiveWeight{Menus::eChangeOfTwoPlanesWeight2By10, "2", "10"},
    CActiveWeight{Menus::eChangeWeight1By1, "1", "1"},
    CActiveWeight{Menus::eChangeWeight2By1, "2", "1"},
    CActiveWeight{Menus::eChangeWeight1By10, "1", "10"},
    CActiveWeight{Menus::eChangeWeight2By10, "2", "10"},
};

CSoftkey MakeKey(const MenuKeys::CKey& rKey, const CSoftkeys::CState& rState) {
    CSoftkey Key{CSoftkey::eModule, rKey.m_pTextKey, IsEnabled(rKey, rState), rKey};
    if (rKey.m_Action == Actions::eIncActiveWeight || rKey.m_Action == Actions::eDecActiveWeight) {
        const auto* const pActive = std::ranges::find(ACTIVE_WEIGHTS, rState.m_Menu, &CActiveWeight::m_Menu);
        if (pActive != ACTIVE_WEIGHTS.end()) {
            Key.m_Value1 = pActive->m_pWeight;
            Key.m_Value2 = pActive->m_pStep;
        }
    }
    return Key;
}

Row MakeEmptyRow() {
    Row Keys(CSoftkeys::PLACES, CSoftkey{});
    Keys[CSoftkeys::HELP_PLACE] = {CSoftkey::eHelp, "SK_HELP", true};
    return Keys;
}

Row MakeRunRow(const CSoftkeys::CState& rState) {
    Row Keys = MakeEmptyRow();
    std::size_t Place = CSoftkeys::CONFIRM_PLACE + 1;
    for (const MenuKeys::CKey& rKey : MenuKeys::GetKeys(rState.m_Menu)) {
        switch (rKey.m_Action) {
            case Actions::eTerminate:
                Keys[CSoftkeys::END_PLACE] = MakeKey(rKey, rState);
                break;
            case Actions::eNext:
            case Actions::eNeutralAdjusted:
                Keys[CSoftkeys::CONFIRM_PLACE] = MakeKey(rKey, rState);
                break;
            default:
                Keys.at(Place++) = MakeKey(rKey, rState);
                break;
        }
    }
    return Keys;
}

std::vector<Row> MakePageRows(const CSoftkeys::CState& rState) {
    Row Keys;
    for (const MenuKeys::CKey& rKey : MenuKeys::GetPageKeys(rState.m_Page)) {
        Keys.push_back(MakeKey(rKey, rState));
    }
    const bool bTable = rState.m_Page == Pages::eScrewTable;
    Keys.push_back({CSoftkey::eDelete, bTable ? "SK_DELETE_TABLE" : "SK_DELETE_CONFIGURATION",
                    rState.m_bDeletable && !rState.m_bLocked});
    if (!bTable) {
        Keys.push_back({CSoftkey::eCode, rState.m_bLocked ? "SK_UNLOCK" : "SK_CODE", true});
        Keys.push_back({CSoftkey::eService, "SK_SERVICE", !rState.m_bLocked});
    }
    std::vector<Row> Rows;
    for (std::size_t i = 0; i < Keys.size(); ++i) {
        if (i % IN_ROW == 0) {
            Rows.push_back(MakeEmptyRow());
        }
        Rows.back()[i % IN_ROW] = Keys[i];
    }
    if (Rows.size() > 1) {
        for (Row& rRow : Rows) {
            rRow[CSoftkeys::END_PLACE] = {CSoftkey::eMore, "SK_MORE", true};
        }
    }
    return Rows;
}

/// The last place stays empty: one more press of End is no answer.
Row MakeAnswerRow(const std::vector<const char*>& rAnswers) {
    Row Keys(CSoftkeys::PLACES, CSoftkey{});
    for (std::size_t i = 0; i < rAnswers.size() && i < CSoftkeys::PLACES / 2; ++i) {
        CSoftkey& rKey = Keys[2 * i];  // with a gap between what is harmless and what isn't
        rKey = {CSoftkey::eAnswer, rAnswers[i], true};
        rKey.m_Answer = i;
    }
    return Keys;
}

std::vector<Row> MakeRows(const CSoftkeys::CState& rState) {
    if (!rState.m_Answers.empty()) {
        return {MakeAnswerRow(rState.m_Answers)};
    }
    if (!rState.m_bReady) {
        return {MakeEmptyRow()};
    }
    return IsBetweenRuns(rState) ? MakePageRows(rState) : std::vector<Row>{MakeRunRow(rState)};
}

const char* FindSymbol(Actions::Action Action, Actions::Flag Flag) {
    switch (Action) {
        case Actions::eNext:
            return "arrow-right";
        case Actions::eTerminate:
            return "square-x";
        case Actions::eExtras:
            return "pencil";
        case Actions::eNeutralAdjusted:
        case Actions::eAccept:
            return "check";
        case Actions::eAdoptPosition:
            return "archive-restore";
        case Actions::eCheckWeights:
            return "eye";
        case Actions::eRebalance:
            return "refresh-cw";
        case Actions::eStart:
            return "play";
        case Actions::eIncActiveWeight:
        case Actions::eIncWeight1:
        case Actions::eIncWeight2:
            return "plus";
        case Actions::eDecActiveWeight:
        case Actions::eDecWeight1:
        case Actions::eDecWeight2:
            return "minus";
        case Actions::eTogglePlane:
            return "layers-2";
        case Actions::eSelectWeight:
            return "repeat";
        case Actions::eSelectStep:
            return "gauge";
        case Actions::eIncrement:
            return "chevron-right";
        case Actions::eDecrement:
            return "chevron-left";
        case Actions::eNeutralPosition:
            return "circle-minus";
        case Actions::eItem:
            return Flag == Actions::ePrevious ? "arrow-up" : "arrow-down";
        case Actions::eValue:
            return Flag == Actions::ePrevious ? "minus" : "plus";
        case Actions::eNextTab:
            return "files";
        case Actions::eExpand:
            return "list-tree";
        default:
            return "";
    }
}

/// The page of screw tables takes the flags the other way round, and its values are tables.
const char* FindTableSymbol(const char* pTextKey) {
    struct CSymbol {
        const char* m_pTextKey;
        const char* m_pName;
    };
    constexpr std::array SYMBOLS = {
        CSymbol{"SK_PREVIOUS_CELL", "arrow-left"}, CSymbol{"SK_NEXT_CELL", "arrow-right"},
        CSymbol{"SK_PREVIOUS_TABLE", "chevron-left"}, CSymbol{"SK_NEXT_TABLE", "chevron-right"}};
    for (const CSymbol& rSymbol : SYMBOLS) {
        if (std::strcmp(rSymbol.m_pTextKey, pTextKey) == 0) {
            return rSymbol.m_pName;
        }
    }
    return nullptr;
}

void Replace(std::string& rText, const char* pMark, const std::string& rValue) {
    if (const std::size_t Place = rText.find(pMark); Place != std::string::npos) {
        rText.replace(Place, std::strlen(pMark), rValue);
    }
}

}  // namespace

bool CSoftkey::MeansTheSame(const CSoftkey& rOther) const {
    return m_Kind == rOther.m_Kind && std::strcmp(m_pTextKey, rOther.m_pTextKey) == 0 &&
           m_Answer == rOther.m_Answer && m_Value1 == rOther.m_Value1 && m_Value2 == rOther.m_Value2;
}

std::string CSoftkey::GetLabel() const {
    if (m_Kind == eNone) {
        return {};
    }
    std::string Text = GetText(m_pTextKey);
    Replace(Text, "%1", m_Value1);
    Replace(Text, "%2", m_Value2);
    return Text;
}

const char* CSoftkey::GetSymbolName() const {
    switch (m_Kind) {
        case eNone:
            return "";
        case eModule:
            if (const char* const pName = FindTableSymbol(m_pTextKey)) {
                return pName;
            }
            return FindSymbol(m_Key.m_Action, m_Key.m_Flag);
        case eMore:
            return "ellipsis";
        case eHelp:
            return "circle-question-mark";
        case eDelete:
            return "trash-2";
        case eCode:
            return "lock";
        case eService:
            return "package";
        case eAnswer:
            return m_Answer == 0 ? "undo-2" : "check";
    }
    return "";
}

void CSoftkeys::SetState(const CState& rState) {
    if (rState.m_Menu != m_State.m_Menu || rState.m_Page != m_State.m_Page) {
        m_nRow = 0;
    }
    m_State = rState;
    m_Rows = MakeRows(rState);
    m_nRow = m_nRow < m_Rows.size() ? m_nRow : 0;
}

void CSoftkeys::More() {
    m_nRow = (m_nRow + 1) % m_Rows.size();
}
