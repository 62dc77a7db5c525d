#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// Holds documents against a JSON schema, in as much of its language as the project's schemas use: $ref
/// within the schema, type, enum, properties, required, additionalProperties (true, false), items, minItems,
/// maxItems, minimum, maximum, pattern. A keyword that it doesn't know is an error of its own, never passed
/// over.
class CJsonSchema {
public:
    explicit CJsonSchema(nlohmann::json Schema) : m_Schema(std::move(Schema)) {}
    /// That of the reports, from docs/.
    static CJsonSchema ForReports();

    /// A line an error: where, and what.
    std::vector<std::string> Check(const nlohmann::json& rDocument) const;

private:
    void Check(const nlohmann::json& rSchema, const nlohmann::json& rValue, const std::string& rPlace,
               std::vector<std::string>& rErrors) const;

    nlohmann::json m_Schema;
};

/// The same as one text, empty if the report is in order: EXPECT_EQ(CheckReport(Json), "").
std::string CheckReport(const nlohmann::json& rReport);
