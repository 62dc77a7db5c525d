#pragma once
#include "contract/ncitems.h"
#include "platform/rvopc/opcnumberitem.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebaltargetunbalanceinterface.h"

/// The target unbalance that the NC sets.
class CPreBalInterfaceFromNcTargetUnbalance : public COpcNumberItem {
public:
    static constexpr const char* KEY = NcItems::TARGET_UNBALANCE;

    /// Subscribes; pTarget gets each value.
    CPreBalInterfaceFromNcTargetUnbalance(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                                          CPreBalTargetUnbalanceInterface* pTarget)
        : COpcNumberItem(std::move(pGroup), std::move(Name), KEY) {
        SubscribeNumber([pTarget](double Value) { pTarget->OnValueFromNC(Value); },
                        [pTarget] { pTarget->OnValueFromNCTargetUnbalanceFailure(); });
    }
};
