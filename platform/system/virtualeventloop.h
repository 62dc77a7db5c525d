#pragma once
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "platform/system/eventloop.h"

/// Event loop under virtual time: when no work is queued, time jumps to the next due timer. Same inputs, same
/// order, on every machine: work runs in order of posting, timers in order of due time and, at the same
/// instant, in order of starting. Queued work goes before timers. A timer that is late (after Sleep) ticks
/// once and goes on in its old rhythm; what it missed isn't made up for. Multimedia timers are called from
/// this loop too, in the same order.
class CVirtualEventLoop : public IFEventLoop {
public:
    /// Makes itself the current loop, and puts the former one back at the end.
    CVirtualEventLoop();
    ~CVirtualEventLoop() override;
    CVirtualEventLoop(const CVirtualEventLoop&) = delete;
    CVirtualEventLoop& operator=(const CVirtualEventLoop&) = delete;

    void Post(std::function<void()> Task) override;
    std::uint32_t SetTimer(std::uint32_t Period, TimerProc Proc) override;
    bool KillTimer(std::uint32_t Id) override;
    std::uint64_t Now() const override { return m_Now; }
    /// 2024-01-01 00:00:00 plus virtual time.
    std::chrono::sys_seconds WallClock() const override;
    /// Moves time forward; timers that became due in between run afterwards, late.
    void Sleep(std::uint32_t Milliseconds) override { m_Now += Milliseconds; }
    CTimerCaps GetMultimediaTimerCaps() const override { return m_Caps; }
    std::uint32_t StartMultimediaTimer(std::uint32_t Period, std::uint32_t Resolution,
                                       MultimediaProc Proc) override;
    bool KillMultimediaTimer(std::uint32_t Handle) override;
    /// Ends also when nothing is left to do. With a timer running there always is something: use Quit.
    void Run() override;
    void Quit() override { m_bQuit = true; }
    bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) override;

    /// Runs everything due within the next Milliseconds; afterwards Now() has moved by exactly that.
    void Advance(std::uint32_t Milliseconds);
    /// Runs queued work without moving time.
    void RunPosted();
    std::size_t GetTimerCount() const { return m_Timers.size(); }

    /// For tests of refusal: the next calls of SetTimer or StartMultimediaTimer answer 0.
    void FailTimers(int nCalls) { m_nFailTimers = nCalls; }
    void FailMultimediaTimers(int nCalls) { m_nFailMultimediaTimers = nCalls; }
    void SetMultimediaTimerCaps(CTimerCaps Caps) { m_Caps = Caps; }

private:
    struct CTimer {
        std::uint64_t m_Due = 0;
        std::uint64_t m_Order = 0;
        std::uint32_t m_Period = 0;
        bool m_bMultimedia = false;
        std::function<void(std::uint32_t)> m_Proc;

        std::pair<std::uint64_t, std::uint64_t> GetPlace() const { return {m_Due, m_Order}; }
    };
    std::uint32_t AddTimer(std::uint32_t Period, bool bMultimedia, std::function<void(std::uint32_t)> Proc);
    bool RemoveTimer(std::uint32_t Id, bool bMultimedia);
    bool RunOneTask();
    /// Runs the timer that is due first if that is not after Limit.
    bool RunOneTimer(std::uint64_t Limit);

    IFEventLoop* m_pFormer = nullptr;
    std::uint64_t m_Now = 0;
    std::uint64_t m_NextOrder = 0;
    std::uint32_t m_NextId = 1;
    std::map<std::uint32_t, CTimer> m_Timers;
    /// The timers' ids in the order in which they are due.
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint32_t> m_Schedule;
    std::mutex m_Lock;  ///< guards m_Tasks: Post may come from another thread
    std::deque<std::function<void()>> m_Tasks;
    bool m_bQuit = false;
    CTimerCaps m_Caps;
    int m_nFailTimers = 0;
    int m_nFailMultimediaTimers = 0;
};
