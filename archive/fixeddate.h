#pragma once
#include <chrono>

/// What a report tells in place of the date where its bytes must not depend on the clock.
inline constexpr std::chrono::sys_seconds FIXED_DATE =
    std::chrono::sys_days(std::chrono::year(2026) / std::chrono::January / std::chrono::day(1));
