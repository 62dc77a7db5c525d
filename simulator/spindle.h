#pragma once
#include <cstdint>
#include <functional>

#include "platform/system/timer.h"

/// The spindle's drive: the speed follows the commanded one along a straight ramp. Stands at first. The phase
/// lock of the electronics is lost while the speed changes and comes back 500 ms after; a standing spindle
/// counts as in lock and invalid. The lock may also be lost at a steady speed.
class CSpindle {
public:
    static constexpr double SLOWEST_VALID_RPM = 60.0;
    static constexpr std::uint32_t LOCK_DELAY_MS = 500;

    explicit CSpindle(double RampRpmPerS) : m_RampRpmPerS(RampRpmPerS) {}

    /// The ramp begins now, from the present speed. Commanding what is commanded already changes nothing.
    void SetCommanded(double Rpm);
    double GetCommanded() const { return m_CommandedRpm; }

    /// The electronics lose the lock for so long from now, whatever the speed does.
    void LoseLock(std::uint32_t Milliseconds);

    /// Speed at this moment, in rpm.
    double GetSpeed() const;
    /// False when it stands and isn't told to turn.
    bool IsTurning() const { return m_State == eRamping || m_CommandedRpm > 0.0; }
    bool IsInLock() const { return m_State == eSteady && !m_bLockLost; }
    /// The speed is below 60 rpm, or still changing.
    bool IsInvalid() const { return m_State == eRamping || m_CommandedRpm < SLOWEST_VALID_RPM; }

    /// Called when a ramp begins, when it has ended, and when the lock is lost or back.
    std::function<void()> OnChanged;

private:
    enum State { eSteady = 0, eRamping = 1, eSettling = 2 };

    void RampEnded();
    void EnterState(State NewState);

    double m_RampRpmPerS;
    double m_CommandedRpm = 0.0;
    State m_State = eSteady;
    double m_RampFromRpm = 0.0;
    std::uint64_t m_RampBegin = 0;
    std::uint64_t m_RampEnd = 0;
    CTimer m_Timer;
    bool m_bLockLost = false;  ///< by LoseLock
    CTimer m_LockTimer;
};
