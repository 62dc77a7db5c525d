#pragma once
#include <cstdint>
#include <vector>

#include "contract/measurement.h"

/// The readings of a run as they came from the modules, for the host. A measurement's samples are taken by a
/// clock, so that a reading may count twice in its average or not at all: whoever asks how far readings
/// scatter needs these. Filled by the module's window on message WM_RV_QUERYREADINGS with a pointer to this
/// in lParam; the message answers 1 when a procedure runs, else 0 with the record unchanged.
struct CArrivedReadings {
    struct CReading {
        std::uint64_t m_Time = 0;  ///< of the event loop, ms
        std::uint8_t m_Plane = 0;  ///< of the machine, from 0
        std::int16_t m_X = 0;      ///< counts
        std::int16_t m_Y = 0;
        Measurement m_Measurement = Measurement::eNone;  ///< during which it came
        bool m_bCounts = false;                          ///< and samples were taken, in lock and at speed
        std::uint16_t m_RPM = 0;                         ///< the last speed told before

        bool operator==(const CReading&) const = default;
    };
    /// As many readings of this run the host has had; the answer is how many there were. Fewer than the host
    /// has had: another run.
    std::uint64_t m_nSeen = 0;
    /// Those since then are put behind what is here, the oldest first, unless they are too many to be kept.
    std::vector<CReading> m_Readings;
};
