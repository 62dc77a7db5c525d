#include "archive/repeatability.h"

#include <algorithm>
#include <cmath>

#include "archive/advicethresholds.h"
#include "archive/explanation.h"
#include "archive/fdistribution.h"
#include "archive/rotormodel.h"

namespace Repeatability {

namespace {

/// What one run shows: squared errors beyond scatter, and what r² would have made of them.
struct CEvidence {
    double m_Excess = 0.0;
    double m_PerSquare = 0.0;
    double m_nElements = 0.0;
};

std::optional<CEvidence> Look(const CRunRecord& rRun) {
    const CRunMeasurement* const pFinal = rRun.Find(Measurement::eFinal);
    const auto Model =
        rRun.m_bRebalance ? std::nullopt : CRotorModel::Make(rRun, AdviceThresholds::REPEATABILITY);
    const auto Final = Model && pFinal != nullptr ? Model->Read(*pFinal) : std::nullopt;
    const auto Finding = Final ? Explanation::Find(*Model, rRun) : std::nullopt;
    if (!Finding || !Finding->m_bInside) {
        return std::nullopt;
    }
    CRotorModel::Fit Asked{};
    for (std::size_t i = 0; i < Model->GetNumberOfPlanes(); ++i) {
        Asked[i] = Model->GetSum(i, Final->m_Fitted[i]);
    }
    const auto Noted = Model->AssumeNoted(Asked);
    const auto Shares = Model->GetShares(Noted);
    const auto Predicted = Model->Predict(Noted);
    if (!Shares || !Predicted) {
        return std::nullopt;
    }
    CEvidence Result;
    for (std::size_t p = 0; p < Predicted->size(); ++p) {
        double Squares = std::norm(Final->m_Reading[p]);
        double Scatter = Final->m_Error[p].GetCovariance().GetTrace();
        for (std::size_t i = 0; i < Shares->size(); ++i) {
            const auto& rState = Model->GetStates()[i];
            Squares += std::norm((*Shares)[i] * rState.m_Reading[p]);
            Scatter += std::norm((*Shares)[i]) * rState.m_Error[p].GetCovariance().GetTrace();
        }
        Result.m_Excess += std::norm(Final->m_Reading[p] - (*Predicted)[p].m_Reading) - Scatter;
        Result.m_PerSquare += 2.0 * Squares;
        Result.m_nElements += 2.0;
    }
    return Result;
}

}  // namespace

std::optional<double> Learn(std::span<const CRunRecord> Earlier) {
    CEvidence Sum;
    std::size_t nRuns = 0;
    for (const CRunRecord& rRun : Earlier) {
        if (const auto Evidence = Look(rRun)) {
            Sum.m_Excess += Evidence->m_Excess;
            Sum.m_PerSquare += Evidence->m_PerSquare;
            Sum.m_nElements += Evidence->m_nElements;
            ++nRuns;
        }
    }
    if (nRuns < AdviceThresholds::LEARNING_RUNS || Sum.m_PerSquare <= 0.0) {
        return std::nullopt;
    }
    // Upper bound of a variance by chi-square: its quantile is that of F with many degrees in the
    // denominator.
    constexpr double MANY = 1e6;
    constexpr double SMALL = 0.05;
    const double Variance = std::max(Sum.m_Excess, 0.0) / Sum.m_PerSquare;
    return std::sqrt(Variance / FDistribution::GetQuantile(SMALL, Sum.m_nElements, MANY));
}

}  // namespace Repeatability
