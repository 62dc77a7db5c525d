#include "rvlib/rvbas/log.h"

namespace Base {

CLogComponent* g_pLog = CLogComponent::Register(
    "CorvaneBase",
    {{"Timer", TIMER_TOPIC}, {"ProtocolDetail", PROTOCOL_DETAIL_TOPIC}, {"RefCount", REF_COUNT_TOPIC}});

}  // namespace Base
