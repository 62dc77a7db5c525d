#pragma once
#include <cstdint>

#include "platform/rvmdb/typebase.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvbas/xymovingaverage.h"

/// One sensor plane of a two-plane run: its smoothed readings, the positions of the weights that act on it,
/// its influence coefficients and, from all of that, its raw unbalance.
///
/// The model is the influence-coefficient method in complex numbers x + iy, as vectors (x, y) or, as factors,
/// blocks [[x, -y], [y, x]]:
///     reading = raw + AlphaDirect * w_own + AlphaCross * w_other
/// with w the vector sum of the two unit weights of a plane. There is no conjugate, unlike in
/// CSinglePlaneBalancingMath: the angles come mirrored where that is needed.
///
/// A run has three measurements: without test weights, with those of plane 1, with those of plane 1 and
/// plane 2. Readings are in counts, angles in degrees, weights have length 1.
class CPlane {
public:
    using Matrix = math::matrix<double>;
    using Direction = PreBalDB::CTypeBase::Direction;

    enum UnbalanceType : int {
        ubtFirst = 0,     ///< first measurement
        ubtSum = 1,       ///< measurement that holds this plane's own new test weights
        ubtCrossSum = 2,  ///< measurement that holds the other plane's new test weights
        ubtRebal = 7      ///< re-balancing reading
    };
    /// Whose weights.
    enum WeightKind : int { eDirect = 0, eCross = 1 };
    /// For IsValid.
    enum ReadingIndex : int { eFirstReading = 0, eSumReading = 1, eCrossSumReading = 2 };

    /// nSamples: length of the window over the incoming samples.
    explicit CPlane(std::uint32_t nSamples);
    virtual ~CPlane() = default;
    CPlane(const CPlane&) = delete;
    CPlane& operator=(const CPlane&) = delete;

    /// Takes the smoothed reading for what Type says. Other values than those named do nothing.
    virtual void SetUnbalance(UnbalanceType Type) = 0;
    /// The positions of the two weights in the test run (2 by 1, degrees). Both 0 stands for no positions at
    /// all: the test is one known unit then. Positions that differ in nothing from the first ones give
    /// factors that are not finite.
    virtual void SetTestWeightAngles(int Kind, const Matrix& rAngles);
    /// Takes a sample; nonzero when the window is complete. The kinds mirror x here.
    virtual int AddXYValue(std::int16_t x, std::int16_t y);

    /// The positions of the two weights in the first measurement (2 by 1, degrees).
    void SetFirstMeasurementWeights(int Kind, const Matrix& rAngles);
    /// 1 if that reading has been taken since ubtFirst began the run; else, and for any other value, 0.
    int IsValid(int Which) const;
    void SetUA(double x, double y);
    void RestartMeasurement() { m_MovingAverage.Reset(); }
    void SetRotationDirection(Direction Value) { m_RotationDirection = Value; }
    void SetScalingDirection(Direction Value) { m_ScalingDirection = Value; }

    Direction GetRotationDirection() const { return m_RotationDirection; }
    Direction GetScalingDirection() const { return m_ScalingDirection; }
    /// The reading that the rotor would give without any weight.
    const Matrix& GetRawUnbalance() const { return m_RawUnbalance; }
    const Matrix& GetFirstMeasurementUnbalance() const { return m_FirstMeasurementUnbalance; }
    /// Influence of the own weights and of the other plane's, counts per weight; zero until known.
    const Matrix& GetAlphaDirect() const { return m_AlphaDirect; }
    const Matrix& GetAlphaCross() const { return m_AlphaCross; }
    const Matrix& GetOwnWeightUnbalance() const { return m_OwnWeightUnbalance; }
    const Matrix& GetCrossWeightUnbalance() const { return m_CrossWeightUnbalance; }
    const Matrix& GetTransformationMatrix() const { return m_TransformationMatrix; }
    const Matrix& GetCrossTransformationMatrix() const { return m_CrossTransformationMatrix; }
    const Matrix& GetFirstDirectMeasurementWeightAngles() const {
        return m_FirstDirectMeasurementWeightAngles;
    }
    const Matrix& GetFirstCrossMeasurementWeightAngles() const { return m_FirstCrossMeasurementWeightAngles; }
    const Matrix& GetUA() const { return m_UA; }

protected:
    /// What distinguishes the two planes in the measurement with own weights or in that with the other's.
    struct CPath {
        bool m_bThird;              ///< takes the third reading, else the second
        const char* m_pHeader;      ///< of the dump; null for none
        const char* m_pDifference;  ///< names in the dump
        const char* m_pMatrix;
        const char* m_pSum;
        const char* m_pCalculating;  ///< announces the evaluation of all three readings
    };
    struct CPaths {
        CPath m_Sum;
        CPath m_CrossSum;
        const char* m_pRebalHeader;
    };

    /// SetUnbalance by the paths of a kind.
    void TakeReading(UnbalanceType Type, const CPaths& rPaths);
    int AddMirrored(std::int16_t x, std::int16_t y, bool bMirror);

private:
    Matrix CalculateSmoothedValue() const;
    void TakeFirst();
    void TakeRebalance(const char* pHeader);
    void TakeSum(const CPath& rPath);
    void TakeCrossSum(const CPath& rPath);
    /// The reading, as the second or the third, less the one before it.
    Matrix TakeDifference(const CPath& rPath, const Matrix& rReading);
    void Dump(const CPath& rPath, const Matrix& rDifference, const Matrix& rMatrix, const Matrix& rSum) const;
    /// Once all three readings are there: influence and raw unbalance.
    void Evaluate(const CPath& rPath, const char* pRawLabel);
    void MeasurementsCompleteActivities();

    CXYMovingAverage m_MovingAverage;
    Matrix m_FirstDirectMeasurementWeightAngles;  ///< degrees
    Matrix m_FirstCrossMeasurementWeightAngles;   ///< degrees
    Matrix m_RawUnbalance;
    Matrix m_FirstDirectWeightVector;  ///< the angles in radians
    Matrix m_FirstCrossWeightVector;   ///< radians
    Matrix m_FirstDirectWeightsAsNormalizedVector;
    Matrix m_FirstCrossWeightsAsNormalizedVector;
    Matrix m_FirstMeasurementUnbalance;  ///< also the re-balancing reading
    Matrix m_SecondMeasurementUnbalance;
    Matrix m_ThirdMeasurementUnbalance;
    Matrix m_DeltaMeasuredTestUnbalance;
    Matrix m_DeltaMeasuredCrossTestUnbalance;
    // Lengths and angles (radians) are kept for inspection; only m_OwnWeightLength is read again.
    double m_FirstLength = 0.0;
    double m_OwnWeightLength = 0.0;
    double m_SumLength = 0.0;
    double m_CrossSumLength = 0.0;
    double m_CrossWeightLength = 0.0;
    double m_CrossTransformationNorm = 0.0;
    double m_FirstAngle = 0.0;
    double m_OwnWeightAngle = 0.0;
    double m_SumAngle = 0.0;
    double m_CrossSumAngle = 0.0;
    double m_CrossWeightAngle = 0.0;
    Matrix m_SumUnbalance;
    Matrix m_CrossSumUnbalance;
    Matrix m_OwnWeightUnbalance;         ///< influence per unit, a complex number
    Matrix m_CrossWeightUnbalance;       ///< the same of the other plane's weights
    Matrix m_TransformationMatrix;       ///< 1 / (own weight change)
    Matrix m_CrossTransformationMatrix;  ///< 1 / (other plane's weight change)
    Matrix m_AlphaDirect;
    Matrix m_AlphaCross;
    Matrix m_UA;
    Direction m_RotationDirection = PreBalDB::CTypeBase::eClockwise;
    Direction m_ScalingDirection = PreBalDB::CTypeBase::eClockwise;
};

/// Plane 1: its own test weights come first.
class CMasterPlane : public CPlane {
public:
    using CPlane::CPlane;
    void SetUnbalance(UnbalanceType Type) override;
    /// Mirrors x when this plane turns clockwise.
    int AddXYValue(std::int16_t x, std::int16_t y) override;
};

/// Plane 2: the other plane's test weights come first. It is seen from the other end, so its direction is the
/// opposite of the master's; both planes mirror together, exactly when plane 1 turns clockwise.
class CSlavePlane : public CPlane {
public:
    using CPlane::CPlane;
    void SetUnbalance(UnbalanceType Type) override;
    /// Mirrors x when this plane turns counter-clockwise.
    int AddXYValue(std::int16_t x, std::int16_t y) override;
};
