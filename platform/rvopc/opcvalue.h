#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// Value of an OPC item.
using COpcValue = std::variant<std::int32_t, double, std::string, std::vector<std::int32_t>>;

/// The value as a number, a text by its digits; nothing for an array or for a text that is no number.
std::optional<double> OpcValueToNumber(const COpcValue& rValue);
