#pragma once
// The toolkit's events as parameters of the window layer's messages.
#include <string>

#include "platform/window/types.h"

class CWnd;
class QKeyEvent;
class QMouseEvent;
class QSinglePointEvent;
class QWheelEvent;

/// The VK_ number of the key, 0 if it has none.
UINT GetVirtualKey(const QKeyEvent& rEvent);
/// lParam of message 256.
LPARAM GetRepeatParam(const QKeyEvent& rEvent);
/// What the key types; empty for keys that do something.
std::u32string GetCharacters(const QKeyEvent& rEvent);
/// The MK_ flags of what is down.
WPARAM GetMouseFlags(const QSinglePointEvent& rEvent);
/// The message of a press, release, double click or move; 0 for buttons that have none.
UINT GetMouseMessage(const QMouseEvent& rEvent);
/// Sends a turn of the wheel over rWnd to it, and on to its parents until one uses it.
void SendWheel(CWnd& rWnd, QWheelEvent& rEvent);
