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
        m_ConfigDlg.SetBalancingConfigurations(GetProcessNames(), false);
        m_ScrewTableDlg.SetScrewTables(m_pDatabase->GetScrewTableNames(), false);
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
    SaveCurrentScrewTable();
    SaveCurrentEntry();
}

void CPreBalConfigTabs::SaveCurrentEntry() {
    if (m_pCurrentBaseEntry == nullptr) {
        return;
    }
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
    SaveCurrentEntry();
    m_ConfigDlg.SetBalancingConfigurations(GetProcessNames(), true);
}

void CPreBalConfigTabs::OnProcessNameChanged(WPARAM) {
    if (m_pCurrentBaseEntry != nullptr) {
        m_pCurrentBaseEntry->SetProcessName(m_ConfigDlg.GetConfigurationName());
    }
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

bool CPreBalConfigTabs::WriteCurrentScrewTable() {
    const Base::CWDArray<CScrew>& rScrews = m_ScrewTableDlg.GetConfig();
    m_pCurrentScrewEntry->SetScrewArray(rScrews);
    const int Written = m_pDatabase->WriteScrewTable();
    RV_ASSERT_AS(g_pLog, Written, "m_pDatabase->WriteScrewTable()", "WriteScrewTable failed!", false);
    SaveMessages::TellScrewTable(m_ScrewTableDlg.GetScrewTableName(), m_pDatabase->GetOutcome());
    return !rScrews.IsEmpty();
}

void CPreBalConfigTabs::ReadScrewTable(const std::string& rName) {
    m_pCurrentScrewEntry = &m_pDatabase->ReadScrewTable(rName);
    m_ScrewTableDlg.SetScrewTable(m_pCurrentScrewEntry->GetScrewArray());
}

void CPreBalConfigTabs::SaveCurrentScrewTable() {
    if (m_pCurrentScrewEntry == nullptr) {
        return;
    }
    const bool bRows = WriteCurrentScrewTable();
    if (m_pDatabase->TestAndSetDefaults() != 0 || !bRows) {
        // The table on the page may be gone. The names stay put: nothing may be loaded later over what is
        // read here.
        m_ScrewTableDlg.SetScrewTables(m_pDatabase->GetScrewTableNames(), true);
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
    if (m_pCurrentScrewEntry != nullptr) {
        m_pCurrentScrewEntry->SetName(m_ScrewTableDlg.GetScrewTableName());
    }
}

void CPreBalConfigTabs::OnSaveScrewTable(WPARAM) {
    if (m_pCurrentScrewEntry == nullptr) {
        return;
    }
    WriteCurrentScrewTable();
    m_ScrewTableDlg.SetScrewTables(m_pDatabase->GetScrewTableNames(), true);
}
