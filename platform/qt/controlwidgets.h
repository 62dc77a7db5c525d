#pragma once

class CBitmap;
class CControl;
class CMirror;
class QWidget;

/// The toolkit's control for a window of the window layer, not yet following it. pParent may be null.
CMirror* MakeControlWidget(CControl& rControl, QWidget* pParent);

/// Draws a control that no view shows, as it would look there without the focus; nothing without an
/// application. rPicture has the control's size.
void DrawUnshownControl(const CControl& rControl, CBitmap& rPicture);
