#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencepositions.h"

#include "platform/system/archive.h"

namespace {

/// Runs an access to the file of positions. A damaged file must not end the run, let alone the host: it is
/// set aside, and the access is to a new one.
template <typename F>
void AccessStoreFile(CWeightPositionStore& rStore, F Access) {
    try {
        Access();
    } catch (const CArchiveException& rError) {
        if (rStore.BeginAnew(rError.what())) {
            Access();
        }
    }
}

}  // namespace

bool CSequencePositions::IsOffered() const {
    const CWeightPositionStore& rStore = m_rMainWnd.GetWeightPositionStore();
    const std::string Key = GetKey();
    return rStore.IsPositionsValid(Key) && rStore.IsSinglePlane(Key) == (m_rPlanes.GetCount() == 1) &&
           rStore.Get(Key).HasUsableAngles();
}

std::optional<std::vector<CSequencePositions::Matrix>> CSequencePositions::Find() const {
    const CWeightPositionStore& rStore = m_rMainWnd.GetWeightPositionStore();
    const std::string Key = GetKey();
    if (!rStore.Contains(Key) || !rStore.Get(Key).HasUsableAngles()) {
        return std::nullopt;
    }
    WeightPos2Plane Record = rStore.Get(Key);
    std::vector<Matrix> Positions;
    for (std::size_t i = 0; i < m_rPlanes.GetCount(); ++i) {
        Positions.push_back(GetPositions(Record, i));
    }
    return Positions;
}

void CSequencePositions::Reload() {
    CWeightPositionStore& rStore = m_rMainWnd.GetWeightPositionStore();
    AccessStoreFile(rStore, [&rStore] { rStore.Load(); });
}

WeightPos2Plane CSequencePositions::MakeRecord() const {
    const CWeightPositionStore& rStore = m_rMainWnd.GetWeightPositionStore();
    const std::string Key = GetKey();
    WeightPos2Plane Record = rStore.Contains(Key) ? rStore.Get(Key) : WeightPos2Plane();
    Record.m_SinglePlane = m_rPlanes.GetCount() == 1;
    return Record;
}

void CSequencePositions::Write(const WeightPos2Plane& rRecord) {
    AccessStoreFile(m_rMainWnd.GetWeightPositionStore(),
                    [this, &rRecord] { CWeightPositionStore::Set(GetKey(), rRecord); });
}

void CSequencePositions::StoreSpeed(std::uint16_t RPM) {
    if (!m_rPlanes.HasWeightsOnly()) {
        return;
    }
    WeightPos2Plane Record = MakeRecord();
    Record.m_RPM = RPM;
    Write(Record);
    // Set changes only the file; the speed is looked up in the store in memory.
    Reload();
}

void CSequencePositions::Store() {
    WeightPos2Plane Record = MakeRecord();
    for (std::size_t i = 0; i < m_rPlanes.GetCount(); ++i) {
        if (const Matrix* pPositions = m_rPlanes.Get(i).m_pMethod->GetTestUnbalanceVectorInDeg()) {
            GetPositions(Record, i) = *pPositions;
        }
    }
    Record.m_PositionsValid = true;
    Write(Record);
}
