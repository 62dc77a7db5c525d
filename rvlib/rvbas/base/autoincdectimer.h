#pragma once
#include <cstdint>
#include <memory>

#include "platform/system/lifetime.h"
#include "rvlib/rvbas/base/timer.h"

namespace Base {

/// Mix-in that repeats a step while a key or the mouse button is held, faster and faster: with 400 ms at the
/// start the steps come after 400, 350, 300, 250, 200, 150, 150, ... ms, each counted from the one before.
/// The first step is made at once.
///
/// A series ends by Stop..., by release of the mouse button if that was down at the start, or when the
/// console's window isn't in front; the step in which one of the latter two is found out is still made. A
/// Stop... out of a step of the series itself has no effect, as the timer is between two shots there.
class CAutoIncDecTimer {
public:
    CAutoIncDecTimer();
    virtual ~CAutoIncDecTimer();
    CAutoIncDecTimer(const CAutoIncDecTimer&) = delete;
    CAutoIncDecTimer& operator=(const CAutoIncDecTimer&) = delete;

    /// msInitial: time to the second step in ms.
    void StartAutoIncrement(std::uint32_t msInitial);
    void StartAutoDecrement(std::uint32_t msInitial);
    void StopAutoIncrement();
    void StopAutoDecrement();

protected:
    /// One step up. May destroy this object.
    virtual void OnAutoIncrement() = 0;
    /// One step down. May destroy this object.
    virtual void OnAutoDecrement() = 0;

    /// True only in the step that StartAutoIncrement makes itself.
    bool IsFirstIncrement() const { return m_bFirstIncrement; }
    /// True only in the step that StartAutoDecrement makes itself.
    bool IsFirstDecrement() const { return m_bFirstDecrement; }

private:
    enum Direction : std::uint32_t { eIncrement = 0, eDecrement = 1 };

    class CAutoTimer : public CTimer {
    public:
        CAutoTimer(CAutoIncDecTimer& rOwner, Direction Way) : m_Direction(Way), m_rOwner(rOwner) {}
        void StartSeries(std::uint32_t msInitial);

    private:
        void OnTimer() override;

        Direction m_Direction;
        CAutoIncDecTimer& m_rOwner;
        std::uint32_t m_Period = 0;
        std::uint32_t m_SmallestPeriod = 0;
        std::uint32_t m_PeriodStep = 0;
        bool m_bWatchButton = false;
        bool m_bAccelerate = true;
    };

    /// Makes the first step, with the flag set meanwhile, and starts the series.
    void StartSeries(CAutoTimer& rTimer, Direction Way, bool& rFirst, std::uint32_t msInitial);
    void Step(Direction Way);

    bool m_bFirstIncrement = false;
    bool m_bFirstDecrement = false;
    CAutoTimer m_IncrementTimer;
    CAutoTimer m_DecrementTimer;
    /// Dies with this object: tells the code behind a step whether the object is still there.
    CLifetime m_Lifetime;
};

}  // namespace Base
