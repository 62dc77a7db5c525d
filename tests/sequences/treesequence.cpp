#include "tests/sequences/treesequence.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"

using namespace PropTree;

namespace {

using CDoubleItem = CPropTreeItemSpinEdit<double>;
using CLongItem = CPropTreeItemSpinEdit<unsigned long>;
using CByteItem = CPropTreeItemSpinEdit<unsigned char>;

}  // namespace

CTreeSequence::CTreeSequence(IFChoices& rChoices) : m_rChoices(rChoices) {
    m_Page.Create(nullptr, CRect(0, 0, 320, 260), 0);
    m_pTree = std::make_unique<CPropTree>();
    m_pTree->ModifyStyle(0, CPropTree::NOTIFY_PARENT);
    m_pTree->SetMode(Pick(4) == 0 ? CPropTree::eKeyboardOnly : CPropTree::eNormalMode);
    m_pTree->Create(&m_Page, CRect(10, 10, 310, 210), 7);
    m_Page.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
        return Answer(rNotification);
    };
}

CTreeSequence::~CTreeSequence() {
    m_Page.OnNotification = nullptr;
}

void CTreeSequence::Step() {
    switch (Pick(14)) {
        case 0:
            Insert();
            break;
        case 1:
            if (CPropTreeItem* const pItem = PickItem(); pItem != nullptr && Pick(3) == 0) {
                m_pTree->Delete(pItem);
            }
            break;
        case 2:
            if (CPropTreeItem* const pItem = PickItem(); pItem != nullptr && Pick(3) == 0) {
                m_pTree->PostMessage(WM_RV_DELETEITEM, reinterpret_cast<WPARAM>(pItem));
            }
            break;
        case 3:
        case 4:
            Mouse();
            break;
        case 5:
        case 6:
        case 7:
            Key();
            break;
        case 8:
            Action();
            break;
        case 9:
        case 10:
        case 11:
            Type();
            break;
        case 12:
            m_Loop.Advance(static_cast<std::uint32_t>(Pick(700)));
            break;
        default:
            Program();
            break;
    }
    if (Pick(3) == 0) {
        m_Loop.RunPosted();
    }
}

CPropTreeItem* CTreeSequence::PickItem() {
    std::vector<CPropTreeItem*> Items;
    const auto Walk = [&Items](const auto& rSelf, CPropTreeItem& rParent) -> void {
        for (CPropTreeItem* pItem = rParent.GetChild(); pItem != nullptr; pItem = pItem->GetSibling()) {
            Items.push_back(pItem);
            rSelf(rSelf, *pItem);
        }
    };
    Walk(Walk, m_pTree->GetRoot());
    return Items.empty() ? nullptr : Items[Pick(Items.size())];
}

void CTreeSequence::Insert() {
    CPropTreeItem* const pParent = Pick(3) == 0 ? nullptr : PickItem();
    CPropTreeItem* pItem = nullptr;
    switch (Pick(5)) {
        case 0:
            pItem = m_pTree->Insert(std::make_unique<CDoubleItem>(-2.0, 15.0, 5.0, 0.1), pParent);
            break;
        case 1:
            pItem = m_pTree->Insert(std::make_unique<CLongItem>(1UL, 100UL, 5UL, 7UL), pParent);
            break;
        case 2:
            pItem = m_pTree->Insert(
                std::make_unique<CByteItem>(0, 200, 5, 1, CSpinEditLook{.m_bHex = true, .m_ZeroText = "OFF"}),
                pParent);
            break;
        case 3:
            if (auto* const pCombo = m_pTree->Insert(std::make_unique<CPropTreeItemCombo>(0, 3), pParent)) {
                for (const char* pText : {"one", "two", "three"}) {
                    pCombo->AddString(pText);
                }
                pCombo->SetItemValue(static_cast<int>(Pick(6)));
                pItem = pCombo;
            }
            break;
        default:
            pItem = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Row", "text"), pParent);
            break;
    }
    if (pItem != nullptr) {
        pItem->Expand(Pick(4) != 0);
        pItem->ShowCheckBox(Pick(6) == 0);
    }
}

void CTreeSequence::Mouse() {
    CWnd& rList = m_pTree->GetList();
    constexpr std::array MESSAGES{WM_LBUTTONDOWN, WM_LBUTTONUP,     WM_LBUTTONUP,
                                  WM_MOUSEMOVE,   WM_LBUTTONDBLCLK, WM_MOUSEWHEEL};
    const UINT Message = MESSAGES[Pick(MESSAGES.size())];
    const CPoint Point{static_cast<int>(Pick(320)) - 10, static_cast<int>(Pick(220)) - 10};
    const LPARAM lParam = MakePointParam(Point);
    if (Message == WM_LBUTTONDOWN && Pick(2) == 0) {
        rList.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, lParam);
        rList.SendMessage(WM_LBUTTONUP, 0, lParam);
    } else {
        rList.SendMessage(
            Message, Message == WM_MOUSEWHEEL ? MakeWheelParam(0, Pick(2) == 0 ? 120 : -120) : 0, lParam);
    }
}

void CTreeSequence::Key() {
    constexpr std::array KEYS{VK_UP,    VK_DOWN, VK_LEFT, VK_RIGHT, VK_RETURN, VK_RETURN, VK_ESCAPE,
                              VK_SPACE, VK_F2,   VK_HOME, VK_END,   VK_PRIOR,  VK_NEXT};
    const UINT VirtualKey = KEYS[Pick(KEYS.size())];
    for (const UINT Message : {WM_KEYDOWN, WM_KEYUP}) {
        if (CWnd* const pFocus = CWnd::GetFocus(); pFocus != nullptr && Pick(10) != 0) {
            pFocus->SendMessage(Message, VirtualKey, 1);
        }
    }
}

void CTreeSequence::Action() {
    switch (Pick(8)) {
        case 0:
            m_pTree->SelectNeighbour(Pick(2) == 0);
            break;
        case 1:
            m_pTree->StartStepping(Pick(2) == 0);
            break;
        case 2:
            m_pTree->StopStepping();
            break;
        case 3:
            m_pTree->Accept();
            break;
        case 4:
            m_pTree->ToggleExpanded();
            break;
        case 5:
            m_pTree->SetFocus();
            break;
        default:
            if (CPropTreeItem* const pItem = PickItem()) {
                pItem->Activate();
            }
            break;
    }
}

void CTreeSequence::Type() {
    constexpr std::string_view CHARACTERS = "0159.,-+xoaF ";
    const char Character = CHARACTERS[Pick(CHARACTERS.size())];
    if (auto* const pEdit = dynamic_cast<CEdit*>(CWnd::GetFocus())) {
        const std::string Text =
            Pick(2) == 0 ? pEdit->GetWindowText() + Character : std::string(1, Character);
        pEdit->ChangeByOperator(Text, static_cast<int>(Text.size()), static_cast<int>(Text.size()));
        ++m_nEdits;
    } else if (auto* const pCombo = dynamic_cast<CComboBox*>(CWnd::GetFocus())) {
        pCombo->SelectByOperator(static_cast<int>(Pick(5)));
        ++m_nEdits;
    } else {
        m_pTree->GetList().SendMessage(WM_CHAR, static_cast<WPARAM>(Character));
    }
}

void CTreeSequence::Program() {
    switch (Pick(9)) {
        case 0:
            m_pTree->EnsureVisible(Pick(2) == 0 ? m_pTree->GetFirstVisible() : m_pTree->GetLastVisible());
            break;
        case 1:
            m_pTree->EnableWindow(Pick(8) != 0);
            break;
        case 2:
            m_pTree->ShowWindow(Pick(8) != 0);
            break;
        case 3:
            m_pTree->SetFocusedItem(Pick(3) == 0 ? nullptr : PickItem());
            break;
        case 4:
            m_pTree->SetMode(Pick(2) == 0 ? CPropTree::eKeyboardOnly : CPropTree::eNormalMode);
            break;
        case 5:
            m_pTree->MoveWindow(CRect{0, 0, static_cast<int>(Pick(320)), static_cast<int>(Pick(250))});
            break;
        case 6:
            m_pTree->SetOrigin(static_cast<int>(Pick(400)) - 50);
            break;
        case 7:
            if (CPropTreeItem* const pItem = PickItem()) {
                SetValue(*pItem);
            }
            break;
        default:
            if (CPropTreeItem* const pItem = PickItem()) {
                pItem->Expand(Pick(3) != 0);
            }
            break;
    }
}

LRESULT CTreeSequence::Answer(const CWndNotification& rNotification) {
    if (m_nDepth > 2 || rNotification.m_pFrom != m_pTree.get()) {
        return 0;
    }
    auto* const pItem = static_cast<const CTreeNotification&>(rNotification).m_pItem;
    ++m_nDepth;
    // A commit is told with a value within its limits.
    if (rNotification.m_Code == CPropTree::eItemChanged && !pItem->IsActive()) {
        CheckValue(*pItem);
    }
    LRESULT Result = Pick(4) == 0 ? 1 : 0;
    switch (Pick(30)) {
        case 0:
            m_pTree->Delete(Pick(4) == 0 ? nullptr : PickItem());  // null: all of them
            break;
        case 1:
            m_pTree->SetFocusedItem(PickItem());
            break;
        case 2:
            m_pTree->EndEditing();
            break;
        case 3:
            Insert();
            break;
        default:
            break;
    }
    --m_nDepth;
    return Result;
}

void CTreeSequence::SetValue(CPropTreeItem& rItem) {
    if (auto* const pDouble = dynamic_cast<CDoubleItem*>(&rItem)) {
        pDouble->SetItemValue(static_cast<double>(Pick(40)) - 10.0);
    } else if (auto* const pLong = dynamic_cast<CLongItem*>(&rItem)) {
        const unsigned long Value = Pick(200);
        Pick(2) == 0 ? pLong->SetItemValue(Value) : pLong->SetRange(Value, Pick(50));
    } else if (auto* const pCombo = dynamic_cast<CPropTreeItemCombo*>(&rItem)) {
        pCombo->SetItemValue(static_cast<int>(Pick(12)) - 2);
    }
}

void CTreeSequence::Expect(bool bHolds, const char* pRule) {
    if (!bHolds && m_Breach.empty()) {
        m_Breach = pRule;
    }
}

template <typename Item>
void CTreeSequence::CheckRange(const CPropTreeItem& rItem) {
    if (const auto* const pItem = dynamic_cast<const Item*>(&rItem); pItem != nullptr && !pItem->IsActive()) {
        Expect(pItem->GetItemValue() >= pItem->GetMin() && pItem->GetItemValue() <= pItem->GetMax(),
               "a value that isn't being edited lies within its limits");
    }
}

void CTreeSequence::CheckValue(const CPropTreeItem& rItem) {
    CheckRange<CDoubleItem>(rItem);
    CheckRange<CLongItem>(rItem);
    CheckRange<CByteItem>(rItem);
}

void CTreeSequence::CheckItems(CPropTreeItem& rParent, bool bVisible,
                               std::vector<CPropTreeItem*>& rExpected) {
    for (CPropTreeItem* pItem = rParent.GetChild(); pItem != nullptr; pItem = pItem->GetSibling()) {
        Expect(pItem->GetParentItem() == &rParent, "a child knows its parent");
        Expect(pItem->IsInVisibleChain() == bVisible,
               "what is in open groups is in the chain, and nothing else");
        if (bVisible) {
            rExpected.push_back(pItem);
        }
        Expect(pItem->IsSelected() == (pItem == m_pTree->GetFocusedItem()),
               "the focus, and it alone, is selected");
        Expect(!pItem->IsActive() || pItem->IsSelected(), "nothing is edited without the focus");
        CheckValue(*pItem);
        CheckItems(*pItem, bVisible && pItem->IsExpanded(), rExpected);
    }
}

std::string CTreeSequence::Check() {
    std::vector<CPropTreeItem*> Expected;
    CheckItems(m_pTree->GetRoot(), true, Expected);
    const CPropTreeItem* const pFocus = m_pTree->GetFocusedItem();
    Expect(pFocus == nullptr || pFocus->IsInVisibleChain(), "the focus has a row");
    std::vector<CPropTreeItem*> Rows;
    int y = 0;
    for (CPropTreeItem* pRow = m_pTree->GetFirstVisible(); pRow != nullptr; pRow = pRow->GetNextVisible()) {
        Expect(pRow->GetY() == y, "each row stands below the one before");
        y += pRow->GetHeight();
        Rows.push_back(pRow);
    }
    Expect(Rows == Expected, "the chain has the rows of open groups in their order");
    Expect(m_pTree->GetContentHeight() == y, "the height is that of all rows");
    const int nLimit = std::max(y - m_pTree->GetList().GetContentRect().Height(), 0);
    Expect(m_pTree->GetScrollPos() >= 0 && m_pTree->GetScrollPos() <= nLimit,
           "the position is within the rows");
    Expect(CWnd::GetFocus() == nullptr || CWnd::GetFocus()->IsShown(), "the window's focus is shown");
    return m_Breach;
}
