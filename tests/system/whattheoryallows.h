#pragma once
#include <cmath>
#include <numbers>
#include <random>

/// What a balancing without noise may leave, as far as whole counts and whole degrees are to blame.
namespace Theory {

constexpr double PI = std::numbers::pi;
/// Length of the weight change in a test run: one weight of two, turned by 30 degrees.
inline const double TEST_WEIGHT = 2.0 * std::sin(15.0 * PI / 180.0);
/// A reading of whole counts is off by up to half a count in X and in Y.
inline const double COUNT_ERROR = std::sqrt(0.5);
/// Two positions in whole degrees: each weight is off by up to half a degree.
inline const double DEGREE_ERROR = 2.0 * 2.0 * std::sin(0.25 * PI / 180.0);

/// The same on every machine, unlike the standard distributions.
inline double Uniform(std::mt19937_64& rGenerator, double Low, double High) {
    return Low + (High - Low) * static_cast<double>(rGenerator() >> 11U) * 0x1p-53;
}

}  // namespace Theory
