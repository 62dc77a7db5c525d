#pragma once

#include <filesystem>
#include <string>

/// A file or folder of tests/, by its path from there: "system/recordings".
std::filesystem::path TestData(const std::string& rPath);

/// A program or library of this build, by its name: "console", "librtr_trim.so".
std::string TestProgram(const std::string& rName);
