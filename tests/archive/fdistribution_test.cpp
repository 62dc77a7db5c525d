#include "archive/fdistribution.h"

#include <gtest/gtest.h>

#include <cmath>

using FDistribution::BetaRegularised;
using FDistribution::GetProbability;
using FDistribution::GetQuantile;

// Abramowitz and Stegun, Handbook of Mathematical Functions, table 26.9: percentage points of the
// F-distribution, Q = 0.05 and 0.01.
TEST(FDistribution, QuantilesAreThoseOfThePublishedTable) {
    struct CRow {
        double m_p, m_Numerator, m_Denominator, m_Quantile;
    };
    for (const CRow& rRow :
         {CRow{0.95, 1, 1, 161.4}, CRow{0.95, 1, 10, 4.96}, CRow{0.95, 2, 1, 199.5}, CRow{0.95, 2, 2, 19.00},
          CRow{0.95, 2, 5, 5.79}, CRow{0.95, 2, 10, 4.10}, CRow{0.95, 2, 20, 3.49}, CRow{0.95, 2, 60, 3.15},
          CRow{0.95, 2, 120, 3.07}, CRow{0.95, 3, 7, 4.35}, CRow{0.95, 5, 10, 3.33}, CRow{0.95, 10, 20, 2.35},
          CRow{0.95, 20, 30, 1.93}, CRow{0.99, 2, 10, 7.56}, CRow{0.99, 2, 60, 4.98}, CRow{0.99, 5, 10, 5.64},
          CRow{0.99, 1, 120, 6.85}}) {
        // Half of the last digit that the table prints.
        const double Half = rRow.m_Quantile > 100.0 ? 0.05 : 0.005;
        EXPECT_NEAR(GetQuantile(rRow.m_p, rRow.m_Numerator, rRow.m_Denominator), rRow.m_Quantile,
                    Half * 1.001)
            << rRow.m_p << " of " << rRow.m_Numerator << ", " << rRow.m_Denominator;
    }
}

// With two degrees of freedom above, the distribution can be written down: 1 - (1 + 2f/m)^(-m/2).
TEST(FDistribution, TwoDegreesOfFreedomAboveAgreeWithTheClosedForm) {
    for (const double m : {1.0, 2.0, 7.0, 38.0, 298.0, 4094.0}) {
        for (const double p : {0.05, 0.5, 0.95, 0.999}) {
            const double Expected = m / 2.0 * (std::pow(1.0 - p, -2.0 / m) - 1.0);
            EXPECT_NEAR(GetQuantile(p, 2.0, m) / Expected, 1.0, 1e-9) << p << " of " << m;
            EXPECT_NEAR(GetProbability(Expected, 2.0, m), p, 1e-12);
        }
    }
}

// F of 1 and m is the square of Student's t with m degrees of freedom; with one, the Cauchy distribution.
TEST(FDistribution, OneAndOneIsTheSquareOfCauchys) {
    const double t = std::tan(M_PI * 0.475);
    EXPECT_NEAR(GetQuantile(0.95, 1.0, 1.0) / (t * t), 1.0, 1e-9);
}

TEST(FDistribution, EndsOfTheScale) {
    EXPECT_EQ(GetProbability(0.0, 2.0, 10.0), 0.0);
    EXPECT_EQ(GetProbability(-1.0, 2.0, 10.0), 0.0);
    EXPECT_EQ(GetQuantile(0.0, 2.0, 10.0), 0.0);
    EXPECT_NEAR(GetProbability(1e12, 2.0, 10.0), 1.0, 1e-15);
}

// I_x(a, 1) = x^a, I_x(1, b) = 1 - (1 - x)^b, and I_1/2(a, a) = 1/2 by symmetry.
TEST(FDistribution, TheBetaFunctionAgreesWithItsSimpleCases) {
    EXPECT_NEAR(BetaRegularised(3.5, 1.0, 0.4), std::pow(0.4, 3.5), 1e-14);
    EXPECT_NEAR(BetaRegularised(1.0, 2.5, 0.9), 1.0 - std::pow(0.1, 2.5), 1e-14);
    for (const double a : {0.5, 1.0, 7.0, 150.0}) {
        EXPECT_NEAR(BetaRegularised(a, a, 0.5), 0.5, 1e-13) << a;
    }
    EXPECT_EQ(BetaRegularised(2.0, 3.0, 0.0), 0.0);
    EXPECT_EQ(BetaRegularised(2.0, 3.0, 1.0), 1.0);
}
