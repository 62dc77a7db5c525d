#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Files as the module sees them. Paths may be written with "\" (the module's own form) or "/"; both mean the
// platform's separator here.
namespace Files {

/// The path in the platform's own form.
std::string ToNative(const std::string& rPath);
/// Absolute form with "\" as separator, "." and ".." resolved; empty if longer than 260 characters.
std::string GetFullPath(const std::string& rPath);
bool IsDirectory(const std::string& rPath);
/// Exists, and is neither a directory nor a device.
bool IsFile(const std::string& rPath);
/// Makes one directory (not its parents). pAccess describes its access in the security description language;
/// on a platform without such descriptions the directory is open to the owner and the group.
bool CreateDirectory(const std::string& rPath, const char* pAccess);
/// Whole contents; nothing if the file can't be opened or read.
std::optional<std::vector<std::uint8_t>> ReadAll(const std::string& rPath);
/// Replaces the contents, creating the file if need be; the old contents survive a crash. What killed writers
/// of this file have left beside it is removed. Contents that are there already are left alone. False on
/// failure; a write-protected file is left alone.
bool WriteAll(const std::string& rPath, const std::vector<std::uint8_t>& rBytes);
/// Directory of the running program, with "\" as separator.
std::string GetProgramDirectory();
/// What lies beside the running program, in the platform's own form: module, other programs, help. A build
/// and a package lay these out alike, so that nothing has to know where it was installed.
std::string GetBesideProgram(const std::string& rName);

}  // namespace Files
