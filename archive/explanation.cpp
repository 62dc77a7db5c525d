#include "archive/explanation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "archive/advicefigures.h"
#include "archive/advicethresholds.h"
#include "archive/mistakes.h"
#include "platform/rvldb/gettext.h"

namespace Explanation {

namespace {

using AdviceFigures::Fill;

/// How far the final reading is from what was to be expected.
struct CDistance {
    double m_Squared = 0.0;
    double m_LogDeterminant = 0.0;
    double m_Freedom = CErrorSum::MAX_FREEDOM;
    double m_Dimensions = 0.0;

    bool IsInside(double Probability) const {
        return NoiseModel::IsInside(m_Squared, Probability, m_Dimensions, m_Freedom);
    }
    /// Twice the negative logarithm of the likelihood: a mistake after which less would be known than before
    /// isn't the likelier for that.
    double GetScore() const { return m_Squared + m_LogDeterminant; }
};

std::optional<CDistance> Measure(const CRotorModel& rModel, const CRotorModel::CAssumption& rAssumption,
                                 const CRotorModel::CState& rFinal) {
    const auto Predicted = rModel.Predict(rAssumption);
    if (!Predicted) {
        return std::nullopt;
    }
    CDistance Result;
    for (std::size_t i = 0; i < Predicted->size(); ++i) {
        CErrorSum Error = (*Predicted)[i].m_Error;
        Error.Add(rModel.GetError(rFinal, i), 1.0);
        Result.m_Squared +=
            Error.GetCovariance().GetSquaredDistance(rFinal.m_Reading[i] - (*Predicted)[i].m_Reading);
        Result.m_LogDeterminant += std::log(Error.GetCovariance().GetDeterminant());
        Result.m_Freedom = std::min(Result.m_Freedom, Error.GetFreedom());
        Result.m_Dimensions += 2.0;
    }
    return Result;
}

struct CCandidate {
    const CMistake* m_pMistake = nullptr;
    int m_Value = 0;
    CDistance m_Distance;
};

/// The nearest case of a mistake.
std::optional<CCandidate> FindNearest(const CRotorModel& rModel, const CMistake& rMistake,
                                      const CRotorModel::CState& rFinal) {
    std::optional<CCandidate> Nearest;
    for (const CMistake::CCase& rCase : rMistake.m_Cases) {
        const auto Distance = Measure(rModel, rCase.m_Assumption, rFinal);
        if (Distance && (!Nearest || Distance->GetScore() < Nearest->m_Distance.GetScore())) {
            Nearest = {&rMistake, rCase.m_Value, *Distance};
        }
    }
    return Nearest;
}

/// The mistakes that explain a reading that this far from a right run's has come.
std::vector<CCandidate> FindCandidates(const CRotorModel& rModel, const std::vector<CMistake>& rMistakes,
                                       const CRotorModel::CState& rFinal, const CDistance& rRight) {
    std::vector<CCandidate> Result;
    for (const CMistake& rMistake : rMistakes) {
        const auto Nearest = FindNearest(rModel, rMistake, rFinal);
        const double Advantage = Nearest ? std::min(rRight.m_Squared - Nearest->m_Distance.m_Squared,
                                                    rRight.GetScore() - Nearest->m_Distance.GetScore())
                                         : 0.0;
        if (Advantage >= AdviceThresholds::MISTAKE_ADVANTAGE &&
            Nearest->m_Distance.IsInside(AdviceThresholds::MISTAKE_REGION)) {
            Result.push_back(*Nearest);
        }
    }
    std::stable_sort(Result.begin(), Result.end(), [](const CCandidate& rA, const CCandidate& rB) {
        return rA.m_Distance.GetScore() < rB.m_Distance.GetScore();
    });
    return Result;
}

/// Leaves those that can't be told apart from the best, and one for each thing that may be wrong: one that
/// tells where it was rather than one that has to estimate it.
void Choose(std::vector<CCandidate>& rCandidates) {
    if (rCandidates.empty()) {
        return;
    }
    const double Best = rCandidates.front().m_Distance.GetScore();
    std::erase_if(rCandidates, [Best](const CCandidate& rEach) {
        return rEach.m_Distance.GetScore() > Best + AdviceThresholds::SAME_MISTAKE;
    });
    const std::vector<CCandidate> All = rCandidates;
    std::erase_if(rCandidates, [&All](const CCandidate& rEach) {
        return rEach.m_pMistake->m_Cases.size() > 1 &&
               std::any_of(All.begin(), All.end(), [&rEach](const CCandidate& rOther) {
                   return rOther.m_pMistake->m_Cases.size() == 1 &&
                          rOther.m_pMistake->m_Where == rEach.m_pMistake->m_Where;
               });
    });
}

/// Two mistakes that come out the same so often that people have words for both together.
struct CPair {
    const char* m_pName1;
    const char* m_pName2;
    const char* m_pKey;
};
constexpr std::array PAIRS = {
    CPair{"scale_sense", "rotation_sense", "ADVICE_SENSES"},
    CPair{"weights_opposite", "weights_opposite_in_test", "ADVICE_ALL_OPPOSITE"},
};

std::vector<std::string> GetTexts(const std::vector<CNamed>& rNamed) {
    std::vector<CNamed> Rest = rNamed;
    std::vector<std::string> Texts;
    for (const CPair& rPair : PAIRS) {
        const auto Has = [&Rest](const char* pName) {
            return std::count_if(Rest.begin(), Rest.end(),
                                 [pName](const CNamed& rEach) { return rEach.m_Name == pName; }) == 1;
        };
        if (Has(rPair.m_pName1) && Has(rPair.m_pName2)) {
            Texts.push_back(GetText(rPair.m_pKey));
            std::erase_if(Rest, [&rPair](const CNamed& rEach) {
                return rEach.m_Name == rPair.m_pName1 || rEach.m_Name == rPair.m_pName2;
            });
        }
    }
    for (const CNamed& rEach : Rest) {
        Texts.push_back(rEach.m_Text);
    }
    return Texts;
}

std::string Join(const std::vector<std::string>& rTexts) {
    std::string Text;
    for (const std::string& rEach : rTexts) {
        Text = Text.empty() ? rEach : Fill("ADVICE_OR", {Text, rEach});
    }
    return Text;
}

/// "1.4", or "1.4 / 2.0" for two planes.
std::string Write(const std::vector<double>& rLengths) {
    std::string Text;
    for (const double Length : rLengths) {
        Text += (Text.empty() ? "" : " / ") + AdviceFigures::Number(Length);
    }
    return Text;
}

}  // namespace

std::optional<CFinding> Find(const CRotorModel& rModel, const CRunRecord& rRun) {
    const CRunMeasurement* const pFinal = rRun.Find(Measurement::eFinal);
    const auto Final = pFinal != nullptr ? rModel.Read(*pFinal) : std::nullopt;
    if (!Final || !Final->m_bScatterKnown || !rModel.IsScatterKnown()) {
        return std::nullopt;
    }
    CRotorModel::Fit Asked{};
    for (std::size_t i = 0; i < rModel.GetNumberOfPlanes(); ++i) {
        Asked[i] = rModel.GetSum(i, Final->m_Fitted[i]);
    }
    const CRotorModel::CAssumption Noted = rModel.AssumeNoted(Asked);
    const auto Expected = rModel.Predict(Noted);
    const auto Right = Measure(rModel, Noted, *Final);
    if (!Expected || !Right) {
        return std::nullopt;
    }
    CFinding Result;
    Result.m_SquaredDistance = Right->m_Squared;
    for (std::size_t i = 0; i < rModel.GetNumberOfPlanes(); ++i) {
        Result.m_Expected.push_back(std::abs((*Expected)[i].m_Reading));
        Result.m_Came.push_back(std::abs(Final->m_Reading[i]));
    }
    Result.m_bInside = Right->IsInside(AdviceThresholds::ACCUSATION_REGION);
    if (Result.m_bInside) {
        return Result;
    }
    const std::vector<CMistake> List = Mistakes::List(rModel, Final->m_Fitted);
    std::vector<CCandidate> Candidates = FindCandidates(rModel, List, *Final, *Right);
    Choose(Candidates);
    for (const CCandidate& rEach : Candidates) {
        Result.m_Named.push_back({rEach.m_pMistake->m_Name, rEach.m_pMistake->m_Where, rEach.m_Value,
                                  rEach.m_pMistake->Describe(rEach.m_Value), rEach.m_Distance.m_Squared});
    }
    return Result;
}

CRunAdvice::CExplanation Describe(const CFinding& rFinding) {
    CRunAdvice::CExplanation Result;
    Result.m_bInside = rFinding.m_bInside;
    const std::string Came = Write(rFinding.m_Came);
    const std::string Expected = Write(rFinding.m_Expected);
    if (rFinding.m_bInside) {
        Result.m_Text = Fill("ADVICE_AS_EXPECTED", {Came, Expected});
        return Result;
    }
    for (const CNamed& rEach : rFinding.m_Named) {
        Result.m_Mistake += (Result.m_Mistake.empty() ? "" : "|") + rEach.m_Name;
    }
    Result.m_Text = rFinding.m_Named.empty()
                        ? Fill("ADVICE_UNEXPLAINED", {Came, Expected})
                        : Fill("ADVICE_EXPLAINED", {Came, Expected, Join(GetTexts(rFinding.m_Named))});
    return Result;
}

}  // namespace Explanation
