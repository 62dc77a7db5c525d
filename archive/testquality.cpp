#include "archive/testquality.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "archive/advicefigures.h"
#include "archive/advicethresholds.h"
#include "archive/testrule.h"

namespace TestQuality {

namespace {

using Vector = CRotorModel::Vector;
using AdviceFigures::Fill;

/// Standard errors for 95 % of a length.
constexpr double EXPANSION = 2.0;
constexpr int STEP = 5;

/// The change from one measurement to the next in all sensors.
struct CEffect {
    double m_SquaredDistance = 0.0;          ///< by scatter alone, or with a repeatability that was learned
    double m_SquaredDistanceRepeated = 0.0;  ///< with repeatability
    double m_Freedom = CErrorSum::MAX_FREEDOM;
    double m_Change = 0.0;  ///< where it stands out most
    double m_Variance = 0.0;
    double m_RelativeChange = 0.0;
};

struct CSensorReading {
    Vector m_Reading;
    const CMeasuredPlane* m_pPlane = nullptr;
};

CSensorReading Read(const CRunMeasurement& rMeasurement, std::size_t Plane) {
    const auto& rPlane = rMeasurement.m_Planes[Plane];
    return rPlane ? CSensorReading{{rPlane->m_Smoothed.m_X, rPlane->m_Smoothed.m_Y}, &*rPlane}
                  : CSensorReading();
}

/// Nothing if a scatter isn't known.
std::optional<CEffect> Compare(const CRunMeasurement& rFirst, const CRunMeasurement& rBefore,
                               const CRunMeasurement& rAfter, const CRunSetup& rSetup, double Repeatability,
                               bool bLearned) {
    CEffect Result;
    double Largest = -1.0;
    for (std::size_t i = 0; i < rSetup.m_Planes.size(); ++i) {
        if (!rSetup.m_Planes[i]) {
            continue;
        }
        const CSensorReading Before = Read(rBefore, i);
        const CSensorReading After = Read(rAfter, i);
        const CSensorReading First = Read(rFirst, i);
        if (Before.m_pPlane == nullptr || After.m_pPlane == nullptr || First.m_pPlane == nullptr ||
            !NoiseModel::IsScatterKnown(*Before.m_pPlane) || !NoiseModel::IsScatterKnown(*After.m_pPlane)) {
            return std::nullopt;
        }
        CErrorSum Scatter = NoiseModel::GetErrorOfMean(*Before.m_pPlane);
        Scatter.Add(NoiseModel::GetErrorOfMean(*After.m_pPlane), 1.0);
        CErrorSum All = NoiseModel::GetError(*Before.m_pPlane, Repeatability, std::abs(Before.m_Reading));
        All.Add(NoiseModel::GetError(*After.m_pPlane, Repeatability, std::abs(After.m_Reading)), 1.0);
        const CErrorSum& rNoise = bLearned ? All : Scatter;
        const Vector Change = After.m_Reading - Before.m_Reading;
        const double Distance = rNoise.GetCovariance().GetSquaredDistance(Change);
        Result.m_SquaredDistance += Distance;
        Result.m_SquaredDistanceRepeated += All.GetCovariance().GetSquaredDistance(Change);
        Result.m_Freedom = std::min(Result.m_Freedom, rNoise.GetFreedom());
        if (Distance > Largest) {
            Largest = Distance;
            Result.m_Change = std::abs(Change);
            Result.m_Variance = rNoise.GetCovariance().GetVarianceAlong(Change);
            const double FirstLength = std::abs(First.m_Reading);
            Result.m_RelativeChange = FirstLength > 0.0 ? std::abs(Change) / FirstLength : 0.0;
        }
    }
    return Largest < 0.0 ? std::nullopt : std::optional(Result);
}

CRunAdvice::CQuality MakeQuality(const CEffect& rEffect, std::size_t nSensors) {
    CRunAdvice::CQuality Result;
    Result.m_Change = rEffect.m_Change;
    Result.m_Uncertainty = EXPANSION * std::sqrt(rEffect.m_Variance);
    Result.m_RelativeChange = rEffect.m_RelativeChange;
    Result.m_StandardErrors = std::sqrt(rEffect.m_SquaredDistance);
    constexpr double GOOD = AdviceThresholds::GOOD_STANDARD_ERRORS * AdviceThresholds::GOOD_STANDARD_ERRORS;
    using TestRun = CRunAdvice::CQuality::TestRun;
    if (NoiseModel::IsInside(rEffect.m_SquaredDistance, 1.0 - AdviceThresholds::NO_EFFECT,
                             2.0 * static_cast<double>(nSensors), rEffect.m_Freedom)) {
        Result.m_TestRun = TestRun::eNone;
        Result.m_Text = Fill("ADVICE_NO_EFFECT", {AdviceFigures::Number(Result.m_Change),
                                                  AdviceFigures::Reading(Result.m_Uncertainty)});
        return Result;
    }
    const bool bGood = rEffect.m_SquaredDistanceRepeated >= GOOD &&
                       rEffect.m_RelativeChange >= AdviceThresholds::GOOD_CHANGE;
    Result.m_TestRun = bGood ? TestRun::eGood : TestRun::eWeak;
    Result.m_Text = Fill(bGood ? "ADVICE_GOOD_TEST" : "ADVICE_WEAK_TEST",
                         {AdviceFigures::Percent(Result.m_RelativeChange),
                          AdviceFigures::Number(std::sqrt(rEffect.m_SquaredDistanceRepeated))});
    return Result;
}

/// By how many degrees a weight was moved, the shorter way: more than -180 up to 180.
int GetMove(int From, int To) {
    const int Move = ((To - From) % 360 + 360) % 360;
    return Move > 180 ? Move - 360 : Move;
}

bool AreApart(const std::vector<int>& rWeights) {
    return rWeights.size() < 2 ||
           std::abs(GetMove(rWeights[0], rWeights[1])) >= AdviceThresholds::WEIGHT_DISTANCE;
}

struct CStep {
    int m_Done = 0;    ///< by how much the weight was moved
    int m_Better = 0;  ///< by how much it would have to be, 0 if no step is enough
};

/// A step that would be accepted of the weight that was moved.
CStep FindStep(const CRotorModel& rModel, double RelativeError) {
    const auto& rStates = rModel.GetStates();
    const std::vector<int>& rFirst = rStates[0].m_Fitted[0].m_Weights;
    const std::vector<int>& rTest = rStates[1].m_Fitted[0].m_Weights;
    if (rFirst.size() != rTest.size() || rFirst.empty()) {
        return {};
    }
    std::size_t Moved = 0;
    for (std::size_t i = 1; i < rFirst.size(); ++i) {
        if (std::abs(GetMove(rFirst[i], rTest[i])) > std::abs(GetMove(rFirst[Moved], rTest[Moved]))) {
            Moved = i;
        }
    }
    const Vector First = rStates[0].m_Reading[0];
    const Vector Neutral = rModel.GetSum(0, rStates[0].m_Fitted[0]);
    const Vector Noted = rModel.GetSum(0, rStates[1].m_Fitted[0]) - Neutral;
    const Vector Influence = (rStates[1].m_Reading[0] - First) / Noted;
    const int Done = GetMove(rFirst[Moved], rTest[Moved]);
    const auto IsAccepted = [&](int Step) {
        CPlaneFitting Fitting;
        Fitting.m_Weights = rFirst;
        Fitting.m_Weights[Moved] += Step;
        const Vector Change = rModel.GetSum(0, Fitting) - Neutral;
        return AreApart(Fitting.m_Weights) &&
               TestRule::IsSurelyAccepted(First, First + Influence * Change, Change,
                                          RelativeError * std::abs(Influence * Change));
    };
    const int Sense = Done < 0 ? -1 : 1;
    // On in the same direction first, then in the other, and last by less.
    for (int Size = (std::abs(Done) / STEP + 1) * STEP; Size <= 180; Size += STEP) {
        if (IsAccepted(Sense * Size)) {
            return {Done, Sense * Size};
        }
    }
    for (int Size = STEP; Size <= 180; Size += STEP) {
        for (const int Step : {-Sense * Size, Sense * Size}) {
            if (IsAccepted(Step)) {
                return {Done, Step};
            }
        }
    }
    return {Done, 0};
}

/// The lightest screw above the one that was fitted that would be accepted, else any; null if none would.
const CTableScrew* FindScrew(const CRotorModel& rModel, double RelativeError) {
    const auto& rStates = rModel.GetStates();
    const std::vector<CFittedScrew>& rTest = rStates[1].m_Fitted[0].m_Screws;
    if (rTest.size() != 1 || !(rTest[0].m_Grams > 0.0)) {
        return nullptr;
    }
    const Vector First = rStates[0].m_Reading[0];
    const Vector Change = rStates[1].m_Reading[0] - First;
    const CTableScrew* pBest = nullptr;
    for (const CTableScrew& rScrew : rModel.GetSetup(0).m_Table) {
        const double Ratio = rScrew.m_Grams / rTest[0].m_Grams;
        if (!TestRule::IsSurelyAccepted(First, First + Ratio * Change, Ratio,
                                        RelativeError * std::abs(Ratio * Change))) {
            continue;
        }
        const bool bHeavier = rScrew.m_Grams > rTest[0].m_Grams;
        const bool bBestHeavier = pBest != nullptr && pBest->m_Grams > rTest[0].m_Grams;
        if (pBest == nullptr || (bHeavier && !bBestHeavier) ||
            (bHeavier == bBestHeavier && rScrew.m_Grams < pBest->m_Grams)) {
            pBest = &rScrew;
        }
    }
    return pBest;
}

}  // namespace

std::optional<CRunAdvice::CQuality> Judge(const CRunRecord& rRun, double Repeatability, bool bLearned) {
    const CRunMeasurement* const pFirst = rRun.Find(Measurement::eFirst);
    const CRunMeasurement* const pTest1 = rRun.Find(Measurement::eTest1);
    const CRunMeasurement* const pTest2 = rRun.Find(Measurement::eTest2);
    if (rRun.m_bRebalance || pFirst == nullptr || pTest1 == nullptr) {
        return std::nullopt;
    }
    auto Weakest = Compare(*pFirst, *pFirst, *pTest1, rRun.m_Setup, Repeatability, bLearned);
    if (Weakest && pTest2 != nullptr) {
        const auto Second = Compare(*pFirst, *pTest1, *pTest2, rRun.m_Setup, Repeatability, bLearned);
        if (!Second || Second->m_SquaredDistance < Weakest->m_SquaredDistance) {
            Weakest = Second;
        }
    }
    if (!Weakest) {
        return std::nullopt;
    }
    const auto& rPlanes = rRun.m_Setup.m_Planes;
    return MakeQuality(*Weakest, static_cast<std::size_t>(
                                     std::count_if(rPlanes.begin(), rPlanes.end(),
                                                   [](const auto& rPlane) { return rPlane.has_value(); })));
}

std::string DescribeRefusal(const CRunRecord& rRun, double Repeatability) {
    const auto Quality = Judge(rRun, Repeatability, false);
    const auto Model = CRotorModel::Make(rRun, Repeatability);
    if (!Quality || Quality->m_TestRun == CRunAdvice::CQuality::TestRun::eNone || !Model ||
        Model->GetNumberOfPlanes() != 1) {
        return {};
    }
    const auto& rStates = Model->GetStates();
    const Vector First = rStates[0].m_Reading[0];
    const Vector Second = rStates[1].m_Reading[0];
    // The mathematics takes the change by a test screw for one unit.
    const Vector Change = Model->GetSetup(0).m_bScrews ? Vector(1.0)
                                                       : Model->GetSum(0, rStates[1].m_Fitted[0]) -
                                                             Model->GetSum(0, rStates[0].m_Fitted[0]);
    if (TestRule::IsAccepted(First, Second, Change) || std::abs(Change) == 0.0) {
        return {};
    }
    const double RelativeError = Quality->m_Uncertainty / Quality->m_Change + EXPANSION * Repeatability;
    const std::string Reading = AdviceFigures::Percent(Quality->m_RelativeChange);
    if (Model->GetSetup(0).m_bScrews) {
        const CTableScrew* const pScrew = FindScrew(*Model, RelativeError);
        return pScrew == nullptr
                   ? Fill("ADVICE_REFUSED", {Reading})
                   : Fill("ADVICE_REFUSED_SCREW", {Reading, AdviceFigures::Grams(pScrew->m_Grams)});
    }
    const CStep Step = FindStep(*Model, RelativeError);
    if (Step.m_Better == 0) {
        return Fill("ADVICE_REFUSED", {Reading});
    }
    return Fill(
        (Step.m_Better < 0) == (Step.m_Done < 0) ? "ADVICE_REFUSED_WEIGHT" : "ADVICE_REFUSED_WEIGHT_BACK",
        {Reading, AdviceFigures::Angle(std::abs(Step.m_Better))});
}

}  // namespace TestQuality
