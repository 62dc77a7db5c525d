#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/window/tabctrl.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigdlg.h"
#include "rvdlm/m_rtr/rtr_trim/screwtabledlg.h"

class CPreBalancingMainWnd;

/// The configuration pane: the page "SETTINGS", which chooses and edits a configuration, and the page
/// "MASS_TABLE", which is there only when the configuration uses screws. Owns the database and decides when
/// it is written: at every change of tab and before every start. A change that can't be saved stays in memory
/// until the next time, and a value that isn't valid keeps the configuration from being saved: it is selected
/// for the operator. Window thread only.
class CPreBalConfigTabs : public CTabCtrl {
public:
    static constexpr int SETTINGS_TAB = 0;
    static constexpr int SCREW_TAB = 1;
    static constexpr UINT SETTINGS_PAGE_ID = 122;
    static constexpr UINT SCREW_PAGE_ID = 123;

    explicit CPreBalConfigTabs(CPreBalancingMainWnd& rMainWnd);
    ~CPreBalConfigTabs() override;

    /// Opens the database of that key and fills the pages with what fits sensors and input. 0, after a
    /// message box, if the store can't be used: the pane then has no configuration.
    int InitDatabase(const std::string& rKey, std::uint8_t Sensor1, std::uint8_t Sensor2,
                     PreBalDB::CTypeBase::AffectedPlane Input);
    /// Writes what was changed in the current configuration. Nonzero for success; the outcome tells more.
    int SaveDatabase();
    /// Of the last operation on the database, which must be there.
    const PreBalDB::CStoreOutcome& GetOutcome() const { return m_pDatabase->GetOutcome(); }
    /// Saves the screw table and ends the database; the entries are gone.
    void CloseDatabase();
    bool HasDatabase() const { return m_pDatabase != nullptr; }

    /// Takes what is being typed, in a name, an item or a cell.
    void EndEditing();
    /// Enters what the page shows into the current entry and writes it, after the screw table.
    void SaveCurrentConfiguration();
    void SaveCurrentScrewTable();
    /// The rows of the screw page aren't in memory only.
    bool IsScrewTableSaved() const { return m_bScrewTableSaved; }
    /// A run is to start: what the pages show is what counts.
    void PrepareRun();
    /// Others have written to the store: shows what is there now. What somebody has changed on the pages is
    /// saved first, unless it is gone from the store; then the first configuration or the default table
    /// takes its place.
    void ReadStoreAnew();
    /// Shows the texts of both pages in the language in use. Saves what the page shown holds; while a
    /// procedure runs its configuration is left alone, and shown anew at its end anyway.
    void ShowTexts();
    /// Hands an action of the host to the page shown; while the pane is hidden there is none.
    void Navigate(int Action, int Flag);
    /// Selects the other tab, if there are two, and shows its page, which saves.
    void NextTab();
    /// Shows the page of the selected tab and saves what the other one held.
    void UpdateTabSelection();

    void SetBalancingMode(PreBalDB::CPreBalDatabase::BalancingMode Mode) { m_BalancingMode = Mode; }
    PreBalDB::CPreBalDatabase::BalancingMode GetBalancingMode() const { return m_BalancingMode; }
    /// The plane that a single-plane module serves, 0 or 1.
    void SetPlane(int Plane) { m_ConfigDlg.SetPlane(Plane); }
    void SetTitle(const std::string& rTitle) { m_ConfigDlg.SetTitle(rTitle); }

    /// Null until a configuration has been read.
    PreBalDB::CPreBalBaseTableEntry* GetCurrentBaseEntry() const { return m_pCurrentBaseEntry; }
    PreBalDB::CScrewTableEntry* GetCurrentScrewEntry() const { return m_pCurrentScrewEntry; }
    /// Whether a re-balancing can start from what is stored and shown.
    bool IsCalibrated() const { return m_ConfigDlg.IsCalibrated(); }
    const CPreBalConfigDlg& GetConfigDlg() const { return m_ConfigDlg; }
    CPreBalConfigDlg& GetConfigDlg() { return m_ConfigDlg; }
    const CScrewTableDlg& GetScrewTableDlg() const { return m_ScrewTableDlg; }
    CScrewTableDlg& GetScrewTableDlg() { return m_ScrewTableDlg; }

    /// The window that the main window is a child of, null if it has no parent.
    CWnd* GetHost() const;
    /// Message 1122 to it: the bits of Mask take the values of Values.
    void SendSoftkeys(WPARAM Mask, LPARAM Values) const;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnSelectedByOperator() override { UpdateTabSelection(); }

private:
    using MessageHandler = void (CPreBalConfigTabs::*)(WPARAM wParam);
    struct CMessageMapEntry {
        UINT m_Message;
        const char* m_pName;  ///< for the log
        MessageHandler m_pHandler;
    };
    static const CMessageMapEntry ms_MessageMap[];

    void OnCreate(WPARAM wParam);
    void OnSize(WPARAM wParam);
    void OnUpdateConfiguration(WPARAM wParam);
    void OnProcessNameChanged(WPARAM wParam);
    void OnSaveConfiguration(WPARAM wParam);
    void OnUpdateTabs(WPARAM wParam);
    void OnCalibratedChanged(WPARAM wParam);
    void OnUpdateScrewTable(WPARAM wParam);
    void OnScrewTableNameChanged(WPARAM wParam);
    void OnSaveScrewTable(WPARAM wParam);

    Base::CStringArray GetProcessNames() const;
    /// Enters what the page shows into the current entry. Null, or the first item whose value isn't valid.
    PropTree::CPropTreeItem* TakePage();
    /// Null if the current configuration was written, or couldn't be; else the item that is in its way.
    PropTree::CPropTreeItem* SaveUnlessInvalid();
    void ReadConfigurationsAnew();
    void ReadScrewTablesAnew();
    /// Reads a configuration, which becomes the current one, and shows it.
    void LoadConfiguration(const std::string& rName);
    /// Writes the current entry. One that others have changed too is read anew.
    void SaveCurrentEntry();
    /// Hands the current entry to the dialog.
    void ShowConfiguration();
    /// Enters the rows of the screw page into the current entry.
    void TakeScrews();
    /// The same, and writes it.
    PreBalDB::CStoreOutcome WriteCurrentScrewTable();
    /// The names that are there now, if they can be read.
    void ShowScrewTableNames();
    void ReadScrewTable(const std::string& rName);
    void ShowSettingsPage();
    void ShowScrewPage();

    std::unique_ptr<PreBalDB::CPreBalDatabase> m_pDatabase;
    std::uint8_t m_SensorAdaption1 = 255;
    std::uint8_t m_SensorAdaption2 = 255;
    PreBalDB::CTypeBase::AffectedPlane m_ProximitySwitchInput = PreBalDB::CTypeBase::eUnknownPlane;
    PreBalDB::CPreBalDatabase::BalancingMode m_BalancingMode = PreBalDB::CPreBalDatabase::eModePlane1;
    PreBalDB::CPreBalBaseTableEntry* m_pCurrentBaseEntry = nullptr;  ///< in the database
    PreBalDB::CScrewTableEntry* m_pCurrentScrewEntry = nullptr;      ///< in the database
    bool m_bScrewTableSaved = true;
    std::string m_ScrewTableName;  ///< of that entry
    CPreBalancingMainWnd& m_rMainWnd;
    CPreBalConfigDlg m_ConfigDlg;
    CScrewTableDlg m_ScrewTableDlg;
};
