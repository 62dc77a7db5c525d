#pragma once
#include <complex>
#include <cstdint>
#include <string>
#include <vector>

#include "archive/runrecord.h"

/// Records of runs for tests of what is made of them, by the rotor's own physics, which stand here: the
/// readings of a rotor that turns counter-clockwise are V = V0 + A w.
namespace RunRecords {

using Complex = std::complex<double>;

Complex FromPolar(double Amplitude, double AngleDeg);

/// A matrix of complex blocks, rows by columns.
math::matrix<double> MakeBlocks(const std::vector<std::vector<Complex>>& rBlocks);

/// A measured plane whose readings scatter evenly about a mean: nReadings of them, on a circle of that
/// radius.
CMeasuredPlane MakePlane(Complex Mean, std::size_t nReadings = 60, double Radius = 0.7);

/// A finished run with weights in plane 1, over to a final reading of 1.2 counts of 5. Target 5 at 3000 rpm.
CRunRecord MakeWeights();
/// One with screws in plane 1.
CRunRecord MakeScrews();
/// The published two-plane case, in units of 1 count: 170 at 112 and 53 at 78 degrees, 1.15 at 0 degrees in
/// each plane as test screws; corrections of 1.956 at 237.44 and 1.073 at 121.09.
CRunRecord MakePublishedTwoPlane();
/// A published single-plane case: reading without and with a test mass at 0 degrees, the mass as the unit.
CRunRecord MakePublishedSinglePlane(Complex First, double Mass, Complex Test);
/// Broken off after the first measurement; failed with its test weights measured.
CRunRecord MakeBrokenOff();
CRunRecord MakeFailed();

}  // namespace RunRecords
