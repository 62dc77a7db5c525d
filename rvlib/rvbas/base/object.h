#pragma once
#include <atomic>
#include <cstdint>
#include <mutex>

namespace Base {

/// Base of objects that several holders share and that go with the last one. The count starts at 0; who holds
/// is written to the log only. Safe from any thread; the object is destroyed outside its own lock.
class CObject {
public:
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    /// pWho names the holder, for the log.
    void AddRef(const char* pWho);
    /// Same word as in AddRef. The last one asks MayBeDestroyed() and, if so, calls Destroy(). On a count of
    /// 0 it asserts and does nothing.
    void Release(const char* pWho);

    std::uint32_t GetRefCount() const;
    bool IsDeleting() const { return m_IsDeleting != 0; }

    virtual ~CObject() = default;

protected:
    /// pName must outlive the object; it serves the log only.
    explicit CObject(const char* pName) : m_pName(pName) {}

    /// Asked when the count has reached zero. False keeps the object alive with count 0.
    virtual bool MayBeDestroyed() = 0;
    /// Carries out the destruction; the object isn't touched afterwards.
    virtual void Destroy() = 0;

private:
    const char* m_pName;
    std::uint32_t m_RefCount = 0;
    std::atomic<std::uint32_t> m_IsDeleting = 0;
    mutable std::mutex m_Lock;
};

}  // namespace Base
