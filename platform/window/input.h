#pragma once

/// Whether the primary mouse button is down now: the left one, or the right one when the system swaps them.
bool IsPrimaryButtonDown();
/// Whether a Shift or Control key is down, as of the event that is being handled.
bool IsShiftDown();
bool IsControlDown();

/// State of the buttons and keys as the toolkit reports it; tests use it in the toolkit's place.
void SetMouseButtons(bool bLeftDown, bool bRightDown);
void SetMouseButtonsSwapped(bool bSwapped);
void SetModifierKeys(bool bShift, bool bControl);
