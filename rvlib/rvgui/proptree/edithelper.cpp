#include "rvlib/rvgui/proptree/edithelper.h"

namespace PropTree {

LRESULT CEditHelper::OnParentNotified(const CWndNotification& rNotification) {
    switch (rNotification.m_Code) {
        case EN_KILLFOCUS:
            m_rOwner.OnEditKillFocus();
            return 0;
        case EN_CHANGE:
            return m_rOwner.OnEditChange() ? 1 : 0;
        default:
            return 0;
    }
}

LRESULT CEditHelper::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_KEYDOWN || Message == WM_KEYUP) {
        const auto Key = static_cast<UINT>(wParam);
        const bool bUsed = Message == WM_KEYDOWN ? m_rOwner.OnEditKeyDown(Key) : m_rOwner.OnEditKeyUp(Key);
        return bUsed ? 1 : 0;  // a key is nothing that the base class handles, and the box may be gone
    }
    return CEdit::WindowProc(Message, wParam, lParam);
}

}  // namespace PropTree
