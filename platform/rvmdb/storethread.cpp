#include "platform/rvmdb/storethread.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/patience.h"
#include "platform/rvmdb/store.h"

namespace PreBalDB {

/// Outlives the owner if the thread hangs.
struct CStoreThread::Shared {
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    Task m_Task;            ///< to be done, while m_bBusy
    bool m_bBusy = false;   ///< until it is done
    bool m_bEnd = false;    ///< wanted
    bool m_bEnded = false;  ///< reached
    /// Made, used and destroyed by the thread; interrupted by the owner, under the lock.
    std::unique_ptr<CStore> m_pStore;
};

CStoreThread::CStoreThread(std::chrono::milliseconds Reserve)
    : m_Reserve(Reserve), m_pShared(std::make_shared<Shared>()) {
    m_Thread = std::thread([pShared = m_pShared] { Work(*pShared); });
}

CStoreThread::~CStoreThread() {
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        m_pShared->m_bEnd = true;
    }
    m_pShared->m_Changed.notify_all();
    if (WaitFor([this] { return m_pShared->m_bEnded; })) {
        m_Thread.join();
    } else {
        m_Thread.detach();
    }
}

void CStoreThread::Work(Shared& rShared) {
    std::unique_lock Guard(rShared.m_Lock);
    while (true) {
        rShared.m_Changed.wait(Guard, [&rShared] { return rShared.m_bBusy || rShared.m_bEnd; });
        if (!rShared.m_bBusy) {
            break;
        }
        const Task Do = std::exchange(rShared.m_Task, nullptr);
        Guard.unlock();
        Do(rShared);
        Guard.lock();
        rShared.m_bBusy = false;
        rShared.m_Changed.notify_all();
    }
    std::unique_ptr<CStore> pStore = std::move(rShared.m_pStore);
    Guard.unlock();
    pStore.reset();
    Guard.lock();
    rShared.m_bEnded = true;
    rShared.m_Changed.notify_all();
}

void CStoreThread::Open(std::function<std::unique_ptr<CStore>()> Make) {
    auto pMade = std::make_shared<std::promise<void>>();
    std::future<void> Answer = pMade->get_future();
    RunAndWait([pMade, Make = std::move(Make)](Shared& rShared) {
        try {
            std::unique_ptr<CStore> pStore = Make();
            const std::lock_guard Guard(rShared.m_Lock);
            rShared.m_pStore = std::move(pStore);
            pMade->set_value();
        } catch (...) {
            pMade->set_exception(std::current_exception());
        }
    });
    Answer.get();
}

void CStoreThread::RunOnStore(std::function<void(CStore&)> Do) {
    RunAndWait([Do = std::move(Do)](Shared& rShared) {
        rShared.m_pStore->Resume();
        Do(*rShared.m_pStore);
    });
}

void CStoreThread::RunAndWait(Task Do) {
    const auto IsIdle = [this] { return !m_pShared->m_bBusy; };
    // What was given up before takes its time to end.
    if (!WaitFor(IsIdle)) {
        throw CSqlError("the answer to an earlier question is still missing", StoreFailure::eNoAnswer);
    }
    {
        const std::lock_guard Guard(m_pShared->m_Lock);
        m_pShared->m_Task = std::move(Do);
        m_pShared->m_bBusy = true;
    }
    m_pShared->m_Changed.notify_all();
    if (!WaitFor(IsIdle)) {
        GiveUp();
    }
}

void CStoreThread::GiveUp() {
    const std::lock_guard Guard(m_pShared->m_Lock);
    if (!m_pShared->m_bBusy) {
        return;  // done at the last moment
    }
    if (m_pShared->m_pStore != nullptr) {
        m_pShared->m_pStore->Interrupt();
    }
    throw CSqlError(
        "no answer within " + std::to_string((CPatience::LIMIT - m_Reserve).count() / 1000) + " s",
        StoreFailure::eNoAnswer);
}

bool CStoreThread::WaitFor(const std::function<bool()>& rCondition) {
    const auto Begin = std::chrono::steady_clock::now();
    std::unique_lock Guard(m_pShared->m_Lock);
    const bool bReached = m_pShared->m_Changed.wait_for(Guard, CPatience::GetRest() - m_Reserve, rCondition);
    CPatience::Spend(std::chrono::steady_clock::now() - Begin);
    return bReached;
}

}  // namespace PreBalDB
