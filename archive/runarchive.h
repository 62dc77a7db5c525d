#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "archive/runrecord.h"

class CRunStore;

/// The archive as a console uses it: everything is done in a thread of its own, one thing after the other, so
/// that no disk and no server holds up a run or a window. In contrast to the store of the configurations
/// (PreBalDB::CStoreThread) nobody waits for an answer. Belongs to the window thread.
class CRunArchive {
public:
    /// The store is opened when it is needed first. LocalFile: on this computer's own disk, for a store on a
    /// server; while that is away runs are kept and found there, and are brought to the server, each once,
    /// when it is back (PreBalDB::Offline).
    explicit CRunArchive(std::string Connection, std::string LocalFile = {});
    /// Gives up what isn't done within the limit of Finish; a thread that hangs is left to itself.
    ~CRunArchive();
    CRunArchive(const CRunArchive&) = delete;
    CRunArchive& operator=(const CRunArchive&) = delete;

    /// A mark for a new run, which no other has.
    static std::string MakeMark();

    /// Keeps a run as it stands: writes what it has more than when it was kept last. What can't be written
    /// now is written with the next one.
    void Keep(const std::string& rMark, const CRunRecord& rRecord);
    /// A picture of a run that has been kept; the one of that name.
    void KeepPicture(const std::string& rMark, const std::string& rName, std::vector<unsigned char> Png);
    /// The run's number in the archive; 0 as long as nothing of it is written.
    std::int64_t GetId(const std::string& rMark) const;

    /// Brings the runs to the server that an earlier console couldn't.
    void DeliverEarlier();

    /// Does work on the store; what it returns is then called on the loop of the window thread, unless the
    /// archive is gone. On failure Failed is, with why.
    void Ask(std::function<std::function<void()>(CRunStore&)> Work,
             std::function<void(const std::string&)> Failed);

    /// Waits until all is done, at most so long. Whether it is.
    bool Finish(std::chrono::milliseconds Limit);
    static constexpr std::chrono::milliseconds LIMIT{5000};

    /// Why something could not be kept, the first time since this was asked last; empty if nothing failed.
    std::string TakeTrouble();

private:
    struct Shared;
    static void Work(const std::shared_ptr<Shared>& rShared);
    void StartThread();
    void AddKeep(const std::string& rMark);
    /// Until nothing is left to do. Whether that was reached.
    bool WaitUntil(std::chrono::steady_clock::time_point End);
    void Add(std::function<void(CRunStore&)> Do, std::function<void(const std::string&)> Failed);

    std::shared_ptr<Shared> m_pShared;
    std::thread m_Thread;
};
