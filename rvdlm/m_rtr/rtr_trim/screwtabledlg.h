#pragma once
#include <string>

#include "platform/rvmdb/screw.h"
#include "platform/window/wnd.h"
#include "rvlib/rvbas/array.h"

class CPreBalConfigTabs;

/// The page "MASS_TABLE": chooses a screw table by its name and shows its rows. Asks the tabs by message to
/// load and save. Window thread only.
class CScrewTableDlg : public CWnd {
public:
    explicit CScrewTableDlg(CPreBalConfigTabs& rTabs);

    /// Takes over the names of all tables; there must be one. With bKeep the name shown stays, without it the
    /// first one is shown and the tabs are asked to load it.
    void SetScrewTables(const Base::CStringArray& rNames, bool bKeep);
    /// Shows the name of a table that the tabs have loaded.
    void ShowScrewTableName(const std::string& rName) { m_Name = rName; }
    /// Shows the rows of a table.
    void SetScrewTable(const Base::CWDArray<PreBalDB::CScrew>& rScrews) { m_Screws = rScrews; }
    /// The rows.
    const Base::CWDArray<PreBalDB::CScrew>& GetConfig() const { return m_Screws; }
    /// Text of the name field.
    const std::string& GetScrewTableName() const { return m_Name; }
    const Base::CStringArray& GetScrewTableNames() const { return m_ScrewTableNames; }
    /// In the list mode the page steps through the tables, else it edits one.
    void SetListMode(bool bList) { m_ListMode = bList; }
    bool IsListMode() const { return m_ListMode; }
    /// Forgets names and rows; the database is about to go.
    void Clear();

private:
    CPreBalConfigTabs& m_rTabs;
    bool m_ListMode = true;
    Base::CStringArray m_ScrewTableNames;
    std::string m_Name;
    Base::CWDArray<PreBalDB::CScrew> m_Screws;
};
