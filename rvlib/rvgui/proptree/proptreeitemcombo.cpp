#include "rvlib/rvgui/proptree/proptreeitemcombo.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/system/text.h"
#include "rvlib/rvgui/log.h"
#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

CPropTreeItemCombo::CPropTreeItemCombo(int Min, int Max)
    : m_Min(Min), m_Max(Max), m_NextData(Min), m_Value(Min) {}

int CPropTreeItemCombo::Append(const std::string& rText) {
    const int Index = CComboBox::AddString(rText);
    RV_ASSERT(Gui::g_pLog, Index >= 0, "CPropTreeItemCombo::AddString failed!");
    SetItemData(Index, static_cast<std::uintptr_t>(m_NextData));
    ++m_NextData;
    return Index;
}

int CPropTreeItemCombo::AddString(const std::string& rText) {
    if (m_NextData < m_Min || m_NextData > m_Max) {
        ++m_NextData;
        return -1;
    }
    return Append(rText);
}

void CPropTreeItemCombo::ResetContent() {
    CComboBox::ResetContent();
    m_NextData = m_Min;
    Redraw();
}

void CPropTreeItemCombo::SetItemValue(int Value) {
    m_Value = Value;
    // The values follow one another from the minimum on, as whatever is refused is refused behind them all.
    const std::int64_t Index = std::int64_t{Value} - m_Min;
    const bool bShowable = Index >= 0 && Index < MAX_ITEMS;
    RV_ASSERT_AS(Gui::g_pLog, Index < MAX_ITEMS, "Index >= 0", "CPropTreeItemCombo::AddString failed!",
                 false);
    if (bShowable && Index >= GetCount()) {
        m_NextData = m_Min + GetCount();
        while (Index >= GetCount()) {
            Append("<" + std::to_string(m_NextData) + ">");
        }
    }
    SetCurSel(bShowable ? static_cast<int>(Index) : -1);
    Redraw();
}

int CPropTreeItemCombo::GetItemValue() const {
    return GetCurSel() >= 0 ? static_cast<int>(GetItemData(GetCurSel())) : m_Value;
}

std::string CPropTreeItemCombo::GetValueText() const {
    return GetCurSel() >= 0 ? GetLBText(GetCurSel()) : "<" + std::to_string(m_Value) + ">";
}

bool CPropTreeItemCombo::OnCharacter(char32_t Character) {
    constexpr char32_t FIRST_PRINTABLE = 0x20;
    constexpr char32_t BEHIND_ASCII = 0x80;
    if (Character <= FIRST_PRINTABLE || Character >= BEHIND_ASCII) {
        return false;
    }
    const std::string First(1, static_cast<char>(Character));
    for (int i = 1; i <= GetCount(); ++i) {
        const int Index = (std::max(GetCurSel(), 0) + i) % GetCount();
        if (Text::EqualNoCase(std::string_view(GetLBText(Index)).substr(0, 1), First)) {
            Choose(Index);
            return true;
        }
    }
    return false;
}

void CPropTreeItemCombo::Choose(int Index) {
    if (Index != GetCurSel()) {
        SetCurSel(Index);
        OnChosen();
    }
}

void CPropTreeItemCombo::OnChosen() {
    m_Value = GetItemValue();
    Redraw();
    SendChanged();
}

LRESULT CPropTreeItemCombo::OnControlNotification(const CWndNotification& rNotification) {
    switch (rNotification.m_Code) {
        case CBN_SELCHANGE:
            OnChosen();
            break;
        case CBN_KILLFOCUS:
            if (IsActive()) {
                CommitChanges();
            }
            break;
        default:
            break;
    }
    return 0;
}

LRESULT CPropTreeItemCombo::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if ((Message == WM_KEYDOWN || Message == WM_KEYUP) && OnEndingKey(Message, static_cast<UINT>(wParam))) {
        return 1;
    }
    return CComboBox::WindowProc(Message, wParam, lParam);
}

void CPropTreeItemCombo::OnActivate() {
    m_FormerSel = GetCurSel();
    SetAccessibleName(GetLabelText());
    SetFont(CPropTree::GetNormalFont());
    OpenValueWindow(*this);
}

void CPropTreeItemCombo::OnCommit() {
    CloseValueWindow();
}

void CPropTreeItemCombo::OnCancel() {
    SetCurSel(m_FormerSel);
    m_Value = GetItemValue();
    CloseValueWindow();
}

void CPropTreeItemCombo::OnStep(bool bUp) {
    if (GetCount() == 0 || GetTree() == nullptr || !GetTree()->IsWindowEnabled()) {
        return;
    }
    const int nWay = bUp ? 1 : -1;
    // None is in front of the first one and behind the last one.
    const int Former = GetCurSel() < 0 && nWay < 0 ? 0 : GetCurSel();
    Choose((Former + nWay + GetCount()) % GetCount());
}

}  // namespace PropTree
