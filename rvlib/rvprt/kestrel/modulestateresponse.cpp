#include "rvlib/rvprt/kestrel/modulestateresponse.h"

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"

namespace Kestrel {

int CModuleStateResponse::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        return 0;
    }
    m_ModuleState = pData[0];
    if (m_ModuleState > CModuleStateRequest::eTwoPlaneBalancingStart) {
        m_ModuleState = CModuleStateRequest::eInvalidState;
    }
    m_Parameter = pData[1];
    if (m_Parameter > CModuleStateRequest::eSBA5) {
        m_Parameter = CModuleStateRequest::eInvalidParam;
    }
    m_UILocked = Comm::ReadBit(pData[2], 7);
    m_OutOfLock = Comm::ReadBit(pData[4], 5);
    m_InvalidRPM = Comm::ReadBit(pData[4], 3);
    *pUsed = SIZE;
    return 1;
}

void CModuleStateResponse::Log() const {
    const Protocols::CLogBlock Block("Kestrel::CModuleStateResponse");
    RV_PROTOCOL_DETAIL("UI locked: %d", static_cast<int>(m_UILocked));
    RV_PROTOCOL_DETAIL("ModuleState = %s", CModuleStateRequest::ModuleStateToString(m_ModuleState));
    RV_PROTOCOL_DETAIL("Parameter = %s", CModuleStateRequest::StateParamsToString(m_Parameter));
    RV_PROTOCOL_DETAIL("OutOfLock: %d", static_cast<int>(m_OutOfLock));
    RV_PROTOCOL_DETAIL("InvalidRPM: %d", static_cast<int>(m_InvalidRPM));
}

}  // namespace Kestrel
