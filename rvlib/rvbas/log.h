#pragma once
// The publisher "CorvaneBase" of the foundation and its topics.
#include "platform/rvlog/log.h"

namespace Base {

constexpr std::uint32_t TIMER_TOPIC = 0x10000000;
constexpr std::uint32_t PROTOCOL_DETAIL_TOPIC = 0x100000;
constexpr std::uint32_t REF_COUNT_TOPIC = 0x10000;

extern CLogComponent* g_pLog;

}  // namespace Base
