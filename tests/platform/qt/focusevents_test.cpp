// Where the focus goes by real events of the toolkit, and who is told.
#include "platform/window/edit.h"
#include "platform/window/keys.h"
#include "tests/platform/qt/controlevents.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FocusEventsTest : public ControlEventsTest {};

TEST_F(FocusEventsTest, TheToolkitsFocusAndOursAreOne) {
    CEdit Edit;
    Edit.Create(&m_Page, CRect(10, 130, 100, 150), 2);
    Show();
    m_List.SetFocus();
    EXPECT_EQ(QApplication::focusWidget(), Find(m_List));
    QTest::mouseClick(Find(Edit), Qt::LeftButton);
    EXPECT_EQ(CWnd::GetFocus(), &Edit);
    EXPECT_EQ(m_List.Of(WM_KILLFOCUS).size(), 1u);
    EXPECT_THAT(m_Page.m_Codes, ElementsAre(EN_SETFOCUS));
    QTest::mouseClick(m_pAfter, Qt::LeftButton);
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_THAT(m_Page.m_Codes, ElementsAre(EN_SETFOCUS, EN_KILLFOCUS));
}

TEST_F(FocusEventsTest, FocusGoesWithTheProgramsActivationAndComesBack) {
    Show();
    m_List.SetFocus();
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_EQ(m_List.Of(WM_KILLFOCUS).size(), 1u);
    m_Frame.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_Frame));
    EXPECT_EQ(CWnd::GetFocus(), &m_List);
    EXPECT_EQ(m_List.Of(WM_SETFOCUS).size(), 2u);
}

TEST_F(FocusEventsTest, HidingTheFocusHandsItToTheParentAndToNoNeighbour) {
    CEdit Edit;
    CEdit Neighbour;
    Edit.Create(&m_List, CRect(0, 0, 50, 20), 2);
    Neighbour.Create(&m_List, CRect(0, 20, 50, 40), 3);
    Show();
    Edit.SetFocus();
    Edit.ShowWindow(false);
    EXPECT_EQ(CWnd::GetFocus(), &m_List);
    EXPECT_EQ(QApplication::focusWidget(), Find(m_List));
    EXPECT_THAT(m_List.m_Codes, ElementsAre(EN_SETFOCUS, EN_KILLFOCUS)) << "nothing of the neighbour";
    Neighbour.SetFocus();
    Neighbour.DestroyWindow();
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
}

TEST_F(FocusEventsTest, TheTabKeyGoesThroughTheTabStopsAndOut) {
    CEdit Second;
    CEdit First;
    First.Create(&m_List, CRect(0, 0, 50, 20), 2);
    Second.Create(&m_Page, CRect(10, 130, 100, 150), 3);
    m_List.ModifyStyle(0, WS_TABSTOP);
    Show();
    m_pBefore->setFocus();
    const std::vector<CWnd*> Stops{&m_List, &First, &Second};
    for (CWnd* pStop : Stops) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(CWnd::GetFocus(), pStop);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_TRUE(m_pAfter->hasFocus());
    for (auto Stop = Stops.rbegin(); Stop != Stops.rend(); ++Stop) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        EXPECT_EQ(CWnd::GetFocus(), *Stop);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_TRUE(m_pBefore->hasFocus());
}

TEST_F(FocusEventsTest, AWindowMayUseTheTabKeyItself) {
    CEdit Edit;
    Edit.Create(&m_Page, CRect(10, 130, 100, 150), 3);
    Show();
    m_List.SetFocus();
    m_List.OnMessage = [](UINT Message, WPARAM wParam, LPARAM) -> LRESULT {
        return Message == WM_KEYDOWN && wParam == VK_TAB ? 1 : 0;
    };
    QTest::keyClick(Find(m_List), Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), &m_List);
}

TEST_F(FocusEventsTest, APageWithoutTabStopsIsPassedBy) {
    Show();
    m_pBefore->setFocus();
    QTest::keyClick(m_pBefore, Qt::Key_Tab);
    EXPECT_TRUE(m_pAfter->hasFocus());
    EXPECT_THAT(m_Page.Of(WM_SETFOCUS), IsEmpty());
}

}  // namespace
