#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include "platform/qt/windowview.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/input.h"

/// A page on the screen, with a neighbour on each side in the order of the Tab key: what happens to it are
/// real events of the toolkit. Fixtures take it as a base behind the one that owns the page.
class CShownPage {
public:
    CShownPage(const CShownPage&) = delete;
    CShownPage& operator=(const CShownPage&) = delete;

protected:
    static constexpr int NEIGHBOUR_HEIGHT = 20;

    CShownPage(CVirtualEventLoop& rLoop, CWnd& rPage) : m_rLoop(rLoop) {
        QApplication::setCursorFlashTime(0);
        const CSize Size = rPage.GetRect().Size();
        m_pBefore = new QLineEdit(&m_Frame);
        m_pView = new CWindowView(rPage, &m_Frame);
        m_pAfter = new QLineEdit(&m_Frame);
        m_pBefore->setGeometry(0, 0, Size.cx, NEIGHBOUR_HEIGHT);
        m_pView->setGeometry(0, NEIGHBOUR_HEIGHT, Size.cx, Size.cy);
        m_pAfter->setGeometry(0, NEIGHBOUR_HEIGHT + Size.cy, Size.cx, NEIGHBOUR_HEIGHT);
        m_Frame.resize(Size.cx, Size.cy + 2 * NEIGHBOUR_HEIGHT);
    }
    ~CShownPage() { SetMouseButtons(false, false); }

    /// False if it doesn't get the focus.
    [[nodiscard]] bool TryShow() {
        m_Frame.show();
        m_Frame.activateWindow();
        const bool bActive = QTest::qWaitForWindowActive(&m_Frame);
        m_rLoop.RunPosted();
        return bActive;
    }
    template <typename Widget = QWidget>
    Widget* Find(const CWnd& rWnd) const {
        return dynamic_cast<Widget*>(m_pView->FindWidget(rWnd));
    }
    /// A click on whatever is at that place of a widget.
    static void ClickAt(QWidget* pTop, QPoint Place) {
        QWidget* const pChild = pTop->childAt(Place);
        QWidget* const pTarget = pChild != nullptr ? pChild : pTop;
        QTest::mouseClick(pTarget, Qt::LeftButton, Qt::NoModifier, pTarget->mapFrom(pTop, Place));
    }
    /// To whatever has the toolkit's focus.
    void PressKey(Qt::Key Key, Qt::KeyboardModifiers Modifiers = Qt::NoModifier) {
        if (QWidget* const pFocus = QApplication::focusWidget()) {
            QTest::keyClick(pFocus, Key, Modifiers);
        }
        m_rLoop.RunPosted();
    }
    void Write(const QString& rText) {
        for (const QChar Character : rText) {
            if (QWidget* const pFocus = QApplication::focusWidget()) {
                QTest::sendKeyEvent(QTest::Click, pFocus, Qt::Key_unknown, Character, Qt::NoModifier);
            }
            m_rLoop.RunPosted();
        }
    }
    static void TurnWheel(QWidget* pWidget, QPoint Place, int nDelta,
                          Qt::KeyboardModifiers Modifiers = Qt::NoModifier) {
        QWidget* const pTop = pWidget->window();
        const QPoint Point = pWidget->mapTo(pTop, Place);
        QWheelEvent Event(Point, pTop->mapToGlobal(Point), QPoint(), QPoint(0, nDelta), Qt::NoButton,
                          Modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(pTop->windowHandle(), &Event);
    }

    QWidget m_Frame;
    QLineEdit* m_pBefore = nullptr;
    CWindowView* m_pView = nullptr;
    QLineEdit* m_pAfter = nullptr;

private:
    CVirtualEventLoop& m_rLoop;
};
