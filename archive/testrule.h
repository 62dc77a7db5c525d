#pragma once
#include <complex>

/// When the module takes a test run of one plane for usable, as its mathematics does.
namespace TestRule {

/// The lengths differ by more than this factor,
inline constexpr double LENGTH_RATIO = 1.05;
/// or the angles by more than 30°, in radians: as two values of atan2, without wrapping.
inline constexpr double PHASE = 0.5235987755982988;
/// The least squared influence, of one unit of weight.
inline constexpr double MIN_INFLUENCE = 0.001;

/// First and second reading, X turned as the mathematics has it; Change: of what is fitted, in weights or
/// test screws.
bool IsAccepted(std::complex<double> First, std::complex<double> Second, std::complex<double> Change);
/// The same, however an error of this length is directed that the second reading may have.
bool IsSurelyAccepted(std::complex<double> First, std::complex<double> Second, std::complex<double> Change,
                      double Error);

}  // namespace TestRule
