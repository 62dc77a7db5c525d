#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/window/control.h"

/// A box that drops down a list to choose from; its text can't be edited. Keys choose, too, also by the first
/// letters of an item; the mouse wheel doesn't. Tells its parent CBN_ codes (notification.h). A tab stop from
/// the start. Items may be added before the window is created, and outlive it.
class CComboBox : public CControl {
public:
    /// More items are refused.
    static constexpr int MAX_ITEMS = 10000;

    CComboBox();

    /// Adds an item at the end; its index, or -1 if the list is full.
    int AddString(const std::string& rText);
    /// False if there is no such item. The selection goes along with its item; a deleted one leaves none.
    bool DeleteString(int Index);
    void ResetContent();
    int GetCount() const { return static_cast<int>(m_Items.size()); }
    /// Empty for an index that there isn't.
    const std::string& GetLBText(int Index) const;
    /// The first item with exactly that text, or -1.
    int FindStringExact(const std::string& rText) const;
    /// A number of the program's with each item, 0 from the start. False, and 0, for an index that there
    /// isn't.
    bool SetItemData(int Index, std::uintptr_t Data);
    std::uintptr_t GetItemData(int Index) const;

    /// The chosen item, -1 for none.
    int GetCurSel() const { return m_CurSel; }
    /// Chooses without telling the parent; -1 for none. False, and no change, for an index that there isn't.
    bool SetCurSel(int Index);

    /// Opens or closes the list, where a view shows the box.
    void ShowDropDown(bool bShow);
    bool GetDroppedState() const { return m_bDropped; }

    /// The operator has chosen an item; asks the parent if it is another. False if that was refused. The box
    /// may be gone then.
    bool SelectByOperator(int Index);
    /// The list opens or has closed.
    void DropByOperator(bool bDropped);

protected:
    /// Tells the parent of the focus.
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    struct CItem {
        std::string m_Text;
        std::uintptr_t m_Data = 0;
    };
    bool IsItem(int Index) const { return Index >= 0 && Index < GetCount(); }

    std::vector<CItem> m_Items;
    int m_CurSel = -1;
    bool m_bDropped = false;
};
