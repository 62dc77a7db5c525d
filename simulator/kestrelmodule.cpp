#include "simulator/kestrelmodule.h"

#include "simulator/framebytes.h"
#include "simulator/rotor.h"
#include "simulator/spindle.h"

using FrameBytes::PutWord;

namespace {

// Flags of the module state frame.
constexpr std::uint8_t UI_LOCKED = 1U << 7;
constexpr std::uint8_t OUT_OF_LOCK = 1U << 5;
constexpr std::uint8_t INVALID_RPM = 1U << 3;

}  // namespace

CKestrelModule::CKestrelModule(const CWiring& rWiring, std::uint8_t Address, std::size_t nSensor,
                               const CNoise& rNoise)
    : CBalancingModule(rWiring, Address, CState{.m_State = PREBALANCING_START}, CModuleSet{}),
      m_nSensor(nSensor),
      m_Noise(rNoise) {}

const CBalancingModule::CNameplate& CKestrelModule::GetNameplate() const {
    // Serial numbers stay below 65536: of a pair's serials each takes 16 bits of the machine's.
    static constexpr CNameplate PLATE{.m_Type = 1,
                                      .m_YearOfProduction = 24,
                                      .m_CalendarWeek = 17,
                                      .m_SoftwareVersion = 33,
                                      .m_TNumber = 3,
                                      .m_ArticleNumber = {0x48, 0x61, 0x07},
                                      .m_SerialNumber = 14200,
                                      .m_WorkingHours = 1260};
    return PLATE;
}

CBalancingModule::Bytes CKestrelModule::MakeState(std::uint8_t Destination) const {
    const CSpindle& rSpindle = GetWiring().m_rSpindle;
    Bytes Frame = MakeHeader(eModuleState, Destination);
    Frame.push_back(GetState().m_State);
    Frame.push_back(GetState().m_Parameter);
    Frame.push_back(GetState().m_bUILocked ? UI_LOCKED : 0);
    Frame.push_back(0);
    Frame.push_back(static_cast<std::uint8_t>((rSpindle.IsInLock() ? 0 : OUT_OF_LOCK) |
                                              (rSpindle.IsInvalid() ? INVALID_RPM : 0)));
    return Frame;
}

CBalancingModule::Bytes CKestrelModule::MakeSet(std::uint8_t Destination) const {
    Bytes Frame = MakeHeader(eActiveSet, Destination);
    Frame.push_back(GetSetSubCode());
    Frame.push_back(GetSet().m_Number);
    Frame.push_back(GetSet().m_RPMFactor);
    PutWord(Frame, 0);
    Frame.push_back(GetSet().m_SensorAdaption[0]);
    return Frame;
}

CBalancingModule::Frames CKestrelModule::MakeRpm(std::uint8_t Destination) const {
    Bytes Frame = MakeHeader(eRpmData, Destination);
    PutWord(Frame, GetRpm());
    return {Frame};
}

CBalancingModule::Frames CKestrelModule::MakeXY(std::uint8_t Destination) {
    const CRotor::Vector Reading = GetWiring().m_rRotor.GetReading(m_nSensor) + m_Noise.Next();
    Bytes Frame = MakeHeader(eXYData, Destination);
    PutWord(Frame, static_cast<std::uint16_t>(CRotor::ToCounts(Reading.real())));
    PutWord(Frame, static_cast<std::uint16_t>(CRotor::ToCounts(Reading.imag())));
    return {Frame};
}
