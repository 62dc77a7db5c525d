#pragma once
#include <string>

/// Value of an environment variable, empty if absent; at most nBuffer - 1 characters are looked at, a longer
/// value counts as absent. ALLUSERSPROFILE, which not every system sets, is by default the user's data
/// directory.
std::string GetEnvironment(const std::string& rName, std::size_t nBuffer = 4096);
