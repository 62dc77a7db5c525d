#pragma once
#include "platform/window/scrollbar.h"
#include "platform/window/wnd.h"

namespace PropTree {

class CPropTree;
class CPropTreeItem;

/// The rows of a tree: painted into a bitmap, so that the line of the splitter can be dragged over them;
/// scrolled; operated by mouse and keys.
class CPropTreeList : public CWnd {
public:
    explicit CPropTreeList(CPropTree& rTree) : m_rTree(rTree) { ModifyStyle(0, WS_TABSTOP); }

    /// As that of CWnd; logs a failure.
    bool Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible = true);
    /// Where rows stand: without gutter or frame, and without the scroll bar.
    CRect GetContentRect() const;
    CScrollBar& GetScrollBar() { return m_ScrollBar; }
    bool IsDragging() const { return m_bDragging; }

    /// Everything is to be drawn anew.
    void Redraw();
    /// The scroll bar follows the rows and the position.
    void FitScrollBar();
    /// rItem is about to end.
    void ForgetItem(const CPropTreeItem& rItem);

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void Paint();
    void PaintRows();
    void OnSetFocus(const CWnd* pFormer);
    LRESULT OnNotify(const CWndNotification& rNotification) const;

    // Mouse.
    void OnButtonDown(CPoint Point, bool bDouble);
    void OnButtonUp(CPoint Point);
    void OnMouseMove(CPoint Point);
    void StopDragging();
    bool OnWheel(int nDelta);
    void OnScroll(int Code, int nPos);

    // Keys; true: used.
    bool OnKeyDown(UINT Key);
    bool OnKeyUp(UINT Key);
    bool OnItemKey(UINT Key, CPropTreeItem& rItem);
    bool OnEditingKey(UINT Key, CPropTreeItem& rItem);
    bool MoveBy(int nRows);

    CPropTree& m_rTree;
    CScrollBar m_ScrollBar;
    CBitmap m_Memory;
    bool m_bDirty = true;
    bool m_bDragging = false;
    int m_DragX = 0;
    const CPropTreeItem* m_pPressed = nullptr;  ///< the value that the mouse button went down on
    bool m_bEnterDown = false;                  ///< went down here, so its release counts here
};

}  // namespace PropTree
