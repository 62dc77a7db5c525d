#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingmathif.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

/// The guided procedure that balances one plane of a rotor: pre-balancing in 11 or 12 steps, with a test run,
/// and re-balancing in 5 or 7 steps, which reuses the stored influence. The order of events is that of
/// CBalancingSequence; the tables that make it a single-plane run stand in singleplanetables.h.
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

    /// Plane: 0 is fed by CurrentXYValuePlane1, 1 by CurrentXYValuePlane2. rEntry and pMainWnd outlive this.
    CSinglePlaneBalancing(CPreBalMainWndInterface* pMainWnd, int Plane,
                          PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rSecondTitle);
    ~CSinglePlaneBalancing() override;
};
