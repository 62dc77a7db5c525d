#include "platform/rvmdb/log.h"

namespace PreBalDB {

CLogComponent* g_pLog = CLogComponent::Register("rvMDB", {});

}  // namespace PreBalDB
