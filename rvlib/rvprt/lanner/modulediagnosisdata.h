#pragma once
#include <cstdint>
#include <string>

#include "rvlib/rvprt/message.h"

namespace Lanner {

/// The module's health. The system only logs it.
class CModuleDiagnosisData : public Comm::CMessage {
public:
    /// Bytes before the text.
    static constexpr std::uint32_t SIZE = 16;

    explicit CModuleDiagnosisData(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's sub-code. The text ends with a zero byte or with the data.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    std::uint8_t CurrentTemperature = 0;
    std::uint8_t MaxTemperature = 0;
    std::uint32_t ReservedDiagFlag0 = 0;  ///< named by their bits
    std::uint32_t ReservedDiagFlag3 = 0;
    std::uint8_t ReservedDiagValue4 = 0;  ///< bits 4 and 5
    std::uint32_t ReservedDiagFlag6 = 0;
    std::uint32_t ReservedDiagFlag7 = 0;
    std::uint8_t DiagByte4 = 0;
    std::uint16_t PICVersion = 0;
    std::uint16_t SignalCount = 0;
    std::uint16_t CurrentProfibusCommunicationClock = 0;
    std::uint16_t DiagWord4 = 0;
    std::uint16_t DiagWord5 = 0;
    std::uint16_t DiagWord6 = 0;
    std::string DiagText;
};

}  // namespace Lanner
