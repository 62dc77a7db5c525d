// The database as its users see it: the entries that it hands out, and what has become of them since.
#include "platform/rvmdb/prebaldatabase.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/defaultscrewtable.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/patience.h"
#include "platform/rvmdb/storeaccess.h"

namespace PreBalDB {

namespace {

std::string Connection;
/// In order of opening; two databases of one key stand in it twice.
std::vector<std::string> OpenMachineNames;

Base::CStringArray ToArray(const std::vector<std::string>& rNames) {
    Base::CStringArray Array;
    for (const std::string& rName : rNames) {
        Array.Add(rName);
    }
    return Array;
}

/// A value that can't be isn't written either: nobody could read it again.
void RefuseImpossibleValues(const CFieldValues& rBefore, const CFieldValues& rNow) {
    for (const auto& [rField, rValue] : rNow) {
        const auto Before = rBefore.find(rField);
        const std::string Problem = Before == rBefore.end() || Before->second != rValue
                                        ? ConfigurationFields::Check(rField, rValue)
                                        : std::string();
        if (!Problem.empty()) {
            throw CSqlError(Problem, StoreFailure::eRefused);
        }
    }
}

}  // namespace

void SetDatabaseConnection(std::string NewConnection) {
    Connection = std::move(NewConnection);
}

std::string GetDatabaseConnection() {
    return Connection;
}

struct CPreBalDatabase::Impl {
    explicit Impl(const std::string& rMachineName);

    /// Does an operation on the store; on failure the log says that What was not done. Whether it succeeded.
    template <typename Operation>
    bool Try(const std::string& rWhat, Operation Do) {
        m_Outcome = {};
        try {
            Do();
            return true;
        } catch (const CSqlError& rError) {
            m_Outcome.m_Cause = rError.GetCause();
            m_Outcome.m_Failure = rError.what();
            RV_ERROR(g_pLog, "%s of \"%s\": %s", rWhat.c_str(), m_MachineName.c_str(), rError.what());
            return false;
        }
    }
    template <typename Load>
    Base::CStringArray LoadNames(const std::string& rOfWhat, Load Names);
    void WriteConfiguration();
    bool RepairScrewTableNames(const std::vector<std::string>& rNames);

    std::string m_MachineName;
    CStoreAccess m_Store;
    CStoreOutcome m_Outcome;

    std::unique_ptr<CPreBalBaseTableEntry> m_pConfiguration;
    /// What m_pConfiguration was read from; name and memory as it is now are entered for a write.
    CConfigurationWrite m_Read;
    /// Configurations that could not be written, by name.
    std::map<std::string, CConfigurationWrite> m_Unwritten;

    std::unique_ptr<CScrewTableEntry> m_pScrewTable;
    bool m_bScrewTableSound = false;  ///< false if the store couldn't be read: never written
    std::string m_ReadScrewTableName;
    CStoredScrewTable m_ReadScrewTable;
};

CPreBalDatabase::Impl::Impl(const std::string& rMachineName) try
    : m_MachineName(rMachineName), m_Store(rMachineName, Connection) {
} catch (const CSqlError& rError) {
    throw CDatabaseError("the database can't be used: " + std::string(rError.what()) +
                         "; see that its server or disk answers");
}

CPreBalDatabase::CPreBalDatabase(const std::string& rMachineName)
    : m_pImpl([&rMachineName] {
          const CPatience Patience;
          return std::make_unique<Impl>(rMachineName);
      }()) {
    OpenMachineNames.push_back(rMachineName);
}

CPreBalDatabase::~CPreBalDatabase() {
    for (const auto& [rName, rWrite] : m_pImpl->m_Unwritten) {
        RV_ERROR(g_pLog, "configuration \"%s\" of \"%s\" ends unwritten", rName.c_str(),
                 GetMachineName().c_str());
    }
    // Of several databases of one key the latest goes first, as scopes end.
    const auto Found = std::find(OpenMachineNames.rbegin(), OpenMachineNames.rend(), m_pImpl->m_MachineName);
    OpenMachineNames.erase(std::next(Found).base());
}

const std::string& CPreBalDatabase::GetMachineName() const {
    return m_pImpl->m_MachineName;
}

const CStoreOutcome& CPreBalDatabase::GetOutcome() const {
    return m_pImpl->m_Outcome;
}

std::vector<std::string> CPreBalDatabase::GetOpenMachineNames() {
    return OpenMachineNames;
}

template <typename Load>
Base::CStringArray CPreBalDatabase::Impl::LoadNames(const std::string& rOfWhat, Load Names) {
    CLoadedNames Loaded;
    Try("names of " + rOfWhat + " not read", [&] { Loaded = Names(m_Store); });
    for (const std::string& rName : Loaded.m_Unusable) {
        RV_ERROR(g_pLog, "among the %s of \"%s\": \"%s\" is no UTF-8, and left out", rOfWhat.c_str(),
                 m_MachineName.c_str(), rName.c_str());
    }
    m_Outcome.m_Problems = Loaded.m_Unusable;
    return ToArray(Loaded.m_Names);
}

Base::CStringArray CPreBalDatabase::GetProcessNames(BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                                    std::uint8_t Sensor1, std::uint8_t Sensor2) const {
    return m_pImpl->LoadNames("configurations", [=](CStoreAccess& rStore) {
        return rStore.LoadProcessNames(Mode, Plane, Sensor1, Sensor2);
    });
}

Base::CStringArray CPreBalDatabase::GetScrewTableNames() const {
    return m_pImpl->LoadNames("screw tables", [](CStoreAccess& rAccess) {
        return rAccess.Read([](CStore& rStore) { return rStore.LoadScrewTableNames(); });
    });
}

CPreBalBaseTableEntry& CPreBalDatabase::ReadConfiguration(const std::string& rName) {
    const std::string Name = rName;  // may be the name within the entry that goes
    CConfigurationWrite Read;
    Read.m_StoredName = Name;
    auto pEntry = std::make_unique<CPreBalBaseTableEntry>(GetMachineName(), Name);
    pEntry->m_pDatabase = this;
    const auto Unwritten = m_pImpl->m_Unwritten.find(Name);
    if (Unwritten != m_pImpl->m_Unwritten.end()) {
        m_pImpl->m_Outcome = {};
        Read = Unwritten->second;
        ConfigurationFields::Write(Read.m_Memory, *pEntry);
    } else {
        Read.m_bReadFailed = !m_pImpl->Try("configuration \"" + Name + "\" not read",
                                           [&] { Read.m_Read = m_pImpl->m_Store.LoadConfiguration(Name); });
        if (Read.m_Read) {
            m_pImpl->m_Outcome.m_Problems = ConfigurationFields::Write(Read.m_Read->m_Values, *pEntry);
        }
        Read.m_MemoryBefore = ConfigurationFields::Read(*pEntry);
        for (const std::string& rProblem : m_pImpl->m_Outcome.m_Problems) {
            RV_ERROR(g_pLog, "configuration \"%s\" of \"%s\": left out, and counts as not calibrated: %s",
                     Name.c_str(), GetMachineName().c_str(), rProblem.c_str());
        }
    }
    m_pImpl->m_Read = std::move(Read);
    m_pImpl->m_pConfiguration = std::move(pEntry);
    return *m_pImpl->m_pConfiguration;
}

int CPreBalDatabase::WriteConfiguration() {
    m_pImpl->m_Outcome = {};
    if (m_pImpl->m_pConfiguration == nullptr) {
        RV_ERROR(g_pLog, "no configuration written: none was read");
        return 0;
    }
    const std::string Name = m_pImpl->m_pConfiguration->GetProcessName();
    m_pImpl->m_Read.m_Name = Name;
    m_pImpl->m_Read.m_Memory = ConfigurationFields::Read(*m_pImpl->m_pConfiguration);
    if (!m_pImpl->Try("configuration \"" + Name + "\" not written",
                      [this] { m_pImpl->WriteConfiguration(); })) {
        if (!IsRefusal(m_pImpl->m_Outcome.m_Cause)) {
            m_pImpl->m_Unwritten[Name] = m_pImpl->m_Read;
        }
        return 0;
    }
    m_pImpl->m_Unwritten.erase(Name);
    for (const std::string& rConflict : m_pImpl->m_Outcome.m_Conflicts) {
        RV_WARNING(
            g_pLog,
            "configuration \"%s\" of \"%s\": %s was changed here and by another console; the stored value "
            "stays",
            Name.c_str(), GetMachineName().c_str(), rConflict.c_str());
    }
    return 1;
}

int CPreBalDatabase::NameConfiguration(const std::string& rName) {
    if (m_pImpl->m_pConfiguration == nullptr) {
        return WriteConfiguration();
    }
    const std::string Former = m_pImpl->m_pConfiguration->GetProcessName();
    m_pImpl->m_pConfiguration->SetProcessName(rName);
    const int Written = WriteConfiguration();
    if (Written == 0) {
        m_pImpl->m_pConfiguration->SetProcessName(Former);
        m_pImpl->m_Unwritten.erase(rName);
    }
    return Written;
}

int CPreBalDatabase::DeleteConfiguration(const std::string& rName) {
    if (!m_pImpl->Try("configuration \"" + rName + "\" not deleted", [&] {
            m_pImpl->m_Store.Run([rName](CStore& rStore) { rStore.DeleteConfiguration(rName); });
        })) {
        return 0;
    }
    m_pImpl->m_Unwritten.erase(rName);
    return 1;
}

void CPreBalDatabase::Impl::WriteConfiguration() {
    CConfigurationWrite& rRead = m_Read;
    RefuseImpossibleValues(rRead.m_MemoryBefore, rRead.m_Memory);
    const bool bKnown = rRead.m_Read && rRead.m_Name == rRead.m_StoredName;
    if (bKnown && rRead.m_Memory == rRead.m_MemoryBefore) {
        return;  // nothing was changed here
    }
    CConfigurationWritten Written = m_Store.WriteConfiguration(rRead);
    m_Outcome.m_bDelivered = Written.m_bDelivered;
    m_Outcome.m_Conflicts = std::move(Written.m_Conflicts);
    m_Outcome.m_bCalibrationLost = Written.m_bCalibrationLost;
    m_Outcome.m_bOthersWrote = Written.m_bOthersWrote && Written.m_Stored.m_Values != rRead.m_Memory;
    rRead.m_StoredName = rRead.m_Name;
    rRead.m_Read = std::move(Written.m_Stored);
    rRead.m_bReadFailed = false;
    rRead.m_MemoryBefore = rRead.m_Memory;
}

CScrewTableEntry& CPreBalDatabase::ReadScrewTable(const std::string& rName) {
    auto pTable = std::make_unique<CScrewTableEntry>();
    pTable->SetName(rName);
    m_pImpl->m_ReadScrewTableName = rName;
    m_pImpl->m_ReadScrewTable = {};
    m_pImpl->m_bScrewTableSound = m_pImpl->Try("screw table \"" + rName + "\" not read", [&] {
        m_pImpl->m_ReadScrewTable =
            m_pImpl->m_Store.Read([rName](CStore& rStore) { return rStore.LoadScrewTable(rName); });
    });
    pTable->SetScrewArray(m_pImpl->m_ReadScrewTable.m_Screws);
    m_pImpl->m_pScrewTable = std::move(pTable);
    return *m_pImpl->m_pScrewTable;
}

Base::CWDArray<CScrew> CPreBalDatabase::ReadScrews(const std::string& rName) const {
    Base::CWDArray<CScrew> Screws;
    m_pImpl->Try("screws of \"" + rName + "\" not read", [&] {
        Screws =
            m_pImpl->m_Store.Read([rName](CStore& rStore) { return rStore.LoadScrewTable(rName).m_Screws; });
    });
    return Screws;
}

int CPreBalDatabase::WriteScrewTable() {
    m_pImpl->m_Outcome = {};
    if (m_pImpl->m_pScrewTable == nullptr || !m_pImpl->m_bScrewTableSound) {
        RV_ERROR(g_pLog, "no screw table written: none was read without error");
        return 0;
    }
    const CScrewTableEntry& rTable = *m_pImpl->m_pScrewTable;
    CStoredScrewTable& rRead = m_pImpl->m_ReadScrewTable;
    if (rRead.m_Revision != 0 && rTable.m_Name == m_pImpl->m_ReadScrewTableName &&
        rTable.m_Screws == rRead.m_Screws) {
        return 1;  // nothing was changed here
    }
    const CScrewTableWrite Write{rTable.m_Name, m_pImpl->m_ReadScrewTableName, rRead.m_Revision,
                                 rRead.m_Screws.IsEmpty(), rTable.m_Screws};
    return m_pImpl->Try("screw table \"" + rTable.m_Name + "\" not written", [&] {
        const auto Revision =
            m_pImpl->m_Store.Run([Write](CStore& rStore) { return rStore.WriteScrewTable(Write); });
        if (Revision) {
            m_pImpl->m_ReadScrewTableName = rTable.m_Name;
            rRead = {rTable.m_Screws, *Revision};
            return;
        }
        m_pImpl->m_Outcome.m_Conflicts.push_back("screw_table." + rTable.m_Name);
        m_pImpl->m_Outcome.m_bOthersWrote = true;
        RV_WARNING(
            g_pLog,
            "screw table \"%s\" of \"%s\" was changed here and by another console; the stored one stays",
            rTable.m_Name.c_str(), GetMachineName().c_str());
    });
}

int CPreBalDatabase::NameScrewTable(const std::string& rName) {
    if (m_pImpl->m_pScrewTable == nullptr) {
        return WriteScrewTable();
    }
    const std::string Former = m_pImpl->m_pScrewTable->m_Name;
    m_pImpl->m_pScrewTable->SetName(rName);
    const int Written = WriteScrewTable();
    if (Written == 0) {
        m_pImpl->m_pScrewTable->SetName(Former);
    }
    return Written;
}

int CPreBalDatabase::DeleteScrewTable(const std::string& rName) {
    return m_pImpl->Try("screw table \"" + rName + "\" not deleted", [&] {
        std::vector<std::string> Users =
            m_pImpl->m_Store.Run([rName](CStore& rStore) { return rStore.DeleteScrewTable(rName); });
        if (!Users.empty()) {
            m_pImpl->m_Outcome.m_Users = std::move(Users);
            throw CSqlError("configurations use it", StoreFailure::eInUse);
        }
    });
}

int CPreBalDatabase::TestAndSetDefaults() {
    CDefaultsSet Set;
    m_pImpl->Try("defaults not set", [&] {
        Set = m_pImpl->m_Store.SetDefaults();
        Set.m_bChanged |= m_pImpl->RepairScrewTableNames(Set.m_ScrewTableNames);
    });
    return Set.m_bChanged ? 1 : 0;
}

/// The configuration in memory would bring a missing name back.
bool CPreBalDatabase::Impl::RepairScrewTableNames(const std::vector<std::string>& rNames) {
    bool bChanged = false;
    const auto Repair = [&rNames, &bChanged](CPlaneCompensation& rCompensation) {
        CScrewCompensationTableEntry* const pScrew = rCompensation.m_pScrew.get();
        if (pScrew != nullptr && std::ranges::find(rNames, pScrew->GetScrewTableName()) == rNames.end()) {
            pScrew->SetScrewTableName(CDefaultScrewTable::NAME);
            bChanged = true;
        }
    };
    if (m_pConfiguration != nullptr && m_pConfiguration->m_pSinglePlane != nullptr) {
        Repair(m_pConfiguration->m_pSinglePlane->m_Compensation);
    }
    if (m_pConfiguration != nullptr && m_pConfiguration->m_pTwoPlane != nullptr) {
        Repair(m_pConfiguration->m_pTwoPlane->m_Plane1Compensation);
        Repair(m_pConfiguration->m_pTwoPlane->m_Plane2Compensation);
    }
    return bChanged;
}

std::string CPreBalDatabase::GetDefaultScrewTableName() const {
    return CDefaultScrewTable::NAME;
}

}  // namespace PreBalDB
