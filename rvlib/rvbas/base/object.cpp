#include "rvlib/rvbas/base/object.h"

#include <string>

#include "rvlib/rvbas/log.h"

namespace Base {

void CObject::AddRef(const char* pWho) {
    const std::lock_guard Guard(m_Lock);
    RV_ASSERT(g_pLog, !m_IsDeleting, "Invalid state");
    ++m_RefCount;
    RV_LOG(g_pLog, REF_COUNT_TOPIC, "RefCount", "%s->AddRef(%s) called [%d]", m_pName, pWho,
           static_cast<int>(m_RefCount));
}

void CObject::Release(const char* pWho) {
    {
        const std::lock_guard Guard(m_Lock);
        RV_ASSERT(g_pLog, !m_IsDeleting, "Invalid state");
        if (m_RefCount == 0) {
            const std::string Text =
                "Release makes only sense on a AddRefed object (" + std::string(m_pName) + ")!";
            RV_ASSERT_AS(g_pLog, false, "m_RefCount > 0", Text.c_str(), false);
            return;
        }
        --m_RefCount;
        RV_LOG(g_pLog, REF_COUNT_TOPIC, "RefCount", "%s->Release(%s) called [%d]", m_pName, pWho,
               static_cast<int>(m_RefCount));
        if (m_RefCount != 0) {
            return;
        }
    }
    // Outside the lock, which dies with the object. A refusal clears the flag, so that the object can be
    // taken again.
    m_IsDeleting = 1;
    const bool bDestroy = MayBeDestroyed();
    m_IsDeleting = bDestroy ? 1 : 0;
    if (bDestroy) {
        Destroy();
    }
}

std::uint32_t CObject::GetRefCount() const {
    const std::lock_guard Guard(m_Lock);
    return m_RefCount;
}

}  // namespace Base
