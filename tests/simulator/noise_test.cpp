#include "simulator/noise.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// Worked out with a plain implementation of the generator and its seeding in another language.
TEST(NoiseTest, GivesThePinnedNumbersOnEveryMachine) {
    CNoise First(1, 0, 1.0);
    const std::complex<double> FirstPair = First.Next();
    const std::complex<double> SecondPair = First.Next();
    EXPECT_NEAR(FirstPair.real(), -0.664812286579088, 1e-12);
    EXPECT_NEAR(FirstPair.imag(), -0.33318769010715094, 1e-12);
    EXPECT_NEAR(SecondPair.real(), 0.45571302676337194, 1e-12);
    EXPECT_NEAR(SecondPair.imag(), -0.3493939060258678, 1e-12);
}

TEST(NoiseTest, AnotherStreamOfTheSameSeedIsAnotherNoise) {
    const std::complex<double> Pair = CNoise(1, 1, 1.0).Next();
    EXPECT_NEAR(Pair.real(), -1.267807266683027, 1e-12);
    EXPECT_NEAR(Pair.imag(), -0.3865126749375372, 1e-12);
}

TEST(NoiseTest, AllSixtyFourBitsOfTheSeedCount) {
    const std::complex<double> Pair = CNoise((5ULL << 32) + 7, 0, 1.0).Next();
    EXPECT_NEAR(Pair.real(), -1.5944523925181182, 1e-12);
    EXPECT_NEAR(Pair.imag(), -0.26232021417913626, 1e-12);
}

TEST(NoiseTest, RepeatsForTheSameSeed) {
    CNoise First(42, 3, 1.5);
    CNoise Second(42, 3, 1.5);
    for (int nSample = 0; nSample < 1000; ++nSample) {
        ASSERT_EQ(First.Next(), Second.Next());
    }
}

TEST(NoiseTest, IsGaussianWithTheDeviationAskedFor) {
    constexpr int SAMPLES = 50000;
    constexpr double DEVIATION = 1.5;
    CNoise Noise(7, 0, DEVIATION);
    double SumX = 0.0;
    double SumY = 0.0;
    double SumXX = 0.0;
    double SumYY = 0.0;
    double SumXY = 0.0;
    int nBeyondOne = 0;
    int nBeyondTwo = 0;
    for (int nSample = 0; nSample < SAMPLES; ++nSample) {
        const std::complex<double> Pair = Noise.Next();
        SumX += Pair.real();
        SumY += Pair.imag();
        SumXX += Pair.real() * Pair.real();
        SumYY += Pair.imag() * Pair.imag();
        SumXY += Pair.real() * Pair.imag();
        nBeyondOne += std::abs(Pair.real()) > DEVIATION;
        nBeyondTwo += std::abs(Pair.imag()) > 2.0 * DEVIATION;
    }
    // Bounds of four standard errors each; the shares are those of the normal distribution.
    EXPECT_NEAR(SumX / SAMPLES, 0.0, 0.027);
    EXPECT_NEAR(SumY / SAMPLES, 0.0, 0.027);
    EXPECT_NEAR(std::sqrt(SumXX / SAMPLES), DEVIATION, 0.019);
    EXPECT_NEAR(std::sqrt(SumYY / SAMPLES), DEVIATION, 0.019);
    EXPECT_NEAR(SumXY / SAMPLES, 0.0, 0.040);
    EXPECT_NEAR(nBeyondOne / static_cast<double>(SAMPLES), 0.3173, 0.0084);
    EXPECT_NEAR(nBeyondTwo / static_cast<double>(SAMPLES), 0.0455, 0.0038);
}

TEST(NoiseTest, NoDeviationIsNoNoise) {
    EXPECT_EQ(CNoise(1, 0, 0.0).Next(), std::complex<double>(0.0, 0.0));
}

}  // namespace
