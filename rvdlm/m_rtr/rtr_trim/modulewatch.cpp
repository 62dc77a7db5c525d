#include "rvdlm/m_rtr/rtr_trim/modulewatch.h"

#include <algorithm>
#include <utility>

#include "platform/rvcom/rvcom.h"
#include "platform/system/eventloop.h"

namespace {

std::uint64_t Now() {
    return IFEventLoop::Current().Now();
}

}  // namespace

void CModuleWatch::SetModules(const std::vector<std::uint8_t>& rAddresses) {
    m_Questions.clear();
    for (const std::uint8_t Address : rAddresses) {
        m_Questions.emplace_back(Address);
    }
}

void CModuleWatch::Begin(const Planes& rPlanes) {
    m_bUsed = rPlanes;
    for (CSilenceWatch& rReadings : m_Readings) {
        rReadings.Begin();
    }
    std::ranges::for_each(m_Questions, &CStateQuestion::Begin);
    m_bSilent = false;
    m_SpeaksSince.reset();
}

bool CModuleWatch::OnFrame(std::span<const std::uint8_t> Frame) {
    // Each looks at its own module's frames only.
    bool bPass = true;
    for (CStateQuestion& rQuestion : m_Questions) {
        bPass = rQuestion.OnFrame(Now(), Frame) && bPass;
    }
    return bPass;
}

void CModuleWatch::OnConditions(bool bTurning, bool bInLock) {
    if (m_bTurning && !bTurning) {
        // What was asked of the turning spindle isn't true of the standing one.
        std::ranges::for_each(m_Questions, &CStateQuestion::Overtake);
    }
    m_bTurning = bTurning;
    for (CSilenceWatch& rReadings : m_Readings) {
        rReadings.OnConditions(Now(), bTurning, bInLock);
    }
}

void CModuleWatch::OnReading(std::uint32_t Plane, bool bReport) {
    if (Plane < m_Readings.size()) {
        m_Readings[Plane].OnReading(Now(), bReport);
    }
}

bool CModuleWatch::IsLineSilent(std::uint64_t Now, bool bAsk) {
    bool bSilent = false;
    for (std::size_t i = 0; i < m_Readings.size(); ++i) {
        bSilent = (m_bUsed[i] && m_Readings[i].Tick(Now)) || bSilent;
    }
    return bSilent || (bAsk && std::ranges::any_of(m_Questions, [Now](const CStateQuestion& rQuestion) {
                           return rQuestion.IsDead(Now);
                       }));
}

bool CModuleWatch::IsStateKnown() const {
    return std::ranges::all_of(m_Questions, [this](const CStateQuestion& rQuestion) {
        return rQuestion.IsKnownSince(m_SilentSince);
    });
}

void CModuleWatch::AskModules(std::uint64_t Since) {
    for (CStateQuestion& rQuestion : m_Questions) {
        if (rQuestion.IsDue(Now(), Since)) {
            m_Send(rQuestion.Ask(Now(), rvCOM::GetTransmitAddress()));
        }
    }
}

void CModuleWatch::OnSampling() {
    AskModules(Now());
}

CModuleWatch::Finding CModuleWatch::Tick(bool bAsk) {
    const std::uint64_t Present = Now();
    if (!m_bTurning) {
        // Nothing is measured, and nothing asked for.
        m_SpeaksSince.reset();
        return std::exchange(m_bSilent, false) ? Finding::eSpeaksAgain : Finding::eNothing;
    }
    const bool bLineSilent = IsLineSilent(Present, bAsk || m_bSilent);
    Finding Found = Finding::eNothing;
    if (bLineSilent) {
        m_SpeaksSince.reset();
        if (!std::exchange(m_bSilent, true)) {
            m_SilentSince = Present;
            Found = Finding::eFellSilent;
        }
    } else if (m_bSilent) {
        // Reports of that time may be lost, so the state behind it is to be heard of first.
        m_SpeaksSince = m_SpeaksSince.value_or(Present);
        if (IsStateKnown() || Present - *m_SpeaksSince >= MUTE_LIMIT) {
            m_bSilent = false;
            m_SpeaksSince.reset();
            Found = Finding::eSpeaksAgain;
        }
    }
    if (bAsk || m_bSilent) {
        AskModules(m_bSilent ? m_SilentSince : 0);
    }
    return Found;
}
