#include "console/configurationjson.h"

#include <cmath>
#include <variant>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/matrixtext.h"
#include "platform/rvmdb/storetexts.h"

namespace {

using Json = nlohmann::ordered_json;
using PreBalDB::CFieldValues;
using PreBalDB::CProperty;
using PreBalDB::CRecordLayout;
using PreBalDB::PropertyType;
using PreBalDB::StoreTexts::Fill;
using CValue = PreBalDB::CDirectSQL::CValue;

Json NumberToJson(const CProperty& rProperty, const PreBalDB::CDirectSQL::CValue& rValue) {
    const auto* const pWhole = std::get_if<std::int64_t>(&rValue);
    if (pWhole == nullptr) {
        return rProperty.ToUnit(std::get<double>(rValue));
    }
    if (rProperty.m_PerUnit != 1.0) {
        return rProperty.ToUnit(static_cast<double>(*pWhole));
    }
    const auto Place = static_cast<std::size_t>(*pWhole);
    if (*pWhole >= 0 && Place < rProperty.m_Choices.size()) {
        return rProperty.m_Choices[Place].m_pWord;
    }
    return *pWhole;
}

Json ValueToJson(const CProperty& rProperty, const PreBalDB::CDirectSQL::CValue& rValue) {
    const auto* const pText = std::get_if<std::string>(&rValue);
    if (pText == nullptr) {
        return rProperty.m_Type == PropertyType::eFlag ? Json(rValue != PreBalDB::CDirectSQL::CValue(0L))
                                                       : NumberToJson(rProperty, rValue);
    }
    if (rProperty.m_Type == PropertyType::eMatrix) {
        if (const auto Matrix = PreBalDB::MatrixFromText(*pText)) {
            return MatrixToJson(*Matrix);
        }
    }
    return *pText;
}

/// What the records of a layout hold; null if the configuration has none of them.
Json LayoutToJson(const CRecordLayout& rLayout, const CFieldValues& rValues) {
    Json Result;
    Json Unstored;
    for (const CProperty* const pProperty : rLayout.m_Properties) {
        if (!pProperty->IsStored()) {
            // The method: which record there is tells it.
            const std::size_t Method = rLayout.m_Table == "screw_compensation" ? 1 : 0;
            Unstored[pProperty->m_pName] = pProperty->m_Choices[Method].m_pWord;
            continue;
        }
        const auto Found = rValues.find(rLayout.GetFieldName(pProperty->m_pColumn));
        if (Found != rValues.end()) {
            Result[pProperty->m_pName] = ValueToJson(*pProperty, Found->second);
        }
    }
    if (!Result.is_null() && !Unstored.is_null()) {
        Unstored.update(Result);
        return Unstored;
    }
    return Result;
}

std::string ShowNumber(double Value) {
    return Json(std::trunc(Value) == Value ? Json(static_cast<std::int64_t>(Value)) : Json(Value)).dump();
}

/// Whether the property is counted: its values in its unit are whole numbers.
bool IsWhole(const CProperty& rProperty) {
    return rProperty.m_Type != PropertyType::eReal && rProperty.m_PerUnit == 1.0;
}

std::optional<std::int64_t> FindChoice(const CProperty& rProperty, const nlohmann::json& rJson) {
    for (std::size_t i = 0; i < rProperty.m_Choices.size(); ++i) {
        if (rJson == rProperty.m_Choices[i].m_pWord) {
            return static_cast<std::int64_t>(i);
        }
    }
    return std::nullopt;
}

}  // namespace

std::string DescribeValues(const CProperty& rProperty) {
    if (rProperty.m_Type == PropertyType::eFlag) {
        return "true, false";
    }
    if (rProperty.m_Type == PropertyType::eText) {
        return GetText("CONFIGURE_A_TEXT");
    }
    if (!rProperty.m_Choices.empty()) {
        std::string Words;
        for (const CProperty::CChoice& rChoice : rProperty.m_Choices) {
            Words += (Words.empty() ? "" : ", ") + std::string(rChoice.m_pWord);
        }
        return Words;
    }
    if (!rProperty.m_Range) {
        return GetText("CONFIGURE_A_NUMBER");
    }
    const std::string Range =
        Fill(IsWhole(rProperty) ? "CONFIGURE_WHOLE_NUMBER" : "CONFIGURE_NUMBER_WITHIN",
             {ShowNumber(rProperty.m_Range->m_Min), ShowNumber(rProperty.m_Range->m_Max)});
    return *rProperty.m_pUnit == '\0' ? Range : Range + " " + GetText(rProperty.m_pUnit);
}

std::optional<PreBalDB::CDirectSQL::CValue> ValueFromJson(const CProperty& rProperty,
                                                          const nlohmann::json& rJson) {
    if (rProperty.m_Type == PropertyType::eFlag) {
        return rJson.is_boolean() ? std::optional<CValue>(std::int64_t{rJson.get<bool>()}) : std::nullopt;
    }
    if (rProperty.m_Type == PropertyType::eText) {
        return rJson.is_string() ? std::optional<CValue>(rJson.get<std::string>()) : std::nullopt;
    }
    if (!rProperty.m_Choices.empty()) {
        const auto Choice = FindChoice(rProperty, rJson);
        return Choice ? std::optional<CValue>(*Choice) : std::nullopt;
    }
    if (!rJson.is_number() || !rProperty.m_Range) {
        return std::nullopt;
    }
    const double Number = rJson.get<double>();
    const bool bWithin = Number >= rProperty.m_Range->m_Min && Number <= rProperty.m_Range->m_Max;
    if (!bWithin || (IsWhole(rProperty) && std::trunc(Number) != Number)) {
        return std::nullopt;
    }
    const double Stored = rProperty.FromUnit(Number);
    return rProperty.m_Type == PropertyType::eReal ? CValue(Stored)
                                                   : CValue(static_cast<std::int64_t>(Stored));
}

nlohmann::json ParseShallow(const std::string& rText) {
    // Values are copied level by level: one that is nested without end would take all of the stack.
    constexpr int DEEPEST = 32;
    bool bTooDeep = false;
    const auto Look = [&bTooDeep](int Depth, nlohmann::json::parse_event_t /*Event*/,
                                  const nlohmann::json& /*rParsed*/) {
        bTooDeep |= Depth > DEEPEST;
        return !bTooDeep;
    };
    nlohmann::json Parsed = nlohmann::json::parse(rText, Look, false);
    return bTooDeep ? nlohmann::json(nlohmann::json::value_t::discarded) : Parsed;
}

nlohmann::ordered_json MatrixToJson(const math::matrix<double>& rMatrix) {
    Json Rows = Json::array();
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        Json Row = Json::array();
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            Row.push_back(rMatrix(i, j));
        }
        Rows.push_back(std::move(Row));
    }
    return Rows;
}

nlohmann::ordered_json ConfigurationToJson(const std::string& rMachine, const std::string& rMode,
                                           const std::string& rName, const CFieldValues& rValues) {
    Json Result = {{"machine", rMachine}, {"mode", rMode}, {"name", rName}};
    Json Planes = Json::array();
    for (const CRecordLayout& rLayout : PreBalDB::ConfigurationFields::GetLayouts()) {
        Json Part = LayoutToJson(rLayout, rValues);
        if (Part.is_null()) {
            continue;
        }
        if (rLayout.m_Part.empty()) {
            Result.update(Part);
        } else {
            Planes.push_back(std::move(Part));
        }
    }
    Result["planes"] = std::move(Planes);
    return Result;
}

std::string ToText(const nlohmann::ordered_json& rJson, int Indent) {
    return rJson.dump(Indent, ' ', false, Json::error_handler_t::replace);
}
