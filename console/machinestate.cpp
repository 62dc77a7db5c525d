#include "console/machinestate.h"

#include <string>

using nlohmann::json;

namespace {

/// The entry of a plane in a list per plane, null if the machine leaves it out.
json Find(const json& rAnswer, const char* pList, std::size_t Plane) {
    const auto List = rAnswer.find(pList);
    return List != rAnswer.end() && List->is_array() && Plane < List->size() ? (*List)[Plane] : json();
}

CMachineState::CPlane ReadPlane(const json& rAnswer, std::size_t Plane) {
    CMachineState::CPlane Read;
    const json Fitted = Find(rAnswer, "fitted", Plane);
    for (const json& rAngle : Fitted.value("weights", json::array())) {
        Read.m_Weights.push_back(rAngle.get<int>());
    }
    for (const json& rScrew : Fitted.value("screws", json::array())) {
        Read.m_Screws.push_back({rScrew.at("hole").get<std::uint32_t>(), rScrew.at("grams").get<double>()});
    }
    Read.m_bCounterClockwiseScale = Find(rAnswer, "scale", Plane) == "ccw";
    if (const json Holes = Find(rAnswer, "holes", Plane); Holes.is_number_integer()) {
        Read.m_nHoles = Holes.get<int>();
    }
    if (const json Residual = Find(rAnswer, "residual", Plane); Residual.is_object()) {
        Read.m_Residual = Residual.value("amount", 0.0);
        Read.m_ResidualAngle = Residual.value("angle_deg", 0.0);
    }
    return Read;
}

}  // namespace

std::optional<CMachineState> CMachineState::Read(const json& rAnswer) {
    try {
        CMachineState State;
        State.m_Speed = rAnswer.at("speed").get<double>();
        State.m_Commanded = rAnswer.value("commanded", State.m_Speed);
        State.m_bLock = rAnswer.value("lock", false);
        State.m_bCounterClockwise = rAnswer.value("rotation", std::string()) == "ccw";
        for (std::size_t Plane = 0; Plane < rAnswer.at("fitted").size(); ++Plane) {
            State.m_Planes.push_back(ReadPlane(rAnswer, Plane));
        }
        return State;
    } catch (const json::exception&) {
        return std::nullopt;  // an error, or what is no machine of ours
    }
}
