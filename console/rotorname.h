#pragma once
#include <string>

/// A name that somebody gave, as it is kept: UTF-8, with U+FFFD for what isn't, a blank for each run of
/// blanks and control characters, none at its ends.
std::string CleanName(const std::string& rName);
