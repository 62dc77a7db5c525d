#include "platform/qt/qteventloop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;

/// Far more than anything here needs; only a broken loop gets there.
constexpr std::uint32_t LONG = 20'000;

class QtEventLoopTest : public testing::Test {
protected:
    CQtEventLoop m_Loop;
    std::vector<std::string> m_Events;
};

TEST_F(QtEventLoopTest, IsTheCurrentLoopWhileItLives) {
    EXPECT_EQ(&IFEventLoop::Current(), &m_Loop);
}

TEST_F(QtEventLoopTest, PostedWorkRunsInOrderOfPosting) {
    m_Loop.Post([this] {
        m_Events.push_back("first");
        m_Loop.Post([this] { m_Events.push_back("third"); });
    });
    m_Loop.Post([this] { m_Events.push_back("second"); });
    EXPECT_TRUE(m_Events.empty()) << "nothing runs in Post itself";
    EXPECT_TRUE(m_Loop.RunUntil([this] { return m_Events.size() == 3; }, LONG));
    EXPECT_THAT(m_Events, ElementsAre("first", "second", "third"));
}

TEST_F(QtEventLoopTest, PostsFromAnotherThreadRunOnTheLoopsThread) {
    const std::thread::id Own = std::this_thread::get_id();
    std::vector<int> Order;
    bool bOwnThread = true;
    std::thread Other([&] {
        for (int i = 0; i < 100; ++i) {
            m_Loop.Post([&, i] {
                bOwnThread = bOwnThread && std::this_thread::get_id() == Own;
                Order.push_back(i);
            });
        }
    });
    EXPECT_TRUE(m_Loop.RunUntil([&] { return Order.size() == 100; }, LONG));
    Other.join();
    EXPECT_TRUE(bOwnThread);
    EXPECT_TRUE(std::is_sorted(Order.begin(), Order.end()));
}

TEST_F(QtEventLoopTest, ATimerRepeatsWithItsIdUntilItKillsItself) {
    std::uint32_t nTicks = 0;
    std::uint32_t Id = 0;
    Id = m_Loop.SetTimer(1, [&](std::uint32_t Given) {
        EXPECT_EQ(Given, Id);
        if (++nTicks == 3) {
            EXPECT_TRUE(m_Loop.KillTimer(Given));
            EXPECT_FALSE(m_Loop.KillTimer(Given));
        }
    });
    ASSERT_NE(Id, 0u);
    const std::uint64_t Before = m_Loop.Now();
    EXPECT_TRUE(m_Loop.RunUntil([&] { return nTicks == 3; }, LONG));
    EXPECT_GE(m_Loop.Now() - Before, 2u) << "three periods, less the rounding of two clocks";
    EXPECT_FALSE(m_Loop.RunUntil([&] { return nTicks > 3; }, 20));
}

TEST_F(QtEventLoopTest, KillingATimerDropsItsTickEvenIfItIsDue) {
    bool bTicked = false;
    const std::uint32_t Id = m_Loop.SetTimer(1, [&](std::uint32_t) { bTicked = true; });
    m_Loop.Sleep(5);
    EXPECT_TRUE(m_Loop.KillTimer(Id));
    EXPECT_FALSE(m_Loop.RunUntil([&] { return bTicked; }, 20));
}

TEST_F(QtEventLoopTest, RunUntilEndsAtItsTimeoutWithNothingToDo) {
    const std::uint64_t Before = m_Loop.Now();
    EXPECT_FALSE(m_Loop.RunUntil([] { return false; }, 30));
    EXPECT_GE(m_Loop.Now() - Before, 29u);
}

TEST_F(QtEventLoopTest, RunUntilMayBeNested) {
    bool bInner = false;
    m_Loop.Post([&] {
        m_Loop.Post([this] { m_Events.push_back("inner"); });
        bInner = m_Loop.RunUntil([this] { return !m_Events.empty(); }, LONG);
    });
    EXPECT_TRUE(m_Loop.RunUntil([&] { return bInner; }, LONG));
}

TEST_F(QtEventLoopTest, QuitEndsRun) {
    m_Loop.Post([this] {
        m_Events.push_back("run");
        m_Loop.Quit();
    });
    m_Loop.Run();
    EXPECT_THAT(m_Events, ElementsAre("run"));
}

TEST_F(QtEventLoopTest, SleepDispatchesNothingMeanwhile) {
    bool bRun = false;
    m_Loop.Post([&] { bRun = true; });
    const std::uint64_t Before = m_Loop.Now();
    m_Loop.Sleep(2);
    EXPECT_FALSE(bRun);
    EXPECT_GE(m_Loop.Now() - Before, 1u);
    EXPECT_TRUE(m_Loop.RunUntil([&] { return bRun; }, LONG));
}

TEST_F(QtEventLoopTest, AMultimediaTimerCallsOnAThreadOfItsOwn) {
    std::atomic<int> nTicks = 0;
    std::atomic<bool> bOwnThread = false;
    std::uint32_t Given = 0;
    const std::thread::id Own = std::this_thread::get_id();
    const std::uint32_t Handle = m_Loop.StartMultimediaTimer(1, 1, [&](std::uint32_t Id) {
        bOwnThread = bOwnThread || std::this_thread::get_id() == Own;
        ++nTicks;
        m_Loop.Post([&Given, Id] { Given = Id; });
    });
    ASSERT_NE(Handle, 0u);
    EXPECT_TRUE(m_Loop.RunUntil([&] { return nTicks >= 3 && Given != 0; }, LONG));
    EXPECT_EQ(Given, Handle);
    EXPECT_FALSE(bOwnThread);

    EXPECT_TRUE(m_Loop.KillMultimediaTimer(Handle));
    const int nAfter = nTicks;
    EXPECT_FALSE(m_Loop.RunUntil([&] { return nTicks != nAfter; }, 20)) << "no callback after the kill";
    EXPECT_FALSE(m_Loop.KillMultimediaTimer(Handle));
}

TEST_F(QtEventLoopTest, AMultimediaTimerCannotBeKilledFromItsOwnCallback) {
    std::atomic<int> Answer = -1;
    const std::uint32_t Handle = m_Loop.StartMultimediaTimer(1, 1, [&](std::uint32_t Id) {
        Answer = m_Loop.KillMultimediaTimer(Id) ? 1 : 0;
        m_Loop.Post([] {});
    });
    EXPECT_TRUE(m_Loop.RunUntil([&] { return Answer != -1; }, LONG));
    EXPECT_EQ(Answer, 0);
    EXPECT_TRUE(m_Loop.KillMultimediaTimer(Handle));
}

TEST_F(QtEventLoopTest, MultimediaPeriodsOutsideTheCapsAreRefused) {
    const IFEventLoop::CTimerCaps Caps = m_Loop.GetMultimediaTimerCaps();
    EXPECT_EQ(m_Loop.StartMultimediaTimer(Caps.m_PeriodMin - 1, 0, [](std::uint32_t) {}), 0u);
    EXPECT_EQ(m_Loop.StartMultimediaTimer(Caps.m_PeriodMax + 1, 0, [](std::uint32_t) {}), 0u);
}

TEST(QtEventLoopEndTest, MultimediaTimersThatStillRunAreStopped) {
    std::atomic<int> nTicks = 0;
    {
        CQtEventLoop Loop;
        Loop.StartMultimediaTimer(1, 1, [&](std::uint32_t) {
            ++nTicks;
            Loop.Post([] {});  // so that the loop looks again
        });
        EXPECT_TRUE(Loop.RunUntil([&] { return nTicks > 0; }, LONG));
    }
    const int nAfter = nTicks;
    CQtEventLoop Next;
    EXPECT_FALSE(Next.RunUntil([&] { return nTicks != nAfter; }, 20));
}

TEST(QtEventLoopEndTest, WorkAndTimersThatWaitGoWithTheLoop) {
    bool bRun = false;
    {
        CQtEventLoop Loop;
        Loop.Post([&] { bRun = true; });
        Loop.SetTimer(1, [&](std::uint32_t) { bRun = true; });
    }
    CQtEventLoop Next;
    EXPECT_FALSE(Next.RunUntil([&] { return bRun; }, 20));
}

TEST_F(QtEventLoopTest, TheWallClockIsTheSystems) {
    using namespace std::chrono;
    const auto Difference = m_Loop.WallClock() - floor<seconds>(system_clock::now());
    EXPECT_LE(abs(Difference), 1s);
}

}  // namespace
