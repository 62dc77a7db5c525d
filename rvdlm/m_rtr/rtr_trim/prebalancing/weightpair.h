#pragma once
#include <cmath>

#include "rvlib/math/matrix.h"
#include "rvlib/math/vector.h"

/// Two equal weights on the rotor, each of length 1, by the line halfway between them and their distance from
/// it, in degrees.
struct CWeightPair {
    /// Components of a weight change below this have no direction.
    static constexpr double NO_DIRECTION = 1e-08;

    /// The two angles in degrees, 2 by 1.
    explicit CWeightPair(const math::matrix<double>& rPositions)
        : m_Phi((rPositions(0, 0) + rPositions(1, 0)) * 0.5),
          m_Alpha(std::abs(rPositions(0, 0) - rPositions(1, 0)) * 0.5) {}

    /// Their vector sum.
    math::matrix<double> GetSum() const {
        const double Phi = m_Phi * math::PI / 180.0;
        const double Length = 2.0 * std::cos(m_Alpha * math::PI / 180.0);
        return math::MakeVector(Length * std::cos(Phi), Length * std::sin(Phi));
    }

    /// Direction of a weight change in radians; 0 for one that is too small to have any.
    static double GetDirection(const math::matrix<double>& rChange) {
        const bool bNone = std::abs(rChange(0, 0)) < NO_DIRECTION && std::abs(rChange(1, 0)) < NO_DIRECTION;
        return bNone ? 0.0 : std::atan2(rChange(1, 0), rChange(0, 0));
    }

    double m_Phi;
    double m_Alpha;
};
