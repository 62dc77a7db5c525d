#pragma once
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/config/baseparamstree.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"

/// A tree on a page, as the settings page has it.
class CTreePage : public CWnd, public CBaseParamsTree {
public:
    CTreePage() {
        GetTree().ModifyStyle(0, PropTree::CPropTree::NOTIFY_PARENT);
        Create(nullptr, CRect(0, 0, 300, 350), 0);
        GetTree().Create(this, GetClientRect(), 1);
    }
    /// Compares with an entry at each change; null to leave that.
    PreBalDB::CPreBalBaseTableEntry* m_pCompared = nullptr;
    using CBaseParamsTree::DeleteItems;
    using CBaseParamsTree::IsShownCalibrated;
    using CBaseParamsTree::UpdateChangedConfig;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_NOTIFY && GetNotification(lParam).m_Code == PropTree::CPropTree::eItemChanged &&
            m_pCompared != nullptr) {
            UpdateChangedConfig(*m_pCompared);
        }
        return Message == WM_NOTIFY ? 0 : CWnd::WindowProc(Message, wParam, lParam);
    }
};

/// The items of a configuration by what stands in their rows.
class CParamsTreeFixture : public testing::Test {
protected:
    using Item = PropTree::CPropTreeItem;
    using Database = PreBalDB::CPreBalDatabase;
    using Type = PreBalDB::CTypeBase;

    CParamsTreeFixture() { SetLanguage("en"); }

    PreBalDB::CSinglePlaneBalancingTableEntry& Single() { return m_Entry.CreateSinglePlane(); }
    PreBalDB::CTwoPlaneBalancingTableEntry& Two() { return m_Entry.CreateTwoPlane(); }
    void Show(Database::BalancingMode Mode = Database::eModePlane1) {
        m_Page.SetConfig(m_Entry, Mode, m_Tables);
        m_Page.m_pCompared = &m_Entry;
        m_Loop.RunPosted();
    }
    void ShowWeights() {
        Single().CreateWeightCompensationTableEntry();
        Show();
    }
    void ShowScrews() {
        Single().CreateScrewCompensationTableEntry().SetScrewTableName("Default");
        Show();
    }

    std::vector<Item*> GetRows() {
        std::vector<Item*> Rows;
        for (Item* pItem = m_Page.GetTree().GetFirstVisible(); pItem != nullptr;
             pItem = pItem->GetNextVisible()) {
            Rows.push_back(pItem);
        }
        return Rows;
    }
    std::vector<std::string> GetLabels() {
        std::vector<std::string> Labels;
        for (const Item* pItem : GetRows()) {
            Labels.push_back(pItem->GetLabelText());
        }
        return Labels;
    }
    /// The n-th row, from 0, whose label is the text of that key.
    Item* Find(const std::string& rLabel, int n = 0) {
        for (Item* pItem : GetRows()) {
            if (pItem->GetLabelText() == rLabel && n-- == 0) {
                return pItem;
            }
        }
        return nullptr;
    }
    std::string GetValue(const std::string& rLabel, int n = 0) {
        const Item* const pItem = Find(rLabel, n);
        return pItem != nullptr ? pItem->GetValueText() : "no such row";
    }
    /// A choice of the operator.
    void Choose(const std::string& rLabel, int Index, int n = 0) {
        auto* const pCombo = dynamic_cast<PropTree::CPropTreeItemCombo*>(Find(rLabel, n));
        ASSERT_NE(pCombo, nullptr) << rLabel;
        pCombo->Activate();
        pCombo->SelectByOperator(Index);
        m_Page.GetTree().EndEditing();
        m_Loop.RunPosted();
    }
    template <typename T>
    void TypeInto(const std::string& rLabel, const std::string& rText) {
        auto* const pSpin = dynamic_cast<PropTree::CPropTreeItemSpinEdit<T>*>(Find(rLabel));
        ASSERT_NE(pSpin, nullptr) << rLabel;
        pSpin->Activate();
        pSpin->GetEdit().ChangeByOperator(rText, 0, 0);
        m_Page.GetTree().EndEditing();
    }
    bool StaysCalibrated() const { return m_Page.IsShownCalibrated(); }
    std::vector<std::string> GetErrors() const { return m_Log.GetTexts("Error"); }

    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log;
    Base::CStringArray m_Tables{"Default", "Brass"};
    PreBalDB::CPreBalBaseTableEntry m_Entry{"machine", "Default"};
    CTreePage m_Page;
};
