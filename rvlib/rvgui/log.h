#pragma once
// The publisher "GUI_toolkit" and its topics.
#include "platform/rvlog/log.h"

namespace Gui {

constexpr std::uint32_t ENVELOPE_TOPIC = 0x20000000;

extern CLogComponent* g_pLog;

}  // namespace Gui
