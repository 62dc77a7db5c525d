#include "console/softkeys.h"

#include "contract/pages.h"
#include "contract/softkeymask.h"

namespace {

bool IsBetweenRuns(const CSoftkeys::CState& rState) {
    return rState.m_Menu == Menus::eNone;
}

bool IsEnabled(const MenuKeys::CKey& rKey, const CSoftkeys::CState& rState) {
    if (!IsBetweenRuns(rState)) {
        return true;
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

std::vector<CSoftkey> MakeKeys(const CSoftkeys::CState& rState) {
    constexpr CSoftkey HELP{CSoftkey::eHelp, "SK_HELP", true};
    if (!rState.m_bReady) {
        return {HELP};
    }
    std::vector<CSoftkey> Keys;
    for (const MenuKeys::CKey& rKey :
         IsBetweenRuns(rState) ? MenuKeys::GetPageKeys(rState.m_Page) : MenuKeys::GetKeys(rState.m_Menu)) {
        Keys.push_back({CSoftkey::eModule, rKey.m_pTextKey, IsEnabled(rKey, rState), rKey});
    }
    if (IsBetweenRuns(rState)) {
        const char* const pText =
            rState.m_Page == Pages::eScrewTable ? "SK_DELETE_TABLE" : "SK_DELETE_CONFIGURATION";
        Keys.push_back({CSoftkey::eDelete, pText, rState.m_bDeletable});
    }
    Keys.push_back(HELP);
    return Keys;
}

}  // namespace

void CSoftkeys::SetState(const CState& rState) {
    if (rState.m_Menu != m_State.m_Menu || rState.m_Page != m_State.m_Page) {
        m_nRow = 0;
    }
    m_State = rState;
    m_Rows.assign(1, {});
    const std::vector<CSoftkey> Keys = MakeKeys(rState);
    if (Keys.size() <= PLACES) {
        m_Rows.front() = Keys;
        // Help stands at the last place, whatever the others are.
        m_Rows.front().insert(m_Rows.front().end() - 1, PLACES - Keys.size(), CSoftkey{});
        m_nRow = 0;
        return;
    }
    constexpr CSoftkey MORE{CSoftkey::eMore, "SK_MORE", true};
    for (const CSoftkey& rKey : Keys) {
        if (m_Rows.back().size() == PLACES - 1) {
            m_Rows.back().push_back(MORE);
            m_Rows.emplace_back();
        }
        m_Rows.back().push_back(rKey);
    }
    m_Rows.back().resize(PLACES - 1);
    m_Rows.back().push_back(MORE);
    m_nRow = m_nRow < m_Rows.size() ? m_nRow : 0;
}

void CSoftkeys::More() {
    m_nRow = (m_nRow + 1) % m_Rows.size();
}
