#include "console/polarplot.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPolygonF>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "console/figures.h"
#include "console/plotcolors.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr double MARGIN = 1.15;      // beside what must be seen
constexpr double ZOOM_FROM = 6.0;    // so many times larger than the present is what isn't looked at
constexpr double STAYS_ABOVE = 0.2;  // of the range: below that a finer one is chosen
constexpr int SPOKE = 30;            // degrees

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

double GetLength(const CVectorReading& rVector) {
    return std::hypot(rVector.m_X, rVector.m_Y);
}

double GetAngleDeg(const CVectorReading& rVector) {
    const double Angle = std::atan2(rVector.m_Y, rVector.m_X) * 180.0 / std::numbers::pi;
    return Angle < 0.0 ? Angle + 360.0 : Angle;
}

/// The present: what must be seen in any case.
double GetPresentReach(const CPolarPlotData& rData) {
    double Reach = rData.m_Target;
    for (const CVectorReading& rReading : rData.m_Readings) {
        Reach = std::max(Reach, GetLength(rReading));
    }
    if (rData.m_Ellipse && rData.m_bCounts) {
        Reach = std::max(Reach, std::hypot(rData.m_Ellipse->m_X, rData.m_Ellipse->m_Y) +
                                    std::min(rData.m_Ellipse->m_SemiMajor, Reach));
    }
    return Reach;
}

double GetStationReach(const CPolarPlotData& rData) {
    double Reach = 0.0;
    for (const CPolarPlotData::CStation& rStation : rData.m_Stations) {
        Reach = std::max(Reach, GetLength(rStation.m_Mean));
    }
    return Reach;
}

/// Rings at 1, 2 or 5 times a power of ten, three to five of them.
CPolarRange MakeRange(double Reach, bool bZoomed) {
    const double Wanted = std::max(Reach, 1e-6) * MARGIN;
    const double Decade = std::pow(10.0, std::floor(std::log10(Wanted / 5.0)));
    double Step = Decade;
    for (const double Factor : {1.0, 2.0, 5.0, 10.0}) {
        Step = Factor * Decade;
        if (Step * 5.0 >= Wanted * 0.9999) {
            break;
        }
    }
    return {Step * std::ceil(Wanted / Step * 0.9999), Step, bZoomed};
}

/// A plot under way: place, scale and pens.
class CPlot {
public:
    CPlot(QPainter& rPainter, const QRectF& rPlace, const CPolarPlotData& rData, const QPalette& rPalette)
        : m_rPainter(rPainter),
          m_rData(rData),
          m_Range(rData.m_Range.m_Full > 0.0 ? rData.m_Range : ChooseRange(rData)),
          m_Colors(rPalette),
          m_Metrics(rPainter.font()) {
        const double Line = m_Metrics.height();
        const double Above = rData.m_Title.isEmpty() ? 0.0 : Line * 1.2;
        // Room for the numbers at the rim.
        const QRectF Inner = rPlace.adjusted(Line * 2.2, Above + Line * 1.3, -Line * 2.2, -Line * 1.3);
        m_Radius = std::max(1.0, std::min(Inner.width(), Inner.height()) / 2.0);
        m_Centre = Inner.center();
        m_TitlePlace = QRectF(rPlace.left(), rPlace.top(), rPlace.width(), Above);
    }

    void Paint() {
        m_rPainter.save();
        m_rPainter.setRenderHint(QPainter::Antialiasing);
        PaintGrid();
        PaintTarget();
        PaintNumbers();  // below what is measured
        PaintReadings();
        PaintPath();
        PaintMean();
        PaintLabels();
        m_rPainter.restore();
    }

private:
    QPointF ToPoint(const CVectorReading& rVector) const {
        return m_Centre + QPointF(rVector.m_X, -rVector.m_Y) * (m_Radius / m_Range.m_Full);
    }
    QPointF OnCircle(double Degrees, double Distance) const {
        const double a = Degrees * std::numbers::pi / 180.0;
        return m_Centre + QPointF(std::cos(a), -std::sin(a)) * Distance;
    }
    bool IsInside(const CVectorReading& rVector) const {
        return GetLength(rVector) <= m_Range.m_Full * 1.0001;
    }

    void PaintGrid() {
        m_rPainter.setPen(Qt::NoPen);
        m_rPainter.setBrush(m_Colors.m_Background);
        m_rPainter.drawEllipse(m_Centre, m_Radius, m_Radius);
        m_rPainter.setBrush(Qt::NoBrush);
        m_rPainter.setPen(QPen(m_Colors.m_Grid, 1.0));
        const int nRings = static_cast<int>(std::lround(m_Range.m_Full / m_Range.m_Step));
        for (int i = 1; i <= nRings; ++i) {
            const double Radius = m_Radius * i / nRings;
            m_rPainter.drawEllipse(m_Centre, Radius, Radius);
        }
        for (int Degrees = 0; Degrees < 360; Degrees += SPOKE) {
            m_rPainter.drawLine(OnCircle(Degrees, m_Radius * (Degrees % 90 == 0 ? 0.0 : 0.1)),
                                OnCircle(Degrees, m_Radius));
        }
    }

    void PaintTarget() {
        const double Radius = m_Radius * m_rData.m_Target / m_Range.m_Full;
        QColor Fill = m_Colors.m_Within;
        Fill.setAlphaF(0.18F);
        m_rPainter.setPen(QPen(m_Colors.m_Within, 2.0));
        m_rPainter.setBrush(Fill);
        m_rPainter.drawEllipse(m_Centre, Radius, Radius);
        m_rPainter.setBrush(Qt::NoBrush);
    }

    void PaintReadings() {
        QPolygonF Points;
        for (const CVectorReading& rReading : m_rData.m_Readings) {
            if (IsInside(rReading)) {
                Points << ToPoint(rReading);
            }
        }
        QColor Color = m_rData.m_bCounts ? m_Colors.m_Reading : m_Colors.m_Pale;
        Color.setAlphaF(0.6F);
        m_rPainter.setPen(QPen(Color, std::max(3.0, m_Radius / 45.0), Qt::SolidLine, Qt::RoundCap));
        m_rPainter.drawPoints(Points);
    }

    void PaintPath() {
        const QPen Line(m_Colors.m_Path, 1.5, Qt::DashLine);
        for (std::size_t i = 0; i < m_rData.m_Stations.size(); ++i) {
            const QPointF Here = ClampToRim(m_rData.m_Stations[i].m_Mean);
            if (i > 0) {
                m_rPainter.setPen(Line);
                PaintArrow(ClampToRim(m_rData.m_Stations[i - 1].m_Mean), Here);
            }
        }
        for (const CPolarPlotData::CStation& rStation : m_rData.m_Stations) {
            m_rPainter.setPen(QPen(m_Colors.m_Path, 2.0));
            // One outside shows by an empty mark that it isn't where it seems to be.
            m_rPainter.setBrush(IsInside(rStation.m_Mean) ? QBrush(m_Colors.m_Path)
                                                          : QBrush(m_Colors.m_Background));
            const double Size = std::max(3.0, m_Radius / 40.0);
            m_rPainter.drawEllipse(ClampToRim(rStation.m_Mean), Size, Size);
        }
        m_rPainter.setBrush(Qt::NoBrush);
    }
    QPointF ClampToRim(const CVectorReading& rVector) const {
        return IsInside(rVector) ? ToPoint(rVector) : OnCircle(GetAngleDeg(rVector), m_Radius);
    }
    void PaintArrow(const QPointF& rFrom, const QPointF& rTo) {
        const QPointF Way = rTo - rFrom;
        const double Length = std::hypot(Way.x(), Way.y());
        const double Head = std::max(7.0, m_Radius / 18.0);
        m_rPainter.drawLine(rFrom, rTo);
        if (Length < 2.0 * Head) {
            return;
        }
        const QPointF Along = Way / Length;
        const QPointF Across(-Along.y(), Along.x());
        const QPointF Tip = rTo - Along * (m_Radius / 30.0);
        m_rPainter.setPen(QPen(m_Colors.m_Path, 1.5));
        m_rPainter.setBrush(m_Colors.m_Path);
        m_rPainter.drawPolygon(QPolygonF(
            {Tip, Tip - Along * Head + Across * (Head * 0.45), Tip - Along * Head - Across * (Head * 0.45)}));
        m_rPainter.setBrush(Qt::NoBrush);
    }

    void PaintMean() {
        if (!m_rData.m_Mean || !m_rData.m_bCounts) {
            return;
        }
        const QPointF Mean = ClampToRim(*m_rData.m_Mean);
        m_rPainter.setPen(QPen(m_Colors.m_Mean, 2.0));
        m_rPainter.drawLine(m_Centre, Mean);
        if (const std::optional<CEllipse>& rEllipse = m_rData.m_Ellipse) {
            const double Scale = m_Radius / m_Range.m_Full;
            m_rPainter.save();
            QPainterPath Rim;
            Rim.addEllipse(m_Centre, m_Radius, m_Radius);
            m_rPainter.setClipPath(Rim, Qt::IntersectClip);
            m_rPainter.translate(Mean);
            m_rPainter.rotate(-rEllipse->m_AngleDeg);
            m_rPainter.drawEllipse(QPointF(), rEllipse->m_SemiMajor * Scale, rEllipse->m_SemiMinor * Scale);
            m_rPainter.restore();
        }
        m_rPainter.setBrush(m_Colors.m_Mean);
        const double Size = std::max(2.5, m_Radius / 50.0);
        m_rPainter.drawEllipse(Mean, Size, Size);
        m_rPainter.setBrush(Qt::NoBrush);
    }

    void PaintNumbers() {
        m_rPainter.setPen(m_Colors.m_Ink);
        const double Line = m_Metrics.height();
        const int Every = m_Radius > 9.0 * Line ? SPOKE : 90;
        for (int Degrees = 0; Degrees < 360; Degrees += Every) {
            const QPointF Place = OnCircle(Degrees, m_Radius + Line * (Degrees % 180 == 0 ? 1.2 : 0.75));
            Centre(Place, Figures::WriteAngle(Degrees));
            m_Taken.push_back(GetGround(Place, Figures::WriteAngle(Degrees)));
        }
        // The rings' numbers where no spoke is; the outer one has the unit.
        const double NumbersAt = ChooseNumbersAt();
        const int nRings = static_cast<int>(std::lround(m_Range.m_Full / m_Range.m_Step));
        for (int i = 1; i <= nRings; ++i) {
            QString Number = QString::number(m_Range.m_Step * i);
            if (i == nRings) {
                Number += " " + QString::fromUtf8(Units::UNBALANCE);
            }
            OnGround(OnCircle(NumbersAt, m_Radius * i / nRings - (i == nRings ? Line * 0.7 : 0.0)), Number);
        }
    }

    void PaintLabels() {
        for (const CPolarPlotData::CStation& rStation : m_rData.m_Stations) {
            PaintStationLabel(rStation);
        }
        QFont Bold(m_rPainter.font());
        Bold.setBold(true);
        m_rPainter.setFont(Bold);
        m_rPainter.setPen(m_Colors.m_Ink);
        m_rPainter.drawText(m_TitlePlace, Qt::AlignLeft | Qt::AlignTop, m_rData.m_Title);
    }
    /// Between two steep spokes, where numbers don't meet; as far from all that is measured as can be.
    double ChooseNumbersAt() const {
        double Best = 0.0;
        double BestDistance = -1.0;
        for (const double Degrees : {285.0, 255.0, 75.0, 105.0}) {
            const QPointF Rim = OnCircle(Degrees, m_Radius * 0.8);
            double Distance = 2.0 * m_Radius;
            const auto Avoid = [&](const CVectorReading& rVector) {
                const QPointF Way = ClampToRim(rVector) - Rim;
                Distance = std::min(Distance, std::hypot(Way.x(), Way.y()));
            };
            for (const CPolarPlotData::CStation& rStation : m_rData.m_Stations) {
                Avoid(rStation.m_Mean);
            }
            if (m_rData.m_Mean) {
                Avoid(*m_rData.m_Mean);
            }
            // The first that is far enough, so that the numbers don't wander.
            if (Distance > m_Radius * 0.6) {
                return Degrees;
            }
            if (Distance > BestDistance) {
                Best = Degrees;
                BestDistance = Distance;
            }
        }
        return Best;
    }
    void PaintStationLabel(const CPolarPlotData::CStation& rStation) {
        const QPointF Here = ClampToRim(rStation.m_Mean);
        QString Label = rStation.m_Label;
        if (!IsInside(rStation.m_Mean)) {
            Label += " " + Figures::WriteReading(GetLength(rStation.m_Mean));
        }
        const double Width = m_Metrics.horizontalAdvance(Label) / 2.0 + std::max(8.0, m_Radius / 16.0);
        const double Height = m_Metrics.height();
        // Towards the centre first, where there is always room; elsewhere if something is there.
        const double Side = Here.x() > m_Centre.x() ? -1.0 : 1.0;
        const double Up = Here.y() > m_Centre.y() ? -1.0 : 1.0;
        const std::array Offsets = {QPointF(Side * Width, 0.0),  QPointF(Side * Width, Up * Height),
                                    QPointF(0.0, Up * Height),   QPointF(Side * Width, -Up * Height),
                                    QPointF(-Side * Width, 0.0), QPointF(0.0, -Up * Height)};
        const auto* const pFree = std::ranges::find_if(Offsets, [&](const QPointF& rOffset) {
            const QRectF Ground = GetGround(Here + rOffset, Label);
            return std::ranges::none_of(m_Taken,
                                        [&](const QRectF& rTaken) { return rTaken.intersects(Ground); });
        });
        OnGround(Here + (pFree == Offsets.end() ? Offsets.front() : *pFree), Label);
    }
    void Centre(const QPointF& rMiddle, const QString& rText) {
        const double Width = m_Metrics.horizontalAdvance(rText) + 2.0;
        const double Height = m_Metrics.height();
        m_rPainter.drawText(QRectF(rMiddle.x() - Width / 2.0, rMiddle.y() - Height / 2.0, Width, Height),
                            Qt::AlignCenter, rText);
    }
    QRectF GetGround(const QPointF& rMiddle, const QString& rText) const {
        const double Width = m_Metrics.horizontalAdvance(rText) + 4.0;
        const double Height = m_Metrics.height() * 0.9;
        return {rMiddle.x() - Width / 2.0, rMiddle.y() - Height / 2.0, Width, Height};
    }
    void OnGround(const QPointF& rMiddle, const QString& rText) {
        const QRectF Place = GetGround(rMiddle, rText);
        QColor Ground = m_Colors.m_Background;
        Ground.setAlphaF(0.8F);
        m_rPainter.fillRect(Place, Ground);
        m_rPainter.setPen(m_Colors.m_Ink);
        Centre(rMiddle, rText);
        m_Taken.push_back(Place);
    }

    QPainter& m_rPainter;
    const CPolarPlotData& m_rData;
    CPolarRange m_Range;
    CPlotColors m_Colors;
    QFontMetricsF m_Metrics;
    QPointF m_Centre;
    double m_Radius = 1.0;
    QRectF m_TitlePlace;
    std::vector<QRectF> m_Taken;  ///< by labels
};

}  // namespace

CPolarRange ChooseRange(const CPolarPlotData& rData, const CPolarRange& rFormer) {
    const double Present = GetPresentReach(rData);
    const double Stations = GetStationReach(rData);
    const bool bZoomed = !rData.m_Readings.empty() && Stations > Present * ZOOM_FROM;
    const double Reach = bZoomed ? Present : std::max(Present, Stations);
    if (rFormer.m_bZoomed == bZoomed && Reach <= rFormer.m_Full && Reach > rFormer.m_Full * STAYS_ABOVE) {
        return rFormer;
    }
    return MakeRange(Reach, bZoomed);
}

void PaintPolarPlot(QPainter& rPainter, const QRectF& rPlace, const CPolarPlotData& rData,
                    const QPalette& rPalette) {
    CPlot(rPainter, rPlace, rData, rPalette).Paint();
}

QString DescribePolarPlot(const CPolarPlotData& rData) {
    QStringList Parts;
    if (!rData.m_Title.isEmpty()) {
        Parts << rData.m_Title;
    }
    const auto Describe = [](const CVectorReading& rVector) {
        return Text("CONSOLE_READING")
            .arg(Figures::WriteReading(GetLength(rVector)), QString::fromUtf8(Units::UNBALANCE),
                 Figures::WriteAngle(GetAngleDeg(rVector)));
    };
    for (const CPolarPlotData::CStation& rStation : rData.m_Stations) {
        Parts << rStation.m_Label + ": " + Describe(rStation.m_Mean);
    }
    if (rData.m_Mean && rData.m_bCounts) {
        Parts << Text("CONSOLE_PLOT_MEAN").arg(Describe(*rData.m_Mean)).arg(rData.m_Readings.size());
    }
    Parts << Text("CONSOLE_PLOT_TARGET")
                 .arg(QString::number(rData.m_Target), QString::fromUtf8(Units::UNBALANCE));
    return Parts.join("; ");
}
