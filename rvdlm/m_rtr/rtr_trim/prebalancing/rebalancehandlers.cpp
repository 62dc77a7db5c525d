// The states of CBalancingSequence in a re-balancing: what an event means within a state. Which events lead
// out of it, and where, stands in the tables.
#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

namespace {

/// Instruction of the instruction view.
constexpr std::uint32_t MAP_WEIGHTS_MODE = 9;

}  // namespace

int CBalancingSequence::ReBalanceCommitWeightsHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
        const bool bCanRebalance =
            CanRebalance("Commit Weights: ", "Compensation SetUA failed not enough capacity");
        ShowState();
        return bCanRebalance ? 1 : Follow(Sequence::eCapacityMissing).value_or(0);
    }
    if (rEvent.m_Kind == eKeyPressed && m_KeyAction != eNext) {
        if (m_KeyAction == eExtras) {
            ShowForChange(Sequence::CShow::eFull, CPlaneBalancingMethod::eUACompensation);
            ShowActiveMenu(&CPlaneBalancingMethod::GetCommitChangeMenu);
            SetMode(MAP_WEIGHTS_MODE);
        } else if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetCommitChangeMenu)) {
            HandleChangeWeightKeys();
        }
        return 1;
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceRPMStart1Handler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceMeasurement1Handler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
        const bool bCanRebalance = CanRebalance("", "Compensation SetUA failed (not enough capacity)");
        ShowDisplay();
        m_Measuring.Begin();
        ShowMenu();
        NotifyState();
        if (!bCanRebalance) {
            return Follow(Sequence::eCapacityMissing).value_or(0);
        }
        StartMeasurement(m_RPM, m_NotLocked, 1);
        return 1;
    }
    const std::optional<int> Left = Follow(rEvent);
    return Left ? *Left : HandleMeasuringEvent(rEvent);
}

int CBalancingSequence::ReBalanceSpindleStopHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        m_Planes.SetUA(CalculateRebalance(), nullptr, true);
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceSpindleStopCheckWeightsHandler(const CEvent& rEvent) {
    // No calculation: the operator only wants to look at the weights.
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceSetWeightsHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        double Percent = 0.0;
        if (!m_Planes.SetUA(CalculateRebalance(), &Percent, true)) {
            RV_WARNING(RtrTrim::g_pLog, "Compensation SetUA failed %.2lf%% failure (not enough capacity)",
                       Percent);
            SetWarningMode(Warnings::eCapacity, &Percent);
        }
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceCheckWeightsHandler(const CEvent& rEvent) {
    switch (rEvent.m_Kind) {
        case eNewState:
            m_Planes.SetUA(GetStoredUAs(), nullptr, false);
            return HandleWaiting(rEvent);
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                return HandleWaiting(rEvent);
            }
            if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetCheckWeightsMenu)) {
                HandleChangeWeightKeys();
            }
            return 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM == 0) {
                // The speed is on while weights should be looked at.
                m_Planes.SetDisplayModes(CPlaneBalancingMethod::eInactive);
                SetWarningMode(Warnings::eStopSpindle);
                m_pMainWnd->SetMenu(Menus::eWait);
            } else {
                ShowForChange(Sequence::CShow::eFull, CPlaneBalancingMethod::eUACompensation);
                SetWarningMode(Warnings::eNone);
                ShowMenu();
            }
            return 1;
        default:
            return Ignore(rEvent);
    }
}

int CBalancingSequence::ReBalanceRPMStart2Handler(const CEvent& rEvent) {
    return HandleWaiting(rEvent);
}

int CBalancingSequence::ReBalanceMeasurement2Handler(const CEvent& rEvent) {
    return HandleFinalMeasurement(rEvent);
}

bool CBalancingSequence::CanRebalance(const char* pPrefix, const char* pRefused) {
    double Percent = 0.0;
    if (m_Planes.SetUA(GetStoredUAs(), &Percent, false)) {
        return true;
    }
    SetWarningMode(Warnings::eCapacity, &Percent);
    RV_WARNING(RtrTrim::g_pLog, "%sCompensation SetUA failed %.2lf%% failure (not enough capacity)", pPrefix,
               Percent);
    if (m_IgnoreRebalWeights != 0) {
        RV_WARNING(RtrTrim::g_pLog, "IGNORING: Compensation SetUA failed not enough capacity !!!!!!!!");
        return true;
    }
    RV_WARNING(RtrTrim::g_pLog, "%s", pRefused);
    return false;
}

std::vector<CBalancingSequence::Matrix> CBalancingSequence::GetStoredUAs() {
    std::vector<Matrix> Vectors;
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        Vectors.push_back(GetStoredUA(i));
    }
    return Vectors;
}

void CBalancingSequence::StoreUAOfPlanes() {
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        SetStoredUA(i, m_Planes.Get(i).m_pMethod->GetUA());
    }
}
