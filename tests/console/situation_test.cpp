#include "console/situation.h"

#include <gtest/gtest.h>

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
