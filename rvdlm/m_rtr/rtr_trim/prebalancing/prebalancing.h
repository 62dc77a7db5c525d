#pragma once
#include <cstdint>
#include <string>

#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/window/rect.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/instructionview.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/keyaction.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/measurementsubstate.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/statusview.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

class CDC;
struct CArrivedReadings;

/// A guided procedure, as the main window knows it; it in turn knows the main window only as
/// CPreBalMainWndInterface. One instance lives for one run. All on the window thread.
class CPreBalancing : private CMeasurementSubState,
                      public CInstructionView,
                      private CStatusView,
                      public CKeyActions {
public:
    /// Parts of the pane for Paint.
    enum PaintMask : unsigned {
        ePaintMethod = 2,       ///< the method's drawing, in full
        ePaintStatus = 4,       ///< the status line
        ePaintMeasurement = 8,  ///< the live measurement in the method's drawing
        ePaintAll = 15
    };

    /// Drops the samples of the mathematics.
    void RestartMeasurement() override = 0;
    void PleaseQueryXYValuesNOW() override;
    void RepaintMeasurement() override;
    /// Menu 4, and the NC is told that measuring goes on.
    void OnMeasurementLost() override;
    void OnMeasurementTick() override = 0;
    void ShowMeasurementOK() override;
    void ShowOutOfLockWarning() override;
    void ShowWrongRPMWarning() override;
    void ShowWrongRPMAndOutOfLockWarning() override;
    ~CPreBalancing() override = default;

    /// Speed in rpm, 0 for a standing spindle. NotLocked: the electronics is out of lock. InvalidRPM: the
    /// commanded speed isn't reached yet. Nonzero for success.
    virtual int StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) = 0;
    /// As above; 0, and nothing happens, for a configuration that isn't calibrated.
    virtual int StartReBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) = 0;
    /// Ends the run with a warning on screen, which stays until the object goes.
    virtual void AbortBalancing(std::uint32_t WarningMode) = 0;
    /// Nonzero for success.
    virtual int KeyPressed(KeyAction Action) = 0;
    /// True when the run's result is to be saved; the entry in memory is calibrated then.
    virtual bool CommitChanges() = 0;
    virtual bool IsFailureWithNoReturn() const = 0;
    /// Draws the pane into rRect: instruction at the top, status line at the bottom, the method between them.
    virtual void Paint(CDC* pDC, const CRect& rRect, unsigned Mask) = 0;
    /// Called by CommitChanges; does nothing here.
    virtual void StoreWeightPositions() {}
    virtual void CurrentRPM(std::uint16_t wRPM);
    /// Readings of the two planes, in counts.
    virtual void CurrentXYValuePlane1(std::int16_t /*x*/, std::int16_t /*y*/) {}
    virtual void CurrentXYValuePlane2(std::int16_t /*x*/, std::int16_t /*y*/) {}
    virtual void InvalidRPM(int /*bInvalid*/) {}
    virtual void OutOfLock(int /*bNotLocked*/) {}
    /// Where the run stands, for the host.
    virtual void GetProgress(CPreBalProgress& rProgress) const;
    /// The readings that came since the host has asked last, for the host.
    virtual void GetReadings(CArrivedReadings& /*rReadings*/) const {}
    /// Whether lock and validity of the speed lead on, or hold up, what the run does now; not while it waits
    /// for the spindle to stop.
    virtual bool DependsOnModuleState() const { return true; }

protected:
    /// rSecondTitle: the name of the set, may be empty.
    CPreBalancing(CPreBalMainWndInterface* pMainWnd, PreBalDB::CPreBalBaseTableEntry& rEntry,
                  const std::string& rSecondTitle);

    /// Every change of the warning goes to the NC.
    void WarningModeChanged(std::uint32_t Mode) override;

    /// How a pane is cut horizontally. The status line has 17 rows in panes lower than 504.
    struct CPaneLayout {
        CRect m_Instruction;
        CRect m_Method;
        CRect m_Status;
    };
    static CPaneLayout CutPane(const CRect& rRect);
    /// Instruction view always, status view by the mask.
    void PaintViews(CDC* pDC, const CPaneLayout& rLayout, unsigned Mask);

    // What the procedures use of the private bases.
    using CMeasurementSubState::CanMeasure;
    using CMeasurementSubState::GetIgnoreOutOfLock;
    using CMeasurementSubState::IsConditionMet;
    using CMeasurementSubState::IsSpeedInWindow;
    using CMeasurementSubState::SetTargetRPM;
    using CMeasurementSubState::StartMeasurement;
    using CMeasurementSubState::StopMeasurement;
    using CMeasurementSubState::UpdateOutOfLock;
    using CMeasurementSubState::UpdateRPM;
    using CStatusView::GetCalibratedText;
    using CStatusView::GetCurrentText;
    using CStatusView::SetCalibratedRPM;

    CPreBalNotification m_Notification;         ///< the last one
    CPreBalMainWndInterface* m_pMainWnd;        ///< not owned
    PreBalDB::CPreBalBaseTableEntry* m_pEntry;  ///< not owned; the configuration of this run
    std::int32_t m_Activity = 0;                ///< last value given to SetBalancingActivity
    int m_IgnoreRebalWeights = 0;               ///< a re-balancing goes on without the capacity for it
    std::uint8_t m_UseOldWeightChangeMenu = 0;  ///< fixed menus to change weight positions
};
