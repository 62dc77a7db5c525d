#include "console/targetbar.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "console/figures.h"
#include "console/plotcolors.h"
#include "platform/rvldb/gettext.h"

namespace {

// A decade below the target, and two and a half above: the first reading of a rotor that can be balanced.
constexpr double DECADES_BELOW = 1.0;
constexpr double DECADES = 3.5;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

double GetPlaceOnBar(double Value, double Target) {
    if (Value <= 0.0 || Target <= 0.0) {
        return 0.0;
    }
    return std::clamp((std::log10(Value / Target) + DECADES_BELOW) / DECADES, 0.0, 1.0);
}

void PaintTargetBar(QPainter& rPainter, const QRectF& rPlace, const CTargetBarData& rData,
                    const QPalette& rPalette) {
    const CPlotColors Colors(rPalette);
    const QFontMetricsF Metrics(rPainter.font());
    const double Line = Metrics.height();
    rPainter.save();
    rPainter.setRenderHint(QPainter::Antialiasing);
    // The figures above the bar, the scale below it.
    const QRectF Bar(rPlace.left() + 0.5 * Line, rPlace.top() + 1.5 * Line, rPlace.width() - Line,
                     std::max(4.0, rPlace.height() - 2.8 * Line));
    const auto GetX = [&](double Value) {
        return Bar.left() + Bar.width() * GetPlaceOnBar(Value, rData.m_Target);
    };
    const double TargetX = GetX(rData.m_Target);
    rPainter.setPen(Qt::NoPen);
    const auto Fill = [&](const QRectF& rPart, QColor Color) {
        Color.setAlphaF(0.25F);
        rPainter.setBrush(Color);
        rPainter.drawRect(rPart);
    };
    Fill(QRectF(Bar.topLeft(), QPointF(TargetX, Bar.bottom())), Colors.m_Within);
    Fill(QRectF(QPointF(TargetX, Bar.top()), Bar.bottomRight()), Colors.m_Over);
    if (rData.m_Reading) {
        const bool bWithin = *rData.m_Reading <= rData.m_Target;
        const QColor Color = !rData.m_bCounts ? Colors.m_Pale : bWithin ? Colors.m_Within : Colors.m_Over;
        rPainter.setBrush(Color);
        rPainter.drawRect(QRectF(Bar.topLeft(), QPointF(GetX(*rData.m_Reading), Bar.bottom())));
    }
    rPainter.setPen(QPen(Colors.m_Ink, 2.0));
    rPainter.drawLine(QPointF(TargetX, Bar.top() - 0.3 * Line), QPointF(TargetX, Bar.bottom() + 0.2 * Line));
    if (rData.m_First) {
        rPainter.setPen(QPen(Colors.m_Path, 2.0, Qt::DotLine));
        const double X = GetX(*rData.m_First);
        rPainter.drawLine(QPointF(X, Bar.top()), QPointF(X, Bar.bottom()));
    }
    rPainter.setPen(Colors.m_Ink);
    for (int i = 0; i <= DECADES; ++i) {
        const double Decade = i - DECADES_BELOW;
        const double Value = rData.m_Target * std::pow(10.0, Decade);
        const QString Number = Decade == 0.0 ? Text("CONSOLE_BAR_TARGET").arg(QString::number(rData.m_Target))
                                             : QString::number(Value);
        const double Width = Metrics.horizontalAdvance(Number) + 2.0;
        const double X = std::clamp(GetX(Value) - Width / 2.0, rPlace.left(), rPlace.right() - Width);
        rPainter.drawText(QRectF(X, Bar.bottom() + 0.2 * Line, Width, Line), Qt::AlignCenter, Number);
    }
    const QRectF Above(Bar.left(), rPlace.top(), Bar.width(), 1.2 * Line);
    if (rData.m_First) {
        rPainter.drawText(Above, Qt::AlignRight | Qt::AlignVCenter,
                          Text("CONSOLE_STATION_FIRST") + " " + Figures::WriteReading(*rData.m_First));
    }
    if (rData.m_Reading) {
        QFont Bold(rPainter.font());
        Bold.setBold(rData.m_bCounts);
        rPainter.setFont(Bold);
        rPainter.drawText(Above, Qt::AlignLeft | Qt::AlignVCenter,
                          Figures::WriteOfTarget(*rData.m_Reading, rData.m_Target));
    }
    rPainter.restore();
}
