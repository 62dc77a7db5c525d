#pragma once
#include <cstdint>
#include <map>
#include <string>

#include "platform/system/object.h"
#include "rvlib/math/matrix.h"

/// Where the weights of one module address and set were left.
class WeightPos2Plane : public CObject {
public:
    /// The matrices have their default size with all elements 0: a record may be written before any positions
    /// were given to it, and what then reaches the file must not be what happened to lie in memory.
    WeightPos2Plane();

    const char* GetRuntimeClass() const override { return "WeightPos2Plane"; }
    /// The record of 46 bytes. Read matrices are 2 by 1.
    void Serialize(CArchive& rArchive) override;

    /// Whether the angles of the planes that the record is of are angles on a scale, 0 to 359. A damaged
    /// file, or one written elsewhere, may hold anything.
    bool HasUsableAngles() const;

    /// Degrees of weight 1 in element (0, 0) and of weight 2 in (1, 0).
    math::matrix<double> m_PositionsPlane1;
    math::matrix<double> m_PositionsPlane2;  ///< single-plane runs leave it alone
    std::int32_t m_ValuePlane1 = 0;          ///< kept for the file's sake
    std::int32_t m_ValuePlane2 = 0;          ///< kept for the file's sake
    bool m_PositionsValid = false;           ///< stored by a completed run
    bool m_SinglePlane = true;               ///< written by a single-plane run
    std::int32_t m_RPM = 0;                  ///< speed of the last neutral measurement, rpm
};

/// The weight positions that survive a power cycle, by module address and set, and the three numbers that set
/// the test step. The file is the truth: Set changes the file only, and an object sees it after its next
/// Load. Entries are never removed. A damaged file makes CArchiveException leave Load and Set.
class CWeightPositionStore : public CObject {
public:
    const char* GetRuntimeClass() const override { return "CWeightPositionStore"; }

    bool Contains(const std::string& rKey) const { return m_WeightPositions.contains(rKey); }
    /// Throws std::out_of_range for an absent key.
    const WeightPos2Plane& Get(const std::string& rKey) const;
    /// False for an absent key.
    bool IsPositionsValid(const std::string& rKey) const;
    /// True for an absent key.
    bool IsSinglePlane(const std::string& rKey) const;
    /// Reads GetWeightPositionFile() into this object; without a file, or with a damaged one, nothing
    /// changes.
    void Load();
    /// Writes this object to GetWeightPositionFile(). A failure is silent but for the result.
    bool Save();
    /// For a file that was found damaged: runs must go on without the stored positions, and these must not
    /// get lost. It is kept under another name, and a new one with no entries, and the three numbers of this
    /// object, takes its place. False if that can't be; it then stays as it is, and must not be written.
    bool BeginAnew(const std::string& rReason);
    /// Puts a record into the file; no object in memory changes.
    static void Set(const std::string& rKey, const WeightPos2Plane& rRecord);
    /// Writes version "3.1"; reads also "3.0" and what came before.
    void Serialize(CArchive& rArchive) override;
    /// "000005_WHEEL1" for module 5 and set WHEEL1.
    static std::string MakeKey(std::uint32_t ModuleAddress, const std::string& rSetText);

    std::int32_t m_IncrementRPM = -1;    ///< speed limit of the test step, rpm; negative: unused
    std::int32_t m_Increment = 30;       ///< degrees above the limit
    std::int32_t m_IncrementBelow = 30;  ///< degrees at or below it

private:
    void Read(CArchive& rArchive);
    void Write(CArchive& rArchive);

    std::map<std::string, WeightPos2Plane> m_WeightPositions;
};
