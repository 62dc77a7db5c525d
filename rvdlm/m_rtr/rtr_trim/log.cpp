#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace RtrTrim {

CLogComponent* g_pLog =
    CLogComponent::Register("rtr_Trim", {{"PbFlow", PB_FLOW}, {"PbMath", PB_MATH}, {"PbData", PB_DATA}});

}  // namespace RtrTrim
