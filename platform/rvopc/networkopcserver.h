#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/rvopc/opcconfiguration.h"
#include "platform/rvopc/opcgateway.h"
#include "platform/rvopc/opcserver.h"
#include "platform/system/lifetime.h"

/// An OPC UA server elsewhere, reached through a gateway. Items are node ids ("ns=2;s=Request").
///
/// Write never waits. Values are taken while the first connection is being made, and while there is a
/// connection; otherwise they are refused. A refused or failed write is not repeated for its own sake, but:
///
/// - An item that nobody subscribes to is an output. After a connection was made again it gets its last value
///   once more: who reads it there sees the present state, as if the connection had never been lost.
/// - An item that is subscribed to as well is shared with somebody there, who writes requests into it. When a
///   connection is made again, its value is told only if it differs from what was last told or written here:
///   only then is it news. If it is still the last value told, a write that got lost meanwhile is made again,
///   for somebody may be waiting for it; if it is news, that write is forgotten, so that it can't overwrite a
///   request.
/// - What was written to a shared item before the first connection came about replaces what the item holds,
///   which is not told: it was there before we were ready.
/// - When the last subscription of an item ends, what is known of the item is forgotten with it: nobody is
///   left here to answer a request, so none may be overwritten.
///
/// While a connection stands, every change is told in order, our own writes among them: when both sides write
/// at once, what matters is the order in which the server took it.
class CNetworkOpcServer : public IFOpcServer {
public:
    /// Longest that Read waits in all, ms.
    static constexpr std::uint32_t READ_TIMEOUT = 2000;

    /// Begins to connect. PkiDirectory holds the certificates.
    CNetworkOpcServer(std::unique_ptr<IFOpcGateway> pGateway, const COpcConfiguration& rConfiguration,
                      const std::string& rPkiDirectory);
    ~CNetworkOpcServer() override;
    CNetworkOpcServer(const CNetworkOpcServer&) = delete;
    CNetworkOpcServer& operator=(const CNetworkOpcServer&) = delete;

    bool Write(const std::string& rItem, const COpcValue& rValue,
               FailureHandler OnFailure = nullptr) override;
    /// Waits while the first connection is being made, and for the answer; without a connection it fails at
    /// once.
    std::optional<COpcValue> Read(const std::string& rItem) override;
    [[nodiscard]] std::shared_ptr<void> Subscribe(const std::string& rItem, std::uint32_t UpdateRate,
                                                  ChangeHandler Handler) override;
    bool IsConnected() const { return m_State == State::eConnected; }
    /// There was a connection, or a try to make one has failed; it is tried again.
    bool IsLost() const { return m_State == State::eLost; }
    /// Of what kind the trouble is that prevents a connection, by the gateway's word for it; empty while
    /// there is none, or nothing particular is known of it.
    const std::string& GetTrouble() const { return m_Trouble; }

private:
    enum class State { eConnecting, eConnected, eLost };
    using Id = std::uint32_t;

    /// What is known of an item.
    struct CItem {
        std::optional<COpcValue> m_Known;    ///< that the server holds: last told or written
        std::optional<COpcValue> m_Told;     ///< last told since the connection was made
        std::optional<COpcValue> m_Written;  ///< last value to be written
        bool m_bUnsent = false;              ///< m_Written has not reached the server
        std::uint32_t m_Order = 0;           ///< of m_Written among the items
        FailureHandler m_OnFailure;          ///< of m_Written, while the first connection is being made
        int m_nSubscriptions = 0;
    };
    struct CSubscription {
        Id m_Id = 0;
        std::string m_Item;
        std::uint32_t m_UpdateRate = 0;
        ChangeHandler m_Handler;
        bool m_bFresh = false;  ///< the connection is new: what comes next is a look, not a change
    };
    struct CPendingWrite {
        std::string m_Item;
        COpcValue m_Value;
        std::uint32_t m_Order = 0;  ///< of the write among all
        FailureHandler m_OnFailure;
    };

    void OnGatewayOpened();
    void OnLine(const std::string& rLine);
    void OnConnected();
    void OnLost(const std::string& rWhy, const std::string& rKind = {});
    void OnChanged(Id Subscription, std::optional<COpcValue> Value, const std::string& rError);
    void OnChecked(Id Check, const std::string& rError);
    void OnWritten(Id Write, const std::string& rError);
    void OnWriteFailed(CPendingWrite& rWrite);
    /// What the first look at a shared item after a new connection means; true if it is news.
    static bool IsNews(CItem& rItem, const COpcValue& rValue);
    void SendWrite(const std::string& rItem, CItem& rState, FailureHandler OnFailure);
    void SendSubscription(const CSubscription& rSubscription);
    void Unsubscribe(const CSubscription& rSubscription);
    static void Post(const std::weak_ptr<CSubscription>& rSubscription, std::optional<COpcValue> Value);
    static void PostFailure(FailureHandler OnFailure);

    std::unique_ptr<IFOpcGateway> m_pGateway;
    std::string m_ConnectLine;
    /// Values that some items will have to take in a run, which not each type can hold: checked at each
    /// connection, since in the run it would be too late.
    std::map<std::string, COpcValue> m_Exacting;
    std::map<Id, std::string> m_Checks;  ///< under way: item by id
    State m_State = State::eConnecting;
    Id m_LastId = 0;
    std::uint32_t m_nWrites = 0;
    std::map<std::string, CItem> m_Items;
    std::map<Id, std::weak_ptr<CSubscription>> m_Subscriptions;
    std::map<Id, CPendingWrite> m_Writes;
    /// Answer to the read under way; the inner one is empty if the item can't be read.
    std::optional<std::optional<COpcValue>> m_ReadAnswer;
    Id m_ReadId = 0;
    std::string m_LastReason;  ///< of the outage that lasts; told once
    std::string m_Trouble;
    /// Subscriptions may outlive the server.
    CLifetime m_Lifetime;
};
