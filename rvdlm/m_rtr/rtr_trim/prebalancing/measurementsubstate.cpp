#include "rvdlm/m_rtr/rtr_trim/prebalancing/measurementsubstate.h"

#include <algorithm>

#include "platform/system/eventloop.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/settings/xmlconfig.h"

CMeasurementSubState::CMeasurementSubState(std::uint32_t TargetRPM, std::uint32_t RPMTolerance)
    : m_HiResTimer(*this), m_TargetRPM(TargetRPM), m_RPMTolerance(RPMTolerance) {
    CRVXMLConfig Config;
    if (!Config.Open()) {
        RV_ERROR(RtrTrim::g_pLog, "cant open registry");
        return;
    }
    m_IgnoreOutOfLock = Config.GetInt("system_falconet", "IgnoreOutOfLock", 0);
    if (m_IgnoreOutOfLock != 0) {
        RV_WARNING(RtrTrim::g_pLog, "IgnoreOutOfLock is active !!!");
    }
}

CMeasurementSubState::~CMeasurementSubState() {
    StopMeasurement();
}

void CMeasurementSubState::Describe(CPreBalProgress::CMeasuring& rMeasuring) const {
    rMeasuring.m_TargetRPM = m_TargetRPM;
    rMeasuring.m_RPMTolerance = m_RPMTolerance;
    rMeasuring.m_bAtSpeed = IsInWindow();
    rMeasuring.m_bLocked = IsLockGood();
    rMeasuring.m_bSampling = m_CanMeasure != 0;
    rMeasuring.m_SamplePeriod = m_HiResPeriod;
}

int CMeasurementSubState::StartMeasurement(std::uint16_t wRPM, int NotLocked, int bNotifyOnLost) {
    RV_ASSERT(RtrTrim::g_pLog, !CIDTimer::HasActiveTimer(), "timer not stopped before");
    StopMeasurement();
    m_CurrentRPM = wRPM;
    m_OutOfLock = NotLocked;
    m_NotifyOnLost = bNotifyOnLost;
    if (!CIDTimer::IsActive(m_PaintXYTimerID)) {
        m_PaintXYTimerID = CIDTimer::Start(m_PaintXYPeriod, CIDTimer::ENDLESS);
    }
    RunHandler();
    return 1;
}

int CMeasurementSubState::StopMeasurement() {
    for (std::int32_t* pTimerID : {&m_OutOfLockTimerID, &m_PaintXYTimerID}) {
        if (CIDTimer::IsActive(*pTimerID)) {
            CIDTimer::Stop(*pTimerID);
        }
        *pTimerID = 0;
    }
    StopHiResTimer();
    m_CanMeasure = 0;
    RV_ASSERT(RtrTrim::g_pLog, !CIDTimer::HasActiveTimer(), "timer not stopped");
    return 1;
}

void CMeasurementSubState::UpdateRPM(std::uint16_t wRPM) {
    m_CurrentRPM = wRPM;
    RunHandler();
}

void CMeasurementSubState::UpdateOutOfLock(int NotLocked) {
    m_OutOfLock = NotLocked;
    RunHandler();
}

void CMeasurementSubState::RunHandler() {
    if (m_IgnoreOutOfLock != 0) {
        MeasurementSubStateHandlerIgnoreOutOfLock();
    } else {
        MeasurementSubStateHandler();
    }
}

void CMeasurementSubState::MeasurementSubStateHandler() {
    const bool bGood = IsConditionMet();
    if (m_CanMeasure != 0) {
        RV_ASSERT(RtrTrim::g_pLog, !CIDTimer::IsActive(m_OutOfLockTimerID), "impossible");
        if (!bGood) {
            LeaveMeasuring();
        }
    } else if (bGood) {
        StartSettling();
    } else {
        KeepWaiting();
    }
}

void CMeasurementSubState::MeasurementSubStateHandlerIgnoreOutOfLock() {
    if (!IsInWindow()) {
        if (m_CanMeasure != 0) {
            LeaveMeasuring();
        } else {
            KeepWaiting();
        }
        return;
    }
    if (m_CanMeasure == 0) {
        StartSettling();
    }
    // Measured all the same, but the operator sees why the values may be bad.
    if (m_OutOfLock != 0) {
        ShowReason();
    }
}

void CMeasurementSubState::ShowReason() {
    if (!IsInWindow()) {
        if (m_OutOfLock != 0) {
            ShowWrongRPMAndOutOfLockWarning();
        } else {
            ShowWrongRPMWarning();
        }
    } else if (m_OutOfLock != 0) {
        ShowOutOfLockWarning();
    }
}

void CMeasurementSubState::StartSettling() {
    if (!CIDTimer::IsActive(m_OutOfLockTimerID)) {
        ShowMeasurementOK();
        m_OutOfLockTimerID = CIDTimer::Start(m_OutOfLockPeriod, 1);
    }
}

void CMeasurementSubState::LeaveMeasuring() {
    ShowReason();
    m_CanMeasure = 0;
    if (m_NotifyOnLost != 0) {
        OnMeasurementLost();
    }
    RV_ASSERT(RtrTrim::g_pLog, CIDTimer::IsActive(m_PaintXYTimerID), "impossible");
    StopHiResTimer();
}

void CMeasurementSubState::KeepWaiting() {
    ShowReason();
    if (CIDTimer::IsActive(m_OutOfLockTimerID)) {
        CIDTimer::Stop(m_OutOfLockTimerID);
    }
    m_OutOfLockTimerID = 0;
    RV_ASSERT(RtrTrim::g_pLog, CIDTimer::IsActive(m_PaintXYTimerID), "impossible");
    if (m_HiResTimer.IsActive(m_HiResTimerID)) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        StopHiResTimer();
    }
}

void CMeasurementSubState::StopHiResTimer() {
    if (m_HiResTimer.IsActive(m_HiResTimerID)) {
        m_HiResTimer.Stop(m_HiResTimerID);
        if (m_TickWatch.HasSuffered(m_HiResPeriod)) {
            RV_WARNING(RtrTrim::g_pLog,
                       "The computer was too busy for this measurement: %u samples, the longest pause "
                       "between two %u "
                       "ms in place of %u",
                       m_TickWatch.GetCount(), static_cast<unsigned>(m_TickWatch.GetLongestPause()),
                       m_HiResPeriod);
        }
    }
    m_HiResTimerID = 0;
}

void CMeasurementSubState::OnIDTimeout(std::int32_t TimerID) {
    if (TimerID == 0) {
        return;  // no timer; the ids held are 0 when theirs doesn't run
    }
    if (TimerID == m_OutOfLockTimerID) {
        RV_ASSERT(RtrTrim::g_pLog, !CIDTimer::IsActive(m_OutOfLockTimerID), "impossible");
        m_OutOfLockTimerID = 0;
        m_CanMeasure = 1;
        RestartMeasurement();
        PleaseQueryXYValuesNOW();
        RV_ASSERT(RtrTrim::g_pLog, !m_HiResTimer.IsActive(m_HiResTimerID), "impossible");
        m_HiResTimerID = m_HiResTimer.Start(m_HiResPeriod);
        m_TickWatch.Begin(IFEventLoop::Current().Now());
    } else if (TimerID == m_PaintXYTimerID) {
        if (!CIDTimer::IsActive(m_PaintXYTimerID)) {
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            m_PaintXYTimerID = 0;
        }
        RepaintMeasurement();
    } else if (TimerID == m_HiResTimerID) {
        if (!m_HiResTimer.IsActive(m_HiResTimerID)) {
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            m_HiResTimerID = 0;
        }
        m_TickWatch.Tick(IFEventLoop::Current().Now());
        OnMeasurementTick();
    }
}

CMeasurementSubState::CHiResTimer::CHiResTimer(CMeasurementSubState& rOwner) : m_rOwner(rOwner) {
    const bool bCreated = CreateMessageWindow();
    RV_ASSERT(RtrTrim::g_pLog, bCreated, "CreateMessageWnd failed");
}

CMeasurementSubState::CHiResTimer::~CHiResTimer() {
    if (m_Handle != 0) {
        Kill();
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "Timer still running!");
    }
}

std::int32_t CMeasurementSubState::CHiResTimer::Start(std::uint32_t Period) {
    if (m_Handle != 0) {
        Kill();
    }
    IFEventLoop& rLoop = IFEventLoop::Current();
    const IFEventLoop::CTimerCaps Caps = rLoop.GetMultimediaTimerCaps();
    if (Period < Caps.m_PeriodMin || Period > Caps.m_PeriodMax) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        Period = std::clamp(Period, Caps.m_PeriodMin, Caps.m_PeriodMax);
    }
    constexpr std::uint32_t RESOLUTION = 1;
    m_Handle = rLoop.StartMultimediaTimer(Period, RESOLUTION, [this](std::uint32_t Handle) {
        // On a thread of the system: nothing but posting is allowed here.
        PostMessage(WM_RV_MESSAGEWND, Handle);
    });
    return m_Handle != 0 ? HI_RES_TIMER_ID : 0;
}

void CMeasurementSubState::CHiResTimer::Stop(std::int32_t TimerID) {
    RV_ASSERT(RtrTrim::g_pLog, TimerID == 1, "invalid timer ID");
    if (m_Handle != 0) {
        Kill();
    }
}

bool CMeasurementSubState::CHiResTimer::IsActive(std::int32_t TimerID) const {
    RV_ASSERT(RtrTrim::g_pLog, TimerID <= 1, "invalid timer ID");
    return TimerID == HI_RES_TIMER_ID && m_Handle != 0;
}

void CMeasurementSubState::CHiResTimer::OnMessageWndMessage(WPARAM wParam, LPARAM /*lParam*/) {
    // A tick that was posted before its timer was stopped carries an old handle and is dropped.
    if (m_Handle != 0 && wParam == m_Handle) {
        m_rOwner.OnIDTimeout(HI_RES_TIMER_ID);
    }
}

void CMeasurementSubState::CHiResTimer::Kill() {
    IFEventLoop::Current().KillMultimediaTimer(m_Handle);
    m_Handle = 0;
}
