#pragma once
#include <string>
#include <vector>

/// Rows for a terminal, with as wide columns as they need.
std::string MakeTable(const std::vector<std::vector<std::string>>& rRows);
