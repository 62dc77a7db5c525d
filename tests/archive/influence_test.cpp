#include "archive/influence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "archive/advice.h"
#include "archive/repeatability.h"
#include "archive/suggestedtest.h"
#include "platform/rvldb/gettext.h"
#include "tests/archive/simulatedrun.h"

namespace {

using Complex = std::complex<double>;
using Light = CRunAdvice::CQuality::Light;

CSimulatedRun::CSetup MakeSetup(const std::string& rMode, std::uint64_t Seed) {
    CSimulatedRun::CSetup Setup;
    Setup.m_Mode = rMode;
    Setup.m_Noise = 1.5;
    Setup.m_Seed = Seed;
    Setup.m_Rotor =
        CRotorFile::GetBuiltIn(rMode == "plane1" ? CRotorFile::eKestrel : CRotorFile::eKestrelPair);
    return Setup;
}

CRunRecord Finish(CSimulatedRun::CSetup Setup) {
    const auto Seed = static_cast<std::int64_t>(Setup.m_Seed);
    CSimulatedRun Run(std::move(Setup));
    Run.Run();
    CRunRecord Record = Run.GetRecord();
    Record.m_Id = Seed;
    Record.m_Started = std::chrono::sys_seconds(std::chrono::seconds(Seed));
    Record.m_bSaved = true;
    return Record;
}

std::vector<CRunRecord> MakeHistory(const CSimulatedRun::CSetup& rSetup, std::uint64_t nRuns) {
    std::vector<CRunRecord> Runs;
    for (std::uint64_t i = 1; i <= nRuns; ++i) {
        auto Setup = rSetup;
        Setup.m_Seed = i;
        Runs.push_back(Finish(Setup));
    }
    return Runs;
}

}  // namespace

// Columns of length one with the product 0.6: sqrt(1.6 / 0.4) = 2.
TEST(Influence, ConditionByHand) {
    EXPECT_NEAR(Influence::GetCondition({{1.0, 0.6}, {0.0, 0.8}}), 2.0, 1e-12);
    EXPECT_NEAR(Influence::GetCondition({{1.0, 0.0}, {0.0, 1.0}}), 1.0, 1e-12);
    // Neither phases nor units count.
    EXPECT_NEAR(Influence::GetCondition({{Complex(0, 5), Complex(0, 60)}, {0.0, Complex(0, 80)}}), 2.0,
                1e-12);
    EXPECT_EQ(Influence::GetCondition({{1.0, 2.0}, {1.0, 2.0}}), Influence::WORST_CONDITION);
    EXPECT_EQ(Influence::GetCondition({{1.0, 0.0}, {1.0, 0.0}}), Influence::WORST_CONDITION);
}

TEST(Influence, ConditionIsALight) {
    for (const auto& [Condition, Expected] :
         {std::pair(3.0, Light::eGreen), std::pair(3.1, Light::eYellow), std::pair(10.1, Light::eRed)}) {
        CRunAdvice::CQuality Quality;
        Influence::SetCondition(Quality, Condition);
        EXPECT_EQ(Quality.m_ConditionLight, Expected) << Condition;
        EXPECT_FALSE(Quality.m_ConditionText.empty());
    }
}

TEST(Influence, IsThatOfTheRotor) {
    auto Setup = MakeSetup("two-plane", 1);
    Setup.m_Noise = 0.0;
    Setup.m_Rotor.m_Influence = {{{9000.0, 40.0}, {2500.0, 75.0}}, {{3100.0, 200.0}, {8000.0, 300.0}}};
    const CRunRecord Run = Finish(Setup);
    const auto Coefficients = CRotorModel::Make(Run, 0.0)->GetInfluence();
    ASSERT_TRUE(Coefficients);
    for (std::size_t p = 0; p < 2; ++p) {
        for (std::size_t q = 0; q < 2; ++q) {
            EXPECT_NEAR(std::abs((*Coefficients)[p][q]), Setup.m_Rotor.m_Influence[p][q].m_Amplitude, 3.0);
        }
    }
}

TEST(Influence, FewerThanThreeRunsAreNoAverage) {
    const auto Runs = MakeHistory(MakeSetup("plane1", 1), 3);
    EXPECT_FALSE(Influence::Compare(Runs.back(), Runs));
}

TEST(Influence, OfTheSameRotorAgrees) {
    for (const char* const pMode : {"plane1", "two-plane"}) {
        const auto Runs = MakeHistory(MakeSetup(pMode, 1), 8);
        const auto Comparison = Influence::Compare(Runs.back(), Runs);
        ASSERT_TRUE(Comparison);
        EXPECT_EQ(Comparison->m_nRuns, 7U);
        EXPECT_FALSE(Comparison->m_bDiffers) << pMode;
        EXPECT_LT(Comparison->m_RelativeScatter, 0.02);
    }
}

TEST(Influence, OfAnotherRotorIsTold) {
    auto Runs = MakeHistory(MakeSetup("plane1", 1), 6);
    auto Other = MakeSetup("plane1", 7);
    Other.m_Rotor.m_Influence[0][0].m_Amplitude *= 1.2;
    SetLanguage("en");
    const auto Comparison = Influence::Compare(Finish(Other), Runs);
    ASSERT_TRUE(Comparison);
    EXPECT_TRUE(Comparison->m_bDiffers);
    EXPECT_NEAR(Comparison->m_RelativeDifference, 0.2, 0.02);
    EXPECT_NE(Comparison->m_Text.find("differs"), std::string::npos);
}

TEST(Influence, MeanIsInTheFormOfACalibration) {
    auto Setup = MakeSetup("plane1", 1);
    Setup.m_Noise = 0.1;
    Setup.m_Rotor.m_Influence[0][0].m_Amplitude = 5000.0;
    const auto Runs = MakeHistory(Setup, 5);
    const auto Comparison = Influence::Compare(Runs.back(), Runs);
    ASSERT_TRUE(Comparison);
    const math::matrix<double>& rModules = Runs.back().m_Calibration->m_InvA;
    for (std::uint32_t i = 0; i < 2; ++i) {
        for (std::uint32_t j = 0; j < 2; ++j) {
            EXPECT_NEAR(Comparison->m_InvA(i, j), rModules(i, j), 1e-3 * std::abs(rModules(0, 0)) + 1e-7);
        }
    }
}

TEST(Repeatability, IsLearnedFromFiveRunsOn) {
    auto Setup = MakeSetup("plane1", 1);
    Setup.m_Noise = 1.0;
    Setup.m_Drift = 0.004;
    Setup.m_Rotor.m_Influence[0][0].m_Amplitude = 2000.0;
    EXPECT_FALSE(Repeatability::Learn(MakeHistory(Setup, 4)));
    const auto Learned = Repeatability::Learn(MakeHistory(Setup, 200));
    ASSERT_TRUE(Learned);
    // An upper bound for 95 %: a little above.
    EXPECT_GT(*Learned, 0.0038);
    EXPECT_LT(*Learned, 0.0048);
}

TEST(Repeatability, RunsWithMistakesDontCount) {
    auto Setup = MakeSetup("plane1", 1);
    auto Runs = MakeHistory(Setup, 5);
    CSimulatedRun Wrong(Setup);
    Wrong.SetHand([](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
        return Which == Measurement::eFinal ? CPlaneFitting{{0, 180}, {}} : rNoted;
    });
    Wrong.Run();
    const auto Before = Repeatability::Learn(Runs);
    Runs.push_back(Wrong.GetRecord());
    EXPECT_EQ(Repeatability::Learn(Runs), Before);
}

// 0.8 weights give the first reading; 30 % of that is 0.24 weights, a step of 14°: 15.
TEST(SuggestedTest, ChangesTheReadingByAThird) {
    auto Runs = MakeHistory(MakeSetup("two-plane", 1), 1);
    const auto Found = SuggestedTest::Find(Runs[0].m_Setup, 0, Runs);
    ASSERT_TRUE(Found);
    EXPECT_TRUE(Found->m_bFromHistory);
    EXPECT_EQ(Found->m_Step, 15);
}

TEST(SuggestedTest, IsAcceptedByTheModule) {
    for (double Angle = 0.0; Angle < 360.0; Angle += 15.0) {
        auto Setup = MakeSetup("plane1", 1);
        Setup.m_Rotor.m_Planes[0].m_Unbalance = {0.8, Angle};
        const auto Runs = MakeHistory(Setup, 1);
        const auto Found = SuggestedTest::Find(Runs[0].m_Setup, 0, Runs);
        ASSERT_TRUE(Found) << Angle;
        Setup.m_TestStep.fill(Found->m_Step);
        CSimulatedRun Next(Setup);
        Next.RunTests();
        EXPECT_TRUE(Next.IsAccepted()) << Angle << " " << Found->m_Step;
    }
}

// 10 kg at 3000 rpm: 9.81 N / (314.16 / s)² = 99.4 g·mm; with 200 g·mm a weight half of one: 30°.
TEST(SuggestedTest, WithoutHistoryIsATenthOfTheRotorsWeight) {
    CRunSetup Setup;
    Setup.m_Planes[0].emplace();
    EXPECT_FALSE(SuggestedTest::Find(Setup, 0, {}));
    Setup.m_Iso.m_RotorMass = 10.0;
    Setup.m_Iso.m_ServiceSpeed = 3000.0;
    Setup.m_Iso.m_Unit[0] = 200.0;
    EXPECT_EQ(SuggestedTest::Find(Setup, 0, {})->m_Step, 30);
    // Screws at 50 mm: 2 g.
    Setup.m_Planes[0]->m_bScrews = true;
    Setup.m_Planes[0]->m_Table = {{"A", 1.0}, {"B", 2.2}, {"C", 5.0}};
    Setup.m_Iso.m_Unit[0] = 50.0;
    SetLanguage("en");
    const auto Found = SuggestedTest::Find(Setup, 0, {});
    EXPECT_EQ(Found->m_Grams, 2.2);
    EXPECT_NE(Found->m_Text.find("2.2 g"), std::string::npos);
}
