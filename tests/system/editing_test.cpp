// The whole configuration is edited by softkeys alone, by the keyboard alone, by the mouse alone, by touch
// alone; each leaves the same values in the store.
#include <QAbstractItemView>
#include <QComboBox>
#include <QPointingDevice>

#include "platform/qt/windowview.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "tests/system/pagesfixture.h"

namespace {

using PreBalDB::CTypeBase;

/// Rows of the tree, below its heading, once screws are chosen.
enum Row { eTolerance = 1, eTarget, eTime, eRotation, eMethod = 13, eScrews = 16, eScale = 17 };

class EditingTest : public CPagesTestBase {
protected:
    /// So large that no row is scrolled away.
    void OpenLarge() {
        OpenInFront();
        m_pWindow->resize(1100, 900);
        m_Loop.Advance(500);
    }

    // By mouse or finger.
    using ClickAt = void (*)(QWidget& rWidget, QPoint Point);
    static void ClickByMouse(QWidget& rWidget, QPoint Point) {
        // A list that has just opened takes a button let go for a choice only behind a way of the mouse.
        QTest::mouseMove(&rWidget, Point - QPoint(12, 0));
        QTest::mouseMove(&rWidget, Point);
        QTest::mouseClick(&rWidget, Qt::LeftButton, Qt::NoModifier, Point);
    }
    static void ClickByFinger(QWidget& rWidget, QPoint Point) {
        static QPointingDevice* const s_pScreen = QTest::createTouchDevice();
        // Touches go to what is under them, as a finger's do.
        QTest::touchEvent(&rWidget, s_pScreen).press(0, Point, &rWidget);
        QTest::touchEvent(&rWidget, s_pScreen).release(0, Point, &rWidget);
    }
    /// Below rWnd, wherever.
    static const CWnd* FindWindow(const CWnd& rWnd, UINT Id) {
        for (const CWnd* const pChild : rWnd.GetChildren()) {
            if (pChild->GetDlgCtrlID() == Id) {
                return pChild;
            }
            if (const CWnd* const pBelow = FindWindow(*pChild, Id)) {
                return pBelow;
            }
        }
        return nullptr;
    }
    /// The list of the tree on the screen.
    QWidget* FindList() {
        constexpr UINT TREE_ID = 8005;
        const CWnd* const pTree = FindWindow(m_pSession->GetHost(), TREE_ID);
        for (QWidget* const pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pView = dynamic_cast<CWindowView*>(pWidget);
                pView != nullptr && pTree != nullptr) {
                return pView->FindWidget(*pTree->GetChildren().front());
            }
        }
        return nullptr;
    }
    /// In the value's cell of a row; Right: pixels from the list's right edge.
    void Click(ClickAt At, int nRow, int nRight = 60, int nDown = PropTree::CPropTree::ROW_HEIGHT / 2) {
        QWidget* const pList = FindList();
        ASSERT_NE(pList, nullptr);
        const QPoint Point(pList->width() - nRight, nRow * PropTree::CPropTree::ROW_HEIGHT + nDown);
        QWidget* const pThere = pList->childAt(Point);
        At(pThere != nullptr ? *pThere : *pList, pThere != nullptr ? pThere->mapFrom(pList, Point) : Point);
        m_Loop.Advance(300);
    }
    void StepUp(ClickAt At, int nRow) {
        Click(At, nRow);
        Click(At, nRow, BUTTON, 6);
    }
    void ChooseSecond(ClickAt At, int nRow) {
        Click(At, nRow);
        QComboBox* pOpen = nullptr;
        for (QComboBox* const pCombo : m_pWindow->findChildren<QComboBox*>()) {
            pOpen = pCombo->isVisible() ? pCombo : pOpen;
        }
        ASSERT_NE(pOpen, nullptr) << nRow;
        if (!pOpen->view()->isVisible()) {
            At(*pOpen, pOpen->rect().center());
            m_Loop.Advance(300);
        }
        ASSERT_TRUE(pOpen->view()->isVisible()) << nRow;
        At(*pOpen->view()->viewport(), pOpen->view()->visualRect(pOpen->model()->index(1, 0)).center());
        m_Loop.Advance(300);
    }
    void EditByClicks(ClickAt At) {
        StepUp(At, eTolerance);
        StepUp(At, eTarget);
        StepUp(At, eTime);
        ChooseSecond(At, eRotation);
        ChooseSecond(At, eMethod);
        StepUp(At, eScrews);
        ChooseSecond(At, eScale);
        Click(At, 0);  // ends the editing
    }

    void ExpectEverythingChanged() {
        PressKey("Pre-balance");  // which saves
        PressKey("End");
        PreBalDB::CPreBalDatabase Database(GetShown().m_Machine);
        PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
        EXPECT_EQ(rEntry.GetRPMTolerance(), 51U);
        EXPECT_EQ(rEntry.GetTargetUnbalance(), 6U);
        EXPECT_EQ(rEntry.GetNumberOfSamples(), 42U);
        const PreBalDB::CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
        EXPECT_EQ(rPlane.GetRotationDirection(), CTypeBase::eCounterClockwise);
        const PreBalDB::CScrewCompensationTableEntry* const pScrews = rPlane.GetScrewCompensationTableEntry();
        ASSERT_NE(pScrews, nullptr);
        EXPECT_EQ(pScrews->GetNumberOfScrews(), 3);
        EXPECT_EQ(pScrews->GetScalingDirection(), CTypeBase::eCounterClockwise);
    }

    static constexpr int BUTTON = 22;  ///< the up-down button beside an open value, from the right
};

}  // namespace

TEST_F(EditingTest, BySoftkeysAlone) {
    OpenLarge();
    for (const char* const pTopic : {"PB_004", "PB_005", "PB_012", "PB_006", "PB_011", "PB_010", "PB_007"}) {
        SelectItem(pTopic);
        PressKey("Value +");
    }
    ExpectEverythingChanged();
}

TEST_F(EditingTest, ByTheKeyboardAlone) {
    OpenLarge();
    const auto Key = [&](Qt::Key Wanted, int nTimes = 1) {
        for (int i = 0; i < nTimes; ++i) {
            ASSERT_NE(QApplication::focusWidget(), nullptr);
            QTest::keyClick(QApplication::focusWidget(), Wanted);
            m_Loop.Advance(300);
        }
    };
    const auto TypeValue = [&](const char* pText) {
        Key(Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), pText);
        m_Loop.Advance(300);
        Key(Qt::Key_Return);
    };
    const auto Second = [&] {
        Key(Qt::Key_Return);
        Key(Qt::Key_Down);
        Key(Qt::Key_Return);
    };
    for (int nTry = 0; nTry < 5 && QApplication::focusWidget() != FindList(); ++nTry) {
        Key(Qt::Key_Tab);
    }
    ASSERT_EQ(QApplication::focusWidget(), FindList());
    for (int nTry = 0; nTry < 20 && GetHelpTopic() != "PB_004.htm"; ++nTry) {
        Key(Qt::Key_Down);
        m_Loop.Advance(400);
    }
    TypeValue("51");
    Key(Qt::Key_Down);
    TypeValue("6");
    Key(Qt::Key_Down);
    TypeValue("2.1");
    Key(Qt::Key_Down);
    Second();
    Key(Qt::Key_Down, eMethod - eRotation);
    Second();
    Key(Qt::Key_Down, eScrews - eMethod);
    TypeValue("3");
    Key(Qt::Key_Down);
    Second();
    ExpectEverythingChanged();
}

TEST_F(EditingTest, ByTheMouseAlone) {
    OpenLarge();
    EditByClicks(ClickByMouse);
    ExpectEverythingChanged();
}

TEST_F(EditingTest, ByTouchAlone) {
    OpenLarge();
    EditByClicks(ClickByFinger);
    ExpectEverythingChanged();
}
