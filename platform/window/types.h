#pragma once
// Basic types of the window layer, in the manner of the window system that the module was designed for.
#include <cstdint>

using UINT = std::uint32_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

/// Colour as 0x00BBGGRR; made by RGB().
using COLORREF = std::uint32_t;

/// Colour from its red, green and blue parts, each 0 to 255.
constexpr COLORREF RGB(unsigned Red, unsigned Green, unsigned Blue) {
    return Red | (Green << 8U) | (Blue << 16U);
}
constexpr int GetRValue(COLORREF Color) {
    return static_cast<int>(Color & 0xFFU);
}
constexpr int GetGValue(COLORREF Color) {
    return static_cast<int>((Color >> 8U) & 0xFFU);
}
constexpr int GetBValue(COLORREF Color) {
    return static_cast<int>((Color >> 16U) & 0xFFU);
}
