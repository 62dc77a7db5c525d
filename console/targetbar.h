#pragma once
#include <QRectF>
#include <QString>
#include <optional>

class QPainter;
class QPalette;

/// A reading beside its target, on a scale by decades: a residual of a hundredth of the first reading can be
/// seen as well as that reading.
struct CTargetBarData {
    double m_Target = 0.0;
    std::optional<double> m_Reading;  ///< the average, as the page has it
    std::optional<double> m_First;    ///< of the first measurement
    bool m_bCounts = true;            ///< the reading is part of a measurement; else it is drawn pale

    bool operator==(const CTargetBarData&) const = default;
};

/// Where on the bar a value stands: 0 at its left end, 1 at its right one, with the target always in the same
/// place; values beyond the ends stand at the ends.
double GetPlaceOnBar(double Value, double Target);

/// Draws it into the place with the painter's font.
void PaintTargetBar(QPainter& rPainter, const QRectF& rPlace, const CTargetBarData& rData,
                    const QPalette& rPalette);
