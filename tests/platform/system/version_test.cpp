#include "platform/system/version.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "tests/support/testpaths.h"

TEST(VersionTest, IsTheProjectsOwn) {
    std::ifstream In(TestData("../CMakeLists.txt"));
    const std::string Project{std::istreambuf_iterator<char>(In), {}};
    std::smatch Found;
    ASSERT_TRUE(std::regex_search(Project, Found, std::regex(R"(project\(\w+ VERSION (\d+\.\d+\.\d+) )")));
    EXPECT_EQ(GetProjectVersion(), Found.str(1));
}
