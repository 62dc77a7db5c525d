// Two streams of samples in the measuring states of two planes, and the target for both.
#include "contract/prebalprogress.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Method = CPlaneBalancingMethod;
using S = CTwoPlaneBalancing;

class TwoPlaneMeasuring : public TwoPlaneTest, public testing::WithParamInterface<int> {
protected:
    static double GetAmplitude(const Method& rMethod) {
        double Amplitude = 0.0;
        rMethod.m_MovingAverage.GetValues(&Amplitude, nullptr, nullptr, nullptr, nullptr);
        return Amplitude;
    }
    std::pair<double, double> GetAmplitudes() const {
        return {GetAmplitude(*m_pMethod1), GetAmplitude(*m_pMethod2)};
    }
    std::pair<int, int> GetDisplayStates() const {
        return {m_pMethod1->m_MeasurementDisplayState, m_pMethod2->m_MeasurementDisplayState};
    }
};
INSTANTIATE_TEST_SUITE_P(States, TwoPlaneMeasuring,
                         testing::Values(S::eNeutralPosMeasurement, S::ePlane1TestUnbalanceMeasurement,
                                         S::ePlane2TestUnbalanceMeasurement, S::ePreBalanceMeasurement,
                                         S::eReBalanceMeasurement1, S::eReBalanceMeasurement2),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param); });

TEST_P(TwoPlaneMeasuring, EntryShowsTheLastReadingOfEachPlaneAsNotValid) {
    const auto EnterIt = Approach(GetParam());
    m_pSequence->CurrentXYValuePlane1(12, 0);
    m_pSequence->CurrentXYValuePlane2(0, 7);
    m_pMethod1->m_MeasurementDisplayState = m_pMethod2->m_MeasurementDisplayState = Method::eNormal;
    EnterIt();
    ASSERT_EQ(GetState(), GetParam());
    EXPECT_EQ(GetDisplayStates(), std::make_pair(int{Method::eNotValid}, int{Method::eNotValid}));
    EXPECT_EQ(GetAmplitudes(), std::make_pair(12.0, 7.0));
}

TEST_P(TwoPlaneMeasuring, WhileWaitingEachPlaneShowsItsOwnReadingsAsNotValid) {
    Reach(GetParam());
    for (CFakeMethod* const pMethod : {m_pMethod1, m_pMethod2}) {
        m_pMethod1->m_MeasurementDisplayState = m_pMethod2->m_MeasurementDisplayState = Method::eNormal;
        if (pMethod == m_pMethod1) {
            m_pSequence->CurrentXYValuePlane1(30, 0);
            EXPECT_EQ(GetAmplitudes(), std::make_pair(15.0, 0.0)) << "with the entry's own sample of 0";
        } else {
            m_pSequence->CurrentXYValuePlane2(40, 0);
            EXPECT_EQ(GetAmplitudes(), std::make_pair(15.0, 20.0));
        }
        EXPECT_EQ(pMethod->m_MeasurementDisplayState, Method::eNotValid);
        EXPECT_EQ((pMethod == m_pMethod1 ? m_pMethod2 : m_pMethod1)->m_MeasurementDisplayState,
                  Method::eNormal)
            << "the other plane has no new reading";
    }
}

/// Those that wait until the values are complete. The others' verdict sets the display states of both planes
/// at the first sample of either.
class TwoPlaneWaitingForValues : public TwoPlaneMeasuring {};
INSTANTIATE_TEST_SUITE_P(States, TwoPlaneWaitingForValues,
                         testing::Values(S::eNeutralPosMeasurement, S::ePlane1TestUnbalanceMeasurement,
                                         S::ePlane2TestUnbalanceMeasurement, S::eReBalanceMeasurement1),
                         [](const auto& rInfo) { return S::STATESToString(rInfo.param); });

TEST_P(TwoPlaneWaitingForValues, FirstSampleEmptiesBothAveragesAndMakesBothPlanesValid) {
    Reach(GetParam());
    m_pSequence->CurrentXYValuePlane1(30, 0);
    m_pSequence->CurrentXYValuePlane2(40, 0);
    m_Loop.Advance(3050);
    EXPECT_EQ(GetAmplitudes(), std::make_pair(0.0, 0.0)) << "the samples that were just added go too";
    EXPECT_EQ(GetDisplayStates(), std::make_pair(int{Method::eNormal}, int{Method::eNormal}));
    m_Loop.Advance(50);
    EXPECT_EQ(GetAmplitudes(), std::make_pair(30.0, 40.0));
}

TEST_F(TwoPlaneTest, BothPlanesTakeASampleInTheSameTick) {
    Reach(S::ePlane1TestUnbalanceMeasurement);
    m_pSequence->CurrentXYValuePlane1(1, 2);
    m_pSequence->CurrentXYValuePlane2(3, 4);
    m_pMath->m_Samples.clear();
    m_Loop.Advance(3050);
    EXPECT_THAT(m_pMath->m_Samples, ElementsAre(std::pair(1, 2), std::pair(3, 4)));
}

TEST_F(TwoPlaneTest, EitherPlaneThatIsCompleteReleasesTheKey) {
    for (const std::size_t Plane : {0U, 1U}) {
        Reach(S::eNeutralPosMeasurement);
        TakeNotifications();
        m_pMath->m_bComplete[Plane] = true;
        m_Loop.Advance(3050);
        EXPECT_EQ(m_Wnd.GetMenu(), 0);
        EXPECT_THAT(TakeNotifications(),
                    ElementsAre(std::pair<int, int>(Nc::eSetup, Nc::eMeasurementValuesOK)));
        m_Loop.Advance(500);
        EXPECT_THAT(TakeNotifications(), IsEmpty()) << "once";
    }
}

TEST_F(TwoPlaneTest, MeasurementOfARebalancingReleasesMenu8) {
    Reach(S::eReBalanceMeasurement1);
    TakeNotifications();
    CompleteMeasurement();
    EXPECT_EQ(m_Wnd.GetMenu(), 8);
    EXPECT_THAT(TakeNotifications(),
                ElementsAre(std::pair<int, int>(Nc::eReBalActive, Nc::eMeasurementValuesOK)));
}

TEST_F(TwoPlaneTest, NextBeforeTheValuesAreCompleteIsIgnored) {
    for (const int State : {S::eNeutralPosMeasurement, S::ePlane1TestUnbalanceMeasurement,
                            S::ePlane2TestUnbalanceMeasurement, S::eReBalanceMeasurement1}) {
        Reach(State);
        Next();
        EXPECT_EQ(GetState(), State);
    }
}

struct CVerdict {
    int m_State;
    int m_StepWithin;
    int m_StepOver;
};
class TwoPlaneVerdict : public TwoPlaneTest, public testing::WithParamInterface<CVerdict> {};
INSTANTIATE_TEST_SUITE_P(States, TwoPlaneVerdict, testing::Values(CVerdict{18, 7, 9}, CVerdict{27, 8, 10}),
                         [](const auto& rInfo) {
                             return CTwoPlaneBalancing::STATESToString(rInfo.param.m_State);
                         });

TEST_P(TwoPlaneVerdict, BothPlanesMustReachTheTarget) {
    Reach(GetParam().m_State);
    ShowReadings(10, 10);  // the target
    EXPECT_EQ(m_pMethod1->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_EQ(m_pMethod2->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_EQ(m_pSequence->GetNotification().m_Step, GetParam().m_StepWithin);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 0U);
}

TEST_P(TwoPlaneVerdict, PlaneWithinTheTargetStaysGreenWhileTheOtherIsRed) {
    Reach(GetParam().m_State);
    ShowReadings(11, 3);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 8U);
    EXPECT_EQ(m_pMethod1->m_MeasurementDisplayState, Method::eOverTarget);
    EXPECT_EQ(m_pMethod2->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_EQ(m_pSequence->GetNotification().m_Step, GetParam().m_StepOver);

    Reach(GetParam().m_State);
    ShowReadings(3, 11);
    EXPECT_EQ(m_Wnd.m_WarningModes.back(), 8U);
    EXPECT_EQ(m_pMethod1->m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_EQ(m_pMethod2->m_MeasurementDisplayState, Method::eOverTarget);
    EXPECT_EQ(m_pSequence->GetNotification().m_Step, GetParam().m_StepOver);
}

TEST_P(TwoPlaneVerdict, IsToldOnlyWhenItChanges) {
    Reach(GetParam().m_State);
    TakeNotifications();
    ShowReadings(3, 11);
    const auto Told = TakeNotifications();
    ASSERT_FALSE(Told.empty());
    EXPECT_EQ(Told.back(), (std::pair<int, int>(GetParam().m_StepOver, Nc::eMeasure)));
    m_Loop.Advance(1000);
    EXPECT_THAT(TakeNotifications(), IsEmpty());
}

// Plane 2's readings come without lock at first: one whole window is not enough.
TEST_P(TwoPlaneVerdict, WithTheFlagWaitsForTheWholeWindowsOfBothPlanes) {
    m_Installation.EnableFeature("PreBalancingVerdictOnFullWindow");
    Reach(GetParam().m_State);
    m_pSequence->OutOfLock(1);
    m_pSequence->CurrentXYValuePlane2(11, 0);
    m_pSequence->OutOfLock(0);
    m_pSequence->CurrentXYValuePlane1(3, 0);
    TakeNotifications();
    m_Loop.Advance(4000);
    CPreBalProgress Progress;
    m_pSequence->GetProgress(Progress);
    EXPECT_TRUE(Progress.m_Readings[0].m_bComplete);
    EXPECT_FALSE(Progress.m_Readings[1].m_bComplete);
    EXPECT_THAT(TakeNotifications(), IsEmpty());
    m_pSequence->CurrentXYValuePlane2(11, 0);
    m_Loop.Advance(4 * 50);
    m_pSequence->GetProgress(Progress);
    EXPECT_TRUE(Progress.m_Readings[1].m_bComplete);
    EXPECT_THAT(TakeNotifications(),
                testing::ElementsAre(std::pair<int, int>(GetParam().m_StepOver, Nc::eMeasure)));
}

}  // namespace
