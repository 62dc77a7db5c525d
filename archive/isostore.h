#pragma once
#include <optional>
#include <string>

#include "archive/isodata.h"
#include "platform/rvmdb/directsql.h"

/// What is known of the rotors, in a table of its own beside the configurations: it goes when its
/// configuration goes. Belongs to the thread of the connection. Everything throws PreBalDB::CSqlError.
class CIsoStore {
public:
    static constexpr int CURRENT_VERSION = 1;

    /// Makes the table, or brings an older one to the current form. The tables of the configurations must
    /// stand. Throws PreBalDB::CDatabaseError for one of a newer version, which it leaves as it is.
    explicit CIsoStore(PreBalDB::CDirectSQL& rConnection);

    /// Nothing if there is no such configuration, or nothing is known of it.
    std::optional<CIsoData> Read(const std::string& rMachine, const std::string& rConfiguration);
    /// False, and nothing done, if there is no such configuration in the store.
    bool Write(const std::string& rMachine, const std::string& rConfiguration, const CIsoData& rData);

private:
    void Prepare();

    PreBalDB::CDirectSQL& m_rConnection;
};
