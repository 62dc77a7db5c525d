#include "archive/vectorstatistics.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "archive/fdistribution.h"

CVectorStatistics::CVectorStatistics(std::span<const CVectorReading> Readings)
    : m_nReadings(Readings.size()), m_Covariance(2, 2) {
    const double n = static_cast<double>(m_nReadings);
    for (const CVectorReading& rReading : Readings) {
        m_Mean.m_X += rReading.m_X / n;
        m_Mean.m_Y += rReading.m_Y / n;
    }
    double XX = 0.0;
    double XY = 0.0;
    double YY = 0.0;
    for (const CVectorReading& rReading : Readings) {
        const double X = rReading.m_X - m_Mean.m_X;
        const double Y = rReading.m_Y - m_Mean.m_Y;
        XX += X * X;
        XY += X * Y;
        YY += Y * Y;
    }
    const double Freedom = m_nReadings > 1 ? n - 1.0 : 1.0;
    m_Covariance(0, 0) = XX / Freedom;
    m_Covariance(0, 1) = m_Covariance(1, 0) = XY / Freedom;
    m_Covariance(1, 1) = YY / Freedom;
}

math::matrix<double> CVectorStatistics::GetCovarianceOfMean() const {
    const double n = static_cast<double>(std::max<std::size_t>(m_nReadings, 1));
    math::matrix<double> Result(2, 2);
    for (std::uint32_t i = 0; i < 2; ++i) {
        for (std::uint32_t j = 0; j < 2; ++j) {
            Result(i, j) = m_Covariance(i, j) / n;
        }
    }
    return Result;
}

std::optional<CEllipse> CVectorStatistics::GetConfidenceEllipse(double Probability) const {
    constexpr std::size_t DIMENSIONS = 2;
    if (m_nReadings <= DIMENSIONS) {
        return std::nullopt;
    }
    const double n = static_cast<double>(m_nReadings);
    const double Size = DIMENSIONS * (n - 1.0) / (n * (n - DIMENSIONS)) *
                        FDistribution::GetQuantile(Probability, DIMENSIONS, n - DIMENSIONS);
    // Eigenvalues of a symmetric matrix of two rows: half the trace, more or less the radius of Mohr's
    // circle.
    const math::matrix<double>& rS = m_Covariance;
    const double HalfTrace = (rS(0, 0) + rS(1, 1)) / 2.0;
    const double HalfDifference = (rS(0, 0) - rS(1, 1)) / 2.0;
    const double Radius = std::hypot(HalfDifference, rS(0, 1));
    double Angle = std::atan2(rS(0, 1), HalfDifference) / 2.0 * (180.0 / std::numbers::pi);
    if (Angle < 0.0) {
        Angle += 180.0;
    }
    return CEllipse{m_Mean.m_X, m_Mean.m_Y, std::sqrt(Size * (HalfTrace + Radius)),
                    std::sqrt(Size * std::max(HalfTrace - Radius, 0.0)), Angle};
}
