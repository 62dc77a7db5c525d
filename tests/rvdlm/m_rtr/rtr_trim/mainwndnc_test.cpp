// What the requests of the NC do to window, run and store.
#include <gmock/gmock.h>

#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const COpcValue eDone{0};
const COpcValue eRefused{-1};

class CMainWndNCTest : public CMainWndFixture {
protected:
    CMainWndNCTest() { LinkOpc(); }
};

class CMainWndUnlinkedNCTest : public CMainWndFixture {};

TEST_F(CMainWndNCTest, TheItemsAreReadHere) {
    Create();
    EXPECT_NE(m_pWnd->GetInterfaceFromNC(), nullptr);
    EXPECT_NE(m_pWnd->GetInterfaceToNC(), nullptr);
    EXPECT_NE(m_pWnd->GetInterfaceToNCWarnings(), nullptr);
}

TEST_F(CMainWndUnlinkedNCTest, WithoutLinkItemsNothingIsConnectedAndNothingSent) {
    Open();
    EXPECT_FALSE(COPCConnection::CreateInstance()->IsConnected());
    Act(102);
    m_pWnd->PreBalNotification(CPreBalNotification());
    m_pWnd->WarningModeChanged(3);
    Act(4501);
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"), std::nullopt);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndUnlinkedNCTest, AServerOutOfReachIsLoggedAndTheWindowWorksFromThePanel) {
    COPCConnection::CreateInstance()->SetConnector(
        [](const std::string&, int) -> std::shared_ptr<IFOpcServer> { return nullptr; });
    LinkOpc();
    Create();
    EXPECT_THAT(m_Log.GetTexts("Error"), Contains(testing::HasSubstr("no connection to the OPC server")));
    Init();
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(Act(102), 1);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

// A second window on the same connection makes its items all the same.
TEST_F(CMainWndUnlinkedNCTest, AConnectionOnHandServesTheItems) {
    COPCConnection::CreateInstance()->Connect("", 0);
    LinkOpc();
    Open();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 1U);
    EXPECT_EQ(GetStep(), 1);
}

TEST_F(CMainWndNCTest, TheItemsGoWithTheWindow) {
    Open();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 1U);
    m_pWnd.reset();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    Request(1);
    EXPECT_EQ(GetAnswer(), COpcValue(1));
}

// The window's own messages are a step and thirteen zeros.
TEST_F(CMainWndNCTest, AStepAloneIsFollowedByZeros) {
    Open();
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"),
              COpcValue(std::vector<std::int32_t>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(CMainWndNCTest, AStepThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNC", true);
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

// A request from before the module was ready must not start a run when it is.
TEST_F(CMainWndNCTest, WhatStandsInTheItemBeforeTheModuleIsReadyIsReplacedAndDoesNothing) {
    m_Opc.GetServer().Write("PreBalInterfaceFromNC", 1);
    Open();
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    Request(1);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndNCTest, RequestOneSavesTheConfigurationFirst) {
    Open();
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(23); });
    Request(1);
    PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 23U);
}

TEST_F(CMainWndNCTest, RequestsStartWithTheSpeedAndFlagsOnHand) {
    OpenCalibrated();
    ReportState(0, 1);
    ReportRPM(0, 1500);
    Forget();
    Request(1);
    Request(4);
    Request(2);
    EXPECT_THAT(GetSequenceCalls(),
                ElementsAre("StartPreBalancing 1500 0 1", "CommitChanges", "StartReBalancing 1500 0 1"));
}

TEST_F(CMainWndNCTest, RequestOneWithoutDatabaseIsRefused) {
    Create();
    Init();
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(CMainWndNCTest, RequestTwoSavesTheConfigurationFirst) {
    OpenCalibrated();
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(23); });
    Request(2);
    PreBalDB::CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 23U);
}

TEST_F(CMainWndNCTest, RequestTwoWithoutCalibrationIsRefused) {
    Open();
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndNCTest, RequestThreeIsTheNextStep) {
    Open();
    Act(102);
    Forget();
    Request(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("KeyPressed eNext"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Switch to next step..."));
}

// The NC's normal way out of a run that ended well.
TEST_F(CMainWndNCTest, RequestFourCommitsSavesAndEnds) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    Request(4);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
    EXPECT_EQ(GetStep(), 2);
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling AbortBalancing()..."));
}

TEST_F(CMainWndNCTest, RequestFourEndsARunWithoutResultToo) {
    Open();
    Act(102);
    Forget();
    Request(4);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_FALSE(IsStoredCalibrated(m_pWnd->GetMachineName()));
    EXPECT_EQ(GetStep(), 1);
}

TEST_F(CMainWndNCTest, RequestFourInAFailureWithoutReturnIsDoneAndTheProcedureStays) {
    Open();
    Act(102);
    m_Sequence.m_bFailureWithNoReturn = true;
    m_Sequence.m_bCommit = true;
    Forget();
    Request(4);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    // The operator ends it.
    Act(4501);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndNCTest, AnExceptionIsARefusal) {
    Open();
    m_Sequence.m_Throw = "out of order";
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("OnValueFromNCChanged failed: out of order"));
}

TEST_F(CMainWndNCTest, TheStepFollowsTheConfiguration) {
    Open();
    EXPECT_EQ(GetStep(), 1);
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 1);
    EXPECT_EQ(GetStep(), 2);
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 0);
    EXPECT_EQ(GetStep(), 1);
}

}  // namespace
