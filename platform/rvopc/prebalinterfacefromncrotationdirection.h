#pragma once
#include "platform/rvopc/opcnumberitem.h"
#include "platform/rvopc/prebalrotationdirectioninterface.h"

/// The rotation direction that the NC sets.
class CPreBalInterfaceFromNcRotationDirection : public COpcNumberItem {
public:
    /// With "Nc": deliberately not the key with "NC" that the main window looks at when it decides whether to
    /// connect. A link item configured for the one doesn't serve for the other.
    static constexpr const char* ms_pKey = "PreBalInterfaceFromNcRotationDirection";

    /// Subscribes; pTarget gets each value.
    CPreBalInterfaceFromNcRotationDirection(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                                            CPreBalRotationDirectionInterface* pTarget)
        : COpcNumberItem(std::move(pGroup), std::move(Name), ms_pKey) {
        SubscribeNumber([pTarget](double Value) { pTarget->OnValueFromNC(Value); },
                        [pTarget] { pTarget->OnValueFromNCRotationDirectionFailure(); });
    }
};
