#include "platform/rvopc/opcitem.h"

#include <utility>

#include "platform/rvlog/log.h"
#include "platform/rvopc/opcdatabase.h"

namespace {

CLogComponent* g_pLog = CLogComponent::Register("rvOPC", {});

}  // namespace

COpcItem::COpcItem(std::shared_ptr<COPCGroup> pGroup, std::string Name, const char* pKey)
    : m_pGroup(std::move(pGroup)),
      m_Name(std::move(Name)),
      m_Item(COpcDatabaseRef(pKey)->GetOpcLinkItem(pKey)) {
    RV_INFORMATION(g_pLog, "%s is the item %s, updated every %u ms", m_Name.c_str(), m_Item.c_str(),
                   m_pGroup->GetUpdateRate());
}

void COpcItem::SetFailureHandler(IFOpcServer::FailureHandler OnFailure) {
    *m_pOnFailure = std::move(OnFailure);
}

int COpcItem::Write(const COpcValue& rValue) {
    const auto Failed = [rpOnFailure = std::weak_ptr(m_pOnFailure)] {
        if (const auto pOnFailure = rpOnFailure.lock(); pOnFailure != nullptr && *pOnFailure) {
            (*pOnFailure)();
        }
    };
    return m_pGroup->GetServer().Write(m_Item, rValue, Failed) ? 1 : 0;
}

std::optional<COpcValue> COpcItem::Read() const {
    return m_pGroup->GetServer().Read(m_Item);
}

void COpcItem::Subscribe(IFOpcServer::ChangeHandler Handler) {
    m_pSubscription = m_pGroup->GetServer().Subscribe(m_Item, m_pGroup->GetUpdateRate(), std::move(Handler));
}
