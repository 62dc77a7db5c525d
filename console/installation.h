#pragma once
#include <filesystem>
#include <string>

/// The installation root that a run works in: the configuration directory with database, settings and weight
/// positions. Made when missing. A temporary one is removed at the end.
class CConsoleInstallation {
public:
    /// rDirectory empty: a temporary root if bTemporary, else the user's own. Throws std::runtime_error if
    /// the root can't be made or written to.
    CConsoleInstallation(const std::string& rDirectory, bool bTemporary);
    ~CConsoleInstallation();
    CConsoleInstallation(const CConsoleInstallation&) = delete;
    CConsoleInstallation& operator=(const CConsoleInstallation&) = delete;

    const std::filesystem::path& GetRoot() const { return m_Root; }
    std::filesystem::path GetConfigDirectory() const { return m_Root / "cnf"; }
    std::filesystem::path GetDatabaseFile() const { return GetConfigDirectory() / "prebal.db"; }
    std::filesystem::path GetLogDirectory() const { return m_Root / "log"; }

private:
    std::filesystem::path m_Root;
    bool m_bTemporary = false;
};
