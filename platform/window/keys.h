#pragma once
// Numbers of keys in messages 256 and 257. Digits and letters have those of '0' to '9' and 'A' to 'Z'; keys
// that aren't listed send no message but 258 for their character.
#include "platform/window/types.h"

constexpr UINT VK_BACK = 8;
constexpr UINT VK_TAB = 9;
constexpr UINT VK_RETURN = 13;  ///< also that of the number pad
constexpr UINT VK_SHIFT = 16;
constexpr UINT VK_CONTROL = 17;
constexpr UINT VK_MENU = 18;  ///< the Alt key
constexpr UINT VK_ESCAPE = 27;
constexpr UINT VK_SPACE = 32;
constexpr UINT VK_PRIOR = 33;  ///< Page Up
constexpr UINT VK_NEXT = 34;   ///< Page Down
constexpr UINT VK_END = 35;
constexpr UINT VK_HOME = 36;
constexpr UINT VK_LEFT = 37;
constexpr UINT VK_UP = 38;
constexpr UINT VK_RIGHT = 39;
constexpr UINT VK_DOWN = 40;
constexpr UINT VK_INSERT = 45;
constexpr UINT VK_DELETE = 46;
constexpr UINT VK_NUMPAD0 = 96;  ///< to 105 for 9
constexpr UINT VK_MULTIPLY = 106;
constexpr UINT VK_ADD = 107;
constexpr UINT VK_SUBTRACT = 109;
constexpr UINT VK_DECIMAL = 110;
constexpr UINT VK_DIVIDE = 111;
constexpr UINT VK_F1 = 112;  ///< to 123 for F12
constexpr UINT VK_F2 = 113;
