#pragma once
#include <cstdint>

#include "rvlib/rvprt/kestrel/modulestaterequest.h"
#include "rvlib/rvprt/message.h"

namespace Kestrel {

/// What the module does, and whether its readings can be trusted.
class CModuleStateResponse : public Comm::CMessage {
public:
    static constexpr std::uint32_t SIZE = 5;

    explicit CModuleStateResponse(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's header. State and parameter out of range become 255; the message is
    /// good all the same.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    std::uint32_t m_ModuleState = CModuleStateRequest::eInvalidState;
    std::uint32_t m_Parameter = CModuleStateRequest::eInvalidParam;
    std::uint32_t m_UILocked = 0;
    std::uint32_t m_OutOfLock = 0;
    std::uint32_t m_InvalidRPM = 0;
};

}  // namespace Kestrel
