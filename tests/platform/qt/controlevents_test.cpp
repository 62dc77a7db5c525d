// Combo boxes, scroll bars, spin buttons and tabs under real events of the toolkit.
#include <QComboBox>
#include <QScrollBar>
#include <QTabBar>

#include "platform/window/combobox.h"
#include "platform/window/edit.h"
#include "platform/window/messageparams.h"
#include "platform/window/scrollbar.h"
#include "platform/window/spinbuttonctrl.h"
#include "platform/window/tabctrl.h"
#include "tests/platform/qt/controlevents.h"

namespace {

using testing::ElementsAre;

class ComboEventsTest : public ControlEventsTest {
protected:
    ComboEventsTest() {
        m_Combo.Create(&m_List, CRect(10, 10, 110, 35), 6);
        for (const char* pText : {"clockwise", "counter", "none"}) {
            m_Combo.AddString(pText);
        }
        m_Combo.SetCurSel(0);
    }
    QComboBox* GetWidget() { return Find<QComboBox>(m_Combo); }

    CComboBox m_Combo;
};

TEST_F(ComboEventsTest, ArrowsAndFirstLettersChoose) {
    Show();
    m_Combo.SetFocus();
    QTest::keyClick(GetWidget(), Qt::Key_Down);
    EXPECT_EQ(m_Combo.GetCurSel(), 1);
    QTest::keyClick(GetWidget(), Qt::Key_N);
    EXPECT_EQ(m_Combo.GetCurSel(), 2);
    EXPECT_THAT(m_List.m_Codes, ElementsAre(CBN_SETFOCUS, CBN_SELCHANGE, CBN_SELCHANGE));
    m_Combo.SetCurSel(0);
    EXPECT_EQ(GetWidget()->currentIndex(), 0);
    EXPECT_EQ(m_List.m_Codes.size(), 3u) << "the program's choice isn't told";
}

TEST_F(ComboEventsTest, ARefusedChoiceShowsTheFormerOne) {
    Show();
    m_Combo.SetFocus();
    m_List.OnNotification = [](CWndNotification&) -> LRESULT { return 1; };
    QTest::keyClick(GetWidget(), Qt::Key_Down);
    EXPECT_EQ(m_Combo.GetCurSel(), 0);
    EXPECT_EQ(GetWidget()->currentIndex(), 0);
}

TEST_F(ComboEventsTest, TheWheelScrollsThePageAndChoosesNothing) {
    Show();
    m_Combo.SetFocus();
    TurnWheel(GetWidget(), QPoint(5, 5), -120);
    EXPECT_EQ(m_Combo.GetCurSel(), 0);
    EXPECT_EQ(m_List.Of(WM_MOUSEWHEEL).size(), 1u);
}

TEST_F(ComboEventsTest, TheListOpensAndAChoiceInItIsTold) {
    Show();
    m_Combo.SetFocus();
    m_List.m_Codes.clear();
    m_Combo.ShowDropDown(true);
    EXPECT_TRUE(m_Combo.GetDroppedState());
    QWidget* const pPopup = QApplication::activePopupWidget();
    ASSERT_NE(pPopup, nullptr);
    EXPECT_EQ(CWnd::GetFocus(), &m_Combo) << "the open list is a part of the box";
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : pPopup,
                    Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : pPopup,
                    Qt::Key_Return);
    EXPECT_FALSE(m_Combo.GetDroppedState());
    EXPECT_EQ(m_Combo.GetCurSel(), 1);
    EXPECT_THAT(m_List.m_Codes, ElementsAre(CBN_DROPDOWN, CBN_CLOSEUP, CBN_SELCHANGE));
    EXPECT_EQ(CWnd::GetFocus(), &m_Combo);
}
TEST_F(ControlEventsTest, AScrollBarTellsWhatWasDoneAndShowsWhatTheParentDecides) {
    CScrollBar Bar;
    Bar.Create(&m_List, CRect(170, 0, 190, 100), 8);
    Bar.SetScrollRange(0, 1000, 100);
    Show();
    auto* const pBar = Find<QScrollBar>(Bar);
    m_List.OnMessage = [&](UINT Message, WPARAM wParam, LPARAM) -> LRESULT {
        if (Message == WM_VSCROLL && GetScrollCode(wParam) == SB_LINEDOWN) {
            Bar.SetScrollPos(Bar.GetScrollPos() + 20);
        }
        return 0;
    };
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 97));
    EXPECT_EQ(Bar.GetScrollPos(), 20) << "the arrow at the bottom";
    EXPECT_EQ(pBar->value(), 20);
    m_List.m_Heard.clear();
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 70));
    ASSERT_FALSE(m_List.Of(WM_VSCROLL).empty());
    EXPECT_EQ(GetScrollCode(m_List.Of(WM_VSCROLL)[0].m_wParam), SB_PAGEDOWN);
    EXPECT_EQ(Bar.GetScrollPos(), 20) << "the parent left it alone";
    EXPECT_EQ(pBar->value(), 20);
    Bar.SetScrollRange(0, 50, 100);
    EXPECT_FALSE(pBar->isEnabled());
}

TEST_F(ControlEventsTest, AScrollBarsThumbCanBeDragged) {
    CScrollBar Bar;
    Bar.Create(&m_List, CRect(170, 0, 190, 100), 8);
    Bar.SetScrollRange(0, 1000, 100);
    Show();
    auto* const pBar = Find<QScrollBar>(Bar);
    m_List.OnMessage = [&](UINT Message, WPARAM wParam, LPARAM) -> LRESULT {
        if (Message == WM_VSCROLL) {
            Bar.SetScrollPos(GetScrollPosition(wParam));
        }
        return 0;
    };
    QTest::mousePress(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 25));
    QTest::mouseMove(pBar, QPoint(10, 45));
    QTest::mouseRelease(pBar, Qt::LeftButton, Qt::NoModifier, QPoint(10, 45));
    EXPECT_GT(Bar.GetScrollPos(), 200);
    EXPECT_LT(Bar.GetScrollPos(), 900);
    EXPECT_EQ(GetScrollCode(m_List.Of(WM_VSCROLL).back().m_wParam), SB_THUMBPOSITION);
}

TEST_F(ControlEventsTest, SpinButtonsAreHeldWithTheMouse) {
    CSpinButtonCtrl Spin;
    Spin.Create(&m_List, CRect(100, 10, 115, 30), 7);
    Show();
    QTest::mousePress(Find(Spin), Qt::LeftButton, Qt::NoModifier, QPoint(7, 3));
    m_Loop.Advance(500);
    EXPECT_EQ(Spin.GetPos(), 3);
    QTest::mouseRelease(Find(Spin), Qt::LeftButton, Qt::NoModifier, QPoint(7, 3));
    m_Loop.Advance(500);
    EXPECT_EQ(Spin.GetPos(), 3);
}
TEST_F(ControlEventsTest, ScreenReadersFindTheNames) {
    CEdit Edit;
    Edit.SetAccessibleName("RPM tolerance");
    Edit.Create(&m_Page, CRect(10, 130, 100, 150), 2);
    m_List.SetWindowText("Parameters");
    Show();
    EXPECT_EQ(Find(Edit)->accessibleName(), "RPM tolerance");
    EXPECT_EQ(Find(m_List)->accessibleName(), "Parameters");
}
class CTabs : public CTabCtrl {
public:
    int m_nSelected = 0;

protected:
    void OnSelectedByOperator() override { ++m_nSelected; }
};

TEST_F(ControlEventsTest, TabsAnswerClicksUnlessTheParentRefuses) {
    CTabs Tabs;
    Tabs.Create(&m_List, CRect(0, 0, 190, 100), 4);
    Tabs.InsertItem(0, "Settings");
    Tabs.InsertItem(1, "Screws & masses");
    Show();
    ASSERT_EQ(Tabs.GetChildren().size(), 1u);
    auto* const pBar = Find<QTabBar>(*Tabs.GetChildren().front());
    ASSERT_NE(pBar, nullptr);
    EXPECT_EQ(pBar->count(), 2);
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, pBar->tabRect(1).center());
    EXPECT_EQ(Tabs.GetCurSel(), 1);
    EXPECT_EQ(Tabs.m_nSelected, 1);
    EXPECT_THAT(m_List.m_Codes, ElementsAre(TCN_SELCHANGING, TCN_SELCHANGE));
    m_List.OnNotification = [](CWndNotification&) -> LRESULT { return 1; };
    QTest::mouseClick(pBar, Qt::LeftButton, Qt::NoModifier, pBar->tabRect(0).center());
    EXPECT_EQ(Tabs.GetCurSel(), 1);
    EXPECT_EQ(pBar->currentIndex(), 1);
    TurnWheel(pBar, QPoint(5, 5), 120);
    EXPECT_EQ(Tabs.GetCurSel(), 1);
    Tabs.SetCurSel(0);
    EXPECT_EQ(pBar->currentIndex(), 0);
    EXPECT_EQ(m_List.m_Codes.size(), 3u) << "the program's selection isn't told";
    Tabs.DeleteItem(1);
    EXPECT_EQ(pBar->count(), 1);
}

}  // namespace
