// The configuration pane: its tabs and its database.
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "contract/hostmessages.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "tests/rvdlm/m_rtr/rtr_trim/configtabsfixture.h"
#include "tests/support/textfiles.h"

using namespace PreBalDB;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using CPreBalConfigTabsTest = CConfigTabsFixture;

TEST_F(CPreBalConfigTabsTest, CreationMakesBothPagesAndBothTabs) {
    Create();
    EXPECT_EQ(Tabs().GetItemCount(), 2);
    EXPECT_EQ(Tabs().GetItemText(0), GetText("SETTINGS"));
    EXPECT_EQ(Tabs().GetItemText(1), GetText("MASS_TABLE"));
    EXPECT_TRUE(Tabs().GetDlgItem(122)->IsWindowVisible());
    EXPECT_FALSE(Tabs().GetDlgItem(123)->IsWindowVisible());
    EXPECT_THAT(m_Host.Get(1065), ElementsAre(Message{1065, 111, 0}));
    EXPECT_THAT(m_Host.Get(1122), ElementsAre(Message{1122, 12, 12}));
}

TEST_F(CPreBalConfigTabsTest, PagesLieUnderTheTabs) {
    Create();
    const CRect Area(0, CTabCtrl::TAB_HEIGHT, 300, 440);
    EXPECT_EQ(Dlg().GetRect(), Area);
    EXPECT_EQ(ScrewDlg().GetRect(), Area);
}

TEST_F(CPreBalConfigTabsTest, TheStoreLiesInTheConfigurationDirectory) {
    Open();
    EXPECT_TRUE(std::filesystem::exists(m_Installation.GetRoot() / "cnf" / "prebal.db"));
}

TEST_F(CPreBalConfigTabsTest, TheHostMayChooseAnotherStore) {
    const std::string Path = (m_Installation.GetRoot() / "other.db").string();
    SetDatabaseConnection("sqlite:" + Path);
    Open();
    EXPECT_TRUE(std::filesystem::exists(Path));
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetRoot() / "cnf" / "prebal.db"));
}

TEST_F(CPreBalConfigTabsTest, ANewDatabaseShowsDefaultAndSavesItAtOnce) {
    Open();
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), ElementsAre("Default"));
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
    EXPECT_EQ(Dlg().GetSpinPos(), 0);
    ASSERT_NE(Tabs().GetCurrentBaseEntry(), nullptr);
    EXPECT_EQ(Entry().GetProcessName(), "Default");
    EXPECT_FALSE(Tabs().IsCalibrated());
    EXPECT_THAT(GetStoredNames(), ElementsAre("Default"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, OpeningTellsTheHostAllSoftkeys) {
    Create();
    Init();
    Identify();
    Forget();
    ReportSet(MakeSet());
    EXPECT_THAT(m_Host.Get(1122), testing::UnorderedElementsAre(Message{1122, 16, 0}, Message{1122, 64, 0}));
}

TEST_F(CPreBalConfigTabsTest, TheEntryGetsSensorInputAndPlane) {
    Open();
    const CSinglePlaneBalancingTableEntry* const pPlane = Entry().GetSinglePlane();
    ASSERT_NE(pPlane, nullptr);
    EXPECT_EQ(pPlane->GetSensorAdaption(), 3);
    EXPECT_EQ(pPlane->GetProximitySwitchInput(), CTypeBase::ePlane1);
    // A method that isn't chosen yet counts as weights.
    EXPECT_EQ(pPlane->GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(Entry().GetTwoPlane(), nullptr);
}

TEST_F(CPreBalConfigTabsTest, PlaneTwoHasItsOwnSensorAndInput) {
    Open(LANNER_PLANE2);
    EXPECT_EQ(Entry().GetSinglePlane()->GetSensorAdaption(), 4);
    EXPECT_EQ(Entry().GetSinglePlane()->GetProximitySwitchInput(), CTypeBase::ePlane2);
}

TEST_F(CPreBalConfigTabsTest, TwoPlanesGetBothSensorsAndBothCompensations) {
    Open(KESTREL_TWO_PLANE);
    const CTwoPlaneBalancingTableEntry* const pPlanes = Entry().GetTwoPlane();
    ASSERT_NE(pPlanes, nullptr);
    EXPECT_EQ(pPlanes->GetPlane1SensorAdaption(), 3);
    EXPECT_EQ(pPlanes->GetPlane2SensorAdaption(), 4);
    EXPECT_EQ(pPlanes->GetProximitySwitchInput(), CTypeBase::ePlane1);
    EXPECT_EQ(pPlanes->GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(pPlanes->GetPlane2UsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(Entry().GetSinglePlane(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, UnknownSourcesAreAsserted) {
    Create();
    Init(KESTREL_TWO_PLANE);
    Identify();
    CSet Set = MakeSet();
    Set.RPMInputPlane1 = 255;
    Set.SensorAdaptionPlane1 = 255;
    Set.SensorAdaptionPlane2 = 255;
    ReportSet(Set);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("current set configuration does not fit with balancing mode!",
                            "Proximity Switch Input is invalid!", "Sensor Adaption 1 invalid!",
                            "Sensor Adaption 2 invalid!"));
}

TEST_F(CPreBalConfigTabsTest, WithWeightsTheScrewTabGoes) {
    Open();
    EXPECT_EQ(Tabs().GetItemCount(), 1);
}

TEST_F(CPreBalConfigTabsTest, WithScrewsTheScrewTabIsThere) {
    OpenWith({"Default"}, true);
    EXPECT_EQ(Entry().GetSinglePlane()->GetUsedCompensationMethod(), CCompensationTableEntry::eScrews);
    ASSERT_EQ(Tabs().GetItemCount(), 2);
    EXPECT_EQ(Tabs().GetItemText(1), GetText("MASS_TABLE"));
}

TEST_F(CPreBalConfigTabsTest, SwitchingTheMethodInsertsAndRemovesTheTab) {
    Open();
    Send(WM_RV_UPDATETABS, 1);
    EXPECT_EQ(Tabs().GetItemCount(), 2);
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    Send(WM_RV_UPDATETABS, 1);
    EXPECT_EQ(Tabs().GetItemCount(), 2);
    Send(WM_RV_UPDATETABS, 0);
    EXPECT_EQ(Tabs().GetItemCount(), 1);
    EXPECT_THAT(m_Host.Get(1122),
                ElementsAre(Message{1122, 16, 16}, Message{1122, 16, 16}, Message{1122, 16, 0}));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, ConfigurationsAreListedWithTheFirstShown) {
    OpenWith({"Wheel B", "Wheel A"});
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), ElementsAre("Default", "Wheel A", "Wheel B"));
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
}

TEST_F(CPreBalConfigTabsTest, TheSpinStepsThroughTheNamesAndStopsAtTheEnds) {
    OpenWith({"Wheel A", "Wheel B"});
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel A");
    EXPECT_EQ(Entry().GetProcessName(), "Wheel A");
    Dlg().OnDeltaposConfigSpin(5);
    EXPECT_EQ(Entry().GetProcessName(), "Wheel B");
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_EQ(Dlg().GetSpinPos(), 2);
    Dlg().OnDeltaposConfigSpin(-9);
    EXPECT_EQ(Dlg().GetSpinPos(), 0);
    EXPECT_EQ(Entry().GetProcessName(), "Default");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, TheSpinWithoutNamesIsAsserted) {
    Create();
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CPreBalConfigTabsTest, KeepingTheNamesFindsThePlaceOfTheOneShown) {
    OpenWith({"Wheel A"});
    Dlg().OnDeltaposConfigSpin(1);
    Dlg().SetBalancingConfigurations({"Default", "New", "Wheel A"}, true);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel A");
    EXPECT_EQ(Dlg().GetSpinPos(), 2);
    Dlg().SetBalancingConfigurations({"Default"}, true);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CPreBalConfigTabsTest, ATypedNameIsSavedUnderThatName) {
    Open();
    Dlg().SetConfigurationName("Wheel Z");
    EXPECT_EQ(Entry().GetProcessName(), "Wheel Z");
    Send(WM_RV_SAVECONFIGURATION);
    EXPECT_THAT(GetStoredNames(), Contains("Wheel Z"));
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), Contains("Wheel Z"));
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel Z");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Only a new "Default" is saved by itself.
TEST_F(CPreBalConfigTabsTest, AConfigurationThatIsShownIsNotSavedByThat) {
    OpenWith({"Wheel A"});
    Dlg().OnDeltaposConfigSpin(1);
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(99); });
    m_Loop.RunPosted();
    CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_NE(Database.ReadConfiguration("Wheel A").GetTargetUnbalance(), 99U);
}

TEST_F(CPreBalConfigTabsTest, SavingWithoutDatabaseDoesNothing) {
    Create();
    Forget();
    Send(WM_RV_SAVECONFIGURATION);
    Send(WM_RV_UPDATECONFIGURATION);
    Send(WM_RV_PROCESSNAMECHANGED);
    Send(WM_RV_SCREWTABLENAMECHANGED);
    Send(WM_RV_SAVESCREWTABLE);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, SaveDatabaseWithoutDatabaseIsAsserted) {
    Create();
    EXPECT_EQ(Tabs().SaveDatabase(), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CPreBalConfigTabsTest, AScrewTableWithoutDatabaseIsAsserted) {
    Create();
    Send(WM_RV_UPDATESCREWTABLE);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("database not initialized!"));
}

TEST_F(CPreBalConfigTabsTest, ASecondInitDatabaseIsAssertedAndWorksOnTheNewOne) {
    Open();
    EXPECT_NE(Tabs().InitDatabase("0#3#255-0-999999-1-1", 3, 255, CTypeBase::ePlane1), 0);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("InitDatabase called more than once!"));
    EXPECT_EQ(Entry().GetMachineName(), "0#3#255-0-999999-1-1");
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), ElementsAre("0#3#255-0-999999-1-1"));
}

TEST_F(CPreBalConfigTabsTest, ACalibratedEntryOffersReBalancing) {
    Open();
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
    Act(103);
    Forget();
    Send(WM_RV_UPDATECONFIGURATION);
    EXPECT_TRUE(Tabs().IsCalibrated());
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 64, 64}));
}

TEST_F(CPreBalConfigTabsTest, ActionsThatSaveSave) {
    Open();
    for (const int Action : {103, 102}) {
        ChangeOnPage([Action](CPreBalBaseTableEntry& rEntry) {
            rEntry.SetTargetUnbalance(static_cast<std::uint32_t>(Action - 50));
        });
        Act(Action);
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(),
                  static_cast<std::uint32_t>(Action - 50));
        Act(4501);
    }
}

// A procedure has uncalibrated the entry in memory: that must not reach the store by a stray key.
TEST_F(CPreBalConfigTabsTest, ActionsThatSaveDoNotSaveInARun) {
    Open();
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
    Act(102);
    Entry().SetIsCalibrated(0);
    Act(103);
    EXPECT_TRUE(IsStoredCalibrated(m_pWnd->GetMachineName()));
}

TEST_F(CPreBalConfigTabsTest, ChangingTabsSavesAndTellsTheHost) {
    OpenWith({"Default"}, true);
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(31); });
    Act(1);
    EXPECT_EQ(Tabs().GetCurSel(), 1);
    EXPECT_FALSE(Dlg().IsWindowVisible());
    EXPECT_TRUE(ScrewDlg().IsWindowVisible());
    EXPECT_THAT(m_Host.Get(1065), ElementsAre(Message{1065, 127, 1}));
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 12, 12}));
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 31U);
    }
    m_Loop.Advance(350);
    EXPECT_THAT(m_pWnd->GetBrowser().GetLocationURL(), HasSubstr("_PB002"));

    ScrewDlg().SetListMode(false);
    Forget();
    Act(1);
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    EXPECT_TRUE(Dlg().IsWindowVisible());
    EXPECT_FALSE(ScrewDlg().IsWindowVisible());
    EXPECT_TRUE(ScrewDlg().IsListMode());
    EXPECT_THAT(m_Host.Get(1065), ElementsAre(Message{1065, 111, 0}));
    m_Loop.Advance(350);
    EXPECT_THAT(m_pWnd->GetBrowser().GetLocationURL(), HasSubstr("_PB001"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, ATabThatIsClickedShowsItsPage) {
    OpenWith({"Default"}, true);
    EXPECT_TRUE(Tabs().SelectByOperator(1));
    EXPECT_TRUE(ScrewDlg().IsWindowVisible());
    EXPECT_FALSE(Dlg().IsWindowVisible());
    EXPECT_TRUE(Tabs().SelectByOperator(0));
    EXPECT_FALSE(ScrewDlg().IsWindowVisible());
    EXPECT_TRUE(Dlg().IsWindowVisible());
}

TEST_F(CPreBalConfigTabsTest, TheScrewPageInItsEditModeTakesTheSelectionKeysAway) {
    OpenWith({"Default"}, true);
    ScrewDlg().SetListMode(false);
    Act(1);
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 12, 0}));
}

TEST_F(CPreBalConfigTabsTest, TheScrewTableOnThePageIsSavedWithTheConfiguration) {
    Open();
    ASSERT_NE(Tabs().GetCurrentScrewEntry(), nullptr);
    const std::string Name = ScrewDlg().GetScrewTableName();
    ScrewDlg().SetScrewTable({CScrew("M6", 1.5), CScrew("M8", 2.5)});
    Act(103);
    EXPECT_EQ(ScrewDlg().GetScrewTableName(), Name);
    CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_THAT(Elements(Database.ReadScrewTable(Name).GetScrewArray()),
                ElementsAre(CScrew("M6", 1.5), CScrew("M8", 2.5)));
}

// Without a screw nothing can be balanced: an emptied table gives way to the default one.
TEST_F(CPreBalConfigTabsTest, AnEmptiedScrewTableGivesWayToTheDefault) {
    Open();
    ScrewDlg().SetScrewTable({});
    Act(103);
    EXPECT_THAT(GetShownScrews(), Not(IsEmpty()));
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), Contains(ScrewDlg().GetScrewTableName()));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigTabsTest, AScrewTableOfAnotherNameIsAnotherTable) {
    Open();
    const std::string Former = ScrewDlg().GetScrewTableName();
    ScrewDlg().ShowScrewTableName("Brass");
    Send(WM_RV_UPDATESCREWTABLE);
    EXPECT_THAT(GetShownScrews(), IsEmpty());
    ScrewDlg().SetScrewTable({CScrew("M4", 0.5)});
    Send(WM_RV_SAVESCREWTABLE);
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()),
                testing::IsSupersetOf({Former, std::string("Brass")}));
}

TEST_F(CPreBalConfigTabsTest, ADamagedStoreIsShownToTheOperatorAndTheWindowGoesOn) {
    LinkOpc();
    WriteTestFile(m_Installation.GetRoot() / "cnf" / "prebal.db",
                  "this is no database, but it is long enough");
    Open();
    const auto Shown = TakeShownMessages();
    ASSERT_EQ(Shown.size(), 1U);
    EXPECT_EQ(Shown[0].m_Title, "Error");
    EXPECT_THAT(Shown[0].m_Text, HasSubstr("prebal.db"));
    EXPECT_FALSE(Tabs().HasDatabase());
    EXPECT_EQ(Tabs().GetCurrentBaseEntry(), nullptr);
    EXPECT_EQ(ReadTestFile(m_Installation.GetRoot() / "cnf" / "prebal.db"),
              "this is no database, but it is long enough");
    EXPECT_EQ(GetStep(), 1);

    EXPECT_EQ(Act(102), 1);
    Request(1);
    EXPECT_EQ(GetAnswer(), COpcValue(-1));
    ReportSet(MakeSet(9));
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_DESTROYPENDING), 1);
}

TEST_F(CPreBalConfigTabsTest, AConfigurationThatCannotBeWrittenIsAssertedAndStaysInMemory) {
    Open();
    {
        CDirectSQL Connection(GetDatabaseConnection());
        Connection.Execute("ALTER TABLE configuration RENAME TO gone");
    }
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(44); });
    Act(103);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("SaveDatabase() failed"));
    EXPECT_EQ(Entry().GetTargetUnbalance(), 44U);
    m_Log.Clear();
    {
        CDirectSQL Connection(GetDatabaseConnection());
        Connection.Execute("ALTER TABLE gone RENAME TO configuration");
    }
    // The next save tries again.
    Act(103);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 44U);
}

}  // namespace
