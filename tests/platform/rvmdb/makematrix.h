#pragma once
#include <cstdint>
#include <initializer_list>

#include "rvlib/math/matrix.h"

/// A matrix with these elements, row by row.
inline math::matrix<double> MakeMatrix(std::uint32_t nRows, std::uint32_t nColumns,
                                       std::initializer_list<double> Elements) {
    math::matrix<double> Matrix(nRows, nColumns);
    std::uint32_t i = 0;
    for (const double Element : Elements) {
        Matrix(i / nColumns, i % nColumns) = Element;
        ++i;
    }
    return Matrix;
}
