#pragma once
#include <cstdint>

#include "platform/rvmdb/typebase.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingmathif.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvbas/xymovingaverage.h"

/// Mathematics of one plane: the influence-coefficient method in complex arithmetic, with a pair of balance
/// weights as the test unbalance.
///
/// A complex number x + iy is the vector (x, y) or, as a factor, the block [[x, -y], [y, x]]. A reading
/// answers the weights' vector w as Alpha * conj(w); two readings and the weights' change W between them give
/// Alpha = D / conj(W). Readings are in counts, position angles in degrees, UA in units of one weight (a pair
/// reaches 2 at most), Alpha in counts per weight, InvA the reverse.
///
/// Order of calls in a first run: SetRotationDirection, SetRawUnbalanceVector, samples until complete,
/// ApplyNeutralPositionXYValues, SetTestUnbalanceVector, samples until complete, GetPrebalanceResult. In a
/// re-balancing: SetMathMatrices, samples, GetRebalanceResult. A reading that is taken before the window is
/// complete is asserted, and is the average of what is there.
class CSinglePlaneBalancingMath : public CSinglePlaneBalancingMathIF {
public:
    /// nSamples: length of the window over the incoming samples. Reads the feature flag
    /// "PreBalancingVectorTestEffect", by which the effect of the test weights is judged.
    explicit CSinglePlaneBalancingMath(std::uint32_t nSamples);

    void RestartMeasurement() override;
    /// Clockwise rotors have X mirrored on the way in, so that all else is written for counter-clockwise
    /// ones.
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override;
    /// Kept for the sequence; nothing here uses it.
    void SetScalingDirection(PreBalDB::CTypeBase::Direction Value) override;
    int AddXYValue(std::int16_t x, std::int16_t y) override;
    /// Angles are cut to whole degrees. On a clockwise scale a position is stored as 360 less its angle: 0 as
    /// 360.
    void SetRawUnbalanceVector(const math::matrix<double>& rAngles,
                               PreBalDB::CTypeBase::Direction Value) override;
    /// The stored first positions, already mirrored.
    math::matrix<double> GetRawUnbalanceVector() override;
    int ApplyNeutralPositionXYValues() override;
    /// Needs the first positions. Null: the difference of the readings is the influence as it stands.
    void SetTestUnbalanceVector(const math::matrix<double>* pTest,
                                PreBalDB::CTypeBase::Direction Value) override;
    /// With status 1 rInvA and rUA are what the last usable run left, unless the influence was below its
    /// floor.
    void GetPrebalanceResult(math::matrix<double>& rInvA, math::matrix<double>& rUA,
                             std::uint32_t& rTestWeightStatus) override;
    void SetMathMatrices(math::matrix<double> InvA, math::matrix<double> UA) override;
    /// Again an absolute compensation, not an increment; the stored UA doesn't change.
    void GetRebalanceResult(math::matrix<double>& rUA) override;

private:
    math::matrix<double> CalculateSmoothedValue() const;
    /// Whether the test weights changed the reading enough: 1 usable, 0 not.
    int CheckTestWeightEffect() const;
    int CalculateAlphaMatrix();
    /// 1 if the squared influence reaches its floor.
    int CalculateUAValues();

    CXYMovingAverage m_MovingAverage;
    bool m_bVectorTestEffect;
    PreBalDB::CTypeBase::Direction m_RotationDirection = PreBalDB::CTypeBase::eClockwise;
    PreBalDB::CTypeBase::Direction m_ScalingDirection = PreBalDB::CTypeBase::eClockwise;
    math::matrix<double> m_Alpha;
    math::matrix<double> m_InvA;
    math::matrix<double> m_UA;
    math::matrix<double> m_FirstMeasurementValues;
    math::matrix<double> m_SecondMeasurementValues;
    math::matrix<double> m_RawValues;                       ///< reading of the rotor without the weights
    math::matrix<double> m_FirstWeightsAsNormalizedVector;  ///< sum of the two weights, each of length 1
    math::matrix<double> m_FirstWeightPositions;            ///< degrees
    math::matrix<double> m_SecondWeightPositions;           ///< degrees
    math::matrix<double> m_TransformationMatrix;            ///< 1 / conj(weight change)
    math::matrix<double> m_NullVector;
};
