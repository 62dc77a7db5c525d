// An edit box under real events of the toolkit.
#include <QClipboard>

#include "platform/window/edit.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "tests/platform/qt/controlevents.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EditEventsTest : public ControlEventsTest {
protected:
    EditEventsTest() { m_Edit.Create(&m_List, CRect(10, 10, 110, 35), 5); }
    void Begin(const std::string& rText) {
        m_Edit.SetWindowText(rText);
        Show();
        m_Edit.SetFocus();
        m_List.m_Codes.clear();
    }
    QLineEdit* GetWidget() { return Find<QLineEdit>(m_Edit); }

    CEdit m_Edit;
};

TEST_F(EditEventsTest, TypingReplacesTheSelectionAndIsTold) {
    Begin("10.0");
    m_Edit.SelectAll();
    QTest::keyClicks(GetWidget(), "25");
    EXPECT_EQ(m_Edit.GetWindowText(), "25");
    EXPECT_THAT(m_List.m_Codes, ElementsAre(EN_CHANGE, EN_CHANGE));
    EXPECT_EQ(m_Edit.GetCaret(), 2);
    QTest::keyClick(GetWidget(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(m_Edit.GetAnchor(), 2);
    EXPECT_EQ(m_Edit.GetCaret(), 1);
    m_Edit.SetWindowText("7");
    EXPECT_EQ(GetWidget()->text(), "7");
    EXPECT_EQ(m_List.m_Codes.size(), 2u) << "the program's text isn't told";
}

TEST_F(EditEventsTest, TheWheelGoesOnToWhatIsBeneath) {
    Begin("12");
    TurnWheel(GetWidget(), QPoint(5, 5), -120);
    ASSERT_EQ(m_List.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GetPointParam(m_List.Of(WM_MOUSEWHEEL)[0].m_lParam), CPoint(15, 15));
    EXPECT_EQ(m_Edit.GetWindowText(), "12");
}

TEST_F(EditEventsTest, CharactersOutsideTheBasicPlaneCountAsOne) {
    Begin("");
    Type(m_Edit, QString::fromUtf8("a😀b"));
    EXPECT_EQ(m_Edit.GetWindowText(), "a😀b");
    EXPECT_EQ(m_Edit.GetCaret(), 3);
    m_Edit.SetSel(1, 2);
    EXPECT_EQ(GetWidget()->selectedText().toStdString(), "😀");
}

TEST_F(EditEventsTest, ARefusedChangeNeverShows) {
    Begin("12");
    m_Edit.SelectAll();
    m_List.OnNotification = [this](CWndNotification&) -> LRESULT {
        return m_Edit.GetWindowText().find('x') != std::string::npos ? 1 : 0;
    };
    QTest::keyClick(GetWidget(), Qt::Key_X);
    EXPECT_EQ(m_Edit.GetWindowText(), "12");
    EXPECT_EQ(GetWidget()->text(), "12");
    EXPECT_EQ(GetWidget()->selectedText(), "12");
    QTest::keyClick(GetWidget(), Qt::Key_3);
    EXPECT_EQ(GetWidget()->text(), "3");
}

TEST_F(EditEventsTest, WhatAHandlerWritesInsteadStands) {
    Begin("");
    m_List.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
        if (rNotification.m_Code == EN_CHANGE && m_Edit.GetWindowText() == "1,") {
            m_Edit.SetWindowText("1.");
            m_Edit.SetSel(-1, 2);
        }
        return 0;
    };
    QTest::keyClicks(GetWidget(), "1,5");
    EXPECT_EQ(m_Edit.GetWindowText(), "1.5");
    EXPECT_EQ(GetWidget()->text(), "1.5");
}

TEST_F(EditEventsTest, UpperCaseIsMadeOfKeysAndPastedText) {
    Begin("");
    m_Edit.SetUpperCase(true);
    QTest::keyClicks(GetWidget(), "1af");
    EXPECT_EQ(m_Edit.GetWindowText(), "1AF");
    EXPECT_EQ(GetWidget()->text(), "1AF");
    QTest::keyClick(GetWidget(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_Edit.GetWindowText(), "") << "undo still knows what was typed";
    QApplication::clipboard()->setText("beef");
    QTest::keyClick(GetWidget(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(m_Edit.GetWindowText(), "BEEF");
    EXPECT_EQ(GetWidget()->text(), "BEEF");
}

TEST_F(EditEventsTest, ClipboardAndUndoAreTheToolkits) {
    Begin("12.5");
    m_Edit.SelectAll();
    QTest::keyClick(GetWidget(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "12.5");
    EXPECT_EQ(m_Edit.GetWindowText(), "");
    QTest::keyClick(GetWidget(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_Edit.GetWindowText(), "12.5");
    EXPECT_THAT(m_List.m_Codes, ElementsAre(EN_CHANGE, EN_CHANGE)) << "undo is a change, too";
}

TEST_F(EditEventsTest, AReadOnlyBoxCanBeCopiedFromAndNotChanged) {
    Begin("12");
    m_Edit.SetReadOnly(true);
    m_Edit.SelectAll();
    QTest::keyClicks(GetWidget(), "9");
    EXPECT_EQ(m_Edit.GetWindowText(), "12");
    EXPECT_THAT(m_List.m_Codes, IsEmpty());
    QTest::keyClick(GetWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "12");
}

TEST_F(EditEventsTest, TheLimitHoldsForTheOperatorOnly) {
    Begin("12345");
    m_Edit.LimitText(3);
    EXPECT_EQ(GetWidget()->text(), "12345");
    m_Edit.SelectAll();
    QTest::keyClicks(GetWidget(), "6789");
    EXPECT_EQ(m_Edit.GetWindowText().substr(0, 3), "678");
    m_Edit.SetWindowText("");
    QTest::keyClicks(GetWidget(), "6789");
    EXPECT_EQ(m_Edit.GetWindowText(), "678");
}

TEST_F(EditEventsTest, TheSelectionStaysWhenTheFocusGoes) {
    Begin("12.5");
    m_Edit.SetSel(1, 3);
    m_Page.SetFocus();
    EXPECT_FALSE(GetWidget()->hasFocus());
    EXPECT_EQ(GetWidget()->selectedText(), "2.");
    EXPECT_EQ(m_Edit.GetAnchor(), 1);
    EXPECT_EQ(m_Edit.GetCaret(), 3);
}

TEST_F(EditEventsTest, AKeyThatTheBoxItselfUsesNeverReachesTheBox) {
    class CCommittingEdit : public CEdit {
    public:
        int m_nEnters = 0;

    protected:
        LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
            if (Message == WM_KEYUP && wParam == VK_RETURN) {
                ++m_nEnters;
                return 1;
            }
            if ((Message == WM_KEYDOWN && wParam == VK_DOWN) || (Message == WM_CHAR && wParam == 'q')) {
                return 1;
            }
            return CEdit::WindowProc(Message, wParam, lParam);
        }
    };
    CCommittingEdit Edit;
    Edit.Create(&m_List, CRect(10, 40, 110, 65), 6);
    Show();
    Edit.SetFocus();
    QTest::keyClicks(Find(Edit), "1q2");
    EXPECT_EQ(Edit.GetWindowText(), "12");
    QTest::keyClick(Find(Edit), Qt::Key_Return);
    EXPECT_EQ(Edit.m_nEnters, 1);
    QTest::keyClick(Find(Edit), Qt::Key_Down);
    QTest::keyClick(Find(Edit), Qt::Key_Home);
    EXPECT_THAT(m_List.Of(WM_KEYDOWN).size(), 1u)
        << "Enter alone: the box uses neither; Down was used before";
}

TEST_F(EditEventsTest, AMenuOverTheBoxDoesNotTakeTheFocusAway) {
    Begin("1");
    QContextMenuEvent Event(QContextMenuEvent::Mouse, QPoint(5, 5), GetWidget()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(GetWidget(), &Event);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(CWnd::GetFocus(), &m_Edit);
    EXPECT_THAT(m_List.m_Codes, IsEmpty()) << "an edit that commits when it loses the focus goes on";
    QApplication::activePopupWidget()->close();
    EXPECT_EQ(CWnd::GetFocus(), &m_Edit);
    EXPECT_THAT(m_List.m_Codes, IsEmpty());
}

}  // namespace
