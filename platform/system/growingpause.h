#pragma once
#include <algorithm>
#include <cstdint>

/// Pauses before something that was lost is tried again: 0.5 s, then twice as long each time, 10 s at most.
class CGrowingPause {
public:
    static constexpr std::uint32_t FIRST = 500;      ///< ms
    static constexpr std::uint32_t LONGEST = 10000;  ///< ms

    /// The pause to make now, in ms.
    std::uint32_t Next() {
        const std::uint32_t Pause = m_Next;
        m_Next = std::min(2 * m_Next, LONGEST);
        m_bBegun = true;
        return Pause;
    }
    /// What was lost is back and sound.
    void Reset() {
        m_Next = FIRST;
        m_bBegun = false;
    }
    /// Whether a pause was made since the last reset.
    bool HasBegun() const { return m_bBegun; }

private:
    std::uint32_t m_Next = FIRST;
    bool m_bBegun = false;
};
