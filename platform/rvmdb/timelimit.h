#pragma once
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace PreBalDB {

/// Calls something, in a thread of its own, unless this ends in time: a statement on a server that has frozen
/// ends by no limit that client and server know, but by CDirectSQL::Interrupt.
class CTimeLimit {
public:
    CTimeLimit(std::chrono::milliseconds Limit, std::function<void()> OnExceeded)
        : m_Thread([this, Limit, OnExceeded = std::move(OnExceeded)] {
              std::unique_lock Guard(m_Lock);
              if (!m_Changed.wait_for(Guard, Limit, [this] { return m_bDone; })) {
                  Guard.unlock();
                  OnExceeded();
              }
          }) {}
    ~CTimeLimit() {
        {
            const std::lock_guard Guard(m_Lock);
            m_bDone = true;
        }
        m_Changed.notify_all();
        m_Thread.join();
    }
    CTimeLimit(const CTimeLimit&) = delete;
    CTimeLimit& operator=(const CTimeLimit&) = delete;

private:
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    bool m_bDone = false;
    std::thread m_Thread;
};

}  // namespace PreBalDB
