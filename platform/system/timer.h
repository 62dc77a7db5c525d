#pragma once
#include <cstdint>
#include <functional>
#include <utility>

#include "platform/system/eventloop.h"

/// One timer of the event loop, ended with its owner.
class CTimer {
public:
    CTimer() = default;
    ~CTimer() { Stop(); }
    CTimer(const CTimer&) = delete;
    CTimer& operator=(const CTimer&) = delete;

    /// Calls Proc once, after the time given in ms. A timer that runs already starts afresh.
    void StartOnce(std::uint32_t Milliseconds, std::function<void()> Proc) {
        Stop();
        m_Id = IFEventLoop::Current().SetTimer(Milliseconds, [this, Proc = std::move(Proc)](std::uint32_t) {
            // Stopping may free this very callback, so what it still needs is taken out first.
            const std::function<void()> Task = Proc;
            Stop();
            Task();
        });
    }
    /// Calls Proc every period until stopped.
    void StartPeriodic(std::uint32_t Milliseconds, std::function<void()> Proc) {
        Stop();
        m_Id = IFEventLoop::Current().SetTimer(Milliseconds,
                                               [Proc = std::move(Proc)](std::uint32_t) { Proc(); });
    }
    void Stop() {
        if (m_Id != 0) {
            IFEventLoop::Current().KillTimer(std::exchange(m_Id, 0U));
        }
    }
    bool IsRunning() const { return m_Id != 0; }

private:
    std::uint32_t m_Id = 0;
};
