// The configuration pane with a store that isn't as it should be, with values that aren't valid, and over a
// long time.
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "rvdlm/m_rtr/rtr_trim/tabimages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/configtabsfixture.h"

using namespace PreBalDB;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

std::size_t CountWindows(const CWnd& rWnd) {
    std::size_t nCount = 1;
    for (const CWnd* const pChild : rWnd.GetChildren()) {
        nCount += CountWindows(*pChild);
    }
    return nCount;
}

class CConfigTabsRobustTest : public CConfigTabsFixture {
protected:
    static void Execute(const std::string& rStatement) {
        CDirectSQL(GetDatabaseConnection()).Execute(rStatement);
    }
    /// Closes the window's store, changes it, and opens it again.
    void OpenOn(const std::vector<std::string>& rStatements) {
        m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
        for (const std::string& rStatement : rStatements) {
            Execute(rStatement);
        }
        Forget();
        TakeShownMessages();
        Init();
        Identify();
        ReportSet(MakeSet());
    }
    /// A configuration with screws of a table that isn't there.
    void NameMissingTable() {
        ChangeOnPage([](CPreBalBaseTableEntry& rEntry) {
            rEntry.CreateSinglePlane().CreateScrewCompensationTableEntry().SetScrewTableName("Gone");
            rEntry.SetTargetUnbalance(77);
        });
    }
    std::uint32_t GetStoredTarget() {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        return Database.ReadConfiguration("Default").GetTargetUnbalance();
    }
};

TEST_F(CConfigTabsRobustTest, AMethodThatIsNotChosenCountsAsWeights) {
    Open();
    OpenOn({"DELETE FROM weight_compensation", "DELETE FROM screw_compensation"});
    EXPECT_EQ(Entry().GetSinglePlane()->GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_FALSE(Dlg().HasScrewCompensation());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    Act(103);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, AnEntryWithoutPlanesGetsThem) {
    Open();
    OpenOn({"DELETE FROM single_plane", "DELETE FROM weight_compensation"});
    ASSERT_NE(Entry().GetSinglePlane(), nullptr);
    EXPECT_EQ(Entry().GetSinglePlane()->GetSensorAdaption(), 3);
    Act(103);
    EXPECT_THAT(GetStoredNames(), ElementsAre("Default"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, NamesThatAreNoTextAreToldOnceAndLeftOut) {
    Open();
    TypeName(Dlg().GetPageName(), "Wheel");
    Press(VK_RETURN);
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        Database.ReadScrewTable("Brass").SetScrewArray({CScrew("M6", 1.5)});
        ASSERT_NE(Database.WriteScrewTable(), 0);
    }
    OpenOn({"UPDATE configuration SET name = CAST(X'57FF68' AS TEXT) WHERE name = 'Wheel'",
            "UPDATE screw_table SET name = CAST(X'42FF72' AS TEXT) WHERE name = 'Brass'"});
    EXPECT_THAT(GetShown(), AllOf(testing::SizeIs(2), Each(HasSubstr("no valid UTF-8"))));
    EXPECT_THAT(Elements(Dlg().GetConfigurationNames()), ElementsAre("Default"));
    EXPECT_THAT(Elements(ScrewDlg().GetScrewTableNames()), ElementsAre("Default"));
    Act(103);
    Act(1);
    EXPECT_THAT(GetShown(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, ValuesThatCannotBeAreToldByTheirLabelsInTheLanguageInUse) {
    Open();
    SetLanguage("de");
    OpenOn({"UPDATE configuration SET rpm_tolerance = -4", "UPDATE weight_compensation SET plane = 9"});
    const auto Shown = GetShown();
    SetLanguage("en");
    ASSERT_EQ(Shown.size(), 1U);
    EXPECT_THAT(Shown[0], AllOf(HasSubstr("-4"), Not(HasSubstr("rpm_tolerance"))));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, WeightsThatCannotBeAreShownAndDoNoHarm) {
    Open();
    OpenOn({"UPDATE screw SET weight = 1e999 WHERE position = 0",
            "UPDATE screw SET weight = 'heavy' WHERE position = 1",
            "UPDATE screw SET weight = -3 WHERE position = 2"});
    Send(WM_RV_UPDATETABS, 1);
    Act(1);
    ScrewDlg().GetTable().SendMessage(WM_PAINT);
    Act(1);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, AnItemThatIsNotValidKeepsFromSavingAndIsSelected) {
    OpenWith({"Default"}, true);
    NameMissingTable();
    Act(103);
    EXPECT_NE(GetStoredTarget(), 77U);
    EXPECT_NE(Dlg().GetTree().GetFocusedItem(), nullptr);
    EXPECT_FALSE(Dlg().GetPageName().HasFocus());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, AnItemThatIsNotValidKeepsTheSettingsInFront) {
    OpenWith({"Default"}, true);
    NameMissingTable();
    Forget();
    Act(1);
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    EXPECT_TRUE(Dlg().IsWindowVisible());
    EXPECT_FALSE(ScrewDlg().IsWindowVisible());
    EXPECT_NE(Dlg().GetTree().GetFocusedItem(), nullptr);
    EXPECT_EQ(m_Host.Get(1065).back(), (Message{1065, 111, 0}));
    EXPECT_TRUE(Tabs().SelectByOperator(1));
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    EXPECT_NE(GetStoredTarget(), 77U);
}

TEST_F(CConfigTabsRobustTest, SavingFromTheScrewPageBringsTheItemInFront) {
    LinkOpc();
    OpenScrewPage();
    NameMissingTable();
    Tabs().SaveCurrentConfiguration();
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    EXPECT_TRUE(Dlg().IsWindowVisible());
    EXPECT_FALSE(ScrewDlg().IsWindowVisible());
    EXPECT_NE(Dlg().GetTree().GetFocusedItem(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsRobustTest, AScrewPageThatGoesGivesWayToTheSettings) {
    OpenScrewPage();
    Send(WM_RV_UPDATETABS, 0);
    EXPECT_EQ(Tabs().GetItemCount(), 1);
    EXPECT_EQ(Tabs().GetCurSel(), 0);
    EXPECT_TRUE(Dlg().IsWindowVisible());
    EXPECT_FALSE(ScrewDlg().IsWindowVisible());
}

TEST_F(CConfigTabsRobustTest, TabsHaveTheirPictures) {
    Create();
    EXPECT_EQ(Tabs().GetImageList().GetImageCount(), 3);
    EXPECT_EQ(Tabs().GetImageList().GetImageSize(), CSize(16, 16));
    EXPECT_EQ(Tabs().GetItemImage(0), TabImages::eSettings);
    EXPECT_EQ(Tabs().GetItemImage(1), TabImages::eScrewTable);
    Send(WM_RV_UPDATETABS, 0);
    Send(WM_RV_UPDATETABS, 1);
    EXPECT_EQ(Tabs().GetItemImage(1), TabImages::eScrewTable);
}

TEST_F(CConfigTabsRobustTest, AThousandSwitchesLeaveNothingBehind) {
    OpenWith({"Default", "Wheel A", "Wheel B"}, true);
    {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        Database.ReadScrewTable("Brass").SetScrewArray({CScrew("M6", 1.5)});
        ASSERT_NE(Database.WriteScrewTable(), 0);
    }
    m_pWnd->SendMessage(WM_RV_STORECHANGED);
    const auto Round = [this] {
        Dlg().GetPageName().GetSpin().Click(CSpinButtonCtrl::eUp);
        m_Loop.RunPosted();
        Act(1);
        Act(2, 1);
        Act(4, 1);
        Act(4, 2);
        Act(2, 2);
        Act(1);
        Dlg().GetPageName().GetSpin().Click(CSpinButtonCtrl::eDown);
        m_Loop.RunPosted();
    };
    Round();
    const std::size_t nWindows = CountWindows(*m_pWnd);
    for (int i = 0; i < 1000 / 8; ++i) {
        Round();
    }
    EXPECT_EQ(CountWindows(*m_pWnd), nWindows);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_THAT(GetShown(), IsEmpty());
}

// A process that saves names, values and tables from the pages is killed in the middle of it.
TEST_F(CConfigTabsRobustTest, KilledWhileItSavesThePagesLeaveOldOrNewAndNoMixture) {
    OpenScrewPage();
    const std::string Key = m_pWnd->GetMachineName();
    m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
    constexpr int SCREWS = 30;
    for (int nRound = 0; nRound < 25; ++nRound) {
        const pid_t Pid = fork();
        if (Pid == 0) {
            Init();
            Identify();
            ReportSet(MakeSet());
            for (std::uint32_t i = 1;; ++i) {
                const std::string Name = std::to_string(nRound) + "-" + std::to_string(i);
                Base::CWDArray<CScrew> Screws;
                for (int n = 1; n <= SCREWS; ++n) {
                    Screws.Add(CScrew(Name, n));
                }
                ScrewDlg().SetScrewTable(Screws);
                ScrewDlg().ShowScrewTableName("T" + Name);
                Send(WM_RV_SCREWTABLENAMECHANGED);
                ChangeOnPage([i](CPreBalBaseTableEntry& rEntry) {
                    rEntry.SetTargetUnbalance(i % 100 + 1);
                    rEntry.SetRPMTolerance(i % 100 + 1);
                });
                TypeName(Dlg().GetPageName(), "W" + Name);
                Dlg().EndEditing();
                Act(103);
                if (i == 1) {
                    // The end comes wherever the process then is, in each round elsewhere.
                    const itimerval Rest{{0, 0}, {0, 1000 + 1700 * nRound}};
                    setitimer(ITIMER_REAL, &Rest, nullptr);
                }
            }
        }
        int Status = 0;
        waitpid(Pid, &Status, 0);
        EXPECT_TRUE(WIFSIGNALED(Status));

        CPreBalDatabase Database(Key);
        const auto Names =
            Elements(Database.GetProcessNames(CPreBalDatabase::eModePlane1, CTypeBase::ePlane1, 3, 255));
        EXPECT_THAT(Names, Contains("Default"));
        for (const std::string& rName : Names) {
            const CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(rName);
            EXPECT_THAT(Database.GetOutcome().m_Problems, IsEmpty()) << rName;
            ASSERT_NE(rEntry.GetSinglePlane(), nullptr) << rName;
            EXPECT_TRUE(rName == "Default" || rEntry.GetTargetUnbalance() == rEntry.GetRPMTolerance())
                << rName;
        }
        const auto Tables = Elements(Database.GetScrewTableNames());
        EXPECT_GT(Tables.size(), 1U);
        for (const std::string& rTable : Tables) {
            const auto Screws = Elements(Database.ReadScrewTable(rTable).GetScrewArray());
            EXPECT_FALSE(Screws.empty()) << rTable;
            if (rTable.front() == 'T') {
                EXPECT_EQ(Screws.size(), static_cast<std::size_t>(SCREWS)) << rTable;
                for (const CScrew& rScrew : Screws) {
                    EXPECT_EQ("T" + rScrew.GetScrewName(), rTable);
                }
            }
        }
    }
}

}  // namespace
