#include "console/panelkeys.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <optional>

#include "console/pagequestion.h"
#include "console/softkeybar.h"

namespace {

/// Whether a window is that one, or a box of its.
bool BelongsTo(const QWidget* pWidget, const QWidget& rWindow) {
    while (pWidget != nullptr && pWidget != &rWindow) {
        pWidget = pWidget->parentWidget();
    }
    return pWidget != nullptr;
}

bool IsEdited(const QWidget* pWidget) {
    return qobject_cast<const QLineEdit*>(pWidget) != nullptr ||
           qobject_cast<const QComboBox*>(pWidget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(pWidget) != nullptr ||
           qobject_cast<const QTextEdit*>(pWidget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(pWidget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(pWidget) != nullptr;
}

}  // namespace

CPanelKeys::CPanelKeys(QWidget& rWindow, CSoftkeyBar& rBar, CPageQuestion& rQuestion)
    : m_rWindow(rWindow), m_rBar(rBar), m_rQuestion(rQuestion) {
    // The application's: the page and its controls have the focus, and would take the keys first.
    QApplication::instance()->installEventFilter(this);
}

bool CPanelKeys::eventFilter(QObject* pWatched, QEvent* pEvent) {
    const bool bKey = pEvent->type() == QEvent::KeyPress || pEvent->type() == QEvent::KeyRelease;
    if (!bKey || !pWatched->isWidgetType() || QApplication::activePopupWidget() != nullptr ||
        QApplication::activeModalWidget() != nullptr) {
        return false;
    }
    auto* const pWidget = static_cast<QWidget*>(pWatched);
    if (!BelongsTo(pWidget, m_rWindow)) {
        return false;
    }
    auto& rEvent = static_cast<QKeyEvent&>(*pEvent);
    const bool bTaken = pEvent->type() == QEvent::KeyPress
                            ? OnKeyDown(rEvent, pWidget->window() == &m_rWindow)
                            : OnKeyUp(rEvent);
    if (bTaken) {
        rEvent.accept();
    }
    return bTaken;
}

bool CPanelKeys::OnKeyDown(const QKeyEvent& rEvent, bool bInWindow) {
    const int Key = rEvent.key();
    if ((rEvent.modifiers() & ~Qt::KeypadModifier) != 0) {
        return false;  // the desktop's: Alt+F4 closes a window
    }
    if (rEvent.isAutoRepeat() && m_Down.contains(Key)) {
        return true;  // it is held: the module repeats by itself
    }
    std::optional<std::size_t> Place;
    if (Key >= Qt::Key_F1 && Key < Qt::Key_F1 + static_cast<int>(CSoftkeys::PLACES)) {
        Place = static_cast<std::size_t>(Key - Qt::Key_F1);
    } else if (Key == Qt::Key_F11 || Key == Qt::Key_F12) {
        const std::function<void()>& rDo = Key == Qt::Key_F11 ? OnFullScreen : OnPicture;
        if (!rEvent.isAutoRepeat() && rDo) {
            rDo();
        }
        return true;
    } else if (Key == Qt::Key_Escape && bInWindow && !m_rQuestion.GetChoices().empty()) {
        if (!rEvent.isAutoRepeat()) {
            m_rQuestion.Answer(0);  // also when somebody has clicked beside it
        }
        return true;
    } else if (bInWindow && TakesRunKey()) {
        if (Key == Qt::Key_Return || Key == Qt::Key_Enter) {
            Place = m_rBar.FindPlace(Actions::eNext);
        } else if (Key == Qt::Key_Escape) {
            Place = m_rBar.FindPlace(Actions::eTerminate);
        }
    }
    if (!Place) {
        return false;
    }
    // A key that is held since before has nothing to say to what stands in its place now.
    if (!rEvent.isAutoRepeat() && m_rBar.Press(*Place)) {
        m_Down[Key] = *Place;
    }
    return true;
}

bool CPanelKeys::OnKeyUp(const QKeyEvent& rEvent) {
    const auto Found = m_Down.find(rEvent.key());
    if (Found == m_Down.end()) {
        return false;
    }
    if (!rEvent.isAutoRepeat()) {
        const std::size_t Place = Found->second;
        m_Down.erase(Found);
        m_rBar.Release(Place);
    }
    return true;
}

bool CPanelKeys::TakesRunKey() const {
    return IsRunOnPage && IsRunOnPage() && !IsEdited(QApplication::focusWidget());
}
