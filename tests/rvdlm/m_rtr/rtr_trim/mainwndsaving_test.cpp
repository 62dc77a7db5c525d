// A result that can't be saved: told to operator, host and NC, kept, and saved by the next try.
#include <gmock/gmock.h>

#include "contract/hostmessages.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using namespace PreBalDB;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CMainWndSavingTest : public CMainWndFixture {
protected:
    /// A run with a result that is to be kept, on a store that takes no change of a configuration.
    void RunWithoutStore() {
        Open();
        m_Key = m_pWnd->GetMachineName();
        Act(102);
        m_Sequence.m_bCommit = true;
        CDirectSQL(GetDatabaseConnection())
            .Execute(
                "CREATE TRIGGER sabotage BEFORE UPDATE ON configuration BEGIN SELECT RAISE(ABORT, "
                "'disk trouble'); END");
        Forget();
        TakeShownMessages();
    }
    static void Repair() { CDirectSQL(GetDatabaseConnection()).Execute("DROP TRIGGER sabotage"); }
    std::vector<std::string> GetShown() {
        std::vector<std::string> Texts;
        for (const CShownMessage& rMessage : TakeShownMessages()) {
            Texts.push_back(rMessage.m_Text);
        }
        return Texts;
    }
    /// Another console changes the stored entry.
    void ChangeElsewhere(const std::function<void(CPreBalBaseTableEntry&)>& rChange) {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        rChange(Database.ReadConfiguration("Default"));
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }

    std::string m_Key;
};

TEST_F(CMainWndSavingTest, TheOperatorIsToldAndTheRunStaysForFinishOnceMore) {
    RunWithoutStore();
    EXPECT_EQ(Act(4501, 5), 1);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetShown(), ElementsAre(AllOf(HasSubstr("\"Default\" was not saved"),
                                              HasSubstr("disk trouble"), HasSubstr("Finish once more"))));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SaveDatabase failed!"));
    EXPECT_THAT(m_Host.Get(1151), ElementsAre(Message{1151, 0, 0}));
    EXPECT_FALSE(IsStoredCalibrated(m_Key));
    Repair();
    Forget();
    Act(4501, 5);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(IsStoredCalibrated(m_Key));
    EXPECT_THAT(m_Host.Get(1151), ElementsAre(Message{1151, 1, 0}));
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndSavingTest, NobodyIsCaughtInARunAndTheResultStaysInMemory) {
    RunWithoutStore();
    Act(4501, 5);
    TakeShownMessages();
    Act(4501, 5);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetShown(), ElementsAre(HasSubstr("still not saved")));
    EXPECT_TRUE(m_pWnd->GetTabs().IsCalibrated()) << "in memory";
    EXPECT_FALSE(IsStoredCalibrated(m_Key));
    Repair();
    Act(103);
    EXPECT_TRUE(IsStoredCalibrated(m_Key));
}

TEST_F(CMainWndSavingTest, EachRunHasItsSecondTry) {
    RunWithoutStore();
    Act(4501, 5);
    Act(4501, 5);
    Act(102);
    Act(4501, 5);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndSavingTest, TheNcIsToldMinusOneUntilItIsSaved) {
    LinkOpc();
    RunWithoutStore();
    Request(4);
    EXPECT_EQ(GetAnswer(), COpcValue(-1));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    Repair();
    Request(4);
    EXPECT_EQ(GetAnswer(), COpcValue(0));
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_TRUE(IsStoredCalibrated(m_Key));
}

TEST_F(CMainWndSavingTest, TheNcIsToldMinusOneThoughTheRunEnds) {
    LinkOpc();
    RunWithoutStore();
    Request(4);
    Request(4);
    EXPECT_EQ(GetAnswer(), COpcValue(-1));
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
}

TEST_F(CMainWndSavingTest, StateZeroAnswersZeroAndTheRunStays) {
    RunWithoutStore();
    EXPECT_EQ(SetState(0), 0);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    Repair();
    EXPECT_EQ(SetState(0), 1);
    EXPECT_TRUE(IsStoredCalibrated(m_Key));
}

// A re-balancing would change in memory what isn't in the store yet.
TEST_F(CMainWndSavingTest, ARebalancingDoesNotGoOnFromAnUnsavedResult) {
    RunWithoutStore();
    EXPECT_EQ(SetState(2), 0);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CommitChanges"));
}

TEST_F(CMainWndSavingTest, DestroyPendingSavesThePagesIfTheResultWasNotSaved) {
    RunWithoutStore();
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_DESTROYPENDING), 1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SaveDatabase failed!", "SaveDatabase() failed"));
}

TEST_F(CMainWndSavingTest, AResultThatAnotherConsoleWasFasterWithIsToldAsNotSaved) {
    Open();
    Act(102);
    m_Sequence.m_bCommit = true;
    ChangeElsewhere([](CPreBalBaseTableEntry& rEntry) {
        rEntry.SetIsCalibrated(1);
        rEntry.SetCalibratedRPM(1234);
    });
    m_pWnd->GetTabs().GetCurrentBaseEntry()->SetCalibratedRPM(4321);
    Forget();
    TakeShownMessages();
    Act(4501, 5);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr) << "a second try would end the same";
    EXPECT_THAT(m_Host.Get(1151), ElementsAre(Message{1151, 0, 0}));
    EXPECT_THAT(GetShown(), ElementsAre(HasSubstr("another console")));
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetCalibratedRPM(), 1234U);
}

TEST_F(CMainWndSavingTest, ARunWithoutResultTellsNothing) {
    Open();
    Act(102);
    Forget();
    Act(4501, 5);
    EXPECT_THAT(m_Host.Get(1151), IsEmpty());
    EXPECT_THAT(GetShown(), IsEmpty());
}

TEST_F(CMainWndSavingTest, GermanOperatorsAreToldInGerman) {
    RunWithoutStore();
    SetLanguage("de");
    Act(4501, 5);
    SetLanguage("en");
    EXPECT_THAT(GetShown(),
                ElementsAre(AllOf(HasSubstr("wurde nicht gespeichert"), HasSubstr("disk trouble"))));
}

TEST_F(CMainWndSavingTest, ChangesOfThePagesThatCannotBeSavedAreTold) {
    RunWithoutStore();
    m_Sequence.m_bCommit = false;
    Act(4501, 5);
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(44); });
    TakeShownMessages();
    Act(103);
    EXPECT_THAT(GetShown(), ElementsAre(AllOf(HasSubstr("changes of configuration \"Default\""),
                                              HasSubstr("disk trouble"))));
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetTargetUnbalance(), 44U);
}

TEST_F(CMainWndSavingTest, AConflictOfThePagesIsToldAndWhatIsStoredIsShown) {
    Open();
    ChangeElsewhere([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(9); });
    ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(44); });
    TakeShownMessages();
    Act(103);
    EXPECT_THAT(GetShown(), ElementsAre(HasSubstr("Unbalance target.")));
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetTargetUnbalance(), 9U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndSavingTest, AValueThatCannotBeIsToldWhenTheConfigurationIsRead) {
    Open();
    CDirectSQL(GetDatabaseConnection()).Execute("UPDATE configuration SET number_of_samples = 4294967295");
    TakeShownMessages();
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 1);
    EXPECT_THAT(GetShown(),
                ElementsAre(AllOf(HasSubstr("Measuring time [s]: 4294967295"), HasSubstr("not calibrated"))));
}

TEST_F(CMainWndSavingTest, AStoreThatTheHostHasChangedIsReadAnew) {
    Open();
    ChangeElsewhere([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(9); });
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 1);
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetTargetUnbalance(), 9U);
}

// A run has the configuration in its hands.
TEST_F(CMainWndSavingTest, AStoreThatIsChangedInARunIsReadAnewBehindIt) {
    Open();
    Act(102);
    ChangeElsewhere([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(9); });
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 0);
    EXPECT_NE(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetTargetUnbalance(), 9U);
    Act(4501);
    EXPECT_EQ(m_pWnd->GetTabs().GetCurrentBaseEntry()->GetTargetUnbalance(), 9U);
}

TEST_F(CMainWndSavingTest, WithoutAStoreNothingIsReadAnew) {
    Create();
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_STORECHANGED), 0);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
