#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"

#include <cstdio>
#include <stdexcept>
#include <utility>

#include "platform/system/archive.h"
#include "platform/system/files.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/settings/installation.h"

namespace {

constexpr const char* VERSION = "3.1";
/// Had the head of today, and a module number in place of the key.
constexpr const char* VERSION_WITH_NUMBERS = "3.0";
/// What files without an increment below count as.
constexpr std::int32_t DEFAULT_INCREMENT_BELOW = 30;

std::string FormatKey(long long Number, const std::string& rSetText) {
    char Number6[32];
    std::snprintf(Number6, sizeof Number6, "%.6lld_", Number);
    return Number6 + rSetText;
}

std::uint8_t ToByte(bool bValue) {
    return bValue ? 1 : 0;
}

bool ReadBool(CArchive& rArchive) {
    std::uint8_t Value = 0;
    rArchive >> Value;
    return Value != 0;
}

void WritePositions(CArchive& rArchive, const math::matrix<double>& rPositions) {
    rArchive << rPositions(0, 0) << rPositions(1, 0);
}

void ReadPositions(CArchive& rArchive, math::matrix<double>& rPositions) {
    rPositions.SetSize(2, 1);
    rArchive >> rPositions(0, 0) >> rPositions(1, 0);
}

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

bool IsUsable(double Angle) {
    constexpr double LARGEST = 359.0;
    return Angle >= 0.0 && Angle <= LARGEST;  // no number is neither
}

}  // namespace

WeightPos2Plane::WeightPos2Plane() {
    m_PositionsPlane1.Null();
    m_PositionsPlane2.Null();
}

void WeightPos2Plane::Serialize(CArchive& rArchive) {
    if (rArchive.IsStoring()) {
        rArchive << ToByte(m_PositionsValid) << m_RPM;
        WritePositions(rArchive, m_PositionsPlane1);
        rArchive << m_ValuePlane1;
        WritePositions(rArchive, m_PositionsPlane2);
        rArchive << m_ValuePlane2 << ToByte(m_SinglePlane);
    } else {
        m_PositionsValid = ReadBool(rArchive);
        rArchive >> m_RPM;
        ReadPositions(rArchive, m_PositionsPlane1);
        rArchive >> m_ValuePlane1;
        ReadPositions(rArchive, m_PositionsPlane2);
        rArchive >> m_ValuePlane2;
        m_SinglePlane = ReadBool(rArchive);
    }
}

bool WeightPos2Plane::HasUsableAngles() const {
    const auto AreUsable = [](const math::matrix<double>& rPositions) {
        return IsUsable(rPositions(0, 0)) && IsUsable(rPositions(1, 0));
    };
    return AreUsable(m_PositionsPlane1) && (m_SinglePlane || AreUsable(m_PositionsPlane2));
}

const WeightPos2Plane& CWeightPositionStore::Get(const std::string& rKey) const {
    const auto Found = m_WeightPositions.find(rKey);
    if (Found == m_WeightPositions.end()) {
        throw std::out_of_range("invalid map<K, T> key");
    }
    return Found->second;
}

bool CWeightPositionStore::IsPositionsValid(const std::string& rKey) const {
    return Contains(rKey) && Get(rKey).m_PositionsValid;
}

bool CWeightPositionStore::IsSinglePlane(const std::string& rKey) const {
    return !Contains(rKey) || Get(rKey).m_SinglePlane;
}

void CWeightPositionStore::Load() {
    auto Bytes = Files::ReadAll(GetWeightPositionFile());
    if (Bytes) {
        CArchive Archive(CArchive::eLoad, std::move(*Bytes));
        CWeightPositionStore Loaded;
        Loaded.Serialize(Archive);
        *this = std::move(Loaded);
    }
}

bool CWeightPositionStore::BeginAnew(const std::string& rReason) {
    m_WeightPositions.clear();
    const std::string Path = GetWeightPositionFile();
    const std::string Kept = SetAside(Path);
    if (Kept.empty()) {
        RV_ERROR(RtrTrim::g_pLog, "%s is damaged (%s) and can't be kept under another name", Path.c_str(),
                 rReason.c_str());
        return false;
    }
    RV_ERROR(RtrTrim::g_pLog, "%s is damaged (%s); kept as %s", Path.c_str(), rReason.c_str(), Kept.c_str());
    return Save();
}

bool CWeightPositionStore::Save() {
    CArchive Archive(CArchive::eStore);
    Serialize(Archive);
    return Files::WriteAll(GetWeightPositionFile(), Archive.GetBytes());
}

void CWeightPositionStore::Set(const std::string& rKey, const WeightPos2Plane& rRecord) {
    CWeightPositionStore Stored;
    Stored.Load();
    Stored.m_WeightPositions.insert_or_assign(rKey, rRecord);
    Stored.Save();
}

void CWeightPositionStore::Serialize(CArchive& rArchive) {
    if (rArchive.IsStoring()) {
        Write(rArchive);
    } else {
        Read(rArchive);
    }
}

void CWeightPositionStore::Write(CArchive& rArchive) {
    rArchive << std::string(VERSION) << m_IncrementRPM << m_Increment << m_IncrementBelow
             << static_cast<std::uint32_t>(m_WeightPositions.size());
    for (auto& [rKey, rRecord] : m_WeightPositions) {
        rArchive << rKey;
        rRecord.Serialize(rArchive);
    }
}

void CWeightPositionStore::Read(CArchive& rArchive) {
    std::string Version;
    rArchive >> Version;
    const bool bKeys = Version == VERSION;
    m_WeightPositions.clear();
    rArchive >> m_IncrementRPM >> m_Increment;
    if (bKeys || Version == VERSION_WITH_NUMBERS) {
        rArchive >> m_IncrementBelow;
    } else {
        m_IncrementBelow = DEFAULT_INCREMENT_BELOW;
    }
    std::uint32_t nEntries = 0;
    rArchive >> nEntries;
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        std::string Key;
        if (bKeys) {
            rArchive >> Key;
        } else {
            std::int32_t Number = 0;
            rArchive >> Number;
            // Matches no running set, since those have a text; the entry stays all the same.
            Key = FormatKey(Number, "");
        }
        WeightPos2Plane Record;
        Record.Serialize(rArchive);
        m_WeightPositions.emplace(std::move(Key), Record);  // of equal keys the first stands
    }
}

std::string CWeightPositionStore::MakeKey(std::uint32_t ModuleAddress, const std::string& rSetText) {
    return FormatKey(ModuleAddress, rSetText);
}
