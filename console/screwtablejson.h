#pragma once
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/rvmdb/screw.h"
#include "rvlib/rvbas/array.h"

/// A screw table in files and commands:
///
///     {"table": "Rotor", "screws": [ {"name": "M6x12", "grams": 2.5} ]}
namespace ScrewTableJson {

using CScrews = Base::CWDArray<PreBalDB::CScrew>;

nlohmann::ordered_json Write(const std::string& rName, const CScrews& rScrews);
/// The screws of such an object; nothing, with a line in rError that names what is wrong and what would be
/// right, in the language in use, if they can't be a table.
std::optional<CScrews> Read(const nlohmann::json& rObject, std::string& rError);

}  // namespace ScrewTableJson
