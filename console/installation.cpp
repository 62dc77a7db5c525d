#include "console/installation.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "platform/system/environment.h"
#include "platform/system/files.h"
#include "platform/system/text.h"

namespace {

namespace fs = std::filesystem;

/// Marks a directory as an installation: the module looks for the console's program file by this name.
constexpr const char* MARKER = "mcon.exe";

fs::path GetUserRoot() {
    if (const char* pData = getenv("XDG_DATA_HOME"); pData != nullptr && *pData != '\0') {
        return fs::path(pData) / "corvane";
    }
    const char* pHome = getenv("HOME");
    return fs::path(pHome != nullptr ? pHome : ".") / ".local" / "share" / "corvane";
}

/// The module looks for the root by rules of its own, and goes elsewhere without a word if they aren't met:
/// no more than 260 characters, "\" separates directories, white space at the end doesn't count.
void RefuseWhatTheModuleCannotFind(const fs::path& rRoot) {
    const std::string Root = rRoot.string();
    std::string Why;
    if (Root.find('\\') != std::string::npos) {
        Why = "its name must hold no \"\\\", which separates directories for the module";
    } else if (Text::Trim(Root) != Root) {
        Why = "its name must not end in a blank";
    } else if (Files::GetFullPath(Root).empty()) {
        Why = "its path has " + std::to_string(Root.size()) + " characters, and 260 are possible";
    } else {
        return;
    }
    throw std::runtime_error("the installation root \"" + Root + "\" can't be used: " + Why +
                             "; give another directory with --config-dir");
}

/// Where the root will be once it is made.
fs::path Resolve(const fs::path& rRoot) {
    std::error_code Error;
    fs::path Resolved = fs::weakly_canonical(fs::absolute(rRoot, Error), Error);
    if (!Resolved.has_filename()) {
        Resolved = Resolved.parent_path();  // it ended in a separator
    }
    return Error ? rRoot : Resolved;
}

}  // namespace

CConsoleInstallation::CConsoleInstallation(const std::string& rDirectory, bool bTemporary) {
    if (rDirectory.empty() && bTemporary) {
        m_Temporary.emplace();
        m_Root = m_Temporary->GetPath();
    } else {
        m_Root = rDirectory.empty() ? GetUserRoot() : fs::path(rDirectory);
    }
    RefuseWhatTheModuleCannotFind(Resolve(m_Root));
    try {
        for (const char* pFolder : {"cnf", "ctrl", "ctrl/help", "log"}) {
            fs::create_directories(m_Root / pFolder);
        }
        m_Root = fs::canonical(m_Root);
    } catch (const fs::filesystem_error& rError) {
        throw std::runtime_error("the installation root " + m_Root.string() +
                                 " can't be used: " + rError.code().message() +
                                 "; give a directory that can be written with --config-dir");
    }
    const fs::path Marker = m_Root / "ctrl" / MARKER;
    if (!fs::exists(Marker) && !(std::ofstream(Marker) << "This file marks the root of an installation.\n")) {
        throw std::runtime_error("the installation root " + m_Root.string() +
                                 " can't be written; give another directory with --config-dir");
    }
    setenv("CORVANE_ROOT_DIR", m_Root.c_str(), 1);
    unsetenv("CORVANE_ROOT_DIR_AUTO_DETECT");
}

std::string CConsoleInstallation::GetDatabaseConnection() const {
    return ChooseDatabaseConnection(GetDatabaseFile().string());
}

std::string ChooseDatabaseConnection(const std::string& rFile) {
    const std::string Shared = GetEnvironment("CORVANE_DATABASE");
    return Shared.empty() ? "sqlite:" + rFile : Shared;
}

CInstallationLock::CInstallationLock(const CConsoleInstallation& rInstallation) {
    const fs::path Path = rInstallation.GetConfigDirectory() / FILE_NAME;
    m_File = CDescriptor(::open(Path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660));
    if (!m_File.IsOpen()) {
        throw std::runtime_error(Path.string() +
                                 " can't be written: " + std::generic_category().message(errno) +
                                 "; give another directory with --config-dir");
    }
    if (::flock(m_File.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        std::string Holder;
        std::getline(std::ifstream(Path), Holder);
        throw std::runtime_error("another console" + (Holder.empty() ? "" : " (process " + Holder + ")") +
                                 " works in " + rInstallation.GetRoot().string() +
                                 ": close it, or give another directory with --config-dir");
    }
    const std::string Id = std::to_string(::getpid()) + "\n";
    if (::ftruncate(m_File.Get(), 0) == 0) {
        // Only for whoever is refused; without it the lock holds as well.
        [[maybe_unused]] const ssize_t nWritten = ::write(m_File.Get(), Id.data(), Id.size());
    }
}
