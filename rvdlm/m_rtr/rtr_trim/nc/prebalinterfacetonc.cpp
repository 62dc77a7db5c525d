#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetonc.h"

#include <utility>

#include "contract/ncnotification.h"

CPreBalInterfaceToNC::CPreBalInterfaceToNC(std::shared_ptr<COPCGroup> pGroup, std::string Name)
    : COpcItem(std::move(pGroup), std::move(Name), KEY) {}

int CPreBalInterfaceToNC::SetNCData(const std::vector<std::int32_t>& rData) {
    return rData.size() == CNcNotification::SIZE ? Write(rData) : 0;
}
