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

/// What the two-plane sequence sees of the mathematics. Planes 1 and 2; angles in degrees on each plane's own
/// scale, readings in counts, UA in units of one balance weight.
class CTwoPlaneBalancingMathIF : public CBalancingMathIF {
public:
    using Matrix = math::matrix<double>;
    using Direction = PreBalDB::CTypeBase::Direction;

    /// Sense of rotation as seen from the end of plane 1; plane 2, seen from its own end, turns the other
    /// way.
    virtual void SetRotationDirectionPlane1(Direction Value) = 0;
    /// Nonzero when that plane's window of samples is complete.
    virtual int AddXYValuePlane1(std::int16_t x, std::int16_t y) = 0;
    virtual int AddXYValuePlane2(std::int16_t x, std::int16_t y) = 0;
    /// Opposed weights in both planes in the first measurement.
    virtual void SetRawUnbalanceVectors(Direction Scaling1, Direction Scaling2) = 0;
    /// The two weight angles (2 by 1) of each plane in the first measurement.
    virtual void SetRawUnbalanceVectorsAngles(const Matrix& rAngles1, const Matrix& rAngles2,
                                              Direction Scaling1, Direction Scaling2) = 0;
    /// The smoothed readings become the first measurement; the windows go on. Result 1.
    virtual int ApplyNeutralPositionXYValues() = 0;
    /// The two weight angles (2 by 1) of plane 1 in the second measurement; null: the test is one known unit.
    virtual void SetTestUnbalanceVectorCase1(const Matrix* pTestUnbalancePlane1, Direction Scaling1) = 0;
    /// The smoothed readings become the second measurement. The status is always 0: nothing tests the
    /// weights' effect.
    virtual void ApplyTestPlusRawUnbalanceXYValuesCase1(std::uint32_t& rStatus) = 0;
    /// As Case1, for plane 2 in the third measurement. Plane 1's test weights stay on.
    virtual void SetTestUnbalanceVectorCase2(const Matrix* pTestUnbalancePlane2, Direction Scaling2) = 0;
    /// The smoothed readings become the third measurement: inverse influence (4 by 4), compensation of each
    /// plane (2 by 1), status always 0. A singular system keeps the inverse of before, all zeros at first.
    virtual void GetPrebalanceResult(Matrix& rInvA, Matrix& rUAPlane1, Matrix& rUAPlane2,
                                     std::uint32_t& rStatus) = 0;
    virtual void SetMathMatrices(Matrix InvA, Matrix UAPlane1, Matrix UAPlane2) = 0;
    /// The compensation that the smoothed readings ask for. It becomes the one to start from: a further call
    /// corrects from here, unlike in one plane.
    virtual void GetRebalanceResult(Matrix& rUAPlane1, Matrix& rUAPlane2) = 0;

    void SetMatricesAndGetRebalanceResult(const Matrix& rInvA, const Matrix& rStoredUAPlane1,
                                          const Matrix& rStoredUAPlane2, Matrix& rUAPlane1,
                                          Matrix& rUAPlane2) {
        SetMathMatrices(rInvA, rStoredUAPlane1, rStoredUAPlane2);
        GetRebalanceResult(rUAPlane1, rUAPlane2);
    }
};
