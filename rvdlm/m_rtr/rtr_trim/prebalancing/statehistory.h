#pragma once
#include <cstdint>
#include <deque>
#include <string>

/// The last transitions of a procedure, for service staff and for tests that fail: when, from where to where,
/// at which step, and what caused it.
class CStateHistory {
public:
    static constexpr std::size_t CAPACITY = 64;

    struct CEntry {
        std::uint64_t m_Time;  ///< ms since the event loop was made
        std::string m_From;
        std::string m_To;
        std::string m_Cause;
        std::uint32_t m_Step;
        std::uint32_t m_NumberOfSteps;
    };

    /// The oldest entry goes when there are more than CAPACITY.
    void Add(CEntry Entry);
    /// Oldest first.
    const std::deque<CEntry>& GetEntries() const { return m_Entries; }
    /// A line for each entry, oldest first; the first line says how many older ones were dropped, if any.
    std::string ToString() const;

private:
    std::deque<CEntry> m_Entries;
    std::uint64_t m_nDropped = 0;
};
