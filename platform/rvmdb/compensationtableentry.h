#pragma once
#include <cstdint>
#include <string>
#include <utility>

#include "platform/rvmdb/screw.h"
#include "platform/rvmdb/typebase.h"
#include "rvlib/rvbas/array.h"

namespace PreBalDB {

/// What a plane is balanced with; base of the two kinds.
class CCompensationTableEntry : public CTypeBase {
public:
    enum CompensationMethod : std::uint8_t {
        eWeights = 0,
        eScrews = 1,
        eNotImplemented = 2,
        eNotChosen = 255  ///< treated as weights
    };

    void SetPlane(AffectedPlane Plane) { m_Plane = Plane; }
    Direction GetScalingDirection() const { return m_ScalingDirection; }
    void SetScalingDirection(Direction Value) { m_ScalingDirection = Value; }

protected:
    CCompensationTableEntry() = default;
    ~CCompensationTableEntry() = default;
    CCompensationTableEntry(const CCompensationTableEntry&) = default;
    CCompensationTableEntry& operator=(const CCompensationTableEntry&) = default;

private:
    friend class CPreBalDatabase;
    AffectedPlane m_Plane = eUnknownPlane;
    Direction m_ScalingDirection = eClockwise;
};

/// Two movable weights.
class CWeightCompensationTableEntry : public CCompensationTableEntry {};

/// Screws of a table in a ring of holes.
class CScrewCompensationTableEntry : public CCompensationTableEntry {
public:
    const std::string& GetScrewTableName() const { return m_ScrewTableName; }
    void SetScrewTableName(std::string Name) { m_ScrewTableName = std::move(Name); }
    std::uint32_t GetNumberOfHoles() const { return m_NumberOfHoles; }
    void SetNumberOfHoles(std::uint32_t nHoles) { m_NumberOfHoles = nHoles; }
    std::uint8_t GetNumberOfScrews() const { return m_NumberOfScrews; }
    void SetNumberOfScrews(std::uint8_t nScrews) { m_NumberOfScrews = nScrews; }
    /// Grams of one unit of UA.
    double GetReferenceWeight() const { return m_ReferenceWeight; }
    void SetReferenceWeight(double Grams) { m_ReferenceWeight = Grams; }
    double GetRadius() const { return m_Radius; }
    /// A copy of the table of that name as it stood when the configuration was read or the name was set.
    Base::CWDArray<CScrew> GetScrewTable() const;

private:
    friend class CPreBalDatabase;
    std::string m_ScrewTableName;
    std::uint32_t m_NumberOfHoles = 0;
    std::uint8_t m_NumberOfScrews = 0;
    double m_ReferenceWeight = 0.0;
    double m_Radius = 0.0;
    /// The database that the table is read from; null for an entry of its own.
    class CPreBalDatabase* m_pDatabase = nullptr;
};

}  // namespace PreBalDB
