#pragma once
#include <cstdint>

#include "contract/prebalprogress.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/tickwatch.h"
#include "rvlib/rvbas/base/idtimer.h"
#include "rvlib/rvbas/base/messagewnd.h"

/// Decides when samples may be taken: only after the spindle has held the target speed, with the electronics
/// in lock, for a settling time. Keeps three timers (repainting, settling, sampling) and tells its owner
/// through virtual operations what to show. Speeds in rpm, periods in ms.
class CMeasurementSubState : private Base::CIDTimer {
public:
    /// TargetRPM plus and minus RPMTolerance is the speed window. Reads the test switch IgnoreOutOfLock from
    /// the settings; without a settings file it is 0.
    CMeasurementSubState(std::uint32_t TargetRPM, std::uint32_t RPMTolerance);
    /// Stops the measurement.
    ~CMeasurementSubState() override;
    CMeasurementSubState(const CMeasurementSubState&) = delete;
    CMeasurementSubState& operator=(const CMeasurementSubState&) = delete;

    /// Begins to wait for the measuring condition. With bNotifyOnLost, OnMeasurementLost is called whenever
    /// the condition is lost again. Result 1.
    int StartMeasurement(std::uint16_t wRPM, int NotLocked, int bNotifyOnLost);
    /// Stops all timers, from any state. Result 1.
    int StopMeasurement();
    /// Nonzero while samples may be taken.
    int CanMeasure() const { return m_CanMeasure; }
    /// Whether speed and lock are as a measurement needs them now, settled or not. Known while one runs.
    bool IsConditionMet() const { return IsInWindow() && IsLockGood(); }
    /// The measuring condition and the sample clock, for the host.
    void Describe(CPreBalProgress::CMeasuring& rMeasuring) const;
    int GetIgnoreOutOfLock() const { return m_IgnoreOutOfLock; }
    /// Moves the centre of the speed window.
    void SetTargetRPM(std::uint32_t TargetRPM) { m_TargetRPM = TargetRPM; }
    /// New speed or lock state while a measurement runs.
    void UpdateRPM(std::uint16_t wRPM);
    void UpdateOutOfLock(int NotLocked);

    /// Whether a speed lies in the window, both ends included. Unsigned on purpose: a tolerance above the
    /// target wraps around, and the window is empty.
    static bool IsSpeedInWindow(std::uint32_t RPM, std::uint32_t TargetRPM, std::uint32_t Tolerance) {
        return TargetRPM - Tolerance <= RPM && RPM <= TargetRPM + Tolerance;
    }

protected:
    void OnIDTimeout(std::int32_t TimerID) override;
    /// The samples taken so far don't count any more.
    virtual void RestartMeasurement() = 0;
    virtual void PleaseQueryXYValuesNOW() = 0;
    virtual void RepaintMeasurement() = 0;
    virtual void OnMeasurementLost() = 0;
    /// Every 50 ms while samples may be taken.
    virtual void OnMeasurementTick() = 0;
    virtual void ShowMeasurementOK() = 0;
    virtual void ShowOutOfLockWarning() = 0;
    virtual void ShowWrongRPMWarning() = 0;
    virtual void ShowWrongRPMAndOutOfLockWarning() = 0;

private:
    /// The sample clock: a multimedia timer, since a window timer isn't exact enough for 50 ms. Its callback
    /// runs on a thread of the system and only posts; the tick arrives at the owner on the window thread.
    class CHiResTimer : public Base::CMessageWnd {
    public:
        explicit CHiResTimer(CMeasurementSubState& rOwner);
        ~CHiResTimer() override;

        /// Starts, or starts anew, with a period in ms; one outside of the system's bounds is clamped after
        /// an assertion. The result is the timer's id, 1, or 0 if the system refuses.
        std::int32_t Start(std::uint32_t Period);
        /// Only id 1 exists.
        void Stop(std::int32_t TimerID);
        /// Id 0, no timer, is never active.
        bool IsActive(std::int32_t TimerID) const;

    private:
        void OnMessageWndMessage(WPARAM wParam, LPARAM lParam) override;
        void Kill();

        CMeasurementSubState& m_rOwner;
        std::uint32_t m_Handle = 0;  ///< of the running multimedia timer, 0 when none
    };

    static constexpr std::int32_t HI_RES_TIMER_ID = 1;

    /// Looks at speed and lock again, by the rule that the test switch chooses.
    void RunHandler();
    void MeasurementSubStateHandler();
    /// Looks only at the speed for the decision.
    void MeasurementSubStateHandlerIgnoreOutOfLock();
    bool IsInWindow() const { return IsSpeedInWindow(m_CurrentRPM, m_TargetRPM, m_RPMTolerance); }
    bool IsLockGood() const { return m_OutOfLock == 0 || m_IgnoreOutOfLock != 0; }
    void ShowReason();
    void StartSettling();
    void LeaveMeasuring();
    void KeepWaiting();
    void StopHiResTimer();

    CHiResTimer m_HiResTimer;
    int m_IgnoreOutOfLock = 0;
    int m_NotifyOnLost = 1;
    std::uint32_t m_TargetRPM;
    std::uint32_t m_RPMTolerance;
    int m_CanMeasure = 0;
    std::uint16_t m_CurrentRPM = 0;
    int m_OutOfLock = 1;
    std::int32_t m_OutOfLockTimerID = 0;
    std::int32_t m_PaintXYTimerID = 0;
    std::int32_t m_HiResTimerID = 0;
    std::uint32_t m_PaintXYPeriod = 250;
    std::uint32_t m_OutOfLockPeriod = 3000;
    std::uint32_t m_HiResPeriod = 50;
    CTickWatch m_TickWatch;
};
