#pragma once
#include <optional>

#include "platform/rvmdb/typebase.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"

namespace DirectionItem {

/// One of the two senses of turning, from a number; nothing for any other.
inline std::optional<PreBalDB::CTypeBase::Direction> FromNumber(double Value) {
    for (const auto Direction : {PreBalDB::CTypeBase::eClockwise, PreBalDB::CTypeBase::eCounterClockwise}) {
        if (Value == static_cast<double>(Direction)) {
            return Direction;
        }
    }
    return std::nullopt;
}

/// Shows a stored direction. One that is none is asserted, and the item stays as it was.
inline void Show(PropTree::CPropTreeItemCombo& rItem, PreBalDB::CTypeBase::Direction Stored) {
    if (FromNumber(Stored)) {
        rItem.SetItemValue(Stored);
    } else {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    }
}

/// What the item says.
inline PreBalDB::CTypeBase::Direction Get(const PropTree::CPropTreeItemCombo& rItem) {
    return static_cast<PreBalDB::CTypeBase::Direction>(rItem.GetItemValue());
}

}  // namespace DirectionItem
