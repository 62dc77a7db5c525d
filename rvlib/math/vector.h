#pragma once
// Vectors of the balancing mathematics, held in matrices.
#include <cmath>
#include <cstdint>

#include "rvlib/math/matrix.h"

namespace math {

constexpr double PI = 3.141592653589793;
/// Stands in a vector for "no measured value".
constexpr double INVALID_VALUE = -100000000.0;

/// The complex number x + iy as a 2-by-1 vector.
inline matrix<double> MakeVector(double x, double y) {
    matrix<double> Vector(2, 1);
    Vector(0, 0) = x;
    Vector(1, 0) = y;
    return Vector;
}

/// The same as a factor: the block [[x, -y], [y, x]].
inline matrix<double> MakeFactor(double x, double y) {
    matrix<double> Factor(2, 2);
    Factor(0, 0) = x;
    Factor(0, 1) = -y;
    Factor(1, 0) = y;
    Factor(1, 1) = x;
    return Factor;
}

/// A matrix of zeros.
inline matrix<double> MakeNull(std::uint32_t nRows, std::uint32_t nColumns) {
    matrix<double> Null(nRows, nColumns);
    Null.Null();
    return Null;
}

/// Euclidean length of a 2-by-1 vector.
inline double VectorLength(const matrix<double>& rVector) {
    return rVector.Norm();
}

/// Angle of a 2-by-1 vector in radians, -pi to pi. 0 if the vector hasn't exactly 2 rows or holds the invalid
/// marker.
inline double VectorAngle(const matrix<double>& rVector) {
    if (rVector.RowNo() != 2 || rVector(0, 0) == INVALID_VALUE || rVector(1, 0) == INVALID_VALUE) {
        return 0.0;
    }
    return std::atan2(rVector(1, 0), rVector(0, 0));
}

/// Turns column 0 of rSource from degrees into radians. Throws matrix_error when rTarget has fewer rows.
/// Result 1.
inline int DegreesToRadians(matrix<double>& rTarget, const matrix<double>& rSource) {
    for (std::uint32_t i = 0; i < rSource.RowNo(); ++i) {
        rTarget(i, 0) = rSource(i, 0) * PI / 180.0;
    }
    return 1;
}

}  // namespace math
