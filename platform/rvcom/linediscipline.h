#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

/// Line discipline of the serial link: SLIP (RFC 1055) around the frame's bytes and a CRC-16/IBM-3740 over
/// them (polynomial 0x1021, initial value 0xFFFF, no reflection, no final xor), low byte first.
namespace LineDiscipline {

/// Lengths that a frame may have, without its CRC.
constexpr std::size_t MIN_FRAME = 3;
constexpr std::size_t MAX_FRAME = 2048;

std::uint16_t Crc16(std::span<const std::uint8_t> Bytes);

/// The frame as bytes for the line: END, escaped frame and CRC, END.
std::vector<std::uint8_t> Encode(std::span<const std::uint8_t> Frame);

/// Takes bytes from the line in any portions and hands out whole frames. Bad ones are dropped and counted;
/// the next END begins afresh, so that no damage outlasts a frame.
class CDecoder {
public:
    using FrameHandler = std::function<void(std::span<const std::uint8_t>)>;
    explicit CDecoder(FrameHandler Handler) : m_Handler(std::move(Handler)) {}

    void Put(std::span<const std::uint8_t> Bytes);
    /// Forgets a frame that has begun; after a lost link.
    void Reset();

    /// Frames whose CRC doesn't fit or that hold an escape of no meaning.
    std::uint64_t GetBadCrc() const { return m_nBadCrc; }
    std::uint64_t GetTooShort() const { return m_nTooShort; }
    std::uint64_t GetTooLong() const { return m_nTooLong; }

private:
    void EndFrame();

    FrameHandler m_Handler;
    std::vector<std::uint8_t> m_Buffer;  ///< frame and CRC, unescaped
    bool m_bEscaped = false;
    bool m_bTooLong = false;
    bool m_bBadEscape = false;
    std::uint64_t m_nBadCrc = 0;
    std::uint64_t m_nTooShort = 0;
    std::uint64_t m_nTooLong = 0;
};

}  // namespace LineDiscipline
