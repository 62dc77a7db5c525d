#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include "platform/qt/windowview.h"
#include "tests/rvlib/rvgui/flextable/flextablefixture.h"

/// The table on the screen, with a neighbour on each side in the order of the Tab key: what happens to it are
/// real events of the toolkit.
class ShownFlexTableTest : public FlexTableTest {
protected:
    ShownFlexTableTest() {
        QApplication::setCursorFlashTime(0);
        m_pBefore = new QLineEdit(&m_Frame);
        m_pView = new CWindowView(m_Page, &m_Frame);
        m_pAfter = new QLineEdit(&m_Frame);
        m_pBefore->setGeometry(0, 0, 300, 20);
        m_pView->setGeometry(0, 20, 300, 200);
        m_pAfter->setGeometry(0, 220, 300, 20);
        m_Frame.resize(300, 240);
    }
    ~ShownFlexTableTest() override { SetMouseButtons(false, false); }

    void Show() {
        m_Frame.show();
        m_Frame.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_Frame));
        m_Loop.RunPosted();
    }
    QWidget* GetTableWidget() const { return m_pView->FindWidget(m_Table); }
    QLineEdit* GetBoxWidget() const { return dynamic_cast<QLineEdit*>(m_pView->FindWidget(*GetBox())); }
    /// A click on whatever is at that place of the table.
    void ClickAt(int X, int Y) {
        QWidget* const pTop = GetTableWidget();
        const QPoint Place(X, Y);
        QWidget* const pChild = pTop->childAt(Place);
        QWidget* const pTarget = pChild != nullptr ? pChild : pTop;
        QTest::mouseClick(pTarget, Qt::LeftButton, Qt::NoModifier, pTarget->mapFrom(pTop, Place));
    }
    /// To whatever has the focus.
    static void PressKey(Qt::Key Key, Qt::KeyboardModifiers Modifiers = Qt::NoModifier) {
        if (QWidget* const pFocus = QApplication::focusWidget()) {
            QTest::keyClick(pFocus, Key, Modifiers);
        }
    }
    static void Write(const QString& rText) {
        if (QWidget* const pFocus = QApplication::focusWidget()) {
            for (const QChar Character : rText) {
                QTest::sendKeyEvent(QTest::Click, pFocus, Qt::Key_unknown, Character, Qt::NoModifier);
            }
        }
    }
    void TurnWheelAt(int X, int Y, int nDelta) {
        const QPoint Point = GetTableWidget()->mapTo(&m_Frame, QPoint(X, Y));
        QWheelEvent Event(Point, m_Frame.mapToGlobal(Point), QPoint(), QPoint(0, nDelta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_Frame.windowHandle(), &Event);
    }

    QWidget m_Frame;
    QLineEdit* m_pBefore = nullptr;
    CWindowView* m_pView = nullptr;
    QLineEdit* m_pAfter = nullptr;
};
