#pragma once
#include <string>

#include "platform/rvmdb/screw.h"
#include "platform/window/dialog.h"
#include "rvdlm/m_rtr/rtr_trim/pagename.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/flextable/flextable.h"

class CPreBalConfigTabs;

/// The page "MASS_TABLE": chooses a screw table by its name and edits its rows, a name and a weight each. It
/// works in two modes: in the list mode the focus is in the name, in the edit mode it is in the table. Asks
/// the tabs by message to load and save. Window thread only.
///
/// A name that is taken in the list mode makes a further table with the rows shown; one that is typed and
/// then left for the table begins a new, empty one.
class CScrewTableDlg : public CDialog {
public:
    static constexpr UINT TABLE_ID = 101;

    explicit CScrewTableDlg(CPreBalConfigTabs& rTabs);

    /// Takes over the names of all tables; there must be one. With bKeep the name shown stays, without it the
    /// first one is shown and the tabs are asked to load it.
    void SetScrewTables(const Base::CStringArray& rNames, bool bKeep);
    /// Shows the name of a table that the tabs load, or that a refused name is to give way to.
    void ShowScrewTableName(const std::string& rName);
    /// Shows the rows of a table, with an untouched one behind them.
    void SetScrewTable(const Base::CWDArray<PreBalDB::CScrew>& rScrews);
    /// The rows, in the order of the page. Those without weight, and more than two of one weight, are left
    /// out. What is being typed doesn't count yet: EndEditing.
    void GetConfig(Base::CWDArray<PreBalDB::CScrew>& rScrews) const;
    /// The name that holds; one that is being typed is none yet.
    const std::string& GetScrewTableName() const { return m_Name.GetName(); }
    const Base::CStringArray& GetScrewTableNames() const { return m_ScrewTableNames; }
    /// An action of the host (actions.h) while this page is shown.
    void Navigate(int Action, int Flag);
    /// Brings the focus to where the mode has it, if the page is shown, and has the table saved.
    void SetListMode(bool bList);
    bool IsListMode() const { return m_ListMode; }
    /// Takes what is being typed, in the name or in a cell.
    void EndEditing();
    /// Forgets names and rows; the database is about to go.
    void Clear();
    /// Shows the texts in the language in use.
    void ShowTexts();

    CPageName& GetPageName() { return m_Name; }
    CFlexTable& GetTable() { return m_Table; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void CreateControls();
    void OnSize();
    void OnShown();
    void OnNotify(const CWndNotification& rNotification);
    void OnNameTaken();
    void OnStep(int nDelta);
    void ShowListMode();
    void ShowEditMode();
    void NavigateList(int Action, int Flag);
    void NavigateTable(int Flag);
    /// Empties the table and turns its growth off.
    void EmptyTable();
    /// Turns the growth on, with the untouched row that it keeps at the end.
    void BeginGrowth();

    CPreBalConfigTabs& m_rTabs;
    CPageName m_Name;
    CFlexTable m_Table;
    bool m_ListMode = true;
    bool m_bSwitching = false;  ///< focus and cursor move because of the mode, not the mode because of them
    Base::CStringArray m_ScrewTableNames;
    std::string m_Unnamed;     ///< what stands on show in place of a screw's empty name
    std::string m_EditedName;  ///< shown when the list mode was entered, or since by the program
};
