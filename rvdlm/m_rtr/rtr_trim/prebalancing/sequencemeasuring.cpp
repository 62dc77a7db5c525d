// Measuring rules of CBalancingSequence, and its waiting for the calibrated speed.
#include <algorithm>

#include "contract/menus.h"
#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

namespace {

/// What a measuring state does with its samples: wait until the window is complete and show a menu then, or
/// judge every sample against the target.
struct CMeasuringRule {
    Sequence::Role m_Role;
    bool m_bFinal;
    std::int32_t m_CompleteMenu;
    CPreBalNotification::Step m_Step;  ///< complete, or within the target
    CPreBalNotification::Step m_StepOver;
};
constexpr CMeasuringRule g_MeasuringRules[] = {
    {Sequence::eNeutralPosMeasurement, false, Menus::eConfirm, CPreBalNotification::eSetup, {}},
    {Sequence::eTestUnbalanceMeasurement, false, Menus::eConfirm, CPreBalNotification::eSetup, {}},
    {Sequence::ePreBalanceMeasurement, true, Menus::eNone, CPreBalNotification::eSetupSuccess,
     CPreBalNotification::eSetupOverTarget},
    {Sequence::eReBalanceMeasurement1,
     false,
     Menus::eConfirmOrCheckWeights,
     CPreBalNotification::eReBalActive,
     {}},
    {Sequence::eReBalanceMeasurement2, true, Menus::eNone, CPreBalNotification::eRebalSuccess,
     CPreBalNotification::eRebalOverTarget},
};

/// Where a state leads that waits for the calibrated speed.
struct CStartRule {
    Sequence::Role m_Role;
    Sequence::Role m_Next;
    bool m_bValidRPMLeadsOn;  ///< besides the speed itself, the module's word that the commanded speed is
                              ///< valid
};
constexpr CStartRule g_StartRules[] = {
    {Sequence::eTestUnbalanceRPMStart, Sequence::eTestUnbalanceMeasurement, true},
    {Sequence::ePreBalanceRPMStart, Sequence::ePreBalanceMeasurement, true},
    {Sequence::eReBalanceRPMStart1, Sequence::eReBalanceMeasurement1, true},
    {Sequence::eReBalanceRPMStart2, Sequence::eReBalanceMeasurement2, false},
};

template <typename T, std::size_t N>
const T* FindRule(const T (&rRules)[N], Sequence::Role Role) {
    for (const T& rRule : rRules) {
        if (rRule.m_Role == Role) {
            return &rRule;
        }
    }
    return nullptr;
}

}  // namespace

void CBalancingSequence::CurrentXYValuePlane1(std::int16_t x, std::int16_t y) {
    StoreReading(0, x, y);
}

void CBalancingSequence::CurrentXYValuePlane2(std::int16_t x, std::int16_t y) {
    StoreReading(1, x, y);
}

void CBalancingSequence::StoreReading(std::size_t Sensor, std::int16_t x, std::int16_t y) {
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        if (m_Planes[i].m_Sensor == Sensor) {
            m_Planes[i].m_X = x;
            m_Planes[i].m_Y = y;
            m_Planes[i].m_bConditionMet = IsConditionMet();
            // While measuring, samples are taken by the tick: the number of samples is a time.
            if (CanMeasure() == 0) {
                RaiseXYValueChanged(i);
            }
        }
    }
}

void CBalancingSequence::OnMeasurementTick() {
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        RaiseXYValueChanged(i);
    }
}

void CBalancingSequence::RaiseXYValueChanged(std::size_t Plane) {
    m_EventPlane = Plane;
    SetEvent(eXYValueChanged);
}

void CBalancingSequence::RestartMeasurement() {
    for (CPlane& rPlane : m_Planes) {
        rPlane.m_nMeasured = 0;
    }
}

void CBalancingSequence::BeginSampling() {
    for (CPlane& rPlane : m_Planes) {
        rPlane.m_bConditionMet = false;  // speed and lock weren't watched when this reading came
        rPlane.m_pMethod->m_MeasurementDisplayState = CPlaneBalancingMethod::eNotValid;
        rPlane.m_pMethod->AddMeasurementValue(rPlane.m_X, rPlane.m_Y);
    }
}

int CBalancingSequence::HandleMeasuringEvent(EVENTS Event) {
    switch (Event) {
        case eRPMChanged:
            UpdateRPM(m_RPM);
            return 1;
        case eOutOfLockChanged:
            UpdateOutOfLock(m_NotLocked);
            return 1;
        case eXYValueChanged:
            TakeSample();
            return 1;
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}

void CBalancingSequence::TakeSample() {
    CPlane& rPlane = m_Planes.at(m_EventPlane);
    CPlaneBalancingMethod& rMethod = *rPlane.m_pMethod;
    rMethod.AddMeasurementValue(rPlane.m_X, rPlane.m_Y);
    if (CanMeasure() == 0) {
        rMethod.m_MeasurementDisplayState = CPlaneBalancingMethod::eNotValid;
        return;
    }
    rPlane.m_nMeasured = rPlane.m_bConditionMet ? rPlane.m_nMeasured + 1 : 0;
    if (rMethod.m_MeasurementDisplayState == CPlaneBalancingMethod::eNotValid) {
        // The sample just added goes too.
        rMethod.m_MovingAverage.Reset();
        rMethod.m_MeasurementDisplayState = CPlaneBalancingMethod::eNormal;
    }
    const CMeasuringRule* pRule = FindRule(g_MeasuringRules, GetStateRow().m_Role);
    if (pRule == nullptr) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return;
    }
    if (pRule->m_bFinal) {
        TestTargetUnbalanceAndDisplayWarning(pRule->m_Step, pRule->m_StepOver);
    } else if (AddSample(m_EventPlane) != 0 && m_pMainWnd->GetMenu() != pRule->m_CompleteMenu) {
        m_pMainWnd->SetMenu(pRule->m_CompleteMenu);
        Notify(pRule->m_Step, CPreBalNotification::eMeasurementValuesOK);
    }
}

bool CBalancingSequence::IsMeasured(const CPlane& rPlane) const {
    // The average alone doesn't tell: while the condition is lost it fills with readings for the eye.
    return CanMeasure() != 0 && rPlane.m_pMethod->m_MovingAverage.GetValuesComplete() != 0 &&
           rPlane.m_nMeasured >= m_pEntry->GetNumberOfSamples();
}

void CBalancingSequence::TestTargetUnbalanceAndDisplayWarning(CPreBalNotification::Step Within,
                                                              CPreBalNotification::Step Over) {
    RV_ASSERT_AS(RtrTrim::g_pLog, CanMeasure() != 0, "CMeasurementSubState::CanMeasure()", "invalid state",
                 false);
    const auto Target = static_cast<double>(m_pEntry->GetTargetUnbalance());
    bool bWithin = true;
    for (CPlane& rPlane : m_Planes) {
        double Amplitude = 0.0;
        rPlane.m_pMethod->m_MovingAverage.GetValues(&Amplitude, nullptr, nullptr, nullptr, nullptr);
        const bool bPlaneWithin = Target >= Amplitude;
        // Each plane by its own reading: one inside the target stays so while the other is over it.
        rPlane.m_pMethod->m_MeasurementDisplayState =
            bPlaneWithin ? CPlaneBalancingMethod::eWithinTarget : CPlaneBalancingMethod::eOverTarget;
        bWithin = bWithin && bPlaneWithin;
    }
    SetWarningMode(bWithin ? Warnings::eNone : Warnings::eOverTarget);
    const CPreBalNotification::Step Verdict = bWithin ? Within : Over;
    // Without the flag the NC is told from the first sample on, which judges an average just emptied.
    const bool bTell = !m_bVerdictOnFullWindow || std::ranges::all_of(m_Planes, [this](const CPlane& rPlane) {
        return IsMeasured(rPlane);
    });
    if (bTell && m_Notification.m_Step != Verdict) {
        // With the action that the state left: the NC sees one message a change of the verdict.
        m_Notification.m_Step = Verdict;
        m_pMainWnd->PreBalNotification(m_Notification);
    }
}

int CBalancingSequence::HandleFinalMeasurement(EVENTS Event) {
    switch (Event) {
        case eNewState:
            ShowDisplay();
            BeginSampling();
            ShowMenu();
            NotifyState();
            // The menu stays when the measuring condition is lost.
            StartMeasurement(m_RPM, m_NotLocked, 0);
            return 1;
        case eKeyPressed:
            if (m_KeyAction != eRebalance) {
                return 1;
            }
            StopMeasurement();
            SetCurrentStep(0);
            return Enter(Sequence::eReBalanceMeasurement1);
        case eCommitChanges:
            return 1;
        default:
            return HandleMeasuringEvent(Event);
    }
}

bool CBalancingSequence::IsAtCalibratedSpeed() const {
    return IsSpeedInWindow(m_RPM, m_pEntry->GetCalibratedRPM(), m_pEntry->GetRPMTolerance());
}

int CBalancingSequence::HandleRPMStart(EVENTS Event) {
    const CStartRule* pRule = FindRule(g_StartRules, GetStateRow().m_Role);
    if (pRule == nullptr) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return 0;
    }
    const std::size_t Leg = GetStateRow().m_Leg;
    switch (Event) {
        case eNewState:
            ShowState();
            [[fallthrough]];
        case eRPMChanged:
            return IsAtCalibratedSpeed() ? Enter(pRule->m_Next, Leg) : 1;
        case eInvalidRPMChanged:
            return pRule->m_bValidRPMLeadsOn && m_InvalidRPM == 0 ? Enter(pRule->m_Next, Leg) : 1;
        case eCommitChanges:
            return 0;
        default:
            return 1;
    }
}
