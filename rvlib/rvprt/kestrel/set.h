#pragma once
#include <cstdint>
#include <string>

#include "rvlib/rvprt/message.h"

namespace Kestrel {

/// The module's active set.
class CSet : public Comm::CMessage {
public:
    static constexpr std::uint32_t SIZE = 5;
    static constexpr std::uint32_t UNKNOWN_ADAPTION = 255;

    explicit CSet(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's sub-code.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    /// Name for the log. A value without a name asserts and reads "invalid".
    static std::string SensorAdaptionToString(std::uint32_t Adaption);

    std::uint8_t m_Set = 255;
    std::uint8_t m_RPMFactor = 255;
    std::uint32_t m_SensorAdaption = UNKNOWN_ADAPTION;  ///< as sent: values without a name stay
};

}  // namespace Kestrel
