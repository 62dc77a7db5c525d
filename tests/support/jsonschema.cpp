#include "tests/support/jsonschema.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>

#include "tests/support/testpaths.h"

using Json = nlohmann::json;

namespace {

bool HasType(const Json& rValue, const std::string& rType) {
    return (rType == "object" && rValue.is_object()) || (rType == "array" && rValue.is_array()) ||
           (rType == "string" && rValue.is_string()) || (rType == "boolean" && rValue.is_boolean()) ||
           (rType == "null" && rValue.is_null()) || (rType == "number" && rValue.is_number()) ||
           (rType == "integer" && rValue.is_number_integer());
}

}  // namespace

CJsonSchema CJsonSchema::ForReports() {
    std::ifstream File(TestData("../docs/report.schema.json"));
    return CJsonSchema(Json::parse(File));
}

std::vector<std::string> CJsonSchema::Check(const Json& rDocument) const {
    std::vector<std::string> Errors;
    Check(m_Schema, rDocument, "", Errors);
    return Errors;
}

void CJsonSchema::Check(const Json& rSchema, const Json& rValue, const std::string& rPlace,
                        std::vector<std::string>& rErrors) const {
    static const std::set<std::string> ANNOTATIONS = {"$schema", "title", "description", "$defs"};
    const auto Complain = [&](const std::string& rText) {
        rErrors.push_back((rPlace.empty() ? "/" : rPlace) + ": " + rText);
    };
    for (const auto& [rKeyword, rWanted] : rSchema.items()) {
        if (ANNOTATIONS.contains(rKeyword) || rKeyword == "additionalProperties") {
            continue;  // the latter with the properties
        }
        if (rKeyword == "$ref") {
            Check(m_Schema.at(Json::json_pointer(rWanted.get<std::string>().substr(1))), rValue, rPlace,
                  rErrors);
        } else if (rKeyword == "type") {
            const Json Types = rWanted.is_array() ? rWanted : Json::array({rWanted});
            if (std::none_of(Types.begin(), Types.end(),
                             [&](const Json& rType) { return HasType(rValue, rType.get<std::string>()); })) {
                Complain(rValue.dump() + " is not of type " + rWanted.dump());
            }
        } else if (rKeyword == "enum") {
            if (std::find(rWanted.begin(), rWanted.end(), rValue) == rWanted.end()) {
                Complain(rValue.dump() + " is none of " + rWanted.dump());
            }
        } else if (rKeyword == "required") {
            for (const Json& rName : rWanted) {
                if (rValue.is_object() && !rValue.contains(rName.get<std::string>())) {
                    Complain("lacks " + rName.dump());
                }
            }
        } else if (rKeyword == "properties") {
            const bool bClosed =
                rSchema.contains("additionalProperties") && rSchema["additionalProperties"] == false;
            if (!rValue.is_object()) {
                continue;
            }
            for (const auto& [rName, rPart] : rValue.items()) {
                if (rWanted.contains(rName)) {
                    Check(rWanted[rName], rPart, rPlace + "/" + rName, rErrors);
                } else if (bClosed) {
                    Complain("has \"" + rName + "\", which nobody knows");
                }
            }
        } else if (rKeyword == "items") {
            for (std::size_t i = 0; rValue.is_array() && i < rValue.size(); ++i) {
                Check(rWanted, rValue[i], rPlace + "/" + std::to_string(i), rErrors);
            }
        } else if (rKeyword == "minItems" || rKeyword == "maxItems") {
            const bool bMin = rKeyword == "minItems";
            const auto nWanted = rWanted.get<std::size_t>();
            if (rValue.is_array() && (bMin ? rValue.size() < nWanted : rValue.size() > nWanted)) {
                Complain(std::to_string(rValue.size()) + " items, against " + rKeyword);
            }
        } else if (rKeyword == "minimum" || rKeyword == "maximum") {
            const double Limit = rWanted.get<double>();
            if (rValue.is_number() &&
                (rKeyword == "minimum" ? rValue.get<double>() < Limit : rValue.get<double>() > Limit)) {
                Complain(rValue.dump() + " is against " + rKeyword + " " + rWanted.dump());
            }
        } else if (rKeyword == "pattern") {
            if (rValue.is_string() &&
                !std::regex_search(rValue.get<std::string>(), std::regex(rWanted.get<std::string>()))) {
                Complain(rValue.dump() + " does not look like " + rWanted.dump());
            }
        } else {
            Complain("the schema's keyword \"" + rKeyword + "\" is not known here");
        }
    }
}

std::string CheckReport(const Json& rReport) {
    static const CJsonSchema Schema = CJsonSchema::ForReports();
    std::string Text;
    for (const std::string& rError : Schema.Check(rReport)) {
        Text += rError + "\n";
    }
    return Text;
}
