#pragma once
// The window layer's plain types as the toolkit's.
#include <QColor>
#include <QRect>

#include "platform/window/rect.h"
#include "platform/window/types.h"

inline QColor ToQt(COLORREF Color) {
    return {GetRValue(Color), GetGValue(Color), GetBValue(Color)};
}

inline QRect ToQt(const CRect& rRect) {
    return {rRect.left, rRect.top, rRect.Width(), rRect.Height()};
}
