#pragma once
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include "simulator/rotorfile.h"

/// What a balancing may leave, as far as whole counts, whole degrees and the noise of readings are to blame.
namespace Theory {

constexpr double PI = std::numbers::pi;
/// Length of the weight change in a test run: one weight of two, turned by 30 degrees.
inline const double TEST_WEIGHT = 2.0 * std::sin(15.0 * PI / 180.0);
/// A reading of whole counts is off by up to half a count in X and in Y.
inline const double COUNT_ERROR = std::sqrt(0.5);
/// Two positions in whole degrees: each weight is off by up to half a degree.
inline const double DEGREE_ERROR = 2.0 * 2.0 * std::sin(0.25 * PI / 180.0);

/// What may be left of an unbalance (in weights). With a the influence in counts per weight, e the error of a
/// reading and U the correction: the reading is off by at most e, the influence by 2 e / TestWeight, which
/// counts with |U|; the products of two errors are covered by the factor. Then the positions are rounded.
inline double GetBound(double Influence, double Unbalance, double ReadingError = COUNT_ERROR,
                       double TestWeight = TEST_WEIGHT) {
    const double InfluenceError = 2.0 * ReadingError / (TestWeight * Influence);
    return 1.1 * (ReadingError / Influence + Unbalance * InfluenceError) + DEGREE_ERROR;
}

using TwoPlanes = std::array<double, 2>;
using Influences = std::array<std::array<std::complex<double>, 2>, 2>;

/// By sensor, then by plane.
inline Influences GetInfluences(const CRotorFile& rRotor) {
    Influences A;
    for (std::size_t i = 0; i < 2; ++i) {
        for (std::size_t j = 0; j < 2; ++j) {
            const CRotorFile::CInfluence& rInfluence = rRotor.m_Influence[i][j];
            A[i][j] = std::polar(rInfluence.m_Amplitude, rInfluence.m_PhaseDeg * PI / 180.0);
        }
    }
    return A;
}

/// The same of two coupled planes. With A the influence (counts per weight), B its inverse and U the
/// correction: A U + R = 0 is solved with a reading that is off by up to the error, and with influences that
/// are off by up to twice that in a test weight each. What is left is B times the sum of both, taken row by
/// row at its largest; the products of two errors are covered by the factor. Then the positions of the plane
/// are rounded.
inline TwoPlanes GetBounds(const CRotorFile& rRotor, const TwoPlanes& rCorrection,
                           double ReadingError = COUNT_ERROR) {
    const Influences A = GetInfluences(rRotor);
    const double Determinant = std::abs(A[0][0] * A[1][1] - A[0][1] * A[1][0]);
    const double Error = ReadingError + 2.0 * ReadingError / TEST_WEIGHT * (rCorrection[0] + rCorrection[1]);
    const auto Bound = [&](std::complex<double> Other1, std::complex<double> Other2) {
        return 1.2 * (std::abs(Other1) + std::abs(Other2)) / Determinant * Error + DEGREE_ERROR;
    };
    return {Bound(A[1][1], A[0][1]), Bound(A[0][0], A[1][0])};
}

/// The same on every machine, unlike the standard distributions.
inline double Uniform(std::mt19937_64& rGenerator, double Low, double High) {
    return Low + (High - Low) * static_cast<double>(rGenerator() >> 11U) * 0x1p-53;
}

}  // namespace Theory
