#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/rvopc/opcserver.h"

/// A server of named items in this process: for the console's own NC panel, for automatic runs and for tests.
/// Items come into being when they are written. Changes are not gathered: each one is reported.
class CInProcessOpcServer : public IFOpcServer {
public:
    /// The process's server of that name, made when new. Lives as long as the process.
    static const std::shared_ptr<CInProcessOpcServer>& Find(const std::string& rName);

    /// Takes effect at once, so OnFailure is never called.
    bool Write(const std::string& rItem, const COpcValue& rValue,
               FailureHandler OnFailure = nullptr) override;
    std::optional<COpcValue> Read(const std::string& rItem) override;
    [[nodiscard]] std::shared_ptr<void> Subscribe(const std::string& rItem, std::uint32_t UpdateRate,
                                                  ChangeHandler Handler) override;

    /// Puts an item out of order or back in order: reading and writing it fails, and its subscribers are
    /// told.
    void SetFailing(const std::string& rItem, bool bFailing);
    /// Forgets all values and faults; subscriptions stay.
    void Reset();
    std::size_t GetSubscriptionCount() const;

private:
    struct CSubscription {
        std::string m_Item;
        ChangeHandler m_Handler;
    };

    /// Reports a value, or with nothing a failure, to the item's subscribers through the event loop.
    void Report(const std::string& rItem, const std::optional<COpcValue>& rValue);
    static void PostTo(const std::weak_ptr<CSubscription>& rSubscription, std::optional<COpcValue> Value);

    std::map<std::string, COpcValue> m_Values;
    std::set<std::string> m_Failing;
    std::vector<std::weak_ptr<CSubscription>> m_Subscriptions;
};
