#include "console/installation.h"

#include <stdlib.h>

#include <fstream>
#include <stdexcept>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// Marks a directory as an installation: the module looks for the console's program file by this name.
constexpr const char* MARKER = "mcon.exe";

fs::path MakeTemporaryRoot() {
    std::string Name = (fs::temp_directory_path() / "rotor-trim-XXXXXX").string();
    if (mkdtemp(Name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory can be made in " +
                                 fs::temp_directory_path().string());
    }
    return Name;
}

fs::path GetUserRoot() {
    if (const char* pData = getenv("XDG_DATA_HOME"); pData != nullptr && *pData != '\0') {
        return fs::path(pData) / "corvane";
    }
    const char* pHome = getenv("HOME");
    return fs::path(pHome != nullptr ? pHome : ".") / ".local" / "share" / "corvane";
}

}  // namespace

CConsoleInstallation::CConsoleInstallation(const std::string& rDirectory, bool bTemporary)
    : m_bTemporary(rDirectory.empty() && bTemporary) {
    m_Root = !rDirectory.empty() ? fs::path(rDirectory) : bTemporary ? MakeTemporaryRoot() : GetUserRoot();
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

CConsoleInstallation::~CConsoleInstallation() {
    if (m_bTemporary) {
        std::error_code Ignored;
        fs::remove_all(m_Root, Ignored);
    }
}
