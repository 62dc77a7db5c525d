#include "console/archivejson.h"

#include <array>

#include "archive/measurementname.h"
#include "archive/setuptext.h"
#include "console/configurationjson.h"
#include "console/recordjson.h"

namespace ArchiveJson {

namespace {

using Json = nlohmann::ordered_json;

template <typename Value, typename Map>
Json ForPlanes(const std::array<std::optional<Value>, 2>& rPlanes, Map ToJson) {
    Json Planes = Json::array();
    for (const std::optional<Value>& rPlane : rPlanes) {
        Planes.push_back(rPlane ? Json(ToJson(*rPlane)) : Json());
    }
    return Planes;
}

Json FromCovariance(double X, double Y, double XY) {
    return Json::array({Json::array({X, XY}), Json::array({XY, Y})});
}

Json FromPlane(const CMeasuredPlane& rPlane) {
    Json Readings = Json::array();
    for (const CArchivedReading& rReading : rPlane.m_Readings) {
        Readings.push_back(Json::array({rReading.m_Time, rReading.m_X, rReading.m_Y}));
    }
    return {{"smoothed", Json::array({rPlane.m_Smoothed.m_X, rPlane.m_Smoothed.m_Y})},
            {"n", rPlane.m_nReadings},
            {"mean", Json::array({rPlane.m_Mean.m_X, rPlane.m_Mean.m_Y})},
            {"covariance", FromCovariance(rPlane.m_VarianceX, rPlane.m_VarianceY, rPlane.m_CovarianceXY)},
            {"fitted", Json::parse(FittingToText(rPlane.m_Fitted))},
            {"readings", std::move(Readings)}};
}

Json FromMeasurement(const CRunMeasurement& rMeasurement) {
    return {
        {"name", MeasurementName::Get(rMeasurement.m_Which)},
        {"t_ms", rMeasurement.m_Time},
        {"rpm",
         {{"mean", rMeasurement.m_MeanRpm}, {"min", rMeasurement.m_MinRpm}, {"max", rMeasurement.m_MaxRpm}}},
        {"planes", ForPlanes(rMeasurement.m_Planes, FromPlane)}};
}

Json FromPrediction(const CPlanePrediction& rPlane) {
    return {{"reading", Json::array({rPlane.m_Reading.m_X, rPlane.m_Reading.m_Y})},
            {"covariance", FromCovariance(rPlane.m_VarianceX, rPlane.m_VarianceY, rPlane.m_CovarianceXY)},
            {"amplitude", rPlane.m_Amplitude},
            {"at_most_95", rPlane.m_AtMost95}};
}

Json FromCalibration(const CRunCalibration& rCalibration) {
    Json Vectors = Json::array();
    for (const math::matrix<double>& rUA : rCalibration.m_UA) {
        Vectors.push_back(MatrixToJson(rUA));
    }
    return {{"rpm", rCalibration.m_Rpm},
            {"inv_a", MatrixToJson(rCalibration.m_InvA)},
            {"ua", std::move(Vectors)},
            {"reference_weight", rCalibration.m_ReferenceWeight}};
}

}  // namespace

const char* GetOutcome(CRunRecord::State State, const std::string& rResult) {
    switch (State) {
        case CRunRecord::State::eFinished:
            return rResult.ends_with("OverTarget") ? "over-target" : "within-target";
        case CRunRecord::State::eFailed:
            return "failed";
        case CRunRecord::State::eBrokenOff:
            return "broken-off";
        case CRunRecord::State::eRunning:
            break;
    }
    return "interrupted";
}

const char* GetDriver(CRunRecord::Driver Driver) {
    constexpr std::array NAMES = {"panel", "nc", "headless"};
    return NAMES.at(static_cast<std::size_t>(Driver));
}

nlohmann::ordered_json FromSummary(const CRunSummary& rSummary) {
    const auto Amplitudes = [](const auto& rPlanes) {
        return ForPlanes(rPlanes, [](double a) { return a; });
    };
    return {{"id", rSummary.m_Id},
            {"started", RecordJson::WriteInstant(rSummary.m_Started)},
            {"ended", RecordJson::WriteInstant(rSummary.m_Ended)},
            {"machine", rSummary.m_Machine},
            {"configuration", rSummary.m_Configuration},
            {"mode", rSummary.m_Mode},
            {"rotor", rSummary.m_Rotor},
            {"driver", GetDriver(rSummary.m_Driver)},
            {"procedure", rSummary.m_bRebalance ? "rebalance" : "prebalance"},
            {"outcome", GetOutcome(rSummary.m_State, rSummary.m_Result)},
            {"result", rSummary.m_Result},
            {"saved", rSummary.m_bSaved},
            {"before", Amplitudes(rSummary.m_Before)},
            {"after", Amplitudes(rSummary.m_After)}};
}

nlohmann::ordered_json FromRecord(const CRunRecord& rRecord) {
    Json Setup = Json::parse(SetupToText(rRecord.m_Setup));
    // Texts in the store, which hold any matrix and any property.
    Setup["inv_a"] = MatrixToJson(rRecord.m_Setup.m_InvA);
    Setup["ua"] = Json::array();
    for (const math::matrix<double>& rUA : rRecord.m_Setup.m_UA) {
        Setup["ua"].push_back(MatrixToJson(rUA));
    }
    Setup["properties"] = Json::parse(rRecord.m_Setup.m_Properties, nullptr, false);
    if (Setup["properties"].is_discarded()) {
        Setup["properties"] = nullptr;
    }
    Json Measurements = Json::array();
    for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
        Measurements.push_back(FromMeasurement(rMeasurement));
    }
    Json Warnings = Json::array();
    for (const CRunWarning& rWarning : rRecord.m_Warnings) {
        Warnings.push_back(
            {{"t_ms", rWarning.m_Time}, {"warning", rWarning.m_Number}, {"text", rWarning.m_Text}});
    }
    return {{"id", rRecord.m_Id},
            {"started", RecordJson::WriteInstant(rRecord.m_Started)},
            {"ended", RecordJson::WriteInstant(rRecord.m_Ended)},
            {"version", rRecord.m_Version},
            {"machine", rRecord.m_Machine},
            {"rotor", rRecord.m_Rotor},
            {"driver", GetDriver(rRecord.m_Driver)},
            {"procedure", rRecord.m_bRebalance ? "rebalance" : "prebalance"},
            {"modules", rRecord.m_Family},
            {"addresses", rRecord.m_Addresses},
            {"outcome", GetOutcome(rRecord.m_State, rRecord.m_Result)},
            {"result", rRecord.m_Result},
            {"saved", rRecord.m_bSaved},
            {"setup", std::move(Setup)},
            {"measurements", std::move(Measurements)},
            {"prediction", ForPlanes(rRecord.m_Prediction, FromPrediction)},
            {"warnings", std::move(Warnings)},
            {"calibration", rRecord.m_Calibration ? FromCalibration(*rRecord.m_Calibration) : Json()}};
}

}  // namespace ArchiveJson
