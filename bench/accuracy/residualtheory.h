#pragma once
#include <array>
#include <complex>
#include <cstddef>
#include <vector>

#include "archive/noisemodel.h"
#include "bench/accuracy/textbook.h"

/// What theory says of the residual of one plane of one run, before the run: a Gaussian error of this
/// covariance, that of the measurements carried through influence and inverse in first order, and the
/// rounding of positions, which is independent of it.
struct CResidualError {
    CCovariance m_Covariance;
    /// Of weights: half the edges of the parallelogram that rounding both positions spreads evenly over.
    std::array<std::complex<double>, 2> m_HalfEdges{};
    /// Of screws, which have no such edges: what the best placement for the true correction is off by.
    std::complex<double> m_Offset;
    /// The first unbalance, by which shares count.
    double m_First = 1.0;

    /// Probability that the residual is at most this share of the first.
    double GetProbability(double Share) const;
    /// The parallelogram of two weights that are to produce this vector (of length 2 at most), each in steps
    /// of so many radians.
    static std::array<std::complex<double>, 2> GetHalfEdges(std::complex<double> Wanted, double Step);
    /// That a Gaussian error about this point lies within a circle about 0.
    static double GetProbability(const CCovariance& rCovariance, std::complex<double> Centre, double Radius);
};

/// Many runs: the distribution of the residual's share over all of them.
class CResidualPopulation {
public:
    void Add(const CResidualError& rError) { m_Errors.push_back(rError); }
    std::size_t GetSize() const { return m_Errors.size(); }
    /// As if positions could be fitted as they are computed.
    void ForgetRounding();
    /// By one run of so many only.
    double GetProbability(double Share, std::size_t Every = 1) const;
    double GetQuantile(double Probability) const;
    /// Standard error, relative, with which a simulation of one residual of each run finds the quantile.
    double GetRelativeError(double Quantile) const;

private:
    std::vector<CResidualError> m_Errors;
};

/// Errors of measurements, and how they come out in what is to be fitted.
class CErrorPropagation {
public:
    /// The errors of one measurement.
    struct CMeasured {
        Textbook::CState m_True;
        std::array<CCovariance, 2> m_Error;  ///< by sensor, independent of each other
        double m_GainVariance = 0.0;         ///< of a factor, real, that all sensors have in common
    };
    CErrorPropagation(const Textbook::Matrix& rInfluence, std::size_t nPlanes)
        : m_nPlanes(nPlanes), m_Inverse(Textbook::Invert(rInfluence, nPlanes)) {}

    /// The correction comes out off by the measurement's error times this factor and the inverse.
    void Add(const CMeasured& rMeasured, std::complex<double> Factor);
    /// By these errors of the readings themselves.
    void Add(const std::array<CCovariance, 2>& rErrors);
    /// Of a pre-balancing: in first order what the readings with the correction are off by, with the shares
    /// that these have in them.
    void AddPrebalancing(const std::vector<CMeasured>& rMeasured, const Textbook::Vector& rCorrection);
    /// Of a re-balancing by the influence from these measurements, when so much is missing.
    void AddInfluence(const std::vector<CMeasured>& rMeasured, const Textbook::Vector& rMissing);

    const CCovariance& GetCovariance(std::size_t Plane) const { return m_Sum[Plane]; }

private:
    std::vector<std::complex<double>> GetShares(const std::vector<CMeasured>& rMeasured,
                                                const Textbook::Vector& rFitted) const;

    std::size_t m_nPlanes;
    Textbook::Matrix m_Inverse;
    std::array<CCovariance, 2> m_Sum;
};

/// Variance, of each of X and Y, of the mean of so many readings of this deviation, each rounded to whole
/// counts.
double GetVarianceOfMean(double Deviation, std::size_t nReadings);
