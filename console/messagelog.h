#pragma once
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

/// The newest lines of the log, and what was said to people, for the list of messages. The log may be written
/// by any thread; all else is the window's.
class CMessageLog {
public:
    static constexpr std::size_t MOST_LINES = 2000;

    enum class Level { eMessage, eInformation, eWarning, eError };
    struct CLine {
        std::uint64_t m_Number = 0;  ///< counts all lines there ever were, from 1
        std::chrono::sys_seconds m_Moment;
        Level m_Level = Level::eMessage;
        std::string m_Text;
    };

    /// Listens to the log from now on.
    CMessageLog();
    ~CMessageLog();
    CMessageLog(const CMessageLog&) = delete;
    CMessageLog& operator=(const CMessageLog&) = delete;

    /// What was said to people.
    void Say(const std::string& rText);
    /// Takes in what has been logged since the last time, at the time that it is now.
    void Collect();
    /// The newest MOST_LINES, oldest first.
    const std::deque<CLine>& GetLines() const { return m_Lines; }

    /// Whether a line is of that level at least, and has all words of a text, in whatever case. What was said
    /// to people counts as a warning: they should find it.
    static bool Matches(const CLine& rLine, Level Least, const std::string& rWords);

private:
    struct CPending;
    void Add(Level How, std::string Text);

    std::shared_ptr<CPending> m_pPending;
    std::shared_ptr<void> m_pLogGuard;
    std::deque<CLine> m_Lines;
    std::uint64_t m_nLast = 0;
};
