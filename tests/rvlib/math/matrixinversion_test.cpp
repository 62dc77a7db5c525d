// The inversion of 4-by-4 matrices, the size of two coupled planes, against another library in more digits.
#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <cmath>
#include <limits>
#include <random>

#include "rvlib/math/matrix.h"

namespace {

using Reference = Eigen::Matrix<long double, 4, 4>;

class CRandomMatrices {
public:
    double Uniform(double Low, double High) {
        return Low + (High - Low) * static_cast<double>(m_Generator() >> 11U) * 0x1p-53;
    }
    /// By turns: any numbers; blocks of complex factors; a last row that nearly depends on the others, or in
    /// blocks a second plane that nearly repeats the first.
    Reference Next(int i) {
        Reference A;
        const bool bBlocks = i % 2 == 1;
        for (int Row = 0; Row < 4; Row += bBlocks ? 2 : 1) {
            for (int Column = 0; Column < 4; Column += bBlocks ? 2 : 1) {
                const double x = Uniform(-1000.0, 1000.0);
                const double y = Uniform(-1000.0, 1000.0);
                A(Row, Column) = x;
                if (bBlocks) {
                    A(Row, Column + 1) = -y;
                    A(Row + 1, Column) = y;
                    A(Row + 1, Column + 1) = x;
                }
            }
        }
        if (i % 4 >= 2) {
            // Dependent but for 1e-1 to 1e-11.
            const double Rest = std::pow(10.0, -Uniform(1.0, 11.0));
            if (bBlocks) {
                A.bottomRows<2>() = (A.topRows<2>() * 0.5L + A.bottomRows<2>() * Rest).eval();
            } else {
                A.row(3) = (A.row(0) - 2.0L * A.row(1) + 0.5L * A.row(2) + A.row(3) * Rest).eval();
            }
        }
        // What both sides are given are the same doubles.
        return A.cast<double>().cast<long double>();
    }

private:
    std::mt19937_64 m_Generator{4711};
};

math::matrix<double> ToMatrix(const Reference& rA) {
    math::matrix<double> Result(4, 4);
    for (std::uint32_t i = 0; i < 4; ++i) {
        for (std::uint32_t j = 0; j < 4; ++j) {
            Result(i, j) = static_cast<double>(rA(i, j));
        }
    }
    return Result;
}

Reference ToReference(const math::matrix<double>& rA) {
    Reference Result;
    for (std::uint32_t i = 0; i < 4; ++i) {
        for (std::uint32_t j = 0; j < 4; ++j) {
            Result(i, j) = rA(i, j);
        }
    }
    return Result;
}

}  // namespace

// The error of a backward stable elimination is bounded by the condition number times the rounding unit; 64
// leaves room for the 4 by 4 size and the growth in pivoting. A bound that follows the condition is strict
// for good matrices and just for bad ones.
TEST(MatrixInversion, TenThousandRandomMatricesAgreeWithTheReference) {
    CRandomMatrices Matrices;
    int nNearSingular = 0;
    for (int i = 0; i < 10000; ++i) {
        const Reference A = Matrices.Next(i);
        const Reference Truth = A.fullPivLu().inverse();
        const long double Condition = A.norm() * Truth.norm();
        nNearSingular += Condition > 1e6L ? 1 : 0;
        math::matrix<double> Consumed = ToMatrix(A);
        const Reference Inverse = ToReference(!Consumed);
        const long double Error = (Inverse - Truth).norm() / Truth.norm();
        ASSERT_LE(Error, 64.0L * std::numeric_limits<double>::epsilon() * Condition)
            << "matrix " << i << ", condition " << Condition;
    }
    EXPECT_GT(nNearSingular, 2000) << "near-singular ones are to be among them";
}

TEST(MatrixInversion, DeterminantsAgreeWithTheReference) {
    CRandomMatrices Matrices;
    for (int i = 0; i < 10000; ++i) {
        const Reference A = Matrices.Next(i);
        const long double Truth = A.fullPivLu().determinant();
        // Relative to the product of the row lengths, the largest value that a determinant can have.
        long double Largest = 1.0L;
        for (int Row = 0; Row < 4; ++Row) {
            Largest *= A.row(Row).norm();
        }
        ASSERT_LE(std::abs(ToMatrix(A).Det() - Truth),
                  64.0L * std::numeric_limits<double>::epsilon() * Largest)
            << "matrix " << i;
    }
}

TEST(MatrixInversion, SensorThatIsDeadMakesTheSystemExactlySingular) {
    CRandomMatrices Matrices;
    for (int i = 0; i < 100; ++i) {
        Reference A = Matrices.Next(i);
        A.bottomRows<2>().setZero();
        EXPECT_EQ(ToMatrix(A).Det(), 0.0);
        math::matrix<double> Consumed = ToMatrix(A);
        EXPECT_THROW(!Consumed, math::matrix_error);
    }
}
