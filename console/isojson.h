#pragma once
#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "archive/isodata.h"

/// ISO data in files and commands:
///
///     {"rotor_mass_kg": 12.0, "service_rpm": 6000, "grade": 6.3, "unit_gmm": [45.0], "distance_mm": [80]}
///
/// Lists have a value for each balanced plane, in their order. "unit_gmm" is what one weight is in g·mm, with
/// screws what one gram is, that is the radius in mm. What isn't known is left out; "distance_mm" as a rule.
namespace IsoJson {

nlohmann::ordered_json Write(const CIsoData& rData, const std::array<bool, 2>& rBalanced);
/// Nothing, with a line in rError that names field and range, if it isn't of this shape.
std::optional<CIsoData> Read(const nlohmann::json& rJson, const std::array<bool, 2>& rBalanced,
                             std::string& rError);

}  // namespace IsoJson
