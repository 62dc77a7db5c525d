#include "platform/qt/paintedwidget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QWheelEvent>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/inputevents.h"
#include "platform/window/messageparams.h"
#include "platform/window/static.h"

namespace {

Qt::CursorShape ToQt(Cursor Shape) {
    switch (Shape) {
        case Cursor::eHand:
            return Qt::PointingHandCursor;
        case Cursor::eText:
            return Qt::IBeamCursor;
        case Cursor::eSplitColumns:
            return Qt::SplitHCursor;
        case Cursor::eWait:
            return Qt::WaitCursor;
        case Cursor::eArrow:
            break;
    }
    return Qt::ArrowCursor;
}

const CWnd* GetTop(const CWnd& rWnd) {
    const CWnd* pTop = &rWnd;
    while (pTop->GetParent() != nullptr) {
        pTop = pTop->GetParent();
    }
    return pTop;
}

CPoint ToPoint(QPointF Point) {
    const QPoint Pixel(qFloor(Point.x()), qFloor(Point.y()));
    return {Pixel.x(), Pixel.y()};
}

}  // namespace

CPaintedWidget::CPaintedWidget(CWnd& rWnd, QWidget* pParent) : CWindowWidget<QWidget>(rWnd, pParent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setAttribute(Qt::WA_TransparentForMouseEvents, dynamic_cast<CStatic*>(&rWnd) != nullptr);
}

void CPaintedWidget::Follow() {
    CMirror::Follow();
    FollowLooks();
}

void CPaintedWidget::FollowLooks() {
    if (GetWnd() == nullptr) {
        return;
    }
    if (const Qt::CursorShape Shape = ToQt(GetWnd()->GetCursor()); cursor().shape() != Shape) {
        setCursor(Shape);
    }
    if (accessibleName().isEmpty()) {
        setAccessibleName(QString::fromStdString(GetWnd()->GetWindowText()));
    }
    if (!m_bPainting) {
        update();
    }
}

void CPaintedWidget::paintEvent(QPaintEvent* /*pEvent*/) {
    if (GetWnd() != nullptr) {
        // What fell due while nobody looked.
        const QScopedValueRollback Painting(m_bPainting, true);
        GetWnd()->PaintIfDue();
    }
    QPainter Painter(this);
    const bool bShown = GetWnd() != nullptr && GetWnd()->IsWindowVisible();
    if (!bShown || GetWnd()->GetClientRect().Size() != CSize(width(), height())) {
        Painter.fillRect(rect(), palette().window());
    }
    if (bShown) {
        Painter.drawImage(0, 0, std::as_const(*GetWnd()).GetSurface().GetImpl().GetImage());
    }
}

void CPaintedWidget::SendMouse(const QMouseEvent& rEvent) {
    const UINT Message = GetMouseMessage(rEvent);
    if (GetWnd() == nullptr || Message == 0) {
        return;
    }
    CWnd* pTarget = GetWnd();
    CPoint Point = ToPoint(rEvent.position());
    CWnd* const pCapture = CWnd::GetCapture();
    if (pCapture != nullptr && pCapture != pTarget && GetTop(*pCapture) == GetTop(*pTarget)) {
        Point = pTarget->ClientToTop(Point) - pCapture->ClientToTop(CPoint());
        pTarget = pCapture;
    }
    pTarget->SendMessage(Message, GetMouseFlags(rEvent), MakePointParam(Point));
}

void CPaintedWidget::wheelEvent(QWheelEvent* pEvent) {
    if (GetWnd() != nullptr) {
        SendWheel(*GetWnd(), *pEvent);
    }
}

void CPaintedWidget::leaveEvent(QEvent* pEvent) {
    if (GetWnd() != nullptr) {
        GetWnd()->SendMessage(WM_MOUSELEAVE);
    }
    QWidget::leaveEvent(pEvent);
}
