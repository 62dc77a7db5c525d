#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

namespace Comm {

/// What lies behind the first nOffset bytes of a frame; empty if the frame ends before.
inline std::span<const std::uint8_t> Behind(const std::uint8_t* pData, std::size_t nSize,
                                            std::size_t nOffset) {
    return nSize > nOffset ? std::span(pData, nSize).subspan(nOffset) : std::span<const std::uint8_t>();
}

/// Values of several bytes, low byte first. The caller has tested the length.
inline std::uint16_t ReadU16(const std::uint8_t* pData) {
    return static_cast<std::uint16_t>(pData[0] | (pData[1] << 8U));
}
inline std::uint32_t ReadU32(const std::uint8_t* pData) {
    return ReadU16(pData) | (static_cast<std::uint32_t>(ReadU16(pData + 2)) << 16U);
}

/// Bit nBit of a byte as 0 or 1.
inline std::uint32_t ReadBit(std::uint8_t Byte, unsigned nBit) {
    return (static_cast<std::uint32_t>(Byte) >> nBit) & 1U;
}

}  // namespace Comm
