#pragma once
// Colours of the window system. One set for what is painted and for the toolkit's controls, whatever the
// desktop's theme, so that a page is of one piece.
#include "platform/window/types.h"

enum class SysColor {
    eFace,       ///< of dialogs and buttons; the page's own ground
    eHighlight,  ///< the light edge of something raised
    eShadow,     ///< its dark edge
    eDarkShadow,
    eWindow,  ///< ground of edit boxes and lists
    eWindowText,
    eGrayText,  ///< of what is disabled
    eSelection,
    eSelectionText
};

COLORREF GetSysColor(SysColor Color);
