#include "archive/prediction.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "archive/advicefigures.h"
#include "archive/advicethresholds.h"

namespace Prediction {

namespace {

constexpr int DIRECTIONS = 360;

/// Lower triangle of Cholesky's decomposition.
struct CTriangle {
    double m_XX = 0.0;
    double m_YX = 0.0;
    double m_YY = 0.0;
};

CTriangle Decompose(const CCovariance& rC) {
    CTriangle Result;
    Result.m_XX = std::sqrt(std::max(rC.m_XX, 0.0));
    Result.m_YX = Result.m_XX > 0.0 ? rC.m_XY / Result.m_XX : 0.0;
    Result.m_YY = std::sqrt(std::max(rC.m_YY - Result.m_YX * Result.m_YX, 0.0));
    return Result;
}

/// Probability that T-squared in two dimensions is at most t: that of F in closed form.
double GetDistanceProbability(double t, double Freedom) {
    return -std::expm1(-(Freedom - 1.0) / 2.0 * std::log1p(t / Freedom));
}

}  // namespace

double GetBound(std::complex<double> Mean, const CCovariance& rCovariance, double Freedom, double p) {
    const CTriangle L = Decompose(rCovariance);
    const double Length = std::abs(Mean);
    // Along each direction the errors that stay within the circle reach up to one length.
    const auto GetProbability = [&](double Bound) {
        double Sum = 0.0;
        for (int i = 0; i < DIRECTIONS; ++i) {
            const double Angle = 2.0 * std::numbers::pi * i / DIRECTIONS;
            const std::complex<double> Step(L.m_XX * std::cos(Angle),
                                            L.m_YX * std::cos(Angle) + L.m_YY * std::sin(Angle));
            const double a = std::norm(Step);
            const double b = Mean.real() * Step.real() + Mean.imag() * Step.imag();
            const double c = Bound * Bound - Length * Length;
            if (a == 0.0) {
                Sum += 1.0;
                continue;
            }
            const double Reach = (std::sqrt(b * b + a * c) - b) / a;
            Sum += GetDistanceProbability(Reach * Reach, Freedom);
        }
        return Sum / DIRECTIONS;
    };
    // More than half of all errors lead out of the circle through the mean.
    double Low = Length;
    double High = Length + std::sqrt(rCovariance.GetTrace());
    if (!(High > Low) || Freedom <= 1.0) {
        return Length;
    }
    while (GetProbability(High) < p) {
        Low = High;
        High += High - Length;
    }
    constexpr double PRECISION = 1e-9;
    while (High - Low > PRECISION * High) {
        const double Middle = std::midpoint(Low, High);
        (GetProbability(Middle) < p ? Low : High) = Middle;
    }
    return High;
}

std::optional<CRunAdvice::CPrediction> Make(const CRotorModel& rModel, const CRotorModel::Fit& rAsked,
                                            bool bClockwise) {
    const auto Predicted = rModel.PredictMeasurement(rModel.AssumeNoted(rAsked));
    if (!Predicted) {
        return std::nullopt;
    }
    CRunAdvice::CPrediction Result;
    for (std::size_t i = 0; i < Predicted->size(); ++i) {
        const CRotorModel::CPredicted& rEach = (*Predicted)[i];
        const CCovariance& rC = rEach.m_Error.GetCovariance();
        const auto Reading = CRotorModel::TurnX(rEach.m_Reading, bClockwise);
        CPlanePrediction& rPlane = Result.m_Planes[rModel.GetPlane(i)].emplace();
        rPlane.m_Reading = {Reading.real(), Reading.imag()};
        rPlane.m_Amplitude = std::abs(Reading);
        if (rModel.IsScatterKnown()) {
            rPlane.m_VarianceX = rC.m_XX;
            rPlane.m_VarianceY = rC.m_YY;
            rPlane.m_CovarianceXY = bClockwise ? -rC.m_XY : rC.m_XY;
            rPlane.m_AtMost95 = GetBound(rEach.m_Reading, rC, rEach.m_Error.GetFreedom(),
                                         AdviceThresholds::PREDICTION_REGION);
        }
    }
    Result.m_Text = Describe(Result.m_Planes);
    return Result;
}

std::string Describe(const std::array<std::optional<CPlanePrediction>, 2>& rPlanes) {
    const auto Put = [](const CPlanePrediction& rPlane) {
        const std::string Expected = AdviceFigures::Reading(rPlane.m_Amplitude);
        return rPlane.m_AtMost95 > 0.0
                   ? AdviceFigures::Fill("ADVICE_AT_MOST",
                                         {Expected, AdviceFigures::Number(rPlane.m_AtMost95)})
                   : AdviceFigures::Fill("ADVICE_SCATTER_UNKNOWN", {Expected});
    };
    if (rPlanes[0] && rPlanes[1]) {
        return AdviceFigures::Fill("ADVICE_EXPECTED_TWO", {Put(*rPlanes[0]), Put(*rPlanes[1])});
    }
    const auto& rPlane = rPlanes[0] ? rPlanes[0] : rPlanes[1];
    return rPlane ? AdviceFigures::Fill("ADVICE_EXPECTED", {Put(*rPlane)}) : std::string();
}

}  // namespace Prediction
