#include "archive/iso21940.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

#include "tests/support/runrecords.h"

namespace {

using RunRecords::Complex;
using RunRecords::MakeBlocks;

CIsoData MakeData(double Mass, double Speed, double Grade) {
    CIsoData Data;
    Data.m_RotorMass = Mass;
    Data.m_ServiceSpeed = Speed;
    Data.m_Grade = Grade;
    return Data;
}

CIso21940::CScale MakeSingle(double CountsPerWeight, double Unit, bool bClockwise = true) {
    return {{true, false}, {Unit, 0.0}, MakeBlocks({{1.0 / Complex(CountsPerWeight, 0.0)}}), bClockwise};
}

CIso21940::CReading MakeReading(double X, double Y, double VarianceX, double VarianceY) {
    return {{X, Y}, true, VarianceX, VarianceY, 0.0};
}

}  // namespace

// The standard's own figure: grade G 6.3 at 3000 rpm allows an eccentricity of 20 µm.
TEST(Iso21940, PublishedPermissibleUnbalanceOfG6_3At3000) {
    EXPECT_NEAR(*CIso21940(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 1)).GetPermissible(), 20.05, 0.005);
    // A pump impeller of 12 kg at 6000 rpm, G 2.5: 1000 * 12 * 2.5 / 628.32.
    EXPECT_NEAR(*CIso21940(MakeData(12.0, 6000.0, 2.5), MakeSingle(100, 1)).GetPermissible(), 47.75, 0.005);
}

TEST(Iso21940, WithoutMassSpeedOrGradeNothingIsPermissible) {
    EXPECT_FALSE(CIso21940(MakeData(0.0, 3000.0, 6.3), MakeSingle(100, 1)).GetPermissible());
    EXPECT_FALSE(CIso21940(MakeData(1.0, 0.0, 6.3), MakeSingle(100, 1)).GetPermissible());
    EXPECT_FALSE(CIso21940(MakeData(1.0, 3000.0, 0.0), MakeSingle(100, 1)).GetPermissible());
    EXPECT_FALSE(CIso21940(MakeData(0.0, 3000.0, 6.3), MakeSingle(100, 1)).GetTarget(6.3));
    EXPECT_FALSE(CIso21940(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 0)).GetTarget(6.3)) << "no unit";
}

TEST(Iso21940, ASinglePlaneGetsAllAndTwoHalfEach) {
    CIso21940::CScale Scale = MakeSingle(100, 1);
    EXPECT_EQ(CIso21940(MakeData(1, 3000, 6.3), Scale).GetShare(0), 1.0);
    EXPECT_EQ(CIso21940(MakeData(1, 3000, 6.3), Scale).GetShare(1), 0.0);
    EXPECT_FALSE(CIso21940(MakeData(1, 3000, 6.3), Scale).GetPermissible(1));
    Scale.m_bBalanced = {true, true};
    EXPECT_EQ(CIso21940(MakeData(1, 3000, 6.3), Scale).GetShare(0), 0.5);
    EXPECT_NEAR(*CIso21940(MakeData(1, 3000, 6.3), Scale).GetPermissible(1), 10.03, 0.005);
}

TEST(Iso21940, ThePlaneNearerToTheCentreOfMassGetsMoreButWithinLimits) {
    CIso21940::CScale Scale = MakeSingle(100, 1);
    Scale.m_bBalanced = {true, true};
    CIsoData Data = MakeData(1, 3000, 6.3);
    Data.m_Distance = {40.0, 60.0};
    EXPECT_NEAR(CIso21940(Data, Scale).GetShare(0), 0.6, 1e-12);
    EXPECT_NEAR(CIso21940(Data, Scale).GetShare(1), 0.4, 1e-12);
    Data.m_Distance = {10.0, 90.0};
    EXPECT_EQ(CIso21940(Data, Scale).GetShare(0), 0.7);
    EXPECT_EQ(CIso21940(Data, Scale).GetShare(1), 0.3);
}

// 100 counts a weight, a weight of 45 g·mm: 5 counts are 2.25 g·mm.
TEST(Iso21940, ReadingsBecomeUnbalanceByTheInfluence) {
    const CIso21940 Iso(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 45));
    const auto Residuals = Iso.GetResiduals({MakeReading(3.0, 4.0, 0.01, 0.01), {}});
    ASSERT_TRUE(Residuals[0]);
    EXPECT_FALSE(Residuals[1]);
    EXPECT_NEAR(Residuals[0]->m_Amount, 2.25, 1e-12);
    // A tenth of a count each way: 1.96 * 0.1 * 0.45 g·mm.
    EXPECT_NEAR(*Residuals[0]->m_Uncertainty95, 0.0882, 1e-4);
    EXPECT_NEAR(*Iso.GetReached(Residuals), 6.3 * 2.25 / 20.0535, 1e-4);
}

TEST(Iso21940, ScatterAcrossTheReadingCountsForNothing) {
    const CIso21940 Iso(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 45));
    EXPECT_NEAR(*Iso.GetResiduals({MakeReading(5.0, 0.0, 0.0, 4.0), {}})[0]->m_Uncertainty95, 0.0, 1e-12);
    EXPECT_NEAR(*Iso.GetResiduals({MakeReading(5.0, 0.0, 4.0, 0.0), {}})[0]->m_Uncertainty95,
                1.96 * 2.0 * 0.45, 1e-3);
}

TEST(Iso21940, WithoutScatterTheUncertaintyIsNotKnown) {
    const CIso21940 Iso(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 45));
    EXPECT_FALSE(Iso.GetResiduals({CIso21940::CReading{{5.0, 0.0}}, {}})[0]->m_Uncertainty95);
}

// The rotor's own physics: readings of known unbalances in both planes, in the frame of a rotor that turns
// counter-clockwise, and with X turned round for one that turns clockwise.
TEST(Iso21940, TwoCoupledPlanesGiveTheirOwnUnbalancesBack) {
    const std::vector<std::vector<Complex>> Influence = {{{120, 40}, {30, -20}}, {{-15, 25}, {90, 60}}};
    const Complex Det = Influence[0][0] * Influence[1][1] - Influence[0][1] * Influence[1][0];
    const auto InvA = MakeBlocks(
        {{Influence[1][1] / Det, -Influence[0][1] / Det}, {-Influence[1][0] / Det, Influence[0][0] / Det}});
    const Complex Left[] = {std::polar(0.3, 1.0), std::polar(0.1, -2.0)};  // weights
    for (const bool bClockwise : {false, true}) {
        CIso21940::CReadings Readings;
        for (std::size_t p = 0; p < 2; ++p) {
            const Complex Reading = Influence[p][0] * Left[0] + Influence[p][1] * Left[1];
            Readings[p] =
                MakeReading(bClockwise ? -Reading.real() : Reading.real(), Reading.imag(), 0.0, 0.0);
        }
        CIsoData Data = MakeData(2.0, 3000.0, 6.3);
        Data.m_Distance = {40.0, 60.0};
        const CIso21940 Iso(Data, {{true, true}, {50.0, 80.0}, InvA, bClockwise});
        const auto Residuals = Iso.GetResiduals(Readings);
        EXPECT_NEAR(Residuals[0]->m_Amount, 0.3 * 50.0, 1e-9);
        EXPECT_NEAR(Residuals[1]->m_Amount, 0.1 * 80.0, 1e-9);
        // Plane 1 may have 0.6 * 40.107 g·mm for G 6.3.
        EXPECT_NEAR(*Iso.GetReached(Residuals), 6.3 * 15.0 / (0.6 * 40.107), 1e-4);
    }
}

// Simulated: of many means that scatter, 95 % of the intervals hold the residual that is there.
TEST(Iso21940, TheUncertaintyHoldsWhatItSays) {
    std::mt19937 Random(5);
    std::normal_distribution<double> Noise(0.0, 0.2);
    const CIso21940 Iso(MakeData(1.0, 3000.0, 6.3), MakeSingle(80, 30, false));
    const double Truth = std::hypot(6.0, 2.5) / 80.0 * 30.0;
    constexpr int RUNS = 20000;
    int nInside = 0;
    for (int i = 0; i < RUNS; ++i) {
        const auto Residuals =
            Iso.GetResiduals({MakeReading(6.0 + Noise(Random), 2.5 + Noise(Random), 0.04, 0.04), {}});
        nInside += std::abs(Residuals[0]->m_Amount - Truth) <= *Residuals[0]->m_Uncertainty95 ? 1 : 0;
    }
    EXPECT_NEAR(static_cast<double>(nInside) / RUNS, 0.95, 0.005);
}

TEST(Iso21940, TargetAndGradeAreEachOthersInverse) {
    const CIso21940 Iso(MakeData(1.0, 3000.0, 6.3), MakeSingle(100, 45));
    // 20.0535 g·mm of 0.45 g·mm a count.
    EXPECT_NEAR(*Iso.GetTarget(6.3), 44.56, 0.005);
    EXPECT_NEAR(*Iso.GetGrade(44.56), 6.3, 0.001);
    EXPECT_FALSE(Iso.GetTarget(0.0));
}

// A reading within the target proves the grade in both planes, whatever the directions; one of the worst
// directions needs all of it.
TEST(Iso21940, TheTargetOfTwoPlanesProvesTheGradeInAllDirections) {
    const auto InvA = MakeBlocks({{{0.008, 0.001}, {-0.002, 0.003}}, {{0.001, -0.002}, {0.012, 0.0}}});
    const CIso21940 Iso(MakeData(3.0, 4500.0, 2.5), {{true, true}, {50.0, 80.0}, InvA, false});
    const double Target = *Iso.GetTarget(2.5);
    double Worst = 0.0;
    constexpr int STEPS = 180;
    for (int i = 0; i < STEPS; ++i) {
        for (int j = 0; j < STEPS; ++j) {
            const Complex a = std::polar(Target, i * 2.0 * std::numbers::pi / STEPS);
            const Complex b = std::polar(Target, j * 2.0 * std::numbers::pi / STEPS);
            const auto Residuals = Iso.GetResiduals(
                {CIso21940::CReading{{a.real(), a.imag()}}, CIso21940::CReading{{b.real(), b.imag()}}});
            Worst = std::max(Worst, *Iso.GetReached(Residuals));
        }
    }
    EXPECT_LE(Worst, 2.5 + 1e-9);
    EXPECT_GE(Worst, 2.5 * 0.999);
}

TEST(Iso21940, AnInfluenceOfAnotherShapeOrWithoutValuesSaysNothing) {
    CIso21940::CScale Scale = MakeSingle(100, 45);
    Scale.m_bBalanced = {true, true};
    Scale.m_Unit = {45.0, 45.0};
    EXPECT_FALSE(CIso21940(MakeData(1, 3000, 6.3), Scale).GetTarget(6.3));
    EXPECT_FALSE(CIso21940(MakeData(1, 3000, 6.3), Scale).GetResiduals({})[0]);
    Scale = MakeSingle(100, 45);
    Scale.m_InvA.Null();
    EXPECT_FALSE(CIso21940(MakeData(1, 3000, 6.3), Scale).GetTarget(6.3));
    Scale.m_InvA(0, 0) = std::nan("");
    EXPECT_FALSE(CIso21940(MakeData(1, 3000, 6.3), Scale).GetTarget(6.3));
}
