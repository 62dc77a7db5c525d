#include "contract/holering.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/testpaths.h"

// On a counter-clockwise scale of 12 the module's hole 2, clockwise next to hole 1, is engraved 12.
TEST(HoleRing, TheTwoNumberingsMeetInHoleOne) {
    const CHoleRing Cw{12, false};
    const CHoleRing Ccw{12, true};
    EXPECT_EQ(Cw.GetRotorHole(1), 1U);
    EXPECT_EQ(Ccw.GetRotorHole(1), 1U);
    EXPECT_EQ(Cw.GetRotorHole(2), 2U);
    EXPECT_EQ(Ccw.GetRotorHole(2), 12U);
    EXPECT_EQ(Ccw.GetRotorHole(7), 7U);
    EXPECT_EQ(Ccw.GetRotorHole(12), 2U);
}

// By angles rounded to whole degrees, as a notification has them.
TEST(HoleRing, EveryHoleIsFoundByItsRoundedAngle) {
    for (std::uint32_t nHoles = 1; nHoles <= 360; ++nHoles) {
        const CHoleRing Ring{nHoles, false};
        for (std::uint32_t Hole = 1; Hole <= nHoles; ++Hole) {
            const int Angle = static_cast<int>((Hole - 1) * (360.0 / nHoles) + 0.5);
            ASSERT_EQ(Ring.GetModuleHole(Angle), Hole) << nHoles;
        }
    }
}

// The NC simulator's ring is held by the same table.
TEST(HoleRing, AgreesWithTheTableThatTheNcSimulatorAgreesWith) {
    std::ifstream File(TestData("contract/holering.json"));
    const nlohmann::json Cases = nlohmann::json::parse(File);
    ASSERT_GT(Cases.size(), 50U);
    for (const nlohmann::json& rCase : Cases) {
        const CHoleRing Cw{rCase.at("holes"), false};
        const CHoleRing Ccw{rCase.at("holes"), true};
        const std::uint32_t Hole = Cw.GetModuleHole(rCase.at("angle"));
        EXPECT_EQ(Hole, rCase.at("module")) << rCase;
        EXPECT_EQ(Cw.GetRotorHole(Hole), rCase.at("clockwise")) << rCase;
        EXPECT_EQ(Ccw.GetRotorHole(Hole), rCase.at("counterClockwise")) << rCase;
    }
}
