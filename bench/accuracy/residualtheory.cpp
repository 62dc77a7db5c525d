#include "bench/accuracy/residualtheory.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Complex = std::complex<double>;
using std::numbers::pi;

/// Directions that a circle is divided into.
constexpr int DIRECTIONS = 48;

/// Abscissas and weights of Gauss and Legendre on -1 to 1 [Abramowitz 25.4.29].
struct CNode {
    double m_At;
    double m_Weight;
};
constexpr std::array<CNode, 6> NODES{{{-0.9324695142031521, 0.1713244923791704},
                                      {-0.6612093864662645, 0.3607615730481386},
                                      {-0.2386191860831969, 0.4679139345726910},
                                      {0.2386191860831969, 0.4679139345726910},
                                      {0.6612093864662645, 0.3607615730481386},
                                      {0.9324695142031521, 0.1713244923791704}}};

}  // namespace

double CResidualError::GetProbability(const CCovariance& rCovariance, Complex Centre, double Radius) {
    // Cholesky; a direction without any error gets one that is nothing beside the radius.
    const double Least = 1e-6 * Radius;
    const double a = std::max(std::sqrt(std::max(rCovariance.m_XX, 0.0)), Least);
    const double b = rCovariance.m_XY / a;
    const double d = std::sqrt(std::max(rCovariance.m_YY - b * b, Least * Least));
    static const std::vector<Complex> s_Directions = [] {
        std::vector<Complex> Result;
        Result.reserve(DIRECTIONS);
        for (int i = 0; i < DIRECTIONS; ++i) {
            Result.push_back(std::polar(1.0, 2.0 * pi * (i + 0.5) / DIRECTIONS));
        }
        return Result;
    }();
    // A length in units of the deviation exceeds t with probability exp(-t^2 / 2), in every direction.
    const double c = std::norm(Centre) - Radius * Radius;
    double Sum = 0.0;
    for (const Complex& rDirection : s_Directions) {
        const double x = a * rDirection.real();
        const double y = b * rDirection.real() + d * rDirection.imag();
        const double Square = x * x + y * y;
        const double Half = Centre.real() * x + Centre.imag() * y;
        const double Discriminant = Half * Half - Square * c;
        if (Discriminant < 0.0) {
            continue;
        }
        const double Root = std::sqrt(Discriminant);
        const double Out = (Root - Half) / Square;
        if (Out <= 0.0) {
            continue;
        }
        const double In = std::max((-Root - Half) / Square, 0.0);
        Sum += std::exp(-In * In / 2.0) - std::exp(-Out * Out / 2.0);
    }
    return Sum / DIRECTIONS;
}

std::array<Complex, 2> CResidualError::GetHalfEdges(Complex Wanted, double Step) {
    const double Half = std::acos(std::min(std::abs(Wanted) / 2.0, 1.0));
    const double Direction = std::arg(Wanted);
    const Complex Across(0.0, Step / 2.0);
    return {Across * std::polar(1.0, Direction + Half), Across * std::polar(1.0, Direction - Half)};
}

double CResidualError::GetProbability(double Share) const {
    const double Radius = Share * m_First;
    if (m_HalfEdges[0] == 0.0 && m_HalfEdges[1] == 0.0) {
        return GetProbability(m_Covariance, m_Offset, Radius);
    }
    const double Edge = std::max(std::abs(m_HalfEdges[0]), std::abs(m_HalfEdges[1]));
    const double Deviation = std::sqrt(std::max(m_Covariance.GetTrace() / 2.0, 1e-30));
    if (Edge < Deviation / 2.0) {
        // Of what noise smooths so much the variance is enough: a third of the square of half an edge.
        CCovariance Sum = m_Covariance;
        for (const Complex& rEdge : m_HalfEdges) {
            const double x = rEdge.real();
            const double y = rEdge.imag();
            Sum += {x * x / 3.0, y * y / 3.0, x * y / 3.0};
        }
        return GetProbability(Sum, 0.0, Radius);
    }
    // Where noise doesn't smooth it the parallelogram is divided into more parts.
    const int nParts = static_cast<int>(std::clamp(std::ceil(Edge / (2.0 * Deviation)), 1.0, 4.0));
    const auto GetPlace = [nParts](int Part, double At) { return (2.0 * Part + 1.0 + At) / nParts - 1.0; };
    double Sum = 0.0;
    for (int i = 0; i < nParts; ++i) {
        for (const CNode& rFirst : NODES) {
            const double First = GetPlace(i, rFirst.m_At);
            if (First > 0.0) {
                continue;  // this half is the other one, seen from the opposite side
            }
            for (int j = 0; j < nParts; ++j) {
                for (const CNode& rSecond : NODES) {
                    const Complex Centre =
                        First * m_HalfEdges[0] + GetPlace(j, rSecond.m_At) * m_HalfEdges[1];
                    Sum += rFirst.m_Weight * rSecond.m_Weight / 2.0 *
                           GetProbability(m_Covariance, Centre, Radius);
                }
            }
        }
    }
    return Sum / (nParts * nParts);
}

void CResidualPopulation::ForgetRounding() {
    for (CResidualError& rError : m_Errors) {
        rError.m_HalfEdges = {};
        rError.m_Offset = 0.0;
    }
}

double CResidualPopulation::GetProbability(double Share, std::size_t Every) const {
    double Sum = 0.0;
    std::size_t n = 0;
    for (std::size_t i = 0; i < m_Errors.size(); i += Every) {
        Sum += m_Errors[i].GetProbability(Share);
        ++n;
    }
    return Sum / static_cast<double>(n);
}

double CResidualPopulation::GetQuantile(double Probability) const {
    if (m_Errors.empty()) {
        return 0.0;
    }
    // By halves of the logarithm, to a thousandth.
    const auto Search = [&](double Low, double High, double Ratio, std::size_t Every) {
        while (High / Low > Ratio) {
            const double Middle = std::sqrt(Low * High);
            (GetProbability(Middle, Every) < Probability ? Low : High) = Middle;
        }
        return std::sqrt(Low * High);
    };
    // Roughly by a part of the runs; then by all of them, in a neighbourhood that surely holds it.
    double Low = 1e-7;
    double High = 1e3;
    if (m_Errors.size() > 500) {
        const double Rough = Search(Low, High, 1.02, m_Errors.size() / 250);
        Low = Rough;
        High = Rough;
        do {
            Low /= 1.1;
        } while (GetProbability(Low) > Probability);
        do {
            High *= 1.1;
        } while (GetProbability(High) < Probability);
    }
    return Search(Low, High, 1.002, 1);
}

double CResidualPopulation::GetRelativeError(double Quantile) const {
    double Variance = 0.0;
    for (const CResidualError& rError : m_Errors) {
        const double p = rError.GetProbability(Quantile);
        Variance += p * (1.0 - p);
    }
    constexpr double STEP = 1.05;
    const double Slope =
        (GetProbability(Quantile * STEP) - GetProbability(Quantile / STEP)) / (2.0 * std::log(STEP));
    return std::sqrt(Variance) / static_cast<double>(m_Errors.size()) / Slope;
}

void CErrorPropagation::Add(const CMeasured& rMeasured, Complex Factor) {
    for (std::size_t Plane = 0; Plane < m_nPlanes; ++Plane) {
        Complex Whole;
        for (std::size_t Sensor = 0; Sensor < m_nPlanes; ++Sensor) {
            const Complex Through = Factor * m_Inverse[Plane][Sensor];
            m_Sum[Plane] += rMeasured.m_Error[Sensor].Times(Through);
            Whole += Through * rMeasured.m_True.m_Reading[Sensor];
        }
        const double g = rMeasured.m_GainVariance;
        m_Sum[Plane] += {g * Whole.real() * Whole.real(), g * Whole.imag() * Whole.imag(),
                         g * Whole.real() * Whole.imag()};
    }
}

void CErrorPropagation::Add(const std::array<CCovariance, 2>& rErrors) {
    CMeasured Measured;
    Measured.m_Error = rErrors;
    Add(Measured, 1.0);
}

std::vector<Complex> CErrorPropagation::GetShares(const std::vector<CMeasured>& rMeasured,
                                                  const Textbook::Vector& rFitted) const {
    std::vector<Textbook::CState> States;
    States.reserve(rMeasured.size());
    for (const CMeasured& rEach : rMeasured) {
        States.push_back(rEach.m_True);
    }
    return Textbook::GetShares(States, rFitted, m_nPlanes);
}

void CErrorPropagation::AddPrebalancing(const std::vector<CMeasured>& rMeasured,
                                        const Textbook::Vector& rCorrection) {
    const std::vector<Complex> Shares = GetShares(rMeasured, rCorrection);
    for (std::size_t k = 0; k < rMeasured.size(); ++k) {
        Add(rMeasured[k], Shares[k]);
    }
}

void CErrorPropagation::AddInfluence(const std::vector<CMeasured>& rMeasured,
                                     const Textbook::Vector& rMissing) {
    Textbook::Vector Moved = rMeasured[0].m_True.m_Fitted;
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        Moved[i] += rMissing[i];
    }
    std::vector<Complex> Shares = GetShares(rMeasured, Moved);
    Shares[0] -= 1.0;  // the difference that is made, without the state from which
    for (std::size_t k = 0; k < rMeasured.size(); ++k) {
        Add(rMeasured[k], Shares[k]);
    }
}

double GetVarianceOfMean(double Deviation, std::size_t nReadings) {
    const double n = static_cast<double>(nReadings);
    // What the steps leave of a mean however many are averaged; the rest of a step's variance is averaged
    // away.
    double Kept = 0.0;
    for (int k = 1; k <= 50; ++k) {
        Kept += std::exp(-4.0 * pi * pi * k * k * Deviation * Deviation) / (2.0 * pi * pi * k * k);
    }
    return Deviation * Deviation / n + Kept + std::max(1.0 / 12.0 - Kept, 0.0) / n;
}
