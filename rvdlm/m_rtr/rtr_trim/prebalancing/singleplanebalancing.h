#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingmathif.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

/// The guided procedure that balances one plane of a rotor: pre-balancing in 11 or 12 steps, with a test run,
/// and re-balancing in 5 or 7 steps, which reuses the stored influence. Its states stand in
/// singleplanetables.h, their conduct in CBalancingSequence.
class CSinglePlaneBalancing : public CBalancingSequence {
public:
    enum STATES : int {
        eIdle = 0,
        eFailureWithNoReturn = 1,
        eFailureWithReset = 2,
        eNeutralPosSpindleStop = 3,
        eNeutralPosRemoveWeights = 4,
        eNeutralPosRPMStart = 5,
        eNeutralPosMeasurement = 6,
        eTestUnbalanceSpindleStop = 7,
        eTestUnbalanceSetWeights = 8,
        eTestUnbalanceRPMStart = 9,
        eTestUnbalanceMeasurement = 10,
        ePreBalanceSpindleStop = 11,
        ePreBalanceSetWeights = 12,
        ePreBalanceRPMStart = 13,
        ePreBalanceMeasurement = 14,
        eReBalanceCommitWeights = 15,
        eReBalanceRPMStart1 = 16,
        eReBalanceMeasurement1 = 17,
        eReBalanceSpindleStop = 18,
        eReBalanceSpindleStopCheckWeights = 19,
        eReBalanceSetWeights = 20,
        eReBalanceCheckWeights = 21,
        eReBalanceRPMStart2 = 22,
        eReBalanceMeasurement2 = 23
    };

    /// Plane: 0 is fed by CurrentXYValuePlane1, 1 by CurrentXYValuePlane2. rSecondTitle: name of the set.
    /// pMainWnd and rEntry must outlive this.
    CSinglePlaneBalancing(CPreBalMainWndInterface* pMainWnd, int Plane,
                          PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rSecondTitle);
    ~CSinglePlaneBalancing() override;

    void RestartMeasurement() override;

    /// The state's name; "Invalid state" for anything else.
    static const char* STATESToString(int State);
    /// The event's name. eCommitChanges has none: "Invalid event", after an assertion, as for anything else.
    static const char* EVENTSToString(int Event);

protected:
    /// With means and mathematics of the caller's.
    CSinglePlaneBalancing(CPreBalMainWndInterface* pMainWnd, CSequencePlane Plane,
                          std::unique_ptr<CSinglePlaneBalancingMathIF> pMath,
                          PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rSecondTitle);

    const char* GetEventText(const CEvent& rEvent) const override;
    CPlaneBalancingMethod& GetActiveMethod() override;
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
    CSequencePlane CreateMethod(int Plane);
    void Initialise();
    CPlaneBalancingMethod& GetMethod() { return *GetPlanes().Get(0).m_pMethod; }
    PreBalDB::CSinglePlaneBalancingTableEntry& GetTableEntry() { return m_pEntry->CreateSinglePlane(); }

    std::unique_ptr<CSinglePlaneBalancingMathIF> m_pMath;
};
