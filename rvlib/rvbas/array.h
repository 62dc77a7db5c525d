#pragma once
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace Base {

/// Growable array that owns its elements; new elements are zero-initialised.
template <typename T>
class CWDArray {
public:
    CWDArray() = default;
    CWDArray(std::initializer_list<T> Elements) : m_Elements(Elements) {}

    std::size_t GetSize() const { return m_Elements.size(); }
    bool IsEmpty() const { return m_Elements.empty(); }
    /// Grows with zero-initialised elements, or drops the last ones.
    void SetSize(std::size_t nSize) { m_Elements.resize(nSize); }
    void Add(const T& rElement) { m_Elements.push_back(rElement); }
    void RemoveAll() { m_Elements.clear(); }
    T& operator[](std::size_t Index) { return m_Elements[Index]; }
    const T& operator[](std::size_t Index) const { return m_Elements[Index]; }
    auto begin() { return m_Elements.begin(); }
    auto end() { return m_Elements.end(); }
    auto begin() const { return m_Elements.begin(); }
    auto end() const { return m_Elements.end(); }
    friend bool operator==(const CWDArray&, const CWDArray&) = default;

private:
    std::vector<T> m_Elements;
};

using CStringArray = CWDArray<std::string>;

}  // namespace Base
