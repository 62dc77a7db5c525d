// Requests of the NC with their answers, and what it is told.
#include "rvdlm/m_rtr/rtr_trim/ncdesk.h"

#include <gmock/gmock.h>

#include <map>

#include "platform/system/virtualeventloop.h"
#include "tests/rvdlm/m_rtr/rtr_trim/lonesequence.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"
#include "tests/support/testinstallation.h"

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

/// A desk whose window is not there: requests come to it straight from the item.
class NCDesk : public testing::Test, private CPreBalFromNCInterface {
protected:
    static constexpr const char* ms_pRequests = "PreBalInterfaceFromNC";
    static constexpr const char* ms_pNotifications = "PreBalInterfaceToNC";
    static constexpr const char* ms_pWarnings = "PreBalInterfaceToNCWarnings";

    static void Link(const char* pKey, const char* pItem) {
        COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, pItem);
    }
    static void LinkAll() {
        for (const char* pKey : {ms_pRequests, ms_pNotifications, ms_pWarnings}) {
            Link(pKey, pKey);
        }
    }
    CNCDeskCallbacks MakeCallbacks() {
        CNCDeskCallbacks Callbacks;
        Callbacks.m_GetProcedure = [this] { return m_Procedure.Get(); };
        Callbacks.m_HasConfiguration = [this] { return m_bConfiguration; };
        Callbacks.m_IsCalibrated = [this] { return m_bCalibrated; };
        Callbacks.m_SaveConfiguration = [this] { m_Told.emplace_back("save"); };
        Callbacks.m_Start = [this](CNCDeskCallbacks::StartOperation pStart) {
            m_Procedure.Begin();
            m_Told.emplace_back("start");
            return (m_Procedure.Get()->*pStart)(1500, 0, 1);
        };
        Callbacks.m_End = [this] {
            m_Told.emplace_back("end");
            m_Procedure.End();
            return m_bKept;
        };
        Callbacks.m_Guard = [this](const char* pName, const std::function<void()>& rOperation) {
            m_Told.emplace_back(pName);
            try {
                rOperation();
            } catch (const std::exception&) {
                m_Told.emplace_back("failed");
            }
        };
        return Callbacks;
    }
    void Connect() {
        m_pDesk = std::make_unique<CNCDesk>(MakeCallbacks());
        m_pDesk->Connect(*this);
        m_Loop.RunPosted();
    }
    /// Connected, and a configuration on hand.
    void Serve() {
        Connect();
        m_bConfiguration = true;
        m_Log.Clear();
    }
    /// The same with all items linked.
    void Open() {
        LinkAll();
        Serve();
    }
    void Run() {
        Open();
        m_Procedure.Begin();
        m_Log.Clear();
    }
    void Request(std::int32_t Value) {
        m_Opc.GetServer().Write(ms_pRequests, Value);
        m_Loop.RunPosted();
    }
    COpcValue GetAnswer() const { return m_Opc.GetServer().Read(ms_pRequests).value_or(-999); }
    std::vector<std::string> GetCalls() { return m_Procedure.TakeCalls(); }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log{true};
    CLoneSequence m_Procedure;
    bool m_bConfiguration = false;
    bool m_bCalibrated = false;
    bool m_bKept = true;
    std::vector<std::string> m_Told;
    std::unique_ptr<CNCDesk> m_pDesk;

private:
    void OnValueFromNCChanged(std::int32_t Value) override { m_pDesk->OnValueFromNCChanged(Value); }
};

/// The desk, connected to a server elsewhere.
class DistantNCDesk : public NCDesk {
protected:
    DistantNCDesk() {
        COPCConnection::CreateInstance()->SetConnector([this](const std::string&, int) { return m_pServer; });
        Open();
    }
    const std::vector<COpcValue>& GetAnswers() { return m_pServer->m_Written[ms_pRequests]; }

    const std::shared_ptr<CDistantOpcServer> m_pServer = std::make_shared<CDistantOpcServer>();
};

class NCDeskLinking : public NCDesk {
protected:
    /// Whether a desk connects when only this key is linked.
    bool ConnectsWith(const char* pKey) {
        COpcDatabase::GetInstance()->Clear();
        COPCConnection::CreateInstance()->Disconnect();
        Link(pKey, "item");
        Connect();
        m_pDesk.reset();
        return COPCConnection::CreateInstance()->IsConnected();
    }
};

TEST_F(NCDeskLinking, EachOfFiveLinkItemsIsReasonToConnect) {
    for (const char* pKey :
         {"PreBalInterfaceFromNC", "PreBalInterfaceToNC", "PreBalInterfaceFromNCTargetUnbalance",
          "PreBalInterfaceToNCWarnings", "PreBalInterfaceFromNCRotationDirection"}) {
        EXPECT_TRUE(ConnectsWith(pKey)) << pKey;
    }
}

// "Nc" is the key of the item itself; the window looks for "NC". The difference is deliberate.
TEST_F(NCDeskLinking, TheOtherSpellingOfTheRotationDirectionIsNoReasonToConnect) {
    EXPECT_FALSE(ConnectsWith("PreBalInterfaceFromNcRotationDirection"));
    EXPECT_FALSE(ConnectsWith("PreBalInterfaceFromNcTestWeight"));
}

TEST_F(NCDeskLinking, TheSelectedServerIsConnected) {
    std::vector<std::string> Asked;
    COPCConnection::CreateInstance()->SetConnector([&](const std::string& rServer, int Flag) {
        Asked.push_back(rServer + " " + std::to_string(Flag));
        return std::make_shared<CInProcessOpcServer>();
    });
    COpcDatabase::GetInstance()->SetSelectedOpcServer("opc.tcp://nc:4840");
    LinkAll();
    Connect();
    EXPECT_THAT(Asked, ElementsAre("opc.tcp://nc:4840 0"));
}

// With a connection on hand the request and notification items are no reason to connect, and the others find
// it standing: either way nobody is asked for a server a second time.
TEST_F(NCDeskLinking, AConnectionOnHandIsNotMadeAgain) {
    int nAsked = 0;
    COPCConnection::CreateInstance()->SetConnector([&](const std::string&, int) {
        ++nAsked;
        return std::make_shared<CInProcessOpcServer>();
    });
    COPCConnection::CreateInstance()->Connect("", 0);
    LinkAll();
    Connect();
    EXPECT_EQ(nAsked, 1);
}

TEST_F(NCDeskLinking, AConnectionOnHandWithoutLinkItemsIsNotUsed) {
    COPCConnection::CreateInstance()->Connect("", 0);
    Serve();
    m_pDesk->WarningModeChanged(3);
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDeskLinking, TheRequestItemAloneIsServed) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceFromNC", "PreBalInterfaceFromNC");
    Serve();
    Request(1);
    m_pDesk->PreBalNotification(CPreBalNotification());
    m_pDesk->WarningModeChanged(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetCalls(), ElementsAre("StartPreBalancing 1500 0 1"));
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"), std::nullopt);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNCWarnings"), std::nullopt);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDeskLinking, TheNotificationItemAloneIsServed) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceToNC", "PreBalInterfaceToNC");
    Serve();
    m_pDesk->SendStep(CPreBalNotification::eParameter);
    EXPECT_NE(m_Opc.GetServer().Read("PreBalInterfaceToNC"), std::nullopt);
    m_pDesk->OnValueFromNCChanged(5);
    m_pDesk->WarningModeChanged(3);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceFromNC"), std::nullopt);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDeskLinking, OnlyLinkedItemsAreMade) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceToNCWarnings", "warnings");
    Serve();
    m_pDesk->WarningModeChanged(9);
    EXPECT_EQ(m_Opc.GetServer().Read("warnings"), COpcValue(9));
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDesk, TheItemsHaveTheirNamesAndAreUpdatedEvery100Milliseconds) {
    LinkAll();
    Connect();
    EXPECT_THAT(m_Log.GetTexts("Information"),
                IsSupersetOf({"CPreBalancingMainWnd::CPreBalInterfaceFromNC is the item "
                              "PreBalInterfaceFromNC, updated every 100 ms",
                              "CPreBalancingMainWnd::CPreBalInterfaceToNC is the item "
                              "PreBalInterfaceToNC, updated every 100 ms",
                              "CPreBalancingMainWnd::CPreBalInterfaceToNCWarnings is the item "
                              "PreBalInterfaceToNCWarnings, updated every 100 ms"}));
}

TEST_F(DistantNCDesk, RequestsAreAskedForEvery100Milliseconds) {
    EXPECT_EQ(m_pServer->m_UpdateRate, 100U);
}

TEST_F(NCDesk, ANotificationIsSentInItsOrder) {
    Open();
    CPreBalNotification Notification;
    Notification.m_Step = 3;
    Notification.m_Action = 4;
    Notification.m_AnglesPlane1 = {30, 150, -1};
    Notification.m_WeightsPlane1 = {1, 2, -1};
    Notification.m_AnglesPlane2 = {-1, -1, 90};
    Notification.m_WeightsPlane2 = {-1, -1, 7};
    m_pDesk->PreBalNotification(Notification);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNC"),
              COpcValue(std::vector<std::int32_t>{3, 4, 30, 1, 150, 2, -1, -1, -1, -1, -1, -1, 90, 7}));
}

TEST_F(NCDesk, WarningsAreSentAndLogged) {
    Open();
    m_pDesk->WarningModeChanged(8);
    EXPECT_EQ(m_Opc.GetServer().Read("PreBalInterfaceToNCWarnings"), COpcValue(8));
    EXPECT_THAT(m_Log.GetTexts("PbFlow"), Contains("WarningModeChanged: 8"));
}

TEST_F(NCDesk, WritesThatFailAreAssertedAndTheRunGoesOn) {
    Open();
    for (const char* pItem :
         {"PreBalInterfaceFromNC", "PreBalInterfaceToNC", "PreBalInterfaceToNCWarnings"}) {
        m_Opc.GetServer().SetFailing(pItem, true);
    }
    m_Procedure.Begin();
    m_Log.Clear();
    m_pDesk->PreBalNotification(CPreBalNotification());
    m_pDesk->WarningModeChanged(3);
    m_pDesk->OnValueFromNCChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("SetNCData failed!", "SetWarningMode failed!", "SetValueFromNC failed!"));
    EXPECT_THAT(GetCalls(), Contains("KeyPressed eNext"));
}

TEST_F(NCDesk, ANotificationThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNC", true);
    m_pDesk->PreBalNotification(CPreBalNotification());
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(NCDesk, AWarningThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceToNCWarnings", true);
    m_pDesk->WarningModeChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetWarningMode failed!"));
}

TEST_F(NCDesk, AnAnswerThatIsRefusedAtOnceIsAssertedAndTheRequestIsCarriedOut) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceFromNC", true);
    m_pDesk->OnValueFromNCChanged(1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetValueFromNC failed!"));
    EXPECT_NE(m_Procedure.Get(), nullptr);
}

TEST_F(DistantNCDesk, ANotificationThatFailsLaterIsAssertedOnce) {
    m_pDesk->PreBalNotification(CPreBalNotification());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceToNC");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(DistantNCDesk, AWarningThatFailsLaterIsAssertedOnce) {
    m_pDesk->WarningModeChanged(3);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceToNCWarnings");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetWarningMode failed!"));
}

TEST_F(DistantNCDesk, AnAnswerThatFailsLaterIsAssertedOnceAndTheRunGoesOn) {
    m_pServer->Report(1);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_pServer->Fail("PreBalInterfaceFromNC");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetValueFromNC failed!"));
    EXPECT_NE(m_Procedure.Get(), nullptr);
    m_pServer->Report(3);
    EXPECT_THAT(GetCalls(), Contains("KeyPressed eNext"));
}

TEST_F(DistantNCDesk, AWriteThatFailsAfterTheDeskHasGoneIsNobodysConcern) {
    m_pDesk->WarningModeChanged(3);
    m_pDesk.reset();
    m_pServer->Fail("PreBalInterfaceToNCWarnings");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Both answers are on their way before the server reports the first one.
TEST_F(DistantNCDesk, ARefusalAndADoneInARowAreNoRequests) {
    m_pServer->Report(3);
    m_pServer->Report(1);
    m_pServer->Report(-1);
    m_pServer->Report(0);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eDone));
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(DistantNCDesk, TwoRefusalsInARowAreNoRequests) {
    m_pServer->Report(3);
    m_pServer->Report(4);
    m_pServer->Report(-1);
    m_pServer->Report(-1);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eRefused));
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

// The NC writes its next request before the server looks: the answer between is never reported.
TEST_F(DistantNCDesk, AnAnswerThatIsNeverReportedSwallowsNoRequest) {
    m_pServer->Report(1);
    m_pServer->Report(3);
    m_pServer->Report(3);
    m_pServer->Report(4);
    EXPECT_THAT(GetAnswers(), ElementsAre(eDone, eDone, eDone, eDone));
    EXPECT_EQ(m_Procedure.Get(), nullptr);
    m_pServer->Report(0);
    m_pServer->Report(1);
    EXPECT_NE(m_Procedure.Get(), nullptr);
}

TEST_F(DistantNCDesk, AnAnswerThatFailedSwallowsNoRequest) {
    m_pServer->Report(3);
    m_pServer->Fail("PreBalInterfaceFromNC");
    m_pServer->Report(1);
    m_pServer->Report(0);
    m_pServer->Report(3);
    EXPECT_THAT(GetAnswers(), ElementsAre(eRefused, eDone, eDone));
    EXPECT_THAT(GetCalls(), ElementsAre("StartPreBalancing 1500 0 1", "KeyPressed eNext"));
}

TEST_F(NCDesk, ZeroInARunDoesNotDisturbIt) {
    Run();
    m_pDesk->OnValueFromNCChanged(0);
    EXPECT_THAT(GetCalls(), IsEmpty());
    EXPECT_NE(m_Procedure.Get(), nullptr);
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(NCDesk, AnIdleItemIsNotAnswered) {
    Open();
    m_Opc.GetServer().SetFailing("PreBalInterfaceFromNC", true);
    m_pDesk->OnValueFromNCChanged(0);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDesk, RequestOneStartsAPreBalancing) {
    Open();
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetCalls(), ElementsAre("StartPreBalancing 1500 0 1"));
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged", "save", "start"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling StartPreBalancing()..."));
}

TEST_F(NCDesk, RequestOneInARunIsRefusedAndDoesNotDisturbIt) {
    Run();
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetCalls(), IsEmpty());
    EXPECT_NE(m_Procedure.Get(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(NCDesk, RequestOneThatFailsIsAssertedAndDone) {
    Open();
    m_Procedure.m_Record.m_Started = 0;
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("StartPreBalancingSequence failed!"));
}

TEST_F(NCDesk, RequestTwoStartsAReBalancing) {
    Open();
    m_bCalibrated = true;
    Request(2);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetCalls(), ElementsAre("StartReBalancing 1500 0 1"));
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged", "save", "start"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling StartReBalancing()..."));
}

TEST_F(NCDesk, RequestTwoInARunIsRefused) {
    Run();
    m_bCalibrated = true;
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetCalls(), IsEmpty());
}

TEST_F(NCDesk, RequestTwoWithoutDatabaseIsRefused) {
    Open();
    m_bConfiguration = false;
    m_bCalibrated = true;
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged"));
}

TEST_F(NCDesk, RequestTwoThatFailsIsAssertedAndDone) {
    Open();
    m_bCalibrated = true;
    m_Procedure.m_Record.m_Started = 0;
    Request(2);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("StartReBalancingSequence failed!"));
}

TEST_F(NCDesk, RequestThreeWithoutRunIsRefused) {
    Open();
    Request(3);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(NCDesk, RequestThreeThatIsNotTakenIsAssertedAndDone) {
    Run();
    m_Procedure.m_Record.m_KeyTaken = 0;
    Request(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("KeyPressed(CPreBalancing::eNext) failed!"));
}

TEST_F(NCDesk, RequestFourWithoutRunIsRefused) {
    Open();
    Request(4);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(NCDesk, AnUnknownRequestInARunDoesNotDisturbIt) {
    Run();
    Request(5);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(GetCalls(), IsEmpty());
    EXPECT_NE(m_Procedure.Get(), nullptr);
}

TEST_F(NCDesk, UnknownRequestsAreRefusedWithAWarning) {
    Open();
    Request(5);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("Unknown Request received: 5 (0x5)!"));
    Request(-2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Log.GetTexts("Warning"), Contains("Unknown Request received: -2 (0xFFFFFFFE)!"));
}

// The module's own answer comes back as a change of the item; it must not be taken for a request.
TEST_F(NCDesk, ARefusalIsNotARequest) {
    Open();
    Request(3);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
    Request(1);
    EXPECT_EQ(GetAnswer(), eDone);
}

TEST_F(NCDesk, RequestOneWithoutConfigurationIsRefusedAndSavesNothing) {
    Open();
    m_bConfiguration = false;
    Request(1);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged"));
}

TEST_F(NCDesk, RequestTwoWithoutCalibrationIsRefusedAndSavesNothing) {
    Open();
    Request(2);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged"));
}

TEST_F(NCDesk, RequestThreeIsTheNextStep) {
    Run();
    Request(3);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(GetCalls(), ElementsAre("KeyPressed eNext"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Switch to next step..."));
}

TEST_F(NCDesk, RequestFourEndsTheRun) {
    Run();
    Request(4);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged", "end"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("NC Notification: Calling AbortBalancing()..."));
}

TEST_F(NCDesk, RequestFourIsRefusedWhenTheResultIsNotKept) {
    Run();
    m_bKept = false;
    Request(4);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(NCDesk, RequestFourLeavesAFailureWithoutReturnAlone) {
    Run();
    m_Procedure.m_Record.m_bFailureWithNoReturn = true;
    m_bKept = false;
    Request(4);
    EXPECT_EQ(GetAnswer(), eDone);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged"));
}

TEST_F(NCDesk, ARequestThatFailsInTheMiddleIsRefused) {
    Run();
    m_Procedure.m_Record.m_Throw = "out of order";
    Request(3);
    EXPECT_EQ(GetAnswer(), eRefused);
    EXPECT_THAT(m_Told, ElementsAre("OnValueFromNCChanged", "failed"));
}

// Unlike in a running procedure.
TEST_F(NCDesk, AStepAloneIsFollowedByZeros) {
    Open();
    m_pDesk->SendStep(CPreBalNotification::eParameterWithReBal);
    EXPECT_EQ(m_Opc.GetServer().Read(ms_pNotifications),
              COpcValue(std::vector<std::int32_t>{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(NCDesk, AStepThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing(ms_pNotifications, true);
    m_pDesk->SendStep(CPreBalNotification::eInactive);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(NCDesk, AnAnswerOfItsOwnAccordIsWritten) {
    Open();
    m_pDesk->ResetNotificationFromNC(-1);
    EXPECT_EQ(GetAnswer(), eRefused);
}

TEST_F(NCDeskLinking, ADeskWithoutItemsDoesNothing) {
    Serve();
    EXPECT_EQ(m_pDesk->GetInterfaceFromNC(), nullptr);
    EXPECT_EQ(m_pDesk->GetInterfaceToNC(), nullptr);
    EXPECT_EQ(m_pDesk->GetInterfaceToNCWarnings(), nullptr);
    m_pDesk->ResetNotificationFromNC(0);
    m_pDesk->SendStep(CPreBalNotification::eInactive);
    m_pDesk->PreBalNotification(CPreBalNotification());
    m_pDesk->WarningModeChanged(3);
    m_pDesk->OnValueFromNCChanged(5);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    Open();
    EXPECT_NE(m_pDesk->GetInterfaceFromNC(), nullptr);
    EXPECT_NE(m_pDesk->GetInterfaceToNC(), nullptr);
    EXPECT_NE(m_pDesk->GetInterfaceToNCWarnings(), nullptr);
}

TEST_F(NCDeskLinking, AServerOutOfReachIsLogged) {
    COPCConnection::CreateInstance()->SetConnector(
        [](const std::string&, int) -> std::shared_ptr<IFOpcServer> { return nullptr; });
    LinkAll();
    Connect();
    EXPECT_THAT(m_Log.GetTexts("Error"), Contains(testing::HasSubstr("no connection to the OPC server")));
    EXPECT_EQ(m_pDesk->GetInterfaceToNC(), nullptr);
}

}  // namespace
