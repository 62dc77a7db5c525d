#pragma once
#include "platform/window/dc.h"

namespace Gui {

/// Fills rRect with Color, which fades towards black over the lower two thirds.
void FillGradient(CDC& rDC, const CRect& rRect, COLORREF Color);

}  // namespace Gui
