#include "rvlib/rvbas/log.h"

namespace Base {

CLogComponent* g_pLog = CLogComponent::Register(
    "CorvaneBase",
    {{"Timer", eTimerTopic}, {"ProtocolDetail", eProtocolDetailTopic}, {"RefCount", eRefCountTopic}});

}  // namespace Base
