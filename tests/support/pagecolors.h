#pragma once
#include "platform/window/types.h"

// The colours of the page, as tests expect them.
namespace PageColors {

constexpr COLORREF c_Panel = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF c_Ring = RGB(0xC0, 0xC0, 0xC0);
constexpr COLORREF c_Ink = RGB(0x00, 0x38, 0x68);
constexpr COLORREF c_FinalGood = RGB(0x00, 0x68, 0x38);
constexpr COLORREF c_FinalBad = RGB(0xCE, 0x00, 0x00);
constexpr COLORREF c_Stale = RGB(0xA0, 0xA0, 0xA0);
constexpr COLORREF c_Black = RGB(0x00, 0x00, 0x00);
constexpr COLORREF c_White = RGB(0xFF, 0xFF, 0xFF);

}  // namespace PageColors
