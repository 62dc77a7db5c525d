#include "console/keyguard.h"

#include <gtest/gtest.h>

TEST(KeyGuard, TakesNothingBeforeTheKeyMeansAnything) {
    EXPECT_FALSE(CKeyGuard().Takes(1000000));
}

TEST(KeyGuard, IgnoresPressesForFourHundredMillisecondsAfterAChange) {
    CKeyGuard Guard;
    Guard.SetMeaning("Next", 1000);
    EXPECT_FALSE(Guard.Takes(1000));
    EXPECT_FALSE(Guard.Takes(1399));
    EXPECT_TRUE(Guard.Takes(1400));
    EXPECT_TRUE(Guard.Takes(500000));
}

TEST(KeyGuard, IgnoresAPressThatBeganBeforeTheChange) {
    CKeyGuard Guard;
    Guard.SetMeaning("Next", 0);
    Guard.SetMeaning("End", 5000);
    EXPECT_FALSE(Guard.Takes(4999));
    EXPECT_FALSE(Guard.Takes(4000));
}

TEST(KeyGuard, TheSameMeaningOnceMoreIsNoChange) {
    CKeyGuard Guard;
    Guard.SetMeaning("Next", 1000);
    Guard.SetMeaning("Next", 2000);
    EXPECT_TRUE(Guard.Takes(2001));
}

TEST(KeyGuard, EachChangeBeginsTheTimeAnew) {
    CKeyGuard Guard;
    Guard.SetMeaning("Next", 1000);
    Guard.SetMeaning("End", 1300);
    Guard.SetMeaning("Next", 1600);
    EXPECT_FALSE(Guard.Takes(1999));
    EXPECT_TRUE(Guard.Takes(2000));
}
