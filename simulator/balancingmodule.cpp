#include "simulator/balancingmodule.h"

#include <cmath>

#include "simulator/rotor.h"
#include "simulator/spindle.h"
#include "simulator/transmitter.h"

namespace {

constexpr std::size_t eHeaderSize = 3;
constexpr std::size_t eDestination = 2;

}  // namespace

CBalancingModule::CBalancingModule(const CWiring& rWiring, std::uint8_t Address, const CState& rState)
    : m_Wiring(rWiring),
      m_Address(Address),
      m_State(rState),
      m_bReportedInLock(rWiring.m_rSpindle.IsInLock()),
      m_bReportedInvalid(rWiring.m_rSpindle.IsInvalid()) {
    m_Timer.StartPeriodic(eStandingPeriodMs, [this] { IndicateRpm(); });
}

void CBalancingModule::PutFrame(std::span<const std::uint8_t> Frame) {
    if (Frame.size() >= eHeaderSize && Frame[eDestination] == m_Address) {
        AnswerRequest(Frame);
    }
}

void CBalancingModule::SpindleChanged() {
    const CSpindle& rSpindle = m_Wiring.m_rSpindle;
    if (rSpindle.IsInLock() != m_bReportedInLock || rSpindle.IsInvalid() != m_bReportedInvalid) {
        m_bReportedInLock = rSpindle.IsInLock();
        m_bReportedInvalid = rSpindle.IsInvalid();
        Indicate(MakeState(eAnyAddress));
    }
    if (rSpindle.IsTurning() == m_bTurning) {
        return;
    }
    m_bTurning = rSpindle.IsTurning();
    if (m_bTurning) {
        m_nTick = 0;
        m_Timer.StartPeriodic(eXYPeriodMs, [this] { TurningTick(); });
    } else {
        IndicateRpm();
        m_Timer.StartPeriodic(eStandingPeriodMs, [this] { IndicateRpm(); });
    }
}

void CBalancingModule::TurningTick() {
    if (++m_nTick % eRpmEveryNthXY == 0) {
        IndicateRpm();
    }
    IndicateXY();
}

void CBalancingModule::ChangeSet(const CSet& rSet) {
    if (rSet != m_Set) {
        m_Set = rSet;
        Indicate(MakeSet(eAnyAddress));
    }
}

void CBalancingModule::ChangeState(const CState& rState) {
    if (rState != m_State) {
        m_State = rState;
        Indicate(MakeState(eAnyAddress));
    }
}

void CBalancingModule::Answer(const Bytes& rFrame) {
    m_Wiring.m_rTransmitter.Send(rFrame, CFaults::eAnswer);
}

void CBalancingModule::Indicate(const Bytes& rFrame) {
    m_Wiring.m_rTransmitter.Send(rFrame, CFaults::eIndication);
}

std::uint16_t CBalancingModule::GetRpm() const {
    return static_cast<std::uint16_t>(std::lround(m_Wiring.m_rSpindle.GetSpeed()));
}
