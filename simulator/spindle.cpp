#include "simulator/spindle.h"

#include <algorithm>
#include <cmath>

void CSpindle::SetCommanded(double Rpm) {
    if (Rpm == m_CommandedRpm) {
        return;
    }
    m_RampFromRpm = GetSpeed();
    m_CommandedRpm = Rpm;
    m_RampBegin = IFEventLoop::Current().Now();
    const double Duration = std::ceil(std::abs(Rpm - m_RampFromRpm) / m_RampRpmPerS * 1000.0);
    m_RampEnd = m_RampBegin + static_cast<std::uint64_t>(Duration);
    m_Timer.StartOnce(static_cast<std::uint32_t>(Duration), [this] { RampEnded(); });
    EnterState(eRamping);
}

void CSpindle::LoseLock(std::uint32_t Milliseconds) {
    const auto SetLost = [this](bool bLost) {
        m_bLockLost = bLost;
        if (OnChanged) {
            OnChanged();
        }
    };
    m_LockTimer.StartOnce(Milliseconds, [SetLost] { SetLost(false); });
    SetLost(true);
}

double CSpindle::GetSpeed() const {
    if (m_State != eRamping) {
        return m_CommandedRpm;
    }
    const auto Elapsed = static_cast<double>(IFEventLoop::Current().Now() - m_RampBegin);
    const double Change = Elapsed / 1000.0 * m_RampRpmPerS;
    return (m_CommandedRpm > m_RampFromRpm) ? std::min(m_RampFromRpm + Change, m_CommandedRpm)
                                            : std::max(m_RampFromRpm - Change, m_CommandedRpm);
}

void CSpindle::RampEnded() {
    // A late timer doesn't delay the lock further.
    const std::uint64_t LockAt = m_RampEnd + LOCK_DELAY_MS;
    const std::uint64_t Now = IFEventLoop::Current().Now();
    m_Timer.StartOnce((LockAt > Now) ? static_cast<std::uint32_t>(LockAt - Now) : 0U,
                      [this] { EnterState(eSteady); });
    EnterState(eSettling);
}

void CSpindle::EnterState(State NewState) {
    m_State = NewState;
    if (OnChanged) {
        OnChanged();
    }
}
