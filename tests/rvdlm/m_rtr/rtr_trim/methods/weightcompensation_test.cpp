#include "rvdlm/m_rtr/rtr_trim/methods/weightcompensation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "rvlib/math/vector.h"
#include "tests/support/logcapture.h"

namespace {

using math::MakeVector;
using PreBalDB::CTypeBase;
using Matrix = math::matrix<double>;
using Positions = std::pair<int, int>;

constexpr auto CW = CTypeBase::eClockwise;
constexpr auto CCW = CTypeBase::eCounterClockwise;
constexpr double DEGREE = std::numbers::pi / 180.0;

Positions PositionsOf(CTypeBase::Direction Scaling, unsigned Plane, const Matrix& rUA) {
    int Angle1 = -1;
    int Angle2 = -1;
    CWeightCompensation(Scaling, Plane).UA2Angles(rUA, Angle1, Angle2, nullptr);
    return {Angle1, Angle2};
}

/// The vector of two weights Half degrees to each side of Angle: the raw positions are Angle + Half and Angle
/// - Half.
Matrix Pair(double Angle, double Half) {
    const double Length = 2.0 * std::cos(Half * DEGREE);
    return MakeVector(Length * std::cos(Angle * DEGREE), Length * std::sin(Angle * DEGREE));
}

TEST(WeightCompensation, NoVectorOpposesTheWeights) {
    double Percent = -1.0;
    int Angle1 = -1;
    int Angle2 = -1;
    EXPECT_TRUE(CWeightCompensation(CW, 0).UA2Angles(MakeVector(0, 0), Angle1, Angle2, &Percent));
    EXPECT_EQ(Positions(Angle1, Angle2), Positions(90, 270));
    EXPECT_EQ(Percent, 0.0);
}

TEST(WeightCompensation, TheLimitIsWithinTheCapacity) {
    double Percent = -1.0;
    int Angle1 = -1;
    int Angle2 = -1;
    EXPECT_TRUE(CWeightCompensation(CW, 0).UA2Angles(MakeVector(1.95, 0), Angle1, Angle2, &Percent));
    EXPECT_EQ(Percent, 0.0);
    EXPECT_EQ(Positions(Angle1, Angle2), Positions(13, 347));  // 12.84 degrees to each side
}

TEST(WeightCompensation, BeyondTheCapacityBothWeightsStandInTheDirection) {
    double Percent = -1.0;
    int Angle1 = -1;
    int Angle2 = -1;
    EXPECT_FALSE(CWeightCompensation(CW, 0).UA2Angles(MakeVector(2, 0), Angle1, Angle2, &Percent));
    EXPECT_EQ(Positions(Angle1, Angle2), Positions(0, 0));
    EXPECT_DOUBLE_EQ(Percent, (2.0 - 1.95) / 1.95 * 100.0);
    EXPECT_FALSE(CWeightCompensation(CW, 0).UA2Angles(MakeVector(0, -3.9), Angle1, Angle2, &Percent));
    EXPECT_EQ(Positions(Angle1, Angle2), Positions(270, 270));
    EXPECT_DOUBLE_EQ(Percent, 100.0);
}

TEST(WeightCompensation, PercentageMayBeLeftOut) {
    EXPECT_EQ(PositionsOf(CW, 0, MakeVector(0, 2)), Positions(90, 90));
}

TEST(WeightCompensation, ExactlyHalfADegreeRoundsDown) {
    EXPECT_EQ(PositionsOf(CW, 0, Pair(45.5, 0)), Positions(45, 45));
    EXPECT_EQ(PositionsOf(CW, 0, Pair(45.51, 0)), Positions(46, 46));
    EXPECT_EQ(PositionsOf(CW, 0, Pair(45.49, 0)), Positions(45, 45));
}

/// Positions by the ordering rule that applies; worked out by hand. A1 = Angle + Half and A2 = Angle - Half,
/// and on a counter-clockwise scale M = 360 - A.
struct COrderCase {
    const char* m_pName;
    CTypeBase::Direction m_Scaling;
    unsigned m_Plane;
    double m_Angle;
    double m_Half;
    Positions m_Expected;
};

class WeightCompensationOrder : public testing::TestWithParam<COrderCase> {};

TEST_P(WeightCompensationOrder, GivesThePositions) {
    const COrderCase& rCase = GetParam();
    EXPECT_EQ(PositionsOf(rCase.m_Scaling, rCase.m_Plane, Pair(rCase.m_Angle, rCase.m_Half)),
              rCase.m_Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, WeightCompensationOrder,
    testing::Values(COrderCase{"OneUpTo90", CW, 0, 20, 30, {50, 350}},
                    COrderCase{"OneExactly90", CW, 0, 130, 40, {90, 170}},
                    COrderCase{"BothUpTo180", CW, 0, 135, 20, {115, 155}},
                    COrderCase{"BothFrom180", CW, 0, 225, 20, {245, 205}},
                    // Exactly 180 belongs to both halves of the turn; the lower half is asked first.
                    COrderCase{"FirstExactly180", CW, 0, 165, 15, {150, 180}},
                    COrderCase{"SecondExactly180", CW, 0, 200, 20, {220, 180}},
                    COrderCase{"FirstBelowSecondAbove", CW, 0, 20, 80, {300, 100}},
                    COrderCase{"FirstAboveSecondNearer", CW, 0, 180, 30, {210, 150}},
                    COrderCase{"FirstAboveSecondFarther", CW, 0, 190, 30, {160, 220}},
                    // First plane, counter-clockwise: turned twice, so that the ordered M stand as they are.
                    COrderCase{"CounterOneUpTo90", CCW, 0, 315, 20, {25, 65}},
                    COrderCase{"CounterBothUpTo180", CCW, 0, 135, 20, {205, 245}},
                    COrderCase{"CounterBothFrom180", CCW, 0, 225, 20, {155, 115}},
                    COrderCase{"CounterOneAt0OneAt180", CCW, 0, 270, 90, {180, 0}},  // M would be (360, 180)
                    COrderCase{"CounterFirstBelowRaw", CCW, 0, 325, 75, {40, 250}},  // M would be (320, 110)
                    COrderCase{"CounterOneExactly90", CCW, 0, 355, 85, {90, 280}},
                    COrderCase{"CounterFirstAboveNearer", CCW, 0, 180, 30, {150, 210}},
                    COrderCase{"CounterFirstAboveFarther", CCW, 0, 190, 30, {200, 140}},
                    // Second plane: clockwise turned once at the end, counter-clockwise turned once before.
                    COrderCase{"SecondPlaneOneUpTo90", CW, 1, 20, 30, {310, 10}},
                    COrderCase{"SecondPlaneBothFrom180", CW, 1, 225, 20, {115, 155}},
                    COrderCase{"SecondPlaneCounterOneUpTo90", CCW, 1, 315, 20, {335, 295}},
                    COrderCase{"SecondPlaneCounterBothUpTo180", CCW, 1, 135, 20, {155, 115}},
                    // The raw 0 becomes 360, and stays so.
                    COrderCase{"SecondPlaneCounterRawZero", CCW, 1, 300, 60, {360, 120}}),
    [](const auto& rInfo) { return std::string(rInfo.param.m_pName); });

TEST(WeightCompensation, AnotherPlaneIsNotTurned) {
    EXPECT_EQ(PositionsOf(CW, 2, Pair(20, 30)), PositionsOf(CW, 0, Pair(20, 30)));
    EXPECT_EQ(PositionsOf(CCW, 2, Pair(315, 20)), Positions(335, 295));
}

TEST(WeightCompensation, OpposedWeightsGiveNoVector) {
    Matrix UA = MakeVector(9, 9);
    EXPECT_TRUE(CWeightCompensation(CW, 0).Angles2UA(0, 180, UA));
    EXPECT_NEAR(UA.Norm(), 0.0, 1e-15);
    CWeightCompensation(CW, 0).Angles2UA(90, 270, UA);
    EXPECT_NEAR(UA.Norm(), 0.0, 1e-15);
}

TEST(WeightCompensation, PositionsGiveTheSumOfTwoUnitVectors) {
    Matrix UA = MakeVector(0, 0);
    CWeightCompensation(CW, 0).Angles2UA(0, 90, UA);
    EXPECT_NEAR(UA(0, 0), 1.0, 1e-15);
    EXPECT_NEAR(UA(1, 0), 1.0, 1e-15);
    CWeightCompensation(CW, 0).Angles2UA(270, 270, UA);  // no x component: a branch of its own
    EXPECT_NEAR(UA(0, 0), 0.0, 1e-15);
    EXPECT_NEAR(UA(1, 0), -2.0, 1e-15);
    CWeightCompensation(CW, 0).Angles2UA(60, 120, UA);
    EXPECT_NEAR(UA(0, 0), 0.0, 1e-15);
    EXPECT_NEAR(UA(1, 0), std::sqrt(3.0), 1e-15);
}

TEST(WeightCompensation, ScaleAndPlaneOfOppositeSensesTurnTheVector) {
    for (const auto& [Scaling, Plane, Y] :
         {std::tuple{CW, 0U, 1.0}, {CCW, 0U, -1.0}, {CW, 1U, -1.0}, {CCW, 1U, 1.0}}) {
        Matrix UA = MakeVector(0, 0);
        CWeightCompensation(Scaling, Plane).Angles2UA(0, 90, UA);
        EXPECT_NEAR(UA(1, 0), Y, 1e-15);
    }
}

TEST(WeightCompensation, AnglesOutOfRangeAreAssertedAndComputedOn) {
    const CLogCapture Capture;
    Matrix UA = MakeVector(0, 0);
    EXPECT_TRUE(CWeightCompensation(CCW, 1).Angles2UA(360, 120, UA));
    EXPECT_EQ(Capture.GetAssertions(), std::vector<std::string>{"invalid angles"});
    EXPECT_EQ(Capture.GetRecords().back().m_Expression,
              "(abs(rAngleWeight1) < 360) && (abs(rAngleWeight2) < 360)");
    EXPECT_NEAR(UA(0, 0), 0.5, 1e-15);
    EXPECT_NEAR(UA(1, 0), std::sqrt(0.75), 1e-15);
}

TEST(WeightCompensation, NegativeAnglesDownToMinus359AreInOrder) {
    const CLogCapture Capture;
    Matrix UA = MakeVector(0, 0);
    CWeightCompensation(CW, 0).Angles2UA(-359, 359, UA);
    EXPECT_TRUE(Capture.GetAssertions().empty());
}

TEST(WeightCompensation, ThereAndBackReproducesTheVectorOnAClockwiseScale) {
    std::mt19937 Generator(7);
    std::uniform_real_distribution<double> Angle(0.0, 360.0);
    std::uniform_real_distribution<double> Length(0.0, 1.95);
    for (int i = 0; i < 2000; ++i) {
        const double l = Length(Generator);
        const double a = Angle(Generator) * DEGREE;
        const Matrix UA = MakeVector(l * std::cos(a), l * std::sin(a));
        const auto [Angle1, Angle2] = PositionsOf(CW, 0, UA);
        Matrix Back = MakeVector(0, 0);
        CWeightCompensation(CW, 0).Angles2UA(Angle1, Angle2, Back);
        // Each position off by half a degree at most: a chord of 2 sin(0.25 degrees) each.
        EXPECT_LE((Back - UA).Norm(), 4.0 * std::sin(0.25 * DEGREE) + 1e-12);
    }
}

TEST(WeightCompensation, BeyondTheCapacityThereAndBackGivesLengthTwo) {
    const auto [Angle1, Angle2] = PositionsOf(CW, 0, MakeVector(-3, 3));
    EXPECT_EQ(Positions(Angle1, Angle2), Positions(135, 135));
    Matrix Back = MakeVector(0, 0);
    CWeightCompensation(CW, 0).Angles2UA(Angle1, Angle2, Back);
    EXPECT_NEAR(Back(0, 0), -std::sqrt(2.0), 1e-12);
    EXPECT_NEAR(Back(1, 0), std::sqrt(2.0), 1e-12);
}

TEST(WeightCompensation, VectorWithoutSecondRowThrows) {
    Matrix Short(1, 1);
    Short(0, 0) = 1.0;
    try {
        PositionsOf(CW, 0, Short);
        FAIL() << "nothing thrown";
    } catch (const math::matrix_error& rError) {
        EXPECT_STREQ(rError.what(), "matrixT::operator(): Index out of range!");
    }
}

TEST(WeightCompensation, WhatIsNoNumberGivesDefinedPositions) {
    const double NaN = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(PositionsOf(CW, 0, MakeVector(NaN, NaN)), Positions(0, 0));
}

TEST(WeightCompensation, LogsCallsAndResults) {
    const CLogCapture Capture(true);
    const CWeightCompensation Compensation(CW, 0);
    int Angle1 = 0;
    int Angle2 = 0;
    Compensation.UA2Angles(MakeVector(0.5, -0.25), Angle1, Angle2, nullptr);
    Matrix UA = MakeVector(0, 0);
    Compensation.Angles2UA(30, 180, UA);
    EXPECT_EQ(Capture.GetTexts("PbFlow"),
              (std::vector<std::string>{"CWeightCompensation::UA2Angles() called with (0.5000 -0.2500)",
                                        "CWeightCompensation::Angles2UA(30, 180, rUA) called"}));
    const auto Math = Capture.GetTexts("PbMath");
    ASSERT_EQ(Math.size(), 6U);
    EXPECT_EQ(Math[0], "UA = |    0.5000  |");
    EXPECT_EQ(Math[1], "     |   -0.2500  |");
    // Length 0.559, so 73.77 degrees to each side of -26.57.
    EXPECT_EQ(Math[2], "UA2Angles returns: AngleWeight1: 47 AngleWeight2: 260");
    EXPECT_EQ(Math[3], "Angles2UA returns");
}

}  // namespace
