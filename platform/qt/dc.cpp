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
#include "platform/qt/qttypes.h"
#include "platform/qt/stylepart.h"
#include "platform/qt/wrappedtext.h"
#include "platform/window/syscolor.h"

namespace {

/// A pixel's middle, where curves and slanting lines are drawn.
QPointF Middle(CPoint Point) {
    return {Point.x + 0.5, Point.y + 0.5};
}

/// What a circle around a pixel's middle fills.
QRectF SquareAround(CPoint Center, int Radius) {
    const QPointF Origin = Middle(Center);
    return {Origin.x() - Radius, Origin.y() - Radius, 2.0 * Radius, 2.0 * Radius};
}

QPen MakePen(const CPen& rPen) {
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
        if (!rTarget.GetImpl().IsEmpty()) {
            m_Painter.begin(&rTarget.GetImpl().GetImage());
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

    /// rSource is in pixels of scale 1. bOverlap: the image may be the target's own.
    void DrawImage(const CRect& rDestination, const QImage& rImage, const CRect& rSource, bool bOverlap) {
        const double Scale = rImage.devicePixelRatio();
        const QRectF Pixels(rSource.left * Scale, rSource.top * Scale, rSource.Width() * Scale,
                            rSource.Height() * Scale);
        // Pictures of a higher resolution than the target are shrunk smoothly.
        m_Painter.setRenderHint(QPainter::SmoothPixmapTransform, Scale != m_rTarget.GetScale());
        m_Painter.drawImage(QRectF(ToQt(rDestination)), bOverlap ? rImage.copy() : rImage, Pixels);
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

void CDC::InvertRect(const CRect& rRect) {
    if (rRect.IsRectEmpty() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    m_pImpl->m_Painter.setCompositionMode(QPainter::CompositionMode_Difference);
    m_pImpl->m_Painter.fillRect(ToQt(rRect), Qt::white);
    m_pImpl->m_Painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void CDC::DrawFocusRect(const CRect& rRect) {
    if (rRect.IsRectEmpty() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    QPen Pen(ToQt(GetSysColor(SysColor::eWindowText)), 1.0);
    Pen.setDashPattern({1.0, 1.0});
    Pen.setCapStyle(Qt::FlatCap);
    m_pImpl->SetSmooth(false);
    m_pImpl->m_Painter.setPen(Pen);
    m_pImpl->m_Painter.setBrush(Qt::NoBrush);
    m_pImpl->m_Painter.drawRect(QRectF(ToQt(rRect)).adjusted(0.5, 0.5, -0.5, -0.5));
}

void CDC::DrawPart(const CRect& rRect, Part Kind, CPartState State) {
    if (!rRect.IsRectEmpty() && m_pImpl->m_Painter.isActive()) {
        DrawStylePart(m_pImpl->m_Painter, ToQt(rRect), Kind, State);
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
    m_pImpl->m_Painter.setPen(MakePen(m_pImpl->m_State.m_Pen));
    m_pImpl->SetSmooth(!IsOnGrid(Point - From));
    if (IsOnGrid(Point - From) && m_pImpl->m_rTarget.GetScale() == 1.0) {
        m_pImpl->m_Painter.drawLine(From.x, From.y, Point.x, Point.y);
    } else {
        m_pImpl->m_Painter.drawLine(Middle(From), Middle(Point));
    }
}

void CDC::Ellipse(const CRect& rRect) {
    if (rRect.IsRectEmpty() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    const CPen& rPen = m_pImpl->m_State.m_Pen;
    const CBrush& rBrush = m_pImpl->m_State.m_Brush;
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.setPen(MakePen(rPen));
    m_pImpl->m_Painter.setBrush(rBrush.m_Style == CBrush::eSolid ? QBrush(ToQt(rBrush.m_Color)) : QBrush());
    // The outline, too, lies inside.
    const double Inset = rPen.m_Style == CPen::eNull ? 0.0 : std::max(rPen.m_Width, 1) / 2.0;
    m_pImpl->m_Painter.drawEllipse(QRectF(ToQt(rRect)).adjusted(Inset, Inset, -Inset, -Inset));
}

void CDC::Arc(CPoint Center, int Radius, double StartDegrees, double SweepDegrees) {
    if (!m_pImpl->m_Painter.isActive()) {
        return;
    }
    const QRectF Square = SquareAround(Center, Radius);
    QPainterPath Path;
    Path.arcMoveTo(Square, StartDegrees);
    Path.arcTo(Square, StartDegrees, SweepDegrees);
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.strokePath(Path, MakePen(m_pImpl->m_State.m_Pen));
}

void CDC::FillRing(CPoint Center, int InnerRadius, int OuterRadius, double StartDegrees, double SweepDegrees,
                   COLORREF Color) {
    if (std::abs(SweepDegrees) < 360.0) {
        const double EndDegrees = StartDegrees + SweepDegrees;
        FillRing(Center, InnerRadius, OuterRadius, {StartDegrees, StartDegrees}, {EndDegrees, EndDegrees},
                 Color);
        return;
    }
    if (!m_pImpl->m_Painter.isActive() || OuterRadius <= 0 || OuterRadius <= InnerRadius) {
        return;
    }
    QPainterPath Path;
    Path.setFillRule(Qt::OddEvenFill);
    Path.addEllipse(SquareAround(Center, OuterRadius));
    if (InnerRadius > 0) {
        Path.addEllipse(SquareAround(Center, InnerRadius));
    }
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.fillPath(Path, ToQt(Color));
}

void CDC::FillRing(CPoint Center, int InnerRadius, int OuterRadius, CRingEdge Start, CRingEdge End,
                   COLORREF Color) {
    if (!m_pImpl->m_Painter.isActive() || OuterRadius <= 0 || OuterRadius <= InnerRadius) {
        return;
    }
    const QRectF Outer = SquareAround(Center, OuterRadius);
    QPainterPath Path;
    Path.arcMoveTo(Outer, Start.m_OuterDegrees);
    Path.arcTo(Outer, Start.m_OuterDegrees, End.m_OuterDegrees - Start.m_OuterDegrees);
    if (InnerRadius > 0) {
        Path.arcTo(SquareAround(Center, InnerRadius), End.m_InnerDegrees,
                   Start.m_InnerDegrees - End.m_InnerDegrees);
    } else {
        Path.lineTo(Middle(Center));
    }
    Path.closeSubpath();
    m_pImpl->SetSmooth(true);
    m_pImpl->m_Painter.fillPath(Path, ToQt(Color));
}

void CDC::BitBlt(const CRect& rDestination, const CBitmap& rSource, CPoint SourceOrigin) {
    const CRect Wanted(SourceOrigin, rDestination.Size());
    const CSize Size = rSource.GetSize();
    // Only what the source really has; the toolkit would place a part that sticks out elsewhere.
    const CRect Present(std::max(Wanted.left, 0), std::max(Wanted.top, 0), std::min(Wanted.right, Size.cx),
                        std::min(Wanted.bottom, Size.cy));
    if (Present.IsRectEmpty() || !m_pImpl->m_Painter.isActive()) {
        return;
    }
    const CPoint Target = rDestination.TopLeft() + Present.TopLeft() - Wanted.TopLeft();
    m_pImpl->DrawImage(CRect(Target, Present.Size()), rSource.GetImpl().GetImage(), Present,
                       &rSource == &m_pImpl->m_rTarget);
}

void CDC::TransparentBlt(const CRect& rDestination, const CBitmap& rSource, CPoint SourceOrigin,
                         COLORREF Mask) {
    CBitmap Masked = rSource;
    QImage& rImage = Masked.GetImpl().GetImage();
    if (rImage.isNull()) {
        return;
    }
    rImage = rImage.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QRgb Hidden = ToQt(Mask).rgb();
    for (int y = 0; y < rImage.height(); ++y) {
        auto* const pLine = reinterpret_cast<QRgb*>(rImage.scanLine(y));
        std::replace(pLine, pLine + rImage.width(), Hidden, qRgba(0, 0, 0, 0));
    }
    BitBlt(rDestination, Masked, SourceOrigin);
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
    const QFontMetrics Metrics(m_pImpl->GetFont().m_Font);
    QStringList Lines = !bSingleLine && (Format & DT_WORDBREAK) != 0 ? WrapText(Text, Metrics, rRect.Width())
                                                                     : Text.split(u'\n');
    if ((Format & DT_END_ELLIPSIS) != 0) {
        for (QString& rLine : Lines) {
            rLine = Metrics.elidedText(rLine, Qt::ElideRight, rRect.Width());
        }
    }
    const int nLineHeight = m_pImpl->GetFont().GetHeight();
    const int nHeight = nLineHeight * static_cast<int>(Lines.size());

    if ((Format & DT_CALCRECT) != 0) {
        int nWidth = 0;
        for (const QString& rLine : Lines) {
            nWidth = std::max(nWidth, Metrics.horizontalAdvance(rLine));
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
