// What the measuring states do with speed, lock and readings.
#include "contract/prebalprogress.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Method = CPlaneBalancingMethod;

class MeasuringTest : public SequenceTest {
protected:
    double GetAmplitude() const {
        double Amplitude = 0.0;
        m_pMethod->m_MovingAverage.GetValues(&Amplitude, nullptr, nullptr, nullptr, nullptr);
        return Amplitude;
    }
    /// A reading of that length.
    void Read(std::int16_t Amplitude) { m_pSequence->CurrentXYValuePlane1(Amplitude, 0); }
};

constexpr int ALL_MEASURING[] = {S::eNeutralPosMeasurement, S::eTestUnbalanceMeasurement,
                                 S::ePreBalanceMeasurement, S::eReBalanceMeasurement1,
                                 S::eReBalanceMeasurement2};
constexpr int WAITING_FOR_VALUES[] = {S::eNeutralPosMeasurement, S::eTestUnbalanceMeasurement,
                                      S::eReBalanceMeasurement1};

TEST_F(MeasuringTest, EntryShowsTheLastReadingAsNotValid) {
    for (const int State : ALL_MEASURING) {
        const auto EnterIt = Approach(State);
        Read(12);
        EnterIt();
        EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eNotValid);
        EXPECT_EQ(GetAmplitude(), 12.0) << "the display mode was set before, so the sample is kept";
    }
}

TEST_F(MeasuringTest, WhileWaitingReadingsGoToTheDisplayOnly) {
    for (const int State : ALL_MEASURING) {
        Reach(State);
        m_pMath->m_Samples.clear();
        m_Loop.Advance(2900);
        Read(30);
        EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eNotValid);
        EXPECT_EQ(GetAmplitude(), 15.0);  // with the entry's own sample of 0
        EXPECT_THAT(m_pMath->m_Samples, IsEmpty());
    }
}

// The arrival of a reading counts nothing then: the number of samples is a time.
TEST_F(MeasuringTest, WhileMeasuringTheTickTakesTheLatestReading) {
    Reach(S::eNeutralPosMeasurement);
    m_Loop.Advance(3000);
    for (std::int16_t i = 1; i <= 3; ++i) {
        Read(i);  // skipped but for the last
    }
    EXPECT_THAT(m_pMath->m_Samples, IsEmpty());
    m_Loop.Advance(100);  // counted twice
    Read(7);
    m_Loop.Advance(50);
    EXPECT_THAT(m_pMath->m_Samples, ElementsAre(std::pair{3, 0}, std::pair{3, 0}, std::pair{7, 0}));
}

TEST_F(MeasuringTest, FirstSampleResetsTheDisplayAndIsNotShown) {
    Reach(S::eNeutralPosMeasurement);
    Read(30);
    m_Loop.Advance(3000);
    EXPECT_EQ(GetAmplitude(), 15.0);
    m_Loop.Advance(50);
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eNormal);
    EXPECT_EQ(GetAmplitude(), 0.0) << "the sample that was just added goes too";
    EXPECT_EQ(m_pMath->m_Samples.size(), 1U) << "but the mathematics have it";
    m_Loop.Advance(50);
    EXPECT_EQ(GetAmplitude(), 30.0);
}

TEST_F(MeasuringTest, SettlingRestartsTheMathematicsAndThePolling) {
    Reach(S::eNeutralPosMeasurement);
    TakeCalls();
    m_Loop.Advance(2999);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    m_Loop.Advance(1);
    EXPECT_THAT(TakeCalls(), ElementsAre("Math.RestartMeasurement", "PleaseQueryXYValuesNOW"));
}

TEST_F(MeasuringTest, MeasurementIsRepaintedEvery250ms) {
    Reach(S::eNeutralPosMeasurement);
    m_Wnd.m_nRepaintMeasurement = 0;
    m_Loop.Advance(1000);
    EXPECT_EQ(m_Wnd.m_nRepaintMeasurement, 4);
}

TEST_F(MeasuringTest, CompleteValuesShowTheMenuAndTellTheNCOnce) {
    struct CRow {
        int m_State;
        int m_Menu;
        int m_Step;
    };
    for (const CRow& rRow : {CRow{S::eNeutralPosMeasurement, 0, 3}, CRow{S::eTestUnbalanceMeasurement, 0, 3},
                             CRow{S::eReBalanceMeasurement1, 8, 4}}) {
        Reach(rRow.m_State);
        m_Loop.Advance(3500);
        EXPECT_EQ(m_Wnd.GetMenu(), 4);
        TakeCalls();
        m_pMath->m_bComplete = true;
        m_Loop.Advance(500);
        EXPECT_THAT(TakeCalls(), ElementsAre("SetMenu " + std::to_string(rRow.m_Menu),
                                             "PreBalNotification " + std::to_string(rRow.m_Step) + " 6"));
    }
}

TEST_F(MeasuringTest, LeavingTheWindowShowsMenu4AndTheWarningAndDiscardsAll) {
    for (const int State : WAITING_FOR_VALUES) {
        Reach(State);
        CompleteMeasurement();
        TakeCalls();
        m_pSequence->CurrentRPM(2949);
        EXPECT_EQ(m_pSequence->CanMeasure(), 0);
        EXPECT_EQ(m_Wnd.GetMenu(), 4);
        EXPECT_EQ(m_pSequence->GetWarningMode(), 2U);
        const std::string Step = State == S::eReBalanceMeasurement1 ? "4" : "3";
        EXPECT_THAT(TakeCalls(),
                    ElementsAre("WarningModeChanged 2", "SetMenu 4", "PreBalNotification " + Step + " 5"));
        Next();
        EXPECT_EQ(GetState(), State) << "what was complete doesn't count any more";
        m_pSequence->CurrentRPM(SPEED);
        EXPECT_EQ(m_pSequence->GetWarningMode(), 0U);
        TakeCalls();
        m_Loop.Advance(2999);
        EXPECT_EQ(m_pSequence->CanMeasure(), 0);
        m_Loop.Advance(1);
        EXPECT_THAT(TakeCalls(), ElementsAre("Math.RestartMeasurement", "PleaseQueryXYValuesNOW"));
        CompleteMeasurement();
        EXPECT_NE(m_Wnd.GetMenu(), 4);
    }
}

TEST_F(MeasuringTest, LossOfLockWarnsWith3AndWithSpeedWith4) {
    Reach(S::eNeutralPosMeasurement);
    m_Loop.Advance(3000);
    TakeWarnings();
    m_pSequence->OutOfLock(1);
    m_pSequence->CurrentRPM(0);
    m_pSequence->OutOfLock(0);
    m_pSequence->CurrentRPM(SPEED);
    EXPECT_THAT(TakeWarnings(), ElementsAre(3U, 4U, 2U, 0U));
}

TEST_F(MeasuringTest, FinalMeasurementsKeepTheirMenuWhenTheConditionIsLost) {
    for (const int State : {S::ePreBalanceMeasurement, S::eReBalanceMeasurement2}) {
        Reach(State);
        m_Loop.Advance(3500);
        TakeNotifications();
        m_pSequence->CurrentRPM(0);
        EXPECT_EQ(m_pSequence->CanMeasure(), 0);
        EXPECT_EQ(m_Wnd.GetMenu(), 5);
        EXPECT_EQ(m_pSequence->GetWarningMode(), 2U);
        EXPECT_THAT(TakeNotifications(), IsEmpty());
    }
}

TEST_F(MeasuringTest, MeasurementAtTheWrongSpeedWaits) {
    Reach(S::eTestUnbalanceSetWeights);
    m_pSequence->CurrentRPM(100);
    TakeNotifications();
    TakeCalls();
    m_pSequence->InvalidRPM(0);
    // In this measurement the warning comes before the request to measure.
    EXPECT_THAT(TakeCalls(), ElementsAre("Math.SetTestUnbalanceVector 11,22 1", "WarningModeChanged 0",
                                         "SetDisplayMode eMeasurementValues", "SetMenu 4",
                                         "WarningModeChanged 2", "PreBalNotification 3 5"));
    m_Loop.Advance(10000);
    EXPECT_EQ(m_pSequence->CanMeasure(), 0);
}

TEST_F(MeasuringTest, RefusedMultimediaTimerNeverCompletes) {
    Reach(S::eNeutralPosMeasurement);
    m_Loop.FailMultimediaTimers(1);
    m_pMath->m_bComplete = true;
    m_Loop.Advance(60000);
    EXPECT_EQ(m_pSequence->CanMeasure(), 1);
    EXPECT_THAT(m_pMath->m_Samples, IsEmpty());
    EXPECT_EQ(m_Wnd.GetMenu(), 4);
}

TEST_F(MeasuringTest, ReadingsOfTheOtherPlaneDontCount) {
    Reach(S::eNeutralPosMeasurement);
    m_pSequence->CurrentXYValuePlane2(100, 0);
    EXPECT_EQ(GetAmplitude(), 0.0);
    m_Loop.Advance(3050);
    EXPECT_THAT(m_pMath->m_Samples, Each(std::pair{0, 0}));
}

TEST_F(MeasuringTest, SecondPlaneIsFedByItsOwnReadings) {
    Make(false, 1);
    m_pSequence->StartPreBalancing(0, 0, 1);
    m_pSequence->InvalidRPM(0);
    m_pSequence->CurrentRPM(SPEED);
    Next();
    ASSERT_EQ(GetState(), S::eNeutralPosMeasurement);
    m_pSequence->CurrentXYValuePlane1(100, 0);
    m_pSequence->CurrentXYValuePlane2(3, 4);
    m_Loop.Advance(3050);
    EXPECT_THAT(m_pMath->m_Samples, ElementsAre(std::pair{3, 4}));
}

TEST_F(MeasuringTest, ReadingsOutsideAMeasurementAreOnlyKept) {
    Reach(S::eTestUnbalanceSetWeights);
    TakeCalls();
    Read(50);
    EXPECT_EQ(GetAmplitude(), 0.0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

// --- the verdict of the final measurements ---

struct CVerdictRow {
    int m_State;
    int m_Within;
    int m_Over;
};
class VerdictTest : public MeasuringTest, public testing::WithParamInterface<CVerdictRow> {
protected:
    /// As the host is told.
    bool IsMeasured() const {
        CPreBalProgress Progress;
        m_pSequence->GetProgress(Progress);
        return Progress.m_Readings[0].m_bComplete;
    }
};

TEST_P(VerdictTest, TellsEachChangeOnceWithTheActionMeasure) {
    Reach(GetParam().m_State);
    Read(10);  // just the target
    m_Loop.Advance(3000);
    TakeNotifications();
    TakeWarnings();
    m_Loop.Advance(500);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Within, 5}));
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_THAT(TakeWarnings(), IsEmpty());
    Read(11);
    m_Loop.Advance(500);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Over, 5}));
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eOverTarget);
    EXPECT_THAT(TakeWarnings(), ElementsAre(8U));
    Read(9);
    m_Loop.Advance(500);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Within, 5}));
    EXPECT_THAT(TakeWarnings(), ElementsAre(0U));
    EXPECT_THAT(m_pMath->m_Samples, testing::Not(Contains(std::pair{11, 0})))
        << "nothing is calculated any more";
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_P(VerdictTest, ComesWithTheFirstSampleNotOnlyWithTheComplete) {
    Reach(GetParam().m_State);
    m_Loop.Advance(3049);
    TakeNotifications();
    m_Loop.Advance(1);
    EXPECT_EQ(TakeNotifications().size(), 1U);
}

// The average is judged, not the reading.
TEST_P(VerdictTest, IsOnTheMovingAverage) {
    Reach(GetParam().m_State);
    m_Loop.Advance(3000);
    Read(0);
    m_Loop.Advance(500);
    Read(40);
    m_Loop.Advance(50);  // 40, 0, 0, 0
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eWithinTarget);
    m_Loop.Advance(50);  // 40, 40, 0, 0
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eOverTarget);
}

TEST_P(VerdictTest, BeginsAfreshWhenTheConditionWasLost) {
    Reach(GetParam().m_State);
    Read(40);
    m_Loop.Advance(4000);
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eOverTarget);
    m_pSequence->CurrentRPM(0);
    Read(2);
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eNotValid);
    m_pSequence->CurrentRPM(SPEED);
    m_Loop.Advance(3100);
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_EQ(GetAmplitude(), 2.0) << "nothing of the former samples is left";
}

// As a number of 32 bits without sign: the largest target is not below every reading.
TEST_P(VerdictTest, TargetIsUnsigned) {
    m_Entry.SetTargetUnbalance(0xFFFFFFFF);
    Reach(GetParam().m_State);
    Read(32767);
    m_Loop.Advance(3500);
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eWithinTarget);
}

// --- what counts as a measurement: a whole window taken in lock and at speed ---

// Four samples fill the window, the fifth completes it, and the first one of all is only there to empty the
// average: the sixth tick.
TEST_P(VerdictTest, StandsOnAMeasurementFromTheWholeWindowOn) {
    Reach(GetParam().m_State);
    Read(7);
    m_Loop.Advance(3000 + 5 * 50);
    EXPECT_FALSE(IsMeasured());
    m_Loop.Advance(50);
    EXPECT_TRUE(IsMeasured());
    m_Loop.Advance(5000);
    EXPECT_TRUE(IsMeasured());
}

TEST_P(VerdictTest, IsNoMeasurementWhileTheLockIsLostThoughReadingsFillTheAverage) {
    Reach(GetParam().m_State);
    Read(7);
    m_Loop.Advance(3100);
    m_pSequence->OutOfLock(1);
    for (int i = 0; i < 10; ++i) {
        Read(7);
    }
    EXPECT_EQ(m_pMethod->m_MovingAverage.GetValuesComplete(), 1);
    EXPECT_FALSE(IsMeasured());
    m_pSequence->OutOfLock(0);
    for (int i = 0; i < 10; ++i) {
        Read(7);
    }
    m_Loop.Advance(2999);
    EXPECT_FALSE(IsMeasured()) << "settling";
    m_Loop.Advance(1 + 6 * 50);
    EXPECT_TRUE(IsMeasured());
}

TEST_P(VerdictTest, IsNoMeasurementOnceTheSpeedHasLeftItsWindow) {
    Reach(GetParam().m_State);
    Read(7);
    m_Loop.Advance(3500);
    ASSERT_TRUE(IsMeasured());
    m_pSequence->CurrentRPM(2949);
    EXPECT_FALSE(IsMeasured());
    m_pSequence->CurrentRPM(SPEED);
    EXPECT_FALSE(IsMeasured());
}

// Not even if no reading came while the condition was lost, so that the display was never emptied.
TEST_P(VerdictTest, BeginsItsWindowAfreshAfterALossWithoutAReading) {
    Reach(GetParam().m_State);
    Read(7);
    m_Loop.Advance(3500);
    ASSERT_TRUE(IsMeasured());
    m_pSequence->OutOfLock(1);
    m_pSequence->OutOfLock(0);
    m_Loop.Advance(3000 + 3 * 50);
    EXPECT_FALSE(IsMeasured());
    m_Loop.Advance(50);
    EXPECT_TRUE(IsMeasured());
}

// A module that reports seldom: what came without lock is still the latest reading when the samples begin.
TEST_P(VerdictTest, CountsNoReadingThatCameWithoutLock) {
    Reach(GetParam().m_State);
    m_pSequence->OutOfLock(1);
    Read(99);
    m_pSequence->OutOfLock(0);
    m_Loop.Advance(3000 + 20 * 50);
    EXPECT_FALSE(IsMeasured());
    Read(7);
    m_Loop.Advance(3 * 50);
    EXPECT_FALSE(IsMeasured());
    m_Loop.Advance(50);
    EXPECT_TRUE(IsMeasured());
    EXPECT_EQ(GetAmplitude(), 7.0);
}

TEST_P(VerdictTest, CountsNoReadingOfBeforeTheState) {
    const auto EnterIt = Approach(GetParam().m_State);
    Read(7);
    EnterIt();
    m_Loop.Advance(5000);
    EXPECT_FALSE(IsMeasured());
}

// --- the feature flag PreBalancingVerdictOnFullWindow ---

TEST_P(VerdictTest, WithTheFlagIsToldFromTheWholeWindowOnOnly) {
    m_Installation.EnableFeature("PreBalancingVerdictOnFullWindow");
    Reach(GetParam().m_State);
    Read(40);
    TakeNotifications();
    m_Loop.Advance(3000 + 5 * 50);
    EXPECT_THAT(TakeNotifications(), IsEmpty());
    EXPECT_EQ(m_pMethod->m_MeasurementDisplayState, Method::eOverTarget) << "the page shows it at once";
    EXPECT_EQ(m_pSequence->GetWarningMode(), 8U);
    m_Loop.Advance(50);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Over, 5}));
    Read(2);
    m_Loop.Advance(4 * 50);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Within, 5})) << "and each change";
}

TEST_P(VerdictTest, WithTheFlagALostConditionTakesNothingBackAndTellsNothingNew) {
    m_Installation.EnableFeature("PreBalancingVerdictOnFullWindow");
    Reach(GetParam().m_State);
    Read(2);
    m_Loop.Advance(4000);
    TakeNotifications();
    m_pSequence->OutOfLock(1);
    Read(40);
    m_pSequence->OutOfLock(0);
    Read(40);
    m_Loop.Advance(3000 + 5 * 50);
    EXPECT_THAT(TakeNotifications(), IsEmpty());
    m_Loop.Advance(50);
    EXPECT_THAT(TakeNotifications(), ElementsAre(std::pair{GetParam().m_Over, 5}));
}

// The average that has just been emptied counts as within the target.
TEST_P(VerdictTest, WithoutTheFlagBeginsWithTheEmptiedAverage) {
    Reach(GetParam().m_State);
    Read(40);
    TakeNotifications();
    m_Loop.Advance(3500);
    EXPECT_THAT(TakeNotifications(),
                ElementsAre(std::pair{GetParam().m_Within, 5}, std::pair{GetParam().m_Over, 5}));
}

INSTANTIATE_TEST_SUITE_P(FinalStates, VerdictTest,
                         testing::Values(CVerdictRow{S::ePreBalanceMeasurement, 7, 9},
                                         CVerdictRow{S::eReBalanceMeasurement2, 8, 10}),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param.m_State); });

}  // namespace
