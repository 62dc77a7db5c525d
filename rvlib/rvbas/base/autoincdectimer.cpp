#include "rvlib/rvbas/base/autoincdectimer.h"

#include "platform/window/input.h"
#include "platform/window/wnd.h"
#include "rvlib/rvbas/log.h"

namespace Base {

namespace {

constexpr std::uint32_t SMALLEST_PERIOD = 150;  // ms
constexpr std::uint32_t PERIOD_STEP = 50;       // ms
constexpr const char* HOST_TITLE = "Corvane Machine Console";

/// False when the host has a window and another one is in front of it.
bool IsHostInFront() {
    const CWnd* pHost = CWnd::FindWindow(HOST_TITLE);
    return pHost == nullptr || pHost == CWnd::GetForegroundWindow();
}

}  // namespace

CAutoIncDecTimer::CAutoIncDecTimer()
    : m_IncrementTimer(*this, eIncrement), m_DecrementTimer(*this, eDecrement) {}

CAutoIncDecTimer::~CAutoIncDecTimer() {
    StopAutoIncrement();
    StopAutoDecrement();
}

void CAutoIncDecTimer::StartAutoIncrement(std::uint32_t msInitial) {
    RV_ASSERT(g_pLog, !m_IncrementTimer.IsActive(), "IncrementTimer already running");
    StartSeries(m_IncrementTimer, eIncrement, m_bFirstIncrement, msInitial);
}

void CAutoIncDecTimer::StartAutoDecrement(std::uint32_t msInitial) {
    RV_ASSERT(g_pLog, !m_DecrementTimer.IsActive(), "DecrementTimer already running");
    StartSeries(m_DecrementTimer, eDecrement, m_bFirstDecrement, msInitial);
}

void CAutoIncDecTimer::StopAutoIncrement() {
    if (m_IncrementTimer.IsActive()) {
        m_IncrementTimer.Stop();
    }
}

void CAutoIncDecTimer::StopAutoDecrement() {
    if (m_DecrementTimer.IsActive()) {
        m_DecrementTimer.Stop();
    }
}

void CAutoIncDecTimer::StartSeries(CAutoTimer& rTimer, Direction Way, bool& rFirst, std::uint32_t msInitial) {
    const std::weak_ptr<const void> pAlive = m_Lifetime.GetToken();
    rFirst = true;
    Step(Way);
    if (pAlive.expired()) {
        return;
    }
    rFirst = false;
    rTimer.StartSeries(msInitial);
}

void CAutoIncDecTimer::Step(Direction Way) {
    switch (Way) {
        case eIncrement:
            OnAutoIncrement();
            break;
        case eDecrement:
            OnAutoDecrement();
            break;
        default:
            RV_ASSERT_FAIL(g_pLog, "impossible");
            break;
    }
}

void CAutoIncDecTimer::CAutoTimer::StartSeries(std::uint32_t msInitial) {
    m_bWatchButton = IsPrimaryButtonDown();
    m_Period = msInitial;
    m_SmallestPeriod = SMALLEST_PERIOD;
    m_PeriodStep = PERIOD_STEP;
    m_bAccelerate = true;
    SetTimer(msInitial, 1, nullptr);
    Start();
}

void CAutoIncDecTimer::CAutoTimer::OnTimer() {
    const std::weak_ptr<const void> pAlive = m_rOwner.m_Lifetime.GetToken();
    m_rOwner.Step(m_Direction);
    if (pAlive.expired()) {
        return;
    }
    // The timer was one-shot, so that a return ends the repeat.
    if (!IsHostInFront()) {
        return;
    }
    if (m_bWatchButton && !IsPrimaryButtonDown()) {
        return;
    }
    if (m_bAccelerate && m_Period > m_SmallestPeriod) {
        m_Period -= m_PeriodStep;
        SetTimer(m_Period, 1, nullptr);
    }
    Start();
}

}  // namespace Base
