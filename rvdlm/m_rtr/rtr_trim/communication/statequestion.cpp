#include "rvdlm/m_rtr/rtr_trim/communication/statequestion.h"

#include <algorithm>

namespace {

constexpr std::uint8_t eModuleState = 0x08;
constexpr std::size_t eHeaderSize = 3;
constexpr std::size_t eSource = 1;
constexpr std::size_t eDestination = 2;
constexpr std::uint8_t eAnyAddress = 0;

}  // namespace

void CStateQuestion::Begin() {
    m_WaitingSince.reset();
}

bool CStateQuestion::IsDue(std::uint64_t Now, std::uint64_t Since) const {
    const bool bKnown = m_KnownAt && *m_KnownAt >= Since && Now - *m_KnownAt < eStateLife;
    return !bKnown && (!m_WaitingSince || Now - m_AskedAt >= eRepeat);
}

CStateQuestion::Question CStateQuestion::Ask(std::uint64_t Now, std::uint8_t TransmitAddress) {
    ForgetOld(Now);
    m_Asked.push_back({Now, false});
    m_AskedAt = Now;
    if (!m_WaitingSince) {
        m_WaitingSince = Now;
    }
    return {eModuleState, TransmitAddress, m_Address};
}

void CStateQuestion::ForgetOld(std::uint64_t Now) {
    while (!m_Asked.empty() && Now - m_Asked.front().m_At > eAnswerLife) {
        m_Asked.pop_front();
    }
}

bool CStateQuestion::OnFrame(std::uint64_t Now, Frame Received) {
    if (Received.size() < eHeaderSize || Received[eSource] != m_Address) {
        return true;
    }
    m_HeardAt = Now;
    ForgetOld(Now);
    const bool bState = Received[0] == eModuleState && Received.size() > eHeaderSize;
    if (bState && Received[eDestination] != eAnyAddress && !m_Asked.empty()) {
        return OnAnswer(Now, Received.subspan(eHeaderSize));
    }
    if (m_WaitingSince && Now - *m_WaitingSince >= eAnswerLimit) {
        m_bAnswers = false;
    }
    if (bState) {
        const Frame State = Received.subspan(eHeaderSize);
        m_State.assign(State.begin(), State.end());
        m_KnownAt = Now;
        Overtake();
    }
    return true;
}

bool CStateQuestion::OnAnswer(std::uint64_t Now, Frame State) {
    const bool bOvertaken = m_Asked.front().m_bOvertaken;
    m_Asked.pop_front();
    m_WaitingSince.reset();
    m_bAnswers = true;
    if (bOvertaken) {
        return false;
    }
    m_KnownAt = Now;
    if (std::ranges::equal(State, m_State)) {
        return false;
    }
    m_State.assign(State.begin(), State.end());
    return true;
}

void CStateQuestion::Overtake() {
    for (CAsked& rAsked : m_Asked) {
        rAsked.m_bOvertaken = true;
    }
}

bool CStateQuestion::IsDead(std::uint64_t Now) const {
    return m_bAnswers && m_WaitingSince && Now - std::max(*m_WaitingSince, m_HeardAt) >= eAnswerLimit;
}
