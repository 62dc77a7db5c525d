#pragma once
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

/// The best that screws of a table can do in a ring of holes, found by trying all placements.
namespace BestPlacement {

using Complex = std::complex<double>;

/// Holes count from the real axis. As a set the directions are the same whichever way a ring counts.
inline Complex DirectionOfHole(int Hole, int nHoles) {
    return std::polar(1.0, Hole * 2.0 * std::numbers::pi / nHoles);
}

struct CBest {
    Complex m_Sum;
    double m_Deviation = std::numeric_limits<double>::infinity();
};

/// The best placement of all. The last screw of each is found by bisection: the deviation is convex in its
/// weight.
CBest FindBest(std::vector<double> Weights, bool bThree, int nHoles, Complex Target);

}  // namespace BestPlacement
