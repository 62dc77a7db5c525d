#pragma once
#include <cstdint>
#include <optional>
#include <string>

/// Keeps a press from reaching a key that has just come to mean something else: who presses twice, or a
/// moment late, meant what stood there before. Times in ms of the event loop.
class CKeyGuard {
public:
    /// So long after a change no press counts.
    static constexpr std::uint64_t QUIET = 400;

    /// What the key means now, in any words that differ if it means something else.
    void SetMeaning(const std::string& rMeaning, std::uint64_t Now) {
        if (m_Meaning != rMeaning) {
            m_Meaning = rMeaning;
            m_Changed = Now;
        }
    }
    /// Whether a press that began then is meant for what the key means now.
    bool Takes(std::uint64_t Began) const { return m_Meaning && Began >= m_Changed + QUIET; }

private:
    std::optional<std::string> m_Meaning;
    std::uint64_t m_Changed = 0;
};
