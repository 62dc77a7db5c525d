#pragma once

/// Whether the primary mouse button is down now: the left one, or the right one when the system swaps them.
bool IsPrimaryButtonDown();

/// State of the buttons as the toolkit reports it; tests use it in the toolkit's place.
void SetMouseButtons(bool bLeftDown, bool bRightDown);
void SetMouseButtonsSwapped(bool bSwapped);
