#include "rvlib/rvbas/base/autoincdectimer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/input.h"
#include "platform/window/wnd.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CStepper : public Base::CAutoIncDecTimer {
public:
    std::vector<std::uint64_t> m_Up;
    std::vector<std::uint64_t> m_Down;
    std::vector<bool> m_First;  ///< the flag of the direction, at each step
    std::function<void()> m_Action;

private:
    void OnAutoIncrement() override {
        EXPECT_FALSE(IsFirstDecrement());
        Note(m_Up, IsFirstIncrement());
    }
    void OnAutoDecrement() override {
        EXPECT_FALSE(IsFirstIncrement());
        Note(m_Down, IsFirstDecrement());
    }
    void Note(std::vector<std::uint64_t>& rTimes, bool bFirst) {
        rTimes.push_back(IFEventLoop::Current().Now());
        m_First.push_back(bFirst);
        if (m_Action) {
            const auto Action = m_Action;  // the action may destroy the stepper
            Action();
        }
    }
};

class CAutoIncDecTimerTest : public testing::Test {
protected:
    ~CAutoIncDecTimerTest() override {
        SetMouseButtons(false, false);
        SetMouseButtonsSwapped(false);
    }
    CVirtualEventLoop m_Loop;
};

/// The host's window and another one beside it.
struct CHostWindows {
    CHostWindows() {
        m_Host.Create(nullptr, CRect(0, 0, 10, 10), 1);
        m_Host.SetWindowText("Corvane Machine Console");
        m_Other.Create(nullptr, CRect(0, 0, 10, 10), 2);
        m_Other.SetWindowText("Other");
        CWnd::SetForegroundWindow(&m_Host);
    }
    CWnd m_Host;
    CWnd m_Other;
};

}  // namespace

TEST_F(CAutoIncDecTimerTest, StepsFrom400GetFasterDownTo150) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(2000);
    // Gaps of 400, 350, 300, 250, 200, 150, 150, 150 ms after the step at once.
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750, 1050, 1300, 1500, 1650, 1800, 1950));
    EXPECT_THAT(Stepper.m_Down, IsEmpty());
}

TEST_F(CAutoIncDecTimerTest, StepsFrom450GetFasterDownTo150) {
    CStepper Stepper;
    Stepper.StartAutoDecrement(450);
    m_Loop.Advance(2100);
    EXPECT_THAT(Stepper.m_Down, ElementsAre(0, 450, 850, 1200, 1500, 1750, 1950, 2100));
    EXPECT_THAT(Stepper.m_Up, IsEmpty());
}

TEST_F(CAutoIncDecTimerTest, OnlyTheStepOfTheStartIsTheFirst) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(750);
    EXPECT_THAT(Stepper.m_First, ElementsAre(true, false, false));
    Stepper.StopAutoIncrement();
    Stepper.m_First.clear();
    Stepper.StartAutoDecrement(400);
    m_Loop.Advance(400);
    EXPECT_THAT(Stepper.m_First, ElementsAre(true, false));
}

TEST_F(CAutoIncDecTimerTest, StopEndsTheSeries) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(399);
    Stepper.StopAutoDecrement();  // the other one's business
    Stepper.StopAutoIncrement();
    m_Loop.Advance(2000);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0));
}

TEST_F(CAutoIncDecTimerTest, StopWithoutASeriesHasNoEffect) {
    const CLogCapture Log(true);
    CStepper Stepper;
    Stepper.StopAutoIncrement();
    Stepper.StopAutoDecrement();
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST_F(CAutoIncDecTimerTest, NewSeriesBeginsSlowlyAgain) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(1650);
    Stepper.StopAutoIncrement();
    Stepper.m_Up.clear();
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(750);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(1650, 2050, 2400));
}

TEST_F(CAutoIncDecTimerTest, StartOfARunningSeriesAssertsAndStartsAnew) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(100);
    {
        const CLogCapture Log;
        Stepper.StartAutoIncrement(400);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("IncrementTimer already running"));
        EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "!m_IncrementTimer.IsActive()");
    }
    m_Loop.Advance(400);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 100, 500));
    Stepper.StartAutoDecrement(400);
    const CLogCapture Log;
    Stepper.StartAutoDecrement(400);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("DecrementTimer already running"));
    EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "!m_DecrementTimer.IsActive()");
}

TEST_F(CAutoIncDecTimerTest, OneFurtherStepWhenTheHostIsNotInFront) {
    CHostWindows Windows;
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(400);
    CWnd::SetForegroundWindow(&Windows.m_Other);
    m_Loop.Advance(5000);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750));
}

TEST_F(CAutoIncDecTimerTest, GoesOnWhileTheHostIsInFront) {
    CHostWindows Windows;
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(1300);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750, 1050, 1300));
}

TEST_F(CAutoIncDecTimerTest, GoesOnWhenThereIsNoHostWindow) {
    CWnd Other;
    Other.Create(nullptr, CRect(0, 0, 10, 10), 2);
    CWnd::SetForegroundWindow(&Other);
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(1050);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750, 1050));
}

TEST_F(CAutoIncDecTimerTest, ReleaseOfTheButtonEndsASeriesBegunWithIt) {
    SetMouseButtons(true, false);
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(500);
    SetMouseButtons(false, false);
    m_Loop.Advance(5000);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750));  // the step that finds out is still made
}

TEST_F(CAutoIncDecTimerTest, RightButtonIsWatchedWhenButtonsAreSwapped) {
    SetMouseButtonsSwapped(true);
    SetMouseButtons(false, true);
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(400);
    SetMouseButtons(true, false);  // the left one doesn't count now
    m_Loop.Advance(5000);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750));
}

TEST_F(CAutoIncDecTimerTest, ButtonIsNotWatchedInASeriesBegunByKey) {
    CStepper Stepper;
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(100);
    SetMouseButtons(true, false);
    m_Loop.Advance(400);
    SetMouseButtons(false, false);
    m_Loop.Advance(550);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750, 1050));
}

TEST_F(CAutoIncDecTimerTest, MayBeDestroyedInAStepOfTheTimer) {
    auto pStepper = std::make_unique<CStepper>();
    int nSteps = 0;
    pStepper->m_Action = [&] {
        if (++nSteps == 2) {
            pStepper.reset();
        }
    };
    pStepper->StartAutoIncrement(400);
    m_Loop.Advance(2000);
    EXPECT_EQ(nSteps, 2);
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

TEST_F(CAutoIncDecTimerTest, MayBeDestroyedInTheFirstStep) {
    auto pStepper = std::make_unique<CStepper>();
    CStepper* pAlias = pStepper.get();
    pStepper->m_Action = [&] { pStepper.reset(); };
    pAlias->StartAutoDecrement(400);
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

TEST_F(CAutoIncDecTimerTest, StepMayBeginTheOtherDirection) {
    CStepper Stepper;
    bool bTurned = false;
    Stepper.m_Action = [&] {
        if (!bTurned && !Stepper.m_Up.empty() && Stepper.m_Up.back() == 400) {
            bTurned = true;
            Stepper.StartAutoDecrement(400);
        }
    };
    Stepper.StartAutoIncrement(400);
    m_Loop.Advance(800);
    EXPECT_THAT(Stepper.m_Up, ElementsAre(0, 400, 750));
    EXPECT_THAT(Stepper.m_Down, ElementsAre(400, 800));
}
