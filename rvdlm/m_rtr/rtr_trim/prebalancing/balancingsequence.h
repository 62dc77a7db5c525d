#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/readinglog.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceentry.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencemeasuring.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencepositions.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/statehistory.h"
#include "rvlib/math/matrix.h"

/// How a guided procedure goes on, whatever the number of its planes. What it is made of comes from its
/// tables (sequencetables.h): the states with what is done on entering them, and the ways from state to
/// state. Its mathematics and its part of the configuration come through the virtual operations at the end.
/// Readings and their average, stored positions and what the tables say on entry are parts of their own.
///
/// Every operation ends in SetEvent, which calls the handler of the present state. A handler executes the
/// state's rows (Follow), and does what the event means within the state. Entering a state is a plain call: a
/// chain of transitions runs within one event.
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

    /// An event with what belongs to it.
    struct CEvent {
        // NOLINTNEXTLINE(google-explicit-constructor): most events have nothing with them
        constexpr CEvent(EVENTS Kind, std::size_t Plane = 0, std::uint32_t Warning = 0)
            : m_Kind(Kind), m_Plane(Plane), m_Warning(Warning) {}

        EVENTS m_Kind;
        std::size_t m_Plane;      ///< of eXYValueChanged
        std::uint32_t m_Warning;  ///< of eNewState of a failure
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
    void GetReadings(CArrivedReadings& rReadings) const override { m_Arrived.Get(rReadings); }
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
    using Matrix = math::matrix<double>;

    /// Whether a test run can be worked with, as the mathematics tells.
    static constexpr std::uint32_t USABLE = 0;
    static constexpr std::uint32_t NO_INFLUENCE = 1;
    /// What a test run yields.
    struct CCalibration {
        Matrix m_InvA;
        std::vector<Matrix> m_UA;  ///< per plane, 2 by 1
    };

    /// rTables must outlive this. The planes are still to be added.
    CBalancingSequence(CPreBalMainWndInterface* pMainWnd, PreBalDB::CPreBalBaseTableEntry& rEntry,
                       const std::string& rSecondTitle, const Sequence::CTables& rTables);

    CSequencePlanes& GetPlanes() { return m_Planes; }
    const CSequencePlanes& GetPlanes() const { return m_Planes; }
    /// What a plane is compensated with, in the configuration.
    struct CPlaneRecord {
        CSequencePlane::CompensationMethod m_Used;
        std::function<const PreBalDB::CWeightCompensationTableEntry&()> CreateWeights;
        std::function<PreBalDB::CScrewCompensationTableEntry&()> CreateScrews;
    };
    /// A plane with the means of its record. PlaneIndex: 0 first, 1 second, as the method draws and reports
    /// it, whatever the sensor. A record of neither kind is asserted, and gets weights.
    CSequencePlane MakePlane(std::size_t Sensor, unsigned PlaneIndex, const CPlaneRecord& rRecord);
    /// Handed by address to the weight methods; selects among the menus to change weights.
    int* GetWeightSelection() { return &m_WeightSelection; }

    /// Calls the state's handler. 0, with a warning in the log, for an event that is refused there.
    int SetEvent(CEvent Event);
    /// Brings the sequence to a state: step, ChangeState, instruction, then the state's own entry work.
    /// Warning: that a failure shows.
    int Enter(int State, std::uint32_t Warning = 0);
    /// Checks the transition and makes it, allowed or not; 0 for one that isn't allowed.
    int ChangeState(int NewState);

    // What a procedure supplies. Planes and legs count from 0.

    /// Name of an event, as in the log.
    virtual const char* GetEventText(const CEvent& rEvent) const = 0;
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
    /// The test run of that leg is measured: USABLE or NO_INFLUENCE, anything else is impossible.
    /// rCalibration is what the last leg yields. May throw math::matrix_error.
    virtual std::uint32_t FinishTestRun(std::size_t Leg, CCalibration& rCalibration) = 0;
    /// The compensation (per plane) that the reading asks for, with the stored calibration.
    virtual std::vector<Matrix> CalculateRebalance() = 0;
    /// The calibration in the configuration.
    virtual void SetStoredInvA(const Matrix& rInvA) = 0;
    virtual Matrix GetStoredUA(std::size_t Plane) = 0;
    virtual void SetStoredUA(std::size_t Plane, const Matrix& rUA) = 0;

private:
    using Handler = int (CBalancingSequence::*)(const CEvent&);
    static const std::array<Handler, Sequence::eRoleCount> ms_Handlers;

    // The engine (balancingsequence.cpp).
    int Start(EVENTS Event, std::uint16_t wRPM, int NotLocked, int InvalidRPM);
    int DispatchEvent(const CEvent& rEvent);
    /// The measurement that the present state makes.
    Measurement GetMeasurement() const;
    /// The present state's row.
    const Sequence::CState& GetStateRow() const {
        return m_rTables.m_States[static_cast<std::size_t>(m_State)];
    }
    /// Takes the way that the table gives the present state for that trigger: deeds, then the next state. No
    /// value if no row holds; else the result of entering.
    std::optional<int> Follow(Sequence::Trigger Trigger);
    std::optional<int> Follow(const CEvent& rEvent);
    std::optional<Sequence::Trigger> FindTrigger(const CEvent& rEvent) const;
    bool Holds(Sequence::Guard Guard) const;
    void Do(Sequence::Deed Deed);
    /// An event that a state doesn't name is ignored and counts as handled; a commit is refused.
    static int Ignore(const CEvent& rEvent) { return rEvent.m_Kind != eCommitChanges ? 1 : 0; }
    int FailWithReset(std::uint32_t Warning);
    void AddToHistory(int NewState);
    std::string GetCause() const;
    void OpenLogBlock(int NewState);
    void CloseLogBlock();

    // What entering and measuring do to page, host and NC (sequenceconduct.cpp).
    void CountStep(const Sequence::CStepRule& rRule);
    /// The table's display, menu and notification of the state just entered, in this order.
    void ShowState();
    void ShowDisplay() { m_Entry.Show(GetStateRow(), GetCurrentStep()); }
    void ShowMenu();
    void NotifyState();
    void Notify(CPreBalNotification::Step Step, CPreBalNotification::Action Action);
    void StoreReading(std::size_t Sensor, std::int16_t x, std::int16_t y);
    /// What all measuring states do with speed, lock and readings.
    int HandleMeasuringEvent(const CEvent& rEvent);
    void TakeSample(std::size_t Plane);
    void TestTargetUnbalanceAndDisplayWarning(CPreBalNotification::Step Within,
                                              CPreBalNotification::Step Over);
    bool IsAtCalibratedSpeed() const;
    void HandleChangeWeightKeys();
    /// A menu of a method that is asked for with the number of planes.
    using MenuQuery = int (CPlaneBalancingMethod::*)(std::uint8_t);
    void ShowActiveMenu(MenuQuery Query);
    void ShowForChange(Sequence::CShow::Kind Kind, CPlaneBalancingMethod::DisplayMode Mode) {
        m_Entry.ShowForChange({Kind, Mode}, GetCurrentStep());
    }
    /// The running key, if it is eTogglePlane and there are planes to choose from; true if it was.
    bool HandleTogglePlaneKey(MenuQuery Query);
    /// Stored positions become those of the first measurement, and are shown; false without any.
    bool AdoptStoredWeightPositions();

    // Kinds of states that there are several of (prebalancehandlers.cpp).
    /// Shows itself on entry, and waits for what the table says.
    int HandleWaiting(const CEvent& rEvent);
    /// The measurements that end a run.
    int HandleFinalMeasurement(const CEvent& rEvent);

    // Handlers of pre-balancing (prebalancehandlers.cpp).
    int IdleHandler(const CEvent& rEvent);
    int FailureWithNoReturnHandler(const CEvent& rEvent);
    int FailureWithResetHandler(const CEvent& rEvent);
    int NeutralPosSpindleStopHandler(const CEvent& rEvent);
    int NeutralPosRemoveWeightsHandler(const CEvent& rEvent);
    int NeutralPosRPMStartHandler(const CEvent& rEvent);
    int NeutralPosMeasurementHandler(const CEvent& rEvent);
    int TestUnbalanceSpindleStopHandler(const CEvent& rEvent);
    int TestUnbalanceSetWeightsHandler(const CEvent& rEvent);
    int TestUnbalanceRPMStartHandler(const CEvent& rEvent);
    int TestUnbalanceMeasurementHandler(const CEvent& rEvent);
    int PreBalanceSpindleStopHandler(const CEvent& rEvent);
    int PreBalanceSetWeightsHandler(const CEvent& rEvent);
    int PreBalanceRPMStartHandler(const CEvent& rEvent);
    int PreBalanceMeasurementHandler(const CEvent& rEvent);
    void HandleNeutralPosKey();
    void ShowRPMStart(bool bEntry);
    /// Test weights that weren't moved at all make the influence infinite or undefined. That is no
    /// calibration.
    static bool IsFinite(const CCalibration& rCalibration);
    std::uint32_t EvaluateTestRun(std::size_t Leg, CCalibration& rCalibration);
    int FinishTestMeasurement();
    void AdoptCalibration(const CCalibration& rCalibration);

    // Handlers of re-balancing (rebalancehandlers.cpp).
    int ReBalanceCommitWeightsHandler(const CEvent& rEvent);
    int ReBalanceRPMStart1Handler(const CEvent& rEvent);
    int ReBalanceMeasurement1Handler(const CEvent& rEvent);
    int ReBalanceSpindleStopHandler(const CEvent& rEvent);
    int ReBalanceSpindleStopCheckWeightsHandler(const CEvent& rEvent);
    int ReBalanceSetWeightsHandler(const CEvent& rEvent);
    int ReBalanceCheckWeightsHandler(const CEvent& rEvent);
    int ReBalanceRPMStart2Handler(const CEvent& rEvent);
    int ReBalanceMeasurement2Handler(const CEvent& rEvent);
    std::vector<Matrix> GetStoredUAs();
    /// The means as they stand become the stored compensation.
    void StoreUAOfPlanes();
    /// Whether the stored compensation still fits the capacity, or that is to be ignored.
    bool CanRebalance(const char* pPrefix, const char* pRefused);

    const Sequence::CTables& m_rTables;
    CSequencePlanes m_Planes;
    CSequenceMeasuring m_Measuring;
    CReadingLog m_Arrived;
    CSequencePositions m_Positions;
    CSequenceEntry m_Entry;
    bool m_bBlockOpen = false;  ///< a log block of this object is open
    int m_State = 0;
    KeyAction m_KeyAction = eNext;  ///< of the running eKeyPressed
    std::optional<CEvent> m_Event;  ///< the running one; eNewState in an abort
    std::uint16_t m_RPM = 0;        ///< last speed; 0: the spindle stands
    int m_InvalidRPM = 1;           ///< the commanded speed is not yet valid
    int m_NotLocked = 1;            ///< the electronics is out of lock
    int m_WeightSelection = 0;
    double m_CompensationDifference = 0.0;  ///< percentage that the compensation could not reach
    bool m_bVerdictOnFullWindow = false;    ///< the feature flag PreBalancingVerdictOnFullWindow
    CStateHistory m_History;
};
