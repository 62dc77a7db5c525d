#include "rvlib/rvprt/logblock.h"

#include <string>

namespace Protocols {

void LogFrame(const char* pHeading, std::span<const std::uint8_t> Frame) {
    const CLogBlock Block(PROTOCOL_DATA_TOPIC, "ProtocolData", pHeading);
    if (!Block) {
        return;
    }
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string Bytes;
    Bytes.reserve(3 * Frame.size());
    for (const std::uint8_t Byte : Frame) {
        if (!Bytes.empty()) {
            Bytes += ' ';
        }
        Bytes += DIGITS[Byte >> 4U];
        Bytes += DIGITS[Byte & 0x0FU];
    }
    RV_LOG(g_pLog, PROTOCOL_DATA_TOPIC, "ProtocolData", "%s", Bytes.c_str());
}

}  // namespace Protocols
