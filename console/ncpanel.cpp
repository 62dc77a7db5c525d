#include "console/ncpanel.h"

#include <algorithm>
#include <utility>

#include "contract/ncitems.h"
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"
#include "platform/system/eventloop.h"

namespace {

constexpr const char* SERVER = "console";
/// Items that no NC asked for stay in this process.
constexpr const char* LOCAL_NOTIFICATION = "notification";
constexpr const char* LOCAL_WARNING = "warning";

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
class CNcPanel::CServer : public IFOpcServer {
public:
    CServer(CNcPanel& rPanel, std::string NotificationItem, std::string WarningItem)
        : m_pPanel(&rPanel),
          m_NotificationItem(std::move(NotificationItem)),
          m_WarningItem(std::move(WarningItem)) {}

    /// Null: everything stays in this process.
    void SetNetwork(std::shared_ptr<IFOpcServer> pNetwork) { m_pNetwork = std::move(pNetwork); }
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
        return FindCarrier(rItem).Subscribe(rItem, UpdateRate, std::move(Handler));
    }

private:
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

void CNcPanel::TakeNotification(const std::vector<std::int32_t>& rValues) {
    CNcNotification Notification;
    if (rValues.size() != CNcNotification::eSize) {
        return;
    }
    std::ranges::copy(rValues, Notification.m_Values.begin());
    Later([this, Notification] { m_Notification = Notification; });
}

void CNcPanel::TakeWarning(std::int32_t Warning) {
    Later([this, Warning] { m_Warning = static_cast<std::uint32_t>(Warning); });
}

void CNcPanel::Later(std::function<void()> Take) {
    IFEventLoop::Current().Post(m_Lifetime.Guard([this, Take = std::move(Take)] {
        Take();
        if (OnChanged) {
            OnChanged();
        }
    }));
}
