#include "platform/rvmdb/matrixtext.h"

#include "tests/platform/rvmdb/makematrix.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

using PreBalDB::MatrixFromText;
using PreBalDB::MatrixToText;

namespace {

/// Bits, not values: 0.0 and -0.0 are equal and not the same.
void ExpectSameBits(const math::matrix<double>& rLeft, const math::matrix<double>& rRight) {
    ASSERT_EQ(rLeft.RowNo(), rRight.RowNo());
    ASSERT_EQ(rLeft.ColNo(), rRight.ColNo());
    for (std::uint32_t i = 0; i < rLeft.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < rLeft.ColNo(); ++j) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(rLeft(i, j)), std::bit_cast<std::uint64_t>(rRight(i, j)))
                << i << "," << j;
        }
    }
}

}  // namespace

TEST(MatrixText, IsWhatAPersonCanRead) {
    EXPECT_EQ(MatrixToText(MakeMatrix(2, 2, {0.5, -0.0, 0.0, -12.25})), "2x2: 0.5 -0; 0 -12.25");
    EXPECT_EQ(MatrixToText(MakeMatrix(2, 1, {1.0, 0.1})), "2x1: 1; 0.1");
}

TEST(MatrixText, RoundTripKeepsEveryBit) {
    using Limits = std::numeric_limits<double>;
    const auto Matrix =
        MakeMatrix(4, 4,
                   {0.0, -0.0, Limits::denorm_min(), -Limits::denorm_min(), Limits::min(), Limits::max(),
                    Limits::lowest(), Limits::epsilon(), 0.1, 1.0 / 3.0, 1e23, std::nextafter(1.0, 2.0),
                    123456789.0, -100000000.0, Limits::infinity(), -Limits::infinity()});
    const auto Back = MatrixFromText(MatrixToText(Matrix));
    ASSERT_TRUE(Back);
    ExpectSameBits(*Back, Matrix);
}

TEST(MatrixText, RoundTripKeepsAnyBits) {
    std::mt19937_64 Random(7);
    for (int i = 0; i < 5000; ++i) {
        auto Matrix = MakeMatrix(2, 1, {0.0, 0.0});
        for (std::uint32_t nRow = 0; nRow < 2; ++nRow) {
            const double Element = std::bit_cast<double>(Random());
            Matrix(nRow, 0) = std::isnan(Element) ? 0.0 : Element;
        }
        const auto Back = MatrixFromText(MatrixToText(Matrix));
        ASSERT_TRUE(Back);
        ExpectSameBits(*Back, Matrix);
    }
}

TEST(MatrixText, NotANumberStaysNotANumber) {
    const auto Back = MatrixFromText(MatrixToText(MakeMatrix(1, 1, {std::nan("")})));
    ASSERT_TRUE(Back);
    EXPECT_TRUE(std::isnan((*Back)(0, 0)));
}

TEST(MatrixText, RefusesWhatIsNoMatrix) {
    for (const char* pText :
         {"", "2x2", "2x2: 1 2; 3", "2x2: 1 2 3 4", "2x2: 1 2; 3 4 5", "2x1: 1, 2", "2x1: a; b", "-1x1: 1",
          "99999x99999: 1", "x: ", "2x1: 1; 2 ", "2x1: 1;2", "1x1: 1e999"}) {
        EXPECT_FALSE(MatrixFromText(pText)) << pText;
    }
}
