// Random rotors through the module's mathematics, held against theory, the textbook and runs over frames.
#include "bench/accuracy/accuracyfigures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "bench/accuracy/framesrun.h"
#include "tests/support/testinstallation.h"
#include "tests/support/testpaths.h"

namespace {

using Outcome = CAccuracyRun::Outcome;

std::string NameOf(const testing::TestParamInfo<CAccuracyWorld>& rInfo) {
    std::string Name = rInfo.param.GetName();
    std::erase_if(Name, [](char c) { return std::isalpha(static_cast<unsigned char>(c)) == 0; });
    return Name;
}

class EveryWorld : public testing::TestWithParam<CAccuracyWorld> {};

}  // namespace

// Noise and rounding only, errors that are small: the median and what 95 of 100 stay below.
TEST_P(EveryWorld, LeavesWhatTheoryExpects) {
    const CAccuracyInstallation Installation;
    CAccuracyConditions Conditions;
    Conditions.m_Capacity.m_High = 0.9;
    const auto Figures = CAccuracyFigures::Make(GetParam(), Conditions, 400, 3, 0.1);
    for (const double Probability : {0.5, 0.95}) {
        const double Theory = Figures.m_Theory.GetQuantile(Probability);
        const double StandardError = Figures.m_Theory.GetRelativeError(Theory) *
                                     std::sqrt(static_cast<double>(GetParam().GetPlanes()));
        EXPECT_NEAR(Figures.m_Residuals.GetQuantile(Probability) / Theory, 1.0, 3.5 * StandardError)
            << Probability;
    }
}

// Whatever acts: before positions are rounded, the module's compensation is the textbook's.
TEST_P(EveryWorld, ComputesWhatTheTextbookDoes) {
    const CAccuracyInstallation Installation;
    const auto Figures = CAccuracyFigures::Make(GetParam(), CAccuracyConditions::MakeFull(), 100, 4);
    EXPECT_GT(Figures.Count(Outcome::eBalanced), 50U);
    EXPECT_LT(Figures.m_LargestDifference, 1e-10);
    EXPECT_EQ(Figures.Count(Outcome::eMirrored), 0U);
}

TEST_P(EveryWorld, IsTheSameForTheSameSeed) {
    const CAccuracyInstallation Installation;
    const auto Make = [&](std::uint64_t Seed) {
        return CAccuracyFigures::Make(GetParam(), CAccuracyConditions::MakeFull(), 20, Seed);
    };
    const auto First = Make(5);
    EXPECT_EQ(First.m_Residuals.GetQuantile(0.5), Make(5).m_Residuals.GetQuantile(0.5));
    EXPECT_EQ(First.m_nOutcomes, Make(5).m_nOutcomes);
    EXPECT_NE(First.m_Residuals.GetQuantile(0.5), Make(6).m_Residuals.GetQuantile(0.5));
}

INSTANTIATE_TEST_SUITE_P(Accuracy, EveryWorld, testing::ValuesIn(CAccuracyWorld::GetAll()), NameOf);

// Each has a pre-balancing and a re-balancing: with the noise that the frames' readings had the mathematics
// alone comes to the same averages, positions and residuals.
TEST(Accuracy, FramesAgreeWithTheMathematics) {
    struct CCase {
        CAccuracyWorld m_World;
        bool m_bLanner;
    };
    for (const CCase& rCase : {CCase{{false, false, false}, false}, CCase{{false, true, false}, false},
                               CCase{{true, false, false}, false}, CCase{{true, false, false}, true},
                               CCase{{true, true, false}, false}, CCase{{true, true, false}, true}}) {
        CChance Chance(8);
        const CRandomRun Run = CFramesRun::MakeRun(rCase.m_World, rCase.m_bLanner, Chance);
        const CFramesRun Frames(Run, TestProgram("librtr_trim.so"));
        EXPECT_EQ(Frames.GetResiduals().size(), 2U) << Frames.GetResult();
        const auto Agreement = CFramesAgreement::Compare(Run, Frames);
        EXPECT_TRUE(Agreement.m_bSame) << rCase.m_World.GetName() << ": " << Agreement.m_Fault;
        EXPECT_LT(Agreement.m_MeanDifference, 1e-9);
        EXPECT_LT(Agreement.m_ResidualDifference, 1e-12);
    }
}

// Another noise than the frames had is found out.
TEST(Accuracy, FramesOfAnotherRunDontAgree) {
    CChance Chance(8);
    CRandomRun Run = CFramesRun::MakeRun({}, false, Chance);
    const CFramesRun Frames(Run, TestProgram("librtr_trim.so"));
    ++Run.m_Setup.m_Rotor.m_Seed;
    EXPECT_FALSE(CFramesAgreement::Compare(Run, Frames).m_bSame);
}

// Without the flag that orders weights on every scale some positions come out mirrored; the study tells.
TEST(Accuracy, MirroredPositionsAreTold) {
    const CTestInstallation Installation;
    const auto Figures = CAccuracyFigures::Make({}, {}, 200, 9);
    EXPECT_GT(Figures.Count(Outcome::eMirrored), 2U);
}

// The columns (1, k) and (k, 1) that this makes have the condition number that was asked for.
TEST(Accuracy, ACouplingHasTheConditionAskedFor) {
    CAccuracyConditions Conditions;
    Conditions.m_Condition = 9.0;
    CChance Chance(10);
    const CRandomRun Run = CRandomRun::Make({true, false, false}, Conditions, Chance);
    const Textbook::Matrix A = CTrueRotor(Run.m_Setup.m_Rotor).GetInfluence();
    const auto Length = [&](std::size_t i) { return std::hypot(std::abs(A[0][i]), std::abs(A[1][i])); };
    const double g =
        std::abs(std::conj(A[0][0]) * A[0][1] + std::conj(A[1][0]) * A[1][1]) / Length(0) / Length(1);
    EXPECT_NEAR(std::sqrt((1.0 + g) / (1.0 - g)), 9.0, 1e-9);
}

// The quantities that a run is drawn with are those that it has.
TEST(Accuracy, TestRunHasTheEffectDrawn) {
    const CAccuracyInstallation Installation;
    CAccuracyConditions Conditions;
    Conditions.m_Effect = {0.5, 0.5};
    Conditions.m_Capacity = {0.5, 0.5};
    CChance Chance(11);
    const CRandomRun Run = CRandomRun::Make({}, Conditions, Chance);
    EXPECT_NEAR(CAccuracyRun(Run).GetEffect(), 0.5, 0.01);
    EXPECT_NEAR(Run.m_Setup.m_Rotor.m_Planes[0].m_Unbalance.m_Amount, 0.5 * 1.95, 1e-9);
}
