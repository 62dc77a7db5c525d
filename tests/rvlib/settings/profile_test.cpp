#include "rvlib/settings/profile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

class CWKProfileTest : public testing::Test {
protected:
    void Write(const std::string& rText) const { WriteTestFile(Path(), rText); }
    std::string Path() const { return m_Directory.At("cnf/speedctrl.ini"); }

    CTempDirectory m_Directory;
};

TEST_F(CWKProfileTest, ReadsTheSectionConfiguration) {
    Write("[Other]\nRPM=1\n[Configuration]\nRPM=1500\nNAME = \" two words \"\n");
    const CWKProfile Profile(Path());
    EXPECT_EQ(Profile.GetInt("RPM", -1), 1500);
    EXPECT_EQ(Profile.GetString("NAME", "none"), " two words ");
}

TEST_F(CWKProfileTest, GivesTheDefaultWithoutFileSectionOrKey) {
    const CWKProfile Profile(Path());
    EXPECT_EQ(Profile.GetInt("RPM", -1), -1);
    Write("[Other]\nRPM=1\n");
    EXPECT_EQ(Profile.GetInt("RPM", -1), -1);
    Write("[Configuration]\nINCREMENT=1\n");
    EXPECT_EQ(Profile.GetInt("RPM", 30), 30);
    EXPECT_EQ(Profile.GetString("RPM", "none"), "none");
}

TEST_F(CWKProfileTest, AValueThatIsNoNumberIsZeroAndNotTheDefault) {
    Write("[Configuration]\nRPM=abc\nINCREMENT=\nINCREMENT_BELOW=15 degrees\n");
    const CWKProfile Profile(Path());
    EXPECT_EQ(Profile.GetInt("RPM", 30), 0);
    EXPECT_EQ(Profile.GetInt("INCREMENT", 30), 0);
    EXPECT_EQ(Profile.GetInt("INCREMENT_BELOW", 30), 15);
}

TEST_F(CWKProfileTest, AValueIsCutAfter1299Characters) {
    Write("[Configuration]\nLONG=" + std::string(2000, 'x') + "\n");
    EXPECT_EQ(CWKProfile(Path()).GetString("LONG", ""), std::string(1299, 'x'));
}

TEST_F(CWKProfileTest, MakesTheFilesDirectoryButNotTheFile) {
    ASSERT_FALSE(std::filesystem::exists(m_Directory.At("cnf")));
    const CWKProfile Profile(Path());
    EXPECT_TRUE(std::filesystem::is_directory(m_Directory.At("cnf")));
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

}  // namespace
