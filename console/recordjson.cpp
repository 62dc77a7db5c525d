#include "console/recordjson.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "archive/isoassessment.h"
#include "archive/machinekey.h"
#include "archive/measurementname.h"
#include "contract/holering.h"

namespace RecordJson {

using Json = nlohmann::ordered_json;

namespace {

Json MakePoint(const CVectorReading& rReading) {
    return Json::array({rReading.m_X, rReading.m_Y});
}

/// Values of the planes that have one, in their order.
template <typename Value, typename Map>
Json MakeList(const std::array<std::optional<Value>, 2>& rPlanes, Map ToJson) {
    Json List = Json::array();
    for (const std::optional<Value>& rPlane : rPlanes) {
        if (rPlane) {
            List.push_back(ToJson(*rPlane));
        }
    }
    return List;
}

}  // namespace

std::string WriteInstant(std::chrono::sys_seconds Moment) {
    const auto Day = std::chrono::floor<std::chrono::days>(Moment);
    const std::chrono::year_month_day Date(Day);
    const std::chrono::hh_mm_ss Time(Moment - Day);
    std::array<char, 64> Text{};
    std::snprintf(Text.data(), Text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(Date.year()),
                  static_cast<unsigned>(Date.month()), static_cast<unsigned>(Date.day()),
                  static_cast<int>(Time.hours().count()), static_cast<int>(Time.minutes().count()),
                  static_cast<int>(Time.seconds().count()));
    return Text.data();
}

Json MakeModule(const CRunRecord& rRecord) {
    Json Module = {{"family", rRecord.m_Family}, {"addresses", rRecord.m_Addresses}};
    if (const auto Key = CMachineKey::Parse(rRecord.m_Machine)) {
        Module["name"] = Key->m_Module;
    }
    return Module;
}

Json MakeSet(const CRunRecord& rRecord) {
    Json Set = Json::object();
    const auto Key = CMachineKey::Parse(rRecord.m_Machine);
    if (Key) {
        Set["number"] = Key->m_Set;
    }
    if (!rRecord.m_Setup.m_Mode.empty()) {
        Set["mode"] = rRecord.m_Setup.m_Mode;
    }
    return Set;
}

Json MakeMeasurements(const std::vector<CRunRecord>& rRecords) {
    Json Measurements = Json::array();
    for (const CRunRecord& rRecord : rRecords) {
        for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
            Json Planes = MakeList(rMeasurement.m_Planes, [&](const CMeasuredPlane& rPlane) {
                return Json{
                    {"n", rPlane.m_nReadings},
                    {"mean", MakePoint(rPlane.m_Mean)},
                    {"covariance", Json::array({Json::array({rPlane.m_VarianceX, rPlane.m_CovarianceXY}),
                                                Json::array({rPlane.m_CovarianceXY, rPlane.m_VarianceY})})},
                    {"smoothed", MakePoint(rPlane.m_Smoothed)},
                    {"rpm", rMeasurement.m_MeanRpm}};
            });
            Measurements.push_back({{"name", MeasurementName::Get(rMeasurement.m_Which)},
                                    {"procedure", rRecord.m_bRebalance ? "rebalance" : "prebalance"},
                                    {"t_ms", rMeasurement.m_Time},
                                    {"planes", std::move(Planes)}});
        }
    }
    return Measurements;
}

Json MakePositions(const CRunRecord& rRecord) {
    if (rRecord.m_Measurements.empty()) {
        return Json::array();
    }
    Json Positions = Json::array();
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        const auto& rMeasured = rRecord.m_Measurements.back().m_Planes.at(Plane);
        const auto& rSetup = rRecord.m_Setup.m_Planes.at(Plane);
        if (!rMeasured || !rSetup) {
            continue;
        }
        if (!rSetup->m_bScrews) {
            Positions.push_back({{"weights", rMeasured->m_Fitted.m_Weights}});
            continue;
        }
        const CHoleRing Ring{rSetup->m_nHoles, !rSetup->m_bScaleClockwise};
        Json Screws = Json::array();
        for (const CFittedScrew& rScrew : rMeasured->m_Fitted.m_Screws) {
            Screws.push_back({{"hole", Ring.GetRotorHole(rScrew.m_Hole)}, {"grams", rScrew.m_Grams}});
        }
        Positions.push_back({{"screws", std::move(Screws)}});
    }
    return Positions;
}

Json MakeReadings(const CRunMeasurement& rMeasurement) {
    return MakeList(rMeasurement.m_Planes, [](const CMeasuredPlane& rPlane) {
        const double Angle =
            std::atan2(rPlane.m_Smoothed.m_Y, rPlane.m_Smoothed.m_X) * 180.0 / std::numbers::pi;
        return Json{{"amplitude", std::hypot(rPlane.m_Smoothed.m_X, rPlane.m_Smoothed.m_Y)},
                    {"angle_deg", Angle < 0.0 ? Angle + 360.0 : Angle}};
    });
}

Json MakePrediction(const CRunRecord& rRecord, const CRunAdvice& rAdvice) {
    // What stood there before anything was moved counts, if it was kept.
    const auto& rKept = rRecord.m_Prediction;
    const bool bKept = rKept[0] || rKept[1] || !rAdvice.m_Prediction;
    const auto& rPlanes = bKept ? rKept : rAdvice.m_Prediction->m_Planes;
    Json Amplitude = MakeList(rPlanes, [](const CPlanePrediction& r) { return r.m_Amplitude; });
    if (Amplitude.empty()) {
        return nullptr;
    }
    return {{"amplitude", std::move(Amplitude)},
            {"at_most_95", MakeList(rPlanes, [](const CPlanePrediction& r) { return r.m_AtMost95; })}};
}

Json MakeQuality(const CRunAdvice& rAdvice) {
    if (!rAdvice.m_Quality) {
        return nullptr;
    }
    constexpr std::array NAMES = {"good", "weak", "none"};
    Json Quality = {{"test_run", NAMES.at(static_cast<std::size_t>(rAdvice.m_Quality->m_TestRun))},
                    {"relative_change", rAdvice.m_Quality->m_RelativeChange},
                    {"standard_errors", rAdvice.m_Quality->m_StandardErrors}};
    if (rAdvice.m_Quality->m_Condition) {
        Quality["condition"] = *rAdvice.m_Quality->m_Condition;
    }
    return Quality;
}

Json MakeExplanation(const CRunAdvice& rAdvice) {
    if (!rAdvice.m_Explanation) {
        return nullptr;
    }
    return {{"inside", rAdvice.m_Explanation->m_bInside},
            {"mistake", rAdvice.m_Explanation->m_Mistake},
            {"text", rAdvice.m_Explanation->m_Text}};
}

Json MakeIso(const CRunRecord& rRecord) {
    const std::optional<CIsoAssessment> Assessment = CIsoAssessment::Make(rRecord);
    if (!Assessment) {
        return nullptr;
    }
    Json Iso = Json::object();
    if (Assessment->m_Permissible) {
        Iso["grade"] = Assessment->m_Grade;
        Iso["permissible_gmm"] = *Assessment->m_Permissible;
    }
    if (Assessment->m_Target) {
        Iso["target"] = *Assessment->m_Target;
    }
    Json Residual =
        MakeList(Assessment->m_Residuals, [](const CIso21940::CResidual& r) { return r.m_Amount; });
    if (!Residual.empty()) {
        Iso["residual_gmm"] = std::move(Residual);
        Iso["uncertainty_95_gmm"] = MakeList(Assessment->m_Residuals, [](const CIso21940::CResidual& r) {
            return r.m_Uncertainty95 ? Json(*r.m_Uncertainty95) : Json(nullptr);
        });
    }
    if (Assessment->m_Reached) {
        Iso["reached"] = *Assessment->m_Reached;
    }
    return Iso;
}

}  // namespace RecordJson
