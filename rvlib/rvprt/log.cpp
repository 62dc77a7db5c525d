#include "rvlib/rvprt/log.h"

namespace Protocols {

CLogComponent* g_pLog = CLogComponent::Register("Protocols", {{"Envelope", ENVELOPE_TOPIC},
                                                              {"Timer", TIMER_TOPIC},
                                                              {"Protocol", PROTOCOL_TOPIC},
                                                              {"ProtocolDetail", PROTOCOL_DETAIL_TOPIC},
                                                              {"ProtocolData", PROTOCOL_DATA_TOPIC}});

}  // namespace Protocols
