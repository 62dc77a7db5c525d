#include "platform/window/combobox.h"

#include <algorithm>

CComboBox::CComboBox() {
    ModifyStyle(0, WS_TABSTOP);
}

int CComboBox::AddString(const std::string& rText) {
    if (GetCount() == MAX_ITEMS) {
        return -1;
    }
    m_Items.push_back({rText});
    NotifyPeer();
    return GetCount() - 1;
}

bool CComboBox::DeleteString(int Index) {
    if (!IsItem(Index)) {
        return false;
    }
    m_Items.erase(m_Items.begin() + Index);
    if (m_CurSel == Index) {
        m_CurSel = -1;
    } else if (m_CurSel > Index) {
        --m_CurSel;
    }
    NotifyPeer();
    return true;
}

void CComboBox::ResetContent() {
    m_Items.clear();
    m_CurSel = -1;
    NotifyPeer();
}

const std::string& CComboBox::GetLBText(int Index) const {
    static const std::string s_Empty;
    return IsItem(Index) ? m_Items[static_cast<std::size_t>(Index)].m_Text : s_Empty;
}

int CComboBox::FindStringExact(const std::string& rText) const {
    const auto Found = std::find_if(m_Items.begin(), m_Items.end(),
                                    [&rText](const CItem& rItem) { return rItem.m_Text == rText; });
    return Found == m_Items.end() ? -1 : static_cast<int>(Found - m_Items.begin());
}

bool CComboBox::SetItemData(int Index, std::uintptr_t Data) {
    if (!IsItem(Index)) {
        return false;
    }
    m_Items[static_cast<std::size_t>(Index)].m_Data = Data;
    return true;
}

std::uintptr_t CComboBox::GetItemData(int Index) const {
    return IsItem(Index) ? m_Items[static_cast<std::size_t>(Index)].m_Data : 0;
}

bool CComboBox::SetCurSel(int Index) {
    if (Index != -1 && !IsItem(Index)) {
        return false;
    }
    m_CurSel = Index;
    NotifyPeer();
    return true;
}

void CComboBox::ShowDropDown(bool bShow) {
    if (GetPeer() != nullptr && IsShown() && m_bDropped != bShow) {
        m_bDropped = bShow;
        NotifyPeer();
    }
}

bool CComboBox::SelectByOperator(int Index) {
    if (!IsItem(Index)) {
        return false;
    }
    if (Index == m_CurSel) {
        return true;
    }
    const int Former = m_CurSel;
    m_CurSel = Index;
    const CGuard Guard(*this);
    const bool bRefused = NotifyParent(CBN_SELCHANGE) != 0;
    if (!Guard.IsAlive()) {
        return false;
    }
    if (bRefused && m_CurSel == Index) {
        m_CurSel = Former;
    }
    NotifyPeer();
    return !bRefused;
}

void CComboBox::DropByOperator(bool bDropped) {
    m_bDropped = bDropped;
    NotifyParent(bDropped ? CBN_DROPDOWN : CBN_CLOSEUP);
}

LRESULT CComboBox::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_SETFOCUS:
            NotifyParent(CBN_SETFOCUS);
            return 0;
        case WM_KILLFOCUS:
            NotifyParent(CBN_KILLFOCUS);
            return 0;
        default:
            return CControl::WindowProc(Message, wParam, lParam);
    }
}
