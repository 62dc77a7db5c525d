#pragma once
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/window/dialog.h"
#include "platform/window/static.h"
#include "rvdlm/m_rtr/rtr_trim/config/baseparamstree.h"
#include "rvdlm/m_rtr/rtr_trim/config/configurationmodel.h"
#include "rvdlm/m_rtr/rtr_trim/pagename.h"
#include "rvlib/rvbas/array.h"

class CPreBalConfigTabs;

/// The page "SETTINGS": chooses a configuration by its name, tells whether it is calibrated, and edits it in
/// a tree. Asks the tabs by message to load and save. Window thread only.
class CPreBalConfigDlg : public CDialog, public CBaseParamsTree {
public:
    static constexpr const char* DEFAULT_NAME = "Default";
    static constexpr UINT STATE_ID = 8004;
    static constexpr UINT TREE_ID = 8005;

    explicit CPreBalConfigDlg(CPreBalConfigTabs& rTabs);

    /// Who shows the help of the item that is selected; null for nobody.
    void SetDynamicHelp(PropTree::CDynamicHelpIF* pHelp) { GetTree().SetDynamicHelp(pHelp); }

    /// Takes over the names of the configurations. Without bKeep the first one is shown, "Default" if there
    /// is none, and the tabs are asked to load it; with it the name shown stays, and only its place in the
    /// list is looked up.
    void SetBalancingConfigurations(const Base::CStringArray& rNames, bool bKeep);
    /// The up-down control: shows the name Delta places further, as far as there are names, and has it
    /// loaded. What somebody has changed is saved before; if that can't be, the page stays and shows why.
    void OnDeltaposConfigSpin(int Delta);
    /// Shows an entry and tells the host whether it is calibrated. A new entry "Default" is saved at once, so
    /// that the default configuration stands in the database from the start. The entry belongs to the
    /// database.
    void SetConfiguration(PreBalDB::CPreBalBaseTableEntry& rEntry,
                          PreBalDB::CPreBalDatabase::BalancingMode Mode,
                          const Base::CStringArray& rScrewTableNames);
    /// Forgets entry and names; the database is about to go.
    void Clear();

    /// Whether a re-balancing can start: from the entry, and with what is shown on the page.
    bool IsCalibrated() const { return ConfigurationModel::IsCalibrated(m_pEntry) && !m_bCalibrationReset; }
    /// The name that holds; one that is being typed is none yet.
    const std::string& GetConfigurationName() const { return m_Name.GetName(); }
    /// Shows a name; nobody is told.
    void ShowConfigurationName(const std::string& rName) { m_Name.SetName(rName); }
    /// As if the operator had typed the name and ended it; tells the tabs.
    void SetConfigurationName(const std::string& rName);
    const Base::CStringArray& GetConfigurationNames() const { return m_Names; }
    int GetSpinPos() const { return m_Name.GetSpin().GetPos(); }
    /// Text of the title label.
    void SetTitle(const std::string& rTitle);
    const std::string& GetTitle() const { return m_Name.GetText(); }
    /// The plane that a single-plane module serves, 0 or 1.
    void SetPlane(int Plane);
    int GetPlane() const { return m_Plane; }
    /// One line: calibrated, since when and at what speed, or not.
    const std::string& GetStateText() const { return m_State.GetWindowText(); }
    CPageName& GetPageName() { return m_Name; }

    /// Ends editing in place, of the name and of a value, which are taken.
    void EndEditing();
    /// Selects an item that keeps the configuration from being saved, and begins to edit it.
    void ShowInvalidItem(PropTree::CPropTreeItem* pItem);
    /// An action of the host (actions.h); true if it is one of this page. None while a name is being typed.
    bool Navigate(int Action, int Flag);

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void CreateControls();
    void OnSize();
    void OnNotify(const CWndNotification& rNotification);
    /// The tree tells of a change.
    void OnItemChanged();
    void OnNameTaken();
    /// The calibration is what the tree says, whatever the entry may hold.
    void CompareCalibration();
    void ShowState();
    void ShowName(int Position);
    void TellHost() const;
    void OnValueAction(int Flag);
    void OnItemAction(int Flag);

    CPreBalConfigTabs& m_rTabs;
    CPageName m_Name;
    CStatic m_State;
    Base::CStringArray m_Names;
    int m_Plane = 0;
    PreBalDB::CPreBalBaseTableEntry* m_pEntry = nullptr;
    std::string m_Language;            ///< of the items
    bool m_bEdited = false;            ///< by the operator, since the entry was shown
    bool m_bCalibrationReset = false;  ///< what is shown doesn't go with the entry's calibration
    // What was told last.
    bool m_bCalibrated = false;
    bool m_bScrews = false;
};
