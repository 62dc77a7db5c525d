#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingmathif.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"
#include "rvlib/math/vector.h"

/// The guided procedure that balances two coupled planes of a rotor: pre-balancing in 15 or 16 steps, with a
/// test leg for each plane, and re-balancing in 5 or 7 steps, which reuses the stored influence. Its states
/// stand in twoplanetables.h, their conduct in CBalancingSequence.
///
/// The test weights of plane 1 stay on while those of plane 2 are fitted. Both corrections are shown at once,
/// and the target counts for both planes.
///
/// The active plane, whose means the keys move, has no field: it follows from the methods' display modes, and
/// is the one that shows its means while the other is inactive.
class CTwoPlaneBalancing : public CBalancingSequence {
public:
    enum STATES : int {
        eIdle = 0,
        eFailureWithNoReturn = 1,
        eFailureWithReset = 2,
        eNeutralPosSpindleStop = 3,
        eNeutralPosRemoveWeights = 4,
        eNeutralPosRPMStart = 5,
        eNeutralPosMeasurement = 6,
        ePlane1TestUnbalanceSpindleStop = 7,
        ePlane1TestUnbalanceSetWeights = 8,
        ePlane1TestUnbalanceRPMStart = 9,
        ePlane1TestUnbalanceMeasurement = 10,
        ePlane2TestUnbalanceSpindleStop = 11,
        ePlane2TestUnbalanceSetWeights = 12,
        ePlane2TestUnbalanceRPMStart = 13,
        ePlane2TestUnbalanceMeasurement = 14,
        ePreBalanceSpindleStop = 15,
        ePreBalanceSetWeights = 16,
        ePreBalanceRPMStart = 17,
        ePreBalanceMeasurement = 18,
        eReBalanceCommitWeights = 19,
        eReBalanceRPMStart1 = 20,
        eReBalanceMeasurement1 = 21,
        eReBalanceSpindleStop = 22,
        eReBalanceSpindleStopCheckWeights = 23,
        eReBalanceSetWeights = 24,
        eReBalanceCheckWeights = 25,
        eReBalanceRPMStart2 = 26,
        eReBalanceMeasurement2 = 27
    };
    /// Those of the base, with an event of its own for each plane's reading.
    enum TWO_PLANE_EVENTS : int {
        ePlane1XYValueChanged = 5,
        ePlane2XYValueChanged = 6,
        eTwoPlaneInvalidRPMChanged = 7,
        eTwoPlaneOutOfLockChanged = 8,
        eTwoPlaneCommitChanges = 9
    };

    /// rSecondTitle: name of the set. pMainWnd and rEntry must outlive this.
    CTwoPlaneBalancing(CPreBalMainWndInterface* pMainWnd, PreBalDB::CPreBalBaseTableEntry& rEntry,
                       const std::string& rSecondTitle);
    ~CTwoPlaneBalancing() override;

    int StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override;
    void RestartMeasurement() override;

    /// The state's name without its e; 23 and 25 keep it. "invalid state" for anything else.
    static const char* STATESToString(int State);
    /// The event's name; "invalid event", after an assertion, for anything else.
    static const char* EVENTSToString(int Event);

protected:
    /// With means and mathematics of the caller's.
    CTwoPlaneBalancing(CPreBalMainWndInterface* pMainWnd, CSequencePlane Plane1, CSequencePlane Plane2,
                       std::unique_ptr<CTwoPlaneBalancingMathIF> pMath,
                       PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rSecondTitle);

    /// The active plane's method; plane 1's, after an assertion, if none is active or both are.
    CPlaneBalancingMethod& GetActivePlaneMethod();
    /// 0, after an assertion, if none is active or both are.
    int toggleActivePlane();

    const char* GetEventText(const CEvent& rEvent) const override;
    CPlaneBalancingMethod& GetActiveMethod() override { return GetActivePlaneMethod(); }
    void ToggleActivePlane() override { toggleActivePlane(); }
    void CheckActivePlane(std::size_t Leg) override;
    void PaintMethods(CDC* pDC, const CRect& rRect, bool bRedrawAll) override;
    int AddSample(std::size_t Plane) override;
    void SetFirstPositions(const std::vector<Matrix>& rPositions) override;
    void ApplyNeutralPositionXYValues() override;
    void SetTestPositions(std::size_t Leg) override;
    std::uint32_t FinishTestRun(std::size_t Leg, CCalibration& rCalibration) override;
    std::vector<Matrix> CalculateRebalance() override;
    void SetStoredInvA(const Matrix& rInvA) override;
    Matrix GetStoredUA(std::size_t Plane) override;
    void SetStoredUA(std::size_t Plane, const Matrix& rUA) override;

private:
    CSequencePlane CreatePlane1Method();
    CSequencePlane CreatePlane2Method();
    void Initialise();
    void SetOpposedFirstPositions();
    /// Whether a plane's weights, 2 by 1 in degrees, stand otherwise than in the first measurement; null: a
    /// test screw, which does.
    bool IsTestChange(std::size_t Plane, const Matrix* pPositions) const;
    CPlaneBalancingMethod& GetMethod(std::size_t Plane) { return *GetPlanes().Get(Plane).m_pMethod; }
    PreBalDB::CTwoPlaneBalancingTableEntry& GetTableEntry() { return m_pEntry->CreateTwoPlane(); }

    std::unique_ptr<CTwoPlaneBalancingMathIF> m_pMath;
    /// Per plane: the weights in the first measurement (2 by 1, degrees), and whether the test moved them.
    std::vector<Matrix> m_FirstPositions{2, math::MakeVector(0.0, 180.0)};
    std::array<bool, 2> m_bTestChanges{true, true};
};
