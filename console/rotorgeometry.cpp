#include "console/rotorgeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double FULL_TURN = 360.0;

double ToRadians(double Degrees) {
    return Degrees * std::numbers::pi / 180.0;
}

}  // namespace

CRotorGeometry::CRotorGeometry(const QRectF& rPlace, double Margin, bool bCounterClockwiseScale, int nHoles)
    : m_Center(rPlace.center()),
      m_Outer(std::max(1.0, std::min(rPlace.width(), rPlace.height()) / 2 - Margin)),
      m_bCounterClockwise(bCounterClockwiseScale),
      m_nHoles(std::max(1, nHoles)) {}

double CRotorGeometry::GetHoleRadius() const {
    // As large as the ring is wide, but neighbours never touch.
    const double Apart = 2 * std::numbers::pi * GetMiddle() / m_nHoles;
    return std::min((GetOuter() - GetInner()) * 0.4, Apart * 0.45);
}

double CRotorGeometry::GetPainterAngle(double ScaleDeg) const {
    return 90.0 + (m_bCounterClockwise ? ScaleDeg : -ScaleDeg);
}

QPointF CRotorGeometry::GetPoint(double ScaleDeg, double Radius) const {
    const double Angle = ToRadians(GetPainterAngle(ScaleDeg));
    return m_Center + Radius * QPointF(std::cos(Angle), -std::sin(Angle));
}

QPointF CRotorGeometry::GetPointOfRotor(double AngleDeg, bool bPlane2, double Radius) const {
    const double Angle = ToRadians(90.0 + (bPlane2 ? -AngleDeg : AngleDeg));
    return m_Center + Radius * QPointF(std::cos(Angle), -std::sin(Angle));
}

int CRotorGeometry::GetAngle(const QPointF& rPoint) const {
    const QPointF Arm = rPoint - m_Center;
    const double Clockwise = std::atan2(Arm.x(), -Arm.y()) * 180.0 / std::numbers::pi;
    const long Whole = std::lround(m_bCounterClockwise ? -Clockwise : Clockwise);
    return static_cast<int>((Whole + static_cast<long>(FULL_TURN)) % static_cast<long>(FULL_TURN));
}

bool CRotorGeometry::IsAtRing(const QPointF& rPoint) const {
    const QPointF Arm = rPoint - m_Center;
    const double Radius = std::hypot(Arm.x(), Arm.y());
    constexpr double INSIDE = 0.5;   // of the hub
    constexpr double OUTSIDE = 1.5;  // a finger covers what it drags, and so keeps beside it
    return Radius >= GetInner() * INSIDE && Radius <= GetOuter() * OUTSIDE;
}

std::optional<int> CRotorGeometry::FindHole(const QPointF& rPoint) const {
    const QPointF Arm = rPoint - m_Center;
    const double Radius = std::hypot(Arm.x(), Arm.y());
    const double Slack = (GetOuter() - GetInner()) / 2;
    if (Radius < GetInner() - Slack || Radius > GetOuter() + Slack) {
        return std::nullopt;
    }
    const double Clockwise = std::atan2(Arm.x(), -Arm.y()) * 180.0 / std::numbers::pi;
    const double Angle = m_bCounterClockwise ? -Clockwise : Clockwise;
    const long Steps = std::lround(Angle * m_nHoles / FULL_TURN);
    return static_cast<int>((Steps % m_nHoles + m_nHoles) % m_nHoles) + 1;
}
