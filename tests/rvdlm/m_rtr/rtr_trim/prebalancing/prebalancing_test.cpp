// What a procedure has from its base: settings, texts of the page, the cut of the pane, progress.
#include "contract/prebalprogress.h"
#include "platform/window/bitmap.h"
#include "platform/window/dc.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"
#include "tests/support/textfiles.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using S = CSinglePlaneBalancing;

class PreBalancingTest : public SequenceTest {
protected:
    void WriteSettings(const std::string& rText) {
        WriteTestFile(m_Installation.GetRoot() / "cnf" / "mcon.xdb", rText);
        m_Log.Clear();
        Make();
    }
};

TEST_F(PreBalancingTest, WithoutASettingsFileBothSwitchesAreOff) {
    m_Log.Clear();
    EXPECT_NO_THROW(Make());
    EXPECT_EQ(m_pSequence->GetIgnoreRebalWeights(), 0);
    EXPECT_EQ(m_pSequence->GetUseOldWeightChangeMenu(), 0);
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(PreBalancingTest, SwitchesAreReadAndLogged) {
    WriteSettings(
        "<Corvane><system_falconet IgnoreRebalWeights=\"1\" "
        "UseOldPrebalancingWeightChangeMenu=\"1\"></system_falconet></Corvane>");
    EXPECT_EQ(m_pSequence->GetIgnoreRebalWeights(), 1);
    EXPECT_EQ(m_pSequence->GetUseOldWeightChangeMenu(), 1);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("Ignoring RebalWeights (UA-Compensation not possible) REGISTRY!!!!",
                            "old menu to change weight positions is used"));
}

TEST_F(PreBalancingTest, SwitchesOfZeroAreOffAndNotLogged) {
    WriteSettings(
        "<Corvane><system_falconet IgnoreRebalWeights=\"0\" "
        "UseOldPrebalancingWeightChangeMenu=\"0\"></system_falconet></Corvane>");
    EXPECT_EQ(m_pSequence->GetIgnoreRebalWeights(), 0);
    EXPECT_EQ(m_pSequence->GetUseOldWeightChangeMenu(), 0);
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(PreBalancingTest, DamagedSettingsFileIsLoggedWithItsName) {
    WriteSettings("<Corvane><system_falconet Ignore");
    EXPECT_EQ(m_pSequence->GetIgnoreRebalWeights(), 0);
    EXPECT_EQ(m_pSequence->GetUseOldWeightChangeMenu(), 0);
    EXPECT_THAT(m_Log.GetTexts("Error"),
                Contains(testing::MatchesRegex("can't open settings file .*mcon.xdb.*")));
}

TEST_F(PreBalancingTest, TitleTextsComeFromTheConfiguration) {
    EXPECT_EQ(m_pSequence->GetSetText(), "WHEEL1");
    EXPECT_EQ(m_pSequence->GetProcessName(), "Default");
    EXPECT_EQ(m_pSequence->GetSetName(), "Set name");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(PreBalancingTest, MachineNameWithoutASetLeavesTheSetTextEmpty) {
    for (const char* pName : {"", "4711", "-7", "4711-33-"}) {
        m_Log.Clear();
        PreBalDB::CPreBalBaseTableEntry Entry(pName, "Fine");
        Entry.SetNumberOfSamples(4);
        Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
        const CSinglePlaneBalancing Sequence(&m_Wnd, 0, Entry, "");
        EXPECT_EQ(Sequence.GetSetText(), "") << pName;
        EXPECT_EQ(Sequence.GetProcessName(), "Fine");
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible")) << pName;
    }
}

TEST_F(PreBalancingTest, WarningsReachTheNCWhenTheyChange) {
    m_pSequence->ShowOutOfLockWarning();
    m_pSequence->ShowOutOfLockWarning();
    m_pSequence->ShowWrongRPMWarning();
    m_pSequence->ShowWrongRPMAndOutOfLockWarning();
    m_pSequence->ShowMeasurementOK();
    m_pSequence->ShowMeasurementOK();
    EXPECT_THAT(TakeWarnings(), ElementsAre(3U, 2U, 4U, 0U));
}

TEST_F(PreBalancingTest, AWarningClearsThePercentage) {
    const double Percent = 12.5;
    m_pSequence->SetWarningMode(6, &Percent);
    m_pSequence->ShowOutOfLockWarning();
    EXPECT_EQ(m_pSequence->GetPercent(), 0.0);
}

TEST_F(PreBalancingTest, LostMeasurementShowsMenu4AndTellsTheNC) {
    m_pSequence->OnMeasurementLost();
    EXPECT_THAT(TakeCalls(), ElementsAre("SetMenu 4", "PreBalNotification 0 5"));
}

TEST_F(PreBalancingTest, QueriesAndRepaintsGoToTheWindow) {
    m_pSequence->PleaseQueryXYValuesNOW();
    m_pSequence->RepaintMeasurement();
    EXPECT_EQ(m_Wnd.m_nXYQueries, 1);
    EXPECT_EQ(m_Wnd.m_nRepaintMeasurement, 1);
}

/// Where the method is drawn in a pane of that height, offset from the origin.
TEST_F(PreBalancingTest, PaneIsCutHorizontally) {
    struct CCut {
        int m_Height;
        int m_Instruction;
        int m_Status;
    };
    for (const CCut& rCut : {CCut{440, 73, 17}, CCut{503, 83, 17}, CCut{504, 84, 18}, CCut{560, 93, 20}}) {
        CBitmap Bitmap(CSize(320, 700));
        CDC DC(Bitmap);
        m_pMethod->m_Paints.clear();
        m_pSequence->Paint(&DC, CRect(10, 20, 310, 20 + rCut.m_Height), 15);
        ASSERT_EQ(m_pMethod->m_Paints.size(), 1U);
        EXPECT_EQ(m_pMethod->m_Paints[0].first,
                  CRect(10, 20 + rCut.m_Instruction, 310, 20 + rCut.m_Height - rCut.m_Status))
            << rCut.m_Height;
    }
}

struct CMaskRow {
    unsigned m_Mask;
    bool m_bMethod;
    bool m_bRedrawAll;
    bool m_bStatus;
};

TEST_F(PreBalancingTest, MaskChoosesWhatIsPainted) {
    for (const CMaskRow& rRow :
         {CMaskRow{15, true, true, true}, CMaskRow{8, true, false, false}, CMaskRow{4, false, false, true},
          CMaskRow{2, true, true, false}, CMaskRow{10, true, true, false}, CMaskRow{12, true, true, true},
          CMaskRow{1, false, false, false}}) {
        CBitmap Bitmap(CSize(300, 504));
        CDC DC(Bitmap);
        constexpr COLORREF UNTOUCHED = RGB(1, 2, 3);
        DC.FillSolidRect(CRect(0, 0, 300, 504), UNTOUCHED);
        m_pMethod->m_Paints.clear();
        m_pSequence->Paint(&DC, CRect(0, 0, 300, 504), rRow.m_Mask);
        ASSERT_EQ(m_pMethod->m_Paints.size(), rRow.m_bMethod ? 1U : 0U) << rRow.m_Mask;
        if (rRow.m_bMethod) {
            EXPECT_EQ(m_pMethod->m_Paints[0].second, rRow.m_bRedrawAll) << rRow.m_Mask;
        }
        EXPECT_NE(Bitmap.GetPixel(2, 2), UNTOUCHED) << "the instruction is always painted";
        EXPECT_NE(Bitmap.GetPixel(2, 82), UNTOUCHED);
        EXPECT_EQ(Bitmap.GetPixel(2, 85), UNTOUCHED) << "nothing but the method paints here";
        EXPECT_EQ(Bitmap.GetPixel(2, 485), UNTOUCHED);
        EXPECT_EQ(Bitmap.GetPixel(2, 487) != UNTOUCHED, rRow.m_bStatus) << rRow.m_Mask;
    }
}

TEST_F(PreBalancingTest, ProgressSaysWhereTheRunStands) {
    Reach(S::eNeutralPosMeasurement);
    m_pSequence->CurrentXYValuePlane1(30, 40);
    CPreBalProgress Progress;
    m_pSequence->GetProgress(Progress);
    EXPECT_EQ(Progress.m_State, "eNeutralPosMeasurement");
    EXPECT_EQ(Progress.m_Step, 3U);
    EXPECT_EQ(Progress.m_NumberOfSteps, 11U);
    EXPECT_EQ(Progress.m_InstructionMode, 6U);
    EXPECT_EQ(Progress.m_Instruction, m_pSequence->GetInstructionText());
    EXPECT_EQ(Progress.m_WarningMode, 0U);
    EXPECT_EQ(Progress.m_Warning, "");
    EXPECT_EQ(Progress.m_Menu, 4);
    EXPECT_EQ(Progress.m_CalibratedRPM, 3000U);
    EXPECT_EQ(Progress.m_TargetUnbalance, 10U);
    EXPECT_TRUE(Progress.m_Readings[0].m_bShown);
    EXPECT_FALSE(Progress.m_Readings[0].m_bComplete);
    // The entry's own sample is (0, 0).
    EXPECT_DOUBLE_EQ(Progress.m_Readings[0].m_Amplitude, 25.0);
    EXPECT_NEAR(Progress.m_Readings[0].m_AngleDeg, 53.130102, 1e-6);
    EXPECT_FALSE(Progress.m_Readings[1].m_bShown);
}

TEST_F(PreBalancingTest, ProgressOfTheSecondPlaneStandsThere) {
    Make(false, 1);
    CPreBalProgress Progress;
    m_pSequence->GetProgress(Progress);
    EXPECT_FALSE(Progress.m_Readings[0].m_bShown);
    EXPECT_TRUE(Progress.m_Readings[1].m_bShown);
}

}  // namespace
