#include "console/screwtablejson.h"

#include <cmath>
#include <map>

#include "console/configurationjson.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;

namespace ScrewTableJson {

namespace {

constexpr const char* SCREWS = "screws";
constexpr const char* NAME = "name";
constexpr const char* GRAMS = "grams";

std::string GetName(const nlohmann::json& rScrew) {
    return rScrew.value(NAME, std::string());
}

/// What is wrong with a screw, empty if nothing is.
std::string Check(const nlohmann::json& rScrew, const std::string& rWhere) {
    if (!rScrew.is_object()) {
        return Fill("CONFIGURE_SCREWS", {});
    }
    for (const auto& [rName, rValue] : rScrew.items()) {
        if (rName != NAME && rName != GRAMS) {
            return Fill("CONFIGURE_NO_PROPERTY", {rWhere + rName, std::string(NAME) + ", " + GRAMS});
        }
    }
    if (rScrew.contains(NAME) && !rScrew[NAME].is_string()) {
        return Fill("CONFIGURE_WRONG_VALUE",
                    {rWhere + NAME, ToText(rScrew[NAME]), GetText("CONFIGURE_A_TEXT")});
    }
    const nlohmann::json Grams = rScrew.value(GRAMS, nlohmann::json());
    if (!Grams.is_number() || !std::isfinite(Grams.get<double>()) || Grams.get<double>() <= 0.0) {
        return Fill("CONFIGURE_WRONG_VALUE", {rWhere + GRAMS, ToText(Grams), GetText("CONFIGURE_GRAMS")});
    }
    return {};
}

}  // namespace

nlohmann::ordered_json Write(const std::string& rName, const CScrews& rScrews) {
    nlohmann::ordered_json Screws = nlohmann::ordered_json::array();
    for (const PreBalDB::CScrew& rScrew : rScrews) {
        Screws.push_back({{NAME, rScrew.GetScrewName()}, {GRAMS, rScrew.GetWeight()}});
    }
    return {{"table", rName}, {SCREWS, std::move(Screws)}};
}

std::optional<CScrews> Read(const nlohmann::json& rObject, std::string& rError) {
    const nlohmann::json List = rObject.value(SCREWS, nlohmann::json());
    if (!List.is_array() || List.empty()) {
        rError = GetText("CONFIGURE_SCREWS");
        return std::nullopt;
    }
    // As on the page: a third screw of a weight would be dropped there.
    constexpr int MOST_OF_A_WEIGHT = 2;
    std::map<double, int> Count;
    CScrews Screws;
    for (std::size_t i = 0; i < List.size(); ++i) {
        const std::string Where = std::string(SCREWS) + "[" + std::to_string(i) + "].";
        rError = Check(List[i], Where);
        if (!rError.empty()) {
            return std::nullopt;
        }
        const double Grams = List[i][GRAMS].get<double>();
        if (++Count[Grams] > MOST_OF_A_WEIGHT) {
            rError = Fill("CONFIGURE_THIRD_SCREW", {Where + GRAMS, ToText(List[i][GRAMS])});
            return std::nullopt;
        }
        Screws.Add({GetName(List[i]), Grams});
    }
    return Screws;
}

}  // namespace ScrewTableJson
