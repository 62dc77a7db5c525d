#pragma once
#include <cstdint>

#include "platform/rvmdb/typebase.h"
#include "rvlib/math/matrix.h"

/// What a measurement sees of the mathematics.
class CBalancingMathIF {
public:
    /// Drops the samples gathered so far.
    virtual void RestartMeasurement() = 0;
    virtual ~CBalancingMathIF() = default;
};

/// What the single-plane sequence sees of the mathematics. Angles in degrees on the rotor's scale, readings
/// in counts, UA in units of one balance weight.
class CSinglePlaneBalancingMathIF : public CBalancingMathIF {
public:
    virtual void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) = 0;
    virtual void SetScalingDirection(PreBalDB::CTypeBase::Direction Value) = 0;
    /// Nonzero when the window of samples is complete.
    virtual int AddXYValue(std::int16_t x, std::int16_t y) = 0;
    /// The two weight angles (2 by 1) of the first measurement.
    virtual void SetRawUnbalanceVector(const math::matrix<double>& rAngles,
                                       PreBalDB::CTypeBase::Direction Value) = 0;
    virtual math::matrix<double> GetRawUnbalanceVector() = 0;
    /// The smoothed reading becomes the first measurement. Result 1.
    virtual int ApplyNeutralPositionXYValues() = 0;
    /// The two weight angles (2 by 1) of the test run; null: the test is one known unit.
    virtual void SetTestUnbalanceVector(const math::matrix<double>* pTest,
                                        PreBalDB::CTypeBase::Direction Value) = 0;
    /// Inverse influence (2 by 2), compensation (2 by 1), and 0 if the test run was usable, 1 if not. Throws
    /// math::matrix_error if the influence is exactly zero.
    virtual void GetPrebalanceResult(math::matrix<double>& rInvA, math::matrix<double>& rUA,
                                     std::uint32_t& rTestWeightStatus) = 0;
    virtual void SetMathMatrices(math::matrix<double> InvA, math::matrix<double> UA) = 0;
    virtual void GetRebalanceResult(math::matrix<double>& rUA) = 0;
};
