// Actions and states that the host asks for.
#include <gmock/gmock.h>

#include "platform/rvmdb/directsql.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CMainWndActionsTest : public CMainWndFixture {
protected:
    /// From now on the store takes no configuration.
    static void RefuseConfigurations() {
        PreBalDB::CDirectSQL Store(PreBalDB::GetDatabaseConnection());
        for (const char* pEvent : {"INSERT", "UPDATE"}) {
            Store.Execute(std::string("CREATE TRIGGER refused_") + pEvent + " BEFORE " + pEvent +
                          " ON configuration BEGIN SELECT RAISE(ABORT, 'refused'); END");
        }
    }
};

struct CActionCase {
    int m_Action;
    int m_Flag;
    const char* m_pKey;
};

class CKeyActionsTest : public CMainWndFixture, public testing::WithParamInterface<CActionCase> {};

TEST_P(CKeyActionsTest, ReachTheProcedure) {
    Open();
    Act(102);
    Forget();
    EXPECT_EQ(Act(GetParam().m_Action, GetParam().m_Flag), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre(std::string("KeyPressed ") + GetParam().m_pKey));
    EXPECT_THAT(m_Sequence.m_Calls, Contains("Paint 15"));
}

INSTANTIATE_TEST_SUITE_P(
    All, CKeyActionsTest,
    testing::Values(
        CActionCase{4499, 0, "eRebalance"}, CActionCase{4500, 0, "eNext"}, CActionCase{4500, 1, "eNext"},
        CActionCase{4502, 0, "eExtras"}, CActionCase{4507, 0, "eIncrement"},
        CActionCase{4508, 0, "eDecrement"}, CActionCase{4509, 0, "eCheckWeightPositions"},
        CActionCase{4511, 1, "eIncPosWeight1Down"}, CActionCase{4511, 2, "eIncPosWeight1Up"},
        CActionCase{4511, 0, "eIncPosWeight1Up"}, CActionCase{4512, 2, "eDecPosWeight1Down"},
        CActionCase{4512, 1, "eDecPosWeight1Up"}, CActionCase{4513, 1, "eIncPosWeight2Down"},
        CActionCase{4513, 0, "eIncPosWeight2Up"}, CActionCase{4514, 2, "eDecPosWeight2Down"},
        CActionCase{4514, 0, "eDecPosWeight2Up"}, CActionCase{4515, 0, "eTogglePlane"},
        CActionCase{4516, 0, "eNeutralPosition"}, CActionCase{4517, 0, "eChangeWeightPositions"},
        CActionCase{4518, 0, "eNeutralPositionAdjusted"}, CActionCase{4519, 0, "ePositionAdoption"},
        CActionCase{4520, 1, "eIncPosActiveWeightDown"}, CActionCase{4520, 0, "eIncPosActiveWeightUp"},
        CActionCase{4521, 2, "eDecPosActiveWeightDown"}, CActionCase{4521, 0, "eDecPosActiveWeightUp"},
        CActionCase{4522, 0, "eWeightSelection"}, CActionCase{4523, 0, "eStepSelection"},
        CActionCase{4524, 0, "eTogglePlane"}),
    [](const auto& rInfo) {
        return std::to_string(rInfo.param.m_Action) + "Flag" + std::to_string(rInfo.param.m_Flag);
    });

TEST_F(CMainWndActionsTest, SoftkeysWithoutMeaningDoNothing) {
    Open();
    Act(102);
    Forget();
    for (const int Action : {4503, 4504, 4505, 4506, 4498, 4525, 0}) {
        EXPECT_EQ(Act(Action), 1);
    }
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(CMainWndActionsTest, AKeyWithoutProcedureDoesNothing) {
    Open();
    EXPECT_EQ(Act(4500), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    EXPECT_THAT(m_Host.Get(1075), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndActionsTest, ActionOneChangesTheTab) {
    Open();
    Act(1);
    // One tab only, with weights: it is shown anew.
    EXPECT_THAT(m_Host.Get(1065), ElementsAre(Message{1065, 111, 0}));
    EXPECT_EQ(m_pWnd->GetTabs().GetCurSel(), 0);
}

// Changing tabs saves, and what a run has in memory must not be saved.
TEST_F(CMainWndActionsTest, ActionOneDoesNothingInARun) {
    Open();
    Act(102);
    Forget();
    Act(1);
    EXPECT_THAT(m_Host.Get(1065), IsEmpty());
}

TEST_F(CMainWndActionsTest, ActionStartStartsWithTheSpeedAndFlagsOnHand) {
    Open();
    ReportState(0, 1);
    ReportRPM(0, 1500);
    Forget();
    EXPECT_EQ(Act(102), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 1500 0 1"));
    EXPECT_THAT(m_ProcedureModes, ElementsAre(0));
}

TEST_F(CMainWndActionsTest, WithoutAnyReportTheSpeedIsUnknownAndTheFlagsAreSet) {
    Open();
    Act(102);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
}

TEST_F(CMainWndActionsTest, ActionStartNeedsTheDatabase) {
    Create();
    Init();
    Forget();
    EXPECT_EQ(Act(102), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndActionsTest, ActionStartInARunAssertsAndStartsTheSameProcedure) {
    Open();
    Act(102);
    Forget();
    Act(102);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("wrong menu state!", "still running"));
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
    EXPECT_EQ(m_ProcedureModes.size(), 1U);
}

TEST_F(CMainWndActionsTest, RebalanceActionStartsAReBalancing) {
    OpenCalibrated();
    Act(4499);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartReBalancing 65535 1 1"));
}

TEST_F(CMainWndActionsTest, ARefusedReBalancingBringsTheConfigurationBack) {
    Open();
    m_Sequence.m_Started = 0;
    Act(4499);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(m_pWnd->GetTabs().IsWindowVisible());
    EXPECT_TRUE(m_pWnd->GetBrowser().IsWindowVisible());
    EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, -1, 0}));
}

TEST_F(CMainWndActionsTest, TwoActionsEndAProcedure) {
    Open();
    for (const int Action : {4501, 4510}) {
        Act(102);
        ASSERT_NE(m_pWnd->GetSequence(), nullptr);
        Forget();
        Act(Action);
        EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
        EXPECT_FALSE(m_Sequence.m_bAlive);
        EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, -1, 0}));
        EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 0}));
    }
}

TEST_F(CMainWndActionsTest, ActionEndWithoutProcedureDoesNothing) {
    LinkOpc();
    Open();
    const std::int32_t Step = GetStep();
    Act(4501);
    EXPECT_EQ(GetStep(), Step);
    EXPECT_THAT(m_Host.Get(1075), IsEmpty());
}

// The softkey that ends a run carries flag 5: its result is kept.
TEST_F(CMainWndActionsTest, FlagFiveCommitsAndSaves) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    Act(4501, 5);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CommitChanges"));
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndActionsTest, ACommittedResultThatCannotBeSavedIsAsserted) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    RefuseConfigurations();
    Forget();
    Act(4501, 5);
    EXPECT_THAT(m_Log.GetAssertions(), Contains("SaveDatabase failed!"));
    EXPECT_FALSE(IsStoredCalibrated(m_pWnd->GetMachineName()));
}

TEST_F(CMainWndActionsTest, FlagFiveSavesNothingThatIsNotCommitted) {
    Open();
    Act(102);
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
    Act(4501, 5);
    EXPECT_FALSE(IsStoredCalibrated(m_pWnd->GetMachineName()));
    EXPECT_FALSE(m_pWnd->GetTabs().IsCalibrated());
}

TEST_F(CMainWndActionsTest, FlagFiveWithoutProcedureCommitsNothing) {
    Open();
    Act(4500, 5);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

// SetPrebalancingState

TEST_F(CMainWndActionsTest, StateZeroWithoutProcedureIsRefused) {
    Open();
    EXPECT_EQ(SetState(0), 0);
}

TEST_F(CMainWndActionsTest, StateZeroCommitsSavesAndEnds) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    EXPECT_EQ(SetState(0), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
}

TEST_F(CMainWndActionsTest, StateZeroEndsARunWithoutResultToo) {
    Open();
    Act(102);
    EXPECT_EQ(SetState(0), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_FALSE(IsStoredCalibrated(m_pWnd->GetMachineName()));
}

TEST_F(CMainWndActionsTest, StateOneStartsAPreBalancing) {
    Open();
    EXPECT_EQ(SetState(1), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndActionsTest, StateOneThatFailsIsAsserted) {
    Open();
    m_Sequence.m_Started = 0;
    EXPECT_EQ(SetState(1), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("StartPrebalancingSequence failed!"));
}

TEST_F(CMainWndActionsTest, StateOneInARunIsRefused) {
    Open();
    Act(102);
    Forget();
    EXPECT_EQ(SetState(1), 0);
    EXPECT_EQ(SetState(3), 0);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(CMainWndActionsTest, StateTwoNeedsACalibratedConfiguration) {
    Open();
    EXPECT_EQ(SetState(2), 0);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
    EXPECT_EQ(SetState(2), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartReBalancing 65535 1 1"));
}

TEST_F(CMainWndActionsTest, StateTwoNeedsADatabase) {
    Create();
    Init();
    EXPECT_EQ(SetState(2), 0);
    EXPECT_EQ(SetState(7), 0);
}

TEST_F(CMainWndActionsTest, StateTwoInARunSavesItsResultAndGoesOn) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    Forget();
    EXPECT_EQ(SetState(2), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CommitChanges", "KeyPressed eRebalance"));
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
}

TEST_F(CMainWndActionsTest, StateTwoInARunWithoutResultIsRefused) {
    Open();
    Act(102);
    Forget();
    EXPECT_EQ(SetState(2), 0);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CommitChanges"));
}

TEST_F(CMainWndActionsTest, StateTwoInARunThatDoesNotTakeTheKeyIsAsserted) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    m_Sequence.m_KeyTaken = 0;
    Forget();
    EXPECT_EQ(SetState(2), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Rebalancing failed!"));
}

}  // namespace
