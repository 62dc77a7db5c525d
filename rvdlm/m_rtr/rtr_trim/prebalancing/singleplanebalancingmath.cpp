#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancingmath.h"

#include <cmath>

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/weightpair.h"
#include "rvlib/math/matrixlog.h"
#include "rvlib/math/vector.h"
#include "rvlib/settings/featureflags.h"

#define DUMP_MATRIX(pName, rMatrix) LOG_MATRIX(RtrTrim::g_pLog, pName, rMatrix)

using math::MakeFactor;
using math::MakeNull;
using math::MakeVector;
using PreBalDB::CTypeBase;

namespace {

/// The test weights must change the reading by more than this in length ...
constexpr double MIN_LENGTH_RATIO = 1.05;
/// ... or by more than 30 degrees in phase.
constexpr double MIN_PHASE_CHANGE = 0.5235987755982988;
/// By the feature flag: the change, as a vector, must be at least so much of the first reading.
constexpr double MIN_VECTOR_CHANGE = 0.05;
/// Floor of the squared influence, counts squared per weight squared.
constexpr double MIN_DETERMINANT = 0.001;

/// Angles of a clockwise scale turn into the counter-clockwise ones of the mathematics. 0 becomes 360, and
/// stays so.
math::matrix<double> FromScale(double Angle1, double Angle2, CTypeBase::Direction Scaling) {
    return Scaling == CTypeBase::eClockwise ? MakeVector(360.0 - Angle1, 360.0 - Angle2)
                                            : MakeVector(Angle1, Angle2);
}

double WholeDegrees(double Angle) {
    return std::trunc(Angle < 0.0 ? Angle + 360.0 : Angle);
}

}  // namespace

CSinglePlaneBalancingMath::CSinglePlaneBalancingMath(std::uint32_t nSamples)
    : m_MovingAverage(nSamples),
      m_bVectorTestEffect(IsFeatureEnabled("PreBalancingVectorTestEffect", false)) {
    m_Alpha = MakeNull(2, 2);
    m_InvA = MakeNull(2, 2);
    m_UA = MakeNull(2, 1);
    m_FirstMeasurementValues = MakeNull(2, 1);
    m_SecondMeasurementValues = MakeNull(2, 1);
    m_RawValues = MakeNull(2, 1);
    m_FirstWeightsAsNormalizedVector = MakeNull(2, 1);
    m_FirstWeightPositions = MakeVector(0.0, 180.0);  // opposed: their sum is nil
    m_SecondWeightPositions = MakeNull(2, 1);
    m_TransformationMatrix.SetSize(2, 2);
    m_TransformationMatrix.Unit();
    m_NullVector = MakeNull(2, 1);
}

void CSinglePlaneBalancingMath::RestartMeasurement() {
    PB_FLOW("CSinglePlaneBalancingMath::RestartMeasurement() called");
    m_MovingAverage.Reset();
}

void CSinglePlaneBalancingMath::SetRotationDirection(CTypeBase::Direction Value) {
    PB_FLOW("CSinglePlaneBalancingMath::SetRotationDirection(RotationDirection=%s) called",
            CTypeBase::DirectionToString(Value));
    m_RotationDirection = Value;
}

void CSinglePlaneBalancingMath::SetScalingDirection(CTypeBase::Direction Value) {
    // The line names the rotation direction here too: deliberate, readers of the log search for it.
    PB_FLOW("CSinglePlaneBalancingMath::SetScalingDirection(RotationDirection=%s) called",
            CTypeBase::DirectionToString(Value));
    m_ScalingDirection = Value;
}

int CSinglePlaneBalancingMath::AddXYValue(std::int16_t x, std::int16_t y) {
    PB_FLOW("CSinglePlaneBalancingMath::AddXYValue(%d, %d) called", x, y);
    // Negated in 16 bits: -32768 stays as it is.
    const auto MirroredX = static_cast<std::int16_t>(-x);
    return m_MovingAverage.AddValue(m_RotationDirection == CTypeBase::eClockwise ? MirroredX : x, y);
}

math::matrix<double> CSinglePlaneBalancingMath::CalculateSmoothedValue() const {
    RV_ASSERT(RtrTrim::g_pLog, m_MovingAverage.GetValuesComplete(), "must be complete!");
    double x = 0.0;
    double y = 0.0;
    m_MovingAverage.GetValues(nullptr, nullptr, nullptr, &x, &y);
    return MakeVector(x, y);
}

void CSinglePlaneBalancingMath::SetRawUnbalanceVector(const math::matrix<double>& rAngles,
                                                      CTypeBase::Direction Value) {
    PB_FLOW("CSinglePlaneBalancingMath::SetRawUnbalanceVector(%.4f, %.4f, %s) called", rAngles(0, 0),
            rAngles(1, 0), CTypeBase::DirectionToString(Value));
    m_ScalingDirection = Value;
    m_FirstWeightPositions = FromScale(WholeDegrees(rAngles(0, 0)), WholeDegrees(rAngles(1, 0)), Value);
}

math::matrix<double> CSinglePlaneBalancingMath::GetRawUnbalanceVector() {
    PB_FLOW("CSinglePlaneBalancingMath::GetRawUnbalanceVector() called");
    return m_FirstWeightPositions;
}

int CSinglePlaneBalancingMath::ApplyNeutralPositionXYValues() {
    PB_FLOW("CSinglePlaneBalancingMath::ApplyNeutralPositionXYValues() called");
    m_FirstMeasurementValues = CalculateSmoothedValue();
    m_MovingAverage.Reset();  // the next measurement starts empty
    DUMP_MATRIX("FirstMeasurementValues", m_FirstMeasurementValues);
    return 1;
}

void CSinglePlaneBalancingMath::SetTestUnbalanceVector(const math::matrix<double>* pTest,
                                                       CTypeBase::Direction Value) {
    PB_FLOW("CSinglePlaneBalancingMath::SetTestUnbalanceVector(0x%08X, %s) called",
            static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pTest)),
            CTypeBase::DirectionToString(Value));
    m_TransformationMatrix.SetSize(2, 2);
    if (pTest == nullptr) {
        m_TransformationMatrix.Unit();
        DUMP_MATRIX("TransformationMatrix", m_TransformationMatrix);
        return;
    }
    DUMP_MATRIX("pTest", *pTest);
    m_SecondWeightPositions = FromScale((*pTest)(0, 0), (*pTest)(1, 0), Value);
    DUMP_MATRIX("Test Weights", *pTest);  // as given, not the mirrored copy

    const CWeightPair First(m_FirstWeightPositions);
    const CWeightPair Second(m_SecondWeightPositions);
    PB_MATH("Phi1: %3.4f  -- Alpha1: %3.4f -- Phi2: %3.4f  -- Alpha2: %3.4f", First.m_Phi, First.m_Alpha,
            Second.m_Phi, Second.m_Alpha);
    m_FirstWeightsAsNormalizedVector = First.GetSum();
    const math::matrix<double> Change = Second.GetSum() - m_FirstWeightsAsNormalizedVector;
    // 1 / conj(Change) has the angle of Change itself. No guard: weights that don't move give an infinite
    // scale.
    const double Theta = CWeightPair::GetDirection(Change);
    const double Scale = 1.0 / math::VectorLength(Change);
    m_TransformationMatrix = MakeFactor(std::cos(Theta) * Scale, std::sin(Theta) * Scale);
    DUMP_MATRIX("TransformationMatrix", m_TransformationMatrix);
}

int CSinglePlaneBalancingMath::CheckTestWeightEffect() const {
    if (m_FirstMeasurementValues == m_NullVector && m_SecondMeasurementValues == m_NullVector) {
        return 0;
    }
    const double First = math::VectorLength(m_FirstMeasurementValues);
    if (m_bVectorTestEffect) {
        // A change across the reading counts like one along it.
        const double Change = math::VectorLength(m_SecondMeasurementValues - m_FirstMeasurementValues);
        return Change >= MIN_VECTOR_CHANGE * First ? 1 : 0;
    }
    const double Second = math::VectorLength(m_SecondMeasurementValues);
    const double Ratio = First > Second ? First / Second : Second / First;
    if (Ratio > MIN_LENGTH_RATIO) {
        return 1;
    }
    // The plain difference, deliberately not wrapped: readings at +179 and -179 degrees pass.
    const double PhaseChange =
        math::VectorAngle(m_FirstMeasurementValues) - math::VectorAngle(m_SecondMeasurementValues);
    return std::abs(PhaseChange) > MIN_PHASE_CHANGE ? 1 : 0;
}

int CSinglePlaneBalancingMath::CalculateAlphaMatrix() {
    const math::matrix<double> Alpha =
        m_TransformationMatrix * (m_SecondMeasurementValues - m_FirstMeasurementValues);
    m_Alpha = MakeFactor(Alpha(0, 0), Alpha(1, 0));
    DUMP_MATRIX("m_Alpha", m_Alpha);
    return 1;
}

int CSinglePlaneBalancingMath::CalculateUAValues() {
    DUMP_MATRIX("FirstMeasurementValues", m_FirstMeasurementValues);
    DUMP_MATRIX("FirstWeightsAsNormalizedVector", m_FirstWeightsAsNormalizedVector);
    math::matrix<double> Conjugate = m_FirstWeightsAsNormalizedVector;
    Conjugate(1, 0) = -m_FirstWeightsAsNormalizedVector(1, 0);
    const math::matrix<double> WeightInfluence = m_Alpha * Conjugate;
    DUMP_MATRIX("transformed weight influence", WeightInfluence);
    m_RawValues = m_FirstMeasurementValues - WeightInfluence;
    DUMP_MATRIX("RawValues", m_RawValues);
    m_UA = -(m_InvA * m_RawValues);
    return m_Alpha.Det() < MIN_DETERMINANT ? 0 : 1;  // this way round a NaN passes
}

void CSinglePlaneBalancingMath::GetPrebalanceResult(math::matrix<double>& rInvA, math::matrix<double>& rUA,
                                                    std::uint32_t& rTestWeightStatus) {
    PB_FLOW("CSinglePlaneBalancingMath::GetPrebalanceResult(rInvA, rUA, rTestWeightStatus) called");
    DUMP_MATRIX("FirstWeightPositions", m_FirstWeightPositions);
    DUMP_MATRIX("FirstWeightsAsNormalizedVector", m_FirstWeightsAsNormalizedVector);
    DUMP_MATRIX("SecondWeightPositions", m_SecondWeightPositions);
    m_SecondMeasurementValues = CalculateSmoothedValue();
    DUMP_MATRIX("SecondMeasurementValues", m_SecondMeasurementValues);
    rTestWeightStatus = 1;
    if (CheckTestWeightEffect() != 0) {
        CalculateAlphaMatrix();
        math::matrix<double> Consumed = m_Alpha;  // inversion uses up what it is applied to
        m_InvA = !Consumed;
        if (CalculateUAValues() != 0) {
            rTestWeightStatus = 0;
        }
    }
    rUA = m_UA;
    rInvA = m_InvA;
    DUMP_MATRIX("rUA", rUA);
    DUMP_MATRIX("rInvA", rInvA);
}

void CSinglePlaneBalancingMath::SetMathMatrices(math::matrix<double> InvA, math::matrix<double> UA) {
    PB_FLOW("CSinglePlaneBalancingMath::SetMathMatrices(InvA, UA) called");
    m_InvA = InvA;
    m_UA = UA;
    DUMP_MATRIX("InvA", InvA);
    DUMP_MATRIX("UA", UA);
    DUMP_MATRIX("m_InvA", m_InvA);
    DUMP_MATRIX("m_UA", m_UA);
}

void CSinglePlaneBalancingMath::GetRebalanceResult(math::matrix<double>& rUA) {
    PB_FLOW("CSinglePlaneBalancingMath::GetRebalanceResult(rUA) called");
    m_FirstMeasurementValues = CalculateSmoothedValue();
    m_FirstMeasurementValues =
        m_InvA * m_FirstMeasurementValues;  // from here on the correction, not the reading
    rUA = m_UA - m_FirstMeasurementValues;
    DUMP_MATRIX("UA", rUA);
}
