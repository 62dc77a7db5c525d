// Positions of the weights in CBalancingSequence: the keys that move them, the store that keeps them.
#include "platform/system/archive.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

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

std::string CBalancingSequence::GetStoreKey() const {
    return CWeightPositionStore::MakeKey(m_pMainWnd->GetModuleAddress(), GetSetText());
}

void CBalancingSequence::ApplyNeutralPositionWeights() {
    if (!HasWeightsOnly()) {
        return;
    }
    std::vector<Matrix> Positions;
    for (CPlane& rPlane : m_Planes) {
        int Angle1 = 0;
        int Angle2 = 0;
        rPlane.m_pMethod->GetWeightPositions(Angle1, Angle2);
        Matrix Plane(2, 1);
        Plane(0, 0) = Angle1;
        Plane(1, 0) = Angle2;
        Positions.push_back(Plane);
    }
    SetFirstPositions(Positions);
}

bool CBalancingSequence::CheckStoredWeightPositions() const {
    const CWeightPositionStore& rStore = m_pMainWnd->GetWeightPositionStore();
    const std::string Key = GetStoreKey();
    // A record of the other kind of run isn't taken over.
    return rStore.IsPositionsValid(Key) && rStore.IsSinglePlane(Key) == (m_Planes.size() == 1) &&
           rStore.Get(Key).HasUsableAngles();
}

bool CBalancingSequence::AdoptStoredWeightPositions() {
    const CWeightPositionStore& rStore = m_pMainWnd->GetWeightPositionStore();
    const std::string Key = GetStoreKey();
    if (!rStore.Contains(Key) || !rStore.Get(Key).HasUsableAngles()) {
        return false;
    }
    WeightPos2Plane Record = rStore.Get(Key);
    std::vector<Matrix> Positions;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        Positions.push_back(GetPositions(Record, i));
    }
    SetFirstPositions(Positions);
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        m_Planes[i].m_pMethod->SetTestUnbalanceVectorInDeg(Positions[i]);
    }
    return true;
}

void CBalancingSequence::ReloadPositionStore() {
    CWeightPositionStore& rStore = m_pMainWnd->GetWeightPositionStore();
    AccessStoreFile(rStore, [&rStore] { rStore.Load(); });
}

WeightPos2Plane CBalancingSequence::MakeStoreRecord() const {
    const CWeightPositionStore& rStore = m_pMainWnd->GetWeightPositionStore();
    const std::string Key = GetStoreKey();
    WeightPos2Plane Record = rStore.Contains(Key) ? rStore.Get(Key) : WeightPos2Plane();
    Record.m_SinglePlane = m_Planes.size() == 1;
    return Record;
}

void CBalancingSequence::WriteStoreRecord(const WeightPos2Plane& rRecord) {
    AccessStoreFile(m_pMainWnd->GetWeightPositionStore(),
                    [this, &rRecord] { CWeightPositionStore::Set(GetStoreKey(), rRecord); });
}

void CBalancingSequence::StoreNeutralRPM() {
    if (!HasWeightsOnly()) {
        return;
    }
    WeightPos2Plane Record = MakeStoreRecord();
    Record.m_RPM = m_RPM;
    WriteStoreRecord(Record);
    // Set changes only the file; the speed is looked up in the store in memory.
    ReloadPositionStore();
}

void CBalancingSequence::StoreWeightPositions() {
    WeightPos2Plane Record = MakeStoreRecord();
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        if (const Matrix* pPositions = m_Planes[i].m_pMethod->GetTestUnbalanceVectorInDeg()) {
            GetPositions(Record, i) = *pPositions;
        }
    }
    Record.m_PositionsValid = true;
    WriteStoreRecord(Record);
}

CBalancingSequence::Matrix& CBalancingSequence::GetPositions(WeightPos2Plane& rRecord,
                                                             std::size_t Plane) const {
    return Plane == 0 ? rRecord.m_PositionsPlane1 : rRecord.m_PositionsPlane2;
}

void CBalancingSequence::ShowActiveMenu(MenuQuery Query) {
    m_pMainWnd->SetMenu((GetActiveMethod().*Query)(GetMenuPlanes()));
}

bool CBalancingSequence::HandleTogglePlaneKey(MenuQuery Query) {
    if (m_KeyAction != eTogglePlane || m_Planes.size() < 2) {
        return false;
    }
    ToggleActivePlane();
    ShowActiveMenu(Query);
    return true;
}

void CBalancingSequence::HandleChangeWeightKeys() {
    // Degrees of a key press. Setting up goes in larger steps than the correction of a balanced rotor.
    constexpr int eSetupStep = 5;
    constexpr int eRebalanceStep = 1;
    const auto MoveAndNotify = [this](int Step) {
        GetActiveMethod().KeyPressed(m_KeyAction, Step);
        FillNotification();
        m_Notification.m_Action = CPreBalNotification::eSetWeights;
        m_pMainWnd->PreBalNotification(m_Notification);
    };
    switch (m_KeyAction) {
        case eIncrement:
        case eDecrement:
        case eNeutralPosition:
        case eWeightSelection:
        case eStepSelection:
            GetActiveMethod().KeyPressed(m_KeyAction, 0);
            return;
        case eIncPosWeight1Down:
        case eIncPosWeight1Up:
        case eDecPosWeight1Down:
        case eDecPosWeight1Up:
        case eIncPosWeight2Down:
        case eIncPosWeight2Up:
        case eDecPosWeight2Down:
        case eDecPosWeight2Up:
            RV_ASSERT_AS(RtrTrim::g_pLog,
                         m_Notification.m_Step == CPreBalNotification::eSetup ||
                             m_Notification.m_Step == CPreBalNotification::eReBalActive,
                         "FALSE", "impossible", false);
            MoveAndNotify(m_Notification.m_Step == CPreBalNotification::eSetup ? eSetupStep : eRebalanceStep);
            return;
        case eDecPosActiveWeightDown:
        case eDecPosActiveWeightUp:
        case eIncPosActiveWeightDown:
        case eIncPosActiveWeightUp:
            MoveAndNotify(0);
            return;
        default:
            return;
    }
}
