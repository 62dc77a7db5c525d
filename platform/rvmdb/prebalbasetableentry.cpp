#include "platform/rvmdb/prebalbasetableentry.h"

#include "platform/rvmdb/recordfields.h"

namespace PreBalDB {

CPreBalBaseTableEntry::CPreBalBaseTableEntry(std::string MachineName, std::string ProcessName)
    : m_MachineName(std::move(MachineName)), m_ProcessName(std::move(ProcessName)) {
    CConfigurationFields::SetDefaults(*this);
}

CPreBalBaseTableEntry::~CPreBalBaseTableEntry() = default;

CSinglePlaneBalancingTableEntry& CPreBalBaseTableEntry::CreateSinglePlane() {
    if (m_pSinglePlane == nullptr) {
        m_pSinglePlane = std::make_unique<CSinglePlaneBalancingTableEntry>();
        m_pSinglePlane->m_Compensation.m_pDatabase = m_pDatabase;
    }
    return *m_pSinglePlane;
}

CTwoPlaneBalancingTableEntry& CPreBalBaseTableEntry::CreateTwoPlane() {
    if (m_pTwoPlane == nullptr) {
        m_pTwoPlane = std::make_unique<CTwoPlaneBalancingTableEntry>();
        m_pTwoPlane->m_Plane1Compensation.m_pDatabase = m_pDatabase;
        m_pTwoPlane->m_Plane2Compensation.m_pDatabase = m_pDatabase;
    }
    return *m_pTwoPlane;
}

}  // namespace PreBalDB
