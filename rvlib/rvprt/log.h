#pragma once
// The publisher "Protocols" and its topics.
#include "platform/rvlog/log.h"

namespace Protocols {

constexpr std::uint32_t eEnvelopeTopic = 0x20000000;
constexpr std::uint32_t eTimerTopic = 0x1000000;
constexpr std::uint32_t eProtocolTopic = 4096;
constexpr std::uint32_t eProtocolDetailTopic = 0x10000;
constexpr std::uint32_t eProtocolDataTopic = 0x100000;

extern CLogComponent* g_pLog;

}  // namespace Protocols
