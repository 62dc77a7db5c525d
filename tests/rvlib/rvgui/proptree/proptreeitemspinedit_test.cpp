#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"

#include <gmock/gmock.h>

#include "tests/rvlib/rvgui/proptree/treefixture.h"
#include "tests/support/logcapture.h"

namespace PropTree {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <typename T>
class SpinEditOfEachTypeTest : public testing::Test {};
using ValueTypes = testing::Types<double, unsigned long, unsigned char>;
TYPED_TEST_SUITE(SpinEditOfEachTypeTest, ValueTypes);

TYPED_TEST(SpinEditOfEachTypeTest, LimitsTheWrongWayRoundAreSwappedWithAnAssertion) {
    const CLogCapture Log;
    const CPropTreeItemSpinEdit<TypeParam> Item(5, 1, 3, 1);
    EXPECT_EQ(Item.GetMin(), TypeParam{1});
    EXPECT_EQ(Item.GetMax(), TypeParam{5});
    EXPECT_EQ(Item.GetItemValue(), TypeParam{3});
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid min/max values"));
    EXPECT_THAT(Log.GetTexts("Warning"), IsEmpty());
}

TYPED_TEST(SpinEditOfEachTypeTest, AValueOutOfRangeGoesToTheNearestLimitWithAWarning) {
    const CLogCapture Log;
    EXPECT_EQ(CPropTreeItemSpinEdit<TypeParam>(3, 24, 2, 1).GetItemValue(), TypeParam{3});
    EXPECT_EQ(CPropTreeItemSpinEdit<TypeParam>(3, 24, 25, 1).GetItemValue(), TypeParam{24});
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("value not in range", "value not in range"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TYPED_TEST(SpinEditOfEachTypeTest, AWholeStepShowsWholeNumbers) {
    const CPropTreeItemSpinEdit<TypeParam> Item(1, 100, 7, 1, {.m_Unit = "rpm"});
    EXPECT_FALSE(Item.IsFractional());
    EXPECT_EQ(Item.GetValueText(), "7 rpm");
    EXPECT_EQ(Item.GetEditText(), "7 rpm");
    EXPECT_EQ(Item.GetRangeText(), "[1..100]");
}

TYPED_TEST(SpinEditOfEachTypeTest, WithoutAUnitTheBoxHasNoTrailingBlank) {
    const CPropTreeItemSpinEdit<TypeParam> Item(1, 100, 7, 1);
    EXPECT_EQ(Item.GetValueText(), "7 ");
    EXPECT_EQ(Item.GetEditText(), "7");
}

TYPED_TEST(SpinEditOfEachTypeTest, HexadecimalUpTo255HasTwoDigitsInTheListAndNoneFilledUpInTheBox) {
    const CPropTreeItemSpinEdit<TypeParam> Item(0, 255, 10, 1, {.m_Unit = "m", .m_bHex = true});
    EXPECT_EQ(Item.GetValueText(), "0x0A m");
    EXPECT_EQ(Item.GetEditText(), "A m");
    EXPECT_EQ(Item.GetRangeText(), "[0x00..0xFF]");
}

TYPED_TEST(SpinEditOfEachTypeTest, AZeroTextStandsForTheValueZero) {
    CPropTreeItemSpinEdit<TypeParam> Item(0, 9, 0, 1, {.m_Unit = "g", .m_ZeroText = "OFF"});
    EXPECT_EQ(Item.GetValueText(), "OFF");
    EXPECT_EQ(Item.GetEditText(), "OFF");
    TypeParam Value{5};
    EXPECT_TRUE(Item.Parse("OFF", Value));
    EXPECT_EQ(Value, TypeParam{0});
    Item.SetItemValue(5);
    EXPECT_EQ(Item.GetValueText(), "5 g");
}

TYPED_TEST(SpinEditOfEachTypeTest, AMinusFailsWithAMinimumOfZero) {
    const CPropTreeItemSpinEdit<TypeParam> Item(0, 9, 1, 1);
    TypeParam Value{1};
    EXPECT_FALSE(Item.Parse("-5", Value));
    EXPECT_FALSE(Item.Parse("-", Value));
    EXPECT_FALSE(Item.Parse("", Value));
    EXPECT_EQ(Value, TypeParam{1});
    EXPECT_TRUE(Item.Parse("8", Value));
    EXPECT_EQ(Value, TypeParam{8});
}

TEST(SpinEditFormatTest, ADoubleWithAWholeStepTakesNegativeNumbers) {
    const CDoubleItem Item(-10.0, 10.0, 0.0, 1.0);
    double Value = 0.0;
    EXPECT_TRUE(Item.Parse("-5", Value));
    EXPECT_EQ(Value, -5.0);
    EXPECT_EQ(Item.GetRangeText(), "[-10..10]");
}

TEST(SpinEditFormatTest, DigitsFollowFromTheStep) {
    EXPECT_EQ(CDoubleItem(0.0, 1.0, 0.5, 0.01).GetValueText(), "0.50 ");
    EXPECT_EQ(CDoubleItem(0.0, 1.0, 0.5, 0.25).GetValueText(), "0.5 ");
    EXPECT_EQ(CDoubleItem(0.0, 1.0, 0.5, 0.001).GetValueText(), "0.500 ");
    EXPECT_EQ(CDoubleItem(0.0, 9.0, 0.5, 2.01).GetValueText(), "0.50 ");
    EXPECT_EQ(CDoubleItem(1.5, 15.0, 5.0, 0.1).GetRangeText(), "[1.5..15.0]");
    EXPECT_EQ(CDoubleItem(0.0, 9.0, 3.7, 2.0).GetValueText(), "3 ") << "a whole step: whole numbers";
}

TEST(SpinEditFormatTest, AFractionalStepEndsHexadecimalWithAnAssertion) {
    const CLogCapture Log;
    const CDoubleItem Item(0.0, 10.0, 1.5, 0.5, {.m_bHex = true});
    EXPECT_FALSE(Item.IsHex());
    EXPECT_EQ(Item.GetValueText(), "1.5 ");
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid usage"));
}

TEST(SpinEditFormatTest, ANegativeMinimumEndsHexadecimalWithAnAssertion) {
    const CLogCapture Log;
    const CDoubleItem Item(-1.0, 10.0, 5.0, 1.0, {.m_bHex = true});
    EXPECT_FALSE(Item.IsHex());
    EXPECT_EQ(Item.GetValueText(), "5 ");
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("integer not allowed in Hex format"));
}

TEST(SpinEditFormatTest, TheWidthOfHexadecimalFollowsFromTheMaximum) {
    const CSpinEditLook Hex{.m_bHex = true};
    EXPECT_EQ(CLongItem(0, 256, 10, 1, Hex).GetValueText(), "0x000A ");
    EXPECT_EQ(CLongItem(0, 65535, 10, 1, Hex).GetRangeText(), "[0x0000..0xFFFF]");
    EXPECT_EQ(CLongItem(0, 65536, 10, 1, Hex).GetValueText(), "0x0000000A ");
    EXPECT_EQ(CLongItem(0, 4294967295, 10, 1, Hex).GetRangeText(), "[0x00000000..0xFFFFFFFF]");
    const CLongItem Beyond(0, 4294967296, 10, 1, Hex);
    EXPECT_EQ(Beyond.GetValueText(), "10 ") << "the formats stay";
    EXPECT_EQ(Beyond.GetEditText(), "A") << "but for the box";
}

TEST(SpinEditParseTest, AFractionGoesDownToTheGrid) {
    const CDoubleItem Item(0.0, 100.0, 5.0, 0.1);
    const auto Parsed = [&Item](const char* pText) {
        double Value = 99.0;
        return Item.Parse(pText, Value) ? Value : -1.0;
    };
    EXPECT_DOUBLE_EQ(Parsed("1.27"), 1.2);
    EXPECT_DOUBLE_EQ(Parsed("1.2"), 1.2);
    EXPECT_DOUBLE_EQ(Parsed("0.3"), 0.3) << "0.3 / 0.1 is below 3";
    EXPECT_EQ(Parsed("-"), 0.0) << "a step on the way";
    EXPECT_EQ(Parsed("+"), 0.0);
    EXPECT_EQ(Parsed("x"), -1.0);
    EXPECT_EQ(Parsed(""), -1.0);
}

TEST(SpinEditParseTest, EachValueOfTheGridStaysWhatItIs) {
    const CDoubleItem Item(-15.0, 15.0, 5.0, 0.1);
    for (int i = -150; i <= 150; ++i) {
        double Value = 0.0;
        ASSERT_TRUE(Item.Parse(std::to_string(i / 10.0), Value));
        EXPECT_NEAR(Value, i / 10.0, 1e-12);
    }
}

TEST(SpinEditParseTest, HexadecimalReadsOneNumber) {
    const CLongItem Item(0, 255, 10, 1, {.m_bHex = true});
    unsigned long Value = 1;
    EXPECT_TRUE(Item.Parse("1F", Value));
    EXPECT_EQ(Value, 0x1Fu);
    EXPECT_FALSE(Item.Parse("G", Value));
    EXPECT_FALSE(Item.Parse("-1", Value));
}

class SpinEditInTreeTest : public CTreeFixture {
protected:
    /// As if the operator had made the box's text that, with the caret behind it.
    template <typename Item>
    std::string Type(Item& rItem, const std::string& rText) {
        const int nEnd = static_cast<int>(rText.size());
        rItem.GetEdit().ChangeByOperator(rText, nEnd, nEnd);
        return rItem.GetEdit().GetWindowText();
    }
    template <typename Item>
    void Begin(Item& rItem) {
        m_pTree->SetFocusedItem(&rItem);
        rItem.Activate();
        m_Told.clear();
    }
    static bool IsAllSelected(const CEdit& rEdit) {
        int nStart = -1;
        int nEnd = -1;
        rEdit.GetSel(nStart, nEnd);
        return nStart == 0 && nEnd == static_cast<int>(rEdit.GetWindowText().size());
    }
};

TEST_F(SpinEditInTreeTest, EditingBeginsWithAllTextSelectedAndTheFocusInTheBox) {
    Begin(*m_pSpeed);
    EXPECT_TRUE(m_pSpeed->IsActive());
    EXPECT_EQ(CWnd::GetFocus(), &m_pSpeed->GetEdit());
    EXPECT_EQ(m_pSpeed->GetEdit().GetWindowText(), "100 rpm");
    EXPECT_TRUE(IsAllSelected(m_pSpeed->GetEdit()));
    EXPECT_TRUE(m_pSpeed->GetEdit().IsUpperCase());
    EXPECT_EQ(m_pSpeed->GetEdit().GetDlgCtrlID(), 0x1532u);
    EXPECT_EQ(m_pSpeed->GetButton().GetDlgCtrlID(), 0x1531u);
    EXPECT_TRUE(m_pSpeed->GetEdit().IsShown());
    EXPECT_TRUE(m_pSpeed->GetButton().IsShown());
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(SpinEditInTreeTest, AnItemThatIsNotEditableCanBeLookedAtOnly) {
    auto* const pFixed =
        Add(std::make_unique<CLongItem>(1UL, 9UL, 5UL, 1UL, CSpinEditLook{.m_bEditable = false}), "F");
    Begin(*pFixed);
    EXPECT_TRUE(pFixed->GetEdit().IsReadOnly());
    EXPECT_FALSE(pFixed->GetButton().IsWindowEnabled());
    m_pTree->StartStepping(true);
    EXPECT_EQ(pFixed->GetItemValue(), 5u);
    EXPECT_EQ(List().SendMessage(WM_CHAR, '7'), 0);
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(SpinEditInTreeTest, TheButtonCountsInSteps) {
    Begin(*m_pTime);
    EXPECT_EQ(m_pTime->GetButton().GetLower(), 15);
    EXPECT_EQ(m_pTime->GetButton().GetUpper(), 150);
    EXPECT_EQ(m_pTime->GetButton().GetPos(), 50);
    EXPECT_EQ(m_pTime->GetButton().GetAccel().size(), 1u);
    EXPECT_EQ(m_pTime->GetButton().GetAccel()[0].m_nStep, 1);
    auto* const pTens = Add(std::make_unique<CLongItem>(0UL, 95UL, 50UL, 10UL), "Tens");
    Begin(*pTens);
    EXPECT_EQ(pTens->GetButton().GetUpper(), 95);
    EXPECT_EQ(pTens->GetButton().GetAccel()[0].m_nStep, 10);
}

TEST_F(SpinEditInTreeTest, AStepChangesValueTextAndSelectionAndIsTold) {
    Begin(*m_pTime);
    m_pTime->GetButton().Click(CSpinButtonCtrl::eUp);
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.1);
    EXPECT_EQ(m_pTime->GetEdit().GetWindowText(), "5.1 s");
    EXPECT_TRUE(IsAllSelected(m_pTime->GetEdit()));
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1105, m_pTime}));
    m_pTime->GetButton().Click(CSpinButtonCtrl::eDown);
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.0);
}

TEST_F(SpinEditInTreeTest, AStepBeyondAnEndGoesToTheOther) {
    m_pSpeed->SetItemValue(400);
    Begin(*m_pSpeed);
    m_pSpeed->GetButton().Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 1u);
    m_pSpeed->GetButton().Click(CSpinButtonCtrl::eDown);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 400u);
    EXPECT_EQ(m_pSpeed->GetButton().GetPos(), 400);
}

TEST_F(SpinEditInTreeTest, AStepGoesOnFromWhatWasTyped) {
    Begin(*m_pSpeed);
    Type(*m_pSpeed, "20");
    m_pSpeed->GetButton().Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 21u);
}

TEST_F(SpinEditInTreeTest, ACommaIsAPoint) {
    Begin(*m_pTime);
    EXPECT_EQ(Type(*m_pTime, "1,5"), "1.5");
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 1.5);
    EXPECT_EQ(m_pTime->GetEdit().GetCaret(), 3) << "the caret stays";
    EXPECT_THAT(m_Told, IsEmpty()) << "typing is told when it ends";
}

TEST_F(SpinEditInTreeTest, ALoneMinusIsKeptInAFraction) {
    Begin(*m_pTime);
    EXPECT_EQ(Type(*m_pTime, "-"), "-");
    EXPECT_EQ(m_pTime->GetItemValue(), 0.0);
    EXPECT_EQ(Type(*m_pTime, "-."), "-.");
}

TEST_F(SpinEditInTreeTest, ALoneMinusIsRefusedInAWholeNumberFromZeroOn) {
    Begin(*m_pSpeed);
    EXPECT_EQ(Type(*m_pSpeed, "-"), "100 rpm");
    EXPECT_TRUE(IsAllSelected(m_pSpeed->GetEdit()));
    EXPECT_EQ(m_pSpeed->GetItemValue(), 100u);
}

TEST_F(SpinEditInTreeTest, WhatIsNoNumberIsPutBackWithAllSelected) {
    Begin(*m_pSpeed);
    for (const char* pText : {"", "x", "1x", "1.5", "05", " 5"}) {
        EXPECT_EQ(Type(*m_pSpeed, pText), "100 rpm") << pText;
        EXPECT_TRUE(IsAllSelected(m_pSpeed->GetEdit())) << pText;
    }
    Begin(*m_pTime);
    for (const char* pText : {"1.5.", "1-", "1E3", "1 2", "x"}) {
        EXPECT_EQ(Type(*m_pTime, pText), "5.0 s") << pText;
    }
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.0);
}

TEST_F(SpinEditInTreeTest, AFractionMayBeEmptyOnTheWay) {
    Begin(*m_pTime);
    EXPECT_EQ(Type(*m_pTime, ""), "");
    EXPECT_EQ(Type(*m_pTime, "."), ".");
    EXPECT_EQ(Type(*m_pTime, ".5"), ".5");
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 0.5);
    m_pTime->CommitChanges();
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 1.5);
}

TEST_F(SpinEditInTreeTest, TheUnitMayStayBehindTheNumber) {
    Begin(*m_pSpeed);
    EXPECT_EQ(Type(*m_pSpeed, "105 RPM"), "105 rpm") << "as the upper-case box makes it";
    EXPECT_EQ(m_pSpeed->GetItemValue(), 105u);
    Begin(*m_pTime);
    EXPECT_EQ(Type(*m_pTime, "5.2 S"), "5.2 s");
    EXPECT_EQ(Type(*m_pTime, "5.2 "), "5.2");
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.2);
}

TEST_F(SpinEditInTreeTest, AValueAboveTheMaximumStandsUntilItIsCommitted) {
    Begin(*m_pSpeed);
    EXPECT_EQ(Type(*m_pSpeed, "999"), "999");
    EXPECT_EQ(m_pSpeed->GetItemValue(), 999u);
    m_pSpeed->CommitChanges();
    EXPECT_EQ(m_pSpeed->GetItemValue(), 400u);
    EXPECT_EQ(m_pSpeed->GetValueText(), "400 rpm");
}

TEST_F(SpinEditInTreeTest, AByteTakesNoMoreThanItHolds) {
    auto* const pByte = Add(std::make_unique<CByteItem>(2, 3, 2, 1), "Screws");
    Begin(*pByte);
    EXPECT_EQ(Type(*pByte, "255"), "255");
    EXPECT_EQ(Type(*pByte, "256"), "255");
    pByte->CommitChanges();
    EXPECT_EQ(pByte->GetItemValue(), 3);
}

TEST_F(SpinEditInTreeTest, TheZeroTextCanBeTyped) {
    auto* const pItem =
        Add(std::make_unique<CLongItem>(0UL, 9UL, 5UL, 1UL, CSpinEditLook{.m_ZeroText = "OFF"}), "Z");
    Begin(*pItem);
    for (const char* pText : {"O", "OF"}) {
        EXPECT_EQ(Type(*pItem, pText), pText);
        EXPECT_EQ(pItem->GetItemValue(), 5u);
    }
    EXPECT_EQ(Type(*pItem, "OFF"), "OFF");
    EXPECT_EQ(pItem->GetItemValue(), 0u);
    EXPECT_EQ(Type(*pItem, "0"), "OFF") << "zero reads otherwise";
}

TEST_F(SpinEditInTreeTest, HexadecimalIsTypedWithoutPrefix) {
    auto* const pItem =
        Add(std::make_unique<CLongItem>(0UL, 255UL, 5UL, 1UL, CSpinEditLook{.m_bHex = true}), "Mask");
    Begin(*pItem);
    EXPECT_EQ(Type(*pItem, "1F"), "1F");
    EXPECT_EQ(pItem->GetItemValue(), 31u);
    EXPECT_EQ(Type(*pItem, "1G"), "1F");
    pItem->CommitChanges();
    EXPECT_EQ(pItem->GetValueText(), "0x1F ");
}

TEST_F(SpinEditInTreeTest, ACommitHidesTheWindowAndBringsTheFocusBack) {
    Begin(*m_pSpeed);
    m_pSpeed->CommitChanges();
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_FALSE(m_pSpeed->IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), &List());
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1105, m_pSpeed}, CTold{-1105, m_pSpeed}))
        << "the settled value, and the end as of any item";
}

TEST_F(SpinEditInTreeTest, ReleasedEnterCommits) {
    Begin(*m_pSpeed);
    CEdit& rEdit = m_pSpeed->GetEdit();
    EXPECT_NE(rEdit.SendMessage(WM_KEYDOWN, VK_RETURN), 0);
    EXPECT_TRUE(m_pSpeed->IsActive());
    rEdit.SendMessage(WM_KEYUP, VK_RETURN);
    EXPECT_FALSE(m_pSpeed->IsActive());
}

TEST_F(SpinEditInTreeTest, EnterInTheListBeginsEditingAndGoesOn) {
    m_pTree->SetFocusedItem(m_pSpeed);
    List().SetFocus();
    Key(VK_RETURN);
    EXPECT_TRUE(m_pSpeed->IsActive());
    Key(VK_RETURN);
    EXPECT_FALSE(m_pSpeed->IsActive());
    Key(VK_RETURN);
    EXPECT_TRUE(m_pSpeed->IsActive());
}

TEST_F(SpinEditInTreeTest, ArrowsCommitAndMoveTheSelectionOn) {
    Begin(*m_pSpeed);
    Type(*m_pSpeed, "7");
    Key(VK_DOWN);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed) << "the key is posted";
    m_Loop.RunPosted();
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pTime);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
    m_pTime->Activate();
    Key(VK_UP);
    m_Loop.RunPosted();
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed);
}

TEST_F(SpinEditInTreeTest, LosingTheFocusCommitsAndIsLogged) {
    const CLogCapture Log(true);
    Begin(*m_pSpeed);
    Type(*m_pSpeed, "7");
    List().SetFocus();
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
    EXPECT_THAT(Log.GetTexts("Debug"), testing::Contains("committing changes"));
    EXPECT_EQ(CodesOf(m_pSpeed).size(), 2u);
}

TEST_F(SpinEditInTreeTest, EscapeGivesTheOldValueBackInSilenceAfterTyping) {
    Begin(*m_pSpeed);
    Type(*m_pSpeed, "7");
    Key(VK_ESCAPE);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 100u);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(CWnd::GetFocus(), &List());
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(SpinEditInTreeTest, EscapeTellsTheOldValueWhenAStepHadGoneOut) {
    Begin(*m_pSpeed);
    m_pSpeed->GetButton().Click(CSpinButtonCtrl::eUp);
    unsigned long Told = 0;
    OnTold = [&](int, CPropTreeItem*) -> LRESULT {
        Told = m_pSpeed->GetItemValue();
        return 0;
    };
    Key(VK_ESCAPE);
    EXPECT_EQ(Told, 100u);
    EXPECT_THAT(CodesOf(m_pSpeed), ElementsAre(-1105, -1105));
    Begin(*m_pSpeed);
    Key(VK_ESCAPE);
    EXPECT_THAT(m_Told, IsEmpty()) << "a new edit begins anew";
}

TEST_F(SpinEditInTreeTest, ADigitInTheListBeginsEditingWithIt) {
    m_pTree->SetFocusedItem(m_pSpeed);
    List().SetFocus();
    EXPECT_NE(List().SendMessage(WM_CHAR, '4'), 0);
    EXPECT_TRUE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetEdit().GetWindowText(), "4");
    EXPECT_EQ(m_pSpeed->GetEdit().GetCaret(), 1);
}

TEST_F(SpinEditInTreeTest, AHeldKeyActivatesAndStepsFasterAndFaster) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pTree->StartStepping(true);
    EXPECT_TRUE(m_pSpeed->IsActive()) << "the button wasn't to be seen";
    EXPECT_EQ(m_pSpeed->GetItemValue(), 101u);
    m_Loop.Advance(450 + 400 + 350 + 300 + 250 + 200 + 150 + 150);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 109u);
    m_pTree->StopStepping();
    m_Loop.Advance(3000);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 109u);
    EXPECT_EQ(CodesOf(m_pSpeed).size(), 9u);
}

TEST_F(SpinEditInTreeTest, TheOtherKeyTurnsTheSeriesRound) {
    const CLogCapture Log;
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pTree->StartStepping(true);
    m_pTree->StartStepping(false);
    m_Loop.Advance(450);
    m_pTree->StopStepping();
    EXPECT_EQ(m_pSpeed->GetItemValue(), 99u) << "one up, two down";
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST_F(SpinEditInTreeTest, ACommitEndsTheSeries) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pTree->StartStepping(true);
    m_pSpeed->CommitChanges();
    m_Loop.Advance(3000);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 101u);
    EXPECT_FALSE(m_pSpeed->IsActive());
}

TEST_F(SpinEditInTreeTest, AHandlerThatMovesOnEndsTheSeriesToo) {
    m_pTree->SetFocusedItem(m_pSpeed);
    OnTold = [this](int Code, CPropTreeItem*) -> LRESULT {
        if (Code == CPropTree::eItemChanged && m_pSpeed->GetItemValue() == 102) {
            m_pTree->SetFocusedItem(m_pResult);
        }
        return 0;
    };
    m_pTree->StartStepping(true);
    m_Loop.Advance(3000);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 102u);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
}

TEST_F(SpinEditInTreeTest, AnItemThatIsDeletedInItsOwnStepIsNoHarm) {
    m_pTree->SetFocusedItem(m_pSpeed);
    OnTold = [this](int Code, CPropTreeItem* pItem) -> LRESULT {
        if (Code == CPropTree::eItemChanged) {
            m_pTree->Delete(pItem);
        }
        return 0;
    };
    m_pTree->StartStepping(true);
    m_Loop.Advance(3000);
    EXPECT_EQ(GetRows().size(), 4u);
}

TEST_F(SpinEditInTreeTest, TheProgramsValueIsClampedAndToldToNobody) {
    const CLogCapture Log;
    Begin(*m_pSpeed);
    m_pSpeed->SetItemValue(1000);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 400u);
    EXPECT_EQ(m_pSpeed->GetEdit().GetWindowText(), "400 rpm");
    EXPECT_EQ(m_pSpeed->GetButton().GetPos(), 400);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("value not in range"));
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(SpinEditInTreeTest, ANewRangeIsSeenInTextButtonAndValue) {
    Begin(*m_pSpeed);
    m_pSpeed->SetRange(200, 300);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 200u);
    EXPECT_EQ(m_pSpeed->GetRangeText(), "[200..300]");
    EXPECT_EQ(m_pSpeed->GetButton().GetLower(), 200);
    EXPECT_EQ(m_pSpeed->GetButton().GetUpper(), 300);
}

}  // namespace
}  // namespace PropTree
