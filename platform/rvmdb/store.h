#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"

namespace PreBalDB {

/// Of a configuration whose revision on the server isn't known: no stored one has it.
constexpr std::int64_t UNKNOWN_REVISION = -1;

/// A configuration as it is stored. The revision grows by one with every write that changes something.
struct CStoredConfiguration {
    CFieldValues m_Values;
    std::int64_t m_Revision = 0;
};

/// What is to be written: the entry in memory as it is now, and all that is needed to tell what was changed.
struct CConfigurationWrite {
    std::string m_Name;
    std::string m_StoredName;  ///< under which it was read
    /// As it was read; nothing if it wasn't there, or couldn't be read.
    std::optional<CStoredConfiguration> m_Read;
    bool m_bReadFailed = false;
    CFieldValues m_MemoryBefore;  ///< right after it was read
    CFieldValues m_Memory;
};

struct CConfigurationWritten {
    CStoredConfiguration m_Stored;         ///< as it is now
    std::vector<std::string> m_Conflicts;  ///< CMerged::m_Conflicts
    bool m_bCalibrationLost = false;
    bool m_bOthersWrote = false;  ///< since it was read
    bool m_bChanged = false;      ///< something had to be written
    bool m_bDelivered = true;     ///< false: it stands on this console's own disk and waits for the server
};

struct CScrewTableWrite {
    std::string m_Name;
    std::string m_ReadName;
    std::int64_t m_ReadRevision = 0;  ///< 0 if it wasn't there
    bool m_bReadEmpty = false;        ///< it had no screws
    Base::CWDArray<CScrew> m_Screws;
};

struct CStoredScrewTable {
    Base::CWDArray<CScrew> m_Screws;
    std::int64_t m_Revision = 0;  ///< 0 if there is no such table
};

/// Names of what is stored.
struct CLoadedNames {
    std::vector<std::string> m_Names;     ///< sorted
    std::vector<std::string> m_Unusable;  ///< no UTF-8: only another program can put them right
};

struct CDefaultsSet {
    bool m_bChanged = false;
    std::vector<std::string> m_ScrewTableNames;
};

struct CDelivery;
struct CTableRows;

/// The store's side of CPreBalDatabase: plain values in, plain values out, so that it can work in a thread of
/// its own. Reading and writing of configurations is in configurationstore.cpp, the screw tables and the
/// defaults are in screwtables.cpp. Everything throws CSqlError.
class CStore {
public:
    /// Opens the connection. Throws CDatabaseError.
    CStore(std::string MachineName, const std::string& rConnection);
    virtual ~CStore() = default;
    CStore(const CStore&) = delete;
    CStore& operator=(const CStore&) = delete;

    /// Brings schema, machine and defaults into being. Throws CDatabaseError.
    void Prepare();
    /// From another thread: CDirectSQL::Interrupt.
    void Interrupt() { m_Connection.Interrupt(); }
    void Resume() { m_Connection.Resume(); }

    std::optional<CStoredConfiguration> LoadConfiguration(const std::string& rName);
    CLoadedNames LoadProcessNames(CPreBalDatabase::BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                  std::uint8_t Sensor1, std::uint8_t Sensor2);
    /// Writes what was changed, or a further configuration if the name is another one than was read.
    CConfigurationWritten WriteConfiguration(const CConfigurationWrite& rWrite);
    void DeleteConfiguration(const std::string& rName);
    /// The same of a write from a console's queue, which is done once, however often this is asked: nothing
    /// if it was done before.
    std::optional<CConfigurationWritten> Deliver(const CDelivery& rDelivery);
    /// All that is stored of the machine, as of one moment.
    std::vector<CTableRows> LoadMachine();

    CLoadedNames LoadScrewTableNames();
    CStoredScrewTable LoadScrewTable(const std::string& rName);
    /// The table's revision; nothing if others have changed the table as well, whose rows then stay.
    std::optional<std::int64_t> WriteScrewTable(const CScrewTableWrite& rWrite);
    /// The configurations that use it, because of which it stays; none if it is gone.
    std::vector<std::string> DeleteScrewTable(const std::string& rName);
    CDefaultsSet SetDefaults();

protected:
    CDirectSQL& GetConnection() { return m_Connection; }
    const std::string& GetMachineName() const { return m_MachineName; }

private:
    using CValues = std::vector<CDirectSQL::CValue>;

    // To be called within a transaction.
    CFieldValues LoadValues(const std::string& rName);
    /// Locks the configuration for this transaction and gives it its next revision, which is the result;
    /// nothing if there is none.
    std::optional<std::int64_t> BeginRevision(const char* pTable, const std::string& rName);
    CConfigurationWritten MergeIn(const CConfigurationWrite& rWrite);
    bool BeginDelivery(const CDelivery& rDelivery);
    CConfigurationWritten Insert(const CConfigurationWrite& rWrite);
    void InsertRecord(const CRecordLayout& rLayout, const std::string& rName, const CFieldValues& rValues);
    void WriteDifference(const std::string& rName, const CFieldValues& rBefore, const CFieldValues& rNow);
    bool AreDefaultsSet();  ///< has a transaction of its own
    bool IsPlane(const std::string& rConfiguration, CPreBalDatabase::BalancingMode Mode);
    Base::CWDArray<CScrew> LoadScrews(const std::string& rTable);
    void StoreScrews(const std::string& rTable, const Base::CWDArray<CScrew>& rScrews, std::int64_t Revision);
    CLoadedNames LoadNamesOfScrewTables();
    std::vector<std::string> LoadUsersOfScrewTable(const std::string& rName);
    bool CanBeAskedFor(const char* pTable, const std::string& rName);
    CValues MakeKey(const CRecordLayout& rLayout, const std::string& rName) const;

    std::string m_MachineName;
    CDirectSQL m_Connection;
};

}  // namespace PreBalDB
