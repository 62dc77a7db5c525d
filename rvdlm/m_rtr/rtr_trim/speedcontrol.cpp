#include "rvdlm/m_rtr/rtr_trim/speedcontrol.h"

#include "platform/system/archive.h"
#include "rvdlm/m_rtr/rtr_trim/guard.h"
#include "rvlib/settings/installation.h"
#include "rvlib/settings/profile.h"

namespace {

constexpr int DEFAULT_INCREMENT_RPM = -1;
constexpr int DEFAULT_INCREMENT = 10;
constexpr int DEFAULT_INCREMENT_BELOW = 30;

}  // namespace

void CSpeedControl::Read() {
    const bool bMayBeWritten = Load();
    ReadSettings();
    // The numbers travel in the file of the weight positions, where the procedures load them from; so a
    // missing file comes into being here.
    if (bMayBeWritten) {
        m_WeightPositions.Save();
    }
}

void CSpeedControl::ReadSettings() {
    m_WeightPositions.m_IncrementRPM = DEFAULT_INCREMENT_RPM;
    m_WeightPositions.m_Increment = DEFAULT_INCREMENT;
    m_WeightPositions.m_IncrementBelow = DEFAULT_INCREMENT_BELOW;
    const CPath Path = GetConfigDirectory().Append("speedctrl.ini");
    if (Path.IsFile()) {
        const CWKProfile Profile(Path);
        m_WeightPositions.m_IncrementRPM = Profile.GetInt("RPM", DEFAULT_INCREMENT_RPM);
        m_WeightPositions.m_Increment = Profile.GetInt("INCREMENT", DEFAULT_INCREMENT);
        m_WeightPositions.m_IncrementBelow = Profile.GetInt("INCREMENT_BELOW", DEFAULT_INCREMENT_BELOW);
    }
}

bool CSpeedControl::Load() {
    try {
        m_WeightPositions.Load();
    } catch (const CArchiveException& rDamage) {
        return OnDamaged(rDamage.what());
    }
    return true;
}

bool CSpeedControl::OnDamaged(const std::string& rReason) {
    ReadSettings();
    return m_WeightPositions.BeginAnew(rReason);
}

int CSpeedControl::GetIncrement(std::uint32_t ModuleAddress, const std::string& rSetText) const {
    if (m_WeightPositions.m_IncrementRPM < 0) {
        return INCREMENT_WITHOUT_SPEED;
    }
    const std::string Key = CWeightPositionStore::MakeKey(ModuleAddress, rSetText);
    if (!m_WeightPositions.Contains(Key)) {
        return INCREMENT_WITHOUT_SPEED;
    }
    return m_WeightPositions.Get(Key).m_RPM > m_WeightPositions.m_IncrementRPM
               ? m_WeightPositions.m_Increment
               : m_WeightPositions.m_IncrementBelow;
}

bool CSpeedControl::Guarded(const char* pName, const std::function<void()>& rOperation) {
    return RtrTrim::Guarded(pName, [&] {
        try {
            rOperation();
        } catch (const CArchiveException& rDamage) {
            OnDamaged(rDamage.what());
            throw;
        }
    });
}
