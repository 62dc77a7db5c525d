#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "contract/arrivedreadings.h"

/// The last readings of a run, each once, as they came. Window thread only.
class CReadingLog {
public:
    /// More than come in the longest measurement, so that a host which looks once in its time misses none.
    static constexpr std::size_t CAPACITY = 4096;

    void Add(const CArrivedReadings::CReading& rReading);
    /// Appends those that the host hasn't had yet.
    void Get(CArrivedReadings& rReadings) const;

private:
    std::vector<CArrivedReadings::CReading> m_Ring;
    std::uint64_t m_nAdded = 0;
};
