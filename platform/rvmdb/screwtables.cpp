// The screw tables of a machine, and the defaults that every store has.
#include "platform/rvmdb/defaultscrewtable.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/store.h"

namespace PreBalDB {

namespace {

const std::string& GetDefaultName() {
    static const std::string ms_Name = CDefaultScrewTable::eName;
    return ms_Name;
}

Base::CWDArray<CScrew> MakeDefaultScrews() {
    Base::CWDArray<CScrew> Screws;
    for (const double Weight : CDefaultScrewTable::eWeights) {
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

std::vector<std::string> CStore::LoadNamesOfScrewTables() {
    std::vector<std::string> Names;
    for (const CDirectSQL::CRow& rRow :
         m_Connection.Query("SELECT name FROM screw_table WHERE machine = ?", {m_MachineName})) {
        Names.push_back(rRow.GetText(0));
    }
    SortNames(Names);
    return Names;
}

std::vector<std::string> CStore::LoadScrewTableNames() {
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
    if (rWrite.m_Name.empty()) {
        throw CSqlError("a screw table needs a name", StoreFailure::eRefused);
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    const std::int64_t Revision = BeginRevision("screw_table", rWrite.m_Name).value_or(1);
    const bool bOthersWrote = rWrite.m_Name == rWrite.m_ReadName && Revision - 1 != rWrite.m_ReadRevision;
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
constexpr const char* pWithoutScrews =
    " FROM screw_table WHERE machine = ? AND NOT EXISTS (SELECT 1 FROM screw "
    "WHERE screw.machine = screw_table.machine AND screw.screw_table = screw_table.name)";
constexpr const char* pOfMissingTable =
    " NOT EXISTS (SELECT 1 FROM screw_table WHERE screw_table.machine = screw_compensation.machine "
    "AND screw_table.name = screw_compensation.screw_table)";

}  // namespace

bool CStore::AreDefaultsSet() {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    return !LoadScrews(GetDefaultName()).IsEmpty() &&
           m_Connection.Query(std::string("SELECT name") + pWithoutScrews, {m_MachineName}).empty() &&
           m_Connection
               .Query(std::string("SELECT configuration FROM screw_compensation WHERE machine = ? AND") +
                          pOfMissingTable,
                      {m_MachineName})
               .empty();
}

CDefaultsSet CStore::SetDefaults() {
    // Mostly there is nothing to do, and then nothing is written: the store may be read-only, or another
    // console be writing.
    if (AreDefaultsSet()) {
        return {false, LoadScrewTableNames()};
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (LoadScrews(GetDefaultName()).IsEmpty()) {
        StoreScrews(GetDefaultName(), MakeDefaultScrews(),
                    BeginRevision("screw_table", GetDefaultName()).value_or(1));
    }
    m_Connection.Execute(std::string("DELETE") + pWithoutScrews, {m_MachineName});
    m_Connection.Execute(
        std::string("UPDATE configuration SET revision = revision + 1 WHERE machine = ? AND EXISTS (SELECT 1 "
                    "FROM screw_compensation WHERE screw_compensation.machine = configuration.machine AND "
                    "screw_compensation.configuration = configuration.name AND") +
            pOfMissingTable + ")",
        {m_MachineName});
    m_Connection.Execute(
        std::string("UPDATE screw_compensation SET screw_table = ? WHERE machine = ? AND") + pOfMissingTable,
        {GetDefaultName(), m_MachineName});
    CDefaultsSet Set{true, LoadNamesOfScrewTables()};
    Transaction.Commit();
    return Set;
}

}  // namespace PreBalDB
