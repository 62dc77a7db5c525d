#pragma once
// The publisher "Protocols" and its topics.
#include "platform/rvlog/log.h"

namespace Protocols {

constexpr std::uint32_t ENVELOPE_TOPIC = 0x20000000;
constexpr std::uint32_t TIMER_TOPIC = 0x1000000;
constexpr std::uint32_t PROTOCOL_TOPIC = 4096;
constexpr std::uint32_t PROTOCOL_DETAIL_TOPIC = 0x10000;
constexpr std::uint32_t PROTOCOL_DATA_TOPIC = 0x100000;

extern CLogComponent* g_pLog;

}  // namespace Protocols
