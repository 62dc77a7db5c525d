#include "simulator/balancingmodule.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/framebytes.h"
#include "simulator/rotor.h"
#include "simulator/spindle.h"
#include "simulator/transmitter.h"

namespace {

constexpr std::size_t HEADER_SIZE = 3;
constexpr std::size_t SOURCE = 1;
constexpr std::size_t DESTINATION = 2;
constexpr std::size_t SUB_CODE = 3;
constexpr std::size_t IDENTIFICATION_SIZE = 49;

}  // namespace

CBalancingModule::CBalancingModule(const CWiring& rWiring, std::uint8_t Address, CState State, CModuleSet Set)
    : m_Wiring(rWiring),
      m_Address(Address),
      m_Set(std::move(Set)),
      m_State(State),
      m_bReportedInLock(rWiring.m_rSpindle.IsInLock()),
      m_bReportedInvalid(rWiring.m_rSpindle.IsInvalid()) {
    ReportStanding();
}

void CBalancingModule::ReportStanding() {
    m_Timer.StartPeriodic(std::max(STANDING_PERIOD_MS, m_Wiring.m_ReportPeriodMs), [this] { IndicateRpm(); });
}

bool CBalancingModule::IsFor(std::span<const std::uint8_t> Frame) const {
    return Frame.size() >= HEADER_SIZE && Frame[DESTINATION] == m_Address;
}

void CBalancingModule::PutFrame(std::span<const std::uint8_t> Frame) {
    if (IsFor(Frame)) {
        AnswerRequest(Frame);
    }
}

void CBalancingModule::AnswerRequest(std::span<const std::uint8_t> Request) {
    // A query is its header, and for two of them a sub-code; what is longer is no query.
    const bool bPlain = Request.size() == HEADER_SIZE;
    const bool bWithSubCode = Request.size() == HEADER_SIZE + 1;
    const std::uint8_t Requester = Request[SOURCE];
    switch (Request[0]) {
        case eModuleState:
            return bPlain ? Answer({MakeState(Requester)}) : void();
        case eActiveSet:
            return bWithSubCode && Request[SUB_CODE] == GetSetSubCode() ? Answer({MakeSet(Requester)})
                                                                        : void();
        case eModuleData:
            return bWithSubCode && Request[SUB_CODE] == SUB_CODE_IDENTIFICATION
                       ? Answer({MakeIdentification(Requester)})
                       : void();
        case eRpmData:
            return bPlain ? Answer(MakeRpm(Requester)) : void();
        case eXYData:
            return bPlain ? Answer(MakeXY(Requester)) : void();
        default:
            return;
    }
}

CBalancingModule::Bytes CBalancingModule::MakeHeader(std::uint8_t Kind, std::uint8_t Destination) const {
    return {Kind, GetAddress(), Destination};
}

CBalancingModule::Bytes CBalancingModule::MakeIdentification(std::uint8_t Destination) const {
    const CNameplate& rPlate = GetNameplate();
    Bytes Frame = MakeHeader(eModuleData, Destination);
    Frame.push_back(SUB_CODE_IDENTIFICATION);
    FrameBytes::PutBytes(Frame, {rPlate.m_Type, rPlate.m_YearOfProduction, rPlate.m_CalendarWeek,
                                 rPlate.m_SoftwareVersion, rPlate.m_TNumber});
    Frame.insert(Frame.end(), rPlate.m_ArticleNumber.begin(), rPlate.m_ArticleNumber.end());
    // The serial number follows the address, so that the modules of a pair differ.
    FrameBytes::PutLong(Frame, rPlate.m_SerialNumber + GetAddress());
    FrameBytes::PutLong(Frame, rPlate.m_WorkingHours);
    Frame.resize(IDENTIFICATION_SIZE, 0);
    return Frame;
}

void CBalancingModule::SpindleChanged() {
    const CSpindle& rSpindle = m_Wiring.m_rSpindle;
    if (rSpindle.IsInLock() != m_bReportedInLock || rSpindle.IsInvalid() != m_bReportedInvalid) {
        m_bReportedInLock = rSpindle.IsInLock();
        m_bReportedInvalid = rSpindle.IsInvalid();
        Indicate(MakeState(ANY_ADDRESS));
    }
    if (rSpindle.IsTurning() == m_bTurning) {
        return;
    }
    m_bTurning = rSpindle.IsTurning();
    if (m_bTurning) {
        m_nTick = 0;
        m_Timer.StartPeriodic(m_Wiring.m_ReportPeriodMs, [this] { TurningTick(); });
    } else {
        IndicateRpm();
        ReportStanding();
    }
}

void CBalancingModule::TurningTick() {
    const std::uint32_t nEvery = std::max(1U, RPM_PERIOD_MS / m_Wiring.m_ReportPeriodMs);
    if (++m_nTick % nEvery == 0) {
        IndicateRpm();
    }
    Indicate(MakeXY(ANY_ADDRESS));
    OnTurningTick(m_nTick);
}

void CBalancingModule::ChangeSet(const CModuleSet& rSet) {
    if (rSet != m_Set) {
        m_Set = rSet;
        Indicate(MakeSet(ANY_ADDRESS));
    }
}

void CBalancingModule::ChangeState(const CState& rState) {
    if (rState != m_State) {
        m_State = rState;
        Indicate(MakeState(ANY_ADDRESS));
    }
}

void CBalancingModule::Answer(const Frames& rFrames) {
    for (const Bytes& rFrame : rFrames) {
        m_Wiring.m_rTransmitter.Send(rFrame, CFaults::eAnswer);
    }
}

void CBalancingModule::Indicate(const Bytes& rFrame) {
    m_Wiring.m_rTransmitter.Send(rFrame, CFaults::eIndication);
}

void CBalancingModule::Indicate(const Frames& rFrames) {
    for (const Bytes& rFrame : rFrames) {
        Indicate(rFrame);
    }
}

std::uint16_t CBalancingModule::GetRpm() const {
    return static_cast<std::uint16_t>(std::lround(m_Wiring.m_rSpindle.GetSpeed()));
}
