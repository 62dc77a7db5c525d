#include "console/rotorgeometry.h"

#include <gtest/gtest.h>

namespace {

const QRectF PLACE(0, 0, 220, 300);
constexpr double MARGIN = 10.0;

CRotorGeometry Make(bool bCounterClockwise, int nHoles = 12) {
    return {PLACE, MARGIN, bCounterClockwise, nHoles};
}

}  // namespace

TEST(RotorGeometryTest, IsCentredAndAsLargeAsThereIsRoom) {
    const CRotorGeometry Geometry = Make(false);
    EXPECT_EQ(Geometry.GetCenter(), QPointF(110, 150));
    EXPECT_DOUBLE_EQ(Geometry.GetOuter(), 100.0);
}

TEST(RotorGeometryTest, ZeroIsAtTheTopAndTheScaleCountsInItsSense) {
    EXPECT_NEAR(Make(false).GetPoint(0, 100).y(), 50.0, 1e-9);
    EXPECT_NEAR(Make(false).GetPoint(90, 100).x(), 210.0, 1e-9);
    EXPECT_NEAR(Make(true).GetPoint(90, 100).x(), 10.0, 1e-9);
}

TEST(RotorGeometryTest, AnglesSnapToWholeDegreesAndCloseTheCircle) {
    EXPECT_EQ(Make(false).GetAngle({110, 60}), 0);
    EXPECT_EQ(Make(false).GetAngle({200, 150}), 90);
    EXPECT_EQ(Make(true).GetAngle({200, 150}), 270);
    EXPECT_EQ(Make(false).GetAngle({109.9, 50}), 0) << "not 360";
    EXPECT_EQ(Make(false).GetAngle({108.25, 50}), 359);
    for (int Angle = 0; Angle < 360; ++Angle) {
        EXPECT_EQ(Make(false).GetAngle(Make(false).GetPoint(Angle, 80)), Angle);
        EXPECT_EQ(Make(true).GetAngle(Make(true).GetPoint(Angle, 80)), Angle);
    }
}

TEST(RotorGeometryTest, TheHubAndFarAwayAreNotTheRing) {
    EXPECT_TRUE(Make(false).IsAtRing({110, 70}));
    EXPECT_FALSE(Make(false).IsAtRing({110, 140}));
    EXPECT_FALSE(Make(false).IsAtRing({110, 310}));
}

TEST(RotorGeometryTest, EachHoleIsFoundAtItsPlaceInBothSenses) {
    for (const bool bCounterClockwise : {false, true}) {
        const CRotorGeometry Geometry = Make(bCounterClockwise, 24);
        for (int Hole = 1; Hole <= 24; ++Hole) {
            const QPointF Place = Geometry.GetPoint(Geometry.GetHoleAngle(Hole), Geometry.GetMiddle());
            EXPECT_EQ(Geometry.FindHole(Place), Hole);
        }
        EXPECT_EQ(Geometry.FindHole(Geometry.GetCenter()), std::nullopt);
    }
}

TEST(RotorGeometryTest, HolesOfAnyNumberDoNotTouch) {
    for (const int nHoles : {2, 12, 24, 60}) {
        const CRotorGeometry Geometry = Make(false, nHoles);
        const QPointF Apart = Geometry.GetPoint(Geometry.GetHoleAngle(1), Geometry.GetMiddle()) -
                              Geometry.GetPoint(Geometry.GetHoleAngle(2), Geometry.GetMiddle());
        EXPECT_LT(2 * Geometry.GetHoleRadius(), std::hypot(Apart.x(), Apart.y()));
    }
}

// A direction of the rotor is seen mirrored from its other end; 0° is at the top in both.
TEST(RotorGeometryTest, TheRotorsOwnAnglesAreMirroredFromPlane2) {
    EXPECT_NEAR(Make(false).GetPointOfRotor(90, false, 100).x(), 10.0, 1e-9);
    EXPECT_NEAR(Make(false).GetPointOfRotor(90, true, 100).x(), 210.0, 1e-9);
    EXPECT_NEAR(Make(false).GetPointOfRotor(0, true, 100).y(), 50.0, 1e-9);
}
