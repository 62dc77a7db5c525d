#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/window/dc.h"
#include "platform/window/notification.h"
#include "rvlib/rvbas/base/autoincdectimer.h"

namespace PropTree {

class CPropTree;

/// A row of a CPropTree: label on the left, value on the right, items of its own below it. Base of all items.
///
/// An item belongs to the tree that it was inserted into, which may end it in any notification that the item
/// sends: code behind one asks IsAlive of a GetLife that it took before.
class CPropTreeItem : public Base::CAutoIncDecTimer {
public:
    explicit CPropTreeItem(std::string Label = std::string()) : m_Label(std::move(Label)) {}

    void SetLabelText(const std::string& rText);
    const std::string& GetLabelText() const { return m_Label; }
    /// What the info pane tells about the item.
    void SetInfoText(const std::string& rText);
    const std::string& GetInfoText() const { return m_Info; }
    /// The limits of the value, which the info pane shows behind the text; empty without.
    const std::string& GetRangeText() const { return m_Range; }
    /// Topic for the CDynamicHelpIF; without one that of the tree.
    void SetHelpKey(const std::string& rKey) { m_HelpKey = rKey; }
    const std::string& GetHelpKey() const { return m_HelpKey; }

    CPropTree* GetTree() const { return m_pTree; }
    /// Counts from 1 in the order of insertion; 0 before.
    UINT GetItemId() const { return m_ItemId; }
    /// The tree's invisible root for items at the top level.
    CPropTreeItem* GetParentItem() const { return m_pParentItem; }
    CPropTreeItem* GetChild() const { return m_pChild.get(); }
    CPropTreeItem* GetSibling() const { return m_pSibling.get(); }
    /// The row below this one, whatever is scrolled into sight; null for the last one.
    CPropTreeItem* GetNextVisible() const { return m_pNextVisible; }
    /// Whether all parents are expanded, as of the last layout.
    bool IsInVisibleChain() const { return m_bInChain; }
    /// Directly below the root.
    bool IsTopLevel() const;
    bool HasChildren() const { return m_pChild != nullptr; }
    /// rItem is this item or somewhere below it.
    bool Holds(const CPropTreeItem& rItem) const;

    bool IsSelected() const { return (m_State & eSelected) != 0; }
    bool IsExpanded() const { return (m_State & eExpanded) != 0; }
    /// Shows or hides the children without asking anybody.
    void Expand(bool bExpand = true);
    /// A box in front of the label, which a click or the space bar turns over (-1105).
    void ShowCheckBox(bool bShow);
    bool HasCheckBox() const { return (m_State & eWithCheckBox) != 0; }
    void SetChecked(bool bChecked);
    bool IsChecked() const { return (m_State & eChecked) != 0; }

    /// Being edited.
    bool IsActive() const { return m_bActive; }
    /// Begins editing, if the tree is enabled and the item can be edited.
    void Activate();
    /// Ends editing with the value as it stands: OnCommit, then -1105, then the focus to the tree.
    void CommitChanges();
    /// Ends editing with the value from before. Sends -1105 if a change had gone out meanwhile.
    void CancelChanges();
    /// Ends the series of steps of a key that was held.
    void StopRepeat();

    /// What stands in the value column.
    virtual std::string GetValueText() const { return {}; }
    /// A character typed while the item is selected and not being edited. True: it was used.
    virtual bool OnCharacter(char32_t Character);
    /// Answer to a notification of a control that is the item itself.
    virtual LRESULT OnControlNotification(const CWndNotification& rNotification);

    /// Place in the list, in pixels from the first row's top.
    int GetY() const { return m_Y; }
    int GetHeight() const { return m_Height; }
    const CRect& GetExpandRect() const { return m_ExpandRect; }
    const CRect& GetCheckRect() const { return m_CheckRect; }

    /// Expires with the item.
    std::weak_ptr<const bool> GetLife() const { return m_pLife; }

protected:
    /// To begin editing. The base tells the help only.
    virtual void OnActivate();
    /// The window that lies over the value while that is being edited; null for an item that is only shown.
    virtual CWnd* GetValueWindow() { return nullptr; }
    /// Opens that window and gives the focus to rFocus, which is it or its child; in keyboard-only mode it
    /// stays hidden, the focus stays with the tree, and the parent is told. False if there is nothing to do
    /// for the caller: in that mode, or if editing was ended by somebody meanwhile, with the item perhaps.
    bool OpenValueWindow(CWnd& rFocus);
    /// Makes that window if it doesn't stand.
    void ProvideValueWindow();
    /// Editing is over: the window is hidden, and no key steps on.
    void CloseValueWindow();
    /// The release of Enter and the press of Escape end editing. True if the key was used: also the press
    /// that belongs to that release, which nobody else is to take for his own.
    bool OnEndingKey(UINT Message, UINT Key);
    /// To end it: the value is checked and kept.
    virtual void OnCommit() {}
    /// To end it: the value from before comes back. The item isn't active any more.
    virtual void OnCancel() {}
    /// The item or the list that its window lies in is about to end.
    virtual void OnLeaveTree();
    /// Draws the value column; rRect is the cell without its lines.
    virtual void DrawAttribute(CDC& rDC, const CRect& rRect) const;
    void SetRangeText(const std::string& rText);
    /// -1105 in the middle of editing.
    void SendChanged();
    void PassHelp() const;
    /// The row and the info pane are to be drawn anew.
    void Redraw() const;
    bool IsKeyboardOnly() const;
    /// Colour of text, grey in a tree that is disabled.
    COLORREF GetTextColor() const;

    /// One step of the value, up or down, by a key that is held or for once.
    virtual void OnStep(bool bUp) { (void)bUp; }
    void OnAutoIncrement() final { MakeStep(true); }
    void OnAutoDecrement() final { MakeStep(false); }

private:
    friend class CPropTree;
    friend class CPropTreeList;

    enum State : std::uint32_t { eSelected = 1, eExpanded = 2, eWithCheckBox = 4, eChecked = 8 };
    void SetState(State Bit, bool bSet) { m_State = bSet ? m_State | Bit : m_State & ~Bit; }
    /// Where the value stands in the list's client area: for the window that lies over it.
    void PlaceValue(const CRect& rValue);
    /// Takes the place at y with the label from x on, y growing downwards; returns the height.
    int Place(int x, int y);
    /// Draws the row, whose top is at y in rClient; returns its height.
    int Draw(CDC& rDC, const CRect& rClient, int y) const;
    /// A series of steps while a key is held: one at once, the next after msInitial.
    void StartRepeat(bool bUp, std::uint32_t msInitial);
    void MakeStep(bool bUp);
    void DrawGround(CDC& rDC, const CRect& rRow) const;
    void DrawLabel(CDC& rDC, const CRect& rRow) const;

    std::string m_Label;
    std::string m_Info;
    std::string m_Range;
    std::string m_HelpKey;
    CPropTree* m_pTree = nullptr;
    CPropTreeItem* m_pParentItem = nullptr;
    std::unique_ptr<CPropTreeItem> m_pChild;
    std::unique_ptr<CPropTreeItem> m_pSibling;
    CPropTreeItem* m_pNextVisible = nullptr;
    UINT m_ItemId = 0;
    std::uint32_t m_State = 0;
    bool m_bInChain = false;
    bool m_bActive = false;
    bool m_bChangeSent = false;   ///< since editing began
    bool m_bStepping = false;     ///< in the middle of a step
    std::uint32_t m_nSeries = 0;  ///< of steps, so far
    CRect m_ExpandRect;           ///< both empty without such a box
    CRect m_CheckRect;
    CRect m_ValuePlace;
    int m_Y = 0;
    int m_Height = 0;
    int m_LabelX = 0;
    std::shared_ptr<const bool> m_pLife = std::make_shared<const bool>(true);
};

}  // namespace PropTree
