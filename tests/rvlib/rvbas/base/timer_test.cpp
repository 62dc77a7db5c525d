#include "rvlib/rvbas/base/timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/wnd.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CTestTimer : public Base::CTimer {
public:
    explicit CTestTimer(std::function<void()> Action = {}) : m_Action(std::move(Action)) {}
    ~CTestTimer() override { Stop(); }

    std::vector<std::uint64_t> m_Times;
    std::function<void()> m_Action;

private:
    void OnTimer() override {
        m_Times.push_back(IFEventLoop::Current().Now());
        if (m_Action) {
            const auto Action = m_Action;  // the action may destroy the timer
            Action();
        }
    }
};

/// A platform that still delivers ticks of a killed timer.
class CLateLoop : public CVirtualEventLoop {
public:
    std::uint32_t SetTimer(std::uint32_t Period, TimerProc Proc) override {
        const std::uint32_t Id = CVirtualEventLoop::SetTimer(Period, Proc);
        m_Procs[Id] = std::move(Proc);
        m_LastId = Id;
        return Id;
    }
    void Tick(std::uint32_t Id) { m_Procs.at(Id)(Id); }

    std::uint32_t m_LastId = 0;

private:
    std::map<std::uint32_t, TimerProc> m_Procs;
};

class CTickWnd : public CWnd {
public:
    std::vector<WPARAM> m_Ids;

private:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_TIMER) {
            m_Ids.push_back(wParam);
        }
        return CWnd::WindowProc(Message, wParam, lParam);
    }
};

}  // namespace

TEST(CTimer, RepeatsWithoutEndByDefault) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    ASSERT_TRUE(Timer.SetTimer(100));
    ASSERT_TRUE(Timer.Start());
    Loop.Advance(350);
    EXPECT_THAT(Timer.m_Times, ElementsAre(100, 200, 300));
    EXPECT_TRUE(Timer.IsActive());
}

TEST(CTimer, FiniteCountStopsByItself) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(100, 3);
    Timer.Start();
    Loop.Advance(1000);
    EXPECT_THAT(Timer.m_Times, ElementsAre(100, 200, 300));
    EXPECT_FALSE(Timer.IsActive());
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
}

TEST(CTimer, SetTimerDoesNotStart) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(10, 1);
    EXPECT_FALSE(Timer.IsActive());
    Loop.Advance(100);
    EXPECT_THAT(Timer.m_Times, IsEmpty());
}

TEST(CTimer, SetTimerWithZeroKeepsPeriodAndCountButTakesTheWindow) {
    CVirtualEventLoop Loop;
    CTickWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    CTestTimer Timer;
    EXPECT_TRUE(Timer.SetTimer(100, 2, &Wnd));
    EXPECT_FALSE(Timer.SetTimer(0, 7, nullptr));
    ASSERT_TRUE(Timer.Start());
    Loop.Advance(1000);
    // Period and count of the first call; but OnTimer comes, so the window has been replaced.
    EXPECT_THAT(Timer.m_Times, ElementsAre(100, 200));
    EXPECT_THAT(Wnd.m_Ids, IsEmpty());
}

TEST(CTimer, StartOnARunningTimerLeavesOneRecord) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(100, 1);
    Timer.Start();
    Loop.Advance(60);
    Timer.Start();
    EXPECT_EQ(Base::CTimer::GetActiveCount(), 1U);
    EXPECT_EQ(Loop.GetTimerCount(), 1U);
    Loop.Advance(1000);
    EXPECT_THAT(Timer.m_Times, ElementsAre(160));
}

TEST(CTimer, OneShotReadsAsNotActiveInItsCallback) {
    CVirtualEventLoop Loop;
    bool bActive = true;
    CTestTimer Timer;
    Timer.m_Action = [&] { bActive = Timer.IsActive(); };
    Timer.SetTimer(50, 1);
    Timer.Start();
    Loop.Advance(50);
    EXPECT_FALSE(bActive);
}

TEST(CTimer, RestartedInItsCallbackFiresUnderANewPlatformId) {
    CLateLoop Loop;
    CTestTimer Timer;
    std::vector<std::uint32_t> Ids;
    Timer.m_Action = [&] {
        if (Ids.size() < 3) {
            Timer.Start();
            Ids.push_back(Loop.m_LastId);
        }
    };
    Timer.SetTimer(50, 1);
    Timer.Start();
    Ids.push_back(Loop.m_LastId);
    Loop.Advance(1000);
    EXPECT_THAT(Timer.m_Times, ElementsAre(50, 100, 150));
    ASSERT_EQ(Ids.size(), 3U);
    EXPECT_NE(Ids[0], Ids[1]);
    EXPECT_NE(Ids[1], Ids[2]);
}

TEST(CTimer, MayBeDestroyedInItsCallback) {
    CVirtualEventLoop Loop;
    const CLogCapture Log;
    auto pTimer = std::make_unique<CTestTimer>();
    int nCalls = 0;
    pTimer->m_Action = [&] {
        ++nCalls;
        pTimer.reset();
    };
    pTimer->SetTimer(50);
    pTimer->Start();
    Loop.Advance(200);
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CTimer, CallbackMayStopAnotherTimerDueAtTheSameInstant) {
    CVirtualEventLoop Loop;
    CTestTimer Second;
    CTestTimer First([&] { Second.Stop(); });
    First.SetTimer(50, 1);
    Second.SetTimer(50, 1);
    First.Start();
    Second.Start();
    Loop.Advance(100);
    EXPECT_EQ(First.m_Times.size(), 1U);
    EXPECT_THAT(Second.m_Times, IsEmpty());
}

TEST(CTimer, TickAfterStopIsDropped) {
    CLateLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50);
    Timer.Start();
    const std::uint32_t Id = Loop.m_LastId;
    Loop.Tick(Id);
    EXPECT_EQ(Timer.m_Times.size(), 1U);  // while it runs, the tick gets through
    Timer.Stop();
    Loop.Tick(Id);
    EXPECT_EQ(Timer.m_Times.size(), 1U);
}

TEST(CTimer, TickOfTheFormerStartIsDroppedAfterARestart) {
    CLateLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50);
    Timer.Start();
    const std::uint32_t FirstId = Loop.m_LastId;
    Timer.Start();
    Loop.Tick(FirstId);
    EXPECT_THAT(Timer.m_Times, IsEmpty());
}

TEST(CTimer, TickAfterTheLastTimerIsGoneIsDropped) {
    CLateLoop Loop;
    std::uint32_t Id = 0;
    {
        CTestTimer Timer;
        Timer.SetTimer(50);
        Timer.Start();
        Id = Loop.m_LastId;
    }
    EXPECT_EQ(Base::CTimer::GetActiveCount(), 0U);
    EXPECT_EQ(Base::CTimer::GetUnusedCount(), 0U);
    Loop.Tick(Id);
}

// A count of 0 is no one-shot: its ticks assert and are swallowed.
TEST(CTimer, CountZeroAssertsAndNeverCalls) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50, 0);
    Timer.Start();
    const CLogCapture Log;
    Loop.Advance(50);
    EXPECT_THAT(Timer.m_Times, IsEmpty());
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("must be != 0"));
    EXPECT_TRUE(Timer.IsActive());
}

TEST(CTimer, NegativeCountIsSwallowedWithoutAssertion) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50, 0x80000000U);
    Timer.Start();
    const CLogCapture Log;
    Loop.Advance(200);
    EXPECT_THAT(Timer.m_Times, IsEmpty());
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CTimer, RefusalOfThePlatformIsReturned) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50, 1);
    Loop.FailTimers(1);
    const CLogCapture Log(true);
    EXPECT_FALSE(Timer.Start());
    EXPECT_FALSE(Timer.IsActive());
    EXPECT_EQ(Base::CTimer::GetActiveCount(), 0U);
    EXPECT_THAT(Log.GetTexts("Timer"), ElementsAre("CTimer::Start() returns: 0"));
    EXPECT_TRUE(Timer.Start());
}

TEST(CTimer, RestartOfARunningTimerThatIsRefusedLeavesItStopped) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(50);
    Timer.Start();
    Loop.FailTimers(1);
    EXPECT_FALSE(Timer.Start());
    EXPECT_FALSE(Timer.IsActive());
    Loop.Advance(200);
    EXPECT_THAT(Timer.m_Times, IsEmpty());
}

TEST(CTimer, StopOnAStoppedTimerHasNoEffect) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    const CLogCapture Log;
    Timer.Stop();
    EXPECT_FALSE(Timer.IsActive());
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CTimer, DestroyedWhileRunningAssertsAndStops) {
    CVirtualEventLoop Loop;
    class CPlain : public Base::CTimer {
        void OnTimer() override { FAIL() << "called after the end"; }
    };
    const CLogCapture Log;
    {
        CPlain Timer;
        Timer.SetTimer(50);
        Timer.Start();
    }
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("Stop timer before you destroy timer object)"));
    EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "!m_IsActive");
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
    Loop.Advance(200);
}

TEST(CTimer, WindowGetsTheTicksInItsPlace) {
    CVirtualEventLoop Loop;
    CTickWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    CTestTimer First;
    CTestTimer Second;
    First.SetTimer(100, 1, &Wnd);
    Second.SetTimer(100, 1, &Wnd);
    ASSERT_TRUE(First.Start());
    ASSERT_TRUE(Second.Start());
    Loop.Advance(100);
    ASSERT_EQ(Wnd.m_Ids.size(), 2U);
    EXPECT_EQ(Wnd.m_Ids[1], Wnd.m_Ids[0] + 1);  // ids of their own, counted up
    EXPECT_THAT(First.m_Times, IsEmpty());
    First.Stop();
    Second.Stop();
    Loop.Advance(500);
    EXPECT_EQ(Wnd.m_Ids.size(), 2U);
}

TEST(CTimer, RecordsAreReused) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(10, 1);
    for (int i = 0; i < 100; ++i) {
        Timer.Start();
        Loop.Advance(10);
    }
    EXPECT_EQ(Timer.m_Times.size(), 100U);
    EXPECT_EQ(Base::CTimer::GetUnusedCount(), 1U);
}

// A threshold for the log and no limit: the timer starts all the same.
TEST(CTimer, ManyUnusedRecordsAssertAndGoOn) {
    CVirtualEventLoop Loop;
    std::vector<std::unique_ptr<CTestTimer>> Timers;
    for (int i = 0; i < 256; ++i) {
        Timers.push_back(std::make_unique<CTestTimer>());
        Timers.back()->SetTimer(10, 1);
        ASSERT_TRUE(Timers.back()->Start());
    }
    for (const auto& pTimer : Timers) {
        pTimer->Stop();
    }
    EXPECT_EQ(Base::CTimer::GetUnusedCount(), 256U);
    {
        const CLogCapture Log;
        EXPECT_TRUE(Timers[0]->Start());  // leaves 255
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("there are 255 unused TimerMapper objects!"));
        EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "ms_pUnusedTimerObjects->GetCount() < 255");
    }
    const CLogCapture Log;
    EXPECT_TRUE(Timers[1]->Start());  // leaves 254
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CTimer, LogsItsCallsOnItsTopic) {
    CVirtualEventLoop Loop;
    CTestTimer Timer;
    Timer.SetTimer(10, 2);
    const CLogCapture Log(true);
    Timer.Start();
    Loop.Advance(10);
    Timer.Stop();
    EXPECT_THAT(Log.GetTexts("Timer"), ElementsAre("CTimer::Start() returns: 1", "CTimer::OnTimer() called",
                                                   "CTimer::Stop() called"));
}
