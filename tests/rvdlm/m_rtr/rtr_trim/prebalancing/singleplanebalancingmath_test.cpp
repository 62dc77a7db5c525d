#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancingmath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "rvlib/math/vector.h"
#include "tests/support/casenames.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

namespace {

using math::MakeVector;
using PreBalDB::CTypeBase;
using Matrix = math::matrix<double>;
using Complex = std::complex<double>;

constexpr auto CW = CTypeBase::eClockwise;
constexpr auto CCW = CTypeBase::eCounterClockwise;
constexpr std::uint32_t SAMPLES = 3;

Complex ToComplex(const Matrix& rVector) {
    return {rVector(0, 0), rVector(1, 0)};
}

void Fill(CSinglePlaneBalancingMath& rMath, int x, int y) {
    for (std::uint32_t i = 0; i <= SAMPLES; ++i) {
        const int bComplete = rMath.AddXYValue(static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
        EXPECT_EQ(bComplete, i == SAMPLES ? 1 : 0);
    }
}

struct CResult {
    explicit CResult(CSinglePlaneBalancingMath& rMath) { rMath.GetPrebalanceResult(m_InvA, m_UA, m_Status); }
    Matrix m_InvA;
    Matrix m_UA;
    std::uint32_t m_Status = 99;
};

/// A run with one known unit as the test, so that the influence is the difference of the readings as it
/// stands.
CResult RunWithUnit(CSinglePlaneBalancingMath& rMath, int FirstX, int FirstY, int SecondX, int SecondY) {
    rMath.SetRotationDirection(CCW);
    rMath.RestartMeasurement();
    Fill(rMath, FirstX, FirstY);
    EXPECT_EQ(rMath.ApplyNeutralPositionXYValues(), 1);
    rMath.SetTestUnbalanceVector(nullptr, CCW);
    Fill(rMath, SecondX, SecondY);
    return CResult(rMath);
}

std::uint32_t StatusOf(int FirstX, int FirstY, int SecondX, int SecondY) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    return RunWithUnit(Math, FirstX, FirstY, SecondX, SecondY).m_Status;
}

TEST(SinglePlaneBalancingMath, FourPercentWithoutPhaseChangeIsTooLittle) {
    EXPECT_EQ(StatusOf(100, 0, 104, 0), 1U);
    EXPECT_EQ(StatusOf(104, 0, 100, 0), 1U);
}

TEST(SinglePlaneBalancingMath, SixPercentIsEnough) {
    EXPECT_EQ(StatusOf(100, 0, 106, 0), 0U);
    EXPECT_EQ(StatusOf(106, 0, 100, 0), 0U);
}

TEST(SinglePlaneBalancingMath, ExactlyFivePercentIsTooLittle) {
    EXPECT_EQ(StatusOf(100, 0, 105, 0), 1U);
}

TEST(SinglePlaneBalancingMath, MoreThan30DegreesAreEnough) {
    EXPECT_EQ(StatusOf(1000, 0, 875, 485), 1U);  // 29.0 degrees
    EXPECT_EQ(StatusOf(1000, 0, 857, 515), 0U);  // 31.0 degrees
}

TEST(SinglePlaneBalancingMath, PhaseChangeIsNotWrapped) {
    // +179 and -179 degrees are 2 degrees apart, and count as 358.
    EXPECT_EQ(StatusOf(-10000, 175, -10000, -175), 0U);
}

TEST(SinglePlaneBalancingMath, NothingThenSomethingIsEnough) {
    EXPECT_EQ(StatusOf(0, 0, 10, 0), 0U);
    EXPECT_EQ(StatusOf(10, 0, 0, 0), 0U);
}

TEST(SinglePlaneBalancingMath, NothingTwiceIsTooLittle) {
    EXPECT_EQ(StatusOf(0, 0, 0, 0), 1U);
}

TEST(SinglePlaneBalancingMath, KnownUnitTakesTheDifferenceAsInfluence) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    const CResult Result = RunWithUnit(Math, 30, 40, 30, 60);
    EXPECT_EQ(Result.m_Status, 0U);
    // Influence 20i, its inverse -0.05i, UA = -(30 + 40i) / 20i = -2 + 1.5i.
    EXPECT_DOUBLE_EQ(Result.m_InvA(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(Result.m_InvA(0, 1), 0.05);
    EXPECT_DOUBLE_EQ(Result.m_InvA(1, 0), -0.05);
    EXPECT_DOUBLE_EQ(Result.m_InvA(1, 1), 0.0);
    EXPECT_DOUBLE_EQ(Result.m_UA(0, 0), -2.0);
    EXPECT_DOUBLE_EQ(Result.m_UA(1, 0), 1.5);
}

TEST(SinglePlaneBalancingMath, KnownUnitLeavesAUnitTransformation) {
    const CLogCapture Capture(true);
    CSinglePlaneBalancingMath Math(SAMPLES);
    const Matrix TestWeights = MakeVector(30, 180);
    Math.SetTestUnbalanceVector(&TestWeights, CW);
    Math.SetTestUnbalanceVector(nullptr, CW);
    const auto Lines = Capture.GetTexts("PbMath");
    ASSERT_GE(Lines.size(), 2U);
    EXPECT_EQ(Lines[Lines.size() - 2], "TransformationMatrix = |    1.0000      0.0000  |");
    EXPECT_EQ(Lines[Lines.size() - 1], "                       |    0.0000      1.0000  |");
}

TEST(SinglePlaneBalancingMath, TooLittleEffectLeavesTheFormerResult) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    const CResult Good = RunWithUnit(Math, 100, 0, 0, 100);
    ASSERT_EQ(Good.m_Status, 0U);
    const CResult Poor = RunWithUnit(Math, 50, 0, 51, 0);
    EXPECT_EQ(Poor.m_Status, 1U);
    EXPECT_EQ(Poor.m_InvA, Good.m_InvA);
    EXPECT_EQ(Poor.m_UA, Good.m_UA);
}

TEST(SinglePlaneBalancingMath, InfluenceBelowTheFloorIsRefusedButOverwritesTheResult) {
    // 1 count in one of 40 samples: influence 0.025, squared 0.000625.
    CSinglePlaneBalancingMath Math(40);
    Math.SetRotationDirection(CCW);
    for (int i = 0; i < 41; ++i) {
        Math.AddXYValue(0, 0);
    }
    Math.ApplyNeutralPositionXYValues();
    Math.SetTestUnbalanceVector(nullptr, CCW);
    for (int i = 0; i < 41; ++i) {
        Math.AddXYValue(i == 40 ? 1 : 0, 0);
    }
    const CResult Result(Math);
    EXPECT_EQ(Result.m_Status, 1U);
    EXPECT_DOUBLE_EQ(Result.m_InvA(0, 0), 40.0);
}

TEST(SinglePlaneBalancingMath, NeutralWeightsLeaveTheReadingAsItIs) {
    const CLogCapture Capture(true);
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CCW);
    Math.SetRawUnbalanceVector(MakeVector(0, 180), CCW);
    Fill(Math, 300, -400);
    Math.ApplyNeutralPositionXYValues();
    const Matrix TestWeights = MakeVector(30, 180);
    Math.SetTestUnbalanceVector(&TestWeights, CCW);
    Fill(Math, 900, 100);
    EXPECT_EQ(CResult(Math).m_Status, 0U);
    // Opposed weights add up to nothing but rounding.
    const auto Lines = Capture.GetTexts("PbMath");
    EXPECT_THAT(Lines, testing::Contains("RawValues = |  300.0000  |"));
    EXPECT_THAT(Lines, testing::Contains("            | -400.0000  |"));
}

TEST(SinglePlaneBalancingMath, WeightsThatDidNotMoveGiveNoNumber) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CCW);
    Math.SetRawUnbalanceVector(MakeVector(40, 100), CCW);
    Fill(Math, 100, 0);
    Math.ApplyNeutralPositionXYValues();
    const Matrix TestWeights = MakeVector(40, 100);
    Math.SetTestUnbalanceVector(&TestWeights, CCW);
    Fill(Math, 200, 0);
    // The infinite scale passes all tests on the way; the status says nothing about it.
    const CResult Result(Math);
    EXPECT_EQ(Result.m_Status, 0U);
    EXPECT_TRUE(std::isnan(Result.m_UA(0, 0)));
}

TEST(SinglePlaneBalancingMath, ClockwiseScaleStoresZeroAs360) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRawUnbalanceVector(MakeVector(0, 90), CW);
    EXPECT_EQ(Math.GetRawUnbalanceVector(), MakeVector(360, 270));
    Math.SetRawUnbalanceVector(MakeVector(0, 90), CCW);
    EXPECT_EQ(Math.GetRawUnbalanceVector(), MakeVector(0, 90));
}

TEST(SinglePlaneBalancingMath, RawPositionsAreCutToWholeDegreesAboveZero) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRawUnbalanceVector(MakeVector(10.9, -0.5), CCW);
    EXPECT_EQ(Math.GetRawUnbalanceVector(), MakeVector(10, 359));
    Math.SetRawUnbalanceVector(MakeVector(10.9, -30.0), CW);
    EXPECT_EQ(Math.GetRawUnbalanceVector(), MakeVector(350, 30));
}

TEST(SinglePlaneBalancingMath, StartsWithOpposedWeights) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    EXPECT_EQ(Math.GetRawUnbalanceVector(), MakeVector(0, 180));
}

TEST(SinglePlaneBalancingMath, ClockwiseRotationMirrorsXIn16Bits) {
    const CLogCapture Capture(true);
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CW);
    Fill(Math, 1234, 77);
    Math.ApplyNeutralPositionXYValues();
    Fill(Math, -32768, 77);
    Math.ApplyNeutralPositionXYValues();
    Math.SetRotationDirection(CCW);
    Fill(Math, 1234, 77);
    Math.ApplyNeutralPositionXYValues();
    EXPECT_EQ(Capture.GetTexts("PbMath"),
              (std::vector<std::string>{
                  "FirstMeasurementValues = |-1234.0000  |", "                         |   77.0000  |",
                  "FirstMeasurementValues = |-32768.0000  |", "                         |   77.0000  |",
                  "FirstMeasurementValues = | 1234.0000  |", "                         |   77.0000  |"}));
}

TEST(SinglePlaneBalancingMath, RestartDropsTheSamples) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Fill(Math, 1, 1);
    Math.RestartMeasurement();
    EXPECT_EQ(Math.AddXYValue(1, 1), 0);
}

TEST(SinglePlaneBalancingMath, NeutralMeasurementEmptiesTheWindow) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Fill(Math, 1, 1);
    Math.ApplyNeutralPositionXYValues();
    EXPECT_EQ(Math.AddXYValue(1, 1), 0);
}

TEST(SinglePlaneBalancingMath, IncompleteMeasurementIsAssertedAndAveraged) {
    const CLogCapture Capture(true);
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CCW);
    Math.AddXYValue(10, 1);
    Math.AddXYValue(20, 3);
    Math.ApplyNeutralPositionXYValues();
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"must be complete!"});
    EXPECT_THAT(Capture.GetTexts("PbMath"), testing::Contains("FirstMeasurementValues = |   15.0000  |"));
    for (const CLogRecord& rRecord : Capture.GetRecords()) {
        if (rRecord.m_bAssertion) {
            EXPECT_EQ(rRecord.m_Expression, "m_MovingAverage.GetValuesComplete()");
        }
    }
}

TEST(SinglePlaneBalancingMath, RebalancingGivesAnAbsoluteCompensationEachTime) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CCW);
    Matrix InvA(2, 2);
    InvA.Null();
    InvA(0, 1) = -0.5;  // the factor i / 2
    InvA(1, 0) = 0.5;
    Math.SetMathMatrices(InvA, MakeVector(1, 1));
    Fill(Math, 3, 4);
    for (int i = 0; i < 2; ++i) {  // reading it doesn't change what is stored
        Matrix UA(2, 1);
        Math.GetRebalanceResult(UA);
        EXPECT_EQ(UA, MakeVector(3, -0.5));  // 1 + i - i / 2 * (3 + 4i)
    }
    EXPECT_EQ(Math.AddXYValue(3, 4), 1);  // the window stays complete
}

TEST(SinglePlaneBalancingMath, LogsItsCallsAndTheWeightsGeometry) {
    const CLogCapture Capture(true);
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetScalingDirection(CCW);
    Math.SetRawUnbalanceVector(MakeVector(0, 180), CCW);
    const Matrix TestWeights = MakeVector(30, 180);
    Math.SetTestUnbalanceVector(&TestWeights, CW);
    Math.SetTestUnbalanceVector(nullptr, CCW);
    const auto Flow = Capture.GetTexts("PbFlow");
    ASSERT_EQ(Flow.size(), 4U);
    EXPECT_EQ(Flow[0], "CSinglePlaneBalancingMath::SetScalingDirection(RotationDirection=CCW) called");
    EXPECT_EQ(Flow[3], "CSinglePlaneBalancingMath::SetTestUnbalanceVector(0x00000000, CCW) called");
    const auto Lines = Capture.GetTexts("PbMath");
    EXPECT_THAT(Lines, testing::Contains("pTest = |   30.0000  |"));
    EXPECT_THAT(Lines, testing::Contains("Test Weights = |   30.0000  |"));  // not the mirrored copy
    EXPECT_THAT(Lines,
                testing::Contains("Phi1: 90.0000  -- Alpha1: 90.0000 -- Phi2: 255.0000  -- Alpha2: 75.0000"));
}

/// Published single-plane cases: reading at phase without weight, test mass at angle 0, reading with it. They
/// have one mass instead of a pair, and readings r = a * w without conjugate.
///
/// One mass: one unit is the test mass, and UA counts in it. It is given either as the known unit (no
/// positions), or as a pair that goes from opposed, sum nil, to 60 degrees each side of the mass's angle,
/// sum 1.
///
/// No conjugate: the module sees w mirrored, r = a * conj(w). A clockwise scale mirrors positions on the way
/// in, so angles of the publication are angles on a clockwise scale; and UA, which is the compensation
/// mirrored once more, reads as the publication's compensation without more ado. Mirrored X stays out by a
/// counter-clockwise rotor. Readings are scaled to thousands of counts, so that rounding to whole counts
/// doesn't show in the digits given.
struct CPublishedCase {
    double m_Amplitude0;
    double m_Phase0;
    double m_TestMass;
    double m_Amplitude1;
    double m_Phase1;
    double m_TrialEffect;  ///< length of the difference vector
    double m_Correction;
    double m_CorrectionAngle;
};

class SinglePlanePublished : public testing::TestWithParam<std::tuple<CPublishedCase, bool>> {};

TEST_P(SinglePlanePublished, GivesThePublishedCorrection) {
    const auto& [Case, bPair] = GetParam();
    constexpr double SCALE = 4000.0;
    constexpr double DEGREE = std::numbers::pi / 180.0;
    CSinglePlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirection(CCW);
    const auto Measure = [&](double Amplitude, double Phase) {
        const Complex Reading = std::polar(Amplitude * SCALE, Phase * DEGREE);
        Fill(Math, static_cast<int>(std::lround(Reading.real())),
             static_cast<int>(std::lround(Reading.imag())));
    };
    Math.SetRawUnbalanceVector(MakeVector(90, 270), CW);
    Measure(Case.m_Amplitude0, Case.m_Phase0);
    Math.ApplyNeutralPositionXYValues();
    const Matrix Pair = MakeVector(60, 300);
    Math.SetTestUnbalanceVector(bPair ? &Pair : nullptr, CW);
    Measure(Case.m_Amplitude1, Case.m_Phase1);
    const CResult Result(Math);
    EXPECT_EQ(Result.m_Status, 0U);

    // The mass is one unit, so the influence has the length of the difference vector.
    Matrix InvA = Result.m_InvA;
    const Matrix Alpha = !InvA;
    EXPECT_NEAR(std::hypot(Alpha(0, 0), Alpha(1, 0)) / SCALE, Case.m_TrialEffect, 0.0006);
    const Complex Correction = ToComplex(Result.m_UA) * Case.m_TestMass;
    EXPECT_NEAR(std::abs(Correction), Case.m_Correction, 0.0001 * Case.m_Correction);
    EXPECT_NEAR(std::fmod(std::arg(Correction) / DEGREE + 360.0, 360.0), Case.m_CorrectionAngle, 0.006);
}

// The second publication gives no trial effect: by the law of cosines it is
// sqrt(3.4^2 + 1.8^2 - 2 * 3.4 * 1.8 * cos(74 degrees)) = 3.3803.
INSTANTIATE_TEST_SUITE_P(
    Cases, SinglePlanePublished,
    testing::Combine(testing::Values(CPublishedCase{7, 160, 100, 5, 70, 8.602, 81.37, 324.46},
                                     CPublishedCase{3.4, 116, 2, 1.8, 42, 3.3803, 2.0117, 329.21}),
                     testing::Bool()),
    [](const auto& rInfo) {
        return CaseNames::FromText("InitialAmplitude" +
                                       testing::PrintToString(std::get<0>(rInfo.param).m_Amplitude0) +
                                       (std::get<1>(rInfo.param) ? "PairGiven" : "PairFromTheStep"),
                                   rInfo.index);
    });

/// Test runs with two weights on a rotor whose physics stand here: a reading is influence * conj(w), with X
/// negated when the rotor turns clockwise; a weight at s on a clockwise scale sits at -s.
struct CRotorCase {
    double m_Amount;    ///< weights
    double m_AngleDeg;  ///< counter-clockwise
    double m_Influence;
    double m_PhaseDeg;
    CTypeBase::Direction m_Rotation = CW;
    CTypeBase::Direction m_Scale = CW;
};

class SinglePlaneTestEffect : public testing::Test {
protected:
    static constexpr double DEGREE = std::numbers::pi / 180.0;

    void EnableVectorRule() { m_Installation.EnableFeature("PreBalancingVectorTestEffect"); }

    static Complex Sum(const CRotorCase& rCase, const Matrix& rAngles) {
        const double Sense = rCase.m_Scale == CW ? -DEGREE : DEGREE;
        return std::polar(1.0, Sense * rAngles(0, 0)) + std::polar(1.0, Sense * rAngles(1, 0));
    }
    static Complex Read(const CRotorCase& rCase, const Matrix& rAngles) {
        const Complex Unbalance = std::polar(rCase.m_Amount, rCase.m_AngleDeg * DEGREE) + Sum(rCase, rAngles);
        const Complex Reading =
            std::polar(rCase.m_Influence, rCase.m_PhaseDeg * DEGREE) * std::conj(Unbalance);
        const Complex Seen = rCase.m_Rotation == CW ? -std::conj(Reading) : Reading;
        return {std::round(Seen.real()), std::round(Seen.imag())};
    }
    /// One weight of two that stand opposed goes back by 30 degrees.
    static CResult Run(const CRotorCase& rCase) {
        CSinglePlaneBalancingMath Math(SAMPLES);
        Math.SetRotationDirection(rCase.m_Rotation);
        const Matrix Opposed = MakeVector(0, 180);
        const Matrix Moved = MakeVector(30, 180);
        const auto Measure = [&](const Matrix& rAngles) {
            const Complex Reading = Read(rCase, rAngles);
            Fill(Math, static_cast<int>(Reading.real()), static_cast<int>(Reading.imag()));
        };
        Math.SetRawUnbalanceVector(Opposed, rCase.m_Scale);
        Measure(Opposed);
        Math.ApplyNeutralPositionXYValues();
        Math.SetTestUnbalanceVector(&Moved, rCase.m_Scale);
        Measure(Moved);
        return CResult(Math);
    }

    CTestInstallation m_Installation;
};

// A run from the field: the reading turns by 24 degrees at nearly the same length. The vector has changed by
// 42 percent, and by the default rule that is no effect.
constexpr CRotorCase TURNED_READING{1.2396, 154.2, 437.13, 109.0};

TEST_F(SinglePlaneTestEffect, AReadingThatTurnsCountsByTheVectorsRuleOnly) {
    const CRotorCase& rCase = TURNED_READING;
    const Complex First = Read(rCase, MakeVector(0, 180));
    const Complex Second = Read(rCase, MakeVector(30, 180));
    EXPECT_NEAR(std::abs(First), 542.4, 1.0);
    EXPECT_NEAR(std::abs(Second), 546.6, 1.0);
    EXPECT_EQ(Run(rCase).m_Status, 1U);
    EnableVectorRule();
    const CResult Result = Run(rCase);
    EXPECT_EQ(Result.m_Status, 0U);
    EXPECT_NEAR(std::abs(ToComplex(Result.m_UA)), 1.2396, 0.01);
}

// The length of the change against 5 percent of the first reading, both ends of the rule.
TEST_F(SinglePlaneTestEffect, TheVectorMustChangeByFivePercentOfTheFirstReading) {
    EnableVectorRule();
    EXPECT_EQ(StatusOf(1000, 0, 1049, 0), 1U);
    EXPECT_EQ(StatusOf(1000, 0, 1050, 0), 0U) << "exactly 5 percent are enough";
    EXPECT_EQ(StatusOf(1000, 0, 951, 0), 1U);
    EXPECT_EQ(StatusOf(1000, 0, 950, 0), 0U);
    EXPECT_EQ(StatusOf(1000, 0, 1000, 49), 1U) << "across it likewise";
    EXPECT_EQ(StatusOf(1000, 0, 1000, 50), 0U);
}

TEST_F(SinglePlaneTestEffect, AReadingBesideTheHalfTurnDoesNotPassTheVectorsRule) {
    EnableVectorRule();
    EXPECT_EQ(StatusOf(-10000, 175, -10000, -175), 1U) << "2 degrees apart, and nothing else";
}

TEST_F(SinglePlaneTestEffect, NothingTwiceIsTooLittleByTheVectorsRuleToo) {
    EnableVectorRule();
    EXPECT_EQ(StatusOf(0, 0, 0, 0), 1U);
    EXPECT_EQ(StatusOf(0, 0, 10, 0), 0U);
}

TEST_F(SinglePlaneTestEffect, TheFlagIsReadWhenTheMathematicsAreMade) {
    CSinglePlaneBalancingMath Math(SAMPLES);
    EnableVectorRule();
    EXPECT_EQ(RunWithUnit(Math, 1000, 0, 1000, 300).m_Status, 1U);
}

// The test weights are 0.52 weights, and the largest unbalance that two weights can balance is 2: the reading
// changes by a quarter of itself at least. Each run must yield the compensation, too: w + sum(UA) = 0, where
// UA is the conjugate of what the weights must form, seen in the counter-clockwise frame.
TEST_F(SinglePlaneTestEffect, EveryRotorUpToCapacityIsAcceptedByTheVectorsRule) {
    EnableVectorRule();
    std::mt19937_64 Generator(20261122);
    const auto Uniform = [&Generator](double Low, double High) {
        return Low + (High - Low) * static_cast<double>(Generator() >> 11U) * 0x1p-53;
    };
    constexpr int ROTORS = 20'000;
    int nRefused = 0;
    int nWrong = 0;
    for (int i = 0; i < ROTORS; ++i) {
        const CRotorCase Case{Uniform(0.0, 2.0),   Uniform(0.0, 360.0),   Uniform(60.0, 2000.0),
                              Uniform(0.0, 360.0), i % 2 == 0 ? CW : CCW, i % 4 < 2 ? CW : CCW};
        const CResult Result = Run(Case);
        nRefused += Result.m_Status != 0 ? 1 : 0;
        // Whole counts: half of one in X and Y of each reading, and the influence's share by the unbalance.
        const double Tolerance = (1.0 + Case.m_Amount * 2.0 / 0.5176) * 0.7072 / Case.m_Influence * 1.2;
        nWrong += std::abs(std::abs(ToComplex(Result.m_UA)) - Case.m_Amount) > Tolerance ? 1 : 0;
    }
    EXPECT_EQ(nRefused, 0);
    EXPECT_EQ(nWrong, 0);
}

}  // namespace
