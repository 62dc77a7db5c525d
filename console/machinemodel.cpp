#include "console/machinemodel.h"

#include <QString>
#include <algorithm>
#include <utility>

#include "platform/rvldb/gettext.h"

using nlohmann::json;

namespace {

std::string GetRefusalIn(const std::optional<CMachineState>& rState) {
    if (!rState) {
        return GetText("MACHINE_SILENT");
    }
    if (!rState->IsTurning()) {
        return {};
    }
    return QString::fromStdString(GetText("MACHINE_TURNS")).arg(rState->m_Speed, 0, 'f', 0).toStdString();
}

}  // namespace

CMachineModel::CMachineModel(IFMachine& rMachine) : m_rMachine(rMachine) {}

CMachineModel::~CMachineModel() {
    m_Lifetime.End();
}

void CMachineModel::Start() {
    Look();
    m_Timer.StartPeriodic(PERIOD, [this] {
        // A machine elsewhere that is slow to answer isn't flooded.
        if (m_nLooks == 0) {
            Look();
        }
    });
}

void CMachineModel::Look() {
    ++m_nLooks;
    m_rMachine.Request({{"state", json::object()}}, m_Lifetime.Guard([this](const json& rAnswer) {
        --m_nLooks;
        TakeState(rAnswer);
    }));
}

void CMachineModel::TakeState(const json& rAnswer) {
    std::optional<CMachineState> State = CMachineState::Read(rAnswer);
    if (State) {
        constexpr std::size_t PLANES = 2;
        State->m_Planes.resize(std::min(State->m_Planes.size(), PLANES));
    }
    if (m_nFittings > 0 || State == m_State) {
        return;
    }
    m_State = std::move(State);
    AdoptWeights();
    TellChanged();
}

void CMachineModel::AdoptWeights() {
    for (std::size_t Plane = 0; m_State && Plane < m_State->m_Planes.size(); ++Plane) {
        Slots& rSlots = m_Weights.at(Plane);
        std::vector<int> Known;
        for (const std::optional<int>& rAngle : rSlots) {
            if (rAngle) {
                Known.push_back(*rAngle);
            }
        }
        const std::vector<int>& rFitted = m_State->m_Planes[Plane].m_Weights;
        if (Known != rFitted) {
            rSlots.assign(rFitted.begin(), rFitted.end());
            rSlots.resize(std::max(rSlots.size(), WEIGHTS));
        }
    }
}

std::string CMachineModel::GetRefusal() const {
    return GetRefusalIn(m_State);
}

void CMachineModel::Refuse(const std::string& rWhy) {
    if (OnRefused) {
        OnRefused(rWhy);
    }
}

void CMachineModel::TellChanged() {
    if (OnChanged) {
        OnChanged();
    }
}

void CMachineModel::Command(const json& rRequest) {
    m_rMachine.Request(rRequest, m_Lifetime.Guard([this](const json& rAnswer) {
        if (rAnswer.contains("error")) {
            Refuse(rAnswer["error"].get<std::string>());
        }
    }));
}

void CMachineModel::SetSpeed(double Rpm) {
    Command({{"speed", Rpm}});
    Look();
}

void CMachineModel::SetFault(const json& rFault) {
    Command({{"fault", rFault}});
    Look();
}

void CMachineModel::FitIfStanding(std::vector<json> Requests) {
    ++m_nFittings;
    m_rMachine.Request(
        {{"state", json::object()}},
        m_Lifetime.Guard([this, Requests = std::move(Requests)](const json& rAnswer) {
            if (const std::string Why = GetRefusalIn(CMachineState::Read(rAnswer)); !Why.empty()) {
                EndFitting(rAnswer);
                Refuse(Why);
                return;
            }
            for (const json& rRequest : Requests) {
                Command(rRequest);
            }
            m_rMachine.Request({{"state", json::object()}},
                               m_Lifetime.Guard([this](const json& rState) { EndFitting(rState); }));
        }));
}

void CMachineModel::EndFitting(const json& rState) {
    --m_nFittings;
    TakeState(rState);
    if (m_nFittings == 0) {
        AdoptWeights();  // what wasn't fitted springs back
        TellChanged();
    }
}

void CMachineModel::FitWeights(std::size_t Plane) {
    CFitting Fitting{Plane, Plane, {}, false, {}};
    for (const std::optional<int>& rAngle : m_Weights.at(Plane)) {
        if (rAngle) {
            Fitting.m_Angles.push_back(*rAngle);
        }
    }
    FitIfStanding({MakeRequest(Fitting)});
}

void CMachineModel::SetWeight(std::size_t Plane, std::size_t Slot, std::optional<int> Angle) {
    if (const std::string Why = GetRefusal(); !Why.empty()) {
        Refuse(Why);
        return;
    }
    m_Weights.at(Plane).at(Slot) = Angle;
    FitWeights(Plane);
    TellChanged();
}

void CMachineModel::FitScrews(std::size_t Plane, std::vector<CRotorScrew> Screws) {
    // Seen at once, so that the next press is about this one too; what the machine says then is what counts.
    m_State->m_Planes.at(Plane).m_Screws = Screws;
    TellChanged();
    FitIfStanding({MakeRequest(CFitting{Plane, Plane, {}, true, std::move(Screws)})});
}

void CMachineModel::PutScrew(std::size_t Plane, std::uint32_t Hole, double Grams) {
    if (const std::string Why = GetRefusal(); !Why.empty()) {
        Refuse(Why);
        return;
    }
    std::vector<CRotorScrew> Screws = m_State->m_Planes.at(Plane).m_Screws;
    std::erase_if(Screws, [Hole](const CRotorScrew& rScrew) { return rScrew.m_Hole == Hole; });
    Screws.push_back({Hole, Grams});
    FitScrews(Plane, std::move(Screws));
}

void CMachineModel::TakeScrew(std::size_t Plane, std::uint32_t Hole) {
    if (const std::string Why = GetRefusal(); !Why.empty()) {
        Refuse(Why);
        return;
    }
    std::vector<CRotorScrew> Screws = m_State->m_Planes.at(Plane).m_Screws;
    std::erase_if(Screws, [Hole](const CRotorScrew& rScrew) { return rScrew.m_Hole == Hole; });
    FitScrews(Plane, std::move(Screws));
}

void CMachineModel::Fit(const std::vector<CFitting>& rFittings) {
    if (rFittings.empty()) {
        Refuse(GetText("MACHINE_NOTHING_SHOWN"));
        return;
    }
    std::vector<json> Requests;
    Requests.reserve(rFittings.size());
    for (const CFitting& rFitting : rFittings) {
        Requests.push_back(MakeRequest(rFitting));
    }
    FitIfStanding(std::move(Requests));
}
