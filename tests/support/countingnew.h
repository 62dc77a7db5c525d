#pragma once
// Counts what a program has on the heap. This header replaces the global operator new and delete: include it
// in one source file of a program only.
//
// Not in builds with sanitizers, which have replacements of their own: there CHeapCount::IsCounting is false.
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

/// Heap of this thread from its construction on, by what the allocator really hands out. One at a time.
class CHeapCount {
public:
    CHeapCount() { Present() = this; }
    ~CHeapCount() { Present() = nullptr; }
    CHeapCount(const CHeapCount&) = delete;
    CHeapCount& operator=(const CHeapCount&) = delete;

    /// The most bytes at any time.
    std::size_t GetPeak() const { return m_nPeak; }
    std::size_t GetAllocations() const { return m_nAllocations; }

    static constexpr bool IsCounting() {
#if defined(__SANITIZE_ADDRESS__)
        return false;
#else
        return true;
#endif
    }
    static void Allocated(void* pMemory) {
        if (CHeapCount* const pCount = Present(); pCount != nullptr && pMemory != nullptr) {
            pCount->m_nBytes += static_cast<std::ptrdiff_t>(malloc_usable_size(pMemory));
            pCount->m_nPeak = std::max(
                pCount->m_nPeak, static_cast<std::size_t>(std::max<std::ptrdiff_t>(pCount->m_nBytes, 0)));
            ++pCount->m_nAllocations;
        }
    }
    static void Freed(void* pMemory) {
        if (CHeapCount* const pCount = Present(); pCount != nullptr && pMemory != nullptr) {
            pCount->m_nBytes -= static_cast<std::ptrdiff_t>(malloc_usable_size(pMemory));
        }
    }

private:
    static CHeapCount*& Present() {
        static thread_local CHeapCount* pPresent = nullptr;
        return pPresent;
    }
    std::ptrdiff_t m_nBytes = 0;  ///< below 0 when more of what was there before is freed
    std::size_t m_nPeak = 0;
    std::size_t m_nAllocations = 0;
};

#if !defined(__SANITIZE_ADDRESS__)
// Not inline, which replacements may not be. The array and nothrow forms call these.
void* operator new(std::size_t nSize) {
    void* const pMemory = std::malloc(std::max<std::size_t>(nSize, 1));
    if (pMemory == nullptr) {
        throw std::bad_alloc();
    }
    CHeapCount::Allocated(pMemory);
    return pMemory;
}
void operator delete(void* pMemory) noexcept {
    CHeapCount::Freed(pMemory);
    std::free(pMemory);
}
void operator delete(void* pMemory, std::size_t /*nSize*/) noexcept {
    operator delete(pMemory);
}
#endif
