#pragma once
#include <memory>
#include <optional>
#include <string>

#include "platform/rvopc/opcgroup.h"
#include "platform/rvopc/opcserver.h"

/// What the item classes share: one item of a group, found by its key among the link items.
class COpcItem {
public:
    COpcItem(const COpcItem&) = delete;
    COpcItem& operator=(const COpcItem&) = delete;
    /// Name that the owner gave, for the log.
    const std::string& GetName() const { return m_Name; }
    /// Called through the event loop when a write that had been taken did not reach the server after all.
    void SetFailureHandler(IFOpcServer::FailureHandler OnFailure);

protected:
    /// The group must not be null.
    COpcItem(std::shared_ptr<COPCGroup> pGroup, std::string Name, const char* pKey);
    ~COpcItem() = default;

    /// Nonzero for success.
    int Write(const COpcValue& rValue);
    std::optional<COpcValue> Read() const;
    /// The handler isn't called any more when this object has gone.
    void Subscribe(IFOpcServer::ChangeHandler Handler);

private:
    std::shared_ptr<COPCGroup> m_pGroup;
    std::string m_Name;
    std::string m_Item;
    std::shared_ptr<void> m_pSubscription;
    /// Writes under way may outlive the item.
    std::shared_ptr<IFOpcServer::FailureHandler> m_pOnFailure =
        std::make_shared<IFOpcServer::FailureHandler>();
};
