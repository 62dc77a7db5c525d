#pragma once
#include <memory>
#include <string>

#include "platform/window/notification.h"
#include "platform/window/wnd.h"
#include "rvlib/rvgui/proptree/dynamichelpif.h"
#include "rvlib/rvgui/proptree/proptreeinfo.h"
#include "rvlib/rvgui/proptree/proptreeitem.h"
#include "rvlib/rvgui/proptree/proptreelist.h"

namespace PropTree {

/// What a tree tells its parent: one of CPropTree::Code, and the item that it is about (null for the
/// splitter's).
struct CTreeNotification : CWndNotification {
    CPropTreeItem* m_pItem = nullptr;
};

/// To a tree: wParam the item to delete, after the event that is being handled.
constexpr UINT WM_RV_DELETEITEM = 1150;

/// The list of configuration values in two columns, labels left and values right, with groups that open and
/// close, and a pane below that tells about the item with the focus. Owns its items.
///
/// One item at most has the focus, that of the operator's attention: it is selected, and it is the one that
/// can be edited. The window's focus is with the list, or in the box that lies over the value.
///
/// Operated by mouse or touch, by keys (arrows, Page Up and Down, Home, End; left and right close and open a
/// group; Enter or F2 edits, Enter accepts, Escape gives the old value back; letters and digits begin to
/// edit), and by the softkey operations below, which are the only ones that work in keyboard-only mode
/// besides keys.
class CPropTree : public CWnd {
public:
    /// Style bit 0: the parent is told. Nothing is sent without it.
    static constexpr UINT NOTIFY_PARENT = 1;

    /// Codes of notifications.
    enum Code : int {
        eInserted = -1101,
        eDeleteAsked = -1102,    ///< nonzero: the item stays
        eItemChanged = -1105,    ///< a step or a choice was made, or editing has ended
        eExpandAsked = -1108,    ///< nonzero: it stays as it is
        eSplitterAsked = -1109,  ///< nonzero: no dragging
    };
    /// Where a point of the list lies.
    enum Hit { eNothing = 1, eLabel = 50, eSplitter = 51, eExpandBox = 52, eValue = 53, eCheckBox = 54 };
    enum Mode {
        eNormalMode = 0,
        /// Softkeys alone: the list ignores the mouse, and no window ever lies over a value.
        eKeyboardOnly = 1
    };
    static constexpr int ROW_HEIGHT = 28;  ///< for a finger
    static constexpr int INFO_HEIGHT = 78;

    CPropTree();
    ~CPropTree() override;

    /// As that of CWnd; logs a failure.
    bool Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible = true);

    /// Puts the item at the end of pParent's children (null: at the top level), or in front of pBefore, which
    /// is one of them. Tells -1101. Null if the item is gone after that, or if there was none.
    template <typename Item>
    Item* Insert(std::unique_ptr<Item> pItem, CPropTreeItem* pParent = nullptr,
                 const CPropTreeItem* pBefore = nullptr) {
        Item* const pInserted = pItem.get();
        return InsertItem(std::move(pItem), pParent, pBefore) ? pInserted : nullptr;
    }
    /// Destroys the item and everything below it; null: all items. The parent is asked first (-1102), but for
    /// all items. False if it refused, or if this is no item of the tree. A handler of an item's own event
    /// posts WM_RV_DELETEITEM to the tree instead.
    bool Delete(CPropTreeItem* pItem);

    /// The invisible item above those at the top level.
    CPropTreeItem& GetRoot() { return *m_pRoot; }
    /// The first row; the others follow by GetNextVisible.
    CPropTreeItem* GetFirstVisible() const { return m_pFirstVisible; }
    CPropTreeItem* GetLastVisible() const;
    bool IsItemVisible(const CPropTreeItem* pItem) const;
    /// Opens all parents and scrolls.
    void EnsureVisible(CPropTreeItem* pItem);
    CPropTreeItem* GetFocusedItem() const { return m_pFocus; }
    /// Ends editing elsewhere, selects the item (null: none), scrolls to it. False if it is gone after that.
    bool SetFocusedItem(CPropTreeItem* pItem);
    /// What lies at a point of the list's client area; the item if there is one.
    Hit HitTest(CPoint Point, CPropTreeItem** ppItem = nullptr) const;

    /// Ends editing, if any, with the value as it stands.
    void EndEditing();

    // What softkeys do.
    /// To the row below or above, ending editing; false if there is none. Without a focus: the first or last.
    bool SelectNeighbour(bool bNext);
    /// The value key goes down: a step at once, and again and again until StopStepping. Nothing without a
    /// focus.
    void StartStepping(bool bUp);
    /// The value key is let go.
    void StopStepping();
    /// Begins editing the item with the focus, or ends it.
    void Accept();
    /// Opens or closes the group with the focus, if the parent doesn't object.
    void ToggleExpanded();
    bool ToggleExpanded(CPropTreeItem& rItem);

    Mode GetMode() const { return m_Mode; }
    void SetMode(Mode NewMode);
    bool IsKeyboardOnly() const { return m_Mode == eKeyboardOnly; }
    /// Shows or hides the info pane.
    void ShowInfo(bool bShow, int nHeight = INFO_HEIGHT);
    bool IsInfoShown() const { return m_bShowInfo; }
    /// The splitter between the columns, in pixels of the list.
    int GetOrigin() const { return m_Origin; }
    void SetOrigin(int x);
    int GetScrollPos() const { return m_ScrollPos; }
    void SetScrollPos(int nPos);
    /// Height of all rows.
    int GetContentHeight() const { return m_nContentHeight; }
    void SetDynamicHelp(CDynamicHelpIF* pHelp) { m_pDynamicHelp = pHelp; }
    /// The topic of items that have none.
    void SetHelpKey(const std::string& rKey) { m_HelpKey = rKey; }

    /// Sends -1112 to -1101 to the parent, but for -1111 and -1104; nothing without the style bit. The
    /// parent's answer.
    LRESULT SendNotify(int NotifyCode, CPropTreeItem* pItem);

    CPropTreeList& GetList() { return m_List; }
    CPropTreeInfo& GetInfo() { return m_Info; }
    /// The list itself has the window's focus.
    bool HasListFocus() const { return CWnd::GetFocus() == &m_List; }

    /// The fonts of all trees, which the first one makes and the last one takes along. Null without a tree.
    static const CFont* FindNormalFont();
    static const CFont* FindBoldFont();
    static const CFont& GetNormalFont() { return *FindNormalFont(); }
    static const CFont& GetBoldFont() { return *FindBoldFont(); }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    friend class CPropTreeItem;
    friend class CPropTreeList;
    template <typename T>
    friend class CPropTreeItemSpinEdit;
    friend class CPropTreeItemCombo;

    bool InsertItem(std::unique_ptr<CPropTreeItem> pItem, CPropTreeItem* pParent,
                    const CPropTreeItem* pBefore);
    /// Takes an item and those below it out of everything, and destroys them. Asks nobody.
    void Remove(CPropTreeItem& rItem);
    /// pItem is in this tree; it may be any address.
    bool Owns(const CPropTreeItem* pItem) const;
    void ExpandItem(CPropTreeItem& rItem, bool bExpand);
    void ToggleChecked(CPropTreeItem& rItem);
    /// A single step of the value with the focus.
    void StepOnce(bool bUp);

    /// Ends the windows over values, without a word to anybody.
    void CloseBoxes(CPropTreeItem& rParent);
    /// The window's focus goes to the list, but for one that the operator has put outside the tree.
    void TakeFocusBack();
    void PassHelp(const CPropTreeItem& rItem) const;
    /// Chains and places the rows, and what lies over them.
    void UpdateLayout();
    void AppendRows(CPropTreeItem& rParent, int nLevel, CPropTreeItem*& rpLast);
    void PlaceEditor();
    void ScrollTo(const CPropTreeItem& rItem);
    /// Of the value's cell in the list's client area.
    CRect GetValueRect(const CPropTreeItem& rItem) const;
    void Redraw();
    void PlaceWindows();
    bool IsWithin(const CWnd* pWnd) const;

    CPropTreeList m_List{*this};
    CPropTreeInfo m_Info{*this};
    std::unique_ptr<CPropTreeItem> m_pRoot;
    CPropTreeItem* m_pFirstVisible = nullptr;
    CPropTreeItem* m_pFocus = nullptr;
    int m_Origin = 0;
    bool m_bOriginSet = false;  ///< by somebody; else it goes with the width
    int m_ScrollPos = 0;
    int m_nContentHeight = 0;
    UINT m_NextItemId = 1;
    CDynamicHelpIF* m_pDynamicHelp = nullptr;
    std::string m_HelpKey;
    bool m_bShowInfo = true;
    int m_nInfoHeight = INFO_HEIGHT;
    Mode m_Mode = eNormalMode;
};

}  // namespace PropTree
