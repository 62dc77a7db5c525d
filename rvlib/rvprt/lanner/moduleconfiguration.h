#pragma once
#include <cstdint>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// The module's own line and power settings: those in force, or limits or defaults.
class CModuleConfiguration : public Comm::CMessage {
public:
    static constexpr std::uint32_t SIZE = 6;
    static constexpr std::uint8_t INVALID_BAUD_RATE = 255;

    explicit CModuleConfiguration(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's sub-code.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    /// Names for the log. A value without a name asserts and reads "invalid".
    static const char* BaudrateToString(std::uint8_t Baudrate);
    static const char* StopBitToString(std::uint8_t StopBit);

    std::uint8_t Baudrate = INVALID_BAUD_RATE;  ///< as sent: values without a name stay
    std::uint8_t StopBit = 0;                   ///< 0 one, 1 two
    std::uint8_t FanPowerOnTemperature = 0;
    std::uint8_t TestFlags = 0;
    std::uint8_t AttachedSlaveModuleID = 0;
};

}  // namespace Lanner
