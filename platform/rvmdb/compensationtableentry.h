#pragma once
#include <cstdint>
#include <string>
#include <utility>

#include "platform/rvmdb/screw.h"
#include "platform/rvmdb/typebase.h"
#include "rvlib/rvbas/array.h"

namespace PreBalDB {

/// What a plane is balanced with; base of the two kinds. A new one has the default of each property
/// (recordfields.cpp).
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
    friend class CConfigurationFields;
    AffectedPlane m_Plane{};
    Direction m_ScalingDirection{};
};

/// Two movable weights.
class CWeightCompensationTableEntry : public CCompensationTableEntry {
public:
    CWeightCompensationTableEntry();
};

/// Screws of a table in a ring of holes.
class CScrewCompensationTableEntry : public CCompensationTableEntry {
public:
    CScrewCompensationTableEntry();

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
    /// A copy of the table of that name as it is stored now, so that a table that was edited meanwhile
    /// counts. Empty without such a table.
    Base::CWDArray<CScrew> GetScrewTable() const;

private:
    friend class CConfigurationFields;
    friend class CPlaneCompensation;
    std::string m_ScrewTableName;
    std::uint32_t m_NumberOfHoles{};
    std::uint8_t m_NumberOfScrews{};
    double m_ReferenceWeight{};
    double m_Radius{};
    /// The database that the table is read from; null for an entry of its own.
    class CPreBalDatabase* m_pDatabase = nullptr;
};

}  // namespace PreBalDB
