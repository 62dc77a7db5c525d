#include "console/ncpanel.h"

#include <algorithm>
#include <utility>

#include "contract/ncitems.h"
#include "contract/ncrequests.h"
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/networkopcserver.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"
#include "platform/system/eventloop.h"

namespace {

constexpr const char* SERVER = "console";
/// Items that no NC asked for stay in this process.
constexpr const char* LOCAL_NOTIFICATION = "notification";
constexpr const char* LOCAL_WARNING = "warning";
/// The module's own, ms: items of one rate are told together, in their order.
constexpr std::uint32_t ROTOR_NAME_RATE = 100;

/// The item linked to a key; linked to the local one when there was none.
std::string LinkedItem(const char* pKey, const char* pLocal) {
    COpcDatabase* const pDatabase = COpcDatabase::GetInstance();
    if (pDatabase->GetOpcLinkItem(pKey).empty()) {
        pDatabase->SetOpcLinkItem(pKey, pLocal);
    }
    return pDatabase->GetOpcLinkItem(pKey);
}

}  // namespace

/// Stands between the module's items and the server that carries them, and listens to what is written.
class CNcPanel::CServer : public IFOpcServer, public std::enable_shared_from_this<CNcPanel::CServer> {
public:
    CServer(CNcPanel& rPanel, std::string NotificationItem, std::string WarningItem)
        : m_pPanel(&rPanel),
          m_NotificationItem(std::move(NotificationItem)),
          m_WarningItem(std::move(WarningItem)) {}

    /// Null: everything stays in this process. Before the module's items are made, so that a name that came
    /// together with a request is heard first.
    void SetNetwork(std::shared_ptr<IFOpcServer> pNetwork) {
        m_pNetwork = std::move(pNetwork);
        const std::string Item = COpcDatabase::GetInstance()->GetOpcLinkItem(NcItems::ROTOR_NAME);
        if (!Item.empty()) {
            m_pRotorName = m_pNetwork->Subscribe(Item, ROTOR_NAME_RATE, [this](const COpcValue* pValue) {
                if (m_pPanel != nullptr && pValue != nullptr) {
                    m_pPanel->TakeRotorName(*pValue);
                }
            });
        }
    }
    /// The panel goes; items of the module may live on for a moment.
    void Forget() { m_pPanel = nullptr; }

    bool Write(const std::string& rItem, const COpcValue& rValue, FailureHandler OnFailure) override {
        Listen(rItem, rValue);
        return FindCarrier(rItem).Write(rItem, rValue, std::move(OnFailure));
    }
    std::optional<COpcValue> Read(const std::string& rItem) override {
        return FindCarrier(rItem).Read(rItem);
    }
    std::shared_ptr<void> Subscribe(const std::string& rItem, std::uint32_t UpdateRate,
                                    ChangeHandler Handler) override {
        if (rItem != COpcDatabase::GetInstance()->GetOpcLinkItem(NcItems::REQUEST)) {
            return FindCarrier(rItem).Subscribe(rItem, UpdateRate, std::move(Handler));
        }
        const std::weak_ptr<CServer> pSelf = weak_from_this();
        return FindCarrier(rItem).Subscribe(
            rItem, UpdateRate, [pSelf, Handler = std::move(Handler)](const COpcValue* pValue) {
                const std::shared_ptr<CServer> pServer = pSelf.lock();
                const std::optional<double> Request =
                    pValue == nullptr ? std::nullopt : OpcValueToNumber(*pValue);
                // The answers stand in the same item.
                if (pServer != nullptr && pServer->m_pPanel != nullptr && Request &&
                    *Request > static_cast<double>(NcRequests::eDone)) {
                    ++pServer->m_pPanel->m_nRequests;
                }
                Handler(pValue);
            });
    }
    State GetState() const {
        if (m_pNetwork == nullptr) {
            return State::eNone;
        }
        const CNetworkOpcServer* const pServer = GetNetwork();
        return pServer == nullptr || pServer->IsConnected() ? State::eConnected
               : pServer->IsLost()                          ? State::eLost
                                                            : State::eConnecting;
    }
    std::string GetTrouble() const {
        const CNetworkOpcServer* const pServer = GetNetwork();
        return pServer == nullptr ? std::string() : pServer->GetTrouble();
    }

private:
    const CNetworkOpcServer* GetNetwork() const {
        return dynamic_cast<const CNetworkOpcServer*>(m_pNetwork.get());
    }
    void Listen(const std::string& rItem, const COpcValue& rValue) {
        if (m_pPanel == nullptr) {
            return;
        }
        const auto* pNumbers = std::get_if<std::vector<std::int32_t>>(&rValue);
        const auto* pNumber = std::get_if<std::int32_t>(&rValue);
        if (rItem == m_NotificationItem && pNumbers != nullptr) {
            m_pPanel->TakeNotification(*pNumbers);
        } else if (rItem == m_WarningItem && pNumber != nullptr) {
            m_pPanel->TakeWarning(*pNumber);
        }
    }
    IFOpcServer& FindCarrier(const std::string& rItem) {
        const bool bLocal = m_pNetwork == nullptr || rItem == LOCAL_NOTIFICATION || rItem == LOCAL_WARNING;
        return bLocal ? *CInProcessOpcServer::Find(SERVER) : *m_pNetwork;
    }

    CNcPanel* m_pPanel;
    std::string m_NotificationItem;
    std::string m_WarningItem;
    std::shared_ptr<IFOpcServer> m_pNetwork;
    std::shared_ptr<void> m_pRotorName;  ///< subscription; nothing is called after it
};

CNcPanel::CNcPanel(const std::optional<COpcSetup>& rSetup) {
    COpcDatabase* const pDatabase = COpcDatabase::GetInstance();
    pDatabase->SetSelectedOpcServer(rSetup ? rSetup->m_Configuration.m_Server : SERVER);
    if (rSetup) {
        for (const auto& [rKey, rItem] : rSetup->m_Configuration.m_LinkItems) {
            pDatabase->SetOpcLinkItem(rKey, rItem);
        }
    }
    m_pServer = std::make_shared<CServer>(*this, LinkedItem(NcItems::NOTIFICATION, LOCAL_NOTIFICATION),
                                          LinkedItem(NcItems::WARNING, LOCAL_WARNING));
    COPCConnection::CreateInstance()->SetConnector(
        [pServer = m_pServer, rSetup](const std::string& rServer, int Flag) {
            if (rSetup) {
                pServer->SetNetwork(MakeNetworkConnector(rSetup->m_Configuration, rSetup->m_PkiDirectory,
                                                         rSetup->m_GatewayProgram)(rServer, Flag));
            }
            return pServer;
        });
}

CNcPanel::~CNcPanel() {
    m_Lifetime.End();
    m_pServer->Forget();
    COPCConnection::CreateInstance()->Disconnect();
    COPCConnection::CreateInstance()->SetConnector(nullptr);
    COpcDatabase::GetInstance()->Clear();
    CInProcessOpcServer::Find(SERVER)->Reset();
}

CNcPanel::State CNcPanel::GetState() const {
    return m_pServer->GetState();
}

std::string CNcPanel::GetTrouble() const {
    return m_pServer->GetTrouble();
}

void CNcPanel::TakeNotification(const std::vector<std::int32_t>& rValues) {
    CNcNotification Notification;
    if (rValues.size() != CNcNotification::SIZE) {
        return;
    }
    std::ranges::copy(rValues, Notification.m_Values.begin());
    Later([this, Notification] { m_Notification = Notification; });
}

void CNcPanel::TakeWarning(std::int32_t Warning) {
    Later([this, Warning] { m_Warning = static_cast<std::uint32_t>(Warning); });
}

void CNcPanel::TakeRotorName(const COpcValue& rValue) {
    const auto* const pName = std::get_if<std::string>(&rValue);
    const auto* const pNumber = std::get_if<std::int32_t>(&rValue);
    if (pName == nullptr && pNumber == nullptr) {
        return;
    }
    const std::string Name = pName != nullptr ? *pName : std::to_string(*pNumber);
    // An item that nobody has written yet says nothing against a name that was given here.
    if (Name.empty() && !m_bRotorNamed) {
        return;
    }
    m_bRotorNamed = true;
    if (OnRotorName) {
        OnRotorName(Name);
    }
}

void CNcPanel::Later(std::function<void()> Take) {
    IFEventLoop::Current().Post(m_Lifetime.Guard([this, Take = std::move(Take)] {
        Take();
        if (OnChanged) {
            OnChanged();
        }
    }));
}
