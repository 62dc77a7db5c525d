#include "simulator/rotor.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Vector = CRotor::Vector;

void ExpectVector(Vector Value, double X, double Y) {
    EXPECT_NEAR(Value.real(), X, 1e-6);
    EXPECT_NEAR(Value.imag(), Y, 1e-6);
}

CRotorFile MakeFile(CRotorFile::Sense Rotation, CRotorFile::Sense Scale) {
    CRotorFile File;
    File.m_Rotation = Rotation;
    File.m_Planes[0].m_Scale = Scale;
    return File;
}

// Worked out on paper. The rotor's own 0.8 at 123 degrees gives 150 * 0.8 = 120 counts at 40 - 123 = -83
// degrees: X 14.624321, Y -119.105538. A weight at 30 on the scale adds 150 counts at 40 - 30 = 10 degrees
// with the scale counter-clockwise (X 147.721163, Y 26.047227), and at 40 + 30 = 70 with the scale clockwise
// (X 51.303021, Y 140.953893). A rotor that turns clockwise has X with the opposite sign.
TEST(RotorTest, OwnUnbalanceReadsAsOnPaperTurningCounterClockwise) {
    const CRotor Rotor(MakeFile(CRotorFile::eCounterClockwise, CRotorFile::eClockwise));
    ExpectVector(Rotor.GetReading(0), 14.624321, -119.105538);
}

TEST(RotorTest, OwnUnbalanceReadsWithXNegatedTurningClockwise) {
    const CRotor Rotor(MakeFile(CRotorFile::eClockwise, CRotorFile::eClockwise));
    ExpectVector(Rotor.GetReading(0), -14.624321, -119.105538);
}

struct CSenseCase {
    CRotorFile::Sense m_Rotation;
    CRotorFile::Sense m_Scale;
    double m_X;
    double m_Y;
};
class RotorSenseTest : public testing::TestWithParam<CSenseCase> {};

TEST_P(RotorSenseTest, AWeightReadsAsOnPaper) {
    CRotor Rotor(MakeFile(GetParam().m_Rotation, GetParam().m_Scale));
    Rotor.FitWeights(0, {30});
    ExpectVector(Rotor.GetReading(0), GetParam().m_X, GetParam().m_Y);
}

INSTANTIATE_TEST_SUITE_P(
    AllFour, RotorSenseTest,
    testing::Values(
        CSenseCase{CRotorFile::eCounterClockwise, CRotorFile::eCounterClockwise, 162.345484, -93.058311},
        CSenseCase{CRotorFile::eCounterClockwise, CRotorFile::eClockwise, 65.927343, 21.848355},
        CSenseCase{CRotorFile::eClockwise, CRotorFile::eCounterClockwise, -162.345484, -93.058311},
        CSenseCase{CRotorFile::eClockwise, CRotorFile::eClockwise, -65.927343, 21.848355}),
    [](const auto& rInfo) {
        const auto Name = [](CRotorFile::Sense Sense) {
            return Sense == CRotorFile::eClockwise ? "Cw" : "Ccw";
        };
        return std::string("Rotation") + Name(rInfo.param.m_Rotation) + "Scale" + Name(rInfo.param.m_Scale);
    });

CRotorFile MakeTwoPlaneFile() {
    CRotorFile File = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    File.m_Rotation = CRotorFile::eCounterClockwise;
    File.m_Planes[0].m_Unbalance.m_Amount = 0.0;
    File.m_Planes[1].m_Unbalance.m_Amount = 0.0;
    File.m_Influence = {{{100.0, 0.0}, {50.0, 90.0}}, {{20.0, 180.0}, {200.0, 0.0}}};
    return File;
}

// A weight at 90 on a clockwise scale lies at -90 in plane 1, and at +90 in plane 2, whose scale is looked at
// from the other end. Sensor 1 reads 100 * (i) + 50i * (-i) = 50 + 100i, sensor 2 reads -20 * (i) + 200 *
// (-i) = -220i.
TEST(RotorTest, Plane2IsSeenFromTheOppositeEnd) {
    CRotor Rotor(MakeTwoPlaneFile());
    Rotor.FitWeights(0, {90});
    Rotor.FitWeights(1, {90});
    ExpectVector(Rotor.GetResidual(0), 0.0, -1.0);
    ExpectVector(Rotor.GetResidual(1), 0.0, 1.0);
    ExpectVector(Rotor.GetReading(0), 50.0, 100.0);
    ExpectVector(Rotor.GetReading(1), 0.0, -220.0);
}

TEST(RotorTest, ACounterClockwiseScaleInPlane2CountsDownwardsSeenFromPlane1) {
    CRotorFile File = MakeTwoPlaneFile();
    File.m_Planes[1].m_Scale = CRotorFile::eCounterClockwise;
    CRotor Rotor(File);
    Rotor.FitWeights(1, {90});
    ExpectVector(Rotor.GetResidual(1), 0.0, -1.0);
}

TEST(RotorTest, ScaleAndRotationAreIndependent) {
    for (const auto Rotation : {CRotorFile::eClockwise, CRotorFile::eCounterClockwise}) {
        CRotor Rotor(MakeFile(Rotation, CRotorFile::eCounterClockwise));
        Rotor.SetUnbalance(0, 0.0, 0.0);
        Rotor.FitWeights(0, {90});
        ExpectVector(Rotor.GetResidual(0), 0.0, 1.0);
    }
}

// Hole 4 of 12 is at 90 degrees of the scale, hole 7 at 180.
TEST(RotorTest, HolesCountFromOneInTheSenseOfTheScale) {
    CRotor Rotor(MakeFile(CRotorFile::eClockwise, CRotorFile::eCounterClockwise));
    Rotor.SetUnbalance(0, 0.0, 0.0);
    Rotor.FitScrews(0, {{1, 2.0}, {4, 1.5}, {7, 0.5}});
    ExpectVector(Rotor.GetResidual(0), 1.5, 1.5);

    CRotor Clockwise(MakeFile(CRotorFile::eClockwise, CRotorFile::eClockwise));
    Clockwise.SetUnbalance(0, 0.0, 0.0);
    Clockwise.FitScrews(0, {{1, 2.0}, {4, 1.5}, {7, 0.5}});
    ExpectVector(Clockwise.GetResidual(0), 1.5, -1.5);
}

TEST(RotorTest, TwoWeightsOppositeToTheUnbalanceCancelIt) {
    CRotorFile File = MakeFile(CRotorFile::eClockwise, CRotorFile::eCounterClockwise);
    File.m_Planes[0].m_Unbalance = {1.0, 100.0};
    CRotor Rotor(File);
    // 60 degrees to each side of the opposite direction: together one weight's length.
    Rotor.FitWeights(0, {220, 340});
    EXPECT_NEAR(std::abs(Rotor.GetResidual(0)), 0.0, 1e-12);
    ExpectVector(Rotor.GetReading(0), 0.0, 0.0);
}

TEST(RotorTest, FittingReplacesWhatWasFittedOfItsKind) {
    CRotor Rotor(MakeFile(CRotorFile::eClockwise, CRotorFile::eCounterClockwise));
    Rotor.SetUnbalance(0, 0.0, 0.0);
    Rotor.FitWeights(0, {90});
    Rotor.FitWeights(0, {0});
    ExpectVector(Rotor.GetResidual(0), 1.0, 0.0);
    Rotor.FitScrews(0, {{4, 3.0}});
    ExpectVector(Rotor.GetResidual(0), 1.0, 3.0);
    Rotor.FitWeights(0, {});
    ExpectVector(Rotor.GetResidual(0), 0.0, 3.0);
    Rotor.FitScrews(0, {});
    ExpectVector(Rotor.GetResidual(0), 0.0, 0.0);
}

TEST(RotorTest, AWornWheelIsANewUnbalance) {
    CRotor Rotor{CRotorFile{}};
    Rotor.SetUnbalance(0, 2.0, 90.0);
    ExpectVector(Rotor.GetResidual(0), 0.0, 2.0);
}

TEST(RotorTest, ADeadSensorReadsNothingWhateverIsFitted) {
    CRotorFile File;
    File.m_Influence = {{{0.0, 40.0}}};
    CRotor Rotor(File);
    Rotor.FitWeights(0, {0, 0});
    ExpectVector(Rotor.GetReading(0), 0.0, 0.0);
}

TEST(RotorTest, CountsAreRoundedAndLimitedToSixteenBits) {
    EXPECT_EQ(CRotor::ToCounts(0.49), 0);
    EXPECT_EQ(CRotor::ToCounts(0.5), 1);
    EXPECT_EQ(CRotor::ToCounts(-0.5), -1);
    EXPECT_EQ(CRotor::ToCounts(-127.6), -128);
    EXPECT_EQ(CRotor::ToCounts(32767.4), 32767);
    EXPECT_EQ(CRotor::ToCounts(40000.0), 32767);
    EXPECT_EQ(CRotor::ToCounts(-40000.0), -32768);
}

TEST(RotorTest, AnglesRunFromZeroToBelowThreeSixty) {
    EXPECT_DOUBLE_EQ(CRotor::AngleDeg({1.0, 0.0}), 0.0);
    EXPECT_DOUBLE_EQ(CRotor::AngleDeg({0.0, 2.0}), 90.0);
    EXPECT_DOUBLE_EQ(CRotor::AngleDeg({-1.0, 0.0}), 180.0);
    EXPECT_DOUBLE_EQ(CRotor::AngleDeg({0.0, -1.0}), 270.0);
    // So little below 0 that 360 would come of it.
    EXPECT_DOUBLE_EQ(CRotor::AngleDeg({1.0, -1e-300}), 0.0);
}

}  // namespace
