#pragma once
#include <string>
#include <vector>

namespace PreBalDB {

/// Sorts names as people do: "Default" first, then by letters, capital or not.
void SortNames(std::vector<std::string>& rNames);

}  // namespace PreBalDB
