#pragma once
#include "platform/qt/mirror.h"

/// Shows the surface of a window that paints itself, and sends it what the mouse does.
class CPaintedWidget : public CWindowWidget<QWidget> {
public:
    explicit CPaintedWidget(CWnd& rWnd, QWidget* pParent);

    void Follow() override;

protected:
    /// All but place and state.
    void FollowLooks();
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override { SendMouse(*pEvent); }
    void mouseReleaseEvent(QMouseEvent* pEvent) override { SendMouse(*pEvent); }
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override { SendMouse(*pEvent); }
    void mouseMoveEvent(QMouseEvent* pEvent) override { SendMouse(*pEvent); }
    void wheelEvent(QWheelEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;

private:
    bool m_bPainting = false;
    /// To the window, or to the one of its tree that has the capture.
    void SendMouse(const QMouseEvent& rEvent);
};
