#pragma once
#include <cstdint>
#include <span>

#include "rvlib/rvprt/log.h"

namespace Protocols {

/// A group of lines under a heading, for as long as it lives. Writes nothing while its topic is off.
class CLogBlock {
public:
    /// A message's fields, headed by its class's name, on the topic "ProtocolDetail". The place is the
    /// caller's; std::source_location, which says the same, is missing in clang 14, and the fuzz targets and
    /// clang-tidy need that compiler.
    explicit CLogBlock(const char* pClassName, const char* pFile = __builtin_FILE(),
                       int Line = __builtin_LINE(), const char* pFunction = __builtin_FUNCTION())
        : CLogBlock(PROTOCOL_DETAIL_TOPIC, "ProtocolDetail", pClassName, pFile, Line, pFunction) {}
    CLogBlock(std::uint32_t Mask, const char* pTopic, const char* pHeading,
              const char* pFile = __builtin_FILE(), int Line = __builtin_LINE(),
              const char* pFunction = __builtin_FUNCTION())
        : m_Mask(Mask), m_bOpen(g_pLog != nullptr && (g_pLog->GetLevel() & Mask) != 0) {
        if (m_bOpen) {
            g_pLog->LogStartBlock(pFile, Line, pFunction, Mask, pTopic, pHeading);
        }
    }
    ~CLogBlock() {
        if (m_bOpen) {
            g_pLog->LogEndBlock(m_Mask);
        }
    }
    CLogBlock(const CLogBlock&) = delete;
    CLogBlock& operator=(const CLogBlock&) = delete;

    explicit operator bool() const { return m_bOpen; }

private:
    std::uint32_t m_Mask;
    bool m_bOpen;
};

/// Writes a frame's bytes under a heading to the topic "ProtocolData".
void LogFrame(const char* pHeading, std::span<const std::uint8_t> Frame);

}  // namespace Protocols

/// Lines of the topics "Protocol" (frames sent and taken) and "ProtocolDetail" (what the machines do with
/// them).
#define RV_PROTOCOL(...) RV_LOG(Protocols::g_pLog, Protocols::PROTOCOL_TOPIC, "Protocol", __VA_ARGS__)
#define RV_PROTOCOL_DETAIL(...) \
    RV_LOG(Protocols::g_pLog, Protocols::PROTOCOL_DETAIL_TOPIC, "ProtocolDetail", __VA_ARGS__)
