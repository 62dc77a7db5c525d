// Whole runs with screws: test screw in hole 1, correction, verification, re-balancing, judged by the rotor's
// physics and by a search of all placements.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "contract/actions.h"
#include "tests/support/logcapture.h"
#include "tests/system/bestplacement.h"
#include "tests/system/wholerun.h"

namespace {

using Complex = std::complex<double>;
using BestPlacement::CBest;
using BestPlacement::FindBest;
using Procedure = COptions::Procedure;
constexpr double PI = std::numbers::pi;

Complex ToCounts(Complex Value) {
    return {std::round(Value.real()), std::round(Value.imag())};
}

struct CKind {
    int m_nScrews;
    CRotorFile::Sense m_Rotation;
    CRotorFile::Sense m_Scale;
};

std::string NameOf(const testing::TestParamInfo<CKind>& rInfo) {
    const auto SenseName = [](CRotorFile::Sense Value) {
        return Value == CRotorFile::eClockwise ? "Cw" : "Ccw";
    };
    return (rInfo.param.m_nScrews == 2 ? "TwoScrewsRotation" : "ThreeScrewsRotation") +
           std::string(SenseName(rInfo.param.m_Rotation)) + "Scale" + SenseName(rInfo.param.m_Scale);
}

class ScrewRuns : public testing::TestWithParam<CKind> {};

// 200 rotors for each number of screws, spread over the senses.
#if defined(__SANITIZE_ADDRESS__)
constexpr int NUMBER_OF_ROTORS = 3;
#else
constexpr int NUMBER_OF_ROTORS = 50;
#endif

}  // namespace

TEST_P(ScrewRuns, RandomRotorsGetTheBestPlacementForWhatWasMeasured) {
    std::mt19937_64 Generator(20240402);
    const auto Uniform = [&](double Low, double High) {
        return Low + (High - Low) * static_cast<double>(Generator() >> 11U) * 0x1p-53;
    };
    const auto Whole = [&](int Low, int High) {
        return Low + static_cast<int>(Generator() % static_cast<unsigned>(High - Low + 1));
    };
    for (int i = 0; i < NUMBER_OF_ROTORS; ++i) {
        CRotorFile Rotor = CRotorFile::GetBuiltIn();
        Rotor.m_NoiseCounts = 0.0;
        Rotor.m_RampRpmPerS = 3000.0;
        Rotor.m_Rotation = GetParam().m_Rotation;
        Rotor.m_Planes[0].m_Scale = GetParam().m_Scale;
        Rotor.m_Planes[0].m_Holes = Whole(4, 24);
        Rotor.m_Influence[0][0] = {Uniform(60.0, 600.0), Uniform(0.0, 360.0)};
        std::vector<double> Table;
        for (int k = Whole(5, 40); k > 0; --k) {
            Table.push_back(Uniform(0.3, 6.0));
        }
        // Up to the weight of the test screw, so that the test run always shows a clear effect.
        const double TestScrew = Table[Table.size() / 2];
        Rotor.m_Planes[0].m_Unbalance = {Uniform(0.2, 1.0) * TestScrew, Uniform(0.0, 360.0)};
        const auto GetUnbalance = [&Rotor] {
            const CRotorFile::CUnbalance& rValue = Rotor.m_Planes[0].m_Unbalance;
            return std::polar(rValue.m_Amount, rValue.m_AngleDeg * PI / 180.0);
        };
        const Complex Influence =
            std::polar(Rotor.m_Influence[0][0].m_Amplitude, Rotor.m_Influence[0][0].m_PhaseDeg * PI / 180.0);
        const bool bThree = GetParam().m_nScrews == 3;
        const int nHoles = Rotor.m_Planes[0].m_Holes;

        CWholeRun Run(Rotor);
        Run.m_Options.m_Methods = {"screws"};
        Run.m_Options.m_nScrews = GetParam().m_nScrews;
        Run.m_Options.m_ScrewTable = Table;
        Run.m_Options.m_bShowPage = false;
        ASSERT_NE(Run.Run(Procedure::ePrebalance), eExitFailed) << i;
        ASSERT_TRUE(Run.GetAssertions().empty()) << Run.GetAssertions().front();

        // All that the module knows: three readings in whole counts, one of them with the test screw.
        const Complex First = ToCounts(Influence * std::conj(GetUnbalance()));
        const Complex Second = ToCounts(Influence * (std::conj(GetUnbalance()) + TestScrew));
        const Complex PerGram = (Second - First) / TestScrew;
        const CBest Best = FindBest(Table, bThree, nHoles, -First / PerGram);
        EXPECT_NEAR(std::abs(Run.m_Residual), std::abs(std::conj(GetUnbalance()) + Best.m_Sum), 1e-6) << i;
        const auto& rScrews = Run.m_Report["positions"][0]["screws"];
        EXPECT_EQ(rScrews.size(), static_cast<std::size_t>(GetParam().m_nScrews));

        // The rotor wears, and is balanced again without a test run.
        Rotor.m_Planes[0].m_Unbalance.m_Amount *= Uniform(0.7, 1.3);
        Rotor.m_Planes[0].m_Unbalance.m_AngleDeg += Uniform(-30.0, 30.0);
        Run.m_Rotor = Rotor;
        ASSERT_NE(Run.Run(Procedure::eRebalance), eExitFailed) << i;
        ASSERT_TRUE(Run.GetAssertions().empty()) << Run.GetAssertions().front();
        const Complex Third = ToCounts(Influence * (std::conj(GetUnbalance()) + Best.m_Sum));
        const CBest Again = FindBest(Table, bThree, nHoles, Best.m_Sum - Third / PerGram);
        EXPECT_NEAR(std::abs(Run.m_Residual), std::abs(std::conj(GetUnbalance()) + Again.m_Sum), 1e-6) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ScrewRuns,
    testing::Values(CKind{2, CRotorFile::eClockwise, CRotorFile::eClockwise},
                    CKind{2, CRotorFile::eClockwise, CRotorFile::eCounterClockwise},
                    CKind{2, CRotorFile::eCounterClockwise, CRotorFile::eClockwise},
                    CKind{2, CRotorFile::eCounterClockwise, CRotorFile::eCounterClockwise},
                    CKind{3, CRotorFile::eClockwise, CRotorFile::eClockwise},
                    CKind{3, CRotorFile::eClockwise, CRotorFile::eCounterClockwise},
                    CKind{3, CRotorFile::eCounterClockwise, CRotorFile::eClockwise},
                    CKind{3, CRotorFile::eCounterClockwise, CRotorFile::eCounterClockwise}),
    NameOf);

namespace {

class CScrewRun : public CWholeRun {
public:
    CScrewRun(double Amount, const std::vector<double>& rTable) : CWholeRun(MakeRotor(Amount)) {
        m_Options.m_Methods = {"screws"};
        m_Options.m_ScrewTable = rTable;
    }

private:
    static CRotorFile MakeRotor(double Amount) {
        CRotorFile Rotor = CRotorFile::GetBuiltIn();
        Rotor.m_NoiseCounts = 0.0;
        Rotor.m_Planes[0].m_Unbalance.m_Amount = Amount;
        return Rotor;
    }
};

}  // namespace

// The last entry counts: two screws of 2 g in 12 holes reach 3.86 g.
TEST(ScrewRun, AShortageOfCapacityWarnsAndTheRunGoesOn) {
    CScrewRun Run(5.0, {1.0, 1.5, 2.0});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_TRUE(Run.HasWarning(6));
    EXPECT_EQ(Run.GetResult(), "SetupOverTarget");
    EXPECT_LT(std::abs(Run.m_Residual), 1.5);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(ScrewRun, ATableWithANegativeWeightStartsNothingAndSaysWhy) {
    CScrewRun Run(1.0, {1.0, -1.5, 2.0});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_TRUE(Run.HasLine("screw table")) << testing::PrintToString(Run.m_Lines);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(ScrewRun, TheConfiguredTableServesWithoutAnother) {
    CScrewRun Run(2.5, {});
    EXPECT_NE(Run.Run(Procedure::ePrebalanceAndRebalance), eExitFailed);
    EXPECT_LT(std::abs(Run.m_Residual), 0.5);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

// Weights keep no screws behind: changing the means makes the calibration void.
TEST(ScrewRun, ChangedMeansNeedACalibrationOfTheirOwn) {
    CScrewRun Run(1.0, {});
    Run.m_Options.m_Methods = {};
    EXPECT_NE(Run.Run(Procedure::ePrebalance), eExitFailed);
    Run.m_Options.m_Methods = {"screws"};
    Run.m_Options.m_bCommission = true;
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitFailed);
    Run.m_Options.m_bCommission = false;
    EXPECT_NE(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_NE(Run.Run(Procedure::eRebalance), eExitFailed);
}

/// The keys of the menus lead an operator to another test screw, which is then the one to fit and the
/// reference.
TEST(ScrewKeys, TheOperatorChoosesAnotherTestScrew) {
    const auto FitTestScrew = [](bool bNextScrew) {
        CWholeRun Run(CRotorFile::GetBuiltIn());
        Run.m_Options.m_Methods = {"screws"};
        Run.m_Options.m_ScrewTable = {1.0, 2.0, 3.0};
        Run.OnSituation = [bNextScrew](const CSituation& rSituation, CConsoleSession& rSession) {
            const auto Press = [&](Actions::Action Wanted) {
                const MenuKeys::CKey* const pKey = MenuKeys::FindKey(rSession.Look().m_Menu, Wanted);
                ASSERT_NE(pKey, nullptr) << rSession.Look().m_Menu;
                rSession.PressKey(*pKey);
            };
            if (bNextScrew && rSituation.m_Progress.m_State == "eTestUnbalanceSetWeights" &&
                MenuKeys::FindKey(rSituation.m_Menu, Actions::eExtras) != nullptr) {
                Press(Actions::eExtras);
                // The menu comes by message, as everything that the host is told.
                IFEventLoop::Current().RunUntil(
                    [&] { return MenuKeys::FindKey(rSession.Look().m_Menu, Actions::eIncrement) != nullptr; },
                    100);
                Press(Actions::eIncrement);
            }
        };
        Run.Run(Procedure::ePrebalance);
        return Run.m_Lines;
    };
    const auto Fits = [](const char* pScrew) { return testing::Contains(testing::HasSubstr(pScrew)); };
    // The middle of the table, unless somebody chooses.
    EXPECT_THAT(FitTestScrew(false), Fits("screws of plane 1: 2 g in hole 1"));
    EXPECT_THAT(FitTestScrew(true), Fits("screws of plane 1: 3 g in hole 1"));
}
