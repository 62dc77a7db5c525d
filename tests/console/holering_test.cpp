#include "console/holering.h"

#include <gtest/gtest.h>

#include "console/situation.h"

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

TEST(Situation, ScrewsAreThoseOfTheNotificationWithExactGrams) {
    CSituation Situation;
    Situation.m_Progress.m_Readings[0].m_bShown = true;
    Situation.m_Notification.m_Values = {3, 4, 0, 113, 90, 200, -1, 0};
    const CHoleRing Ring{12, true};
    EXPECT_FALSE(Situation.HasScrews(0));
    // Somebody who only has the notification knows hundredths.
    EXPECT_EQ(Situation.GetScrews(0, Ring), (std::vector<CRotorScrew>{{1, 1.13}, {10, 2.0}}));
    Situation.m_Progress.m_Screws[0].emplace();
    Situation.m_Progress.m_Screws[0]->push_back({1, 1.125});
    Situation.m_Progress.m_Screws[0]->push_back({4, 2.0});
    EXPECT_TRUE(Situation.HasScrews(0));
    EXPECT_EQ(Situation.GetScrews(0, Ring), (std::vector<CRotorScrew>{{1, 1.125}, {10, 2.0}}));
}
