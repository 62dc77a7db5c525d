#include "archive/influence.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "archive/advicefigures.h"
#include "archive/advicethresholds.h"
#include "archive/noisemodel.h"

namespace Influence {

namespace {

using AdviceFigures::Fill;
using Vector = std::complex<double>;

std::optional<Coefficients> Measure(const CRunRecord& rRun) {
    const auto Model = rRun.m_bRebalance ? std::nullopt : CRotorModel::Make(rRun, 0.0);
    return Model ? Model->GetInfluence() : std::nullopt;
}

/// Whether both measured the same thing.
bool AreComparable(const CRunSetup& rA, const CRunSetup& rB) {
    if (rA.m_Configuration != rB.m_Configuration || rA.m_Mode != rB.m_Mode ||
        rA.m_bClockwise != rB.m_bClockwise) {
        return false;
    }
    for (std::size_t i = 0; i < rA.m_Planes.size(); ++i) {
        const auto& rPlaneA = rA.m_Planes[i];
        const auto& rPlaneB = rB.m_Planes[i];
        if (rPlaneA.has_value() != rPlaneB.has_value() ||
            (rPlaneA && (rPlaneA->m_bScrews != rPlaneB->m_bScrews ||
                         rPlaneA->m_bScaleClockwise != rPlaneB->m_bScaleClockwise))) {
            return false;
        }
    }
    return true;
}

/// Of the latest runs, the latest first.
std::vector<Coefficients> Gather(const CRunRecord& rRun, std::span<const CRunRecord> Earlier) {
    std::vector<const CRunRecord*> Runs;
    for (const CRunRecord& rEach : Earlier) {
        const bool bSame = rEach.m_Id == rRun.m_Id && rEach.m_Started == rRun.m_Started;
        if (!bSame && rEach.m_bSaved && rEach.m_Started <= rRun.m_Started &&
            AreComparable(rEach.m_Setup, rRun.m_Setup)) {
            Runs.push_back(&rEach);
        }
    }
    std::stable_sort(Runs.begin(), Runs.end(), [](const CRunRecord* pA, const CRunRecord* pB) {
        return pA->m_Started > pB->m_Started;
    });
    std::vector<Coefficients> Result;
    for (const CRunRecord* const pEach : Runs) {
        if (Result.size() == AdviceThresholds::MAX_AVERAGED) {
            break;
        }
        if (auto Influence = Measure(*pEach)) {
            Result.push_back(*std::move(Influence));
        }
    }
    return Result;
}

/// One coefficient of all runs.
struct CElement {
    Vector m_Mean;
    CCovariance m_Scatter;
};

CElement Average(const std::vector<Coefficients>& rAll, std::size_t p, std::size_t q) {
    const double n = static_cast<double>(rAll.size());
    CElement Result;
    for (const Coefficients& rEach : rAll) {
        Result.m_Mean += rEach[p][q] / n;
    }
    for (const Coefficients& rEach : rAll) {
        const Vector d = rEach[p][q] - Result.m_Mean;
        Result.m_Scatter +=
            (1.0 / (n - 1.0)) * CCovariance{d.real() * d.real(), d.imag() * d.imag(), d.real() * d.imag()};
    }
    return Result;
}

math::matrix<double> Invert(const Coefficients& rInfluence) {
    const auto nSize = static_cast<std::uint32_t>(rInfluence.size());
    math::matrix<double> Blocks(2 * nSize, 2 * nSize);
    for (std::uint32_t p = 0; p < nSize; ++p) {
        for (std::uint32_t q = 0; q < nSize; ++q) {
            const Vector a = rInfluence[p][q];
            Blocks(2 * p, 2 * q) = Blocks(2 * p + 1, 2 * q + 1) = a.real();
            Blocks(2 * p + 1, 2 * q) = a.imag();
            Blocks(2 * p, 2 * q + 1) = -a.imag();
        }
    }
    // What is its own inverse's inverse: the operation takes blocks both ways.
    const auto Inverse = CRotorModel::InvertBlocks(Blocks);
    math::matrix<double> Result(2 * nSize, 2 * nSize);
    Result.Null();
    for (std::uint32_t p = 0; Inverse && p < nSize; ++p) {
        for (std::uint32_t q = 0; q < nSize; ++q) {
            const Vector a = (*Inverse)[p][q];
            Result(2 * p, 2 * q) = Result(2 * p + 1, 2 * q + 1) = a.real();
            Result(2 * p + 1, 2 * q) = a.imag();
            Result(2 * p, 2 * q + 1) = -a.imag();
        }
    }
    return Result;
}

}  // namespace

double GetCondition(const Coefficients& rInfluence) {
    const double Length0 = std::hypot(std::abs(rInfluence[0][0]), std::abs(rInfluence[1][0]));
    const double Length1 = std::hypot(std::abs(rInfluence[0][1]), std::abs(rInfluence[1][1]));
    if (Length0 == 0.0 || Length1 == 0.0) {
        return WORST_CONDITION;
    }
    const double g = std::abs(std::conj(rInfluence[0][0]) * rInfluence[0][1] +
                              std::conj(rInfluence[1][0]) * rInfluence[1][1]) /
                     (Length0 * Length1);
    return g < 1.0 ? std::min(std::sqrt((1.0 + g) / (1.0 - g)), WORST_CONDITION) : WORST_CONDITION;
}

void SetCondition(CRunAdvice::CQuality& rQuality, double Condition) {
    using Light = CRunAdvice::CQuality::Light;
    rQuality.m_Condition = Condition;
    rQuality.m_ConditionLight = Condition <= AdviceThresholds::GOOD_CONDITION  ? Light::eGreen
                                : Condition <= AdviceThresholds::BAD_CONDITION ? Light::eYellow
                                                                               : Light::eRed;
    const char* const pKey = rQuality.m_ConditionLight == Light::eGreen    ? "ADVICE_CONDITION_GOOD"
                             : rQuality.m_ConditionLight == Light::eYellow ? "ADVICE_CONDITION_FAIR"
                                                                           : "ADVICE_CONDITION_BAD";
    rQuality.m_ConditionText = Fill(pKey, {AdviceFigures::Number(Condition)});
}

std::optional<CRunAdvice::CInfluence> Compare(const CRunRecord& rRun, std::span<const CRunRecord> Earlier) {
    const auto Present = Measure(rRun);
    if (!Present) {
        return std::nullopt;
    }
    const std::vector<Coefficients> All = Gather(rRun, Earlier);
    if (All.size() < AdviceThresholds::AVERAGING_RUNS) {
        return std::nullopt;
    }
    CRunAdvice::CInfluence Result;
    Result.m_nRuns = All.size();
    Coefficients Mean = *Present;
    const double n = static_cast<double>(All.size());
    const double nElements = static_cast<double>(Present->size() * Present->size());
    for (std::size_t p = 0; p < Present->size(); ++p) {
        for (std::size_t q = 0; q < Present->size(); ++q) {
            const CElement Element = Average(All, p, q);
            Mean[p][q] = Element.m_Mean;
            const Vector Difference = (*Present)[p][q] - Element.m_Mean;
            // Of several coefficients one is out of its region more often: Bonferroni.
            const double Distance = ((1.0 + 1.0 / n) * Element.m_Scatter).GetSquaredDistance(Difference);
            Result.m_bDiffers =
                Result.m_bDiffers ||
                !NoiseModel::IsInside(Distance, 1.0 - (1.0 - AdviceThresholds::AVERAGE_REGION) / nElements,
                                      2.0, n - 1.0);
            const double Length = std::abs(Element.m_Mean);
            if (p == q && Length > 0.0) {
                Result.m_RelativeScatter = std::max(Result.m_RelativeScatter,
                                                    std::sqrt(Element.m_Scatter.GetTrace() / 2.0) / Length);
                Result.m_RelativeDifference =
                    std::max(Result.m_RelativeDifference, std::abs(Difference) / Length);
            }
        }
    }
    Result.m_InvA = Invert(Mean);
    Result.m_Text = Fill(Result.m_bDiffers ? "ADVICE_INFLUENCE_DIFFERS" : "ADVICE_INFLUENCE_AGREES",
                         {std::to_string(Result.m_nRuns), AdviceFigures::Percent(Result.m_RelativeDifference),
                          AdviceFigures::Percent(Result.m_RelativeScatter)});
    return Result;
}

}  // namespace Influence
