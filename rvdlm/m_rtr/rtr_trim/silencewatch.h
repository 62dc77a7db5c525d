#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Finds out that a plane's readings stay away although the spindle turns and the electronics is in lock. The
/// sampling takes the latest reading at a fixed rate, so without this a dead line would be averaged as if it
/// were a steady rotor.
///
/// Modules report at rates of their own, so silence is judged by the periods of this module's last reports.
/// While these aren't known the longest one is assumed that a module may have. Readings from before the lock
/// count for nothing: until the first one in lock has come, the limit is when sampling is about to begin.
///
/// No clock of its own. All times in ms, Now is that of the event loop.
class CSilenceWatch {
public:
    /// No silence shorter than this counts: less than the shortest useful window of samples lasts, so that it
    /// can't be filled with one stale reading of a module that reports many times a second.
    static constexpr std::uint64_t SHORTEST_LIMIT = 1000;
    /// The slowest module reports once in so long. What is a quarter longer is no period but an outage.
    static constexpr std::uint64_t LONGEST_PERIOD = 5000;
    /// For the first reading in lock: settling takes 3000, then a reading is asked for, and may be answered
    /// late.
    static constexpr std::uint64_t FIRST_READING = 3900;

    /// A run begins, or the readings aren't of interest any more: nothing is known.
    void Begin() { *this = CSilenceWatch(); }
    /// Speed or lock have changed, or may have.
    void OnConditions(std::uint64_t Now, bool bTurning, bool bInLock);
    /// A reading has come. bReport: the module sent it by itself; answers say nothing of its period.
    void OnReading(std::uint64_t Now, bool bReport);
    /// Looks at the time that has passed; true if the plane is silent.
    bool Tick(std::uint64_t Now);
    bool IsSilent() const { return m_bSilent; }
    /// Silence that would count now.
    std::uint64_t GetLimit() const;

private:
    /// So many of the last periods tell the rate: a single slip doesn't, and a module that changes its rate
    /// is soon known again.
    static constexpr std::size_t PERIODS = 4;

    static constexpr std::uint64_t WithTolerance(std::uint64_t Period) { return Period + Period / 4; }

    bool m_bExpected = false;  ///< readings are to come: the spindle turns, in lock
    bool m_bFirst = true;      ///< none has come since then
    bool m_bSilent = false;
    std::uint64_t m_Since = 0;  ///< the last reading, or when the first one became due
    std::optional<std::uint64_t> m_LastReport;
    std::optional<std::uint64_t> m_AnsweredAt;
    std::vector<std::uint64_t> m_Periods;  ///< the last one at the end
};
