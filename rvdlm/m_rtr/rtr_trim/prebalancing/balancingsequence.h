#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/rvmdb/compensationtableentry.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/statehistory.h"
#include "rvlib/math/matrix.h"

/// How a guided procedure goes on, whatever the number of its planes: dispatch of the events, entering of
/// states, step counting, measuring rules, failure and commit. What a procedure is made of comes from its
/// tables (sequencetables.h); its mathematics and its part of the configuration come through the virtual
/// operations at the end.
///
/// Every operation ends in SetEvent, which calls the handler of the present state. A handler leaves its state
/// by Enter, a plain call: a chain of transitions runs within one event.
///
/// A math::matrix_error that a calculation throws never leaves SetEvent: it would take the host down. The run
/// fails instead.
class CBalancingSequence : public CPreBalancing {
public:
    enum EVENTS : int {
        eNewState = 0,
        eStartPreBal = 1,
        eStartReBal = 2,
        eKeyPressed = 3,
        eRPMChanged = 4,
        eXYValueChanged = 5,
        eInvalidRPMChanged = 6,
        eOutOfLockChanged = 7,
        eCommitChanges = 8
    };

    ~CBalancingSequence() override;

    int StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override;
    int StartReBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override;
    void AbortBalancing(std::uint32_t WarningMode) override;
    int KeyPressed(KeyAction Action) override;
    bool CommitChanges() override;
    bool IsFailureWithNoReturn() const override;
    void Paint(CDC* pDC, const CRect& rRect, unsigned Mask) override;
    void StoreWeightPositions() override;
    void CurrentRPM(std::uint16_t wRPM) override;
    void CurrentXYValuePlane1(std::int16_t x, std::int16_t y) override;
    void CurrentXYValuePlane2(std::int16_t x, std::int16_t y) override;
    void InvalidRPM(int bInvalid) override;
    void OutOfLock(int bNotLocked) override;
    void GetProgress(CPreBalProgress& rProgress) const override;
    bool DependsOnModuleState() const override;
    /// Raises eXYValueChanged for every plane, so that all of them take a sample in the same tick.
    void OnMeasurementTick() override;
    /// No sample of before is part of the measurement; a procedure also restarts its mathematics.
    void RestartMeasurement() override;

    /// Number of the present state.
    int GetState() const { return m_State; }
    /// The last transitions.
    const CStateHistory& GetHistory() const { return m_History; }

protected:
    using CompensationMethod = PreBalDB::CCompensationTableEntry::CompensationMethod;
    using Matrix = math::matrix<double>;

    /// One plane of the rotor.
    struct CPlane {
        std::unique_ptr<CPlaneBalancingMethod> m_pMethod;
        /// The means in use; never anything but weights or screws.
        CompensationMethod m_CompensationMethod = PreBalDB::CCompensationTableEntry::eWeights;
        std::size_t m_Sensor =
            0;                 ///< whose readings count: 0 of CurrentXYValuePlane1, 1 of CurrentXYValuePlane2
        std::int16_t m_X = 0;  ///< last reading
        std::int16_t m_Y = 0;
        bool m_bConditionMet = false;   ///< the last reading came in lock and at speed
        std::uint32_t m_nMeasured = 0;  ///< samples in a row, up to the present one, of such readings
    };

    /// Whether a test run can be worked with, as the mathematics tells.
    static constexpr std::uint32_t eUsable = 0;
    static constexpr std::uint32_t eNoInfluence = 1;
    /// What a test run yields.
    struct CCalibration {
        Matrix m_InvA;
        std::vector<Matrix> m_UA;  ///< per plane, 2 by 1
    };

    /// rTables must outlive this. The planes are added by AddPlane.
    CBalancingSequence(CPreBalMainWndInterface* pMainWnd, PreBalDB::CPreBalBaseTableEntry& rEntry,
                       const std::string& rSecondTitle, const Sequence::CTables& rTables);

    void AddPlane(CPlane Plane) { m_Planes.push_back(std::move(Plane)); }
    CPlane& GetPlane(std::size_t Plane) { return m_Planes.at(Plane); }
    const CPlane& GetPlane(std::size_t Plane) const { return m_Planes.at(Plane); }
    std::size_t GetPlaneCount() const { return m_Planes.size(); }
    /// Ends what the planes do. A procedure's destructor calls it, while its mathematics is still there.
    void RemovePlanes();
    /// What a plane is compensated with, in the configuration.
    struct CPlaneRecord {
        CompensationMethod m_Used;
        std::function<const PreBalDB::CWeightCompensationTableEntry&()> CreateWeights;
        std::function<PreBalDB::CScrewCompensationTableEntry&()> CreateScrews;
    };
    /// A plane with the means of its record. PlaneIndex: 0 first, 1 second, as the method draws and reports
    /// it, whatever the sensor. A record of neither kind is asserted, and gets weights.
    CPlane MakePlane(std::size_t Sensor, unsigned PlaneIndex, const CPlaneRecord& rRecord);
    /// Planes with different means count as without weights.
    bool HasWeightsOnly() const;
    /// Handed by address to the weight methods; selects among the menus to change weights.
    int* GetWeightSelection() { return &m_WeightSelection; }

    /// Calls the state's handler. 0, with a warning in the log, for an event that is refused there.
    int SetEvent(EVENTS Event);
    /// Brings the sequence to a state: step, ChangeState, instruction, then the state's own entry work.
    int Enter(Sequence::Role Role, std::size_t Leg = 0);
    /// Checks the transition and makes it, allowed or not; 0 for one that isn't allowed.
    int ChangeState(int NewState);
    /// Plane of the running eXYValueChanged.
    std::size_t GetEventPlane() const { return m_EventPlane; }

    // What a procedure supplies. Planes and legs count from 0.

    /// Name of an event, as in the log; for eXYValueChanged that of GetEventPlane().
    virtual const char* GetEventText(EVENTS Event) const = 0;
    /// The plane whose means the keys move.
    virtual CPlaneBalancingMethod& GetActiveMethod() = 0;
    /// Makes another plane the active one; asked for only where there are several.
    virtual void ToggleActivePlane() {}
    /// Asserts that the plane of that leg is the active one, where there are several.
    virtual void CheckActivePlane(std::size_t /*Leg*/) {}
    virtual void PaintMethods(CDC* pDC, const CRect& rRect, bool bRedrawAll) = 0;
    /// Hands the plane's last reading to the mathematics; nonzero when the window of samples is complete.
    virtual int AddSample(std::size_t Plane) = 0;
    /// The weights' positions (per plane, 2 by 1, degrees) in the first measurement.
    virtual void SetFirstPositions(const std::vector<Matrix>& rPositions) = 0;
    /// The reading becomes the first measurement.
    virtual void ApplyNeutralPositionXYValues() = 0;
    /// The means as they stand are the test of that leg.
    virtual void SetTestPositions(std::size_t Leg) = 0;
    /// The test run of that leg is measured: eUsable or eNoInfluence, anything else is impossible.
    /// rCalibration is what the last leg yields. May throw math::matrix_error.
    virtual std::uint32_t FinishTestRun(std::size_t Leg, CCalibration& rCalibration) = 0;
    /// The compensation (per plane) that the reading asks for, with the stored calibration.
    virtual std::vector<Matrix> CalculateRebalance() = 0;
    /// The calibration in the configuration.
    virtual void SetStoredInvA(const Matrix& rInvA) = 0;
    virtual Matrix GetStoredUA(std::size_t Plane) = 0;
    virtual void SetStoredUA(std::size_t Plane, const Matrix& rUA) = 0;

private:
    using Handler = int (CBalancingSequence::*)(EVENTS);
    static const std::array<Handler, Sequence::eRoleCount> ms_Handlers;

    // Dispatch and entering (balancingsequence.cpp).
    int Start(EVENTS Event, std::uint16_t wRPM, int NotLocked, int InvalidRPM);
    int DispatchEvent(EVENTS Event);
    /// The present state's row.
    const Sequence::CState& GetStateRow() const {
        return m_rTables.m_States[static_cast<std::size_t>(m_State)];
    }
    void AddToHistory(int NewState);
    std::string GetCause() const;
    void AddStep() { SetCurrentStep(GetCurrentStep() + 1); }
    /// The menus are asked for with the number of planes.
    std::uint8_t GetMenuPlanes() const { return static_cast<std::uint8_t>(m_Planes.size()); }
    int FailWithNoReturn(std::uint32_t WarningMode);
    int FailWithReset(std::uint32_t WarningMode);
    void OpenLogBlock(int NewState);
    void CloseLogBlock();

    // What the tables say on entry (sequenceentry.cpp).
    void CountStep(const Sequence::CStepRule& rRule);
    /// The table's display, menu and notification of the state just entered, in this order.
    void ShowState();
    void ShowDisplay();
    void ShowMenu();
    void NotifyState();
    /// Display of one plane's means that the operator may change now; all other planes are inactive.
    void ShowForChange(Sequence::CShow Show);
    void ShowOnPlane(CPlaneBalancingMethod& rMethod, const Sequence::CShow& rShow);
    void SetDisplayModes(CPlaneBalancingMethod::DisplayMode Mode);
    void Notify(CPreBalNotification::Step Step, CPreBalNotification::Action Action);
    void FillNotification();

    // Measuring (sequencemeasuring.cpp).
    void StoreReading(std::size_t Sensor, std::int16_t x, std::int16_t y);
    void RaiseXYValueChanged(std::size_t Plane);
    /// Display states and first sample of a measuring state.
    void BeginSampling();
    /// What all measuring states do with speed, lock and readings.
    int HandleMeasuringEvent(EVENTS Event);
    void TakeSample();
    /// Whether all that a plane's average holds was sampled while the measuring condition held, from readings
    /// that came while it held: only then is the average a measurement.
    bool IsMeasured(const CPlane& rPlane) const;
    void TestTargetUnbalanceAndDisplayWarning(CPreBalNotification::Step Within,
                                              CPreBalNotification::Step Over);
    /// The measurements that end a run.
    int HandleFinalMeasurement(EVENTS Event);
    bool IsAtCalibratedSpeed() const;
    /// The states that wait for the calibrated speed.
    int HandleRPMStart(EVENTS Event);

    // Positions of the weights (sequencepositions.cpp).
    std::string GetStoreKey() const;
    void ApplyNeutralPositionWeights();
    bool CheckStoredWeightPositions() const;
    bool AdoptStoredWeightPositions();
    void ReloadPositionStore();
    /// The key's record in the store, or a new one, for a procedure of this kind.
    WeightPos2Plane MakeStoreRecord() const;
    void WriteStoreRecord(const WeightPos2Plane& rRecord);
    void StoreNeutralRPM();
    Matrix& GetPositions(WeightPos2Plane& rRecord, std::size_t Plane) const;
    void HandleChangeWeightKeys();
    /// A menu of a method that is asked for with the number of planes.
    using MenuQuery = int (CPlaneBalancingMethod::*)(std::uint8_t);
    void ShowActiveMenu(MenuQuery Query);
    /// The running key, if it is eTogglePlane and there are planes to choose from; true if it was.
    bool HandleTogglePlaneKey(MenuQuery Query);

    // Handlers of pre-balancing (prebalancehandlers.cpp).
    int IdleHandler(EVENTS Event);
    int FailureWithNoReturnHandler(EVENTS Event);
    int FailureWithResetHandler(EVENTS Event);
    int NeutralPosSpindleStopHandler(EVENTS Event);
    int NeutralPosRemoveWeightsHandler(EVENTS Event);
    int NeutralPosRPMStartHandler(EVENTS Event);
    int NeutralPosMeasurementHandler(EVENTS Event);
    int TestUnbalanceSpindleStopHandler(EVENTS Event);
    int TestUnbalanceSetWeightsHandler(EVENTS Event);
    int TestUnbalanceRPMStartHandler(EVENTS Event);
    int TestUnbalanceMeasurementHandler(EVENTS Event);
    int PreBalanceSpindleStopHandler(EVENTS Event);
    int PreBalanceSetWeightsHandler(EVENTS Event);
    int PreBalanceRPMStartHandler(EVENTS Event);
    int PreBalanceMeasurementHandler(EVENTS Event);
    void HandleNeutralPosKey();
    /// A state that waits for the standing spindle. bSkipStep: the next state counts no step by itself.
    int HandleSpindleStop(EVENTS Event, Sequence::Role Next, std::size_t Leg, bool bSkipStep);
    void ShowRPMStart(bool bEntry);
    int FinishTestMeasurement();
    /// Test weights that weren't moved at all make the influence infinite or undefined. That is no
    /// calibration.
    static bool IsFinite(const CCalibration& rCalibration);
    std::uint32_t EvaluateTestRun(std::size_t Leg, CCalibration& rCalibration);
    void AdoptCalibration(const CCalibration& rCalibration);

    // Handlers of re-balancing (rebalancehandlers.cpp).
    int ReBalanceCommitWeightsHandler(EVENTS Event);
    int ReBalanceRPMStart1Handler(EVENTS Event);
    int ReBalanceMeasurement1Handler(EVENTS Event);
    int ReBalanceSpindleStopHandler(EVENTS Event);
    int ReBalanceSpindleStopCheckWeightsHandler(EVENTS Event);
    int ReBalanceSetWeightsHandler(EVENTS Event);
    int ReBalanceCheckWeightsHandler(EVENTS Event);
    int ReBalanceRPMStart2Handler(EVENTS Event);
    int ReBalanceMeasurement2Handler(EVENTS Event);
    /// Brings the means to the vectors; false if a plane can't reach its own. *pPercent is the largest lack.
    bool SetUAOfPlanes(const std::vector<Matrix>& rUA, double* pPercent, bool bAllowEqualAngles);
    std::vector<Matrix> GetStoredUAs();
    /// The means as they stand become the stored compensation.
    void StoreUAOfPlanes();
    /// Whether the stored compensation still fits the capacity, or that is to be ignored.
    bool CanRebalance(const char* pPrefix, const char* pRefused);

    const Sequence::CTables& m_rTables;
    std::vector<CPlane> m_Planes;
    bool m_bBlockOpen = false;  ///< a log block of this object is open
    int m_State = 0;
    KeyAction m_KeyAction = eNext;     ///< of the running eKeyPressed
    std::size_t m_EventPlane = 0;      ///< of the running eXYValueChanged
    std::uint32_t m_AbortWarning = 0;  ///< that FailWithNoReturn shows
    std::optional<EVENTS> m_Event;     ///< the running one; none in an abort
    std::uint16_t m_RPM = 0;           ///< last speed; 0: the spindle stands
    int m_InvalidRPM = 1;              ///< the commanded speed is not yet valid
    int m_NotLocked = 1;               ///< the electronics is out of lock
    int m_WeightSelection = 0;
    double m_CompensationDifference = 0.0;  ///< percentage that the compensation could not reach
    bool m_bVerdictOnFullWindow = false;    ///< the feature flag PreBalancingVerdictOnFullWindow
    CStateHistory m_History;
};
