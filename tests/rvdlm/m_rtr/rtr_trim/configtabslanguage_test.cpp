// The language is switched while the window is open.
#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "platform/rvldb/gettext.h"
#include "tests/rvdlm/m_rtr/rtr_trim/configtabsfixture.h"

using namespace PreBalDB;
using PropTree::CPropTreeItem;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace {

class CConfigTabsLanguageTest : public CConfigTabsFixture {
protected:
    CConfigTabsLanguageTest() { SetLanguage("en"); }
    ~CConfigTabsLanguageTest() override { SetLanguage("en"); }

    void Switch(const char* pCode) {
        ASSERT_TRUE(SetLanguage(pCode));
        m_pWnd->SendMessage(WM_RV_LANGUAGECHANGED);
        m_Loop.RunPosted();
    }
    /// Labels of the tree's items, from the top.
    std::vector<std::string> GetLabels() {
        std::vector<std::string> Labels;
        for (const CPropTreeItem* pItem = Dlg().GetTree().GetFirstVisible(); pItem != nullptr;
             pItem = pItem->GetNextVisible()) {
            Labels.push_back(pItem->GetLabelText());
        }
        return Labels;
    }
};

TEST_F(CConfigTabsLanguageTest, TabsTitlesAndItemsFollow) {
    OpenWith({"Default"}, true);
    ASSERT_EQ(Tabs().GetItemText(0), "Settings");
    const std::vector<std::string> English = GetLabels();
    ASSERT_THAT(English, Contains("Unbalance target"));
    Switch("de");
    EXPECT_EQ(Tabs().GetItemText(0), "Einstellungen");
    EXPECT_EQ(Tabs().GetItemText(1), GetText("MASS_TABLE"));
    EXPECT_THAT(GetLabels(), Contains("Unwuchtziel"));
    EXPECT_THAT(GetLabels(), Not(Contains("Unbalance target")));
    EXPECT_EQ(GetLabels().size(), English.size());
    Switch("en");
    EXPECT_EQ(Tabs().GetItemText(0), "Settings");
    EXPECT_EQ(GetLabels(), English);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigTabsLanguageTest, WhatWasEditedOnThePageIsKept) {
    OpenWith({"Default"});
    ChangeOnPage([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(55); });
    Switch("de");
    EXPECT_EQ(Entry().GetTargetUnbalance(), 55U);
    CPreBalDatabase Database(m_pWnd->GetMachineName());
    EXPECT_EQ(Database.ReadConfiguration("Default").GetTargetUnbalance(), 55U);
}

// The word for "no name" must not become a screw's name by being that of another language.
TEST_F(CConfigTabsLanguageTest, ScrewsWithoutANameStayWithoutOne) {
    OpenScrewPage();
    Base::CWDArray<CScrew> Screws;
    Screws.Add(CScrew("", 2.5));
    Screws.Add(CScrew("M6", 4.0));
    ScrewDlg().SetScrewTable(Screws);
    Switch("de");
    EXPECT_EQ(ScrewDlg().GetTable().GetColumns()[0].m_Title, GetText("NAME"));
    ASSERT_EQ(GetShownScrews().size(), 2U);
    EXPECT_EQ(GetShownScrews()[0].GetScrewName(), "");
    EXPECT_EQ(GetShownScrews()[0].GetWeight(), 2.5);
    EXPECT_EQ(GetShownScrews()[1].GetScrewName(), "M6");
    Act(1);
    Switch("en");
    ASSERT_EQ(GetShownScrews().size(), 2U);
    EXPECT_EQ(GetShownScrews()[0].GetScrewName(), "");
}

TEST_F(CConfigTabsLanguageTest, AWindowWithoutADatabaseJustTakesTheLanguage) {
    Create();
    Switch("de");
    EXPECT_EQ(Tabs().GetItemText(0), "Einstellungen");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Its configuration isn't touched, and is shown anew at the end.
TEST_F(CConfigTabsLanguageTest, ARunGoesOnAndTheSettingsFollowAtItsEnd) {
    OpenWith({"Default"});
    m_pWnd->SendMessage(WM_RV_MODULEACTION, Actions::eStart);
    m_Loop.RunPosted();
    ASSERT_FALSE(Tabs().IsWindowVisible());
    Switch("de");
    ASSERT_FALSE(Tabs().IsWindowVisible());
    m_pWnd->SendMessage(WM_RV_MODULEACTION, Actions::eTerminate);
    m_Loop.RunPosted();
    EXPECT_TRUE(Tabs().IsWindowVisible());
    EXPECT_THAT(GetLabels(), Contains("Unwuchtziel"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
