#pragma once
#include <cstdint>
#include <string>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// The block of a set that concerns both planes.
class CSetParams : public Comm::CMessage {
public:
    /// Type of the block.
    static constexpr std::uint8_t TYPE = 1;
    /// Mode or scaling that the module shouldn't send.
    static constexpr std::uint8_t UNDEFINED = 255;

    enum SetMode : std::uint8_t {
        eNothing = 0,
        ePlane1 = 1,
        ePlane2 = 2,
        eBothIndependent = 3,
        eTwoPlane = 4,
        eUndefinedMode = UNDEFINED
    };

    explicit CSetParams(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins with the block's type. Takes the length that the block claims. A block that is none
    /// asserts; a name that overruns it fails without a word. In a failure the object stays as it was.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    static const char* AnalogOutputToString(std::uint8_t Output);
    static const char* ModeToString(std::uint8_t Mode);
    static const char* AnalogScalingToString(std::uint8_t Scaling);

    std::uint8_t AnalogOutput = 0;
    std::uint8_t Mode = eUndefinedMode;
    std::uint8_t AnalogScaling = UNDEFINED;
    std::string SetName;     ///< characters as sent
    std::uint32_t Swap = 0;  ///< whether the module's planes are exchanged
};

}  // namespace Lanner
