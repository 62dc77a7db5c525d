#include "rvlib/rvbas/base/idtimer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class CTestIDTimer : public Base::CIDTimer {
public:
    std::vector<std::pair<std::int32_t, std::uint64_t>> m_Timeouts;  ///< id, instant
    std::function<void(std::int32_t)> m_Action;

    /// Sets the id of the next new timer; returns the former one.
    static std::int32_t ExchangeNextID(std::int32_t TimerID) {
        return std::exchange(ms_NextTimerID, TimerID);
    }

private:
    void OnIDTimeout(std::int32_t TimerID) override {
        m_Timeouts.emplace_back(TimerID, IFEventLoop::Current().Now());
        if (m_Action) {
            const auto Action = m_Action;
            Action(TimerID);
        }
    }
};

}  // namespace

TEST(CIDTimer, OneShotSignalsOnceWithItsId) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t Id = Timers.Start(100, 1);
    EXPECT_GE(Id, 10);
    EXPECT_TRUE(Timers.IsActive(Id));
    EXPECT_TRUE(Timers.HasActiveTimer());
    Loop.Advance(1000);
    EXPECT_THAT(Timers.m_Timeouts, ElementsAre(Pair(Id, 100)));
    EXPECT_FALSE(Timers.IsActive(Id));
    EXPECT_FALSE(Timers.HasActiveTimer());
}

TEST(CIDTimer, EndlessRepeatsUntilStopped) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t Id = Timers.Start(100, Base::CIDTimer::ENDLESS);
    Loop.Advance(300);
    Timers.Stop(Id);
    Loop.Advance(300);
    EXPECT_THAT(Timers.m_Timeouts, ElementsAre(Pair(Id, 100), Pair(Id, 200), Pair(Id, 300)));
}

TEST(CIDTimer, SameIdComesBackAfterItHasFired) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t First = Timers.Start(100, 1);
    Loop.Advance(100);
    EXPECT_EQ(Timers.Start(100, 1), First);
}

TEST(CIDTimer, SameIdComesBackAfterStop) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t First = Timers.Start(100, 1);
    Timers.Stop(First);
    EXPECT_EQ(Timers.Start(100, 1), First);
}

TEST(CIDTimer, TwoTimersAtOnceHaveTwoIds) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t First = Timers.Start(100, 1);
    const std::int32_t Second = Timers.Start(50, 1);
    EXPECT_EQ(Second, First + 1);
    Loop.Advance(200);
    EXPECT_THAT(Timers.m_Timeouts, ElementsAre(Pair(Second, 50), Pair(First, 100)));
}

TEST(CIDTimer, IdsAreSharedByAllObjects) {
    CVirtualEventLoop Loop;
    CTestIDTimer One;
    CTestIDTimer Two;
    EXPECT_NE(One.Start(100, 1), Two.Start(100, 1));
}

TEST(CIDTimer, UnknownIdStopsNothingAndIsNotActive) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t Id = Timers.Start(100, 1);
    Timers.Stop(Id + 1000);
    Timers.Stop(0);
    EXPECT_FALSE(Timers.IsActive(Id + 1000));
    EXPECT_FALSE(Timers.IsActive(0));
    EXPECT_TRUE(Timers.IsActive(Id));
}

TEST(CIDTimer, RestartedInItsCallbackKeepsItsId) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    Timers.m_Action = [&](std::int32_t Id) {
        EXPECT_FALSE(Timers.IsActive(Id));
        if (Timers.m_Timeouts.size() < 3) {
            EXPECT_EQ(Timers.Start(100, 1), Id);
        }
    };
    const std::int32_t Id = Timers.Start(100, 1);
    Loop.Advance(1000);
    EXPECT_THAT(Timers.m_Timeouts, ElementsAre(Pair(Id, 100), Pair(Id, 200), Pair(Id, 300)));
}

TEST(CIDTimer, MayBeDestroyedInItsCallback) {
    CVirtualEventLoop Loop;
    const CLogCapture Log;
    auto pTimers = std::make_unique<CTestIDTimer>();
    int nCalls = 0;
    pTimers->m_Action = [&](std::int32_t) {
        ++nCalls;
        pTimers.reset();
    };
    pTimers->Start(100, Base::CIDTimer::ENDLESS);
    pTimers->Start(150, Base::CIDTimer::ENDLESS);
    Loop.Advance(1000);
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CIDTimer, DestructionStopsWhatRunsWithoutAssertion) {
    CVirtualEventLoop Loop;
    const CLogCapture Log;
    {
        CTestIDTimer Timers;
        Timers.Start(100, 1);
        Timers.Start(100, 1);
    }
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
}

TEST(CIDTimer, ZeroMillisecondsIsRefused) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    EXPECT_EQ(Timers.Start(0, 1), 0);
    EXPECT_FALSE(Timers.HasActiveTimer());
}

TEST(CIDTimer, RefusalOfThePlatformGivesZeroAndTheTimerIsReused) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t Id = Timers.Start(100, 1);
    Timers.Stop(Id);
    Loop.FailTimers(1);
    EXPECT_EQ(Timers.Start(100, 1), 0);
    EXPECT_EQ(Timers.Start(100, 1), Id);
}

// After wrapping the counter would yield 0, which means no timer. It isn't advanced then, so that two timers
// share the id 10; that is meant so.
TEST(CIDTimer, CounterThatYieldsZeroGivesTenTwice) {
    CVirtualEventLoop Loop;
    const std::int32_t Former = CTestIDTimer::ExchangeNextID(-1);
    {
        CTestIDTimer Timers;
        EXPECT_EQ(Timers.Start(100, 1), -1);
        const CLogCapture Log;
        EXPECT_EQ(Timers.Start(100, 1), 10);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible"));
        EXPECT_EQ(Timers.Start(100, 1), 10);
        EXPECT_EQ(Timers.Start(100, 1), 11);
    }
    CTestIDTimer::ExchangeNextID(Former);
}

TEST(CIDTimer, CounterWrapsFromTheLargestIdToTheSmallest) {
    CVirtualEventLoop Loop;
    const std::int32_t Former = CTestIDTimer::ExchangeNextID(2147483647);
    {
        CTestIDTimer Timers;
        EXPECT_EQ(Timers.Start(100, 1), 2147483647);
        EXPECT_EQ(Timers.Start(100, 1), -2147483647 - 1);
    }
    CTestIDTimer::ExchangeNextID(Former);
}

TEST(CIDTimer, LogsItsCalls) {
    CVirtualEventLoop Loop;
    CTestIDTimer Timers;
    const std::int32_t Former = CTestIDTimer::ExchangeNextID(40);
    const CLogCapture Log(true);
    Timers.Start(20, 1);
    Loop.Advance(20);
    Timers.IsActive(40);
    Timers.Stop(40);
    EXPECT_THAT(Log.GetTexts("Timer"),
                ElementsAre("CIDTimer::Start(msTimeout=20, nCount=1) called", "CIDTimer: 1 Timers in List",
                            "CTimer::Start() returns: 1", "CIDTimer::Start() returns: 40",
                            "CTimer::Stop() called", "CTimer::OnTimer() called", "CIDTimer: 40 signalled",
                            "CIDTimer::IsActive(TimerID=40) returns: 0", "CIDTimer::Stop(TimerID=40) called",
                            "CTimer::Stop() called"));
    CTestIDTimer::ExchangeNextID(Former);
}
