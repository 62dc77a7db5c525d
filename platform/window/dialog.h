#pragma once
#include "platform/window/wnd.h"

/// A page of controls on the system's face colour. Message 272 comes at the end of its creation, when message
/// 1 has made the controls and message 5 has placed them.
class CDialog : public CWnd {
public:
    /// The focus to a control of this page; the text of an edit box is selected. False if it doesn't take it.
    bool GotoDlgCtrl(CWnd& rControl);
    /// The focus to the tab stop behind (before) the one that has it, at the end to the first (last) one.
    /// False without any that takes it.
    bool NextDlgCtrl() { return StepDlgCtrl(false); }
    bool PrevDlgCtrl() { return StepDlgCtrl(true); }

protected:
    /// Fills the page on message 15. Derived classes pass on what they don't handle.
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnCreated() override { SendMessage(WM_INITDIALOG); }

private:
    bool StepDlgCtrl(bool bBackwards);
};
