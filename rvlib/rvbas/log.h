#pragma once
// The publisher "CorvaneBase" of the foundation and its topics.
#include "platform/rvlog/log.h"

namespace Base {

constexpr std::uint32_t eTimerTopic = 0x10000000;
constexpr std::uint32_t eProtocolDetailTopic = 0x100000;
constexpr std::uint32_t eRefCountTopic = 0x10000;

extern CLogComponent* g_pLog;

}  // namespace Base
