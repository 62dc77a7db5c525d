#pragma once
#include <chrono>
#include <string>

/// A moment in the time zone of this computer, by a format of strftime ("%d.%m.%Y"). Empty for a moment that
/// no calendar has.
std::string FormatLocalTime(std::chrono::sys_seconds Moment, const char* pFormat);
