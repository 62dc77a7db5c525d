#include "platform/rvopc/prebalinterfacetonc.h"

#include <utility>

CPreBalInterfaceToNC::CPreBalInterfaceToNC(std::shared_ptr<COPCGroup> pGroup, std::string Name)
    : COpcItem(std::move(pGroup), std::move(Name), ms_pKey) {}

int CPreBalInterfaceToNC::SetNCData(const std::vector<std::int32_t>& rData) {
    return rData.size() == eNumberOfValues ? Write(rData) : 0;
}
