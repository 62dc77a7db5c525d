#pragma once
#include "platform/window/types.h"

// The colours of the page, as tests expect them.
namespace PageColors {

constexpr COLORREF PANEL = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF RING = RGB(0xC0, 0xC0, 0xC0);
constexpr COLORREF INK = RGB(0x00, 0x38, 0x68);
constexpr COLORREF FINAL_GOOD = RGB(0x00, 0x68, 0x38);
constexpr COLORREF FINAL_BAD = RGB(0xCE, 0x00, 0x00);
constexpr COLORREF STALE = RGB(0xA0, 0xA0, 0xA0);
constexpr COLORREF BLACK = RGB(0x00, 0x00, 0x00);
constexpr COLORREF WHITE = RGB(0xFF, 0xFF, 0xFF);

}  // namespace PageColors
