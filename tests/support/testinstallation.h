#pragma once
#include <QTemporaryDir>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "rvlib/settings/installation.h"

/// An installation of its own while it lives: an empty configuration directory, no settings, no feature
/// flags. The environment is put back at the end.
class CTestInstallation {
public:
    CTestInstallation() {
        std::filesystem::create_directories(GetRoot() / "cnf");
        std::filesystem::create_directories(GetRoot() / "ctrl");
        std::ofstream(GetRoot() / "ctrl" / "mcon.exe") << "the file that a root is told by\n";
        m_Root.emplace("CORVANE_ROOT_DIR", GetRoot().string());
        m_AutoDetect.emplace("CORVANE_ROOT_DIR_AUTO_DETECT", "0");
        m_Registry.emplace("CORVANE_REGISTRY", (GetRoot() / "registry.ini").string());
        ResetInstallationRootForTest();
    }
    ~CTestInstallation() {
        m_Root.reset();
        m_AutoDetect.reset();
        m_Registry.reset();
        ResetInstallationRootForTest();
    }
    CTestInstallation(const CTestInstallation&) = delete;
    CTestInstallation& operator=(const CTestInstallation&) = delete;

    std::filesystem::path GetRoot() const { return m_Directory.path().toStdString(); }
    std::filesystem::path GetWeightPositions() const { return GetRoot() / "cnf" / "vorwuchttemp.txt"; }
    /// Switches one feature on in the registry; flags set before are gone.
    void EnableFeature(const std::string& rName) const {
        std::ofstream(GetRoot() / "registry.ini")
            << "[HKEY_LOCAL_MACHINE\\Software\\Corvane Metrology\\FeatureFlags]\n"
            << rName << "=dword:00000001\n";
    }

private:
    class CVariable {
    public:
        CVariable(const char* pName, const std::string& rValue) : m_pName(pName) {
            if (const char* pFormer = std::getenv(pName)) {
                m_Former = pFormer;
            }
            setenv(pName, rValue.c_str(), 1);
        }
        ~CVariable() {
            if (m_Former) {
                setenv(m_pName, m_Former->c_str(), 1);
            } else {
                unsetenv(m_pName);
            }
        }
        CVariable(const CVariable&) = delete;
        CVariable& operator=(const CVariable&) = delete;

    private:
        const char* m_pName;
        std::optional<std::string> m_Former;
    };

    QTemporaryDir m_Directory;
    std::optional<CVariable> m_Root;
    std::optional<CVariable> m_AutoDetect;
    std::optional<CVariable> m_Registry;
};
