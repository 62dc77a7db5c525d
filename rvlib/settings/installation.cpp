#include "rvlib/settings/installation.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/system/environment.h"
#include "platform/system/files.h"
#include "platform/system/text.h"
#include "rvlib/settings/registry.h"

namespace {

constexpr std::size_t ENVIRONMENT_BUFFER = 4096;
/// Class id of the installation's control, under which its in-process server is registered.
constexpr const char* CONTROL_CLASS_ID = "{6E2B7C54-93D1-4A0F-8B6E-1F5D0C27A9E3}";
constexpr const char* CONTROL_FILE = "Kestrel.ocx";
constexpr const char* PROGRAM_FILE = "mcon.exe";
constexpr const char* CONTROL_DIRECTORY = "ctrl";

std::string ReadEnvironment(const char* pName) {
    return GetEnvironment(pName, ENVIRONMENT_BUFFER);
}

/// Directory of the installed control, empty if it isn't installed.
CPath FindControlDirectory() {
    CWKRegistry Key;
    std::string Server;
    if (!Key.Open(Registry::Root::eClassesRoot,
                  "CLSID\\" + std::string(CONTROL_CLASS_ID) + "\\InprocServer32", Registry::Access::eQuery) ||
        !Key.GetString(nullptr, Server)) {
        return {};
    }
    const CPath File(Server);
    return Text::EqualNoCase(File.GetFileName(), CONTROL_FILE) ? File.GetDirectory() : CPath();
}

/// The root, found at first use.
class CInstallationRoot {
public:
    const CPath& Get() {
        if (!m_bComputed) {
            m_Root = ChooseRootDirectory({CPath(ReadEnvironment("ALLUSERSPROFILE")).Append("corvane"),
                                          ValidateRootDirectory(Files::GetProgramDirectory()),
                                          ValidateRootDirectory(FindControlDirectory()),
                                          ValidateRootDirectory(ReadEnvironment("CORVANE_ROOT_DIR")),
                                          ReadEnvironment("CORVANE_ROOT_DIR_AUTO_DETECT")});
            m_bComputed = true;
        }
        return m_Root;
    }
    void Reset() { m_bComputed = false; }

private:
    bool m_bComputed = false;
    CPath m_Root;
};

CInstallationRoot& InstallationRoot() {
    static CInstallationRoot s_Root;
    return s_Root;
}

}  // namespace

CPath ValidateRootDirectory(const std::string& rCandidate) {
    const CPath Candidate(Text::Trim(rCandidate));
    if (Candidate.IsEmpty()) {
        return {};
    }
    if (CPath(Candidate).Append(CONTROL_DIRECTORY).Append(PROGRAM_FILE).IsFile()) {
        return Candidate.GetFullPath();
    }
    if ((Candidate.GetFileName() == CONTROL_DIRECTORY) && CPath(Candidate).Append(PROGRAM_FILE).IsFile()) {
        return CPath(Candidate).Append("..").GetFullPath();
    }
    return {};
}

CPath ChooseRootDirectory(const CRootCandidates& rCandidates) {
    CPath Root = rCandidates.m_Default;
    if (!rCandidates.m_Program.IsEmpty()) {
        Root = rCandidates.m_Program;
    } else if (!rCandidates.m_Control.IsEmpty()) {
        Root = rCandidates.m_Control;
    }
    // Exactly these, letter by letter: anything else keeps the search automatic.
    constexpr std::array<std::string_view, 4> OFF = {"", "0", "false", "FALSE"};
    const bool bAutoDetect = std::find(OFF.begin(), OFF.end(), rCandidates.m_AutoDetect) == OFF.end();
    if (!rCandidates.m_Environment.IsEmpty() && !bAutoDetect) {
        Root = rCandidates.m_Environment;
    }
    return Root;
}

CPath GetRootDirectory() {
    return InstallationRoot().Get();
}

CPath GetConfigDirectory() {
    return GetRootDirectory().Append("cnf");
}

CPath GetConfigFile() {
    return GetConfigDirectory().Append("mcon.xdb");
}

CPath GetControlDirectory() {
    return GetRootDirectory().Append(CONTROL_DIRECTORY);
}

CPath GetHelpDirectory() {
    return GetControlDirectory().Append("help");
}

CPath GetWeightPositionFile() {
    return GetConfigDirectory().Append("vorwuchttemp.txt");
}

void ResetInstallationRootForTest() {
    InstallationRoot().Reset();
}
