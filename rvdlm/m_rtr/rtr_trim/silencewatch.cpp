#include "rvdlm/m_rtr/rtr_trim/silencewatch.h"

#include <algorithm>

void CSilenceWatch::OnConditions(std::uint64_t Now, bool bTurning, bool bInLock) {
    if (!bTurning) {
        // At rest a module has nothing to report, however long.
        m_bSilent = false;
        m_LastReport.reset();
    }
    const bool bExpected = bTurning && bInLock;
    if (bExpected && !m_bExpected) {
        m_bFirst = true;
        m_Since = Now;
    }
    m_bExpected = bExpected;
}

void CSilenceWatch::OnReading(std::uint64_t Now, bool bReport) {
    // A question that was repeated has further answers, and these count as reports.
    constexpr std::uint64_t REQUEST_LIFE = 2000;
    if (!bReport) {
        m_AnsweredAt = Now;
    }
    bReport = bReport && !(m_AnsweredAt && Now - *m_AnsweredAt < REQUEST_LIFE);
    if (bReport && m_LastReport && Now - *m_LastReport <= WithTolerance(LONGEST_PERIOD)) {
        m_Periods.push_back(Now - *m_LastReport);
        if (m_Periods.size() > PERIODS) {
            m_Periods.erase(m_Periods.begin());
        }
    }
    // A report that a question met may have counted as the answer, so the period behind one isn't known.
    m_LastReport = bReport ? std::optional(Now) : std::nullopt;
    m_Since = Now;
    m_bFirst = false;
    m_bSilent = false;
}

bool CSilenceWatch::Tick(std::uint64_t Now) {
    if (m_bExpected && Now - m_Since >= GetLimit()) {
        m_bSilent = true;
    }
    return m_bSilent;
}

std::uint64_t CSilenceWatch::GetLimit() const {
    constexpr std::uint64_t SLACK = 500;
    const std::uint64_t Period =
        m_Periods.empty() ? LONGEST_PERIOD : *std::max_element(m_Periods.begin(), m_Periods.end());
    const std::uint64_t Limit = std::max(SHORTEST_LIMIT, WithTolerance(Period) + SLACK);
    return m_bFirst ? std::min(Limit, FIRST_READING) : Limit;
}
