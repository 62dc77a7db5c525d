// The parts of a procedure by themselves: planes, readings, stored positions, entry.
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "contract/menus.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceentry.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencemeasuring.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencepositions.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/fakemethod.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"
#include "tests/support/textfiles.h"

using Entry = PreBalDB::CCompensationTableEntry;
using Method = CPlaneBalancingMethod;
using Sequence::CMenuRule;
using Sequence::CShow;
using Sequence::CStepCount;
using Sequence::CStepRule;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t SAMPLES = 3;

class SequencePartsTest : public testing::Test {
protected:
    CFakeMethod& AddPlane(Entry::CompensationMethod Means = Entry::eWeights) {
        const int Plane = static_cast<int>(m_Planes.GetCount()) + 1;
        auto pMethod = std::make_unique<CFakeMethod>(SAMPLES, m_Wnd.m_Calls, Plane);
        CFakeMethod& rMethod = *pMethod;
        CSequencePlane Added;
        Added.m_pMethod = std::move(pMethod);
        Added.m_CompensationMethod = Means;
        m_Planes.Add(std::move(Added));
        return rMethod;
    }
    std::vector<std::string> TakeCalls() { return std::exchange(m_Wnd.m_Calls, {}); }
    /// Samples that count, in a row.
    void Sample(std::size_t Plane, int nTimes, bool bConditionMet = true) {
        for (int i = 0; i < nTimes; ++i) {
            m_Measuring.Store(Plane, 30, 40, bConditionMet);
            m_Measuring.TakeSample(Plane, true);
        }
    }
    static Sequence::CState MakeState(const CMenuRule& rMenu,
                                      std::array<Sequence::CDisplay, 2> Display = {}) {
        return {7, "eAny", Sequence::eTestUnbalanceSpindleStop, 0, {}, 0, Display, rMenu, {}};
    }

    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CFakeMainWnd m_Wnd;
    CSequencePlanes m_Planes;
    CSequenceMeasuring m_Measuring{m_Planes, SAMPLES};
    CSequencePositions m_Positions{m_Planes, m_Wnd, "WHEEL1"};
    CSequenceEntry m_Entry{m_Planes, m_Positions,
                           [this]() -> CPlaneBalancingMethod& { return *m_Planes.Get(0).m_pMethod; }};
};

}  // namespace

TEST_F(SequencePartsTest, PlanesWithDifferentMeansAreWithoutWeights) {
    AddPlane();
    EXPECT_TRUE(m_Planes.HasWeightsOnly());
    AddPlane(Entry::eScrews);
    EXPECT_FALSE(m_Planes.HasWeightsOnly());
}

TEST_F(SequencePartsTest, TheLargestLackOfAllPlanesIsTold) {
    AddPlane().m_Percent = 12.0;
    AddPlane().m_Percent = 5.0;
    double Percent = 0.0;
    m_Planes.SetUA({math::MakeVector(1.0, 0.0), math::MakeVector(0.0, 1.0)}, &Percent, true);
    EXPECT_EQ(Percent, 12.0);
}

TEST_F(SequencePartsTest, OnePlaneThatCannotReachItsVectorIsEnoughToFailAndTheOtherIsSetAllTheSame) {
    AddPlane().m_bReached = false;
    AddPlane();
    EXPECT_FALSE(m_Planes.SetUA({math::MakeVector(1.0, 0.0), math::MakeVector(0.0, 1.0)}, nullptr, false));
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetUA", "2:SetUA"));
}

TEST_F(SequencePartsTest, AMeasurementIsCompleteWhenItsWholeWindowCameWhileTheConditionHeld) {
    AddPlane();
    m_Measuring.Begin();
    // The first only ends the display of values that aren't valid, and the average is complete when one more
    // than its window has come.
    Sample(0, 4);
    EXPECT_FALSE(m_Measuring.IsMeasured(0, true));
    Sample(0, 1);
    EXPECT_TRUE(m_Measuring.IsMeasured(0, true));
    EXPECT_FALSE(m_Measuring.IsMeasured(0, false)) << "while the condition is lost nothing is complete";
}

TEST_F(SequencePartsTest, AReadingThatCameOutOfLockBeginsTheCountAnew) {
    AddPlane();
    m_Measuring.Begin();
    Sample(0, 5);
    EXPECT_TRUE(m_Measuring.IsMeasured(0, true));
    Sample(0, 1, false);
    EXPECT_FALSE(m_Measuring.IsMeasured(0, true));
    Sample(0, 2);
    EXPECT_FALSE(m_Measuring.IsMeasured(0, true));
    Sample(0, 1);
    EXPECT_TRUE(m_Measuring.IsMeasured(0, true));
}

TEST_F(SequencePartsTest, WithoutTheConditionASampleIsOnlyShown) {
    CFakeMethod& rMethod = AddPlane();
    m_Measuring.Begin();
    Sample(0, 4);
    EXPECT_FALSE(m_Measuring.TakeSample(0, false));
    EXPECT_EQ(rMethod.m_MeasurementDisplayState, Method::eNotValid);
    EXPECT_TRUE(m_Measuring.TakeSample(0, true));
    EXPECT_EQ(rMethod.m_MeasurementDisplayState, Method::eNormal);
    EXPECT_EQ(rMethod.m_MovingAverage.GetValuesComplete(), 0) << "the average begins anew";
}

TEST_F(SequencePartsTest, ARestartForgetsWhatWasMeasured) {
    AddPlane();
    m_Measuring.Begin();
    Sample(0, 5);
    m_Measuring.Restart();
    EXPECT_FALSE(m_Measuring.IsMeasured(0, true));
}

TEST_F(SequencePartsTest, AllAreMeasuredWhenTheLastPlaneIs) {
    AddPlane();
    AddPlane();
    m_Measuring.Begin();
    Sample(0, 5);
    EXPECT_FALSE(m_Measuring.AreAllMeasured(true));
    Sample(1, 5);
    EXPECT_TRUE(m_Measuring.AreAllMeasured(true));
}

// 30 and 40 counts: 50 in length.
TEST_F(SequencePartsTest, EachPlaneShowsItsOwnVerdictAndATargetThatIsMetExactlyIsMet) {
    CFakeMethod& rMethod1 = AddPlane();
    CFakeMethod& rMethod2 = AddPlane();
    m_Measuring.Begin();
    Sample(0, 4);
    m_Measuring.Store(1, 3, 4, true);
    m_Measuring.TakeSample(1, true);
    m_Measuring.TakeSample(1, true);
    EXPECT_FALSE(m_Measuring.Judge(49.9));
    EXPECT_EQ(rMethod1.m_MeasurementDisplayState, Method::eOverTarget);
    EXPECT_EQ(rMethod2.m_MeasurementDisplayState, Method::eWithinTarget);
    EXPECT_TRUE(m_Measuring.Judge(50.0));
    EXPECT_EQ(rMethod1.m_MeasurementDisplayState, Method::eWithinTarget);
}

TEST_F(SequencePartsTest, PositionsThatWereStoredAreFoundByTheNextRun) {
    AddPlane().m_Positions = math::MakeVector(15.0, 200.0);
    EXPECT_FALSE(m_Positions.IsOffered());
    EXPECT_FALSE(m_Positions.Find().has_value());
    m_Positions.Store();
    m_Positions.Reload();
    EXPECT_TRUE(m_Positions.IsOffered());
    const auto Found = m_Positions.Find();
    ASSERT_TRUE(Found.has_value());
    ASSERT_EQ(Found->size(), 1U);
    EXPECT_EQ(Found->front()(0, 0), 15.0);
    EXPECT_EQ(Found->front()(1, 0), 200.0);
}

TEST_F(SequencePartsTest, PositionsOfTheOtherKindOfRunAreNotOffered) {
    AddPlane();
    m_Positions.Store();
    m_Positions.Reload();
    AddPlane();
    EXPECT_FALSE(m_Positions.IsOffered());
}

TEST_F(SequencePartsTest, PositionsOfAnotherSetAreNotFound) {
    AddPlane();
    m_Positions.Store();
    m_Positions.Reload();
    EXPECT_FALSE(CSequencePositions(m_Planes, m_Wnd, "WHEEL2").Find().has_value());
}

TEST_F(SequencePartsTest, TheSpeedOfARunWithScrewsIsNotStored) {
    AddPlane(Entry::eScrews);
    m_Positions.StoreSpeed(3000);
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    m_Planes.Clear();
    AddPlane();
    m_Positions.StoreSpeed(3000);
    const std::string Key = CWeightPositionStore::MakeKey(m_Wnd.GetModuleAddress(), "WHEEL1");
    ASSERT_TRUE(m_Wnd.m_Store.Contains(Key));
    EXPECT_EQ(m_Wnd.m_Store.Get(Key).m_RPM, 3000U);
    EXPECT_FALSE(m_Positions.IsOffered()) << "a speed alone is no position";
}

TEST(StepCountTest, CountsByTheRuleOfTheState) {
    using Sequence::CountStep;
    EXPECT_EQ(CountStep({CStepRule::eKeep}, {4, 11}), (CStepCount{4, 11}));
    EXPECT_EQ(CountStep({CStepRule::eNext}, {4, 11}), (CStepCount{5, 11}));
    EXPECT_EQ(CountStep({CStepRule::eNone}, {4, 11}), (CStepCount{0, 0}));
    EXPECT_EQ(CountStep({CStepRule::eFirst, 12}, {4, 11}), (CStepCount{1, 12}));
    EXPECT_EQ(CountStep({CStepRule::eFirstUnless, 11}, {1, 12}), (CStepCount{2, 12}));
    EXPECT_EQ(CountStep({CStepRule::eFirstUnless, 11}, {0, 0}), (CStepCount{1, 11}));
    EXPECT_EQ(CountStep({CStepRule::eFirstOrNext, 7}, {0, 0}), (CStepCount{1, 7}));
    EXPECT_EQ(CountStep({CStepRule::eFirstOrNext, 7}, {1, 7}), (CStepCount{2, 7, true}));
    EXPECT_EQ(CountStep({CStepRule::eNextOfFew, 5}, {0, 11}), (CStepCount{1, 5}));
    EXPECT_EQ(CountStep({CStepRule::eNextOfFew, 5}, {2, 7}), (CStepCount{3, 7}));
}

TEST_F(SequencePartsTest, EachPlaneShowsItsOwnDisplayInTheOrderOfTheTable) {
    AddPlane();
    AddPlane();
    m_Entry.Show(MakeState({}, {Sequence::ShowThen(Method::eTestUnbalance, Method::eInactive),
                                Sequence::ShowPlain(Method::eNeutralPosition)}),
                 5);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eTestUnbalance", "1:SetDisplayMode eInactive",
                                         "2:SetPlainDisplayMode eNeutralPosition"));
}

TEST_F(SequencePartsTest, WeightsThatMayHaveBeenMovedWhileTheSpindleWasStoppedAreShownPlain) {
    AddPlane();
    const Sequence::CState State = MakeState({}, {Sequence::ShowPlainAfterStop(Method::eNeutralPosition)});
    m_Entry.Show(State, 1);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eNeutralPosition"));
    m_Entry.Show(State, 2);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetPlainDisplayMode eNeutralPosition"));
    AddPlane(Entry::eScrews);
    m_Entry.Show(State, 2);
    EXPECT_THAT(TakeCalls(), ElementsAre("1:SetDisplayMode eNeutralPosition"));
}

TEST_F(SequencePartsTest, OnlyTheFirstPlaneIsShownForAChange) {
    AddPlane();
    AddPlane();
    m_Entry.ShowForChange({CShow::ePlain, Method::eNeutralPosition}, 1);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("1:SetPlainDisplayMode eNeutralPosition", "2:SetDisplayMode eInactive"));
}

TEST_F(SequencePartsTest, TheMenuFollowsMeansAndStore) {
    AddPlane();
    const Sequence::CState ByMeans = MakeState(Sequence::MenuByMeans(Menus::eSetScrews, Menus::eSetWeights));
    const Sequence::CState ByStore = MakeState(Sequence::MenuByStore(
        Menus::eStopWithScrews, Menus::eStopWithStoredWeights, Menus::eStopWithWeights));
    EXPECT_EQ(m_Entry.ChooseMenu(MakeState({})), std::nullopt);
    EXPECT_EQ(m_Entry.ChooseMenu(ByMeans), Menus::eSetWeights);
    EXPECT_EQ(m_Entry.ChooseMenu(ByStore), Menus::eStopWithWeights);
    m_Positions.Store();
    m_Positions.Reload();
    EXPECT_EQ(m_Entry.ChooseMenu(ByStore), Menus::eStopWithStoredWeights);
    m_Planes.Clear();
    AddPlane(Entry::eScrews);
    EXPECT_EQ(m_Entry.ChooseMenu(ByMeans), Menus::eSetScrews);
    EXPECT_EQ(m_Entry.ChooseMenu(ByStore), Menus::eStopWithScrews);
}

TEST_F(SequencePartsTest, MenusOfTheMeansAreAskedForWithTheNumberOfPlanes) {
    AddPlane();
    EXPECT_EQ(m_Entry.ChooseMenu(MakeState(Sequence::TestUnbalanceMenu())), CFakeMethod::eTestMenu);
    EXPECT_EQ(m_Entry.ChooseMenu(MakeState(Sequence::CheckWeightsMenu())), CFakeMethod::eCheckMenu + 1);
    AddPlane();
    EXPECT_EQ(m_Entry.ChooseMenu(MakeState(Sequence::CheckWeightsMenu())), CFakeMethod::eCheckMenu + 2);
}
