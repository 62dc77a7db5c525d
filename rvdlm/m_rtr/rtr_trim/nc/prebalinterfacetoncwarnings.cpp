#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetoncwarnings.h"

#include <utility>

CPreBalInterfaceToNCWarnings::CPreBalInterfaceToNCWarnings(std::shared_ptr<COPCGroup> pGroup,
                                                           std::string Name)
    : COpcItem(std::move(pGroup), std::move(Name), KEY) {}

int CPreBalInterfaceToNCWarnings::SetWarningMode(std::uint32_t Mode) {
    return Write(static_cast<std::int32_t>(Mode));
}
