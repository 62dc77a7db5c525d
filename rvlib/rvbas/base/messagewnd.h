#pragma once
#include "platform/window/wnd.h"

namespace Base {

/// A hidden window that takes work from a foreign thread to the window thread: the foreign thread does
/// nothing but PostMessage(WM_RV_MESSAGEWND, ...).
class CMessageWnd : public CWnd {
public:
    /// Creates the hidden window; false on failure.
    bool CreateMessageWindow();

protected:
    /// Comes on the window thread with the parameters of message WM_RV_MESSAGEWND.
    virtual void OnMessageWndMessage(WPARAM wParam, LPARAM lParam) = 0;

    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
};

}  // namespace Base
