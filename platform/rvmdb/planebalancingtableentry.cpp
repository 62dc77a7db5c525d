#include "platform/rvmdb/planebalancingtableentry.h"

#include "platform/rvmdb/recordfields.h"

namespace PreBalDB {

CCompensationTableEntry::CompensationMethod CPlaneCompensation::GetUsedMethod() const {
    if (m_pWeight != nullptr) {
        return CCompensationTableEntry::eWeights;
    }
    return m_pScrew != nullptr ? CCompensationTableEntry::eScrews : CCompensationTableEntry::eNotChosen;
}

CWeightCompensationTableEntry& CPlaneCompensation::CreateWeight() {
    m_pScrew.reset();
    if (m_pWeight == nullptr) {
        m_pWeight = std::make_unique<CWeightCompensationTableEntry>();
    }
    return *m_pWeight;
}

CScrewCompensationTableEntry& CPlaneCompensation::CreateScrew() {
    m_pWeight.reset();
    if (m_pScrew == nullptr) {
        m_pScrew = std::make_unique<CScrewCompensationTableEntry>();
        m_pScrew->m_pDatabase = m_pDatabase;
    }
    return *m_pScrew;
}

CSinglePlaneBalancingTableEntry::CSinglePlaneBalancingTableEntry() {
    CConfigurationFields::SetDefaults(*this);
}

CTwoPlaneBalancingTableEntry::CTwoPlaneBalancingTableEntry() {
    CConfigurationFields::SetDefaults(*this);
}

CTwoPlaneBalancingTableEntry::CTwoPlaneBalancingTableEntry(CDirectSQL& /*rConnection*/,
                                                           const std::string& /*rName*/)
    : CTwoPlaneBalancingTableEntry() {}

}  // namespace PreBalDB
