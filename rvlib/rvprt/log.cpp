#include "rvlib/rvprt/log.h"

namespace Protocols {

CLogComponent* g_pLog = CLogComponent::Register("Protocols", {{"Envelope", eEnvelopeTopic},
                                                              {"Timer", eTimerTopic},
                                                              {"Protocol", eProtocolTopic},
                                                              {"ProtocolDetail", eProtocolDetailTopic},
                                                              {"ProtocolData", eProtocolDataTopic}});

}  // namespace Protocols
