#pragma once
#include <filesystem>
#include <string>
#include <vector>

/// What the file for service staff is made of.
struct CServiceSources {
    std::filesystem::path m_Root;                  ///< of the installation: log, cnf
    std::filesystem::path m_Store;                 ///< file of the database; empty if it lies on a server
    std::vector<std::filesystem::path> m_Reports;  ///< of runs; those that aren't there are left out
};

/// Packs log, settings, database and reports into one file (tar, compressed), which appears as a whole or not
/// at all. No secret goes into it: of the NC's configuration only where it is, of a code nothing, no key
/// files. Returns why there is none; empty if there is.
std::string MakeServiceBundle(const CServiceSources& rSources, const std::filesystem::path& rFile);
