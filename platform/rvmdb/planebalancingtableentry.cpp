#include "platform/rvmdb/planebalancingtableentry.h"

#include "platform/rvmdb/newentrydefaults.h"

namespace PreBalDB {

namespace {

math::matrix<double> Zero(std::uint32_t nRows, std::uint32_t nColumns) {
    math::matrix<double> Matrix(nRows, nColumns);
    Matrix.Null();
    return Matrix;
}

}  // namespace

CPlaneBalancingTableEntry::CPlaneBalancingTableEntry()
    : m_RotationDirection(CNewEntryDefaults::eRotationDirection) {}

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

CSinglePlaneBalancingTableEntry::CSinglePlaneBalancingTableEntry() : m_InvA(Zero(2, 2)), m_UA(Zero(2, 1)) {}

CTwoPlaneBalancingTableEntry::CTwoPlaneBalancingTableEntry()
    : m_InvA(Zero(4, 4)), m_UAPlane1(Zero(2, 1)), m_UAPlane2(Zero(2, 1)) {}

CTwoPlaneBalancingTableEntry::CTwoPlaneBalancingTableEntry(CDirectSQL& /*rConnection*/,
                                                           const std::string& /*rName*/)
    : CTwoPlaneBalancingTableEntry() {}

}  // namespace PreBalDB
