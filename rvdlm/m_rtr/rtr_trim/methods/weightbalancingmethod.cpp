#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingmethod.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "contract/menus.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightkeys.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/math/vector.h"
#include "rvlib/settings/featureflags.h"

using PreBalDB::CTypeBase;

namespace {

// Bits of the weight selection.
constexpr int SELECT_WEIGHT2 = 1;
constexpr int SELECT_STEP10 = 2;

/// Change menus of procedures with one and with two planes, by the weight selection.
constexpr std::array<std::array<int, 4>, 2> CHANGE_MENUS = {
    {{Menus::eChangeWeight1By1, Menus::eChangeWeight2By1, Menus::eChangeWeight1By10,
      Menus::eChangeWeight2By10},
     {Menus::eChangeOfTwoPlanesWeight1By1, Menus::eChangeOfTwoPlanesWeight2By1,
      Menus::eChangeOfTwoPlanesWeight1By10, Menus::eChangeOfTwoPlanesWeight2By10}}};
/// The same in the old manner, where weights have keys of their own and steps don't change.
constexpr std::array<int, 2> OLD_CHANGE_MENUS = {Menus::eChangeBothWeights,
                                                 Menus::eChangeBothWeightsOfTwoPlanes};

/// Time from the key press to the first repeat, ms.
constexpr std::uint32_t REPEAT_DELAY = 450;
/// The weights' bodies: closer than this they would touch.
constexpr int MIN_DISTANCE = 20;
/// By how much equal positions are spread, each way.
constexpr int SPREAD = 10;

/// Back into 0 to 359 by one turn at most.
int Wrap(int Angle) {
    if (Angle >= 360) {
        return Angle - 360;
    }
    return Angle < 0 ? Angle + 360 : Angle;
}

/// The same place on a scale that counts the other way.
int Mirror(int Angle) {
    return (360 - Angle) % 360;
}

}  // namespace

CWeightBalancingMethod::CWeightBalancingMethod(const PreBalDB::CWeightCompensationTableEntry& rTableEntry,
                                               CPreBalMainWndInterface* pMainWnd, unsigned Plane,
                                               std::uint32_t nSamples, int IgnoreRebalWeights,
                                               int* pWeightSelection, bool bUseOldMenu)
    : CPlaneBalancingMethod(nSamples),
      CWeightCompensation(rTableEntry.GetScalingDirection(), Plane),
      m_pMainWnd(pMainWnd),
      m_TestUnbalanceVector(2, 1),
      m_IgnoreRebalWeights(IgnoreRebalWeights),
      m_pWeightSelection(pWeightSelection),
      m_UseOldMenu(bUseOldMenu),
      m_ConsistentWeightOrder(IsFeatureEnabled("PreBalancingConsistentWeightOrder", false)) {
    CWeightBalancingView::m_ScalingDirection = rTableEntry.GetScalingDirection();
    m_TestUnbalanceVector.Null();
}

CWeightBalancingMethod::~CWeightBalancingMethod() {
    StopTimers();
}

void CWeightBalancingMethod::StopTimers() {
    StopAutoIncrement();
    StopAutoDecrement();
}

void CWeightBalancingMethod::SetDisplayMode(DisplayMode Mode) {
    PB_FLOW("CWeightBalancingMethod::SetDisplayMode( Mode=%s) called", DisplayModeToString(Mode));
    CPlaneBalancingMethod::SetDisplayMode(Mode);
    StopTimers();
    if (Mode == eNeutralPosition) {
        m_AngleWeight1 = 0;
        m_AngleWeight2 = 180;
    } else if (Mode == eTestUnbalance) {
        const int Offset = m_pMainWnd->GetSpeedIncrement();
        int& rLow = m_AngleWeight1 < m_AngleWeight2 ? m_AngleWeight1 : m_AngleWeight2;
        const int Distance = std::abs(m_AngleWeight1 - m_AngleWeight2);
        // On past the angle 0, away from the other weight, unless that is opposite or beyond: then towards
        // it.
        rLow = Wrap(Distance >= 180 ? rLow + Offset : rLow - Offset);
    }
}

void CWeightBalancingMethod::SetPlainDisplayMode(DisplayMode Mode) {
    PB_FLOW("CWeightBalancingMethod::SetPlainDisplayMode( Mode=%s) called", DisplayModeToString(Mode));
    CPlaneBalancingMethod::SetDisplayMode(Mode);
    StopTimers();
}

int CWeightBalancingMethod::GetNeutralPositionMenu(std::uint8_t nPlanes) {
    return GetChangeWeightsMenu(nPlanes == 2 ? 1 : 0);
}

int CWeightBalancingMethod::GetCommitChangeMenu(std::uint8_t nPlanes) {
    return GetChangeWeightsMenu(nPlanes == 2 ? 1 : 0);
}

int CWeightBalancingMethod::GetCheckWeightsMenu(std::uint8_t nPlanes) {
    return GetChangeWeightsMenu(nPlanes == 2 ? 1 : 0);
}

int CWeightBalancingMethod::GetTestUnbalanceMenu() {
    return Menus::eSetWeights;
}

int CWeightBalancingMethod::GetTestUnbalanceChangeMenu() {
    return GetChangeWeightsMenu(0);
}

int CWeightBalancingMethod::GetChangeWeightsMenu(int Kind) {
    const auto KindIndex = static_cast<std::size_t>(Kind);
    const auto SelectionIndex = static_cast<std::size_t>(*m_pWeightSelection);
    if (KindIndex < CHANGE_MENUS.size()) {
        if (m_UseOldMenu) {
            return OLD_CHANGE_MENUS[KindIndex];
        }
        if (SelectionIndex < CHANGE_MENUS[KindIndex].size()) {
            return CHANGE_MENUS[KindIndex][SelectionIndex];
        }
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return 0;
}

void CWeightBalancingMethod::ReplaceMenu() {
    const int Current = m_pMainWnd->GetMenu();
    const auto& rOfTwoPlanes = CHANGE_MENUS[1];
    const bool bTwoPlanes =
        std::find(rOfTwoPlanes.begin(), rOfTwoPlanes.end(), Current) != rOfTwoPlanes.end();
    m_pMainWnd->SetMenu(GetChangeWeightsMenu(bTwoPlanes ? 1 : 0));
}

const math::matrix<double>* CWeightBalancingMethod::GetTestUnbalanceVectorInDeg() {
    m_TestUnbalanceVector(0, 0) = m_AngleWeight1;
    m_TestUnbalanceVector(1, 0) = m_AngleWeight2;
    PB_FLOW("CWeightBalancingMethod::GetTestUnbalanceVectorInDeg() returns (%d, %d)", m_AngleWeight1,
            m_AngleWeight2);
    return &m_TestUnbalanceVector;
}

void CWeightBalancingMethod::SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) {
    m_AngleWeight1 = static_cast<int>(rPositions(0, 0));
    m_AngleWeight2 = static_cast<int>(rPositions(1, 0));
    m_pMainWnd->RepaintAll();
}

bool CWeightBalancingMethod::SetUA(const math::matrix<double>& rUA, double* pPerCentCompensationDifference,
                                   bool bAllowEqualAngles) {
    const bool bResult = UA2Angles(rUA, m_AngleWeight1, m_AngleWeight2, pPerCentCompensationDifference);
    if (bResult) {
        CheckOrder(rUA);
    }
    if (!bAllowEqualAngles && m_IgnoreRebalWeights != 0 && m_AngleWeight1 == m_AngleWeight2) {
        m_AngleWeight1 = Wrap(m_AngleWeight1 + SPREAD);
        m_AngleWeight2 = Wrap(m_AngleWeight2 - SPREAD);
    }
    return bResult;
}

void CWeightBalancingMethod::CheckOrder(const math::matrix<double>& rUA) {
    // One rule of the conversion hands out positions of the wrong sense on a counter-clockwise scale. Shops
    // that live with that, by their procedures or by a scale mounted the other way round, must go on doing
    // so; the flag is for the others. What the positions really produce decides, not which rule they came
    // from.
    if (m_ConsistentWeightOrder) {
        m_AngleWeight1 %= 360;
        m_AngleWeight2 %= 360;
        if (!DoPositionsProduce(m_AngleWeight1, m_AngleWeight2, rUA) &&
            DoPositionsProduce(Mirror(m_AngleWeight1), Mirror(m_AngleWeight2), rUA)) {
            m_AngleWeight1 = Mirror(m_AngleWeight1);
            m_AngleWeight2 = Mirror(m_AngleWeight2);
        }
    }
    if (!DoPositionsProduce(m_AngleWeight1, m_AngleWeight2, rUA)) {
        RV_WARNING(
            RtrTrim::g_pLog,
            "CWeightBalancingMethod::SetUA(): weights at %d and %d do not produce the vector (%.4f %.4f)",
            m_AngleWeight1, m_AngleWeight2, rUA(0, 0), rUA(1, 0));
    }
}

bool CWeightBalancingMethod::DoPositionsProduce(int Angle1, int Angle2,
                                                const math::matrix<double>& rUA) const {
    // Rounded to whole degrees each of the two unit vectors is off by half a degree at most, a chord of
    // 2 sin(0.25 degrees); the rest is for the last bits of the arithmetic.
    static const double s_Rounding = 2.0 * 2.0 * std::sin(0.25 * math::PI / 180.0) + 1e-6;
    math::matrix<double> Produced(2, 1);
    Angles2UA(Angle1 % 360, Angle2 % 360, Produced);
    return math::VectorLength(Produced - rUA) <= s_Rounding;
}

math::matrix<double> CWeightBalancingMethod::GetUA() {
    math::matrix<double> UA(2, 1);
    const bool bDone = Angles2UA(m_AngleWeight1, m_AngleWeight2, UA);
    RV_ASSERT_AS(RtrTrim::g_pLog, bDone, "Angles2UA(m_AngleWeight1, m_AngleWeight2, UA)",
                 "Angles2UA failed!!", false);
    return UA;
}

void CWeightBalancingMethod::SetRotationDirection(CTypeBase::Direction Value) {
    m_RotationDirection = Value;
}

CTypeBase::Direction CWeightBalancingMethod::GetScalingDirection() {
    const CTypeBase::Direction Value = CWeightBalancingView::m_ScalingDirection;
    PB_FLOW("CWeightBalancingMethod::GetScalingDirection() returns: %s", CTypeBase::DirectionToString(Value));
    return Value;
}

bool CWeightBalancingMethod::KeyPressed(CKeyActions::KeyAction Action, int Step) {
    PB_FLOW("CWeightBalancingMethod::KeyPressed(keyAction=%s) called",
            CKeyActions::KeyActionToString(Action));
    int& rSelection = *m_pWeightSelection;
    if (Action == CKeyActions::eWeightSelection || Action == CKeyActions::eStepSelection) {
        rSelection ^= Action == CKeyActions::eWeightSelection ? SELECT_WEIGHT2 : SELECT_STEP10;
        ReplaceMenu();
        return true;
    }
    const WeightKeys::CKey* const pKey = WeightKeys::Find(Action);
    int Weight = pKey != nullptr ? pKey->m_Weight : 0;
    if (Weight == WeightKeys::eActiveWeight) {
        Weight = (rSelection & SELECT_WEIGHT2) != 0 ? WeightKeys::eWeight2 : WeightKeys::eWeight1;
        Step = pKey->m_bDown && (rSelection & SELECT_STEP10) != 0 ? WeightKeys::COARSE_STEP
                                                                  : WeightKeys::FINE_STEP;
    }

    const int Old1 = m_AngleWeight1;
    const int Old2 = m_AngleWeight2;
    if (pKey != nullptr) {
        StopTimers();
        if (pKey->m_bDown) {
            StartMove(Weight, pKey->m_Sign, Step);
        } else {
            m_ActiveWeight = 0;
            m_Step = 1;
        }
    }
    CorrectWeights(Step, Old1, Old2);  // after every key, those included that move nothing
    return true;
}

void CWeightBalancingMethod::StartMove(int Weight, int Sign, int Step) {
    m_ActiveWeight = Weight;
    m_FirstStep = Sign * Step;
    m_Step = Step;
    if (Sign > 0) {
        StartAutoIncrement(REPEAT_DELAY);
    } else {
        StartAutoDecrement(REPEAT_DELAY);
    }
    (Weight == 1 ? m_AngleWeight1 : m_AngleWeight2) += Sign * Step;
}

void CWeightBalancingMethod::OnAutoIncrement() {
    if (!IsFirstIncrement()) {  // the key press itself made the first step
        RepeatMove(1);
    }
}

void CWeightBalancingMethod::OnAutoDecrement() {
    if (!IsFirstDecrement()) {
        RepeatMove(-1);
    }
}

void CWeightBalancingMethod::RepeatMove(int Sign) {
    const int Old1 = m_AngleWeight1;
    const int Old2 = m_AngleWeight2;
    if (m_FirstStep == m_Step || m_FirstStep == -m_Step) {
        m_FirstStep = 0;  // done by the key press
    }
    if (m_ActiveWeight == 1) {
        m_AngleWeight1 += Sign * m_Step - m_FirstStep;
        m_FirstStep = 0;
    } else if (m_ActiveWeight == 2) {
        // An increment adds a rest of the first step, all others take it away: deliberate. No key leaves one.
        m_AngleWeight2 += Sign * m_Step + (Sign > 0 ? m_FirstStep : -m_FirstStep);
        m_FirstStep = 0;
    }
    CorrectWeights(m_Step, Old1, Old2);
    m_pMainWnd->RepaintAll();
}

void CWeightBalancingMethod::CorrectWeights(int Step, int Old1, int Old2) {
    m_AngleWeight1 = Wrap(m_AngleWeight1);
    m_AngleWeight2 = Wrap(m_AngleWeight2);
    const int Difference = std::abs(m_AngleWeight2 - m_AngleWeight1);
    const int Distance = Difference > 180 ? std::abs(Difference - 360) : Difference;
    if (Distance >= MIN_DISTANCE) {
        return;
    }
    if (Distance < MIN_DISTANCE - Step) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");  // further in than this step can have come
    }
    // Not undone but exchanged: the weight that is pushed jumps past the other by changing roles with it.
    m_AngleWeight1 = Old2;
    m_AngleWeight2 = Old1;
}

void CWeightBalancingMethod::Paint(CDC* pDC, const CRect& rRect, bool bRedrawAll) {
    m_Angle1 = m_AngleWeight1;
    m_Angle2 = m_AngleWeight2;
    PaintByMode(pDC, rRect, bRedrawAll,
                [&](const double* pMagnitude, const double* pAngle, const double* pLastMagnitude) {
                    CWeightBalancingView::Paint(pDC, rRect, pMagnitude, pAngle, pLastMagnitude,
                                                pMagnitude == nullptr || bRedrawAll,
                                                m_MeasurementDisplayState);
                });
}

void CWeightBalancingMethod::FillNotification(CPreBalNotification& rNotification) {
    const bool bFirstPlane = GetPlane() == 0;
    (bFirstPlane ? rNotification.m_AnglesPlane1 : rNotification.m_AnglesPlane2) = {m_AngleWeight1,
                                                                                   m_AngleWeight2, -1};
    (bFirstPlane ? rNotification.m_WeightsPlane1 : rNotification.m_WeightsPlane2).fill(-1);
}

void CWeightBalancingMethod::GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) {
    rAngleWeight1 = m_AngleWeight1;
    rAngleWeight2 = m_AngleWeight2;
}
