#include "simulator/lannermodule.h"

#include <algorithm>
#include <cmath>

#include "simulator/rotor.h"
#include "simulator/spindle.h"

namespace {

enum Report : std::size_t { eBalConfiguration = 0, eModuleConfiguration = 1, eDiagnosisData = 2 };
constexpr std::string_view REPORTS[] = {"bal_configuration", "module_configuration", "diagnosis_data"};

using Params = LannerFrames::CSetParams;

/// The byte of a set's mode: the modes with both planes have a second one for exchanged planes.
std::uint8_t ToModeByte(const CBalancingModule::CModuleSet& rSet) {
    if (!rSet.m_bSwap) {
        return rSet.m_Mode;
    }
    return rSet.m_Mode == CBalancingModule::eTwoPlane ? Params::eTwoPlaneSwapped
                                                      : Params::eBothIndependentSwapped;
}

}  // namespace

CLannerModule::CLannerModule(const CWiring& rWiring, std::uint8_t Address, const std::vector<CNoise>& rNoises,
                             bool bSwap)
    : CBalancingModule(rWiring, Address, CState{.m_State = LannerFrames::CState::SUPERVISION_MODE},
                       // The inputs' adaptions differ, so that who mixes them up is found out.
                       CModuleSet{.m_SensorAdaption = {1, 2}, .m_Name = "Spindle", .m_bSwap = bSwap}),
      m_Noises(rNoises) {}

const CBalancingModule::CNameplate& CLannerModule::GetNameplate() const {
    static constexpr CNameplate PLATE{.m_Type = 9,
                                      .m_YearOfProduction = 25,
                                      .m_CalendarWeek = 6,
                                      .m_SoftwareVersion = 12,
                                      .m_TNumber = 1,
                                      .m_ArticleNumber = {0x51, 0x20, 0x4A},
                                      .m_SerialNumber = 2100300,
                                      .m_WorkingHours = 340};
    return PLATE;
}

CBalancingModule::Bytes CLannerModule::MakeState(std::uint8_t Destination) const {
    using State = LannerFrames::CState;
    const CSpindle& rSpindle = GetWiring().m_rSpindle;
    State Frame;
    Frame.m_State = GetState().m_State;
    Frame.m_Parameter = GetState().m_Parameter;
    Frame.m_bUILocked = GetState().m_bUILocked;
    const unsigned BySpindle = (rSpindle.IsInLock() ? 0U : unsigned{State::eOutOfLock}) |
                               (rSpindle.IsInvalid() ? unsigned{State::eRotationTooSlow} : 0U);
    for (std::size_t nInput = 0; nInput < MAX_PLANES; ++nInput) {
        const std::size_t nPlane = Exchange(nInput);
        Frame.m_Flags[nInput] = GetState().m_Flags[nPlane];
        Frame.m_Failures[nInput] = static_cast<std::uint8_t>(GetState().m_Failures[nPlane] | BySpindle);
    }
    return LannerFrames::MakeState(RouteTo(Destination), Frame);
}

CBalancingModule::Bytes CLannerModule::MakeSet(std::uint8_t Destination) const {
    LannerFrames::CActiveSet Frame;
    Frame.m_Number = GetSet().m_Number;
    Frame.m_Params.emplace();
    Frame.m_Params->m_Mode = ToModeByte(GetSet());
    Frame.m_Params->m_Name = GetSet().m_Name;
    for (const std::uint8_t Input : GetInputs()) {
        LannerFrames::CPlaneParams Plane;
        Plane.m_Id = Input;
        Plane.m_RpmInput = Input;
        Plane.m_SensorAdaption = GetSet().m_SensorAdaption[Input];
        Frame.m_Planes.push_back(Plane);
    }
    return LannerFrames::MakeActiveSet(RouteTo(Destination), Frame);
}

std::vector<std::uint8_t> CLannerModule::GetInputs() const {
    switch (GetSet().m_Mode) {
        case eNothing:
            return {};
        case ePlane1:
            return {0};
        case ePlane2:
            return {1};
        case eBothIndependent:
        case eTwoPlane:
            break;
    }
    return {0, 1};
}

CBalancingModule::Frames CLannerModule::MakeRpm(std::uint8_t Destination) const {
    Frames Result;
    for (const std::uint8_t Input : GetInputs()) {
        Result.push_back(LannerFrames::MakeRpm(RouteTo(Destination), Input, GetRpm()));
    }
    return Result;
}

std::complex<double> CLannerModule::ReadInput(std::uint8_t Input) {
    const std::size_t nPlane = Exchange(Input);
    const CRotor& rRotor = GetWiring().m_rRotor;
    const std::complex<double> Noise = m_Noises[nPlane].Next();
    return nPlane < rRotor.GetNumberOfPlanes() ? rRotor.GetReading(nPlane) + Noise : Noise;
}

CBalancingModule::Frames CLannerModule::MakeXY(std::uint8_t Destination) {
    Frames Result;
    for (const std::uint8_t Input : GetInputs()) {
        const std::complex<double> Reading = ReadInput(Input);
        Result.push_back(LannerFrames::MakeXY(RouteTo(Destination), Input, CRotor::ToCounts(Reading.real()),
                                              CRotor::ToCounts(Reading.imag())));
    }
    return Result;
}

void CLannerModule::OnTurningTick(std::uint32_t nTick) {
    const LannerFrames::CRoute Route = RouteTo(ANY_ADDRESS);
    if (nTick % AMPLITUDE_EVERY_NTH_XY == 0) {
        for (const std::uint8_t Input : GetInputs()) {
            const auto Amplitude =
                static_cast<std::uint16_t>(std::min(std::lround(std::abs(ReadInput(Input))), 65535L));
            Indicate(LannerFrames::MakeAmplitude(Route, Input, Amplitude));
        }
    }
    if (nTick % DIAGNOSIS_EVERY_NTH_XY == 0) {
        // What such a block means is known to the maker of the module only.
        Indicate(LannerFrames::MakeDiagnosis(Route, {static_cast<std::uint8_t>(nTick & 0xFFU), 0x00, 0x2A}));
    }
}

std::span<const std::string_view> CLannerModule::GetReports() const {
    return REPORTS;
}

void CLannerModule::SendReport(std::size_t nReport) {
    const LannerFrames::CRoute Route = RouteTo(ANY_ADDRESS);
    switch (nReport) {
        case eBalConfiguration:
            return Indicate(LannerFrames::MakeBalConfiguration(Route, {}));
        case eModuleConfiguration:
            return Indicate(LannerFrames::MakeModuleConfiguration(Route, {}));
        case eDiagnosisData: {
            LannerFrames::CDiagnosisData Data;
            Data.m_Text = "OK";
            return Indicate(LannerFrames::MakeDiagnosisData(Route, Data));
        }
        default:
            return;
    }
}
