#pragma once
#include <cstdint>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// What the module says about itself and its two planes. All flags are 0 or 1.
class CModuleStateResponse : public Comm::CMessage {
public:
    static constexpr std::uint32_t SIZE = 7;

    enum ModuleState : std::uint32_t { eSupervisionMode = 1, eInvalidState = 255 };

    explicit CModuleStateResponse(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's header. With Swap not 0 the flags of the frame's first plane go to
    /// plane 2 and those of its second to plane 1. Any state but eSupervisionMode fails.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed, std::uint32_t Swap);
    void Log() const;

    std::uint32_t m_ModuleState = eInvalidState;
    std::int32_t m_Parameter = -1;  ///< never read from a frame
    std::uint32_t UILocked = 0;
    std::uint32_t Plane1RotationLimit1Exceeded = 0;
    std::uint32_t Plane1UnbalanceLimit1Exceeded = 0;
    std::uint32_t Plane1UnbalanceLimit2Exceeded = 0;
    std::uint32_t Plane1DSGNocke = 0;
    std::uint32_t Plane2RotationLimit1Exceeded = 0;
    std::uint32_t Plane2UnbalanceLimit1Exceeded = 0;
    std::uint32_t Plane2UnbalanceLimit2Exceeded = 0;
    std::uint32_t Plane2DSGNocke = 0;
    std::uint32_t Plane1SensorFailure = 0;
    std::uint32_t Plane1RotationToSlow = 0;
    std::uint32_t Plane1Overamplify = 0;
    std::uint32_t Plane1OutOfLock = 0;
    std::uint32_t Plane2SensorFailure = 0;
    std::uint32_t Plane2RotationToSlow = 0;
    std::uint32_t Plane2Overamplify = 0;
    std::uint32_t Plane2OutOfLock = 0;
};

}  // namespace Lanner
