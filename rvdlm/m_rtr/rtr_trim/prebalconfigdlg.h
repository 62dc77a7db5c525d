#pragma once
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/config/configurationmodel.h"
#include "rvlib/rvbas/array.h"

class CPreBalConfigTabs;

/// The page "SETTINGS": chooses a configuration by its name and shows it. Asks the tabs by message to load
/// and save. Window thread only.
class CPreBalConfigDlg : public CWnd {
public:
    static constexpr const char* ms_pDefaultName = "Default";

    explicit CPreBalConfigDlg(CPreBalConfigTabs& rTabs);

    /// Takes over the names of the configurations. Without bKeep the first one is shown, "Default" if there
    /// is none, and the tabs are asked to load it; with it the name shown stays, and only its place in the
    /// list is looked up.
    void SetBalancingConfigurations(const Base::CStringArray& rNames, bool bKeep);
    /// The up-down control: shows the name Delta places further, as far as there are names, and has it
    /// loaded.
    void OnDeltaposConfigSpin(int Delta);
    /// Shows an entry and tells the host whether it is calibrated. A new entry "Default" is saved at once, so
    /// that the default configuration stands in the database from the start. The entry belongs to the
    /// database.
    void SetConfiguration(PreBalDB::CPreBalBaseTableEntry& rEntry,
                          PreBalDB::CPreBalDatabase::BalancingMode Mode,
                          const Base::CStringArray& rScrewTableNames);
    /// Forgets entry and names; the database is about to go.
    void Clear();

    bool IsCalibrated() const { return ConfigurationModel::IsCalibrated(m_pEntry); }
    /// Text of the name field.
    const std::string& GetConfigurationName() const { return m_Name; }
    /// A name that the operator typed; tells the tabs.
    void SetConfigurationName(const std::string& rName);
    const Base::CStringArray& GetConfigurationNames() const { return m_Names; }
    int GetSpinPos() const { return m_SpinPos; }
    /// Text of the title label.
    void SetTitle(const std::string& rTitle);
    const std::string& GetTitle() const { return m_Title; }
    void SetPlane(int Plane) { m_Plane = Plane; }
    int GetPlane() const { return m_Plane; }

private:
    /// Highest position of the up-down control; the lowest is 0.
    int GetSpinUpper() const;
    void ShowName(int Position);

    CPreBalConfigTabs& m_rTabs;
    std::string m_Title;
    std::string m_Name;
    Base::CStringArray m_Names;
    int m_SpinPos = 0;
    int m_Plane = 0;
    PreBalDB::CPreBalBaseTableEntry* m_pEntry = nullptr;
};
