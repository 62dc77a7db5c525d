#include "platform/system/environment.h"

#include <gtest/gtest.h>

#include "tests/support/scopedenvironment.h"

namespace {

TEST(GetEnvironmentTest, GivesTheValueOrNothing) {
    CScopedEnvironment Variable("CORVANE_TEST_VARIABLE", "a value");
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE"), "a value");
    Variable.Set("");
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE"), "");
    Variable.Set(std::nullopt);
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE"), "");
}

TEST(GetEnvironmentTest, AValueTooLongForTheBufferCountsAsAbsent) {
    CScopedEnvironment Variable("CORVANE_TEST_VARIABLE", std::string(4095, 'x'));
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE").size(), 4095U);
    Variable.Set(std::string(4096, 'x'));
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE"), "");
    Variable.Set("abc");
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE", 4), "abc");
    EXPECT_EQ(GetEnvironment("CORVANE_TEST_VARIABLE", 3), "");
}

TEST(GetEnvironmentTest, TheDataDirectoryOfAllUsersIsByDefaultThatOfTheUser) {
    CScopedEnvironment AllUsers("ALLUSERSPROFILE", "/srv/all");
    CScopedEnvironment Data("XDG_DATA_HOME", "/home/someone/data");
    const CScopedEnvironment Home("HOME", "/home/someone");
    EXPECT_EQ(GetEnvironment("ALLUSERSPROFILE"), "/srv/all");
    AllUsers.Set(std::nullopt);
    EXPECT_EQ(GetEnvironment("ALLUSERSPROFILE"), "/home/someone/data");
    Data.Set("relative/ones/do/not/count");
    EXPECT_EQ(GetEnvironment("ALLUSERSPROFILE"), "/home/someone/.local/share");
    Data.Set(std::nullopt);
    EXPECT_EQ(GetEnvironment("ALLUSERSPROFILE"), "/home/someone/.local/share");
}

TEST(GetEnvironmentTest, AServiceWithoutAHomeHasADataDirectoryToo) {
    const CScopedEnvironment AllUsers("ALLUSERSPROFILE", std::nullopt);
    const CScopedEnvironment Data("XDG_DATA_HOME", std::nullopt);
    const CScopedEnvironment Home("HOME", std::nullopt);
    EXPECT_EQ(GetEnvironment("ALLUSERSPROFILE"), "/var/lib");
}

}  // namespace
