#include "console/pagecover.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

CPageCover::CPageCover(QWidget& rPage) : QFrame(rPage.parentWidget()), m_rPage(rPage) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    m_pColumn = new QVBoxLayout(this);
    m_pColumn->setContentsMargins(2, 2, 2, 2);
    m_pColumn->setSpacing(0);
    m_pTitleRow = new QHBoxLayout();
    m_pTitleRow->setContentsMargins(8, 0, 0, 0);
    m_pTitle = new QLabel(this);
    QFont Font;
    Font.setBold(true);
    m_pTitle->setFont(Font);
    m_pTitleRow->addWidget(m_pTitle, 1);
    m_pClose = new QToolButton(this);
    m_pClose->setAutoRaise(true);
    m_pClose->setFocusPolicy(Qt::NoFocus);
    connect(m_pClose, &QToolButton::clicked, this, [this] { Close(); });
    m_pTitleRow->addWidget(m_pClose);
    m_pColumn->addLayout(m_pTitleRow);
    rPage.installEventFilter(this);
    hide();
}

void CPageCover::SetTitle(const QString& rText) {
    m_pTitle->setText(rText);
    m_pClose->setText(QString::fromStdString(GetText("HELP_CLOSE")));
    m_pClose->setAccessibleName(m_pClose->text());
}

void CPageCover::Open() {
    if (IsOpen()) {
        return;
    }
    m_pFocusBefore = QApplication::focusWidget();
    Follow();
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
}

void CPageCover::Follow() {
    setGeometry(m_rPage.geometry());
    ScaleFont(*this);
    m_pClose->setMinimumHeight(ScaleLength(*this, BUTTON_SIZE));
    FitWindow();
}

void CPageCover::Close() {
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

void CPageCover::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        Close();
    } else {
        QFrame::keyPressEvent(pEvent);
    }
}

bool CPageCover::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == &m_rPage && (pEvent->type() == QEvent::Resize || pEvent->type() == QEvent::Move)) {
        Follow();
    }
    return QFrame::eventFilter(pWatched, pEvent);
}
