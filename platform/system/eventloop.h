#pragma once
#include <chrono>
#include <cstdint>
#include <functional>

/// The one source of time, timers and queued work. Everything above the seam runs on the thread that runs the
/// loop; only Post may be called from other threads. No code above the seam reads a clock or sleeps but
/// through this interface, so that under the virtual loop a whole run takes milliseconds and is the same on
/// every machine.
class IFEventLoop {
public:
    /// Called with the timer's id on the loop's thread, once a period until the timer is killed.
    using TimerProc = std::function<void(std::uint32_t Id)>;
    /// Called on a thread of the system. May do nothing but post.
    using MultimediaProc = std::function<void(std::uint32_t Handle)>;

    /// Periods that a multimedia timer can have, in ms.
    struct CTimerCaps {
        std::uint32_t m_PeriodMin = 1;
        std::uint32_t m_PeriodMax = 1000000;
    };

    virtual ~IFEventLoop() = default;

    /// Queues work, which runs in the order of posting.
    virtual void Post(std::function<void()> Task) = 0;

    /// Starts a repeating timer with a period in ms (0 counts as 1). Returns its id, never 0; 0 if the
    /// platform refuses. Ids are not given out twice while a timer runs. Killing a timer drops ticks still
    /// queued.
    virtual std::uint32_t SetTimer(std::uint32_t Period, TimerProc Proc) = 0;
    /// False if no such timer runs. May be called from the timer's own callback.
    virtual bool KillTimer(std::uint32_t Id) = 0;

    /// Milliseconds since the loop was made; never goes back.
    virtual std::uint64_t Now() const = 0;
    /// Date and time, for what people read. Pinned under the virtual loop.
    virtual std::chrono::sys_seconds WallClock() const = 0;
    /// Blocks the thread; nothing is dispatched meanwhile.
    virtual void Sleep(std::uint32_t Milliseconds) = 0;

    virtual CTimerCaps GetMultimediaTimerCaps() const = 0;
    /// Starts a periodic multimedia timer; the result is its handle, 0 on failure.
    virtual std::uint32_t StartMultimediaTimer(std::uint32_t Period, std::uint32_t Resolution,
                                               MultimediaProc Proc) = 0;
    /// After this returns the callback doesn't run any more; what it posted may still be queued.
    virtual bool KillMultimediaTimer(std::uint32_t Handle) = 0;

    /// Runs until Quit, or under virtual time until nothing is left to do.
    virtual void Run() = 0;
    virtual void Quit() = 0;
    /// Runs queued work and due timers until Done() is true or Timeout ms have passed; the result is Done().
    /// It is asked again after work and timers only, so whatever fulfils it must run on the loop.
    virtual bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) = 0;

    /// The loop in use. There must be one before any window or timer is made; without one this throws
    /// std::logic_error. Current and HasCurrent may be called from any thread.
    static IFEventLoop& Current();
    static bool HasCurrent();
    /// Returns the loop that was in use before, or null.
    static IFEventLoop* SetCurrent(IFEventLoop* pLoop);
};
