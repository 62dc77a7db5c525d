#include "platform/qt/windowview.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include "platform/qt/bitmapimpl.h"
#include "platform/window/input.h"

CWindowView::CWindowView(CWnd& rWnd, QWidget* pParent) : QWidget(pParent), m_pWnd(&rWnd) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    if (rWnd.IsWindow()) {
        const CSize Size = rWnd.GetRect().Size();
        resize(Size.cx, Size.cy);
        setWindowTitle(QString::fromStdString(rWnd.GetWindowText()));
    }
    rWnd.SetPeer(this);
    qApp->installEventFilter(this);
}

CWindowView::~CWindowView() {
    if (m_pWnd != nullptr) {
        m_pWnd->SetPeer(nullptr);
    }
}

void CWindowView::OnWindowChanged(CWnd& rWnd) {
    if (&rWnd == m_pWnd && isWindow()) {
        setWindowTitle(QString::fromStdString(rWnd.GetWindowText()));
    }
    m_bPictureValid = false;
    update();
}

void CWindowView::OnWindowDestroyed(CWnd& rWnd) {
    if (&rWnd == m_pWnd) {
        // The object may be about to go: never look at it again.
        m_pWnd->SetPeer(nullptr);
        m_pWnd = nullptr;
        m_bPictureValid = false;
        update();
    }
}

void CWindowView::paintEvent(QPaintEvent* /*pEvent*/) {
    if (!m_bPictureValid) {
        m_Picture = m_pWnd != nullptr && m_pWnd->IsWindowVisible() ? m_pWnd->Compose() : CBitmap();
        m_bPictureValid = true;
    }
    QPainter Painter(this);
    const QImage& rImage = m_Picture.GetImpl().m_Image;
    if (rImage.size() != size()) {
        Painter.fillRect(rect(), palette().window());
    }
    Painter.drawImage(0, 0, rImage);
}

void CWindowView::resizeEvent(QResizeEvent* /*pEvent*/) {
    FitWindow();
}

void CWindowView::FitWindow() {
    if (m_pWnd != nullptr && m_pWnd->IsWindow()) {
        m_pWnd->MoveWindow(CRect(m_pWnd->GetRect().TopLeft(), CSize(width(), height())));
    }
}

void CWindowView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::ActivationChange && m_pWnd != nullptr) {
        if (isActiveWindow()) {
            CWnd::SetForegroundWindow(m_pWnd);
        } else if (CWnd::GetForegroundWindow() == m_pWnd) {
            CWnd::SetForegroundWindow(nullptr);
        }
    }
    QWidget::changeEvent(pEvent);
}

bool CWindowView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease: {
            const Qt::MouseButtons Buttons = static_cast<QMouseEvent*>(pEvent)->buttons();
            SetMouseButtons(Buttons.testFlag(Qt::LeftButton), Buttons.testFlag(Qt::RightButton));
            break;
        }
        default:
            break;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}
