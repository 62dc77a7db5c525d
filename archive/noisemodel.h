#pragma once
#include <complex>
#include <optional>
#include <vector>

#include "archive/runrecord.h"

/// Covariance of an error in the plane of readings, counts squared.
struct CCovariance {
    double m_XX = 0.0;
    double m_YY = 0.0;
    double m_XY = 0.0;

    CCovariance& operator+=(const CCovariance& rOther);
    friend CCovariance operator*(double Factor, const CCovariance& rC) {
        return {Factor * rC.m_XX, Factor * rC.m_YY, Factor * rC.m_XY};
    }
    /// Of the error times a complex factor: M C M' with the factor's block M.
    CCovariance Times(std::complex<double> Factor) const;
    /// e' C^-1 e; infinite if the error can't have come from C, and 0 for no error at all.
    double GetSquaredDistance(std::complex<double> Error) const;
    double GetDeterminant() const { return m_XX * m_YY - m_XY * m_XY; }
    double GetTrace() const { return m_XX + m_YY; }
    /// Variance of the part of the error that lies in this direction.
    double GetVarianceAlong(std::complex<double> Direction) const;
    /// Same in X and Y.
    static CCovariance Isotropic(double Variance) { return {Variance, Variance, 0.0}; }
};

/// Sum of independent errors, some of whose covariances are estimated from readings and some are known.
class CErrorSum {
public:
    /// Freedom: degrees of freedom of the estimate; infinite if it is known.
    void Add(const CCovariance& rPart, double Freedom);
    /// Adds a known part.
    void Add(const CCovariance& rPart);
    /// Adds another sum times a factor, and once more, independently of that, with this part of its
    /// covariance: both rest on the same estimates.
    void Add(const CErrorSum& rOther, std::complex<double> Factor, double Again = 0.0);

    const CCovariance& GetCovariance() const { return m_Sum; }
    /// Effective degrees of freedom of the sum, by the matching of moments of Nel and van der Merwe (1986),
    /// the form for vectors of what Welch and Satterthwaite gave for numbers; at most MAX_FREEDOM.
    double GetFreedom() const;

    /// More are as good as infinitely many.
    static constexpr double MAX_FREEDOM = 1e6;

private:
    struct CPart {
        CCovariance m_Covariance;
        double m_Freedom = 0.0;
    };
    std::vector<CPart> m_Parts;
    CCovariance m_Sum;
};

/// How well readings are known: the scatter of those that arrived, what rounding to counts leaves, and what
/// differs between two measurements of the same state.
namespace NoiseModel {

/// Whether enough readings arrived to tell their scatter.
bool IsScatterKnown(const CMeasuredPlane& rPlane);
/// Variance of the mean that rounding to whole counts leaves, however many readings are averaged: with noise
/// that doesn't reach over more than two steps, up to that of a whole step. Variance: of the readings.
double GetRoundingVariance(double Variance);
/// Covariance of the mean, without repeatability.
CErrorSum GetErrorOfMean(const CMeasuredPlane& rPlane);
/// The same, and the repeatability, relative, of a reading of this length.
CErrorSum GetError(const CMeasuredPlane& rPlane, double Repeatability, double Length);

/// Whether an error of Dimensions elements that squared distance tells of lies in the region that holds it
/// with this probability, when its covariance has so many degrees of freedom: by Hotelling's T-squared.
bool IsInside(double SquaredDistance, double Probability, double Dimensions, double Freedom);

}  // namespace NoiseModel
