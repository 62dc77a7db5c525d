#include "rvdlm/m_rtr/rtr_trim/prebalancing/statehistory.h"

#include <gtest/gtest.h>

namespace {

TEST(StateHistoryTest, PrintsALineForEachTransition) {
    CStateHistory History;
    EXPECT_EQ(History.ToString(), "");
    History.Add({0, "eIdle", "eA", "eStart 3000 rpm", 1, 12});
    History.Add({3050, "eA", "eB", "eKeyPressed eNext", 2, 12});
    EXPECT_EQ(History.ToString(),
              "0 ms  eIdle -> eA  step 1/12  by eStart 3000 rpm\n"
              "3050 ms  eA -> eB  step 2/12  by eKeyPressed eNext\n");
}

TEST(StateHistoryTest, KeepsTheLastOnesAndSaysHowManyWent) {
    CStateHistory History;
    for (std::uint64_t i = 0; i < CStateHistory::CAPACITY + 3; ++i) {
        History.Add({i, "eA", "eB", "eC", 0, 0});
    }
    ASSERT_EQ(History.GetEntries().size(), 64U);
    EXPECT_EQ(History.GetEntries().front().m_Time, 3U);
    EXPECT_EQ(History.GetEntries().back().m_Time, 66U);
    EXPECT_EQ(History.ToString().substr(0, 32), "(3 older transitions dropped)\n3 ");
}

}  // namespace
