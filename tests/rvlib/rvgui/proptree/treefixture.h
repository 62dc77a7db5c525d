#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"
#include "tests/support/listeningwnd.h"

namespace PropTree {

using CDoubleItem = CPropTreeItemSpinEdit<double>;
using CLongItem = CPropTreeItemSpinEdit<unsigned long>;
using CByteItem = CPropTreeItemSpinEdit<unsigned char>;

/// A tree of 300 by 200 without info pane in a page that notes its notifications:
///
///     Group          (expanded)
///       Speed        100, 1 to 400 in steps of 1, unit "rpm"
///       Time         5.0, 1.5 to 15.0 in steps of 0.1, unit "s"
///       Direction    combo: right, left, none
///     Result         static, "ok"
class CTreeFixture : public testing::Test {
protected:
    struct CTold {
        int m_Code = 0;
        CPropTreeItem* m_pItem = nullptr;
        friend bool operator==(const CTold&, const CTold&) = default;
    };

    explicit CTreeFixture(CPropTree::Mode Mode = CPropTree::eNormalMode) {
        m_Page.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
            if (rNotification.m_pFrom != m_pTree.get()) {
                return 0;  // of a box that lies over a value
            }
            const auto& rTold = static_cast<const CTreeNotification&>(rNotification);
            m_Told.push_back({rTold.m_Code, rTold.m_pItem});
            return OnTold ? OnTold(rTold.m_Code, rTold.m_pItem) : 0;
        };
        m_Page.Create(nullptr, CRect(0, 0, 320, 260), 0);
        m_pTree = std::make_unique<CPropTree>();
        m_pTree->SetMode(Mode);
        m_pTree->ShowInfo(false);
        m_pTree->ModifyStyle(0, CPropTree::NOTIFY_PARENT);
        m_pTree->Create(&m_Page, CRect(10, 10, 310, 210), 7);
        m_pGroup = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Group"));
        m_pGroup->Expand();
        m_pSpeed =
            Add(std::make_unique<CLongItem>(1UL, 400UL, 100UL, 1UL, CSpinEditLook{.m_Unit = "rpm"}), "Speed");
        m_pTime =
            Add(std::make_unique<CDoubleItem>(1.5, 15.0, 5.0, 0.1, CSpinEditLook{.m_Unit = "s"}), "Time");
        m_pDirection = Add(std::make_unique<CPropTreeItemCombo>(0, 2), "Direction");
        for (const char* pText : {"right", "left", "none"}) {
            m_pDirection->AddString(pText);
        }
        m_pDirection->SetItemValue(0);
        m_pResult = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Result", "ok"));
        m_Loop.RunPosted();
        m_Told.clear();
    }

    template <typename Item>
    Item* Add(std::unique_ptr<Item> pItem, const std::string& rLabel) {
        pItem->SetLabelText(rLabel);
        return m_pTree->Insert(std::move(pItem), m_pGroup);
    }
    /// The codes told of an item.
    std::vector<int> CodesOf(const CPropTreeItem* pItem) const {
        std::vector<int> Codes;
        for (const CTold& rTold : m_Told) {
            if (rTold.m_pItem == pItem) {
                Codes.push_back(rTold.m_Code);
            }
        }
        return Codes;
    }
    std::vector<CPropTreeItem*> GetRows() const {
        std::vector<CPropTreeItem*> Rows;
        for (CPropTreeItem* pRow = m_pTree->GetFirstVisible(); pRow != nullptr;
             pRow = pRow->GetNextVisible()) {
            Rows.push_back(pRow);
        }
        return Rows;
    }
    CPropTreeList& List() { return m_pTree->GetList(); }
    /// In the middle of a row's height.
    int MiddleOf(const CPropTreeItem& rItem) {
        return List().GetContentRect().top + rItem.GetY() - m_pTree->GetScrollPos() + rItem.GetHeight() / 2;
    }
    CPoint ValueOf(const CPropTreeItem& rItem) { return {m_pTree->GetOrigin() + 30, MiddleOf(rItem)}; }
    CPoint LabelOf(const CPropTreeItem& rItem) { return {m_pTree->GetOrigin() - 20, MiddleOf(rItem)}; }
    CPoint BoxOf(const CPropTreeItem& rItem) {
        return {rItem.GetExpandRect().CenterPoint().x, MiddleOf(rItem)};
    }
    void Press(CPoint Point) { List().SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(Point)); }
    void Move(CPoint Point) { List().SendMessage(WM_MOUSEMOVE, MK_LBUTTON, MakePointParam(Point)); }
    void LetGo(CPoint Point) { List().SendMessage(WM_LBUTTONUP, 0, MakePointParam(Point)); }
    void Click(CPoint Point) {
        Press(Point);
        LetGo(Point);
        m_Loop.RunPosted();
    }
    /// A key of the window that has the focus.
    static void Key(UINT VirtualKey) {
        if (CWnd* const pFocus = CWnd::GetFocus()) {
            pFocus->SendMessage(WM_KEYDOWN, VirtualKey, 1);
        }
        if (CWnd* const pFocus = CWnd::GetFocus()) {
            pFocus->SendMessage(WM_KEYUP, VirtualKey);
        }
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    std::unique_ptr<CPropTree> m_pTree;
    CPropTreeItemStatic* m_pGroup = nullptr;
    CLongItem* m_pSpeed = nullptr;
    CDoubleItem* m_pTime = nullptr;
    CPropTreeItemCombo* m_pDirection = nullptr;
    CPropTreeItemStatic* m_pResult = nullptr;
    std::vector<CTold> m_Told;
    /// The page's answer; 0 without.
    std::function<LRESULT(int, CPropTreeItem*)> OnTold;
};

}  // namespace PropTree
