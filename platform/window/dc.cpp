#include "platform/window/dc.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/fontmetric.h"

namespace {

QColor ToQt(COLORREF Color) {
    return {GetRValue(Color), GetGValue(Color), GetBValue(Color)};
}

QRect ToQt(const CRect& rRect) {
    return {rRect.left, rRect.top, rRect.Width(), rRect.Height()};
}

/// A pixel's middle, where curves and slanting lines are drawn.
QPointF Middle(CPoint Point) {
    return {Point.x + 0.5, Point.y + 0.5};
}

QPen ToQt(const CPen& rPen) {
    if (rPen.m_Style == CPen::eNull) {
        return {Qt::NoPen};
    }
    QPen Pen(ToQt(rPen.m_Color), std::max(rPen.m_Width, 1));
    Pen.setJoinStyle(Qt::RoundJoin);
    if (rPen.m_Style == CPen::eDot) {
        Pen.setDashPattern({3.0, 3.0});
        Pen.setCapStyle(Qt::FlatCap);  // others would fill the gaps
    } else {
        Pen.setCapStyle(rPen.m_Width > 1 ? Qt::RoundCap : Qt::SquareCap);  // both ends belong to a line
    }
    return Pen;
}

/// Lines that meet the pixel grid stay sharp; all others get smooth edges.
bool IsOnGrid(CPoint Delta) {
    return Delta.x == 0 || Delta.y == 0 || std::abs(Delta.x) == std::abs(Delta.y);
}

bool CanDrawText() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

}  // namespace

struct CDC::Impl {
    struct CState {
        CPen m_Pen;
        CBrush m_Brush;
        CFont m_Font;
        COLORREF m_TextColor = RGB(0, 0, 0);
        COLORREF m_BkColor = RGB(255, 255, 255);
        BkMode m_BkMode = eTransparent;
    };

    explicit Impl(CBitmap& rTarget) : m_rTarget(rTarget) {
        if (!rTarget.GetImpl().m_Image.isNull()) {
            m_Painter.begin(&rTarget.GetImpl().m_Image);
        }
    }

    /// The toolkit's font for the selected one, looked up at the first text after a selection.
    const CFontMetric& GetFont() {
        if (!m_Metric) {
            m_Metric = FindFont(m_State.m_Font);
        }
        return *m_Metric;
    }

    int GetTextWidth(const QString& rText) { return QFontMetrics(GetFont().m_Font).horizontalAdvance(rText); }

    void DrawTextLine(CPoint TopLeft, const QString& rText) {
        const CFontMetric& rMetric = GetFont();
        if (m_State.m_BkMode == eOpaque) {
            m_Painter.fillRect(TopLeft.x, TopLeft.y, GetTextWidth(rText), rMetric.GetHeight(),
                               ToQt(m_State.m_BkColor));
        }
        m_Painter.setFont(rMetric.m_Font);
        m_Painter.setPen(ToQt(m_State.m_TextColor));
        m_Painter.drawText(TopLeft.x, TopLeft.y + rMetric.m_Ascent, rText);
    }

    void SetSmooth(bool bSmooth) { m_Painter.setRenderHint(QPainter::Antialiasing, bSmooth); }

    CBitmap& m_rTarget;
    QPainter m_Painter;  ///< not active on an empty bitmap: everything then draws nothing
    CState m_State;
    std::vector<CState> m_Saved;
    CPoint m_Position;
    std::optional<CFontMetric> m_Metric;
};

CDC::CDC(CBitmap& rTarget) : m_pImpl(std::make_unique<Impl>(rTarget)) {}

CDC::~CDC() = default;

int CDC::SaveDC() {
    m_pImpl->m_Saved.push_back(m_pImpl->m_State);
    if (m_pImpl->m_Painter.isActive()) {
        m_pImpl->m_Painter.save();
    }
    return static_cast<int>(m_pImpl->m_Saved.size());
}

bool CDC::RestoreDC(int Saved) {
    if (Saved < 1 || static_cast<std::size_t>(Saved) > m_pImpl->m_Saved.size()) {
        return false;
    }
    while (m_pImpl->m_Saved.size() >= static_cast<std::size_t>(Saved)) {
        m_pImpl->m_State = m_pImpl->m_Saved.back();
        m_pImpl->m_Saved.pop_back();
        if (m_pImpl->m_Painter.isActive()) {
            m_pImpl->m_Painter.restore();
        }
    }
    m_pImpl->m_Metric.reset();
    return true;
}

void CDC::SelectPen(const CPen& rPen) {
    m_pImpl->m_State.m_Pen = rPen;
}

void CDC::SelectBrush(const CBrush& rBrush) {
    m_pImpl->m_State.m_Brush = rBrush;
}

void CDC::SelectFont(const CFont& rFont) {
    m_pImpl->m_State.m_Font = rFont;
    m_pImpl->m_Metric.reset();
}

void CDC::SetTextColor(COLORREF Color) {
    m_pImpl->m_State.m_TextColor = Color;
}

void CDC::SetBkColor(COLORREF Color) {
    m_pImpl->m_State.m_BkColor = Color;
}

void CDC::SetBkMode(BkMode Mode) {
    m_pImpl->m_State.m_BkMode = Mode;
}

void CDC::IntersectClipRect(const CRect& rRect) {
    if (m_pImpl->m_Painter.isActive()) {
        m_pImpl->m_Painter.setClipRect(ToQt(rRect), Qt::IntersectClip);
    }
}

void CDC::FillSolidRect(const CRect& rRect, COLORREF Color) {
    if (!rRect.IsRectEmpty() && m_pImpl->m_Painter.isActive()) {
        m_pImpl->m_Painter.fillRect(ToQt(rRect), ToQt(Color));
    }
}

void CDC::MoveTo(CPoint Point) {
    m_pImpl->m_Position = Point;
}

void CDC::LineTo(CPoint Point) {
    const CPoint From = m_pImpl->m_Position;
    m_pImpl->m_Position = Point;
    if (!m_pImpl->m_Painter.isActive()) {
        return;
    }
    m_pImpl->m_Painter.setPen(ToQt(m_pImpl->m_State.m_Pen));
    if (IsOnGrid(Point - From)) {
        m_pImpl->SetSmooth(false);
        m_pImpl->m_Painter.drawLine(From.x, From.y, Point.x, Point.y);
    } else {
        m_pImpl->SetSmooth(true);
        m_pImpl->m_Painter.drawLine(Middle(From), Middle(Point));
    }
}

void CDC::Polyline(std::span<const CPoint> Points) {
    if (Points.empty()) {
        return;
    }
    MoveTo(Points.front());
    for (const CPoint Point : Points.subspan(1)) {
        LineTo(Point);
    }
}

void CDC::Ellipse(const CRect& rRect) {
    if (rRect.IsRectEmpty() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    const CPen& rPen = m_pImpl->m_State.m_Pen;
    const CBrush& rBrush = m_pImpl->m_State.m_Brush;
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.setPen(ToQt(rPen));
    m_pImpl->m_Painter.setBrush(rBrush.m_Style == CBrush::eSolid ? QBrush(ToQt(rBrush.m_Color)) : QBrush());
    // The outline, too, lies inside.
    const double Inset = rPen.m_Style == CPen::eNull ? 0.0 : std::max(rPen.m_Width, 1) / 2.0;
    m_pImpl->m_Painter.drawEllipse(QRectF(ToQt(rRect)).adjusted(Inset, Inset, -Inset, -Inset));
}

void CDC::Arc(CPoint Center, int Radius, double StartDegrees, double SweepDegrees) {
    if (!m_pImpl->m_Painter.isActive()) {
        return;
    }
    const QPointF Origin = Middle(Center);
    const QRectF Square(Origin.x() - Radius, Origin.y() - Radius, 2.0 * Radius, 2.0 * Radius);
    QPainterPath Path;
    Path.arcMoveTo(Square, StartDegrees);
    Path.arcTo(Square, StartDegrees, SweepDegrees);
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.strokePath(Path, ToQt(m_pImpl->m_State.m_Pen));
}

void CDC::FillRing(CPoint Center, int InnerRadius, int OuterRadius, double StartDegrees, double SweepDegrees,
                   COLORREF Color) {
    if (!m_pImpl->m_Painter.isActive() || OuterRadius <= 0 || OuterRadius <= InnerRadius) {
        return;
    }
    const QPointF Origin = Middle(Center);
    const auto Square = [&Origin](double Radius) {
        return QRectF(Origin.x() - Radius, Origin.y() - Radius, 2.0 * Radius, 2.0 * Radius);
    };
    QPainterPath Path;
    if (std::abs(SweepDegrees) >= 360.0) {
        Path.setFillRule(Qt::OddEvenFill);
        Path.addEllipse(Square(OuterRadius));
        if (InnerRadius > 0) {
            Path.addEllipse(Square(InnerRadius));
        }
    } else {
        Path.arcMoveTo(Square(OuterRadius), StartDegrees);
        Path.arcTo(Square(OuterRadius), StartDegrees, SweepDegrees);
        if (InnerRadius > 0) {
            Path.arcTo(Square(InnerRadius), StartDegrees + SweepDegrees, -SweepDegrees);
        } else {
            Path.lineTo(Origin);
        }
        Path.closeSubpath();
    }
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.fillPath(Path, ToQt(Color));
}

void CDC::BitBlt(const CRect& rDestination, const CBitmap& rSource, CPoint SourceOrigin) {
    const QImage& rImage = rSource.GetImpl().m_Image;
    if (rDestination.IsRectEmpty() || rImage.isNull() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    const QRect Part(QPoint(SourceOrigin.x, SourceOrigin.y),
                     QSize(rDestination.Width(), rDestination.Height()));
    // Only what the source really has; the toolkit would place a part that sticks out elsewhere.
    const QRect Present = Part.intersected(rImage.rect());
    const QPoint Target = QPoint(rDestination.left, rDestination.top) + Present.topLeft() - Part.topLeft();
    if (&rSource == &m_pImpl->m_rTarget) {
        m_pImpl->m_Painter.drawImage(Target, rImage.copy(Present));  // source and target may overlap
    } else {
        m_pImpl->m_Painter.drawImage(Target, rImage, Present);
    }
}

int CDC::DrawText(const std::string& rText, CRect& rRect, unsigned Format) {
    if (!CanDrawText()) {
        return 0;
    }
    const bool bSingleLine = (Format & DT_SINGLELINE) != 0;
    QString Text = QString::fromStdString(rText);
    if (bSingleLine) {
        Text.replace(u'\n', u' ');
    }
    const QStringList Lines = Text.split(u'\n');
    const int nLineHeight = m_pImpl->GetFont().GetHeight();
    const int nHeight = nLineHeight * static_cast<int>(Lines.size());

    if ((Format & DT_CALCRECT) != 0) {
        int nWidth = 0;
        for (const QString& rLine : Lines) {
            nWidth = std::max(nWidth, m_pImpl->GetTextWidth(rLine));
        }
        rRect.right = rRect.left + nWidth;
        rRect.bottom = rRect.top + nHeight;
        return nHeight;
    }
    if (!m_pImpl->m_Painter.isActive()) {
        return nHeight;
    }
    int y = rRect.top;
    // Vertical placement is for single lines.
    if (bSingleLine && (Format & DT_VCENTER) != 0) {
        y += (rRect.Height() - nHeight) / 2;
    } else if (bSingleLine && (Format & DT_BOTTOM) != 0) {
        y = rRect.bottom - nHeight;
    }
    for (const QString& rLine : Lines) {
        int x = rRect.left;
        if ((Format & DT_RIGHT) != 0) {
            x = rRect.right - m_pImpl->GetTextWidth(rLine);
        } else if ((Format & DT_CENTER) != 0) {
            x += (rRect.Width() - m_pImpl->GetTextWidth(rLine)) / 2;
        }
        m_pImpl->DrawTextLine({x, y}, rLine);
        y += nLineHeight;
    }
    return nHeight;
}

void CDC::TextOut(CPoint Point, const std::string& rText) {
    if (!CanDrawText() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    QPainter& rPainter = m_pImpl->m_Painter;
    rPainter.save();
    rPainter.translate(Point.x, Point.y);
    rPainter.rotate(-m_pImpl->m_State.m_Font.m_Escapement / 10.0);
    m_pImpl->DrawTextLine({0, -m_pImpl->GetFont().m_Ascent}, QString::fromStdString(rText));
    rPainter.restore();
}

CSize CDC::GetTextExtent(const std::string& rText) const {
    if (!CanDrawText()) {
        return {};
    }
    return {m_pImpl->GetTextWidth(QString::fromStdString(rText)), m_pImpl->GetFont().GetHeight()};
}

int CDC::GetFontHeight() const {
    return CanDrawText() ? m_pImpl->GetFont().GetHeight() : 0;
}

COLORREF CDC::GetPixel(CPoint Point) const {
    return m_pImpl->m_rTarget.GetPixel(Point.x, Point.y);
}

int CDC::GetBitsPerPixel() const {
    return 24;
}

int CDC::GetDotsPerInch() const {
    return 96;
}
