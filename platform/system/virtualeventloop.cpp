#include "platform/system/virtualeventloop.h"

#include <algorithm>
#include <utility>

#include "platform/system/vectorregisters.h"

CVirtualEventLoop::CVirtualEventLoop() : m_pFormer(SetCurrent(this)) {}

CVirtualEventLoop::~CVirtualEventLoop() {
    SetCurrent(m_pFormer);
}

void CVirtualEventLoop::Post(std::function<void()> Task) {
    const std::lock_guard Guard(m_Lock);
    m_Tasks.push_back(std::move(Task));
}

std::uint32_t CVirtualEventLoop::SetTimer(std::uint32_t Period, TimerProc Proc) {
    if (m_nFailTimers > 0) {
        --m_nFailTimers;
        return 0;
    }
    return AddTimer(std::max(Period, 1U), false, std::move(Proc));
}

bool CVirtualEventLoop::KillTimer(std::uint32_t Id) {
    return RemoveTimer(Id, false);
}

std::chrono::sys_seconds CVirtualEventLoop::WallClock() const {
    using namespace std::chrono;
    return sys_days{2024y / January / 1} + duration_cast<seconds>(milliseconds(m_Now));
}

std::uint32_t CVirtualEventLoop::StartMultimediaTimer(std::uint32_t Period, std::uint32_t /*Resolution*/,
                                                      MultimediaProc Proc) {
    if (m_nFailMultimediaTimers > 0) {
        --m_nFailMultimediaTimers;
        return 0;
    }
    if (Period < m_Caps.m_PeriodMin || Period > m_Caps.m_PeriodMax) {
        return 0;
    }
    return AddTimer(Period, true, std::move(Proc));
}

bool CVirtualEventLoop::KillMultimediaTimer(std::uint32_t Handle) {
    return RemoveTimer(Handle, true);
}

std::uint32_t CVirtualEventLoop::AddTimer(std::uint32_t Period, bool bMultimedia,
                                          std::function<void(std::uint32_t)> Proc) {
    while (m_NextId == 0 || m_Timers.contains(m_NextId)) {
        ++m_NextId;
    }
    const std::uint32_t Id = m_NextId++;
    CTimer& rTimer = m_Timers[Id];
    rTimer = {m_Now + Period, m_NextOrder++, Period, bMultimedia, std::move(Proc)};
    m_Schedule.emplace(rTimer.GetPlace(), Id);
    return Id;
}

bool CVirtualEventLoop::RemoveTimer(std::uint32_t Id, bool bMultimedia) {
    const auto Found = m_Timers.find(Id);
    if (Found == m_Timers.end() || Found->second.m_bMultimedia != bMultimedia) {
        return false;
    }
    m_Schedule.erase(Found->second.GetPlace());
    m_Timers.erase(Found);
    return true;
}

bool CVirtualEventLoop::RunOneTask() {
    std::function<void()> Task;
    {
        const std::lock_guard Guard(m_Lock);
        if (m_Tasks.empty()) {
            return false;
        }
        Task = std::move(m_Tasks.front());
        m_Tasks.pop_front();
    }
    ReleaseVectorRegisters();
    Task();
    return true;
}

bool CVirtualEventLoop::RunOneTimer(std::uint64_t Limit) {
    const auto First = m_Schedule.begin();
    if (First == m_Schedule.end() || First->first.first > Limit) {
        return false;
    }
    const std::uint32_t Id = First->second;
    CTimer& rTimer = m_Timers.at(Id);
    m_Schedule.erase(First);
    m_Now = std::max(m_Now, rTimer.m_Due);
    // Late: on to the first instant of the timer's rhythm that still lies ahead.
    rTimer.m_Due += ((m_Now - rTimer.m_Due) / rTimer.m_Period + 1) * rTimer.m_Period;
    m_Schedule.emplace(rTimer.GetPlace(), Id);
    // A copy, as the callback may kill its own timer.
    const std::function<void(std::uint32_t)> Proc = rTimer.m_Proc;
    ReleaseVectorRegisters();
    Proc(Id);
    return true;
}

void CVirtualEventLoop::Run() {
    constexpr std::uint64_t FOREVER = UINT64_MAX;
    m_bQuit = false;
    while (!m_bQuit && (RunOneTask() || RunOneTimer(FOREVER))) {
    }
}

bool CVirtualEventLoop::RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) {
    const std::uint64_t Limit = m_Now + Timeout;
    while (!rDone()) {
        if (m_Now > Limit) {
            return false;
        }
        if (!RunOneTask() && !RunOneTimer(Limit)) {
            m_Now = std::max(m_Now, Limit);
            return rDone();
        }
    }
    return true;
}

void CVirtualEventLoop::Advance(std::uint32_t Milliseconds) {
    const std::uint64_t Limit = m_Now + Milliseconds;
    while (RunOneTask() || RunOneTimer(Limit)) {
    }
    m_Now = std::max(m_Now, Limit);
}

void CVirtualEventLoop::RunPosted() {
    while (RunOneTask()) {
    }
}
