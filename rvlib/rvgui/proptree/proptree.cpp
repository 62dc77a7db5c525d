#include "rvlib/rvgui/proptree/proptree.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "rvlib/rvgui/log.h"

namespace PropTree {

namespace {

constexpr UINT LIST_ID = 1;
constexpr UINT INFO_ID = 2;
constexpr int FONT_HEIGHT = 15;
constexpr std::uint32_t HELD_KEY = 450;  // ms to the second step

/// Shared by all trees; the window thread alone comes here. Without a destructor: when a library is unloaded
/// its last trees may end behind its statics.
struct CFonts {
    int m_nTrees = 0;
    const CFont* m_pNormal = nullptr;
    const CFont* m_pBold = nullptr;
};

CFonts& GetFonts() {
    static constinit CFonts s_Fonts;
    return s_Fonts;
}

}  // namespace

CPropTree::CPropTree() : m_pRoot(std::make_unique<CPropTreeItem>()) {
    CFonts& rFonts = GetFonts();
    if (rFonts.m_nTrees++ == 0) {
        rFonts.m_pNormal = std::make_unique<CFont>("Arial", FONT_HEIGHT).release();
        rFonts.m_pBold = std::make_unique<CFont>("Arial", FONT_HEIGHT, CFont::BOLD).release();
    }
    m_pRoot->m_pTree = this;
    m_pRoot->m_State = CPropTreeItem::eExpanded;
}

CPropTree::~CPropTree() {
    while (m_pRoot->HasChildren()) {
        Remove(*m_pRoot->GetChild());
    }
    CFonts& rFonts = GetFonts();
    if (--rFonts.m_nTrees == 0) {
        const std::unique_ptr<const CFont> pNormal(std::exchange(rFonts.m_pNormal, nullptr));
        const std::unique_ptr<const CFont> pBold(std::exchange(rFonts.m_pBold, nullptr));
    }
}

const CFont* CPropTree::FindNormalFont() {
    return GetFonts().m_pNormal;
}

const CFont* CPropTree::FindBoldFont() {
    return GetFonts().m_pBold;
}

bool CPropTree::Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible) {
    const bool bCreated = CWnd::Create(pParent, rRect, Id, bVisible);
    if (!bCreated) {
        RV_ERROR(Gui::g_pLog, "Tree: AfxRegisterWndClass failed!");
    }
    return bCreated;
}

LRESULT CPropTree::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            return m_List.Create(this, CRect(), LIST_ID) && m_Info.Create(this, CRect(), INFO_ID, m_bShowInfo)
                       ? 0
                       : -1;
        case WM_DESTROY:
            // Boxes over values end with the window; the items stay.
            CloseBoxes(*m_pRoot);
            return 0;
        case WM_SIZE:
            PlaceWindows();
            return 0;
        case WM_SETFOCUS:
            m_List.SetFocus();
            return 0;
        case WM_ENABLE:
            Redraw();
            return 0;
        case WM_RV_DELETEITEM:
            // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
            Delete(reinterpret_cast<CPropTreeItem*>(wParam));
            return 0;
        default:
            return CWnd::WindowProc(Message, wParam, lParam);
    }
}

bool CPropTree::InsertItem(std::unique_ptr<CPropTreeItem> pItem, CPropTreeItem* pParent,
                           const CPropTreeItem* pBefore) {
    if (pItem == nullptr) {
        return false;
    }
    CPropTreeItem* const pInserted = pItem.get();
    const bool bParentKnown = pParent == nullptr || Owns(pParent);
    RV_ASSERT(Gui::g_pLog, bParentKnown, "the parent is no item of this tree");
    pInserted->m_pTree = this;
    pInserted->m_pParentItem = pParent != nullptr && bParentKnown ? pParent : m_pRoot.get();
    pInserted->m_ItemId = m_NextItemId++;
    std::unique_ptr<CPropTreeItem>* ppPlace = &pInserted->m_pParentItem->m_pChild;
    while (*ppPlace != nullptr && ppPlace->get() != pBefore) {
        ppPlace = &(*ppPlace)->m_pSibling;
    }
    pItem->m_pSibling = std::move(*ppPlace);
    *ppPlace = std::move(pItem);

    const std::weak_ptr<const bool> pLife = pInserted->GetLife();
    SendNotify(eInserted, pInserted);
    if (pLife.expired()) {
        return false;
    }
    UpdateLayout();
    return true;
}

bool CPropTree::Owns(const CPropTreeItem* pItem) const {
    // Compared, never looked into: a posted address may be that of an item that is gone.
    const auto IsBelow = [pItem](const auto& rSelf, const CPropTreeItem& rParent) -> bool {
        for (const CPropTreeItem* pChild = rParent.GetChild(); pChild != nullptr;
             pChild = pChild->GetSibling()) {
            if (pChild == pItem || rSelf(rSelf, *pChild)) {
                return true;
            }
        }
        return false;
    };
    return pItem == m_pRoot.get() || IsBelow(IsBelow, *m_pRoot);
}

bool CPropTree::Delete(CPropTreeItem* pItem) {
    if (pItem == nullptr || pItem == m_pRoot.get()) {
        while (m_pRoot->HasChildren()) {
            Remove(*m_pRoot->GetChild());
        }
        UpdateLayout();
        return true;
    }
    if (!Owns(pItem)) {
        return false;
    }
    const std::weak_ptr<const bool> pLife = pItem->GetLife();
    if (SendNotify(eDeleteAsked, pItem) != 0 || pLife.expired()) {
        return false;
    }
    Remove(*pItem);
    UpdateLayout();
    return true;
}

void CPropTree::Remove(CPropTreeItem& rItem) {
    while (rItem.HasChildren()) {
        Remove(*rItem.GetChild());
    }
    if (m_pFocus == &rItem) {
        m_pFocus = nullptr;
    }
    m_List.ForgetItem(rItem);
    rItem.OnLeaveTree();
    if (m_pFirstVisible == &rItem) {
        m_pFirstVisible = rItem.m_pNextVisible;
    }
    for (CPropTreeItem* pRow = m_pFirstVisible; pRow != nullptr; pRow = pRow->m_pNextVisible) {
        if (pRow->m_pNextVisible == &rItem) {
            pRow->m_pNextVisible = rItem.m_pNextVisible;
        }
    }
    std::unique_ptr<CPropTreeItem>* ppItem = &rItem.m_pParentItem->m_pChild;
    while (ppItem->get() != &rItem) {
        ppItem = &(*ppItem)->m_pSibling;
    }
    const std::unique_ptr<CPropTreeItem> pItem = std::move(*ppItem);
    *ppItem = std::move(pItem->m_pSibling);
    pItem->m_pTree = nullptr;
}

CPropTreeItem* CPropTree::GetLastVisible() const {
    CPropTreeItem* pLast = m_pFirstVisible;
    while (pLast != nullptr && pLast->m_pNextVisible != nullptr) {
        pLast = pLast->m_pNextVisible;
    }
    return pLast;
}

bool CPropTree::IsItemVisible(const CPropTreeItem* pItem) const {
    const CPropTreeItem* pRow = m_pFirstVisible;
    while (pRow != nullptr && pRow != pItem) {
        pRow = pRow->m_pNextVisible;
    }
    return pRow != nullptr;
}

void CPropTree::EnsureVisible(CPropTreeItem* pItem) {
    if (pItem != nullptr && Owns(pItem)) {
        for (CPropTreeItem* pParent = pItem->m_pParentItem; pParent != nullptr;
             pParent = pParent->m_pParentItem) {
            pParent->SetState(CPropTreeItem::eExpanded, true);
        }
        UpdateLayout();
    }
    RV_ASSERT(Gui::g_pLog, IsItemVisible(pItem), "IsItemVisible");
    if (IsItemVisible(pItem)) {
        ScrollTo(*pItem);
    }
}

bool CPropTree::SetFocusedItem(CPropTreeItem* pItem) {
    if (pItem == m_pFocus) {
        return true;
    }
    const std::weak_ptr<const bool> pTreeLife = m_pRoot->GetLife();
    EndEditing();
    if (pTreeLife.expired() || (pItem != nullptr && !Owns(pItem))) {
        return false;
    }
    if (m_pFocus != nullptr) {
        m_pFocus->StopRepeat();
        m_pFocus->SetState(CPropTreeItem::eSelected, false);
    }
    m_pFocus = pItem;
    if (pItem != nullptr) {
        pItem->SetState(CPropTreeItem::eSelected, true);
        if (pItem->IsInVisibleChain()) {
            ScrollTo(*pItem);
        } else {
            EnsureVisible(pItem);
        }
        PassHelp(*pItem);
    }
    Redraw();
    return true;
}

void CPropTree::EndEditing() {
    if (m_pFocus != nullptr && m_pFocus->IsActive()) {
        m_pFocus->CommitChanges();
    }
}

CPropTree::Hit CPropTree::HitTest(CPoint Point, CPropTreeItem** ppItem) const {
    constexpr int REACH = 5;  // of the splitter, to either side
    const CPoint InContent(Point.x, Point.y - m_List.GetContentRect().top + m_ScrollPos);
    CPropTreeItem* pItem = m_pFirstVisible;
    while (pItem != nullptr && (InContent.y < pItem->m_Y || InContent.y >= pItem->m_Y + pItem->m_Height)) {
        pItem = pItem->m_pNextVisible;
    }
    if (ppItem != nullptr) {
        *ppItem = pItem;
    }
    if (pItem == nullptr) {
        return eNothing;
    }
    if (!pItem->IsTopLevel() && std::abs(InContent.x - m_Origin) <= REACH) {
        return eSplitter;
    }
    if (InContent.x > m_Origin + REACH) {
        return eValue;
    }
    if (pItem->m_ExpandRect.PtInRect(InContent)) {
        return eExpandBox;
    }
    return pItem->m_CheckRect.PtInRect(InContent) ? eCheckBox : eLabel;
}

bool CPropTree::SelectNeighbour(bool bNext) {
    CPropTreeItem* pNeighbour = bNext ? m_pFirstVisible : GetLastVisible();
    if (m_pFocus != nullptr && bNext) {
        pNeighbour = m_pFocus->m_pNextVisible;
    } else if (m_pFocus != nullptr) {
        pNeighbour = m_pFirstVisible == m_pFocus ? nullptr : m_pFirstVisible;
        while (pNeighbour != nullptr && pNeighbour->m_pNextVisible != m_pFocus) {
            pNeighbour = pNeighbour->m_pNextVisible;
        }
    }
    if (pNeighbour == nullptr) {
        EndEditing();
        return false;
    }
    return SetFocusedItem(pNeighbour);
}

void CPropTree::StartStepping(bool bUp) {
    if (m_pFocus == nullptr || !IsWindowEnabled()) {
        return;
    }
    m_pFocus->StartRepeat(bUp, HELD_KEY);
}

void CPropTree::StopStepping() {
    if (m_pFocus != nullptr) {
        m_pFocus->StopRepeat();
    }
}

void CPropTree::StepOnce(bool bUp) {
    if (m_pFocus != nullptr && IsWindowEnabled()) {
        m_pFocus->MakeStep(bUp);
    }
}

void CPropTree::Accept() {
    if (m_pFocus == nullptr) {
        return;
    }
    if (m_pFocus->IsActive()) {
        m_pFocus->CommitChanges();
    } else {
        m_pFocus->Activate();
    }
}

void CPropTree::ToggleExpanded() {
    if (m_pFocus != nullptr) {
        ToggleExpanded(*m_pFocus);
    }
}

bool CPropTree::ToggleExpanded(CPropTreeItem& rItem) {
    if (!rItem.HasChildren()) {
        return false;
    }
    const std::weak_ptr<const bool> pLife = rItem.GetLife();
    if (SendNotify(eExpandAsked, &rItem) != 0 || pLife.expired()) {
        return false;
    }
    ExpandItem(rItem, !rItem.IsExpanded());
    return true;
}

void CPropTree::ExpandItem(CPropTreeItem& rItem, bool bExpand) {
    const std::weak_ptr<const bool> pLife = rItem.GetLife();
    if (!bExpand && m_pFocus != nullptr && m_pFocus != &rItem && rItem.Holds(*m_pFocus)) {
        EndEditing();  // its row goes out of sight
    }
    if (!pLife.expired()) {
        rItem.SetState(CPropTreeItem::eExpanded, bExpand);
        UpdateLayout();
    }
}

void CPropTree::ToggleChecked(CPropTreeItem& rItem) {
    rItem.SetChecked(!rItem.IsChecked());
    SendNotify(eItemChanged, &rItem);
}

void CPropTree::SetMode(Mode NewMode) {
    if (m_Mode == NewMode) {
        return;
    }
    EndEditing();
    // Boxes are made for the mode.
    CloseBoxes(*m_pRoot);
    m_Mode = NewMode;
    UpdateLayout();
}

void CPropTree::CloseBoxes(CPropTreeItem& rParent) {
    for (CPropTreeItem* pChild = rParent.GetChild(); pChild != nullptr; pChild = pChild->GetSibling()) {
        pChild->OnLeaveTree();
        CloseBoxes(*pChild);
    }
}

LRESULT CPropTree::SendNotify(int NotifyCode, CPropTreeItem* pItem) {
    constexpr int FIRST_CODE = -1112;
    constexpr int LAST_CODE = -1101;
    constexpr int NEVER_SENT = -1111;
    constexpr int NEVER_SENT_EITHER = -1104;
    if ((GetStyle() & NOTIFY_PARENT) == 0 || NotifyCode < FIRST_CODE || NotifyCode > LAST_CODE ||
        NotifyCode == NEVER_SENT || NotifyCode == NEVER_SENT_EITHER) {
        return 0;
    }
    CTreeNotification Notification;
    Notification.m_Code = NotifyCode;
    Notification.m_pItem = pItem;
    return NotifyParent(Notification);
}

bool CPropTree::IsWithin(const CWnd* pWnd) const {
    while (pWnd != nullptr && pWnd != this) {
        pWnd = pWnd->GetParent();
    }
    return pWnd != nullptr;
}

void CPropTree::TakeFocusBack() {
    // Whoever clicks into another field, or leaves by the Tab key, must arrive there at the first attempt.
    if (CWnd::GetFocus() == nullptr || IsWithin(CWnd::GetFocus())) {
        m_List.SetFocus();
    }
}

void CPropTree::PassHelp(const CPropTreeItem& rItem) const {
    if (m_pDynamicHelp != nullptr) {
        m_pDynamicHelp->SetHelpTopic(rItem.GetHelpKey().empty() ? m_HelpKey : rItem.GetHelpKey());
    }
}

}  // namespace PropTree
