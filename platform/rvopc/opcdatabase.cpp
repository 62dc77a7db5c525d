#include "platform/rvopc/opcdatabase.h"

#include <utility>

#include "platform/rvlog/log.h"

namespace {

// The foundation's publisher and topic. The foundation lies above this library: there is nothing to log to
// before it has registered.
constexpr std::uint32_t REF_COUNT_TOPIC = 0x10000;

void LogCount(const char* pOperation, const char* pWho, std::uint32_t nCount) {
    CLogComponent* const pLog = CLogComponent::Find("CorvaneBase");
    RV_LOG(pLog, REF_COUNT_TOPIC, "RefCount", "COpcDatabase->%s(%s) called [%u]", pOperation, pWho, nCount);
}

}  // namespace

COpcDatabase* COpcDatabase::GetInstance() {
    static COpcDatabase s_Instance;
    return &s_Instance;
}

void COpcDatabase::AddRef(const char* pWho) {
    ++m_RefCount;
    LogCount("AddRef", pWho, m_RefCount);
}

void COpcDatabase::Release(const char* pWho) {
    if (m_RefCount == 0) {
        CLogComponent* const pLog = CLogComponent::Find("CorvaneBase");
        RV_ASSERT(pLog, m_RefCount > 0, "Release makes only sense on a AddRefed object (COpcDatabase)!");
        return;
    }
    --m_RefCount;
    LogCount("Release", pWho, m_RefCount);
}

std::string COpcDatabase::GetOpcLinkItem(const std::string& rKey) const {
    const auto Position = m_LinkItems.find(rKey);
    return Position == m_LinkItems.end() ? std::string() : Position->second;
}

void COpcDatabase::SetOpcLinkItem(const std::string& rKey, const std::string& rItem) {
    if (rItem.empty()) {
        m_LinkItems.erase(rKey);
    } else {
        m_LinkItems[rKey] = rItem;
    }
}

void COpcDatabase::SetSelectedOpcServer(std::string Server) {
    m_Server = std::move(Server);
}

void COpcDatabase::Clear() {
    m_LinkItems.clear();
}
