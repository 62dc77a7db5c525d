#pragma once
#include "platform/rvmdb/typebase.h"
#include "rvlib/math/matrix.h"

/// Turns a compensation vector into the positions of two equal weights in a plane, and back. Each weight is a
/// vector of length 1 in the direction of its angle, so that the pair reaches 0 to 2. UA is 2 by 1, in units
/// of one weight; angles are whole degrees on the rotor's scale. Both conversions depend on nothing but their
/// arguments and the two values given at construction.
class CWeightCompensation {
public:
    /// Scaling: the sense in which the scale counts. Plane: 0 the first plane, 1 the second.
    CWeightCompensation(PreBalDB::CTypeBase::Direction Scaling, unsigned Plane)
        : m_ScalingDirection(Scaling), m_Plane(Plane) {}

    /// Positions that produce rUA, within whole degrees. False if the vector is longer than the pair is
    /// trusted with (1.95): both weights then stand in its direction, and the percentage (may be null) says
    /// by how much it is too long. Throws math::matrix_error if rUA has fewer than 2 rows.
    ///
    /// On a counter-clockwise scale the positions may come out mirrored (see the ordering in the .cpp), and
    /// in the second plane a position of 0 may come out as 360.
    bool UA2Angles(const math::matrix<double>& rUA, int& rAngleWeight1, int& rAngleWeight2,
                   double* pPerCentCompensationDifference) const;
    /// The vector that the positions produce, into rUA, which must be 2 by 1. Asserts angles within -359 to
    /// 359, and computes on. Result true.
    bool Angles2UA(const int& rAngleWeight1, const int& rAngleWeight2, math::matrix<double>& rUA) const;

protected:
    unsigned GetPlane() const { return m_Plane; }

private:
    /// Whether scale and plane count in opposite senses.
    bool IsFlipped() const;

    PreBalDB::CTypeBase::Direction m_ScalingDirection;
    unsigned m_Plane;
};
