// What people do to a tree, as real events of the toolkit.
#include <gmock/gmock.h>

#include "tests/rvlib/rvgui/proptree/treefixture.h"
#include "tests/support/shownpage.h"

namespace PropTree {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TreeEventsTest : public CTreeFixture, protected CShownPage {
protected:
    TreeEventsTest() : CShownPage(m_Loop, m_Page) {}
    void SetUp() override { ASSERT_TRUE(TryShow()); }
    void ClickList(CPoint Point) {
        QTest::mouseClick(Find(List()), Qt::LeftButton, Qt::NoModifier, QPoint(Point.x, Point.y));
        m_Loop.RunPosted();
    }
};

TEST_F(TreeEventsTest, AValueIsClickedTypedAndAcceptedWithEnter) {
    ClickList(ValueOf(*m_pSpeed));
    ASSERT_EQ(QApplication::focusWidget(), Find(m_pSpeed->GetEdit()));
    Write("250");
    EXPECT_EQ(m_pSpeed->GetItemValue(), 250u);
    EXPECT_EQ(dynamic_cast<QLineEdit*>(Find(m_pSpeed->GetEdit()))->text(), "250");
    EXPECT_THAT(m_Told, IsEmpty());
    PressKey(Qt::Key_Return);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetValueText(), "250 rpm");
    EXPECT_EQ(QApplication::focusWidget(), Find(List()));
    EXPECT_FALSE(CodesOf(m_pSpeed).empty());
}

TEST_F(TreeEventsTest, IllegalCharactersDisappearAsTheyAreTyped) {
    ClickList(ValueOf(*m_pTime));
    Write("1,5x");
    EXPECT_EQ(m_pTime->GetEdit().GetWindowText(), "1.5 s") << "put back with all selected";
    Write("2.25");
    EXPECT_EQ(m_pTime->GetEdit().GetWindowText(), "2.25");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(m_pTime->GetValueText(), "2.2 s");
}

TEST_F(TreeEventsTest, AWholeEditByTheKeyboard) {
    List().SetFocus();
    PressKey(Qt::Key_Down);
    PressKey(Qt::Key_Return);
    ASSERT_TRUE(m_pSpeed->IsActive()) << "and the release of Enter hasn't ended it";
    Write("42");
    PressKey(Qt::Key_Down);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 42u);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pTime);
    PressKey(Qt::Key_F2);
    Write("7.5");
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(m_pTime->GetValueText(), "5.0 s");
    EXPECT_EQ(QApplication::focusWidget(), Find(List()));
    PressKey(Qt::Key_Down);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pDirection);
}

TEST_F(TreeEventsTest, ADigitBeginsEditingAndTheNextOnesFollow) {
    m_pTree->SetFocusedItem(m_pSpeed);
    List().SetFocus();
    Write("325");
    EXPECT_EQ(m_pSpeed->GetEdit().GetWindowText(), "325");
    PressKey(Qt::Key_Return);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 325u);
}

TEST_F(TreeEventsTest, TheUnitCanBeLeftStandingWhileTheNumberIsChanged) {
    ClickList(ValueOf(*m_pSpeed));
    PressKey(Qt::Key_Home);
    PressKey(Qt::Key_Right);
    Write("5");
    EXPECT_EQ(m_pSpeed->GetEdit().GetWindowText(), "1500 rpm");
    EXPECT_EQ(m_pSpeed->GetEdit().GetCaret(), 2);
    PressKey(Qt::Key_Delete);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 150u);
}

TEST_F(TreeEventsTest, TheSpinButtonIsHeldWithTheMouse) {
    ClickList(ValueOf(*m_pSpeed));
    QWidget* const pButton = Find(m_pSpeed->GetButton());
    QTest::mousePress(pButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, 3));
    m_Loop.Advance(600);
    QTest::mouseRelease(pButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, 3));
    m_Loop.Advance(600);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 104u) << "at once, after 400, 500 and 600 ms";
    EXPECT_TRUE(m_pSpeed->IsActive()) << "the button takes no focus";
    QTest::mouseClick(pButton, Qt::LeftButton, Qt::NoModifier, QPoint(5, pButton->height() - 3));
    EXPECT_EQ(m_pSpeed->GetItemValue(), 103u);
}

TEST_F(TreeEventsTest, ClickingElsewhereInTheListCommits) {
    ClickList(ValueOf(*m_pSpeed));
    Write("7");
    ClickList(LabelOf(*m_pResult));
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
    EXPECT_EQ(QApplication::focusWidget(), Find(List()));
}

TEST_F(TreeEventsTest, ClickingIntoAnotherValueMovesTheEditingThere) {
    ClickList(ValueOf(*m_pSpeed));
    Write("7");
    ClickList(ValueOf(*m_pTime));
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
    EXPECT_TRUE(m_pTime->IsActive());
    EXPECT_EQ(QApplication::focusWidget(), Find(m_pTime->GetEdit()));
}

TEST_F(TreeEventsTest, TheTabKeyLeavesTheBoxAndCommits) {
    CEdit After;
    After.Create(&m_Page, CRect(10, 220, 110, 245), 9);
    ClickList(ValueOf(*m_pSpeed));
    Write("7");
    PressKey(Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), &After);
    EXPECT_EQ(QApplication::focusWidget(), Find(After));
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
    PressKey(Qt::Key_Backtab);
    EXPECT_EQ(CWnd::GetFocus(), &List());
}

TEST_F(TreeEventsTest, LeavingTheProgramCommits) {
    ClickList(ValueOf(*m_pSpeed));
    Write("7");
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pSpeed->GetItemValue(), 7u);
}

TEST_F(TreeEventsTest, ACombosArrowsAndLettersChooseAndEnterAccepts) {
    ClickList(ValueOf(*m_pDirection));
    ASSERT_EQ(QApplication::focusWidget(), Find(*m_pDirection));
    PressKey(Qt::Key_Down);
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    Write("n");
    EXPECT_EQ(m_pDirection->GetItemValue(), 2);
    EXPECT_THAT(CodesOf(m_pDirection), ElementsAre(-1105, -1105));
    PressKey(Qt::Key_Return);
    EXPECT_FALSE(m_pDirection->IsActive());
    EXPECT_EQ(m_pDirection->GetValueText(), "none");
    EXPECT_EQ(QApplication::focusWidget(), Find(List()));
}

TEST_F(TreeEventsTest, ACombosListIsOpenedAndChosenFrom) {
    ClickList(ValueOf(*m_pDirection));
    m_pDirection->ShowDropDown(true);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    EXPECT_TRUE(m_pDirection->IsActive()) << "the open list is a part of the box";
    QWidget* const pPopup = QApplication::activePopupWidget();
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : pPopup,
                    Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : pPopup,
                    Qt::Key_Return);
    m_Loop.RunPosted();
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    EXPECT_FALSE(CodesOf(m_pDirection).empty());
}

TEST_F(TreeEventsTest, TheWheelOverABoxScrollsAndNeverChangesAValue) {
    for (int i = 0; i < 20; ++i) {
        Add(std::make_unique<CPropTreeItemStatic>(), "Row");
    }
    m_Loop.RunPosted();
    ClickList(ValueOf(*m_pDirection));
    TurnWheel(Find(*m_pDirection), QPoint(5, 5), -120);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
    EXPECT_EQ(m_pTree->GetScrollPos(), 3 * 28);
    m_pTree->SetScrollPos(0);
    ClickList(ValueOf(*m_pTime));
    ASSERT_TRUE(m_pTime->IsActive());
    ASSERT_TRUE(Find(m_pTime->GetEdit())->isVisible());
    TurnWheel(Find(m_pTime->GetEdit()), QPoint(5, 5), -120);
    EXPECT_EQ(m_pTime->GetValueText(), "5.0 s");
    EXPECT_EQ(m_pTree->GetScrollPos(), 3 * 28);
}

TEST_F(TreeEventsTest, TheSplitterIsDraggedAndShowsItsPointer) {
    m_pTree->SetOrigin(150);
    QWidget* const pList = Find(List());
    const QPoint From(150, MiddleOf(*m_pSpeed));
    QTest::mouseMove(pList, From);
    EXPECT_EQ(pList->cursor().shape(), Qt::SplitHCursor);
    QTest::mousePress(pList, Qt::LeftButton, Qt::NoModifier, From);
    QTest::mouseMove(pList, From + QPoint(40, 0));
    QTest::mouseRelease(pList, Qt::LeftButton, Qt::NoModifier, From + QPoint(40, 0));
    EXPECT_EQ(m_pTree->GetOrigin(), 190);
    QTest::mouseMove(pList, QPoint(100, From.y()));
    EXPECT_EQ(pList->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(TreeEventsTest, AFingerOpensAGroupAndEditsAValue) {
    const std::unique_ptr<QPointingDevice> pScreen(QTest::createTouchDevice());
    QWidget* const pList = Find(List());
    const auto Tap = [&](CPoint Point) {
        QTest::touchEvent(pList, pScreen.get()).press(0, QPoint(Point.x, Point.y), pList);
        QTest::touchEvent(pList, pScreen.get()).release(0, QPoint(Point.x, Point.y), pList);
        m_Loop.RunPosted();
    };
    Tap(BoxOf(*m_pGroup));
    EXPECT_FALSE(m_pGroup->IsExpanded());
    Tap(BoxOf(*m_pGroup));
    Tap(ValueOf(*m_pTime));
    EXPECT_TRUE(m_pTime->IsActive());
}

TEST_F(TreeEventsTest, TheListTellsAScreenReaderWhereTheFocusIs) {
    m_pTree->SetFocusedItem(m_pSpeed);
    m_Loop.RunPosted();
    EXPECT_EQ(Find(List())->accessibleName(), "Speed 100 rpm");
    ClickList(ValueOf(*m_pSpeed));
    EXPECT_EQ(Find(m_pSpeed->GetEdit())->accessibleName(), "Speed");
}

TEST_F(TreeEventsTest, AnItemMayBeDeletedWhileItsBoxHandlesAKey) {
    ClickList(ValueOf(*m_pSpeed));
    OnTold = [this](int Code, CPropTreeItem* pItem) -> LRESULT {
        if (Code == CPropTree::eItemChanged) {
            m_pTree->Delete(pItem);
        }
        return 0;
    };
    PressKey(Qt::Key_Return);
    EXPECT_EQ(GetRows().size(), 4u);
    ClickList(ValueOf(*m_pDirection));
    PressKey(Qt::Key_Down);
    EXPECT_EQ(GetRows().size(), 3u);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace
}  // namespace PropTree
