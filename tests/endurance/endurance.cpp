#include "tests/endurance/endurance.h"

#include "platform/rvlog/logcomponent.h"
#include "tests/endurance/shift.h"
#include "tests/endurance/windowshift.h"

CEndurance::CEndurance(std::uint64_t Seed, std::string LogDirectory)
    : m_Seed(Seed), m_LogDirectory(std::move(LogDirectory)) {
    m_pListener = CLogComponent::AddListener([this](const CLogRecord&) { ++m_Tally.m_nLogged; });
}

CEndurance::~CEndurance() = default;

void CEndurance::WorkShift(std::uint64_t Seed) {
    if (IsAtWindow(Seed)) {
        CWindowShift(Seed, m_Tally).Work();
    } else {
        CShift({Seed, true, 0}, m_Tally).Work();
    }
}

void CEndurance::WorkHours(double Hours, const std::function<void(const CHour&)>& rOnHour) {
    constexpr double HOUR = 3600000.0;
    int nRunsBefore = 0;
    std::uint64_t nLoggedBefore = 0;
    for (std::uint64_t nShift = 0; static_cast<double>(m_Tally.m_VirtualMs) < Hours * HOUR; ++nShift) {
        WorkShift(m_Seed * 1000000 + nShift);
        if (static_cast<double>(m_Tally.m_VirtualMs) < HOUR * static_cast<double>(m_Hours.size() + 1)) {
            continue;
        }
        int nRuns = m_Tally.m_nWindowRuns;
        for (const auto& [rName, rRuns] : m_Tally.m_Runs) {
            nRuns += rRuns.m_nBegun;
        }
        m_Hours.push_back(
            {CFootprint::Measure(m_LogDirectory), m_Tally.m_nLogged - nLoggedBefore, nRuns - nRunsBefore});
        nRunsBefore = nRuns;
        nLoggedBefore = m_Tally.m_nLogged;
        if (rOnHour) {
            rOnHour(m_Hours.back());
        }
    }
}
