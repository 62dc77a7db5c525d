#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancingmath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <string>
#include <tuple>

#include "rvlib/math/vector.h"
#include "tests/support/logcapture.h"

namespace {

using math::MakeVector;
using PreBalDB::CTypeBase;
using testing::Contains;
using testing::IsEmpty;
using Complex = std::complex<double>;
using Matrix = math::matrix<double>;

constexpr auto CW = CTypeBase::eClockwise;
constexpr auto CCW = CTypeBase::eCounterClockwise;
constexpr std::uint32_t SAMPLES = 3;

Complex ToComplex(const Matrix& rVector) {
    return {rVector(0, 0), rVector(1, 0)};
}
Complex FromPolar(double Length, double AngleDeg) {
    return std::polar(Length, AngleDeg * std::numbers::pi / 180.0);
}
double AngleDeg(Complex Value) {
    const double Angle = std::arg(Value) * 180.0 / std::numbers::pi;
    return Angle < 0.0 ? Angle + 360.0 : Angle;
}
std::int16_t ToCounts(double Value) {
    return static_cast<std::int16_t>(std::lround(Value));
}

/// Fills both windows with one reading each.
void Fill(CTwoPlaneBalancingMath& rMath, Complex Plane1, Complex Plane2) {
    rMath.RestartMeasurement();
    for (std::uint32_t i = 0; i <= SAMPLES; ++i) {
        const int bComplete = i == SAMPLES ? 1 : 0;
        EXPECT_EQ(rMath.AddXYValuePlane1(ToCounts(Plane1.real()), ToCounts(Plane1.imag())), bComplete);
        EXPECT_EQ(rMath.AddXYValuePlane2(ToCounts(Plane2.real()), ToCounts(Plane2.imag())), bComplete);
    }
}

struct CResult {
    Matrix m_InvA;
    Matrix m_UA1;
    Matrix m_UA2;
    std::uint32_t m_Status = 99;
};

using Readings = std::array<std::array<Complex, 2>, 3>;  ///< by measurement, by sensor

/// A run of three measurements. Null: the test is one known unit.
CResult RunMath(CTwoPlaneBalancingMath& rMath, const Readings& rReadings, const Matrix* pTest1,
                const Matrix* pTest2, CTypeBase::Direction Scaling1, CTypeBase::Direction Scaling2) {
    CResult Result;
    Fill(rMath, rReadings[0][0], rReadings[0][1]);
    EXPECT_EQ(rMath.ApplyNeutralPositionXYValues(), 1);
    rMath.SetTestUnbalanceVectorCase1(pTest1, Scaling1);
    Fill(rMath, rReadings[1][0], rReadings[1][1]);
    std::uint32_t Status = 99;
    rMath.ApplyTestPlusRawUnbalanceXYValuesCase1(Status);
    EXPECT_EQ(Status, 0U);
    rMath.SetTestUnbalanceVectorCase2(pTest2, Scaling2);
    Fill(rMath, rReadings[2][0], rReadings[2][1]);
    rMath.GetPrebalanceResult(Result.m_InvA, Result.m_UA1, Result.m_UA2, Result.m_Status);
    return Result;
}

// A published case of two-plane balancing by influence coefficients. As printed: first readings 170 at 112
// and 53 at 78 degrees; a trial weight of 1.15 at 0 degrees in plane 1 gives 235 at 94 and 58 at 68; the same
// in plane 2, alone, gives 189 at 115 and 77 at 104. Exact for these figures, with the trial weights taken
// off, is a correction of 1.956 at 237.44 and 1.073 at 121.09 degrees.
//
// Mapped onto the module: readings and angles there count in one sense in both planes, V = V0 + A w without
// conjugate. That is the module's model for a rotor that turns counter-clockwise (no X is negated) with a
// clockwise scale in plane 1 and a counter-clockwise one in plane 2 (no angle is mirrored). Readings are
// given in hundredths, so that whole counts hold them.
//
// The module leaves the trial weight of plane 1 on while that of plane 2 is fitted. Its third reading so is
// the second one plus what plane 2's weight adds, V1 + (V2 - V0), and plane 2's influence comes from the
// difference of the third and the second reading, not of the third and the first. The influence is the same;
// the correction, too, counts from the rotor without weights.
class PublishedCase : public testing::Test {
protected:
    PublishedCase() {
        for (std::size_t i = 0; i < 2; ++i) {
            m_Readings[0][i] = 100.0 * m_V0[i];
            m_Readings[1][i] = 100.0 * m_V1[i];
            m_Readings[2][i] = 100.0 * (m_V1[i] + m_V2[i] - m_V0[i]);
        }
        m_Math.SetRotationDirectionPlane1(CCW);
        m_Math.SetRawUnbalanceVectors(CW, CCW);
    }
    static void ExpectCorrection(Complex Plane1, Complex Plane2) {
        EXPECT_NEAR(std::abs(Plane1), 1.956, 0.001);
        EXPECT_NEAR(AngleDeg(Plane1), 237.44, 0.03);
        EXPECT_NEAR(std::abs(Plane2), 1.073, 0.001);
        EXPECT_NEAR(AngleDeg(Plane2), 121.09, 0.03);
    }

    const std::array<Complex, 2> m_V0 = {FromPolar(170, 112), FromPolar(53, 78)};
    const std::array<Complex, 2> m_V1 = {FromPolar(235, 94), FromPolar(58, 68)};
    const std::array<Complex, 2> m_V2 = {FromPolar(189, 115), FromPolar(77, 104)};
    Readings m_Readings;
    CTwoPlaneBalancingMath m_Math{SAMPLES};
};

// The trial weight as the one known unit, as with screws: the correction comes in units of it.
TEST_F(PublishedCase, TrialWeightAsTheUnit) {
    const CResult Result = RunMath(m_Math, m_Readings, nullptr, nullptr, CW, CCW);
    EXPECT_EQ(Result.m_Status, 0U);
    ExpectCorrection(1.15 * ToComplex(Result.m_UA1), 1.15 * ToComplex(Result.m_UA2));
}

// The trial weight as what two weights of length 1 make together, 2 cos(half their distance) = 1.15 at 0
// degrees: the correction comes in weights.
TEST_F(PublishedCase, TrialWeightAsAPairOfWeights) {
    const double Half = std::acos(0.575) * 180.0 / std::numbers::pi;
    const Matrix Pair = MakeVector(360.0 - Half, Half);
    const CResult Result = RunMath(m_Math, m_Readings, &Pair, &Pair, CW, CCW);
    ExpectCorrection(ToComplex(Result.m_UA1), ToComplex(Result.m_UA2));
}

// As the book does it: every trial weight alone. Only the way to the third reading differs.
TEST_F(PublishedCase, TrialWeightLeftOnIsNotTakenForPlane2sInfluence) {
    RunMath(m_Math, m_Readings, nullptr, nullptr, CW, CCW);
    const Complex Alpha22 = ToComplex(m_Math.GetPlane2().GetOwnWeightUnbalance());
    EXPECT_NEAR(std::abs(Alpha22 - 100.0 * (m_V2[1] - m_V0[1])), 0.0, 2.0);  // rounded to counts, twice
    const Complex Alpha12 = ToComplex(m_Math.GetPlane1().GetCrossWeightUnbalance());
    EXPECT_NEAR(std::abs(Alpha12 - 100.0 * (m_V2[0] - m_V0[0])), 0.0, 2.0);
}

/// A rotor by its physics, all vectors counter-clockwise as seen from plane 1's end: a weight at s of a scale
/// sits at +s or -s by the scale's sense seen from its own end, and sensors read a * conj(w), X negated on a
/// clockwise rotor.
struct CPhysics {
    Complex Weights(std::size_t Plane, const Matrix& rAngles) const {
        const bool bUp = (m_Scaling[Plane] == CCW) == (Plane == 0);
        Complex Sum;
        for (const std::uint32_t i : {0U, 1U}) {
            Sum += FromPolar(1.0, bUp ? rAngles(i, 0) : -rAngles(i, 0));
        }
        return Sum;
    }
    std::array<Complex, 2> Read(const Matrix& rAngles1, const Matrix& rAngles2) const {
        return ReadFitted(Weights(0, rAngles1), Weights(1, rAngles2));
    }
    /// With the vectors of what is fitted.
    std::array<Complex, 2> ReadFitted(Complex Fitted1, Complex Fitted2) const {
        const std::array<Complex, 2> w = {m_Unbalance[0] + Fitted1, m_Unbalance[1] + Fitted2};
        std::array<Complex, 2> Reading;
        for (std::size_t i = 0; i < 2; ++i) {
            const Complex Sum = m_Influence[i][0] * std::conj(w[0]) + m_Influence[i][1] * std::conj(w[1]);
            Reading[i] = m_Rotation == CW ? -std::conj(Sum) : Sum;
        }
        return Reading;
    }

    CTypeBase::Direction m_Rotation;
    std::array<CTypeBase::Direction, 2> m_Scaling;
    std::array<Complex, 2> m_Unbalance;
    std::array<std::array<Complex, 2>, 2> m_Influence;
};

class EverySense : public testing::TestWithParam<
                       std::tuple<CTypeBase::Direction, CTypeBase::Direction, CTypeBase::Direction>> {
protected:
    double Uniform(double Low, double High) {
        return Low + (High - Low) * static_cast<double>(m_Generator() >> 11U) * 0x1p-53;
    }
    Matrix AnyPositions() { return MakeVector(Uniform(0, 359), Uniform(0, 359)); }
    CPhysics MakeRotor() {
        const auto [Rotation, Scaling1, Scaling2] = GetParam();
        CPhysics Rotor{Rotation, {Scaling1, Scaling2}, {}, {}};
        for (std::size_t i = 0; i < 2; ++i) {
            Rotor.m_Unbalance[i] = FromPolar(Uniform(0.1, 1.5), Uniform(0, 360));
            Rotor.m_Influence[i][i] = FromPolar(Uniform(1000, 3000), Uniform(0, 360));
            Rotor.m_Influence[i][1 - i] = FromPolar(Uniform(50, 600), Uniform(0, 360));
        }
        return Rotor;
    }
    std::mt19937_64 m_Generator{17};
};

// The weights are never opposed here: whatever stood on the rotor is taken out.
TEST_P(EverySense, CompensationIsThatOfThePhysics) {
    for (int i = 0; i < 200; ++i) {
        const CPhysics Rotor = MakeRotor();
        const std::array<Matrix, 2> First = {AnyPositions(), AnyPositions()};
        const std::array<Matrix, 2> Tests = {AnyPositions(), AnyPositions()};
        const auto ChangeIn = [&](std::size_t Plane) {
            return std::abs(Rotor.Weights(Plane, Tests[Plane]) - Rotor.Weights(Plane, First[Plane]));
        };
        if (ChangeIn(0) < 0.5 || ChangeIn(1) < 0.5) {
            continue;  // a test run of nearly no effect
        }
        CTwoPlaneBalancingMath Math(SAMPLES);
        Math.SetRotationDirectionPlane1(Rotor.m_Rotation);
        Math.SetRawUnbalanceVectorsAngles(First[0], First[1], Rotor.m_Scaling[0], Rotor.m_Scaling[1]);
        const CResult Result = RunMath(
            Math,
            {Rotor.Read(First[0], First[1]), Rotor.Read(Tests[0], First[1]), Rotor.Read(Tests[0], Tests[1])},
            &Tests[0], &Tests[1], Rotor.m_Scaling[0], Rotor.m_Scaling[1]);
        // Whole counts: half a count in X and Y, in influences that are at least 1000.
        constexpr double TOLERANCE = 0.02;
        EXPECT_NEAR(std::abs(std::conj(ToComplex(Result.m_UA1)) + Rotor.m_Unbalance[0]), 0.0, TOLERANCE) << i;
        EXPECT_NEAR(std::abs(std::conj(ToComplex(Result.m_UA2)) + Rotor.m_Unbalance[1]), 0.0, TOLERANCE) << i;

        // Re-balancing after a change of the rotor, with the weights still at their test positions: the
        // vector that they produce is the stored one.
        CPhysics Worn = Rotor;
        Worn.m_Unbalance[0] += Complex(0.2, -0.1);
        Worn.m_Unbalance[1] += Complex(-0.1, 0.3);
        const auto Produced = [&](std::size_t Plane) {
            const Complex Vector = std::conj(Rotor.Weights(Plane, Tests[Plane]));
            return MakeVector(Vector.real(), Vector.imag());
        };
        CTwoPlaneBalancingMath Later(SAMPLES);
        Later.SetRotationDirectionPlane1(Rotor.m_Rotation);
        const auto Reading = Worn.Read(Tests[0], Tests[1]);
        Fill(Later, Reading[0], Reading[1]);
        Matrix UA1;
        Matrix UA2;
        Later.SetMatricesAndGetRebalanceResult(Result.m_InvA, Produced(0), Produced(1), UA1, UA2);
        EXPECT_NEAR(std::abs(std::conj(ToComplex(UA1)) + Worn.m_Unbalance[0]), 0.0, TOLERANCE) << i;
        EXPECT_NEAR(std::abs(std::conj(ToComplex(UA2)) + Worn.m_Unbalance[1]), 0.0, TOLERANCE) << i;
    }
}

// Weights in one plane and screws in the other, whose test is one unit in hole 1, at 0 of either scale. The
// weights start opposed, and the mathematics must know: else their sum would count as 2 in direction 0.
TEST_P(EverySense, WeightsBesideScrewsAreCompensated) {
    for (int i = 0; i < 200; ++i) {
        const CPhysics Rotor = MakeRotor();
        const bool bWeightsFirst = i % 2 == 0;
        const Matrix Positions = MakeVector(30, 180);
        const Complex Unit = 1.0;
        const Complex Test1 = bWeightsFirst ? Rotor.Weights(0, Positions) : Unit;
        const Complex Test2 = bWeightsFirst ? Unit : Rotor.Weights(1, Positions);
        CTwoPlaneBalancingMath Math(SAMPLES);
        Math.SetRotationDirectionPlane1(Rotor.m_Rotation);
        Math.SetRawUnbalanceVectors(Rotor.m_Scaling[0], Rotor.m_Scaling[1]);
        const CResult Result = RunMath(
            Math, {Rotor.ReadFitted(0, 0), Rotor.ReadFitted(Test1, 0), Rotor.ReadFitted(Test1, Test2)},
            bWeightsFirst ? &Positions : nullptr, bWeightsFirst ? nullptr : &Positions, Rotor.m_Scaling[0],
            Rotor.m_Scaling[1]);
        constexpr double eTolerance = 0.02;
        EXPECT_NEAR(std::abs(std::conj(ToComplex(Result.m_UA1)) + Rotor.m_Unbalance[0]), 0.0, eTolerance)
            << i;
        EXPECT_NEAR(std::abs(std::conj(ToComplex(Result.m_UA2)) + Rotor.m_Unbalance[1]), 0.0, eTolerance)
            << i;
    }
}

std::string NameOf(const testing::TestParamInfo<EverySense::ParamType>& rInfo) {
    const auto [Rotation, Scaling1, Scaling2] = rInfo.param;
    const auto Name = [](CTypeBase::Direction Value) { return std::string(Value == CW ? "Cw" : "Ccw"); };
    return "Rotation" + Name(Rotation) + "Scales" + Name(Scaling1) + Name(Scaling2);
}
INSTANTIATE_TEST_SUITE_P(TwoPlaneBalancingMath, EverySense,
                         testing::Combine(testing::Values(CW, CCW), testing::Values(CW, CCW),
                                          testing::Values(CW, CCW)),
                         NameOf);

/// Readings of an uncoupled rotor with influence 20 in plane 1 and 30i in plane 2, with unit tests.
const Readings g_Uncoupled = {
    {{Complex(40, 0), Complex(0, 60)}, {Complex(60, 0), Complex(0, 60)}, {Complex(60, 0), Complex(0, 90)}}};

TEST(TwoPlaneBalancingMath, ZeroCrossInfluenceSolvesEachPlaneByItself) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CCW);
    const CResult Result = RunMath(Math, g_Uncoupled, nullptr, nullptr, CW, CW);
    EXPECT_NEAR(std::abs(ToComplex(Result.m_UA1) - Complex(-2, 0)), 0.0, 1e-12);
    EXPECT_NEAR(std::abs(ToComplex(Result.m_UA2) - Complex(-2, 0)), 0.0, 1e-12);
    EXPECT_NEAR(Result.m_InvA(0, 0), 0.05, 1e-15);
    EXPECT_NEAR(Result.m_InvA(3, 2), -1.0 / 30.0, 1e-15);
    EXPECT_EQ(Result.m_InvA(0, 2), 0.0);
    EXPECT_TRUE(Math.AreMatricesBuilt());
}

TEST(TwoPlaneBalancingMath, SingularSystemAtFirstGivesZeroWithStatusZero) {
    const CLogCapture Log;
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CCW);
    // Sensor 2 is dead.
    const Readings Dead = {
        {{Complex(40, 0), Complex()}, {Complex(60, 0), Complex()}, {Complex(60, 20), Complex()}}};
    const CResult Result = RunMath(Math, Dead, nullptr, nullptr, CW, CW);
    EXPECT_EQ(Result.m_Status, 0U);
    EXPECT_TRUE(Result.m_InvA == math::MakeNull(4, 4));
    EXPECT_EQ(std::abs(ToComplex(Result.m_UA1)), 0.0);
    EXPECT_EQ(std::abs(ToComplex(Result.m_UA2)), 0.0);
    EXPECT_FALSE(Math.AreMatricesBuilt());
    EXPECT_THAT(Log.GetTexts("Warning"), Contains("m_A is singular!!"));
}

TEST(TwoPlaneBalancingMath, SingularSystemLaterGoesOnWithTheLastInverse) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CCW);
    const CResult Good = RunMath(Math, g_Uncoupled, nullptr, nullptr, CW, CW);
    // The second plane repeats the first: reading, own and cross influence.
    const Readings Same = {{{Complex(80, 0), Complex(80, 0)},
                            {Complex(100, 0), Complex(100, 0)},
                            {Complex(120, 0), Complex(120, 0)}}};
    const CResult Result = RunMath(Math, Same, nullptr, nullptr, CW, CW);
    EXPECT_TRUE(Result.m_InvA == Good.m_InvA);
    EXPECT_NEAR(std::abs(ToComplex(Result.m_UA1) - Complex(-4, 0)), 0.0, 1e-12) << "of the stale inverse";
    EXPECT_TRUE(Math.AreMatricesBuilt()) << "never back";
}

TEST(TwoPlaneBalancingMath, NoRawUnbalanceNeedsNoCompensation) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CCW);
    const Readings Balanced = {
        {{Complex(), Complex()}, {Complex(20, 0), Complex()}, {Complex(20, 0), Complex(0, 30)}}};
    const CResult Result = RunMath(Math, Balanced, nullptr, nullptr, CW, CW);
    EXPECT_EQ(std::abs(ToComplex(Result.m_UA1)), 0.0);
    EXPECT_EQ(std::abs(ToComplex(Result.m_UA2)), 0.0);
}

TEST(TwoPlaneBalancingMath, MirroredZeroStaysZero) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRawUnbalanceVectorsAngles(MakeVector(0, 90), MakeVector(0, 90), CCW, CW);
    for (const Matrix* pAngles : {&Math.GetPlane1().GetFirstDirectMeasurementWeightAngles(),
                                  &Math.GetPlane2().GetFirstCrossMeasurementWeightAngles(),
                                  &Math.GetPlane2().GetFirstDirectMeasurementWeightAngles(),
                                  &Math.GetPlane1().GetFirstCrossMeasurementWeightAngles()}) {
        EXPECT_EQ(ToComplex(*pAngles), Complex(0, 270));
    }
}

TEST(TwoPlaneBalancingMath, AnglesThatNearlyMirrorToAFullTurnBecomeZero) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRawUnbalanceVectorsAngles(MakeVector(0.005, 0.02), MakeVector(0, 180), CCW, CW);
    EXPECT_EQ(ToComplex(Math.GetPlane1().GetFirstDirectMeasurementWeightAngles()), Complex(0, 359.98));
}

TEST(TwoPlaneBalancingMath, OnlyOneSenseOfScaleIsMirroredInEachPlane) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRawUnbalanceVectorsAngles(MakeVector(10, 90), MakeVector(20, 90), CW, CCW);
    EXPECT_EQ(ToComplex(Math.GetPlane1().GetFirstDirectMeasurementWeightAngles()), Complex(10, 90));
    EXPECT_EQ(ToComplex(Math.GetPlane2().GetFirstDirectMeasurementWeightAngles()), Complex(20, 90));
    EXPECT_EQ(Math.GetPlane1().GetScalingDirection(), CW);
    EXPECT_EQ(Math.GetPlane2().GetScalingDirection(), CCW);
}

TEST(TwoPlaneBalancingMath, Plane2TurnsTheOtherWay) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CW);
    EXPECT_EQ(Math.GetPlane1().GetRotationDirection(), CW);
    EXPECT_EQ(Math.GetPlane2().GetRotationDirection(), CCW);
    Math.SetRotationDirectionPlane1(CCW);
    EXPECT_EQ(Math.GetPlane1().GetRotationDirection(), CCW);
    EXPECT_EQ(Math.GetPlane2().GetRotationDirection(), CW);
}

TEST(TwoPlaneBalancingMath, NeutralReadingDoesNotRestartTheWindows) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Fill(Math, Complex(1, 2), Complex(3, 4));
    Math.ApplyNeutralPositionXYValues();
    EXPECT_EQ(Math.AddXYValuePlane1(1, 2), 1);
    Math.RestartMeasurement();
    EXPECT_EQ(Math.AddXYValuePlane1(1, 2), 0);
    EXPECT_EQ(Math.AddXYValuePlane2(1, 2), 0);
}

TEST(TwoPlaneBalancingMath, SecondRebalanceResultMovesOnByTheSameCorrection) {
    CTwoPlaneBalancingMath Math(SAMPLES);
    Math.SetRotationDirectionPlane1(CCW);
    const CResult Good = RunMath(Math, g_Uncoupled, nullptr, nullptr, CW, CW);
    Math.SetMathMatrices(Good.m_InvA, MakeVector(1, 0), MakeVector(0, 1));
    Fill(Math, Complex(10, 0), Complex(0, 15));
    Matrix UA1;
    Matrix UA2;
    Math.GetRebalanceResult(UA1, UA2);
    EXPECT_NEAR(std::abs(ToComplex(UA1) - Complex(0.5, 0)), 0.0, 1e-12);
    EXPECT_NEAR(std::abs(ToComplex(UA2) - Complex(-0.5, 1)), 0.0, 1e-12);
    const Matrix Before = UA1;
    Math.GetRebalanceResult(UA1, UA2);
    EXPECT_NEAR(std::abs(ToComplex(UA1)), 0.0, 1e-12);
    EXPECT_NEAR(std::abs(ToComplex(UA2) - Complex(-1, 1)), 0.0, 1e-12);
    EXPECT_NEAR(Before(0, 0), 0.5, 1e-12) << "results have storage of their own";
    EXPECT_EQ(ToComplex(Math.GetPlane2().GetUA()), ToComplex(UA2));
}

TEST(TwoPlaneBalancingMath, DumpsOfTheCorrectionKeepTheirNames) {
    const CLogCapture Log(true);
    CTwoPlaneBalancingMath Math(SAMPLES);
    Fill(Math, Complex(1, 2), Complex(3, 4));
    Matrix UA1;
    Matrix UA2;
    Math.SetMatricesAndGetRebalanceResult(math::MakeNull(4, 4), MakeVector(1, 0), MakeVector(0, 1), UA1, UA2);
    for (const char* pName :
         {"m_UA before correction =", "K: correction value, measured =", "m_UA original =",
          "K: correction value, after InvA  =", "m_UA after correction =", "rUAPlane2 ="}) {
        EXPECT_THAT(Log.GetTexts("PbMath"), Contains(testing::StartsWith(pName)));
    }
    EXPECT_THAT(Log.GetTexts("PbFlow"), Contains("CTwoPlaneBalancingMath::GetRebalanceResult() called"));
}

}  // namespace
