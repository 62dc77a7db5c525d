#pragma once
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

namespace PreBalDB {

class CStore;

/// A store in a thread of its own, for a caller who can't wait for ever: a disk that hangs, or a server that
/// has frozen, gives no answer whatever its time limits. The caller waits as long as its CPatience lasts;
/// then the work is given up, and nothing of it is committed. Work gets all that it needs by value, and hands
/// its result back by value: a caller that has given up is not there any more when it ends.
class CStoreThread {
public:
    /// Reserve: so much of the patience is left to others.
    explicit CStoreThread(std::chrono::milliseconds Reserve = std::chrono::milliseconds(0));
    /// Waits for work that was given up as long as patience lasts; a thread that hangs beyond that is left to
    /// itself.
    ~CStoreThread();
    CStoreThread(const CStoreThread&) = delete;
    CStoreThread& operator=(const CStoreThread&) = delete;

    /// Makes the store there, in place of none. What the making throws is thrown here.
    void Open(std::function<std::unique_ptr<CStore>()> Make);
    /// Does work on the store. What it throws is thrown here; CSqlError if no answer came in time.
    template <typename Work>
    std::invoke_result_t<Work, CStore&> Run(Work Do) {
        using Result = std::invoke_result_t<Work, CStore&>;
        auto pTask = std::make_shared<std::packaged_task<Result(CStore&)>>(std::move(Do));
        std::future<Result> Answer = pTask->get_future();
        RunOnStore([pTask](CStore& rStore) { (*pTask)(rStore); });
        return Answer.get();
    }

private:
    struct Shared;
    using Task = std::function<void(Shared&)>;
    /// What the thread does, from its beginning to its end.
    static void Work(Shared& rShared);
    void RunOnStore(std::function<void(CStore&)> Do);
    /// Until the task, which doesn't throw, has been done.
    void RunAndWait(Task Do);
    /// Throws unless the task is done.
    void GiveUp();
    /// As long as patience lasts; the condition is asked under the lock. Whether it holds.
    bool WaitFor(const std::function<bool()>& rCondition);

    std::chrono::milliseconds m_Reserve;
    std::shared_ptr<Shared> m_pShared;
    std::thread m_Thread;
};

}  // namespace PreBalDB
