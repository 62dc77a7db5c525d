#include "console/installation.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "tests/support/scopedenvironment.h"
#include "tests/support/tempdirectory.h"

namespace fs = std::filesystem;

namespace {

class InstallationTest : public testing::Test {
protected:
    /// A path of so many characters below the place.
    std::string MakePath(std::size_t nCharacters) const {
        std::string Path = m_Place.GetPath().string();
        while (nCharacters - Path.size() > 100) {
            Path += "/" + std::string(80, 'x');
        }
        Path += "/";
        return Path + std::string(nCharacters - Path.size(), 'y');
    }
    static std::string GetRefusal(const std::string& rDirectory) {
        try {
            const CConsoleInstallation Installation(rDirectory, false);
        } catch (const std::runtime_error& rError) {
            return rError.what();
        }
        return {};
    }

    CTempDirectory m_Place;
    CScopedEnvironment m_Root{"CORVANE_ROOT_DIR", std::nullopt};
    CScopedEnvironment m_AutoDetect{"CORVANE_ROOT_DIR_AUTO_DETECT", std::nullopt};
};

}  // namespace

TEST_F(InstallationTest, TakesARootOf260CharactersAndRefusesALongerOne) {
    EXPECT_EQ(GetRefusal(MakePath(260)), "");
    const std::string Refusal = GetRefusal(MakePath(261));
    EXPECT_NE(Refusal.find("261 characters, and 260 are possible"), std::string::npos) << Refusal;
    EXPECT_NE(Refusal.find("--config-dir"), std::string::npos) << Refusal;
    EXPECT_FALSE(fs::exists(MakePath(261))) << "refused before anything is made";
}

TEST_F(InstallationTest, RefusesARootThatEndsInABlank) {
    for (const char* pEnd : {" ", "\t", " /", " ///"}) {
        const std::string Refusal = GetRefusal(m_Place.At("root") + pEnd);
        EXPECT_NE(Refusal.find("must not end in a blank"), std::string::npos) << pEnd << Refusal;
    }
    EXPECT_TRUE(fs::is_empty(m_Place.GetPath()));
    EXPECT_EQ(GetRefusal(m_Place.At("ro ot")), "") << "within the name it is harmless";
}

TEST_F(InstallationTest, RefusesARootWithABackslash) {
    const std::string Refusal = GetRefusal(m_Place.At("ro\\ot") + "/below");
    EXPECT_NE(Refusal.find("must hold no \"\\\""), std::string::npos) << Refusal;
    EXPECT_TRUE(fs::is_empty(m_Place.GetPath()));
}

/// What counts is where the directory really is.
TEST_F(InstallationTest, RefusesALinkToARootThatTheModuleCannotFind) {
    fs::create_directory(m_Place.At("blank "));
    fs::create_directory_symlink(m_Place.At("blank "), m_Place.At("link"));
    EXPECT_NE(GetRefusal(m_Place.At("link")).find("must not end in a blank"), std::string::npos);
}

TEST_F(InstallationTest, ATemporaryRootGoesAtTheEnd) {
    const CScopedEnvironment Place("TMPDIR", m_Place.GetPath().string());
    {
        const CConsoleInstallation Installation("", true);
        EXPECT_EQ(Installation.GetRoot().parent_path(), m_Place.GetPath());
        std::ofstream(Installation.GetDatabaseFile()) << "contents";
    }
    EXPECT_TRUE(fs::is_empty(m_Place.GetPath()));
}

TEST_F(InstallationTest, ASecondConsoleIsRefusedAndToldWhoWorksThere) {
    const CConsoleInstallation Installation(m_Place.At("root"), false);
    {
        const CInstallationLock Lock(Installation);
        const CConsoleInstallation Same(m_Place.At("root/../root"), false);
        try {
            const CInstallationLock Second(Same);
            FAIL() << "two consoles in one installation";
        } catch (const std::runtime_error& rError) {
            const std::string Text = rError.what();
            EXPECT_NE(Text.find("process " + std::to_string(getpid()) + ")"), std::string::npos) << Text;
            EXPECT_NE(Text.find(m_Place.At("root")), std::string::npos) << Text;
        }
        const CConsoleInstallation Other(m_Place.At("other"), false);
        EXPECT_NO_THROW(CInstallationLock{Other});
    }
    EXPECT_NO_THROW(CInstallationLock{Installation}) << "free again";
}

/// The number of a console that was killed still stands in the file.
TEST_F(InstallationTest, WhatAKilledConsoleLeftInTheLockFileHoldsNobodyUp) {
    const CConsoleInstallation Installation(m_Place.At("root"), false);
    std::ofstream(Installation.GetConfigDirectory() / "console.lock") << "123456789\n";
    const CInstallationLock Lock(Installation);
    std::ifstream In(Installation.GetConfigDirectory() / "console.lock");
    std::string Line;
    std::getline(In, Line);
    EXPECT_EQ(Line, std::to_string(getpid()));
}
