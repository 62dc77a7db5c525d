#pragma once
#include <chrono>
#include <cstdint>
#include <vector>

#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// A run of the trend of one rotor or machine.
struct CReportTrendPoint {
    std::chrono::sys_seconds m_Date{};
    double m_Before = 0.0;  ///< counts, of two planes the larger reading
    double m_After = 0.0;
    bool m_bWithin = false;  ///< the target
};

/// A procedure that the report tells of.
struct CReportedRun {
    CRunRecord m_Record;
    CRunAdvice m_Advice;
    std::vector<std::uint8_t> m_PagePicture;  ///< PNG of the page at its end; empty if nobody has one
};

/// All that a report for people is made of. Facts that aren't there are left out of it.
struct CReportInput {
    std::vector<CReportedRun> m_Runs;        ///< in their order; none if nothing has begun
    std::vector<CReportTrendPoint> m_Trend;  ///< oldest first; the last twenty are shown
    /// A fixed instant in place of the date: the same report is the same bytes each time.
    bool m_bFixedDate = false;
};
