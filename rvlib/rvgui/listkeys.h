#pragma once
#include <optional>

#include "platform/window/keys.h"

namespace Gui {

/// More rows than any list has.
constexpr int ALL_ROWS = 1 << 28;

/// By how many rows a key moves downwards in a list: the arrows, Page Up and Down (nPage rows), Home and End
/// (all); nothing for other keys.
constexpr std::optional<int> GetRowsToMove(UINT Key, int nPage) {
    switch (Key) {
        case VK_UP:
            return -1;
        case VK_DOWN:
            return 1;
        case VK_PRIOR:
            return -nPage;
        case VK_NEXT:
            return nPage;
        case VK_HOME:
            return -ALL_ROWS;
        case VK_END:
            return ALL_ROWS;
        default:
            return std::nullopt;
    }
}

}  // namespace Gui
