#pragma once
#include <cstdint>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// Inputs and data rates of the module's two planes: those in force, or limits or defaults.
class CBalConfiguration : public Comm::CMessage {
public:
    static constexpr std::uint32_t SIZE = 14;

    explicit CBalConfiguration(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's sub-code. With Swap not 0 the rates of the frame's first plane go to
    /// plane 2 and those of its second to plane 1; the inputs stay.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed, std::uint32_t Swap);
    void Log() const;

    static const char* InputToString(std::uint32_t Input);

    std::uint32_t Plane1Input = 0;  ///< 0 PNP, 1 NPN
    std::uint32_t Plane2Input = 0;
    std::uint32_t RPMLimitLocked = 0;
    std::uint16_t RPMLimit = 0xFF;  ///< rpm
    std::uint8_t Plane1MaxRPMDataRate = 0xFF;
    std::uint8_t Plane1MaxUnbalanceAmplitudeDatarate = 0xFF;
    std::uint8_t Plane1MaxXYDatarate = 0xFF;
    std::uint8_t Plane1ConfigurationXY = 0xFF;
    std::uint8_t Plane2MaxRPMDataRate = 0xFF;
    std::uint8_t Plane2MaxUnbalanceAmplitudeDatarate = 0xFF;
    std::uint8_t Plane2MaxXYDatarate = 0xFF;
    std::uint8_t Plane2ConfigurationXY = 0xFF;
    std::uint8_t MaxDiagnosisDatrate = 0xFF;
    std::uint8_t ConfigurationDiagnosis = 0xFF;
};

}  // namespace Lanner
