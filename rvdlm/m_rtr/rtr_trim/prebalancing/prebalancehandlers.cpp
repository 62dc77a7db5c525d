// The states of CBalancingSequence up to the end of a pre-balancing. An event that a state doesn't name is
// ignored and counts as handled; eCommitChanges is refused everywhere but in the final measurements.
#include <algorithm>
#include <cmath>

#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

namespace {

bool IsFiniteMatrix(const math::matrix<double>& rMatrix) {
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            if (!std::isfinite(rMatrix(i, j))) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

int CBalancingSequence::IdleHandler(EVENTS Event) {
    switch (Event) {
        case eNewState:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            return 0;
        case eStartPreBal: {
            if (HasWeightsOnly()) {
                ReloadPositionStore();
            }
            const int bStarted =
                Enter(m_RPM != 0 ? Sequence::eNeutralPosSpindleStop : Sequence::eNeutralPosRemoveWeights);
            if (bStarted != 0) {
                // A broken run leaves the configuration uncalibrated.
                m_pEntry->SetIsCalibrated(0);
            }
            return bStarted;
        }
        case eStartReBal:
            if (m_pEntry->IsCalibrated() == 0) {
                return 0;
            }
            return Enter(m_InvalidRPM != 0 ? Sequence::eReBalanceCommitWeights
                                           : Sequence::eReBalanceMeasurement1);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::FailureWithNoReturnHandler(EVENTS Event) {
    if (Event == eNewState) {
        SetWarningMode(m_AbortWarning);
        ShowState();
    }
    return Event != eCommitChanges ? 1 : 0;
}

int CBalancingSequence::FailureWithResetHandler(EVENTS Event) {
    if (Event == eNewState) {
        ShowState();
    }
    return Event != eCommitChanges ? 1 : 0;
}

int CBalancingSequence::NeutralPosSpindleStopHandler(EVENTS Event) {
    switch (Event) {
        case eNewState:
            ShowState();
            return 1;
        case eRPMChanged:
            return m_RPM == 0 ? Enter(Sequence::eNeutralPosRemoveWeights) : 1;
        case eKeyPressed:
            // The spindle needn't stop if the weights are known to be where they should be. With either
            // method.
            if (m_KeyAction == eNeutralPositionAdjusted || (m_KeyAction == eNext && HasWeightsOnly())) {
                ApplyNeutralPositionWeights();
                AddStep();  // of the state left out
                return Enter(Sequence::eNeutralPosRPMStart);
            }
            if (m_KeyAction == ePositionAdoption && HasWeightsOnly()) {
                if (AdoptStoredWeightPositions()) {
                    AddStep();
                    return Enter(Sequence::eNeutralPosRPMStart);
                }
                return 1;
            }
            HandleNeutralPosKey();
            return 1;
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::NeutralPosRemoveWeightsHandler(EVENTS Event) {
    const auto LeadOn = [this] {
        ApplyNeutralPositionWeights();
        return Enter(Sequence::eNeutralPosRPMStart);
    };
    switch (Event) {
        case eNewState:
            ShowState();
            return 1;
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                return LeadOn();
            }
            if (m_KeyAction == ePositionAdoption && HasWeightsOnly()) {
                // Stays, unlike the state before: the operator is to see the positions.
                AdoptStoredWeightPositions();
                return 1;
            }
            HandleNeutralPosKey();
            return 1;
        case eInvalidRPMChanged:
            return m_InvalidRPM == 0 ? LeadOn() : 1;
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

void CBalancingSequence::HandleNeutralPosKey() {
    if (!HasWeightsOnly()) {
        return;
    }
    if (m_KeyAction == eExtras) {
        ShowForChange({Sequence::CShow::ePlain, CPlaneBalancingMethod::eNeutralPosition});
        ShowActiveMenu(&CPlaneBalancingMethod::GetNeutralPositionMenu);
    } else if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetNeutralPositionMenu)) {
        HandleChangeWeightKeys();
    }
}

int CBalancingSequence::NeutralPosRPMStartHandler(EVENTS Event) {
    switch (Event) {
        case eNewState:
        case eInvalidRPMChanged:
        case eOutOfLockChanged:
            ShowRPMStart(Event == eNewState);
            return 1;
        case eKeyPressed:
            // The speed itself isn't tested: the measurement is made at the speed found here.
            if (m_KeyAction != eNext || m_InvalidRPM != 0 ||
                (m_NotLocked != 0 && GetIgnoreOutOfLock() == 0)) {
                return 1;
            }
            return Enter(Sequence::eNeutralPosMeasurement);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

void CBalancingSequence::ShowRPMStart(bool bEntry) {
    SetWarningMode(m_NotLocked != 0 ? Warnings::eOutOfLock : Warnings::eNone);
    if (bEntry) {
        ShowDisplay();
    }
    if (m_NotLocked == 0 && m_InvalidRPM == 0) {
        m_pMainWnd->SetMenu(Menus::eConfirm);
        Notify(CPreBalNotification::eSetup, CPreBalNotification::eSetSpindleSpeed);
    } else {
        m_pMainWnd->SetMenu(Menus::eWait);
        Notify(CPreBalNotification::eSetup, CPreBalNotification::eNone);
    }
}

int CBalancingSequence::NeutralPosMeasurementHandler(EVENTS Event) {
    if (Event == eNewState) {
        ShowDisplay();
        BeginSampling();
        // All measurements of this run are made at the speed found now.
        m_pEntry->SetCalibratedRPM(m_RPM);
        SetCalibratedRPM(m_RPM);
        SetTargetRPM(m_RPM);
        ShowMenu();
        NotifyState();
        StartMeasurement(m_RPM, m_NotLocked, 1);
        StoreNeutralRPM();
        return 1;
    }
    if (Event == eKeyPressed && m_KeyAction == eNext && m_pMainWnd->GetMenu() == Menus::eConfirm) {
        ApplyNeutralPositionXYValues();
        StopMeasurement();
        return Enter(Sequence::eTestUnbalanceSpindleStop);
    }
    return HandleMeasuringEvent(Event);
}

int CBalancingSequence::HandleSpindleStop(EVENTS Event, Sequence::Role Next, std::size_t Leg,
                                          bool bSkipStep) {
    switch (Event) {
        case eNewState:
            ShowState();
            return 1;
        case eRPMChanged:
            if (m_RPM != 0) {
                return 1;
            }
            if (bSkipStep) {
                AddStep();
            }
            return Enter(Next, Leg);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::TestUnbalanceSpindleStopHandler(EVENTS Event) {
    return HandleSpindleStop(Event, Sequence::eTestUnbalanceSetWeights, GetStateRow().m_Leg, false);
}

int CBalancingSequence::TestUnbalanceSetWeightsHandler(EVENTS Event) {
    const std::size_t Leg = GetStateRow().m_Leg;
    switch (Event) {
        case eNewState:
            ShowState();
            return 1;
        case eKeyPressed:
            if (m_KeyAction == eNext) {
                SetTestPositions(Leg);
                return Enter(Sequence::eTestUnbalanceRPMStart, Leg);
            }
            if (m_KeyAction == eExtras) {
                m_pMainWnd->SetMenu(GetPlane(Leg).m_pMethod->GetTestUnbalanceChangeMenu());
            } else {
                CheckActivePlane(Leg);
                HandleChangeWeightKeys();
            }
            return 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM != 0) {
                return 1;
            }
            AddStep();
            SetTestPositions(Leg);
            return Enter(Sequence::eTestUnbalanceMeasurement, Leg);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::TestUnbalanceRPMStartHandler(EVENTS Event) {
    return HandleRPMStart(Event);
}

int CBalancingSequence::TestUnbalanceMeasurementHandler(EVENTS Event) {
    if (Event == eNewState) {
        ShowDisplay();
        BeginSampling();
        ShowMenu();
        StartMeasurement(m_RPM, m_NotLocked, 1);
        // Last here, unlike in the other measurements: a warning reaches the NC before the request to
        // measure.
        NotifyState();
        return 1;
    }
    if (Event == eKeyPressed && m_KeyAction == eNext && m_pMainWnd->GetMenu() == Menus::eConfirm) {
        StopMeasurement();
        return FinishTestMeasurement();
    }
    return HandleMeasuringEvent(Event);
}

int CBalancingSequence::FinishTestMeasurement() {
    const std::size_t Leg = GetStateRow().m_Leg;
    const bool bLastLeg = Leg + 1 == m_Planes.size();
    CCalibration Calibration;
    switch (EvaluateTestRun(Leg, Calibration)) {
        case eUsable:
            if (!bLastLeg) {
                return Enter(Sequence::eTestUnbalanceSpindleStop, Leg + 1);
            }
            AdoptCalibration(Calibration);
            return Enter(Sequence::ePreBalanceSpindleStop);
        case eNoInfluence:
            return FailWithReset(Warnings::eNoInfluence);
        default:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            // Such a verdict has no warning of its own.
            return FailWithNoReturn(Warnings::eSetChanged);
    }
}

bool CBalancingSequence::IsFinite(const CCalibration& rCalibration) {
    return IsFiniteMatrix(rCalibration.m_InvA) && std::ranges::all_of(rCalibration.m_UA, IsFiniteMatrix);
}

std::uint32_t CBalancingSequence::EvaluateTestRun(std::size_t Leg, CCalibration& rCalibration) {
    try {
        const std::uint32_t Status = FinishTestRun(Leg, rCalibration);
        if (Status == eUsable && Leg + 1 == m_Planes.size() && !IsFinite(rCalibration)) {
            RV_WARNING(RtrTrim::g_pLog, "The test run gives no finite influence: taken as without influence");
            return eNoInfluence;
        }
        return Status;
    } catch (const math::matrix_error& rError) {
        // The influence is exactly zero. To the operator that is a test run without effect.
        RV_WARNING(RtrTrim::g_pLog, "The test run can't be evaluated (%s): taken as without influence",
                   rError.what());
        return eNoInfluence;
    }
}

void CBalancingSequence::AdoptCalibration(const CCalibration& rCalibration) {
    m_CompensationDifference = 0.0;
    SetStoredInvA(rCalibration.m_InvA);
    double Percent = 0.0;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        CPlaneBalancingMethod& rMethod = *m_Planes[i].m_pMethod;
        const Matrix& rUA = rCalibration.m_UA.at(i);
        double PlanePercent = 0.0;
        const bool bReached = rMethod.SetUA(rUA, &PlanePercent, true);
        SetStoredUA(i, bReached ? rMethod.GetUA() : rUA);
        Percent = std::max(Percent, PlanePercent);
    }
    // A lack of capacity is only a warning here: the nearest correction is better than none.
    if (Percent != 0.0) {
        m_CompensationDifference = Percent;
        RV_WARNING(RtrTrim::g_pLog, "Compensation SetUA failed %.2lf%% failure (not enough capacity)",
                   Percent);
    }
}

int CBalancingSequence::PreBalanceSpindleStopHandler(EVENTS Event) {
    return HandleSpindleStop(Event, Sequence::ePreBalanceSetWeights, 0, false);
}

int CBalancingSequence::PreBalanceSetWeightsHandler(EVENTS Event) {
    switch (Event) {
        case eNewState:
            if (m_CompensationDifference > 0.0) {
                SetWarningMode(Warnings::eCapacity, &m_CompensationDifference);
            }
            ShowState();
            return 1;
        case eKeyPressed:
            return m_KeyAction == eNext ? Enter(Sequence::ePreBalanceRPMStart) : 1;
        case eInvalidRPMChanged:
            if (m_InvalidRPM != 0) {
                return 1;
            }
            AddStep();
            return Enter(Sequence::ePreBalanceMeasurement);
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

int CBalancingSequence::PreBalanceRPMStartHandler(EVENTS Event) {
    return HandleRPMStart(Event);
}

int CBalancingSequence::PreBalanceMeasurementHandler(EVENTS Event) {
    return HandleFinalMeasurement(Event);
}
