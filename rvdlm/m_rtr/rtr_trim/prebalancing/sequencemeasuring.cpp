#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencemeasuring.h"

#include <algorithm>
#include <array>

#include "contract/menus.h"

namespace Sequence {

namespace {

constexpr std::array MEASURING_RULES = {
    CMeasuringRule{
        eNeutralPosMeasurement, false, Menus::eConfirm, CPreBalNotification::eSetup, {}, Measurement::eFirst},
    CMeasuringRule{eTestUnbalanceMeasurement,
                   false,
                   Menus::eConfirm,
                   CPreBalNotification::eSetup,
                   {},
                   Measurement::eTest1},
    CMeasuringRule{ePreBalanceMeasurement, true, Menus::eNone, CPreBalNotification::eSetupSuccess,
                   CPreBalNotification::eSetupOverTarget, Measurement::eFinal},
    CMeasuringRule{eReBalanceMeasurement1,
                   false,
                   Menus::eConfirmOrCheckWeights,
                   CPreBalNotification::eReBalActive,
                   {},
                   Measurement::eFirst},
    CMeasuringRule{eReBalanceMeasurement2, true, Menus::eNone, CPreBalNotification::eRebalSuccess,
                   CPreBalNotification::eRebalOverTarget, Measurement::eFinal},
};

}  // namespace

const CMeasuringRule* FindMeasuringRule(Role StateRole) {
    const auto* const pFound = std::ranges::find(MEASURING_RULES, StateRole, &CMeasuringRule::m_Role);
    return pFound == MEASURING_RULES.end() ? nullptr : pFound;
}

Measurement GetMeasurement(const CState& rState) {
    const CMeasuringRule* const pRule = FindMeasuringRule(rState.m_Role);
    if (pRule == nullptr) {
        return Measurement::eNone;
    }
    return pRule->m_Measurement == Measurement::eTest1 && rState.m_Leg != 0 ? Measurement::eTest2
                                                                            : pRule->m_Measurement;
}

}  // namespace Sequence

void CSequenceMeasuring::Begin() {
    for (CSequencePlane& rPlane : m_rPlanes) {
        rPlane.m_bConditionMet = false;  // speed and lock weren't watched when this reading came
        rPlane.m_pMethod->m_MeasurementDisplayState = CPlaneBalancingMethod::eNotValid;
        rPlane.m_pMethod->AddMeasurementValue(rPlane.m_X, rPlane.m_Y);
    }
}

void CSequenceMeasuring::Restart() {
    for (CSequencePlane& rPlane : m_rPlanes) {
        rPlane.m_nMeasured = 0;
    }
}

void CSequenceMeasuring::Store(std::size_t Plane, std::int16_t x, std::int16_t y, bool bConditionMet) {
    CSequencePlane& rPlane = m_rPlanes.Get(Plane);
    rPlane.m_X = x;
    rPlane.m_Y = y;
    rPlane.m_bConditionMet = bConditionMet;
}

bool CSequenceMeasuring::TakeSample(std::size_t Plane, bool bCanMeasure) {
    CSequencePlane& rPlane = m_rPlanes.Get(Plane);
    CPlaneBalancingMethod& rMethod = *rPlane.m_pMethod;
    rMethod.AddMeasurementValue(rPlane.m_X, rPlane.m_Y);
    if (!bCanMeasure) {
        rMethod.m_MeasurementDisplayState = CPlaneBalancingMethod::eNotValid;
        return false;
    }
    rPlane.m_nMeasured = rPlane.m_bConditionMet ? rPlane.m_nMeasured + 1 : 0;
    if (rMethod.m_MeasurementDisplayState == CPlaneBalancingMethod::eNotValid) {
        // The sample just added goes too.
        rMethod.m_MovingAverage.Reset();
        rMethod.m_MeasurementDisplayState = CPlaneBalancingMethod::eNormal;
    }
    return true;
}

bool CSequenceMeasuring::IsMeasured(std::size_t Plane, bool bCanMeasure) const {
    // The average alone doesn't tell: while the condition is lost it fills with readings for the eye.
    const CSequencePlane& rPlane = m_rPlanes.Get(Plane);
    return bCanMeasure && rPlane.m_pMethod->m_MovingAverage.GetValuesComplete() != 0 &&
           rPlane.m_nMeasured >= m_nSamples;
}

bool CSequenceMeasuring::AreAllMeasured(bool bCanMeasure) const {
    for (std::size_t i = 0; i < m_rPlanes.GetCount(); ++i) {
        if (!IsMeasured(i, bCanMeasure)) {
            return false;
        }
    }
    return true;
}

void CSequenceMeasuring::Describe(CPreBalProgress::CMeasuring& rMeasuring) const {
    rMeasuring.m_nNeeded = m_nSamples;
    rMeasuring.m_nAveraged = rMeasuring.m_bSampling ? m_nSamples : 0;
    for (const CSequencePlane& rPlane : m_rPlanes) {
        rMeasuring.m_nAveraged = std::min(rMeasuring.m_nAveraged, rPlane.m_nMeasured);
    }
}

bool CSequenceMeasuring::Judge(double Target) {
    bool bWithin = true;
    for (CSequencePlane& rPlane : m_rPlanes) {
        double Amplitude = 0.0;
        rPlane.m_pMethod->m_MovingAverage.GetValues(&Amplitude, nullptr, nullptr, nullptr, nullptr);
        const bool bPlaneWithin = Target >= Amplitude;
        rPlane.m_pMethod->m_MeasurementDisplayState =
            bPlaneWithin ? CPlaneBalancingMethod::eWithinTarget : CPlaneBalancingMethod::eOverTarget;
        bWithin = bWithin && bPlaneWithin;
    }
    return bWithin;
}
