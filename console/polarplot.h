#pragma once
#include <QRectF>
#include <QString>
#include <optional>
#include <vector>

#include "archive/vectorstatistics.h"

class QPainter;
class QPalette;

/// What a plot's circles stand for. Small residuals beside a large first reading can't both be seen in one
/// scale: then the plot looks at the present reading and the target, and measurements outside are marked at
/// the rim.
struct CPolarRange {
    double m_Full = 0.0;  ///< at the rim; 0: none yet
    double m_Step = 0.0;  ///< from ring to ring
    bool m_bZoomed = false;

    bool operator==(const CPolarRange&) const = default;
};

/// What a polar plot of one plane's readings shows. Vectors in counts as the modules tell them; 0 degrees to
/// the right and 90 upwards, as on the page.
struct CPolarPlotData {
    /// A measurement of the run, in its place on the path from the first to the last.
    struct CStation {
        QString m_Label;
        CVectorReading m_Mean;

        bool operator==(const CStation&) const = default;
    };
    QString m_Title;                         ///< "Plane 1"; may be empty
    double m_Target = 0.0;                   ///< radius of the target circle
    std::vector<CVectorReading> m_Readings;  ///< of the present measurement, each that came
    bool m_bCounts = true;                   ///< they are part of a measurement; else they are drawn pale
    std::optional<CVectorReading> m_Mean;    ///< of these
    std::optional<CEllipse> m_Ellipse;       ///< that holds the true mean with 95 %
    std::vector<CStation> m_Stations;
    CPolarRange m_Range;

    bool operator==(const CPolarPlotData&) const = default;
};

/// The range for the data. Stays at the former one as long as that will do, so that the picture doesn't jump
/// with every reading.
CPolarRange ChooseRange(const CPolarPlotData& rData, const CPolarRange& rFormer = {});

/// Draws it into the place with the painter's font. For widgets, pictures and printed pages.
void PaintPolarPlot(QPainter& rPainter, const QRectF& rPlace, const CPolarPlotData& rData,
                    const QPalette& rPalette);

/// The same in words, for people who don't see it.
QString DescribePolarPlot(const CPolarPlotData& rData);
