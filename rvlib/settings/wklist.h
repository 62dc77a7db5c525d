#pragma once
#include <cstddef>
#include <list>
#include <memory>

/// A doubly linked list of pointers. Whether it owns what they point to is up to its user, who says so at the
/// end by RemoveAll.
template <typename T>
class CWKList {
public:
    using const_iterator = typename std::list<T*>::const_iterator;

    CWKList() = default;
    CWKList(const CWKList&) = delete;
    CWKList& operator=(const CWKList&) = delete;

    void AddTail(T* pElement) { m_Elements.push_back(pElement); }
    /// The list becomes the owner. Returns the element.
    T* AddTail(std::unique_ptr<T> pElement) {
        m_Elements.push_back(pElement.get());
        return pElement.release();
    }
    /// Drops the last element and returns it; null if there is none.
    T* RemoveTail() {
        if (m_Elements.empty()) {
            return nullptr;
        }
        T* const pElement = m_Elements.back();
        m_Elements.pop_back();
        return pElement;
    }
    /// Drops all elements; with bDelete they are destroyed.
    void RemoveAll(bool bDelete) {
        while (T* const pElement = RemoveTail()) {
            if (bDelete) {
                delete pElement;
            }
        }
    }

    /// The first element; null if there is none.
    T* GetHead() const { return m_Elements.empty() ? nullptr : m_Elements.front(); }
    std::size_t GetCount() const { return m_Elements.size(); }
    bool IsEmpty() const { return m_Elements.empty(); }
    const_iterator begin() const { return m_Elements.begin(); }
    const_iterator end() const { return m_Elements.end(); }

private:
    std::list<T*> m_Elements;
};
