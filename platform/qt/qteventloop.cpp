#include "platform/qt/qteventloop.h"

#include <sched.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <QTimerEvent>
#include <algorithm>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/system/vectorregisters.h"

/// Posted work on its way through Qt's event queue, the only kind of event that the receiver is sent.
class CQtEventLoop::CTaskEvent : public QEvent {
public:
    explicit CTaskEvent(std::function<void()> Task) : QEvent(QEvent::User), m_Task(std::move(Task)) {}

    std::function<void()> m_Task;
};

/// A thread that calls a callback once a period.
class CQtEventLoop::CMultimediaTimer {
public:
    CMultimediaTimer(std::chrono::milliseconds Period, std::function<void()> Proc)
        : m_Thread([Period, Proc = std::move(Proc)](const std::stop_token& rStop) {
              Work(rStop, Period, Proc);
          }) {}

    bool IsOwnThread() const { return m_Thread.get_id() == std::this_thread::get_id(); }

private:
    static void Work(const std::stop_token& rStop, std::chrono::milliseconds Period,
                     const std::function<void()>& rProc) {
        using CClock = std::chrono::steady_clock;
        // Before all programs of ordinary priority, where the system allows it; it does hardly anything.
        sched_param Parameters{};
        Parameters.sched_priority = ::sched_get_priority_min(SCHED_FIFO);
        ::sched_setscheduler(0, SCHED_FIFO | SCHED_RESET_ON_FORK, &Parameters);
        std::mutex Lock;
        std::condition_variable_any Stopped;
        auto Due = CClock::now() + Period;
        while (true) {
            std::unique_lock Guard(Lock);
            Stopped.wait_until(Guard, rStop, Due, [] { return false; });
            if (rStop.stop_requested()) {
                return;
            }
            rProc();
            // What was missed isn't made up for, but the rhythm stays.
            Due += Period;
            if (const auto Now = CClock::now(); Due <= Now) {
                Due += ((Now - Due) / Period + 1) * Period;
            }
        }
    }

    std::jthread m_Thread;  ///< stopped and joined at the end
};

CQtEventLoop::CQtEventLoop() : m_pFormer(SetCurrent(this)) {
    m_Clock.start();
}

CQtEventLoop::~CQtEventLoop() {
    m_MultimediaTimers.clear();  // first, as they post
    SetCurrent(m_pFormer);
}

void CQtEventLoop::Post(std::function<void()> Task) {
    // Qt's queue owns its events.
    QCoreApplication::postEvent(&m_Receiver, std::make_unique<CTaskEvent>(std::move(Task)).release());
}

std::uint32_t CQtEventLoop::SetTimer(std::uint32_t Period, TimerProc Proc) {
    constexpr std::uint32_t LONGEST = std::numeric_limits<int>::max();
    const int Id = m_Receiver.startTimer(static_cast<int>(std::clamp(Period, 1U, LONGEST)), Qt::PreciseTimer);
    if (Id != 0) {
        m_Receiver.m_Timers[Id] = std::move(Proc);
    }
    return static_cast<std::uint32_t>(Id);
}

bool CQtEventLoop::KillTimer(std::uint32_t Id) {
    if (m_Receiver.m_Timers.erase(static_cast<int>(Id)) == 0) {
        return false;
    }
    m_Receiver.killTimer(static_cast<int>(Id));
    return true;
}

void CQtEventLoop::CReceiver::timerEvent(QTimerEvent* pEvent) {
    const auto Found = m_Timers.find(pEvent->timerId());
    if (Found != m_Timers.end()) {
        // A copy, as the callback may kill its own timer.
        const TimerProc Proc = Found->second;
        ReleaseVectorRegisters();
        Proc(static_cast<std::uint32_t>(pEvent->timerId()));
    }
}

void CQtEventLoop::CReceiver::customEvent(QEvent* pEvent) {
    ReleaseVectorRegisters();
    static_cast<CTaskEvent*>(pEvent)->m_Task();
}

std::chrono::sys_seconds CQtEventLoop::WallClock() const {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

void CQtEventLoop::Sleep(std::uint32_t Milliseconds) {
    QThread::msleep(Milliseconds);
}

std::uint32_t CQtEventLoop::StartMultimediaTimer(std::uint32_t Period, std::uint32_t /*Resolution*/,
                                                 MultimediaProc Proc) {
    const CTimerCaps Caps = GetMultimediaTimerCaps();
    if (Period < Caps.m_PeriodMin || Period > Caps.m_PeriodMax) {
        return 0;
    }
    do {
        ++m_LastHandle;
    } while (m_LastHandle == 0 || m_MultimediaTimers.contains(m_LastHandle));
    const std::uint32_t Handle = m_LastHandle;
    try {
        m_MultimediaTimers.emplace(
            Handle, std::make_unique<CMultimediaTimer>(std::chrono::milliseconds(Period),
                                                       [Handle, Proc = std::move(Proc)] { Proc(Handle); }));
    } catch (const std::system_error&) {
        return 0;  // no thread to be had
    }
    return Handle;
}

bool CQtEventLoop::KillMultimediaTimer(std::uint32_t Handle) {
    const auto Found = m_MultimediaTimers.find(Handle);
    if (Found == m_MultimediaTimers.end() || Found->second->IsOwnThread()) {
        return false;
    }
    m_MultimediaTimers.erase(Found);
    return true;
}

void CQtEventLoop::Run() {
    QCoreApplication::exec();
}

void CQtEventLoop::Quit() {
    QCoreApplication::quit();
}

bool CQtEventLoop::RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) {
    const QDeadlineTimer Deadline(Timeout, Qt::PreciseTimer);
    QTimer Wake;  // ends the waiting at the deadline
    Wake.setTimerType(Qt::PreciseTimer);
    Wake.setSingleShot(true);
    Wake.start(static_cast<int>(std::min<std::uint32_t>(Timeout, std::numeric_limits<int>::max())));
    QEventLoop Loop;
    while (!rDone()) {
        if (Deadline.hasExpired()) {
            return false;
        }
        Loop.processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}
