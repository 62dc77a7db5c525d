#pragma once
#include <cstdint>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingmathif.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/plane.h"

/// Mathematics of two coupled planes: the influence-coefficient method with two test runs. Each plane's
/// reading depends on the weights of both, so the four real unknowns (two weight vectors) come from a 4-by-4
/// system of four 2-by-2 complex blocks, A * UA + Raw = 0, by direct inversion.
///
/// Order of calls in a first run: SetRotationDirectionPlane1, SetRawUnbalanceVectors or its form with angles,
/// samples until complete, ApplyNeutralPositionXYValues, RestartMeasurement, SetTestUnbalanceVectorCase1,
/// samples, ApplyTestPlusRawUnbalanceXYValuesCase1, RestartMeasurement, SetTestUnbalanceVectorCase2, samples,
/// GetPrebalanceResult. In a re-balancing: SetMathMatrices, samples, GetRebalanceResult. A reading that is
/// taken before the window is complete is asserted, and is the average of what is there.
///
/// Angles turn into those of the mathematics by mirroring: on a counter-clockwise scale in plane 1, on a
/// clockwise one in plane 2, since plane 2 is seen from the other end.
class CTwoPlaneBalancingMath : public CTwoPlaneBalancingMathIF {
public:
    /// nSamples: length of each plane's window over the incoming samples.
    explicit CTwoPlaneBalancingMath(std::uint32_t nSamples);

    void RestartMeasurement() override;
    void SetRotationDirectionPlane1(Direction Value) override;
    int AddXYValuePlane1(std::int16_t x, std::int16_t y) override;
    int AddXYValuePlane2(std::int16_t x, std::int16_t y) override;
    void SetRawUnbalanceVectors(Direction Scaling1, Direction Scaling2) override;
    void SetRawUnbalanceVectorsAngles(const Matrix& rAngles1, const Matrix& rAngles2, Direction Scaling1,
                                      Direction Scaling2) override;
    int ApplyNeutralPositionXYValues() override;
    void SetTestUnbalanceVectorCase1(const Matrix* pTestUnbalancePlane1, Direction Scaling1) override;
    void ApplyTestPlusRawUnbalanceXYValuesCase1(std::uint32_t& rStatus) override;
    void SetTestUnbalanceVectorCase2(const Matrix* pTestUnbalancePlane2, Direction Scaling2) override;
    void GetPrebalanceResult(Matrix& rInvA, Matrix& rUAPlane1, Matrix& rUAPlane2,
                             std::uint32_t& rStatus) override;
    void SetMathMatrices(Matrix InvA, Matrix UAPlane1, Matrix UAPlane2) override;
    void GetRebalanceResult(Matrix& rUAPlane1, Matrix& rUAPlane2) override;

    const CPlane& GetPlane1() const { return m_Plane1; }
    const CPlane& GetPlane2() const { return m_Plane2; }
    /// Whether an inverse has ever been computed.
    bool AreMatricesBuilt() const { return m_MatricesBuilt != 0; }

private:
    /// 0, or -1 for a singular system, which leaves the inverse as it is.
    int BuildMatrices();
    int CalculateUAValues();
    /// Hands out both planes' parts of m_UA.
    void ReadUA(Matrix& rUAPlane1, Matrix& rUAPlane2) const;

    CMasterPlane m_Plane1;
    CSlavePlane m_Plane2;
    Matrix m_A;  ///< rows: sensor of plane 1, of plane 2; columns: weights of plane 1, of plane 2
    Matrix m_InvA;
    Matrix m_Raw;  ///< (x1, y1, x2, y2)
    Matrix m_UA;   ///< (x1, y1, x2, y2)
    std::uint32_t m_MatricesBuilt = 0;
};
