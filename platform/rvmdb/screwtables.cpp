// The screw tables of a machine, and the defaults that every store has.
#include "platform/rvmdb/defaultscrewtable.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/store.h"

namespace PreBalDB {

namespace {

const std::string& GetDefaultName() {
    static const std::string ms_Name = CDefaultScrewTable::NAME;
    return ms_Name;
}

Base::CWDArray<CScrew> MakeDefaultScrews() {
    Base::CWDArray<CScrew> Screws;
    for (const double Weight : CDefaultScrewTable::WEIGHTS) {
        Screws.Add(CScrew(CScrew("", Weight).GetWeightAsString() + " g", Weight));
    }
    return Screws;
}

}  // namespace

Base::CWDArray<CScrew> CScrewCompensationTableEntry::GetScrewTable() const {
    if (m_pDatabase == nullptr) {
        return {};
    }
    return m_pDatabase->ReadScrews(m_ScrewTableName);
}

CLoadedNames CStore::LoadNamesOfScrewTables() {
    CLoadedNames Loaded;
    for (const CDirectSQL::CRow& rRow :
         m_Connection.Query("SELECT name FROM screw_table WHERE machine = ?", {m_MachineName})) {
        const std::string Name = rRow.GetText(0);
        (CanBeAskedFor("screw_table", Name) ? Loaded.m_Names : Loaded.m_Unusable).push_back(Name);
    }
    SortNames(Loaded.m_Names);
    return Loaded;
}

CLoadedNames CStore::LoadScrewTableNames() {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    return LoadNamesOfScrewTables();
}

Base::CWDArray<CScrew> CStore::LoadScrews(const std::string& rTable) {
    Base::CWDArray<CScrew> Screws;
    for (const CDirectSQL::CRow& rRow : m_Connection.Query(
             "SELECT name, weight FROM screw WHERE machine = ? AND screw_table = ? ORDER BY position",
             {m_MachineName, rTable})) {
        Screws.Add(CScrew(rRow.GetText(0), rRow.GetDouble(1)));
    }
    return Screws;
}

CStoredScrewTable CStore::LoadScrewTable(const std::string& rName) {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    const auto Rows = m_Connection.Query("SELECT revision FROM screw_table WHERE machine = ? AND name = ?",
                                         {m_MachineName, rName});
    return {LoadScrews(rName), Rows.empty() ? 0 : Rows[0].GetInteger(0)};
}

std::optional<std::int64_t> CStore::WriteScrewTable(const CScrewTableWrite& rWrite) {
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    const std::optional<std::int64_t> Found = BeginRevision("screw_table", rWrite.m_Name);
    if (!Found) {
        CheckNewName(rWrite.m_Name, "a screw table");
    } else if (rWrite.m_Name != rWrite.m_ReadName) {
        throw CSqlError("\"" + rWrite.m_Name + "\" exists already", StoreFailure::eNameTaken);
    }
    const std::int64_t Revision = Found.value_or(1);
    // A table that is still empty may have been dropped meanwhile, as the default of another console.
    const bool bDropped = !Found && rWrite.m_bReadEmpty;
    const bool bOthersWrote =
        rWrite.m_Name == rWrite.m_ReadName && Revision - 1 != rWrite.m_ReadRevision && !bDropped;
    if (bOthersWrote && LoadScrews(rWrite.m_Name) != rWrite.m_Screws) {
        return std::nullopt;
    }
    StoreScrews(rWrite.m_Name, rWrite.m_Screws, Revision);
    Transaction.Commit();
    return Revision;
}

void CStore::StoreScrews(const std::string& rTable, const Base::CWDArray<CScrew>& rScrews,
                         std::int64_t Revision) {
    m_Connection.Execute("DELETE FROM screw_table WHERE machine = ? AND name = ?", {m_MachineName, rTable});
    m_Connection.Execute("INSERT INTO screw_table (machine, name, revision) VALUES (?, ?, ?)",
                         {m_MachineName, rTable, Revision});
    std::int64_t Position = 0;
    for (const CScrew& rScrew : rScrews) {
        m_Connection.Execute(
            "INSERT INTO screw (machine, screw_table, position, name, weight) VALUES (?, ?, ?, ?, ?)",
            {m_MachineName, rTable, Position++, rScrew.GetScrewName(), rScrew.GetWeight()});
    }
}

namespace {

// Conditions on the rows of a machine that stand in the way. Without a screw nothing can be balanced.
constexpr const char* WITHOUT_SCREWS =
    " FROM screw_table WHERE machine = ? AND NOT EXISTS (SELECT 1 FROM screw "
    "WHERE screw.machine = screw_table.machine AND screw.screw_table = screw_table.name)";
constexpr const char* OF_MISSING_TABLE =
    " NOT EXISTS (SELECT 1 FROM screw_table WHERE screw_table.machine = screw_compensation.machine "
    "AND screw_table.name = screw_compensation.screw_table)";

}  // namespace

std::vector<std::string> CStore::LoadUsersOfScrewTable(const std::string& rName) {
    std::vector<std::string> Users;
    for (const CDirectSQL::CRow& rRow : m_Connection.Query(
             "SELECT DISTINCT configuration FROM screw_compensation WHERE machine = ? AND screw_table = ?",
             {m_MachineName, rName})) {
        Users.push_back(rRow.GetText(0));
    }
    SortNames(Users);
    return Users;
}

std::vector<std::string> CStore::DeleteScrewTable(const std::string& rName) {
    if (rName == GetDefaultName()) {
        throw CSqlError("the default screw table can't be deleted", StoreFailure::eDefault);
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    // First, so that the row is locked: nobody begins to use the table meanwhile.
    if (m_Connection.Execute("DELETE FROM screw_table WHERE machine = ? AND name = ?",
                             {m_MachineName, rName}) == 0) {
        throw CSqlError("there is no screw table \"" + rName + "\"", StoreFailure::eMissing);
    }
    std::vector<std::string> Users = LoadUsersOfScrewTable(rName);
    if (Users.empty()) {
        Transaction.Commit();
    }
    return Users;
}

bool CStore::AreDefaultsSet() {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    return !LoadScrews(GetDefaultName()).IsEmpty() &&
           m_Connection.Query(std::string("SELECT name") + WITHOUT_SCREWS, {m_MachineName}).empty() &&
           m_Connection
               .Query(std::string("SELECT configuration FROM screw_compensation WHERE machine = ? AND") +
                          OF_MISSING_TABLE,
                      {m_MachineName})
               .empty();
}

CDefaultsSet CStore::SetDefaults() {
    // Mostly there is nothing to do, and then nothing is written: the store may be read-only, or another
    // console be writing.
    if (AreDefaultsSet()) {
        return {false, LoadScrewTableNames().m_Names};
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (LoadScrews(GetDefaultName()).IsEmpty()) {
        StoreScrews(GetDefaultName(), MakeDefaultScrews(),
                    BeginRevision("screw_table", GetDefaultName()).value_or(1));
    }
    m_Connection.Execute(std::string("DELETE") + WITHOUT_SCREWS, {m_MachineName});
    m_Connection.Execute(
        std::string("UPDATE configuration SET revision = revision + 1 WHERE machine = ? AND EXISTS (SELECT 1 "
                    "FROM screw_compensation WHERE screw_compensation.machine = configuration.machine AND "
                    "screw_compensation.configuration = configuration.name AND") +
            OF_MISSING_TABLE + ")",
        {m_MachineName});
    m_Connection.Execute(
        std::string("UPDATE screw_compensation SET screw_table = ? WHERE machine = ? AND") + OF_MISSING_TABLE,
        {GetDefaultName(), m_MachineName});
    CDefaultsSet Set{true, LoadNamesOfScrewTables().m_Names};
    Transaction.Commit();
    return Set;
}

}  // namespace PreBalDB
