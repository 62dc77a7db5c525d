#pragma once
#include <optional>
#include <string>

#include "archive/rotormodel.h"
#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// What the test run of a pre-balancing is worth.
namespace TestQuality {

/// Of the test legs that the run has so far: nothing before the first, or if the scatter isn't known.
/// Repeatability: relative; bLearned: it was measured on this machine, so that it counts as noise too.
std::optional<CRunAdvice::CQuality> Judge(const CRunRecord& rRun, double Repeatability, bool bLearned);

/// For a test run in one plane that the module refuses although it changed the reading: what would be
/// accepted, as far as the influence just measured tells. Empty if that isn't so.
std::string DescribeRefusal(const CRunRecord& rRun, double Repeatability);

}  // namespace TestQuality
