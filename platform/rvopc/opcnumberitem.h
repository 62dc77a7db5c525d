#pragma once
#include <optional>
#include <utility>

#include "platform/rvopc/opcitem.h"

/// What the items share by which the NC gives the module a number.
class COpcNumberItem : public COpcItem {
public:
    /// Reads the item. Nonzero for success; otherwise rValue is unchanged.
    int GetValueFromNC(double& rValue) const {
        const std::optional<COpcValue> Value = Read();
        const std::optional<double> Number = Value ? OpcValueToNumber(*Value) : std::nullopt;
        rValue = Number.value_or(rValue);
        return Number ? 1 : 0;
    }

protected:
    using COpcItem::COpcItem;
    ~COpcNumberItem() = default;

    /// Reports each number to OnNumber; an item that can't be read, or holds no number, to OnFailure.
    template <typename NumberHandler, typename FailureHandler>
    void SubscribeNumber(NumberHandler OnNumber, FailureHandler OnFailure) {
        Subscribe(
            [OnNumber = std::move(OnNumber), OnFailure = std::move(OnFailure)](const COpcValue* pValue) {
                const std::optional<double> Number = pValue ? OpcValueToNumber(*pValue) : std::nullopt;
                if (Number) {
                    OnNumber(*Number);
                } else {
                    OnFailure();
                }
            });
    }
};
