#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/rvmdb/compensationtableentry.h"
#include "platform/rvmdb/typebase.h"
#include "rvlib/math/matrix.h"

namespace PreBalDB {

class CDirectSQL;

/// Common to the records of one and of two planes.
class CPlaneBalancingTableEntry : public CTypeBase {
public:
    virtual ~CPlaneBalancingTableEntry() = default;
    Direction GetRotationDirection() const { return m_RotationDirection; }
    void SetRotationDirection(Direction Value) { m_RotationDirection = Value; }
    AffectedPlane GetProximitySwitchInput() const { return m_ProximitySwitchInput; }
    void SetProximitySwitchInput(AffectedPlane Value) { m_ProximitySwitchInput = Value; }

protected:
    CPlaneBalancingTableEntry() = default;
    CPlaneBalancingTableEntry(const CPlaneBalancingTableEntry&) = default;
    CPlaneBalancingTableEntry& operator=(const CPlaneBalancingTableEntry&) = default;

private:
    Direction m_RotationDirection{};
    AffectedPlane m_ProximitySwitchInput{};
};

/// The compensation of one plane: the kind follows from the entry that exists; creating one kind drops the
/// other.
class CPlaneCompensation {
public:
    CCompensationTableEntry::CompensationMethod GetUsedMethod() const;
    const CWeightCompensationTableEntry* GetWeight() const { return m_pWeight.get(); }
    CWeightCompensationTableEntry& CreateWeight();
    const CScrewCompensationTableEntry* GetScrew() const { return m_pScrew.get(); }
    CScrewCompensationTableEntry& CreateScrew();

private:
    friend class CPreBalDatabase;
    friend class CPreBalBaseTableEntry;
    std::unique_ptr<CWeightCompensationTableEntry> m_pWeight;
    std::unique_ptr<CScrewCompensationTableEntry> m_pScrew;
    /// The database that screw tables are read from; null for an entry of its own.
    class CPreBalDatabase* m_pDatabase = nullptr;
};

/// Configuration and calibration of one plane. InvA is 2 by 2, UA 2 by 1; both zero until calibrated.
class CSinglePlaneBalancingTableEntry : public CPlaneBalancingTableEntry {
public:
    CSinglePlaneBalancingTableEntry();

    std::uint8_t GetSensorAdaption() const { return m_SensorAdaption; }
    void SetSensorAdaption(std::uint8_t Value) { m_SensorAdaption = Value; }
    CCompensationTableEntry::CompensationMethod GetUsedCompensationMethod() const {
        return m_Compensation.GetUsedMethod();
    }
    const CWeightCompensationTableEntry* GetWeightCompensationTableEntry() const {
        return m_Compensation.GetWeight();
    }
    CWeightCompensationTableEntry& CreateWeightCompensationTableEntry() {
        return m_Compensation.CreateWeight();
    }
    const CScrewCompensationTableEntry* GetScrewCompensationTableEntry() const {
        return m_Compensation.GetScrew();
    }
    CScrewCompensationTableEntry& CreateScrewCompensationTableEntry() { return m_Compensation.CreateScrew(); }
    const math::matrix<double>& GetInvA() const { return m_InvA; }
    void SetInvA(const math::matrix<double>& rInvA) { m_InvA = rInvA; }
    const math::matrix<double>& GetUA() const { return m_UA; }
    void SetUA(const math::matrix<double>& rUA) { m_UA = rUA; }

private:
    friend class CPreBalDatabase;
    friend class CPreBalBaseTableEntry;
    friend class CConfigurationFields;
    std::uint8_t m_SensorAdaption{};
    CPlaneCompensation m_Compensation;
    math::matrix<double> m_InvA;
    math::matrix<double> m_UA;
};

/// Configuration and calibration of two coupled planes. InvA is 4 by 4, each UA 2 by 1.
class CTwoPlaneBalancingTableEntry : public CPlaneBalancingTableEntry {
public:
    CTwoPlaneBalancingTableEntry();
    /// A temporary entry, bound to no stored one: neither the connection nor the name is used further. Its
    /// screw entries know the names of their tables only.
    CTwoPlaneBalancingTableEntry(CDirectSQL& rConnection, const std::string& rName);

    std::uint8_t GetPlane1SensorAdaption() const { return m_Plane1SensorAdaption; }
    void SetPlane1SensorAdaption(std::uint8_t Value) { m_Plane1SensorAdaption = Value; }
    std::uint8_t GetPlane2SensorAdaption() const { return m_Plane2SensorAdaption; }
    void SetPlane2SensorAdaption(std::uint8_t Value) { m_Plane2SensorAdaption = Value; }
    CCompensationTableEntry::CompensationMethod GetPlane1UsedCompensationMethod() const {
        return m_Plane1Compensation.GetUsedMethod();
    }
    CCompensationTableEntry::CompensationMethod GetPlane2UsedCompensationMethod() const {
        return m_Plane2Compensation.GetUsedMethod();
    }
    const CWeightCompensationTableEntry* GetPlane1WeightCompensationTableEntry() const {
        return m_Plane1Compensation.GetWeight();
    }
    CWeightCompensationTableEntry& CreatePlane1WeightCompensationTableEntry() {
        return m_Plane1Compensation.CreateWeight();
    }
    const CWeightCompensationTableEntry* GetPlane2WeightCompensationTableEntry() const {
        return m_Plane2Compensation.GetWeight();
    }
    CWeightCompensationTableEntry& CreatePlane2WeightCompensationTableEntry() {
        return m_Plane2Compensation.CreateWeight();
    }
    const CScrewCompensationTableEntry* GetPlane1ScrewCompensationTableEntry() const {
        return m_Plane1Compensation.GetScrew();
    }
    CScrewCompensationTableEntry& CreatePlane1ScrewCompensationTableEntry() {
        return m_Plane1Compensation.CreateScrew();
    }
    const CScrewCompensationTableEntry* GetPlane2ScrewCompensationTableEntry() const {
        return m_Plane2Compensation.GetScrew();
    }
    CScrewCompensationTableEntry& CreatePlane2ScrewCompensationTableEntry() {
        return m_Plane2Compensation.CreateScrew();
    }
    const math::matrix<double>& GetInvA() const { return m_InvA; }
    void SetInvA(const math::matrix<double>& rInvA) { m_InvA = rInvA; }
    const math::matrix<double>& GetUAPlane1() const { return m_UAPlane1; }
    void SetUAPlane1(const math::matrix<double>& rUA) { m_UAPlane1 = rUA; }
    const math::matrix<double>& GetUAPlane2() const { return m_UAPlane2; }
    void SetUAPlane2(const math::matrix<double>& rUA) { m_UAPlane2 = rUA; }

private:
    friend class CPreBalDatabase;
    friend class CPreBalBaseTableEntry;
    friend class CConfigurationFields;
    std::uint8_t m_Plane1SensorAdaption{};
    std::uint8_t m_Plane2SensorAdaption{};
    CPlaneCompensation m_Plane1Compensation;
    CPlaneCompensation m_Plane2Compensation;
    math::matrix<double> m_InvA;
    math::matrix<double> m_UAPlane1;
    math::matrix<double> m_UAPlane2;
};

}  // namespace PreBalDB
