// The configuration pane: its database.
#include "platform/rvldb/gettext.h"
#include "platform/system/files.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvdlm/m_rtr/rtr_trim/savemessages.h"
#include "rvlib/settings/installation.h"

using namespace PreBalDB;
using RtrTrim::g_pLog;

namespace {

constexpr std::uint8_t eUnknownSensor = 255;

/// Where the database lies if the host hasn't said.
void SetDefaultConnection() {
    if (GetDatabaseConnection().empty()) {
        SetDatabaseConnection("sqlite:" + Files::ToNative(GetConfigDirectory().Append("prebal.db")));
    }
}

/// Brings the entry of the method in use into being and sets its plane. True for screws. A method that isn't
/// chosen yet counts as weights.
template <typename CreateWeight, typename CreateScrew>
bool PrepareCompensation(CCompensationTableEntry::CompensationMethod Method, CTypeBase::AffectedPlane Plane,
                         CreateWeight Weight, CreateScrew Screw) {
    CCompensationTableEntry* pCompensation = nullptr;
    switch (Method) {
        case CCompensationTableEntry::eWeights:
        case CCompensationTableEntry::eNotChosen:
            pCompensation = &Weight();
            break;
        case CCompensationTableEntry::eScrews:
            pCompensation = &Screw();
            break;
        case CCompensationTableEntry::eNotImplemented:
            RV_ASSERT_FAIL(g_pLog, "not implemented!");
            break;
        default:
            RV_ASSERT_FAIL(g_pLog, "unknown compensation!");
            break;
    }
    RV_ASSERT(g_pLog, pCompensation != nullptr, "compensation pointer is invalid!");
    if (pCompensation != nullptr) {
        pCompensation->SetPlane(Plane);
    }
    return Method == CCompensationTableEntry::eScrews;
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
    const bool bScrews = PrepareEntry(*m_pCurrentBaseEntry);
    ShowConfiguration();
    OnUpdateTabs(bScrews ? 1 : 0);
}

void CPreBalConfigTabs::ShowConfiguration() {
    m_ConfigDlg.SetConfiguration(*m_pCurrentBaseEntry, m_BalancingMode, m_pDatabase->GetScrewTableNames());
}

bool CPreBalConfigTabs::PrepareEntry(CPreBalBaseTableEntry& rEntry) {
    RV_ASSERT(g_pLog, m_ProximitySwitchInput != CTypeBase::eUnknownPlane,
              "Proximity Switch Input is invalid!");
    RV_ASSERT(g_pLog, m_SensorAdaption1 != eUnknownSensor, "Sensor Adaption 1 invalid!");
    return m_BalancingMode == CPreBalDatabase::eModeTwoPlane ? PrepareTwoPlane(rEntry)
                                                             : PrepareSinglePlane(rEntry);
}

bool CPreBalConfigTabs::PrepareSinglePlane(CPreBalBaseTableEntry& rEntry) {
    CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
    rPlane.SetProximitySwitchInput(m_ProximitySwitchInput);
    rPlane.SetSensorAdaption(m_SensorAdaption1);
    return PrepareCompensation(
        rPlane.GetUsedCompensationMethod(),
        m_BalancingMode == CPreBalDatabase::eModePlane2 ? CTypeBase::ePlane2 : CTypeBase::ePlane1,
        [&]() -> CCompensationTableEntry& { return rPlane.CreateWeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlane.CreateScrewCompensationTableEntry(); });
}

bool CPreBalConfigTabs::PrepareTwoPlane(CPreBalBaseTableEntry& rEntry) {
    RV_ASSERT(g_pLog, m_SensorAdaption2 != eUnknownSensor, "Sensor Adaption 2 invalid!");
    CTwoPlaneBalancingTableEntry& rPlanes = rEntry.CreateTwoPlane();
    rPlanes.SetProximitySwitchInput(m_ProximitySwitchInput);
    rPlanes.SetPlane1SensorAdaption(m_SensorAdaption1);
    rPlanes.SetPlane2SensorAdaption(m_SensorAdaption2);
    const bool bScrews1 = PrepareCompensation(
        rPlanes.GetPlane1UsedCompensationMethod(), CTypeBase::ePlane1,
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane1WeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane1ScrewCompensationTableEntry(); });
    const bool bScrews2 = PrepareCompensation(
        rPlanes.GetPlane2UsedCompensationMethod(), CTypeBase::ePlane2,
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane2WeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane2ScrewCompensationTableEntry(); });
    return bScrews1 || bScrews2;
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
