#pragma once
#include "rvdlm/m_rtr/rtr_trim/communication/iftokestrelsaker.h"
#include "rvdlm/m_rtr/rtr_trim/communication/modulemapper.h"
#include "rvlib/rvprt/kestrel/statemachine/kestrelprotocol.h"

class CPlaneHandler;

/// Translates between one Kestrel module and the plane handler, which tells its modules apart by their
/// addresses.
class CKestrelMapper : public CModuleMapper<IFToKestrelSaker, Kestrel::CKestrelProtocol> {
public:
    /// rPlaneHandler must outlive the mapper.
    CKestrelMapper(CPlaneHandler& rPlaneHandler, std::uint8_t ModuleAddress);

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override;
    void OnQueryModuleIdentification(Reason Why, const Kestrel::CModuleIdentification* pModule) override;
    void OnSetRequest(Reason Why, const Kestrel::CSet* pSet) override;
    void OnModuleState(Reason Why, const Kestrel::CModuleStateResponse* pResponse) override;
    void OnRPMData(Reason Why, const std::uint32_t* pRPM) override;
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pX, const std::uint32_t* pY) override;

    CPlaneHandler* m_pPlaneHandler;
    std::uint8_t m_Address;
};
