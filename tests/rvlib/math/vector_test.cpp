#include "rvlib/math/vector.h"

#include <gtest/gtest.h>

#include <string>

namespace {

math::matrix<double> Vector(double x, double y) {
    math::matrix<double> Result(2, 1);
    Result(0, 0) = x;
    Result(1, 0) = y;
    return Result;
}

TEST(Vector, LengthIsEuclidean) {
    EXPECT_EQ(math::VectorLength(Vector(-3.0, 4.0)), 5.0);
}

TEST(Vector, AngleIsInRadiansFromMinusPiToPi) {
    EXPECT_EQ(math::VectorAngle(Vector(1.0, 0.0)), 0.0);
    EXPECT_DOUBLE_EQ(math::VectorAngle(Vector(0.0, 2.0)), 1.5707963267948966);
    EXPECT_DOUBLE_EQ(math::VectorAngle(Vector(0.0, -2.0)), -1.5707963267948966);
    EXPECT_DOUBLE_EQ(math::VectorAngle(Vector(-1.0, 0.0)), 3.141592653589793);
    EXPECT_DOUBLE_EQ(math::VectorAngle(Vector(-1.0, -0.0)), -3.141592653589793);
}

TEST(Vector, AngleOfTheInvalidMarkerIsZero) {
    EXPECT_EQ(math::VectorAngle(Vector(-100000000.0, 5.0)), 0.0);
    EXPECT_EQ(math::VectorAngle(Vector(5.0, -100000000.0)), 0.0);
    // The value beside the marker is an angle like any other.
    EXPECT_NE(math::VectorAngle(Vector(5.0, -100000001.0)), 0.0);
}

TEST(Vector, AngleOfAnotherShapeIsZero) {
    math::matrix<double> Long(4, 1);
    Long.Null();
    Long(1, 0) = 1.0;
    EXPECT_EQ(math::VectorAngle(Long), 0.0);
    math::matrix<double> Short(1, 1);
    Short(0, 0) = -1.0;
    EXPECT_EQ(math::VectorAngle(Short), 0.0);
}

TEST(Vector, DegreesBecomeRadians) {
    math::matrix<double> Radians(2, 1);
    EXPECT_EQ(math::DegreesToRadians(Radians, Vector(180.0, -90.0)), 1);
    EXPECT_DOUBLE_EQ(Radians(0, 0), 3.141592653589793);
    EXPECT_DOUBLE_EQ(Radians(1, 0), -1.5707963267948966);
}

TEST(Vector, DegreesInPlaceLeaveOtherHoldersAlone) {
    math::matrix<double> Angles = Vector(180.0, 0.0);
    const math::matrix<double> Holder = Angles;
    math::DegreesToRadians(Angles, Angles);
    EXPECT_DOUBLE_EQ(Angles(0, 0), 3.141592653589793);
    EXPECT_EQ(Holder(0, 0), 180.0);
}

TEST(Vector, DegreesIntoFewerRowsThrow) {
    math::matrix<double> Target(1, 1);
    try {
        math::DegreesToRadians(Target, Vector(1.0, 2.0));
        FAIL() << "nothing thrown";
    } catch (const math::matrix_error& rError) {
        EXPECT_STREQ(rError.what(), "matrixT::operator(): Index out of range!");
    }
}

// (3 + 4i)(1 - 2i) = 11 - 2i.
TEST(Vector, FactorTimesVectorIsTheComplexProduct) {
    const math::matrix<double> Product = math::MakeFactor(3.0, 4.0) * math::MakeVector(1.0, -2.0);
    EXPECT_EQ(Product.RowNo(), 2U);
    EXPECT_EQ(Product.ColNo(), 1U);
    EXPECT_EQ(Product(0, 0), 11.0);
    EXPECT_EQ(Product(1, 0), -2.0);
}

TEST(Vector, NullHasItsSizeAndZeros) {
    const math::matrix<double> Null = math::MakeNull(4, 1);
    EXPECT_EQ(Null.RowNo(), 4U);
    EXPECT_EQ(Null.ColNo(), 1U);
    EXPECT_EQ(Null.Norm(), 0.0);
}

}  // namespace
