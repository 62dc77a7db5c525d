// The states of CBalancingSequence in a re-balancing. An event that a state doesn't name is ignored and
// counts as handled; eCommitChanges is refused everywhere but in the final measurement.
#include <algorithm>

#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

namespace {

/// Instruction of the instruction view.
constexpr std::uint32_t eMapWeightsMode = 9;

}  // namespace

int CBalancingSequence::ReBalanceCommitWeightsHandler(EVENTS Event) {
    switch (Event) {
        case eNewState: {
            SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
            const bool bCanRebalance =
                CanRebalance("Commit Weights: ", "Compensation SetUA failed not enough capacity");
            ShowState();
            return bCanRebalance ? 1 : FailWithReset(Warnings::eRebalanceNotPossible);
        }
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                StoreUAOfPlanes();
                return Enter(Sequence::eReBalanceRPMStart1);
            }
            if (m_KeyAction == eExtras) {
                ShowForChange({Sequence::CShow::eFull, CPlaneBalancingMethod::eUACompensation});
                ShowActiveMenu(&CPlaneBalancingMethod::GetCommitChangeMenu);
                SetMode(eMapWeightsMode);
            } else if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetCommitChangeMenu)) {
                HandleChangeWeightKeys();
            }
            return 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM != 0) {
                return 1;
            }
            AddStep();
            StoreUAOfPlanes();
            return Enter(Sequence::eReBalanceMeasurement1);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::ReBalanceRPMStart1Handler(EVENTS Event) {
    if (Event == eNewState) {
        SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
    }
    return HandleRPMStart(Event);
}

int CBalancingSequence::ReBalanceMeasurement1Handler(EVENTS Event) {
    if (Event == eNewState) {
        SetCalibratedRPM(m_pEntry->GetCalibratedRPM());
        const bool bCanRebalance = CanRebalance("", "Compensation SetUA failed (not enough capacity)");
        ShowDisplay();
        BeginSampling();
        ShowMenu();
        NotifyState();
        if (!bCanRebalance) {
            return FailWithReset(Warnings::eRebalanceNotPossible);
        }
        StartMeasurement(m_RPM, m_NotLocked, 1);
        return 1;
    }
    if (Event == eKeyPressed && m_pMainWnd->GetMenu() == Menus::eConfirmOrCheckWeights) {
        if (m_KeyAction == eNext) {
            StopMeasurement();
            return Enter(Sequence::eReBalanceSpindleStop);
        }
        if (m_KeyAction == eCheckWeightPositions) {
            StopMeasurement();
            return Enter(Sequence::eReBalanceSpindleStopCheckWeights);
        }
    }
    return HandleMeasuringEvent(Event);
}

int CBalancingSequence::ReBalanceSpindleStopHandler(EVENTS Event) {
    if (Event == eNewState) {
        SetUAOfPlanes(CalculateRebalance(), nullptr, true);
    }
    return HandleSpindleStop(Event, Sequence::eReBalanceSetWeights, 0, true);
}

int CBalancingSequence::ReBalanceSpindleStopCheckWeightsHandler(EVENTS Event) {
    // No calculation: the operator only wants to look at the weights.
    return HandleSpindleStop(Event, Sequence::eReBalanceCheckWeights, 0, true);
}

int CBalancingSequence::ReBalanceSetWeightsHandler(EVENTS Event) {
    switch (Event) {
        case eNewState: {
            double Percent = 0.0;
            if (!SetUAOfPlanes(CalculateRebalance(), &Percent, true)) {
                RV_WARNING(RtrTrim::g_pLog, "Compensation SetUA failed %.2lf%% failure (not enough capacity)",
                           Percent);
                SetWarningMode(Warnings::eCapacity, &Percent);
            }
            ShowState();
            return 1;
        }
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                StoreUAOfPlanes();
                return Enter(Sequence::eReBalanceRPMStart2);
            }
            return m_KeyAction == eCheckWeightPositions ? Enter(Sequence::eReBalanceCheckWeights) : 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM != 0) {
                return 1;
            }
            AddStep();
            StoreUAOfPlanes();
            return Enter(Sequence::eReBalanceMeasurement2);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::ReBalanceCheckWeightsHandler(EVENTS Event) {
    switch (Event) {
        case eNewState:
            SetUAOfPlanes(GetStoredUAs(), nullptr, false);
            ShowState();
            return 1;
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                StoreUAOfPlanes();
                return Enter(Sequence::eReBalanceSetWeights);
            }
            if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetCheckWeightsMenu)) {
                HandleChangeWeightKeys();
            }
            return 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM == 0) {
                // The speed is on while weights should be looked at.
                SetDisplayModes(CPlaneBalancingMethod::eInactive);
                SetWarningMode(Warnings::eStopSpindle);
                m_pMainWnd->SetMenu(Menus::eWait);
            } else {
                ShowForChange({Sequence::CShow::eFull, CPlaneBalancingMethod::eUACompensation});
                SetWarningMode(Warnings::eNone);
                ShowMenu();
            }
            return 1;
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::ReBalanceRPMStart2Handler(EVENTS Event) {
    return HandleRPMStart(Event);
}

int CBalancingSequence::ReBalanceMeasurement2Handler(EVENTS Event) {
    return HandleFinalMeasurement(Event);
}

bool CBalancingSequence::CanRebalance(const char* pPrefix, const char* pRefused) {
    double Percent = 0.0;
    if (SetUAOfPlanes(GetStoredUAs(), &Percent, false)) {
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

bool CBalancingSequence::SetUAOfPlanes(const std::vector<Matrix>& rUA, double* pPercent,
                                       bool bAllowEqualAngles) {
    bool bReached = true;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        double PlanePercent = 0.0;
        bReached = m_Planes[i].m_pMethod->SetUA(rUA.at(i), pPercent != nullptr ? &PlanePercent : nullptr,
                                                bAllowEqualAngles) &&
                   bReached;
        if (pPercent != nullptr) {
            *pPercent = std::max(*pPercent, PlanePercent);
        }
    }
    return bReached;
}

std::vector<CBalancingSequence::Matrix> CBalancingSequence::GetStoredUAs() {
    std::vector<Matrix> Vectors;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        Vectors.push_back(GetStoredUA(i));
    }
    return Vectors;
}

void CBalancingSequence::StoreUAOfPlanes() {
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        SetStoredUA(i, m_Planes[i].m_pMethod->GetUA());
    }
}
