#pragma once
#include <QColor>

class QPalette;

/// Colours of what is drawn of readings, for a bright or a dark background. What they say is also said by
/// shapes and words.
struct CPlotColors {
    explicit CPlotColors(const QPalette& rPalette);

    QColor m_Background;
    QColor m_Ink;
    QColor m_Grid;
    QColor m_Reading;
    QColor m_Pale;  ///< readings that don't count
    QColor m_Mean;
    QColor m_Within;
    QColor m_Over;
    QColor m_Path;
};
