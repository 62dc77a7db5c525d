#pragma once
#include <filesystem>
#include <string>

/// Compressed archives, by the system's tar. Both give why it failed; empty if it didn't.
namespace TarFile {

/// A directory with all in it, under its own name. Appears as a whole or not at all, for its owner only.
std::string Pack(const std::filesystem::path& rDirectory, const std::filesystem::path& rFile);
/// Into a directory that is there.
std::string Unpack(const std::filesystem::path& rFile, const std::filesystem::path& rDirectory);

}  // namespace TarFile
