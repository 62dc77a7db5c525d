#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/window/control.h"
#include "platform/window/imagelist.h"

class CTabBar;

/// A window with tabs along its top edge. Only the list of tabs and the selection: pages are windows of their
/// own, children of this one. The first tab that is inserted becomes the selected one.
///
/// The tabs are the toolkit's; they answer clicks and, with the focus, arrow keys, but not the mouse wheel.
/// The parent is asked TCN_SELCHANGING and told TCN_SELCHANGE (notification.h) of what the operator selects;
/// so is a derived class, by OnSelectedByOperator.
class CTabCtrl : public CWnd {
public:
    static constexpr int TAB_HEIGHT = 24;

    CTabCtrl();
    ~CTabCtrl() override;

    /// Inserts a tab before Index, with a picture of the image list (-1: none); returns its index or -1 if
    /// Index is out of range.
    int InsertItem(int Index, const std::string& rText, int Image = -1);
    bool DeleteItem(int Index);
    int GetItemCount() const { return static_cast<int>(m_Items.size()); }
    /// The selected tab, -1 without tabs.
    int GetCurSel() const { return m_CurSel; }
    /// Selects, without telling the parent, and returns the tab selected before; -1 and no change if out of
    /// range.
    int SetCurSel(int Index);
    const std::string& GetItemText(int Index) const {
        return m_Items.at(static_cast<std::size_t>(Index)).m_Text;
    }
    /// False, and no change, if Index is out of range.
    bool SetItemText(int Index, const std::string& rText);
    int GetItemImage(int Index) const { return m_Items.at(static_cast<std::size_t>(Index)).m_Image; }
    void SetFont(const CFont& rFont) override;
    void SetImageList(const CImageList& rImages);
    const CImageList& GetImageList() const { return m_Images; }
    /// The client area under the tabs, for the page.
    CRect GetDisplayArea() const;

    /// The operator selects a tab; asks the parent if it is another. False if that was refused, or if this
    /// window is gone.
    bool SelectByOperator(int Index);

protected:
    /// Makes and places the tabs on messages 1 and 5 and fills the ground on message 15. Derived classes pass
    /// on what they don't handle.
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    /// The operator has selected another tab; before the parent is told.
    virtual void OnSelectedByOperator() {}

private:
    struct CItem {
        std::string m_Text;
        int m_Image = -1;
    };

    CRect GetBarArea() const;

    CImageList m_Images;
    std::vector<CItem> m_Items;
    int m_CurSel = -1;
    std::unique_ptr<CTabBar> m_pBar;
};
