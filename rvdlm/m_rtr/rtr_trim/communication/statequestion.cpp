#include "rvdlm/m_rtr/rtr_trim/communication/statequestion.h"

#include <algorithm>

namespace {

constexpr std::uint8_t MODULE_STATE = 0x08;
constexpr std::size_t HEADER_SIZE = 3;
constexpr std::size_t SOURCE = 1;
constexpr std::size_t DESTINATION = 2;
constexpr std::uint8_t ANY_ADDRESS = 0;

}  // namespace

void CStateQuestion::Begin() {
    m_WaitingSince.reset();
}

bool CStateQuestion::IsDue(std::uint64_t Now, std::uint64_t Since) const {
    const bool bKnown = m_KnownAt && *m_KnownAt >= Since && Now - *m_KnownAt < STATE_LIFE;
    return !bKnown && (!m_WaitingSince || Now - m_AskedAt >= REPEAT);
}

CStateQuestion::Question CStateQuestion::Ask(std::uint64_t Now, std::uint8_t TransmitAddress) {
    ForgetOld(Now);
    m_Asked.push_back({Now, false});
    m_AskedAt = Now;
    if (!m_WaitingSince) {
        m_WaitingSince = Now;
    }
    return {MODULE_STATE, TransmitAddress, m_Address};
}

void CStateQuestion::ForgetOld(std::uint64_t Now) {
    while (!m_Asked.empty() && Now - m_Asked.front().m_At > ANSWER_LIFE) {
        m_Asked.pop_front();
    }
}

bool CStateQuestion::OnFrame(std::uint64_t Now, Frame Received) {
    if (Received.size() < HEADER_SIZE || Received[SOURCE] != m_Address) {
        return true;
    }
    m_HeardAt = Now;
    ForgetOld(Now);
    const bool bState = Received[0] == MODULE_STATE && Received.size() > HEADER_SIZE;
    if (bState && Received[DESTINATION] != ANY_ADDRESS && !m_Asked.empty()) {
        return OnAnswer(Now, Received.subspan(HEADER_SIZE));
    }
    if (m_WaitingSince && Now - *m_WaitingSince >= ANSWER_LIMIT) {
        m_bAnswers = false;
    }
    if (bState) {
        const Frame State = Received.subspan(HEADER_SIZE);
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
    return m_bAnswers && m_WaitingSince && Now - std::max(*m_WaitingSince, m_HeardAt) >= ANSWER_LIMIT;
}
