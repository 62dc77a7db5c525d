#include "rvlib/rvgui/proptree/proptree.h"

#include <gmock/gmock.h>

#include "platform/window/edit.h"
#include "tests/rvlib/rvgui/proptree/treefixture.h"
#include "tests/support/logcapture.h"

namespace PropTree {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PropTreeTest : public CTreeFixture {};

TEST_F(PropTreeTest, ItemsGoToTheEndOfTheirParentsChildrenAndCountFromOne) {
    EXPECT_EQ(m_pGroup->GetItemId(), 1u);
    EXPECT_EQ(m_pSpeed->GetItemId(), 2u);
    EXPECT_EQ(m_pResult->GetItemId(), 5u);
    EXPECT_EQ(m_pGroup->GetChild(), m_pSpeed);
    EXPECT_EQ(m_pSpeed->GetSibling(), m_pTime);
    EXPECT_EQ(m_pTime->GetParentItem(), m_pGroup);
    EXPECT_EQ(m_pGroup->GetParentItem(), &m_pTree->GetRoot());
    EXPECT_THAT(GetRows(), ElementsAre(m_pGroup, m_pSpeed, m_pTime, m_pDirection, m_pResult));
}

TEST_F(PropTreeTest, AnItemMayBePutInFrontOfAnother) {
    CPropTreeItem* const pFirst =
        m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("First"), m_pGroup, m_pSpeed);
    CPropTreeItem* const pMiddle =
        m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Middle"), m_pGroup, m_pTime);
    EXPECT_THAT(GetRows(),
                ElementsAre(m_pGroup, pFirst, m_pSpeed, pMiddle, m_pTime, m_pDirection, m_pResult));
    // In front of what isn't there: at the end.
    CPropTreeItem* const pLast =
        m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Last"), nullptr, m_pSpeed);
    EXPECT_EQ(GetRows().back(), pLast);
}

TEST_F(PropTreeTest, AnInsertionIsToldBeforeItIsLaidOut) {
    bool bLaidOut = true;
    OnTold = [&bLaidOut](int, CPropTreeItem* pItem) -> LRESULT {
        bLaidOut = pItem->IsInVisibleChain();
        return 0;
    };
    CPropTreeItem* const pNew = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("New"));
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1101, pNew}));
    EXPECT_FALSE(bLaidOut);
    EXPECT_TRUE(pNew->IsInVisibleChain());
}

TEST_F(PropTreeTest, AnItemMayBeDeletedOutOfItsInsertion) {
    OnTold = [this](int Code, CPropTreeItem* pItem) -> LRESULT {
        if (Code == CPropTree::eInserted) {
            m_pTree->Delete(pItem);
        }
        return 0;
    };
    EXPECT_EQ(m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("New")), nullptr);
    EXPECT_EQ(GetRows().size(), 5u);
    EXPECT_EQ(m_pTree->Insert(std::unique_ptr<CPropTreeItemStatic>()), nullptr);
}

TEST_F(PropTreeTest, AParentOfAnotherTreeIsAnAssertionAndTheItemGoesToTheTop) {
    const CLogCapture Log;
    CPropTreeItemStatic Stranger("Stranger");
    CPropTreeItem* const pNew = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("New"), &Stranger);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("the parent is no item of this tree"));
    EXPECT_TRUE(pNew->IsTopLevel());
}

TEST_F(PropTreeTest, WithoutTheStyleBitNothingIsTold) {
    m_pTree->ModifyStyle(CPropTree::NOTIFY_PARENT, 0);
    OnTold = [](int, CPropTreeItem*) -> LRESULT { return 1; };
    m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("New"));
    EXPECT_TRUE(m_pTree->ToggleExpanded(*m_pGroup));
    EXPECT_TRUE(m_pTree->Delete(m_pSpeed));
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(PropTreeTest, TheSenderForwardsItsRangeButForTwoCodes) {
    OnTold = [](int, CPropTreeItem*) -> LRESULT { return 5; };
    for (int Code = -1114; Code <= -1099; ++Code) {
        const bool bForwarded = Code >= -1112 && Code <= -1101 && Code != -1111 && Code != -1104;
        EXPECT_EQ(m_pTree->SendNotify(Code, m_pSpeed), bForwarded ? 5 : 0) << Code;
    }
    EXPECT_EQ(m_Told.size(), 10u);
}

TEST_F(PropTreeTest, AnotherModeReachesBoxesInClosedGroupsToo) {
    m_pSpeed->Activate();
    m_pSpeed->CommitChanges();
    m_pGroup->Expand(false);
    m_pTree->SetMode(CPropTree::eKeyboardOnly);
    m_pGroup->Expand();
    m_pSpeed->Activate();
    EXPECT_TRUE(m_pSpeed->IsActive());
    EXPECT_FALSE(m_pSpeed->GetEdit().IsWindowVisible());
    EXPECT_FALSE(m_pSpeed->GetButton().IsWindowVisible());
    EXPECT_EQ(CWnd::GetFocus(), &List());
}

TEST_F(PropTreeTest, ARefusedDeletionKeepsItemAndChildren) {
    OnTold = [](int Code, CPropTreeItem*) -> LRESULT { return Code == CPropTree::eDeleteAsked ? 1 : 0; };
    EXPECT_FALSE(m_pTree->Delete(m_pGroup));
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1102, m_pGroup}));
    EXPECT_THAT(GetRows(), ElementsAre(m_pGroup, m_pSpeed, m_pTime, m_pDirection, m_pResult));
    EXPECT_EQ(m_pGroup->GetChild(), m_pSpeed);
}

TEST_F(PropTreeTest, ADeletionTakesTheChildrenAlongAndAsksOnce) {
    const std::weak_ptr<const bool> pChild = m_pTime->GetLife();
    EXPECT_TRUE(m_pTree->Delete(m_pGroup));
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1102, m_pGroup}));
    EXPECT_TRUE(pChild.expired());
    EXPECT_THAT(GetRows(), ElementsAre(m_pResult));
    EXPECT_EQ(m_pResult->GetY(), 0);
}

TEST_F(PropTreeTest, DeletingAllItemsAsksNobody) {
    OnTold = [](int, CPropTreeItem*) -> LRESULT { return 1; };
    EXPECT_TRUE(m_pTree->Delete(nullptr));
    EXPECT_THAT(m_Told, IsEmpty());
    EXPECT_THAT(GetRows(), IsEmpty());
    EXPECT_EQ(m_pTree->GetContentHeight(), 0);
}

TEST_F(PropTreeTest, DeletingTheFocusedItemClearsTheFocus) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pTree->Delete(m_pSpeed);
    EXPECT_EQ(m_pTree->GetFocusedItem(), nullptr);
    m_pTree->SetFocusedItem(m_pTime);
    m_pTree->Delete(m_pGroup);
    EXPECT_EQ(m_pTree->GetFocusedItem(), nullptr) << "with its parent, too";
}

TEST_F(PropTreeTest, DeletingAnItemThatIsEditedBringsTheFocusToTheListWithoutACommit) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    ASSERT_EQ(CWnd::GetFocus(), &m_pSpeed->GetEdit());
    m_Told.clear();
    m_pTree->Delete(m_pSpeed);
    EXPECT_EQ(CWnd::GetFocus(), &List());
    EXPECT_EQ(m_pTree->GetFocusedItem(), nullptr);
    EXPECT_EQ(m_Told.size(), 1u) << "the question";
}

TEST_F(PropTreeTest, AForeignItemIsNotDeleted) {
    CPropTreeItemStatic Stranger("Stranger");
    EXPECT_FALSE(m_pTree->Delete(&Stranger));
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(PropTreeTest, Message1150DeletesAfterTheEventThatIsBeingHandled) {
    const std::weak_ptr<const bool> pLife = m_pSpeed->GetLife();
    OnTold = [this](int Code, CPropTreeItem* pItem) -> LRESULT {
        if (Code == CPropTree::eItemChanged) {
            m_pTree->PostMessage(1150, reinterpret_cast<WPARAM>(pItem));
        }
        return 0;
    };
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    m_pSpeed->CommitChanges();
    EXPECT_FALSE(pLife.expired());
    m_Loop.RunPosted();
    EXPECT_TRUE(pLife.expired());
    EXPECT_EQ(GetRows().size(), 4u);
    m_Loop.RunPosted();
}

TEST_F(PropTreeTest, Message1150OfAnItemThatIsGoneIsNoHarm) {
    m_pTree->PostMessage(1150, reinterpret_cast<WPARAM>(static_cast<CPropTreeItem*>(m_pGroup)));
    m_pTree->PostMessage(1150, reinterpret_cast<WPARAM>(static_cast<CPropTreeItem*>(m_pSpeed)));
    m_Loop.RunPosted();
    EXPECT_THAT(GetRows(), ElementsAre(m_pResult));
}

TEST_F(PropTreeTest, EnsureVisibleOpensAllParentsAndScrolls) {
    m_pTree->ToggleExpanded(*m_pGroup);
    CPropTreeItem* pLast = nullptr;
    for (int i = 0; i < 20; ++i) {
        pLast = Add(std::make_unique<CPropTreeItemStatic>(), "Row " + std::to_string(i));
    }
    CPropTreeItem* const pDeep = m_pTree->Insert(std::make_unique<CPropTreeItemStatic>("Deep"), pLast);
    EXPECT_FALSE(m_pTree->IsItemVisible(pDeep));
    m_pTree->EnsureVisible(pDeep);
    EXPECT_TRUE(m_pTree->IsItemVisible(pDeep));
    EXPECT_GE(pDeep->GetY(), m_pTree->GetScrollPos());
    EXPECT_LE(pDeep->GetY() + pDeep->GetHeight(), m_pTree->GetScrollPos() + 200);
    m_pTree->EnsureVisible(m_pGroup);
    EXPECT_EQ(m_pTree->GetScrollPos(), 0);
}

TEST_F(PropTreeTest, AnItemThatCanNotBecomeVisibleIsAnAssertion) {
    const CLogCapture Log;
    CPropTreeItemStatic Stranger("Stranger");
    m_pTree->EnsureVisible(&Stranger);
    ASSERT_EQ(Log.GetRecords().size(), 1u);
    EXPECT_EQ(Log.GetRecords()[0].m_Expression, "IsItemVisible(pItem)");
    EXPECT_EQ(Log.GetRecords()[0].m_Text, "IsItemVisible");
}

TEST_F(PropTreeTest, TheHitTestTellsWhereAPointLies) {
    m_pTree->SetOrigin(150);
    const int y = MiddleOf(*m_pSpeed);
    CPropTreeItem* pItem = nullptr;
    EXPECT_EQ(m_pTree->HitTest({144, y}, &pItem), 50);
    EXPECT_EQ(pItem, m_pSpeed);
    EXPECT_EQ(m_pTree->HitTest({145, y}), 51);
    EXPECT_EQ(m_pTree->HitTest({155, y}), 51);
    EXPECT_EQ(m_pTree->HitTest({156, y}), 53);
    EXPECT_EQ(m_pTree->HitTest({100, m_pTree->GetContentHeight()}, &pItem), 1);
    EXPECT_EQ(pItem, nullptr);
    m_pSpeed->ShowCheckBox(true);
    EXPECT_EQ(m_pTree->HitTest({m_pSpeed->GetCheckRect().CenterPoint().x, y}), 54);
}

TEST_F(PropTreeTest, ATopLevelRowHasNoSplitter) {
    m_pTree->SetOrigin(150);
    const int y = MiddleOf(*m_pGroup);
    EXPECT_EQ(m_pTree->HitTest({150, y}), 50);
    EXPECT_EQ(m_pTree->HitTest({156, y}), 53);
    EXPECT_EQ(m_pTree->HitTest(BoxOf(*m_pGroup)), 52);
    EXPECT_EQ(m_pTree->HitTest(BoxOf(*m_pGroup) + CPoint(0, MiddleOf(*m_pResult) - y)), 50)
        << "no box without children";
}

TEST_F(PropTreeTest, TheHitTestCountsTheScrollPosition) {
    for (int i = 0; i < 20; ++i) {
        Add(std::make_unique<CPropTreeItemStatic>(), "Row");
    }
    m_pTree->SetScrollPos(30);
    CPropTreeItem* pItem = nullptr;
    m_pTree->HitTest({100, 0}, &pItem);
    EXPECT_EQ(pItem, m_pSpeed) << "30 is in the second row, from 28 on";
    m_pTree->SetScrollPos(100000);
    EXPECT_EQ(m_pTree->GetScrollPos(), m_pTree->GetContentHeight() - 200);
    m_pTree->SetScrollPos(-1);
    EXPECT_EQ(m_pTree->GetScrollPos(), 0);
}

TEST_F(PropTreeTest, RowsAreHighEnoughForAFinger) {
    for (const CPropTreeItem* pRow : GetRows()) {
        EXPECT_GE(pRow->GetHeight(), 28);
    }
}

TEST_F(PropTreeTest, AClickOnTheExpandBoxAsksAndToggles) {
    Click(BoxOf(*m_pGroup));
    EXPECT_THAT(CodesOf(m_pGroup), ElementsAre(-1108));
    EXPECT_FALSE(m_pGroup->IsExpanded());
    EXPECT_THAT(GetRows(), ElementsAre(m_pGroup, m_pResult));
    OnTold = [](int, CPropTreeItem*) -> LRESULT { return 1; };
    Click(BoxOf(*m_pGroup));
    EXPECT_FALSE(m_pGroup->IsExpanded()) << "refused";
}

TEST_F(PropTreeTest, ClosingAGroupAboveTheFocusClearsSelectionAndFocus) {
    m_pTree->SetFocusedItem(m_pTime);
    m_pTree->ToggleExpanded(*m_pGroup);
    EXPECT_EQ(m_pTree->GetFocusedItem(), nullptr);
    EXPECT_FALSE(m_pTime->IsSelected());
    m_pTree->SetFocusedItem(m_pResult);
    m_pTree->ToggleExpanded(*m_pGroup);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult) << "still in sight";
}

TEST_F(PropTreeTest, ClosingAGroupAboveAnEditCommitsIt) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    m_pSpeed->GetEdit().ChangeByOperator("999", 3, 3);
    m_pGroup->Expand(false);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetItemValue(), 400u);
}

TEST_F(PropTreeTest, TheSplitterIsDraggedWithALineAndSetOnRelease) {
    m_pTree->SetOrigin(150);
    m_Loop.RunPosted();
    const CBitmap Before = List().GetSurface();
    const int y = MiddleOf(*m_pSpeed);
    Press({150, y});
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1109, nullptr}));
    EXPECT_EQ(CWnd::GetCapture(), &List());
    Move({200, y});
    m_Loop.RunPosted();
    EXPECT_EQ(m_pTree->GetOrigin(), 150);
    for (const int x : {199, 200}) {
        EXPECT_EQ(List().GetSurface().GetPixel(x, 180), 0xFFFFFFU ^ Before.GetPixel(x, 180)) << "inverted";
    }
    EXPECT_EQ(List().GetSurface().GetPixel(198, 180), Before.GetPixel(198, 180));
    EXPECT_EQ(List().GetSurface().GetPixel(201, 180), Before.GetPixel(201, 180));
    LetGo({210, y});
    EXPECT_EQ(m_pTree->GetOrigin(), 210);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(PropTreeTest, ARefusedSplitterIsNotDragged) {
    m_pTree->SetOrigin(150);
    OnTold = [](int Code, CPropTreeItem*) -> LRESULT { return Code == CPropTree::eSplitterAsked ? 1 : 0; };
    Press({150, MiddleOf(*m_pSpeed)});
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    LetGo({200, MiddleOf(*m_pSpeed)});
    EXPECT_EQ(m_pTree->GetOrigin(), 150);
}

TEST_F(PropTreeTest, LosingTheCaptureEndsTheDragWithoutASplitterSet) {
    m_pTree->SetOrigin(150);
    Press({150, MiddleOf(*m_pSpeed)});
    Move({200, MiddleOf(*m_pSpeed)});
    CWnd::ReleaseCapture();
    EXPECT_FALSE(List().IsDragging());
    LetGo({200, MiddleOf(*m_pSpeed)});
    EXPECT_EQ(m_pTree->GetOrigin(), 150);
}

TEST_F(PropTreeTest, AClickSelectsAndOneOnAValueEditsIt) {
    Click(LabelOf(*m_pSpeed));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed);
    EXPECT_TRUE(m_pSpeed->IsSelected());
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(CWnd::GetFocus(), &List());
    Click(ValueOf(*m_pTime));
    EXPECT_FALSE(m_pSpeed->IsSelected());
    EXPECT_TRUE(m_pTime->IsActive());
    Press(ValueOf(*m_pSpeed));
    LetGo(ValueOf(*m_pDirection));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed);
    EXPECT_FALSE(m_pSpeed->IsActive()) << "let go elsewhere";
}

TEST_F(PropTreeTest, ACheckBoxIsTurnedOverByClickAndSpaceAndTold) {
    m_pResult->ShowCheckBox(true);
    Click({m_pResult->GetCheckRect().CenterPoint().x, MiddleOf(*m_pResult)});
    EXPECT_TRUE(m_pResult->IsChecked());
    EXPECT_THAT(CodesOf(m_pResult), ElementsAre(-1105));
    Key(VK_SPACE);
    EXPECT_FALSE(m_pResult->IsChecked());
}

TEST_F(PropTreeTest, ADoubleClickOnALabelOpensAndClosesTheGroup) {
    List().SendMessage(WM_LBUTTONDBLCLK, MK_LBUTTON, MakePointParam(LabelOf(*m_pGroup)));
    EXPECT_FALSE(m_pGroup->IsExpanded());
}

TEST_F(PropTreeTest, TheWheelScrollsAndChangesNoValue) {
    for (int i = 0; i < 20; ++i) {
        Add(std::make_unique<CPropTreeItemStatic>(), "Row");
    }
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    const CRect Before = m_pSpeed->GetRect();
    EXPECT_NE(List().SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, -120)), 0);
    EXPECT_EQ(m_pTree->GetScrollPos(), 3 * 28);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 100u);
    EXPECT_EQ(m_pSpeed->GetRect().top, Before.top - 3 * 28) << "the box goes along";
    EXPECT_NE(List().SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, 120)), 0);
    EXPECT_EQ(m_pTree->GetScrollPos(), 0);
}

TEST_F(PropTreeTest, WithNothingToScrollTheWheelIsThePages) {
    EXPECT_EQ(List().SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, -120)), 0);
    EXPECT_FALSE(List().GetScrollBar().IsWindowVisible());
}

TEST_F(PropTreeTest, TheScrollBarScrolls) {
    for (int i = 0; i < 20; ++i) {
        Add(std::make_unique<CPropTreeItemStatic>(), "Row");
    }
    CScrollBar& rBar = List().GetScrollBar();
    EXPECT_TRUE(rBar.IsWindowVisible());
    rBar.ScrollByOperator(SB_LINEDOWN, 0);
    EXPECT_EQ(rBar.GetScrollPos(), 28);
    rBar.ScrollByOperator(SB_PAGEDOWN, 0);
    EXPECT_EQ(rBar.GetScrollPos(), 28 + 200);
    rBar.ScrollByOperator(SB_THUMBTRACK, 17);
    EXPECT_EQ(m_pTree->GetScrollPos(), 17);
    rBar.ScrollByOperator(SB_BOTTOM, 0);
    EXPECT_EQ(m_pTree->GetScrollPos(), 25 * 28 - 200);
    rBar.ScrollByOperator(SB_TOP, 0);
    EXPECT_EQ(m_pTree->GetScrollPos(), 0);
}

TEST_F(PropTreeTest, TheInfoPaneTakesTheBottom) {
    m_pTree->ShowInfo(true, 60);
    EXPECT_EQ(List().GetRect(), CRect(0, 0, 300, 140));
    EXPECT_EQ(m_pTree->GetInfo().GetRect(), CRect(0, 140, 300, 200));
    m_pTree->ShowInfo(false);
    EXPECT_EQ(List().GetRect(), CRect(0, 0, 300, 200));
    EXPECT_FALSE(m_pTree->GetInfo().IsWindowVisible());
}

TEST_F(PropTreeTest, FontsAreSharedAndGoWithTheLastTree) {
    const CFont* const pShared = CPropTree::FindNormalFont();
    auto pSecond = std::make_unique<CPropTree>();
    EXPECT_EQ(CPropTree::FindNormalFont(), pShared);
    m_pTree.reset();
    EXPECT_EQ(CPropTree::FindNormalFont(), pShared);
    EXPECT_EQ(CPropTree::GetBoldFont().m_Weight, CFont::BOLD);
    pSecond.reset();
    EXPECT_EQ(CPropTree::FindNormalFont(), nullptr);
    EXPECT_EQ(CPropTree::FindBoldFont(), nullptr);
}

TEST_F(PropTreeTest, AFailedCreationIsLogged) {
    const CLogCapture Log;
    EXPECT_FALSE(m_pTree->Create(&m_Page, CRect(), 1));
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre("Tree: AfxRegisterWndClass failed!"));
    EXPECT_FALSE(List().Create(m_pTree.get(), CRect(), 1));
    EXPECT_EQ(Log.GetTexts("Error").back(), "List: AfxRegisterWndClass failed!");
}

class CHelp : public CDynamicHelpIF {
public:
    void SetHelpTopic(const std::string& rTopic) override { m_Topics.push_back(rTopic); }
    std::vector<std::string> m_Topics;
};

TEST_F(PropTreeTest, AnActivationPassesOnTheHelpKeyOrTheTreesOwn) {
    CHelp Help;
    m_pTree->SetDynamicHelp(&Help);
    m_pTree->SetHelpKey("_PB001");
    m_pSpeed->SetHelpKey("PB_004");
    m_pTree->SetFocusedItem(m_pSpeed);
    EXPECT_THAT(Help.m_Topics, ElementsAre("PB_004")) << "a walk through the rows, too";
    m_pSpeed->Activate();
    EXPECT_THAT(Help.m_Topics, ElementsAre("PB_004", "PB_004"));
    m_pTree->SetFocusedItem(m_pDirection);
    m_pDirection->Activate();
    EXPECT_EQ(Help.m_Topics.back(), "_PB001");
}

TEST_F(PropTreeTest, TheFocusOfTheTreeIsTheLists) {
    m_pTree->SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), &List());
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup) << "who arrives has to see where he is";
}

TEST_F(PropTreeTest, ArrowsWalkAndOpenAndClose) {
    List().SetFocus();
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup);
    Key(VK_DOWN);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed);
    Key(VK_UP);
    Key(VK_UP);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup) << "stays at the top";
    Key(VK_RIGHT);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed) << "into the open group";
    Key(VK_LEFT);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup);
    Key(VK_LEFT);
    EXPECT_FALSE(m_pGroup->IsExpanded());
    Key(VK_RIGHT);
    EXPECT_TRUE(m_pGroup->IsExpanded());
    EXPECT_THAT(CodesOf(m_pGroup), ElementsAre(-1108, -1108));
    Key(VK_END);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
    Key(VK_DOWN);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
    Key(VK_HOME);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup);
}

TEST_F(PropTreeTest, WithoutARowAStepComesFromItsEndAndHomeAndEndMeanWhatTheySay) {
    const std::vector<std::pair<UINT, CPropTreeItem*>> KEYS{{VK_DOWN, m_pGroup}, {VK_UP, m_pResult},
                                                            {VK_HOME, m_pGroup}, {VK_END, m_pResult},
                                                            {VK_NEXT, m_pGroup}, {VK_PRIOR, m_pResult}};
    for (const auto& [VirtualKey, pExpected] : KEYS) {
        List().SetFocus();
        m_pTree->SetFocusedItem(nullptr);
        Key(VirtualKey);
        EXPECT_EQ(m_pTree->GetFocusedItem(), pExpected) << VirtualKey;
    }
}

TEST_F(PropTreeTest, PageKeysMoveByAPage) {
    for (int i = 0; i < 20; ++i) {
        Add(std::make_unique<CPropTreeItemStatic>(), "Row");
    }
    List().SetFocus();
    Key(VK_NEXT);
    EXPECT_EQ(m_pTree->GetFocusedItem()->GetY(), 6 * 28)
        << "7 rows fit whole, the last one becomes the first";
    Key(VK_NEXT);
    EXPECT_EQ(m_pTree->GetFocusedItem()->GetY(), 12 * 28);
    EXPECT_GT(m_pTree->GetScrollPos(), 0);
    Key(VK_PRIOR);
    Key(VK_PRIOR);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup);
    EXPECT_EQ(m_pTree->GetScrollPos(), 0);
}

TEST_F(PropTreeTest, EnterOpensAHeading) {
    List().SetFocus();
    Key(VK_RETURN);
    EXPECT_FALSE(m_pGroup->IsExpanded());
    List().SendMessage(WM_KEYUP, VK_RETURN);
    EXPECT_FALSE(m_pGroup->IsExpanded()) << "a release without a press here is somebody else's";
}

TEST_F(PropTreeTest, ADisabledTreeCanNotBeEdited) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    m_pTree->EnableWindow(false);
    EXPECT_FALSE(m_pSpeed->IsActive());
    m_pSpeed->Activate();
    EXPECT_FALSE(m_pSpeed->IsActive());
    m_pTree->StartStepping(true);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 100u);
}

TEST_F(PropTreeTest, TheFocusStaysWhereTheOperatorPutsIt) {
    CEdit Other;
    Other.Create(&m_Page, CRect(0, 220, 100, 240), 9);
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    Other.SetFocus();
    EXPECT_FALSE(m_pSpeed->IsActive()) << "committed";
    EXPECT_EQ(CWnd::GetFocus(), &Other);
}

TEST_F(PropTreeTest, TheParentMayEndTheTreeInAnyNotification) {
    for (const bool bCommit : {true, false}) {
        SCOPED_TRACE(bCommit);
        OnTold = [this](int, CPropTreeItem*) -> LRESULT {
            m_pTree.reset();
            return 0;
        };
        m_pTree->SetFocusedItem(m_pSpeed);
        m_pSpeed->Activate();
        if (bCommit) {
            m_pSpeed->CommitChanges();
        } else {
            m_pTree->StartStepping(true);
        }
        EXPECT_EQ(m_pTree, nullptr);
        m_Loop.Advance(2000);
        OnTold = nullptr;
        m_pTree = std::make_unique<CPropTree>();
        m_pTree->ModifyStyle(0, CPropTree::NOTIFY_PARENT);
        m_pTree->Create(&m_Page, CRect(10, 10, 310, 210), 7);
        m_pSpeed = m_pTree->Insert(std::make_unique<CLongItem>(1UL, 400UL, 100UL, 1UL));
    }
}

TEST_F(PropTreeTest, ATreeThatIsDestroyedAndMadeAgainKeepsItsItems) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_pSpeed->Activate();
    m_pTree->DestroyWindow();
    EXPECT_FALSE(m_pSpeed->IsActive());
    m_pTree->Create(&m_Page, CRect(10, 10, 310, 210), 7);
    EXPECT_EQ(GetRows().size(), 5u);
    m_pSpeed->Activate();
    EXPECT_EQ(CWnd::GetFocus(), &m_pSpeed->GetEdit());
}

}  // namespace
}  // namespace PropTree
