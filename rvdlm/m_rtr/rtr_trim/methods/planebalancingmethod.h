#pragma once
#include <cstdint>
#include <functional>

#include "platform/rvmdb/typebase.h"
#include "platform/window/rect.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screw.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/keyaction.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvbas/xymovingaverage.h"

class CDC;
class CPreBalNotification;

/// The means by which one plane is compensated: converts between the vector UA and the physical means, shows
/// them, names the menus of each step and handles the keys that move the means.
class CPlaneBalancingMethod {
public:
    enum DisplayMode : int {
        eEmpty = 0,
        eNeutralPosition = 1,
        eInactive = 2,
        eTestUnbalance = 3,
        eUACompensation = 4,
        eMeasurementValues = 5
    };
    /// How the live measurement is shown.
    enum MeasurementDisplayState : int { eNormal = 0, eNotValid = 1, eWithinTarget = 2, eOverTarget = 3 };

    /// nSamples: length of the moving average of the live measurement.
    explicit CPlaneBalancingMethod(std::uint32_t nSamples) : m_MovingAverage(nSamples) {}
    virtual ~CPlaneBalancingMethod() = default;
    CPlaneBalancingMethod(const CPlaneBalancingMethod&) = delete;
    CPlaneBalancingMethod& operator=(const CPlaneBalancingMethod&) = delete;

    /// Resets the average and stores the mode; the kinds also bring their means to the mode's position.
    virtual void SetDisplayMode(DisplayMode Mode);
    /// As SetDisplayMode, with the positions left as they are.
    virtual void SetPlainDisplayMode(DisplayMode Mode) = 0;
    /// Menus. Plane is 1 or 2.
    virtual int GetNeutralPositionMenu(std::uint8_t nPlanes) = 0;
    virtual int GetTestUnbalanceMenu() = 0;
    virtual int GetTestUnbalanceChangeMenu() = 0;
    virtual int GetCommitChangeMenu(std::uint8_t nPlanes) = 0;
    virtual int GetCheckWeightsMenu(std::uint8_t nPlanes) = 0;
    /// The means' positions in whole degrees, 2 by 1; null for means that have no such positions.
    virtual const math::matrix<double>* GetTestUnbalanceVectorInDeg() = 0;
    virtual void SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) = 0;
    /// Sets the means to produce rUA (2 by 1, units of one weight). False if they can't reach it; the
    /// percentage (may be null) says by how much, and the nearest position is set all the same.
    virtual bool SetUA(const math::matrix<double>& rUA, double* pPerCentCompensationDifference,
                       bool bAllowEqualAngles) = 0;
    /// The vector that the means now produce, 2 by 1.
    virtual math::matrix<double> GetUA() = 0;
    virtual void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) = 0;
    virtual PreBalDB::CTypeBase::Direction GetScalingDirection() = 0;
    /// Step in degrees. Result true.
    virtual bool KeyPressed(CKeyActions::KeyAction Action, int Step) = 0;
    virtual void Paint(CDC* pDC, const CRect& rRect, bool bRedrawAll) = 0;
    /// Writes the positions of this plane into the notification.
    virtual void FillNotification(CPreBalNotification& rNotification) = 0;
    virtual void GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) = 0;
    /// The screws that are on show, holes counted clockwise; null for means that are no screws.
    virtual const Base::CWDArray<CScrew>* GetScrews() const { return nullptr; }

    /// Takes a live sample in counts.
    void AddMeasurementValue(std::int16_t x, std::int16_t y) { m_MovingAverage.AddValue(x, y); }
    /// "PB_PLANE_TEXT" and the plane's number (1 or 2) at the lower left of the drawing.
    void PaintPlaneTitle(CDC* pDC, const CRect& rRect, int Plane) const;
    /// The mode's name; "Unknown mode", after an assertion, for anything else.
    static const char* DisplayModeToString(DisplayMode Mode);

    CXYMovingAverage m_MovingAverage;
    DisplayMode m_DisplayMode = eEmpty;
    int m_MeasurementDisplayState = eNormal;  ///< written by the sequences

protected:
    /// Paints a view: with the live measurement, or without it (all null).
    using PaintView =
        std::function<void(const double* pMagnitude, const double* pAngle, const double* pLastMagnitude)>;
    /// What the present mode shows. Only the live measurement may be painted without the rest.
    void PaintByMode(CDC* pDC, const CRect& rRect, bool bRedrawAll, const PaintView& rPaintView) const;
};
