#include "simulator/simulator.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "simulator/jsonfields.h"
#include "simulator/kestrelmodule.h"

using nlohmann::json;

namespace {

constexpr double eMaxRpm = 65535.0;  // what a frame can hold
constexpr std::size_t eMaxFitted = 1000;
constexpr double eMaxAmount = 1.0e6;
constexpr double eMaxAngleDeg = 3600.0;
constexpr std::uint8_t ms_KestrelAddresses[] = {5, 6};

std::uint8_t GetByte(const CJsonFields& rFields, std::string_view Name, std::uint8_t Default) {
    return static_cast<std::uint8_t>(rFields.GetInteger(Name, Default, 0, 255));
}

}  // namespace

const CSimulator::CRequestKind CSimulator::ms_Requests[] = {
    {"speed", &CSimulator::OnSpeed},         {"weights", &CSimulator::OnWeights},
    {"screws", &CSimulator::OnScrews},       {"set", &CSimulator::OnSet},
    {"fault", &CSimulator::OnFault},         {"state", &CSimulator::OnState},
    {"unbalance", &CSimulator::OnUnbalance}, {"module_state", &CSimulator::OnModuleState},
};

std::unique_ptr<CSimulator> CSimulator::Create(const CRotorFile& rFile, std::unique_ptr<IFByteLink> pLink,
                                               std::vector<std::uint8_t> Addresses, std::string& rError) {
    if (rFile.m_Modules == CRotorFile::eLanner) {
        rError = "modules: lanner can't be simulated yet; use kestrel or kestrel-pair";
        return nullptr;
    }
    const std::size_t nModules = (rFile.m_Modules == CRotorFile::eKestrelPair) ? 2 : 1;
    if (Addresses.empty()) {
        Addresses.assign(ms_KestrelAddresses, ms_KestrelAddresses + nModules);
    }
    // 0 means any address, and 255 no module.
    const bool bUsable = std::none_of(Addresses.begin(), Addresses.end(),
                                      [](std::uint8_t Address) { return Address == 0 || Address == 255; });
    const bool bDiffer = Addresses.size() < 2 || Addresses[0] != Addresses[1];
    if (Addresses.size() != nModules || !bUsable || !bDiffer) {
        rError = (nModules == 1) ? "addresses: give one module address from 1 to 254"
                                 : "addresses: give two different module addresses from 1 to 254";
        return nullptr;
    }
    return std::unique_ptr<CSimulator>(new CSimulator(rFile, std::move(pLink), Addresses));
}

CSimulator::CSimulator(const CRotorFile& rFile, std::unique_ptr<IFByteLink> pLink,
                       const std::vector<std::uint8_t>& rAddresses)
    : m_NominalRpm(rFile.m_SpeedRpm),
      m_pLink(std::move(pLink)),
      m_Rotor(rFile),
      m_Spindle(rFile.m_RampRpmPerS),
      m_Transmitter(*m_pLink),
      m_Decoder([this](std::span<const std::uint8_t> Frame) {
          for (const auto& pModule : m_Modules) {
              pModule->PutFrame(Frame);
          }
      }) {
    for (std::size_t nSensor = 0; nSensor < rAddresses.size(); ++nSensor) {
        const CBalancingModule::CWiring Wiring{m_Rotor, m_Spindle, m_Transmitter};
        m_Modules.push_back(std::make_unique<CKestrelModule>(
            Wiring, rAddresses[nSensor], nSensor,
            CNoise(rFile.m_Seed, static_cast<std::uint32_t>(nSensor), rFile.m_NoiseCounts)));
    }
    m_Spindle.OnChanged = [this] {
        for (const auto& pModule : m_Modules) {
            pModule->SpindleChanged();
        }
    };
    m_pLink->OnBytes = [this](std::span<const std::uint8_t> Bytes) { m_Decoder.Put(Bytes); };
    m_pLink->OnClosed = [this, Former = m_pLink->OnClosed](const std::string& rWhy) {
        m_Decoder.Reset();
        if (Former) {
            Former(rWhy);
        }
    };
}

CSimulator::~CSimulator() {
    m_pLink->OnBytes = nullptr;
    m_pLink->OnOpened = nullptr;
    m_pLink->OnClosed = nullptr;
}

void CSimulator::Open() {
    m_pLink->Open();
}

void CSimulator::Request(const json& rRequest, Done OnAnswer) {
    IFEventLoop::Current().Post(
        [Answer = Carry(rRequest), OnAnswer = std::move(OnAnswer)] { OnAnswer(Answer); });
}

json CSimulator::Carry(const json& rRequest) {
    json Answer = {{"ok", true}};
    try {
        std::array<std::string_view, std::size(ms_Requests)> Names;
        std::ranges::transform(ms_Requests, Names.begin(), &CRequestKind::m_Name);
        const CJsonFields Fields(rRequest, "", CJsonFields::Names(Names));
        if (rRequest.size() != 1) {
            throw CJsonError("give one request at a time, for example {\"speed\": 3000}");
        }
        for (const CRequestKind& rKind : ms_Requests) {
            if (const json* pValue = Fields.Get(rKind.m_Name)) {
                (this->*rKind.m_Handler)(*pValue, Answer);
            }
        }
    } catch (const CJsonError& rError) {
        return {{"error", rError.what()}};
    }
    return Answer;
}

void CSimulator::OnSpeed(const json& rValue, json&) {
    m_Spindle.SetCommanded(CJsonFields::ToNumber(rValue, "speed", 0.0, eMaxRpm));
}

void CSimulator::OnWeights(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "weights", {"plane", "angles"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("angles");
    std::vector<int> Angles;
    for (const json& rAngle : *Fields.GetArray("angles", 0, eMaxFitted)) {
        const std::string Path = CJsonFields::ElementPath("weights.angles", Angles.size());
        Angles.push_back(static_cast<int>(CJsonFields::ToInteger(rAngle, Path, 0, 359)));
    }
    m_Rotor.FitWeights(nPlane, std::move(Angles));
}

void CSimulator::OnScrews(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "screws", {"plane", "fitted"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("fitted");
    std::vector<CFittedScrew> Screws;
    for (const json& rScrew : *Fields.GetArray("fitted", 0, eMaxFitted)) {
        const CJsonFields Screw(rScrew, CJsonFields::ElementPath("screws.fitted", Screws.size()),
                                {"hole", "grams"});
        Screw.Require("hole");
        Screw.Require("grams");
        const auto nHole = static_cast<int>(Screw.GetInteger("hole", 1, 1, m_Rotor.GetNumberOfHoles(nPlane)));
        const bool bTaken = std::any_of(Screws.begin(), Screws.end(), [nHole](const CFittedScrew& rOther) {
            return rOther.m_Hole == nHole;
        });
        if (bTaken) {
            throw CJsonError(Screw.GetPath("hole") + ": hole " + std::to_string(nHole) +
                             " has a screw already");
        }
        Screws.push_back({nHole, Screw.GetNumber("grams", 0.0, 0.0, eMaxAmount)});
    }
    m_Rotor.FitScrews(nPlane, std::move(Screws));
}

void CSimulator::OnUnbalance(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "unbalance", {"plane", "amount", "angle_deg"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("amount");
    Fields.Require("angle_deg");
    m_Rotor.SetUnbalance(nPlane, Fields.GetNumber("amount", 0.0, 0.0, eMaxAmount),
                         Fields.GetNumber("angle_deg", 0.0, -eMaxAngleDeg, eMaxAngleDeg));
}

void CSimulator::OnSet(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "set", {"number", "rpm_factor", "sensor_adaption", "module"});
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        CBalancingModule::CSet Set = pModule->GetSet();
        Set.m_Number = GetByte(Fields, "number", Set.m_Number);
        Set.m_RPMFactor = GetByte(Fields, "rpm_factor", Set.m_RPMFactor);
        Set.m_SensorAdaption = GetByte(Fields, "sensor_adaption", Set.m_SensorAdaption);
        pModule->ChangeSet(Set);
    }
}

void CSimulator::OnModuleState(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "module_state", {"state", "parameter", "ui_locked", "module"});
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        CBalancingModule::CState State = pModule->GetState();
        State.m_State = GetByte(Fields, "state", State.m_State);
        State.m_Parameter = GetByte(Fields, "parameter", State.m_Parameter);
        State.m_bUILocked = Fields.GetBool("ui_locked", State.m_bUILocked);
        pModule->ChangeState(State);
    }
}

void CSimulator::OnFault(const json& rValue, json&) {
    m_Transmitter.GetFaults().Set(rValue);
}

void CSimulator::OnState(const json& rValue, json& rAnswer) {
    const CJsonFields Fields(rValue, "state", {});
    rAnswer["speed"] = m_Spindle.GetSpeed();
    rAnswer["commanded"] = m_Spindle.GetCommanded();
    rAnswer["nominal_rpm"] = m_NominalRpm;
    rAnswer["lock"] = m_Spindle.IsInLock();
    rAnswer["invalid"] = m_Spindle.IsInvalid();
    rAnswer["unbalance"] = json::array();
    rAnswer["residual"] = json::array();
    rAnswer["fitted"] = json::array();
    for (std::size_t nPlane = 0; nPlane < m_Rotor.GetNumberOfPlanes(); ++nPlane) {
        const CRotorFile::CUnbalance& rUnbalance = m_Rotor.GetUnbalance(nPlane);
        rAnswer["unbalance"].push_back(
            {{"amount", rUnbalance.m_Amount}, {"angle_deg", rUnbalance.m_AngleDeg}});
        const CRotor::Vector Residual = m_Rotor.GetResidual(nPlane);
        rAnswer["residual"].push_back(
            {{"amount", std::abs(Residual)}, {"angle_deg", CRotor::AngleDeg(Residual)}});
        json Screws = json::array();
        for (const CFittedScrew& rScrew : m_Rotor.GetScrews(nPlane)) {
            Screws.push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
        }
        rAnswer["fitted"].push_back({{"weights", m_Rotor.GetWeights(nPlane)}, {"screws", Screws}});
    }
    rAnswer["modules"] = json::array();
    for (const auto& pModule : m_Modules) {
        rAnswer["modules"].push_back({{"address", pModule->GetAddress()},
                                      {"set", pModule->GetSet().m_Number},
                                      {"rpm_factor", pModule->GetSet().m_RPMFactor},
                                      {"state", pModule->GetState().m_State}});
    }
}

std::size_t CSimulator::ReadPlane(const CJsonFields& rFields) const {
    rFields.Require("plane");
    const auto nPlanes = static_cast<std::int64_t>(m_Rotor.GetNumberOfPlanes());
    return static_cast<std::size_t>(rFields.GetInteger("plane", 1, 1, nPlanes) - 1);
}

std::vector<CBalancingModule*> CSimulator::ReadModules(const CJsonFields& rFields) const {
    std::vector<CBalancingModule*> Modules;
    const auto nModules = static_cast<std::int64_t>(m_Modules.size());
    const std::int64_t nWanted = rFields.GetInteger("module", 0, 1, nModules);
    for (std::size_t nModule = 0; nModule < m_Modules.size(); ++nModule) {
        if (nWanted == 0 || nWanted == static_cast<std::int64_t>(nModule) + 1) {
            Modules.push_back(m_Modules[nModule].get());
        }
    }
    return Modules;
}
