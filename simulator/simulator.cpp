#include "simulator/simulator.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "simulator/jsonfields.h"
#include "simulator/kestrelmodule.h"
#include "simulator/lannermodule.h"

using nlohmann::json;

namespace {

constexpr double MAX_RPM = 65535.0;  // what a frame can hold
constexpr std::size_t MAX_FITTED = 1000;
constexpr double MAX_AMOUNT = 1.0e6;
constexpr double MAX_ANGLE_DEG = 3600.0;
constexpr std::int64_t MAX_BAUD = 4000000;
constexpr std::int64_t MAX_DELAY_MS = 60000;
constexpr std::size_t MAX_SET_NAME = 248;  // what a block of a set can hold

/// The modules of a family and where they are unless somebody says otherwise.
struct CFamily {
    std::size_t m_nModules;
    std::array<std::uint8_t, 2> m_Addresses;
};
constexpr CFamily FAMILIES[] = {{1, {5}}, {2, {5, 6}}, {1, {9}}};  // as CRotorFile::Modules
constexpr std::string_view MODES[] = {"nothing", "plane1", "plane2", "both", "two-plane"};  // as Mode

/// As in a rotor file.
const char* ToText(CRotorFile::Sense Value) {
    return Value == CRotorFile::eClockwise ? "cw" : "ccw";
}

std::uint8_t GetByte(const CJsonFields& rFields, std::string_view Name, std::uint8_t Default) {
    return static_cast<std::uint8_t>(rFields.GetInteger(Name, Default, 0, 255));
}

}  // namespace

const CSimulator::CRequestKind CSimulator::ms_Requests[] = {
    {"speed", &CSimulator::OnSpeed},         {"weights", &CSimulator::OnWeights},
    {"screws", &CSimulator::OnScrews},       {"set", &CSimulator::OnSet},
    {"fault", &CSimulator::OnFault},         {"state", &CSimulator::OnState},
    {"unbalance", &CSimulator::OnUnbalance}, {"module_state", &CSimulator::OnModuleState},
    {"report", &CSimulator::OnReport},       {"answer_delay", &CSimulator::OnAnswerDelay},
    {"line", &CSimulator::OnLine},
};

std::unique_ptr<CSimulator> CSimulator::Create(const CRotorFile& rFile, std::unique_ptr<IFByteLink> pLink,
                                               std::vector<std::uint8_t> Addresses, std::string& rError) {
    const CFamily& rFamily = FAMILIES[rFile.m_Modules];
    const std::size_t nModules = rFamily.m_nModules;
    if (Addresses.empty()) {
        Addresses.assign(rFamily.m_Addresses.begin(),
                         rFamily.m_Addresses.begin() + static_cast<std::ptrdiff_t>(nModules));
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
    : m_Family(rFile.m_Modules),
      m_NominalRpm(rFile.m_SpeedRpm),
      m_pLink(std::make_unique<CWiredLink>(std::move(pLink))),
      m_Rotor(rFile),
      m_Spindle(rFile.m_RampRpmPerS),
      m_Decoder([this](std::span<const std::uint8_t> Frame) {
          for (std::size_t nModule = 0; nModule < m_Stations.size(); ++nModule) {
              PutRequest(nModule, Frame);
          }
      }) {
    for (const std::uint8_t Address : rAddresses) {
        AddModule(rFile, Address);
    }
    m_Spindle.OnChanged = [this] {
        for (const CStation& rStation : m_Stations) {
            rStation.m_pModule->SpindleChanged();
        }
    };
    m_Faults.OnUnlock = [this](std::uint32_t Milliseconds) { m_Spindle.LoseLock(Milliseconds); };
    m_Faults.OnCut = [this](std::uint32_t Milliseconds) { CutLine(Milliseconds); };
    m_Faults.OnNoise = [this](double Counts, const std::array<bool, 2>& rModules) {
        for (std::size_t nModule = 0; nModule < m_Stations.size(); ++nModule) {
            if (rModules.at(nModule)) {
                m_Stations[nModule].m_pModule->DisturbReadings(Counts);
            }
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

void CSimulator::AddModule(const CRotorFile& rFile, std::uint8_t Address) {
    const std::size_t nModule = m_Stations.size();
    CStation& rStation = m_Stations.emplace_back();
    rStation.m_pTransmitter = std::make_unique<CTransmitter>(*m_pLink, m_Faults, nModule);
    const CBalancingModule::CWiring Wiring{m_Rotor, m_Spindle, *rStation.m_pTransmitter,
                                           rFile.m_ReportPeriodMs};
    const auto MakeNoise = [&rFile](std::size_t nPlane) {
        return CNoise(rFile.m_Seed, static_cast<std::uint32_t>(nPlane), rFile.m_NoiseCounts);
    };
    if (m_Family == CRotorFile::eLanner) {
        rStation.m_pModule = std::make_unique<CLannerModule>(
            Wiring, Address, std::vector<CNoise>{MakeNoise(0), MakeNoise(1)}, rFile.m_bSwap);
    } else {
        rStation.m_pModule = std::make_unique<CKestrelModule>(Wiring, Address, nModule, MakeNoise(nModule));
    }
}

void CSimulator::PutRequest(std::size_t nModule, std::span<const std::uint8_t> Frame) {
    CBalancingModule& rModule = *m_Stations[nModule].m_pModule;
    if (!rModule.IsFor(Frame)) {
        return;
    }
    const CFaults::CVerdict Verdict = m_Faults.Judge(CFaults::eRequest, nModule);
    // A damaged request fails the module's check, so it is as good as lost.
    if (Verdict.m_bDrop || Verdict.m_bCorrupt || Verdict.m_bCut) {
        return;
    }
    const int nTimes = Verdict.m_bDouble ? 2 : 1;
    const auto Put = [&rModule, nTimes](std::span<const std::uint8_t> Bytes) {
        for (int nTime = 0; nTime < nTimes; ++nTime) {
            rModule.PutFrame(Bytes);
        }
    };
    if (Verdict.m_DelayMs == 0) {
        Put(Frame);
        return;
    }
    IFEventLoop::Current().SetTimer(
        Verdict.m_DelayMs, [Put, pAlive = m_Lifetime.GetToken(),
                            Late = std::vector<std::uint8_t>(Frame.begin(), Frame.end())](std::uint32_t Id) {
            if (!pAlive.expired()) {
                Put(Late);
            }
            IFEventLoop::Current().KillTimer(Id);
        });
}

void CSimulator::CutLine(std::uint32_t Milliseconds) {
    m_MendTimer.Stop();
    m_pLink->Sever();
    m_Decoder.Reset();
    if (Milliseconds == 0) {
        m_pLink->Open();
        return;
    }
    m_MendTimer.StartOnce(Milliseconds, [this] { m_pLink->Open(); });
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
    m_Spindle.SetCommanded(CJsonFields::ToNumber(rValue, "speed", 0.0, MAX_RPM));
}

void CSimulator::OnWeights(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "weights", {"plane", "angles"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("angles");
    std::vector<int> Angles;
    for (const json& rAngle : *Fields.GetArray("angles", 0, MAX_FITTED)) {
        const std::string Path = CJsonFields::ElementPath("weights.angles", Angles.size());
        Angles.push_back(static_cast<int>(CJsonFields::ToInteger(rAngle, Path, 0, 359)));
    }
    m_Rotor.FitWeights(nPlane, std::move(Angles));
}

void CSimulator::OnScrews(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "screws", {"plane", "fitted"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("fitted");
    std::vector<CSimulatedScrew> Screws;
    for (const json& rScrew : *Fields.GetArray("fitted", 0, MAX_FITTED)) {
        const CJsonFields Screw(rScrew, CJsonFields::ElementPath("screws.fitted", Screws.size()),
                                {"hole", "grams"});
        Screw.Require("hole");
        Screw.Require("grams");
        const auto nHole = static_cast<int>(Screw.GetInteger("hole", 1, 1, m_Rotor.GetNumberOfHoles(nPlane)));
        const bool bTaken = std::any_of(Screws.begin(), Screws.end(), [nHole](const CSimulatedScrew& rOther) {
            return rOther.m_Hole == nHole;
        });
        if (bTaken) {
            throw CJsonError(Screw.GetPath("hole") + ": hole " + std::to_string(nHole) +
                             " has a screw already");
        }
        Screws.push_back({nHole, Screw.GetNumber("grams", 0.0, 0.0, MAX_AMOUNT)});
    }
    m_Rotor.FitScrews(nPlane, std::move(Screws));
}

void CSimulator::OnUnbalance(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "unbalance", {"plane", "amount", "angle_deg"});
    const std::size_t nPlane = ReadPlane(Fields);
    Fields.Require("amount");
    Fields.Require("angle_deg");
    m_Rotor.SetUnbalance(nPlane, Fields.GetNumber("amount", 0.0, 0.0, MAX_AMOUNT),
                         Fields.GetNumber("angle_deg", 0.0, -MAX_ANGLE_DEG, MAX_ANGLE_DEG));
}

CBalancingModule::CModuleSet CSimulator::ReadSet(const CJsonFields& rFields,
                                                 const CBalancingModule::CModuleSet& rPresent) const {
    CBalancingModule::CModuleSet Set = rPresent;
    Set.m_Number = GetByte(rFields, "number", Set.m_Number);
    Set.m_SensorAdaption[0] = GetByte(rFields, "sensor_adaption", Set.m_SensorAdaption[0]);
    if (m_Family != CRotorFile::eLanner) {
        Set.m_RPMFactor = GetByte(rFields, "rpm_factor", Set.m_RPMFactor);
        return Set;
    }
    Set.m_SensorAdaption[1] = GetByte(rFields, "sensor_adaption_2", Set.m_SensorAdaption[1]);
    Set.m_Name = rFields.GetText("name", Set.m_Name, MAX_SET_NAME);
    Set.m_Mode = static_cast<CBalancingModule::Mode>(rFields.GetChoice("mode", Set.m_Mode, MODES));
    Set.m_bSwap = rFields.GetBool("swap", Set.m_bSwap);
    if (Set.m_bSwap && Set.m_Mode != CBalancingModule::eBothIndependent &&
        Set.m_Mode != CBalancingModule::eTwoPlane) {
        throw CJsonError("set.swap goes with mode both or two-plane only");
    }
    return Set;
}

void CSimulator::OnSet(const json& rValue, json&) {
    static constexpr std::string_view KESTREL_FIELDS[] = {"number", "rpm_factor", "sensor_adaption",
                                                          "module"};
    static constexpr std::string_view LANNER_FIELDS[] = {
        "number", "name", "mode", "swap", "sensor_adaption", "sensor_adaption_2", "module"};
    const CJsonFields Fields(rValue, "set",
                             m_Family == CRotorFile::eLanner ? CJsonFields::Names(LANNER_FIELDS)
                                                             : CJsonFields::Names(KESTREL_FIELDS));
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        pModule->ChangeSet(ReadSet(Fields, pModule->GetSet()));
    }
}

CBalancingModule::CState CSimulator::ReadState(const CJsonFields& rFields,
                                               const CBalancingModule::CState& rPresent) const {
    CBalancingModule::CState State = rPresent;
    State.m_State = GetByte(rFields, "state", State.m_State);
    State.m_Parameter = GetByte(rFields, "parameter", State.m_Parameter);
    State.m_bUILocked = rFields.GetBool("ui_locked", State.m_bUILocked);
    const auto ReadBits = [&rFields](std::string_view Name, std::array<std::uint8_t, 2>& rBits) {
        if (const json* pBits = rFields.GetArray(Name, rBits.size(), rBits.size())) {
            for (std::size_t nPlane = 0; nPlane < rBits.size(); ++nPlane) {
                rBits.at(nPlane) = static_cast<std::uint8_t>(CJsonFields::ToInteger(
                    (*pBits)[nPlane], CJsonFields::ElementPath(rFields.GetPath(Name), nPlane), 0, 15));
            }
        }
    };
    ReadBits("flags", State.m_Flags);
    ReadBits("failures", State.m_Failures);
    return State;
}

void CSimulator::OnModuleState(const json& rValue, json&) {
    static constexpr std::string_view KESTREL_FIELDS[] = {"state", "parameter", "ui_locked", "module"};
    static constexpr std::string_view LANNER_FIELDS[] = {"state", "parameter", "ui_locked",
                                                         "flags", "failures",  "module"};
    const CJsonFields Fields(rValue, "module_state",
                             m_Family == CRotorFile::eLanner ? CJsonFields::Names(LANNER_FIELDS)
                                                             : CJsonFields::Names(KESTREL_FIELDS));
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        pModule->ChangeState(ReadState(Fields, pModule->GetState()));
    }
}

void CSimulator::OnReport(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "report", {"kind", "module"});
    Fields.Require("kind");
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        if (pModule->GetReports().empty()) {
            throw CJsonError("report: modules of this family report nothing on demand; use modules lanner");
        }
        pModule->SendReport(Fields.GetChoice("kind", 0, pModule->GetReports()));
    }
}

void CSimulator::OnAnswerDelay(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "answer_delay", {"value", "overtaken", "module"});
    Fields.Require("value");
    const std::int64_t nDelay = Fields.GetInteger("value", 0, 0, MAX_DELAY_MS);
    const bool bOvertaken = Fields.GetBool("overtaken", false);
    for (CBalancingModule* pModule : ReadModules(Fields)) {
        pModule->GetTransmitter().SetAnswerDelay(static_cast<std::uint32_t>(nDelay), bOvertaken);
    }
}

void CSimulator::OnLine(const json& rValue, json&) {
    const CJsonFields Fields(rValue, "line", {"baud", "inverted", "echo"});
    CWiredLink::CWiring Wiring = m_pLink->GetWiring();
    Wiring.m_Baud = static_cast<std::uint32_t>(Fields.GetInteger("baud", Wiring.m_Baud, 0, MAX_BAUD));
    Wiring.m_bInverted = Fields.GetBool("inverted", Wiring.m_bInverted);
    Wiring.m_bEcho = Fields.GetBool("echo", Wiring.m_bEcho);
    m_pLink->SetWiring(Wiring);
}

void CSimulator::OnFault(const json& rValue, json&) {
    m_Faults.Set(rValue, m_Stations.size());
}

void CSimulator::OnState(const json& rValue, json& rAnswer) {
    const CJsonFields Fields(rValue, "state", {});
    rAnswer["speed"] = m_Spindle.GetSpeed();
    rAnswer["commanded"] = m_Spindle.GetCommanded();
    rAnswer["nominal_rpm"] = m_NominalRpm;
    rAnswer["lock"] = m_Spindle.IsInLock();
    rAnswer["invalid"] = m_Spindle.IsInvalid();
    rAnswer["rotation"] = ToText(m_Rotor.GetRotation());
    rAnswer["scale"] = json::array();
    rAnswer["holes"] = json::array();
    rAnswer["unbalance"] = json::array();
    rAnswer["residual"] = json::array();
    rAnswer["fitted"] = json::array();
    for (std::size_t nPlane = 0; nPlane < m_Rotor.GetNumberOfPlanes(); ++nPlane) {
        rAnswer["scale"].push_back(ToText(m_Rotor.GetScale(nPlane)));
        rAnswer["holes"].push_back(m_Rotor.GetNumberOfHoles(nPlane));
        const CRotorFile::CUnbalance& rUnbalance = m_Rotor.GetUnbalance(nPlane);
        rAnswer["unbalance"].push_back(
            {{"amount", rUnbalance.m_Amount}, {"angle_deg", rUnbalance.m_AngleDeg}});
        const CRotor::Vector Residual = m_Rotor.GetResidual(nPlane);
        rAnswer["residual"].push_back(
            {{"amount", std::abs(Residual)}, {"angle_deg", CRotor::AngleDeg(Residual)}});
        json Screws = json::array();
        for (const CSimulatedScrew& rScrew : m_Rotor.GetScrews(nPlane)) {
            Screws.push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
        }
        rAnswer["fitted"].push_back({{"weights", m_Rotor.GetWeights(nPlane)}, {"screws", Screws}});
    }
    rAnswer["modules"] = json::array();
    for (const CStation& rStation : m_Stations) {
        const CBalancingModule::CModuleSet& rSet = rStation.m_pModule->GetSet();
        json Module = {{"address", rStation.m_pModule->GetAddress()},
                       {"set", rSet.m_Number},
                       {"state", rStation.m_pModule->GetState().m_State}};
        if (m_Family == CRotorFile::eLanner) {
            Module["mode"] = MODES[rSet.m_Mode];
            Module["swap"] = rSet.m_bSwap;
        } else {
            Module["rpm_factor"] = rSet.m_RPMFactor;
        }
        rAnswer["modules"].push_back(std::move(Module));
    }
    rAnswer["sent"] = m_Faults.GetSent();
    rAnswer["received"] = m_Faults.GetReceived();
}

std::size_t CSimulator::ReadPlane(const CJsonFields& rFields) const {
    rFields.Require("plane");
    const auto nPlanes = static_cast<std::int64_t>(m_Rotor.GetNumberOfPlanes());
    return static_cast<std::size_t>(rFields.GetInteger("plane", 1, 1, nPlanes) - 1);
}

std::vector<CBalancingModule*> CSimulator::ReadModules(const CJsonFields& rFields) const {
    std::vector<CBalancingModule*> Modules;
    const auto nModules = static_cast<std::int64_t>(m_Stations.size());
    const std::int64_t nWanted = rFields.GetInteger("module", 0, 1, nModules);
    for (std::size_t nModule = 0; nModule < m_Stations.size(); ++nModule) {
        if (nWanted == 0 || nWanted == static_cast<std::int64_t>(nModule) + 1) {
            Modules.push_back(m_Stations[nModule].m_pModule.get());
        }
    }
    return Modules;
}
