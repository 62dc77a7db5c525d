#pragma once
#include <optional>
#include <span>

#include "archive/runrecord.h"

/// How well measurements of the same state agree on one machine.
namespace Repeatability {

/// Standard deviation of X and of Y, relative to the reading, that the final measurements of earlier runs
/// show beyond the scatter of their readings: not larger than this with a probability of 95 %. Runs that no
/// right run would give don't count. Nothing with fewer than five.
std::optional<double> Learn(std::span<const CRunRecord> Earlier);

}  // namespace Repeatability
