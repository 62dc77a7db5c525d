#include "tests/endurance/windowshift.h"

CWindowShift::CWindowShift(std::uint64_t Seed, CTally& rTally)
    : m_Seed(Seed), m_rTally(rTally), m_Chance(Seed) {
    const CRunKind Kind = CRunKind::Draw(m_Chance);
    m_Run.m_Rotor = Kind.m_Rotor;
    m_Run.m_Rotor.m_ReportPeriodMs = 50;
    m_Run.m_Rotor.m_RampRpmPerS = 6000.0;
    Kind.Choose(m_Run.m_Options);
    m_Run.m_Options.m_bStartTurning = false;
}

CWindowShift::~CWindowShift() {
    m_rTally.m_VirtualMs += m_Loop.Now();
}

void CWindowShift::Work(int nActions) {
    const bool bFailedBefore = HasFailure();
    Play(static_cast<std::uint32_t>(m_Seed), nActions);
    m_rTally.m_nWindowRuns += GetEnded();
    m_rTally.m_nWindowActions += nActions;
    if (HasFailure() && !bFailedBefore) {
        m_rTally.Break("what must hold at the window does not (see above)", "seed " + std::to_string(m_Seed));
    }
}

void CWindowShift::BeforeActing() {
    if (m_Chance.Happens(0.1)) {
        std::string How;
        const CTroubles::Kind What = CTroubles::StrikeLine(*m_pSession->GetSimulator(), m_Chance, How);
        m_Happened.insert(What);
        ++m_rTally.m_Troubles[What];
    }
}

bool CWindowShift::IsExplained(const std::string& rAssertion) const {
    const std::size_t nBroken = m_rTally.m_Broken.size();
    m_rTally.TakeAssertion(rAssertion, m_Happened, "seed " + std::to_string(m_Seed));
    return m_rTally.m_Broken.size() == nBroken;
}
