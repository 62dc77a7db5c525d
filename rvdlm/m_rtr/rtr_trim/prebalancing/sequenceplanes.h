#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/rvmdb/compensationtableentry.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvlib/math/matrix.h"

/// One plane of the rotor in a run: its means, and what is read of it.
struct CSequencePlane {
    using CompensationMethod = PreBalDB::CCompensationTableEntry::CompensationMethod;

    std::unique_ptr<CPlaneBalancingMethod> m_pMethod;
    /// The means in use; never anything but weights or screws.
    CompensationMethod m_CompensationMethod = PreBalDB::CCompensationTableEntry::eWeights;
    std::size_t m_Sensor = 0;  ///< whose readings count: 0 of CurrentXYValuePlane1, 1 of CurrentXYValuePlane2
    std::int16_t m_X = 0;      ///< last reading
    std::int16_t m_Y = 0;
    bool m_bConditionMet = false;   ///< the last reading came in lock and at speed
    std::uint32_t m_nMeasured = 0;  ///< samples in a row, up to the present one, of such readings
};

/// The planes of a run, one or two, in the order of the procedure. What concerns the means of all of them at
/// once.
class CSequencePlanes {
public:
    using Matrix = math::matrix<double>;

    void Add(CSequencePlane Plane) { m_Planes.push_back(std::move(Plane)); }
    void Clear() { m_Planes.clear(); }

    std::size_t GetCount() const { return m_Planes.size(); }
    CSequencePlane& Get(std::size_t Plane) { return m_Planes.at(Plane); }
    const CSequencePlane& Get(std::size_t Plane) const { return m_Planes.at(Plane); }
    auto begin() { return m_Planes.begin(); }
    auto end() { return m_Planes.end(); }
    auto begin() const { return m_Planes.begin(); }
    auto end() const { return m_Planes.end(); }

    /// Planes with different means count as without weights.
    bool HasWeightsOnly() const;
    void SetDisplayModes(CPlaneBalancingMethod::DisplayMode Mode);
    void FillNotification(CPreBalNotification& rNotification);
    /// Angles of the weights as they stand, per plane 2 by 1, in degrees.
    std::vector<Matrix> GetWeightPositions();
    /// Brings the means to the vectors (per plane, 2 by 1); false if a plane can't reach its own. *pPercent,
    /// if it is asked for, becomes the largest lack.
    bool SetUA(const std::vector<Matrix>& rUA, double* pPercent, bool bAllowEqualAngles);

private:
    std::vector<CSequencePlane> m_Planes;
};
