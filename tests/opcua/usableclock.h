#pragma once
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>

/// Time since it was made as this thread could use it, in ms. What a program promises in seconds it can't
/// keep while others have the processor, so that time doesn't count.
class CUsableClock {
public:
    std::uint64_t Now() {
        const Duration Usable = std::chrono::steady_clock::now() - m_Start - (ReadDelay() - m_DelayAtStart);
        // The delay is booked some time after it was.
        m_Last = std::max(m_Last, Usable);
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(m_Last).count());
    }

private:
    using Duration = std::chrono::nanoseconds;

    /// How long this thread has waited for a processor so far.
    static Duration ReadDelay() {
        std::ifstream In("/proc/thread-self/schedstat");
        std::int64_t Run = 0;
        std::int64_t Delay = 0;
        In >> Run >> Delay;
        return Duration(Delay);
    }

    std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
    Duration m_DelayAtStart = ReadDelay();
    Duration m_Last{};
};
