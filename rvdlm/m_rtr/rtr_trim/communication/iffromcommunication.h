#pragma once
#include <cstdint>
#include <string>

#include "rvdlm/m_rtr/rtr_trim/communication/set.h"
#include "rvlib/rvprt/reason.h"

/// What the communication tells the main window. Pointers are null in a failure (eTimeout, eError);
/// everything that a callback gets lives only during the call. Callbacks come on the window thread.
class IFFromCommunication {
public:
    /// Hands a frame to the raw transport.
    virtual void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) = 0;
    virtual void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                             const std::uint32_t* pSerial) = 0;
    virtual void OnSetRequest(Reason Why, const CSet* pSet) = 0;
    virtual void OnModuleState(Reason Why, const std::uint32_t* pUILocked,
                               const std::uint32_t* pOutOfLockPlane1, const std::uint32_t* pInvalidRPMPlane1,
                               const std::uint32_t* pOutOfLockPlane2, const std::uint32_t* pInvalidRPMPlane2,
                               const std::uint32_t* pWrongState) = 0;
    /// pPlane: 0 or 1. rpm.
    virtual void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) = 0;
    /// X and Y in counts: the low 16 bits, read as signed.
    virtual void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                                     const std::uint32_t* pY) = 0;
    virtual ~IFFromCommunication() = default;
};
