#pragma once
#include <cstdint>
#include <string>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// The block of a set that concerns one plane.
class CPlane : public Comm::CMessage {
public:
    /// Type of the block.
    static constexpr std::uint8_t TYPE = 2;
    static constexpr std::uint32_t SIZE = 12;
    static constexpr std::uint8_t UNKNOWN = 255;

    explicit CPlane(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins with the block's type. A block that is none asserts, and the object stays as it was.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    static const char* RPMInputToString(std::uint8_t Input);
    static std::string SensorAdaptionToString(std::uint8_t Adaption);

    std::uint8_t ID = UNKNOWN;  ///< 0 or 1, before planes are swapped
    std::uint8_t RPMInput = 0;
    std::uint8_t SensorAdaption = UNKNOWN;
    std::uint16_t UnbalanceLimit1 = 0;
    std::uint16_t UnbalanceLimit2 = 0;
    std::uint16_t RPMLimit1 = 0;
    std::uint8_t Offset = 0;
};

}  // namespace Lanner
