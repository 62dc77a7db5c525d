#include "rvdlm/m_rtr/rtr_trim/screwtabledlg.h"

#include <algorithm>
#include <map>
#include <utility>

#include "contract/actions.h"
#include "contract/softkeymask.h"
#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"

using PreBalDB::CScrew;
using RtrTrim::g_pLog;

namespace {

constexpr int ROW_HEIGHT = 20;
constexpr unsigned NAME_COLUMN = 0;
constexpr unsigned WEIGHT_COLUMN = 1;
/// A new row's, as the table's defaults are written.
constexpr const char* NO_WEIGHT = "0.000000";
constexpr const char* UNIT = "g";
/// A correction is made of at most three screws, and a weight that is on hand twice can take part twice.
constexpr int MOST_OF_ONE_WEIGHT = 2;

}  // namespace

CScrewTableDlg::CScrewTableDlg(CPreBalConfigTabs& rTabs)
    : m_rTabs(rTabs),
      m_Name(CPageName::SCREW_TABLE_STYLE, {[this] { OnNameTaken(); }, [this](int nDelta) { OnStep(nDelta); },
                                            [this] { SetListMode(true); }}) {
    m_Name.GetSpin().SetRange(1, 1);
    m_Table.SetRowHeight(ROW_HEIGHT);
}

LRESULT CScrewTableDlg::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            CreateControls();
            break;
        case WM_SIZE:
            OnSize();
            break;
        case WM_SHOWWINDOW:
            if (wParam != 0) {
                OnShown();
            }
            break;
        case WM_NOTIFY:
            OnNotify(GetNotification(lParam));
            return 0;
        default:
            break;
    }
    return CDialog::WindowProc(Message, wParam, lParam);
}

void CScrewTableDlg::CreateControls() {
    m_Name.CreateOn(*this, GetText("MASS_TABLE"));
    m_Unnamed = GetText("NAME");
    m_Table.SetColumns(
        {{CFlexTable::eString, m_Unnamed, ""}, {CFlexTable::eDouble, GetText("REFERENCE_WEIGHT"), UNIT}});
    m_Table.Create(this, GetClientRect(), TABLE_ID);
}

void CScrewTableDlg::ShowTexts() {
    if (!IsWindow()) {
        return;
    }
    m_Name.SetTitle(GetText("MASS_TABLE"));
    const std::string Former = std::exchange(m_Unnamed, GetText("NAME"));
    m_Table.SetColumnTitle(NAME_COLUMN, m_Unnamed);
    m_Table.SetColumnTitle(WEIGHT_COLUMN, GetText("REFERENCE_WEIGHT"));
    m_Table.SetDefaultValues({m_Unnamed, NO_WEIGHT});
    for (unsigned i = 0; i < m_Table.GetRowCount(); ++i) {
        std::string Name;
        if (m_Table.GetItemData(i, NAME_COLUMN, Name) && Name == Former) {
            m_Table.SetItemData(i, NAME_COLUMN, m_Unnamed);
        }
    }
}

void CScrewTableDlg::OnSize() {
    m_Name.Place();
    const CRect Client = GetClientRect();
    m_Table.MoveWindow(
        CRect(0, CPageName::GetHeight(), Client.right, std::max(Client.bottom, CPageName::GetHeight())));
}

void CScrewTableDlg::OnShown() {
    m_ListMode = true;
    m_Name.SetHighlighted(true);
    m_Name.FocusField();
}

void CScrewTableDlg::OnNotify(const CWndNotification& rNotification) {
    if (rNotification.m_pFrom == &m_Table && rNotification.m_Code == CFlexTable::CURSOR_MOVED) {
        SetListMode(m_Table.GetCursorRow() == CFlexTable::NONE);
    }
}

void CScrewTableDlg::SetScrewTables(const Base::CStringArray& rNames, bool bKeep) {
    m_ScrewTableNames = rNames;
    if (m_ScrewTableNames.IsEmpty()) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    m_Name.GetSpin().SetRange(0, static_cast<int>(m_ScrewTableNames.GetSize()) - 1);
    if (bKeep) {
        const int nPosition = CPageName::Find(m_ScrewTableNames, GetScrewTableName());
        if (nPosition >= 0) {
            m_Name.GetSpin().SetPos(nPosition);
        }
        return;
    }
    m_Name.GetSpin().SetPos(0);
    m_Table.Invalidate();
    ShowScrewTableName(m_ScrewTableNames[0]);
    m_rTabs.PostMessage(WM_RV_UPDATESCREWTABLE);
    if (IsShown()) {
        m_Name.FocusField();
    }
}

void CScrewTableDlg::ShowScrewTableName(const std::string& rName) {
    m_EditedName = rName;
    m_Name.SetName(m_EditedName);
    const int nPosition = CPageName::Find(m_ScrewTableNames, m_EditedName);
    if (nPosition >= 0) {
        m_Name.GetSpin().SetPos(nPosition);
    }
}

void CScrewTableDlg::EmptyTable() {
    m_Table.SetAutoGrowth(false);
    m_Table.RemoveAllRows();
    m_Table.SetDefaultValues({m_Unnamed, NO_WEIGHT});
}

void CScrewTableDlg::BeginGrowth() {
    m_Table.SetAutoGrowth(true);
    m_Table.AddRow();
    m_Table.SetTimer(CFlexTable::GROWTH_TIMER, CFlexTable::GROWTH_PERIOD);
}

void CScrewTableDlg::SetScrewTable(const Base::CWDArray<CScrew>& rScrews) {
    EmptyTable();
    for (const CScrew& rScrew : rScrews) {
        const unsigned Row = m_Table.AddRow();
        if (!rScrew.GetScrewName().empty()) {
            m_Table.SetItemData(Row, NAME_COLUMN, rScrew.GetScrewName());
        }
        m_Table.SetItemData(Row, WEIGHT_COLUMN, rScrew.GetWeight());
    }
    m_Table.Invalidate();
    BeginGrowth();
}

void CScrewTableDlg::GetConfig(Base::CWDArray<CScrew>& rScrews) const {
    rScrews.RemoveAll();
    std::map<double, int> Before;  // how many rows before have that weight
    std::string ScrewName;
    double Weight = 0.0;
    for (unsigned i = 0; i + 1 < m_Table.GetRowCount(); ++i) {
        const bool bName = m_Table.GetItemData(i, NAME_COLUMN, ScrewName);
        RV_ASSERT_AS(g_pLog, bName, "m_FlexTable.GetItemData(i, 0, ScrewName)",
                     "CFlexTable::GetItemData failed (ScrewName)!", false);
        const bool bWeight = m_Table.GetItemData(i, WEIGHT_COLUMN, Weight);
        RV_ASSERT_AS(g_pLog, bWeight, "m_FlexTable.GetItemData(i, 1, Weight)",
                     "CFlexTable::GetItemData failed (Weight)!", false);
        if (Weight == 0.0 || ++Before[Weight] > MOST_OF_ONE_WEIGHT) {
            continue;
        }
        rScrews.Add(CScrew(ScrewName == m_Unnamed ? std::string() : ScrewName, Weight));
    }
}

void CScrewTableDlg::EndEditing() {
    m_Name.EndEditing();
    m_Table.MoveTo(m_Table.GetCursorRow(), m_Table.GetCursorColumn());  // which finishes the edit of a cell
}

void CScrewTableDlg::OnNameTaken() {
    m_rTabs.SendMessage(WM_RV_SCREWTABLENAMECHANGED);
    if (!m_bSwitching) {
        m_EditedName = GetScrewTableName();  // the rows shown are the new table's
    }
}

void CScrewTableDlg::OnStep(int nDelta) {
    EndEditing();
    m_rTabs.SendMessage(WM_RV_SAVESCREWTABLE);
    if (!m_rTabs.IsScrewTableSaved()) {
        return;  // another table would take the place of rows that are nowhere else
    }
    const int nPosition = m_Name.GetStepTarget(nDelta);
    if (nPosition < 0 || nPosition >= static_cast<int>(m_ScrewTableNames.GetSize())) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    ShowScrewTableName(m_ScrewTableNames[static_cast<std::size_t>(nPosition)]);
    m_rTabs.PostMessage(WM_RV_UPDATESCREWTABLE);
    SetListMode(true);
}

void CScrewTableDlg::SetListMode(bool bList) {
    if (m_bSwitching) {
        return;
    }
    m_bSwitching = true;
    m_Name.EndEditing();  // the way into the table tells a new one from a further one
    if (bList) {
        m_EditedName = GetScrewTableName();
    }
    if (m_ListMode != bList && IsWindow()) {
        m_ListMode = bList;
        m_Name.SetHighlighted(bList);
    }
    if (IsShown()) {
        if (bList) {
            ShowListMode();
        } else {
            ShowEditMode();
        }
        m_rTabs.PostMessage(WM_RV_SAVESCREWTABLE);
        m_rTabs.SendSoftkeys(SoftkeyMask::ePages, bList ? SoftkeyMask::ePages : 0);
    }
    m_bSwitching = false;
}

void CScrewTableDlg::ShowListMode() {
    m_Name.FocusField();
    m_Table.MoveOff();
}

void CScrewTableDlg::ShowEditMode() {
    if (GetFocus() == nullptr || GetFocus() != m_Table.GetDlgItem(CFlexTable::BOX_ID)) {
        m_Table.SetFocus();
    }
    if (m_Table.GetCursorRow() == CFlexTable::NONE) {
        m_Table.MoveTo(0, NAME_COLUMN);
    }
    if (GetScrewTableName() != m_EditedName) {
        m_EditedName = GetScrewTableName();
        EmptyTable();
        BeginGrowth();
    }
}

void CScrewTableDlg::Navigate(int Action, int Flag) {
    if (Action == Actions::eItem && Flag != Actions::eIncrementDown && Flag != Actions::eDecrementDown) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    if (m_ListMode) {
        NavigateList(Action, Flag);
    } else if (Action == Actions::eItem) {
        NavigateTable(Flag);
    }
}

void CScrewTableDlg::NavigateList(int Action, int Flag) {
    const bool bFirst = Flag == Actions::eIncrementDown;
    if (Action == Actions::eItem) {
        SetListMode(false);
        if (bFirst) {
            m_Table.MoveTo(0, NAME_COLUMN);
        } else {
            m_Table.MoveTo(m_Table.GetRowCount() - 1, WEIGHT_COLUMN);
        }
    } else if (Action == Actions::eValue && (bFirst || Flag == Actions::eDecrementDown)) {
        m_rTabs.SendMessage(WM_RV_SAVESCREWTABLE);
        m_Name.GetSpin().Click(bFirst ? CSpinButtonCtrl::eUp : CSpinButtonCtrl::eDown);
    }
}

// Flag 1 goes on and flag 2 goes back, the other way round than on the settings page, and meant so.
void CScrewTableDlg::NavigateTable(int Flag) {
    const bool bCursor = m_Table.GetCursorRow() != CFlexTable::NONE;
    const unsigned Row = bCursor ? m_Table.GetCursorRow() : 0;
    const unsigned Column = bCursor ? m_Table.GetCursorColumn() : NAME_COLUMN;
    bool bMoved = false;
    if (Flag == Actions::eIncrementDown) {
        bMoved =
            Column == NAME_COLUMN ? m_Table.MoveTo(Row, WEIGHT_COLUMN) : m_Table.MoveTo(Row + 1, NAME_COLUMN);
    } else if (Column != NAME_COLUMN) {
        bMoved = m_Table.MoveTo(Row, NAME_COLUMN);
    } else {
        bMoved = Row > 0 && m_Table.MoveTo(Row - 1, WEIGHT_COLUMN);
    }
    if (!bMoved) {
        SetListMode(true);
    }
}

void CScrewTableDlg::Clear() {
    m_ScrewTableNames.RemoveAll();
    ShowScrewTableName({});
    m_Name.GetSpin().SetRange(1, 1);
    EmptyTable();
    m_Table.KillTimer(CFlexTable::GROWTH_TIMER);
}
