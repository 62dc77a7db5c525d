#include "platform/rvmdb/offline.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/rvmdb/delivery.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/patience.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storethread.h"

namespace PreBalDB {

namespace {

/// The store of a machine on the server, in a thread that may hang.
class CServerStore {
public:
    CServerStore(const std::string& rMachine, const std::string& rConnection) {
        m_Thread.Open([rMachine, rConnection] { return std::make_unique<CStore>(rMachine, rConnection); });
    }
    void Prepare() {
        m_Thread.Run([](CStore& rStore) { rStore.Prepare(); });
    }
    std::optional<CConfigurationWritten> Deliver(const CDelivery& rDelivery) {
        return m_Thread.Run([rDelivery](CStore& rStore) { return rStore.Deliver(rDelivery); });
    }

private:
    CStoreThread m_Thread;
};

/// Brings everything to the server. Throws if that is still away.
void DeliverWhatWaits(CLocalStore& rLocal, const std::string& rConnection) {
    std::unique_ptr<CServerStore> pServer;
    std::string Machine;
    DeliverAll({[&rLocal] { return rLocal.GetNext(); },
                [&](const CDelivery& rDelivery) {
                    if (pServer == nullptr || Machine != rDelivery.m_Machine) {
                        Machine = rDelivery.m_Machine;
                        pServer = std::make_unique<CServerStore>(Machine, rConnection);
                        pServer->Prepare();
                    }
                    return pServer->Deliver(rDelivery);
                },
                [&rLocal](std::int64_t Number) { rLocal.Remove(Number); }});
    if (pServer == nullptr) {
        const CServerStore IsItThere("", rConnection);
    }
}

/// Asks for the server now and then as long as it is away.
class CDeliverer {
public:
    CDeliverer(std::string File, std::string Connection)
        : m_File(std::move(File)), m_Connection(std::move(Connection)), m_Thread([this] { Work(); }) {}
    ~CDeliverer() {
        {
            const std::lock_guard Guard(m_Lock);
            m_bEnd = true;
        }
        m_Changed.notify_all();
        m_Thread.join();
    }
    CDeliverer(const CDeliverer&) = delete;
    CDeliverer& operator=(const CDeliverer&) = delete;

private:
    static constexpr std::chrono::milliseconds PERIOD{2000};

    void Work() {
        std::unique_lock Guard(m_Lock);
        while (!m_Changed.wait_for(Guard, PERIOD, [this] { return m_bEnd; })) {
            if (Offline::IsAway()) {
                Guard.unlock();
                Try();
                Guard.lock();
            }
        }
    }
    void Try();

    std::string m_File;
    std::string m_Connection;
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    bool m_bEnd = false;
    std::thread m_Thread;
};

struct CShared {
    std::mutex m_Lock;
    std::string m_File;
    Offline::CState m_State;
    std::vector<Offline::CEvent> m_Events;
    std::unique_ptr<CDeliverer> m_pDeliverer;
};

CShared& GetShared() {
    static CShared ms_Shared;
    return ms_Shared;
}

/// Unless something was added just now: whoever adds asks for the state after that, and one of the two sees
/// the other.
void SetBack(CLocalStore& rLocal) {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    if (rLocal.Count() == 0 && std::exchange(r.m_State.m_bAway, false)) {
        r.m_State.m_Why.clear();
        r.m_State.m_nConfigurations = 0;
        r.m_Events.push_back({Offline::CEvent::Kind::eBack, "", "", {}, false});
        RV_INFORMATION(g_pLog, "the server is back, and has all that waited");
    }
}

void CDeliverer::Try() {
    try {
        CLocalStore Local("", m_File);
        DeliverWhatWaits(Local, m_Connection);
        SetBack(Local);
    } catch (const std::runtime_error& rError) {
        RV_DEBUG(g_pLog, "the server is still away: %s", rError.what());
        CShared& r = GetShared();
        const std::lock_guard Guard(r.m_Lock);
        r.m_State.m_Why = rError.what();
    }
}

}  // namespace

void Offline::SetFile(const std::string& rFile) {
    CShared& r = GetShared();
    std::unique_ptr<CDeliverer> pEnds;
    {
        const std::lock_guard Guard(r.m_Lock);
        r.m_File = rFile;
        r.m_State = {};
        r.m_Events.clear();
        pEnds = std::move(r.m_pDeliverer);
    }
}

std::string Offline::GetFile() {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    return r.m_File;
}

bool Offline::IsUsed() {
    return !GetFile().empty() && CPostgresUrl::IsOne(GetDatabaseConnection());
}

Offline::CState Offline::GetState() {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    return r.m_State;
}

bool Offline::IsAway() {
    return GetState().m_bAway;
}

std::vector<Offline::CEvent> Offline::TakeEvents() {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    return std::exchange(r.m_Events, {});
}

void Offline::SetAway(const std::string& rWhy) {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    if (std::exchange(r.m_State.m_bAway, true)) {
        return;
    }
    r.m_State.m_Why = rWhy;
    r.m_Events.push_back({CEvent::Kind::eAway, rWhy, "", {}, false});
    RV_WARNING(g_pLog, "the server is away (%s); results are kept on this console's disk", rWhy.c_str());
    if (r.m_pDeliverer == nullptr) {
        r.m_pDeliverer = std::make_unique<CDeliverer>(r.m_File, GetDatabaseConnection());
    }
}

void Offline::SetWaitingConfigurations(std::size_t nCount) {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    r.m_State.m_nConfigurations = nCount;
}

void Offline::SetWaitingRuns(std::size_t nCount) {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    r.m_State.m_nRuns = nCount;
}

void Offline::AddEvent(CEvent Event) {
    CShared& r = GetShared();
    const std::lock_guard Guard(r.m_Lock);
    r.m_Events.push_back(std::move(Event));
}

}  // namespace PreBalDB
