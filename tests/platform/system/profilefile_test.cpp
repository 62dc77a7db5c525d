#include "platform/system/profilefile.h"

#include <gtest/gtest.h>

#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

class ProfileFileTest : public testing::Test {
protected:
    std::string Get(const std::string& rSection, const std::string& rKey, std::size_t nLimit = 1300) const {
        return GetPrivateProfileString(rSection, rKey, "default", nLimit, m_Directory.At("file.ini"));
    }
    void Write(const char* pText) const { WriteTestFile(m_Directory.At("file.ini"), pText); }

    CTempDirectory m_Directory;
};

TEST_F(ProfileFileTest, GivesAValue) {
    Write("[Configuration]\nRPM = \"1500\"\n");
    EXPECT_EQ(Get("configuration", "rpm"), "1500");
}

TEST_F(ProfileFileTest, GivesTheDefaultWithoutFileSectionOrKey) {
    EXPECT_EQ(Get("Configuration", "RPM"), "default");
    Write("[Configuration]\nRPM=1500\n");
    EXPECT_EQ(Get("Other", "RPM"), "default");
    EXPECT_EQ(Get("Configuration", "Other"), "default");
}

TEST_F(ProfileFileTest, AnEmptyValueIsNotTheDefault) {
    Write("[Configuration]\nRPM=\n");
    EXPECT_EQ(Get("Configuration", "RPM"), "");
}

TEST_F(ProfileFileTest, AValueIsCutToTheLimitLessOne) {
    Write("[Configuration]\nRPM=123456\n");
    EXPECT_EQ(Get("Configuration", "RPM", 4), "123");
    EXPECT_EQ(Get("Configuration", "RPM", 7), "123456");
    EXPECT_EQ(Get("Configuration", "RPM", 1), "");
    EXPECT_EQ(Get("Configuration", "RPM", 0), "");
    EXPECT_EQ(Get("Configuration", "None", 4), "def");
}

TEST_F(ProfileFileTest, SeesAChangeAtOnce) {
    Write("[Configuration]\nRPM=1\n");
    EXPECT_EQ(Get("Configuration", "RPM"), "1");
    Write("[Configuration]\nRPM=2\n");
    FlushPrivateProfile(m_Directory.At("file.ini"));
    EXPECT_EQ(Get("Configuration", "RPM"), "2");
}

}  // namespace
