// Requests of the NC with their answers, and what it is told.
#include <gmock/gmock.h>

#include "tests/rvdlm/m_rtr/rtr_trim/ncdeskfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

namespace {

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
    EXPECT_EQ(m_Opc.GetServer().Read(NOTIFICATIONS),
              COpcValue(std::vector<std::int32_t>{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(NCDesk, AStepThatIsRefusedAtOnceIsAsserted) {
    Open();
    m_Opc.GetServer().SetFailing(NOTIFICATIONS, true);
    m_pDesk->SendStep(CPreBalNotification::eInactive);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SetNCData failed!"));
}

TEST_F(NCDesk, AnAnswerOfItsOwnAccordIsWritten) {
    Open();
    m_pDesk->ResetNotificationFromNC(-1);
    EXPECT_EQ(GetAnswer(), eRefused);
}

}  // namespace
