#include "rvlib/rvbas/base/timer.h"

#include <algorithm>
#include <limits>
#include <string>

#include "platform/system/eventloop.h"
#include "platform/window/wnd.h"
#include "rvlib/rvbas/log.h"

namespace Base {

namespace {

/// More unused records than this hint at a leak. A warning threshold, no limit.
constexpr std::size_t MANY_UNUSED = 255;

}  // namespace

std::recursive_mutex CTimer::ms_Lock;
std::uint32_t CTimer::ms_TimerCount = 0;
std::unique_ptr<CTimer::CTimerMapperList> CTimer::ms_pActiveTimerObjects;
std::unique_ptr<CTimer::CTimerMapperList> CTimer::ms_pUnusedTimerObjects;
std::int32_t CTimer::ms_WindowTimerID = 1;

CTimer::CTimer() {
    const std::lock_guard Guard(ms_Lock);
    if (ms_TimerCount == 0) {
        RV_ASSERT_AS(g_pLog, !ms_pActiveTimerObjects, "ms_pActiveTimerObjects == NULL", "invalid", false);
        RV_ASSERT_AS(g_pLog, !ms_pUnusedTimerObjects, "ms_pUnusedTimerObjects == NULL", "invalid", false);
        ms_pActiveTimerObjects = std::make_unique<CTimerMapperList>();
        ms_pUnusedTimerObjects = std::make_unique<CTimerMapperList>();
    }
    ++ms_TimerCount;
}

CTimer::~CTimer() {
    const std::lock_guard Guard(ms_Lock);
    RV_ASSERT(g_pLog, !m_IsActive, "Stop timer before you destroy timer object)");
    Stop();
    RV_ASSERT(g_pLog, ms_TimerCount > 0, "TimerCount <= 0");
    if (--ms_TimerCount == 0) {
        RV_ASSERT(g_pLog, ms_pActiveTimerObjects, "must be valid");
        RV_ASSERT_AS(g_pLog, ms_pActiveTimerObjects->empty(), "ms_pActiveTimerObjects->IsEmpty()",
                     "destroying last timer object ... and there are timers active!!!", false);
        ms_pActiveTimerObjects.reset();
        ms_pUnusedTimerObjects.reset();
    }
}

bool CTimer::SetTimer(std::uint32_t msTimeout, std::uint32_t nCount, CWnd* hWnd) {
    const std::lock_guard Guard(ms_Lock);
    m_hWnd = hWnd;
    if (msTimeout == 0) {
        return false;
    }
    m_Timeout = msTimeout;
    m_Count = nCount;
    return true;
}

bool CTimer::Start() {
    const std::lock_guard Guard(ms_Lock);
    if (m_IsActive) {
        Stop();
    }
    CTimerID TimerID;
    bool bStarted = false;
    if (m_hWnd != nullptr) {
        ms_WindowTimerID =
            ms_WindowTimerID == std::numeric_limits<std::int32_t>::max() ? 1 : ms_WindowTimerID + 1;
        TimerID = {static_cast<std::uint32_t>(ms_WindowTimerID), CTimerID::Window, m_hWnd};
        bStarted = m_hWnd->SetTimer(TimerID.m_ID, m_Timeout);
    } else {
        TimerID = {IFEventLoop::Current().SetTimer(m_Timeout, &CTimer::TimerProc), CTimerID::Callback,
                   nullptr};
        bStarted = TimerID.m_ID != 0;
    }
    if (!bStarted) {
        RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CTimer::Start() returns: %d", 0);
        return false;
    }
    const auto iMapper = CreateTimerMapper();
    *iMapper = {this, TimerID, m_Count};
    ms_pActiveTimerObjects->splice(ms_pActiveTimerObjects->end(), *ms_pUnusedTimerObjects, iMapper);
    m_IsActive = true;
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CTimer::Start() returns: %d", 1);
    return true;
}

void CTimer::Stop() {
    const std::lock_guard Guard(ms_Lock);
    RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CTimer::Stop() called");
    if (!m_IsActive) {
        return;
    }
    m_IsActive = false;
    const auto pTimerMapper = FindTimerMapper(this, nullptr);
    if (pTimerMapper == ms_pActiveTimerObjects->end()) {
        RV_ASSERT_AS(g_pLog, false, "pTimerMapper", "there must be a TimerMapper for a active timer", false);
        return;
    }
    RV_ASSERT(g_pLog, (pTimerMapper->GetTimerID().m_Mode != CTimerID::None), "impossible");
    const CTimerID TimerID = pTimerMapper->GetTimerID();
    if (TimerID.m_Mode == CTimerID::Window) {
        TimerID.m_hWnd->KillTimer(TimerID.m_ID);
    } else if (IFEventLoop::HasCurrent()) {  // at the end of a process the loop may have gone first
        IFEventLoop::Current().KillTimer(TimerID.m_ID);
    }
    *pTimerMapper = {};
    ms_pUnusedTimerObjects->splice(ms_pUnusedTimerObjects->end(), *ms_pActiveTimerObjects, pTimerMapper);
}

bool CTimer::IsActive() const {
    const std::lock_guard Guard(ms_Lock);
    return m_IsActive;
}

std::size_t CTimer::GetActiveCount() {
    const std::lock_guard Guard(ms_Lock);
    return ms_pActiveTimerObjects ? ms_pActiveTimerObjects->size() : 0;
}

std::size_t CTimer::GetUnusedCount() {
    const std::lock_guard Guard(ms_Lock);
    return ms_pUnusedTimerObjects ? ms_pUnusedTimerObjects->size() : 0;
}

void CTimer::TimerProc(std::uint32_t Id) {
    CTimer* pTimer = nullptr;
    {
        const std::lock_guard Guard(ms_Lock);
        if (!ms_pActiveTimerObjects) {
            return;
        }
        const CTimerID TimerID{Id, CTimerID::Callback, nullptr};
        const auto pTimerMapper = FindTimerMapper(nullptr, &TimerID);
        if (pTimerMapper == ms_pActiveTimerObjects->end() || pTimerMapper->m_pTimer == nullptr) {
            return;  // a tick that comes after Stop
        }
        RV_ASSERT(g_pLog, pTimerMapper->GetCount() != 0, "must be != 0");
        pTimer = pTimerMapper->m_pTimer;
        if (pTimerMapper->m_Count != ENDLESS) {
            if (static_cast<std::int32_t>(pTimerMapper->m_Count) < 1) {
                return;
            }
            if (--pTimerMapper->m_Count == 0) {
                // Before the callback, so that it finds the timer stopped and may start it again.
                pTimer->Stop();
            }
        }
        RV_LOG(g_pLog, TIMER_TOPIC, "Timer", "CTimer::OnTimer() called");
    }
    pTimer->OnTimer();  // the timer may be gone afterwards
}

CTimer::CTimerMapperList::iterator CTimer::FindTimerMapper(const CTimer* pTimer, const CTimerID* pID) {
    RV_ASSERT_AS(g_pLog, (pTimer == nullptr) != (pID == nullptr),
                 "((pTimer==NULL) || (pID==NULL)) && ((pTimer!=NULL) || (pID!=NULL))", "must be valid",
                 false);
    return std::ranges::find_if(*ms_pActiveTimerObjects, [=](const CTimerMapper& rMapper) {
        return pTimer != nullptr ? rMapper.m_pTimer == pTimer : pID != nullptr && rMapper.m_TimerID == *pID;
    });
}

CTimer::CTimerMapperList::iterator CTimer::CreateTimerMapper() {
    // Records move between the two lists with their nodes, so that a steady cycle allocates nothing.
    if (ms_pUnusedTimerObjects->empty()) {
        ms_pUnusedTimerObjects->emplace_front();
    }
    const auto pRet = ms_pUnusedTimerObjects->begin();
    RV_ASSERT_AS(g_pLog, pRet != ms_pUnusedTimerObjects->end(), "pRet", "must be available", false);
    const std::size_t nUnused = ms_pUnusedTimerObjects->size() - 1;
    if (nUnused >= MANY_UNUSED) {
        const std::string Text = "there are " + std::to_string(nUnused) + " unused TimerMapper objects!";
        RV_ASSERT_AS(g_pLog, false, "ms_pUnusedTimerObjects->GetCount() < 255", Text.c_str(), false);
    }
    return pRet;
}

}  // namespace Base
