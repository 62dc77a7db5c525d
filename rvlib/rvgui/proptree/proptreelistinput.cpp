// What the operator does to the rows of a tree.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/listkeys.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreelist.h"

namespace PropTree {

void CPropTreeList::OnButtonDown(CPoint Point, bool bDouble) {
    if (m_rTree.IsKeyboardOnly()) {
        return;
    }
    const CGuard Guard(*this);
    SetFocus();  // ends editing, which may change the rows
    if (!Guard.IsAlive()) {
        return;
    }
    m_pPressed = nullptr;
    CPropTreeItem* pItem = nullptr;
    switch (m_rTree.HitTest(Point, &pItem)) {
        case CPropTree::eSplitter:
            if (m_rTree.SendNotify(CPropTree::eSplitterAsked, nullptr) == 0 && Guard.IsAlive()) {
                m_bDragging = true;
                m_DragX = Point.x;
                SetCapture();
                Invalidate();
            }
            break;
        case CPropTree::eExpandBox:
            m_rTree.ToggleExpanded(*pItem);
            break;
        case CPropTree::eCheckBox:
            if (m_rTree.SetFocusedItem(pItem)) {
                m_rTree.ToggleChecked(*pItem);
            }
            break;
        case CPropTree::eValue:
            if (m_rTree.SetFocusedItem(pItem)) {
                m_pPressed = pItem;
            }
            break;
        case CPropTree::eLabel:
            if (m_rTree.SetFocusedItem(pItem) && bDouble) {
                m_rTree.ToggleExpanded(*pItem);
            }
            break;
        case CPropTree::eNothing:
            break;
    }
}

void CPropTreeList::OnButtonUp(CPoint Point) {
    if (m_bDragging) {
        OnMouseMove(Point);
        const int nOrigin = m_DragX;
        ReleaseCapture();
        StopDragging();
        m_rTree.SetOrigin(nOrigin);
        return;
    }
    const CPropTreeItem* const pPressed = std::exchange(m_pPressed, nullptr);
    CPropTreeItem* pItem = nullptr;
    if (pPressed != nullptr && m_rTree.HitTest(Point, &pItem) == CPropTree::eValue && pItem == pPressed) {
        pItem->Activate();
    }
}

void CPropTreeList::OnMouseMove(CPoint Point) {
    if (m_bDragging) {
        const CRect Content = GetContentRect();
        m_DragX = std::clamp(Point.x, Content.left, std::max(Content.right, Content.left));
        Invalidate();
        return;
    }
    const bool bSplitter = !m_rTree.IsKeyboardOnly() && m_rTree.HitTest(Point) == CPropTree::eSplitter;
    SetCursor(bSplitter ? Cursor::eSplitColumns : Cursor::eArrow);
}

void CPropTreeList::StopDragging() {
    if (m_bDragging) {
        m_bDragging = false;
        Invalidate();
    }
}

bool CPropTreeList::OnWheel(int nDelta) {
    constexpr int ROWS_PER_NOTCH = 3;
    if (m_rTree.IsKeyboardOnly() || !m_ScrollBar.IsWindowVisible()) {
        return false;
    }
    m_rTree.SetScrollPos(m_rTree.GetScrollPos() -
                         nDelta * ROWS_PER_NOTCH * CPropTree::ROW_HEIGHT / WHEEL_DELTA);
    return true;
}

void CPropTreeList::OnScroll(int Code, int nPos) {
    m_rTree.SetScrollPos(m_ScrollBar.GetTarget(Code, nPos, CPropTree::ROW_HEIGHT));
}

bool CPropTreeList::MoveBy(int nRows) {
    CPropTreeItem* const pFormer = m_rTree.GetFocusedItem();
    CPropTreeItem* pTarget = nullptr;
    int i = 0;
    int nFocus = -1;
    for (CPropTreeItem* pItem = m_rTree.GetFirstVisible(); pItem != nullptr;
         pItem = pItem->GetNextVisible()) {
        nFocus = pItem == pFormer ? i : nFocus;
        ++i;
    }
    if (i == 0) {
        return true;
    }
    // Without a focus the first step goes to the end that it comes from, but Home and End mean what they say.
    const bool bAll = std::abs(nRows) == Gui::ALL_ROWS;
    const int nEnd = (nRows < 0) == bAll ? 0 : i - 1;
    const int nWanted = nFocus < 0 ? nEnd : std::clamp(nFocus + nRows, 0, i - 1);
    pTarget = m_rTree.GetFirstVisible();
    for (int k = 0; k < nWanted; ++k) {
        pTarget = pTarget->GetNextVisible();
    }
    m_rTree.SetFocusedItem(pTarget);
    return true;
}

bool CPropTreeList::OnKeyDown(UINT Key) {
    // What the box over a value doesn't use comes here, too.
    if (!m_rTree.HasListFocus() || !m_rTree.IsWindowEnabled()) {
        return false;
    }
    m_bEnterDown = Key == VK_RETURN;
    if (m_bDragging && Key == VK_ESCAPE) {
        ReleaseCapture();
        return true;
    }
    CPropTreeItem* const pItem = m_rTree.GetFocusedItem();
    if (pItem != nullptr && pItem->IsActive() && OnEditingKey(Key, *pItem)) {
        return true;
    }
    const int nPage = std::max(GetContentRect().Height() / CPropTree::ROW_HEIGHT - 1, 1);
    if (const std::optional<int> nRows = Gui::GetRowsToMove(Key, nPage)) {
        return MoveBy(*nRows);
    }
    return pItem != nullptr && OnItemKey(Key, *pItem);
}

bool CPropTreeList::OnEditingKey(UINT Key, CPropTreeItem& rItem) {
    switch (Key) {
        case VK_ESCAPE:
            rItem.CancelChanges();
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            m_rTree.StepOnce(Key == VK_RIGHT);
            return true;
        default:
            return false;
    }
}

bool CPropTreeList::OnItemKey(UINT Key, CPropTreeItem& rItem) {
    switch (Key) {
        case VK_LEFT:
            if (rItem.HasChildren() && rItem.IsExpanded()) {
                m_rTree.ToggleExpanded(rItem);
            } else if (!rItem.IsTopLevel()) {
                m_rTree.SetFocusedItem(rItem.GetParentItem());
            }
            return true;
        case VK_RIGHT:
            if (rItem.HasChildren() && !rItem.IsExpanded()) {
                m_rTree.ToggleExpanded(rItem);
            } else if (rItem.HasChildren()) {
                m_rTree.SetFocusedItem(rItem.GetChild());
            }
            return true;
        case VK_SPACE:
            if (rItem.HasCheckBox()) {
                m_rTree.ToggleChecked(rItem);
            } else {
                m_rTree.ToggleExpanded(rItem);
            }
            return true;
        case VK_F2:
            rItem.Activate();
            return true;
        case VK_RETURN:
            return true;  // its release counts: the box that opens by it would take that for an end
        default:
            return false;
    }
}

bool CPropTreeList::OnKeyUp(UINT Key) {
    if (Key != VK_RETURN || !std::exchange(m_bEnterDown, false) || !m_rTree.HasListFocus()) {
        return false;
    }
    const CPropTreeItem* const pItem = m_rTree.GetFocusedItem();
    const std::weak_ptr<const bool> pLife = pItem != nullptr ? pItem->GetLife() : std::weak_ptr<const bool>();
    m_rTree.Accept();
    // Nothing to edit: a heading opens and closes.
    if (!pLife.expired() && m_rTree.HasListFocus() && !pItem->IsActive() && pItem->GetValueText().empty()) {
        m_rTree.ToggleExpanded();
    }
    return true;
}

}  // namespace PropTree
