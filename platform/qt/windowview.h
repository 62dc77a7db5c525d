#pragma once
#include <map>

#include "platform/qt/paintedwidget.h"

/// Shows a top-level window and its children: a widget for each, the toolkit's own one for each control, so
/// that the toolkit moves, clips, stacks and repaints them. Tells the window layer what only the toolkit
/// knows: the size of the widget and its screen's scale, which window is in front, where the focus is, mouse
/// and keys.
class CWindowView : public CPaintedWidget, public IFWindowPeer {
public:
    /// rWnd is a top-level window, created or not. It and the view may end in any order.
    explicit CWindowView(CWnd& rWnd, QWidget* pParent = nullptr);
    ~CWindowView() override;

    /// The window shown; null once it is destroyed.
    CWnd* GetWindow() const { return GetWnd(); }
    /// The widget that stands for a window of the tree; null if there is none.
    QWidget* FindWidget(const CWnd& rWnd) const;

    bool IsLookedAt() const override;
    void OnWindowChanged(CWnd& rWnd) override;
    void OnWindowDestroyed(CWnd& rWnd) override;
    void OnChildDestroyed(CWnd& rWnd) override;
    void OnFocusMoved(CWnd* pFocus) override;
    bool DrawControl(const CWnd& rControl, CBitmap& rPicture) override;

protected:
    bool event(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;
    /// The Tab key, from any widget of the tree, brings the focus to the next tab stop, and then out of the
    /// view.
    bool focusNextPrevChild(bool bNext) override;
    /// And here it comes back in.
    void focusInEvent(QFocusEvent* pEvent) override;
    /// Sees the input of the whole application: keys of the console are held down, too.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void FitWindow();
    void FollowScale();
    /// The widget of a window of the tree, made if there is none yet.
    CMirror& Provide(CWnd& rWnd);
    void FollowTree(CWnd& rWnd);
    void FollowVisibility(CWnd& rWnd);
    /// The window of this tree that a widget belongs to; null if none.
    CWnd* FindWnd(const QWidget* pWidget) const;
    void OnApplicationFocus(const QWidget* pFormer);

    std::map<const CWnd*, CMirror*> m_Mirrors;  ///< without the top-level window's, which is this
    QMetaObject::Connection m_FocusConnection;
    bool m_bLeaving = false;  ///< the focus passes through this widget on its way out
};
