#include "rvdlm/m_rtr/rtr_trim/silencewatch.h"

#include <gtest/gtest.h>

using Finding = CSilenceWatch::Finding;

TEST(SilenceWatch, SilenceCountsAfterOneSecondAndIsToldOnce) {
    CSilenceWatch Watch;
    Watch.OnFrame();
    EXPECT_EQ(Watch.Tick(true), Finding::eNothing);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Watch.Tick(true), Finding::eNothing) << 250 * (i + 1) << " ms";
    }
    EXPECT_EQ(Watch.Tick(true), Finding::eFellSilent);
    EXPECT_EQ(Watch.Tick(true), Finding::eNothing);
    EXPECT_TRUE(Watch.IsSilent());
}

TEST(SilenceWatch, ModuleWithTheSpindleAtRestMayBeSilent) {
    CSilenceWatch Watch;
    Watch.OnFrame();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Watch.Tick(false), Finding::eNothing);
    }
    // The silence at rest doesn't count once the spindle turns.
    EXPECT_EQ(Watch.Tick(true), Finding::eNothing);
}

TEST(SilenceWatch, NothingIsMissedOfAModuleThatWasNeverHeard) {
    CSilenceWatch Watch;
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(Watch.Tick(true), Finding::eNothing);
    }
}

TEST(SilenceWatch, StateIsAskedForWhenFramesComeAgainAndAnewUntilItIsKnown) {
    CSilenceWatch Watch;
    Watch.OnFrame();
    Watch.Tick(true);
    for (int i = 0; i < 4; ++i) {
        Watch.Tick(true);
    }
    ASSERT_TRUE(Watch.IsSilent());
    const auto TickWithFrame = [&Watch] {
        Watch.OnFrame();
        return Watch.Tick(true);
    };
    EXPECT_EQ(TickWithFrame(), Finding::eSpeaksAgain);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(TickWithFrame(), Finding::eNothing) << "the request is still being repeated";
    }
    EXPECT_EQ(TickWithFrame(), Finding::eSpeaksAgain);
    Watch.OnModuleState();
    EXPECT_FALSE(Watch.IsSilent());
    EXPECT_EQ(TickWithFrame(), Finding::eNothing);
}

namespace {

/// A tick in which frames have come, as long as the line works.
Finding TickWithFrame(CSilenceWatch& rWatch, bool bTurning = true) {
    rWatch.OnFrame();
    return rWatch.Tick(bTurning);
}

}  // namespace

TEST(SilenceWatch, StateIsAskedForAfterTwoSecondsWithoutAReport) {
    CSilenceWatch Watch;
    Watch.OnModuleState();
    for (int nRound = 0; nRound < 3; ++nRound) {
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(TickWithFrame(Watch), Finding::eNothing) << 250 * (i + 1) << " ms";
        }
        EXPECT_EQ(TickWithFrame(Watch), Finding::eStateIsOld) << "repeated until it comes";
    }
    for (int i = 0; i < 7; ++i) {
        TickWithFrame(Watch);
    }
    Watch.OnModuleState();
    EXPECT_EQ(TickWithFrame(Watch), Finding::eNothing);
}

TEST(SilenceWatch, StateOfAModuleAtRestIsNotAskedFor) {
    CSilenceWatch Watch;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(TickWithFrame(Watch, false), Finding::eNothing);
    }
}

// Each answer would break off anew what is broken off already.
TEST(SilenceWatch, WrongStateIsNotAskedForAgain) {
    CSilenceWatch Watch;
    Watch.OnWrongState();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(TickWithFrame(Watch), Finding::eNothing);
    }
    Watch.OnModuleState();
    for (int i = 0; i < 7; ++i) {
        TickWithFrame(Watch);
    }
    EXPECT_EQ(TickWithFrame(Watch), Finding::eStateIsOld);
}
