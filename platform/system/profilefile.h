#pragma once
#include <string>

// Private profile files: "[Section]" lines and "key=value" lines; names compare without regard to case,
// values lose surrounding blanks and one pair of quotes, ";" begins a comment line.

/// Value of a key, cut to nLimit - 1 characters; rDefault if file, section or key is missing.
std::string GetPrivateProfileString(const std::string& rSection, const std::string& rKey,
                                    const std::string& rDefault, std::size_t nLimit,
                                    const std::string& rPath);
/// Drops what the platform keeps of the file in memory.
void FlushPrivateProfile(const std::string& rPath);
