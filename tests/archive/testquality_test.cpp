#include "archive/testquality.h"

#include <gtest/gtest.h>

#include <cmath>

#include "archive/testrule.h"
#include "platform/rvldb/gettext.h"
#include "tests/archive/simulatedrun.h"

namespace {

using TestRun = CRunAdvice::CQuality::TestRun;

CSimulatedRun::CSetup MakeSetup() {
    CSimulatedRun::CSetup Setup;
    Setup.m_Mode = "plane1";
    Setup.m_Noise = 1.5;
    return Setup;
}

std::optional<CRunAdvice::CQuality> Judge(CSimulatedRun::CSetup Setup) {
    CSimulatedRun Run(std::move(Setup));
    Run.RunTests();
    return TestQuality::Judge(Run.GetRecord(), 0.01, false);
}

/// A run of one plane with these two readings, without noise, moved by a step.
CRunRecord MakeRun(std::complex<double> First, std::complex<double> Second, int Step) {
    CRunRecord Run;
    Run.m_Setup.m_Mode = "plane1";
    Run.m_Setup.m_bClockwise = false;
    Run.m_Setup.m_Planes[0].emplace();
    for (const auto& [Which, Reading, Angle] :
         {std::tuple(Measurement::eFirst, First, 0), std::tuple(Measurement::eTest1, Second, Step)}) {
        CRunMeasurement Measured;
        Measured.m_Which = Which;
        CMeasuredPlane& rPlane = Measured.m_Planes[0].emplace();
        rPlane.m_nReadings = 100;
        rPlane.m_Smoothed = {Reading.real(), Reading.imag()};
        rPlane.m_VarianceX = rPlane.m_VarianceY = 1.0;
        rPlane.m_Fitted.m_Weights = {Angle, 180};
        Run.m_Measurements.push_back(Measured);
    }
    return Run;
}

}  // namespace

TEST(TestQuality, DeadSensorHasNoEffect) {
    for (const double Noise : {0.0, 0.3, 1.0}) {
        for (std::uint64_t Seed = 1; Seed <= 20; ++Seed) {
            auto Setup = MakeSetup();
            Setup.m_bDead = true;
            Setup.m_Noise = Noise;
            Setup.m_Seed = Seed;
            const auto Quality = Judge(Setup);
            ASSERT_TRUE(Quality);
            EXPECT_EQ(Quality->m_TestRun, TestRun::eNone) << Noise << " " << Seed;
        }
    }
}

TEST(TestQuality, UsualTestIsGood) {
    const auto Quality = Judge(MakeSetup());
    ASSERT_TRUE(Quality);
    EXPECT_EQ(Quality->m_TestRun, TestRun::eGood);
    // One weight moved by 60° is a change of one weight, to 0.8 that were there.
    EXPECT_NEAR(Quality->m_RelativeChange, 1.0 / 0.8, 0.02);
}

TEST(TestQuality, SmallChangeIsWeak) {
    auto Setup = MakeSetup();
    Setup.m_TestStep.fill(4);  // 0.07 of a weight, 10 counts
    const auto Quality = Judge(Setup);
    ASSERT_TRUE(Quality);
    EXPECT_EQ(Quality->m_TestRun, TestRun::eWeak);
}

TEST(TestQuality, FewReadingsTellNothing) {
    auto Setup = MakeSetup();
    Setup.m_bDead = true;
    Setup.m_nReadings = 4;
    EXPECT_FALSE(Judge(Setup));
}

TEST(TestQuality, OneDeadLegOfTwoIsEnough) {
    auto Setup = MakeSetup();
    Setup.m_Mode = "two-plane";
    Setup.m_Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    EXPECT_EQ(Judge(Setup)->m_TestRun, TestRun::eGood);
    Setup.m_Rotor.m_Influence[1][1].m_Amplitude = 0.0;
    Setup.m_Rotor.m_Influence[0][1].m_Amplitude = 0.0;
    EXPECT_EQ(Judge(Setup)->m_TestRun, TestRun::eNone);
}

TEST(TestQuality, NoEffectIsToldWithItsUncertainty) {
    ASSERT_TRUE(SetLanguage("en"));
    // 0.4 apart; variances 1/100 each: 2 sqrt(2/100) = 0.28.
    const auto Quality = TestQuality::Judge(MakeRun(100.0, 100.4, 60), 0.01, false);
    ASSERT_TRUE(Quality);
    EXPECT_EQ(Quality->m_Text,
              "the test run changed the reading by 0.4 ± 0.3 µm/s: no effect can be told from noise");
}

// A tenth of ten thousand runs with the same state twice is one.
TEST(TestQuality, LimitIsFourPointThreeStandardErrors) {
    const double Error = std::sqrt(2.0 / 100.0);
    EXPECT_EQ(TestQuality::Judge(MakeRun(100.0, 100.0 + 4.25 * Error, 60), 0.0, false)->m_TestRun,
              TestRun::eNone);
    EXPECT_EQ(TestQuality::Judge(MakeRun(100.0, 100.0 + 4.55 * Error, 60), 0.0, false)->m_TestRun,
              TestRun::eWeak);
}

TEST(TestRule, IsTheModules) {
    EXPECT_FALSE(TestRule::IsAccepted(100.0, 104.0, 1.0));
    EXPECT_TRUE(TestRule::IsAccepted(100.0, 106.0, 1.0));
    EXPECT_TRUE(TestRule::IsAccepted(0.0, 10.0, 1.0));
    EXPECT_FALSE(TestRule::IsAccepted(0.0, 0.0, 1.0));
    // 2° apart, but one turn as the module counts.
    EXPECT_TRUE(TestRule::IsAccepted(std::polar(100.0, 3.12), std::polar(100.0, -3.12), 1.0));
    EXPECT_FALSE(TestRule::IsAccepted(1e-6, 2e-6, 1.0));
}

// 100 turned by 24° is a change of 41.6 %, which the module refuses.
TEST(TestQuality, RefusedTestIsToldWhatHelps) {
    ASSERT_TRUE(SetLanguage("en"));
    const std::complex<double> Second = std::polar(100.0, 24.0 * 3.14159265 / 180.0);
    const std::string Text = TestQuality::DescribeRefusal(MakeRun(100.0, Second, 30), 0.0);
    EXPECT_EQ(Text.substr(0, Text.find(':')),
              "The reading changed by 42 %, but by less than 5 % in length and 30° in phase");
    EXPECT_NE(Text.find("move the weight by "), std::string::npos) << Text;
}

// The step that is told is accepted by the module's rule when it is made.
TEST(TestQuality, ToldStepIsAccepted) {
    ASSERT_TRUE(SetLanguage("en"));
    for (int Degrees = -28; Degrees <= 28; Degrees += 4) {
        const std::complex<double> Second = std::polar(102.0, Degrees * 3.14159265 / 180.0);
        const CRunRecord Run = MakeRun(100.0, Second, 30);
        const std::string Text = TestQuality::DescribeRefusal(Run, 0.0);
        if (Degrees == 0) {
            continue;  // a change of 2 %: no step may be enough
        }
        const std::size_t Place = Text.find("weight by ");
        ASSERT_NE(Place, std::string::npos) << Text;
        const int Step =
            std::stoi(Text.substr(Place + 10)) * (Text.find("other way") == std::string::npos ? 1 : -1);
        const auto Move = [](int Angle) { return std::polar(1.0, Angle * 3.14159265 / 180.0) - 1.0; };
        // On a clockwise scale what is fitted counts as its angles do.
        const std::complex<double> Change = (Second - 100.0) * Move(Step) / Move(30);
        EXPECT_TRUE(TestRule::IsAccepted(100.0, 100.0 + Change, Move(Step))) << Text;
    }
}

TEST(TestQuality, AcceptedTestNeedsNoHelp) {
    EXPECT_EQ(TestQuality::DescribeRefusal(MakeRun(100.0, 120.0, 30), 0.0), "");
    EXPECT_EQ(TestQuality::DescribeRefusal(MakeRun(100.0, 100.2, 30), 0.0), "");
}
