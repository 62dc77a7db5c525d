// The speed settings and the weight positions that go with them.
#include "platform/system/archive.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "rvlib/settings/installation.h"
#include "rvlib/settings/profile.h"

namespace {

constexpr int eDefaultIncrementRPM = -1;
constexpr int eDefaultIncrement = 10;
constexpr int eDefaultIncrementBelow = 30;
/// Degrees, where no speed is known.
constexpr int eIncrementWithoutSpeed = 30;

}  // namespace

void CPreBalancingMainWnd::ReadSpeedControl() {
    const bool bMayBeWritten = LoadWeightPositions();
    ReadSpeedSettings();
    // The numbers travel in the file of the weight positions, where the procedures load them from; so a
    // missing file comes into being here.
    if (bMayBeWritten) {
        m_WeightPositions.Save();
    }
}

void CPreBalancingMainWnd::ReadSpeedSettings() {
    m_WeightPositions.m_IncrementRPM = eDefaultIncrementRPM;
    m_WeightPositions.m_Increment = eDefaultIncrement;
    m_WeightPositions.m_IncrementBelow = eDefaultIncrementBelow;
    const CPath Path = GetConfigDirectory().Append("speedctrl.ini");
    if (Path.IsFile()) {
        const CWKProfile Profile(Path);
        m_WeightPositions.m_IncrementRPM = Profile.GetInt("RPM", eDefaultIncrementRPM);
        m_WeightPositions.m_Increment = Profile.GetInt("INCREMENT", eDefaultIncrement);
        m_WeightPositions.m_IncrementBelow = Profile.GetInt("INCREMENT_BELOW", eDefaultIncrementBelow);
    }
}

bool CPreBalancingMainWnd::LoadWeightPositions() {
    try {
        m_WeightPositions.Load();
    } catch (const CArchiveException& rDamage) {
        return OnWeightPositionsDamaged(rDamage.what());
    }
    return true;
}

bool CPreBalancingMainWnd::OnWeightPositionsDamaged(const std::string& rReason) {
    ReadSpeedSettings();
    return m_WeightPositions.BeginAnew(rReason);
}

int CPreBalancingMainWnd::GetSpeedIncrement() {
    if (m_pPrebalancingSequence == nullptr || m_WeightPositions.m_IncrementRPM < 0) {
        return eIncrementWithoutSpeed;
    }
    const std::string Key =
        CWeightPositionStore::MakeKey(m_ModuleAddress, m_pPrebalancingSequence->GetSetText());
    if (!m_WeightPositions.Contains(Key)) {
        return eIncrementWithoutSpeed;
    }
    return m_WeightPositions.Get(Key).m_RPM > m_WeightPositions.m_IncrementRPM
               ? m_WeightPositions.m_Increment
               : m_WeightPositions.m_IncrementBelow;
}
