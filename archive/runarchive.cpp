#include "archive/runarchive.h"

#include <array>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <stdexcept>
#include <utility>

#include "archive/runstore.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/timelimit.h"
#include "platform/system/eventloop.h"

/// Outlives the owner if the thread hangs.
struct CRunArchive::Shared {
    struct CTask {
        std::function<void(CRunStore&)> m_Do;
        std::function<void(const std::string&)> m_Failed;
        std::chrono::milliseconds m_Limit;  ///< for a server
    };
    struct CRun {
        CRunRecord m_Record;    ///< as it is to be kept
        bool m_bWaits = false;  ///< to be written
        CRunStore::CProgress m_Written;
        bool m_bUncertain = false;                ///< the last writing failed: nobody knows how far it got
        const CRunStore* m_pWrittenTo = nullptr;  ///< of m_Written
    };

    std::string m_Connection;
    std::string m_LocalFile;
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    std::deque<CTask> m_Tasks;
    bool m_bBusy = false;
    bool m_bEnd = false;    ///< wanted
    bool m_bEnded = false;  ///< reached
    std::map<std::string, CRun> m_Runs;
    std::string m_Trouble;
    /// Null when nobody is there any more to be told.
    IFEventLoop* m_pLoop = nullptr;
    /// Made, used and destroyed by the thread; interrupted by the owner, under the lock.
    std::unique_ptr<CRunStore> m_pStore;
    /// Runs that wait for the server.
    std::unique_ptr<CRunStore> m_pLocal;
    bool m_bRunsWait = false;
    bool m_bLookForRuns = false;  ///< that wait since an earlier time

    void KeepRun(const std::string& rMark, CRunStore& rStore);
    void OpenStore();
    void CloseStore();
    void Do(const CTask& rTask);
    void DoOnServer(const std::function<void(CRunStore&)>& rDo, std::chrono::milliseconds Limit);
    CRunStore& GetLocal();
    void CountWaiting();
    void Deliver();
    void DeliverRun(CRunStore& rServer, std::int64_t Id, const std::string& rMark);
};

namespace {

/// A run is written in less; what a person asks for may take longer.
constexpr std::chrono::milliseconds KEEP_LIMIT{3000};
constexpr std::chrono::milliseconds ASK_LIMIT{30000};
/// Between two looks whether the server is back.
constexpr std::chrono::milliseconds PERIOD{1000};

/// Whether what was thrown means that the server is away.
template <typename Error>
bool IsAway(const Error& rError) {
    return PreBalDB::IsAway(rError.GetCause());
}

}  // namespace

void CRunArchive::Shared::KeepRun(const std::string& rMark, CRunStore& rStore) {
    std::unique_lock Guard(m_Lock);
    CRun& rRun = m_Runs[rMark];
    if (!std::exchange(rRun.m_bWaits, false)) {
        return;  // written with an earlier state
    }
    const CRunRecord Record = rRun.m_Record;
    CRunStore::CProgress Written = rRun.m_Written;
    const bool bUncertain = std::exchange(rRun.m_bUncertain, true) || rRun.m_pWrittenTo != &rStore;
    Guard.unlock();
    if (bUncertain) {
        Written = rStore.FindProgress(rMark);
    }
    Written = rStore.Write(Record, rMark, Written);
    Guard.lock();
    rRun.m_Written = Written;
    rRun.m_pWrittenTo = &rStore;
    rRun.m_bUncertain = false;
    if (Written.m_bEnded && !rRun.m_bWaits) {
        rRun.m_Record = CRunRecord();  // nothing more is written of it
    }
}

void CRunArchive::Shared::OpenStore() {
    if (m_pStore != nullptr) {
        return;
    }
    auto pStore = std::make_unique<CRunStore>(m_Connection, CRunStore::Opening::eOnlyConnect);
    {
        const std::lock_guard Guard(m_Lock);
        m_pStore = std::move(pStore);
    }
    try {
        m_pStore->Prepare();
    } catch (...) {
        CloseStore();
        throw;
    }
}

/// The next try connects anew.
void CRunArchive::Shared::CloseStore() {
    std::unique_lock Guard(m_Lock);
    const std::unique_ptr<CRunStore> pGone = std::move(m_pStore);
    Guard.unlock();
}

void CRunArchive::Shared::DoOnServer(const std::function<void(CRunStore&)>& rDo,
                                     std::chrono::milliseconds Limit) {
    try {
        const PreBalDB::CTimeLimit Guard(Limit, [this] {
            const std::lock_guard Lock(m_Lock);
            if (m_pStore != nullptr) {
                m_pStore->Interrupt();
            }
        });
        OpenStore();
        rDo(*m_pStore);
    } catch (...) {
        CloseStore();
        throw;
    }
}

CRunStore& CRunArchive::Shared::GetLocal() {
    if (m_pLocal == nullptr) {
        m_pLocal = std::make_unique<CRunStore>("sqlite:" + m_LocalFile);
    }
    return *m_pLocal;
}

void CRunArchive::Shared::CountWaiting() {
    const std::size_t nWaiting = GetLocal().GetMarks().size();
    m_bRunsWait = nWaiting != 0;
    PreBalDB::Offline::SetWaitingRuns(nWaiting);
}

void CRunArchive::Shared::Do(const CTask& rTask) {
    if (m_LocalFile.empty()) {
        OpenStore();
        rTask.m_Do(*m_pStore);
        return;
    }
    if (!PreBalDB::Offline::IsAway()) {
        try {
            DoOnServer(rTask.m_Do, rTask.m_Limit);
            return;
        } catch (const PreBalDB::CSqlError& rError) {
            if (!IsAway(rError)) {
                throw;
            }
            PreBalDB::Offline::SetAway(rError.what());
        } catch (const PreBalDB::CDatabaseError& rError) {
            if (!IsAway(rError)) {
                throw;
            }
            PreBalDB::Offline::SetAway(rError.what());
        }
    }
    {
        // What failed on the server is to be done here.
        const std::lock_guard Guard(m_Lock);
        for (auto& [rMark, rRun] : m_Runs) {
            rRun.m_bWaits |= rRun.m_bUncertain;
        }
    }
    rTask.m_Do(GetLocal());
    CountWaiting();
}

void CRunArchive::Shared::DeliverRun(CRunStore& rServer, std::int64_t Id, const std::string& rMark) {
    CRunStore& rLocal = GetLocal();
    CRunStore::CProgress Written = rServer.FindProgress(rMark);
    if (const std::optional<CRunRecord> Record = rLocal.Load(Id)) {
        Written = rServer.Write(*Record, rMark, Written);
    }
    for (const std::string& rPicture : rLocal.GetPictures(Id)) {
        if (const auto Png = rLocal.LoadPicture(Id, rPicture)) {
            rServer.WritePicture(Written.m_Id, rPicture, *Png);
        }
    }
    const std::lock_guard Guard(m_Lock);
    if (const auto Found = m_Runs.find(rMark); Found != m_Runs.end()) {
        Found->second.m_Written = Written;
        Found->second.m_pWrittenTo = &rServer;
    }
}

void CRunArchive::Shared::Deliver() {
    try {
        CountWaiting();
        if (!m_bRunsWait || PreBalDB::Offline::IsAway()) {
            return;
        }
        for (const auto& [Id, Mark] : GetLocal().GetMarks()) {
            DoOnServer(
                [&, Number = Id, &rMark = Mark](CRunStore& rServer) { DeliverRun(rServer, Number, rMark); },
                KEEP_LIMIT);
            // Only now: what is brought twice is written once, by its mark.
            GetLocal().Remove(std::vector{Id});
        }
        CountWaiting();
    } catch (const std::runtime_error& rError) {
        RV_WARNING(PreBalDB::g_pLog, "archive: runs wait for the server: %s", rError.what());
    }
}

CRunArchive::CRunArchive(std::string Connection, std::string LocalFile)
    : m_pShared(std::make_shared<Shared>()) {
    m_pShared->m_Connection = std::move(Connection);
    m_pShared->m_LocalFile = std::move(LocalFile);
    m_pShared->m_pLoop = &IFEventLoop::Current();
}

CRunArchive::~CRunArchive() {
    if (!m_Thread.joinable()) {
        return;
    }
    const bool bDone = Finish(LIMIT);
    std::unique_lock Guard(m_pShared->m_Lock);
    m_pShared->m_pLoop = nullptr;
    m_pShared->m_bEnd = true;
    m_pShared->m_Tasks.clear();
    if (!bDone && m_pShared->m_pStore != nullptr) {
        m_pShared->m_pStore->Interrupt();
    }
    m_pShared->m_Changed.notify_all();
    constexpr std::chrono::milliseconds AFTER_INTERRUPT{1000};
    const bool bEnded =
        m_pShared->m_Changed.wait_for(Guard, AFTER_INTERRUPT, [this] { return m_pShared->m_bEnded; });
    Guard.unlock();
    if (bEnded) {
        m_Thread.join();
    } else {
        m_Thread.detach();
    }
}

std::string CRunArchive::MakeMark() {
    std::random_device Random;
    std::array<char, 33> Text{};
    std::snprintf(Text.data(), Text.size(), "%08x%08x%08x%08x", Random(), Random(), Random(), Random());
    return Text.data();
}

void CRunArchive::Work(const std::shared_ptr<Shared>& rShared) {
    Shared& r = *rShared;
    std::unique_lock Guard(r.m_Lock);
    while (true) {
        const auto HasWork = [&r] { return !r.m_Tasks.empty() || r.m_bEnd || r.m_bLookForRuns; };
        const bool bInTime = !r.m_bRunsWait || r.m_Changed.wait_for(Guard, PERIOD, HasWork);
        if (bInTime) {
            r.m_Changed.wait(Guard, HasWork);
        }
        if (!bInTime || std::exchange(r.m_bLookForRuns, false)) {
            r.m_bBusy = true;
            Guard.unlock();
            r.Deliver();
            Guard.lock();
            r.m_bBusy = false;
            r.m_Changed.notify_all();
            continue;
        }
        if (r.m_Tasks.empty()) {
            break;
        }
        const Shared::CTask Task = std::move(r.m_Tasks.front());
        r.m_Tasks.pop_front();
        r.m_bBusy = true;
        Guard.unlock();
        std::string Trouble;
        try {
            r.Do(Task);
        } catch (const std::runtime_error& rError) {
            Trouble = rError.what();
        }
        Guard.lock();
        if (!Trouble.empty() && Task.m_Failed) {
            if (r.m_pLoop != nullptr) {
                r.m_pLoop->Post([Failed = Task.m_Failed, Trouble] { Failed(Trouble); });
            }
        } else if (!Trouble.empty()) {
            RV_ERROR(PreBalDB::g_pLog, "archive: %s", Trouble.c_str());
            r.m_Trouble = r.m_Trouble.empty() ? Trouble : r.m_Trouble;
        }
        r.m_bBusy = false;
        r.m_Changed.notify_all();
    }
    std::unique_ptr<CRunStore> pStore = std::move(r.m_pStore);
    Guard.unlock();
    pStore.reset();
    r.m_pLocal.reset();
    Guard.lock();
    r.m_bEnded = true;
    r.m_Changed.notify_all();
}

void CRunArchive::StartThread() {
    if (!m_Thread.joinable()) {
        m_Thread = std::thread([pShared = m_pShared] { Work(pShared); });
    }
}

void CRunArchive::Add(std::function<void(CRunStore&)> Do, std::function<void(const std::string&)> Failed) {
    StartThread();
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        const std::chrono::milliseconds Limit = Failed ? ASK_LIMIT : KEEP_LIMIT;
        m_pShared->m_Tasks.push_back({std::move(Do), std::move(Failed), Limit});
    }
    m_pShared->m_Changed.notify_all();
}

void CRunArchive::Keep(const std::string& rMark, const CRunRecord& rRecord) {
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        Shared::CRun& rRun = m_pShared->m_Runs[rMark];
        rRun.m_Record = rRecord;
        rRun.m_bWaits = true;
    }
    AddKeep(rMark);
}

void CRunArchive::AddKeep(const std::string& rMark) {
    // The thread holds what it works on itself: it may outlive this.
    Add([pShared = m_pShared.get(), rMark](CRunStore& rStore) { pShared->KeepRun(rMark, rStore); }, nullptr);
}

void CRunArchive::DeliverEarlier() {
    StartThread();
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        m_pShared->m_bLookForRuns = true;
    }
    m_pShared->m_Changed.notify_all();
}

void CRunArchive::KeepPicture(const std::string& rMark, const std::string& rName,
                              std::vector<unsigned char> Png) {
    Add(
        [pShared = m_pShared.get(), rMark, rName, Png = std::move(Png)](CRunStore& rStore) {
            std::int64_t Id = 0;
            {
                const std::lock_guard Guard(pShared->m_Lock);
                Shared::CRun& rRun = pShared->m_Runs[rMark];
                Id = rRun.m_pWrittenTo == &rStore ? rRun.m_Written.m_Id : 0;
                rRun.m_bWaits |= Id == 0 && !rRun.m_Written.m_bEnded;
            }
            if (Id == 0) {
                pShared->KeepRun(rMark, rStore);
                Id = rStore.FindProgress(rMark).m_Id;
            }
            if (Id != 0) {
                rStore.WritePicture(Id, rName, Png);
            }
        },
        nullptr);
}

std::int64_t CRunArchive::GetId(const std::string& rMark) const {
    const std::lock_guard Guard(m_pShared->m_Lock);
    const auto Found = m_pShared->m_Runs.find(rMark);
    return Found == m_pShared->m_Runs.end() ? 0 : Found->second.m_Written.m_Id;
}

void CRunArchive::Ask(std::function<std::function<void()>(CRunStore&)> Do,
                      std::function<void(const std::string&)> Failed) {
    Add(
        [pShared = m_pShared.get(), Do = std::move(Do)](CRunStore& rStore) {
            std::function<void()> Then = Do(rStore);
            const std::lock_guard Guard(pShared->m_Lock);
            if (pShared->m_pLoop != nullptr && Then) {
                pShared->m_pLoop->Post(std::move(Then));
            }
        },
        std::move(Failed));
}

bool CRunArchive::Finish(std::chrono::milliseconds Limit) {
    const auto End = std::chrono::steady_clock::now() + Limit;
    if (!WaitUntil(End)) {
        return false;
    }
    // What another program's lock kept from being written has its second try.
    std::vector<std::string> Marks;
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        for (auto& [rMark, rRun] : m_pShared->m_Runs) {
            if (rRun.m_bUncertain) {
                rRun.m_bWaits = true;
                Marks.push_back(rMark);
            }
        }
    }
    for (const std::string& rMark : Marks) {
        AddKeep(rMark);
    }
    return WaitUntil(End);
}

bool CRunArchive::WaitUntil(std::chrono::steady_clock::time_point End) {
    std::unique_lock Guard(m_pShared->m_Lock);
    return m_pShared->m_Changed.wait_until(Guard, End, [this] {
        return m_pShared->m_Tasks.empty() && !m_pShared->m_bBusy && !m_pShared->m_bLookForRuns;
    });
}

std::string CRunArchive::TakeTrouble() {
    const std::lock_guard Guard(m_pShared->m_Lock);
    return std::exchange(m_pShared->m_Trouble, {});
}
