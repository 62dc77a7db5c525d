#include "rvdlm/m_rtr/rtr_trim/communication/kestrelmapper.h"

#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"

CKestrelMapper::CKestrelMapper(CPlaneHandler& rPlaneHandler, std::uint8_t ModuleAddress)
    : CModuleMapper(ModuleAddress), m_pPlaneHandler(&rPlaneHandler), m_Address(ModuleAddress) {}

void CKestrelMapper::SendRawData(const std::uint8_t* pData, std::uint32_t nSize) {
    m_pPlaneHandler->SendRawData(m_Address, pData, nSize);
}

void CKestrelMapper::OnQueryModuleIdentification(Reason Why, const Kestrel::CModuleIdentification* pModule) {
    if (pModule == nullptr) {
        m_pPlaneHandler->OnQueryModuleIdentification(m_Address, Why, nullptr, nullptr);
        return;
    }
    m_pPlaneHandler->OnQueryModuleIdentification(m_Address, Why, &pModule->m_ArticleNumber,
                                                 &pModule->m_SerialNumber);
}

void CKestrelMapper::OnSetRequest(Reason Why, const Kestrel::CSet* pSet) {
    if (pSet == nullptr) {
        m_pPlaneHandler->OnSetRequest(m_Address, Why, nullptr);
        return;
    }
    CSet Set;
    Set.Number = pSet->m_Set;
    Set.Mode = CSet::ePlane1;
    Set.RPMInputPlane1 = 0;
    Set.RPMFactorPlane1 = pSet->m_RPMFactor;
    Set.SensorAdaptionPlane1 = static_cast<std::uint8_t>(pSet->m_SensorAdaption);
    m_pPlaneHandler->OnSetRequest(m_Address, Why, &Set);
}

void CKestrelMapper::OnModuleState(Reason Why, const Kestrel::CModuleStateResponse* pResponse) {
    if (pResponse == nullptr) {
        m_pPlaneHandler->OnModuleState(m_Address, Why, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        return;
    }
    const std::uint32_t WrongState =
        pResponse->m_ModuleState != Kestrel::CModuleStateRequest::ePrebalancingStart ? 1 : 0;
    m_pPlaneHandler->OnModuleState(m_Address, Why, &pResponse->m_UILocked, &pResponse->m_OutOfLock,
                                   &pResponse->m_InvalidRPM, nullptr, nullptr, &WrongState);
}

void CKestrelMapper::OnRPMData(Reason Why, const std::uint32_t* pRPM) {
    m_pPlaneHandler->OnRPMData(m_Address, Why, pRPM);
}

void CKestrelMapper::OnUnbalanceXYValues(Reason Why, const std::uint32_t* pX, const std::uint32_t* pY) {
    m_pPlaneHandler->OnUnbalanceXYValues(m_Address, Why, pX, pY);
}
