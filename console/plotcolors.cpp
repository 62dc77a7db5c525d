#include "console/plotcolors.h"

#include <QPalette>

namespace {

QColor Mix(const QColor& rFirst, const QColor& rSecond, double Share) {
    const auto Part = [Share](int a, int b) { return static_cast<int>(a + (b - a) * Share); };
    return {Part(rFirst.red(), rSecond.red()), Part(rFirst.green(), rSecond.green()),
            Part(rFirst.blue(), rSecond.blue())};
}

}  // namespace

CPlotColors::CPlotColors(const QPalette& rPalette)
    : m_Background(rPalette.color(QPalette::Base)), m_Ink(rPalette.color(QPalette::Text)) {
    constexpr double GRID = 0.25;
    constexpr double PALE = 0.45;
    const bool bDark = m_Background.lightness() < m_Ink.lightness();
    m_Grid = Mix(m_Background, m_Ink, GRID);
    m_Pale = Mix(m_Background, m_Ink, PALE);
    m_Reading = bDark ? QColor(0x7d, 0xb4, 0xff) : QColor(0x1d, 0x5f, 0xb8);
    m_Mean = bDark ? QColor(0xff, 0xc1, 0x4d) : QColor(0xb3, 0x5c, 0x00);
    m_Within = bDark ? QColor(0x5f, 0xd0, 0x7f) : QColor(0x1b, 0x7a, 0x3a);
    m_Over = bDark ? QColor(0xff, 0x8a, 0x80) : QColor(0xb3, 0x26, 0x1e);
    m_Path = Mix(m_Background, m_Ink, 0.7);
}
