#include "console/rotorview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "platform/rvldb/gettext.h"

namespace {

constexpr double WEIGHT_WIDTH = 20.0;  // degrees, as on the module's page

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

QRectF Around(const QPointF& rCenter, double Radius) {
    return {rCenter.x() - Radius, rCenter.y() - Radius, 2 * Radius, 2 * Radius};
}

/// Text centred on a point, never cut.
void DrawTextAt(QPainter& rPainter, const QPointF& rCenter, const QString& rText) {
    const QSizeF Size = rPainter.fontMetrics().size(0, rText);
    const QRectF Place(rCenter.x() - Size.width() / 2 - 1, rCenter.y() - Size.height() / 2, Size.width() + 2,
                       Size.height());
    rPainter.drawText(Place, Qt::AlignCenter, rText);
}

void SetFontHeight(QPainter& rPainter, double Pixels, bool bBold) {
    QFont Font = rPainter.font();
    constexpr double READABLE = 9.0;
    Font.setPixelSize(static_cast<int>(std::max(READABLE, Pixels)));
    Font.setBold(bBold);
    rPainter.setFont(Font);
}

}  // namespace

CRotorView::CRotorView(QWidget* pParent) : QWidget(pParent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    DescribeForReaders();
}

QSize CRotorView::sizeHint() const {
    const int Side = fontMetrics().height() * 16;
    return {Side, Side};
}

QSize CRotorView::minimumSizeHint() const {
    const int Side = fontMetrics().height() * 8;
    return {Side, Side};
}

CRotorGeometry CRotorView::GetGeometry() const {
    constexpr double MARGIN = 4.0;
    return {QRectF(rect()), MARGIN, m_Shown.m_State.m_bCounterClockwiseScale, m_Shown.m_State.m_nHoles};
}

void CRotorView::Show(const CShown& rShown) {
    if (rShown == m_Shown) {
        return;
    }
    m_Shown = rShown;
    const std::size_t nItems =
        m_Shown.m_bScrews ? static_cast<std::size_t>(m_Shown.m_State.m_nHoles) : m_Shown.m_Weights.size();
    if (m_Active >= nItems) {
        m_Active = 0;
    }
    if (m_Dragged && *m_Dragged >= m_Shown.m_Weights.size()) {
        m_Dragged.reset();
    }
    DescribeForReaders();
    update();
}

void CRotorView::DescribeForReaders() {
    QStringList Parts{Text("PB_PLANE_TEXT") + QString(" %1").arg(m_Shown.m_Plane + 1)};
    if (m_Shown.m_bScrews) {
        for (const CRotorScrew& rScrew : m_Shown.m_State.m_Screws) {
            Parts << Text("MACHINE_SCREW_IN_HOLE").arg(rScrew.m_Grams).arg(rScrew.m_Hole);
        }
    } else {
        for (std::size_t Slot = 0; Slot < m_Shown.m_Weights.size(); ++Slot) {
            const std::optional<int>& rAngle = m_Shown.m_Weights[Slot];
            Parts << (rAngle ? Text("MACHINE_WEIGHT_AT").arg(Slot + 1).arg(*rAngle)
                             : Text("MACHINE_WEIGHT_OFF").arg(Slot + 1));
        }
    }
    setAccessibleName(Parts.join(", "));
}

std::optional<int> CRotorView::GetAngle(std::size_t Slot) const {
    if (m_Dragged != Slot || !m_Pointer) {
        return m_Shown.m_Weights[Slot];
    }
    const CRotorGeometry Geometry = GetGeometry();
    return Geometry.IsAtRing(*m_Pointer) ? std::optional(Geometry.GetAngle(*m_Pointer)) : std::nullopt;
}

QPointF CRotorView::GetWeightPlace(std::size_t Slot) const {
    const CRotorGeometry Geometry = GetGeometry();
    if (const std::optional<int> Angle = GetAngle(Slot)) {
        return Geometry.GetPoint(*Angle, Geometry.GetMiddle());
    }
    if (m_Dragged == Slot && m_Pointer) {
        return *m_Pointer;
    }
    // Side by side in the lower half of the hub.
    const double Apart = Geometry.GetInner() * 0.7;
    const double Left = -Apart * (static_cast<double>(m_Shown.m_Weights.size()) - 1) / 2;
    return Geometry.GetCenter() +
           QPointF(Left + Apart * static_cast<double>(Slot), Geometry.GetInner() * 0.48);
}

std::optional<std::size_t> CRotorView::FindWeight(const QPointF& rPoint) const {
    const CRotorGeometry Geometry = GetGeometry();
    // A finger is as wide as a ring of this size; the nearer of two counts.
    const double Reach = std::max(Geometry.GetOuter() - Geometry.GetInner(), fontMetrics().height() * 1.5);
    std::optional<std::size_t> Found;
    double Nearest = Reach;
    for (std::size_t Slot = 0; Slot < m_Shown.m_Weights.size(); ++Slot) {
        const QPointF Arm = rPoint - GetWeightPlace(Slot);
        const double Distance = std::hypot(Arm.x(), Arm.y());
        if (Distance < Nearest) {
            Nearest = Distance;
            Found = Slot;
        }
    }
    return Found;
}

void CRotorView::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton) {
        return;
    }
    if (m_Shown.m_bScrews) {
        if (const std::optional<int> Hole = GetGeometry().FindHole(pEvent->position())) {
            m_Active = static_cast<std::size_t>(*Hole - 1);
            update();
            if (OnHole) {
                OnHole(*Hole);
            }
        }
        return;
    }
    const std::optional<std::size_t> Found = FindWeight(pEvent->position());
    if (!Found || (MayTouch && !MayTouch())) {
        return;
    }
    m_Active = *Found;
    m_Dragged = Found;
    m_Pointer.reset();  // it stays where it is until it is moved
    update();
}

void CRotorView::mouseMoveEvent(QMouseEvent* pEvent) {
    if (m_Dragged) {
        m_Pointer = pEvent->position();
        update();
    }
}

void CRotorView::mouseReleaseEvent(QMouseEvent* pEvent) {
    if (!m_Dragged || pEvent->button() != Qt::LeftButton) {
        return;
    }
    const std::size_t Slot = *m_Dragged;
    const std::optional<int> Angle = GetAngle(Slot);
    m_Dragged.reset();
    m_Pointer.reset();
    update();
    if (Angle != m_Shown.m_Weights[Slot] && OnWeight) {
        OnWeight(Slot, Angle);
    }
}

void CRotorView::TurnByKey(int Step) {
    if (m_Shown.m_bScrews) {
        const int n = m_Shown.m_State.m_nHoles;
        const int Direction = Step > 0 ? 1 : -1;
        m_Active = static_cast<std::size_t>((static_cast<int>(m_Active) + Direction + n) % n);
        update();
        return;
    }
    if (m_Active < m_Shown.m_Weights.size() && (!MayTouch || MayTouch()) && OnWeight) {
        constexpr int TURN = 360;
        const std::optional<int>& rAngle = m_Shown.m_Weights[m_Active];
        OnWeight(m_Active, rAngle ? (*rAngle + Step + TURN) % TURN : 0);
    }
}

void CRotorView::keyPressEvent(QKeyEvent* pEvent) {
    constexpr int LARGE = 10;
    const int Step = (pEvent->modifiers() & Qt::ShiftModifier) != 0 ? LARGE : 1;
    switch (pEvent->key()) {
        case Qt::Key_Right:
        case Qt::Key_Up:
            TurnByKey(Step);
            return;
        case Qt::Key_Left:
        case Qt::Key_Down:
            TurnByKey(-Step);
            return;
        case Qt::Key_PageUp:
            TurnByKey(LARGE);
            return;
        case Qt::Key_PageDown:
            TurnByKey(-LARGE);
            return;
        case Qt::Key_Space:
            if (m_Shown.m_bScrews && OnHole) {
                OnHole(static_cast<int>(m_Active) + 1);
            }
            return;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            if (!m_Shown.m_bScrews && m_Active < m_Shown.m_Weights.size() && OnWeight &&
                (!MayTouch || MayTouch())) {
                OnWeight(m_Active, std::nullopt);
            }
            return;
        default:
            QWidget::keyPressEvent(pEvent);
    }
}

void CRotorView::focusInEvent(QFocusEvent* pEvent) {
    if (!m_Shown.m_bScrews && pEvent->reason() == Qt::TabFocusReason) {
        m_Active = 0;
    } else if (!m_Shown.m_bScrews && pEvent->reason() == Qt::BacktabFocusReason) {
        m_Active = m_Shown.m_Weights.empty() ? 0 : m_Shown.m_Weights.size() - 1;
    }
    QWidget::focusInEvent(pEvent);
    update();
}

void CRotorView::focusOutEvent(QFocusEvent* pEvent) {
    QWidget::focusOutEvent(pEvent);
    update();
}

bool CRotorView::focusNextPrevChild(bool bNext) {
    // From one weight to the next, and only then to the next control.
    if (!m_Shown.m_bScrews) {
        const std::size_t Next = bNext ? m_Active + 1 : m_Active - 1;
        if (Next < m_Shown.m_Weights.size()) {
            m_Active = Next;
            update();
            return true;
        }
    }
    return QWidget::focusNextPrevChild(bNext);
}

void CRotorView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        DescribeForReaders();
        update();
    }
    QWidget::changeEvent(pEvent);
}

void CRotorView::paintEvent(QPaintEvent*) {
    QPainter Painter(this);
    Painter.setRenderHint(QPainter::Antialiasing);
    const CRotorGeometry Geometry = GetGeometry();
    PaintRing(Painter, Geometry);
    PaintScale(Painter, Geometry);
    PaintHub(Painter, Geometry);
    if (m_Shown.m_bScrews || !m_Shown.m_State.m_Screws.empty()) {
        PaintHoles(Painter, Geometry);
    }
    if (!m_Shown.m_bScrews || !m_Shown.m_State.m_Weights.empty()) {
        PaintWeights(Painter, Geometry);
    }
    if (m_Shown.m_bResidual) {
        PaintResidual(Painter, Geometry);
    }
}

void CRotorView::PaintRing(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    rPainter.setPen(QPen(palette().color(QPalette::WindowText), 1.5));
    rPainter.setBrush(palette().color(QPalette::Button));
    rPainter.drawEllipse(Around(rGeometry.GetCenter(), rGeometry.GetOuter()));
    rPainter.setBrush(palette().color(QPalette::Base));
    rPainter.drawEllipse(Around(rGeometry.GetCenter(), rGeometry.GetInner()));
}

double CRotorView::GetLabelRadius(const CRotorGeometry& rGeometry) const {
    return rGeometry.GetInner() - fontMetrics().height() * 0.95;
}

/// So near that its own number would cover the scale's; those in the hub lie at its lower end.
bool CRotorView::IsWeightNear(int Angle) const {
    constexpr int NEAR = 25;
    constexpr int TURN = 360;
    for (std::size_t Slot = 0; Slot < m_Shown.m_Weights.size(); ++Slot) {
        const std::optional<int> Other = GetAngle(Slot);
        const int Apart = (Other.value_or(TURN / 2) - Angle + TURN) % TURN;
        if (std::min(Apart, TURN - Apart) < NEAR) {
            return true;
        }
    }
    return false;
}

void CRotorView::PaintScale(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    constexpr int TICK = 10;
    constexpr int LONG = 30;
    constexpr int LABEL = 90;
    SetFontHeight(rPainter, fontMetrics().height() * 0.8, false);
    const double Length = fontMetrics().height() * 0.4;
    const double Labels = GetLabelRadius(rGeometry);
    for (int Angle = 0; Angle < 360; Angle += TICK) {
        const bool bLong = Angle % LONG == 0;
        rPainter.setPen(QPen(palette().color(QPalette::WindowText), bLong ? 2.0 : 1.0));
        rPainter.drawLine(rGeometry.GetPoint(Angle, rGeometry.GetOuter()),
                          rGeometry.GetPoint(Angle, rGeometry.GetOuter() - (bLong ? Length : Length / 2)));
        if (Angle % LABEL == 0 && !m_Shown.m_bScrews && !IsWeightNear(Angle)) {
            QFont Font = rPainter.font();
            Font.setBold(Angle == 0);
            rPainter.setFont(Font);
            DrawTextAt(rPainter, rGeometry.GetPoint(Angle, Labels), QString("%1°").arg(Angle));
        }
    }
    // The 0° mark, engraved.
    const double Side = Length * 0.9;
    QPolygonF Mark;
    Mark << rGeometry.GetPoint(0, rGeometry.GetInner() - Side * 1.4)
         << rGeometry.GetPoint(0, rGeometry.GetInner()) + QPointF(-Side, 0)
         << rGeometry.GetPoint(0, rGeometry.GetInner()) + QPointF(Side, 0);
    rPainter.setPen(Qt::NoPen);
    rPainter.setBrush(palette().color(QPalette::WindowText));
    rPainter.drawPolygon(Mark);
}

void CRotorView::PaintWeights(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    for (std::size_t Slot = 0; Slot < m_Shown.m_Weights.size(); ++Slot) {
        const std::optional<int> Angle = GetAngle(Slot);
        const bool bActive = m_Dragged == Slot || (hasFocus() && m_Active == Slot && !m_Shown.m_bScrews);
        QPainterPath Shape;
        if (Angle) {
            const double Start = rGeometry.GetPainterAngle(*Angle) - WEIGHT_WIDTH / 2;
            Shape.arcMoveTo(Around(rGeometry.GetCenter(), rGeometry.GetOuter()), Start);
            Shape.arcTo(Around(rGeometry.GetCenter(), rGeometry.GetOuter()), Start, WEIGHT_WIDTH);
            Shape.arcTo(Around(rGeometry.GetCenter(), rGeometry.GetInner()), Start + WEIGHT_WIDTH,
                        -WEIGHT_WIDTH);
            Shape.closeSubpath();
        } else {
            const double Half = (rGeometry.GetOuter() - rGeometry.GetInner()) / 2;
            Shape.addRoundedRect(Around(GetWeightPlace(Slot), Half), Half / 3, Half / 3);
        }
        QColor Body = palette().color(QPalette::WindowText);
        if (m_Shown.m_bTurning) {
            Body.setAlphaF(0.55F);  // out of reach
        }
        rPainter.setBrush(Body);
        rPainter.setPen(bActive ? QPen(palette().color(QPalette::Highlight), 4.0) : QPen(Qt::NoPen));
        rPainter.drawPath(Shape);
        rPainter.setPen(palette().color(QPalette::Window));
        SetFontHeight(rPainter, (rGeometry.GetOuter() - rGeometry.GetInner()) * 0.55, true);
        DrawTextAt(rPainter, GetWeightPlace(Slot), QString::number(Slot + 1));
        if (Angle) {
            rPainter.setPen(palette().color(QPalette::WindowText));
            SetFontHeight(rPainter, fontMetrics().height() * (bActive ? 1.0 : 0.8), true);
            DrawTextAt(rPainter, rGeometry.GetPoint(*Angle, GetLabelRadius(rGeometry)),
                       QString("%1°").arg(*Angle));
        }
    }
}

void CRotorView::PaintHoles(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    const double Radius = rGeometry.GetHoleRadius();
    const double Readable = fontMetrics().height() * 0.45;
    for (int Hole = 1; Hole <= m_Shown.m_State.m_nHoles; ++Hole) {
        const double Angle = rGeometry.GetHoleAngle(Hole);
        const QPointF Center = rGeometry.GetPoint(Angle, rGeometry.GetMiddle());
        const auto Screw = std::ranges::find(m_Shown.m_State.m_Screws, static_cast<std::uint32_t>(Hole),
                                             &CRotorScrew::m_Hole);
        const bool bFilled = Screw != m_Shown.m_State.m_Screws.end();
        const bool bActive =
            hasFocus() && m_Shown.m_bScrews && m_Active + 1 == static_cast<std::size_t>(Hole);
        rPainter.setPen(
            QPen(palette().color(bActive ? QPalette::Highlight : QPalette::WindowText), bActive ? 3.0 : 1.0));
        rPainter.setBrush(palette().color(bFilled ? QPalette::WindowText : QPalette::Base));
        rPainter.drawEllipse(Center, Radius, Radius);
        SetFontHeight(rPainter, std::max(Radius, Readable), bFilled);
        rPainter.setPen(palette().color(bFilled ? QPalette::Window : QPalette::WindowText));
        // Of many small holes not every number has room.
        constexpr int EVERY = 6;
        if (Radius >= Readable) {
            DrawTextAt(rPainter, Center, QString::number(Hole));
        } else if (Hole % EVERY == 1 && !bFilled) {
            DrawTextAt(rPainter, rGeometry.GetPoint(Angle, GetLabelRadius(rGeometry)), QString::number(Hole));
        }
        if (bFilled) {
            rPainter.setPen(palette().color(QPalette::WindowText));
            SetFontHeight(rPainter, fontMetrics().height() * 0.75, true);
            DrawTextAt(rPainter, rGeometry.GetPoint(Angle, GetLabelRadius(rGeometry) - Readable),
                       QString("%1 g").arg(Screw->m_Grams));
        }
    }
}

void CRotorView::PaintHub(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    const QPointF Center = rGeometry.GetCenter();
    const double Size = rGeometry.GetInner();
    rPainter.setPen(palette().color(QPalette::WindowText));
    // Between the weights of screws there is less room.
    SetFontHeight(rPainter, std::min(Size * (m_Shown.m_bScrews ? 0.15 : 0.2), fontMetrics().height() * 1.1),
                  true);
    DrawTextAt(rPainter, Center - QPointF(0, Size * 0.2),
               Text("PB_PLANE_TEXT") + QString(" %1").arg(m_Shown.m_Plane + 1));
    // The arrow of rotation; from plane 2's end it is the other way round.
    const bool bCounterClockwise = m_Shown.m_bCounterClockwise != (m_Shown.m_Plane == 1);
    const double Radius = Size * 0.5;
    constexpr double FROM = 55.0;  // degrees, over the top
    constexpr double SPAN = 70.0;
    QPen Pen(palette().color(QPalette::WindowText), 2.5);
    Pen.setCapStyle(Qt::RoundCap);
    rPainter.setPen(Pen);
    rPainter.setBrush(Qt::NoBrush);
    constexpr int SIXTEENTHS = 16;
    rPainter.drawArc(Around(Center, Radius), static_cast<int>(FROM * SIXTEENTHS),
                     static_cast<int>(SPAN * SIXTEENTHS));
    const double Tip = (bCounterClockwise ? FROM + SPAN : FROM) * 3.14159265358979 / 180.0;
    const double Sense = bCounterClockwise ? 1.0 : -1.0;
    const QPointF End = Center + Radius * QPointF(std::cos(Tip), -std::sin(Tip));
    const double Head = Size * 0.11;
    // Along the tangent, and to both sides of it.
    const QPointF Along = Sense * QPointF(-std::sin(Tip), -std::cos(Tip));
    const QPointF Across(-Along.y(), Along.x());
    rPainter.drawLine(End, End - Head * Along + Head * 0.6 * Across);
    rPainter.drawLine(End, End - Head * Along - Head * 0.6 * Across);
}

void CRotorView::PaintResidual(QPainter& rPainter, const CRotorGeometry& rGeometry) const {
    // As long as the ring for one weight, or less for what is less; beyond it stays at the ring.
    const double Length = std::min(1.0, m_Shown.m_State.m_Residual) * rGeometry.GetInner() * 0.95;
    const QColor Warning(0xCE, 0x40, 0x00);
    rPainter.setPen(QPen(Warning, 3.0));
    const QPointF End =
        rGeometry.GetPointOfRotor(m_Shown.m_State.m_ResidualAngle, m_Shown.m_Plane == 1, Length);
    rPainter.drawLine(rGeometry.GetCenter(), End);
    rPainter.setBrush(Warning);
    rPainter.drawEllipse(End, 4.0, 4.0);
}
