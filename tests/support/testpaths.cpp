#include "tests/support/testpaths.h"

// The one file that knows where tree and build lie: all others are the same in every clone, for the compiler
// cache too.
std::filesystem::path TestData(const std::string& rPath) {
    return std::filesystem::path(TEST_DATA_DIR) / rPath;
}

std::string TestProgram(const std::string& rName) {
    return TEST_BIN_DIR "/" + rName;
}
