#pragma once
#include <cstdint>
#include <functional>
#include <span>
#include <string>

/// Cuts a stream of bytes into lines. A line longer than the limit is thrown away up to its end and reported,
/// so that a peer that sends no line ends can't fill the memory.
class CLineSplitter {
public:
    static constexpr std::size_t MAX_LINE = 65536;
    /// A line without its end ("\n" or "\r\n").
    using LineHandler = std::function<void(const std::string& rLine)>;
    using OverlongHandler = std::function<void()>;

    CLineSplitter(LineHandler OnLine, OverlongHandler OnOverlong)
        : m_OnLine(std::move(OnLine)), m_OnOverlong(std::move(OnOverlong)) {}

    void Put(std::span<const std::uint8_t> Bytes);
    /// Forgets a line that has begun; after a lost connection.
    void Reset();

private:
    void EndLine();

    LineHandler m_OnLine;
    OverlongHandler m_OnOverlong;
    std::string m_Line;
    bool m_bOverlong = false;
};
