// A real clock that is set back and forth, see diskfaults.cpp.
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "tests/faults/diskplan.h"

namespace {

/// The real clock's offset, s: another one each so many readings.
class CShifts {
public:
    CShifts() {
        const char* const pText = std::getenv(DiskPlan::CLOCK);
        for (const char* p = pText; p != nullptr && *p != '\0' && m_nShifts < MOST;) {
            char* pEnd = nullptr;
            m_Shifts[m_nShifts++] = std::strtol(p, &pEnd, 10);
            p = *pEnd == ',' ? pEnd + 1 : nullptr;
        }
    }
    long Get() {
        if (m_nShifts == 0) {
            return 0;
        }
        return m_Shifts[(m_nReadings++ / READINGS) % m_nShifts];
    }

private:
    static constexpr std::size_t MOST = 16;
    static constexpr std::size_t READINGS = 5;
    long m_Shifts[MOST] = {};
    std::size_t m_nShifts = 0;
    std::atomic<std::size_t> m_nReadings = 0;
};

long GetShift() {
    static CShifts s_Shifts;
    return s_Shifts.Get();
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t Clock, timespec* pTime) {
    const auto nResult = static_cast<int>(::syscall(SYS_clock_gettime, Clock, pTime));
    if (nResult == 0 && Clock == CLOCK_REALTIME) {
        pTime->tv_sec += GetShift();
    }
    return nResult;
}
int gettimeofday(timeval* pTime, void* /*pZone*/) {
    timespec Time{};
    clock_gettime(CLOCK_REALTIME, &Time);
    pTime->tv_sec = Time.tv_sec;
    pTime->tv_usec = Time.tv_nsec / 1000;
    return 0;
}
time_t time(time_t* pTime) {
    timespec Time{};
    clock_gettime(CLOCK_REALTIME, &Time);
    if (pTime != nullptr) {
        *pTime = Time.tv_sec;
    }
    return Time.tv_sec;
}

}  // extern "C"
