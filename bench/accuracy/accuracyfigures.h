#pragma once
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "bench/accuracy/accuracyrun.h"

/// A sample of shares of the first, in order.
class CShareSample {
public:
    void Add(double Share) { m_Shares.push_back(Share); }
    /// To be called before anything is asked.
    void Sort();
    std::size_t GetSize() const { return m_Shares.size(); }
    /// Of an empty sample 0.
    double GetQuantile(double Probability) const;
    double GetWorst() const { return GetQuantile(1.0); }

private:
    std::vector<double> m_Shares;
};

/// Many random runs of one kind, with one residual of each plane of each run that was balanced. The same for
/// the same seed.
struct CAccuracyFigures {
    std::array<std::size_t, 5> m_nOutcomes{};  ///< by CAccuracyRun::Outcome
    CShareSample m_Residuals;
    CShareSample m_Textbook;
    CShareSample m_Own;  ///< of the planes themselves
    CResidualPopulation m_Theory;
    double m_LargestDifference = 0.0;  ///< of a compensation from the textbook's, relative

    std::size_t Count(CAccuracyRun::Outcome Which) const {
        return m_nOutcomes[static_cast<std::size_t>(Which)];
    }
    std::size_t GetRuns() const;

    /// Runs of which theory expects an error of measurement above this share, root of the mean square, are
    /// left out: they are drawn anew.
    static CAccuracyFigures Make(const CAccuracyWorld& rWorld, const CAccuracyConditions& rConditions,
                                 std::size_t nRuns, std::uint64_t Seed,
                                 double LargestError = std::numeric_limits<double>::infinity());
};
