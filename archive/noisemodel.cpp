#include "archive/noisemodel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "archive/advicethresholds.h"
#include "archive/fdistribution.h"

CCovariance& CCovariance::operator+=(const CCovariance& rOther) {
    m_XX += rOther.m_XX;
    m_YY += rOther.m_YY;
    m_XY += rOther.m_XY;
    return *this;
}

CCovariance CCovariance::Times(std::complex<double> Factor) const {
    const double a = Factor.real();
    const double b = Factor.imag();
    return {a * a * m_XX - 2.0 * a * b * m_XY + b * b * m_YY,
            b * b * m_XX + 2.0 * a * b * m_XY + a * a * m_YY, a * b * (m_XX - m_YY) + (a * a - b * b) * m_XY};
}

double CCovariance::GetSquaredDistance(std::complex<double> Error) const {
    const double x = Error.real();
    const double y = Error.imag();
    if (x == 0.0 && y == 0.0) {
        return 0.0;
    }
    const double Determinant = GetDeterminant();
    if (Determinant <= 0.0) {
        return std::numeric_limits<double>::infinity();
    }
    return (m_YY * x * x - 2.0 * m_XY * x * y + m_XX * y * y) / Determinant;
}

double CCovariance::GetVarianceAlong(std::complex<double> Direction) const {
    const double Length = std::abs(Direction);
    if (Length == 0.0) {
        return GetTrace() / 2.0;
    }
    const double c = Direction.real() / Length;
    const double s = Direction.imag() / Length;
    return c * c * m_XX + 2.0 * c * s * m_XY + s * s * m_YY;
}

void CErrorSum::Add(const CCovariance& rPart, double Freedom) {
    m_Parts.push_back({rPart, Freedom});
    m_Sum += rPart;
}

void CErrorSum::Add(const CCovariance& rPart) {
    Add(rPart, std::numeric_limits<double>::infinity());
}

void CErrorSum::Add(const CErrorSum& rOther, std::complex<double> Factor, double Again) {
    for (const CPart& rPart : rOther.m_Parts) {
        CCovariance Part = rPart.m_Covariance.Times(Factor);
        Part += Again * rPart.m_Covariance;
        Add(Part, rPart.m_Freedom);
    }
}

double CErrorSum::GetFreedom() const {
    // tr(C)² + tr(C²), which the covariance of a Wishart matrix is made of.
    const auto GetSize = [](const CCovariance& rC) {
        return rC.GetTrace() * rC.GetTrace() + rC.m_XX * rC.m_XX + rC.m_YY * rC.m_YY +
               2.0 * rC.m_XY * rC.m_XY;
    };
    double Parts = 0.0;
    for (const CPart& rPart : m_Parts) {
        Parts += GetSize(rPart.m_Covariance) / rPart.m_Freedom;
    }
    return Parts > 0.0 ? std::min(GetSize(m_Sum) / Parts, MAX_FREEDOM) : MAX_FREEDOM;
}

namespace NoiseModel {

bool IsScatterKnown(const CMeasuredPlane& rPlane) {
    return rPlane.m_nReadings >= AdviceThresholds::MIN_READINGS;
}

double GetRoundingVariance(double Variance) {
    return Variance <= AdviceThresholds::DITHER_VARIANCE ? AdviceThresholds::ROUNDING_VARIANCE : 0.0;
}

CErrorSum GetErrorOfMean(const CMeasuredPlane& rPlane) {
    CErrorSum Result;
    if (rPlane.m_nReadings < 2) {
        return Result;
    }
    const double n = static_cast<double>(rPlane.m_nReadings);
    Result.Add((1.0 / n) * CCovariance{rPlane.m_VarianceX, rPlane.m_VarianceY, rPlane.m_CovarianceXY},
               n - 1.0);
    // Two neighbouring counts in equal parts have a sample variance that is a little more than a quarter.
    const double ToPopulation = (n - 1.0) / n;
    Result.Add({GetRoundingVariance(rPlane.m_VarianceX * ToPopulation),
                GetRoundingVariance(rPlane.m_VarianceY * ToPopulation), 0.0});
    return Result;
}

CErrorSum GetError(const CMeasuredPlane& rPlane, double Repeatability, double Length) {
    CErrorSum Result = GetErrorOfMean(rPlane);
    const double Deviation = Repeatability * Length;
    Result.Add(CCovariance::Isotropic(Deviation * Deviation));
    return Result;
}

bool IsInside(double SquaredDistance, double Probability, double Dimensions, double Freedom) {
    const double Denominator = Freedom - Dimensions + 1.0;
    if (Denominator <= 0.0) {
        return true;  // too few readings to leave any region
    }
    const double F = SquaredDistance * Denominator / (Dimensions * Freedom);
    return std::isfinite(F) && FDistribution::GetProbability(F, Dimensions, Denominator) <= Probability;
}

}  // namespace NoiseModel
