// What the window does with what the module has told.
#include <gmock/gmock.h>

#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CMainWndModuleTest : public CMainWndFixture {
protected:
    void Start() {
        Create();
        Init();
        Forget();
    }
};

TEST_F(CMainWndModuleTest, WhatTheModuleToldIsReadHere) {
    Create();
    EXPECT_EQ(m_pWnd->GetCommunicationIF(), nullptr);
    EXPECT_EQ(m_pWnd->GetSet().Number, 255);
    EXPECT_EQ(m_pWnd->GetCurrentRPM(), 0xFFFF);
    EXPECT_EQ(m_pWnd->GetOutOfLock(), 1);
    EXPECT_EQ(m_pWnd->GetInvalidRPM(), 1);
    Init();
    Identify();
    ReportSet(MakeSet());
    ReportState(1, 0);
    ReportRPM(0, 2999);
    EXPECT_NE(m_pWnd->GetCommunicationIF(), nullptr);
    EXPECT_EQ(m_pWnd->GetMachineName(), "0#3#255-0-123456-4711-2");
    EXPECT_EQ(m_pWnd->GetSet().Number, 2);
    EXPECT_EQ(m_pWnd->GetCurrentRPM(), 2999);
    EXPECT_EQ(m_pWnd->GetOutOfLock(), 1);
    EXPECT_EQ(m_pWnd->GetInvalidRPM(), 0);
}

TEST_F(CMainWndModuleTest, SpeedIsPaintedInTheStatusLine) {
    Open();
    Act(102);
    m_Sequence.m_Calls.clear();
    ReportRPM(0, 2999);
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("CurrentRPM 2999", "Paint 4"));
}

// The second one comes a period later, with the speed that is then the last.
TEST_F(CMainWndModuleTest, SpeedsThatComeQuickerThanADisplayShowsThemArePaintedOnce) {
    Open();
    Act(102);
    ReportRPM(0, 2989);
    m_Sequence.m_Calls.clear();
    for (std::uint32_t RPM = 2990; RPM < 3000; ++RPM) {
        ReportRPM(0, RPM);
    }
    EXPECT_THAT(m_Sequence.m_Calls, testing::Not(testing::Contains("Paint 4")));
    m_Sequence.m_Calls.clear();
    m_Loop.Advance(CDisplayRate::PERIOD.count());
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("Paint 4"));
    m_Loop.Advance(1000);
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("Paint 4"));
}

TEST_F(CMainWndModuleTest, NothingIsPaintedWhileNobodyLooks) {
    Open();
    Act(102);
    m_Screen.m_bLooking = false;
    m_Sequence.m_Calls.clear();
    ReportRPM(0, 2999);
    m_pWnd->RepaintAll();
    m_pWnd->RepaintMeasurement();
    m_Loop.RunPosted();
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("CurrentRPM 2999"));
    m_Host.Compose();
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("CurrentRPM 2999", "Paint 15"));
}

TEST_F(CMainWndModuleTest, ReadingsAreAskedForOnDemand) {
    Open();
    m_pWnd->PleaseQueryXYValuesNOW();
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("xy"));
}

TEST_F(CMainWndModuleTest, ADestroyedWindowWatchesNoMore) {
    Open();
    ReportState(0, 0);
    ReportRPM(0, 3000);
    Act(102);
    m_pWnd->DestroyWindow();
    m_Log.Clear();
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(CMainWndModuleTest, TheFirstSetShowsItsNumberInTheTitle) {
    Start();
    Identify();
    ReportSet(MakeSet(7));
    EXPECT_EQ(m_pWnd->GetTabs().GetConfigDlg().GetTitle(),
              GetText("PREBAL_CONFIG") + " (" + GetText("SET") + " 7)");
}

TEST_F(CMainWndModuleTest, TheHostLearnsOfTheConfiguration) {
    LinkOpc();
    Start();
    Identify();
    ReportSet(MakeSet());
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 0}));
    EXPECT_EQ(GetStep(), 1);
    EXPECT_EQ(GetAnswer(), COpcValue(0));
}

TEST_F(CMainWndModuleTest, TheHostLearnsOfACalibratedConfiguration) {
    LinkOpc();
    OpenCalibrated();
    m_pWnd->SendMessage(WM_RV_DBINITDONE);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_EQ(GetStep(), 2);
}

TEST_F(CMainWndModuleTest, AChangedSetWithoutProcedureStartsOneToShowTheFailure) {
    Open();
    ReportSet(MakeSet(3));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_FALSE(m_pWnd->GetTabs().IsWindowVisible());
}

TEST_F(CMainWndModuleTest, ASetWithARPMFactorIsRefusedByAnAbortedRun) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.RPMFactorPlane1 = 2;
    ReportSet(Set);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 9", "StartPreBalancing 65535 1 1"));
}

TEST_F(CMainWndModuleTest, ARPMFactorOfPlaneTwoCountsToo) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.RPMFactorPlane2 = 0;
    ReportSet(Set);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 9", "StartPreBalancing 65535 1 1"));
}

TEST_F(CMainWndModuleTest, AWrongModuleStateWithoutConfigurationIsAsserted) {
    Start();
    ReportState(0, 0, 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

}  // namespace
