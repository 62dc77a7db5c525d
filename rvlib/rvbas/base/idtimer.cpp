#include "rvlib/rvbas/base/idtimer.h"

#include <algorithm>

#include "rvlib/rvbas/log.h"

namespace Base {

namespace {

constexpr std::int32_t FIRST_TIMER_ID = 10;

}  // namespace

std::int32_t CIDTimer::ms_NextTimerID = FIRST_TIMER_ID;

CIDTimer::~CIDTimer() {
    const std::lock_guard Guard(m_Lock);
    for (const auto& pTimer : m_Timers) {
        pTimer->Stop();
    }
    m_Timers.clear();
}

std::int32_t CIDTimer::Start(std::uint32_t msTimeout, std::uint32_t nCount, CWnd* hWnd) {
    const std::lock_guard Guard(m_Lock);
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer::Start(msTimeout=%d, nCount=%d) called",
           static_cast<int>(msTimeout), static_cast<int>(nCount));
    CSingleTimer& rTimer = CreateSingleTimer();
    const std::int32_t TimerID =
        rTimer.SetTimer(msTimeout, nCount, hWnd) && rTimer.Start() ? rTimer.GetTimerID() : 0;
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer::Start() returns: %d", TimerID);
    return TimerID;
}

void CIDTimer::Stop(std::int32_t TimerID) {
    const std::lock_guard Guard(m_Lock);
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer::Stop(TimerID=%d) called", TimerID);
    if (CSingleTimer* pTimer = FindSingleTimer(TimerID)) {
        pTimer->Stop();
    }
}

bool CIDTimer::IsActive(std::int32_t TimerID) const {
    const std::lock_guard Guard(m_Lock);
    const CSingleTimer* pTimer = FindSingleTimer(TimerID);
    const bool bActive = pTimer != nullptr && pTimer->IsActive();
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer::IsActive(TimerID=%d) returns: %d", TimerID,
           static_cast<int>(bActive));
    return bActive;
}

bool CIDTimer::HasActiveTimer() const {
    const std::lock_guard Guard(m_Lock);
    return std::ranges::any_of(m_Timers, [](const auto& pTimer) { return pTimer->IsActive(); });
}

CIDTimer::CSingleTimer& CIDTimer::CreateSingleTimer() {
    auto iTimer = std::ranges::find_if(m_Timers, [](const auto& pTimer) {
        RV_ASSERT(g_pLog, pTimer, "There must be a pointer in the list!");
        return pTimer && !pTimer->IsActive();
    });
    if (iTimer == m_Timers.end()) {
        std::int32_t TimerID = ms_NextTimerID;
        // Unsigned, because the counter may wrap.
        ms_NextTimerID = static_cast<std::int32_t>(static_cast<std::uint32_t>(ms_NextTimerID) + 1U);
        if (TimerID == 0) {
            RV_ASSERT_FAIL(g_pLog, "impossible");
            TimerID = FIRST_TIMER_ID;
            // Not advanced: the next new timer gets the same id. Deliberate.
            ms_NextTimerID = FIRST_TIMER_ID;
        }
        iTimer = m_Timers.insert(m_Timers.end(), std::make_unique<CSingleTimer>(*this, TimerID));
    }
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer: %d Timers in List", static_cast<int>(m_Timers.size()));
    RV_ASSERT_AS(g_pLog, *iTimer, "pTimer", "pTimer must be valid after CreateSingleTimer", false);
    return **iTimer;
}

CIDTimer::CSingleTimer* CIDTimer::FindSingleTimer(std::int32_t TimerID) const {
    const auto iTimer = std::ranges::find_if(
        m_Timers, [TimerID](const auto& pTimer) { return pTimer->GetTimerID() == TimerID; });
    return iTimer == m_Timers.end() ? nullptr : iTimer->get();
}

void CIDTimer::CSingleTimer::OnTimer() {
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CIDTimer: %d signalled", m_TimerID);
    m_rOwner.OnIDTimeout(m_TimerID);
}

}  // namespace Base
