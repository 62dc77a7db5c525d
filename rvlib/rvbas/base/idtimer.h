#pragma once
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

#include "rvlib/rvbas/base/timer.h"

namespace Base {

/// Mix-in that runs any number of timers, told apart by their ids. An id names a timer object for its whole
/// life: after it has fired or was stopped, a later Start may give the same id again. So forget an id once it
/// has signalled, and compare the id in OnIDTimeout with those still held. 0 is no timer.
class CIDTimer {
public:
    static constexpr std::uint32_t ENDLESS = CTimer::ENDLESS;

    CIDTimer() = default;
    virtual ~CIDTimer();
    CIDTimer(const CIDTimer&) = delete;
    CIDTimer& operator=(const CIDTimer&) = delete;

    /// Starts a timer of msTimeout ms with nCount ticks (1: one-shot, ENDLESS: until stopped). Returns its
    /// id, or 0 when it could not be started.
    std::int32_t Start(std::uint32_t msTimeout, std::uint32_t nCount, CWnd* hWnd = nullptr);
    /// An unknown id stops nothing.
    void Stop(std::int32_t TimerID);
    /// False for an unknown id.
    bool IsActive(std::int32_t TimerID) const;
    bool HasActiveTimer() const;

protected:
    /// Comes on the event loop's thread, with no lock held. May start, stop and destroy.
    virtual void OnIDTimeout(std::int32_t TimerID) = 0;

    /// The id of the next new timer, shared by all objects. Ids below 10 aren't given out in normal running.
    static std::int32_t ms_NextTimerID;

private:
    class CSingleTimer : public CTimer {
    public:
        CSingleTimer(CIDTimer& rOwner, std::int32_t TimerID) : m_rOwner(rOwner), m_TimerID(TimerID) {}
        std::int32_t GetTimerID() const { return m_TimerID; }

    private:
        void OnTimer() override;

        CIDTimer& m_rOwner;
        std::int32_t m_TimerID;
    };

    CSingleTimer& CreateSingleTimer();
    CSingleTimer* FindSingleTimer(std::int32_t TimerID) const;

    /// Taken before the lock of CTimer, never after it.
    mutable std::recursive_mutex m_Lock;
    std::list<std::unique_ptr<CSingleTimer>> m_Timers;
};

}  // namespace Base
