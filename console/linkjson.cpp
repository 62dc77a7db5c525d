#include "console/linkjson.h"

#include <cmath>

#include "console/linkfacts.h"

using nlohmann::ordered_json;

namespace {

const char* ToName(CModuleFacts::Family Family) {
    switch (Family) {
        case CModuleFacts::Family::eKestrel:
            return "kestrel";
        case CModuleFacts::Family::eLanner:
            return "lanner";
        case CModuleFacts::Family::eUnknown:
            break;
    }
    return "unknown";
}

ordered_json ToJson(const CModuleFacts& rModule, std::size_t nPlane) {
    const CModuleFacts::CPlane& rPlane = rModule.m_Planes.at(nPlane);
    return {{"plane", nPlane + 1},
            {"readings", rPlane.m_nReadings},
            {"readings_per_s", std::round(rPlane.GetRate() * 10.0) / 10.0},
            {"readings_change", rPlane.m_bChanges},
            {"x", rPlane.m_X},
            {"y", rPlane.m_Y},
            {"lock", rModule.m_bStateHeard && !rPlane.m_bOutOfLock},
            {"was_in_lock", rPlane.m_bWasInLock},
            {"speed_invalid", rPlane.m_bInvalidSpeed},
            {"sensor_failure", rPlane.m_bSensorFailure},
            {"overamplified", rPlane.m_bOveramplified}};
}

ordered_json ToJson(const CModuleFacts& rModule) {
    ordered_json Json = {{"address", rModule.m_Address},
                         {"family", ToName(rModule.m_Family)},
                         {"frames", rModule.m_nFrames},
                         {"identified", rModule.m_bIdentified}};
    if (rModule.m_bIdentified) {
        Json["article"] = rModule.m_Article;
        Json["serial"] = rModule.m_Serial;
        Json["software"] = rModule.m_Software;
    }
    if (rModule.m_Set) {
        Json["set"] = *rModule.m_Set;
        Json["set_name"] = rModule.m_SetName;
        Json["speed_factor"] = rModule.m_RpmFactor;
    }
    if (rModule.m_bStateHeard) {
        Json["state"] = rModule.m_StateName;
    }
    if (rModule.m_SpeedRpm) {
        Json["speed_rpm"] = *rModule.m_SpeedRpm;
        Json["slowest_rpm"] = rModule.m_SlowestRpm;
        Json["fastest_rpm"] = rModule.m_FastestRpm;
    }
    Json["planes"] = ordered_json::array();
    for (const std::size_t nPlane : rModule.m_Measured) {
        Json["planes"].push_back(ToJson(rModule, nPlane));
    }
    return Json;
}

}  // namespace

ordered_json ToJson(const CLinkFacts& rFacts) {
    ordered_json Json = {{"open", rFacts.m_Trouble == CLinkFacts::Trouble::eNone}};
    if (rFacts.m_Baud != 0) {
        Json["baud"] = rFacts.m_Baud;
        Json["tried_bauds"] = rFacts.m_Tried;
    }
    if (rFacts.m_FittingBaud) {
        Json["fitting_baud"] = *rFacts.m_FittingBaud;
    }
    Json["seconds"] = std::round(static_cast<double>(rFacts.m_Milliseconds) / 100.0) / 10.0;
    Json["bytes"] = rFacts.m_nBytes;
    Json["good_frames"] = rFacts.m_nGood;
    Json["bad_frames"] = rFacts.m_nBad;
    Json["echoes"] = rFacts.m_nEchoes;
    Json["others_frames"] = rFacts.m_nOther;
    Json["all_addresses_asked"] = rFacts.m_bAllAsked;
    Json["modules"] = ordered_json::array();
    for (const auto& [Address, rModule] : rFacts.m_Modules) {
        Json["modules"].push_back(ToJson(rModule));
    }
    return Json;
}
