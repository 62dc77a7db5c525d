#pragma once
#include <cstddef>
#include <optional>
#include <span>

#include "rvlib/math/matrix.h"

/// A reading as a vector, in counts.
struct CVectorReading {
    double m_X = 0.0;
    double m_Y = 0.0;

    bool operator==(const CVectorReading&) const = default;
};

/// A region in the plane of readings.
struct CEllipse {
    double m_X = 0.0;  ///< centre
    double m_Y = 0.0;
    double m_SemiMajor = 0.0;
    double m_SemiMinor = 0.0;
    double m_AngleDeg = 0.0;  ///< of the major axis, counted from X towards Y: 0 up to but excluding 180

    bool operator==(const CEllipse&) const = default;
};

/// What readings of one measurement say together: their mean, how they scatter about it, and how well the
/// mean is known. They are taken as independent of each other.
class CVectorStatistics {
public:
    explicit CVectorStatistics(std::span<const CVectorReading> Readings);
    /// From what was kept of readings that are gone: number, mean, sample covariance (2 by 2).
    CVectorStatistics(std::size_t nReadings, const CVectorReading& rMean,
                      const math::matrix<double>& rCovariance)
        : m_nReadings(nReadings), m_Mean(rMean), m_Covariance(rCovariance) {}

    std::size_t GetCount() const { return m_nReadings; }
    /// 0, 0 without a reading.
    CVectorReading GetMean() const { return m_Mean; }
    /// Sample covariance, 2 by 2: sums of products of deviations over n - 1, which makes it unbiased. Of
    /// zeros for fewer than two readings.
    const math::matrix<double>& GetCovariance() const { return m_Covariance; }
    /// Covariance of the mean: the above over n.
    math::matrix<double> GetCovarianceOfMean() const;
    /// The region that holds the true mean with this probability (0.95), for normally distributed readings
    /// whose covariance isn't known: with Hotelling's T-squared (Hotelling 1931; Anderson, An Introduction to
    /// Multivariate Statistical Analysis, 5.3),
    ///
    ///     (mean - m)' S^-1 (mean - m) <= 2 (n - 1) / (n (n - 2)) F(Probability; 2, n - 2),
    ///
    /// S the sample covariance. Its axes are the eigenvectors of S. Nothing for fewer than three readings.
    std::optional<CEllipse> GetConfidenceEllipse(double Probability) const;

private:
    std::size_t m_nReadings;
    CVectorReading m_Mean;
    math::matrix<double> m_Covariance;
};
