// The states of CBalancingSequence up to the end of a pre-balancing: what an event means within a state.
// Which events lead out of it, and where, stands in the tables. An event that neither names is ignored and
// counts as handled; eCommitChanges is refused everywhere but in the final measurements.
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

int CBalancingSequence::IdleHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return 0;
    }
    if (const std::optional<int> Left = Follow(rEvent)) {
        if (*Left != 0 && rEvent.m_Kind == eStartPreBal) {
            // A broken run leaves the configuration uncalibrated.
            m_pEntry->SetIsCalibrated(0);
        }
        return *Left;
    }
    return rEvent.m_Kind != eStartReBal ? Ignore(rEvent) : 0;
}

int CBalancingSequence::FailureWithNoReturnHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        SetWarningMode(rEvent.m_Warning);
        ShowState();
    }
    return Ignore(rEvent);
}

int CBalancingSequence::FailureWithResetHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        ShowState();
    }
    return Ignore(rEvent);
}

int CBalancingSequence::HandleWaiting(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        ShowState();
    }
    const std::optional<int> Left = Follow(rEvent);
    return Left ? *Left : Ignore(rEvent);
}

int CBalancingSequence::NeutralPosSpindleStopHandler(const CEvent& rEvent) {
    const int State = m_State;
    const int Result = HandleWaiting(rEvent);
    if (rEvent.m_Kind == eKeyPressed && m_State == State) {
        HandleNeutralPosKey();
    }
    return Result;
}

int CBalancingSequence::NeutralPosRemoveWeightsHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eKeyPressed && m_KeyAction == ePositionAdoption && m_Planes.HasWeightsOnly()) {
        // Stays, unlike the state before: the operator is to see the positions.
        AdoptStoredWeightPositions();
        return 1;
    }
    const int State = m_State;
    const int Result = HandleWaiting(rEvent);
    if (rEvent.m_Kind == eKeyPressed && m_State == State) {
        HandleNeutralPosKey();
    }
    return Result;
}

void CBalancingSequence::HandleNeutralPosKey() {
    if (!m_Planes.HasWeightsOnly()) {
        return;
    }
    if (m_KeyAction == eExtras) {
        ShowForChange(Sequence::CShow::ePlain, CPlaneBalancingMethod::eNeutralPosition);
        ShowActiveMenu(&CPlaneBalancingMethod::GetNeutralPositionMenu);
    } else if (!HandleTogglePlaneKey(&CPlaneBalancingMethod::GetNeutralPositionMenu)) {
        HandleChangeWeightKeys();
    }
}

int CBalancingSequence::NeutralPosRPMStartHandler(const CEvent& rEvent) {
    switch (rEvent.m_Kind) {
        case eNewState:
        case eInvalidRPMChanged:
        case eOutOfLockChanged:
            ShowRPMStart(rEvent.m_Kind == eNewState);
            return 1;
        default:
            return HandleWaiting(rEvent);
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

int CBalancingSequence::NeutralPosMeasurementHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        ShowDisplay();
        m_Measuring.Begin();
        // All measurements of this run are made at the speed found now.
        m_pEntry->SetCalibratedRPM(m_RPM);
        SetCalibratedRPM(m_RPM);
        SetTargetRPM(m_RPM);
        ShowMenu();
        NotifyState();
        StartMeasurement(m_RPM, m_NotLocked, 1);
        m_Positions.StoreSpeed(m_RPM);
        return 1;
    }
    const std::optional<int> Left = Follow(rEvent);
    return Left ? *Left : HandleMeasuringEvent(rEvent);
}

int CBalancingSequence::TestUnbalanceSpindleStopHandler(const CEvent& rEvent) {
    return HandleWaiting(rEvent);
}

int CBalancingSequence::TestUnbalanceSetWeightsHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eKeyPressed && m_KeyAction != eNext) {
        const std::size_t Leg = GetStateRow().m_Leg;
        if (m_KeyAction == eExtras) {
            m_pMainWnd->SetMenu(m_Planes.Get(Leg).m_pMethod->GetTestUnbalanceChangeMenu());
        } else {
            CheckActivePlane(Leg);
            HandleChangeWeightKeys();
        }
        return 1;
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::TestUnbalanceRPMStartHandler(const CEvent& rEvent) {
    return HandleWaiting(rEvent);
}

int CBalancingSequence::TestUnbalanceMeasurementHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState) {
        ShowDisplay();
        m_Measuring.Begin();
        ShowMenu();
        StartMeasurement(m_RPM, m_NotLocked, 1);
        // Last here, unlike in the other measurements: a warning reaches the NC before the request to
        // measure.
        NotifyState();
        return 1;
    }
    if (rEvent.m_Kind == eKeyPressed && m_KeyAction == eNext && Holds(Sequence::eMeasured)) {
        StopMeasurement();
        return FinishTestMeasurement();
    }
    return HandleMeasuringEvent(rEvent);
}

int CBalancingSequence::FinishTestMeasurement() {
    const std::size_t Leg = GetStateRow().m_Leg;
    CCalibration Calibration;
    Sequence::Trigger Outcome = Sequence::eTestRunImpossible;
    switch (EvaluateTestRun(Leg, Calibration)) {
        case USABLE:
            if (Leg + 1 == m_Planes.GetCount()) {
                AdoptCalibration(Calibration);
            }
            Outcome = Sequence::eTestRunUsable;
            break;
        case NO_INFLUENCE:
            Outcome = Sequence::eTestRunWithoutEffect;
            break;
        default:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            break;
    }
    return Follow(Outcome).value_or(0);
}

bool CBalancingSequence::IsFinite(const CCalibration& rCalibration) {
    return IsFiniteMatrix(rCalibration.m_InvA) && std::ranges::all_of(rCalibration.m_UA, IsFiniteMatrix);
}

std::uint32_t CBalancingSequence::EvaluateTestRun(std::size_t Leg, CCalibration& rCalibration) {
    try {
        const std::uint32_t Status = FinishTestRun(Leg, rCalibration);
        if (Status == USABLE && Leg + 1 == m_Planes.GetCount() && !IsFinite(rCalibration)) {
            RV_WARNING(RtrTrim::g_pLog, "The test run gives no finite influence: taken as without influence");
            return NO_INFLUENCE;
        }
        return Status;
    } catch (const math::matrix_error& rError) {
        // The influence is exactly zero. To the operator that is a test run without effect.
        RV_WARNING(RtrTrim::g_pLog, "The test run can't be evaluated (%s): taken as without influence",
                   rError.what());
        return NO_INFLUENCE;
    }
}

void CBalancingSequence::AdoptCalibration(const CCalibration& rCalibration) {
    m_CompensationDifference = 0.0;
    SetStoredInvA(rCalibration.m_InvA);
    double Percent = 0.0;
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        CPlaneBalancingMethod& rMethod = *m_Planes.Get(i).m_pMethod;
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

int CBalancingSequence::PreBalanceSpindleStopHandler(const CEvent& rEvent) {
    return HandleWaiting(rEvent);
}

int CBalancingSequence::PreBalanceSetWeightsHandler(const CEvent& rEvent) {
    if (rEvent.m_Kind == eNewState && m_CompensationDifference > 0.0) {
        SetWarningMode(Warnings::eCapacity, &m_CompensationDifference);
    }
    return HandleWaiting(rEvent);
}

int CBalancingSequence::PreBalanceRPMStartHandler(const CEvent& rEvent) {
    return HandleWaiting(rEvent);
}

int CBalancingSequence::HandleFinalMeasurement(const CEvent& rEvent) {
    switch (rEvent.m_Kind) {
        case eNewState:
            ShowDisplay();
            m_Measuring.Begin();
            ShowMenu();
            NotifyState();
            // The menu stays when the measuring condition is lost.
            StartMeasurement(m_RPM, m_NotLocked, 0);
            return 1;
        case eKeyPressed:
            return Follow(rEvent).value_or(1);
        case eCommitChanges:
            return 1;
        default:
            return HandleMeasuringEvent(rEvent);
    }
}

int CBalancingSequence::PreBalanceMeasurementHandler(const CEvent& rEvent) {
    return HandleFinalMeasurement(rEvent);
}
