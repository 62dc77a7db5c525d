#pragma once
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/rvmdb/configurationfields.h"
#include "rvlib/math/matrix.h"

/// A configuration as people exchange it: machine, mode and name, then each property by the name and in the
/// unit of its descriptor, in their order, those of the planes in an array of their own:
///
///     { "machine": "...", "mode": "plane1", "name": "Default", "calibrated": false, "rpm_tolerance": 50,
///     ...,
///       "planes": [ {"method": "weights", "scale": "cw"} ] }
///
/// rMode: by its name on the command line.
nlohmann::ordered_json ConfigurationToJson(const std::string& rMachine, const std::string& rMode,
                                           const std::string& rName, const PreBalDB::CFieldValues& rValues);

/// What a property can be set to, in the language in use: "a whole number from 1 to 100 RPM".
std::string DescribeValues(const PreBalDB::CProperty& rProperty);
/// The value of a property that people set; nothing if it is none that DescribeValues tells.
std::optional<PreBalDB::CDirectSQL::CValue> ValueFromJson(const PreBalDB::CProperty& rProperty,
                                                          const nlohmann::json& rJson);

/// A text of people as JSON; a discarded value if it is none, or if it is nested deeper than anything of
/// ours.
nlohmann::json ParseShallow(const std::string& rText);

/// A matrix as an array of its rows.
nlohmann::ordered_json MatrixToJson(const math::matrix<double>& rMatrix);

/// As text, with marks in place of what is no UTF-8: names come from outside.
std::string ToText(const nlohmann::ordered_json& rJson, int Indent = -1);
