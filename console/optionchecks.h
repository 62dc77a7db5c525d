#pragma once
#include <string>

// What the options of several commands take. Each gives what is wrong and what would be right; empty if all
// is well.

/// For what names a file or a directory: an empty text comes from a script whose variable isn't set.
std::string RefuseEmpty(const std::string& rText);
/// A file for a report, whose kind its ending tells.
std::string CheckReportName(const std::string& rText);
std::string CheckLanguage(const std::string& rText);
