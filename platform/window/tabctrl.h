#pragma once
#include <string>
#include <vector>

#include "platform/window/font.h"
#include "platform/window/wnd.h"

/// A window with tabs. Only the list of tabs and the selection: pages are windows of their own. The first tab
/// that is inserted becomes the selected one. Message 15 draws the tabs along the top edge.
class CTabCtrl : public CWnd {
public:
    static constexpr int eTabHeight = 24;

    /// Inserts a tab before Index; returns its index or -1 if Index is out of range.
    int InsertItem(int Index, const std::string& rText);
    bool DeleteItem(int Index);
    int GetItemCount() const { return static_cast<int>(m_Items.size()); }
    /// The selected tab, -1 without tabs.
    int GetCurSel() const { return m_CurSel; }
    /// Selects and returns the tab selected before; -1 and no change if out of range.
    int SetCurSel(int Index);
    const std::string& GetItemText(int Index) const { return m_Items.at(static_cast<std::size_t>(Index)); }
    /// The client area under the tabs, for the page.
    CRect GetDisplayArea() const;
    void SetFont(const CFont& rFont);

protected:
    /// Draws the tabs on message 15. Derived classes pass on what they don't handle.
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void PaintTabs();

    CFont m_Font{"Arial", 14};
    std::vector<std::string> m_Items;
    int m_CurSel = -1;
};
