#include "archive/prediction.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

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

/// Where errors of length 1 along a direction lead: the square of that length, and its product with the mean.
struct CDirection {
    double m_Square;
    double m_AlongMean;
};

std::array<CDirection, DIRECTIONS> MakeDirections(const CTriangle& rL, std::complex<double> Mean) {
    std::array<CDirection, DIRECTIONS> Result;
    for (int i = 0; i < DIRECTIONS; ++i) {
        const double Angle = 2.0 * std::numbers::pi * i / DIRECTIONS;
        const std::complex<double> Step(rL.m_XX * std::cos(Angle),
                                        rL.m_YX * std::cos(Angle) + rL.m_YY * std::sin(Angle));
        Result.at(static_cast<std::size_t>(i)) = {std::norm(Step),
                                                  Mean.real() * Step.real() + Mean.imag() * Step.imag()};
    }
    return Result;
}

}  // namespace

double GetBound(std::complex<double> Mean, const CCovariance& rCovariance, double Freedom, double p) {
    const double Length = std::abs(Mean);
    // More than half of all errors lead out of the circle through the mean.
    double Low = Length;
    double High = Length + std::sqrt(rCovariance.GetTrace());
    if (!(High > Low) || Freedom <= 1.0) {
        return Length;
    }
    const CTriangle L = Decompose(rCovariance);
    const std::array<CDirection, DIRECTIONS> Directions = MakeDirections(L, Mean);
    // Along each direction the errors that stay within the circle reach up to one length.
    const auto GetExcess = [&](double Bound) {
        const double c = Bound * Bound - Length * Length;
        double Sum = 0.0;
        for (const auto& [a, b] : Directions) {
            if (a == 0.0) {
                Sum += 1.0;
                continue;
            }
            const double Reach = (std::sqrt(b * b + a * c) - b) / a;
            Sum += GetDistanceProbability(Reach * Reach, Freedom);
        }
        return Sum / DIRECTIONS - p;
    };
    double ExcessLow = GetExcess(Low);
    double ExcessHigh = GetExcess(High);
    while (ExcessHigh < 0.0) {
        Low = High;
        ExcessLow = ExcessHigh;
        High += High - Length;
        ExcessHigh = GetExcess(High);
    }
    // Regula falsi in its Illinois form: an end that stays counts half. Each fourth step halves the interval,
    // so that it ends whatever the curve is like.
    constexpr double PRECISION = 1e-9;
    int Stays = 0;  // which end stayed: -1 the lower one, 1 the higher one
    for (int nSteps = 1; High - Low > PRECISION * High && ExcessHigh > 0.0; ++nSteps) {
        const double Chord = (Low * ExcessHigh - High * ExcessLow) / (ExcessHigh - ExcessLow);
        const bool bUse = nSteps % 4 != 0 && Chord > Low && Chord < High;
        const double Between = bUse ? Chord : std::midpoint(Low, High);
        const double Excess = GetExcess(Between);
        if (Excess < 0.0) {
            Low = Between;
            ExcessLow = Excess;
            ExcessHigh *= std::exchange(Stays, 1) == 1 ? 0.5 : 1.0;
        } else {
            High = Between;
            ExcessHigh = Excess;
            ExcessLow *= std::exchange(Stays, -1) == -1 ? 0.5 : 1.0;
        }
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
