#include "bench/accuracy/textbook.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Textbook;

namespace {

void ExpectNear(Complex Value, Complex Expected) {
    EXPECT_NEAR(Value.real(), Expected.real(), 1e-12);
    EXPECT_NEAR(Value.imag(), Expected.imag(), 1e-12);
}

/// Influence ((2, 1), (1, 3)), own readings (5, 10), the test weights one in each plane, one after the other.
const std::array<CState, 3> g_TwoPlanes = {CState{{0.0, 0.0}, {5.0, 10.0}}, CState{{1.0, 0.0}, {7.0, 11.0}},
                                           CState{{1.0, 1.0}, {8.0, 14.0}}};

}  // namespace

// Reads 10; a unit makes it 10 + 2i. So the influence is 2i, and 5i brings 10 + 2i * 5i = 0.
TEST(Textbook, BalancesOnePlane) {
    const std::array States = {CState{{0.0}, {10.0}}, CState{{1.0}, {Complex(10.0, 2.0)}}};
    const Matrix Influence = GetInfluence(States, 1);
    ExpectNear(Influence[0][0], {0.0, 2.0});
    ExpectNear(GetCorrection(Influence, States[0], 1)[0], {0.0, 5.0});
    // What is to be fitted in all is the same, whatever is fitted.
    ExpectNear(GetCorrection(Influence, States[1], 1)[0], {0.0, 5.0});
}

// 2 (-1) + 1 (-3) = -5 and 1 (-1) + 3 (-3) = -10.
TEST(Textbook, BalancesTwoPlanes) {
    const Matrix Influence = GetInfluence(g_TwoPlanes, 2);
    ExpectNear(Influence[0][0], 2.0);
    ExpectNear(Influence[0][1], 1.0);
    ExpectNear(Influence[1][0], 1.0);
    ExpectNear(Influence[1][1], 3.0);
    const Vector Correction = GetCorrection(Influence, g_TwoPlanes[0], 2);
    ExpectNear(Correction[0], -1.0);
    ExpectNear(Correction[1], -3.0);
}

TEST(Textbook, SharesMakeEveryOtherState) {
    const auto Shares = GetShares(g_TwoPlanes, {-1.0, -3.0}, 2);
    ASSERT_EQ(Shares.size(), 3U);
    ExpectNear(Shares[0], 2.0);
    ExpectNear(Shares[1], 2.0);
    ExpectNear(Shares[2], -3.0);
}

TEST(Textbook, PlanesThatCantBeToldApartHaveNoCorrection) {
    EXPECT_THROW(Invert({{{1.0, 2.0}, {2.0, 4.0}}}, 2), std::domain_error);
    EXPECT_THROW(Invert({{{0.0, 0.0}, {0.0, 0.0}}}, 1), std::domain_error);
}
