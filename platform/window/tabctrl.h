#pragma once
#include <string>
#include <vector>

#include "platform/window/wnd.h"

/// A window with tabs. Only the list of tabs and the selection: pages are windows of their own.
class CTabCtrl : public CWnd {
public:
    /// Inserts a tab before Index; returns its index or -1 if Index is out of range.
    int InsertItem(int Index, const std::string& rText);
    bool DeleteItem(int Index);
    int GetItemCount() const { return static_cast<int>(m_Items.size()); }
    /// The selected tab, -1 without tabs.
    int GetCurSel() const { return m_CurSel; }
    /// Selects and returns the tab selected before; -1 and no change if out of range.
    int SetCurSel(int Index);
    const std::string& GetItemText(int Index) const { return m_Items.at(static_cast<std::size_t>(Index)); }

private:
    std::vector<std::string> m_Items;
    int m_CurSel = -1;
};
