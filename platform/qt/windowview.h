#pragma once
#include <QWidget>

#include "platform/window/wnd.h"

/// Shows a top-level window and its children in a widget, and tells the window layer what only the toolkit
/// knows: the size of the widget, which window is in front, and which mouse buttons are down.
class CWindowView : public QWidget, public IFWindowPeer {
public:
    /// rWnd is a top-level window, created or not. It and the view may end in any order.
    explicit CWindowView(CWnd& rWnd, QWidget* pParent = nullptr);
    ~CWindowView() override;

    /// The window shown; null once it is destroyed.
    CWnd* GetWindow() const { return m_pWnd; }

    void OnWindowChanged(CWnd& rWnd) override;
    void OnWindowDestroyed(CWnd& rWnd) override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    /// Sees the mouse events of the whole application: keys of the console are held down, too.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void FitWindow();

    CWnd* m_pWnd;
    CBitmap m_Picture;  ///< what was composed last
    bool m_bPictureValid = false;
};
