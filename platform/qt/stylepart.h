#pragma once
#include <QPalette>
#include <QRect>

#include "platform/window/dc.h"

class QPainter;

/// The window system's colours as the toolkit's controls take them.
QPalette GetSystemPalette();

/// Draws a piece of a control by the application's style; nothing without an application.
void DrawStylePart(QPainter& rPainter, const QRect& rRect, CDC::Part Kind, CDC::CPartState State);
