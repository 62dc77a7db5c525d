#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "contract/ncitems.h"
#include "platform/rvopc/opcitem.h"

/// The notification item: 14 numbers to the NC.
class CPreBalInterfaceToNC : public COpcItem {
public:
    static constexpr const char* KEY = NcItems::NOTIFICATION;

    CPreBalInterfaceToNC(std::shared_ptr<COPCGroup> pGroup, std::string Name);

    /// Writes all 14 values. Nonzero for success; another number of values isn't written.
    int SetNCData(const std::vector<std::int32_t>& rData);
};
