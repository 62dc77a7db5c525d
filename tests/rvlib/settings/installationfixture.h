#pragma once
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "rvlib/settings/installation.h"
#include "tests/support/scopedenvironment.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

/// Shows a path in the message of a failed test.
inline void PrintTo(const CPath& rPath, std::ostream* pOut) {
    *pOut << rPath.GetText();
}

/// A machine of its own: an empty registry, an empty data directory of all users and no installation but the
/// one that a test makes. The test program's own directory holds no installation.
class CInstallationFixture : public testing::Test {
protected:
    CInstallationFixture() { ResetInstallationRootForTest(); }
    ~CInstallationFixture() override { ResetInstallationRootForTest(); }

    /// Puts the program file of an installation into a root.
    void Install(const std::string& rRoot) const {
        WriteTestFile(m_Directory.At(rRoot + "/ctrl/mcon.exe"), "");
    }
    /// An installation with this settings document, in use.
    void InstallSettings(const std::string& rDocument) {
        Install("installed");
        WriteTestFile(m_Directory.At("installed/cnf/mcon.xdb"), rDocument);
        UseRoot("installed");
    }
    void UseRoot(const std::string& rRoot) {
        m_RootDirectory.Set(m_Directory.At(rRoot));
        ResetInstallationRootForTest();
    }
    void WriteRegistry(const std::string& rText) const {
        WriteTestFile(m_Directory.At("registry.ini"), rText);
    }
    /// A path below the fixture's directory in the module's form.
    CPath At(const std::string& rName) const { return CPath(m_Directory.At(rName)); }

    CTempDirectory m_Directory;
    CScopedEnvironment m_AllUsers{"ALLUSERSPROFILE", m_Directory.At("all")};
    CScopedEnvironment m_RootDirectory{"CORVANE_ROOT_DIR", std::nullopt};
    CScopedEnvironment m_AutoDetect{"CORVANE_ROOT_DIR_AUTO_DETECT", std::nullopt};
    CScopedEnvironment m_Registry{"CORVANE_REGISTRY", m_Directory.At("registry.ini")};
};
