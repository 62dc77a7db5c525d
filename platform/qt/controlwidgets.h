#pragma once

class CControl;
class CMirror;
class QWidget;

/// The toolkit's control for a window of the window layer, not yet following it. pParent may be null.
CMirror* MakeControlWidget(CControl& rControl, QWidget* pParent);
