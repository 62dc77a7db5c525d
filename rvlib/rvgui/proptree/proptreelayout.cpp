// Where everything of a tree stands.
#include <algorithm>

#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

namespace {

constexpr int NARROWEST = 40;  // of a column

}  // namespace

void CPropTree::ShowInfo(bool bShow, int nHeight) {
    m_bShowInfo = bShow;
    m_nInfoHeight = nHeight;
    m_Info.ShowWindow(bShow);
    PlaceWindows();
}

void CPropTree::PlaceWindows() {
    if (!IsWindow()) {
        return;
    }
    const CRect Client = GetClientRect();
    const int nInfo = m_bShowInfo ? std::clamp(m_nInfoHeight, 0, Client.bottom) : 0;
    m_List.MoveWindow(CRect(0, 0, Client.right, Client.bottom - nInfo));
    m_Info.MoveWindow(CRect(0, Client.bottom - nInfo, Client.right, Client.bottom));
    UpdateLayout();
}

void CPropTree::SetOrigin(int x) {
    m_bOriginSet = true;
    m_Origin = x;
    UpdateLayout();
}

void CPropTree::SetScrollPos(int nPos) {
    const int nPage = m_List.GetContentRect().Height();
    m_ScrollPos = std::clamp(nPos, 0, std::max(m_nContentHeight - nPage, 0));
    m_List.FitScrollBar();
    PlaceEditor();
    Redraw();
}

void CPropTree::ScrollTo(const CPropTreeItem& rItem) {
    const int nPage = m_List.GetContentRect().Height();
    const int nLowest = std::max(rItem.m_Y + rItem.m_Height - nPage, 0);
    SetScrollPos(std::min(std::max(m_ScrollPos, nLowest), rItem.m_Y));
}

void CPropTree::UpdateLayout() {
    const auto Unchain = [](const auto& rSelf, CPropTreeItem& rParent) -> void {
        for (CPropTreeItem* pChild = rParent.GetChild(); pChild != nullptr; pChild = pChild->GetSibling()) {
            pChild->m_pNextVisible = nullptr;
            pChild->m_bInChain = false;
            rSelf(rSelf, *pChild);
        }
    };
    Unchain(Unchain, *m_pRoot);
    m_pFirstVisible = nullptr;
    m_nContentHeight = 0;
    CPropTreeItem* pLast = nullptr;
    AppendRows(*m_pRoot, 0, pLast);
    if (m_pFocus != nullptr && !m_pFocus->m_bInChain) {
        m_pFocus->SetState(CPropTreeItem::eSelected, false);
        m_pFocus->StopRepeat();
        m_pFocus = nullptr;
    }
    const CRect Content = m_List.GetContentRect();
    if (!m_bOriginSet) {
        m_Origin = Content.left + Content.Width() / 2;
    }
    m_Origin = std::max(std::min(m_Origin, Content.right - NARROWEST), Content.left + NARROWEST);
    SetScrollPos(m_ScrollPos);
}

void CPropTree::AppendRows(CPropTreeItem& rParent, int nLevel, CPropTreeItem*& rpLast) {
    constexpr int INDENT = 14;
    for (CPropTreeItem* pItem = rParent.GetChild(); pItem != nullptr; pItem = pItem->GetSibling()) {
        (rpLast == nullptr ? m_pFirstVisible : rpLast->m_pNextVisible) = pItem;
        rpLast = pItem;
        pItem->m_bInChain = true;
        m_nContentHeight += pItem->Place(m_List.GetContentRect().left + nLevel * INDENT, m_nContentHeight);
        if (pItem->IsExpanded()) {
            AppendRows(*pItem, nLevel + 1, rpLast);
        }
    }
}

CRect CPropTree::GetValueRect(const CPropTreeItem& rItem) const {
    const CRect Content = m_List.GetContentRect();
    const int y = Content.top + rItem.m_Y - m_ScrollPos;
    return {m_Origin + 1, y, std::max(Content.right, m_Origin + 1), y + rItem.m_Height - 1};
}

void CPropTree::PlaceEditor() {
    for (CPropTreeItem* pItem = m_pFirstVisible; pItem != nullptr; pItem = pItem->m_pNextVisible) {
        pItem->PlaceValue(GetValueRect(*pItem));
    }
}

void CPropTree::Redraw() {
    m_List.Redraw();
    m_Info.Invalidate();
}

}  // namespace PropTree
