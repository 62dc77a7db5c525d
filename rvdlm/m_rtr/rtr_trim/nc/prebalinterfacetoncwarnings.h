#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "contract/ncitems.h"
#include "platform/rvopc/opcitem.h"

/// The warning item: the number of the warning shown, 0 for none.
class CPreBalInterfaceToNCWarnings : public COpcItem {
public:
    static constexpr const char* KEY = NcItems::WARNING;

    CPreBalInterfaceToNCWarnings(std::shared_ptr<COPCGroup> pGroup, std::string Name);

    /// Nonzero for success.
    int SetWarningMode(std::uint32_t Mode);
};
