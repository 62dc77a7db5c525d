#include "console/helpview.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "platform/help/helpaddress.h"
#include "platform/qt/helppanel.h"
#include "platform/rvldb/gettext.h"
#include "rvlib/settings/installation.h"

namespace {

/// To be hit by a finger.
constexpr int eButtonSize = 40;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CHelpView::CHelpView(QWidget& rPage) : QFrame(rPage.parentWidget()), m_rPage(rPage) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto* const pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(2, 2, 2, 2);
    pColumn->setSpacing(0);
    auto* const pRow = new QHBoxLayout();
    pRow->setContentsMargins(8, 0, 0, 0);
    m_pTitle = new QLabel(this);
    QFont Font = m_pTitle->font();
    Font.setBold(true);
    m_pTitle->setFont(Font);
    pRow->addWidget(m_pTitle, 1);
    m_pClose = new QToolButton(this);
    m_pClose->setAutoRaise(true);
    m_pClose->setMinimumHeight(eButtonSize);
    m_pClose->setFocusPolicy(Qt::NoFocus);
    connect(m_pClose, &QToolButton::clicked, this, [this] { Close(); });
    pRow->addWidget(m_pClose);
    pColumn->addLayout(pRow);
    m_pPanel = new CHelpPanel(this);
    pColumn->addWidget(m_pPanel, 1);
    setFocusProxy(m_pPanel);
    rPage.installEventFilter(this);
    hide();
}

void CHelpView::ShowTopic(const std::string& rTopic) {
    m_pTitle->setText(Text("HELP_PAGE"));
    m_pClose->setText(Text("HELP_CLOSE"));
    m_pPanel->ShowAddress(
        CHelpAddress::OfTopic(GetHelpDirectory().GetText(), GetText("ONLINE_HELP_PREFIX"), rTopic).MakeUrl());
    if (IsOpen()) {
        return;
    }
    m_pFocusBefore = QApplication::focusWidget();
    setGeometry(m_rPage.geometry());
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
}

void CHelpView::ToggleTopic(const std::string& rTopic) {
    if (IsOpen()) {
        Close();
    } else {
        ShowTopic(rTopic);
    }
}

void CHelpView::Close() {
    if (!IsOpen()) {
        return;
    }
    // Whoever has taken the focus meanwhile keeps it. Before it is hidden: else it would go to a neighbour.
    QWidget* const pFocus = QApplication::focusWidget();
    if (pFocus != nullptr && isAncestorOf(pFocus)) {
        if (m_pFocusBefore != nullptr) {
            m_pFocusBefore->setFocus(Qt::OtherFocusReason);
        } else {
            pFocus->clearFocus();
        }
    }
    m_pFocusBefore = nullptr;
    hide();
    if (OnClosed) {
        OnClosed();
    }
}

void CHelpView::keyPressEvent(QKeyEvent* pEvent) {
    switch (pEvent->key()) {
        case Qt::Key_Escape:
        case Qt::Key_F1:
        case Qt::Key_Help:
            Close();
            return;
        default:
            QFrame::keyPressEvent(pEvent);
    }
}

bool CHelpView::focusNextPrevChild(bool /*bNext*/) {
    // Behind the panel comes the button, and then the panel again: what lies below has its turn when this is
    // closed.
    (m_pClose->hasFocus() ? static_cast<QWidget*>(m_pPanel) : m_pClose)->setFocus(Qt::TabFocusReason);
    return true;
}

bool CHelpView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == &m_rPage && (pEvent->type() == QEvent::Resize || pEvent->type() == QEvent::Move)) {
        setGeometry(m_rPage.geometry());
    }
    return QFrame::eventFilter(pWatched, pEvent);
}
