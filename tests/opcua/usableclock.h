#pragma once
#include <atomic>
#include <chrono>
#include <cstdint>
#include <stop_token>
#include <thread>

/// Time since it was made as this machine could use it, in ms: counts only the moments in which a thread that
/// does nothing else got to run. What a program promises in seconds it can't keep while others have the
/// processor.
class CUsableClock {
public:
    std::uint64_t Now() const { return m_nTicks * ePeriod; }

private:
    static constexpr std::uint64_t ePeriod = 5;

    std::atomic<std::uint64_t> m_nTicks = 0;
    std::jthread m_Thread{[this](const std::stop_token& rStop) {
        while (!rStop.stop_requested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(ePeriod));
            ++m_nTicks;
        }
    }};
};
