// What the host is told of a measurement that is under way.
#include "contract/arrivedreadings.h"
#include "contract/prebalprogress.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using S = CSinglePlaneBalancing;
using T = CTwoPlaneBalancing;

template <typename TFixture>
class MeasuringProgress : public TFixture {
protected:
    CPreBalProgress::CMeasuring Get() const {
        CPreBalProgress Progress;
        this->m_pSequence->GetProgress(Progress);
        return Progress.m_Measuring;
    }
    CArrivedReadings GetReadings() const {
        CArrivedReadings Readings;
        this->m_pSequence->GetReadings(Readings);
        return Readings;
    }
};

class MeasuringProgressTest : public MeasuringProgress<SequenceTest> {};
class TwoPlaneMeasuringProgressTest : public MeasuringProgress<TwoPlaneTest> {};

TEST_F(MeasuringProgressTest, EachMeasurementIsNamed) {
    const std::vector<std::pair<int, Measurement>> NAMES = {
        {S::eNeutralPosMeasurement, Measurement::eFirst},
        {S::eTestUnbalanceSetWeights, Measurement::eNone},
        {S::eTestUnbalanceMeasurement, Measurement::eTest1},
        {S::ePreBalanceMeasurement, Measurement::eFinal},
        {S::eReBalanceMeasurement1, Measurement::eFirst},
        {S::eReBalanceMeasurement2, Measurement::eFinal}};
    for (const auto& [State, Expected] : NAMES) {
        Reach(State);
        EXPECT_EQ(Get().m_Which, Expected) << State;
    }
}

TEST_F(TwoPlaneMeasuringProgressTest, TheTestLegsAreNumbered) {
    Reach(T::ePlane1TestUnbalanceMeasurement);
    EXPECT_EQ(Get().m_Which, Measurement::eTest1);
    Reach(T::ePlane2TestUnbalanceMeasurement);
    EXPECT_EQ(Get().m_Which, Measurement::eTest2);
}

TEST_F(MeasuringProgressTest, SamplesAreCountedUpToThoseNeeded) {
    Reach(S::ePreBalanceMeasurement);
    m_pSequence->CurrentXYValuePlane1(7, 0);
    EXPECT_EQ(Get().m_nNeeded, m_Entry.GetNumberOfSamples());
    EXPECT_EQ(Get().m_SamplePeriod, 50U);
    EXPECT_EQ(Get().m_nAveraged, 0U);
    EXPECT_FALSE(Get().m_bSampling);
    m_Loop.Advance(3000);
    EXPECT_TRUE(Get().m_bSampling);
    m_pSequence->CurrentXYValuePlane1(7, 0);
    for (std::uint32_t nTaken = 1; nTaken <= Get().m_nNeeded; ++nTaken) {
        m_Loop.Advance(50);
        EXPECT_EQ(Get().m_nAveraged, nTaken);
    }
    m_Loop.Advance(500);
    EXPECT_EQ(Get().m_nAveraged, Get().m_nNeeded);
}

TEST_F(MeasuringProgressTest, WhatIsMissingIsToldAndTheCountBeginsAnew) {
    Reach(S::ePreBalanceMeasurement);
    m_Loop.Advance(3000);
    m_pSequence->CurrentXYValuePlane1(7, 0);
    m_Loop.Advance(100);
    ASSERT_EQ(Get().m_nAveraged, 2U);
    EXPECT_TRUE(Get().m_bAtSpeed);
    EXPECT_TRUE(Get().m_bLocked);
    EXPECT_EQ(Get().m_TargetRPM, SPEED);
    EXPECT_EQ(Get().m_RPMTolerance, m_Entry.GetRPMTolerance());
    m_pSequence->OutOfLock(1);
    EXPECT_FALSE(Get().m_bLocked);
    EXPECT_TRUE(Get().m_bAtSpeed);
    EXPECT_FALSE(Get().m_bSampling);
    EXPECT_EQ(Get().m_nAveraged, 0U);
    m_pSequence->CurrentRPM(0);
    EXPECT_FALSE(Get().m_bAtSpeed);
}

TEST_F(MeasuringProgressTest, ReadingsAreKeptEachOnceWithWhatTheyBelongTo) {
    Reach(S::eNeutralPosMeasurement);
    m_pSequence->CurrentXYValuePlane1(1, -1);
    m_Loop.Advance(3000);
    const std::uint64_t Sampling = m_Loop.Now();
    m_pSequence->CurrentXYValuePlane1(2, -2);
    m_pSequence->CurrentXYValuePlane2(9, 9);  // of a plane that isn't balanced
    m_Loop.Advance(200);                      // four samples of one reading
    const CArrivedReadings Readings = GetReadings();
    ASSERT_GE(Readings.m_Readings.size(), 2U);
    const std::vector<CArrivedReadings::CReading> Last(Readings.m_Readings.end() - 2,
                                                       Readings.m_Readings.end());
    EXPECT_EQ(Last[0],
              (CArrivedReadings::CReading{Sampling - 3000, 0, 1, -1, Measurement::eFirst, false, SPEED}));
    EXPECT_EQ(Last[1], (CArrivedReadings::CReading{Sampling, 0, 2, -2, Measurement::eFirst, true, SPEED}));
    EXPECT_EQ(Readings.m_nSeen, Readings.m_Readings.size());
}

}  // namespace
