#include "bench/accuracy/accuracyfigures.h"

#include <algorithm>
#include <cmath>
#include <numeric>

void CShareSample::Sort() {
    std::sort(m_Shares.begin(), m_Shares.end());
}

double CShareSample::GetQuantile(double Probability) const {
    if (m_Shares.empty()) {
        return 0.0;
    }
    const double Last = static_cast<double>(m_Shares.size() - 1);
    return m_Shares[static_cast<std::size_t>(std::lround(Probability * Last))];
}

std::size_t CAccuracyFigures::GetRuns() const {
    return std::accumulate(m_nOutcomes.begin(), m_nOutcomes.end(), std::size_t{0});
}

CAccuracyFigures CAccuracyFigures::Make(const CAccuracyWorld& rWorld, const CAccuracyConditions& rConditions,
                                        std::size_t nRuns, std::uint64_t Seed, double LargestError) {
    CAccuracyFigures Figures;
    CChance Chance(Seed);
    while (Figures.GetRuns() < nRuns) {
        const CRandomRun Drawn = CRandomRun::Make(rWorld, rConditions, Chance);
        const CAccuracyRun Run(Drawn);
        const auto IsBeyond = [LargestError](const CAccuracyRun::CPlaneResult& rPlane) {
            return std::sqrt(rPlane.m_Theory.m_Covariance.GetTrace()) >
                   LargestError * rPlane.m_Theory.m_First;
        };
        if (std::ranges::any_of(Run.GetPlanes(), IsBeyond)) {
            continue;
        }
        ++Figures.m_nOutcomes[static_cast<std::size_t>(Run.GetOutcome())];
        Figures.m_LargestDifference = std::max(Figures.m_LargestDifference, Run.GetDifference());
        if (Run.GetOutcome() != CAccuracyRun::Outcome::eBalanced) {
            continue;
        }
        for (const CAccuracyRun::CPlaneResult& rPlane : Run.GetPlanes()) {
            Figures.m_Residuals.Add(rPlane.m_Residual);
            Figures.m_Textbook.Add(rPlane.m_Textbook);
            Figures.m_Own.Add(rPlane.m_OwnResidual);
            Figures.m_Theory.Add(rPlane.m_Theory);
        }
    }
    Figures.m_Residuals.Sort();
    Figures.m_Textbook.Sort();
    Figures.m_Own.Sort();
    return Figures;
}
