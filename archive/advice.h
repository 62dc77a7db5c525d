#pragma once
#include <array>
#include <optional>
#include <span>

#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// What is known beside the run.
struct CAdviceBasis {
    /// Standard deviation of X and of Y between measurements of the same state, relative to the reading;
    /// unless given it is learned from the earlier runs, or assumed.
    std::optional<double> m_Repeatability;
    /// Earlier runs of the same machine, in any order; the run itself among them does no harm.
    std::span<const CRunRecord> m_Earlier;
    /// What the module asks to be fitted for the final measurement, by planes of the machine. Not needed once
    /// that measurement is there.
    std::array<std::optional<CPlaneFitting>, 2> m_Asked;
};

/// All of it that the run's facts are enough for.
CRunAdvice Advise(const CRunRecord& rRun, const CAdviceBasis& rBasis = {});
