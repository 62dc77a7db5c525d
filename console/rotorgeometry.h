#pragma once
#include <QPointF>
#include <QRectF>
#include <optional>

/// Where things lie in the drawing of a rotor's end: a ring around a hub, the scale's 0° at the top as on the
/// module's page, counting in the sense that is engraved. Points in pixels, y downwards; angles in degrees.
class CRotorGeometry {
public:
    /// The largest that has room in the rectangle, with a margin for the scale's numbers around the ring.
    CRotorGeometry(const QRectF& rPlace, double Margin, bool bCounterClockwiseScale, int nHoles);

    QPointF GetCenter() const { return m_Center; }
    double GetOuter() const { return m_Outer; }
    double GetInner() const { return m_Outer * INNER; }
    /// Of the circle on which weights, screws and their numbers lie.
    double GetMiddle() const { return (GetOuter() + GetInner()) / 2; }
    /// Of a hole.
    double GetHoleRadius() const;

    QPointF GetPoint(double ScaleDeg, double Radius) const;
    /// A direction that counts counter-clockwise as seen from plane 1's end, in the view of this plane's own.
    QPointF GetPointOfRotor(double AngleDeg, bool bPlane2, double Radius) const;
    /// Angle on the scale in whole degrees, 0 to 359.
    int GetAngle(const QPointF& rPoint) const;
    /// Whether what is let go here is meant for the ring: on it, or not far beside it.
    bool IsAtRing(const QPointF& rPoint) const;
    /// Holes count from 1 as engraved.
    double GetHoleAngle(int Hole) const { return (Hole - 1) * 360.0 / m_nHoles; }
    /// The hole whose part of the ring this is; nothing beside the ring.
    std::optional<int> FindHole(const QPointF& rPoint) const;
    /// For QPainter, which counts counter-clockwise from three o'clock.
    double GetPainterAngle(double ScaleDeg) const;

private:
    static constexpr double INNER = 0.68;  ///< of the outer radius

    QPointF m_Center;
    double m_Outer;
    bool m_bCounterClockwise;
    int m_nHoles;
};
