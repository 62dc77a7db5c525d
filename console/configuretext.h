#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// How the commands for configurations show them to people, and read what people ask for.
namespace ConfigureText {

/// What the store holds of a machine: {"machine", "mode", "configurations": [...], "tables": [...]}.
nlohmann::ordered_json MakeListEntry(const std::string& rMachine);
/// A table for people of such entries.
std::string MakeList(const nlohmann::ordered_json& rEntries);
/// A configuration or a screw table, a property a line with unit, what it can be, and its label on the page.
std::string MakeSheet(const nlohmann::ordered_json& rObject);

/// The object that "NAME=VALUE" texts ask for, to be set in the configuration that rNow holds. A line in
/// rError on what can't be understood.
nlohmann::json MakeSettings(const nlohmann::ordered_json& rNow, const std::vector<std::string>& rValues,
                            std::string& rError);
/// The screw table that rNow holds with the screws that "NAME=GRAMS" texts set; 0 grams takes one out.
nlohmann::json MakeScrews(const nlohmann::ordered_json& rNow, const std::vector<std::string>& rValues,
                          std::string& rError);

}  // namespace ConfigureText
