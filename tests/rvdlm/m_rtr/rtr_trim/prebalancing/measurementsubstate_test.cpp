#include "rvdlm/m_rtr/rtr_trim/prebalancing/measurementsubstate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"
#include "tests/support/textfiles.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t TARGET = 3000;
constexpr std::uint32_t TOLERANCE = 50;

/// Hands out the callback of the multimedia timer that was started last.
class CCapturingLoop : public CVirtualEventLoop {
public:
    std::uint32_t StartMultimediaTimer(std::uint32_t Period, std::uint32_t Resolution,
                                       MultimediaProc Proc) override {
        m_Proc = Proc;
        m_Handle = CVirtualEventLoop::StartMultimediaTimer(Period, Resolution, std::move(Proc));
        return m_Handle;
    }
    MultimediaProc m_Proc;
    std::uint32_t m_Handle = 0;
};

/// Notes what the sub-state asks its owner for. Repaints and ticks are counted apart.
class COwner : public CMeasurementSubState {
public:
    explicit COwner(std::uint32_t Target = TARGET, std::uint32_t Tolerance = TOLERANCE)
        : CMeasurementSubState(Target, Tolerance) {}

    void OnIDTimeout(std::int32_t TimerID) override { CMeasurementSubState::OnIDTimeout(TimerID); }
    void RestartMeasurement() override { m_Calls.push_back("Restart"); }
    void PleaseQueryXYValuesNOW() override { m_Calls.push_back("Query"); }
    void RepaintMeasurement() override { m_Repaints.push_back(IFEventLoop::Current().Now()); }
    void OnMeasurementLost() override { m_Calls.push_back("Lost"); }
    void OnMeasurementTick() override {
        m_Ticks.push_back(IFEventLoop::Current().Now());
        if (m_bStopInTick) {
            StopMeasurement();
        }
    }
    void ShowMeasurementOK() override { m_Calls.push_back("OK"); }
    void ShowOutOfLockWarning() override { m_Calls.push_back("OutOfLock"); }
    void ShowWrongRPMWarning() override { m_Calls.push_back("WrongRPM"); }
    void ShowWrongRPMAndOutOfLockWarning() override { m_Calls.push_back("WrongRPMAndOutOfLock"); }

    std::vector<std::string> Take() { return std::exchange(m_Calls, {}); }

    std::vector<std::string> m_Calls;
    std::vector<std::uint64_t> m_Repaints;
    std::vector<std::uint64_t> m_Ticks;
    bool m_bStopInTick = false;
};

class MeasurementSubStateTest : public testing::Test {
protected:
    void TearDown() override {
        m_pOwner.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
        EXPECT_THAT(m_Log.GetAssertions(), m_Expected);
    }
    void WriteSettings(const std::string& rAttributes) {
        WriteTestFile(m_Installation.GetRoot() / "cnf" / "mcon.xdb",
                      "<Corvane><system_falconet " + rAttributes + "></system_falconet></Corvane>");
    }
    COwner& Make(std::uint32_t Target = TARGET, std::uint32_t Tolerance = TOLERANCE) {
        m_pOwner = std::make_unique<COwner>(Target, Tolerance);
        return *m_pOwner;
    }
    /// Starts in a good condition and lets it settle; the first tick comes 50 ms later.
    COwner& MakeMeasuring() {
        COwner& rOwner = Make();
        rOwner.StartMeasurement(TARGET, 0, 1);
        m_Loop.Advance(3000);
        rOwner.m_Calls.clear();
        return rOwner;
    }

    CCapturingLoop m_Loop;
    CTestInstallation m_Installation;
    CLogCapture m_Log;
    std::unique_ptr<COwner> m_pOwner;
    testing::Matcher<std::vector<std::string>> m_Expected = IsEmpty();
};

TEST_F(MeasurementSubStateTest, NothingRunsBeforeTheStart) {
    COwner& rOwner = Make();
    m_Loop.Advance(10000);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.m_Calls, IsEmpty());
    EXPECT_THAT(rOwner.m_Repaints, IsEmpty());
}

TEST_F(MeasurementSubStateTest, SamplingBeginsAfter3000msOfStableConditions) {
    COwner& rOwner = Make();
    EXPECT_EQ(rOwner.StartMeasurement(TARGET, 0, 1), 1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OK"));
    m_Loop.Advance(2999);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.Take(), IsEmpty());
    m_Loop.Advance(1);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("Restart", "Query"));
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
}

TEST_F(MeasurementSubStateTest, SamplesComeEvery50msFromThenOn) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(200);
    EXPECT_THAT(rOwner.m_Ticks, ElementsAre(3050U, 3100U, 3150U, 3200U));
}

TEST_F(MeasurementSubStateTest, TheLogTellsThatSamplesCameLate) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(200);
    // The clock's thread isn't let run for a while.
    const std::uint32_t Handle = m_Loop.m_Handle;
    m_Loop.KillMultimediaTimer(Handle);
    m_Loop.Advance(130);
    m_Loop.m_Proc(Handle);
    m_Loop.RunPosted();
    rOwner.StopMeasurement();
    EXPECT_THAT(
        m_Log.GetTexts("Warning"),
        ElementsAre(
            "The computer was too busy for this measurement: 5 samples, the longest pause between two "
            "130 ms in place of 50"));
}

TEST_F(MeasurementSubStateTest, TheLogIsSilentOfSamplesALittleLate) {
    COwner& rOwner = MakeMeasuring();
    const std::uint32_t Handle = m_Loop.m_Handle;
    m_Loop.KillMultimediaTimer(Handle);
    m_Loop.Advance(75);
    m_Loop.m_Proc(Handle);
    m_Loop.RunPosted();
    rOwner.StopMeasurement();
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(MeasurementSubStateTest, RepaintsEvery250msFromTheStartEvenWhileWaiting) {
    COwner& rOwner = Make();
    rOwner.StartMeasurement(0, 1, 1);
    m_Loop.Advance(1000);
    EXPECT_THAT(rOwner.m_Repaints, ElementsAre(250U, 500U, 750U, 1000U));
}

struct CReason {
    std::uint16_t m_RPM;
    int m_NotLocked;
    const char* m_pCall;
};

TEST_F(MeasurementSubStateTest, ShowsTheReasonWhyItWaits) {
    for (const CReason& rReason :
         {CReason{0, 1, "WrongRPMAndOutOfLock"}, CReason{2949, 0, "WrongRPM"}, CReason{3051, 0, "WrongRPM"},
          CReason{3000, 1, "OutOfLock"}, CReason{2950, 0, "OK"}, CReason{3050, 0, "OK"}}) {
        COwner& rOwner = Make();
        rOwner.StartMeasurement(rReason.m_RPM, rReason.m_NotLocked, 1);
        EXPECT_THAT(rOwner.Take(), ElementsAre(rReason.m_pCall)) << rReason.m_RPM;
    }
}

// Each report of speed or lock runs the rule again: the operator sees the reason, the timer isn't renewed.
TEST_F(MeasurementSubStateTest, SettlingTimeIsNotRenewedByFurtherGoodReports) {
    COwner& rOwner = Make();
    rOwner.StartMeasurement(TARGET, 0, 1);
    rOwner.Take();
    for (int i = 0; i < 5; ++i) {
        m_Loop.Advance(500);
        rOwner.UpdateRPM(3010);
        rOwner.UpdateOutOfLock(0);
    }
    EXPECT_THAT(rOwner.Take(), IsEmpty());
    m_Loop.Advance(500);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

TEST_F(MeasurementSubStateTest, LeavingTheConditionWhileSettlingStartsTheTimeAfresh) {
    COwner& rOwner = Make();
    rOwner.StartMeasurement(TARGET, 0, 1);
    m_Loop.Advance(2999);
    rOwner.UpdateOutOfLock(1);
    rOwner.UpdateOutOfLock(0);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OK", "OutOfLock", "OK"));
    m_Loop.Advance(2999);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    m_Loop.Advance(1);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

TEST_F(MeasurementSubStateTest, DipOutOfTheWindowForOneUpdateRestartsFromNothing) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(120);  // ticks at 3050 and 3100
    rOwner.UpdateRPM(2900);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPM", "Lost"));
    rOwner.UpdateRPM(TARGET);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OK"));
    m_Loop.Advance(3000);
    EXPECT_THAT(rOwner.Take(), ElementsAre("Restart", "Query"));
    m_Loop.Advance(50);
    EXPECT_THAT(rOwner.m_Ticks, ElementsAre(3050U, 3100U, 6170U));
}

TEST_F(MeasurementSubStateTest, LossOfLockEndsTheSampling) {
    COwner& rOwner = MakeMeasuring();
    rOwner.UpdateOutOfLock(1);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OutOfLock", "Lost"));
    m_Loop.Advance(5000);
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
    EXPECT_EQ(rOwner.m_Repaints.back(), 8000U) << "the paint timer goes on";
}

TEST_F(MeasurementSubStateTest, WithoutNotifyOnLostTheOwnerIsOnlyShownTheReason) {
    COwner& rOwner = Make();
    rOwner.StartMeasurement(TARGET, 0, 0);
    m_Loop.Advance(3000);
    rOwner.Take();
    rOwner.UpdateRPM(0);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPM"));
}

TEST_F(MeasurementSubStateTest, GoodReportsWhileMeasuringDoNothing) {
    COwner& rOwner = MakeMeasuring();
    rOwner.UpdateRPM(2950);
    rOwner.UpdateRPM(3050);
    rOwner.UpdateOutOfLock(0);
    EXPECT_THAT(rOwner.m_Calls, IsEmpty());
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

TEST_F(MeasurementSubStateTest, StopEndsAllFromAnyState) {
    COwner& rOwner = Make();
    EXPECT_EQ(rOwner.StopMeasurement(), 1);  // not measuring
    rOwner.StartMeasurement(0, 1, 1);        // waiting
    rOwner.StopMeasurement();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    rOwner.StartMeasurement(TARGET, 0, 1);  // settling
    rOwner.StopMeasurement();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    rOwner.StartMeasurement(TARGET, 0, 1);  // measuring
    m_Loop.Advance(3000);
    rOwner.StopMeasurement();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    m_Loop.Advance(10000);
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
}

TEST_F(MeasurementSubStateTest, DestructionStopsARunningMeasurement) {
    MakeMeasuring();
    m_pOwner.reset();  // TearDown sees whether timers or assertions are left
}

TEST_F(MeasurementSubStateTest, StartWhileRunningAssertsAndStartsAnew) {
    m_Expected = ElementsAre("timer not stopped before");
    COwner& rOwner = MakeMeasuring();
    rOwner.StartMeasurement(TARGET, 0, 1);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    m_Loop.Advance(2999);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    m_Loop.Advance(1);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

TEST_F(MeasurementSubStateTest, TargetMayBeMoved) {
    COwner& rOwner = Make(0, TOLERANCE);
    rOwner.SetTargetRPM(1500);
    rOwner.StartMeasurement(1450, 0, 1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OK"));
    rOwner.UpdateRPM(1449);
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPM"));
}

// The lower end wraps around in unsigned arithmetic: no speed at all is good. Meant to stay so.
TEST_F(MeasurementSubStateTest, ToleranceAboveTheTargetMakesTheWindowEmpty) {
    COwner& rOwner = Make(40, 50);
    for (const std::uint16_t RPM : std::initializer_list<std::uint16_t>{0, 10, 40, 90, 91}) {
        rOwner.StartMeasurement(RPM, 0, 1);
        EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPM")) << RPM;
        rOwner.StopMeasurement();
    }
    EXPECT_TRUE(CMeasurementSubState::IsSpeedInWindow(0, 50, 50));
    EXPECT_TRUE(CMeasurementSubState::IsSpeedInWindow(100, 50, 50));
    EXPECT_FALSE(CMeasurementSubState::IsSpeedInWindow(101, 50, 50));
}

TEST_F(MeasurementSubStateTest, RefusedMultimediaTimerLeavesMeasuringWithoutSamples) {
    COwner& rOwner = Make();
    m_Loop.FailMultimediaTimers(1);
    rOwner.StartMeasurement(TARGET, 0, 1);
    m_Loop.Advance(20000);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
    EXPECT_EQ(m_Loop.GetTimerCount(), 1U) << "the paint timer alone";
    // Losing the condition and coming back tries again.
    rOwner.UpdateRPM(0);
    rOwner.UpdateRPM(TARGET);
    m_Loop.Advance(3050);
    EXPECT_EQ(rOwner.m_Ticks.size(), 1U);
}

TEST_F(MeasurementSubStateTest, RefusedSettlingTimerIsTriedAgainAtTheNextReport) {
    COwner& rOwner = Make();
    rOwner.StartMeasurement(0, 0, 1);
    m_Loop.FailTimers(1);
    rOwner.UpdateRPM(TARGET);
    m_Loop.Advance(4000);
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    rOwner.UpdateRPM(TARGET);
    m_Loop.Advance(3000);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

// The system's thread posts a tick; it is handled when the timer has been stopped.
TEST_F(MeasurementSubStateTest, StaleTickAfterStopIsDropped) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.m_Proc(m_Loop.m_Handle);
    rOwner.StopMeasurement();
    m_Loop.RunPosted();
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
}

// The same, with a new sample clock running by then: the tick carries the old handle.
TEST_F(MeasurementSubStateTest, StaleTickAfterRestartIsDropped) {
    COwner& rOwner = MakeMeasuring();
    const auto FormerProc = m_Loop.m_Proc;
    const std::uint32_t FormerHandle = m_Loop.m_Handle;
    rOwner.StopMeasurement();
    rOwner.StartMeasurement(TARGET, 0, 1);
    m_Loop.Advance(3000);
    ASSERT_NE(m_Loop.m_Handle, FormerHandle);
    FormerProc(FormerHandle);
    m_Loop.RunPosted();
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
    m_Loop.m_Proc(m_Loop.m_Handle);
    m_Loop.RunPosted();
    EXPECT_EQ(rOwner.m_Ticks.size(), 1U) << "a tick of the new clock counts";
}

TEST_F(MeasurementSubStateTest, TickThatStopsTheMeasurementIsTheLast) {
    COwner& rOwner = MakeMeasuring();
    rOwner.m_bStopInTick = true;
    m_Loop.Advance(1000);
    EXPECT_THAT(rOwner.m_Ticks, ElementsAre(3050U));
}

// The callback runs on a thread of the system: nothing but posting may happen in it.
TEST_F(MeasurementSubStateTest, TheTimersCallbackOnlyPosts) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.m_Proc(m_Loop.m_Handle);
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
    m_Loop.RunPosted();
    EXPECT_EQ(rOwner.m_Ticks.size(), 1U);
}

TEST_F(MeasurementSubStateTest, ForeignTimerIdsAreIgnored) {
    COwner& rOwner = Make();
    for (const std::int32_t Id : {0, 1, 10, 99}) {
        rOwner.OnIDTimeout(Id);
    }
    EXPECT_THAT(rOwner.m_Calls, IsEmpty());
    EXPECT_THAT(rOwner.m_Ticks, IsEmpty());
    EXPECT_THAT(rOwner.m_Repaints, IsEmpty());
    EXPECT_EQ(rOwner.CanMeasure(), 0);
}

TEST_F(MeasurementSubStateTest, PeriodOutsideTheSystemsBoundsIsClampedAfterAnAssertion) {
    m_Expected = ElementsAre("impossible");
    m_Loop.SetMultimediaTimerCaps({100, 1000});
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(300);
    EXPECT_THAT(rOwner.m_Ticks, ElementsAre(3100U, 3200U, 3300U));
}

TEST_F(MeasurementSubStateTest, PeriodAboveTheSystemsBoundsIsClampedToo) {
    m_Expected = ElementsAre("impossible");
    m_Loop.SetMultimediaTimerCaps({1, 20});
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(60);
    EXPECT_THAT(rOwner.m_Ticks, ElementsAre(3020U, 3040U, 3060U));
}

TEST_F(MeasurementSubStateTest, IgnoreOutOfLockSamplesWithTheWarningShown) {
    WriteSettings("IgnoreOutOfLock=\"1\"");
    COwner& rOwner = Make();
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("IgnoreOutOfLock is active !!!"));
    rOwner.StartMeasurement(TARGET, 1, 1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OK", "OutOfLock"));
    rOwner.UpdateRPM(TARGET);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OutOfLock")) << "the timer runs";
    m_Loop.Advance(3050);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
    EXPECT_EQ(rOwner.m_Ticks.size(), 1U);
    rOwner.Take();
    rOwner.UpdateOutOfLock(1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("OutOfLock"));
    rOwner.UpdateOutOfLock(0);
    EXPECT_THAT(rOwner.Take(), IsEmpty());
    EXPECT_EQ(rOwner.CanMeasure(), 1);
}

TEST_F(MeasurementSubStateTest, IgnoreOutOfLockStillNeedsTheSpeed) {
    WriteSettings("IgnoreOutOfLock=\"1\"");
    COwner& rOwner = Make();
    rOwner.StartMeasurement(2000, 1, 1);
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPMAndOutOfLock"));
    rOwner.UpdateRPM(TARGET);
    m_Loop.Advance(1000);
    rOwner.Take();
    rOwner.UpdateRPM(2000);  // while settling
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPMAndOutOfLock"));
    rOwner.UpdateRPM(TARGET);
    m_Loop.Advance(3000);
    EXPECT_EQ(rOwner.CanMeasure(), 1);
    rOwner.Take();
    rOwner.UpdateRPM(2000);  // while measuring
    EXPECT_EQ(rOwner.CanMeasure(), 0);
    EXPECT_THAT(rOwner.Take(), ElementsAre("WrongRPMAndOutOfLock", "Lost"));
}

TEST_F(MeasurementSubStateTest, WithoutASettingsFileTheSwitchIsOff) {
    COwner& rOwner = Make();
    EXPECT_EQ(rOwner.GetIgnoreOutOfLock(), 0);
    EXPECT_THAT(m_Log.GetTexts("Error"), IsEmpty());
}

TEST_F(MeasurementSubStateTest, TheIdOfAStoppedTimerIsNobodys) {
    COwner& rOwner = MakeMeasuring();
    m_Loop.Advance(50);
    ASSERT_EQ(rOwner.m_Ticks.size(), 1U);
    rOwner.StopMeasurement();
    const std::size_t nRepaints = rOwner.m_Repaints.size();
    for (std::int32_t Id = 0; Id < 20; ++Id) {
        rOwner.OnIDTimeout(Id);
    }
    EXPECT_EQ(rOwner.m_Ticks.size(), 1U);
    EXPECT_EQ(rOwner.m_Repaints.size(), nRepaints);
    EXPECT_THAT(rOwner.Take(), IsEmpty());
}

TEST_F(MeasurementSubStateTest, DamagedSettingsFileIsLoggedAndTheSwitchIsOff) {
    WriteTestFile(m_Installation.GetRoot() / "cnf" / "mcon.xdb", "<Corvane><system_falconet IgnoreOut");
    COwner& rOwner = Make();
    EXPECT_EQ(rOwner.GetIgnoreOutOfLock(), 0);
    EXPECT_THAT(m_Log.GetTexts("Error"), testing::Contains("cant open registry"));
}

}  // namespace
