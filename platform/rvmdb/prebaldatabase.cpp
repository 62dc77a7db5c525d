#include "platform/rvmdb/prebaldatabase.h"

#include <algorithm>
#include <utility>

#include "platform/rvmdb/databaseimpl.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/newentrydefaults.h"
#include "platform/rvmdb/schema.h"

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

}  // namespace

void SetDatabaseConnection(std::string NewConnection) {
    Connection = std::move(NewConnection);
}

std::string GetDatabaseConnection() {
    return Connection;
}

CPreBalDatabase::Impl::Impl(CPreBalDatabase& rOwner, const std::string& rMachineName)
    : m_rOwner(rOwner), m_MachineName(rMachineName), m_Connection(Connection) {
    Schema::Prepare(m_Connection);
    try {
        const std::vector<CDirectSQL::CValue> Key = {m_MachineName};
        if (m_Connection.Query("SELECT 1 FROM machine WHERE name = ?", Key).empty()) {
            m_Connection.Execute("INSERT INTO machine (name) VALUES (?) ON CONFLICT DO NOTHING", Key);
        }
        SetDefaults();
    } catch (const CSqlError& rError) {
        throw CDatabaseError(m_Connection.GetUnusableText(rError));
    }
}

CPreBalDatabase::CPreBalDatabase(const std::string& rMachineName)
    : m_pImpl(std::make_unique<Impl>(*this, rMachineName)) {
    OpenMachineNames.push_back(rMachineName);
}

CPreBalDatabase::~CPreBalDatabase() {
    // Of several databases of one key the latest goes first, as scopes end.
    const auto Found = std::find(OpenMachineNames.rbegin(), OpenMachineNames.rend(), m_pImpl->m_MachineName);
    OpenMachineNames.erase(std::next(Found).base());
}

const std::string& CPreBalDatabase::GetMachineName() const {
    return m_pImpl->m_MachineName;
}

std::vector<std::string> CPreBalDatabase::GetOpenMachineNames() {
    return OpenMachineNames;
}

Base::CStringArray CPreBalDatabase::GetProcessNames(BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                                    std::uint8_t Sensor1, std::uint8_t Sensor2) const {
    try {
        return ToArray(m_pImpl->LoadProcessNames(Mode, Plane, Sensor1, Sensor2));
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "names of configurations not read: %s", rError.what());
        return {};
    }
}

Base::CStringArray CPreBalDatabase::GetScrewTableNames() const {
    try {
        CTransaction Transaction(m_pImpl->m_Connection, CTransaction::eReading);
        return ToArray(m_pImpl->LoadScrewTableNames());
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "names of screw tables not read: %s", rError.what());
        return {};
    }
}

CPreBalBaseTableEntry& CPreBalDatabase::ReadConfiguration(const std::string& rName) {
    // rName may be the name within the entry that goes.
    m_pImpl->m_StoredName = rName;
    const std::string& Name = m_pImpl->m_StoredName;
    m_pImpl->m_bConfigurationSound = false;
    std::unique_ptr<CPreBalBaseTableEntry> pEntry;
    try {
        pEntry = m_pImpl->LoadConfiguration(Name);
        m_pImpl->m_bConfigurationSound = true;
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "configuration \"%s\" of \"%s\" not read: %s", Name.c_str(),
                 GetMachineName().c_str(), rError.what());
    }
    m_pImpl->m_pConfiguration = pEntry != nullptr ? std::move(pEntry) : m_pImpl->NewConfiguration(Name);
    return *m_pImpl->m_pConfiguration;
}

int CPreBalDatabase::WriteConfiguration() {
    if (m_pImpl->m_pConfiguration == nullptr || !m_pImpl->m_bConfigurationSound) {
        RV_ERROR(g_pLog, "no configuration written: none was read without error");
        return 0;
    }
    const CPreBalBaseTableEntry& rEntry = *m_pImpl->m_pConfiguration;
    try {
        m_pImpl->StoreConfiguration(rEntry, m_pImpl->m_StoredName);
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "configuration \"%s\" of \"%s\" not written: %s", rEntry.GetProcessName().c_str(),
                 GetMachineName().c_str(), rError.what());
        return 0;
    }
    m_pImpl->m_StoredName = rEntry.GetProcessName();
    return 1;
}

CScrewTableEntry& CPreBalDatabase::ReadScrewTable(const std::string& rName) {
    auto pTable = std::make_unique<CScrewTableEntry>();
    pTable->SetName(rName);
    m_pImpl->m_bScrewTableSound = false;
    try {
        CTransaction Transaction(m_pImpl->m_Connection, CTransaction::eReading);
        pTable->SetScrewArray(m_pImpl->LoadScrews(rName));
        m_pImpl->m_bScrewTableSound = true;
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "screw table \"%s\" of \"%s\" not read: %s", rName.c_str(), GetMachineName().c_str(),
                 rError.what());
    }
    m_pImpl->m_pScrewTable = std::move(pTable);
    return *m_pImpl->m_pScrewTable;
}

Base::CWDArray<CScrew> CPreBalDatabase::ReadScrews(const std::string& rName) const {
    try {
        CTransaction Transaction(m_pImpl->m_Connection, CTransaction::eReading);
        return m_pImpl->LoadScrews(rName);
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "screws of \"%s\" of \"%s\" not read: %s", rName.c_str(), GetMachineName().c_str(),
                 rError.what());
        return {};
    }
}

int CPreBalDatabase::WriteScrewTable() {
    if (m_pImpl->m_pScrewTable == nullptr || !m_pImpl->m_bScrewTableSound) {
        RV_ERROR(g_pLog, "no screw table written: none was read without error");
        return 0;
    }
    const CScrewTableEntry& rTable = *m_pImpl->m_pScrewTable;
    try {
        CTransaction Transaction(m_pImpl->m_Connection, CTransaction::eWriting);
        m_pImpl->StoreScrews(rTable.m_Name, rTable.m_Screws);
        Transaction.Commit();
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "screw table \"%s\" of \"%s\" not written: %s", rTable.m_Name.c_str(),
                 GetMachineName().c_str(), rError.what());
        return 0;
    }
    return 1;
}

int CPreBalDatabase::TestAndSetDefaults() {
    try {
        return m_pImpl->SetDefaults() ? 1 : 0;
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "defaults of \"%s\" not set: %s", GetMachineName().c_str(), rError.what());
        return 0;
    }
}

std::string CPreBalDatabase::GetDefaultScrewTableName() const {
    return CNewEntryDefaults::eScrewTableName;
}

}  // namespace PreBalDB
