// Two-plane procedures with weights in one plane and screws in the other.
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/twoplanefixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using K = CKeyActions;
using PreBalDB::CCompensationTableEntry;

class MixedMeans : public TwoPlaneTest, public testing::WithParamInterface<bool> {
protected:
    MixedMeans() {
        (GetParam() ? m_Means1 : m_Means2) = CCompensationTableEntry::eScrews;
        Make();
    }
};
INSTANTIATE_TEST_SUITE_P(Pairs, MixedMeans, testing::Bool(),
                         [](const auto& rInfo) { return rInfo.param ? "ScrewsWeights" : "WeightsScrews"; });

TEST_P(MixedMeans, ExtrasToggleAndAdoptionAreIgnoredBeforeTheFirstMeasurement) {
    for (const int State : {S::eNeutralPosSpindleStop, S::eNeutralPosRemoveWeights}) {
        Reach(State);
        EXPECT_EQ(m_Wnd.GetMenu(), State == S::eNeutralPosSpindleStop ? 14 : 0);
        TakeCalls();
        for (const K::KeyAction Action : {K::eExtras, K::eTogglePlane, K::ePositionAdoption}) {
            Key(Action);
        }
        EXPECT_THAT(TakeCalls(), IsEmpty());
        EXPECT_EQ(GetState(), State);
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// With weights in one plane only, the mathematics is told once, when the procedure is made, that they are
// opposed in the first measurement.
TEST_P(MixedMeans, FirstPositionsAreToldOnceAndNeitherAtTheStartNorByTheKey) {
    EXPECT_THAT(TakeCalls(), ElementsAre("Math.SetRawUnbalanceVectors 1 0"));
    m_pSequence->StartPreBalancing(0, 1, 1);
    Next();
    ASSERT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_THAT(TakeCalls(), testing::Not(Contains(testing::StartsWith("Math."))));
}

TEST_P(MixedMeans, NeutralPositionKeyWorks) {
    Reach(S::eNeutralPosSpindleStop);
    Key(K::eNext);
    EXPECT_EQ(GetState(), S::eNeutralPosSpindleStop);
    Key(K::eNeutralPositionAdjusted);
    EXPECT_EQ(GetState(), S::eNeutralPosRPMStart);
    EXPECT_EQ(GetSteps(), std::make_pair(3U, 16U));
}

TEST_P(MixedMeans, EachLegTakesWhatItsMethodHas) {
    Reach(S::ePlane2TestUnbalanceSetWeights);
    TakeCalls();
    Next();
    EXPECT_THAT(TakeCalls(), Contains(GetParam() ? "Math.SetTestUnbalanceVectorCase2 33,44 0"
                                                 : "Math.SetTestUnbalanceVectorCase2 null 0"));
    Reach(S::ePlane1TestUnbalanceSetWeights);
    TakeCalls();
    Next();
    EXPECT_THAT(TakeCalls(), Contains(GetParam() ? "Math.SetTestUnbalanceVectorCase1 null 1"
                                                 : "Math.SetTestUnbalanceVectorCase1 11,22 1"));
}

TEST_P(MixedMeans, CommitStoresNoPositions) {
    Reach(S::ePreBalanceMeasurement);
    EXPECT_TRUE(m_pSequence->CommitChanges());
    m_Wnd.m_Store.Load();
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
}

}  // namespace
