// The configuration pane: its database.
#include "platform/rvldb/gettext.h"
#include "platform/system/files.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/config/configurationmodel.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvdlm/m_rtr/rtr_trim/savemessages.h"
#include "rvlib/settings/installation.h"

using namespace PreBalDB;
using RtrTrim::g_pLog;

namespace {

/// Where the database lies if the host hasn't said.
void SetDefaultConnection() {
    if (GetDatabaseConnection().empty()) {
        SetDatabaseConnection("sqlite:" + Files::ToNative(GetConfigDirectory().Append("prebal.db")));
    }
}

}  // namespace

int CPreBalConfigTabs::InitDatabase(const std::string& rKey, std::uint8_t Sensor1, std::uint8_t Sensor2,
                                    CTypeBase::AffectedPlane Input) {
    RV_ASSERT(g_pLog, m_pDatabase == nullptr, "InitDatabase called more than once!");
    CloseDatabase();
    SetDefaultConnection();
    m_SensorAdaption1 = Sensor1;
    m_SensorAdaption2 = Sensor2;
    m_ProximitySwitchInput = Input;
    try {
        m_pDatabase = std::make_unique<CPreBalDatabase>(rKey);
        const Base::CStringArray Configurations = GetProcessNames();
        SaveMessages::TellNames(m_pDatabase->GetOutcome());
        m_ConfigDlg.SetBalancingConfigurations(Configurations, false);
        const Base::CStringArray ScrewTables = m_pDatabase->GetScrewTableNames();
        SaveMessages::TellNames(m_pDatabase->GetOutcome());
        m_ScrewTableDlg.SetScrewTables(ScrewTables, false);
    } catch (const CDatabaseError& rError) {
        RV_ERROR(g_pLog, "no configuration: %s", rError.what());
        ShowMessageBox(rError.what(), "Error");
        CloseDatabase();
        return 0;
    }
    return 1;
}

Base::CStringArray CPreBalConfigTabs::GetProcessNames() const {
    return m_pDatabase->GetProcessNames(m_BalancingMode, m_ProximitySwitchInput, m_SensorAdaption1,
                                        m_SensorAdaption2);
}

int CPreBalConfigTabs::SaveDatabase() {
    if (m_pDatabase == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return 0;
    }
    return m_pDatabase->WriteConfiguration();
}

void CPreBalConfigTabs::CloseDatabase() {
    if (m_pCurrentScrewEntry != nullptr) {
        WriteCurrentScrewTable();
    }
    m_ConfigDlg.Clear();
    m_ScrewTableDlg.Clear();
    m_pCurrentBaseEntry = nullptr;
    m_pCurrentScrewEntry = nullptr;
    m_pDatabase.reset();
}

void CPreBalConfigTabs::SaveCurrentConfiguration() {
    EndEditing();
    SaveCurrentScrewTable();
    if (PropTree::CPropTreeItem* const pInvalid = SaveUnlessInvalid()) {
        if (GetCurSel() != SETTINGS_TAB) {
            SetCurSel(SETTINGS_TAB);
            UpdateTabSelection();  // which tries once more, and shows the item
        } else {
            m_ConfigDlg.ShowInvalidItem(pInvalid);
        }
    }
}

PropTree::CPropTreeItem* CPreBalConfigTabs::TakePage() {
    PropTree::CPropTreeItem* const pInvalid = m_ConfigDlg.GetConfig(*m_pCurrentBaseEntry);
    ConfigurationModel::SetPlane(*m_pCurrentBaseEntry, m_BalancingMode);
    return pInvalid;
}

PropTree::CPropTreeItem* CPreBalConfigTabs::SaveUnlessInvalid() {
    if (m_pCurrentBaseEntry == nullptr) {
        return nullptr;
    }
    PropTree::CPropTreeItem* const pInvalid = TakePage();
    if (pInvalid == nullptr) {
        SaveCurrentEntry();
    }
    return pInvalid;
}

void CPreBalConfigTabs::PrepareRun() {
    // While the pane is hidden a procedure runs, and has the entry in its hands.
    if (IsWindowVisible()) {
        SaveCurrentConfiguration();
    }
}

void CPreBalConfigTabs::SaveCurrentEntry() {
    const int Saved = SaveDatabase();
    RV_ASSERT_AS(g_pLog, Saved, "SaveDatabase()", "SaveDatabase() failed", false);
    const CStoreOutcome Outcome = m_pDatabase->GetOutcome();
    SaveMessages::TellConfiguration(m_pCurrentBaseEntry->GetProcessName(), Outcome);
    if (Outcome.m_bOthersWrote) {
        LoadConfiguration(m_pCurrentBaseEntry->GetProcessName());
    }
}

void CPreBalConfigTabs::OnSaveConfiguration(WPARAM) {
    if (m_pDatabase == nullptr) {
        return;
    }
    if (m_pCurrentBaseEntry != nullptr) {
        TakePage();
        SaveCurrentEntry();
    }
    m_ConfigDlg.SetBalancingConfigurations(GetProcessNames(), true);
}

void CPreBalConfigTabs::OnProcessNameChanged(WPARAM) {
    if (m_pCurrentBaseEntry == nullptr) {
        return;
    }
    const std::string Name = m_ConfigDlg.GetConfigurationName();
    const std::string Former = m_pCurrentBaseEntry->GetProcessName();
    if (Name == Former) {
        return;
    }
    TakePage();  // the further one gets what is shown
    if (m_pDatabase->NameConfiguration(Name) == 0) {
        SaveMessages::TellNaming(Name, Former, m_pDatabase->GetOutcome());
        m_ConfigDlg.ShowConfigurationName(Former);
        return;
    }
    m_ConfigDlg.SetBalancingConfigurations(GetProcessNames(), true);
}

void CPreBalConfigTabs::OnUpdateConfiguration(WPARAM) {
    if (m_pDatabase != nullptr) {
        LoadConfiguration(m_ConfigDlg.GetConfigurationName());
    }
}

void CPreBalConfigTabs::LoadConfiguration(const std::string& rName) {
    m_pCurrentBaseEntry = &m_pDatabase->ReadConfiguration(rName);
    SaveMessages::TellReading(m_pCurrentBaseEntry->GetProcessName(), m_pDatabase->GetOutcome());
    const bool bScrews = ConfigurationModel::Prepare(
        *m_pCurrentBaseEntry,
        {m_BalancingMode, m_SensorAdaption1, m_SensorAdaption2, m_ProximitySwitchInput});
    ShowConfiguration();
    OnUpdateTabs(bScrews ? 1 : 0);
}

void CPreBalConfigTabs::ShowConfiguration() {
    m_ConfigDlg.SetConfiguration(*m_pCurrentBaseEntry, m_BalancingMode, m_pDatabase->GetScrewTableNames());
}

void CPreBalConfigTabs::TakeScrews() {
    Base::CWDArray<CScrew> Screws;
    m_ScrewTableDlg.GetConfig(Screws);
    m_pCurrentScrewEntry->SetScrewArray(Screws);
}

CStoreOutcome CPreBalConfigTabs::WriteCurrentScrewTable() {
    TakeScrews();
    const int Written = m_pDatabase->WriteScrewTable();
    RV_ASSERT_AS(g_pLog, Written, "m_pDatabase->WriteScrewTable()", "WriteScrewTable failed!", false);
    CStoreOutcome Outcome = m_pDatabase->GetOutcome();
    SaveMessages::TellScrewTable(m_ScrewTableName, Outcome);
    m_bScrewTableSaved = Written != 0;
    return Outcome;
}

void CPreBalConfigTabs::ReadScrewTable(const std::string& rName) {
    const bool bAnother = rName != m_ScrewTableName;
    m_ScrewTableName = rName;
    m_pCurrentScrewEntry = &m_pDatabase->ReadScrewTable(m_ScrewTableName);
    // Rows that can't be read once more stay on the page.
    if (bAnother || m_pDatabase->GetOutcome().m_Failure.empty()) {
        m_ScrewTableDlg.SetScrewTable(m_pCurrentScrewEntry->GetScrewArray());
    }
}

void CPreBalConfigTabs::ShowScrewTableNames() {
    const Base::CStringArray Names = m_pDatabase->GetScrewTableNames();
    if (m_pDatabase->GetOutcome().m_Failure.empty()) {
        m_ScrewTableDlg.SetScrewTables(Names, true);
    }
}

void CPreBalConfigTabs::SaveCurrentScrewTable() {
    if (m_pCurrentScrewEntry == nullptr) {
        return;
    }
    WriteCurrentScrewTable();
    if (!m_bScrewTableSaved) {
        return;  // the rows stay on the page, for the next time
    }
    if (m_pDatabase->TestAndSetDefaults() != 0 || m_pCurrentScrewEntry->GetScrewArray().IsEmpty()) {
        // The table on the page may be gone. The names stay put: nothing may be loaded later over what is
        // read here.
        ShowScrewTableNames();
        m_ScrewTableDlg.ShowScrewTableName(m_pDatabase->GetDefaultScrewTableName());
    }
    ReadScrewTable(m_ScrewTableDlg.GetScrewTableName());
}

void CPreBalConfigTabs::OnUpdateScrewTable(WPARAM) {
    if (m_pDatabase == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "database not initialized!");
        return;
    }
    ReadScrewTable(m_ScrewTableDlg.GetScrewTableName());
}

void CPreBalConfigTabs::OnScrewTableNameChanged(WPARAM) {
    if (m_pCurrentScrewEntry == nullptr || m_ScrewTableDlg.GetScrewTableName() == m_ScrewTableName) {
        return;
    }
    const std::string Name = m_ScrewTableDlg.GetScrewTableName();
    TakeScrews();
    if (m_pDatabase->NameScrewTable(Name) == 0) {
        SaveMessages::TellNaming(Name, m_ScrewTableName, m_pDatabase->GetOutcome());
        m_ScrewTableDlg.ShowScrewTableName(m_ScrewTableName);
        return;
    }
    m_ScrewTableName = Name;
    ShowScrewTableNames();
}

void CPreBalConfigTabs::OnSaveScrewTable(WPARAM) {
    if (m_pCurrentScrewEntry == nullptr) {
        return;
    }
    const bool bOthersWrote = WriteCurrentScrewTable().m_bOthersWrote;
    ShowScrewTableNames();
    if (bOthersWrote) {
        ReadScrewTable(m_ScrewTableName);
    }
}

void CPreBalConfigTabs::ReadStoreAnew() {
    EndEditing();
    ReadScrewTablesAnew();
    ReadConfigurationsAnew();
}

void CPreBalConfigTabs::ReadConfigurationsAnew() {
    Base::CStringArray Names = GetProcessNames();
    const std::string Name = m_ConfigDlg.GetConfigurationName();
    if (CPageName::Find(Names, Name) < 0) {
        m_ConfigDlg.SetBalancingConfigurations(Names, false);
        return;
    }
    SaveUnlessInvalid();
    m_ConfigDlg.SetBalancingConfigurations(Names, true);
    LoadConfiguration(Name);
}

void CPreBalConfigTabs::ReadScrewTablesAnew() {
    const Base::CStringArray Names = m_pDatabase->GetScrewTableNames();
    const bool bThere = CPageName::Find(Names, m_ScrewTableName) >= 0;
    if (bThere && m_pCurrentScrewEntry != nullptr) {
        WriteCurrentScrewTable();
    }
    m_ScrewTableDlg.SetScrewTables(Names, true);
    if (!bThere) {
        m_ScrewTableDlg.ShowScrewTableName(m_pDatabase->GetDefaultScrewTableName());
    }
    ReadScrewTable(m_ScrewTableDlg.GetScrewTableName());
}
