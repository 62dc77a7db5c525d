// Many random rotors of two coupled planes in every combination of senses, judged by the rotor's physics.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <random>

#include "simulator/rotor.h"
#include "tests/system/bestplacement.h"
#include "tests/system/whattheoryallows.h"
#include "tests/system/wholerun.h"

namespace {

using Complex = std::complex<double>;
using Procedure = COptions::Procedure;
using Residuals = Theory::TwoPlanes;
using Theory::DEGREE_ERROR;
using Theory::GetBounds;

struct CCombination {
    CRotorFile::Modules m_Modules;
    CRotorFile::Sense m_Rotation;
    std::array<CRotorFile::Sense, 2> m_Scales;
};

/// A rotor without noise, whose planes feel each other less than themselves.
CRotorFile MakeRandomRotor(std::mt19937_64& rGenerator, const CCombination& rCombination) {
    const auto Uniform = [&](double Low, double High) { return Theory::Uniform(rGenerator, Low, High); };
    CRotorFile Rotor = CRotorFile::GetBuiltIn(rCombination.m_Modules);
    Rotor.m_NoiseCounts = 0.0;
    Rotor.m_Rotation = rCombination.m_Rotation;
    Rotor.m_RampRpmPerS = 3000.0;
    for (std::size_t i = 0; i < 2; ++i) {
        Rotor.m_Planes[i].m_Scale = rCombination.m_Scales[i];
        Rotor.m_Planes[i].m_Unbalance = {Uniform(0.05, 1.5), Uniform(0.0, 360.0)};
        Rotor.m_Influence[i][i] = {Uniform(150.0, 900.0), Uniform(0.0, 360.0)};
    }
    const double Smaller = std::min(Rotor.m_Influence[0][0].m_Amplitude, Rotor.m_Influence[1][1].m_Amplitude);
    for (std::size_t i = 0; i < 2; ++i) {
        Rotor.m_Influence[i][1 - i] = {Uniform(0.0, 0.6) * Smaller, Uniform(0.0, 360.0)};
    }
    return Rotor;
}

std::string NameOf(const testing::TestParamInfo<CCombination>& rInfo) {
    const auto SenseName = [](CRotorFile::Sense Value) {
        return std::string(Value == CRotorFile::eClockwise ? "Cw" : "Ccw");
    };
    return std::string(rInfo.param.m_Modules == CRotorFile::eLanner ? "Lanner" : "KestrelPair") + "Rotation" +
           SenseName(rInfo.param.m_Rotation) + "Scales" + SenseName(rInfo.param.m_Scales[0]) +
           SenseName(rInfo.param.m_Scales[1]);
}

std::vector<CCombination> MakeCombinations() {
    constexpr std::array SENSES = {CRotorFile::eClockwise, CRotorFile::eCounterClockwise};
    std::vector<CCombination> Combinations;
    for (const CRotorFile::Modules Modules : {CRotorFile::eKestrelPair, CRotorFile::eLanner}) {
        for (const CRotorFile::Sense Rotation : SENSES) {
            for (const CRotorFile::Sense Scale1 : SENSES) {
                for (const CRotorFile::Sense Scale2 : SENSES) {
                    Combinations.push_back({Modules, Rotation, {Scale1, Scale2}});
                }
            }
        }
    }
    return Combinations;
}

class EveryTwoPlaneCombination : public testing::TestWithParam<CCombination> {};

#if defined(__SANITIZE_ADDRESS__)
constexpr int NUMBER_OF_ROTORS = 5;
#else
constexpr int NUMBER_OF_ROTORS = 200;
#endif

}  // namespace

// Pre-balancing, then a disturbance of the rotor, then re-balancing. Every other run starts with the spindle
// turning; every other Lanner module has its sensors exchanged. With a scale that counts counter-clockwise
// the feature flag for the order of the weights is on.
TEST_P(EveryTwoPlaneCombination, RandomRotorsAreBalancedWithinWhatTheoryAllows) {
    const CCombination& rCombination = GetParam();
    std::mt19937_64 Generator(20240202);
    for (int i = 0; i < NUMBER_OF_ROTORS; ++i) {
        CWholeRun Run(MakeRandomRotor(Generator, rCombination));
        Run.m_Rotor.m_bSwap = rCombination.m_Modules == CRotorFile::eLanner && i / 2 % 2 == 1;
        Run.m_Options.m_Mode = "two-plane";
        if (rCombination.m_Scales[0] == CRotorFile::eCounterClockwise ||
            rCombination.m_Scales[1] == CRotorFile::eCounterClockwise) {
            Run.WriteSettings("PreBalancingConsistentWeightOrder=\"1\"");
        }
        Run.m_Options.m_bShowPage = i == 0;  // the first one with all painting
        const std::string Where = "rotor " + std::to_string(i);

        Residuals AfterPrebalancing{};
        Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
            if (rSituation.m_Progress.m_State == "PreBalanceMeasurement") {
                for (std::size_t Plane = 0; Plane < 2; ++Plane) {
                    AfterPrebalancing[Plane] =
                        std::abs(rSession.GetSimulator()->GetRotor().GetResidual(Plane));
                }
            }
        };
        Run.Run(Procedure::ePrebalanceAndRebalance, i % 2 == 1);
        ASSERT_TRUE(Run.GetResult() == "RebalSuccess" || Run.GetResult() == "RebalOverTarget")
            << Where << ": " << Run.GetResult();
        EXPECT_TRUE(Run.GetAssertions().empty()) << Where << ": " << Run.GetAssertions().front();
        const Residuals Bounds = GetBounds(Run.m_Rotor, {Run.m_Rotor.m_Planes[0].m_Unbalance.m_Amount,
                                                         Run.m_Rotor.m_Planes[1].m_Unbalance.m_Amount});
        // The re-balancing measures what is left and the disturbance (0.1), so the influence's error hardly
        // counts.
        const Residuals LaterBounds =
            GetBounds(Run.m_Rotor, {AfterPrebalancing[0] + 0.1, AfterPrebalancing[1] + 0.1});
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            EXPECT_LE(AfterPrebalancing[Plane], Bounds[Plane]) << Where << " plane " << Plane + 1;
            EXPECT_LE(std::abs(Run.m_Residuals[Plane]), LaterBounds[Plane])
                << Where << " plane " << Plane + 1;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WholeRun, EveryTwoPlaneCombination, testing::ValuesIn(MakeCombinations()), NameOf);

namespace {

/// Means of the two planes, and the senses in which a run of them is made.
struct CPairOfMethods {
    std::array<const char*, 2> m_Methods;
    CCombination m_Combination;
};

std::vector<CPairOfMethods> MakePairs() {
    constexpr std::array<std::array<const char*, 2>, 3> PAIRS = {
        {{"weights", "screws"}, {"screws", "weights"}, {"screws", "screws"}}};
    std::vector<CPairOfMethods> Pairs;
    for (const auto& rMethods : PAIRS) {
        for (const CCombination& rCombination : MakeCombinations()) {
            // The scales' senses differ in half of the combinations; those with equal ones are enough here.
            if (rCombination.m_Scales[0] == rCombination.m_Scales[1]) {
                Pairs.push_back({rMethods, rCombination});
            }
        }
    }
    return Pairs;
}

std::string NameOfPair(const testing::TestParamInfo<CPairOfMethods>& rInfo) {
    return std::string(rInfo.param.m_Methods[0]) + "_" + rInfo.param.m_Methods[1] + "_" +
           NameOf(testing::TestParamInfo<CCombination>(rInfo.param.m_Combination, rInfo.index));
}

class EveryPairOfMethods : public testing::TestWithParam<CPairOfMethods> {};

// 200 rotors for each pair, spread over the eight combinations.
constexpr int NUMBER_PER_COMBINATION = NUMBER_OF_ROTORS >= 200 ? 25 : 2;

}  // namespace

// Screws in one plane or in both. A plane with screws is left with what the best placement for the measured
// correction leaves: at most the best for the true one, plus twice the error of the measurement.
TEST_P(EveryPairOfMethods, RandomRotorsAreBalancedWithinWhatTheTableAllows) {
    const CPairOfMethods& rPair = GetParam();
    const std::vector<double> Table = {0.5, 1.0, 1.5, 2.0, 2.5, 3.0};
    std::mt19937_64 Generator(20240303);
    for (int i = 0; i < NUMBER_PER_COMBINATION; ++i) {
        CWholeRun Run(MakeRandomRotor(Generator, rPair.m_Combination));
        Run.m_Options.m_Mode = "two-plane";
        Run.m_Options.m_Methods = {rPair.m_Methods[0], rPair.m_Methods[1]};
        Run.m_Options.m_ScrewTable = Table;
        Run.m_Options.m_bShowPage = i == 0;
        if (rPair.m_Combination.m_Scales[0] == CRotorFile::eCounterClockwise) {
            Run.WriteSettings("PreBalancingConsistentWeightOrder=\"1\"");
        }
        const std::string Where = "rotor " + std::to_string(i);
        Run.Run(Procedure::ePrebalance, i % 2 == 1);
        ASSERT_TRUE(Run.GetResult() == "SetupSuccess" || Run.GetResult() == "SetupOverTarget")
            << Where << ": " << Run.GetResult();
        EXPECT_TRUE(Run.GetAssertions().empty()) << Where << ": " << Run.GetAssertions().front();
        const Residuals Bounds = GetBounds(Run.m_Rotor, {Run.m_Rotor.m_Planes[0].m_Unbalance.m_Amount,
                                                         Run.m_Rotor.m_Planes[1].m_Unbalance.m_Amount});
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            double Bound = Bounds[Plane];
            if (std::string(rPair.m_Methods[Plane]) == "screws") {
                const CRotorFile::CRotorPlane& rPlane = Run.m_Rotor.m_Planes[Plane];
                const Complex Unbalance = std::polar(rPlane.m_Unbalance.m_Amount,
                                                     rPlane.m_Unbalance.m_AngleDeg * Theory::PI / 180.0);
                const double Best =
                    BestPlacement::FindBest(Table, false, rPlane.m_Holes, -Unbalance).m_Deviation;
                Bound = Best + 2.0 * (Bounds[Plane] - DEGREE_ERROR);
            }
            EXPECT_LE(std::abs(Run.m_Residuals[Plane]), Bound) << Where << " plane " << Plane + 1;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WholeRun, EveryPairOfMethods, testing::ValuesIn(MakePairs()), NameOfPair);
