#pragma once
#include <chrono>
#include <functional>
#include <optional>
#include <utility>

/// Holds pictures of what changes quicker than anybody can see to the rate of a display. It goes by a real
/// clock: an eye does, also where the program's own time runs quicker.
class CDisplayRate {
public:
    using CClock = std::chrono::steady_clock;
    using Now = std::function<CClock::time_point()>;
    /// Between two pictures.
    static constexpr std::chrono::milliseconds PERIOD{16};

    explicit CDisplayRate(Now Clock = CClock::now) : m_Now(std::move(Clock)) {}
    /// True, and the picture counts as made, if the last one lies a period back.
    bool Take() {
        const CClock::time_point Present = m_Now();
        const bool bDue = !m_Last || Present - *m_Last >= PERIOD;
        if (bDue) {
            m_Last = Present;
        }
        return bDue;
    }

private:
    Now m_Now;
    std::optional<CClock::time_point> m_Last;
};
