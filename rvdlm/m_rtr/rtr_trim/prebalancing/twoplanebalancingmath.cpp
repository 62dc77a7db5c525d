#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancingmath.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/math/matrixlog.h"
#include "rvlib/math/vector.h"

#define DUMP_MATRIX(pName, rMatrix) LOG_MATRIX(RtrTrim::g_pLog, pName, rMatrix)

using math::MakeNull;
using math::MakeVector;
using PreBalDB::CTypeBase;

namespace {

using Matrix = math::matrix<double>;

double MirrorAngle(double Angle) {
    const double Mirrored = 360.0 - Angle;
    return Mirrored >= 359.99 ? 0.0 : Mirrored;
}

Matrix MirrorIf(bool bMirror, const Matrix& rAngles) {
    return bMirror ? MakeVector(MirrorAngle(rAngles(0, 0)), MirrorAngle(rAngles(1, 0))) : rAngles;
}

/// The planes face each other, so the sense of scale that needs mirroring differs.
Matrix FromScale1(const Matrix& rAngles, CTypeBase::Direction Scaling) {
    return MirrorIf(Scaling == CTypeBase::eCounterClockwise, rAngles);
}
Matrix FromScale2(const Matrix& rAngles, CTypeBase::Direction Scaling) {
    return MirrorIf(Scaling == CTypeBase::eClockwise, rAngles);
}

/// Copies a block to Row, Column.
void PutBlock(Matrix& rTarget, std::uint32_t Row, std::uint32_t Column, const Matrix& rBlock) {
    for (std::uint32_t i = 0; i < rBlock.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < rBlock.ColNo(); ++j) {
            rTarget(Row + i, Column + j) = rBlock(i, j);
        }
    }
}

}  // namespace

CTwoPlaneBalancingMath::CTwoPlaneBalancingMath(std::uint32_t nSamples)
    : m_Plane1(nSamples),
      m_Plane2(nSamples),
      m_A(MakeNull(4, 4)),
      m_InvA(MakeNull(4, 4)),
      m_Raw(MakeNull(4, 1)),
      m_UA(MakeNull(4, 1)) {}

void CTwoPlaneBalancingMath::RestartMeasurement() {
    PB_FLOW("CTwoPlaneBalancingMath::RestartMeasurement() called");
    m_Plane1.RestartMeasurement();
    m_Plane2.RestartMeasurement();
}

void CTwoPlaneBalancingMath::SetRotationDirectionPlane1(Direction Value) {
    m_Plane1.SetRotationDirection(Value);
    if (Value == CTypeBase::eClockwise) {
        PB_FLOW("CTwoPlaneBalancingMath::SetRotationDirectionPlane1(Plane1 = cw, Plane2 = ccw) called");
        m_Plane2.SetRotationDirection(CTypeBase::eCounterClockwise);
    } else {
        PB_FLOW("CTwoPlaneBalancingMath::SetRotationDirectionPlane1(Plane1 = ccw, Plane2 = cw) called");
        m_Plane2.SetRotationDirection(CTypeBase::eClockwise);
    }
}

int CTwoPlaneBalancingMath::AddXYValuePlane1(std::int16_t x, std::int16_t y) {
    PB_FLOW("CTwoPlaneBalancingMath::AddXYValuePlane1(%d, %d) called", x, y);
    return m_Plane1.AddXYValue(x, y);
}

int CTwoPlaneBalancingMath::AddXYValuePlane2(std::int16_t x, std::int16_t y) {
    PB_FLOW("CTwoPlaneBalancingMath::AddXYValuePlane2(%d, %d) called", x, y);
    return m_Plane2.AddXYValue(x, y);
}

void CTwoPlaneBalancingMath::SetRawUnbalanceVectors(Direction Scaling1, Direction Scaling2) {
    PB_FLOW("CTwoPlaneBalancingMath::SetRawUnbalanceVectors(%s, %s) called",
            CTypeBase::DirectionToString(Scaling1), CTypeBase::DirectionToString(Scaling2));
    const Matrix Opposed = MakeVector(0.0, 180.0);  // their sum is nil
    SetRawUnbalanceVectorsAngles(Opposed, Opposed, Scaling1, Scaling2);
}

void CTwoPlaneBalancingMath::SetRawUnbalanceVectorsAngles(const Matrix& rAngles1, const Matrix& rAngles2,
                                                          Direction Scaling1, Direction Scaling2) {
    PB_FLOW("CTwoPlaneBalancingMath::SetRawUnbalanceVectors((%.4f, %.4f), (%.4f, %.4f), %s, %s) called",
            rAngles1(0, 0), rAngles1(1, 0), rAngles2(0, 0), rAngles2(1, 0),
            CTypeBase::DirectionToString(Scaling1), CTypeBase::DirectionToString(Scaling2));
    m_Plane1.SetScalingDirection(Scaling1);
    const Matrix Positions1 = FromScale1(rAngles1, Scaling1);
    m_Plane1.SetFirstMeasurementWeights(CPlane::eDirect, Positions1);
    m_Plane2.SetFirstMeasurementWeights(CPlane::eCross, Positions1);
    m_Plane2.SetScalingDirection(Scaling2);
    const Matrix Positions2 = FromScale2(rAngles2, Scaling2);
    m_Plane2.SetFirstMeasurementWeights(CPlane::eDirect, Positions2);
    m_Plane1.SetFirstMeasurementWeights(CPlane::eCross, Positions2);
}

int CTwoPlaneBalancingMath::ApplyNeutralPositionXYValues() {
    PB_FLOW("CTwoPlaneBalancingMath::ApplyNeutralPositionXYValues() called");
    m_Plane1.SetUnbalance(CPlane::ubtFirst);
    m_Plane2.SetUnbalance(CPlane::ubtFirst);
    return 1;
}

void CTwoPlaneBalancingMath::SetTestUnbalanceVectorCase1(const Matrix* pTestUnbalancePlane1,
                                                         Direction Scaling1) {
    PB_FLOW("CTwoPlaneBalancingMath::SetTestUnbalanceVectorCase1(%s) called",
            CTypeBase::DirectionToString(Scaling1));
    m_Plane1.SetScalingDirection(Scaling1);
    Matrix Positions = MakeNull(2, 1);
    if (pTestUnbalancePlane1 != nullptr) {
        DUMP_MATRIX("TestUnbalancePlane1", *pTestUnbalancePlane1);
        Positions = FromScale1(*pTestUnbalancePlane1, Scaling1);
    }
    DUMP_MATRIX("Manipulated TestUnbalancePlane1", Positions);
    m_Plane1.SetTestWeightAngles(CPlane::eDirect, Positions);
    m_Plane2.SetTestWeightAngles(CPlane::eCross, Positions);
}

void CTwoPlaneBalancingMath::ApplyTestPlusRawUnbalanceXYValuesCase1(std::uint32_t& rStatus) {
    PB_FLOW("CTwoPlaneBalancingMath::ApplyTestPlusRawUnbalanceXYValuesCase1() called");
    m_Plane1.SetUnbalance(CPlane::ubtSum);
    m_Plane2.SetUnbalance(CPlane::ubtCrossSum);
    rStatus = 0;
}

void CTwoPlaneBalancingMath::SetTestUnbalanceVectorCase2(const Matrix* pTestUnbalancePlane2,
                                                         Direction Scaling2) {
    PB_FLOW("CTwoPlaneBalancingMath::SetTestUnbalanceVectorCase2(%s) called",
            CTypeBase::DirectionToString(Scaling2));
    m_Plane2.SetScalingDirection(Scaling2);
    Matrix Positions = MakeNull(2, 1);
    if (pTestUnbalancePlane2 != nullptr) {
        DUMP_MATRIX("pTestUnbalancePlane2", *pTestUnbalancePlane2);
        Positions = FromScale2(*pTestUnbalancePlane2, Scaling2);
    }
    DUMP_MATRIX("Manipulated TestUnbalancePlane2", Positions);
    m_Plane1.SetTestWeightAngles(CPlane::eCross, Positions);
    m_Plane2.SetTestWeightAngles(CPlane::eDirect, Positions);
}

int CTwoPlaneBalancingMath::BuildMatrices() {
    m_A.SetSize(4, 4);
    PutBlock(m_A, 0, 0, m_Plane1.GetAlphaDirect());
    PutBlock(m_A, 2, 0, m_Plane2.GetAlphaCross());
    PutBlock(m_A, 0, 2, m_Plane1.GetAlphaCross());
    PutBlock(m_A, 2, 2, m_Plane2.GetAlphaDirect());
    PB_MATH("BuildMatrices()");
    DUMP_MATRIX("m_A", m_A);
    // Exactly zero: there is no threshold here, unlike in one plane.
    if (m_A.Det() == 0.0) {
        RV_WARNING(RtrTrim::g_pLog, "m_A is singular!!");
        return -1;
    }
    Matrix Consumed = m_A;  // inversion uses up what it is applied to
    m_InvA = !Consumed;
    DUMP_MATRIX("m_InvA", m_InvA);
    m_MatricesBuilt = 1;
    return 0;
}

int CTwoPlaneBalancingMath::CalculateUAValues() {
    PutBlock(m_Raw, 0, 0, m_Plane1.GetRawUnbalance());
    PutBlock(m_Raw, 2, 0, m_Plane2.GetRawUnbalance());
    m_UA = (-m_InvA) * m_Raw;
    PB_MATH("CalculateUAValues");
    DUMP_MATRIX("m_UA", m_UA);
    return 0;
}

void CTwoPlaneBalancingMath::ReadUA(Matrix& rUAPlane1, Matrix& rUAPlane2) const {
    rUAPlane1 = MakeVector(m_UA(0, 0), m_UA(1, 0));
    rUAPlane2 = MakeVector(m_UA(2, 0), m_UA(3, 0));
    DUMP_MATRIX("rUAPlane1", rUAPlane1);
    DUMP_MATRIX("rUAPlane2", rUAPlane2);
}

void CTwoPlaneBalancingMath::GetPrebalanceResult(Matrix& rInvA, Matrix& rUAPlane1, Matrix& rUAPlane2,
                                                 std::uint32_t& rStatus) {
    PB_FLOW("CTwoPlaneBalancingMath::GetPrebalanceResult() called");
    m_Plane1.SetUnbalance(CPlane::ubtCrossSum);
    m_Plane2.SetUnbalance(CPlane::ubtSum);
    BuildMatrices();  // deliberately not looked at: a singular system goes on with the inverse of before
    CalculateUAValues();
    ReadUA(rUAPlane1, rUAPlane2);
    rInvA = m_InvA;
    rStatus = 0;
}

void CTwoPlaneBalancingMath::SetMathMatrices(Matrix InvA, Matrix UAPlane1, Matrix UAPlane2) {
    PB_FLOW("CTwoPlaneBalancingMath::SetMathMatrices(InvA, UAPlane1, UAPlane2) called");
    m_InvA = InvA;
    PutBlock(m_UA, 0, 0, UAPlane1);
    PutBlock(m_UA, 2, 0, UAPlane2);
    m_Plane1.SetUA(m_UA(0, 0), m_UA(1, 0));
    m_Plane2.SetUA(m_UA(2, 0), m_UA(3, 0));
    DUMP_MATRIX("m_InvA", m_InvA);
    DUMP_MATRIX("m_UA", m_UA);
}

void CTwoPlaneBalancingMath::GetRebalanceResult(Matrix& rUAPlane1, Matrix& rUAPlane2) {
    PB_FLOW("CTwoPlaneBalancingMath::GetRebalanceResult() called");
    m_Plane1.SetUnbalance(CPlane::ubtRebal);
    m_Plane2.SetUnbalance(CPlane::ubtRebal);
    DUMP_MATRIX("m_UA before correction", m_UA);
    Matrix K = MakeNull(4, 1);
    PutBlock(K, 0, 0, m_Plane1.GetFirstMeasurementUnbalance());
    PutBlock(K, 2, 0, m_Plane2.GetFirstMeasurementUnbalance());
    DUMP_MATRIX("K: correction value, measured", K);
    K = m_InvA * K;
    DUMP_MATRIX("m_UA original", m_UA);
    m_UA = m_UA - K;
    DUMP_MATRIX("K: correction value, after InvA ", K);
    DUMP_MATRIX("m_UA after correction", m_UA);
    m_Plane1.SetUA(m_UA(0, 0), m_UA(1, 0));
    m_Plane2.SetUA(m_UA(2, 0), m_UA(3, 0));
    ReadUA(rUAPlane1, rUAPlane2);
}
