#pragma once
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

// Plain reading and writing of files, independent of the product's own.

inline std::string ReadTestFile(const std::filesystem::path& rPath) {
    std::ifstream In(rPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
}

/// Makes the directories above the file too.
inline void WriteTestFile(const std::filesystem::path& rPath, std::string_view Contents) {
    std::filesystem::create_directories(rPath.parent_path());
    std::ofstream(rPath, std::ios::binary) << Contents;
}
