// How late the 50 ms sample clock reaches the window thread, beside programs that keep the computer busy; for
// comparison a bare thread of ordinary priority that sleeps until the same moments. Real time: it takes what
// --seconds says, for each number of neighbours.
//
//     bench_ticks [--seconds 20] [--neighbours 0 1 2 4]
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

#include "platform/qt/qteventloop.h"
#include "rvlib/rvbas/base/messagewnd.h"

namespace {

using CClock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds PERIOD{50};

/// Programs that compute without end.
class CNeighbours {
public:
    explicit CNeighbours(int nPrograms) {
        for (int i = 0; i < nPrograms; ++i) {
            const pid_t Pid = ::fork();
            if (Pid == 0) {
                for (volatile unsigned n = 0; n < 2;) {
                }
            }
            m_Pids.push_back(Pid);
        }
    }
    ~CNeighbours() {
        for (const pid_t Pid : m_Pids) {
            ::kill(Pid, SIGKILL);
            ::waitpid(Pid, nullptr, 0);
        }
    }
    CNeighbours(const CNeighbours&) = delete;
    CNeighbours& operator=(const CNeighbours&) = delete;

private:
    std::vector<pid_t> m_Pids;
};

/// The window that ticks arrive at.
class CReceiver : public Base::CMessageWnd {
public:
    std::vector<CClock::time_point> m_Arrived;

protected:
    void OnMessageWndMessage(WPARAM, LPARAM) override { m_Arrived.push_back(CClock::now()); }
};

std::vector<CClock::time_point> RunSampleClock(std::chrono::seconds Time) {
    CQtEventLoop Loop;
    CReceiver Receiver;
    Receiver.CreateMessageWindow();
    const std::uint32_t Handle = Loop.StartMultimediaTimer(
        PERIOD.count(), 1, [&Receiver](std::uint32_t) { Receiver.PostMessage(WM_RV_MESSAGEWND); });
    Loop.RunUntil([] { return false; }, static_cast<std::uint32_t>(Time.count()) * 1000);
    Loop.KillMultimediaTimer(Handle);
    Receiver.DestroyWindow();
    return Receiver.m_Arrived;
}

std::vector<CClock::time_point> RunBareThread(std::chrono::seconds Time) {
    std::vector<CClock::time_point> Arrived;
    std::thread([&] {
        const auto Begin = CClock::now();
        for (auto Due = Begin + PERIOD; Due <= Begin + Time; Due += PERIOD) {
            std::this_thread::sleep_until(Due);
            Arrived.push_back(CClock::now());
        }
    }).join();
    return Arrived;
}

/// Beside the grid of periods that the most punctual one stands on.
void Print(const char* pName, const std::vector<CClock::time_point>& rArrived) {
    std::vector<double> Late;
    for (const auto& rMoment : rArrived) {
        const auto Since = rMoment - rArrived.front();
        Late.push_back(std::chrono::duration<double, std::milli>(Since % PERIOD).count());
    }
    // The first one may have been late itself.
    const double Period = std::chrono::duration<double, std::milli>(PERIOD).count();
    for (double& rLate : Late) {
        rLate = rLate > Period * 0.8 ? rLate - Period : rLate;
    }
    const double Earliest = *std::ranges::min_element(Late);
    for (double& rLate : Late) {
        rLate -= Earliest;
    }
    std::ranges::sort(Late);
    const auto nExpected =
        std::lround((rArrived.back() - rArrived.front()) / std::chrono::duration<double>(PERIOD)) + 1;
    std::printf("  %-34s median %7.3f ms, p99 %7.3f ms, worst %7.3f ms, missed %ld of %ld\n", pName,
                Late[Late.size() / 2], Late[Late.size() * 99 / 100], Late.back(),
                nExpected - static_cast<long>(Late.size()), nExpected);
}

bool IsRealTimeAllowed() {
    bool bAllowed = false;
    std::thread([&bAllowed] {
        sched_param Parameters{};
        Parameters.sched_priority = ::sched_get_priority_min(SCHED_FIFO);
        bAllowed = ::sched_setscheduler(0, SCHED_FIFO, &Parameters) == 0;
    }).join();
    return bAllowed;
}

}  // namespace

int main(int argc, char** argv) {
    int nSeconds = 20;
    std::vector<int> Neighbours = {0, 1, 2, 4};
    CLI::App Line("Lateness of the sample clock beside busy programs");
    Line.add_option("--seconds", nSeconds, "for each row")->check(CLI::Range(1, 3600))->capture_default_str();
    Line.add_option("--neighbours", Neighbours, "busy programs")
        ->check(CLI::Range(0, 64))
        ->capture_default_str();
    CLI11_PARSE(Line, argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication App(argc, argv);
    std::printf("%u cores; real-time priority %s\n", std::thread::hardware_concurrency(),
                IsRealTimeAllowed() ? "allowed" : "refused (ulimit -r)");
    for (const int nPrograms : Neighbours) {
        const CNeighbours Busy(nPrograms);
        std::printf("%d busy programs\n", nPrograms);
        Print("sample clock, at the window", RunSampleClock(std::chrono::seconds(nSeconds)));
        Print("bare thread, ordinary priority", RunBareThread(std::chrono::seconds(nSeconds)));
    }
    return 0;
}
