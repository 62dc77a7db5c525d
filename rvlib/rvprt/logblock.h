#pragma once
#include <cstdint>
#include <source_location>
#include <span>

#include "rvlib/rvprt/log.h"

namespace Protocols {

/// A group of lines under a heading, for as long as it lives. Writes nothing while its topic is off.
class CLogBlock {
public:
    /// A message's fields, headed by its class's name, on the topic "ProtocolDetail".
    explicit CLogBlock(const char* pClassName, std::source_location Where = std::source_location::current())
        : CLogBlock(eProtocolDetailTopic, "ProtocolDetail", pClassName, Where) {}
    CLogBlock(std::uint32_t Mask, const char* pTopic, const char* pHeading,
              std::source_location Where = std::source_location::current())
        : m_Mask(Mask), m_bOpen(g_pLog != nullptr && (g_pLog->GetLevel() & Mask) != 0) {
        if (m_bOpen) {
            g_pLog->LogStartBlock(Where.file_name(), static_cast<int>(Where.line()), Where.function_name(),
                                  Mask, pTopic, pHeading);
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
#define RV_PROTOCOL(...) RV_LOG(Protocols::g_pLog, Protocols::eProtocolTopic, "Protocol", __VA_ARGS__)
#define RV_PROTOCOL_DETAIL(...) \
    RV_LOG(Protocols::g_pLog, Protocols::eProtocolDetailTopic, "ProtocolDetail", __VA_ARGS__)
