// What a console whose server was away brings to the store, and what it keeps of it.
#include <set>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/localstore.h"
#include "platform/rvmdb/store.h"

namespace PreBalDB {

bool CStore::BeginDelivery(const CDelivery& rDelivery) {
    m_Connection.Execute("INSERT INTO delivery (console, last) VALUES (?, 0) ON CONFLICT DO NOTHING",
                         {rDelivery.m_Console});
    // Locks the row: whoever else brings the same write waits here, and then finds it done.
    return m_Connection.Execute("UPDATE delivery SET last = ? WHERE console = ? AND last < ?",
                                {rDelivery.m_Number, rDelivery.m_Console, rDelivery.m_Number}) != 0;
}

std::optional<CConfigurationWritten> CStore::Deliver(const CDelivery& rDelivery) {
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (!BeginDelivery(rDelivery)) {
        return std::nullopt;
    }
    CConfigurationWritten Written = MergeIn(rDelivery.m_Write);
    if (!Written.m_bChanged) {
        // The number is to be kept, but the revision is not to be used up.
        m_Connection.Execute(
            "UPDATE configuration SET revision = revision - 1 WHERE machine = ? AND name = ?",
            {m_MachineName, rDelivery.m_Write.m_Name});
    }
    Transaction.Commit();
    return Written;
}

std::vector<CTableRows> CStore::LoadMachine() {
    const CTransaction Transaction(m_Connection, CTransaction::eReading);
    const CValues Key = {m_MachineName};
    const std::string OfMachine = " WHERE machine = ?";
    std::vector<CTableRows> Tables = {CTableRows::Read(m_Connection, "machine", " WHERE name = ?", Key)};
    std::set<std::string> Taken;
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        if (Taken.insert(rLayout.m_Table).second) {  // one with several parts stands there several times
            Tables.push_back(CTableRows::Read(m_Connection, rLayout.m_Table, OfMachine, Key));
        }
    }
    for (const char* const pTable : {"screw_table", "screw", "iso_data"}) {
        if (m_Connection.HasTable(pTable)) {
            Tables.push_back(CTableRows::Read(m_Connection, pTable, OfMachine, Key));
        }
    }
    return Tables;
}

}  // namespace PreBalDB
