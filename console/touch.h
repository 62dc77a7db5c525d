#pragma once
#include <string>

/// Lets the toolkit show its keyboard on the screen for whatever takes text. Before there is an application.
/// Why it can't, with what would help; empty if it can.
std::string PrepareTouchKeyboard();
/// Once there is one: fields that get the focus from the program open the keyboard, too.
void FollowFocusWithKeyboard();
