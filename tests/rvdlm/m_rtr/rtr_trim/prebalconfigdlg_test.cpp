// The page "SETTINGS" in the module's window.
#include "rvdlm/m_rtr/rtr_trim/prebalconfigdlg.h"

#include <gmock/gmock.h>

#include "contract/actions.h"
#include "platform/rvldb/gettext.h"
#include "platform/window/keys.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"
#include "tests/support/scopedenvironment.h"

using namespace PreBalDB;
using PropTree::CPropTree;
using PropTree::CPropTreeItem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char* ROTATION = "Direction of rotation";
constexpr const char* METHOD = "Balancing method";
constexpr const char* TARGET = "Unbalance target";
constexpr int PREVIOUS = 1;
constexpr int NEXT = 2;

class CPreBalConfigDlgTest : public CMainWndFixture {
protected:
    CPreBalConfigDlgTest() { SetLanguage("en"); }

    CPreBalConfigTabs& Tabs() { return dynamic_cast<CPreBalConfigTabs&>(*m_pWnd->GetDlgItem(101)); }
    CPreBalConfigDlg& Dlg() { return Tabs().GetConfigDlg(); }
    CPropTree& Tree() { return Dlg().GetTree(); }
    CPreBalBaseTableEntry& Entry() { return *Tabs().GetCurrentBaseEntry(); }
    CPropTreeItem* Find(const std::string& rLabel) {
        CPropTreeItem* pItem = Tree().GetFirstVisible();
        while (pItem != nullptr && pItem->GetLabelText() != rLabel) {
            pItem = pItem->GetNextVisible();
        }
        return pItem;
    }
    /// Shows the entry again, as a change of tab does.
    void ShowAgain() {
        Dlg().SetConfiguration(Entry(), Tabs().GetBalancingMode(), {"Default", "Brass"});
        Forget();
    }
    void OpenWithCalibration() {
        Open();
        Entry().SetIsCalibrated(1);
        Entry().SetCalibratedRPM(3000);
        Entry().SetCalibrationDateTime(std::chrono::sys_seconds(std::chrono::seconds(1769862896)));
        ShowAgain();
    }
    /// A choice of the operator.
    void Choose(const std::string& rLabel, int Index) {
        auto* const pCombo = dynamic_cast<PropTree::CPropTreeItemCombo*>(Find(rLabel));
        ASSERT_NE(pCombo, nullptr) << rLabel;
        pCombo->Activate();
        pCombo->SelectByOperator(Index);
        Tree().EndEditing();
        m_Loop.RunPosted();
    }
    void TypeTarget(const std::string& rText) {
        auto* const pTarget = dynamic_cast<PropTree::CPropTreeItemSpinEdit<unsigned long>*>(Find(TARGET));
        ASSERT_NE(pTarget, nullptr);
        pTarget->Activate();
        pTarget->GetEdit().ChangeByOperator(rText, 0, 0);
    }
    void Press(UINT Key) {
        CWnd::GetFocus()->SendMessage(WM_KEYDOWN, Key, 1);
        CWnd::GetFocus()->SendMessage(WM_KEYUP, Key, 1);
        m_Loop.RunPosted();
    }
    void TypeName(const std::string& rName) {
        Dlg().GetPageName().FocusField();
        Dlg().GetPageName().GetField().ChangeByOperator(rName, 0, 0);
    }
    std::uint32_t GetStoredTarget(const std::string& rName) {
        CPreBalDatabase Database(m_pWnd->GetMachineName());
        return Database.ReadConfiguration(rName).GetTargetUnbalance();
    }
};

TEST_F(CPreBalConfigDlgTest, HeadStateAndTreeFillThePage) {
    Open();
    const int nBottom = Dlg().GetClientRect().bottom;
    EXPECT_EQ(Dlg().GetDlgItem(8001)->GetRect(), CRect(10, 8, 296, 32));
    EXPECT_EQ(Dlg().GetDlgItem(CPreBalConfigDlg::STATE_ID)->GetRect(), CRect(10, 40, 290, 66));
    EXPECT_EQ(Tree().GetRect(), CRect(0, 66, 300, nBottom));
    EXPECT_TRUE(Tree().IsInfoShown());
    EXPECT_EQ(Tree().GetMode(), CPropTree::eNormalMode);
    m_pWnd->MoveWindow(CRect(0, 0, 1920, 1080));
    EXPECT_EQ(Tree().GetRect(), CRect(0, 66, 960, Dlg().GetClientRect().bottom));
}

TEST_F(CPreBalConfigDlgTest, APageWithoutHeightHarmsNothing) {
    Open();
    m_pWnd->MoveWindow(CRect(0, 0, 10, 10));
    m_pWnd->MoveWindow(CRect(0, 0, 0, 0));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigDlgTest, KeyboardOnlyModeIsASetting) {
    std::ofstream(m_Installation.GetRoot() / "cnf" / "mcon.xdb")
        << "<?xml version=\"1.0\"?><Corvane><system_falconet ConfigurationKeyboardOnly=\"1\">"
           "</system_falconet></Corvane>";
    Open();
    EXPECT_EQ(Tree().GetMode(), CPropTree::eKeyboardOnly);
}

TEST_F(CPreBalConfigDlgTest, TheStateTellsTheCalibrationAtAGlance) {
    const CScopedEnvironment Zone("TZ", "CET-1");
    Open();
    EXPECT_EQ(Dlg().GetStateText(), GetText("PB_NOT_CALIBRATED"));
    OpenWithCalibration();
    EXPECT_EQ(Dlg().GetStateText(), "Calibrated 31.01.2026 13:34, 3000 rpm");
    Choose(ROTATION, 1);
    EXPECT_EQ(Dlg().GetStateText(), GetText("PB_CALIBRATION_RESET"));
    Choose(ROTATION, 0);
    EXPECT_EQ(Dlg().GetStateText(), "Calibrated 31.01.2026 13:34, 3000 rpm");
}

TEST_F(CPreBalConfigDlgTest, AChangeThatClearsTheCalibrationIsToldOnce) {
    OpenWithCalibration();
    EXPECT_TRUE(Dlg().IsCalibrated());
    Choose(ROTATION, 1);
    EXPECT_FALSE(Dlg().IsCalibrated());
    EXPECT_EQ(Entry().IsCalibrated(), 1);  // nothing is written yet
    EXPECT_THAT(m_Host.Get(1122), ElementsAre(Message{1122, 64, 0}));
    Forget();
    Choose("Direction of the scale", 1);
    EXPECT_THAT(m_Host.Get(1122), IsEmpty());
}

TEST_F(CPreBalConfigDlgTest, ChangingBackGivesTheReBalancingBack) {
    OpenWithCalibration();
    Choose(METHOD, 1);
    Choose(METHOD, 0);
    EXPECT_TRUE(Dlg().IsCalibrated());
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 64, 64}));
    EXPECT_EQ(Dlg().GetConfig(Entry()), nullptr);
    EXPECT_EQ(Entry().IsCalibrated(), 1);
}

TEST_F(CPreBalConfigDlgTest, TheNcLearnsThatTheCalibrationIsOver) {
    LinkOpc();
    OpenWithCalibration();
    Choose(ROTATION, 1);
    EXPECT_EQ(GetStep(), CPreBalNotification::eParameter);
    Choose(ROTATION, 0);
    EXPECT_EQ(GetStep(), CPreBalNotification::eParameterWithReBal);
}

TEST_F(CPreBalConfigDlgTest, AValueThatTheCalibrationDoesntRestOnTellsNobody) {
    OpenWithCalibration();
    TypeTarget("12");
    Tree().EndEditing();
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1122), IsEmpty());
    EXPECT_TRUE(Dlg().IsCalibrated());
}

TEST_F(CPreBalConfigDlgTest, AnotherMethodInsertsTheTabAtOnceAndBackRemovesIt) {
    Open();
    EXPECT_EQ(Tabs().GetItemCount(), 1);
    Choose(METHOD, 1);
    EXPECT_EQ(Tabs().GetItemCount(), 2);
    EXPECT_THAT(m_Host.Get(1122), Contains(Message{1122, 16, 16}));
    Choose(METHOD, 0);
    EXPECT_EQ(Tabs().GetItemCount(), 1);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// A run has the entry in its hands.
TEST_F(CPreBalConfigDlgTest, NothingOfTheHiddenPageCrossesToARun) {
    OpenWithCalibration();
    Tabs().ShowWindow(false);
    Choose(ROTATION, 1);
    EXPECT_TRUE(Dlg().IsCalibrated());
    EXPECT_THAT(m_Host.Get(1122), IsEmpty());
}

TEST_F(CPreBalConfigDlgTest, WhatWasEditedIsSavedBeforeAnotherConfigurationIsShown) {
    Open();
    Dlg().SetBalancingConfigurations({"Default", "Wheel"}, true);
    TypeTarget("44");
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel");
    EXPECT_EQ(GetStoredTarget("Default"), 44u);
    EXPECT_EQ(Entry().GetTargetUnbalance(), 5u);
}

TEST_F(CPreBalConfigDlgTest, WhatNobodyEditedIsNotSavedByAStep) {
    Open();
    Entry().SetTargetUnbalance(200);
    ShowAgain();
    Dlg().SetBalancingConfigurations({"Default", "Wheel"}, true);
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_EQ(GetStoredTarget("Default"), 5u);
}

TEST_F(CPreBalConfigDlgTest, AnInvalidValueKeepsThePageFromBeingLeft) {
    Open();
    Entry().CreateSinglePlane().CreateScrewCompensationTableEntry().SetScrewTableName("Gone");
    ShowAgain();
    Dlg().SetBalancingConfigurations({"Default", "Wheel"}, true);
    TypeTarget("44");
    Dlg().OnDeltaposConfigSpin(1);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
    EXPECT_EQ(Tree().GetFocusedItem(), Find("Screw table"));
    EXPECT_TRUE(Find("Screw table")->IsActive());
}

TEST_F(CPreBalConfigDlgTest, AnInvalidItemIsScrolledToSelectedAndEdited) {
    Open(KESTREL_TWO_PLANE);
    Entry().CreateTwoPlane().CreatePlane2ScrewCompensationTableEntry().SetScrewTableName("Gone");
    ShowAgain();
    Dlg().GetPageName().FocusField();
    CPropTreeItem* const pInvalid = Dlg().GetConfig(Entry());
    ASSERT_EQ(pInvalid, Find("Screw table"));
    Dlg().ShowInvalidItem(pInvalid);
    EXPECT_FALSE(Dlg().GetPageName().HasFocus());
    EXPECT_TRUE(pInvalid->IsActive());
    EXPECT_GT(Tree().GetScrollPos(), 0);
    Dlg().ShowInvalidItem(nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalConfigDlgTest, EndEditingTakesTheValueAndTheName) {
    Open();
    TypeTarget("33");
    EXPECT_TRUE(Find(TARGET)->IsActive());
    Dlg().EndEditing();
    EXPECT_FALSE(Find(TARGET)->IsActive());
    TypeName("Wheel 400");
    EXPECT_EQ(Entry().GetProcessName(), "Default");
    Dlg().EndEditing();
    EXPECT_EQ(Entry().GetProcessName(), "Wheel 400");
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel 400");
}

TEST_F(CPreBalConfigDlgTest, ANameIsTakenWholeAndMakesAFurtherConfiguration) {
    Open();
    TypeName("W");
    TypeName("Wheel");
    EXPECT_EQ(Entry().GetProcessName(), "Default");
    Press(VK_RETURN);
    CPreBalDatabase Database(m_pWnd->GetMachineName());
    const Base::CStringArray Names =
        Database.GetProcessNames(CPreBalDatabase::eModePlane1, CTypeBase::ePlane1, 3, 255);
    EXPECT_THAT(std::vector<std::string>(Names.begin(), Names.end()), ElementsAre("Default", "Wheel"));
}

TEST_F(CPreBalConfigDlgTest, ItemsAreWalkedAndTheTopLeadsToTheName) {
    Open();
    EXPECT_TRUE(Dlg().Navigate(Actions::eItem, NEXT));
    EXPECT_EQ(Tree().GetFocusedItem(), Tree().GetFirstVisible());
    EXPECT_TRUE(Tree().HasListFocus());
    Dlg().Navigate(Actions::eItem, NEXT);
    EXPECT_EQ(Tree().GetFocusedItem(), Find("Speed tolerance"));
    Dlg().Navigate(Actions::eItem, PREVIOUS);
    Dlg().Navigate(Actions::eItem, PREVIOUS);
    EXPECT_EQ(Tree().GetFocusedItem(), nullptr);
    EXPECT_TRUE(Dlg().GetPageName().HasFocus());
}

TEST_F(CPreBalConfigDlgTest, TheLastItemStays) {
    Open();
    Tree().SetFocusedItem(Tree().GetLastVisible());
    Dlg().Navigate(Actions::eItem, NEXT);
    EXPECT_EQ(Tree().GetFocusedItem(), Tree().GetLastVisible());
}

TEST_F(CPreBalConfigDlgTest, LeavingAnItemTakesItsValue) {
    Open();
    TypeTarget("61");
    Dlg().Navigate(Actions::eItem, NEXT);
    EXPECT_FALSE(Find(TARGET)->IsActive());
    EXPECT_EQ(Find(TARGET)->GetValueText(), "61 µm/s");
}

TEST_F(CPreBalConfigDlgTest, ValuesAreSteppedAndRepeatWhileTheKeyIsHeld) {
    Open();
    Tree().SetFocusedItem(Find(TARGET));
    Dlg().Navigate(Actions::eValue, NEXT);
    EXPECT_EQ(Find(TARGET)->GetValueText(), "6 µm/s");
    Dlg().Navigate(Actions::eValue, Actions::eNone);
    Dlg().Navigate(Actions::eValue, PREVIOUS);
    EXPECT_EQ(Find(TARGET)->GetValueText(), "5 µm/s");
    m_Loop.Advance(1000);
    const std::string Held = Find(TARGET)->GetValueText();
    EXPECT_NE(Held, "5 µm/s");
    Dlg().Navigate(Actions::eValue, Actions::eNone);
    m_Loop.Advance(1000);
    EXPECT_EQ(Find(TARGET)->GetValueText(), Held);
}

TEST_F(CPreBalConfigDlgTest, WithoutAnItemTheValueKeysStepTheNames) {
    Open();
    Dlg().SetBalancingConfigurations({"Default", "Wheel A", "Wheel B"}, true);
    Dlg().Navigate(Actions::eValue, PREVIOUS);  // the upper one of the two buttons: a step on
    EXPECT_EQ(Dlg().GetConfigurationName(), "Wheel A");
    EXPECT_EQ(Dlg().GetSpinPos(), 1);
    Dlg().Navigate(Actions::eValue, NEXT);
    EXPECT_EQ(Dlg().GetConfigurationName(), "Default");
}

TEST_F(CPreBalConfigDlgTest, AcceptBeginsAndEndsEditing) {
    Open();
    Dlg().Navigate(Actions::eAccept, 0);
    Tree().SetFocusedItem(Find(TARGET));
    Dlg().Navigate(Actions::eAccept, 0);
    EXPECT_TRUE(Find(TARGET)->IsActive());
    Dlg().Navigate(Actions::eAccept, 0);
    EXPECT_FALSE(Find(TARGET)->IsActive());
}

TEST_F(CPreBalConfigDlgTest, ExpandClosesAndOpensTheGroup) {
    Open();
    CPropTreeItem* const pHeading = Tree().GetFirstVisible();
    EXPECT_TRUE(pHeading->IsExpanded());
    Tree().SetFocusedItem(pHeading);
    Dlg().Navigate(Actions::eExpand, 0);
    EXPECT_FALSE(pHeading->IsExpanded());
    Dlg().Navigate(Actions::eExpand, 0);
    EXPECT_TRUE(pHeading->IsExpanded());
}

TEST_F(CPreBalConfigDlgTest, WhileANameIsTypedTheKeysDoNothing) {
    Open();
    TypeName("Whe");
    for (const int Action : {Actions::eValue, Actions::eAccept, Actions::eItem, Actions::eExpand}) {
        EXPECT_TRUE(Dlg().Navigate(Action, NEXT));
    }
    EXPECT_TRUE(Dlg().GetPageName().HasFocus());
    EXPECT_EQ(Tree().GetFocusedItem(), nullptr);
    EXPECT_EQ(Dlg().GetPageName().GetField().GetWindowText(), "Whe");
}

TEST_F(CPreBalConfigDlgTest, OtherActionsAreNotThePages) {
    Open();
    for (const int Action : {1, 5, 102, 103, 4500}) {
        EXPECT_FALSE(Dlg().Navigate(Action, 0));
    }
}

TEST_F(CPreBalConfigDlgTest, TheNameTakesTheSelectionOffTheTree) {
    Open();
    TypeTarget("21");
    Dlg().GetPageName().FocusField();
    EXPECT_EQ(Tree().GetFocusedItem(), nullptr);
    EXPECT_EQ(Find(TARGET)->GetValueText(), "21 µm/s");
}

TEST_F(CPreBalConfigDlgTest, TheHelpFollowsTheItem) {
    Open();
    Tree().SetFocusedItem(Find("Speed tolerance"));
    m_Loop.Advance(350);
    EXPECT_THAT(m_pWnd->GetBrowser().GetLocationURL(), HasSubstr("PB_004"));
    Tree().SetFocusedItem(Find("Sensor"));
    m_Loop.Advance(350);
    EXPECT_THAT(m_pWnd->GetBrowser().GetLocationURL(), HasSubstr("_PB001"));
}

TEST_F(CPreBalConfigDlgTest, ClosingTheDatabaseEmptiesThePage) {
    OpenWithCalibration();
    m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
    m_Loop.RunPosted();
    EXPECT_EQ(Tree().GetFirstVisible(), nullptr);
    EXPECT_FALSE(Dlg().IsCalibrated());
    EXPECT_EQ(Dlg().GetStateText(), "");
    EXPECT_EQ(Dlg().GetConfigurationName(), "");
}

TEST_F(CPreBalConfigDlgTest, TheTitleHasItsColoursByTheDisplay) {
    EXPECT_EQ(CPageName::SETTINGS_STYLE.m_Color, RGB(255, 204, 133));
    EXPECT_EQ(CPageName::SETTINGS_STYLE.m_PlainColor, RGB(255, 128, 0));
}

TEST_F(CPreBalConfigDlgTest, AThousandSwitchesLeaveNoWindowAndNoItemBehind) {
    Open();
    Dlg().SetBalancingConfigurations({"Default", "Wheel"}, true);
    const auto CountRows = [this] {
        int n = 0;
        for (const CPropTreeItem* p = Tree().GetFirstVisible(); p != nullptr; p = p->GetNextVisible()) {
            ++n;
        }
        return n;
    };
    const int nRows = CountRows();
    const std::size_t nWindows = Tree().GetList().GetChildren().size();
    for (int i = 0; i < 1000; ++i) {
        Dlg().OnDeltaposConfigSpin(i % 2 == 0 ? 1 : -1);
        m_Loop.RunPosted();
    }
    EXPECT_EQ(CountRows(), nRows);
    EXPECT_EQ(Tree().GetList().GetChildren().size(), nWindows);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
