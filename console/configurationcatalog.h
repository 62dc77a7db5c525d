#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"

/// What the store holds of all machines, for commands. Only looks: nothing is made by it. Everything throws
/// PreBalDB::CSqlError.
class CConfigurationCatalog {
public:
    struct CEntry {
        std::string m_Name;
        std::int64_t m_Revision = 0;  ///< grows with every write that changes something
    };

    /// Brings an older store to the current form. Throws PreBalDB::CDatabaseError for one of a newer version.
    explicit CConfigurationCatalog(const std::string& rConnection);

    /// Their keys in alphabetical order.
    std::vector<std::string> GetMachines();
    /// In alphabetical order with "Default" first.
    std::vector<CEntry> GetConfigurations(const std::string& rMachine);
    std::vector<CEntry> GetScrewTables(const std::string& rMachine);

private:
    std::vector<CEntry> GetEntries(const char* pTable, const std::string& rMachine);

    PreBalDB::CDirectSQL m_Connection;
};
