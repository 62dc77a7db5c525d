#pragma once
#include <algorithm>
#include <cstdint>

/// Whether the ticks of a clock came as they should: on a computer that others keep busy they come late or
/// not at all, and an average then holds fewer samples of its window than it seems. Times in ms.
class CTickWatch {
public:
    void Begin(std::uint64_t Now) {
        m_Last = Now;
        m_nTicks = 0;
        m_LongestPause = 0;
    }
    void Tick(std::uint64_t Now) {
        ++m_nTicks;
        m_LongestPause = std::max(m_LongestPause, Now - m_Last);
        m_Last = Now;
    }
    std::uint32_t GetCount() const { return m_nTicks; }
    /// Between two ticks, or the beginning and the first.
    std::uint64_t GetLongestPause() const { return m_LongestPause; }
    /// A pause was longer than one and a half periods: from there on a tick is nearer to the next one's
    /// place.
    bool HasSuffered(std::uint32_t Period) const { return 2 * m_LongestPause > 3 * std::uint64_t{Period}; }

private:
    std::uint64_t m_Last = 0;
    std::uint32_t m_nTicks = 0;
    std::uint64_t m_LongestPause = 0;
};
