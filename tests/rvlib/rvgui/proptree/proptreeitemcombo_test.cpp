#include "rvlib/rvgui/proptree/proptreeitemcombo.h"

#include <gmock/gmock.h>

#include "tests/rvlib/rvgui/proptree/treefixture.h"
#include "tests/support/logcapture.h"

namespace PropTree {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(PropTreeItemComboTest, StringsGetTheValuesFromTheMinimumOnWithinTheRange) {
    CPropTreeItemCombo Combo(5, 6);
    EXPECT_EQ(Combo.AddString("five"), 0);
    EXPECT_EQ(Combo.AddString("six"), 1);
    EXPECT_EQ(Combo.AddString("seven"), -1);
    EXPECT_EQ(Combo.GetCount(), 2);
    EXPECT_EQ(Combo.GetItemData(1), 6u);
    EXPECT_EQ(Combo.GetNextData(), 8) << "rises also for what isn't appended";
}

TEST(PropTreeItemComboTest, AValueBeyondTheStringsIsFilledUpTo) {
    CPropTreeItemCombo Combo(0, 2);
    for (const char* pText : {"a", "b", "c"}) {
        Combo.AddString(pText);
    }
    Combo.SetItemValue(7);
    EXPECT_EQ(Combo.GetCount(), 8);
    EXPECT_EQ(Combo.GetCurSel(), 7);
    EXPECT_EQ(Combo.GetLBText(3), "<3>");
    EXPECT_EQ(Combo.GetValueText(), "<7>");
    EXPECT_EQ(Combo.GetItemValue(), 7);
    Combo.SetItemValue(1);
    EXPECT_EQ(Combo.GetValueText(), "b");
    EXPECT_EQ(Combo.GetCount(), 8);
}

TEST(PropTreeItemComboTest, AnEmptiedListBeginsAtTheMinimumAgain) {
    CPropTreeItemCombo Combo(5, 6);
    Combo.AddString("five");
    Combo.SetItemValue(9);
    Combo.ResetContent();
    EXPECT_EQ(Combo.GetCount(), 0);
    EXPECT_EQ(Combo.AddString("again five"), 0);
    EXPECT_EQ(Combo.GetItemData(0), 5u);
}

TEST(PropTreeItemComboTest, FillingUpCountsFromTheLastStringThatIsThere) {
    CPropTreeItemCombo Combo(0, 1);
    for (const char* pText : {"a", "b", "refused"}) {
        Combo.AddString(pText);
    }
    Combo.SetItemValue(3);
    EXPECT_EQ(Combo.GetCount(), 4);
    EXPECT_EQ(Combo.GetLBText(2), "<2>");
    EXPECT_EQ(Combo.GetItemValue(), 3);
}

TEST(PropTreeItemComboTest, AValueThatCanNotBeShownIsNotLost) {
    const CLogCapture Log;
    CPropTreeItemCombo Combo(2, 5);
    Combo.AddString("two");
    Combo.SetItemValue(1);
    EXPECT_EQ(Combo.GetCurSel(), -1);
    EXPECT_EQ(Combo.GetItemValue(), 1);
    EXPECT_EQ(Combo.GetValueText(), "<1>");
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    Combo.SetItemValue(1000000);
    EXPECT_EQ(Combo.GetCount(), 1);
    EXPECT_EQ(Combo.GetItemValue(), 1000000);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CPropTreeItemCombo::AddString failed!"));
}

TEST(PropTreeItemComboTest, AControlThatIsFullIsAnAssertion) {
    CPropTreeItemCombo Combo(0, 20000);
    for (int i = 0; i < CComboBox::MAX_ITEMS; ++i) {
        Combo.AddString("x");
    }
    const CLogCapture Log;
    EXPECT_EQ(Combo.AddString("one too many"), -1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CPropTreeItemCombo::AddString failed!"));
    EXPECT_EQ(Combo.GetNextData(), CComboBox::MAX_ITEMS + 1);
}

class ComboInTreeTest : public CTreeFixture {
protected:
    ComboInTreeTest() { m_pTree->SetFocusedItem(m_pDirection); }
};

TEST_F(ComboInTreeTest, AChoiceCountsAtOnceAndTheEndIsToldOnceMore) {
    m_pDirection->Activate();
    EXPECT_EQ(CWnd::GetFocus(), m_pDirection);
    EXPECT_TRUE(m_pDirection->IsWindowVisible());
    m_pDirection->SelectByOperator(1);
    EXPECT_THAT(CodesOf(m_pDirection), ElementsAre(-1105));
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    Key(VK_RETURN);
    EXPECT_THAT(CodesOf(m_pDirection), ElementsAre(-1105, -1105));
    EXPECT_FALSE(m_pDirection->IsActive());
    EXPECT_FALSE(m_pDirection->IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), &List());
}

TEST_F(ComboInTreeTest, EscapeGivesTheOldChoiceBackAndTellsIfAChangeHadGoneOut) {
    m_pDirection->Activate();
    Key(VK_ESCAPE);
    EXPECT_THAT(m_Told, IsEmpty());
    m_pDirection->Activate();
    m_pDirection->SelectByOperator(2);
    Key(VK_ESCAPE);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
    EXPECT_THAT(CodesOf(m_pDirection), ElementsAre(-1105, -1105));
    EXPECT_EQ(CWnd::GetFocus(), &List());
}

TEST_F(ComboInTreeTest, LosingTheFocusCommits) {
    m_pDirection->Activate();
    List().SetFocus();
    EXPECT_FALSE(m_pDirection->IsActive());
    EXPECT_THAT(CodesOf(m_pDirection), ElementsAre(-1105));
}

TEST_F(ComboInTreeTest, LettersChooseWithoutOpening) {
    List().SetFocus();
    List().SendMessage(WM_CHAR, 'N');
    EXPECT_EQ(m_pDirection->GetItemValue(), 2);
    List().SendMessage(WM_CHAR, 'r');
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
    EXPECT_EQ(List().SendMessage(WM_CHAR, 'x'), 0);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
    EXPECT_FALSE(m_pDirection->IsActive());
    EXPECT_EQ(CodesOf(m_pDirection).size(), 2u);
}

TEST_F(ComboInTreeTest, StepsGoRoundWithoutAWindow) {
    m_pTree->StartStepping(true);
    m_pTree->StopStepping();
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    m_pTree->StartStepping(false);
    m_pTree->StopStepping();
    m_pTree->StartStepping(false);
    m_pTree->StopStepping();
    EXPECT_EQ(m_pDirection->GetItemValue(), 2) << "from the first to the last";
    EXPECT_EQ(CodesOf(m_pDirection).size(), 3u);
}

TEST_F(ComboInTreeTest, AHeldKeyRepeatsInCombosToo) {
    m_pTree->StartStepping(true);
    EXPECT_EQ(m_pDirection->GetItemValue(), 1) << "at once";
    m_Loop.Advance(449);
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    m_Loop.Advance(1);
    EXPECT_EQ(m_pDirection->GetItemValue(), 2);
    m_Loop.Advance(400);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
    m_pTree->StopStepping();
    m_Loop.Advance(5000);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
}

}  // namespace
}  // namespace PropTree
