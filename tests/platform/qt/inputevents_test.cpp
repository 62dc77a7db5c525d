// Mouse, touch, wheel and keys of an operator, as real events of the toolkit, and what reaches the windows.
#include <memory>

#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "platform/window/static.h"
#include "tests/platform/qt/controlevents.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InputEventsTest : public ControlEventsTest {};

TEST_F(InputEventsTest, AClickReachesTheWindowUnderThePointerInItsOwnCoordinates) {
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

TEST_F(InputEventsTest, ADoubleClickIsDownUpDoubleUp) {
    Show();
    // As the screen tells them: which click is a double one the toolkit finds out itself.
    const QPoint Place = m_pView->mapTo(&m_Frame, QPoint(15, 25));
    QTest::mouseDClick(m_Frame.windowHandle(), Qt::LeftButton, Qt::NoModifier, Place);
    EXPECT_THAT(m_List.Between(WM_LBUTTONDOWN, WM_LBUTTONDBLCLK),
                ElementsAre(WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP));
}

TEST_F(InputEventsTest, MovesComeWithoutAButtonAndLeavingIsTold) {
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

TEST_F(InputEventsTest, AFingerIsTheLeftButton) {
    Show();
    const std::unique_ptr<QPointingDevice> pScreen(QTest::createTouchDevice());
    QWidget* const pList = Find(m_List);
    QTest::touchEvent(pList, pScreen.get()).press(0, QPoint(8, 9), pList);
    QTest::touchEvent(pList, pScreen.get()).release(0, QPoint(8, 9), pList);
    ASSERT_THAT(m_List.Between(WM_LBUTTONDOWN, WM_LBUTTONDBLCLK), ElementsAre(WM_LBUTTONDOWN, WM_LBUTTONUP));
    EXPECT_EQ(GetPointParam(m_List.Of(WM_LBUTTONDOWN)[0].m_lParam), CPoint(8, 9));
}

TEST_F(InputEventsTest, TheCaptureGetsTheMouseWhereverItIs) {
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

TEST_F(InputEventsTest, LeavingTheProgramEndsTheCapture) {
    Show();
    m_List.SetCapture();
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_EQ(m_List.Of(WM_CAPTURECHANGED).size(), 1u);
}

TEST_F(InputEventsTest, ADisabledWindowGetsNoMouse) {
    Show();
    m_List.EnableWindow(false);
    QTest::mouseClick(Find(m_List), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_THAT(m_List.Between(WM_MOUSEMOVE, WM_MOUSEWHEEL), IsEmpty());
}

TEST_F(InputEventsTest, AWheelThatIsNotUsedGoesOnToTheParent) {
    Show();
    m_Page.OnMessage = [](UINT Message, WPARAM, LPARAM) -> LRESULT {
        return Message == WM_MOUSEWHEEL ? 1 : 0;
    };
    TurnWheel(Find(m_List), QPoint(5, 5), -120, Qt::ShiftModifier);
    ASSERT_EQ(m_List.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GetWheelParam(m_List.Of(WM_MOUSEWHEEL)[0].m_wParam), -120);
    EXPECT_EQ(m_List.Of(WM_MOUSEWHEEL)[0].m_wParam & 0xFFFFU, MK_SHIFT);
    ASSERT_EQ(m_Page.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GetPointParam(m_Page.Of(WM_MOUSEWHEEL)[0].m_lParam), CPoint(15, 25));
    m_List.OnMessage = m_Page.OnMessage;
    TurnWheel(Find(m_List), QPoint(5, 5), 120);
    EXPECT_EQ(m_Page.Of(WM_MOUSEWHEEL).size(), 1u) << "used this time";
}

TEST_F(InputEventsTest, KeysGoToTheFocusAndOnToItsParentsWhenNotUsed) {
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

TEST_F(InputEventsTest, CharactersFollowTheirKeyUnlessItWasUsed) {
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

TEST_F(InputEventsTest, AKeyThatRepeatsGoesDownAgainAndUpOnce) {
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

TEST_F(InputEventsTest, AWindowMayBeDestroyedByItsKeyOrClick) {
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
TEST_F(InputEventsTest, EachWindowHasItsPointer) {
    Show();
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::ArrowCursor);
    m_List.SetCursor(Cursor::eSplitColumns);
    m_Page.SetCursor(Cursor::eWait);
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::SplitHCursor);
    EXPECT_EQ(m_pView->cursor().shape(), Qt::WaitCursor);
    m_List.SetCursor(Cursor::eArrow);
    EXPECT_EQ(Find(m_List)->cursor().shape(), Qt::ArrowCursor) << "not its parent's";
}

TEST_F(InputEventsTest, TheMouseGoesThroughAStaticText) {
    CStatic Text;
    Text.Create(&m_List, CRect(0, 0, 50, 20), 9);
    Show();
    QTest::mouseClick(m_Frame.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(15, 45));
    EXPECT_EQ(m_List.Of(WM_LBUTTONDOWN).size(), 1u);
}

}  // namespace
