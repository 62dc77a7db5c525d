#pragma once
// What the parameters of the window layer's messages carry.
#include <cstdint>

#include "platform/window/point.h"
#include "platform/window/types.h"

// What is down during a mouse message: the low 16 bits of wParam.
constexpr WPARAM MK_LBUTTON = 1;
constexpr WPARAM MK_RBUTTON = 2;
constexpr WPARAM MK_SHIFT = 4;
constexpr WPARAM MK_CONTROL = 8;
constexpr WPARAM MK_MBUTTON = 16;

/// Bit of lParam in message 256: the key is held down and repeats.
constexpr LPARAM KF_REPEAT = 1 << 30;

/// One notch of the wheel.
constexpr int WHEEL_DELTA = 120;

// What was done to a scroll bar; the positions that a parent usually takes then.
constexpr int SB_LINEUP = 0;         ///< position - one line
constexpr int SB_LINEDOWN = 1;       ///< position + one line
constexpr int SB_PAGEUP = 2;         ///< position - page
constexpr int SB_PAGEDOWN = 3;       ///< position + page
constexpr int SB_THUMBPOSITION = 4;  ///< the thumb was let go at the position given
constexpr int SB_THUMBTRACK = 5;     ///< the thumb is dragged, and is at the position given
constexpr int SB_TOP = 6;
constexpr int SB_BOTTOM = 7;

/// A point in 16 bits each; negative ones, outside a window that has the capture, too.
constexpr LPARAM MakePointParam(CPoint Point) {
    return static_cast<LPARAM>(static_cast<std::uint16_t>(Point.x)) |
           (static_cast<LPARAM>(static_cast<std::uint16_t>(Point.y)) << 16);
}
constexpr CPoint GetPointParam(LPARAM lParam) {
    return {static_cast<std::int16_t>(lParam & 0xFFFF), static_cast<std::int16_t>((lParam >> 16) & 0xFFFF)};
}

/// wParam of message 522: MK_ flags, and the way of the wheel in the 16 bits above.
constexpr WPARAM MakeWheelParam(WPARAM Flags, int Delta) {
    return (Flags & 0xFFFFU) | (static_cast<WPARAM>(static_cast<std::uint16_t>(Delta)) << 16U);
}
constexpr int GetWheelParam(WPARAM wParam) {
    return static_cast<std::int16_t>((wParam >> 16U) & 0xFFFFU);
}

/// wParam of messages 276 and 277: an SB_ code, and the position in the 32 bits above its 16.
constexpr WPARAM MakeScrollParam(int Code, int Position) {
    return (static_cast<WPARAM>(Code) & 0xFFFFU) |
           (static_cast<WPARAM>(static_cast<std::uint32_t>(Position)) << 16U);
}
constexpr int GetScrollCode(WPARAM wParam) {
    return static_cast<int>(wParam & 0xFFFFU);
}
constexpr int GetScrollPosition(WPARAM wParam) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(wParam >> 16U));
}
