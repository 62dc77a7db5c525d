#include "platform/system/virtualeventloop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;

TEST(EventLoopTest, CurrentIsTheOneMadeLastAndTheFormerOneComesBack) {
    IFEventLoop* pBefore = IFEventLoop::HasCurrent() ? &IFEventLoop::Current() : nullptr;
    {
        CVirtualEventLoop Outer;
        EXPECT_EQ(&IFEventLoop::Current(), &Outer);
        {
            CVirtualEventLoop Inner;
            EXPECT_EQ(&IFEventLoop::Current(), &Inner);
        }
        EXPECT_EQ(&IFEventLoop::Current(), &Outer);
    }
    EXPECT_EQ(IFEventLoop::HasCurrent() ? &IFEventLoop::Current() : nullptr, pBefore);
}

TEST(EventLoopTest, AskingForALoopWhereThereIsNoneThrows) {
    IFEventLoop* pFormer = IFEventLoop::SetCurrent(nullptr);
    EXPECT_FALSE(IFEventLoop::HasCurrent());
    EXPECT_THROW(IFEventLoop::Current(), std::logic_error);
    IFEventLoop::SetCurrent(pFormer);
}

class VirtualEventLoopTest : public testing::Test {
protected:
    /// A timer procedure that writes down when it ran.
    IFEventLoop::TimerProc Note(const std::string& rName) {
        return
            [this, rName](std::uint32_t) { m_Events.push_back(rName + "@" + std::to_string(m_Loop.Now())); };
    }

    CVirtualEventLoop m_Loop;
    std::vector<std::string> m_Events;
};

TEST_F(VirtualEventLoopTest, PostedWorkRunsInOrderAndOnlyWhenTheLoopRuns) {
    for (const char* pName : {"a", "b", "c"}) {
        m_Loop.Post([this, pName] { m_Events.push_back(pName); });
    }
    EXPECT_TRUE(m_Events.empty());
    m_Loop.RunPosted();
    EXPECT_THAT(m_Events, ElementsAre("a", "b", "c"));
    EXPECT_EQ(m_Loop.Now(), 0u);
}

TEST_F(VirtualEventLoopTest, WorkPostedByWorkRunsBehindWhatWaitsAlready) {
    m_Loop.Post([this] {
        m_Events.push_back("first");
        m_Loop.Post([this] { m_Events.push_back("third"); });
    });
    m_Loop.Post([this] { m_Events.push_back("second"); });
    m_Loop.RunPosted();
    EXPECT_THAT(m_Events, ElementsAre("first", "second", "third"));
}

TEST_F(VirtualEventLoopTest, TimersRunInOrderOfDueTime) {
    m_Loop.SetTimer(30, Note("slow"));
    m_Loop.SetTimer(20, Note("fast"));
    m_Loop.Advance(65);
    EXPECT_THAT(m_Events, ElementsAre("fast@20", "slow@30", "fast@40", "slow@60", "fast@60"));
    EXPECT_EQ(m_Loop.Now(), 65u);
}

// At 60 ms both are due: the one that was started first goes first, although the other has the earlier last
// tick.
TEST_F(VirtualEventLoopTest, AtTheSameInstantTheTimerStartedFirstGoesFirst) {
    m_Loop.SetTimer(10, Note("first"));
    m_Loop.SetTimer(10, Note("second"));
    m_Loop.Advance(20);
    EXPECT_THAT(m_Events, ElementsAre("first@10", "second@10", "first@20", "second@20"));
}

TEST_F(VirtualEventLoopTest, WorkPostedByATimerRunsBeforeTheNextTimerOfThatInstant) {
    m_Loop.SetTimer(10, [this](std::uint32_t) { m_Loop.Post([this] { m_Events.push_back("posted"); }); });
    m_Loop.SetTimer(10, Note("second"));
    m_Loop.Advance(10);
    EXPECT_THAT(m_Events, ElementsAre("posted", "second@10"));
}

TEST_F(VirtualEventLoopTest, APeriodOfZeroCountsAsOneMillisecond) {
    m_Loop.SetTimer(0, Note("t"));
    m_Loop.Advance(3);
    EXPECT_THAT(m_Events, ElementsAre("t@1", "t@2", "t@3"));
}

TEST_F(VirtualEventLoopTest, ATimerMayKillItselfInItsCallback) {
    std::uint32_t nTicks = 0;
    m_Loop.SetTimer(10, [&](std::uint32_t Id) {
        ++nTicks;
        EXPECT_TRUE(m_Loop.KillTimer(Id));
        EXPECT_FALSE(m_Loop.KillTimer(Id)) << "it runs no more";
    });
    m_Loop.Advance(100);
    EXPECT_EQ(nTicks, 1u);
    EXPECT_EQ(m_Loop.GetTimerCount(), 0u);
}

TEST_F(VirtualEventLoopTest, ATimerMayKillAnotherThatIsDueAtTheSameInstant) {
    std::uint32_t Second = 0;
    m_Loop.SetTimer(10, [&](std::uint32_t) { m_Loop.KillTimer(Second); });
    Second = m_Loop.SetTimer(10, Note("second"));
    m_Loop.Advance(10);
    EXPECT_TRUE(m_Events.empty());
}

TEST_F(VirtualEventLoopTest, ATimerStartedInACallbackCountsFromThatInstant) {
    std::uint32_t Id = m_Loop.SetTimer(10, [&](std::uint32_t) {
        m_Loop.KillTimer(Id);
        m_Loop.SetTimer(7, Note("late"));
    });
    m_Loop.Advance(20);
    EXPECT_THAT(m_Events, ElementsAre("late@17"));
}

TEST_F(VirtualEventLoopTest, IdsAreNeverZeroAndNotGivenOutTwice) {
    const std::uint32_t First = m_Loop.SetTimer(10, Note("a"));
    const std::uint32_t Second = m_Loop.SetTimer(10, Note("b"));
    EXPECT_NE(First, 0u);
    EXPECT_NE(Second, 0u);
    EXPECT_NE(First, Second);
    EXPECT_FALSE(m_Loop.KillTimer(Second + 1));
}

TEST_F(VirtualEventLoopTest, RefusedTimersGetNoId) {
    m_Loop.FailTimers(1);
    m_Loop.FailMultimediaTimers(2);
    EXPECT_EQ(m_Loop.SetTimer(10, Note("refused")), 0u);
    EXPECT_NE(m_Loop.SetTimer(10, Note("accepted")), 0u);
    EXPECT_EQ(m_Loop.StartMultimediaTimer(10, 0, [](std::uint32_t) {}), 0u);
    EXPECT_EQ(m_Loop.StartMultimediaTimer(10, 0, [](std::uint32_t) {}), 0u);
    EXPECT_NE(m_Loop.StartMultimediaTimer(10, 0, [](std::uint32_t) {}), 0u);
    m_Loop.Advance(10);
    EXPECT_THAT(m_Events, ElementsAre("accepted@10"));
}

TEST_F(VirtualEventLoopTest, MultimediaTimersObeyTheCaps) {
    m_Loop.SetMultimediaTimerCaps({5, 100});
    EXPECT_EQ(m_Loop.GetMultimediaTimerCaps().m_PeriodMin, 5u);
    EXPECT_EQ(m_Loop.StartMultimediaTimer(4, 0, [](std::uint32_t) {}), 0u);
    EXPECT_EQ(m_Loop.StartMultimediaTimer(101, 0, [](std::uint32_t) {}), 0u);
    EXPECT_NE(m_Loop.StartMultimediaTimer(5, 0, [](std::uint32_t) {}), 0u);
    EXPECT_NE(m_Loop.StartMultimediaTimer(100, 0, [](std::uint32_t) {}), 0u);
}

TEST_F(VirtualEventLoopTest, MultimediaTimersTickInTheOrderOfAllTimersAndAreKilledOnlyAsSuch) {
    m_Loop.SetTimer(10, Note("window"));
    const std::uint32_t Handle = m_Loop.StartMultimediaTimer(10, 0, Note("multimedia"));
    m_Loop.Advance(10);
    EXPECT_THAT(m_Events, ElementsAre("window@10", "multimedia@10"));
    EXPECT_FALSE(m_Loop.KillTimer(Handle));
    EXPECT_TRUE(m_Loop.KillMultimediaTimer(Handle));
    EXPECT_FALSE(m_Loop.KillMultimediaTimer(Handle));
}

// Sleep moves the time past three ticks: one comes late, then the old rhythm goes on.
TEST_F(VirtualEventLoopTest, AfterASleepATimerTicksOnceAndKeepsItsRhythm) {
    m_Loop.SetTimer(10, Note("t"));
    m_Loop.Sleep(35);
    m_Loop.Advance(5);
    EXPECT_THAT(m_Events, ElementsAre("t@35", "t@40"));
}

TEST_F(VirtualEventLoopTest, RunEndsWhenNothingIsLeftToDo) {
    std::uint32_t nTicks = 0;
    m_Loop.SetTimer(10, [&](std::uint32_t Id) {
        if (++nTicks == 3) {
            m_Loop.KillTimer(Id);
        }
    });
    m_Loop.Run();
    EXPECT_EQ(m_Loop.Now(), 30u);
}

TEST_F(VirtualEventLoopTest, QuitEndsRunBeforeTheNextWork) {
    m_Loop.Post([this] { m_Loop.Quit(); });
    m_Loop.Post([this] { m_Events.push_back("left over"); });
    m_Loop.Run();
    EXPECT_TRUE(m_Events.empty());
    m_Loop.Run();  // a former Quit doesn't count
    EXPECT_THAT(m_Events, ElementsAre("left over"));
}

TEST_F(VirtualEventLoopTest, RunUntilStopsAtTheVeryTickThatFulfilsIt) {
    std::uint32_t nTicks = 0;
    m_Loop.SetTimer(10, [&](std::uint32_t) { ++nTicks; });
    EXPECT_TRUE(m_Loop.RunUntil([&] { return nTicks == 4; }, 1000));
    EXPECT_EQ(m_Loop.Now(), 40u);
}

TEST_F(VirtualEventLoopTest, RunUntilGivesUpAtItsTimeoutAndNotBeforeTheTickOfThatInstant) {
    m_Loop.SetTimer(50, Note("t"));
    EXPECT_FALSE(m_Loop.RunUntil([] { return false; }, 100));
    EXPECT_EQ(m_Loop.Now(), 100u);
    EXPECT_THAT(m_Events, ElementsAre("t@50", "t@100"));
}

TEST_F(VirtualEventLoopTest, RunUntilWaitsTheTimeoutEvenWithNothingToDo) {
    EXPECT_FALSE(m_Loop.RunUntil([] { return false; }, 500));
    EXPECT_EQ(m_Loop.Now(), 500u);
    EXPECT_TRUE(m_Loop.RunUntil([] { return true; }, 500));
    EXPECT_EQ(m_Loop.Now(), 500u);
}

TEST_F(VirtualEventLoopTest, TheWallClockIsPinnedAndMovesWithVirtualTime) {
    using namespace std::chrono;
    EXPECT_EQ(m_Loop.WallClock(), sys_seconds{sys_days{2024y / January / 1}});
    m_Loop.Advance(90'999);
    EXPECT_EQ(m_Loop.WallClock(), sys_seconds{sys_days{2024y / January / 1}} + 90s);
}

TEST_F(VirtualEventLoopTest, AnExceptionFromACallbackLeavesTheLoopUsable) {
    m_Loop.Post([] { throw std::runtime_error("work"); });
    m_Loop.SetTimer(10, [](std::uint32_t) { throw std::runtime_error("timer"); });
    m_Loop.SetTimer(15, Note("other"));
    EXPECT_THROW(m_Loop.Advance(20), std::runtime_error);
    EXPECT_THROW(m_Loop.Advance(12), std::runtime_error);
    EXPECT_EQ(m_Loop.Now(), 10u);
    m_Loop.Advance(6);
    EXPECT_THAT(m_Events, ElementsAre("other@15"));
}

TEST_F(VirtualEventLoopTest, OtherThreadsMayPost) {
    constexpr int POSTS = 1000;
    int nRun = 0;
    const auto PostAll = [&] {
        for (int i = 0; i < POSTS; ++i) {
            m_Loop.Post([&nRun] { ++nRun; });
        }
    };
    std::thread First(PostAll);
    std::thread Second(PostAll);
    First.join();
    Second.join();
    m_Loop.RunPosted();
    EXPECT_EQ(nRun, 2 * POSTS);
}

}  // namespace
