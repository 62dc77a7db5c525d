#include "rvdlm/m_rtr/rtr_trim/prebalancing/readinglog.h"

#include <gtest/gtest.h>

namespace {

CArrivedReadings::CReading MakeReading(std::uint64_t Time) {
    return {Time, 1, -3, 4, Measurement::eTest1, true};
}

}  // namespace

TEST(ReadingLog, GivesWhatCameSinceTheHostAskedLast) {
    CReadingLog Log;
    CArrivedReadings Host;
    Log.Get(Host);
    EXPECT_TRUE(Host.m_Readings.empty());
    Log.Add(MakeReading(10));
    Log.Add(MakeReading(20));
    Log.Get(Host);
    ASSERT_EQ(Host.m_Readings.size(), 2U);
    EXPECT_EQ(Host.m_Readings[0], MakeReading(10));
    EXPECT_EQ(Host.m_nSeen, 2U);
    Log.Add(MakeReading(30));
    Log.Get(Host);
    ASSERT_EQ(Host.m_Readings.size(), 3U) << "behind those that were there";
    EXPECT_EQ(Host.m_Readings[2], MakeReading(30));
}

TEST(ReadingLog, OfTooManyTheLatestAreKeptInTheirOrder) {
    CReadingLog Log;
    for (std::uint64_t i = 0; i < CReadingLog::CAPACITY + 10; ++i) {
        Log.Add(MakeReading(i));
    }
    CArrivedReadings Host;
    Host.m_nSeen = 3;
    Log.Get(Host);
    ASSERT_EQ(Host.m_Readings.size(), CReadingLog::CAPACITY);
    EXPECT_EQ(Host.m_Readings.front().m_Time, 10U);
    EXPECT_EQ(Host.m_Readings.back().m_Time, CReadingLog::CAPACITY + 9);
    EXPECT_EQ(Host.m_nSeen, CReadingLog::CAPACITY + 10);
}

TEST(ReadingLog, AHostThatHasHadMoreKnowsAnotherRun) {
    CReadingLog Log;
    Log.Add(MakeReading(10));
    CArrivedReadings Host;
    Host.m_nSeen = 7;
    Log.Get(Host);
    EXPECT_EQ(Host.m_Readings.size(), 1U);
    EXPECT_EQ(Host.m_nSeen, 1U);
}
