#pragma once
#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/modulemapper.h"
#include "rvlib/rvprt/lanner/statemachine/lannerprotocol.h"

/// Shows one Lanner module to the main window. The module serves both planes, so that there is nothing to
/// merge: each callback is translated and passed on, failures included.
class CLannerMapper : public CModuleMapper<IFToCommunication, Lanner::CLannerProtocol> {
public:
    /// pIFFromCommunication must outlive the mapper.
    CLannerMapper(IFFromCommunication* pIFFromCommunication, std::uint8_t ModuleAddress);

protected:
    void OnQueryModuleIdentification(Reason Why, const Lanner::CModuleIdentification* pModule) override;
    void OnSetRequest(Reason Why, const Lanner::CSet* pSet) override;
    void OnModuleState(Reason Why, const Lanner::CModuleStateResponse* pResponse) override;
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override;
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override;

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override;

    IFFromCommunication* m_pIFFromCommunication;
};
