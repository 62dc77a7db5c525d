#include "console/configurationcatalog.h"

#include <map>

#include "platform/rvmdb/names.h"
#include "platform/rvmdb/schema.h"

CConfigurationCatalog::CConfigurationCatalog(const std::string& rConnection) : m_Connection(rConnection) {
    PreBalDB::Schema::Prepare(m_Connection);
}

std::vector<std::string> CConfigurationCatalog::GetMachines() {
    std::vector<std::string> Names;
    for (const PreBalDB::CDirectSQL::CRow& rRow :
         m_Connection.Query("SELECT name FROM machine ORDER BY name")) {
        Names.push_back(rRow.GetText(0));
    }
    return Names;
}

std::vector<CConfigurationCatalog::CEntry> CConfigurationCatalog::GetConfigurations(
    const std::string& rMachine) {
    return GetEntries("configuration", rMachine);
}

std::vector<CConfigurationCatalog::CEntry> CConfigurationCatalog::GetScrewTables(
    const std::string& rMachine) {
    return GetEntries("screw_table", rMachine);
}

std::vector<CConfigurationCatalog::CEntry> CConfigurationCatalog::GetEntries(const char* pTable,
                                                                             const std::string& rMachine) {
    std::map<std::string, std::int64_t> Revisions;
    std::vector<std::string> Names;
    for (const PreBalDB::CDirectSQL::CRow& rRow : m_Connection.Query(
             std::string("SELECT name, revision FROM ") + pTable + " WHERE machine = ?", {rMachine})) {
        Revisions[rRow.GetText(0)] = rRow.GetInteger(1);
        Names.push_back(rRow.GetText(0));
    }
    PreBalDB::SortNames(Names);
    std::vector<CEntry> Entries;
    Entries.reserve(Names.size());
    for (const std::string& rName : Names) {
        Entries.push_back({rName, Revisions[rName]});
    }
    return Entries;
}
