#include "console/pageoverlay.h"

#include <QApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include "console/windowscale.h"

namespace {

constexpr int DIMMED = 150;  // of 255

}  // namespace

CPageOverlay::CPageOverlay(QWidget& rPage)
    : QFrame(rPage.parentWidget()), m_rPage(rPage), m_pCard(new QFrame(this)) {
    setFocusPolicy(Qt::StrongFocus);
    m_pCard->setFrameShape(QFrame::StyledPanel);
    m_pCard->setAutoFillBackground(true);
    rPage.installEventFilter(this);
    hide();
}

void CPageOverlay::Open(QWidget& rFocus) {
    if (!IsOpen()) {
        m_pFocusBefore = QApplication::focusWidget();
    }
    SetTexts();
    show();
    raise();
    Follow();
    rFocus.setFocus(Qt::OtherFocusReason);
    if (OnChanged) {
        OnChanged();
    }
}

void CPageOverlay::Close() {
    if (!IsOpen()) {
        return;
    }
    // Whoever has taken the focus meanwhile keeps it. Before it is hidden: else it would go to a neighbour.
    QWidget* const pFocus = QApplication::focusWidget();
    if (pFocus != nullptr && (pFocus == this || isAncestorOf(pFocus))) {
        QWidget* const pBack = m_pFocusBefore != nullptr ? m_pFocusBefore.data() : &m_rPage;
        pBack->setFocus(Qt::OtherFocusReason);
    }
    m_pFocusBefore = nullptr;
    hide();
    if (OnChanged) {
        OnChanged();
    }
}

void CPageOverlay::Follow() {
    setGeometry(m_rPage.geometry());
    ScaleFont(*this);
    FitWindow();
    const int Width = qMin(ScaleLength(*this, GetWidest()), width() - MARGIN);
    const int Height = qMin(GetHeightFor(Width), height() - MARGIN / 2);
    m_pCard->setGeometry((width() - Width) / 2, (height() - Height) / 2, Width, Height);
}

void CPageOverlay::mousePressEvent(QMouseEvent* pEvent) {
    pEvent->accept();  // the page beneath isn't to be worked on unseen
}

bool CPageOverlay::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == &m_rPage && IsOpen() &&
        (pEvent->type() == QEvent::Resize || pEvent->type() == QEvent::Move)) {
        Follow();
    }
    return QFrame::eventFilter(pWatched, pEvent);
}

void CPageOverlay::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange && IsOpen()) {
        SetTexts();
        Follow();
    }
    QFrame::changeEvent(pEvent);
}

void CPageOverlay::paintEvent(QPaintEvent* /*pEvent*/) {
    QColor Shade = palette().color(QPalette::Shadow);
    Shade.setAlpha(DIMMED);
    QPainter(this).fillRect(rect(), Shade);
}

bool CPageOverlay::focusNextPrevChild(bool bNext) {
    QList<QWidget*> Stops;
    for (QWidget* pNext = nextInFocusChain(); pNext != this; pNext = pNext->nextInFocusChain()) {
        if (isAncestorOf(pNext) && pNext->isVisible() && pNext->isEnabled() &&
            (pNext->focusPolicy() & Qt::TabFocus) != 0) {
            Stops << pNext;
        }
    }
    if (!Stops.isEmpty()) {
        const qsizetype Now = Stops.indexOf(QApplication::focusWidget());
        const qsizetype Step = bNext ? 1 : Stops.size() - 1;
        Stops.at(Now < 0 ? 0 : (Now + Step) % Stops.size())->setFocus(Qt::TabFocusReason);
    }
    return true;
}
