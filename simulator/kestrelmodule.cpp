#include "simulator/kestrelmodule.h"

#include "simulator/rotor.h"
#include "simulator/spindle.h"

namespace {

enum Command : std::uint8_t {
    eModuleState = 0x08,
    eActiveSet = 0x10,
    eModuleData = 0x11,
    eRpmData = 0x1C,
    eXYData = 0x1E,
};
constexpr std::uint8_t eSubCodeSet = 0;
constexpr std::uint8_t eSubCodeIdentification = 8;

/// A query as it must look: command, whole size, and the sub-code behind the header of those that have one.
struct CQuery {
    Command m_Command;
    std::uint8_t m_Size;
    std::uint8_t m_SubCode;
};
constexpr CQuery ms_Queries[] = {
    {eModuleState, 3, 0},
    {eActiveSet, 4, eSubCodeSet},
    {eModuleData, 4, eSubCodeIdentification},
    {eRpmData, 3, 0},
    {eXYData, 3, 0},
};

// Flags of the module state frame.
constexpr std::uint8_t eUILocked = 1U << 7;
constexpr std::uint8_t eOutOfLock = 1U << 5;
constexpr std::uint8_t eInvalidRpm = 1U << 3;

// The nameplate. Article numbers read as six hexadecimal digits. The serial number follows the address, so
// that the modules of a pair differ; below 65536, since of a pair's serials each takes 16 bits of the
// machine's.
constexpr std::uint8_t ms_Nameplate[] = {
    1,                 // type
    24,                // year of production
    17,                // calendar week
    33,                // software version
    3,                 // T number
    0x48, 0x61, 0x07,  // article number
};
constexpr std::uint32_t eFirstSerialNumber = 14200;
constexpr std::uint32_t eWorkingHours = 1260;
constexpr std::size_t eIdentificationSize = 49;

void PutWord(std::vector<std::uint8_t>& rFrame, std::uint16_t Value) {
    rFrame.push_back(static_cast<std::uint8_t>(Value & 0xFFU));
    rFrame.push_back(static_cast<std::uint8_t>(Value >> 8));
}

void PutLong(std::vector<std::uint8_t>& rFrame, std::uint32_t Value) {
    PutWord(rFrame, static_cast<std::uint16_t>(Value & 0xFFFFU));
    PutWord(rFrame, static_cast<std::uint16_t>(Value >> 16));
}

bool IsKnown(std::span<const std::uint8_t> Request) {
    for (const CQuery& rQuery : ms_Queries) {
        if (Request[0] == rQuery.m_Command && Request.size() == rQuery.m_Size) {
            return rQuery.m_Size == 3 || Request[3] == rQuery.m_SubCode;
        }
    }
    return false;
}

}  // namespace

CKestrelModule::CKestrelModule(const CWiring& rWiring, std::uint8_t Address, std::size_t nSensor,
                               const CNoise& rNoise)
    : CBalancingModule(rWiring, Address, CState{.m_State = ePrebalancingStart}),
      m_nSensor(nSensor),
      m_Noise(rNoise) {}

void CKestrelModule::AnswerRequest(std::span<const std::uint8_t> Request) {
    if (!IsKnown(Request)) {
        return;
    }
    const std::uint8_t Requester = Request[1];
    switch (Request[0]) {
        case eModuleState:
            return Answer(MakeState(Requester));
        case eActiveSet:
            return Answer(MakeSet(Requester));
        case eModuleData:
            return Answer(MakeIdentification(Requester));
        case eRpmData:
            return Answer(MakeRpm(Requester));
        case eXYData:
            return Answer(MakeXY(Requester));
    }
}

CBalancingModule::Bytes CKestrelModule::MakeHeader(std::uint8_t Command, std::uint8_t Destination) const {
    return {Command, GetAddress(), Destination};
}

CBalancingModule::Bytes CKestrelModule::MakeState(std::uint8_t Destination) const {
    const CSpindle& rSpindle = GetWiring().m_rSpindle;
    Bytes Frame = MakeHeader(eModuleState, Destination);
    Frame.push_back(GetState().m_State);
    Frame.push_back(GetState().m_Parameter);
    Frame.push_back(GetState().m_bUILocked ? eUILocked : 0);
    Frame.push_back(0);
    Frame.push_back(static_cast<std::uint8_t>((rSpindle.IsInLock() ? 0 : eOutOfLock) |
                                              (rSpindle.IsInvalid() ? eInvalidRpm : 0)));
    return Frame;
}

CBalancingModule::Bytes CKestrelModule::MakeSet(std::uint8_t Destination) const {
    Bytes Frame = MakeHeader(eActiveSet, Destination);
    Frame.push_back(eSubCodeSet);
    Frame.push_back(GetSet().m_Number);
    Frame.push_back(GetSet().m_RPMFactor);
    PutWord(Frame, 0);
    Frame.push_back(GetSet().m_SensorAdaption);
    return Frame;
}

CBalancingModule::Bytes CKestrelModule::MakeIdentification(std::uint8_t Destination) const {
    Bytes Frame = MakeHeader(eModuleData, Destination);
    Frame.push_back(eSubCodeIdentification);
    Frame.insert(Frame.end(), std::begin(ms_Nameplate), std::end(ms_Nameplate));
    PutLong(Frame, eFirstSerialNumber + GetAddress());
    PutLong(Frame, eWorkingHours);
    Frame.resize(eIdentificationSize, 0);
    return Frame;
}

CBalancingModule::Bytes CKestrelModule::MakeRpm(std::uint8_t Destination) const {
    Bytes Frame = MakeHeader(eRpmData, Destination);
    PutWord(Frame, GetRpm());
    return Frame;
}

CBalancingModule::Bytes CKestrelModule::MakeXY(std::uint8_t Destination) {
    const CRotor::Vector Reading = GetWiring().m_rRotor.GetReading(m_nSensor) + m_Noise.Next();
    Bytes Frame = MakeHeader(eXYData, Destination);
    PutWord(Frame, static_cast<std::uint16_t>(CRotor::ToCounts(Reading.real())));
    PutWord(Frame, static_cast<std::uint16_t>(CRotor::ToCounts(Reading.imag())));
    return Frame;
}

void CKestrelModule::IndicateRpm() {
    Indicate(MakeRpm(eAnyAddress));
}

void CKestrelModule::IndicateXY() {
    Indicate(MakeXY(eAnyAddress));
}
