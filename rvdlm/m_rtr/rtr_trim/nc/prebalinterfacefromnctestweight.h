#pragma once
#include "contract/ncitems.h"
#include "platform/rvopc/opcnumberitem.h"

/// The test weight in grams that the NC asks for; read once when it is needed.
class CPreBalInterfaceFromNcTestWeight : public COpcNumberItem {
public:
    static constexpr const char* KEY = NcItems::TEST_WEIGHT;

    CPreBalInterfaceFromNcTestWeight(std::shared_ptr<COPCGroup> pGroup, std::string Name)
        : COpcNumberItem(std::move(pGroup), std::move(Name), KEY) {}
};
