#include "console/pagelock.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTabBar>

#include "platform/qt/helppanel.h"

namespace {

bool IsInput(QEvent::Type Type) {
    switch (Type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
            return true;
        default:
            return false;
    }
}

bool IsField(const QWidget& rWidget) {
    return qobject_cast<const QLineEdit*>(&rWidget) != nullptr ||
           qobject_cast<const QComboBox*>(&rWidget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(&rWidget) != nullptr;
}

}  // namespace

CPageLock::CPageLock(QWidget& rPage) : m_rPage(rPage) {
    QApplication::instance()->installEventFilter(this);
}

bool CPageLock::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (!IsInput(pEvent->type()) || !pWatched->isWidgetType()) {
        return false;
    }
    const auto& rWidget = static_cast<const QWidget&>(*pWatched);
    if ((&rWidget != &m_rPage && !m_rPage.isAncestorOf(&rWidget)) || !IsLocked || !IsLocked() ||
        IsBrowsing(rWidget, *pEvent)) {
        return false;
    }
    pEvent->accept();
    if (pEvent->type() != QEvent::Wheel && OnWithheld) {
        OnWithheld();
    }
    return true;
}

bool CPageLock::IsBrowsing(const QWidget& rWidget, const QEvent& rEvent) const {
    for (const QWidget* pWidget = &rWidget; pWidget != &m_rPage; pWidget = pWidget->parentWidget()) {
        if (dynamic_cast<const CHelpPanel*>(pWidget) != nullptr) {
            return true;
        }
    }
    if (qobject_cast<const QScrollBar*>(&rWidget) != nullptr ||
        qobject_cast<const QTabBar*>(&rWidget) != nullptr) {
        return true;
    }
    if (rEvent.type() == QEvent::Wheel) {
        return !IsField(rWidget);  // it changes the value there
    }
    if (rEvent.type() != QEvent::KeyPress) {
        return false;
    }
    switch (static_cast<const QKeyEvent&>(rEvent).key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_Home:
        case Qt::Key_End:
            return !IsField(rWidget);
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Escape:
            return true;
        default:
            return false;
    }
}
