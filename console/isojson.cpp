#include "console/isojson.h"

#include <algorithm>
#include <charconv>

#include "archive/isofields.h"

namespace IsoJson {

namespace {

std::string WriteNumber(double Value) {
    std::array<char, 32> Buffer{};
    const auto Result = std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), Value);
    return {Buffer.data(), Result.ptr};
}

std::string DescribeRange(const CIsoField& rField) {
    return "a number from " + WriteNumber(rField.m_Min) + " to " + WriteNumber(rField.m_Max) +
           ", or 0 if it isn't known";
}

/// The error, empty if there is none.
std::string ReadValue(const CIsoField& rField, std::size_t Plane, const nlohmann::json& rValue,
                      CIsoData& rData) {
    if (!rValue.is_number() || !rField.Allows(rValue.get<double>())) {
        return std::string("\"") + rField.m_pName +
               "\": " + rValue.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + " is not " +
               DescribeRange(rField);
    }
    rField.Set(rData, Plane, rValue.get<double>());
    return {};
}

}  // namespace

nlohmann::ordered_json Write(const CIsoData& rData, const std::array<bool, 2>& rBalanced) {
    nlohmann::ordered_json Json = nlohmann::ordered_json::object();
    for (const CIsoField& rField : ISO_FIELDS) {
        if (!rField.m_bPerPlane) {
            if (rField.Get(rData, 0) != 0.0) {
                Json[rField.m_pName] = rField.Get(rData, 0);
            }
            continue;
        }
        nlohmann::ordered_json Values = nlohmann::ordered_json::array();
        bool bKnown = false;
        for (std::size_t Plane = 0; Plane < rBalanced.size(); ++Plane) {
            if (rBalanced.at(Plane)) {
                Values.push_back(rField.Get(rData, Plane));
                bKnown = bKnown || rField.Get(rData, Plane) != 0.0;
            }
        }
        if (bKnown) {
            Json[rField.m_pName] = Values;
        }
    }
    return Json;
}

std::optional<CIsoData> Read(const nlohmann::json& rJson, const std::array<bool, 2>& rBalanced,
                             std::string& rError) {
    rError.clear();
    if (!rJson.is_object()) {
        rError = "\"iso\" is not an object";
        return std::nullopt;
    }
    CIsoData Data;
    for (const auto& [rName, rValue] : rJson.items()) {
        const auto* const pField = std::ranges::find_if(
            ISO_FIELDS, [&rName = rName](const CIsoField& rEach) { return rName == rEach.m_pName; });
        if (pField == ISO_FIELDS.end()) {
            rError = "\"" + rName + "\" is no field of \"iso\"; fields are";
            for (const CIsoField& rField : ISO_FIELDS) {
                rError += std::string(&rField == ISO_FIELDS.data() ? " " : ", ") + rField.m_pName;
            }
            return std::nullopt;
        }
        if (!pField->m_bPerPlane) {
            rError = ReadValue(*pField, 0, rValue, Data);
        } else {
            const auto nPlanes = static_cast<std::size_t>(std::ranges::count(rBalanced, true));
            if (!rValue.is_array() || rValue.size() != nPlanes) {
                rError = "\"" + rName + "\" is not a list with a value for each of " +
                         std::to_string(nPlanes) + " planes";
                return std::nullopt;
            }
            std::size_t Next = 0;
            for (std::size_t Plane = 0; Plane < rBalanced.size() && rError.empty(); ++Plane) {
                if (rBalanced.at(Plane)) {
                    rError = ReadValue(*pField, Plane, rValue[Next++], Data);
                }
            }
        }
        if (!rError.empty()) {
            return std::nullopt;
        }
    }
    return Data;
}

}  // namespace IsoJson
