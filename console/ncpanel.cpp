#include "console/ncpanel.h"

#include <algorithm>

#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"
#include "platform/rvopc/prebalinterfacetonc.h"
#include "platform/rvopc/prebalinterfacetoncwarnings.h"

namespace {

constexpr const char* SERVER = "console";
constexpr const char* NOTIFICATION_ITEM = "notification";
constexpr const char* WARNING_ITEM = "warning";
constexpr std::uint32_t UPDATE_RATE = 100;

}  // namespace

CNcPanel::CNcPanel() : m_pServer(CInProcessOpcServer::Find(SERVER)) {
    COpcDatabase* pDatabase = COpcDatabase::GetInstance();
    pDatabase->SetSelectedOpcServer(SERVER);
    pDatabase->SetOpcLinkItem(CPreBalInterfaceToNC::ms_pKey, NOTIFICATION_ITEM);
    pDatabase->SetOpcLinkItem(CPreBalInterfaceToNCWarnings::ms_pKey, WARNING_ITEM);
    m_pNotifications = m_pServer->Subscribe(NOTIFICATION_ITEM, UPDATE_RATE, [this](const COpcValue* pValue) {
        const auto* pNumbers = pValue != nullptr ? std::get_if<std::vector<std::int32_t>>(pValue) : nullptr;
        if (pNumbers == nullptr || pNumbers->size() != CNotification::eSize) {
            return;
        }
        std::copy(pNumbers->begin(), pNumbers->end(), m_Notification.m_Values.begin());
        if (OnChanged) {
            OnChanged();
        }
    });
    m_pWarnings = m_pServer->Subscribe(WARNING_ITEM, UPDATE_RATE, [this](const COpcValue* pValue) {
        const auto* pNumber = pValue != nullptr ? std::get_if<std::int32_t>(pValue) : nullptr;
        if (pNumber == nullptr) {
            return;
        }
        m_Warning = static_cast<std::uint32_t>(*pNumber);
        if (OnChanged) {
            OnChanged();
        }
    });
}

CNcPanel::~CNcPanel() {
    m_pNotifications.reset();
    m_pWarnings.reset();
    COPCConnection::CreateInstance()->Disconnect();
    COpcDatabase::GetInstance()->Clear();
    m_pServer->Reset();
}
