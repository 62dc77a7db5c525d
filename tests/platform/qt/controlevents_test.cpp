// What an operator does, as real events of the toolkit, and what reaches the windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>
#include <memory>

#include "platform/qt/windowview.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/combobox.h"
#include "platform/window/edit.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "platform/window/scrollbar.h"
#include "platform/window/spinbuttonctrl.h"
#include "platform/window/static.h"
#include "platform/window/tabctrl.h"
#include "tests/support/listeningwnd.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A page with a painted child, in a view with a neighbour on each side in the order of the Tab key.
class ControlEventsTest : public testing::Test {
protected:
    ControlEventsTest() {
        m_Page.Create(nullptr, CRect(0, 0, 300, 200), 0);
        m_List.Create(&m_Page, CRect(10, 20, 200, 120), 1);
        m_pBefore = new QLineEdit(&m_Frame);
        m_pView = new CWindowView(m_Page, &m_Frame);
        m_pAfter = new QLineEdit(&m_Frame);
        m_pBefore->setGeometry(0, 0, 300, 20);
        m_pView->setGeometry(0, 20, 300, 200);
        m_pAfter->setGeometry(0, 220, 300, 20);
        m_Frame.resize(300, 240);
    }
    ~ControlEventsTest() override { SetMouseButtons(false, false); }

    void Show() {
        m_Frame.show();
        m_Frame.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_Frame));
        m_Loop.RunPosted();
    }
    template <typename Widget = QWidget>
    Widget* Find(const CWnd& rWnd) {
        return dynamic_cast<Widget*>(m_pView->FindWidget(rWnd));
    }
    void Type(const CWnd& rWnd, const QString& rText) {
        QTest::sendKeyEvent(QTest::Click, Find(rWnd), Qt::Key_unknown, rText, Qt::NoModifier);
    }
    void TurnWheel(QWidget* pWidget, QPoint Place, int nDelta) {
        QWidget* const pTop = pWidget->window();
        const QPoint Point = pWidget->mapTo(pTop, Place);
        QWheelEvent Event(Point, pTop->mapToGlobal(Point), QPoint(), QPoint(0, nDelta), Qt::NoButton,
                          Qt::ShiftModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(pTop->windowHandle(), &Event);
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    CListeningWnd m_List{RGB(0, 0, 255)};
    QWidget m_Frame;
    QLineEdit* m_pBefore = nullptr;
    CWindowView* m_pView = nullptr;
    QLineEdit* m_pAfter = nullptr;
};

TEST_F(ControlEventsTest, AClickReachesTheWindowUnderThePointerInItsOwnCoordinates) {
    Show();
    QTest::mouseClick(Find(m_List), Qt::LeftButton, Qt::ControlModifier, QPoint(5, 7));
    ASSERT_THAT(m_List.Between(WM_LBUTTONDOWN, WM_MBUTTONDBLCLK), ElementsAre(WM_LBUTTONDOWN, WM_LBUTTONUP));
    const CListeningWnd::CHeard Down = m_List.Of(WM_LBUTTONDOWN)[0];
    EXPECT_EQ(GetPointParam(Down.m_lParam), CPoint(5, 7));
    EXPECT_EQ(Down.m_wParam, MK_LBUTTON | MK_CONTROL);
    EXPECT_EQ(m_List.Of(WM_LBUTTONUP)[0].m_wParam, MK_CONTROL);
    EXPECT_THAT(m_Page.Between(WM_MOUSEMOVE, WM_MOUSEWHEEL), IsEmpty()) << "not its parent";
    QTest::mouseClick(m_pView, Qt::RightButton, Qt::NoModifier, QPoint(250, 150));
    EXPECT_THAT(m_Page.Between(WM_LBUTTONDOWN, WM_MBUTTONDBLCLK), ElementsAre(WM_RBUTTONDOWN, WM_RBUTTONUP));
}

TEST_F(ControlEventsTest, ADoubleClickIsDownUpDoubleUp) {
    Show();
    // As the screen tells them: which click is a double one the toolkit finds out itself.
    const QPoint Place = m_pView->mapTo(&m_Frame, QPoint(15, 25));
    QTest::mouseDClick(m_Frame.windowHandle(), Qt::LeftButton, Qt::NoModifier, Place);
    EXPECT_THAT(m_List.Between(WM_LBUTTONDOWN, WM_LBUTTONDBLCLK),
                ElementsAre(WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP));
}

TEST_F(ControlEventsTest, MovesComeWithoutAButtonAndLeavingIsTold) {
    Show();
    for (const QPoint Place : {QPoint(50, 50), QPoint(52, 50), QPoint(290, 190)}) {
        QTest::mouseMove(m_Frame.windowHandle(), m_pView->mapTo(&m_Frame, Place));
    }
    QTest::qWait(0);
    ASSERT_FALSE(m_List.Of(WM_MOUSEMOVE).empty());
    EXPECT_EQ(GetPointParam(m_List.Of(WM_MOUSEMOVE).back().m_lParam), CPoint(42, 30));
    EXPECT_EQ(m_List.Of(WM_MOUSELEAVE).size(), 1u);
    EXPECT_EQ(GetPointParam(m_Page.Of(WM_MOUSEMOVE).back().m_lParam), CPoint(290, 190));
}

TEST_F(ControlEventsTest, AFingerIsTheLeftButton) {
    Show();
    const std::unique_ptr<QPointingDevice> pScreen(QTest::createTouchDevice());
    QWidget* const pList = Find(m_List);
    QTest::touchEvent(pList, pScreen.get()).press(0, QPoint(8, 9), pList);
    QTest::touchEvent(pList, pScreen.get()).release(0, QPoint(8, 9), pList);
    ASSERT_THAT(m_List.Between(WM_LBUTTONDOWN, WM_LBUTTONDBLCLK), ElementsAre(WM_LBUTTONDOWN, WM_LBUTTONUP));
    EXPECT_EQ(GetPointParam(m_List.Of(WM_LBUTTONDOWN)[0].m_lParam), CPoint(8, 9));
}

TEST_F(ControlEventsTest, TheCaptureGetsTheMouseWhereverItIs) {
    Show();
    m_List.OnMessage = [this](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_LBUTTONDOWN) {
            m_List.SetCapture();
        } else if (Message == WM_LBUTTONUP) {
            CWnd::ReleaseCapture();
        }
        return 0;
    };
    QTest::mousePress(Find(m_List), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    m_List.m_Heard.clear();
    QTest::mouseMove(m_pView, QPoint(2, 190));
    ASSERT_FALSE(m_List.Of(WM_MOUSEMOVE).empty());
    EXPECT_EQ(GetPointParam(m_List.Of(WM_MOUSEMOVE).back().m_lParam), CPoint(-8, 170));
    EXPECT_THAT(m_Page.Of(WM_MOUSEMOVE), IsEmpty());
    QTest::mouseRelease(m_pView, Qt::LeftButton, Qt::NoModifier, QPoint(2, 190));
    EXPECT_EQ(m_List.Of(WM_LBUTTONUP).size(), 1u);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(ControlEventsTest, LeavingTheProgramEndsTheCapture) {
    Show();
    m_List.SetCapture();
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_EQ(m_List.Of(WM_CAPTURECHANGED).size(), 1u);
}

TEST_F(ControlEventsTest, ADisabledWindowGetsNoMouse) {
    Show();
    m_List.EnableWindow(false);
    QTest::mouseClick(Find(m_List), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_THAT(m_List.Between(WM_MOUSEMOVE, WM_MOUSEWHEEL), IsEmpty());
}

TEST_F(ControlEventsTest, AWheelThatIsNotUsedGoesOnToTheParent) {
    Show();
    m_Page.OnMessage = [](UINT Message, WPARAM, LPARAM) -> LRESULT {
        return Message == WM_MOUSEWHEEL ? 1 : 0;
    };
    TurnWheel(Find(m_List), QPoint(5, 5), -120);
    ASSERT_EQ(m_List.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GetWheelParam(m_List.Of(WM_MOUSEWHEEL)[0].m_wParam), -120);
    EXPECT_EQ(m_List.Of(WM_MOUSEWHEEL)[0].m_wParam & 0xFFFFU, MK_SHIFT);
    ASSERT_EQ(m_Page.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GetPointParam(m_Page.Of(WM_MOUSEWHEEL)[0].m_lParam), CPoint(15, 25));
    m_List.OnMessage = m_Page.OnMessage;
    TurnWheel(Find(m_List), QPoint(5, 5), 120);
    EXPECT_EQ(m_Page.Of(WM_MOUSEWHEEL).size(), 1u) << "used this time";
}

TEST_F(ControlEventsTest, KeysGoToTheFocusAndOnToItsParentsWhenNotUsed) {
    Show();
    m_List.SetFocus();
    EXPECT_TRUE(Find(m_List)->hasFocus());
    m_List.OnMessage = [](UINT Message, WPARAM wParam, LPARAM) -> LRESULT {
        return Message == WM_KEYDOWN && wParam == VK_DOWN ? 1 : 0;
    };
    QTest::keyClick(Find(m_List), Qt::Key_Down);
    QTest::keyClick(Find(m_List), Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_TRUE(IsShiftDown());
    QTest::keyClick(Find(m_List), Qt::Key_F2);
    EXPECT_FALSE(IsShiftDown());
    std::vector<WPARAM> Keys;
    for (const auto& rHeard : m_List.Of(WM_KEYDOWN)) {
        Keys.push_back(rHeard.m_wParam);
    }
    EXPECT_THAT(Keys, ElementsAre(VK_DOWN, VK_SHIFT, VK_PRIOR, VK_F2));
    EXPECT_EQ(m_List.Of(WM_KEYUP).size(), 4u);
    EXPECT_EQ(m_Page.Of(WM_KEYDOWN).size(), 3u) << "without the one that was used";
}

TEST_F(ControlEventsTest, CharactersFollowTheirKeyUnlessItWasUsed) {
    Show();
    m_List.SetFocus();
    QTest::keyClick(Find(m_List), 'A', Qt::ShiftModifier);
    ASSERT_THAT(m_List.Between(WM_KEYDOWN, WM_CHAR),
                ElementsAre(WM_KEYDOWN, WM_KEYDOWN, WM_CHAR, WM_KEYUP, WM_KEYUP));
    EXPECT_EQ(m_List.Of(WM_KEYDOWN)[1].m_wParam, WPARAM{'A'});
    EXPECT_EQ(m_List.Of(WM_CHAR)[0].m_wParam, WPARAM{'A'});
    Type(m_List, QString::fromUtf8("µ"));
    EXPECT_EQ(m_List.Of(WM_CHAR).back().m_wParam, WPARAM{0xB5}) << "a key without a number";
    QTest::keyClick(Find(m_List), Qt::Key_Return);
    QTest::keyClick(Find(m_List), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(m_List.Of(WM_CHAR).size(), 2u);
    m_List.OnMessage = [](UINT Message, WPARAM, LPARAM) -> LRESULT { return Message == WM_KEYDOWN ? 1 : 0; };
    QTest::keyClick(Find(m_List), Qt::Key_B);
    EXPECT_EQ(m_List.Of(WM_CHAR).size(), 2u);
}

TEST_F(ControlEventsTest, AKeyThatRepeatsGoesDownAgainAndUpOnce) {
    Show();
    m_List.SetFocus();
    const auto Send = [this](QEvent::Type Type, bool bRepeat) {
        QKeyEvent Event(Type, Qt::Key_Up, Qt::NoModifier, QString(), bRepeat);
        QApplication::sendEvent(Find(m_List), &Event);
    };
    Send(QEvent::KeyPress, false);
    Send(QEvent::KeyRelease, true);
    Send(QEvent::KeyPress, true);
    Send(QEvent::KeyRelease, false);
    EXPECT_THAT(m_List.Between(WM_KEYDOWN, WM_KEYUP), ElementsAre(WM_KEYDOWN, WM_KEYDOWN, WM_KEYUP));
    EXPECT_EQ(m_List.Of(WM_KEYDOWN)[0].m_lParam & KF_REPEAT, 0);
    EXPECT_NE(m_List.Of(WM_KEYDOWN)[1].m_lParam & KF_REPEAT, 0);
}

TEST_F(ControlEventsTest, AWindowMayBeDestroyedByItsKeyOrClick) {
    Show();
    auto pDoomed = std::make_unique<CListeningWnd>();
    for (const UINT Deadly : {WM_KEYDOWN, WM_CHAR, WM_LBUTTONDOWN}) {
        pDoomed = std::make_unique<CListeningWnd>();
        pDoomed->Create(&m_Page, CRect(0, 0, 20, 20), 9);
        pDoomed->OnMessage = [&pDoomed, Deadly](UINT Message, WPARAM, LPARAM) -> LRESULT {
            if (Message == Deadly) {
                const auto pKept = std::move(pDoomed->OnMessage);  // this very function
                pDoomed.reset();
            }
            return 0;
        };
        pDoomed->SetFocus();
        QWidget* const pWidget = Find(*pDoomed);
        QTest::keyClick(pWidget, Qt::Key_A);
        if (pDoomed != nullptr) {
            QTest::mouseClick(pWidget, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        }
        EXPECT_EQ(pDoomed, nullptr) << Deadly;
        EXPECT_EQ(CWnd::GetFocus(), nullptr);
    }
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(ControlEventsTest, TheToolkitsFocusAndOursAreOne) {
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

TEST_F(ControlEventsTest, FocusGoesWithTheProgramsActivationAndComesBack) {
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

TEST_F(ControlEventsTest, HidingTheFocusHandsItToTheParentAndToNoNeighbour) {
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

TEST_F(ControlEventsTest, TheTabKeyGoesThroughTheTabStopsAndOut) {
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

TEST_F(ControlEventsTest, AWindowMayUseTheTabKeyItself) {
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

TEST_F(ControlEventsTest, APageWithoutTabStopsIsPassedBy) {
    Show();
    m_pBefore->setFocus();
    QTest::keyClick(m_pBefore, Qt::Key_Tab);
    EXPECT_TRUE(m_pAfter->hasFocus());
    EXPECT_THAT(m_Page.Of(WM_SETFOCUS), IsEmpty());
}

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

TEST_F(ControlEventsTest, EachWindowHasItsPointer) {
    Show();
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::ArrowCursor);
    m_List.SetCursor(Cursor::eSplitColumns);
    m_Page.SetCursor(Cursor::eWait);
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::SplitHCursor);
    EXPECT_EQ(m_pView->cursor().shape(), Qt::WaitCursor);
    m_List.SetCursor(Cursor::eArrow);
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::ArrowCursor) << "not its parent's";
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

TEST_F(ControlEventsTest, TheMouseGoesThroughAStaticText) {
    CStatic Text;
    Text.Create(&m_List, CRect(0, 0, 50, 20), 9);
    Show();
    QTest::mouseClick(m_Frame.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(15, 45));
    EXPECT_EQ(m_List.Of(WM_LBUTTONDOWN).size(), 1u);
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
