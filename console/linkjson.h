#pragma once
#include <nlohmann/json.hpp>

struct CLinkFacts;

/// What was seen of a line, for programs.
nlohmann::ordered_json ToJson(const CLinkFacts& rFacts);
