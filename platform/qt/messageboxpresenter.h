#pragma once
#include <QPointer>
#include <QWidget>

struct CShownMessage;

/// Shows the message boxes of the window layer on the screen while it lives: modeless, so that the window
/// thread goes on. There is one at a time.
class CMessageBoxPresenter {
public:
    /// pParent: the widget that the boxes stand in front of; may be null, and may end first.
    explicit CMessageBoxPresenter(QWidget* pParent);
    ~CMessageBoxPresenter();
    CMessageBoxPresenter(const CMessageBoxPresenter&) = delete;
    CMessageBoxPresenter& operator=(const CMessageBoxPresenter&) = delete;

private:
    void Present(const CShownMessage& rMessage);

    QPointer<QWidget> m_pParent;
};
