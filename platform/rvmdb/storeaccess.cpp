#include "platform/rvmdb/storeaccess.h"

#include "platform/rvmdb/delivery.h"
#include "platform/rvmdb/log.h"

namespace PreBalDB {

CStoreAccess::CStoreAccess(const std::string& rMachineName, const std::string& rConnection)
    : m_MachineName(rMachineName),
      m_Connection(rConnection),
      m_Store(Offline::IsUsed() ? LOCAL_SHARE : std::chrono::milliseconds(0)) {
    if (Offline::IsUsed()) {
        Open(Offline::GetFile());
    } else {
        OpenServer();
    }
}

void CStoreAccess::OpenServer() {
    m_Store.Open(
        [Machine = m_MachineName, To = m_Connection] { return std::make_unique<CStore>(Machine, To); });
    m_Store.Run([](CStore& rStore) { rStore.Prepare(); });
    m_bOpen = true;
}

void CStoreAccess::OpenLater() {
    if (m_bOpen) {
        return;
    }
    try {
        OpenServer();
    } catch (const CDatabaseError& rError) {
        throw CSqlError(rError.what(), rError.GetCause());
    }
}

void CStoreAccess::Open(const std::string& rFile) {
    m_pLocal = std::make_unique<CStoreThread>();
    try {
        m_pLocal->Open(
            [Machine = m_MachineName, rFile] { return std::make_unique<CLocalStore>(Machine, rFile); });
    } catch (const std::runtime_error& rError) {
        // Without a copy the server is all there is.
        RV_ERROR(g_pLog, "no copy on this console's disk: %s", rError.what());
        m_pLocal.reset();
        OpenServer();
        return;
    }
    const std::size_t nWaiting = RunLocally([](CLocalStore& rLocal) { return rLocal.Count(); });
    if (!Offline::IsAway()) {
        try {
            OpenServer();
            if (nWaiting != 0) {
                Deliver(0, {});  // of an earlier time
            }
            Copy();
            return;
        } catch (const CDatabaseError& rError) {
            if (!PreBalDB::IsAway(rError.GetCause())) {
                throw;
            }
            Offline::SetAway(rError.what());
        } catch (const CSqlError& rError) {
            NoteAway(rError);
        }
    }
    Offline::SetWaitingConfigurations(nWaiting);
    if (!RunLocally([](CLocalStore& rLocal) { return rLocal.HasMachine(); })) {
        throw CDatabaseError("the server is away (" + Offline::GetState().m_Why +
                                 "), and nothing of this machine was ever read from it",
                             StoreFailure::eUnreachable);
    }
}

void CStoreAccess::NoteAway(const CSqlError& rError) {
    if (!PreBalDB::IsAway(rError.GetCause())) {
        throw CSqlError(rError);
    }
    Offline::SetAway(rError.what());
}

void CStoreAccess::Copy() {
    if (m_pLocal == nullptr || Offline::IsAway()) {
        return;
    }
    try {
        std::vector<CTableRows> Tables = m_Store.Run([](CStore& rStore) { return rStore.LoadMachine(); });
        if (Tables == m_Copied) {
            return;
        }
        RunLocally([Tables](CLocalStore& rLocal) { rLocal.PutMachine(Tables); });
        m_Copied = std::move(Tables);
    } catch (const CSqlError& rError) {
        // What was asked for has been done; the copy is one that is older.
        RV_WARNING(g_pLog, "no new copy of \"%s\" on this console's disk: %s", m_MachineName.c_str(),
                   rError.what());
    }
}

std::optional<CStoredConfiguration> CStoreAccess::LoadConfiguration(const std::string& rName) {
    std::optional<CStoredConfiguration> Stored =
        Read([rName](CStore& rStore) { return rStore.LoadConfiguration(rName); });
    if (Stored && m_pLocal != nullptr && Offline::IsAway()) {
        Stored->m_Revision = UNKNOWN_REVISION;
    }
    Copy();
    return Stored;
}

CLoadedNames CStoreAccess::LoadProcessNames(CPreBalDatabase::BalancingMode Mode,
                                            CTypeBase::AffectedPlane Plane, std::uint8_t Sensor1,
                                            std::uint8_t Sensor2) {
    CLoadedNames Names =
        Read([=](CStore& rStore) { return rStore.LoadProcessNames(Mode, Plane, Sensor1, Sensor2); });
    Copy();
    return Names;
}

CDefaultsSet CStoreAccess::SetDefaults() {
    if (m_pLocal != nullptr && Offline::IsAway()) {
        return {false, RunLocally([](CLocalStore& rLocal) { return rLocal.LoadScrewTableNames(); }).m_Names};
    }
    return Run([](CStore& rStore) { return rStore.SetDefaults(); });
}

CConfigurationWritten CStoreAccess::Deliver(std::int64_t Number, const CConfigurationWrite& rWrite) {
    const CDeliveryMeans Means{
        [this] { return RunLocally([](CLocalStore& rLocal) { return rLocal.GetNext(); }); },
        [this](const CDelivery& rDelivery) {
            if (rDelivery.m_Machine == m_MachineName) {
                return Run([rDelivery](CStore& rStore) { return rStore.Deliver(rDelivery); });
            }
            CStoreThread Other(LOCAL_SHARE);
            Other.Open([Machine = rDelivery.m_Machine, To = m_Connection] {
                return std::make_unique<CStore>(Machine, To);
            });
            Other.Run([](CStore& rStore) { rStore.Prepare(); });
            return Other.Run([rDelivery](CStore& rStore) { return rStore.Deliver(rDelivery); });
        },
        [this](std::int64_t Done) { RunLocally([Done](CLocalStore& rLocal) { rLocal.Remove(Done); }); }};
    std::optional<CConfigurationWritten> Written;
    try {
        Written = DeliverAll(Means, Number);
    } catch (const CSqlError& rError) {
        if (rError.GetCause() != StoreFailure::eUnreachable) {
            throw;
        }
        // The connection was lost, the server may be there: a write that had arrived isn't done again.
        Written = DeliverAll(Means, Number);
    }
    return Number == 0 || Written ? Written.value_or(CConfigurationWritten()) : FindWritten(rWrite);
}

/// Of a write that had arrived before its connection was lost: what became of it can only be seen.
CConfigurationWritten CStoreAccess::FindWritten(const CConfigurationWrite& rWrite) {
    CConfigurationWritten Written;
    Written.m_Stored = Run([Name = rWrite.m_Name](CStore& rStore) {
                           return rStore.LoadConfiguration(Name);
                       }).value_or(CStoredConfiguration{rWrite.m_Memory, UNKNOWN_REVISION});
    Written.m_bOthersWrote = Written.m_Stored.m_Values != rWrite.m_Memory;
    for (const auto& [rField, rValue] : rWrite.m_Memory) {
        const auto Stored = Written.m_Stored.m_Values.find(rField);
        Written.m_bCalibrationLost |= ConfigurationFields::GetRole(rField) == CProperty::Role::eCalibration &&
                                      (Stored == Written.m_Stored.m_Values.end() || Stored->second != rValue);
    }
    return Written;
}

CConfigurationWritten CStoreAccess::WriteConfiguration(const CConfigurationWrite& rWrite) {
    const auto Directly = [this, &rWrite] {
        return Run([rWrite](CStore& rStore) { return rStore.WriteConfiguration(rWrite); });
    };
    // A further name may be another's already: only the store can tell.
    if (m_pLocal == nullptr || rWrite.m_Name != rWrite.m_StoredName) {
        return Directly();
    }
    std::int64_t Number = 0;
    try {
        Number = RunLocally([rWrite](CLocalStore& rLocal) { return rLocal.Add(rWrite); });
    } catch (const CSqlError& rError) {
        RV_ERROR(g_pLog, "not kept on this console's disk: %s", rError.what());
        return Directly();
    }
    if (!Offline::IsAway()) {
        try {
            CConfigurationWritten Written = Deliver(Number, rWrite);
            Copy();
            return Written;
        } catch (const CSqlError& rError) {
            if (!PreBalDB::IsAway(rError.GetCause())) {
                RunLocally([Number](CLocalStore& rLocal) { rLocal.Remove(Number); });
                throw;
            }
            Offline::SetAway(rError.what());
        }
    }
    return WriteLocally(rWrite);
}

CConfigurationWritten CStoreAccess::WriteLocally(const CConfigurationWrite& rWrite) {
    CConfigurationWritten Written;
    Written.m_Stored.m_Values = rWrite.m_Memory;
    try {
        Written = RunLocally([rWrite](CLocalStore& rLocal) {
            Offline::SetWaitingConfigurations(rLocal.Count());
            return rLocal.WriteConfiguration(rWrite);
        });
    } catch (const CSqlError& rError) {
        // It stands in the queue, which is what counts.
        RV_WARNING(g_pLog, "the copy on this console's disk stays as it was: %s", rError.what());
    }
    Written.m_Stored.m_Revision = UNKNOWN_REVISION;
    Written.m_bDelivered = false;
    RV_WARNING(g_pLog,
               "configuration \"%s\" of \"%s\" is kept on this console's disk, and waits for the server",
               rWrite.m_Name.c_str(), m_MachineName.c_str());
    m_Copied.clear();
    return Written;
}

}  // namespace PreBalDB
