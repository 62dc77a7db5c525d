#include "archive/noisemodel.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Complex = std::complex<double>;

CMeasuredPlane MakePlane(std::size_t nReadings, double Variance) {
    CMeasuredPlane Plane;
    Plane.m_nReadings = nReadings;
    Plane.m_VarianceX = Plane.m_VarianceY = Variance;
    return Plane;
}

}  // namespace

// By hand: a factor of i turns X into Y and Y into -X.
TEST(NoiseModel, CovarianceTurnsWithItsFactor) {
    const CCovariance Turned = CCovariance{4.0, 1.0, 0.5}.Times(Complex(0.0, 2.0));
    EXPECT_NEAR(Turned.m_XX, 4.0, 1e-12);
    EXPECT_NEAR(Turned.m_YY, 16.0, 1e-12);
    EXPECT_NEAR(Turned.m_XY, -2.0, 1e-12);
}

// By hand: (2, 0) with a variance of 4 along X is one standard deviation.
TEST(NoiseModel, SquaredDistanceByHand) {
    EXPECT_NEAR((CCovariance{4.0, 1.0, 0.0}.GetSquaredDistance({2.0, 3.0})), 10.0, 1e-12);
    EXPECT_EQ(CCovariance{}.GetSquaredDistance(0.0), 0.0);
    EXPECT_TRUE(std::isinf(CCovariance{}.GetSquaredDistance(1.0)));
}

TEST(NoiseModel, FewerThanFiveReadingsTellNoScatter) {
    EXPECT_FALSE(NoiseModel::IsScatterKnown(MakePlane(4, 1.0)));
    EXPECT_TRUE(NoiseModel::IsScatterKnown(MakePlane(5, 1.0)));
}

TEST(NoiseModel, MeanOfManyReadingsKeepsWhatRoundingLeft) {
    const CCovariance Still = NoiseModel::GetErrorOfMean(MakePlane(10000, 0.0)).GetCovariance();
    EXPECT_NEAR(Still.m_XX, 1.0 / 12.0, 1e-12);
    // Half of the readings one count higher: the most that can come of no noise at all.
    const CCovariance Two = NoiseModel::GetErrorOfMean(MakePlane(10, 0.25 * 10.0 / 9.0)).GetCovariance();
    EXPECT_NEAR(Two.m_YY, 0.25 / 9.0 + 1.0 / 12.0, 1e-12);
    // Noise of a count smooths the steps.
    const CCovariance Noisy = NoiseModel::GetErrorOfMean(MakePlane(100, 1.0)).GetCovariance();
    EXPECT_NEAR(Noisy.m_XX, 0.01, 1e-12);
}

TEST(NoiseModel, RepeatabilityIsOfTheReading) {
    const CCovariance C = NoiseModel::GetError(MakePlane(100, 1.0), 0.01, 200.0).GetCovariance();
    EXPECT_NEAR(C.m_XX, 0.01 + 4.0, 1e-12);
    EXPECT_NEAR(C.m_YY, 0.01 + 4.0, 1e-12);
}

// Welch and Satterthwaite for two equal variances of 9 degrees: 18; a known part of the same size more than
// doubles that: (3/2)² 18 = 40.5.
TEST(NoiseModel, FreedomOfASum) {
    CErrorSum Sum;
    Sum.Add(CCovariance::Isotropic(1.0), 9.0);
    Sum.Add(CCovariance::Isotropic(1.0), 9.0);
    EXPECT_NEAR(Sum.GetFreedom(), 18.0, 1e-9);
    Sum.Add(CCovariance::Isotropic(1.0));
    EXPECT_NEAR(Sum.GetFreedom(), 40.5, 1e-9);
    EXPECT_EQ(CErrorSum().GetFreedom(), CErrorSum::MAX_FREEDOM);
}

// Chi-square of two degrees of freedom: 4.29 standard errors for one of ten thousand.
TEST(NoiseModel, RegionOfManyReadingsIsThatOfChiSquare) {
    EXPECT_TRUE(NoiseModel::IsInside(18.42, 0.9999, 2.0, CErrorSum::MAX_FREEDOM));
    EXPECT_FALSE(NoiseModel::IsInside(18.43, 0.9999, 2.0, CErrorSum::MAX_FREEDOM));
    EXPECT_TRUE(NoiseModel::IsInside(23.51, 0.9999, 4.0, CErrorSum::MAX_FREEDOM));
    EXPECT_FALSE(NoiseModel::IsInside(23.52, 0.9999, 4.0, CErrorSum::MAX_FREEDOM));
}

// Hotelling by tables: 2·20/19·F(0.95; 2, 19) = 2·20/19·3.522 = 7.414.
TEST(NoiseModel, RegionOfFewReadingsIsWider) {
    EXPECT_TRUE(NoiseModel::IsInside(7.41, 0.95, 2.0, 20.0));
    EXPECT_FALSE(NoiseModel::IsInside(7.42, 0.95, 2.0, 20.0));
    EXPECT_TRUE(NoiseModel::IsInside(1e9, 0.95, 4.0, 2.0));
}
