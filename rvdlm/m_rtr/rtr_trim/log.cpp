#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace RtrTrim {

CLogComponent* g_pLog =
    CLogComponent::Register("rtr_Trim", {{"PbFlow", ePbFlow}, {"PbMath", ePbMath}, {"PbData", ePbData}});

}  // namespace RtrTrim
