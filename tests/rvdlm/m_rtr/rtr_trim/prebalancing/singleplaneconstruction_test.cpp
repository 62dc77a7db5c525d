// How a single-plane procedure is made from its configuration, with the product's own means and mathematics.
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

namespace {

using PreBalDB::CTypeBase;
using testing::ElementsAre;
using testing::IsEmpty;

class SinglePlaneConstructionTest : public testing::Test {
protected:
    SinglePlaneConstructionTest() { m_Entry.SetNumberOfSamples(4); }
    int StartAndGetMenu() {
        CSinglePlaneBalancing Sequence(&m_Wnd, 0, m_Entry, "");
        Sequence.StartPreBalancing(0, 1, 1);
        return m_Wnd.GetMenu();
    }

    CVirtualEventLoop m_Loop;
    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CFakeMainWnd m_Wnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0-0#1#255-4711-33-7", "Default"};
};

TEST_F(SinglePlaneConstructionTest, WeightsOfTheConfiguration) {
    m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
    EXPECT_EQ(StartAndGetMenu(), 30);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// With menu 0: screws have no neutral position to be changed.
TEST_F(SinglePlaneConstructionTest, ScrewsOfTheConfiguration) {
    m_Entry.CreateSinglePlane().CreateScrewCompensationTableEntry().SetNumberOfHoles(7);
    EXPECT_EQ(StartAndGetMenu(), 0);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    ASSERT_NE(m_Entry.GetSinglePlane()->GetScrewCompensationTableEntry(), nullptr);
    EXPECT_EQ(m_Entry.GetSinglePlane()->GetScrewCompensationTableEntry()->GetNumberOfHoles(), 7U);
}

TEST_F(SinglePlaneConstructionTest, ConfigurationWithoutMeansFallsBackToWeights) {
    m_Entry.CreateSinglePlane();
    EXPECT_EQ(StartAndGetMenu(), 30);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconsistent database"));
}

TEST_F(SinglePlaneConstructionTest, ConfigurationWithoutASinglePlaneFallsBackToWeights) {
    EXPECT_EQ(StartAndGetMenu(), 30);
    EXPECT_THAT(m_Log.GetAssertions(), testing::Contains("inconsistent database"));
    EXPECT_NE(m_Entry.GetSinglePlane(), nullptr);
}

TEST_F(SequenceTest, DirectionsReachMeansAndMathematics) {
    EXPECT_EQ(m_pMethod->m_Rotation, CTypeBase::eCounterClockwise);
    EXPECT_EQ(m_pMath->m_Rotation, CTypeBase::eCounterClockwise);
    EXPECT_EQ(m_pMath->m_Scaling, CTypeBase::eCounterClockwise) << "the method's, not the configuration's";
    m_Entry.CreateSinglePlane().SetRotationDirection(CTypeBase::eClockwise);
    Make();
    EXPECT_EQ(m_pMath->m_Rotation, CTypeBase::eClockwise);
}

}  // namespace
