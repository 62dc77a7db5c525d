#include "platform/qt/endsignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace {

struct CEndSignal {
    int m_nNumber;
    const char* m_pName;
    struct sigaction m_Former {};
};
std::array<CEndSignal, 3> g_Signals = {{{SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}}};

std::atomic<int> g_nFirst = 0;
static_assert(std::atomic<int>::is_always_lock_free);
/// Wakes the loop: a handler may do little else but write.
std::array<int, 2> g_Pipe = {-1, -1};

extern "C" void OnEndSignal(int nSignal) {
    const int nError = errno;
    int nNone = 0;
    if (g_nFirst.compare_exchange_strong(nNone, nSignal)) {
        const char Byte = 0;
        // Nothing could be done about a failure, and it can't fail: it is the pipe's first byte.
        [[maybe_unused]] const ssize_t nWritten = ::write(g_Pipe[1], &Byte, 1);
    }
    errno = nError;
}

}  // namespace

CEndSignals::CEndSignals() {
    if (::pipe2(g_Pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("no pipe can be made: too many files are open");
    }
    g_nFirst = 0;
    for (CEndSignal& rSignal : g_Signals) {
        struct sigaction Action {};
        Action.sa_handler = OnEndSignal;
        Action.sa_flags = SA_RESTART;
        ::sigaction(rSignal.m_nNumber, nullptr, &rSignal.m_Former);
        if (rSignal.m_nNumber != SIGHUP || rSignal.m_Former.sa_handler != SIG_IGN) {
            ::sigaction(rSignal.m_nNumber, &Action, nullptr);
        }
    }
}

CEndSignals::~CEndSignals() {
    for (const CEndSignal& rSignal : g_Signals) {
        ::sigaction(rSignal.m_nNumber, &rSignal.m_Former, nullptr);
    }
    m_pNotifier.reset();
    for (int& rEnd : g_Pipe) {
        ::close(std::exchange(rEnd, -1));
    }
}

std::string CEndSignals::GetName() {
    for (const CEndSignal& rSignal : g_Signals) {
        if (rSignal.m_nNumber == g_nFirst) {
            return rSignal.m_pName;
        }
    }
    return {};
}

void CEndSignals::Watch(std::function<void()> OnSignal) {
    m_pNotifier = std::make_unique<QSocketNotifier>(g_Pipe[0], QSocketNotifier::Read);
    QObject::connect(m_pNotifier.get(), &QSocketNotifier::activated, m_pNotifier.get(),
                     [this, OnSignal = std::move(OnSignal)] {
                         m_pNotifier->setEnabled(false);  // once is enough
                         OnSignal();
                     });
}
