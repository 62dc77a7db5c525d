#include "rvdlm/m_rtr/rtr_trim/prebalconfigdlg.h"

#include <algorithm>
#include <utility>

#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/softkeymask.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/localtime.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/guard.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvlib/settings/xmlconfig.h"

using PropTree::CPropTree;
using PropTree::CPropTreeItem;
using RtrTrim::g_pLog;

namespace {

constexpr int STATE_HEIGHT = 26;
constexpr int INSET = 10;
constexpr int INFO_HEIGHT = 98;  // for the texts in the narrowest page
constexpr const char* PAGE_HELP = "_PB001";

bool IsKeyboardOnlyConfigured() {
    CRVXMLConfig Config;
    return Config.Open() && Config.GetInt("system_falconet", "ConfigurationKeyboardOnly", 0) != 0;
}

}  // namespace

CPreBalConfigDlg::CPreBalConfigDlg(CPreBalConfigTabs& rTabs)
    : m_rTabs(rTabs),
      m_Name(CPageName::SETTINGS_STYLE,
             {[this] { OnNameTaken(); }, [this](int nDelta) { OnDeltaposConfigSpin(nDelta); },
              [this] { GetTree().SetFocusedItem(nullptr); }}) {
    GetTree().ModifyStyle(0, CPropTree::NOTIFY_PARENT);
    GetTree().SetHelpKey(PAGE_HELP);
}

LRESULT CPreBalConfigDlg::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            CreateControls();
            break;
        case WM_SIZE:
            OnSize();
            break;
        case WM_NOTIFY:
            OnNotify(GetNotification(lParam));
            return 0;
        default:
            break;
    }
    return CDialog::WindowProc(Message, wParam, lParam);
}

void CPreBalConfigDlg::CreateControls() {
    m_Name.CreateOn(*this, std::string(GetTitle()));
    m_State.SetFormat(DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
    CFont Font = GetDefaultGuiFont();
    Font.m_Weight = CFont::BOLD;
    m_State.SetFont(Font);
    m_State.Create(this, CRect(), STATE_ID);
    GetTree().ShowInfo(true, INFO_HEIGHT);
    GetTree().SetMode(IsKeyboardOnlyConfigured() ? CPropTree::eKeyboardOnly : CPropTree::eNormalMode);
    GetTree().Create(this, CRect(), TREE_ID);
    ShowState();
}

void CPreBalConfigDlg::OnSize() {
    m_Name.Place();
    const CRect Client = GetClientRect();
    const int nState = CPageName::GetHeight();
    const int nTree = std::min(nState + STATE_HEIGHT, Client.bottom);
    m_State.MoveWindow(CRect(INSET, nState, std::max(Client.right - INSET, INSET), nTree));
    GetTree().MoveWindow(CRect(0, nTree, Client.right, Client.bottom));
    // Labels need more room than values: in the narrowest page they'd be cut so short that they look alike.
    constexpr int PERCENT = 54;
    GetTree().SetOrigin(Client.Width() * PERCENT / 100);
}

void CPreBalConfigDlg::OnNotify(const CWndNotification& rNotification) {
    if (rNotification.m_pFrom == &GetTree() && rNotification.m_Code == CPropTree::eItemChanged) {
        RtrTrim::Guarded("OnItemChanged", [this] { OnItemChanged(); });
    }
}

void CPreBalConfigDlg::SetBalancingConfigurations(const Base::CStringArray& rNames, bool bKeep) {
    m_Names = rNames;
    if (!bKeep && m_Names.IsEmpty()) {
        m_Names.Add(DEFAULT_NAME);
    }
    m_Name.GetSpin().SetRange(0, std::max(static_cast<int>(m_Names.GetSize()) - 1, 0));
    if (!bKeep) {
        ShowName(0);
        if (IsShown()) {
            m_Name.GetField().SelectAll();
        }
        return;
    }
    const int nPosition = CPageName::Find(m_Names, GetConfigurationName());
    RV_ASSERT_AS(g_pLog, nPosition >= 0, "Position != m_Names.end()", "impossible", false);
    if (nPosition >= 0) {
        m_Name.GetSpin().SetPos(nPosition);
    }
}

void CPreBalConfigDlg::OnDeltaposConfigSpin(int Delta) {
    EndEditing();
    if (m_bEdited && m_pEntry != nullptr) {
        // Another configuration takes the place of what was edited here.
        if (CPropTreeItem* const pInvalid = GetConfig(*m_pEntry)) {
            ShowInvalidItem(pInvalid);
            return;
        }
        m_rTabs.SaveCurrentConfiguration();
    }
    const int Position = m_Name.GetStepTarget(Delta);
    if (Position >= static_cast<int>(m_Names.GetSize())) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    ShowName(Position);
}

void CPreBalConfigDlg::ShowName(int Position) {
    m_Name.GetSpin().SetPos(Position);
    m_Name.SetName(m_Names[static_cast<std::size_t>(Position)]);
    m_rTabs.SendMessage(WM_RV_UPDATECONFIGURATION);
}

void CPreBalConfigDlg::SetConfiguration(PreBalDB::CPreBalBaseTableEntry& rEntry,
                                        PreBalDB::CPreBalDatabase::BalancingMode Mode,
                                        const Base::CStringArray& rScrewTableNames) {
    const bool bFirst = m_pEntry == nullptr;
    if (std::exchange(m_Language, GetLanguage()) != GetLanguage()) {
        DeleteItems();  // they have the texts of another one
    }
    m_pEntry = &rEntry;
    m_bEdited = false;
    SetConfig(rEntry, Mode, rScrewTableNames);
    if (rEntry.IsCalibrated() != 0) {
        UpdateChangedConfig(rEntry);  // the NC may ask for another rotation than that of the calibration
    }
    CompareCalibration();
    m_bCalibrated = IsCalibrated();
    m_bScrews = HasScrewCompensation();
    if (bFirst && rEntry.GetProcessName() == DEFAULT_NAME) {
        m_rTabs.PostMessage(WM_RV_SAVECONFIGURATION);
    }
    TellHost();
}

void CPreBalConfigDlg::TellHost() const {
    if (CWnd* const pHost = m_rTabs.GetHost()) {
        pHost->PostMessage(WM_RV_SOFTKEYENABLE, SoftkeyMask::eReBalancing,
                           IsCalibrated() ? SoftkeyMask::eReBalancing : 0);
    }
}

void CPreBalConfigDlg::OnItemChanged() {
    // While the pane is hidden a procedure has the entry in its hands; afterwards the entry is shown anew.
    if (m_pEntry == nullptr || !m_rTabs.IsWindowVisible()) {
        return;
    }
    m_bEdited = true;
    UpdateChangedConfig(*m_pEntry);
    CompareCalibration();
    const bool bFormerScrews = std::exchange(m_bScrews, HasScrewCompensation());
    if (m_bScrews != bFormerScrews) {
        m_rTabs.PostMessage(WM_RV_UPDATETABS, m_bScrews ? 1 : 0);
    }
    const bool bFormerCalibrated = std::exchange(m_bCalibrated, IsCalibrated());
    if (m_bCalibrated != bFormerCalibrated) {
        m_rTabs.PostMessage(WM_RV_CALIBRATEDCHANGED, m_bCalibrated ? 1 : 0);
        TellHost();
    }
}

void CPreBalConfigDlg::CompareCalibration() {
    m_bCalibrationReset = ConfigurationModel::IsCalibrated(m_pEntry) && !IsShownCalibrated();
    ShowState();
}

void CPreBalConfigDlg::ShowState() {
    std::string Text;
    if (m_bCalibrationReset) {
        Text = GetText("PB_CALIBRATION_RESET");
    } else if (IsCalibrated()) {
        Text = GetText("PB_CALIBRATED") + " " +
               FormatLocalTime(m_pEntry->GetCalibrationDateTime(), "%d.%m.%Y %H:%M") + ", " +
               std::to_string(m_pEntry->GetCalibratedRPM()) + " " + GetText("RPM");
    } else if (m_pEntry != nullptr) {
        Text = GetText("PB_NOT_CALIBRATED");
    }
    m_State.SetWindowText(Text);
}

void CPreBalConfigDlg::Clear() {
    m_pEntry = nullptr;
    DeleteItems();
    m_Names.RemoveAll();
    m_Name.SetName({});
    m_Name.GetSpin().SetRange(0, 0);
    m_bEdited = false;
    m_bScrews = false;
    m_bCalibrated = false;
    CompareCalibration();
}

void CPreBalConfigDlg::SetConfigurationName(const std::string& rName) {
    m_Name.SetName(rName);
    m_rTabs.SendMessage(WM_RV_PROCESSNAMECHANGED);
}

void CPreBalConfigDlg::OnNameTaken() {
    m_rTabs.SendMessage(WM_RV_PROCESSNAMECHANGED);
    m_rTabs.SendMessage(WM_RV_SAVECONFIGURATION);
}

void CPreBalConfigDlg::SetTitle(const std::string& rTitle) {
    m_Name.SetTitle(rTitle);
}

void CPreBalConfigDlg::SetPlane(int Plane) {
    m_Plane = Plane;
    CBaseParamsTree::SetPlane(Plane == 0 ? PreBalDB::CTypeBase::ePlane1 : PreBalDB::CTypeBase::ePlane2);
}

void CPreBalConfigDlg::EndEditing() {
    GetTree().EndEditing();
    m_Name.EndEditing();
}

void CPreBalConfigDlg::ShowInvalidItem(CPropTreeItem* pItem) {
    CPropTree& rTree = GetTree();
    if (pItem == nullptr || !rTree.SetFocusedItem(pItem)) {
        return;
    }
    rTree.EnsureVisible(pItem);
    rTree.SetFocus();
    pItem->Activate();
}

bool CPreBalConfigDlg::Navigate(int Action, int Flag) {
    switch (Action) {
        case Actions::eValue:
        case Actions::eAccept:
        case Actions::eItem:
        case Actions::eExpand:
            break;
        default:
            return false;
    }
    if (m_Name.HasFocus() && m_Name.IsEdited()) {
        return true;
    }
    switch (Action) {
        case Actions::eValue:
            OnValueAction(Flag);
            break;
        case Actions::eAccept:
            GetTree().Accept();
            if (CPropTreeItem* const pItem = GetTree().GetFocusedItem()) {
                GetTree().EnsureVisible(pItem);
            }
            break;
        case Actions::eItem:
            OnItemAction(Flag);
            break;
        case Actions::eExpand:
            GetTree().ToggleExpanded();
            break;
    }
    return true;
}

void CPreBalConfigDlg::OnValueAction(int Flag) {
    CPropTree& rTree = GetTree();
    if (Flag != Actions::eIncrementDown && Flag != Actions::eDecrementDown) {
        rTree.StopStepping();
    } else if (rTree.GetFocusedItem() != nullptr) {
        rTree.EndEditing();
        rTree.StartStepping(Flag == Actions::eDecrementDown);
    } else {
        m_Name.GetSpin().Click(Flag == Actions::eIncrementDown ? CSpinButtonCtrl::eUp
                                                               : CSpinButtonCtrl::eDown);
    }
}

void CPreBalConfigDlg::OnItemAction(int Flag) {
    CPropTree& rTree = GetTree();
    const bool bNext = Flag == Actions::eDecrementDown;
    if (!bNext && Flag != Actions::eIncrementDown) {
        return;
    }
    rTree.EndEditing();
    const bool bAtTop =
        rTree.GetFocusedItem() != nullptr && rTree.GetFocusedItem() == rTree.GetFirstVisible();
    if (!bNext && bAtTop) {
        m_Name.FocusField();  // which takes the selection off the tree
    } else if (rTree.SelectNeighbour(bNext)) {
        rTree.SetFocus();
    }
}
