#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "platform/system/descriptor.h"
#include "platform/system/temporarydirectory.h"

/// The installation root that a run works in: the configuration directory with database, settings and weight
/// positions. Made when missing. A temporary one is removed at the end.
class CConsoleInstallation {
public:
    /// rDirectory empty: a temporary root if bTemporary, else the user's own. Throws std::runtime_error if
    /// the root can't be made or written to, or if the module couldn't find it.
    CConsoleInstallation(const std::string& rDirectory, bool bTemporary);
    CConsoleInstallation(const CConsoleInstallation&) = delete;
    CConsoleInstallation& operator=(const CConsoleInstallation&) = delete;

    const std::filesystem::path& GetRoot() const { return m_Root; }
    std::filesystem::path GetConfigDirectory() const { return m_Root / "cnf"; }
    std::filesystem::path GetDatabaseFile() const { return GetConfigDirectory() / "prebal.db"; }
    /// Of the store: what the environment names, for consoles that share one, else the file.
    std::string GetDatabaseConnection() const;
    std::filesystem::path GetHelpDirectory() const { return m_Root / "ctrl" / "help"; }
    std::filesystem::path GetLogDirectory() const { return m_Root / "log"; }

private:
    std::optional<CTemporaryDirectory> m_Temporary;
    std::filesystem::path m_Root;
};

/// A plant whose consoles share one database names it in the environment; otherwise it is this file.
std::string ChooseDatabaseConnection(const std::string& rFile);

/// The file holds the process id of the console that works in the installation; what counts is the lock on
/// it. Held by the one console that works in an installation: two would overwrite each other's settings and
/// weight positions. What is no console needs none. It ends with the process, however that ends.
class CInstallationLock {
public:
    /// Throws std::runtime_error, which names the other process, if another console holds it.
    explicit CInstallationLock(const CConsoleInstallation& rInstallation);

    /// In the configuration directory.
    static constexpr const char* FILE_NAME = "console.lock";

private:
    CDescriptor m_File;
};
