#pragma once
#include "platform/rvopc/opcnumberitem.h"
#include "platform/rvopc/prebaltargetunbalanceinterface.h"

/// The target unbalance that the NC sets.
class CPreBalInterfaceFromNcTargetUnbalance : public COpcNumberItem {
public:
    static constexpr const char* ms_pKey = "PreBalInterfaceFromNCTargetUnbalance";

    /// Subscribes; pTarget gets each value.
    CPreBalInterfaceFromNcTargetUnbalance(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                                          CPreBalTargetUnbalanceInterface* pTarget)
        : COpcNumberItem(std::move(pGroup), std::move(Name), ms_pKey) {
        SubscribeNumber([pTarget](double Value) { pTarget->OnValueFromNC(Value); },
                        [pTarget] { pTarget->OnValueFromNCTargetUnbalanceFailure(); });
    }
};
