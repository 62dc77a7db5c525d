#pragma once
// Finds the toolkit's font for a CFont.
#include <QFont>

#include "platform/window/font.h"

/// A font of the toolkit with its vertical measures in pixels.
struct CFontMetric {
    QFont m_Font;
    int m_Ascent = 0;
    int m_Descent = 0;

    int GetHeight() const { return m_Ascent + m_Descent; }
};

/// The largest font whose cell (ascent plus descent) fits rFont's height; never smaller than one pixel.
/// Needs a QGuiApplication.
CFontMetric FindFont(const CFont& rFont);
