#pragma once
#include <array>
#include <complex>
#include <span>
#include <vector>

/// Influence coefficients as the textbooks have them [Goodman 1964], for one plane or two with as many
/// sensors: readings z = u + A v, with v the sum of what is fitted to each plane. Continuous positions,
/// nothing rounded, no limit of capacity. Written without the module's mathematics, to hold it against.
namespace Textbook {

using Complex = std::complex<double>;
using Vector = std::array<Complex, 2>;  ///< of one plane the first element alone counts
using Matrix = std::array<Vector, 2>;   ///< by sensor, then by plane

/// What was fitted, and what was read then.
struct CState {
    Vector m_Fitted{};
    Vector m_Reading{};
};

Vector Multiply(const Matrix& rMatrix, const Vector& rVector, std::size_t nPlanes);
/// Throws std::domain_error if the matrix is singular.
Matrix Invert(const Matrix& rMatrix, std::size_t nPlanes);

/// With one state more than planes: the shares, with sum 1, of which every other state's readings are made.
/// Any errors of the readings go into it with the same shares.
std::vector<Complex> GetShares(std::span<const CState> States, const Vector& rFitted, std::size_t nPlanes);
Matrix GetInfluence(std::span<const CState> States, std::size_t nPlanes);

/// What has to be fitted, in all, so that the readings vanish.
Vector GetCorrection(const Matrix& rInfluence, const CState& rNow, std::size_t nPlanes);

}  // namespace Textbook
