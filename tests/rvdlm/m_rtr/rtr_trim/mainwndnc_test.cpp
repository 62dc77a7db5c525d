// Requests of the NC with their answers, and what it is told.
#include <gmock/gmock.h>

#include <map>

#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

namespace {

const COpcValue eDone{0};
const COpcValue eRefused{-1};

/// A server elsewhere as the window sees it: takes every write, and tells a failure or a change when the test
/// says so.
class CDistantOpcServer : public IFOpcServer {
public:
    bool Write(const std::string& rItem, const COpcValue& rValue, FailureHandler OnFailure) override {
        m_Written[rItem].push_back(rValue);
        m_OnFailure[rItem] = std::move(OnFailure);
        return true;
    }
    std::optional<COpcValue> Read(const std::string&) override { return std::nullopt; }
    std::shared_ptr<void> Subscribe(const std::string&, std::uint32_t UpdateRate,
                                    ChangeHandler Handler) override {
        m_UpdateRate = UpdateRate;
        m_pHandler = std::make_shared<ChangeHandler>(std::move(Handler));
        return m_pHandler;
    }
    /// A change of the request item.
    void Report(std::int32_t Value) const {
        const COpcValue Changed(Value);
        (*m_pHandler)(&Changed);
    }
    /// The last write of the item fails after all.
    void Fail(const std::string& rItem) { m_OnFailure.at(rItem)(); }

    std::map<std::string, std::vector<COpcValue>> m_Written;
    std::map<std::string, FailureHandler> m_OnFailure;
    std::shared_ptr<ChangeHandler> m_pHandler;
    std::uint32_t m_UpdateRate = 0;
};

class CMainWndNCTest : public CMainWndFixture {
protected:
    CMainWndNCTest() { LinkOpc(); }
    static void Link(const char* pKey, const char* pItem) {
        COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, pItem);
    }
};

/// The window, connected to a server elsewhere.
class CMainWndDistantNCTest : public CMainWndFixture {
protected:
    CMainWndDistantNCTest() {
        COPCConnection::CreateInstance()->SetConnector([this](const std::string&, int) { return m_pServer; });
        LinkOpc();
        Open();
        m_pServer->m_Written.clear();
    }
    const std::vector<COpcValue>& GetAnswers() { return m_pServer->m_Written["PreBalInterfaceFromNC"]; }

    const std::shared_ptr<CDistantOpcServer> m_pServer = std::make_shared<CDistantOpcServer>();
};

class CMainWndOpcTest : public CMainWndFixture {
protected:
    /// Whether a window connects when only this key is linked.
    bool ConnectsWith(const char* pKey) {
        COpcDatabase::GetInstance()->Clear();
        COPCConnection::CreateInstance()->Disconnect();
        COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, "item");
        Create();
        m_pWnd.reset();
        return COPCConnection::CreateInstance()->IsConnected();
    }
};

TEST_F(CMainWndOpcTest, WithoutLinkItemsNothingIsConnectedAndNothingSent) {
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

TEST_F(CMainWndOpcTest, EachOfFiveLinkItemsIsReasonToConnect) {
    for (const char* pKey :
         {"PreBalInterfaceFromNC", "PreBalInterfaceToNC", "PreBalInterfaceFromNCTargetUnbalance",
          "PreBalInterfaceToNCWarnings", "PreBalInterfaceFromNCRotationDirection"}) {
        EXPECT_TRUE(ConnectsWith(pKey)) << pKey;
    }
}

// "Nc" is the key of the item itself; the window looks for "NC". The difference is deliberate.
TEST_F(CMainWndOpcTest, TheOtherSpellingOfTheRotationDirectionIsNoReasonToConnect) {
    EXPECT_FALSE(ConnectsWith("PreBalInterfaceFromNcRotationDirection"));
    EXPECT_FALSE(ConnectsWith("PreBalInterfaceFromNcTestWeight"));
}

TEST_F(CMainWndOpcTest, TheSelectedServerIsConnected) {
    std::vector<std::string> Asked;
    COPCConnection::CreateInstance()->SetConnector([&](const std::string& rServer, int Flag) {
        Asked.push_back(rServer + " " + std::to_string(Flag));
        return std::make_shared<CInProcessOpcServer>();
    });
    COpcDatabase::GetInstance()->SetSelectedOpcServer("opc.tcp://nc:4840");
    LinkOpc();
    Create();
    EXPECT_THAT(Asked, ElementsAre("opc.tcp://nc:4840 0"));
}

TEST_F(CMainWndOpcTest, AServerOutOfReachIsLoggedAndTheWindowWorksFromThePanel) {
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
TEST_F(CMainWndOpcTest, AConnectionOnHandServesTheItems) {
    COPCConnection::CreateInstance()->Connect("", 0);
    LinkOpc();
    Open();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 1U);
    EXPECT_EQ(GetStep(), 1);
}

// With a connection on hand the request and notification items are no reason to connect, and the others find
// it standing: either way nobody is asked for a server a second time.
TEST_F(CMainWndOpcTest, AConnectionOnHandIsNotMadeAgain) {
    int nAsked = 0;
    COPCConnection::CreateInstance()->SetConnector([&](const std::string&, int) {
        ++nAsked;
        return std::make_shared<CInProcessOpcServer>();
    });
    COPCConnection::CreateInstance()->Connect("", 0);
    LinkOpc();
    Create();
    EXPECT_EQ(nAsked, 1);
}

TEST_F(CMainWndOpcTest, AConnectionOnHandWithoutLinkItemsIsNotUsed) {
    COPCConnection::CreateInstance()->Connect("", 0);
    Open();
    m_pWnd->WarningModeChanged(3);
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndOpcTest, TheRequestItemAloneIsServed) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceFromNC", "PreBalInterfaceFromNC");
    Open();
    Request(1);
    m_pWnd->PreBalNotification(CPreBalNotification());
    m_pWnd->WarningModeChanged(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"), std::nullopt);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNCWarnings"), std::nullopt);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndOpcTest, TheNotificationItemAloneIsServed) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceToNC", "PreBalInterfaceToNC");
    Open();
    EXPECT_EQ(GetStep(), 1);
    m_pWnd->OnValueFromNCChanged(5);
    m_pWnd->WarningModeChanged(3);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceFromNC"), std::nullopt);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndOpcTest, OnlyLinkedItemsAreMade) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceToNCWarnings", "warnings");
    Open();
    m_pWnd->WarningModeChanged(9);
    EXPECT_EQ(m_Opc.GetServer().Read("warnings"), COpcValue(9));
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndNCTest, TheItemsHaveTheirNamesAndAreUpdatedEvery100Milliseconds) {
    Create();
    EXPECT_THAT(m_Log.GetTexts("Information"),
                IsSupersetOf({"CPreBalancingMainWnd::CPreBalInterfaceFromNC is the item "
                              "PreBalInterfaceFromNC, updated every 100 ms",
                              "CPreBalancingMainWnd::CPreBalInterfaceToNC is the item "
                              "PreBalInterfaceToNC, updated every 100 ms",
                              "CPreBalancingMainWnd::CPreBalInterfaceToNCWarnings is the item "
                              "PreBalInterfaceToNCWarnings, updated every 100 ms"}));
}

TEST_F(CMainWndDistantNCTest, RequestsAreAskedForEvery100Milliseconds) {
    EXPECT_EQ(m_pServer->m_UpdateRate, 100U);
}

TEST_F(CMainWndNCTest, TheItemsGoWithTheWindow) {
    Open();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 1U);
    m_pWnd.reset();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    Request(1);
    EXPECT_EQ(GetAnswer(), COpcValue(1));
}

TEST_F(CMainWndNCTest, ANotificationIsSentInItsOrder) {
    Open();
    CPreBalNotification Notification;
    Notification.m_Step = 3;
    Notification.m_Action = 4;
    Notification.m_AnglesPlane1 = {30, 150, -1};
    Notification.m_WeightsPlane1 = {1, 2, -1};
    Notification.m_AnglesPlane2 = {-1, -1, 90};
    Notification.m_WeightsPlane2 = {-1, -1, 7};
    m_pWnd->PreBalNotification(Notification);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"),
              COpcValue(std::vector<std::int32_t>{3, 4, 30, 1, 150, 2, -1, -1, -1, -1, -1, -1, 90, 7}));
}

// The window's own messages are a step and thirteen zeros.
TEST_F(CMainWndNCTest, AStepAloneIsFollowedByZeros) {
    Open();
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"),
              COpcValue(std::vector<std::int32_t>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(CMainWndNCTest, WarningsAreSentAndLogged) {
    Open();
    m_pWnd->WarningModeChanged(8);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNCWarnings"), COpcValue(8));
    EXPECT_THAT(m_Log.GetTexts("PbFlow"), Contains("WarningModeChanged: 8"));
}

TEST_F(CMainWndNCTest, WritesThatFailAreAssertedAndTheRunGoesOn) {
    Open();
    for (const char* pItem :
         {"PreBalInterfaceFromNC", "PreBalInterfaceToNC", "PreBalInterfaceToNCWarnings"}) {
        m_Opc.GetServer().SetFailing(pItem, true);
    }
    Act(102);
    m_pWnd->PreBalNotification(CPreBalNotification());
    m_pWnd->WarningModeChanged(3);
    m_pWnd->OnValueFromNCChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("SetNCData failed!", "SetWarningMode failed!", "SetValueFromNC failed!"));
    EXPECT_THAT(GetSequenceCalls(), Contains("KeyPressed eNext"));
}

TEST_F(CMainWndNCTest, ANotificationThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNC", true);
    m_pWnd->PreBalNotification(CPreBalNotification());
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(CMainWndNCTest, AStepThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNC", true);
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(CMainWndNCTest, AWarningThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNCWarnings", true);
    m_pWnd->WarningModeChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetWarningMode failed!"));
}

TEST_F(CMainWndNCTest, AnAnswerThatIsRefusedAtOnceIsAssertedAndTheRequestIsCarriedOut) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceFromNC", true);
    m_pWnd->OnValueFromNCChanged(1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetValueFromNC failed!"));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndDistantNCTest, ANotificationThatFailsLaterIsAssertedOnce) {
    m_pWnd->PreBalNotification(CPreBalNotification());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceToNC");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(CMainWndDistantNCTest, AWarningThatFailsLaterIsAssertedOnce) {
    m_pWnd->WarningModeChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceToNCWarnings");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetWarningMode failed!"));
}

TEST_F(CMainWndDistantNCTest, AnAnswerThatFailsLaterIsAssertedOnceAndTheRunGoesOn) {
    m_pServer->Report(1);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceFromNC");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetValueFromNC failed!"));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    m_pServer->Report(3);
    EXPECT_THAT(GetSequenceCalls(), Contains("KeyPressed eNext"));
}

TEST_F(CMainWndDistantNCTest, AWriteThatFailsAfterTheWindowHasGoneIsNobodysConcern) {
    m_pWnd->WarningModeChanged(3);
    m_pWnd.reset();
    m_pServer->Fail("PreBalInterfaceToNCWarnings");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Both answers are on their way before the server reports the first one.
TEST_F(CMainWndDistantNCTest, ARefusalAndADoneInARowAreNoRequests) {
    m_pServer->Report(3);
    m_pServer->Report(1);
    m_pServer->Report(-1);
    m_pServer->Report(0);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eDone));
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(CMainWndDistantNCTest, TwoRefusalsInARowAreNoRequests) {
    m_pServer->Report(3);
    m_pServer->Report(4);
    m_pServer->Report(-1);
    m_pServer->Report(-1);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eRefused));
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

// The NC writes its next request before the server looks: the answer between is never reported.
TEST_F(CMainWndDistantNCTest, AnAnswerThatIsNeverReportedSwallowsNoRequest) {
    m_pServer->Report(1);
    m_pServer->Report(3);
    m_pServer->Report(3);
    m_pServer->Report(4);
    EXPECT_THAT(GetAnswers(), ElementsAre(eDone, eDone, eDone, eDone));
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    m_pServer->Report(0);
    m_pServer->Report(1);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndDistantNCTest, AnAnswerThatFailedSwallowsNoRequest) {
    m_pServer->Report(3);
    m_pServer->Fail("PreBalInterfaceFromNC");
    m_pServer->Report(1);
    m_pServer->Report(0);
    m_pServer->Report(3);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eDone, eDone));
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1", "KeyPressed eNext"));
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

TEST_F(CMainWndNCTest, ZeroInARunDoesNotDisturbIt) {
    Open();
    Act(102);
    Forget();
    m_pWnd->OnValueFromNCChanged(0);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(CMainWndNCTest, AnIdleItemIsNotAnswered) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceFromNC", true);
    m_pWnd->OnValueFromNCChanged(0);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndNCTest, RequestOneStartsAPreBalancing) {
    Open();
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling StartPreBalancing()..."));
}

TEST_F(CMainWndNCTest, RequestOneSavesTheConfigurationFirst) {
    Open();
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetTargetUnbalance(23);
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

TEST_F(CMainWndNCTest, RequestOneInARunIsRefusedAndDoesNotDisturbIt) {
    Open();
    Act(102);
    Forget();
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndNCTest, RequestOneWithoutDatabaseIsRefused) {
    Create();
    Init();
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(CMainWndNCTest, RequestOneThatFailsIsAssertedAndDone) {
    Open();
    m_Sequence.m_Started = 0;
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("StartPreBalancingSequence failed!"));
}

TEST_F(CMainWndNCTest, RequestTwoStartsAReBalancing) {
    OpenCalibrated();
    Request(2);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartReBalancing 65535 1 1"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling StartReBalancing()..."));
}

TEST_F(CMainWndNCTest, RequestTwoSavesTheConfigurationFirst) {
    OpenCalibrated();
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetTargetUnbalance(23);
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

TEST_F(CMainWndNCTest, RequestTwoInARunIsRefused) {
    OpenCalibrated();
    Act(102);
    Forget();
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(CMainWndNCTest, RequestTwoWithoutDatabaseIsRefused) {
    Create();
    Init();
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(CMainWndNCTest, RequestTwoThatFailsIsAssertedAndDone) {
    OpenCalibrated();
    m_Sequence.m_Started = 0;
    Request(2);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("StartReBalancingSequence failed!"));
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

TEST_F(CMainWndNCTest, RequestThreeWithoutRunIsRefused) {
    Open();
    Request(3);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(CMainWndNCTest, RequestThreeThatIsNotTakenIsAssertedAndDone) {
    Open();
    Act(102);
    m_Sequence.m_KeyTaken = 0;
    Request(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("KeyPressed(CPreBalancing::eNext) failed!"));
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

TEST_F(CMainWndNCTest, RequestFourWithoutRunIsRefused) {
    Open();
    Request(4);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(CMainWndNCTest, AnUnknownRequestInARunDoesNotDisturbIt) {
    Open();
    Act(102);
    Forget();
    Request(5);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndNCTest, UnknownRequestsAreRefusedWithAWarning) {
    Open();
    Request(5);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("Unknown Request received: 5 (0x5)!"));
    Request(-2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Log.GetTexts("Warning"), Contains("Unknown Request received: -2 (0xFFFFFFFE)!"));
}

// The module's own answer comes back as a change of the item; it must not be taken for a request.
TEST_F(CMainWndNCTest, ARefusalIsNotARequest) {
    Open();
    Request(3);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
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
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetIsCalibrated(1);
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 1);
    EXPECT_EQ(GetStep(), 2);
    m_pWnd->GetDlgItem(101)->SendMessage(WM_RV_CALIBRATEDCHANGED, 0);
    EXPECT_EQ(GetStep(), 1);
}

}  // namespace
