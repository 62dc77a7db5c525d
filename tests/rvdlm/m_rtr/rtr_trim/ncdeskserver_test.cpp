// Which items the desk makes, and on which server; and one that answers late.
#include <gmock/gmock.h>

#include <map>

#include "tests/rvdlm/m_rtr/rtr_trim/ncdeskfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

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

/// The desk, connected to a server elsewhere.
class DistantNCDesk : public NCDesk {
protected:
    DistantNCDesk() {
        COPCConnection::CreateInstance()->SetConnector([this](const std::string&, int) { return m_pServer; });
        Open();
    }
    const std::vector<COpcValue>& GetAnswers() { return m_pServer->m_Written[REQUESTS]; }

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

TEST_F(DistantNCDesk, RequestsAreAskedForEvery100Milliseconds) {
    EXPECT_EQ(m_pServer->m_UpdateRate, 100U);
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
