// Start and end of procedures, and the end of the window's work.
#include <gmock/gmock.h>

#include "contract/hostmessages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CMainWndRunControlTest : public CMainWndFixture {
protected:
    LRESULT DestroyPending() {
        const LRESULT Result = m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
        m_Loop.RunPosted();
        return Result;
    }
};

TEST_F(CMainWndRunControlTest, AStartHidesTheConfiguration) {
    Open();
    Act(102);
    EXPECT_FALSE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_FALSE(m_pWnd->GetBrowser().IsWindow());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndRunControlTest, TheEndBringsTheConfigurationBack) {
    LinkOpc();
    OpenCalibrated();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    Act(4501, 5);
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_TRUE(m_pWnd->GetBrowser().IsWindowVisible());
    EXPECT_EQ(m_pWnd->GetBrowser().GetRect(), CRect(300, 0, 600, 440));
    EXPECT_EQ(m_pWnd->GetMenu(), -1);
    EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, -1, 0}));
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_EQ(GetStep(), 2);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// What a run changed in memory without a commit is gone: the stored calibration counts again.
TEST_F(CMainWndRunControlTest, AnUnfinishedRunLeavesTheStoredCalibration) {
    LinkOpc();
    OpenCalibrated();
    Act(103);
    ASSERT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
    Act(102);
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetIsCalibrated(0);
    Forget();
    Act(4501);
    EXPECT_TRUE(m_pWnd->GetTabs().IsCalibrated());
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_EQ(GetStep(), 2);
}

TEST_F(CMainWndRunControlTest, AProcedureThatCannotBeMadeLeavesTheConfigurationOnScreen) {
    Open();
    m_bNoProcedure = true;
    EXPECT_EQ(Act(102), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_TRUE(m_pWnd->GetBrowser().IsWindowVisible());
    Act(4499);
    EXPECT_THAT(m_Host.Get(1075), IsEmpty());
}

TEST_F(CMainWndRunControlTest, AStartWithoutConfigurationIsAsserted) {
    Create();
    Init();
    Forget();
    EXPECT_EQ(SetState(1), 0);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("Called to early! No base table Entry!", "StartPrebalancingSequence failed!"));
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
}

// Refusing to start is right, refusing to show an abort is not.
TEST_F(CMainWndRunControlTest, ScrewsThatCantBeUsedKeepARunFromStartingButNotAnAbortFromBeingShown) {
    Open();
    {
        PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
        Database.ReadScrewTable("Default").SetScrewArray({PreBalDB::CScrew("", -1.0)});
        ASSERT_NE(Database.WriteScrewTable(), 0);
    }
    m_pWnd->SendMessage(WM_RV_STORECHANGED);
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) {
        rEntry.CreateSinglePlane().CreateScrewCompensationTableEntry().SetScrewTableName("Default");
    });
    TakeShownMessages();
    Act(102);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_EQ(TakeShownMessages().size(), 1U);
    ReportState(0, 0, 1);
    ReportSet(MakeSet(3));
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 11", "AbortBalancing 1"));
    EXPECT_THAT(TakeShownMessages(), IsEmpty());
}

TEST_F(CMainWndRunControlTest, TheProcedureGetsTheModeAndTheSetName) {
    Open(LANNER_PLANE2);
    Act(102);
    EXPECT_THAT(m_ProcedureModes, ElementsAre(1));
    EXPECT_EQ(m_pWnd->GetSequence()->GetSetName(), "WHEEL");
}

TEST_F(CMainWndRunControlTest, TheMenuOfARunIsForgottenAtItsEnd) {
    Open();
    Act(102);
    m_pWnd->SetMenu(0);
    Act(4501);
    EXPECT_EQ(m_pWnd->GetMenu(), -1);
}

TEST_F(CMainWndRunControlTest, DestroyPendingSavesARunsResult) {
    LinkOpc();
    Open();
    const std::string Key = m_pWnd->GetMachineName();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_DESTROYPENDING), 1);
    // Sent, not posted: the host may destroy the window next.
    EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, -1, 0}));
    EXPECT_FALSE(m_Sequence.m_bAlive);
    EXPECT_TRUE(IsStoredCalibrated(Key));
    EXPECT_EQ(GetStep(), 0);
    EXPECT_FALSE(m_pWnd->GetTabs().HasDatabase());
    EXPECT_FALSE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry(), nullptr);
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentScrewEntry(), nullptr);
    EXPECT_EQ(m_pWnd->GetMachineName(), "");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndRunControlTest, DestroyPendingWithoutRunSavesThePages) {
    Open();
    const std::string Key = m_pWnd->GetMachineName();
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(17); });
    DestroyPending();
    PreBalDB::CPreBalDatabase Database(Key);
    EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 17U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// A run without result: the entry is read anew before the pages are saved.
TEST_F(CMainWndRunControlTest, DestroyPendingDropsAnUnfinishedRun) {
    OpenCalibrated();
    const std::string Key = m_pWnd->GetMachineName();
    Act(103);
    Act(102);
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetIsCalibrated(0);
    DestroyPending();
    EXPECT_TRUE(IsStoredCalibrated(Key));
}

TEST_F(CMainWndRunControlTest, DestroyPendingWithoutDatabaseOnlyClears) {
    LinkOpc();
    Create();
    Init();
    EXPECT_EQ(DestroyPending(), 1);
    EXPECT_EQ(GetStep(), 0);
    EXPECT_THAT(m_Host.Get(1075), IsEmpty());
}

TEST_F(CMainWndRunControlTest, AfterDestroyPendingTheWindowMayBeInitialisedAnew) {
    Open();
    DestroyPending();
    Forget();
    Init(LANNER_PLANE2);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("using existing mapper."));
    Identify(Comm::eSuccess, "222222", 8);
    ReportSet(MakeSet(5));
    EXPECT_EQ(m_pWnd->GetMachineName(), "1#4#255-1-222222-8-5");
    EXPECT_TRUE(m_pWnd->GetTabs().HasDatabase());
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    Act(102);
    EXPECT_THAT(m_ProcedureModes, ElementsAre(1));
}

// The run took the help pane along; the next start finds everything in place.
TEST_F(CMainWndRunControlTest, AfterARunThatTheHostEndedTheWindowIsCompleteAgain) {
    Open();
    Act(102);
    DestroyPending();
    ASSERT_FALSE(m_pWnd->GetBrowser().IsWindow());
    Init();
    EXPECT_TRUE(m_pWnd->GetBrowser().IsWindowVisible());
    EXPECT_EQ(m_pWnd->GetBrowser().GetRect(), CRect(300, 0, 600, 440));
    Identify();
    ReportSet(MakeSet());
    Act(102);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndRunControlTest, WindowDestroyedInARunWithoutAWordLeavesTheNCInactive) {
    LinkOpc();
    Open();
    Act(102);
    m_pWnd->NotifyConfigurationShown(true);
    m_pWnd->DestroyWindow();
    EXPECT_EQ(GetStep(), 0);
    EXPECT_FALSE(m_Sequence.m_bAlive);
}

TEST_F(CMainWndRunControlTest, WindowDeletedInARunWithoutAWordLeavesTheNCInactive) {
    LinkOpc();
    Open();
    Act(102);
    m_pWnd.reset();
    EXPECT_EQ(GetStep(), 0);
}

// By the time that it is deleted another window may have spoken.
TEST_F(CMainWndRunControlTest, WindowThatIsDestroyedAndThenDeletedLeavesTheNCOnce) {
    LinkOpc();
    Open();
    m_pWnd->DestroyWindow();
    EXPECT_EQ(GetStep(), 0);
    m_Opc.GetServer().Write("PreBalInterfaceToNC", std::vector<std::int32_t>{2});
    m_pWnd.reset();
    EXPECT_EQ(GetStep(), 2);
}

TEST_F(CMainWndRunControlTest, DestroyPendingHandsTheFocusToTheForegroundWindow) {
    Open();
    CWnd::SetForegroundWindow(&m_Host);
    m_pWnd->SetFocus();
    DestroyPending();
    EXPECT_EQ(CWnd::GetFocus(), &m_Host);
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(CMainWndRunControlTest, DestroyPendingWithoutForegroundWindowWarns) {
    Open();
    CWnd::SetForegroundWindow(nullptr);
    EXPECT_EQ(DestroyPending(), 1);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("CPreBalancingMainWnd::OnDestroyPending: cannot set focus!"));
}

}  // namespace
