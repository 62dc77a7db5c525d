#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"

/// Where the weights of this module and set stood at the end of the last run, as the weight position store
/// keeps it. A damaged file ends no run: it is set aside, and a new one begun. Window thread only.
class CSequencePositions {
public:
    using Matrix = math::matrix<double>;

    /// rPlanes and rMainWnd must outlive this. Set: as in the store's key.
    CSequencePositions(CSequencePlanes& rPlanes, CPreBalMainWndInterface& rMainWnd, std::string Set)
        : m_rPlanes(rPlanes), m_rMainWnd(rMainWnd), m_Set(std::move(Set)) {}

    /// Whether positions of this kind of run are offered: a record of the other kind isn't.
    bool IsOffered() const;
    /// Angles per plane, 2 by 1, in degrees; none without a record that can be used.
    std::optional<std::vector<Matrix>> Find() const;
    /// What the file holds now.
    void Reload();
    /// The speed of the first measurement, in rpm; only of a run with weights.
    void StoreSpeed(std::uint16_t RPM);
    /// The weights as they stand.
    void Store();

private:
    std::string GetKey() const { return CWeightPositionStore::MakeKey(m_rMainWnd.GetModuleAddress(), m_Set); }
    /// The key's record in the store, or a new one, for a procedure of this kind.
    WeightPos2Plane MakeRecord() const;
    void Write(const WeightPos2Plane& rRecord);
    static Matrix& GetPositions(WeightPos2Plane& rRecord, std::size_t Plane) {
        return Plane == 0 ? rRecord.m_PositionsPlane1 : rRecord.m_PositionsPlane2;
    }

    CSequencePlanes& m_rPlanes;
    CPreBalMainWndInterface& m_rMainWnd;
    std::string m_Set;
};
