#pragma once
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

class CWnd;

namespace Base {

class CTimer;

/// A timer as the platform knows it.
struct CTimerID {
    enum Mode : std::uint32_t {
        None = 0,
        Callback = 1,  ///< the platform calls CTimer::TimerProc
        Window = 2     ///< the platform sends a timer message to the window given
    };

    bool operator==(const CTimerID&) const = default;

    std::uint32_t m_ID = 0;
    Mode m_Mode = None;
    CWnd* m_hWnd = nullptr;  ///< null in mode Callback
};

/// Ties a running platform timer to its owner.
struct CTimerMapper {
    const CTimerID& GetTimerID() const { return m_TimerID; }
    std::uint32_t GetCount() const { return m_Count; }

    CTimer* m_pTimer = nullptr;
    CTimerID m_TimerID;
    std::uint32_t m_Count = 0;  ///< ticks still to come; CTimer::ENDLESS without end
};

/// A timer with one callback, which comes on the thread that runs the event loop. A tick that was under way
/// when the timer was stopped is dropped. OnTimer may start, stop and destroy any timer, its own included.
/// Stop a timer before it goes.
class CTimer {
public:
    /// Count of a timer that repeats until it is stopped.
    static constexpr std::uint32_t ENDLESS = 0xFFFFFFFF;

    CTimer();
    virtual ~CTimer();
    CTimer(const CTimer&) = delete;
    CTimer& operator=(const CTimer&) = delete;

    /// Sets period (ms) and number of ticks, without starting. With msTimeout 0 only the window is taken over
    /// and the result is false. A window gets the platform's timer message in OnTimer's place; null calls
    /// OnTimer.
    bool SetTimer(std::uint32_t msTimeout, std::uint32_t nCount = ENDLESS, CWnd* hWnd = nullptr);
    /// Starts, or restarts a running timer. False when the platform refuses.
    bool Start();
    /// No effect on a stopped timer.
    void Stop();
    bool IsActive() const;

    /// Records of running timers, and records kept for reuse; 0 while there is no timer object.
    static std::size_t GetActiveCount();
    static std::size_t GetUnusedCount();

protected:
    /// Comes without the lock. A timer on its last tick reads as not active here and may be started again.
    virtual void OnTimer() = 0;

private:
    using CTimerMapperList = std::list<CTimerMapper>;

    static void TimerProc(std::uint32_t Id);
    /// Searches by owner or by id; exactly one of the two must be given.
    static CTimerMapperList::iterator FindTimerMapper(const CTimer* pTimer, const CTimerID* pID);
    /// A cleared record at the head of the list of unused ones.
    static CTimerMapperList::iterator CreateTimerMapper();

    std::uint32_t m_Timeout = 0;
    std::uint32_t m_Count = ENDLESS;
    bool m_IsActive = false;
    CWnd* m_hWnd = nullptr;

    /// Guards all below and the fields of every timer. Re-entrant, as Start calls Stop.
    static std::recursive_mutex ms_Lock;
    static std::uint32_t ms_TimerCount;
    static std::unique_ptr<CTimerMapperList> ms_pActiveTimerObjects;
    static std::unique_ptr<CTimerMapperList> ms_pUnusedTimerObjects;
    static std::int32_t ms_WindowTimerID;
};

}  // namespace Base
