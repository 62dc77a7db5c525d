#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/rvmdb/store.h"
#include "platform/rvmdb/tablerows.h"

namespace PreBalDB {

/// A configuration's write on its way to the server.
struct CDelivery {
    std::string m_Console;      ///< whose queue it stands in
    std::int64_t m_Number = 0;  ///< its place there
    std::string m_Machine;
    CConfigurationWrite m_Write;
};

/// What a console has on its own disk while its store lies on a server: a copy of its machine as it was read
/// last, in the tables of any store, and the writes that the server doesn't have yet, in their order. A write
/// that stands here survives whatever becomes of the console. Everything throws CSqlError.
class CLocalStore : public CStore {
public:
    /// Makes the file if there is none. Throws CDatabaseError.
    CLocalStore(const std::string& rMachineName, const std::string& rFile);

    /// Whether the machine was ever read.
    bool HasMachine();
    /// In place of what is known of it.
    void PutMachine(const std::vector<CTableRows>& rTables);

    /// Puts a write at the end of the queue; the result is its number.
    std::int64_t Add(const CConfigurationWrite& rWrite);
    /// The one that comes next, of whatever machine.
    std::optional<CDelivery> GetNext();
    std::size_t Count();
    void Remove(std::int64_t Number);

private:
    void PrepareQueue();
    CFieldValues LoadQueued(std::int64_t Number, const char* pSide);
    void StoreQueued(std::int64_t Number, const char* pSide, const CFieldValues& rValues);
};

}  // namespace PreBalDB
