#pragma once
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

/// The elements, for the matchers.
template <typename T>
std::vector<T> Elements(const Base::CWDArray<T>& rArray) {
    return {rArray.begin(), rArray.end()};
}

/// The configuration pane in the module's window, on a store of its own.
class CConfigTabsFixture : public CMainWndFixture {
protected:
    CPreBalConfigTabs& Tabs() { return dynamic_cast<CPreBalConfigTabs&>(*m_pWnd->GetDlgItem(101)); }
    CPreBalConfigDlg& Dlg() { return Tabs().GetConfigDlg(); }
    CScrewTableDlg& ScrewDlg() { return Tabs().GetScrewTableDlg(); }
    PreBalDB::CPreBalBaseTableEntry& Entry() { return *Tabs().GetCurrentBaseEntry(); }
    std::vector<PreBalDB::CScrew> GetShownScrews() {
        Base::CWDArray<PreBalDB::CScrew> Screws;
        ScrewDlg().GetConfig(Screws);
        return Elements(Screws);
    }
    void Send(UINT Number, WPARAM wParam = 0) {
        Tabs().SendMessage(Number, wParam);
        m_Loop.RunPosted();
    }
    /// The names in the store, as another program sees them.
    std::vector<std::string> GetStoredNames() {
        PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
        const Base::CStringArray Names = Database.GetProcessNames(PreBalDB::CPreBalDatabase::eModePlane1,
                                                                  PreBalDB::CTypeBase::ePlane1, 3, 255);
        return Elements(Names);
    }
    /// Puts configurations into the store under these names, then opens the window on it.
    void OpenWith(const std::vector<std::string>& rNames, bool bScrews = false) {
        Open();
        const std::string Key = m_pWnd->GetMachineName();
        m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
        for (const std::string& rName : rNames) {
            PreBalDB::CPreBalDatabase Database(Key);
            PreBalDB::CSinglePlaneBalancingTableEntry& rPlane =
                Database.ReadConfiguration(rName).CreateSinglePlane();
            rPlane.SetProximitySwitchInput(PreBalDB::CTypeBase::ePlane1);
            rPlane.SetSensorAdaption(3);
            if (bScrews) {
                rPlane.CreateScrewCompensationTableEntry();
            } else {
                rPlane.CreateWeightCompensationTableEntry();
            }
            ASSERT_NE(Database.WriteConfiguration(), 0);
        }
        Init();
        Identify();
        ReportSet(MakeSet());
        Forget();
    }

    /// A configuration with screws, and the page of the screw tables.
    void OpenScrewPage() {
        OpenWith({"Default"}, true);
        Act(1);
        ASSERT_EQ(Tabs().GetCurSel(), 1);
        ASSERT_TRUE(m_Log.GetAssertions().empty());
        Forget();
        TakeShownMessages();
    }
    /// The operator has gone into the field and made its text this.
    void TypeName(CPageName& rName, const std::string& rText) {
        rName.FocusField();
        const auto nLength = static_cast<int>(rText.size());
        rName.GetField().ChangeByOperator(rText, nLength, nLength);
        m_Loop.RunPosted();
    }
    /// A key, to whatever has the focus.
    void Press(UINT Key) {
        if (CWnd* const pFocus = CWnd::GetFocus()) {
            pFocus->SendMessage(WM_KEYDOWN, Key, 1);
        }
        m_Loop.RunPosted();
    }
    void ClickAt(CWnd& rWnd, CPoint Point) {
        rWnd.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(Point));
        rWnd.SendMessage(WM_LBUTTONUP, 0, MakePointParam(Point));
        m_Loop.RunPosted();
    }
    /// The middle of a cell of the screw table.
    void ClickCell(unsigned Row, unsigned Column) {
        ClickAt(ScrewDlg().GetTable(), ScrewDlg().GetTable().GetCellRect(Row, Column).CenterPoint());
    }
    CEdit* GetBox() { return dynamic_cast<CEdit*>(ScrewDlg().GetTable().GetDlgItem(CFlexTable::BOX_ID)); }
    /// Into the cell that has the cursor.
    void TypeCell(const std::string& rText) {
        const auto nLength = static_cast<int>(rText.size());
        ASSERT_NE(GetBox(), nullptr);
        GetBox()->ChangeByOperator(rText, nLength, nLength);
        m_Loop.RunPosted();
    }
    std::pair<unsigned, unsigned> GetCursor() {
        return {ScrewDlg().GetTable().GetCursorRow(), ScrewDlg().GetTable().GetCursorColumn()};
    }
    /// The table as another program sees it.
    std::vector<PreBalDB::CScrew> GetStoredScrews(const std::string& rName) {
        PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
        return Elements(Database.ReadScrewTable(rName).GetScrewArray());
    }
    std::vector<std::string> GetStoredTables() {
        PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
        return Elements(Database.GetScrewTableNames());
    }
    static std::vector<std::string> GetShown() {
        std::vector<std::string> Texts;
        for (const CShownMessage& rMessage : TakeShownMessages()) {
            Texts.push_back(rMessage.m_Text);
        }
        return Texts;
    }
};
