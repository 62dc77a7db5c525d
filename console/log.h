#pragma once
// The publisher "Console": the story of its runs.
#include "platform/rvlog/log.h"

namespace Console {

extern CLogComponent* g_pLog;

}  // namespace Console
