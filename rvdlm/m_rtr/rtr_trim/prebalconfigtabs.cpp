// The configuration pane: its tabs and pages.
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"

#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/pages.h"
#include "contract/softkeymask.h"
#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/guard.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "rvdlm/m_rtr/rtr_trim/tabimages.h"

using RtrTrim::g_pLog;

namespace {

constexpr const char* SETTINGS_TOPIC = "_PB001";
constexpr const char* SCREW_TOPIC = "_PB002";

}  // namespace

const CPreBalConfigTabs::CMessageMapEntry CPreBalConfigTabs::ms_MessageMap[] = {
    {WM_CREATE, "OnCreate", &CPreBalConfigTabs::OnCreate},
    {WM_SIZE, "OnSize", &CPreBalConfigTabs::OnSize},
    {WM_RV_UPDATECONFIGURATION, "OnUpdateConfiguration", &CPreBalConfigTabs::OnUpdateConfiguration},
    {WM_RV_PROCESSNAMECHANGED, "OnProcessNameChanged", &CPreBalConfigTabs::OnProcessNameChanged},
    {WM_RV_SAVECONFIGURATION, "OnSaveConfiguration", &CPreBalConfigTabs::OnSaveConfiguration},
    {WM_RV_UPDATETABS, "OnUpdateTabs", &CPreBalConfigTabs::OnUpdateTabs},
    {WM_RV_CALIBRATEDCHANGED, "OnCalibratedChanged", &CPreBalConfigTabs::OnCalibratedChanged},
    {WM_RV_UPDATESCREWTABLE, "OnUpdateScrewTable", &CPreBalConfigTabs::OnUpdateScrewTable},
    {WM_RV_SCREWTABLENAMECHANGED, "OnScrewTableNameChanged", &CPreBalConfigTabs::OnScrewTableNameChanged},
    {WM_RV_SAVESCREWTABLE, "OnSaveScrewTable", &CPreBalConfigTabs::OnSaveScrewTable},
};

CPreBalConfigTabs::CPreBalConfigTabs(CPreBalancingMainWnd& rMainWnd)
    : m_rMainWnd(rMainWnd), m_ConfigDlg(*this), m_ScrewTableDlg(*this) {
    m_ConfigDlg.SetDynamicHelp(&rMainWnd);
}

CPreBalConfigTabs::~CPreBalConfigTabs() {
    RtrTrim::Guarded("~CPreBalConfigTabs", [this] { CloseDatabase(); });
}

LRESULT CPreBalConfigTabs::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    for (const CMessageMapEntry& rEntry : ms_MessageMap) {
        if (rEntry.m_Message == Message) {
            const bool bDone = RtrTrim::Guarded(rEntry.m_pName, [&] { (this->*rEntry.m_pHandler)(wParam); });
            const LRESULT Default = CTabCtrl::WindowProc(Message, wParam, lParam);
            return Default != 0 ? Default : static_cast<LRESULT>(bDone && Message > WM_TIMER);
        }
    }
    return CTabCtrl::WindowProc(Message, wParam, lParam);
}

void CPreBalConfigTabs::OnCreate(WPARAM) {
    while (GetItemCount() > 0) {
        DeleteItem(0);
    }
    SetFont(CFont("Arial", 14));
    SetImageList(TabImages::Make());
    const CRect Area = GetDisplayArea();
    m_ConfigDlg.Create(this, Area, SETTINGS_PAGE_ID, true);
    m_ScrewTableDlg.Create(this, Area, SCREW_PAGE_ID, false);
    InsertItem(SETTINGS_TAB, GetText("SETTINGS"), TabImages::eSettings);
    InsertItem(SCREW_TAB, GetText("MASS_TABLE"), TabImages::eScrewTable);
    UpdateTabSelection();
}

void CPreBalConfigTabs::OnSize(WPARAM) {
    m_ConfigDlg.MoveWindow(GetDisplayArea());
    m_ScrewTableDlg.MoveWindow(GetDisplayArea());
}

CWnd* CPreBalConfigTabs::GetHost() const {
    return m_rMainWnd.GetParent();
}

void CPreBalConfigTabs::SendSoftkeys(WPARAM Mask, LPARAM Values) const {
    if (CWnd* const pHost = GetHost()) {
        pHost->SendMessage(WM_RV_SOFTKEYENABLE, Mask, Values);
    }
}

void CPreBalConfigTabs::UpdateTabSelection() {
    EndEditing();  // which may take the screw page away
    switch (GetCurSel()) {
        case SETTINGS_TAB:
            ShowSettingsPage();
            break;
        case SCREW_TAB:
            ShowScrewPage();
            break;
        default:
            RV_ASSERT_FAIL(g_pLog, "impossible");
            break;
    }
}

void CPreBalConfigTabs::ShowTexts() {
    EndEditing();
    SetItemText(SETTINGS_TAB, GetText("SETTINGS"));
    SetItemText(SCREW_TAB, GetText("MASS_TABLE"));  // which may not be there
    m_ScrewTableDlg.ShowTexts();
    if (HasDatabase() && IsWindowVisible()) {
        UpdateTabSelection();
    }
}

void CPreBalConfigTabs::ShowSettingsPage() {
    m_ScrewTableDlg.SetListMode(true);
    m_ScrewTableDlg.ShowWindow(false);
    SendSoftkeys(SoftkeyMask::ePages, SoftkeyMask::ePages);
    if (CWnd* const pHost = GetHost()) {
        pHost->SendMessage(WM_RV_HELPORMENU, Pages::eSettings, 0);
    }
    SaveCurrentScrewTable();
    PropTree::CPropTreeItem* const pInvalid = SaveUnlessInvalid();
    if (m_pCurrentBaseEntry != nullptr && pInvalid == nullptr) {
        ShowConfiguration();  // the screw tables may have changed
    }
    m_rMainWnd.SetHelpTopic(SETTINGS_TOPIC);
    m_ConfigDlg.ShowWindow(true);
    m_ConfigDlg.ShowInvalidItem(pInvalid);
}

void CPreBalConfigTabs::ShowScrewPage() {
    m_ConfigDlg.ShowWindow(false);
    SaveCurrentConfiguration();
    if (GetCurSel() != SCREW_TAB) {
        return;  // a value isn't valid: the settings are shown again
    }
    SendSoftkeys(SoftkeyMask::ePages, m_ScrewTableDlg.IsListMode() ? SoftkeyMask::ePages : 0);
    if (CWnd* const pHost = GetHost()) {
        pHost->SendMessage(WM_RV_HELPORMENU, Pages::eScrewTable, 1);
    }
    m_rMainWnd.SetHelpTopic(SCREW_TOPIC);
    m_ScrewTableDlg.ShowWindow(true);
}

void CPreBalConfigTabs::NextTab() {
    EndEditing();  // first: it may take the other tab away
    if (GetItemCount() > 1) {
        SetCurSel((GetCurSel() + 1) % 2);
    }
    UpdateTabSelection();
}

void CPreBalConfigTabs::Navigate(int Action, int Flag) {
    // A running procedure has the entry in its hands: what is in memory then must not be saved.
    if (!IsWindowVisible()) {
        return;
    }
    if (GetCurSel() == SCREW_TAB) {
        if (Action >= Actions::eValue && Action <= Actions::eItem) {
            m_ScrewTableDlg.Navigate(Action, Flag);
            SendSoftkeys(SoftkeyMask::ePages, m_ScrewTableDlg.IsListMode() ? SoftkeyMask::ePages : 0);
        }
    } else if (!m_ConfigDlg.Navigate(Action, Flag) &&
               (Action == Actions::eStart || Action == Actions::eSave)) {
        SaveCurrentConfiguration();
    }
}

void CPreBalConfigTabs::EndEditing() {
    m_ConfigDlg.EndEditing();
    m_ScrewTableDlg.EndEditing();
}

void CPreBalConfigTabs::OnUpdateTabs(WPARAM bScrews) {
    if (bScrews != 0 && GetItemCount() == 1) {
        const int Inserted = InsertItem(SCREW_TAB, GetText("MASS_TABLE"), TabImages::eScrewTable);
        RV_ASSERT_AS(g_pLog, Inserted == SCREW_TAB, "InsertItem(1, GetText(\"MASS_TABLE\"), 1) == 1",
                     "must not fail!", false);
    } else if (bScrews == 0 && GetItemCount() == 2) {
        const bool bShown = GetCurSel() == SCREW_TAB;
        const bool bDeleted = DeleteItem(SCREW_TAB);
        RV_ASSERT_AS(g_pLog, bDeleted, "DeleteItem(1)", "must not fail!", false);
        if (bShown) {
            UpdateTabSelection();
        }
    }
    SendSoftkeys(SoftkeyMask::eScrewPage, bScrews != 0 ? SoftkeyMask::eScrewPage : 0);
}

void CPreBalConfigTabs::OnCalibratedChanged(WPARAM bCalibrated) {
    m_rMainWnd.NotifyConfigurationShown(bCalibrated != 0);
}
