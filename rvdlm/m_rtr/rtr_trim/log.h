#pragma once
// The publisher "rtr_Trim" and its topics.
#include "platform/rvlog/log.h"

namespace RtrTrim {

constexpr std::uint32_t PB_FLOW = 8;
constexpr std::uint32_t PB_MATH = 4096;
constexpr std::uint32_t PB_DATA = 0x20000;

/// Null until the static initialisers have run.
extern CLogComponent* g_pLog;

}  // namespace RtrTrim

#define PB_FLOW(...) RV_LOG(RtrTrim::g_pLog, RtrTrim::PB_FLOW, "PbFlow", __VA_ARGS__)
#define PB_MATH(...) RV_LOG(RtrTrim::g_pLog, RtrTrim::PB_MATH, "PbMath", __VA_ARGS__)
