#pragma once
#include "platform/window/wnd.h"

/// A window that is one of the toolkit's own controls: it is drawn and operated by the toolkit where a view
/// shows it, so that input methods, clipboard, accessibility and an on-screen keyboard come with it, and
/// keeps its state here, also without any view. Derived classes hold that state; the view reads it after
/// OnWindowChanged, and tells them what the operator did by their ByOperator operations.
///
/// Message 15 isn't needed: the surface stays unused, and Compose() asks the toolkit for the picture. Keys
/// reach WindowProc before the toolkit's control, which gets what isn't used (see messages.h); mouse messages
/// go to the toolkit's control alone.
class CControl : public CWnd {
protected:
    /// The toolkit's picture; face colour without a toolkit. It shows the focus only where a view has it.
    CBitmap GetPicture() const override;
};

/// From the toolkit: draws a control that no view shows, as it would look there without the focus; nothing
/// without an application. rPicture has the control's size.
void DrawUnshownControl(const CControl& rControl, CBitmap& rPicture);
