#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <map>
#include <memory>

#include "platform/system/eventloop.h"

/// The real event loop: Qt's. There must be a QCoreApplication (or one of its descendants) while it lives,
/// and it belongs to the thread of that application. Multimedia timers have a thread of their own each, which
/// only calls the callback.
class CQtEventLoop : public IFEventLoop {
public:
    /// Makes itself the current loop, and puts the former one back at the end.
    CQtEventLoop();
    ~CQtEventLoop() override;
    CQtEventLoop(const CQtEventLoop&) = delete;
    CQtEventLoop& operator=(const CQtEventLoop&) = delete;

    void Post(std::function<void()> Task) override;
    std::uint32_t SetTimer(std::uint32_t Period, TimerProc Proc) override;
    bool KillTimer(std::uint32_t Id) override;
    std::uint64_t Now() const override { return static_cast<std::uint64_t>(m_Clock.elapsed()); }
    std::chrono::sys_seconds WallClock() const override;
    void Sleep(std::uint32_t Milliseconds) override;
    CTimerCaps GetMultimediaTimerCaps() const override { return {}; }
    /// The resolution is always that of the system's clock.
    std::uint32_t StartMultimediaTimer(std::uint32_t Period, std::uint32_t Resolution,
                                       MultimediaProc Proc) override;
    /// Waits for a callback that is running. False, and no change, when called from that callback.
    bool KillMultimediaTimer(std::uint32_t Handle) override;
    void Run() override;
    void Quit() override;
    bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) override;

private:
    class CTaskEvent;
    /// Receives Qt's timer events, and posted work as events.
    class CReceiver : public QObject {
    public:
        std::map<int, TimerProc> m_Timers;

    protected:
        void timerEvent(QTimerEvent* pEvent) override;
        void customEvent(QEvent* pEvent) override;
    };
    class CMultimediaTimer;

    IFEventLoop* m_pFormer = nullptr;
    QElapsedTimer m_Clock;
    CReceiver m_Receiver;
    std::map<std::uint32_t, std::unique_ptr<CMultimediaTimer>> m_MultimediaTimers;
    std::uint32_t m_LastHandle = 0;
};
