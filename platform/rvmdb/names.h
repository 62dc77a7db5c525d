#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace PreBalDB {

/// Of the first configuration of a machine, which always comes back.
constexpr const char* DEFAULT_CONFIGURATION = "Default";

/// Sorts names as people do: "Default" first, then by letters, capital or not.
void SortNames(std::vector<std::string>& rNames);

/// Whether a text is UTF-8, as a store, a page and a file can all hold it.
bool IsUtf8(std::string_view Text);
/// Throws CSqlError unless something new may have this name. Names that are stored already are taken as they
/// are. Whose name it is says rWhat: "a configuration".
void CheckNewName(const std::string& rName, const std::string& rWhat);

}  // namespace PreBalDB
