#include "platform/rvopc/inprocessopcserver.h"

#include <algorithm>
#include <utility>

#include "platform/system/eventloop.h"

const std::shared_ptr<CInProcessOpcServer>& CInProcessOpcServer::Find(const std::string& rName) {
    static std::map<std::string, std::shared_ptr<CInProcessOpcServer>> s_Servers;
    std::shared_ptr<CInProcessOpcServer>& rpServer = s_Servers[rName];
    if (rpServer == nullptr) {
        rpServer = std::make_shared<CInProcessOpcServer>();
    }
    return rpServer;
}

bool CInProcessOpcServer::Write(const std::string& rItem, const COpcValue& rValue,
                                FailureHandler /*OnFailure*/) {
    if (m_Failing.contains(rItem)) {
        return false;
    }
    const auto [Position, bNew] = m_Values.try_emplace(rItem, rValue);
    // Writing what the item holds already is no change, as with any OPC server.
    if (bNew || Position->second != rValue) {
        Position->second = rValue;
        Report(rItem, rValue);
    }
    return true;
}

std::optional<COpcValue> CInProcessOpcServer::Read(const std::string& rItem) {
    const auto Position = m_Values.find(rItem);
    if (Position == m_Values.end() || m_Failing.contains(rItem)) {
        return std::nullopt;
    }
    return Position->second;
}

std::shared_ptr<void> CInProcessOpcServer::Subscribe(const std::string& rItem, std::uint32_t /*UpdateRate*/,
                                                     ChangeHandler Handler) {
    std::erase_if(m_Subscriptions, [](const auto& rSubscription) { return rSubscription.expired(); });
    auto pSubscription = std::make_shared<CSubscription>(CSubscription{rItem, std::move(Handler)});
    m_Subscriptions.push_back(pSubscription);
    if (std::optional<COpcValue> Present = Read(rItem)) {
        PostTo(pSubscription, std::move(Present));
    }
    return pSubscription;
}

void CInProcessOpcServer::SetFailing(const std::string& rItem, bool bFailing) {
    if (bFailing && m_Failing.insert(rItem).second) {
        Report(rItem, std::nullopt);
    } else if (!bFailing) {
        m_Failing.erase(rItem);
    }
}

void CInProcessOpcServer::Reset() {
    m_Values.clear();
    m_Failing.clear();
}

std::size_t CInProcessOpcServer::GetSubscriptionCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        m_Subscriptions, [](const auto& rSubscription) { return !rSubscription.expired(); }));
}

void CInProcessOpcServer::Report(const std::string& rItem, const std::optional<COpcValue>& rValue) {
    for (const std::weak_ptr<CSubscription>& rSubscription : m_Subscriptions) {
        const std::shared_ptr<CSubscription> pSubscription = rSubscription.lock();
        if (pSubscription != nullptr && pSubscription->m_Item == rItem) {
            PostTo(rSubscription, rValue);
        }
    }
}

void CInProcessOpcServer::PostTo(const std::weak_ptr<CSubscription>& rSubscription,
                                 std::optional<COpcValue> Value) {
    IFEventLoop::Current().Post([rSubscription, Value = std::move(Value)] {
        // Held during the call: a handler may end its own subscription.
        if (const std::shared_ptr<CSubscription> pSubscription = rSubscription.lock()) {
            pSubscription->m_Handler(Value ? &*Value : nullptr);
        }
    });
}
