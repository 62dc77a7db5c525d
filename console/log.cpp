#include "console/log.h"

namespace Console {

CLogComponent* g_pLog = CLogComponent::Register("Console", {});

}  // namespace Console
