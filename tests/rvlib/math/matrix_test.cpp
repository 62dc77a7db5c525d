#include "rvlib/math/matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <numeric>
#include <random>
#include <type_traits>
#include <vector>

namespace {

using Matrix = math::matrix<double>;
using Rows = std::initializer_list<std::initializer_list<double>>;

Matrix Make(Rows Elements) {
    Matrix Result(static_cast<std::uint32_t>(Elements.size()),
                  static_cast<std::uint32_t>(Elements.begin()->size()));
    std::uint32_t i = 0;
    for (const auto& rRow : Elements) {
        std::uint32_t j = 0;
        for (const double Element : rRow) {
            Result(i, j++) = Element;
        }
        ++i;
    }
    return Result;
}

/// Text of the matrix_error that the call throws.
template <typename Call>
std::string ErrorOf(Call What) {
    try {
        What();
    } catch (const math::matrix_error& rError) {
        return rError.what();
    }
    return "nothing thrown";
}

/// The determinant by its definition, the sum over all permutations: an outside truth for the elimination.
double LeibnizDeterminant(const Matrix& rMatrix) {
    std::vector<std::uint32_t> Columns(rMatrix.RowNo());
    std::iota(Columns.begin(), Columns.end(), 0U);
    double Sum = 0.0;
    do {
        double Product = 1.0;
        for (std::uint32_t i = 0; i < Columns.size(); ++i) {
            Product *= rMatrix(i, Columns[i]);
            for (std::uint32_t j = i + 1; j < Columns.size(); ++j) {
                Product = Columns[i] > Columns[j] ? -Product : Product;
            }
        }
        Sum += Product;
    } while (std::next_permutation(Columns.begin(), Columns.end()));
    return Sum;
}

Matrix Random(std::mt19937& rGenerator, std::uint32_t nRows, std::uint32_t nColumns) {
    std::uniform_real_distribution<double> Element(-10.0, 10.0);
    Matrix Result(nRows, nColumns);
    for (std::uint32_t i = 0; i < nRows; ++i) {
        for (std::uint32_t j = 0; j < nColumns; ++j) {
            Result(i, j) = Element(rGenerator);
        }
    }
    return Result;
}

TEST(Matrix, IsSixBySixByDefault) {
    const Matrix Default;
    EXPECT_EQ(Default.RowNo(), 6U);
    EXPECT_EQ(Default.ColNo(), 6U);
}

TEST(Matrix, WithoutRowsHasNormZeroDeterminantOneAndAnEmptyInverse) {
    Matrix Empty(0, 0);
    EXPECT_EQ(Empty.Norm(), 0.0);
    EXPECT_EQ(Empty.Det(), 1.0);
    const Matrix Inverse = !Empty;
    EXPECT_EQ(Inverse.RowNo(), 0U);
    EXPECT_EQ(Inverse.ColNo(), 0U);
}

TEST(Matrix, ZeroAtTheTopLeftSwapsRowsAndFlipsTheSignOfTheDeterminant) {
    const Matrix Original = Make({{0.0, 2.0}, {4.0, 6.0}});
    EXPECT_EQ(Original.Det(), -8.0);
    Matrix Consumed = Original;
    EXPECT_EQ(!Consumed, Make({{-0.75, 0.25}, {0.5, 0.0}}));
}

TEST(Matrix, ZeroColumnHasNoInverse) {
    Matrix Singular = Make({{0.0, 1.0}, {0.0, 2.0}});
    EXPECT_EQ(ErrorOf([&] { !Singular; }), "matrixT::operator!: Inversion of a singular matrix");
}

TEST(Matrix, ZeroColumnHasDeterminantZero) {
    EXPECT_EQ(Make({{0.0, 1.0}, {0.0, 2.0}}).Det(), 0.0);
    EXPECT_EQ(Make({{1.0, 2.0}, {2.0, 4.0}}).Det(), 0.0);
}

TEST(Matrix, TinyColumnIsInvertedWithoutComplaint) {
    Matrix Tiny = Make({{1e-300, 0.0}, {0.0, 1.0}});
    EXPECT_DOUBLE_EQ(Tiny.Det(), 1e-300);
    const Matrix Inverse = !Tiny;
    EXPECT_DOUBLE_EQ(Inverse(0, 0), 1e300);
    EXPECT_EQ(Inverse(1, 1), 1.0);
}

TEST(Matrix, WritingOneOfTwoCopiesLeavesTheOtherUnchanged) {
    Matrix First = Make({{1.0, 2.0}, {3.0, 4.0}});
    Matrix Second = First;
    Second(0, 0) = 9.0;
    EXPECT_EQ(First, Make({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_EQ(Second, Make({{9.0, 2.0}, {3.0, 4.0}}));
}

TEST(Matrix, EveryWritingOperationSparesTheOtherCopies) {
    const Matrix Original = Make({{1.0, 2.0}, {3.0, 4.0}});
    const Matrix Expected = Make({{1.0, 2.0}, {3.0, 4.0}});
    Matrix Copy = Original;
    Copy.Null();
    EXPECT_EQ(Copy, Make({{0.0, 0.0}, {0.0, 0.0}}));
    Copy = Original;
    Copy.Unit();
    EXPECT_EQ(Copy, Make({{1.0, 0.0}, {0.0, 1.0}}));
    Copy = Original;
    Copy -= Original;
    EXPECT_EQ(Copy, Make({{0.0, 0.0}, {0.0, 0.0}}));
    Copy = Original;
    Copy *= Original;
    EXPECT_EQ(Copy, Make({{7.0, 10.0}, {15.0, 22.0}}));
    Copy = Original;
    (void)!Copy;
    Copy = Original;
    Copy.SetSize(1, 1);
    (void)Original.Det();
    EXPECT_EQ(Original, Expected);
}

TEST(Matrix, SelfAssignmentIsHarmless) {
    Matrix Value = Make({{1.0, 2.0}});
    const Matrix& rSame = Value;
    Value = rSame;
    EXPECT_EQ(Value, Make({{1.0, 2.0}}));
}

TEST(Matrix, SubtractionOfDifferentSizesThrows) {
    Matrix Vector = Make({{1.0}, {2.0}});
    const Matrix Block = Make({{1.0, 2.0}, {3.0, 4.0}});
    constexpr const char* TEXT = "matrixT::operator-= : Inconsistent matrix sizes in subtraction!";
    EXPECT_EQ(ErrorOf([&] { Vector -= Block; }), TEXT);
    EXPECT_EQ(ErrorOf([&] { (void)(Block - Vector); }), TEXT);
    EXPECT_EQ(Vector, Make({{1.0}, {2.0}}));
}

TEST(Matrix, MultiplicationOfUnfittingSizesThrows) {
    Matrix Vector = Make({{1.0}, {2.0}});
    EXPECT_EQ(ErrorOf([&] { Vector *= Vector; }),
              "matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
}

TEST(Matrix, ProductHasTheLeftRowsAndTheRightColumns) {
    const Matrix Product = Make({{1.0, 2.0, 3.0}}) * Make({{4.0, 5.0}, {6.0, 7.0}, {8.0, 9.0}});
    EXPECT_EQ(Product, Make({{40.0, 46.0}}));
}

TEST(Matrix, ProductOfFactorAndVectorIsAComplexProduct) {
    // (3 + 4i) * (2 - 5i) = 26 - 7i
    EXPECT_EQ(Make({{3.0, -4.0}, {4.0, 3.0}}) * Make({{2.0}, {-5.0}}), Make({{26.0}, {-7.0}}));
}

TEST(Matrix, NegationFlipsTheSignBitOfZeroToo) {
    const Matrix Negated = -Make({{0.0, -0.0, 2.5}});
    EXPECT_TRUE(std::signbit(Negated(0, 0)));
    EXPECT_FALSE(std::signbit(Negated(0, 1)));
    EXPECT_EQ(Negated(0, 2), -2.5);
}

TEST(Matrix, ZerosOfDifferentSignCompareEqual) {
    EXPECT_EQ(Make({{0.0, 1.0}}), Make({{-0.0, 1.0}}));
}

TEST(Matrix, ComparesWithoutTolerance) {
    EXPECT_NE(Make({{1.0}}), Make({{std::nextafter(1.0, 2.0)}}));
    EXPECT_NE(Make({{1.0}, {2.0}}), Make({{1.0, 2.0}}));
}

TEST(Matrix, NaNNeverComparesEqual) {
    const Matrix Value = Make({{std::numeric_limits<double>::quiet_NaN()}});
    EXPECT_NE(Value, Value);
}

TEST(Matrix, IndexOutOfRangeThrowsInBothForms) {
    Matrix Value(2, 1);
    const Matrix& rValue = Value;
    constexpr const char* eText = "matrixT::operator(): Index out of range!";
    EXPECT_EQ(ErrorOf([&] { Value(2, 0) = 1.0; }), eText);
    EXPECT_EQ(ErrorOf([&] { Value(0, 1) = 1.0; }), eText);
    EXPECT_EQ(ErrorOf([&] { (void)rValue(2, 0); }), eText);
    EXPECT_EQ(ErrorOf([&] { (void)rValue(static_cast<std::uint32_t>(-1), 0); }), eText);
}

TEST(Matrix, ErrorIsALogicError) {
    EXPECT_TRUE((std::is_base_of_v<std::logic_error, math::matrix_error>));
}

TEST(Matrix, ShrinkingKeepsTheTopLeftAndSparesTheOtherHolder) {
    // How the two-plane result is cut into its planes.
    const Matrix Both = Make({{1.0}, {2.0}, {3.0}, {4.0}});
    Matrix First = Both;
    First.SetSize(2, 1);
    EXPECT_EQ(First, Make({{1.0}, {2.0}}));
    EXPECT_EQ(Both, Make({{1.0}, {2.0}, {3.0}, {4.0}}));
}

TEST(Matrix, GrowingFillsWithZeros) {
    Matrix Value = Make({{1.0, 2.0}, {3.0, 4.0}});
    Value.SetSize(3, 3);
    EXPECT_EQ(Value, Make({{1.0, 2.0, 0.0}, {3.0, 4.0, 0.0}, {0.0, 0.0, 0.0}}));
    Value.SetSize(1, 4);
    EXPECT_EQ(Value, Make({{1.0, 2.0, 0.0, 0.0}}));
}

TEST(Matrix, SameSizeKeepsTheElements) {
    Matrix Value = Make({{1.0, 2.0}});
    Value.SetSize(1, 2);
    EXPECT_EQ(Value, Make({{1.0, 2.0}}));
}

TEST(Matrix, UnitTakesTheSmallerSide) {
    Matrix Wide(2, 3);
    Wide.Unit();
    EXPECT_EQ(Wide, Make({{1.0, 0.0}, {0.0, 1.0}}));
    Matrix Tall(3, 1);
    Tall.Unit();
    EXPECT_EQ(Tall, Make({{1.0}}));
}

TEST(Matrix, GrowsBackIntoWhatUnitLeft) {
    // What Unit cut off is still allocated, and must come back as zeros.
    Matrix Value = Make({{7.0, 7.0, 7.0}, {7.0, 7.0, 7.0}});
    Value.Unit();
    Value.SetSize(2, 3);
    EXPECT_EQ(Value, Make({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}));
}

TEST(Matrix, GrowsBackIntoWhatUnitLeftWhenShared) {
    Matrix Value(2, 3);
    Value.Unit();
    const Matrix Holder = Value;
    Value.SetSize(2, 3);
    EXPECT_EQ(Value, Make({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}));
    EXPECT_EQ(Holder, Make({{1.0, 0.0}, {0.0, 1.0}}));
}

TEST(Matrix, NormIsTheRootOfAllSquares) {
    EXPECT_EQ(Make({{1.0, 2.0}, {2.0, 4.0}}).Norm(), 5.0);
}

TEST(Matrix, InversionAndDeterminantNeedASquare) {
    Matrix Vector = Make({{1.0}, {2.0}});
    EXPECT_EQ(ErrorOf([&] { !Vector; }), "matrixT::operator!: Inversion of a non-square matrix");
    EXPECT_EQ(ErrorOf([&] { (void)Vector.Det(); }), "matrixT::Det(): Determinant a non-square matrix!");
}

TEST(Matrix, InversionConsumesItsReceiverButNotTheOrigin) {
    const Matrix Original = Make({{2.0, 0.0}, {0.0, 4.0}});
    Matrix Consumed = Original;
    EXPECT_EQ(!Consumed, Make({{0.5, 0.0}, {0.0, 0.25}}));
    EXPECT_EQ(Consumed, Make({{1.0, 0.0}, {0.0, 1.0}}));
    EXPECT_EQ(Original, Make({{2.0, 0.0}, {0.0, 4.0}}));
}

TEST(Matrix, FirstOfEqualPivotsStands) {
    // Rows 0 and 1 offer pivots of the same size. Eliminating with row 1 would overflow in row 2:
    // -1.5e308 - 0.5 * 1e308.
    const Matrix Value = Make({{1.0, 0.0, 0.0}, {1.0, 1e308, 0.0}, {0.5, -1.5e308, 1.0}});
    EXPECT_DOUBLE_EQ(Value.Det(), 1e308);
    Matrix Consumed = Value;
    EXPECT_TRUE(std::isfinite((!Consumed).Norm()));
}

TEST(Matrix, InverseOfTheHilbertMatrixIsTheKnownOne) {
    Matrix Hilbert(4, 4);
    for (std::uint32_t i = 0; i < 4; ++i) {
        for (std::uint32_t j = 0; j < 4; ++j) {
            Hilbert(i, j) = 1.0 / (i + j + 1.0);
        }
    }
    EXPECT_NEAR(Hilbert.Det(), 1.0 / 6048000.0, 1e-17);
    const Matrix Expected = Make({{16.0, -120.0, 240.0, -140.0},
                                  {-120.0, 1200.0, -2700.0, 1680.0},
                                  {240.0, -2700.0, 6480.0, -4200.0},
                                  {-140.0, 1680.0, -4200.0, 2800.0}});
    EXPECT_LT((!Hilbert - Expected).Norm(), 1e-8);
}

TEST(Matrix, AgreesWithTheDefinitionsOnRandomMatrices) {
    std::mt19937 Generator(20240611);
    for (std::uint32_t nSize = 1; nSize <= 4; ++nSize) {
        Matrix One(nSize, nSize);
        One.Unit();
        for (int i = 0; i < 200; ++i) {
            const Matrix Original = Random(Generator, nSize, nSize);
            const double Det = LeibnizDeterminant(Original);
            EXPECT_NEAR(Original.Det(), Det, 1e-9 * std::max(1.0, std::abs(Det)));
            if (std::abs(Det) < 1.0) {
                continue;  // badly conditioned: the bounds below don't hold
            }
            Matrix Consumed = Original;
            const Matrix Inverse = !Consumed;
            EXPECT_LT((Original * Inverse - One).Norm(), 1e-8);
            EXPECT_LT((Inverse * Original - One).Norm(), 1e-8);
        }
    }
}

}  // namespace
