#pragma once
#include <complex>
#include <optional>
#include <span>
#include <vector>

#include "archive/rotormodel.h"
#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// What is to be said of the influence that a run has measured.
namespace Influence {

/// By sensor and plane.
using Coefficients = std::vector<std::vector<std::complex<double>>>;

/// Both planes' weights act alike, as far as can be told.
inline constexpr double WORST_CONDITION = 1e6;
/// Condition number of the influence of two planes with its columns scaled to length one, so that units don't
/// count: sqrt((1 + |g|) / (1 - |g|)), g the product of the columns. 1: each plane's weights act as if the
/// other's weren't there; at most WORST_CONDITION.
double GetCondition(const Coefficients& rInfluence);
/// Puts it into the quality of a test run.
void SetCondition(CRunAdvice::CQuality& rQuality, double Condition);

/// How this run's influence agrees with those of earlier ones of the same configuration. Nothing with fewer
/// than three of them, or if this run's isn't known.
std::optional<CRunAdvice::CInfluence> Compare(const CRunRecord& rRun, std::span<const CRunRecord> Earlier);

}  // namespace Influence
