#pragma once
#include <cstdint>
#include <string>

#include "bench/accuracy/accuracyfigures.h"

/// The plots of the study, each a whole SVG file.
namespace AccuracyPlots {

/// How the residuals of the four kinds of pre-balancing are distributed, beside theory.
std::string DrawDistribution(std::size_t nRuns, std::uint64_t Seed);
/// Residual over the number of readings that are averaged; prints its figures.
std::string DrawTime(std::size_t nRuns, std::uint64_t Seed);
/// Where the method ends: residual over the effect of the test run and the noise; prints its figures.
std::string DrawEffects(std::size_t nRuns, std::uint64_t Seed);
/// The same over how well two planes are told apart.
std::string DrawConditions(std::size_t nRuns, std::uint64_t Seed);

}  // namespace AccuracyPlots
