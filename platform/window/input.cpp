#include "platform/window/input.h"

#include <atomic>

namespace {

std::atomic<bool> g_bLeftDown{false};
std::atomic<bool> g_bRightDown{false};
std::atomic<bool> g_bSwapped{false};
std::atomic<bool> g_bShiftDown{false};
std::atomic<bool> g_bControlDown{false};

}  // namespace

bool IsPrimaryButtonDown() {
    return g_bSwapped ? g_bRightDown : g_bLeftDown;
}

void SetMouseButtons(bool bLeftDown, bool bRightDown) {
    g_bLeftDown = bLeftDown;
    g_bRightDown = bRightDown;
}

void SetMouseButtonsSwapped(bool bSwapped) {
    g_bSwapped = bSwapped;
}

bool IsShiftDown() {
    return g_bShiftDown;
}

bool IsControlDown() {
    return g_bControlDown;
}

void SetModifierKeys(bool bShift, bool bControl) {
    g_bShiftDown = bShift;
    g_bControlDown = bControl;
}
