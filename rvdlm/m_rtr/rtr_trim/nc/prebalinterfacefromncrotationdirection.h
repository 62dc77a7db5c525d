#pragma once
#include "contract/ncitems.h"
#include "platform/rvopc/opcnumberitem.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalrotationdirectioninterface.h"

/// The rotation direction that the NC sets.
class CPreBalInterfaceFromNcRotationDirection : public COpcNumberItem {
public:
    /// Deliberately not the key that the main window looks at when it decides whether to connect.
    static constexpr const char* KEY = NcItems::ROTATION_DIRECTION;

    /// Subscribes; pTarget gets each value.
    CPreBalInterfaceFromNcRotationDirection(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                                            CPreBalRotationDirectionInterface* pTarget)
        : COpcNumberItem(std::move(pGroup), std::move(Name), KEY) {
        SubscribeNumber([pTarget](double Value) { pTarget->OnValueFromNC(Value); },
                        [pTarget] { pTarget->OnValueFromNCRotationDirectionFailure(); });
    }
};
