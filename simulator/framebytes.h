#pragma once
#include <cstdint>
#include <initializer_list>
#include <vector>

/// How figures stand in the modules' frames: numbers with their low byte first.
namespace FrameBytes {

inline void PutBytes(std::vector<std::uint8_t>& rFrame, std::initializer_list<std::uint8_t> Values) {
    for (const std::uint8_t Value : Values) {
        rFrame.push_back(Value);
    }
}

inline void PutWord(std::vector<std::uint8_t>& rFrame, std::uint16_t Value) {
    rFrame.push_back(static_cast<std::uint8_t>(Value & 0xFFU));
    rFrame.push_back(static_cast<std::uint8_t>(Value >> 8U));
}

inline void PutLong(std::vector<std::uint8_t>& rFrame, std::uint32_t Value) {
    PutWord(rFrame, static_cast<std::uint16_t>(Value & 0xFFFFU));
    PutWord(rFrame, static_cast<std::uint16_t>(Value >> 16U));
}

}  // namespace FrameBytes
