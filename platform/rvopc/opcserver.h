#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/rvopc/opcvalue.h"

/// A server of named items: the seam between the item classes and what carries their values. An
/// implementation may lie in this process or speak to a server elsewhere. Window thread only.
class IFOpcServer {
public:
    /// Called through the event loop, never from inside Write or Subscribe. Null: the item could not be read.
    using ChangeHandler = std::function<void(const COpcValue* pValue)>;
    /// Called through the event loop when a value that Write had taken did not reach the server.
    using FailureHandler = std::function<void()>;

    virtual ~IFOpcServer() = default;

    /// True if the value was taken; a server elsewhere may still refuse it, which OnFailure tells then. Never
    /// waits.
    virtual bool Write(const std::string& rItem, const COpcValue& rValue,
                       FailureHandler OnFailure = nullptr) = 0;
    /// Nothing if the item has no value or can't be read. The one call that may wait, with a time limit.
    virtual std::optional<COpcValue> Read(const std::string& rItem) = 0;
    /// Reports the item's present value, if it has one, and each change of it, whoever wrote it, at most once
    /// in UpdateRate ms if the server gathers changes. Ends when the result goes; nothing is called
    /// afterwards.
    [[nodiscard]] virtual std::shared_ptr<void> Subscribe(const std::string& rItem, std::uint32_t UpdateRate,
                                                          ChangeHandler Handler) = 0;
};
