#pragma once
#include <QKeyEvent>
#include <QWidget>
#include <optional>
#include <utility>

#include "platform/window/wnd.h"

/// The widget that stands for a window of a tree, in a view.
class CMirror {
public:
    explicit CMirror(CWnd& rWnd) : m_pWnd(&rWnd) {}
    virtual ~CMirror() = default;
    CMirror(const CMirror&) = delete;
    CMirror& operator=(const CMirror&) = delete;

    /// Null once the window is destroyed; the widget then only waits for its own end.
    CWnd* GetWnd() const { return m_pWnd; }
    void Detach() { m_pWnd = nullptr; }
    virtual QWidget& GetWidget() = 0;
    /// Makes the widget look like the window, and no more than that: nothing is told to the window.
    virtual void Follow();

protected:
    /// Sends a key to the window. True if it was used there, or if the window is gone.
    bool SendKey(const QKeyEvent& rEvent);

private:
    CWnd* m_pWnd;
};

/// A widget of the toolkit as mirror: what all of them do with keys.
template <typename Base>
class CWindowWidget : public Base, public CMirror {
public:
    template <typename... Arguments>
    explicit CWindowWidget(CWnd& rWnd, Arguments&&... Args)
        : Base(std::forward<Arguments>(Args)...), CMirror(rWnd) {}

    QWidget& GetWidget() override { return *this; }

protected:
    /// Keys go to the window first, Tab included; the toolkit gets what it doesn't use.
    bool event(QEvent* pEvent) override {
        const QEvent::Type Type = pEvent->type();
        if ((Type == QEvent::KeyPress || Type == QEvent::KeyRelease) &&
            SendKey(static_cast<const QKeyEvent&>(*pEvent))) {
            pEvent->accept();
            return true;
        }
        return Base::event(pEvent);
    }
};
