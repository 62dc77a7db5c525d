#pragma once
// The publisher "rvMDB" of the machine database.
#include "platform/rvlog/log.h"

namespace PreBalDB {

extern CLogComponent* g_pLog;

}  // namespace PreBalDB
