// The speed settings and the weight positions that go with them.
#include "platform/system/archive.h"
#include "platform/system/files.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "rvlib/settings/installation.h"
#include "rvlib/settings/profile.h"

using RtrTrim::g_pLog;

namespace {

constexpr int eDefaultIncrementRPM = -1;
constexpr int eDefaultIncrement = 10;
constexpr int eDefaultIncrementBelow = 30;
/// Degrees, where no speed is known.
constexpr int eIncrementWithoutSpeed = 30;

/// A name beside rPath that no file has.
std::string FindFreeName(const std::string& rPath) {
    std::string Name = rPath + ".damaged";
    for (int i = 2; Files::IsFile(Name) || Files::IsDirectory(Name); ++i) {
        Name = rPath + ".damaged" + std::to_string(i);
    }
    return Name;
}

/// Copies a file to a name of its own. The name, empty on failure.
std::string SetAside(const std::string& rPath) {
    const auto Bytes = Files::ReadAll(rPath);
    const std::string Name = FindFreeName(rPath);
    return Bytes && Files::WriteAll(Name, *Bytes) ? Name : std::string();
}

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

/// Runs must go on without the stored positions, and these must not get lost: the file is kept under another
/// name, and a new one takes its place. If it can't be kept it stays as it is.
bool CPreBalancingMainWnd::OnWeightPositionsDamaged(const std::string& rReason) {
    m_WeightPositions = CWeightPositionStore();
    ReadSpeedSettings();
    const std::string Path = GetWeightPositionFile();
    const std::string Kept = SetAside(Path);
    if (Kept.empty()) {
        RV_ERROR(g_pLog, "%s is damaged (%s) and can't be kept under another name", Path.c_str(),
                 rReason.c_str());
        return false;
    }
    RV_ERROR(g_pLog, "%s is damaged (%s); kept as %s", Path.c_str(), rReason.c_str(), Kept.c_str());
    m_WeightPositions.Save();
    return true;
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
