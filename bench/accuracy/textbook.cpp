#include "bench/accuracy/textbook.h"

#include <stdexcept>

namespace Textbook {

Vector Multiply(const Matrix& rMatrix, const Vector& rVector, std::size_t nPlanes) {
    Vector Result{};
    for (std::size_t i = 0; i < nPlanes; ++i) {
        for (std::size_t j = 0; j < nPlanes; ++j) {
            Result[i] += rMatrix[i][j] * rVector[j];
        }
    }
    return Result;
}

Matrix Invert(const Matrix& rMatrix, std::size_t nPlanes) {
    const auto& [r1, r2] = rMatrix;
    const Complex Determinant = nPlanes == 1 ? r1[0] : r1[0] * r2[1] - r1[1] * r2[0];
    if (Determinant == 0.0) {
        throw std::domain_error("planes that the sensors can't tell apart");
    }
    if (nPlanes == 1) {
        return {{{1.0 / Determinant, 0.0}, {0.0, 0.0}}};
    }
    return {{{r2[1] / Determinant, -r1[1] / Determinant}, {-r2[0] / Determinant, r1[0] / Determinant}}};
}

std::vector<Complex> GetShares(std::span<const CState> States, const Vector& rFitted, std::size_t nPlanes) {
    const Vector& rFirst = States[0].m_Fitted;
    Matrix Changes{};
    Vector Wanted{};
    for (std::size_t Plane = 0; Plane < nPlanes; ++Plane) {
        for (std::size_t k = 0; k < nPlanes; ++k) {
            Changes[Plane][k] = States[k + 1].m_Fitted[Plane] - rFirst[Plane];
        }
        Wanted[Plane] = rFitted[Plane] - rFirst[Plane];
    }
    const Vector Others = Multiply(Invert(Changes, nPlanes), Wanted, nPlanes);
    std::vector<Complex> Shares{1.0};
    for (std::size_t k = 0; k < nPlanes; ++k) {
        Shares[0] -= Others[k];
        Shares.push_back(Others[k]);
    }
    return Shares;
}

Matrix GetInfluence(std::span<const CState> States, std::size_t nPlanes) {
    Matrix Influence{};
    for (std::size_t Plane = 0; Plane < nPlanes; ++Plane) {
        // A unit more in this plane: the difference that it makes.
        Vector Fitted = States[0].m_Fitted;
        Fitted[Plane] += 1.0;
        const std::vector<Complex> Shares = GetShares(States, Fitted, nPlanes);
        for (std::size_t Sensor = 0; Sensor < nPlanes; ++Sensor) {
            Complex Reading = -States[0].m_Reading[Sensor];
            for (std::size_t k = 0; k <= nPlanes; ++k) {
                Reading += Shares[k] * States[k].m_Reading[Sensor];
            }
            Influence[Sensor][Plane] = Reading;
        }
    }
    return Influence;
}

Vector GetCorrection(const Matrix& rInfluence, const CState& rNow, std::size_t nPlanes) {
    const Vector Missing = Multiply(Invert(rInfluence, nPlanes), rNow.m_Reading, nPlanes);
    Vector Result{};
    for (std::size_t i = 0; i < nPlanes; ++i) {
        Result[i] = rNow.m_Fitted[i] - Missing[i];
    }
    return Result;
}

}  // namespace Textbook
