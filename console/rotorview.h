#pragma once
#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "console/machinestate.h"
#include "console/rotorgeometry.h"

/// The rotor as somebody sees it who stands before one of its ends: the ring with its scale, the weights or
/// the holes with their screws, the direction of rotation. Weights are dragged, by mouse, finger or arrow
/// keys; a press on a hole is told.
class CRotorView : public QWidget {
public:
    /// What it shows of a plane.
    struct CShown {
        std::size_t m_Plane = 0;
        CMachineState::CPlane m_State;
        std::vector<std::optional<int>> m_Weights;  ///< those without an angle lie in the hub
        bool m_bScrews = false;                     ///< means of this plane
        bool m_bCounterClockwise = false;           ///< rotation, as seen from plane 1's end
        bool m_bTurning = false;
        bool m_bResidual = false;  ///< the true unbalance is shown, too

        friend bool operator==(const CShown&, const CShown&) = default;
    };

    explicit CRotorView(QWidget* pParent);
    void Show(const CShown& rShown);
    const CShown& GetShown() const { return m_Shown; }
    CRotorGeometry GetGeometry() const;
    /// Where a weight is drawn.
    QPointF GetWeightPlace(std::size_t Slot) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// A weight was let go: on the ring at this angle, or off it.
    std::function<void(std::size_t Slot, std::optional<int> Angle)> OnWeight;
    std::function<void(int Hole)> OnHole;
    /// Asked before a weight leaves its place.
    std::function<bool()> MayTouch;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
    bool focusNextPrevChild(bool bNext) override;
    void changeEvent(QEvent* pEvent) override;

private:
    std::optional<std::size_t> FindWeight(const QPointF& rPoint) const;
    /// The angle under the pointer while a weight is dragged, else its own.
    std::optional<int> GetAngle(std::size_t Slot) const;
    /// Of the numbers along the inside of the ring.
    double GetLabelRadius(const CRotorGeometry& rGeometry) const;
    bool IsWeightNear(int Angle) const;
    void TurnByKey(int Step);
    void DescribeForReaders();

    void PaintRing(QPainter& rPainter, const CRotorGeometry& rGeometry) const;
    void PaintScale(QPainter& rPainter, const CRotorGeometry& rGeometry) const;
    void PaintWeights(QPainter& rPainter, const CRotorGeometry& rGeometry) const;
    void PaintHoles(QPainter& rPainter, const CRotorGeometry& rGeometry) const;
    void PaintHub(QPainter& rPainter, const CRotorGeometry& rGeometry) const;
    void PaintResidual(QPainter& rPainter, const CRotorGeometry& rGeometry) const;

    CShown m_Shown;
    std::size_t m_Active = 0;  ///< weight, or hole counted from 0, that the keys move
    std::optional<std::size_t> m_Dragged;
    std::optional<QPointF> m_Pointer;  ///< while dragging
};
