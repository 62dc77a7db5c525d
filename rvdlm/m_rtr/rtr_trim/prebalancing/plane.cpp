#include "rvdlm/m_rtr/rtr_trim/prebalancing/plane.h"

#include <cmath>

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/weightpair.h"
#include "rvlib/math/matrixlog.h"
#include "rvlib/math/vector.h"

#define DUMP_MATRIX(pName, rMatrix) LOG_MATRIX(RtrTrim::g_pLog, pName, rMatrix)

using math::MakeFactor;
using math::MakeNull;
using math::MakeVector;
using math::VectorAngle;
using math::VectorLength;
using PreBalDB::CTypeBase;

namespace {

/// An influence, or a factor, below this counts as none.
constexpr double NO_INFLUENCE = 1e-08;

bool IsMeasured(const math::matrix<double>& rReading) {
    return rReading(0, 0) != math::INVALID_VALUE && rReading(1, 0) != math::INVALID_VALUE;
}

}  // namespace

CPlane::CPlane(std::uint32_t nSamples)
    : m_MovingAverage(nSamples),
      m_FirstDirectMeasurementWeightAngles(MakeNull(2, 1)),
      m_FirstCrossMeasurementWeightAngles(MakeNull(2, 1)),
      m_RawUnbalance(MakeNull(2, 1)),
      m_FirstDirectWeightVector(MakeNull(2, 1)),
      m_FirstCrossWeightVector(MakeNull(2, 1)),
      m_FirstDirectWeightsAsNormalizedVector(MakeNull(2, 1)),
      m_FirstCrossWeightsAsNormalizedVector(MakeNull(2, 1)),
      m_FirstMeasurementUnbalance(MakeNull(2, 1)),
      m_SecondMeasurementUnbalance(MakeNull(2, 1)),
      m_ThirdMeasurementUnbalance(MakeNull(2, 1)),
      m_DeltaMeasuredTestUnbalance(MakeNull(2, 1)),
      m_DeltaMeasuredCrossTestUnbalance(MakeNull(2, 1)),
      m_SumUnbalance(MakeNull(2, 1)),
      m_CrossSumUnbalance(MakeNull(2, 1)),
      m_OwnWeightUnbalance(MakeNull(2, 1)),
      m_CrossWeightUnbalance(MakeNull(2, 1)),
      m_TransformationMatrix(MakeFactor(1.0, 0.0)),
      m_CrossTransformationMatrix(MakeFactor(1.0, 0.0)),
      m_AlphaDirect(MakeNull(2, 2)),
      m_AlphaCross(MakeNull(2, 2)),
      m_UA(MakeNull(2, 1)) {}

int CPlane::AddXYValue(std::int16_t x, std::int16_t y) {
    return m_MovingAverage.AddValue(x, y);
}

int CPlane::AddMirrored(std::int16_t x, std::int16_t y, bool bMirror) {
    // Negated in 16 bits: -32768 stays as it is.
    return CPlane::AddXYValue(bMirror ? static_cast<std::int16_t>(-x) : x, y);
}

math::matrix<double> CPlane::CalculateSmoothedValue() const {
    if (m_MovingAverage.GetValuesComplete() == 0 && RtrTrim::g_pLog != nullptr) {
        // With the class in the function's name, which tells it from the operation of a single plane.
        RtrTrim::g_pLog->LogAssert(__FILE__, __LINE__, "CPlane::CalculateSmoothedValue",
                                   "m_MovingAverage.GetValuesComplete()", "must be complete!", false);
    }
    double x = 0.0;
    double y = 0.0;
    m_MovingAverage.GetValues(nullptr, nullptr, nullptr, &x, &y);
    return MakeVector(x, y);
}

void CPlane::SetFirstMeasurementWeights(int Kind, const Matrix& rAngles) {
    if (Kind == eDirect) {
        m_FirstDirectMeasurementWeightAngles = rAngles;
        DUMP_MATRIX("FirstDirectMeasurementWeightAngles", m_FirstDirectMeasurementWeightAngles);
        math::DegreesToRadians(m_FirstDirectWeightVector, rAngles);
    } else if (Kind == eCross) {
        m_FirstCrossMeasurementWeightAngles = rAngles;
        // With the class in the function's name: readers of the log search for it.
        math::LogMatrix(RtrTrim::g_pLog, __FILE__, __LINE__, "CPlane::SetFirstMeasurementWeights",
                        "FirstCrossMeasurementWeightAngles", m_FirstCrossMeasurementWeightAngles);
        math::DegreesToRadians(m_FirstCrossWeightVector, rAngles);
    }
}

void CPlane::SetTestWeightAngles(int Kind, const Matrix& rAngles) {
    if (Kind != eDirect && Kind != eCross) {
        return;
    }
    const bool bDirect = Kind == eDirect;
    Matrix& rTransformation = bDirect ? m_TransformationMatrix : m_CrossTransformationMatrix;
    if (rAngles == MakeNull(2, 1)) {
        // The measured difference is the influence as it stands.
        rTransformation = MakeFactor(1.0, 0.0);
    } else {
        const Matrix& rFirstAngles =
            bDirect ? m_FirstDirectMeasurementWeightAngles : m_FirstCrossMeasurementWeightAngles;
        const CWeightPair First(rFirstAngles);
        const CWeightPair Test(rAngles);
        PB_MATH("%s (%d,%d)%s Phi1: %3.4f  -- Alpha1: %3.4f -- Phi2: %3.4f  -- Alpha2: %3.4f",
                bDirect ? "Direct:" : "Cross:", static_cast<int>(rFirstAngles(0, 0)),
                static_cast<int>(rFirstAngles(1, 0)), bDirect ? "" : " ", First.m_Phi, First.m_Alpha,
                Test.m_Phi, Test.m_Alpha);
        const Matrix FirstSum = First.GetSum();
        (bDirect ? m_FirstDirectWeightsAsNormalizedVector : m_FirstCrossWeightsAsNormalizedVector) = FirstSum;
        const Matrix Change = Test.GetSum() - FirstSum;
        // 1 / Change. No guard: weights that don't move give an infinite factor.
        const double Phi = -CWeightPair::GetDirection(Change);
        const double Length = VectorLength(Change);
        rTransformation = MakeFactor(std::cos(Phi) / Length, std::sin(Phi) / Length);
    }
    if (!bDirect) {
        // Only the cross factor has its norm recorded, by design.
        m_CrossTransformationNorm = m_CrossTransformationMatrix.Norm();
    }
}

int CPlane::IsValid(int Which) const {
    switch (Which) {
        case eFirstReading:
            return IsMeasured(m_FirstMeasurementUnbalance) ? 1 : 0;
        case eSumReading:
            return IsMeasured(m_SumUnbalance) ? 1 : 0;
        case eCrossSumReading:
            return IsMeasured(m_CrossSumUnbalance) ? 1 : 0;
        default:
            return 0;
    }
}

void CPlane::SetUA(double x, double y) {
    m_UA = MakeVector(x, y);
}

void CPlane::TakeReading(UnbalanceType Type, const CPaths& rPaths) {
    switch (Type) {
        case ubtFirst:
            return TakeFirst();
        case ubtSum:
            return TakeSum(rPaths.m_Sum);
        case ubtCrossSum:
            return TakeCrossSum(rPaths.m_CrossSum);
        case ubtRebal:
            return TakeRebalance(rPaths.m_pRebalHeader);
    }
}

void CPlane::TakeFirst() {
    const Matrix Invalid = MakeVector(math::INVALID_VALUE, math::INVALID_VALUE);
    for (Matrix* pVector :
         {&m_FirstMeasurementUnbalance, &m_SecondMeasurementUnbalance, &m_ThirdMeasurementUnbalance,
          &m_SumUnbalance, &m_CrossSumUnbalance, &m_OwnWeightUnbalance}) {
        *pVector = Invalid;
    }
    m_FirstMeasurementUnbalance = CalculateSmoothedValue();
    m_FirstLength = VectorLength(m_FirstMeasurementUnbalance);
    m_FirstAngle = VectorAngle(m_FirstMeasurementUnbalance);
}

void CPlane::TakeRebalance(const char* pHeader) {
    m_FirstMeasurementUnbalance = CalculateSmoothedValue();
    PB_MATH("%s", pHeader);
    DUMP_MATRIX("FirstMeasurementUnbalance", m_FirstMeasurementUnbalance);
}

math::matrix<double> CPlane::TakeDifference(const CPath& rPath, const Matrix& rReading) {
    if (rPath.m_bThird) {
        m_ThirdMeasurementUnbalance = rReading;
        return m_ThirdMeasurementUnbalance - m_SecondMeasurementUnbalance;
    }
    m_SecondMeasurementUnbalance = rReading;
    return m_SecondMeasurementUnbalance - m_FirstMeasurementUnbalance;
}

void CPlane::TakeSum(const CPath& rPath) {
    const Matrix Reading = CalculateSmoothedValue();
    m_DeltaMeasuredTestUnbalance = TakeDifference(rPath, Reading);
    m_OwnWeightUnbalance = m_TransformationMatrix * m_DeltaMeasuredTestUnbalance;
    m_SumUnbalance = Reading;
    if (IsValid(eFirstReading) != 0 && IsValid(eSumReading) != 0) {
        m_SumLength = VectorLength(m_SumUnbalance);
        m_SumAngle = VectorAngle(m_SumUnbalance);
        m_OwnWeightLength = VectorLength(m_OwnWeightUnbalance);
        m_OwnWeightAngle = VectorAngle(m_OwnWeightUnbalance);
    }
    Dump(rPath, m_DeltaMeasuredTestUnbalance, m_TransformationMatrix, m_SumUnbalance);
    Evaluate(rPath, "RawUnbalance in path ubtSum");
}

void CPlane::TakeCrossSum(const CPath& rPath) {
    const Matrix Reading = CalculateSmoothedValue();
    m_DeltaMeasuredCrossTestUnbalance = TakeDifference(rPath, Reading);
    m_CrossWeightUnbalance = m_CrossTransformationMatrix * m_DeltaMeasuredCrossTestUnbalance;
    m_CrossSumUnbalance = Reading;
    if (IsValid(eFirstReading) != 0 && IsValid(eCrossSumReading) != 0) {
        m_CrossWeightLength = VectorLength(m_CrossWeightUnbalance);
        m_CrossWeightAngle = VectorAngle(m_CrossWeightUnbalance);
    }
    // Whatever is valid, unlike the sum in the other path.
    m_CrossSumLength = VectorLength(m_CrossSumUnbalance);
    m_CrossSumAngle = VectorAngle(m_CrossSumUnbalance);
    Dump(rPath, m_DeltaMeasuredCrossTestUnbalance, m_CrossTransformationMatrix, m_CrossSumUnbalance);
    Evaluate(rPath, "RawUnbalance in path ubtCrossSum");
}

void CPlane::Dump(const CPath& rPath, const Matrix& rDifference, const Matrix& rMatrix,
                  const Matrix& rSum) const {
    if (rPath.m_pHeader == nullptr || RtrTrim::g_pLog == nullptr ||
        (RtrTrim::g_pLog->GetLevel() & RtrTrim::PB_MATH) == 0) {
        return;
    }
    RtrTrim::g_pLog->LogStartBlock(__FILE__, __LINE__, __func__, RtrTrim::PB_MATH, "PbMath", rPath.m_pHeader);
    DUMP_MATRIX("FirstMeasurementUnbalance", m_FirstMeasurementUnbalance);
    DUMP_MATRIX(rPath.m_pDifference, rDifference);
    DUMP_MATRIX(rPath.m_pMatrix, rMatrix);
    DUMP_MATRIX(rPath.m_pSum, rSum);
    RtrTrim::g_pLog->LogEndBlock(RtrTrim::PB_MATH);
}

void CPlane::Evaluate(const CPath& rPath, const char* pRawLabel) {
    if (IsValid(eFirstReading) == 0 || IsValid(eSumReading) == 0 || IsValid(eCrossSumReading) == 0) {
        return;
    }
    PB_MATH("%s", rPath.m_pCalculating);
    MeasurementsCompleteActivities();
    m_RawUnbalance = m_FirstMeasurementUnbalance - m_AlphaDirect * m_FirstDirectWeightsAsNormalizedVector -
                     m_AlphaCross * m_FirstCrossWeightsAsNormalizedVector;
    DUMP_MATRIX(pRawLabel, m_RawUnbalance);
}

void CPlane::MeasurementsCompleteActivities() {
    // A coefficient whose test fails keeps its value. The second test looks at the factor and not at the
    // influence, unlike the first: deliberate.
    if (IsMeasured(m_FirstMeasurementUnbalance) && IsMeasured(m_SumUnbalance) &&
        std::abs(m_OwnWeightLength) > NO_INFLUENCE) {
        m_AlphaDirect = MakeFactor(m_OwnWeightUnbalance(0, 0), m_OwnWeightUnbalance(1, 0));
    }
    if (IsMeasured(m_FirstMeasurementUnbalance) && IsMeasured(m_CrossSumUnbalance) &&
        std::abs(m_CrossTransformationNorm) > NO_INFLUENCE) {
        m_AlphaCross = MakeFactor(m_CrossWeightUnbalance(0, 0), m_CrossWeightUnbalance(1, 0));
    }
    PB_MATH("calc raw unbalance");
    DUMP_MATRIX("FirstMeasurementUnbalance", m_FirstMeasurementUnbalance);
    DUMP_MATRIX("SecondMeasurementUnbalance", m_SecondMeasurementUnbalance);
    DUMP_MATRIX("ThirdMeasurementUnbalance", m_ThirdMeasurementUnbalance);
    DUMP_MATRIX("OwnWeightUnbalance", m_OwnWeightUnbalance);
    DUMP_MATRIX("CrossWeightUnbalance", m_CrossWeightUnbalance);
    DUMP_MATRIX("AlphaDirect", m_AlphaDirect);
    DUMP_MATRIX("FirstDirectWeightVector", m_FirstDirectWeightVector);
    DUMP_MATRIX("FirstDirectWeightsAsNormalizedVector", m_FirstDirectWeightsAsNormalizedVector);
    DUMP_MATRIX("AlphaCross", m_AlphaCross);
    DUMP_MATRIX("FirstCrossWeightVector", m_FirstCrossWeightVector);
    DUMP_MATRIX("FirstCrossWeightsAsNormalizedVector", m_FirstCrossWeightsAsNormalizedVector);
}

void CMasterPlane::SetUnbalance(UnbalanceType Type) {
    // The names in the dumps belong to the other path each: deliberate, kept for readers of old logs.
    static constexpr CPaths PATHS = {
        {false, "ubtSum/SumUnbalance, MasterPlane", "DeltaMeasuredCrossTestUnbalance",
         "CrossTransformationMatrix", "CrossSumUnbalance", "Calculating Master Plane:"},
        {true, "ubtCrossSum/CrossSumUnbalance, MasterPlane", "DeltaMeasuredTestUnbalance",
         "TransformationMatrix", "SumUnbalance", "Calculating Master Plane:"},
        "ubtRebal/FirstMeasurementUnbalance, MasterPlane",
    };
    TakeReading(Type, PATHS);
}

int CMasterPlane::AddXYValue(std::int16_t x, std::int16_t y) {
    return AddMirrored(x, y, GetRotationDirection() == CTypeBase::eClockwise);
}

void CSlavePlane::SetUnbalance(UnbalanceType Type) {
    static constexpr CPaths PATHS = {
        {true, "ubtSum/SumUnbalance, SlavePlane", "DeltaMeasuredTestUnbalance", "TransformationMatrix",
         "CSumUnbalance", "Calculating Slave Plane:"},
        {false, nullptr, nullptr, nullptr, nullptr, "Logging Slave Plane:"},
        "ubtRebal/FirstMeasurementUnbalance, Slave Plane",
    };
    TakeReading(Type, PATHS);
}

int CSlavePlane::AddXYValue(std::int16_t x, std::int16_t y) {
    return AddMirrored(x, y, GetRotationDirection() == CTypeBase::eCounterClockwise);
}
