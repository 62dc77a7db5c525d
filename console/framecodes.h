#pragma once
#include <cstddef>
#include <cstdint>

/// What a frame is about, by its first byte, for those that listen beside the modules' protocols; the same in
/// both families.
namespace FrameCodes {

constexpr std::size_t HEADER = 3;  ///< bytes before what it says
constexpr std::uint8_t MODULE_STATE = 0x08;
constexpr std::uint8_t ACTIVE_SET = 0x10;
constexpr std::uint8_t MODULE_DATA = 0x11;
constexpr std::uint8_t SPEED = 0x1C;

}  // namespace FrameCodes
