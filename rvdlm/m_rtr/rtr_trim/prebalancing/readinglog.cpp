#include "rvdlm/m_rtr/rtr_trim/prebalancing/readinglog.h"

#include <algorithm>

void CReadingLog::Add(const CArrivedReadings::CReading& rReading) {
    if (m_Ring.size() < CAPACITY) {
        m_Ring.push_back(rReading);
    } else {
        m_Ring[m_nAdded % CAPACITY] = rReading;
    }
    ++m_nAdded;
}

void CReadingLog::Get(CArrivedReadings& rReadings) const {
    const std::uint64_t nSeen = rReadings.m_nSeen <= m_nAdded ? rReadings.m_nSeen : 0;
    for (std::uint64_t i = std::max(nSeen, m_nAdded - m_Ring.size()); i < m_nAdded; ++i) {
        rReadings.m_Readings.push_back(m_Ring[i % CAPACITY]);
    }
    rReadings.m_nSeen = m_nAdded;
}
