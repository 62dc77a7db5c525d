#include "archive/vectorstatistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using Readings = std::vector<CVectorReading>;

}  // namespace

// By hand: mean (3, 2); deviations (-2,-1), (0,1), (2,0); sums 8, 2, 2.
TEST(VectorStatistics, MeanAndCovarianceByHand) {
    const CVectorStatistics Statistics(Readings{{1, 1}, {3, 3}, {5, 2}});
    EXPECT_EQ(Statistics.GetCount(), 3U);
    EXPECT_NEAR(Statistics.GetMean().m_X, 3.0, 1e-15);
    EXPECT_NEAR(Statistics.GetMean().m_Y, 2.0, 1e-15);
    EXPECT_NEAR(Statistics.GetCovariance()(0, 0), 4.0, 1e-14);
    EXPECT_NEAR(Statistics.GetCovariance()(0, 1), 1.0, 1e-14);
    EXPECT_NEAR(Statistics.GetCovariance()(1, 0), 1.0, 1e-14);
    EXPECT_NEAR(Statistics.GetCovariance()(1, 1), 1.0, 1e-14);
    EXPECT_NEAR(Statistics.GetCovarianceOfMean()(0, 0), 4.0 / 3.0, 1e-14);
    EXPECT_NEAR(Statistics.GetCovarianceOfMean()(0, 1), 1.0 / 3.0, 1e-14);
}

// Johnson and Wichern, Applied Multivariate Statistical Analysis, example 5.3: n = 42, mean (0.564, 0.603),
// S = [[.0144, .0117], [.0117, .0146]], F(0.95; 2, 40) = 3.23: half axes .064 and .018, the major one along
// (.704, .710).
TEST(VectorStatistics, TheEllipseIsThatOfAPublishedExample) {
    // Readings with just these moments: pairs to both sides of the mean along the axes of S.
    const double Mean[] = {0.564, 0.603};
    const double Eigenvalues[] = {0.0262004, 0.0027996};
    const double t = std::atan2(0.0117, (0.0144 - 0.0146) / 2.0) / 2.0;
    const double Axes[2][2] = {{std::cos(t), std::sin(t)}, {-std::sin(t), std::cos(t)}};
    EXPECT_NEAR(Axes[0][0], 0.704, 0.0006);
    EXPECT_NEAR(Axes[0][1], 0.710, 0.0006);
    Readings Values;
    constexpr int PAIRS = 21;
    for (int i = 0; i < PAIRS; ++i) {
        for (const int Sign : {-1, 1}) {
            const int k = i % 2;
            const int nOfAxis = k == 0 ? 11 : 10;
            const double Length = Sign * std::sqrt(Eigenvalues[k] * 41.0 / (2.0 * nOfAxis));
            Values.push_back({Mean[0] + Length * Axes[k][0], Mean[1] + Length * Axes[k][1]});
        }
    }
    const CVectorStatistics Statistics(Values);
    ASSERT_EQ(Statistics.GetCount(), 42U);
    ASSERT_NEAR(Statistics.GetCovariance()(0, 0), 0.0144, 1e-6);
    ASSERT_NEAR(Statistics.GetCovariance()(0, 1), 0.0117, 1e-6);
    ASSERT_NEAR(Statistics.GetCovariance()(1, 1), 0.0146, 1e-6);
    const auto Ellipse = Statistics.GetConfidenceEllipse(0.95);
    ASSERT_TRUE(Ellipse);
    EXPECT_NEAR(Ellipse->m_X, 0.564, 1e-12);
    EXPECT_NEAR(Ellipse->m_Y, 0.603, 1e-12);
    EXPECT_NEAR(Ellipse->m_SemiMajor, 0.064, 0.0006);
    // The book prints .018 of a rounded eigenvalue of .002; with .0028 it is .021.
    EXPECT_NEAR(Ellipse->m_SemiMinor, std::sqrt(0.0027996 * 2.0 * 41.0 / (42.0 * 40.0) * 3.23), 0.0001);
    EXPECT_NEAR(Ellipse->m_AngleDeg, 45.25, 0.05);
}

// Axes along X and Y, by hand: n = 4, covariance diag(8/3, 2/3), F(0.95; 2, 2) = 19.
TEST(VectorStatistics, TheEllipseLiesAlongTheScatter) {
    const auto Wide =
        CVectorStatistics(Readings{{2, 0}, {-2, 0}, {0, 1}, {0, -1}}).GetConfidenceEllipse(0.95);
    ASSERT_TRUE(Wide);
    const double Factor = 2.0 * 3.0 / (4.0 * 2.0) * 19.0;
    EXPECT_NEAR(Wide->m_SemiMajor, std::sqrt(Factor * 8.0 / 3.0), 1e-9);
    EXPECT_NEAR(Wide->m_SemiMinor, std::sqrt(Factor * 2.0 / 3.0), 1e-9);
    EXPECT_NEAR(Wide->m_AngleDeg, 0.0, 1e-9);
    const auto High =
        CVectorStatistics(Readings{{1, 0}, {-1, 0}, {0, 2}, {0, -2}}).GetConfidenceEllipse(0.95);
    EXPECT_NEAR(High->m_AngleDeg, 90.0, 1e-9);
    EXPECT_NEAR(High->m_SemiMajor, Wide->m_SemiMajor, 1e-9);
    const auto Falling =
        CVectorStatistics(Readings{{2, -2}, {-2, 2}, {1, 1}, {-1, -1}}).GetConfidenceEllipse(0.95);
    EXPECT_NEAR(Falling->m_AngleDeg, 135.0, 1e-9);
}

TEST(VectorStatistics, TooFewReadingsHaveNoEllipse) {
    EXPECT_FALSE(CVectorStatistics({}).GetConfidenceEllipse(0.95));
    EXPECT_FALSE(CVectorStatistics(Readings{{1, 1}, {2, 3}}).GetConfidenceEllipse(0.95));
    EXPECT_EQ(CVectorStatistics({}).GetMean().m_X, 0.0);
    EXPECT_EQ(CVectorStatistics(Readings{{5, 6}}).GetCovariance()(0, 0), 0.0);
    EXPECT_EQ(CVectorStatistics({}).GetCovarianceOfMean()(1, 1), 0.0);
}

TEST(VectorStatistics, ReadingsThatDoNotScatterHaveAPointForAnEllipse) {
    const auto Ellipse = CVectorStatistics(Readings{{3, 4}, {3, 4}, {3, 4}}).GetConfidenceEllipse(0.95);
    ASSERT_TRUE(Ellipse);
    EXPECT_EQ(Ellipse->m_SemiMajor, 0.0);
    EXPECT_EQ(Ellipse->m_SemiMinor, 0.0);
}

// What the ellipse promises: of many measurements, 95 in a hundred hold the truth.
TEST(VectorStatistics, TheEllipseHoldsTheTrueMeanAsOftenAsItSays) {
    std::mt19937 Engine(7);
    std::normal_distribution<double> Normal;
    constexpr int TRIALS = 4000;
    int nInside = 0;
    for (int i = 0; i < TRIALS; ++i) {
        Readings Values;
        for (int k = 0; k < 8; ++k) {
            const double u = Normal(Engine);
            const double v = Normal(Engine);
            Values.push_back({10.0 + 3.0 * u, -5.0 + 2.0 * u + 0.5 * v});
        }
        const CEllipse Ellipse = *CVectorStatistics(Values).GetConfidenceEllipse(0.95);
        const double t = Ellipse.m_AngleDeg * M_PI / 180.0;
        const double dx = 10.0 - Ellipse.m_X;
        const double dy = -5.0 - Ellipse.m_Y;
        const double Major = (dx * std::cos(t) + dy * std::sin(t)) / Ellipse.m_SemiMajor;
        const double Minor = (-dx * std::sin(t) + dy * std::cos(t)) / Ellipse.m_SemiMinor;
        nInside += Major * Major + Minor * Minor <= 1.0 ? 1 : 0;
    }
    // Four standard deviations of the count: 4 sqrt(0.95 0.05 / 4000).
    EXPECT_NEAR(static_cast<double>(nInside) / TRIALS, 0.95, 0.014);
}
